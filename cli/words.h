// The words of the command line as values, and values as the words that are printed.
#ifndef ZR_NEXA_CLI_WORDS_H
#define ZR_NEXA_CLI_WORDS_H

#include <cstddef>
#include <cstdint>

namespace cli {

// Whole and case-sensitive.
bool same(const char* word, const char* other);

// Numbers follow atoi, so a word that is none reads as 0. Each is then cut to its low bits: "260" is 4 in 8 bits.
int32_t number_s32(const char* word);
uint32_t number_u32(const char* word);
uint16_t number_u16(const char* word);
uint8_t number_u8(const char* word);
int8_t number_s8(const char* word);

// A LAN as commands name it: 0 the default LAN, else a VLAN. 1 is none of theirs.
bool is_lan_id(uint16_t lan_id);

// A dotted IPv4 address, also in the short and octal forms that inet_aton takes. Host byte order; on false address is
// as it was.
bool ipv4_from_word(const char* word, uint32_t* address);
// Dotted; stands in a buffer that the next call overwrites.
const char* ipv4_text(uint32_t address);
// The same of addresses whose bytes stand in network order.
const char* ipv4_bytes_text(uint32_t bytes);
const char* ipv6_bytes_text(const uint8_t (&bytes)[16]);

// Fills a fixed-size field with the word and then zeros; a word that is as long as the field leaves it without one.
void copy_block(char* field, size_t size, const char* word);
template <size_t size>
void copy_block(char (&field)[size], const char* word)
{
    copy_block(field, size, word);
}

}  // namespace cli

#endif
