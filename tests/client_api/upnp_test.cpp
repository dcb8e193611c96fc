#include "api_test.h"

namespace {

using UpnpTest = ApiTest;

TEST_F(UpnpTest, SetSwitchesOnAndOff)
{
    EXPECT_ROW(zr_nexa_media_upnp_set_v1(1), 0u,
               "info  entry",
               "call  EnableUPNP()",
               "info  UPnP is enabled");
    EXPECT_ROW(zr_nexa_media_upnp_set_v1(0), 0u,
               "info  entry",
               "call  DisableUPNP()",
               "info  UPnP is disabled");
    for (const uint32_t enable : {2u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_media_upnp_set_v1(enable), 4u, "info  entry");
    }
}

TEST_F(UpnpTest, GetTellsUpAndDown)
{
    uint8_t enable = 0xA5;
    platform.on("GetUPNPStatus").gives("mode", QCMAP_MSGR_UPNP_MODE_UP_V01);
    EXPECT_ROW(zr_nexa_media_upnp_get_v1(&enable), 0u,
               "info  entry",
               "call  GetUPNPStatus()",
               "info  Get UPNP Status is QCMAP_MSGR_UPNP_MODE_UP_V01");
    EXPECT_EQ(enable, 1);
    platform.on("GetUPNPStatus").gives("mode", QCMAP_MSGR_UPNP_MODE_DOWN_V01);
    EXPECT_ROW(zr_nexa_media_upnp_get_v1(&enable), 0u,
               "info  entry",
               "call  GetUPNPStatus()",
               "info  Get UPNP Status is QCMAP_MSGR_UPNP_MODE_DOWN_V01");
    EXPECT_EQ(enable, 0);
}

TEST_F(UpnpTest, GetLeavesItsOutputForOtherModes)
{
    uint8_t enable = 0xA5;
    for (const int mode : {0, 3, 256, 257, -1}) {
        platform.on("GetUPNPStatus").gives("mode", static_cast<qcmap_msgr_upnp_mode_enum_v01>(mode)).succeeds(5);
        EXPECT_ROW(zr_nexa_media_upnp_get_v1(&enable), 5u,
                   "info  entry",
                   "call  GetUPNPStatus()");
        EXPECT_EQ(enable, 0xA5) << mode;
    }
}

TEST_F(UpnpTest, GettersRefuseNull)
{
    EXPECT_ROW(zr_nexa_media_upnp_get_v1(nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_media_upnp_notify_interval_get_v1(nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_media_upnp_pinhole_state_get_v1(1, nullptr), 4u, "info  entry");
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
        EXPECT_ROW(zr_nexa_media_upnp_notify_interval_set_v1(row.interval), 0u,
                   "info  entry",
                   "call  SetUPNPNotifyInterval(" + std::to_string(row.interval) + ")",
                   std::string("info  Set UPnP Notify Interval is ") + row.logged);
    }
    for (const uint32_t interval : {0u, 29u, 60001u, 65535u, 65536u, 65565u, 0x10000u + 60001, 0xFFFFFFFFu}) {
        SCOPED_TRACE(interval);
        EXPECT_ROW(zr_nexa_media_upnp_notify_interval_set_v1(interval), 4u, "info  entry");
    }
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
        EXPECT_ROW(zr_nexa_media_upnp_notify_interval_get_v1(&interval), 0u,
                   "info  entry",
                   "call  GetUPNPNotifyInterval()",
                   "info  Get UPnP Notify Interval is " + std::to_string(row.low));
        EXPECT_EQ(interval, row.low);
    }
}

TEST_F(UpnpTest, APinholeNeedsTheFirewall)
{
    // The byte that says that the firewall is on goes on to the platform as it is.
    for (const uint8_t enabled : {uint8_t{1}, uint8_t{2}, uint8_t{255}}) {
        for (const uint32_t state : {0u, 1u}) {
            platform.on("GetFirewall").gives("enable_firewall", enabled).gives("pkts_allowed", uint8_t{1});
            EXPECT_ROW(zr_nexa_media_upnp_pinhole_state_set_v1(0, state), 0u,
                       "info  entry",
                       "call  SetWWANProfileHandlePreference(0)",
                       "call  GetFirewall()",
                       "call  SetUPNPState(" + std::to_string(enabled) + " " + std::to_string(state) + ")",
                       "info  Set UPNP Pinhole State " + std::to_string(state) + " success");
        }
    }
    for (const uint32_t state : {0u, 1u}) {
        // An error word beside a firewall that is off does not show in the result.
        platform.on("GetFirewall").gives("enable_firewall", uint8_t{0}).gives("pkts_allowed", uint8_t{1}).succeeds(3);
        EXPECT_ROW(zr_nexa_media_upnp_pinhole_state_set_v1(4, state), 14u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(4)",
                   "call  GetFirewall()",
                   "error Firewall is DISABLED. UPNP NOT ALLOWED");
    }
}

TEST_F(UpnpTest, PinholeSetRefusesOtherStates)
{
    for (const uint32_t state : {2u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_media_upnp_pinhole_state_set_v1(1, state), 4u, "info  entry");
    }
}

TEST_F(UpnpTest, PinholeGetGivesTheByteAsItIs)
{
    uint8_t state = 0xA5;
    for (const uint8_t given : {uint8_t{0}, uint8_t{1}, uint8_t{200}}) {
        platform.on("GetUPNPState").gives("pinhole", given);
        EXPECT_ROW(zr_nexa_media_upnp_pinhole_state_get_v1(0, &state), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(0)",
                   "call  GetUPNPState()",
                   "info  Get UPNP Pinhole state is " + std::to_string(given));
        EXPECT_EQ(state, given);
    }
}

}  // namespace
