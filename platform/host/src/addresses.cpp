#include "addresses.h"

#include <ctype.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

namespace mobile_ap {

std::string ipv4_text(uint32_t address)
{
    const in_addr network = {htonl(address)};
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &network, text, sizeof text);
    return text;
}

uint32_t ipv4_word(const std::string& text)
{
    in_addr network = {};
    return inet_pton(AF_INET, text.c_str(), &network) == 1 ? ntohl(network.s_addr) : 0;
}

std::string network_ipv4_text(uint32_t address)
{
    return ipv4_text(ntohl(address));
}

uint32_t network_ipv4_word(const std::string& text)
{
    return htonl(ipv4_word(text));
}

std::string ipv6_text(const uint8_t* bytes)
{
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(AF_INET6, bytes, text, sizeof text);
    return text;
}

void ipv6_bytes(const std::string& text, uint8_t* bytes)
{
    if (inet_pton(AF_INET6, text.c_str(), bytes) != 1) memset(bytes, 0, 16);
}

std::string mac_text(const uint8_t* bytes)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (int i = 0; i < 6; ++i) {
        if (i != 0) text += ':';
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

void mac_bytes(const std::string& text, uint8_t* bytes)
{
    memset(bytes, 0, 6);
    if (text.size() != 17) return;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool fits = i % 3 == 2 ? text[i] == ':' : isxdigit(static_cast<unsigned char>(text[i])) != 0;
        if (!fits) return;
    }
    for (size_t i = 0; i < 6; ++i)
        bytes[i] = static_cast<uint8_t>(strtoul(text.substr(3 * i, 2).c_str(), nullptr, 16));
}

std::string field_text(const char* field, size_t size)
{
    return std::string(field, strnlen(field, size));
}

void set_field_text(char* field, size_t size, const std::string& text)
{
    std::fill_n(field, size, '\0');
    std::copy_n(text.data(), std::min(size, text.size()), field);
}

}  // namespace mobile_ap
