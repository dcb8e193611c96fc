#include <cstddef>
#include <memory>

#include "api_test.h"

namespace {

using AlgTest = ApiTest;

const char* const kEnableSet = "zr_nexa_alg_enable_type_set_v1";
const char* const kSipSet = "zr_nexa_alg_sip_server_info_set_v1";
const char* const kSipGet = "zr_nexa_alg_sip_server_info_get_v1";

constexpr size_t kBufferSize = 3108;

struct ShownWord {
    uint32_t err;
    const char* decimal;
    const char* hex;
};
const std::vector<ShownWord> kShownWords = {
    {0, "0", "0x0"},
    {1, "1", "0x1"},
    {3, "3", "0x3"},
    {43, "43", "0x2b"},
    {0x1000, "4096", "0x1000"},
    {0xFFFF, "65535", "0xffff"},
    {0x7FFFFFFF, "2147483647", "0x7fffffff"},
};

// A block of 100 bytes without a terminator, different for each number.
std::string full_fqdn(int number)
{
    std::string fqdn = "sip" + std::to_string(number) + ".";
    fqdn.resize(100, static_cast<char>('a' + number % 26));
    return fqdn;
}

std::string hex_of(const std::string& bytes)
{
    std::string hex;
    for (const char byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned char>(byte));
        hex += digits;
    }
    return hex;
}

const std::string kNoFqdn(200, '0');

zr_nexa_sip_server_info_t sip_server(uint32_t type)
{
    zr_nexa_sip_server_info_t info;
    info.pcscf_info_type = type;
    info.ipv4_addr = 0x0A000005;
    std::memcpy(info.fqdn, full_fqdn(1).data(), sizeof(info.fqdn));
    return info;
}

qcmap_msgr_sip_server_info_v01 platform_server(int number)
{
    qcmap_msgr_sip_server_info_v01 server;
    server.pcscf_info_type = number % 2 == 0 ? 1 : 2;
    server.ipv4_addr = 0x0A000000 + static_cast<uint32_t>(number);
    std::memcpy(server.fqdn, full_fqdn(number).data(), sizeof(server.fqdn));
    return server;
}

qcmap_msgr_ipv6_sip_server_info_v01 platform_ipv6_server(int number)
{
    qcmap_msgr_ipv6_sip_server_info_v01 server;
    server.pcscf_info_type = number % 2 == 0 ? 1 : 2;
    std::memset(server.ipv6_addr, 0x20 + number, sizeof(server.ipv6_addr));
    std::memcpy(server.fqdn, full_fqdn(number).data(), sizeof(server.fqdn));
    return server;
}

// A caller's buffer of exactly the size that is asked for, at an odd address.
class OddBuffer {
public:
    OddBuffer() : bytes_(new unsigned char[1 + kBufferSize])
    {
        std::memset(bytes_.get(), 0xA5, 1 + kBufferSize);
    }
    unsigned char* at(size_t offset = 0)
    {
        return bytes_.get() + 1 + offset;
    }
    bool untouched(size_t from, size_t to)
    {
        for (size_t i = from; i < to; ++i) {
            if (*at(i) != 0xA5) return false;
        }
        return true;
    }
    uint32_t word(size_t offset)
    {
        uint32_t value;
        std::memcpy(&value, at(offset), sizeof(value));
        return value;
    }
    std::string text(size_t offset, size_t size)
    {
        return std::string(reinterpret_cast<char*>(at(offset)), size);
    }

private:
    std::unique_ptr<unsigned char[]> bytes_;
};

void expect_server(OddBuffer& out, size_t offset, int number)
{
    EXPECT_EQ(out.word(offset), number % 2 == 0 ? 1u : 2u) << number;
    EXPECT_EQ(out.word(offset + 4), 0x0A000000u + static_cast<uint32_t>(number));
    EXPECT_EQ(out.text(offset + 8, 100), full_fqdn(number));
}

void expect_ipv6_server(OddBuffer& out, size_t offset, int number)
{
    EXPECT_EQ(out.word(offset), number % 2 == 0 ? 1u : 2u) << number;
    EXPECT_EQ(out.text(offset + 4, 16), std::string(16, static_cast<char>(0x20 + number)));
    EXPECT_EQ(out.text(offset + 20, 100), full_fqdn(number));
}

TEST_F(AlgTest, TheBufferHoldsEitherFamily)
{
    EXPECT_EQ(sizeof(zr_nexa_sip_server_info_t), 108u);
    EXPECT_EQ(sizeof(zr_nexa_ipv6_sip_server_info_t), 120u);
    EXPECT_EQ(ZR_NEXA_ALG_SIP_NETWORK_OFFSET, 108u);
    EXPECT_EQ(ZR_NEXA_ALG_SIP_BUFFER_SIZE, kBufferSize);
    EXPECT_EQ(ZR_NEXA_ALG_SIP_SERVERS_MAX, 25);
}

// ---- ALG switch ----

TEST_F(AlgTest, AnAlgIsSwitchedByItsOwnMethod)
{
    EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(1, 1), 0u);
    expect_row(kEnableSet, {"EnableAlg(1)"}, {info("entry"), info("Successfully Enable ALG types(1)")});
    EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(1, 2), 0u);
    expect_row(kEnableSet, {"EnableAlg(2)"}, {info("entry"), info("Successfully Enable ALG types(2)")});
    EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(0, 1), 0u);
    expect_row(kEnableSet, {"DisableAlg(1)"}, {info("entry"), info("Successfully Disable ALG types(1)")});
    platform.on("DisableAlg").succeeds(12);
    EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(0, 2), 12u);
    expect_row(kEnableSet, {"DisableAlg(2)"}, {info("entry"), info("Successfully Disable ALG types(2)")});
}

TEST_F(AlgTest, TheSwitchIsCheckedBeforeTheType)
{
    const struct {
        uint32_t enable;
        const char* text;
    } rows[] = {{2, "invalid enable(2)"},
                {48, "invalid enable(48)"},
                {256, "invalid enable(256)"},
                {0xFFFFFFFF, "invalid enable(-1)"}};
    for (const auto& row : rows) {
        EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(row.enable, 1), 48u);
        expect_row(kEnableSet, {}, {info("entry"), error(row.text)});
        EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(row.enable, 3), 48u);
        expect_row(kEnableSet, {}, {info("entry"), error(row.text)});
    }
}

TEST_F(AlgTest, AllBitsOfTheTypeAreChecked)
{
    const struct {
        uint64_t types;
        const char* text;
    } rows[] = {
        {0, "Invalid ALG types(0)"},
        {3, "Invalid ALG types(3)"},
        {4, "Invalid ALG types(4)"},
        {0x100000001, "Invalid ALG types(4294967297)"},
        {0x100000002, "Invalid ALG types(4294967298)"},
        {0x8000000000000000, "Invalid ALG types(9223372036854775808)"},
        {0xFFFFFFFFFFFFFFFF, "Invalid ALG types(18446744073709551615)"},
    };
    for (const auto& row : rows) {
        for (const uint32_t enable : {0u, 1u}) {
            EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(enable, row.types), 3u);
            expect_row(kEnableSet, {}, {info("entry"), error(row.text)});
        }
    }
}

TEST_F(AlgTest, SwitchingFailsWithTheTagOfItsMethod)
{
    for (const auto& word : kShownWords) {
        platform.on("EnableAlg").fails(word.err);
        EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(1, 2), word.err | 0x1000);
        expect_row(kEnableSet, {"EnableAlg(2)"},
                   {info("entry"), error(std::string("Failed to Enable ALG. Error:") + word.hex)});
        platform.on("DisableAlg").fails(word.err);
        EXPECT_EQ(zr_nexa_alg_enable_type_set_v1(0, 2), word.err | 0x2000);
        expect_row(kEnableSet, {"DisableAlg(2)"},
                   {info("entry"), error(std::string("Failed to Disable ALG. Error:") + word.hex)});
    }
}

// ---- configured SIP server ----

TEST_F(AlgTest, OnlyTheNamedFieldOfAServerIsHandedOn)
{
    const auto by_ip = sip_server(1);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(0, &by_ip), 0u);
    expect_row(kSipSet,
               {"SelectLANBridge(0)", "SetSIPServerInfo(pcscf_info_type=1 ipv4_addr=167772165 fqdn=" + kNoFqdn + ")"},
               {info("entry"), info("Successfully set SIP server information.")});

    const auto by_name = sip_server(2);
    platform.on("SetSIPServerInfo").succeeds(6);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(4094, &by_name), 6u);
    expect_row(
        kSipSet,
        {"SelectLANBridge(4094)", "SetSIPServerInfo(pcscf_info_type=2 ipv4_addr=0 fqdn=" + hex_of(full_fqdn(1)) + ")"},
        {info("entry"), info("Successfully set SIP server information.")});
}

TEST_F(AlgTest, BytesBehindAShortNameAreHandedOnToo)
{
    auto server = sip_server(2);
    std::memset(server.fqdn, 0x11, sizeof(server.fqdn));
    std::memcpy(server.fqdn, "a.b", 4);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(1, &server), 0u);
    expect_calls({"SelectLANBridge(1)", "SetSIPServerInfo(pcscf_info_type=2 ipv4_addr=0 fqdn=" +
                                            hex_of(std::string("a.b\0", 4) + std::string(96, '\x11')) + ")"});
}

TEST_F(AlgTest, SipSetChecksItsArgumentsInOrder)
{
    const auto server = sip_server(1);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(0, nullptr), 4u);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(4095, nullptr), 4u);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(4095, &server), 6u);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(65536, &server), 6u);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(0xFFFFFFFF, &server), 6u);
    expect_row(kSipSet, {}, std::vector<ExpectedRecord>(5, info("entry")));

    const struct {
        uint32_t type;
        const char* shown;
    } rows[] = {{0, "0"}, {3, "3"}, {257, "257"}, {0xFFFFFFFF, "-1"}};
    for (const auto& row : rows) {
        const auto bad = sip_server(row.type);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(5, &bad), 3u);
        expect_row(
            kSipSet, {"SelectLANBridge(5)"},
            {info("entry"), error(std::string("pcscf_info_type:") + row.shown + ", it must be IP ADDRESS or FQDN")});
    }
    // An unknown bridge is seen before a bad type.
    platform.on("SelectLANBridge").fails(3);
    const auto bad = sip_server(3);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(5, &bad), 0x1003u);
}

TEST_F(AlgTest, SipSetFailsAtEachStep)
{
    const auto server = sip_server(1);
    for (const auto& word : kShownWords) {
        platform.on("SetSIPServerInfo").fails(word.err);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(9, &server), word.err | 0x2000);
        expect_row(
            kSipSet,
            {"SelectLANBridge(9)", "SetSIPServerInfo(pcscf_info_type=1 ipv4_addr=167772165 fqdn=" + kNoFqdn + ")"},
            {info("entry"), error(std::string("Failed to set SIP server information. Error:") + word.hex)});
    }
    for (const auto& word : kShownWords) {
        platform.on("SelectLANBridge").fails(word.err);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_set_v1(9, &server), word.err | 0x1000);
        expect_row(kSipSet, {"SelectLANBridge(9)"},
                   {info("entry"), error(std::string("Select LAN Bridge (LAN_ID=9) error ") + word.decimal)});
    }
}

// ---- all SIP servers ----

TEST_F(AlgTest, Ipv4ServersFollowTheConfiguredOne)
{
    std::vector<qcmap_msgr_sip_server_info_v01> network;
    for (int i = 1; i <= 25; ++i) {
        network.push_back(platform_server(i));
    }
    platform.on("GetSIPServerInfo").gives("configured", platform_server(40));
    for (const int count : {1, 2, 25}) {
        SCOPED_TRACE(count);
        OddBuffer out;
        int got = -77;
        platform.on("GetSIPServerInfo")
            .gives_array("network", network.data(), 25)
            .gives("network_count", count)
            .succeeds(4);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(4094, 4, &got, out.at()), 4u);
        EXPECT_EQ(got, count);
        expect_server(out, 0, 40);
        for (int i = 1; i <= count; ++i) {
            expect_server(out, 108 * static_cast<size_t>(i), i);
        }
        EXPECT_TRUE(out.untouched(108 * static_cast<size_t>(count + 1), kBufferSize));
        expect_row(kSipGet, {"SelectLANBridge(4094)", "GetSIPServerInfo()"},
                   {info("entry"), info("IPv4: Number of network assigned SIP server info is " + std::to_string(count)),
                    info("Successfully get IPV4 SIP server info.")});
    }
}

TEST_F(AlgTest, TheConfiguredIpv4ServerIsWrittenWithoutNetworkServers)
{
    OddBuffer out;
    int count = -77;
    platform.on("GetSIPServerInfo").gives("configured", platform_server(7)).gives("network_count", 0);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(0, 4, &count, out.at()), 0u);
    EXPECT_EQ(count, 0);
    expect_server(out, 0, 7);
    EXPECT_TRUE(out.untouched(108, kBufferSize));
    expect_row(kSipGet, {"SelectLANBridge(0)", "GetSIPServerInfo()"},
               {info("entry"), info("Successfully get IPV4 SIP server info.")});
}

TEST_F(AlgTest, WhatThePlatformDoesNotWriteIsZero)
{
    OddBuffer out;
    int count = -77;
    platform.on("GetSIPServerInfo").gives("network_count", 1);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(0, 4, &count, out.at()), 0u);
    EXPECT_EQ(out.text(0, 216), std::string(216, '\0'));
    platform.on("GetV6SIPServerInfo").gives("network_count", 1);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(0, 6, &count, out.at()), 0u);
    EXPECT_EQ(out.text(108, 120), std::string(120, '\0'));
}

TEST_F(AlgTest, Ipv6ServersBeginBehindTheFirstPlace)
{
    std::vector<qcmap_msgr_ipv6_sip_server_info_v01> network;
    for (int i = 1; i <= 25; ++i) {
        network.push_back(platform_ipv6_server(i));
    }
    for (const int count : {1, 2, 25}) {
        SCOPED_TRACE(count);
        OddBuffer out;
        int got = -77;
        platform.on("GetV6SIPServerInfo")
            .gives_array("network", network.data(), 25)
            .gives("network_count", count)
            .succeeds(8);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(3, 6, &got, out.at()), 8u);
        EXPECT_EQ(got, count);
        EXPECT_TRUE(out.untouched(0, 108));
        for (int i = 1; i <= count; ++i) {
            expect_ipv6_server(out, 108 + 120 * static_cast<size_t>(i - 1), i);
        }
        EXPECT_TRUE(out.untouched(108 + 120 * static_cast<size_t>(count), kBufferSize));
        expect_row(kSipGet, {"SelectLANBridge(3)", "GetV6SIPServerInfo()"},
                   {info("entry"), info("IPv6: Number of network assigned SIP server info is " + std::to_string(count)),
                    info("Successfully get IPV4 SIP server info.")});
    }
}

TEST_F(AlgTest, Ipv6WithoutNetworkServersWritesTheCountOnly)
{
    OddBuffer out;
    int count = -77;
    platform.on("GetV6SIPServerInfo").gives("network_count", 0);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(0, 6, &count, out.at()), 0u);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(out.untouched(0, kBufferSize));
    expect_row(kSipGet, {"SelectLANBridge(0)", "GetV6SIPServerInfo()"},
               {info("entry"), info("Successfully get IPV4 SIP server info.")});
}

TEST_F(AlgTest, CountsOutsideTheListAreClamped)
{
    const std::vector<qcmap_msgr_sip_server_info_v01> v4(25, platform_server(3));
    const std::vector<qcmap_msgr_ipv6_sip_server_info_v01> v6(25, platform_ipv6_server(3));
    const struct {
        int reported;
        int count;
    } rows[] = {{26, 25}, {0x7FFFFFFF, 25}, {-1, 0}, {-0x7FFFFFFF - 1, 0}};
    for (const auto& row : rows) {
        OddBuffer out;
        int count = -77;
        platform.on("GetSIPServerInfo").gives_array("network", v4.data(), 25).gives("network_count", row.reported);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(0, 4, &count, out.at()), 0u);
        EXPECT_EQ(count, row.count);
        EXPECT_TRUE(out.untouched(108 * static_cast<size_t>(1 + row.count), kBufferSize));
        count = -77;
        platform.on("GetV6SIPServerInfo").gives_array("network", v6.data(), 25).gives("network_count", row.reported);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(0, 6, &count, out.at()), 0u);
        EXPECT_EQ(count, row.count);
    }
}

TEST_F(AlgTest, SipGetChecksItsArgumentsInOrder)
{
    OddBuffer out;
    int count = -77;
    for (const uint32_t family : {4u, 6u, 5u}) {
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(0, family, nullptr, out.at()), 4u);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(0, family, &count, nullptr), 4u);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(4095, family, &count, nullptr), 4u);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(4095, family, &count, out.at()), 6u);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(65536, family, &count, out.at()), 6u);
        expect_row(kSipGet, {}, std::vector<ExpectedRecord>(5, info("entry")));
    }
    for (const uint32_t family : {0u, 1u, 5u, 10u, 260u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(2, family, &count, out.at()), 3u);
        expect_row(kSipGet, {"SelectLANBridge(2)"},
                   {info("entry"), error("Domain only suuport ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6")});
    }
    platform.on("SelectLANBridge").fails(14);
    EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(2, 5, &count, out.at()), 0x100Eu);
    EXPECT_EQ(count, -77);
    EXPECT_TRUE(out.untouched(0, kBufferSize));
}

TEST_F(AlgTest, SipGetFailsAtEachStep)
{
    OddBuffer out;
    int count = -77;
    for (const auto& word : kShownWords) {
        platform.on("GetSIPServerInfo")
            .gives("configured", platform_server(1))
            .gives("network_count", 2)
            .fails(word.err);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(9, 4, &count, out.at()), word.err | 0x2000);
        expect_row(kSipGet, {"SelectLANBridge(9)", "GetSIPServerInfo()"},
                   {info("entry"), error(std::string("Failed to get IPV4 SIP server info. Error:") + word.hex)});
        platform.on("GetV6SIPServerInfo").gives("network_count", 2).fails(word.err);
        EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(9, 6, &count, out.at()), word.err | 0x3000);
        expect_row(kSipGet, {"SelectLANBridge(9)", "GetV6SIPServerInfo()"},
                   {info("entry"), error(std::string("Failed to get IPV6 SIP server info. Error:") + word.hex)});
    }
    for (const auto& word : kShownWords) {
        platform.on("SelectLANBridge").fails(word.err);
        for (const uint32_t family : {4u, 6u}) {
            EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(9, family, &count, out.at()), word.err | 0x1000);
            expect_row(kSipGet, {"SelectLANBridge(9)"},
                       {info("entry"), error(std::string("Select LAN Bridge (LAN_ID=9) error ") + word.decimal)});
        }
    }
    EXPECT_EQ(count, -77);
    EXPECT_TRUE(out.untouched(0, kBufferSize));
}

}  // namespace
