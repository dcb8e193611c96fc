#include "words.h"

#include <arpa/inet.h>
#include <zr_nexa/base.h>

#include <cstdlib>
#include <cstring>

namespace cli {

bool same(const char* word, const char* other)
{
    return strcmp(word, other) == 0;
}

int32_t number_s32(const char* word)
{
    return atoi(word);
}

uint32_t number_u32(const char* word)
{
    return static_cast<uint32_t>(number_s32(word));
}

uint16_t number_u16(const char* word)
{
    return static_cast<uint16_t>(number_s32(word));
}

uint8_t number_u8(const char* word)
{
    return static_cast<uint8_t>(number_s32(word));
}

int8_t number_s8(const char* word)
{
    return static_cast<int8_t>(number_s32(word));
}

bool is_lan_id(uint16_t lan_id)
{
    return lan_id <= ZR_NEXA_LAN_ID_MAX && lan_id != 1;
}

bool ipv4_from_word(const char* word, uint32_t* address)
{
    in_addr network_order{};
    if (inet_aton(word, &network_order) == 0) return false;
    *address = ntohl(network_order.s_addr);
    return true;
}

const char* ipv4_text(uint32_t address)
{
    const in_addr network_order{htonl(address)};
    return inet_ntoa(network_order);
}

const char* ipv4_bytes_text(uint32_t bytes)
{
    return ipv4_text(ntohl(bytes));
}

const char* ipv6_bytes_text(const uint8_t (&bytes)[16])
{
    static char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, bytes, text, sizeof(text));
}

void copy_block(char* field, size_t size, const char* word)
{
    strncpy(field, word, size);
}

}  // namespace cli
