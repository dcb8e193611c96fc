#include <cstddef>
#include <memory>

#include "api_test.h"

namespace {

using AlgTest = ApiTest;

constexpr size_t kBufferSize = 3108;

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
    EXPECT_ROW(zr_nexa_alg_enable_type_set_v1(1, 1), 0u,
               "info  entry",
               "call  EnableAlg(1)",
               "info  Successfully Enable ALG types(1)");
    EXPECT_ROW(zr_nexa_alg_enable_type_set_v1(1, 2), 0u,
               "info  entry",
               "call  EnableAlg(2)",
               "info  Successfully Enable ALG types(2)");
    EXPECT_ROW(zr_nexa_alg_enable_type_set_v1(0, 1), 0u,
               "info  entry",
               "call  DisableAlg(1)",
               "info  Successfully Disable ALG types(1)");
    EXPECT_ROW(zr_nexa_alg_enable_type_set_v1(0, 2), 0u,
               "info  entry",
               "call  DisableAlg(2)",
               "info  Successfully Disable ALG types(2)");
}

TEST_F(AlgTest, TheSwitchIsCheckedBeforeTheType)
{
    const struct {
        uint32_t enable;
        const char* refusal;
    } rows[] = {{2, "error invalid enable(2)"},
                {48, "error invalid enable(48)"},
                {256, "error invalid enable(256)"},
                {0xFFFFFFFF, "error invalid enable(-1)"}};
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_alg_enable_type_set_v1(row.enable, 1), 48u, "info  entry", row.refusal);
        EXPECT_ROW(zr_nexa_alg_enable_type_set_v1(row.enable, 3), 48u, "info  entry", row.refusal);
    }
}

TEST_F(AlgTest, AllBitsOfTheTypeAreChecked)
{
    const struct {
        uint64_t types;
        const char* refusal;
    } rows[] = {
        {0, "error Invalid ALG types(0)"},
        {3, "error Invalid ALG types(3)"},
        {4, "error Invalid ALG types(4)"},
        {0x100000001, "error Invalid ALG types(4294967297)"},
        {0x100000002, "error Invalid ALG types(4294967298)"},
        {0x8000000000000000, "error Invalid ALG types(9223372036854775808)"},
        {0xFFFFFFFFFFFFFFFF, "error Invalid ALG types(18446744073709551615)"},
    };
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_alg_enable_type_set_v1(0, row.types), 3u, "info  entry", row.refusal);
        EXPECT_ROW(zr_nexa_alg_enable_type_set_v1(1, row.types), 3u, "info  entry", row.refusal);
    }
}

// ---- configured SIP server ----

TEST_F(AlgTest, OnlyTheNamedFieldOfAServerIsHandedOn)
{
    const auto by_ip = sip_server(1);
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(0, &by_ip), 0u,
               "info  entry",
               "call  SelectLANBridge(0)",
               "call  SetSIPServerInfo(pcscf_info_type=1 ipv4_addr=167772165 fqdn=" + kNoFqdn + ")",
               "info  Successfully set SIP server information.");
    const auto by_name = sip_server(2);
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(4094, &by_name), 0u,
               "info  entry",
               "call  SelectLANBridge(4094)",
               "call  SetSIPServerInfo(pcscf_info_type=2 ipv4_addr=0 fqdn=" + hex_of(full_fqdn(1)) + ")",
               "info  Successfully set SIP server information.");
}

TEST_F(AlgTest, BytesBehindAShortNameAreHandedOnToo)
{
    auto server = sip_server(2);
    std::memset(server.fqdn, 0x11, sizeof(server.fqdn));
    std::memcpy(server.fqdn, "a.b", 4);
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(1, &server), 0u,
               "info  entry",
               "call  SelectLANBridge(1)",
               "call  SetSIPServerInfo(pcscf_info_type=2 ipv4_addr=0 fqdn=" +
                   hex_of(std::string("a.b\0", 4) + std::string(96, '\x11')) + ")",
               "info  Successfully set SIP server information.");
}

TEST_F(AlgTest, SipSetChecksItsArgumentsInOrder)
{
    const auto server = sip_server(1);
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(0, nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(4095, nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(4095, &server), 6u, "info  entry");
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(65536, &server), 6u, "info  entry");
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(0xFFFFFFFF, &server), 6u, "info  entry");
    const struct {
        uint32_t type;
        const char* refusal;
    } rows[] = {{0, "error pcscf_info_type:0, it must be IP ADDRESS or FQDN"},
                {3, "error pcscf_info_type:3, it must be IP ADDRESS or FQDN"},
                {257, "error pcscf_info_type:257, it must be IP ADDRESS or FQDN"},
                {0xFFFFFFFF, "error pcscf_info_type:-1, it must be IP ADDRESS or FQDN"}};
    for (const auto& row : rows) {
        const auto bad = sip_server(row.type);
        EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(5, &bad), 3u,
                   "info  entry",
                   "call  SelectLANBridge(5)",
                   row.refusal);
    }
    // An unknown bridge is seen before a bad type.
    platform.on("SelectLANBridge").fails(3);
    const auto bad = sip_server(3);
    EXPECT_ROW(zr_nexa_alg_sip_server_info_set_v1(5, &bad), 0x1003u,
               "info  entry",
               "call  SelectLANBridge(5)",
               "error Select LAN Bridge (LAN_ID=5) error 3");
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
        EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(4094, 4, &got, out.at()), 4u,
                   "info  entry",
                   "call  SelectLANBridge(4094)",
                   "call  GetSIPServerInfo()",
                   "info  IPv4: Number of network assigned SIP server info is " + std::to_string(count),
                   "info  Successfully get IPV4 SIP server info.");
        EXPECT_EQ(got, count);
        expect_server(out, 0, 40);
        for (int i = 1; i <= count; ++i) {
            expect_server(out, 108 * static_cast<size_t>(i), i);
        }
        EXPECT_TRUE(out.untouched(108 * static_cast<size_t>(count + 1), kBufferSize));
    }
}

TEST_F(AlgTest, TheConfiguredIpv4ServerIsWrittenWithoutNetworkServers)
{
    OddBuffer out;
    int count = -77;
    platform.on("GetSIPServerInfo").gives("configured", platform_server(7)).gives("network_count", 0);
    EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(0, 4, &count, out.at()), 0u,
               "info  entry",
               "call  SelectLANBridge(0)",
               "call  GetSIPServerInfo()",
               "info  Successfully get IPV4 SIP server info.");
    EXPECT_EQ(count, 0);
    expect_server(out, 0, 7);
    EXPECT_TRUE(out.untouched(108, kBufferSize));
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
        EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(3, 6, &got, out.at()), 8u,
                   "info  entry",
                   "call  SelectLANBridge(3)",
                   "call  GetV6SIPServerInfo()",
                   "info  IPv6: Number of network assigned SIP server info is " + std::to_string(count),
                   "info  Successfully get IPV4 SIP server info.");
        EXPECT_EQ(got, count);
        EXPECT_TRUE(out.untouched(0, 108));
        for (int i = 1; i <= count; ++i) {
            expect_ipv6_server(out, 108 + 120 * static_cast<size_t>(i - 1), i);
        }
        EXPECT_TRUE(out.untouched(108 + 120 * static_cast<size_t>(count), kBufferSize));
    }
}

TEST_F(AlgTest, Ipv6WithoutNetworkServersWritesTheCountOnly)
{
    OddBuffer out;
    int count = -77;
    platform.on("GetV6SIPServerInfo").gives("network_count", 0);
    EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(0, 6, &count, out.at()), 0u,
               "info  entry",
               "call  SelectLANBridge(0)",
               "call  GetV6SIPServerInfo()",
               "info  Successfully get IPV4 SIP server info.");
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(out.untouched(0, kBufferSize));
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
        EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(0, family, nullptr, out.at()), 4u, "info  entry");
        EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(0, family, &count, nullptr), 4u, "info  entry");
        EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(4095, family, &count, nullptr), 4u, "info  entry");
        EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(4095, family, &count, out.at()), 6u, "info  entry");
        EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(65536, family, &count, out.at()), 6u, "info  entry");
    }
    for (const uint32_t family : {0u, 1u, 5u, 10u, 260u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(2, family, &count, out.at()), 3u,
                   "info  entry",
                   "call  SelectLANBridge(2)",
                   "error Domain only suuport ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6");
    }
    platform.on("SelectLANBridge").fails(14);
    EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(2, 5, &count, out.at()), 0x100Eu,
               "info  entry",
               "call  SelectLANBridge(2)",
               "error Select LAN Bridge (LAN_ID=2) error 14");
    EXPECT_EQ(count, -77);
    EXPECT_TRUE(out.untouched(0, kBufferSize));
}

}  // namespace
