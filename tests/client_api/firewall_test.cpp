#include <algorithm>
#include <map>

#include "api_test.h"
#include "firewall_entries.h"
#include "scripted_firewall.h"

namespace {

using FirewallTest = ApiTest;

constexpr const char* kSrc6 = "20010db8000000000000000000000001";
constexpr const char* kDst6 = "fe8000000000000000000000000000ff";

// An AddFireWallEntry line: what is not named was sent as 0.
std::string sent(const std::map<std::string, std::string>& named)
{
    static const std::vector<std::string> names = {
        "direction", "ip",          "mask",  "src4",        "src4_mask", "dst4",      "dst4_mask", "tos",   "tos_mask",
        "src6",      "src6_len",    "dst6",  "dst6_len",    "nat",       "tc",        "tc_mask",   "proto", "transport",
        "sport",     "sport_range", "dport", "dport_range", "icmp_type", "icmp_code", "spi"};
    std::string line;
    size_t used = 0;
    for (const auto& name : names) {
        const bool address = name == "src6" || name == "dst6";
        const auto found = named.find(name);
        if (found != named.end()) ++used;
        line += (line.empty() ? "" : " ") + name + "=" +
                (found != named.end() ? found->second : std::string(address ? 32 : 1, '0'));
    }
    EXPECT_EQ(used, named.size()) << "a name that the line does not have";
    return "call  AddFireWallEntry(" + line + ")";
}

class AddTest : public ApiTest {
protected:
    void expect_added(const zr_nexa_firewall_entry_t& entry, const std::map<std::string, std::string>& named)
    {
        EXPECT_ROW(zr_nexa_firewall_entry_add_v1(3, &entry), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(3)",
                   sent(named));
    }
    void expect_refused(const zr_nexa_firewall_entry_t& entry, const std::string& text)
    {
        EXPECT_ROW(zr_nexa_firewall_entry_add_v1(3, &entry), 4u, "info  entry", "error " + text);
    }
};

TEST_F(AddTest, NullAndForeignVersionsAreRefusedWithoutARecord)
{
    EXPECT_ROW(zr_nexa_firewall_entry_add_v1(1, nullptr), 4u, "info  entry");
    for (const uint32_t version : {0u, 1u, 3u, 5u, 7u, 10u, 0x10004u, 0xFFFFFFFFu}) {
        const auto entry = full_entry(version);
        EXPECT_ROW(zr_nexa_firewall_entry_add_v1(1, &entry), 4u, "info  entry");
    }
}

TEST_F(AddTest, PortsMustStayBelow65536)
{
    auto entry = full_entry(4);
    entry.src_port_valid = 1;
    entry.src_port = 65000;
    entry.src_port_range = 536;
    expect_refused(entry, "port range exception: source port = 65000, port_range = 536");
    entry.src_port_range = 535;
    expect_added(entry, {{"direction", "1"}, {"ip", "4"}});
    entry.src_port = 65535;
    entry.src_port_range = 65535;
    entry.src_port_valid = 0x80;
    expect_refused(entry, "port range exception: source port = 65535, port_range = 65535");
    entry.src_port_valid = 0;
    expect_added(entry, {{"direction", "1"}, {"ip", "4"}});

    entry = full_entry(6);
    entry.dst_port_valid = 1;
    entry.dst_port = 65535;
    entry.dst_port_range = 1;
    expect_refused(entry, "port range exception: Destination port = 65535, port_range = 1 !");
    entry.dst_port_range = 0;
    expect_added(entry, {{"direction", "1"}, {"ip", "6"}, {"nat", "90"}});
}

TEST_F(AddTest, TheSourceIsCheckedFirstAndWhateverTheProtocol)
{
    auto entry = full_entry(4);
    set_flags(&entry, 0xFFF);
    entry.protocol = 7;
    entry.src_port = entry.dst_port = 40000;
    entry.src_port_range = 30000;
    entry.dst_port_range = 30001;
    expect_refused(entry, "port range exception: source port = 40000, port_range = 30000");
    entry.proto_valid = 0;
    entry.src_port_range = 0;
    expect_refused(entry, "port range exception: Destination port = 40000, port_range = 30001 !");
}

TEST_F(AddTest, AnIpv4EntrySendsWhatIsValid)
{
    auto entry = full_entry(4);
    expect_added(entry, {{"direction", "1"}, {"ip", "4"}});
    entry.ipv4_src_valid = 1;
    expect_added(entry,
                 {{"direction", "1"}, {"ip", "4"}, {"mask", "1"}, {"src4", "3232293121"}, {"src4_mask", "4294967040"}});
    entry.ipv4_src_valid = 0;
    entry.ipv4_dst_valid = 2;
    expect_added(entry,
                 {{"direction", "1"}, {"ip", "4"}, {"mask", "2"}, {"dst4", "134744072"}, {"dst4_mask", "4294967295"}});
    entry.ipv4_dst_valid = 0;
    entry.ipv4_tos_valid = 0x80;
    expect_added(entry, {{"direction", "1"}, {"ip", "4"}, {"mask", "8"}, {"tos", "16"}, {"tos_mask", "240"}});
}

TEST_F(AddTest, AnIpv6EntrySendsWhatIsValidAndItsNatFlagAlways)
{
    auto entry = full_entry(6);
    expect_added(entry, {{"direction", "1"}, {"ip", "6"}, {"nat", "90"}});
    entry.ipv6_src_valid = 255;
    expect_added(entry,
                 {{"direction", "1"}, {"ip", "6"}, {"nat", "90"}, {"mask", "1"}, {"src6", kSrc6}, {"src6_len", "64"}});
    entry.ipv6_src_valid = 0;
    entry.ipv6_dst_valid = 1;
    expect_added(entry,
                 {{"direction", "1"}, {"ip", "6"}, {"nat", "90"}, {"mask", "2"}, {"dst6", kDst6}, {"dst6_len", "128"}});
    entry.ipv6_dst_valid = 0;
    entry.ipv6_tc_valid = 1;
    expect_added(entry,
                 {{"direction", "1"}, {"ip", "6"}, {"nat", "90"}, {"mask", "8"}, {"tc", "32"}, {"tc_mask", "224"}});
}

TEST_F(AddTest, EachFamilyIgnoresTheOthersFlags)
{
    auto entry = full_entry(4);
    set_flags(&entry, 0xFFF);
    entry.proto_valid = 0;
    expect_added(entry, {{"direction", "1"},
                         {"ip", "4"},
                         {"mask", "11"},
                         {"src4", "3232293121"},
                         {"src4_mask", "4294967040"},
                         {"dst4", "134744072"},
                         {"dst4_mask", "4294967295"},
                         {"tos", "16"},
                         {"tos_mask", "240"}});
    entry.ip_version = 6;
    expect_added(entry, {{"direction", "1"},
                         {"ip", "6"},
                         {"mask", "11"},
                         {"src6", kSrc6},
                         {"src6_len", "64"},
                         {"dst6", kDst6},
                         {"dst6_len", "128"},
                         {"nat", "90"},
                         {"tc", "32"},
                         {"tc_mask", "224"}});
}

TEST_F(AddTest, OnlyDirections1And2AreSent)
{
    auto entry = full_entry(4);
    for (const uint32_t direction : {0u, 3u, 255u, 0x10001u, 0xFFFFFFFFu}) {
        entry.direction = direction;
        expect_added(entry, {{"ip", "4"}});
    }
    entry.direction = 2;
    expect_added(entry, {{"direction", "2"}, {"ip", "4"}});
}

TEST_F(AddTest, EveryProtocolCodeHasItsValueAndItsTransportFields)
{
    const std::map<std::string, std::string> ports = {
        {"transport", "3"}, {"sport", "1000"}, {"sport_range", "10"}, {"dport", "80"}, {"dport_range", "20"}};
    const std::map<std::string, std::string> icmp = {{"transport", "3"}, {"icmp_type", "8"}, {"icmp_code", "3"}};
    const std::map<std::string, std::string> spi = {{"transport", "1"}, {"spi", "3735928559"}};
    const std::map<std::string, std::string> nothing;
    struct Row {
        uint32_t code;
        const char* ipv4;
        const char* ipv6;
        std::map<std::string, std::string> transport;
    };
    const Row rows[] = {
        {0, "0", "0", nothing},          {1, "0", "0", nothing},  {2, "6", "6", ports},
        {3, "17", "17", ports},          {4, "1", "0", icmp},     {5, "0", "58", icmp},
        {6, "253", "253", ports},        {7, "50", "50", spi},    {8, "0", "0", nothing},
        {17, "0", "0", nothing},         {58, "0", "0", nothing}, {0x102, "0", "0", nothing},
        {0xFFFFFFFF, "0", "0", nothing},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        for (const uint32_t version : {4u, 6u}) {
            auto entry = full_entry(version);
            entry.proto_valid = entry.src_port_valid = entry.dst_port_valid = 1;
            entry.icmp_type_valid = entry.icmp_code_valid = entry.esp_spi_valid = 1;
            entry.protocol = row.code;
            auto expected = row.transport;
            expected["direction"] = "1";
            expected["ip"] = std::to_string(version);
            expected["mask"] = "4";
            expected["proto"] = version == 4 ? row.ipv4 : row.ipv6;
            if (version == 6) expected["nat"] = "90";
            expect_added(entry, expected);
        }
    }
}

TEST_F(AddTest, TransportFieldsGoOneByOne)
{
    auto entry = full_entry(4);
    entry.proto_valid = 1;
    const auto base = [](const char* proto) {
        return std::map<std::string, std::string>{{"direction", "1"}, {"ip", "4"}, {"mask", "4"}, {"proto", proto}};
    };
    auto expected = base("6");
    expect_added(entry, expected);
    entry.src_port_valid = 1;
    expected.insert({{"transport", "1"}, {"sport", "1000"}, {"sport_range", "10"}});
    expect_added(entry, expected);
    entry.src_port_valid = 0;
    entry.dst_port_valid = 1;
    expected = base("6");
    expected.insert({{"transport", "2"}, {"dport", "80"}, {"dport_range", "20"}});
    expect_added(entry, expected);

    entry.protocol = 4;
    entry.icmp_type_valid = 1;
    expected = base("1");
    expected.insert({{"transport", "1"}, {"icmp_type", "8"}});
    expect_added(entry, expected);
    entry.icmp_type_valid = 0;
    entry.icmp_code_valid = 1;
    expected = base("1");
    expected.insert({{"transport", "2"}, {"icmp_code", "3"}});
    expect_added(entry, expected);

    entry.protocol = 7;
    expect_added(entry, base("50"));
}

TEST_F(AddTest, WithoutAProtocolNoPortsAreSent)
{
    auto entry = full_entry(4);
    entry.src_port_valid = entry.dst_port_valid = 1;
    expect_added(entry, {{"direction", "1"}, {"ip", "4"}});
}

TEST_F(AddTest, AnyProfileIsHandedOn)
{
    const auto entry = full_entry(4);
    EXPECT_ROW(zr_nexa_firewall_entry_add_v1(0, &entry), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(0)",
               sent({{"direction", "1"}, {"ip", "4"}}));
}

class GetTest : public ApiTest {
protected:
    zr_nexa_firewall_entry_list_t list = poisoned<zr_nexa_firewall_entry_list_t>();

    void given_handles(const std::vector<uint32_t>& handles)
    {
        platform.on("GetFireWallHandlesList")
            .gives("count", static_cast<int32_t>(handles.size()))
            .gives_array("handle", handles.data(), handles.size());
    }
    // Reads one entry that the platform reports so.
    zr_nexa_firewall_entry_t read_back(const qcmap_firewall_filter& filter, uint32_t direction)
    {
        list = poisoned<zr_nexa_firewall_entry_list_t>();
        given_handles({5});
        platform.on("GetFireWallEntry").gives("filter", filter).gives("direction", direction);
        EXPECT_EQ(zr_nexa_firewall_entry_get_v1(1, 4, &list), 0u);
        platform.forget();
        return list.entry[0];
    }
};

TEST_F(GetTest, NullIsRefused)
{
    EXPECT_ROW(zr_nexa_firewall_entry_get_v1(1, 4, nullptr), 4u, "info  entry");
}

TEST_F(GetTest, TheFamilyIsAskedForWhenItIsOne)
{
    given_handles({5});
    struct Row {
        uint32_t family;
        std::string asked;
    };
    for (const Row& row : {Row{4, "4"}, {6, "6"}, {5, "0"}, {0, "0"}, {10, "0"}, {0x10004, "0"}}) {
        EXPECT_ROW(zr_nexa_firewall_entry_get_v1(0, row.family, &list), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(0)",
                   "call  GetFireWallHandlesList(ip_family=" + row.asked + ")",
                   "call  GetFireWallEntry(ip_family=" + row.asked + " handle=5 clear=1)");
    }
}

TEST_F(GetTest, EveryEntryIsAskedForInOrder)
{
    given_handles({30, 10, 20});
    qcmap_firewall_filter filter = {};
    filter.ip_version = 4;
    // Whatever the platform writes into its own records does not change what is asked.
    platform.on("GetFireWallHandlesList").gives("ip_family", uint32_t{6});
    platform.on("GetFireWallEntry").gives("filter", filter).gives("handle", uint32_t{99});
    platform.on("GetFireWallEntry", 2).gives("filter", filter).gives("direction", uint32_t{2});
    EXPECT_ROW(zr_nexa_firewall_entry_get_v1(7, 4, &list), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(7)",
               "call  GetFireWallHandlesList(ip_family=4)",
               "call  GetFireWallEntry(ip_family=4 handle=30 clear=1)",
               "call  GetFireWallEntry(ip_family=4 handle=10 clear=1)",
               "call  GetFireWallEntry(ip_family=4 handle=20 clear=1)");
    EXPECT_EQ(list.count, 3u);
    EXPECT_EQ(list.handle[0], 30u);
    EXPECT_EQ(list.handle[1], 10u);
    EXPECT_EQ(list.handle[2], 20u);
    EXPECT_TRUE(is_poisoned(list.handle[3]));
    EXPECT_EQ(list.entry[0].direction, 0xA5A5A5A5u);
    EXPECT_EQ(list.entry[1].direction, 2u);
    EXPECT_TRUE(is_poisoned(list.entry[3]));
}

TEST_F(GetTest, CountsAreClamped)
{
    for (const int32_t count : {0, -1, -2147483647 - 1}) {
        list = poisoned<zr_nexa_firewall_entry_list_t>();
        platform.on("GetFireWallHandlesList").gives("count", count).succeeds(50);
        EXPECT_ROW(zr_nexa_firewall_entry_get_v1(1, 6, &list), 50u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(1)",
                   "call  GetFireWallHandlesList(ip_family=6)");
        EXPECT_EQ(list.count, 0u);
        EXPECT_TRUE(is_poisoned(list.handle[0]));
        EXPECT_TRUE(is_poisoned(list.entry[0]));
    }
    platform.on("GetFireWallHandlesList").succeeds();
    for (const int32_t count : {50, 51, 2147483647}) {
        list = poisoned<zr_nexa_firewall_entry_list_t>();
        platform.on("GetFireWallHandlesList").gives("count", count);
        EXPECT_EQ(zr_nexa_firewall_entry_get_v1(1, 6, &list), 0u);
        EXPECT_EQ(list.count, 50u);
        EXPECT_EQ(platform.transcript.size(), 53u);
        platform.forget();
    }
}

TEST_F(GetTest, AFailedEntryLeavesTheOnesBeforeItFilled)
{
    given_handles({30, 10, 20});
    qcmap_firewall_filter filter = {};
    filter.ip_version = 6;
    platform.on("GetFireWallEntry").gives("filter", filter);
    platform.on("GetFireWallEntry", 2).gives("filter", filter).fails(25);
    EXPECT_ROW(zr_nexa_firewall_entry_get_v1(7, 6, &list), 0x3019u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(7)",
               "call  GetFireWallHandlesList(ip_family=6)",
               "call  GetFireWallEntry(ip_family=6 handle=30 clear=1)",
               "call  GetFireWallEntry(ip_family=6 handle=10 clear=1)",
               "error Get FireWall Entry (wwan_handle=7 index=1) error 25");
    EXPECT_EQ(list.count, 3u);
    EXPECT_EQ(list.handle[0], 30u);
    EXPECT_EQ(list.entry[0].ip_version, 6u);
    EXPECT_TRUE(is_poisoned(list.handle[1]));
    EXPECT_TRUE(is_poisoned(list.entry[1]));
}

TEST_F(GetTest, EveryFlagIsWrittenAndNoValueWithoutOne)
{
    auto expected = poisoned<zr_nexa_firewall_entry_t>();
    set_flags(&expected, 0);
    auto filter = poisoned<qcmap_firewall_filter>();
    filter.ip_field_mask = 0;
    filter.transport.field_mask = 0;
    for (const uint32_t version : {4u, 6u, 0u, 5u}) {
        filter.ip_version = version;
        filter.ipv6.nat_flag = 0x77;
        auto wanted = expected;
        if (version == 4 || version == 6) wanted.ip_version = version;
        if (version == 6) wanted.ipv6_nat_flag = 0x77;
        const auto entry = read_back(filter, 0);
        EXPECT_EQ(std::memcmp(&entry, &wanted, sizeof(entry)), 0) << version;
    }
}

TEST_F(GetTest, EveryProtocolValueHasItsCode)
{
    const std::map<int, uint32_t> codes = {{6, 2}, {17, 3}, {1, 4}, {58, 5}, {253, 6}, {50, 7}};
    for (const uint32_t version : {4u, 6u}) {
        for (int value = 0; value < 256; ++value) {
            qcmap_firewall_filter filter = {};
            filter.ip_version = version;
            filter.ip_field_mask = 4;
            filter.next_header = static_cast<uint8_t>(value);
            filter.transport = {3, 1000, 10, 80, 20, 8, 3, 0xDEADBEEF};
            const auto entry = read_back(filter, 3);
            const auto found = codes.find(value);
            const uint32_t code = found == codes.end() ? 1 : found->second;
            ASSERT_EQ(entry.proto_valid, 1) << value;
            ASSERT_EQ(entry.protocol, code) << value;
            const bool ports = code == 2 || code == 3 || code == 6;
            const bool icmp = code == 4 || code == 5;
            ASSERT_EQ(entry.src_port_valid, ports ? 1 : 0) << value;
            ASSERT_EQ(entry.dst_port_valid, ports ? 1 : 0) << value;
            ASSERT_EQ(entry.icmp_type_valid, icmp ? 1 : 0) << value;
            ASSERT_EQ(entry.icmp_code_valid, icmp ? 1 : 0) << value;
            ASSERT_EQ(entry.esp_spi_valid, code == 7 ? 1 : 0) << value;
            ASSERT_EQ(entry.src_port, ports ? 1000 : 0xA5A5);
            ASSERT_EQ(entry.src_port_range, ports ? 10 : 0xA5A5);
            ASSERT_EQ(entry.dst_port, ports ? 80 : 0xA5A5);
            ASSERT_EQ(entry.dst_port_range, ports ? 20 : 0xA5A5);
            ASSERT_EQ(entry.icmp_type, icmp ? 8 : 0xA5);
            ASSERT_EQ(entry.icmp_code, icmp ? 3 : 0xA5);
            ASSERT_EQ(entry.esp_spi, code == 7 ? 0xDEADBEEF : 0xA5A5A5A5);
            ASSERT_EQ(entry.direction, 0xA5A5A5A5);
        }
    }
}

TEST_F(GetTest, HeaderFieldsAreReadByTheirBits)
{
    qcmap_firewall_filter filter = {};
    filter.ip_version = 4;
    filter.ip_field_mask = 1 | 2 | 8;
    filter.ipv4 = {0xC0A8E101, 0xFFFFFF00, 0x08080808, 0xFFFFFFFF, 0x10, 0xF0};
    auto entry = read_back(filter, 1);
    EXPECT_EQ(entry.direction, 1u);
    EXPECT_EQ(entry.ip_version, 4u);
    EXPECT_EQ(entry.ipv4_src_valid, 1);
    EXPECT_EQ(entry.ipv4_src_addr, 0xC0A8E101u);
    EXPECT_EQ(entry.ipv4_src_mask, 0xFFFFFF00u);
    EXPECT_EQ(entry.ipv4_dst_valid, 1);
    EXPECT_EQ(entry.ipv4_dst_addr, 0x08080808u);
    EXPECT_EQ(entry.ipv4_dst_mask, 0xFFFFFFFFu);
    EXPECT_EQ(entry.ipv4_tos_valid, 1);
    EXPECT_EQ(entry.ipv4_tos, 0x10);
    EXPECT_EQ(entry.ipv4_tos_mask, 0xF0);
    EXPECT_EQ(entry.ipv6_src_valid, 0);
    EXPECT_EQ(entry.ipv6_dst_valid, 0);
    EXPECT_EQ(entry.ipv6_tc_valid, 0);
    EXPECT_EQ(entry.proto_valid, 0);

    filter.ip_version = 6;
    std::memcpy(filter.ipv6.src_addr, kSrc6Bytes, 16);
    filter.ipv6.src_prefix_len = 64;
    std::memcpy(filter.ipv6.dst_addr, kDst6Bytes, 16);
    filter.ipv6.dst_prefix_len = 128;
    filter.ipv6.nat_flag = 1;
    filter.ipv6.traffic_class = 0x20;
    filter.ipv6.traffic_class_mask = 0xE0;
    entry = read_back(filter, 2);
    EXPECT_EQ(entry.direction, 2u);
    EXPECT_EQ(entry.ip_version, 6u);
    EXPECT_EQ(entry.ipv4_src_valid, 0);
    EXPECT_EQ(entry.ipv4_dst_valid, 0);
    EXPECT_EQ(entry.ipv4_tos_valid, 0);
    EXPECT_EQ(entry.ipv6_src_valid, 1);
    EXPECT_EQ(std::memcmp(entry.ipv6_src_addr, kSrc6Bytes, 16), 0);
    EXPECT_EQ(entry.ipv6_src_prefix_len, 64);
    EXPECT_EQ(entry.ipv6_dst_valid, 1);
    EXPECT_EQ(std::memcmp(entry.ipv6_dst_addr, kDst6Bytes, 16), 0);
    EXPECT_EQ(entry.ipv6_dst_prefix_len, 128);
    EXPECT_EQ(entry.ipv6_nat_flag, 1);
    EXPECT_EQ(entry.ipv6_tc_valid, 1);
    EXPECT_EQ(entry.ipv6_tc, 0x20);
    EXPECT_EQ(entry.ipv6_tc_mask, 0xE0);
}

// Every combination of flags, family and protocol code comes back as it went in, as far as the platform can say it.
TEST_F(GetTest, WhatWasAddedIsReadBack)
{
    given_handles({1});
    auto& answer = platform.on("GetFireWallEntry");
    for (const uint32_t version : {4u, 6u}) {
        for (uint32_t code = 0; code <= 8; ++code) {
            for (uint32_t flags = 0; flags < 4096; ++flags) {
                auto entry = full_entry(version);
                entry.direction = flags % 4;
                entry.protocol = code;
                set_flags(&entry, flags);
                ASSERT_EQ(zr_nexa_firewall_entry_add_v1(1, &entry), 0u);

                answer.gives("filter", scripted::added_firewall_entry.filter)
                    .gives("direction", scripted::added_firewall_entry.direction);
                std::memset(&list, 0, sizeof(list));
                ASSERT_EQ(zr_nexa_firewall_entry_get_v1(1, version, &list), 0u);
                platform.forget();
                const auto expected = read_back_of(entry);
                ASSERT_EQ(std::memcmp(&list.entry[0], &expected, sizeof(expected)), 0)
                    << "version " << version << " code " << code << " flags " << flags;
            }
        }
    }
}

TEST_F(FirewallTest, DelRefusesNegativeHandlesOnly)
{
    EXPECT_ROW(zr_nexa_firewall_entry_del_v1(1, -1), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_firewall_entry_del_v1(1, -2147483647 - 1), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_firewall_entry_del_v1(0, 0), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(0)",
               "call  DeleteFireWallEntry(0)",
               "info  Delete Firewall entry success, wwan_handle=0 firewall_entry_handle=0");
    EXPECT_ROW(zr_nexa_firewall_entry_del_v1(2, 2147483647), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(2)",
               "call  DeleteFireWallEntry(2147483647)",
               "info  Delete Firewall entry success, wwan_handle=2 firewall_entry_handle=2147483647");
}

TEST_F(FirewallTest, ConfigSetChecksThePolicyOnlyWhenTheFirewallIsOn)
{
    struct Row {
        uint32_t enable;
        uint32_t pkts;
    };
    for (const Row& row : {Row{0, 0}, {0, 1}, {0, 5}, {0, 0xFFFFFFFF}, {1, 0}, {1, 1}}) {
        const std::string enable = std::to_string(row.enable);
        EXPECT_ROW(zr_nexa_firewall_config_set_v1(0, row.enable, row.pkts), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(0)",
                   "call  SetFirewall(" + enable + " " + std::to_string(row.pkts) + ")",
                   "info  Set Firewall Config success, wwan_handle=0 enable_firewall=" + enable +
                       " pkts_allowed=" + std::to_string(static_cast<int>(row.pkts)));
    }
    for (const Row& row : {Row{1, 2}, {1, 256}, {1, 0xFFFFFFFF}, {2, 0}, {2, 5}, {256, 0}, {0xFFFFFFFF, 1}}) {
        EXPECT_ROW(zr_nexa_firewall_config_set_v1(0, row.enable, row.pkts), 4u, "info  entry");
    }
}

TEST_F(FirewallTest, ConfigGetWritesBothBytes)
{
    uint8_t enable = 0xA5;
    uint8_t pkts = 0xA5;
    EXPECT_ROW(zr_nexa_firewall_config_get_v1(1, nullptr, &pkts), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_firewall_config_get_v1(1, &enable, nullptr), 4u, "info  entry");
    EXPECT_EQ(enable, 0xA5);
    EXPECT_EQ(pkts, 0xA5);
    platform.on("GetFirewall").gives("enable_firewall", uint8_t{1}).gives("pkts_allowed", uint8_t{200});
    EXPECT_ROW(zr_nexa_firewall_config_get_v1(0, &enable, &pkts), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(0)",
               "call  GetFirewall()",
               "info  Get Firewall Config enable_firewall=1, pkts_allowed=200");
    EXPECT_EQ(enable, 1);
    EXPECT_EQ(pkts, 200);
}

class HwFilterTest : public ApiTest {
protected:
    zr_nexa_firewall_hwfilter_cfg_t config = numbered(1, 1);

    // MACs 10:11:..:15, 20:21:.. and interfaces {101..105}, {201..205}, every element filled.
    static zr_nexa_firewall_hwfilter_cfg_t numbered(uint32_t macs, uint32_t ifaces)
    {
        zr_nexa_firewall_hwfilter_cfg_t filter = {};
        filter.num_of_macs = macs;
        filter.num_of_ifaces = ifaces;
        for (uint32_t i = 0; i < 16; ++i) {
            for (uint32_t j = 0; j < 6; ++j) {
                filter.mac_addr[i][j] = static_cast<uint8_t>((i + 1) * 16 + j);
            }
        }
        for (uint32_t i = 0; i < 8; ++i) {
            for (uint32_t j = 0; j < 5; ++j) {
                filter.iface[i][j] = (i + 1) * 100 + j + 1;
            }
        }
        return filter;
    }
    static std::string repeated(const std::string& text, int times)
    {
        std::string all;
        for (int i = 0; i < times; ++i) {
            all += text;
        }
        return all;
    }
};

TEST_F(HwFilterTest, SetChecksItsArgumentsInOrder)
{
    EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_set_v1(1, nullptr), 4u, "info  entry");
    // A bad interface count is logged; whatever is checked before it is not.
    for (const uint32_t ifaces : {0u, 9u, 256u, 0xFFFFFFFFu}) {
        config = numbered(1, ifaces);
        EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_set_v1(2, &config), 4u,
                   "info  entry",
                   "error Invalid number of iface:" + std::to_string(static_cast<int>(ifaces)));
    }
    for (const uint32_t macs : {0u, 17u, 256u, 0xFFFFFFFFu}) {
        config = numbered(macs, 9);
        EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_set_v1(0, &config), 4u, "info  entry");
    }
    for (const uint32_t state : {3u, 256u, 0xFFFFFFFFu}) {
        config = numbered(1, 9);
        EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_set_v1(state, &config), 4u, "info  entry");
    }
}

TEST_F(HwFilterTest, SetSendsTheCountedElements)
{
    const std::string no_mac = " mac=000000000000";
    config = numbered(2, 1);
    for (const uint32_t state : {0u, 1u, 2u}) {
        EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_set_v1(state, &config), 0u,
                   "info  entry",
                   "call  SetHWMACFilteringState(state=" + std::to_string(state) +
                       " macs=2 mac=101112131415 mac=202122232425" + repeated(no_mac, 14) +
                       " ifaces=1 101 102 103 104 105" + repeated(" 0", 35) + ")");
    }
    config = numbered(1, 2);
    EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_set_v1(1, &config), 0u,
               "info  entry",
               "call  SetHWMACFilteringState(state=1 macs=1 mac=101112131415" + repeated(no_mac, 15) +
                   " ifaces=2 101 102 103 104 105 201 202 203 204 205" + repeated(" 0", 30) + ")");
    config = numbered(16, 8);
    EXPECT_EQ(zr_nexa_firewall_hwfiltering_state_set_v1(1, &config), 0u);
    ASSERT_EQ(platform.transcript.size(), 2u);
    EXPECT_THAT(platform.transcript[1].text, testing::HasSubstr(" mac=f0f1f2f3f4f5 mac=000102030405 ifaces=8 101 "));
    EXPECT_THAT(platform.transcript[1].text, testing::EndsWith(" 801 802 803 804 805)"));
}

TEST_F(HwFilterTest, GetRefusesNull)
{
    auto state = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_get_v1(nullptr, &config), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_get_v1(&state, nullptr), 4u, "info  entry");
    EXPECT_TRUE(is_poisoned(state));
}

TEST_F(HwFilterTest, GetWritesTheCountedElements)
{
    qcmap_hw_filter_config given = {};
    given.mac_count = 2;
    std::memcpy(given.mac[0], "\x00\x11\x22\x33\x44\x55", 6);
    std::memcpy(given.mac[1], "\xAA\xBB\xCC\xDD\xEE\xFF", 6);
    given.iface_count = 1;
    for (uint32_t j = 0; j < 5; ++j) {
        given.iface[0][j] = 0x80000000u + j;
    }
    platform.on("GetHWMACFilteringState").gives("config", given).gives("state", QCMAP_MSGR_CONFIG_STATE_LIST_V01);
    auto state = poisoned<uint32_t>();
    config = poisoned<zr_nexa_firewall_hwfilter_cfg_t>();
    EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_get_v1(&state, &config), 0u,
               "info  entry",
               "call  GetHWMACFilteringState()");
    EXPECT_EQ(state, 2u);
    EXPECT_EQ(config.num_of_macs, 2u);
    EXPECT_EQ(std::memcmp(config.mac_addr[0], "\x00\x11\x22\x33\x44\x55", 6), 0);
    EXPECT_EQ(std::memcmp(config.mac_addr[1], "\xAA\xBB\xCC\xDD\xEE\xFF", 6), 0);
    EXPECT_TRUE(is_poisoned(config.mac_addr[2]));
    EXPECT_EQ(config.num_of_ifaces, 1u);
    EXPECT_EQ(config.iface[0][0], 0x80000000u);
    EXPECT_EQ(config.iface[0][4], 0x80000004u);
    EXPECT_TRUE(is_poisoned(config.iface[1]));
}

TEST_F(HwFilterTest, GetClampsCountsAndHandsTheStateOnAsItIs)
{
    qcmap_hw_filter_config given = {};
    given.mac_count = 17;
    given.iface_count = 0xFFFFFFFF;
    platform.on("GetHWMACFilteringState")
        .gives("config", given)
        .gives("state", static_cast<qcmap_msgr_config_state_enum_v01>(77));
    auto state = poisoned<uint32_t>();
    config = poisoned<zr_nexa_firewall_hwfilter_cfg_t>();
    EXPECT_EQ(zr_nexa_firewall_hwfiltering_state_get_v1(&state, &config), 0u);
    EXPECT_EQ(state, 77u);
    EXPECT_EQ(config.num_of_macs, 16u);
    EXPECT_EQ(config.num_of_ifaces, 8u);
    EXPECT_EQ(config.mac_addr[15][5], 0);
    EXPECT_EQ(config.iface[7][4], 0u);

    config = poisoned<zr_nexa_firewall_hwfilter_cfg_t>();
    given.mac_count = 0;
    given.iface_count = 0;
    platform.on("GetHWMACFilteringState").gives("config", given);
    EXPECT_EQ(zr_nexa_firewall_hwfiltering_state_get_v1(&state, &config), 0u);
    EXPECT_EQ(config.num_of_macs, 0u);
    EXPECT_EQ(config.num_of_ifaces, 0u);
    EXPECT_TRUE(is_poisoned(config.mac_addr));
    EXPECT_TRUE(is_poisoned(config.iface));
}

}  // namespace
