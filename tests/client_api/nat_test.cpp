#include "api_test.h"

namespace {

constexpr uint32_t kHost = 0xC0A8E132;  // 192.168.225.50
constexpr const char* kHostText = "3232293170";
constexpr const char* kHostLogged = "-1062674126";  // the same word, as %d shows it

class NatTest : public ApiTest {
protected:
    // A function that was refused before any platform call, with no record of its own.
    void expect_refused(const std::string& function, uint32_t result, uint32_t code)
    {
        EXPECT_EQ(result, code);
        expect_row(function, {}, {info("entry")});
    }
    // Low 32 bits of an address, as a record shows them.
    static std::string where(const void* pointer)
    {
        return std::to_string(static_cast<int32_t>(reinterpret_cast<uintptr_t>(pointer)));
    }
};

// ---- NAT type ----

TEST_F(NatTest, TypeSetPassesEachType)
{
    for (const uint32_t type : {0u, 1u, 2u, 3u}) {
        const std::string shown_type = std::to_string(type);
        EXPECT_EQ(zr_nexa_nat_type_set_v1(50, type), 0u);
        expect_row("zr_nexa_nat_type_set_v1", {"SetWWANProfileHandlePreference(50)", "SetNatType(" + shown_type + ")"},
                   {info("entry"), info("Set Nat Type success : wwan_handle=50 set_nat_type=" + shown_type)});
    }
}

TEST_F(NatTest, TypeSetLooksAtTheHandleBeforeTheType)
{
    expect_refused("zr_nexa_nat_type_set_v1", zr_nexa_nat_type_set_v1(0, 4), 4);
    expect_refused("zr_nexa_nat_type_set_v1", zr_nexa_nat_type_set_v1(0, 1), 4);
}

TEST_F(NatTest, TypeSetLooksAtTheTypeBeforeTheProfileIsSelected)
{
    for (const uint32_t type : {4u, 5u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_nat_type_set_v1(7, type), 4u);
        expect_row("zr_nexa_nat_type_set_v1", {},
                   {info("entry"),
                    error("Invalid NAT Type : " + std::to_string(static_cast<int32_t>(type)) + ", wwan_handle : 7")});
    }
}

TEST_F(NatTest, HandlesAreNotCheckedBeyondZero)
{
    EXPECT_EQ(zr_nexa_nat_type_set_v1(0xFFFFFFFF, 1), 0u);
    expect_row("zr_nexa_nat_type_set_v1", {"SetWWANProfileHandlePreference(4294967295)", "SetNatType(1)"},
               {info("entry"), info("Set Nat Type success : wwan_handle=-1 set_nat_type=1")});
}

TEST_F(NatTest, TypeGetGivesEachType)
{
    for (const int type : {0, 1, 2, 3}) {
        uint8_t seen = 0xA5;
        platform.on("GetNatType").gives("nat_type", static_cast<qcmap_msgr_nat_enum_v01>(type));
        EXPECT_EQ(zr_nexa_nat_type_get_v1(2, &seen), 0u);
        EXPECT_EQ(seen, type);
        expect_row("zr_nexa_nat_type_get_v1", {"SetWWANProfileHandlePreference(2)", "GetNatType()"},
                   {info("entry"), info("Get Nat Type (wwan_handle=2) " + std::to_string(type) + ", error 0")});
    }
}

TEST_F(NatTest, TypeGetLeavesTheOutputWhenTheTypeIsNoneOfTheFour)
{
    for (const int type : {4, 5, 256, 259, -1, 2147483647}) {
        uint8_t seen = 0xA5;
        platform.on("GetNatType").gives("nat_type", static_cast<qcmap_msgr_nat_enum_v01>(type)).succeeds(17);
        EXPECT_EQ(zr_nexa_nat_type_get_v1(2, &seen), 17u);
        EXPECT_EQ(seen, 0xA5);
        expect_row("zr_nexa_nat_type_get_v1", {"SetWWANProfileHandlePreference(2)", "GetNatType()"},
                   {info("entry"), info("Get Nat Type (wwan_handle=2) " + std::to_string(type) + ", error 17")});
    }
}

TEST_F(NatTest, TypeGetRefusesHandleZeroAndNull)
{
    uint8_t seen = 0xA5;
    expect_refused("zr_nexa_nat_type_get_v1", zr_nexa_nat_type_get_v1(0, &seen), 4);
    expect_refused("zr_nexa_nat_type_get_v1", zr_nexa_nat_type_get_v1(1, nullptr), 4);
    EXPECT_EQ(seen, 0xA5);
}

// ---- DMZ ----

TEST_F(NatTest, DmzSetAddsTheHost)
{
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, kHost), 0u);
    expect_row("zr_nexa_nat_ipv4dmz_set_v1",
               {"SetWWANProfileHandlePreference(1)", std::string("AddDMZ(") + kHostText + ")"},
               {info("entry"), info(std::string("Add DMZ IP success : wwan_handle=1 dmz_ip=") + kHostLogged)});
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 0xFFFFFFFF), 0u);
    expect_row("zr_nexa_nat_ipv4dmz_set_v1", {"SetWWANProfileHandlePreference(1)", "AddDMZ(4294967295)"},
               {info("entry"), info("Add DMZ IP success : wwan_handle=1 dmz_ip=-1")});
}

TEST_F(NatTest, DmzSetFindsAddressZeroOnlyBehindTheSelection)
{
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 0), 10u);
    expect_row("zr_nexa_nat_ipv4dmz_set_v1", {"SetWWANProfileHandlePreference(1)"}, {info("entry")});

    platform.on("SetWWANProfileHandlePreference").fails(9);
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 0), 0x1009u);
    expect_row("zr_nexa_nat_ipv4dmz_set_v1", {"SetWWANProfileHandlePreference(1)"},
               {info("entry"), error("Set WWAN Profile Handle Preference (wwan_handle=1) error 9")});
}

TEST_F(NatTest, DmzSetDeletesWithoutLookingAtTheAddress)
{
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(4, 0, 0), 0u);
    expect_row("zr_nexa_nat_ipv4dmz_set_v1", {"SetWWANProfileHandlePreference(4)", "DeleteDMZ()"},
               {info("entry"), info("Delete DMZ IP success : wwan_handle=4 dmz_ip=0")});
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(4, 0, 0x01020304), 0u);
    expect_row("zr_nexa_nat_ipv4dmz_set_v1", {"SetWWANProfileHandlePreference(4)", "DeleteDMZ()"},
               {info("entry"), info("Delete DMZ IP success : wwan_handle=4 dmz_ip=16909060")});
}

TEST_F(NatTest, DmzSetRefusesHandleZeroAndOtherSwitches)
{
    expect_refused("zr_nexa_nat_ipv4dmz_set_v1", zr_nexa_nat_ipv4dmz_set_v1(0, 1, kHost), 4);
    expect_refused("zr_nexa_nat_ipv4dmz_set_v1", zr_nexa_nat_ipv4dmz_set_v1(0, 0, 0), 4);
    for (const uint32_t enable : {2u, 256u, 257u, 0xFFFFFFFFu}) {
        expect_refused("zr_nexa_nat_ipv4dmz_set_v1", zr_nexa_nat_ipv4dmz_set_v1(1, enable, kHost), 4);
    }
}

TEST_F(NatTest, DmzSetTagsTheTwoWaysApart)
{
    for (const uint32_t err : kErrorWords) {
        const std::string shown_err = std::to_string(err);
        platform.on("AddDMZ").fails(err);
        EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 1), err | 0x2000u);
        expect_row("zr_nexa_nat_ipv4dmz_set_v1", {"SetWWANProfileHandlePreference(1)", "AddDMZ(1)"},
                   {info("entry"), error("Add DMZ IP (wwan_handle=1) error " + shown_err)});
        platform.on("DeleteDMZ").fails(err);
        EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 0, 1), err | 0x3000u);
        expect_row("zr_nexa_nat_ipv4dmz_set_v1", {"SetWWANProfileHandlePreference(1)", "DeleteDMZ()"},
                   {info("entry"), error("Delete DMZ IP (wwan_handle=1) error " + shown_err)});
        platform.on("SetWWANProfileHandlePreference", 1).fails(err);
        EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 0, 1), err | 0x1000u);
        expect_row("zr_nexa_nat_ipv4dmz_set_v1", {"SetWWANProfileHandlePreference(1)"},
                   {info("entry"), error("Set WWAN Profile Handle Preference (wwan_handle=1) error " + shown_err)});
        platform.on("SetWWANProfileHandlePreference", 1).succeeds();
    }
}

TEST_F(NatTest, DmzSetReturnsTheErrorWordOfASuccessBare)
{
    platform.on("DeleteDMZ").succeeds(26);
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 0, 0), 26u);
    platform.on("AddDMZ").succeeds(27);
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 1), 27u);
}

TEST_F(NatTest, DmzGetGivesTheHostAndLogsWhereItWasWritten)
{
    for (const uint32_t ip : {kHost, 1u, 0xFFFFFFFFu}) {
        uint8_t enable = 0xA5;
        uint32_t dmz_ip = 0xA5A5A5A5;
        platform.on("GetDMZ").gives("ip", ip);
        EXPECT_EQ(zr_nexa_nat_ipv4dmz_get_v1(1, &enable, &dmz_ip), 0u);
        EXPECT_EQ(enable, 1);
        EXPECT_EQ(dmz_ip, ip);
        expect_row("zr_nexa_nat_ipv4dmz_get_v1", {"SetWWANProfileHandlePreference(1)", "GetDMZ()"},
                   {info("entry"), info("Get DMZ IP success : wwan_handle=1 dmz_enable=" + where(&enable) +
                                        " dmz_ip=" + where(&dmz_ip))});
    }
}

TEST_F(NatTest, DmzGetWithoutAHostGivesZeros)
{
    uint8_t enable = 0xA5;
    uint32_t dmz_ip = 0xA5A5A5A5;
    platform.on("GetDMZ").gives("ip", 0u);
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_get_v1(1, &enable, &dmz_ip), 0u);
    EXPECT_EQ(enable, 0);
    EXPECT_EQ(dmz_ip, 0u);
    expect_row("zr_nexa_nat_ipv4dmz_get_v1", {"SetWWANProfileHandlePreference(1)", "GetDMZ()"},
               {info("entry"),
                info("Get DMZ IP success : wwan_handle=1 dmz_enable=" + where(&enable) + " dmz_ip=" + where(&dmz_ip))});
}

TEST_F(NatTest, DmzGetRefusesHandleZeroAndNulls)
{
    uint8_t enable = 0xA5;
    uint32_t dmz_ip = 0xA5A5A5A5;
    expect_refused("zr_nexa_nat_ipv4dmz_get_v1", zr_nexa_nat_ipv4dmz_get_v1(0, &enable, &dmz_ip), 4);
    expect_refused("zr_nexa_nat_ipv4dmz_get_v1", zr_nexa_nat_ipv4dmz_get_v1(1, nullptr, &dmz_ip), 4);
    expect_refused("zr_nexa_nat_ipv4dmz_get_v1", zr_nexa_nat_ipv4dmz_get_v1(1, &enable, nullptr), 4);
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
            SCOPED_TRACE(twin.word + " " + std::to_string(row.code));
            EXPECT_EQ(twin.call(9, kHost, 80, 65535, row.code), 0u);
            const std::string private_port = row.has_ports ? "80" : "0";
            const std::string global_port = row.has_ports ? "65535" : "0";
            const std::string protocol = std::to_string(row.platform);
            expect_row(twin.function,
                       {"SetWWANProfileHandlePreference(9)",
                        twin.method + "(private_ip=" + kHostText + " private_port=" + private_port +
                            " global_port=" + global_port + " protocol=" + protocol + ")"},
                       {info("entry"),
                        info(twin.word + " Static Nat Entry success : wwan_handle=9 private_ip=" + kHostLogged +
                             " private_port=" + private_port + " global_port=" + global_port),
                        info(twin.word + " Static Nat Entry success : wwan_handle=9 protocol=" + protocol)});
        }
    }
}

TEST_F(NatTest, PortMappingRefusesEveryOtherProtocol)
{
    for (const Twin& twin : twins()) {
        for (int code = 0; code < 256; ++code) {
            if (code == 2 || code == 3 || code == 4 || code == 6 || code == 7) continue;
            SCOPED_TRACE(twin.word + " " + std::to_string(code));
            expect_refused(twin.function, twin.call(9, kHost, 80, 443, static_cast<uint8_t>(code)), 12);
        }
    }
}

TEST_F(NatTest, PortMappingFindsAMissingPortBeforeABadProtocol)
{
    for (const Twin& twin : twins()) {
        for (const uint8_t code : std::vector<uint8_t>{0, 1, 2, 3, 5, 6, 8, 50, 255}) {
            SCOPED_TRACE(twin.word + " " + std::to_string(code));
            expect_refused(twin.function, twin.call(9, kHost, 0, 443, code), 4);
            expect_refused(twin.function, twin.call(9, kHost, 80, 0, code), 4);
            expect_refused(twin.function, twin.call(9, kHost, 0, 0, code), 4);
        }
    }
}

TEST_F(NatTest, PortMappingWithoutPortsTakesAnyPorts)
{
    for (const Twin& twin : twins()) {
        for (const uint8_t code : std::vector<uint8_t>{4, 7}) {
            EXPECT_EQ(twin.call(1, 1, 0, 0, code), 0u);
            EXPECT_EQ(twin.call(1, 1, 0, 443, code), 0u);
            EXPECT_EQ(twin.call(1, 1, 80, 0, code), 0u);
        }
    }
    EXPECT_EQ(platform.journal.size(), 2u * 2 * 3 * 2);
    EXPECT_EQ(platform.journal.back(), "DeleteStaticNatEntry(private_ip=1 private_port=0 global_port=0 protocol=50)");
}

TEST_F(NatTest, PortMappingLooksAtHandleAndAddressFirst)
{
    for (const Twin& twin : twins()) {
        for (const uint8_t code : std::vector<uint8_t>{5, 2, 4}) {
            expect_refused(twin.function, twin.call(0, kHost, 80, 443, code), 4);
            expect_refused(twin.function, twin.call(9, 0, 80, 443, code), 4);
            expect_refused(twin.function, twin.call(9, 0xFFFFFFFF, 80, 443, code), 4);
        }
        EXPECT_EQ(twin.call(9, 0xFFFFFFFE, 1, 1, 2), 0u);
        EXPECT_EQ(twin.call(9, 1, 1, 1, 2), 0u);
        platform.forget();
    }
}

TEST_F(NatTest, PortMappingFailuresAreTaggedAlike)
{
    for (const Twin& twin : twins()) {
        for (const uint32_t err : kErrorWords) {
            const std::string shown_err = std::to_string(err);
            platform.on(twin.method).fails(err);
            EXPECT_EQ(twin.call(9, 1, 2, 3, 3), err | 0x2000u);
            expect_row(twin.function,
                       {"SetWWANProfileHandlePreference(9)",
                        twin.method + "(private_ip=1 private_port=2 global_port=3 protocol=17)"},
                       {info("entry"), error(twin.word + " Static Nat Entry (wwan_handle=9) error " + shown_err)});
        }
        platform.on(twin.method).succeeds(118);
        EXPECT_EQ(twin.call(9, 1, 2, 3, 3), 118u);
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
    EXPECT_EQ(zr_nexa_nat_ipv4portmapping_get_v1(8, &list), 0u);
    expect_row("zr_nexa_nat_ipv4portmapping_get_v1", {"SetWWANProfileHandlePreference(8)", "GetStaticNatConfig()"},
               {info("entry")});
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

TEST_F(NatTest, PortMappingGetFailureIsLogged)
{
    auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
    for (const uint32_t err : kErrorWords) {
        platform.on("GetStaticNatConfig").fails(err).gives("count", 3);
        EXPECT_EQ(zr_nexa_nat_ipv4portmapping_get_v1(8, &list), err | 0x2000u);
        expect_row("zr_nexa_nat_ipv4portmapping_get_v1", {"SetWWANProfileHandlePreference(8)", "GetStaticNatConfig()"},
                   {info("entry"), error("Get Static Nat Config List (wwan_handle=8) error " + std::to_string(err))});
    }
    EXPECT_TRUE(is_poisoned(list));
}

TEST_F(NatTest, PortMappingGetRefusesHandleZeroAndNull)
{
    auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
    expect_refused("zr_nexa_nat_ipv4portmapping_get_v1", zr_nexa_nat_ipv4portmapping_get_v1(0, &list), 4);
    expect_refused("zr_nexa_nat_ipv4portmapping_get_v1", zr_nexa_nat_ipv4portmapping_get_v1(1, nullptr), 4);
    EXPECT_TRUE(is_poisoned(list));
}

// ---- routing-behind ----

TEST_F(NatTest, RoutingBehindSetPassesTheSwitchAndSelectsNoProfile)
{
    for (const uint32_t value : {0u, 1u}) {
        const std::string shown_value = std::to_string(value);
        platform.on("ZR_SetRoutingBH").succeeds(5);
        EXPECT_EQ(zr_nexa_nat_routingbh_set_v1(value), 5u);
        expect_row("zr_nexa_nat_routingbh_set_v1", {"ZR_SetRoutingBH(" + shown_value + ")"},
                   {info("entry"), info("Set RoutingBH(routingbh=" + shown_value + ") error 5")});
    }
}

TEST_F(NatTest, RoutingBehindSetRefusesOtherValues)
{
    for (const uint32_t value : {2u, 256u, 257u, 0xFFFFFFFFu}) {
        expect_refused("zr_nexa_nat_routingbh_set_v1", zr_nexa_nat_routingbh_set_v1(value), 4);
    }
}

TEST_F(NatTest, RoutingBehindGetGivesTheSwitch)
{
    for (const uint32_t value : {0u, 1u}) {
        uint32_t seen = 0xA5A5A5A5;
        platform.on("ZR_GetRoutingBH").gives("routing_bh", value).succeeds(6);
        EXPECT_EQ(zr_nexa_nat_routingbh_get_v1(&seen), 6u);
        EXPECT_EQ(seen, value);
        expect_row("zr_nexa_nat_routingbh_get_v1", {"ZR_GetRoutingBH()"},
                   {info("entry"), info("Get RoutingBH(routingbh=" + std::to_string(value) + ") error 6")});
    }
}

TEST_F(NatTest, RoutingBehindGetAboveOneIsAResultOfItsOwn)
{
    for (const uint32_t value : {2u, 257u, 0xFFFFFFFFu}) {
        uint32_t seen = 0xA5A5A5A5;
        platform.on("ZR_GetRoutingBH").gives("routing_bh", value).succeeds(7);
        EXPECT_EQ(zr_nexa_nat_routingbh_get_v1(&seen), 0x2000u);
        EXPECT_EQ(seen, 0xA5A5A5A5u);
        expect_row("zr_nexa_nat_routingbh_get_v1", {"ZR_GetRoutingBH()"}, {info("entry")});
    }
}

TEST_F(NatTest, RoutingBehindGetRefusesNull)
{
    expect_refused("zr_nexa_nat_routingbh_get_v1", zr_nexa_nat_routingbh_get_v1(nullptr), 4);
}

// ---- failures ----

TEST_F(NatTest, FailuresAreLoggedWithTheirError)
{
    uint8_t byte = 0xA5;
    uint32_t word = 0xA5A5A5A5;
    for (const uint32_t err : kErrorWords) {
        const std::string shown_err = std::to_string(err);
        platform.on("SetNatType").fails(err);
        EXPECT_EQ(zr_nexa_nat_type_set_v1(6, 1), err | 0x2000u);
        expect_row("zr_nexa_nat_type_set_v1", {"SetWWANProfileHandlePreference(6)", "SetNatType(1)"},
                   {info("entry"), error("Set Nat Type (wwan_handle=6) error " + shown_err)});

        platform.on("GetNatType").fails(err).gives("nat_type", QCMAP_MSGR_NAT_FULL_CONE_V01);
        EXPECT_EQ(zr_nexa_nat_type_get_v1(6, &byte), err | 0x2000u);
        expect_row("zr_nexa_nat_type_get_v1", {"SetWWANProfileHandlePreference(6)", "GetNatType()"},
                   {info("entry"), error("Get Nat Type (wwan_handle=6) error " + shown_err)});

        platform.on("GetDMZ").fails(err).gives("ip", kHost);
        EXPECT_EQ(zr_nexa_nat_ipv4dmz_get_v1(6, &byte, &word), err | 0x2000u);
        expect_row("zr_nexa_nat_ipv4dmz_get_v1", {"SetWWANProfileHandlePreference(6)", "GetDMZ()"},
                   {info("entry"), error("Get DMZ IP (wwan_handle=6) error " + shown_err)});

        platform.on("ZR_SetRoutingBH").fails(err);
        EXPECT_EQ(zr_nexa_nat_routingbh_set_v1(1), err | 0x1000u);
        expect_row("zr_nexa_nat_routingbh_set_v1", {"ZR_SetRoutingBH(1)"},
                   {info("entry"), error("Set RoutingBH(routingbh=1) error " + shown_err)});

        platform.on("ZR_GetRoutingBH").fails(err).gives("routing_bh", 1u);
        EXPECT_EQ(zr_nexa_nat_routingbh_get_v1(&word), err | 0x1000u);
        expect_row("zr_nexa_nat_routingbh_get_v1", {"ZR_GetRoutingBH()"},
                   {info("entry"), error("Get RoutingBH error " + shown_err)});
    }
    EXPECT_EQ(byte, 0xA5);
    EXPECT_EQ(word, 0xA5A5A5A5u);
}

TEST_F(NatTest, ARefusedProfileIsLoggedByEveryFunctionThatTakesOne)
{
    uint8_t byte = 0xA5;
    uint32_t word = 0xA5A5A5A5;
    auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
    platform.on("SetWWANProfileHandlePreference").fails(9);
    const auto expect_refusal = [&](const std::string& function, uint32_t result) {
        EXPECT_EQ(result, 0x1009u);
        expect_row(function, {"SetWWANProfileHandlePreference(51)"},
                   {info("entry"), error("Set WWAN Profile Handle Preference (wwan_handle=51) error 9")});
    };
    expect_refusal("zr_nexa_nat_type_set_v1", zr_nexa_nat_type_set_v1(51, 0));
    expect_refusal("zr_nexa_nat_type_get_v1", zr_nexa_nat_type_get_v1(51, &byte));
    expect_refusal("zr_nexa_nat_ipv4dmz_set_v1", zr_nexa_nat_ipv4dmz_set_v1(51, 0, 0));
    expect_refusal("zr_nexa_nat_ipv4dmz_get_v1", zr_nexa_nat_ipv4dmz_get_v1(51, &byte, &word));
    expect_refusal("zr_nexa_nat_ipv4portmapping_add_v1", zr_nexa_nat_ipv4portmapping_add_v1(51, 1, 1, 1, 2));
    expect_refusal("zr_nexa_nat_ipv4portmapping_del_v1", zr_nexa_nat_ipv4portmapping_del_v1(51, 1, 1, 1, 2));
    expect_refusal("zr_nexa_nat_ipv4portmapping_get_v1", zr_nexa_nat_ipv4portmapping_get_v1(51, &list));
}

}  // namespace
