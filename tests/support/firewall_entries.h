// Firewall entries, and what is read back of them.
#ifndef FIREWALL_ENTRIES_H
#define FIREWALL_ENTRIES_H

#include <zr_nexa/firewall.h>

#include <cstring>

inline constexpr uint8_t kSrc6Bytes[16] = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01};
inline constexpr uint8_t kDst6Bytes[16] = {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff};

// Every value set and every flag clear.
inline zr_nexa_firewall_entry_t full_entry(uint32_t ip_version)
{
    zr_nexa_firewall_entry_t entry;
    std::memset(&entry, 0, sizeof(entry));
    entry.direction = 1;
    entry.ip_version = ip_version;
    entry.ipv4_src_addr = 0xC0A8E101;
    entry.ipv4_src_mask = 0xFFFFFF00;
    entry.ipv4_dst_addr = 0x08080808;
    entry.ipv4_dst_mask = 0xFFFFFFFF;
    entry.ipv4_tos = 0x10;
    entry.ipv4_tos_mask = 0xF0;
    std::memcpy(entry.ipv6_src_addr, kSrc6Bytes, 16);
    entry.ipv6_src_prefix_len = 64;
    std::memcpy(entry.ipv6_dst_addr, kDst6Bytes, 16);
    entry.ipv6_dst_prefix_len = 128;
    entry.ipv6_nat_flag = 0x5A;
    entry.ipv6_tc = 0x20;
    entry.ipv6_tc_mask = 0xE0;
    entry.protocol = 2;
    entry.src_port = 1000;
    entry.src_port_range = 10;
    entry.dst_port = 80;
    entry.dst_port_range = 20;
    entry.icmp_type = 8;
    entry.icmp_code = 3;
    entry.esp_spi = 0xDEADBEEF;
    return entry;
}

// The twelve flags from the twelve low bits; a set one is any byte but 0.
inline void set_flags(zr_nexa_firewall_entry_t* entry, uint32_t bits)
{
    uint32_t bit = 0;
    for (uint8_t* const valid :
         {&entry->ipv4_src_valid, &entry->ipv4_dst_valid, &entry->ipv4_tos_valid, &entry->ipv6_src_valid,
          &entry->ipv6_dst_valid, &entry->ipv6_tc_valid, &entry->proto_valid, &entry->src_port_valid,
          &entry->dst_port_valid, &entry->icmp_type_valid, &entry->icmp_code_valid, &entry->esp_spi_valid}) {
        *valid = (bits >> bit & 1) != 0 ? static_cast<uint8_t>(1 + 2 * bit) : 0;
        ++bit;
    }
}

// What a cleared entry holds after the given one was added and read back into it: what the platform was told.
inline zr_nexa_firewall_entry_t read_back_of(const zr_nexa_firewall_entry_t& entry)
{
    zr_nexa_firewall_entry_t expected;
    std::memset(&expected, 0, sizeof(expected));
    if (entry.direction == 1 || entry.direction == 2) expected.direction = entry.direction;
    expected.ip_version = entry.ip_version;
    if (entry.ip_version == 4) {
        if (entry.ipv4_src_valid != 0) {
            expected.ipv4_src_valid = 1;
            expected.ipv4_src_addr = entry.ipv4_src_addr;
            expected.ipv4_src_mask = entry.ipv4_src_mask;
        }
        if (entry.ipv4_dst_valid != 0) {
            expected.ipv4_dst_valid = 1;
            expected.ipv4_dst_addr = entry.ipv4_dst_addr;
            expected.ipv4_dst_mask = entry.ipv4_dst_mask;
        }
        if (entry.ipv4_tos_valid != 0) {
            expected.ipv4_tos_valid = 1;
            expected.ipv4_tos = entry.ipv4_tos;
            expected.ipv4_tos_mask = entry.ipv4_tos_mask;
        }
    } else {
        expected.ipv6_nat_flag = entry.ipv6_nat_flag;
        if (entry.ipv6_src_valid != 0) {
            expected.ipv6_src_valid = 1;
            std::memcpy(expected.ipv6_src_addr, entry.ipv6_src_addr, 16);
            expected.ipv6_src_prefix_len = entry.ipv6_src_prefix_len;
        }
        if (entry.ipv6_dst_valid != 0) {
            expected.ipv6_dst_valid = 1;
            std::memcpy(expected.ipv6_dst_addr, entry.ipv6_dst_addr, 16);
            expected.ipv6_dst_prefix_len = entry.ipv6_dst_prefix_len;
        }
        if (entry.ipv6_tc_valid != 0) {
            expected.ipv6_tc_valid = 1;
            expected.ipv6_tc = entry.ipv6_tc;
            expected.ipv6_tc_mask = entry.ipv6_tc_mask;
        }
    }
    if (entry.proto_valid == 0) return expected;

    // Codes 0..8, by family.
    static const uint32_t read_as_v4[] = {1, 1, 2, 3, 4, 1, 6, 7, 1};
    static const uint32_t read_as_v6[] = {1, 1, 2, 3, 1, 5, 6, 7, 1};
    const uint32_t told = entry.ip_version == 4 ? read_as_v4[entry.protocol] : read_as_v6[entry.protocol];
    expected.proto_valid = 1;
    expected.protocol = told;
    if ((told == 2 || told == 3 || told == 6) && entry.src_port_valid != 0) {
        expected.src_port_valid = 1;
        expected.src_port = entry.src_port;
        expected.src_port_range = entry.src_port_range;
    }
    if ((told == 2 || told == 3 || told == 6) && entry.dst_port_valid != 0) {
        expected.dst_port_valid = 1;
        expected.dst_port = entry.dst_port;
        expected.dst_port_range = entry.dst_port_range;
    }
    if ((told == 4 || told == 5) && entry.icmp_type_valid != 0) {
        expected.icmp_type_valid = 1;
        expected.icmp_type = entry.icmp_type;
    }
    if ((told == 4 || told == 5) && entry.icmp_code_valid != 0) {
        expected.icmp_code_valid = 1;
        expected.icmp_code = entry.icmp_code;
    }
    if (told == 7 && entry.esp_spi_valid != 0) {
        expected.esp_spi_valid = 1;
        expected.esp_spi = entry.esp_spi;
    }
    return expected;
}

#endif
