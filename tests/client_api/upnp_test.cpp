#include "api_test.h"

namespace {

using UpnpTest = ApiTest;

constexpr const char* kSet = "zr_nexa_media_upnp_set_v1";
constexpr const char* kGet = "zr_nexa_media_upnp_get_v1";
constexpr const char* kIntervalSet = "zr_nexa_media_upnp_notify_interval_set_v1";
constexpr const char* kIntervalGet = "zr_nexa_media_upnp_notify_interval_get_v1";
constexpr const char* kPinholeSet = "zr_nexa_media_upnp_pinhole_state_set_v1";
constexpr const char* kPinholeGet = "zr_nexa_media_upnp_pinhole_state_get_v1";

TEST_F(UpnpTest, SetSwitchesOnAndOff)
{
    EXPECT_EQ(zr_nexa_media_upnp_set_v1(1), 0u);
    expect_row(kSet, {"EnableUPNP()"}, {info("entry"), info("UPnP is enabled")});
    EXPECT_EQ(zr_nexa_media_upnp_set_v1(0), 0u);
    expect_row(kSet, {"DisableUPNP()"}, {info("entry"), info("UPnP is disabled")});
    for (const uint32_t enable : {2u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_media_upnp_set_v1(enable), 4u) << enable;
        expect_row(kSet, {}, {info("entry")});
    }
}

TEST_F(UpnpTest, OnAndOffFailWithTheirOwnSteps)
{
    for (const uint32_t err : kErrorWords) {
        const std::string word = std::to_string(err);
        platform.on("EnableUPNP").fails(err);
        EXPECT_EQ(zr_nexa_media_upnp_set_v1(1), err | 0x1000);
        expect_row(kSet, {"EnableUPNP()"}, {info("entry"), error("Enable UPnP State error " + word)});
        platform.on("DisableUPNP").fails(err);
        EXPECT_EQ(zr_nexa_media_upnp_set_v1(0), err | 0x2000);
        expect_row(kSet, {"DisableUPNP()"}, {info("entry"), error("Disable UPnP State error " + word)});
    }
    platform.on("EnableUPNP").succeeds(26);
    EXPECT_EQ(zr_nexa_media_upnp_set_v1(1), 26u);
    platform.on("DisableUPNP").succeeds(27);
    EXPECT_EQ(zr_nexa_media_upnp_set_v1(0), 27u);
}

TEST_F(UpnpTest, GetTellsUpAndDown)
{
    uint8_t enable = 0xA5;
    platform.on("GetUPNPStatus").gives("mode", QCMAP_MSGR_UPNP_MODE_UP_V01);
    EXPECT_EQ(zr_nexa_media_upnp_get_v1(&enable), 0u);
    EXPECT_EQ(enable, 1);
    expect_row(kGet, {"GetUPNPStatus()"}, {info("entry"), info("Get UPNP Status is QCMAP_MSGR_UPNP_MODE_UP_V01")});
    platform.on("GetUPNPStatus").gives("mode", QCMAP_MSGR_UPNP_MODE_DOWN_V01);
    EXPECT_EQ(zr_nexa_media_upnp_get_v1(&enable), 0u);
    EXPECT_EQ(enable, 0);
    expect_row(kGet, {"GetUPNPStatus()"}, {info("entry"), info("Get UPNP Status is QCMAP_MSGR_UPNP_MODE_DOWN_V01")});
}

TEST_F(UpnpTest, GetLeavesItsOutputForOtherModes)
{
    uint8_t enable = 0xA5;
    EXPECT_EQ(zr_nexa_media_upnp_get_v1(&enable), 0u);
    expect_row(kGet, {"GetUPNPStatus()"}, {info("entry")});
    for (const int mode : {0, 3, 256, 257, -1}) {
        platform.on("GetUPNPStatus").gives("mode", static_cast<qcmap_msgr_upnp_mode_enum_v01>(mode)).succeeds(5);
        EXPECT_EQ(zr_nexa_media_upnp_get_v1(&enable), 5u);
        EXPECT_EQ(enable, 0xA5) << mode;
        expect_row(kGet, {"GetUPNPStatus()"}, {info("entry")});
    }
}

TEST_F(UpnpTest, GetRefusesNullAndTagsItsFailure)
{
    EXPECT_EQ(zr_nexa_media_upnp_get_v1(nullptr), 4u);
    expect_row(kGet, {}, {info("entry")});
    uint8_t enable = 0xA5;
    platform.on("GetUPNPStatus").fails(3).gives("mode", QCMAP_MSGR_UPNP_MODE_UP_V01);
    EXPECT_EQ(zr_nexa_media_upnp_get_v1(&enable), 0x1003u);
    EXPECT_EQ(enable, 0xA5);
    expect_row(kGet, {"GetUPNPStatus()"}, {info("entry"), error("Get UPNP Status error 3")});
}

TEST_F(UpnpTest, TheIntervalIsCheckedOnItsLow16BitsAndHandedOnWhole)
{
    struct Row {
        uint32_t interval;
        const char* logged;
    };
    for (const Row& row : {Row{30, "30"},
                           {31, "31"},
                           {1800, "1800"},
                           {60000, "60000"},
                           {65566, "30"},
                           {0x7FFF0000u + 60000, "60000"},
                           {0xFFFF0708, "1800"}}) {
        EXPECT_EQ(zr_nexa_media_upnp_notify_interval_set_v1(row.interval), 0u) << row.interval;
        expect_row(kIntervalSet, {"SetUPNPNotifyInterval(" + std::to_string(row.interval) + ")"},
                   {info("entry"), info(std::string("Set UPnP Notify Interval is ") + row.logged)});
    }
    for (const uint32_t interval : {0u, 29u, 60001u, 65535u, 65536u, 65565u, 0x10000u + 60001, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_media_upnp_notify_interval_set_v1(interval), 4u) << interval;
        expect_row(kIntervalSet, {}, {info("entry")});
    }
}

TEST_F(UpnpTest, IntervalSetTagsItsFailure)
{
    platform.on("SetUPNPNotifyInterval").fails(48);
    EXPECT_EQ(zr_nexa_media_upnp_notify_interval_set_v1(30), 0x1030u);
    expect_row(kIntervalSet, {"SetUPNPNotifyInterval(30)"},
               {info("entry"), error("Set UPnP Notify Interval error 48")});
}

TEST_F(UpnpTest, IntervalGetGivesTheLow16Bits)
{
    struct Row {
        unsigned int value;
        uint16_t low;
    };
    uint16_t interval = 0xA5A5;
    for (const Row& row : {Row{1800, 1800}, {0, 0}, {65535, 65535}, {65566, 30}, {0xFFFF0001, 1}}) {
        platform.on("GetUPNPNotifyInterval").gives("seconds", row.value);
        EXPECT_EQ(zr_nexa_media_upnp_notify_interval_get_v1(&interval), 0u);
        EXPECT_EQ(interval, row.low);
        expect_row(kIntervalGet, {"GetUPNPNotifyInterval()"},
                   {info("entry"), info("Get UPnP Notify Interval is " + std::to_string(row.low))});
    }
}

TEST_F(UpnpTest, IntervalGetRefusesNullAndTagsItsFailure)
{
    EXPECT_EQ(zr_nexa_media_upnp_notify_interval_get_v1(nullptr), 4u);
    expect_row(kIntervalGet, {}, {info("entry")});
    uint16_t interval = 0xA5A5;
    platform.on("GetUPNPNotifyInterval").fails(0).gives("seconds", 1800u);
    EXPECT_EQ(zr_nexa_media_upnp_notify_interval_get_v1(&interval), 0x1000u);
    EXPECT_EQ(interval, 0xA5A5);
    expect_row(kIntervalGet, {"GetUPNPNotifyInterval()"}, {info("entry"), error("Get UPnP Notify Interval error 0")});
}

TEST_F(UpnpTest, APinholeNeedsTheFirewall)
{
    // The byte that says that the firewall is on goes on to the platform as it is.
    for (const uint8_t enabled : {uint8_t{1}, uint8_t{2}, uint8_t{255}}) {
        for (const uint32_t state : {0u, 1u}) {
            platform.on("GetFirewall").gives("enable_firewall", enabled).gives("pkts_allowed", uint8_t{1});
            EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_set_v1(0, state), 0u);
            expect_row(kPinholeSet,
                       {"SetWWANProfileHandlePreference(0)", "GetFirewall()",
                        "SetUPNPState(" + std::to_string(enabled) + " " + std::to_string(state) + ")"},
                       {info("entry"), info("Set UPNP Pinhole State " + std::to_string(state) + " success")});
        }
    }
    for (const uint32_t state : {0u, 1u}) {
        // An error word beside a firewall that is off does not show in the result.
        platform.on("GetFirewall").gives("enable_firewall", uint8_t{0}).gives("pkts_allowed", uint8_t{1}).succeeds(3);
        EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_set_v1(4, state), 14u);
        expect_row(kPinholeSet, {"SetWWANProfileHandlePreference(4)", "GetFirewall()"},
                   {info("entry"), error("Firewall is DISABLED. UPNP NOT ALLOWED")});
    }
}

TEST_F(UpnpTest, PinholeSetRefusesOtherStates)
{
    for (const uint32_t state : {2u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_set_v1(1, state), 4u) << state;
        expect_row(kPinholeSet, {}, {info("entry")});
    }
}

TEST_F(UpnpTest, PinholeSetTagsEachFailure)
{
    platform.on("GetFirewall").gives("enable_firewall", uint8_t{1});
    platform.on("SetUPNPState").fails(26);
    EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_set_v1(4, 1), 0x301Au);
    expect_row(kPinholeSet, {"SetWWANProfileHandlePreference(4)", "GetFirewall()", "SetUPNPState(1 1)"},
               {info("entry"), error("Set UPNP state error 26")});
    platform.on("GetFirewall").fails(3);
    EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_set_v1(4, 1), 0x2003u);
    expect_row(kPinholeSet, {"SetWWANProfileHandlePreference(4)", "GetFirewall()"},
               {info("entry"), error("Get Firewall State error 3")});
    platform.on("SetWWANProfileHandlePreference").fails(9);
    EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_set_v1(4, 1), 0x1009u);
    expect_row(kPinholeSet, {"SetWWANProfileHandlePreference(4)"},
               {info("entry"), error("Set WWAN Profile Handle Preference (wwan_handle=4) error 9")});
}

TEST_F(UpnpTest, PinholeGetGivesTheByteAsItIs)
{
    uint8_t state = 0xA5;
    for (const uint8_t given : {uint8_t{0}, uint8_t{1}, uint8_t{200}}) {
        platform.on("GetUPNPState").gives("pinhole", given);
        EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_get_v1(0, &state), 0u);
        EXPECT_EQ(state, given);
        expect_row(kPinholeGet, {"SetWWANProfileHandlePreference(0)", "GetUPNPState()"},
                   {info("entry"), info("Get UPNP Pinhole state is " + std::to_string(given))});
    }
}

TEST_F(UpnpTest, PinholeGetRefusesNullAndTagsEachFailure)
{
    EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_get_v1(1, nullptr), 4u);
    expect_row(kPinholeGet, {}, {info("entry")});
    uint8_t state = 0xA5;
    platform.on("GetUPNPState").fails(7).gives("pinhole", uint8_t{1});
    EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_get_v1(1, &state), 0x2007u);
    expect_row(kPinholeGet, {"SetWWANProfileHandlePreference(1)", "GetUPNPState()"},
               {info("entry"), error("Get UPNP Pinhole state error 7")});
    platform.on("SetWWANProfileHandlePreference").fails(9);
    EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_get_v1(1, &state), 0x1009u);
    expect_row(kPinholeGet, {"SetWWANProfileHandlePreference(1)"},
               {info("entry"), error("Set WWAN Profile Handle Preference (wwan_handle=1) error 9")});
    EXPECT_EQ(state, 0xA5);
}

}  // namespace
