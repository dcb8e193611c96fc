#include "api_test.h"

namespace {

class LanPassthroughTest : public ApiTest {
protected:
    // What zr_nexa_lan_ippt_set_v1 does in front of its request.
    static std::vector<std::string> ippt_set_lines(int lan_id, int adaptive, int mode, const std::string& host_mac,
                                                   const std::string& host_name)
    {
        const std::string id = std::to_string(lan_id);
        const std::string head = "info  Set IP Passthrough Config (LAN_ID=" + id + "):";
        return {"info  entry",
                head + "ippt_adaptive=" + std::to_string(adaptive) + " ippt_mode=" + std::to_string(mode),
                head + "host_mac=" + host_mac + " host_name=" + host_name, "call  SelectLANBridge(" + id + ")"};
    }
    void platform_gives_passthrough(int mode, uint32_t device_type, uint8_t adaptive_value = 0)
    {
        qcmap_msgr_ip_passthrough_config_v01 config = {
            device_type, 1, adaptive_value, {0xAB, 0xCD, 0xEF, 0, 0x1F, 9}, {}};
        std::memset(config.host_name, 'h', sizeof(config.host_name));
        platform.on("GetIPPassthroughConfig")
            .gives("mode", static_cast<qcmap_msgr_ip_passthrough_mode_enum_v01>(mode))
            .gives("config", config);
    }
    void platform_gives_filters(const qcmap_msgr_sw_path_filters_conf_t& filters)
    {
        platform.on("GetIPPassthroughSoftwarePathFilters").gives("list", filters);
    }
};

zr_nexa_lan_ippt_t ippt(uint16_t lan_id, uint8_t mode, const char* host_mac = "", const char* host_name = "")
{
    zr_nexa_lan_ippt_t rec = {};
    rec.lan_id = lan_id;
    rec.ippt_mode = mode;
    std::string(host_mac).copy(rec.host_mac, sizeof(rec.host_mac));
    std::string(host_name).copy(rec.host_name, sizeof(rec.host_name));
    return rec;
}

std::string passthrough_call(const std::string& device_type, int flag, int value, const std::string& mac,
                             const std::string& host_name)
{
    return "call  SetIPPassthroughConfig(mode=1 has_config=1 device_type=" + device_type +
           " adaptive_flag=" + std::to_string(flag) + " adaptive_value=" + std::to_string(value) + " mac=" + mac +
           " host_name=\"" + host_name + "\")";
}
const std::string kNoMac = "000000000000";
const std::string kReadFilters = "call  GetIPPassthroughSoftwarePathFilters(request=2 count=0 flags=0)";

// ---- IP-passthrough NAT ----

TEST_F(LanPassthroughTest, NatSetMapsTheMode)
{
    const struct {
        uint32_t mode;
        std::string platform_mode;
    } rows[] = {{0, "2"}, {1, "1"}, {2, "3"}};
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_lan_ipptnat_set_v1(row.mode), 0u,
                   "info  entry",
                   "call  SetFeatureMode(1 features=1 feature_mode=" + row.platform_mode + ")",
                   "info  Set Feature Mode " + row.platform_mode + ", error 0");
    }
    platform.on("SetFeatureMode").succeeds(7);
    EXPECT_ROW(zr_nexa_lan_ipptnat_set_v1(0), 7u,
               "info  entry",
               "call  SetFeatureMode(1 features=1 feature_mode=2)",
               "info  Set Feature Mode 2, error 7");
    for (const uint32_t mode : {3u, 255u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_lan_ipptnat_set_v1(mode), 4u, "info  entry");
    }
}

TEST_F(LanPassthroughTest, NatGetMapsTheModeBack)
{
    const struct {
        uint32_t platform_mode;
        uint8_t mode;
    } rows[] = {{1, 1}, {2, 0}, {3, 2}};
    for (const unsigned long long features : {1ULL, 3ULL, 0xFFFFFFFFFFFFFFFFULL}) {
        for (const auto& row : rows) {
            platform.on("GetFeatureMode")
                .succeeds(17)
                .gives("features", features)
                .gives("config", qcmap_client_feature_mode_config{0, row.platform_mode});
            auto mode = poisoned<uint8_t>();
            EXPECT_ROW(zr_nexa_lan_ipptnat_get_v1(&mode), 17u,
                       "info  entry",
                       "call  GetFeatureMode()",
                       "info  Get Feature Mode " + std::to_string(row.platform_mode) + ", error 17");
            EXPECT_EQ(mode, row.mode);
        }
    }
    EXPECT_ROW(zr_nexa_lan_ipptnat_get_v1(nullptr), 4u, "info  entry");
}

TEST_F(LanPassthroughTest, NatGetNeedsTheFeature)
{
    for (const unsigned long long features : {0ULL, 2ULL, 0xFFFFFFFFFFFFFFFEULL, 0x100000000ULL}) {
        platform.on("GetFeatureMode")
            .gives("features", features)
            .gives("config", qcmap_client_feature_mode_config{1, 9});
        auto mode = poisoned<uint8_t>();
        EXPECT_ROW(zr_nexa_lan_ipptnat_get_v1(&mode), 8u, "info  entry", "call  GetFeatureMode()");
        EXPECT_TRUE(is_poisoned(mode));
    }
}

TEST_F(LanPassthroughTest, NatGetRefusesUnknownModes)
{
    for (const uint32_t platform_mode : {0u, 4u, 257u, 0xFFFFFFFFu}) {
        platform.on("GetFeatureMode")
            .gives("features", 1ULL)
            .gives("config", qcmap_client_feature_mode_config{1, platform_mode});
        auto mode = poisoned<uint8_t>();
        EXPECT_ROW(zr_nexa_lan_ipptnat_get_v1(&mode), 5u, "info  entry", "call  GetFeatureMode()");
        EXPECT_TRUE(is_poisoned(mode));
    }
}

// ---- IP-passthrough NAT of one VLAN ----

TEST_F(LanPassthroughTest, PdnSetReadsTheValueBack)
{
    for (const int pdn : {-1, 0, 1, 2}) {
        const std::string value = std::to_string(pdn);
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", pdn).succeeds(9);
        EXPECT_ROW(zr_nexa_lan_ipptnatpdn_set_v1(100, static_cast<int8_t>(pdn)), 9u,
                   "info  entry",
                   "call  SelectLANBridge(100)",
                   "call  ZR_SetIPPTNATPDN(" + value + ")",
                   "call  ZR_GetIPPTNATPDN(-1)",
                   "info  Set IPPTNATPDN error 9, lan=100 IPPTNATPDN=" + value);
    }
}

TEST_F(LanPassthroughTest, PdnSetChecksItsArguments)
{
    for (const int8_t pdn : std::vector<int8_t>{3, 4, 127, -2, -128}) {
        EXPECT_ROW(zr_nexa_lan_ipptnatpdn_set_v1(100, pdn), 4u, "info  entry");
    }
    for (const uint32_t lan_id : {0u, 4095u, 65535u, 65536u, 65537u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_lan_ipptnatpdn_set_v1(lan_id, -1), 4u, "info  entry");
    }
    for (const std::string lan_id : {"1", "4094"}) {
        EXPECT_ROW(zr_nexa_lan_ipptnatpdn_set_v1(static_cast<uint32_t>(std::stoi(lan_id)), -1), 0u,
                   "info  entry",
                   "call  SelectLANBridge(" + lan_id + ")",
                   "call  ZR_SetIPPTNATPDN(-1)",
                   "call  ZR_GetIPPTNATPDN(-1)",
                   "info  Set IPPTNATPDN error 0, lan=" + lan_id + " IPPTNATPDN=-1");
    }
}

TEST_F(LanPassthroughTest, PdnSetComparesTheWholeValue)
{
    const struct {
        int8_t pdn;
        int kept;
    } rows[] = {{-1, 255}, {-1, 0}, {0, -1}, {1, 257}, {2, 1}, {2, -254}};
    for (const auto& row : rows) {
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", row.kept);
        EXPECT_ROW(zr_nexa_lan_ipptnatpdn_set_v1(7, row.pdn), 0x2101u,
                   "info  entry",
                   "call  SelectLANBridge(7)",
                   "call  ZR_SetIPPTNATPDN(" + std::to_string(row.pdn) + ")",
                   "call  ZR_GetIPPTNATPDN(-1)");
    }
    // A platform that writes nothing leaves -1.
    platform.reset();
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, 0), 0x2101u);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, -1), 0u);
}

TEST_F(LanPassthroughTest, PdnSetShowsWhatWasReadWhenReadingFails)
{
    platform.on("ZR_GetIPPTNATPDN").fails(9);
    EXPECT_ROW(zr_nexa_lan_ipptnatpdn_set_v1(7, 2), 0x3009u,
               "info  entry",
               "call  SelectLANBridge(7)",
               "call  ZR_SetIPPTNATPDN(2)",
               "call  ZR_GetIPPTNATPDN(-1)",
               "error Get IPPTNATPDN error 9, lan=7 IPPTNATPDN=-1");
    platform.on("ZR_GetIPPTNATPDN").gives("pdn", int{300});
    EXPECT_ROW(zr_nexa_lan_ipptnatpdn_set_v1(7, 2), 0x3009u,
               "info  entry",
               "call  SelectLANBridge(7)",
               "call  ZR_SetIPPTNATPDN(2)",
               "call  ZR_GetIPPTNATPDN(-1)",
               "error Get IPPTNATPDN error 9, lan=7 IPPTNATPDN=300");
}

TEST_F(LanPassthroughTest, PdnGetStoresWhatIsInRangeOnly)
{
    const struct {
        int given;
        int stored;
    } rows[] = {{-1, -1}, {0, 0}, {1, 1}, {2, 2}, {3, 77}, {-2, 77}, {255, 77}, {256, 77}, {258, 77}};
    for (const auto& row : rows) {
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", row.given).succeeds(9);
        int8_t pdn = 77;
        EXPECT_ROW(zr_nexa_lan_ipptnatpdn_get_v1(4094, &pdn), 9u,
                   "info  entry",
                   "call  SelectLANBridge(4094)",
                   "call  ZR_GetIPPTNATPDN(-1)",
                   "info  Get IPPTNATPDN error 9, lan=4094 IPPTNATPDN=" + std::to_string(row.stored));
        EXPECT_EQ(pdn, row.stored) << row.given;
    }
}

TEST_F(LanPassthroughTest, PdnGetChecksItsArguments)
{
    int8_t pdn = 77;
    EXPECT_ROW(zr_nexa_lan_ipptnatpdn_get_v1(100, nullptr), 4u, "info  entry");
    for (const uint32_t lan_id : {0u, 4095u, 65536u, 65636u}) {
        EXPECT_ROW(zr_nexa_lan_ipptnatpdn_get_v1(lan_id, &pdn), 4u, "info  entry");
    }
    EXPECT_EQ(pdn, 77);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(1, &pdn), 0u);
}

// ---- IP passthrough: set ----

TEST_F(LanPassthroughTest, IpptSetChecksInOrder)
{
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(nullptr), 4u, "info  entry");
    zr_nexa_lan_ippt_t rec = ippt(4095, 5);
    rec.ippt_adaptive = 11;
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 6u, "info  entry");
    rec.lan_id = 65535;
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 6u, "info  entry");
    rec.lan_id = 4094;
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 8u, "info  entry");
    rec.ippt_adaptive = 255;
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 8u, "info  entry");
    rec.ippt_adaptive = 10;
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 5u, "info  entry");
    rec.ippt_mode = 255;
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 5u, "info  entry");
    rec.ippt_mode = 2;
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 3u, "info  entry");
    rec.ippt_adaptive_enable = 1;  // the mode is checked although it will not be used
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 3u, "info  entry");
}

TEST_F(LanPassthroughTest, IpptSetAsksForTheAdaptiveOne)
{
    for (const int enable : {1, 255}) {
        for (const int value : {0, 1, 10}) {
            zr_nexa_lan_ippt_t rec = ippt(100, 1, "00:01:02:03:04:05", "pc");
            rec.ippt_adaptive_enable = static_cast<uint8_t>(enable);
            rec.ippt_adaptive = static_cast<uint8_t>(value);
            EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 0u,
                       ippt_set_lines(100, value, 1, "00:01:02:03:04:05", "pc"),
                       passthrough_call("2147483647", 1, value, kNoMac, ""));
        }
    }
}

TEST_F(LanPassthroughTest, IpptSetDisablesInTwoSteps)
{
    zr_nexa_lan_ippt_t rec = ippt(4094, 0, "00:01:02:03:04:05", "pc");
    rec.ippt_adaptive = 3;  // not sent: the first step ends whatever is adaptive
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 0u,
               ippt_set_lines(4094, 3, 0, "00:01:02:03:04:05", "pc"),
               passthrough_call("2147483647", 1, 0, kNoMac, ""),
               "call  SetIPPassthroughConfig(mode=0 has_config=0 config=null)");
}

TEST_F(LanPassthroughTest, IpptSetNamesADeviceByItsMacAddress)
{
    const struct {
        uint8_t mode;
        const char* device_type;
    } rows[] = {{1, "4"}, {2, "8"}, {4, "16"}};
    for (const auto& row : rows) {
        const zr_nexa_lan_ippt_t rec = ippt(0, row.mode, "aB:cD:eF:00:19:F0", "pc");
        EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 0u,
                   ippt_set_lines(0, 0, row.mode, "aB:cD:eF:00:19:F0", "pc"),
                   passthrough_call(row.device_type, 0, 0, "abcdef0019f0", ""));
    }
    const zr_nexa_lan_ippt_t on_vlan = ippt(4094, 4, "00:01:02:03:04:05");
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&on_vlan), 0u,
               ippt_set_lines(4094, 0, 4, "00:01:02:03:04:05", ""),
               passthrough_call("16", 0, 0, "000102030405", ""));
}

TEST_F(LanPassthroughTest, IpptSetRefusesTextsThatAreNoMacAddress)
{
    for (const char* text : {"0", "00:11:22:33:44:5G", "00:11:22:33:44:5", "00:11:22:33:44", "00-11-22-33-44-55",
                             "001122334455", "00:11:22:33:44-55", "00:11:22:33:4:555", ":0:11:22:33:44:55",
                             "00:11:22:33:44:5 ", " 0:11:22:33:44:55", "00:11:22:33:44:\xC3\xA9"}) {
        for (const uint8_t mode : std::vector<uint8_t>{1, 2, 4}) {
            const zr_nexa_lan_ippt_t rec = ippt(0, mode, text);
            EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 9u, ippt_set_lines(0, 0, mode, text, ""));
        }
    }
}

TEST_F(LanPassthroughTest, IpptSetNeverReadsBehindTheHostFields)
{
    // A MAC field without its zero is one character too long.
    zr_nexa_lan_ippt_t rec = ippt(0, 1);
    std::memcpy(rec.host_mac, "00:01:02:03:04:056", 18);
    std::memset(rec.host_name, 'n', sizeof(rec.host_name));
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 9u,
               ippt_set_lines(0, 0, 1, "00:01:02:03:04:056", std::string(100, 'n')));
    rec.ippt_mode = 3;
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 0u,
               ippt_set_lines(0, 0, 3, "00:01:02:03:04:056", std::string(100, 'n')),
               passthrough_call("3", 0, 0, kNoMac, std::string(100, 'n')));
}

TEST_F(LanPassthroughTest, IpptSetNamesADeviceByItsHostName)
{
    const zr_nexa_lan_ippt_t rec = ippt(100, 3, "not looked at", "Korvane_PC");
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 0u,
               ippt_set_lines(100, 0, 3, "not looked at", "Korvane_PC"),
               passthrough_call("3", 0, 0, kNoMac, "Korvane_PC"));
    const zr_nexa_lan_ippt_t short_name = ippt(0, 3, "", "k");
    EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&short_name), 0u,
               ippt_set_lines(0, 0, 3, "", "k"),
               passthrough_call("3", 0, 0, kNoMac, "k"));
}

TEST_F(LanPassthroughTest, IpptSetDoesNothingForAnEmptyHost)
{
    platform.on("SelectLANBridge").succeeds(77);  // an error word that is not passed on
    for (const uint8_t mode : std::vector<uint8_t>{1, 2, 3, 4}) {
        // The other host field does not count.
        const zr_nexa_lan_ippt_t rec = mode == 3 ? ippt(0, mode, "00:01:02:03:04:05") : ippt(0, mode, "", "pc");
        EXPECT_ROW(zr_nexa_lan_ippt_set_v1(&rec), 0u, ippt_set_lines(0, 0, mode, rec.host_mac, rec.host_name));
    }
}

// ---- IP passthrough: get ----

TEST_F(LanPassthroughTest, IpptGetReadsTheDevice)
{
    const struct {
        uint32_t device_type;
        uint8_t mode;
        bool mac, name;
    } rows[] = {
        {3, 3, false, true}, {4, 1, true, false}, {8, 2, true, false}, {16, 4, true, false}, {9, 5, false, false}};
    for (const auto& row : rows) {
        platform_gives_passthrough(1, row.device_type, 7);
        auto rec = poisoned<zr_nexa_lan_ippt_t>();
        rec.lan_id = 4094;
        auto expected = rec;
        expected.ippt_mode = row.mode;
        expected.ippt_adaptive = 7;
        if (row.mac) std::memcpy(expected.host_mac, "ab:cd:ef:00:1f:09", 18);
        if (row.name) std::memset(expected.host_name, 'h', 100);
        EXPECT_ROW(zr_nexa_lan_ippt_get_v1(&rec), 0u,
                   "info  entry",
                   "call  SelectLANBridge(4094)",
                   "call  GetIPPassthroughConfig()");
        EXPECT_EQ(std::memcmp(&rec, &expected, sizeof(rec)), 0) << row.device_type;
    }
}

TEST_F(LanPassthroughTest, IpptGetLetsTheCallersModeChooseForAnUnknownDevice)
{
    for (const uint32_t device_type : {0x7FFFFFFFu, 0u, 1u, 2u, 5u, 7u, 10u, 17u, 260u, 0xFFFFFFFFu}) {
        for (const int preset : {0, 1, 2, 3, 4, 5, 6, 0xA5}) {
            platform_gives_passthrough(1, device_type, 10);
            auto rec = poisoned<zr_nexa_lan_ippt_t>();
            rec.lan_id = 0;
            rec.ippt_mode = static_cast<uint8_t>(preset);
            auto expected = rec;
            expected.ippt_adaptive = 10;
            if (preset == 1 || preset == 2 || preset == 4) std::memcpy(expected.host_mac, "ab:cd:ef:00:1f:09", 18);
            if (preset == 3) std::memset(expected.host_name, 'h', 100);
            EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&rec), 0u);
            EXPECT_EQ(std::memcmp(&rec, &expected, sizeof(rec)), 0) << device_type << " " << preset;
        }
    }
}

TEST_F(LanPassthroughTest, IpptGetReadsDisabled)
{
    platform_gives_passthrough(0, 4, 6);
    auto rec = poisoned<zr_nexa_lan_ippt_t>();
    rec.lan_id = 1;
    auto expected = rec;
    expected.ippt_mode = 0;
    expected.ippt_adaptive = 6;
    EXPECT_ROW(zr_nexa_lan_ippt_get_v1(&rec), 0u,
               "info  entry",
               "call  SelectLANBridge(1)",
               "call  GetIPPassthroughConfig()");
    EXPECT_EQ(std::memcmp(&rec, &expected, sizeof(rec)), 0);
}

TEST_F(LanPassthroughTest, IpptGetRefusesAnUnknownState)
{
    for (const int mode : {2, -1, 255, 256, 257}) {
        platform_gives_passthrough(mode, 4, 6);
        auto rec = poisoned<zr_nexa_lan_ippt_t>();
        rec.lan_id = 0;
        const auto as_it_was = rec;
        EXPECT_ROW(zr_nexa_lan_ippt_get_v1(&rec), 1u,
                   "info  entry",
                   "call  SelectLANBridge(0)",
                   "call  GetIPPassthroughConfig()");
        EXPECT_EQ(std::memcmp(&rec, &as_it_was, sizeof(rec)), 0) << mode;
    }
}

TEST_F(LanPassthroughTest, IpptGetChecksInOrder)
{
    EXPECT_ROW(zr_nexa_lan_ippt_get_v1(nullptr), 4u, "info  entry");
    for (const uint16_t lan_id : std::vector<uint16_t>{4095, 4096, 65535}) {
        auto rec = poisoned<zr_nexa_lan_ippt_t>();
        rec.lan_id = lan_id;
        EXPECT_ROW(zr_nexa_lan_ippt_get_v1(&rec), 6u, "info  entry");
    }
}

// ---- gateway filters ----

TEST_F(LanPassthroughTest, FilterAddAppends)
{
    const struct {
        uint32_t protocol;
        uint16_t start, end;
        std::string stored;
    } rows[] = {{1, 1, 65534, "start=1 end=65534 protocol=1"},
                {1, 80, 80, "start=80 end=80 protocol=1"},
                {2, 65534, 65534, "start=65534 end=65534 protocol=2"},
                {3, 0, 0, "start=0 end=0 protocol=4"},
                {3, 65535, 1, "start=65535 end=1 protocol=4"}};
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_lan_ipptgwfilter_add_v1(0, row.protocol, row.start, row.end), 0u,
                   "info  entry",
                   "call  SelectLANBridge(0)",
                   kReadFilters,
                   "call  SetIPPassthroughSoftwarePathFilters(request=2 count=1 flags=0 " + row.stored + ")");
    }
}

TEST_F(LanPassthroughTest, FilterAddKeepsWhatIsThereAndTheSecondHeaderWord)
{
    // The first header word is the request's again, whatever came back; an equal filter is no obstacle.
    platform_gives_filters({9, 4, 0xFFFFFFFF, {{10, 11, 1}, {20, 21, 2}, {0, 0, 4}, {30, 31, 99}}});
    EXPECT_ROW(zr_nexa_lan_ipptgwfilter_add_v1(4094, 1, 10, 11), 0u,
               "info  entry",
               "call  SelectLANBridge(4094)",
               kReadFilters,
               "call  SetIPPassthroughSoftwarePathFilters(request=2 count=5 flags=4294967295 "
               "start=10 end=11 protocol=1 start=20 end=21 protocol=2 start=0 end=0 protocol=4 "
               "start=30 end=31 protocol=99 start=10 end=11 protocol=1)");
}

TEST_F(LanPassthroughTest, FilterAddChecksInOrder)
{
    const struct {
        uint32_t lan_id, protocol;
        uint16_t start, end;
        uint32_t result;
    } rows[] = {{4095, 0, 0, 0, 6},   {65536, 1, 1, 1, 6},     {0xFFFFFFFF, 1, 1, 1, 6},  {4094, 0, 0, 0, 12},
                {0, 4, 0, 0, 12},     {0, 257, 1, 1, 12},      {0, 0xFFFFFFFF, 1, 1, 12}, {0, 1, 0, 80, 1},
                {0, 1, 80, 0, 1},     {0, 1, 65535, 65535, 1}, {0, 2, 80, 65535, 1},      {0, 2, 81, 80, 1},
                {0, 2, 65535, 80, 1}, {0, 1, 0, 0, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.lan_id << " " << row.protocol << " " << row.start << " " << row.end);
        EXPECT_ROW(zr_nexa_lan_ipptgwfilter_add_v1(row.lan_id, row.protocol, row.start, row.end), row.result,
                   "info  entry");
    }
}

TEST_F(LanPassthroughTest, FilterAddRefusesASixth)
{
    for (const uint8_t count : std::vector<uint8_t>{5, 6, 255}) {
        qcmap_msgr_sw_path_filters_conf_t filters = {};
        filters.count = count;
        platform_gives_filters(filters);
        EXPECT_ROW(zr_nexa_lan_ipptgwfilter_add_v1(0, 1, 80, 80), 2u,
                   "info  entry",
                   "call  SelectLANBridge(0)",
                   kReadFilters,
                   "error IPPT SW Filters config full, number of filters:5");
    }
}

TEST_F(LanPassthroughTest, FilterGetMapsTheProtocols)
{
    platform_gives_filters({2, 5, 1, {{10, 11, 1}, {20, 21, 3}, {30, 31, 2}, {40, 41, 4}, {50, 51, 0}}});
    auto list = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
    EXPECT_ROW(zr_nexa_lan_ipptgwfilter_get_v1(100, &list), 0u,
               "info  entry",
               "call  SelectLANBridge(100)",
               kReadFilters);
    const zr_nexa_lan_ipptgwfilter_list_t expected = {{1, 0, 2, 3, 0}, {10, 0, 30, 40, 0}, {11, 0, 31, 41, 0}};
    EXPECT_EQ(std::memcmp(&list, &expected, sizeof(list)), 0);

    for (const uint32_t protocol : {5u, 6u, 17u, 255u, 257u, 0xFFFFFFFFu}) {
        platform_gives_filters({2, 1, 0, {{10, 11, protocol}}});
        auto other = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(0, &other), 0u);
        EXPECT_EQ(other.protocol[0], 0u) << protocol;
        EXPECT_EQ(other.start_port[0], 0u);
        EXPECT_EQ(other.end_port[0], 0u);
    }
}

TEST_F(LanPassthroughTest, FilterGetReadsAsManyAsThereAre)
{
    for (const uint8_t count : std::vector<uint8_t>{0, 2, 5, 6, 255}) {
        platform_gives_filters({2, count, 0, {{10, 11, 1}, {20, 21, 1}, {30, 31, 1}, {40, 41, 1}, {50, 51, 1}}});
        struct {
            zr_nexa_lan_ipptgwfilter_list_t list;
            uint8_t behind[32];
        } memory;
        std::memset(&memory, 0xA5, sizeof(memory));
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(0, &memory.list), 0u);
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(memory.list.protocol[i], i < count ? 1u : 0u);
            EXPECT_EQ(memory.list.start_port[i], i < count ? 10 * (i + 1) : 0);
            EXPECT_EQ(memory.list.end_port[i], i < count ? 10 * (i + 1) + 1 : 0);
        }
        EXPECT_THAT(memory.behind, testing::Each(0xA5));
    }
}

TEST_F(LanPassthroughTest, FilterGetClearsTheListInAnyCase)
{
    const zr_nexa_lan_ipptgwfilter_list_t empty = {};
    const auto expect_cleared = [&empty](uint32_t lan_id, uint32_t result) {
        auto list = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(lan_id, &list), result);
        EXPECT_EQ(std::memcmp(&list, &empty, sizeof(list)), 0) << lan_id;
    };
    expect_cleared(4094, 0);
    platform.forget();
    for (const uint32_t lan_id : {4095u, 65536u}) {
        expect_cleared(lan_id, 6);
        EXPECT_TRANSCRIPT("info  zr_nexa_lan_ipptgwfilter_get_v1: entry");
    }
    platform_gives_filters({2, 1, 0, {{10, 11, 1}}});
    platform.on("GetIPPassthroughSoftwarePathFilters").fails(3);
    expect_cleared(7, 0x2003);
    platform.on("SelectLANBridge").fails(14);
    expect_cleared(7, 0x100E);
}

TEST_F(LanPassthroughTest, FilterDelMovesTheLaterOnesUp)
{
    platform_gives_filters({9, 3, 0x80000001, {{10, 11, 1}, {20, 21, 99}, {30, 31, 4}, {40, 41, 1}}});
    const struct {
        uint8_t number;
        std::string kept;
    } rows[] = {{1, "start=20 end=21 protocol=99 start=30 end=31 protocol=4"},
                {2, "start=10 end=11 protocol=1 start=30 end=31 protocol=4"},
                {3, "start=10 end=11 protocol=1 start=20 end=21 protocol=99"}};
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_lan_ipptgwfilter_del_v1(4094, row.number), 0u,
                   "info  entry",
                   "call  SelectLANBridge(4094)",
                   kReadFilters,
                   "call  SetIPPassthroughSoftwarePathFilters(request=2 count=2 flags=2147483649 " + row.kept + ")");
    }
    platform_gives_filters({2, 1, 0, {{10, 11, 1}}});
    EXPECT_ROW(zr_nexa_lan_ipptgwfilter_del_v1(0, 1), 0u,
               "info  entry",
               "call  SelectLANBridge(0)",
               kReadFilters,
               "call  SetIPPassthroughSoftwarePathFilters(request=2 count=0 flags=0)");
}

TEST_F(LanPassthroughTest, FilterDelTakesNoMoreThanFiveForGranted)
{
    for (const uint8_t count : std::vector<uint8_t>{5, 6, 255}) {
        platform_gives_filters({2, count, 0, {{1, 1, 1}, {2, 2, 1}, {3, 3, 1}, {4, 4, 1}, {5, 5, 1}}});
        EXPECT_ROW(zr_nexa_lan_ipptgwfilter_del_v1(0, 5), 0u,
                   "info  entry",
                   "call  SelectLANBridge(0)",
                   kReadFilters,
                   "call  SetIPPassthroughSoftwarePathFilters(request=2 count=4 flags=0 start=1 end=1 protocol=1 "
                   "start=2 end=2 protocol=1 start=3 end=3 protocol=1 start=4 end=4 protocol=1)");
    }
}

TEST_F(LanPassthroughTest, FilterDelChecksInOrder)
{
    EXPECT_ROW(zr_nexa_lan_ipptgwfilter_del_v1(4095, 0), 6u, "info  entry");
    EXPECT_ROW(zr_nexa_lan_ipptgwfilter_del_v1(65536, 1), 6u, "info  entry");
    for (const uint8_t number : std::vector<uint8_t>{0, 6, 128, 255}) {
        EXPECT_ROW(zr_nexa_lan_ipptgwfilter_del_v1(4094, number), 4u, "info  entry");
    }
}

TEST_F(LanPassthroughTest, FilterDelRefusesAPlaceWithoutAFilter)
{
    const struct {
        uint8_t count, number;
    } rows[] = {{0, 1}, {0, 5}, {2, 3}, {4, 5}};
    for (const auto& row : rows) {
        platform_gives_filters({2, row.count, 0, {{1, 1, 1}, {2, 2, 1}, {3, 3, 1}, {4, 4, 1}, {5, 5, 1}}});
        EXPECT_ROW(zr_nexa_lan_ipptgwfilter_del_v1(0, row.number), 2u,
                   "info  entry",
                   "call  SelectLANBridge(0)",
                   kReadFilters,
                   "error IPPT SW Filters config no exist");
    }
}

// ---- software-path addresses ----

uint32_t network_word(uint8_t a, uint8_t b, uint8_t c, uint8_t d)
{
    const uint8_t bytes[] = {a, b, c, d};
    uint32_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

TEST_F(LanPassthroughTest, PathAddressesAreHandedOnAsTheyAre)
{
    platform.on("ZR_AddIPToSWPathFilters").succeeds(62);
    platform.on("ZR_DeleteIPFromSWPathFilters").succeeds(25);
    const struct {
        uint32_t address;
        std::string text;
    } rows[] = {{network_word(192, 168, 225, 20), "192.168.225.20"},
                {network_word(255, 255, 255, 255), "255.255.255.255"},
                {0, "0.0.0.0"}};
    for (const auto& row : rows) {
        const std::string word = std::to_string(row.address);
        EXPECT_ROW(zr_nexa_lan_swpathfilter_add_v1(row.address), 62u,
                   "info  entry",
                   "call  ZR_AddIPToSWPathFilters(" + word + ")",
                   "info  Add SW Path Filter IP " + row.text + " error 62");
        EXPECT_ROW(zr_nexa_lan_swpathfilter_del_v1(row.address), 25u,
                   "info  entry",
                   "call  ZR_DeleteIPFromSWPathFilters(" + word + ")",
                   "info  Delete SW Path Filter IP " + row.text + " error 25");
    }
}

TEST_F(LanPassthroughTest, PathGetCopiesAsManyAsThereAre)
{
    const uint32_t addresses[] = {11, 22, 33, 44, 55};
    const struct {
        int32_t count;
        uint32_t copied;
    } rows[] = {{0, 0}, {1, 1}, {4, 4}, {5, 5}, {6, 5}, {0x7FFFFFFF, 5}, {-1, 0}, {-2147483647, 0}};
    for (const auto& row : rows) {
        platform.on("ZR_GetIPFromSWPathFilters").gives("count", row.count).gives_array("address", addresses, 5);
        struct {
            zr_nexa_lan_swpathfilter_list_t list;
            uint8_t behind[32];
        } memory;
        std::memset(&memory, 0xA5, sizeof(memory));
        EXPECT_ROW(zr_nexa_lan_swpathfilter_get_v1(&memory.list), 0u,
                   "info  entry",
                   "call  ZR_GetIPFromSWPathFilters(count=0)",
                   "info  Get SW Path Filter IP successfully");
        EXPECT_EQ(memory.list.count, row.copied);
        for (uint32_t i = 0; i < 5; ++i) {
            EXPECT_EQ(memory.list.ipv4_address[i], i < row.copied ? addresses[i] : 0xA5A5A5A5u) << row.count;
        }
        EXPECT_THAT(memory.behind, testing::Each(0xA5));
    }
}

TEST_F(LanPassthroughTest, PathGetRefusesNull)
{
    EXPECT_ROW(zr_nexa_lan_swpathfilter_get_v1(nullptr), 4u, "info  entry");
}

}  // namespace
