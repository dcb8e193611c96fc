// The MAC helpers' double: it converts as the platform does, so that texts can be written out in the tests.
#include <ds_utils.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

bool ds_mac_addr_pton(const char* text, uint8_t* mac)
{
    if (std::strlen(text) != 17) return false;
    uint8_t bytes[6];
    for (int i = 0; i < 6; ++i) {
        const char* const group = text + i * 3;
        if (std::isxdigit(static_cast<unsigned char>(group[0])) == 0 ||
            std::isxdigit(static_cast<unsigned char>(group[1])) == 0 || (i < 5 && group[2] != ':')) {
            return false;
        }
        bytes[i] = static_cast<uint8_t>(std::strtoul(group, nullptr, 16));
    }
    std::memcpy(mac, bytes, sizeof(bytes));
    return true;
}

void ds_mac_addr_ntop(const uint8_t* mac, char* text)
{
    std::snprintf(text, 18, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
}
