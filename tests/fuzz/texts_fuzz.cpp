// Addresses and names as text, there and back.
#include <arpa/inet.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "addresses.h"
#include "ds_utils.h"
#include "fuzz.h"

namespace {

using Mac = uint8_t[6];
using Ipv6 = uint8_t[16];

constexpr Mac kNoMac = {};

template <size_t Size>
bool same(const uint8_t (&one)[Size], const uint8_t (&other)[Size])
{
    return std::equal(one, one + Size, other);
}

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

void try_ipv4(const std::string& text)
{
    const uint32_t word = mobile_ap::ipv4_word(text);
    fuzz::expect(mobile_ap::ipv4_word(mobile_ap::ipv4_text(word)) == word);
    fuzz::expect(word == 0 || mobile_ap::ipv4_text(word) == text.c_str());
    const uint32_t network = mobile_ap::network_ipv4_word(text);
    fuzz::expect(network == htonl(word) && mobile_ap::network_ipv4_text(network) == mobile_ap::ipv4_text(word));
}

void try_ipv6(const std::string& text)
{
    Ipv6 bytes;
    mobile_ap::ipv6_bytes(text, bytes);
    Ipv6 again;
    mobile_ap::ipv6_bytes(mobile_ap::ipv6_text(bytes), again);
    fuzz::expect(same(bytes, again));
}

void try_mac(const std::string& text)
{
    constexpr Mac kUntouched = {1, 2, 3, 4, 5, 6};
    Mac read = {1, 2, 3, 4, 5, 6};
    Mac kept;
    mobile_ap::mac_bytes(text, kept);
    if (!ds_mac_addr_pton(text.c_str(), read)) {
        fuzz::expect(same(read, kUntouched));
        fuzz::expect(same(kept, kNoMac) || text.size() != std::strlen(text.c_str()));
        return;
    }
    char written[18];
    ds_mac_addr_ntop(read, written);
    fuzz::expect(lower(text.c_str()) == written && mobile_ap::mac_text(read) == written);
    fuzz::expect(same(kept, read) || text.size() != std::strlen(text.c_str()));
}

void try_field(const std::string& text, size_t size)
{
    std::vector<char> field(size, '\x7f');
    mobile_ap::set_field_text(field.data(), size, text);
    const std::string read = mobile_ap::field_text(field.data(), size);
    fuzz::expect(read == std::string(text.substr(0, size).c_str()));
}

void try_bytes(const uint8_t* data, size_t size)
{
    Ipv6 bytes = {};
    std::copy_n(data, std::min(size, sizeof bytes), bytes);
    Ipv6 ipv6;
    mobile_ap::ipv6_bytes(mobile_ap::ipv6_text(bytes), ipv6);
    fuzz::expect(same(ipv6, bytes));
    Mac mac;
    mobile_ap::mac_bytes(mobile_ap::mac_text(bytes), mac);
    fuzz::expect(std::equal(mac, mac + sizeof mac, bytes));
    uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    fuzz::expect(mobile_ap::ipv4_word(mobile_ap::ipv4_text(word)) == word);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    try_ipv4(text);
    try_ipv6(text);
    try_mac(text);
    try_field(text, size == 0 ? 1 : 1 + data[0] % 64);
    try_bytes(data, size);
    return 0;
}
