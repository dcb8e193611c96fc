#include "words.h"

#include <arpa/inet.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace cli {

bool same(const char* word, const char* other)
{
    return strcmp(word, other) == 0;
}

int number(const char* word)
{
    return atoi(word);
}

uint32_t number_u32(const char* word)
{
    return static_cast<uint32_t>(number(word));
}

uint16_t number_u16(const char* word)
{
    return static_cast<uint16_t>(number(word));
}

uint8_t number_u8(const char* word)
{
    return static_cast<uint8_t>(number(word));
}

int8_t number_s8(const char* word)
{
    return static_cast<int8_t>(number(word));
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

void copy_block(char* field, size_t size, const char* word)
{
    strncpy(field, word, size);
}

int usage(const char* text)
{
    printf("%s", text);
    return 0;
}

int invalid()
{
    puts("Input Parameter Invalid\r");
    return 65535;
}

int result(uint32_t code)
{
    return static_cast<int>(code);
}

}  // namespace cli
