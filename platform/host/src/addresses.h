// Addresses as a person reads them in the database. Words are in host byte order unless a name says network.
#ifndef MOBILE_AP_ADDRESSES_H
#define MOBILE_AP_ADDRESSES_H

#include <arpa/inet.h>
#include <stddef.h>
#include <stdint.h>

#include <string>

namespace mobile_ap {

std::string ipv4_text(uint32_t address);                   // 0 is "0.0.0.0"
uint32_t ipv4_word(const std::string& text);               // 0 for anything that is not an address
std::string network_ipv4_text(uint32_t address);           // of a word in network byte order
uint32_t network_ipv4_word(const std::string& text);       // the same the other way
std::string ipv6_text(const uint8_t* bytes);               // of 16 bytes
void ipv6_bytes(const std::string& text, uint8_t* bytes);  // all 0 for anything that is not an address
std::string mac_text(const uint8_t* bytes);                // of 6 bytes, "aa:bb:cc:dd:ee:ff"
void mac_bytes(const std::string& text, uint8_t* bytes);   // all 0 for anything that is not one

// A text in a field of fixed size, which is terminated only when it is shorter than the field.
std::string field_text(const char* field, size_t size);
void set_field_text(char* field, size_t size, const std::string& text);  // cut to the field, the rest 0

}  // namespace mobile_ap

#endif
