#include <words.h>
#include <zr_nexa/mac_text.h>

#include <cstring>

#include "cli_test.h"

namespace {

using namespace cli;

// A text that ends where its memory ends.
std::unique_ptr<char[]> exact(const std::string& text)
{
    auto block = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(block.get(), text.c_str(), text.size() + 1);
    return block;
}

TEST(Words, AreComparedWholeAndCaseSensitively)
{
    EXPECT_TRUE(same("get", "get"));
    EXPECT_TRUE(same("", ""));
    EXPECT_FALSE(same("get", "Get"));
    EXPECT_FALSE(same("get", "ge"));
    EXPECT_FALSE(same("get", "gets"));
    EXPECT_FALSE(same("get", ""));
    EXPECT_FALSE(same("get ", "get"));
}

// Each cut keeps the low bits of what atoi reads.
TEST(Words, NumbersFollowAtoiAndAreCutToTheirLowBits)
{
    const struct {
        const char* word;
        int32_t s32;
        uint32_t u32;
        uint16_t u16;
        uint8_t u8;
        int8_t s8;
    } rows[] = {
        {"0", 0, 0, 0, 0, 0},
        {"127", 127, 127, 127, 127, 127},
        {"128", 128, 128, 128, 128, -128},
        {"255", 255, 255, 255, 255, -1},
        {"256", 256, 256, 256, 0, 0},
        {"257", 257, 257, 257, 1, 1},
        {"260", 260, 260, 260, 4, 4},
        {"43200", 43200, 43200, 43200, 192, -64},
        {"65535", 65535, 65535, 65535, 255, -1},
        {"65536", 65536, 65536, 0, 0, 0},
        {"70000", 70000, 70000, 4464, 112, 112},
        {"2147483647", 2147483647, 2147483647, 65535, 255, -1},
        {"-1", -1, 4294967295, 65535, 255, -1},
        {"-2147483648", -2147483647 - 1, 2147483648, 0, 0, 0},
        {"+7", 7, 7, 7, 7, 7},
        {"  12", 12, 12, 12, 12, 12},
        {"12abc", 12, 12, 12, 12, 12},
        {"010", 10, 10, 10, 10, 10},
        {"0x10", 0, 0, 0, 0, 0},
        {"abc", 0, 0, 0, 0, 0},
        {"-", 0, 0, 0, 0, 0},
        {"", 0, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(number_s32(row.word), row.s32) << row.word;
        EXPECT_EQ(number_u32(row.word), row.u32) << row.word;
        EXPECT_EQ(number_u16(row.word), row.u16) << row.word;
        EXPECT_EQ(number_u8(row.word), row.u8) << row.word;
        EXPECT_EQ(number_s8(row.word), row.s8) << row.word;
    }
}

TEST(Words, ALanIdIsTheDefaultLanOrAVlan)
{
    for (const uint16_t lan_id : std::vector<uint16_t>{0, 2, 3, 4093, 4094})
        EXPECT_TRUE(is_lan_id(lan_id)) << lan_id;
    for (const uint16_t lan_id : std::vector<uint16_t>{1, 4095, 4096, 65535})
        EXPECT_FALSE(is_lan_id(lan_id)) << lan_id;
}

TEST(Words, AddressesAreReadInHostByteOrderInEveryFormOfInetAton)
{
    const std::vector<std::pair<const char*, uint32_t>> accepted = {
        {"192.168.225.1", 0xC0A8E101},
        {"255.255.255.0", 0xFFFFFF00},
        {"0.0.0.0", 0},
        {"255.255.255.255", 0xFFFFFFFF},
        {"192.168.257", 0xC0A80101},
        {"10.1", 0x0A000001},
        {"16909060", 0x01020304},
        {"0300.0250.0341.01", 0xC0A8E101},
        {"0xc0.0xA8.0xe1.0x1", 0xC0A8E101},
        {"1.2.3.4 behind a blank", 0x01020304},
    };
    for (const auto& [word, expected] : accepted) {
        uint32_t address = 0xA5A5A5A5;
        EXPECT_TRUE(ipv4_from_word(word, &address)) << word;
        EXPECT_EQ(address, expected) << word;
    }
    for (const char* word : {"", "a", "256.1.1.1", "1.2.3.4.5", "1.2.3.4x", "1..2", "1.2.3.256", "-1", " "}) {
        uint32_t address = 0xA5A5A5A5;
        EXPECT_FALSE(ipv4_from_word(word, &address)) << word;
        EXPECT_EQ(address, 0xA5A5A5A5) << word;
    }
}

TEST(Words, AddressesArePrintedFromBothByteOrders)
{
    EXPECT_STREQ(ipv4_text(0xC0A8E101), "192.168.225.1");
    EXPECT_STREQ(ipv4_text(0), "0.0.0.0");
    EXPECT_STREQ(ipv4_text(0xFFFFFFFF), "255.255.255.255");

    const uint8_t v4[] = {192, 168, 225, 1};
    uint32_t bytes = 0;
    std::memcpy(&bytes, v4, sizeof(bytes));
    EXPECT_STREQ(ipv4_bytes_text(bytes), "192.168.225.1");
    const uint8_t v6[16] = {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x10};
    EXPECT_STREQ(ipv6_bytes_text(v6), "2001:db8::10");
    const uint8_t longest[16] = {0xFF, 0xFE, 0xFF, 0xFE, 0xFF, 0xFE, 0xFF, 0xFE,
                                 0xFF, 0xFE, 0xFF, 0xFE, 0xFF, 0xFE, 0xFF, 0xFE};
    EXPECT_STREQ(ipv6_bytes_text(longest), "fffe:fffe:fffe:fffe:fffe:fffe:fffe:fffe");
}

TEST(Words, ABlockHoldsTheWordAndThenZeros)
{
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", std::string(8, '\0')},
        {"a", std::string("a") + std::string(7, '\0')},
        {"abcdefg", std::string("abcdefg") + std::string(1, '\0')},
        {"abcdefgh", "abcdefgh"},
        {"abcdefghi", "abcdefgh"},
        {std::string(100000, 'x'), "xxxxxxxx"},
    };
    for (const auto& [word, expected] : rows) {
        struct {
            char field[8];
            char behind[4];
        } block;
        std::memset(&block, '#', sizeof(block));
        copy_block(block.field, exact(word).get());
        EXPECT_EQ(std::string(block.field, 8), expected);
        EXPECT_EQ(std::string(block.behind, 4), "####");
    }
}

TEST(MacText, IsSeventeenCharactersOfSixGroups)
{
    for (const char* text : {"00:01:02:03:04:05", "ff:FF:aA:09:9f:F0", "AB:CD:EF:ab:cd:ef"}) {
        EXPECT_EQ(zr_nexa_is_mac_text(text, 18), 1) << text;
        EXPECT_EQ(zr_nexa_is_mac_text(text, 17), 1) << text;
        EXPECT_EQ(zr_nexa_is_mac_text(text, 16), 0) << text;
        EXPECT_EQ(zr_nexa_is_mac_text(text, 100), 1) << text;
    }
    for (const char* text :
         {"", "00:01:02:03:04:0", "00:01:02:03:04:0Z", "00:01:02:03:04:05 ", "00:01:02:03:04:055", "00-01-02-03-04-05",
          "0001:02:03:04:05:", "00:01:02:03:04::5", ":0:01:02:03:04:05", "00:01:02:03:04:0@", "00:01:02:03:04:0G",
          "00:01:02:03:04:0`", "00:01:02:03:04:0g", "00:01:02:03:04:0/", "00:01:02:03:04::0", "00 01:02:03:04:05"}) {
        EXPECT_EQ(zr_nexa_is_mac_text(text, 19), 0) << text;
    }
}

TEST(MacText, IsNotReadBeyondItsSizeOrItsZero)
{
    const std::string whole = "00:01:02:03:04:05";
    auto unterminated = std::make_unique<char[]>(whole.size());
    std::memcpy(unterminated.get(), whole.data(), whole.size());
    EXPECT_EQ(zr_nexa_is_mac_text(unterminated.get(), whole.size()), 1);
    for (size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(zr_nexa_is_mac_text(exact(whole.substr(0, size)).get(), 18), 0) << size;
        auto part = std::make_unique<char[]>(size);
        std::memcpy(part.get(), whole.data(), size);
        EXPECT_EQ(zr_nexa_is_mac_text(part.get(), size), 0) << size;
    }
}

}  // namespace
