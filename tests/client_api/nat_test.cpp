#include "api_test.h"

namespace {

constexpr uint32_t kHost = 0xC0A8E132;  // 192.168.225.50; 3232293170, and -1062674126 as %d shows it

using NatTest = ApiTest;

// Low 32 bits of an address, as a record shows them.
std::string where(const void* pointer)
{
    return std::to_string(static_cast<int32_t>(reinterpret_cast<uintptr_t>(pointer)));
}

// ---- NAT type ----

TEST_F(NatTest, TypeSetPassesEachType)
{
    for (const uint32_t type : {0u, 1u, 2u, 3u}) {
        const std::string shown = std::to_string(type);
        EXPECT_ROW(zr_nexa_nat_type_set_v1(50, type), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(50)",
                   "call  SetNatType(" + shown + ")",
                   "info  Set Nat Type success : wwan_handle=50 set_nat_type=" + shown);
    }
}

TEST_F(NatTest, TypeSetLooksAtTheHandleBeforeTheType)
{
    EXPECT_ROW(zr_nexa_nat_type_set_v1(0, 4), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_nat_type_set_v1(0, 1), 4u, "info  entry");
}

TEST_F(NatTest, TypeSetLooksAtTheTypeBeforeTheProfileIsSelected)
{
    for (const uint32_t type : {4u, 5u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_nat_type_set_v1(7, type), 4u,
                   "info  entry",
                   "error Invalid NAT Type : " + std::to_string(static_cast<int32_t>(type)) + ", wwan_handle : 7");
    }
}

TEST_F(NatTest, HandlesAreNotCheckedBeyondZero)
{
    EXPECT_ROW(zr_nexa_nat_type_set_v1(0xFFFFFFFF, 1), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(4294967295)",
               "call  SetNatType(1)",
               "info  Set Nat Type success : wwan_handle=-1 set_nat_type=1");
}

TEST_F(NatTest, TypeGetGivesEachType)
{
    for (const int type : {0, 1, 2, 3}) {
        uint8_t seen = 0xA5;
        platform.on("GetNatType").gives("nat_type", static_cast<qcmap_msgr_nat_enum_v01>(type));
        EXPECT_ROW(zr_nexa_nat_type_get_v1(2, &seen), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(2)",
                   "call  GetNatType()",
                   "info  Get Nat Type (wwan_handle=2) " + std::to_string(type) + ", error 0");
        EXPECT_EQ(seen, type);
    }
}

TEST_F(NatTest, TypeGetLeavesTheOutputWhenTheTypeIsNoneOfTheFour)
{
    for (const int type : {4, 5, 256, 259, -1, 2147483647}) {
        uint8_t seen = 0xA5;
        platform.on("GetNatType").gives("nat_type", static_cast<qcmap_msgr_nat_enum_v01>(type)).succeeds(17);
        EXPECT_ROW(zr_nexa_nat_type_get_v1(2, &seen), 17u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(2)",
                   "call  GetNatType()",
                   "info  Get Nat Type (wwan_handle=2) " + std::to_string(type) + ", error 17");
        EXPECT_EQ(seen, 0xA5);
    }
}

TEST_F(NatTest, TypeGetRefusesHandleZeroAndNull)
{
    uint8_t seen = 0xA5;
    EXPECT_ROW(zr_nexa_nat_type_get_v1(0, &seen), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_nat_type_get_v1(1, nullptr), 4u, "info  entry");
    EXPECT_EQ(seen, 0xA5);
}

// ---- DMZ ----

TEST_F(NatTest, DmzSetAddsTheHost)
{
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(1, 1, kHost), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(1)",
               "call  AddDMZ(3232293170)",
               "info  Add DMZ IP success : wwan_handle=1 dmz_ip=-1062674126");
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 0xFFFFFFFF), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(1)",
               "call  AddDMZ(4294967295)",
               "info  Add DMZ IP success : wwan_handle=1 dmz_ip=-1");
}

TEST_F(NatTest, DmzSetFindsAddressZeroOnlyBehindTheSelection)
{
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 0), 10u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(1)");
    platform.on("SetWWANProfileHandlePreference").fails(9);
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 0), 0x1009u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(1)",
               "error Set WWAN Profile Handle Preference (wwan_handle=1) error 9");
}

TEST_F(NatTest, DmzSetDeletesWithoutLookingAtTheAddress)
{
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(4, 0, 0), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(4)",
               "call  DeleteDMZ()",
               "info  Delete DMZ IP success : wwan_handle=4 dmz_ip=0");
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(4, 0, 0x01020304), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(4)",
               "call  DeleteDMZ()",
               "info  Delete DMZ IP success : wwan_handle=4 dmz_ip=16909060");
}

TEST_F(NatTest, DmzSetRefusesHandleZeroAndOtherSwitches)
{
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(0, 1, kHost), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(0, 0, 0), 4u, "info  entry");
    for (const uint32_t enable : {2u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_nat_ipv4dmz_set_v1(1, enable, kHost), 4u, "info  entry");
    }
}

TEST_F(NatTest, DmzGetGivesTheHostAndLogsWhereItWasWritten)
{
    for (const uint32_t ip : {kHost, 1u, 0xFFFFFFFFu, 0u}) {
        uint8_t enable = 0xA5;
        uint32_t dmz_ip = 0xA5A5A5A5;
        platform.on("GetDMZ").gives("ip", ip);
        EXPECT_ROW(zr_nexa_nat_ipv4dmz_get_v1(1, &enable, &dmz_ip), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(1)",
                   "call  GetDMZ()",
                   "info  Get DMZ IP success : wwan_handle=1 dmz_enable=" + where(&enable) +
                       " dmz_ip=" + where(&dmz_ip));
        EXPECT_EQ(enable, ip == 0 ? 0 : 1);
        EXPECT_EQ(dmz_ip, ip);
    }
}

TEST_F(NatTest, DmzGetRefusesHandleZeroAndNulls)
{
    uint8_t enable = 0xA5;
    uint32_t dmz_ip = 0xA5A5A5A5;
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_get_v1(0, &enable, &dmz_ip), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_get_v1(1, nullptr, &dmz_ip), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_get_v1(1, &enable, nullptr), 4u, "info  entry");
    EXPECT_EQ(enable, 0xA5);
    EXPECT_EQ(dmz_ip, 0xA5A5A5A5u);
}

// ---- port mapping ----

struct ProtocolRow {
    uint8_t code;
    int platform;
    bool has_ports;
};
constexpr ProtocolRow kProtocolRows[] = {{2, 6, true}, {3, 17, true}, {4, 1, false}, {6, 253, true}, {7, 50, false}};

// The two twins differ in name, method and word of their records only.
struct Twin {
    uint32_t (*call)(uint32_t, uint32_t, uint16_t, uint16_t, uint8_t);
    std::string function;
    std::string method;
    std::string word;
};
const std::vector<Twin>& twins()
{
    static const std::vector<Twin> both = {
        {zr_nexa_nat_ipv4portmapping_add_v1, "zr_nexa_nat_ipv4portmapping_add_v1", "AddStaticNatEntry", "Add"},
        {zr_nexa_nat_ipv4portmapping_del_v1, "zr_nexa_nat_ipv4portmapping_del_v1", "DeleteStaticNatEntry", "Delete"},
    };
    return both;
}

TEST_F(NatTest, PortMappingTranslatesEveryProtocol)
{
    for (const Twin& twin : twins()) {
        for (const ProtocolRow& row : kProtocolRows) {
            const std::string private_port = row.has_ports ? "80" : "0";
            const std::string global_port = row.has_ports ? "65535" : "0";
            const std::string protocol = std::to_string(row.platform);
            EXPECT_ROW_OF(twin.function, twin.call(9, kHost, 80, 65535, row.code), 0u,
                          "info  entry",
                          "call  SetWWANProfileHandlePreference(9)",
                          "call  " + twin.method + "(private_ip=3232293170 private_port=" + private_port +
                              " global_port=" + global_port + " protocol=" + protocol + ")",
                          "info  " + twin.word + " Static Nat Entry success : wwan_handle=9 private_ip=-1062674126" +
                              " private_port=" + private_port + " global_port=" + global_port,
                          "info  " + twin.word + " Static Nat Entry success : wwan_handle=9 protocol=" + protocol);
        }
    }
}

TEST_F(NatTest, PortMappingRefusesEveryOtherProtocol)
{
    for (const Twin& twin : twins()) {
        for (int code = 0; code < 256; ++code) {
            if (code == 2 || code == 3 || code == 4 || code == 6 || code == 7) continue;
            SCOPED_TRACE(code);
            EXPECT_ROW_OF(twin.function, twin.call(9, kHost, 80, 443, static_cast<uint8_t>(code)), 12u, "info  entry");
        }
    }
}

TEST_F(NatTest, PortMappingFindsAMissingPortBeforeABadProtocol)
{
    for (const Twin& twin : twins()) {
        for (const uint8_t code : std::vector<uint8_t>{0, 1, 2, 3, 5, 6, 8, 50, 255}) {
            SCOPED_TRACE(int{code});
            EXPECT_ROW_OF(twin.function, twin.call(9, kHost, 0, 443, code), 4u, "info  entry");
            EXPECT_ROW_OF(twin.function, twin.call(9, kHost, 80, 0, code), 4u, "info  entry");
            EXPECT_ROW_OF(twin.function, twin.call(9, kHost, 0, 0, code), 4u, "info  entry");
        }
    }
}

TEST_F(NatTest, PortMappingWithoutPortsTakesAnyPorts)
{
    const struct {
        uint16_t private_port, global_port;
        uint8_t code;
        std::string protocol;
    } rows[] = {{0, 0, 4, "1"},  {0, 443, 4, "1"},  {80, 0, 4, "1"},
                {0, 0, 7, "50"}, {0, 443, 7, "50"}, {80, 0, 7, "50"}};
    for (const Twin& twin : twins()) {
        for (const auto& row : rows) {
            EXPECT_ROW_OF(twin.function, twin.call(1, 1, row.private_port, row.global_port, row.code), 0u,
                          "info  entry",
                          "call  SetWWANProfileHandlePreference(1)",
                          "call  " + twin.method + "(private_ip=1 private_port=0 global_port=0 protocol=" +
                              row.protocol + ")",
                          "info  " + twin.word +
                              " Static Nat Entry success : wwan_handle=1 private_ip=1 private_port=0 global_port=0",
                          "info  " + twin.word + " Static Nat Entry success : wwan_handle=1 protocol=" + row.protocol);
        }
    }
}

TEST_F(NatTest, PortMappingLooksAtHandleAndAddressFirst)
{
    for (const Twin& twin : twins()) {
        for (const uint8_t code : std::vector<uint8_t>{5, 2, 4}) {
            EXPECT_ROW_OF(twin.function, twin.call(0, kHost, 80, 443, code), 4u, "info  entry");
            EXPECT_ROW_OF(twin.function, twin.call(9, 0, 80, 443, code), 4u, "info  entry");
            EXPECT_ROW_OF(twin.function, twin.call(9, 0xFFFFFFFF, 80, 443, code), 4u, "info  entry");
        }
        EXPECT_EQ(twin.call(9, 0xFFFFFFFE, 1, 1, 2), 0u);
        EXPECT_EQ(twin.call(9, 1, 1, 1, 2), 0u);
        platform.forget();
    }
}

TEST_F(NatTest, PortMappingGetTranslatesEveryProtocolBack)
{
    // What the platform may report; of the others only the five have a code.
    qcmap_msgr_snat_entry_config_v01 entries[QCMAP_MAX_SNAT_ENTRIES] = {};
    for (uint8_t i = 0; i < 5; ++i) {
        entries[i] = {0x0A000000u + i, static_cast<uint16_t>(100 + i), static_cast<uint16_t>(65535 - i),
                      static_cast<uint8_t>(kProtocolRows[i].platform)};
    }
    entries[5] = {0xFFFFFFFF, 65535, 1, 2};
    platform.on("GetStaticNatConfig").gives_array("entries", entries, 6).gives("count", 6);
    auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
    EXPECT_ROW(zr_nexa_nat_ipv4portmapping_get_v1(8, &list), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(8)",
               "call  GetStaticNatConfig()");
    EXPECT_EQ(list.count, 6u);
    for (uint8_t i = 0; i < 5; ++i) {
        EXPECT_EQ(list.private_ip[i], 0x0A000000u + i);
        EXPECT_EQ(list.private_port[i], 100 + i);
        EXPECT_EQ(list.global_port[i], 65535 - i);
        EXPECT_EQ(list.protocol[i], kProtocolRows[i].code);
    }
    EXPECT_EQ(list.private_ip[5], 0xFFFFFFFFu);
    EXPECT_EQ(list.private_port[5], 65535);
    EXPECT_EQ(list.global_port[5], 1);
    EXPECT_EQ(list.protocol[5], 0xA5) << "a protocol without a code was translated";
    EXPECT_EQ(list.private_ip[6], 0xA5A5A5A5u);
    EXPECT_EQ(list.private_port[6], 0xA5A5);
    EXPECT_EQ(list.global_port[6], 0xA5A5);
    EXPECT_EQ(list.protocol[6], 0xA5);
}

TEST_F(NatTest, PortMappingGetLeavesEveryUnknownProtocolAlone)
{
    for (int value = 0; value < 256; ++value) {
        if (value == 17 || value == 1 || value == 6 || value == 253 || value == 50) continue;
        const qcmap_msgr_snat_entry_config_v01 entry = {1, 2, 3, static_cast<uint8_t>(value)};
        platform.on("GetStaticNatConfig").gives_array("entries", &entry, 1).gives("count", 1);
        auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
        EXPECT_EQ(zr_nexa_nat_ipv4portmapping_get_v1(8, &list), 0u);
        EXPECT_EQ(list.private_ip[0], 1u);
        EXPECT_EQ(list.protocol[0], 0xA5) << value;
    }
}

TEST_F(NatTest, PortMappingGetTakesTheWholeList)
{
    qcmap_msgr_snat_entry_config_v01 entries[QCMAP_MAX_SNAT_ENTRIES] = {};
    for (uint16_t i = 0; i < 50; ++i) {
        entries[i] = {1000u + i, static_cast<uint16_t>(2000 + i), static_cast<uint16_t>(3000 + i), 6};
    }
    for (const int count : {50, 51, 2147483647}) {
        platform.on("GetStaticNatConfig").gives_array("entries", entries, 50).gives("count", count);
        auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
        EXPECT_EQ(zr_nexa_nat_ipv4portmapping_get_v1(8, &list), 0u);
        EXPECT_EQ(list.count, 50u) << count;
        EXPECT_EQ(list.private_ip[49], 1049u);
        EXPECT_EQ(list.private_port[49], 2049);
        EXPECT_EQ(list.global_port[49], 3049);
        EXPECT_EQ(list.protocol[49], 2);
    }
}

TEST_F(NatTest, PortMappingGetOfNoRulesWritesTheCountOnly)
{
    for (const int count : {0, -1, -2147483647 - 1}) {
        platform.on("GetStaticNatConfig").gives("count", count).succeeds(50);
        auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
        EXPECT_EQ(zr_nexa_nat_ipv4portmapping_get_v1(8, &list), 50u);
        EXPECT_EQ(list.count, 0u) << count;
        list.count = 0xA5A5A5A5;
        EXPECT_TRUE(is_poisoned(list));
    }
}

TEST_F(NatTest, PortMappingGetRefusesHandleZeroAndNull)
{
    auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
    EXPECT_ROW(zr_nexa_nat_ipv4portmapping_get_v1(0, &list), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_nat_ipv4portmapping_get_v1(1, nullptr), 4u, "info  entry");
    EXPECT_TRUE(is_poisoned(list));
}

// ---- routing-behind ----

TEST_F(NatTest, RoutingBehindSetPassesTheSwitchAndSelectsNoProfile)
{
    for (const uint32_t value : {0u, 1u}) {
        const std::string shown = std::to_string(value);
        platform.on("ZR_SetRoutingBH").succeeds(5);
        EXPECT_ROW(zr_nexa_nat_routingbh_set_v1(value), 5u,
                   "info  entry",
                   "call  ZR_SetRoutingBH(" + shown + ")",
                   "info  Set RoutingBH(routingbh=" + shown + ") error 5");
    }
}

TEST_F(NatTest, RoutingBehindSetRefusesOtherValues)
{
    for (const uint32_t value : {2u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_nat_routingbh_set_v1(value), 4u, "info  entry");
    }
}

TEST_F(NatTest, RoutingBehindGetGivesTheSwitch)
{
    for (const uint32_t value : {0u, 1u}) {
        uint32_t seen = 0xA5A5A5A5;
        platform.on("ZR_GetRoutingBH").gives("routing_bh", value).succeeds(6);
        EXPECT_ROW(zr_nexa_nat_routingbh_get_v1(&seen), 6u,
                   "info  entry",
                   "call  ZR_GetRoutingBH()",
                   "info  Get RoutingBH(routingbh=" + std::to_string(value) + ") error 6");
        EXPECT_EQ(seen, value);
    }
}

TEST_F(NatTest, RoutingBehindGetAboveOneIsAResultOfItsOwn)
{
    for (const uint32_t value : {2u, 257u, 0xFFFFFFFFu}) {
        uint32_t seen = 0xA5A5A5A5;
        platform.on("ZR_GetRoutingBH").gives("routing_bh", value).succeeds(7);
        EXPECT_ROW(zr_nexa_nat_routingbh_get_v1(&seen), 0x2000u,
                   "info  entry",
                   "call  ZR_GetRoutingBH()");
        EXPECT_EQ(seen, 0xA5A5A5A5u);
    }
}

TEST_F(NatTest, RoutingBehindGetRefusesNull)
{
    EXPECT_ROW(zr_nexa_nat_routingbh_get_v1(nullptr), 4u, "info  entry");
}

}  // namespace
