#include "api_test.h"

namespace {

class LanPassthroughTest : public ApiTest {
protected:
    // Expected lines of zr_nexa_lan_ippt_set_v1's two records.
    static std::vector<ExpectedRecord> ippt_set_log(int lan_id, int adaptive, int mode, const std::string& host_mac,
                                                    const std::string& host_name)
    {
        const std::string head = "Set IP Passthrough Config (LAN_ID=" + std::to_string(lan_id) + "):";
        return {info("entry"),
                info(head + "ippt_adaptive=" + std::to_string(adaptive) + " ippt_mode=" + std::to_string(mode)),
                info(head + "host_mac=" + host_mac + " host_name=" + host_name)};
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

std::string select_line(int lan_id)
{
    return "SelectLANBridge(" + std::to_string(lan_id) + ")";
}
std::string passthrough_line(const std::string& device_type, int flag, int value, const std::string& mac,
                             const std::string& host_name)
{
    return "SetIPPassthroughConfig(mode=1 has_config=1 device_type=" + device_type +
           " adaptive_flag=" + std::to_string(flag) + " adaptive_value=" + std::to_string(value) + " mac=" + mac +
           " host_name=\"" + host_name + "\")";
}
const std::string kDisableLine = "SetIPPassthroughConfig(mode=0 has_config=0 config=null)";
const std::string kNoMac = "000000000000";
const std::string kReadFilters = "GetIPPassthroughSoftwarePathFilters(request=2 count=0 flags=0)";

// ---- IP-passthrough NAT ----

constexpr const char* kNatSet = "zr_nexa_lan_ipptnat_set_v1";
constexpr const char* kNatGet = "zr_nexa_lan_ipptnat_get_v1";

TEST_F(LanPassthroughTest, NatSetMapsTheMode)
{
    const struct {
        uint32_t mode;
        const char* platform_mode;
    } rows[] = {{0, "2"}, {1, "1"}, {2, "3"}};
    for (const auto& row : rows) {
        const std::string mode = row.platform_mode;
        EXPECT_EQ(zr_nexa_lan_ipptnat_set_v1(row.mode), 0u);
        expect_row(kNatSet, {"SetFeatureMode(1 features=1 feature_mode=" + mode + ")"},
                   {info("entry"), info("Set Feature Mode " + mode + ", error 0")});
    }
    for (const uint32_t mode : {3u, 255u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_lan_ipptnat_set_v1(mode), 4u) << mode;
        expect_row(kNatSet, {}, {info("entry")});
    }
}

TEST_F(LanPassthroughTest, NatSetReportsErrors)
{
    const struct {
        uint32_t err, result;
    } rows[] = {{0, 0x1000}, {5, 0x1005}, {0xFFFF, 0xFFFF}};
    for (const auto& row : rows) {
        platform.on("SetFeatureMode").fails(row.err);
        EXPECT_EQ(zr_nexa_lan_ipptnat_set_v1(2), row.result);
        expect_row(kNatSet, {"SetFeatureMode(1 features=1 feature_mode=3)"},
                   {info("entry"),
                    error("Set Feature Mode error " + std::to_string(row.err) + ", features=1 feature_mode=3")});
    }
    platform.on("SetFeatureMode").succeeds(7);
    EXPECT_EQ(zr_nexa_lan_ipptnat_set_v1(0), 7u);
    expect_row(kNatSet, {"SetFeatureMode(1 features=1 feature_mode=2)"},
               {info("entry"), info("Set Feature Mode 2, error 7")});
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
                .gives("features", features)
                .gives("config", qcmap_client_feature_mode_config{0, row.platform_mode});
            auto mode = poisoned<uint8_t>();
            EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(&mode), 0u);
            EXPECT_EQ(mode, row.mode);
            expect_row(kNatGet, {"GetFeatureMode()"},
                       {info("entry"), info("Get Feature Mode " + std::to_string(row.platform_mode) + ", error 0")});
        }
    }
}

TEST_F(LanPassthroughTest, NatGetNeedsTheFeature)
{
    for (const unsigned long long features : {0ULL, 2ULL, 0xFFFFFFFFFFFFFFFEULL, 0x100000000ULL}) {
        platform.on("GetFeatureMode")
            .gives("features", features)
            .gives("config", qcmap_client_feature_mode_config{1, 9});
        auto mode = poisoned<uint8_t>();
        EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(&mode), 8u);
        EXPECT_TRUE(is_poisoned(mode));
        expect_row(kNatGet, {"GetFeatureMode()"}, {info("entry")});
    }
    // A platform that reports nothing at all does not report the feature.
    platform.reset();
    auto mode = poisoned<uint8_t>();
    EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(&mode), 8u);
    EXPECT_TRUE(is_poisoned(mode));
}

TEST_F(LanPassthroughTest, NatGetRefusesUnknownModes)
{
    for (const uint32_t platform_mode : {0u, 4u, 257u, 0xFFFFFFFFu}) {
        platform.on("GetFeatureMode")
            .gives("features", 1ULL)
            .gives("config", qcmap_client_feature_mode_config{1, platform_mode});
        auto mode = poisoned<uint8_t>();
        EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(&mode), 5u);
        EXPECT_TRUE(is_poisoned(mode));
        expect_row(kNatGet, {"GetFeatureMode()"}, {info("entry")});
    }
}

TEST_F(LanPassthroughTest, NatGetReportsErrors)
{
    EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(nullptr), 4u);
    expect_row(kNatGet, {}, {info("entry")});

    platform.on("GetFeatureMode").gives("features", 1ULL).gives("config", qcmap_client_feature_mode_config{1, 3});
    platform.on("GetFeatureMode").fails(0x11);
    auto mode = poisoned<uint8_t>();
    EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(&mode), 0x1011u);
    EXPECT_TRUE(is_poisoned(mode));
    expect_row(kNatGet, {"GetFeatureMode()"}, {info("entry"), error("Get Feature Mode error 17")});

    platform.on("GetFeatureMode").succeeds(0x11);
    EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(&mode), 0x11u);
    EXPECT_EQ(mode, 2);
    expect_row(kNatGet, {"GetFeatureMode()"}, {info("entry"), info("Get Feature Mode 3, error 17")});
}

// ---- IP-passthrough NAT of one VLAN ----

constexpr const char* kPdnSet = "zr_nexa_lan_ipptnatpdn_set_v1";
constexpr const char* kPdnGet = "zr_nexa_lan_ipptnatpdn_get_v1";

TEST_F(LanPassthroughTest, PdnSetReadsTheValueBack)
{
    for (const int pdn : {-1, 0, 1, 2}) {
        const std::string value = std::to_string(pdn);
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", pdn);
        EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(100, static_cast<int8_t>(pdn)), 0u);
        expect_row(kPdnSet, {"SelectLANBridge(100)", "ZR_SetIPPTNATPDN(" + value + ")", "ZR_GetIPPTNATPDN(-1)"},
                   {info("entry"), info("Set IPPTNATPDN error 0, lan=100 IPPTNATPDN=" + value)});
    }
}

TEST_F(LanPassthroughTest, PdnSetChecksItsArguments)
{
    for (const int8_t pdn : std::vector<int8_t>{3, 4, 127, -2, -128}) {
        EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(100, pdn), 4u) << int{pdn};
    }
    for (const uint32_t lan_id : {0u, 4095u, 65535u, 65536u, 65537u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(lan_id, -1), 4u) << lan_id;
    }
    expect_calls({});
    for (const auto& line : platform.log)
        EXPECT_EQ(line.text, "entry");
    platform.forget();
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(1, -1), 0u);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(4094, -1), 0u);
    expect_calls({"SelectLANBridge(1)", "ZR_SetIPPTNATPDN(-1)", "ZR_GetIPPTNATPDN(-1)", "SelectLANBridge(4094)",
                  "ZR_SetIPPTNATPDN(-1)", "ZR_GetIPPTNATPDN(-1)"});
}

TEST_F(LanPassthroughTest, PdnSetComparesTheWholeValue)
{
    const struct {
        int8_t pdn;
        int kept;
    } rows[] = {{-1, 255}, {-1, 0}, {0, -1}, {1, 257}, {2, 1}, {2, -254}};
    for (const auto& row : rows) {
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", row.kept);
        EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, row.pdn), 0x2101u) << row.kept;
        expect_row(kPdnSet,
                   {"SelectLANBridge(7)", "ZR_SetIPPTNATPDN(" + std::to_string(row.pdn) + ")", "ZR_GetIPPTNATPDN(-1)"},
                   {info("entry")});
    }
    // A platform that writes nothing leaves -1.
    platform.reset();
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, 0), 0x2101u);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, -1), 0u);
}

TEST_F(LanPassthroughTest, PdnSetReportsErrorsStepByStep)
{
    platform.on("SelectLANBridge").fails(9);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, 2), 0x1009u);
    expect_row(kPdnSet, {"SelectLANBridge(7)"}, {info("entry")});
    platform.on("SelectLANBridge").succeeds();

    platform.on("ZR_SetIPPTNATPDN").fails(9);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, -1), 0x2009u);
    expect_row(kPdnSet, {"SelectLANBridge(7)", "ZR_SetIPPTNATPDN(-1)"},
               {info("entry"), error("Set IPPTNATPDN error 9, lan=7 IPPTNATPDN=-1")});
    platform.on("ZR_SetIPPTNATPDN").succeeds();

    platform.on("ZR_GetIPPTNATPDN").fails(9);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, 2), 0x3009u);
    expect_row(kPdnSet, {"SelectLANBridge(7)", "ZR_SetIPPTNATPDN(2)", "ZR_GetIPPTNATPDN(-1)"},
               {info("entry"), error("Get IPPTNATPDN error 9, lan=7 IPPTNATPDN=-1")});
    platform.on("ZR_GetIPPTNATPDN").gives("pdn", int{300});
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, 2), 0x3009u);
    expect_row(kPdnSet, {"SelectLANBridge(7)", "ZR_SetIPPTNATPDN(2)", "ZR_GetIPPTNATPDN(-1)"},
               {info("entry"), error("Get IPPTNATPDN error 9, lan=7 IPPTNATPDN=300")});

    platform.on("ZR_GetIPPTNATPDN").succeeds(9).gives("pdn", int{2});
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_set_v1(7, 2), 9u);
    expect_row(kPdnSet, {"SelectLANBridge(7)", "ZR_SetIPPTNATPDN(2)", "ZR_GetIPPTNATPDN(-1)"},
               {info("entry"), info("Set IPPTNATPDN error 9, lan=7 IPPTNATPDN=2")});
}

TEST_F(LanPassthroughTest, PdnGetStoresWhatIsInRangeOnly)
{
    const struct {
        int given;
        int stored;
    } rows[] = {{-1, -1}, {0, 0}, {1, 1}, {2, 2}, {3, 77}, {-2, 77}, {255, 77}, {256, 77}, {258, 77}};
    for (const auto& row : rows) {
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", row.given);
        int8_t pdn = 77;
        EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(4094, &pdn), 0u);
        EXPECT_EQ(pdn, row.stored) << row.given;
        expect_row(kPdnGet, {"SelectLANBridge(4094)", "ZR_GetIPPTNATPDN(-1)"},
                   {info("entry"), info("Get IPPTNATPDN error 0, lan=4094 IPPTNATPDN=" + std::to_string(row.stored))});
    }
    // A platform that writes nothing leaves -1.
    platform.reset();
    int8_t pdn = 77;
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(4094, &pdn), 0u);
    EXPECT_EQ(pdn, -1);
}

TEST_F(LanPassthroughTest, PdnGetChecksItsArguments)
{
    int8_t pdn = 77;
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(100, nullptr), 4u);
    for (const uint32_t lan_id : {0u, 4095u, 65536u, 65636u}) {
        EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(lan_id, &pdn), 4u) << lan_id;
    }
    EXPECT_EQ(pdn, 77);
    expect_calls({});
    for (const auto& line : platform.log)
        EXPECT_EQ(line.text, "entry");
}

TEST_F(LanPassthroughTest, PdnGetReportsErrorsWithTheCallersOldValue)
{
    int8_t pdn = -5;
    platform.on("SelectLANBridge").fails(0);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(1, &pdn), 0x1000u);
    expect_row(kPdnGet, {"SelectLANBridge(1)"}, {info("entry")});
    platform.on("SelectLANBridge").succeeds();

    platform.on("ZR_GetIPPTNATPDN").fails(9).gives("pdn", int{1});
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(1, &pdn), 0x2009u);
    EXPECT_EQ(pdn, -5);
    expect_row(kPdnGet, {"SelectLANBridge(1)", "ZR_GetIPPTNATPDN(-1)"},
               {info("entry"), error("Get IPPTNATPDN error 9, lan=1 IPPTNATPDN=-5")});

    platform.on("ZR_GetIPPTNATPDN").succeeds(9);
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(1, &pdn), 9u);
    EXPECT_EQ(pdn, 1);
    expect_row(kPdnGet, {"SelectLANBridge(1)", "ZR_GetIPPTNATPDN(-1)"},
               {info("entry"), info("Get IPPTNATPDN error 9, lan=1 IPPTNATPDN=1")});
}

// ---- IP passthrough: set ----

constexpr const char* kIpptSet = "zr_nexa_lan_ippt_set_v1";
constexpr const char* kIpptGet = "zr_nexa_lan_ippt_get_v1";

TEST_F(LanPassthroughTest, IpptSetChecksInOrder)
{
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(nullptr), 4u);
    zr_nexa_lan_ippt_t rec = ippt(4095, 5);
    rec.ippt_adaptive = 11;
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 6u);
    rec.lan_id = 65535;
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 6u);
    rec.lan_id = 4094;
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 8u);
    rec.ippt_adaptive = 255;
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 8u);
    rec.ippt_adaptive = 10;
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 5u);
    rec.ippt_mode = 255;
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 5u);
    rec.ippt_mode = 2;
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 3u);
    rec.ippt_adaptive_enable = 1;  // the mode is checked although it will not be used
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 3u);
    expect_calls({});
    for (const auto& line : platform.log)
        EXPECT_EQ(line.text, "entry");
}

TEST_F(LanPassthroughTest, IpptSetAsksForTheAdaptiveOne)
{
    for (const int enable : {1, 255}) {
        for (const int value : {0, 1, 10}) {
            zr_nexa_lan_ippt_t rec = ippt(100, 1, "00:01:02:03:04:05", "pc");
            rec.ippt_adaptive_enable = static_cast<uint8_t>(enable);
            rec.ippt_adaptive = static_cast<uint8_t>(value);
            EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 0u);
            expect_row(kIpptSet, {select_line(100), passthrough_line("2147483647", 1, value, kNoMac, "")},
                       ippt_set_log(100, value, 1, "00:01:02:03:04:05", "pc"));
        }
    }
}

TEST_F(LanPassthroughTest, IpptSetDisablesInTwoSteps)
{
    zr_nexa_lan_ippt_t rec = ippt(4094, 0, "00:01:02:03:04:05", "pc");
    rec.ippt_adaptive = 3;  // not sent: the first step ends whatever is adaptive
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 0u);
    expect_row(kIpptSet, {select_line(4094), passthrough_line("2147483647", 1, 0, kNoMac, ""), kDisableLine},
               ippt_set_log(4094, 3, 0, "00:01:02:03:04:05", "pc"));
}

TEST_F(LanPassthroughTest, IpptSetNamesADeviceByItsMacAddress)
{
    const struct {
        uint8_t mode;
        const char* device_type;
    } rows[] = {{1, "4"}, {2, "8"}, {4, "16"}};
    for (const auto& row : rows) {
        const zr_nexa_lan_ippt_t rec = ippt(0, row.mode, "aB:cD:eF:00:19:F0", "pc");
        EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 0u);
        expect_row(kIpptSet, {select_line(0), passthrough_line(row.device_type, 0, 0, "abcdef0019f0", "")},
                   ippt_set_log(0, 0, row.mode, "aB:cD:eF:00:19:F0", "pc"));
    }
    const zr_nexa_lan_ippt_t on_vlan = ippt(4094, 4, "00:01:02:03:04:05");
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&on_vlan), 0u);
    expect_calls({select_line(4094), passthrough_line("16", 0, 0, "000102030405", "")});
}

TEST_F(LanPassthroughTest, IpptSetRefusesTextsThatAreNoMacAddress)
{
    for (const char* text : {"0", "00:11:22:33:44:5G", "00:11:22:33:44:5", "00:11:22:33:44", "00-11-22-33-44-55",
                             "001122334455", "00:11:22:33:44-55", "00:11:22:33:4:555", ":0:11:22:33:44:55",
                             "00:11:22:33:44:5 ", " 0:11:22:33:44:55", "00:11:22:33:44:\xC3\xA9"}) {
        for (const uint8_t mode : std::vector<uint8_t>{1, 2, 4}) {
            const zr_nexa_lan_ippt_t rec = ippt(0, mode, text);
            EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 9u) << text;
            expect_row(kIpptSet, {select_line(0)}, ippt_set_log(0, 0, mode, text, ""));
        }
    }
}

TEST_F(LanPassthroughTest, IpptSetNeverReadsBehindTheHostFields)
{
    // A MAC field without its zero is one character too long.
    zr_nexa_lan_ippt_t rec = ippt(0, 1);
    std::memcpy(rec.host_mac, "00:01:02:03:04:056", 18);
    std::memset(rec.host_name, 'n', sizeof(rec.host_name));
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 9u);
    expect_row(kIpptSet, {select_line(0)}, ippt_set_log(0, 0, 1, "00:01:02:03:04:056", std::string(100, 'n')));

    rec.ippt_mode = 3;
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 0u);
    expect_row(kIpptSet, {select_line(0), passthrough_line("3", 0, 0, kNoMac, std::string(100, 'n'))},
               ippt_set_log(0, 0, 3, "00:01:02:03:04:056", std::string(100, 'n')));
}

TEST_F(LanPassthroughTest, IpptSetNamesADeviceByItsHostName)
{
    const zr_nexa_lan_ippt_t rec = ippt(100, 3, "not looked at", "Korvane_PC");
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 0u);
    expect_row(kIpptSet, {select_line(100), passthrough_line("3", 0, 0, kNoMac, "Korvane_PC")},
               ippt_set_log(100, 0, 3, "not looked at", "Korvane_PC"));
    const zr_nexa_lan_ippt_t short_name = ippt(0, 3, "", "k");
    EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&short_name), 0u);
    expect_row(kIpptSet, {select_line(0), passthrough_line("3", 0, 0, kNoMac, "k")}, ippt_set_log(0, 0, 3, "", "k"));
}

TEST_F(LanPassthroughTest, IpptSetDoesNothingForAnEmptyHost)
{
    platform.on("SelectLANBridge").succeeds(77);  // an error word that is not passed on
    for (const uint8_t mode : std::vector<uint8_t>{1, 2, 3, 4}) {
        // The other host field does not count.
        const zr_nexa_lan_ippt_t rec = mode == 3 ? ippt(0, mode, "00:01:02:03:04:05") : ippt(0, mode, "", "pc");
        EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&rec), 0u);
        expect_row(kIpptSet, {select_line(0)}, ippt_set_log(0, 0, mode, rec.host_mac, rec.host_name));
    }
}

TEST_F(LanPassthroughTest, IpptSetTagsEachRequestWithItsOwnStep)
{
    zr_nexa_lan_ippt_t adaptive = ippt(0, 0);
    adaptive.ippt_adaptive_enable = 1;
    const struct {
        zr_nexa_lan_ippt_t rec;
        uint32_t tag;
    } rows[] = {{adaptive, 0x2000},
                {ippt(0, 0), 0x3000},
                {ippt(0, 1, "00:01:02:03:04:05"), 0x4000},
                {ippt(0, 2, "00:01:02:03:04:05"), 0x4000},
                {ippt(0, 4, "00:01:02:03:04:05"), 0x4000},
                {ippt(0, 3, "", "pc"), 0x5000}};
    for (const auto& row : rows) {
        for (const uint32_t err : kErrorWords) {
            platform.reset();
            platform.on("SelectLANBridge").fails(err);
            EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&row.rec), err | 0x1000);
            expect_calls({select_line(0)});
            EXPECT_EQ(platform.log.size(), 3u);

            platform.reset();
            platform.on("SetIPPassthroughConfig", 1).fails(err);
            EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&row.rec), err | row.tag);
            EXPECT_EQ(platform.journal.size(), 2u);
            EXPECT_EQ(platform.log.size(), 3u) << "a refusal is not logged";
        }
        platform.reset();
        platform.on("SetIPPassthroughConfig").succeeds(0x55);
        EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&row.rec), 0x55u);
    }
    for (const uint32_t err : kErrorWords) {
        platform.reset();
        platform.on("SetIPPassthroughConfig", 2).fails(err);
        const zr_nexa_lan_ippt_t off = ippt(0, 0);
        EXPECT_EQ(zr_nexa_lan_ippt_set_v1(&off), err | 0x6000);
        EXPECT_EQ(platform.journal.size(), 3u);
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
        EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&rec), 0u);
        EXPECT_EQ(std::memcmp(&rec, &expected, sizeof(rec)), 0) << row.device_type;
        expect_row(kIpptGet, {"SelectLANBridge(4094)", "GetIPPassthroughConfig()"}, {info("entry")});
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
    EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&rec), 0u);
    EXPECT_EQ(std::memcmp(&rec, &expected, sizeof(rec)), 0);
    expect_row(kIpptGet, {"SelectLANBridge(1)", "GetIPPassthroughConfig()"}, {info("entry")});
}

TEST_F(LanPassthroughTest, IpptGetRefusesAnUnknownState)
{
    for (const int mode : {2, -1, 255, 256, 257}) {
        platform_gives_passthrough(mode, 4, 6);
        auto rec = poisoned<zr_nexa_lan_ippt_t>();
        rec.lan_id = 0;
        const auto as_it_was = rec;
        EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&rec), 1u) << mode;
        EXPECT_EQ(std::memcmp(&rec, &as_it_was, sizeof(rec)), 0);
        expect_row(kIpptGet, {"SelectLANBridge(0)", "GetIPPassthroughConfig()"}, {info("entry")});
    }
}

TEST_F(LanPassthroughTest, IpptGetReportsErrors)
{
    EXPECT_EQ(zr_nexa_lan_ippt_get_v1(nullptr), 4u);
    expect_row(kIpptGet, {}, {info("entry")});
    auto rec = poisoned<zr_nexa_lan_ippt_t>();
    for (const uint16_t lan_id : std::vector<uint16_t>{4095, 4096, 65535}) {
        rec.lan_id = lan_id;
        EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&rec), 6u);
        expect_row(kIpptGet, {}, {info("entry")});
    }
    rec.lan_id = 100;
    const auto as_it_was = rec;
    platform.on("SelectLANBridge").fails(14);
    EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&rec), 0x100Eu);
    expect_row(kIpptGet, {"SelectLANBridge(100)"}, {info("entry"), error("Select LAN Bridge (LAN_ID=100) error 14")});
    platform.on("SelectLANBridge").succeeds();

    platform_gives_passthrough(1, 4, 6);
    platform.on("GetIPPassthroughConfig").fails(14);
    EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&rec), 0x200Eu);
    EXPECT_EQ(std::memcmp(&rec, &as_it_was, sizeof(rec)), 0);
    expect_row(kIpptGet, {"SelectLANBridge(100)", "GetIPPassthroughConfig()"},
               {info("entry"), error("Get IP Passthrough Config (LAN_ID=100) error 14")});

    platform.on("GetIPPassthroughConfig").succeeds(14);
    EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&rec), 14u);
    EXPECT_EQ(rec.ippt_mode, 1);
}

// ---- gateway filters ----

constexpr const char* kFilterAdd = "zr_nexa_lan_ipptgwfilter_add_v1";
constexpr const char* kFilterGet = "zr_nexa_lan_ipptgwfilter_get_v1";
constexpr const char* kFilterDel = "zr_nexa_lan_ipptgwfilter_del_v1";

TEST_F(LanPassthroughTest, FilterAddAppends)
{
    const struct {
        uint32_t protocol;
        uint16_t start, end;
        const char* stored;
    } rows[] = {{1, 1, 65534, "start=1 end=65534 protocol=1"},
                {1, 80, 80, "start=80 end=80 protocol=1"},
                {2, 65534, 65534, "start=65534 end=65534 protocol=2"},
                {3, 0, 0, "start=0 end=0 protocol=4"},
                {3, 65535, 1, "start=65535 end=1 protocol=4"}};
    for (const auto& row : rows) {
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(0, row.protocol, row.start, row.end), 0u);
        expect_row(kFilterAdd,
                   {"SelectLANBridge(0)", kReadFilters,
                    std::string("SetIPPassthroughSoftwarePathFilters(request=2 count=1 flags=0 ") + row.stored + ")"},
                   {info("entry")});
    }
}

TEST_F(LanPassthroughTest, FilterAddKeepsWhatIsThereAndTheSecondHeaderWord)
{
    // The first header word is the request's again, whatever came back; an equal filter is no obstacle.
    platform_gives_filters({9, 4, 0xFFFFFFFF, {{10, 11, 1}, {20, 21, 2}, {0, 0, 4}, {30, 31, 99}}});
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(4094, 1, 10, 11), 0u);
    expect_row(kFilterAdd,
               {"SelectLANBridge(4094)", kReadFilters,
                "SetIPPassthroughSoftwarePathFilters(request=2 count=5 flags=4294967295 start=10 end=11 protocol=1 "
                "start=20 end=21 protocol=2 start=0 end=0 protocol=4 start=30 end=31 protocol=99 "
                "start=10 end=11 protocol=1)"},
               {info("entry")});
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
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(row.lan_id, row.protocol, row.start, row.end), row.result)
            << row.lan_id << " " << row.protocol << " " << row.start << " " << row.end;
        expect_row(kFilterAdd, {}, {info("entry")});
    }
}

TEST_F(LanPassthroughTest, FilterAddRefusesASixth)
{
    for (const uint8_t count : std::vector<uint8_t>{5, 6, 255}) {
        qcmap_msgr_sw_path_filters_conf_t filters = {};
        filters.count = count;
        platform_gives_filters(filters);
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(0, 1, 80, 80), 2u);
        expect_row(kFilterAdd, {"SelectLANBridge(0)", kReadFilters},
                   {info("entry"), error("IPPT SW Filters config full, number of filters:5")});
    }
}

TEST_F(LanPassthroughTest, FilterAddReportsErrorsStepByStep)
{
    platform.on("SelectLANBridge").fails(14);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(7, 1, 80, 80), 0x100Eu);
    expect_row(kFilterAdd, {"SelectLANBridge(7)"}, {info("entry"), error("Select LAN Bridge (LAN_ID=7) error 14")});
    platform.on("SelectLANBridge").succeeds();

    platform.on("GetIPPassthroughSoftwarePathFilters").fails(3);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(7, 1, 80, 80), 0x2003u);
    expect_row(kFilterAdd, {"SelectLANBridge(7)", kReadFilters}, {info("entry"), error("Get IPPT SW Filters error 3")});
    platform.on("GetIPPassthroughSoftwarePathFilters").succeeds();

    const std::string write =
        "SetIPPassthroughSoftwarePathFilters(request=2 count=1 flags=0 start=80 end=80 protocol=1)";
    platform.on("SetIPPassthroughSoftwarePathFilters").fails(62);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(7, 1, 80, 80), 0x303Eu);
    expect_row(kFilterAdd, {"SelectLANBridge(7)", kReadFilters, write},
               {info("entry"), error("Set IPPT SW Filters error 62")});

    platform.on("SetIPPassthroughSoftwarePathFilters").succeeds(62);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(7, 1, 80, 80), 62u);
    expect_row(kFilterAdd, {"SelectLANBridge(7)", kReadFilters, write}, {info("entry")});
}

TEST_F(LanPassthroughTest, FilterGetMapsTheProtocols)
{
    platform_gives_filters({2, 5, 1, {{10, 11, 1}, {20, 21, 3}, {30, 31, 2}, {40, 41, 4}, {50, 51, 0}}});
    auto list = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(100, &list), 0u);
    expect_row(kFilterGet, {"SelectLANBridge(100)", kReadFilters}, {info("entry")});
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
        for (const uint8_t byte : memory.behind)
            EXPECT_EQ(byte, 0xA5);
    }
}

TEST_F(LanPassthroughTest, FilterGetClearsTheListInAnyCase)
{
    const zr_nexa_lan_ipptgwfilter_list_t empty = {};
    auto list = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(4094, &list), 0u);
    EXPECT_EQ(std::memcmp(&list, &empty, sizeof(list)), 0);
    expect_row(kFilterGet, {"SelectLANBridge(4094)", kReadFilters}, {info("entry")});
    for (const uint32_t lan_id : {4095u, 65536u}) {
        list = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(lan_id, &list), 6u);
        EXPECT_EQ(std::memcmp(&list, &empty, sizeof(list)), 0);
        expect_row(kFilterGet, {}, {info("entry")});
    }
    platform.on("SelectLANBridge").fails(14);
    list = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(7, &list), 0x100Eu);
    EXPECT_EQ(std::memcmp(&list, &empty, sizeof(list)), 0);
    expect_row(kFilterGet, {"SelectLANBridge(7)"}, {info("entry"), error("Select LAN Bridge (LAN_ID=7) error 14")});
    platform.on("SelectLANBridge").succeeds();

    platform_gives_filters({2, 1, 0, {{10, 11, 1}}});
    platform.on("GetIPPassthroughSoftwarePathFilters").fails(3);
    list = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(7, &list), 0x2003u);
    EXPECT_EQ(std::memcmp(&list, &empty, sizeof(list)), 0);
    expect_row(kFilterGet, {"SelectLANBridge(7)", kReadFilters}, {info("entry"), error("Get IPPT SW Filters error 3")});

    platform.on("GetIPPassthroughSoftwarePathFilters").succeeds(3);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(7, &list), 3u);
    EXPECT_EQ(list.protocol[0], 1u);
    expect_row(kFilterGet, {"SelectLANBridge(7)", kReadFilters}, {info("entry")});
}

TEST_F(LanPassthroughTest, FilterDelMovesTheLaterOnesUp)
{
    platform_gives_filters({9, 3, 0x80000001, {{10, 11, 1}, {20, 21, 99}, {30, 31, 4}, {40, 41, 1}}});
    const struct {
        uint8_t number;
        const char* kept;
    } rows[] = {{1, "start=20 end=21 protocol=99 start=30 end=31 protocol=4"},
                {2, "start=10 end=11 protocol=1 start=30 end=31 protocol=4"},
                {3, "start=10 end=11 protocol=1 start=20 end=21 protocol=99"}};
    for (const auto& row : rows) {
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(4094, row.number), 0u);
        expect_row(
            kFilterDel,
            {"SelectLANBridge(4094)", kReadFilters,
             std::string("SetIPPassthroughSoftwarePathFilters(request=2 count=2 flags=2147483649 ") + row.kept + ")"},
            {info("entry")});
    }
    platform_gives_filters({2, 1, 0, {{10, 11, 1}}});
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(0, 1), 0u);
    expect_row(kFilterDel,
               {"SelectLANBridge(0)", kReadFilters, "SetIPPassthroughSoftwarePathFilters(request=2 count=0 flags=0)"},
               {info("entry")});
}

TEST_F(LanPassthroughTest, FilterDelTakesNoMoreThanFiveForGranted)
{
    for (const uint8_t count : std::vector<uint8_t>{5, 6, 255}) {
        platform_gives_filters({2, count, 0, {{1, 1, 1}, {2, 2, 1}, {3, 3, 1}, {4, 4, 1}, {5, 5, 1}}});
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(0, 5), 0u);
        expect_row(kFilterDel,
                   {"SelectLANBridge(0)", kReadFilters,
                    "SetIPPassthroughSoftwarePathFilters(request=2 count=4 flags=0 start=1 end=1 protocol=1 start=2 "
                    "end=2 protocol=1 start=3 end=3 protocol=1 start=4 end=4 protocol=1)"},
                   {info("entry")});
    }
}

TEST_F(LanPassthroughTest, FilterDelChecksInOrder)
{
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(4095, 0), 6u);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(65536, 1), 6u);
    for (const uint8_t number : std::vector<uint8_t>{0, 6, 128, 255}) {
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(4094, number), 4u) << int{number};
    }
    expect_calls({});
    for (const auto& line : platform.log)
        EXPECT_EQ(line.text, "entry");
}

TEST_F(LanPassthroughTest, FilterDelRefusesAPlaceWithoutAFilter)
{
    const struct {
        uint8_t count, number;
    } rows[] = {{0, 1}, {0, 5}, {2, 3}, {4, 5}};
    for (const auto& row : rows) {
        platform_gives_filters({2, row.count, 0, {{1, 1, 1}, {2, 2, 1}, {3, 3, 1}, {4, 4, 1}, {5, 5, 1}}});
        EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(0, row.number), 2u);
        expect_row(kFilterDel, {"SelectLANBridge(0)", kReadFilters},
                   {info("entry"), error("IPPT SW Filters config no exist")});
    }
}

TEST_F(LanPassthroughTest, FilterDelReportsErrorsStepByStep)
{
    platform_gives_filters({2, 1, 0, {{10, 11, 1}}});
    platform.on("SelectLANBridge").fails(14);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(7, 1), 0x100Eu);
    expect_row(kFilterDel, {"SelectLANBridge(7)"}, {info("entry"), error("Select LAN Bridge (LAN_ID=7) error 14")});
    platform.on("SelectLANBridge").succeeds();

    platform.on("GetIPPassthroughSoftwarePathFilters").fails(3);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(7, 1), 0x2003u);
    expect_row(kFilterDel, {"SelectLANBridge(7)", kReadFilters}, {info("entry"), error("Get IPPT SW Filters error 3")});
    platform.on("GetIPPassthroughSoftwarePathFilters").succeeds();

    const std::string write = "SetIPPassthroughSoftwarePathFilters(request=2 count=0 flags=0)";
    platform.on("SetIPPassthroughSoftwarePathFilters").fails(62);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(7, 1), 0x303Eu);
    expect_row(kFilterDel, {"SelectLANBridge(7)", kReadFilters, write},
               {info("entry"), error("Set IPPT SW Filters error 62")});

    platform.on("SetIPPassthroughSoftwarePathFilters").succeeds(62);
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_del_v1(7, 1), 62u);
    expect_row(kFilterDel, {"SelectLANBridge(7)", kReadFilters, write}, {info("entry")});
}

// ---- software-path addresses ----

constexpr const char* kPathAdd = "zr_nexa_lan_swpathfilter_add_v1";
constexpr const char* kPathDel = "zr_nexa_lan_swpathfilter_del_v1";
constexpr const char* kPathGet = "zr_nexa_lan_swpathfilter_get_v1";

uint32_t network_word(uint8_t a, uint8_t b, uint8_t c, uint8_t d)
{
    const uint8_t bytes[] = {a, b, c, d};
    uint32_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

TEST_F(LanPassthroughTest, PathAddressesAreHandedOnAsTheyAre)
{
    const struct {
        uint32_t address;
        const char* text;
    } rows[] = {{network_word(192, 168, 225, 20), "192.168.225.20"},
                {network_word(255, 255, 255, 255), "255.255.255.255"},
                {0, "0.0.0.0"}};
    for (const auto& row : rows) {
        const std::string word = std::to_string(row.address);
        EXPECT_EQ(zr_nexa_lan_swpathfilter_add_v1(row.address), 0u);
        expect_row(kPathAdd, {"ZR_AddIPToSWPathFilters(" + word + ")"},
                   {info("entry"), info(std::string("Add SW Path Filter IP ") + row.text + " error 0")});
        EXPECT_EQ(zr_nexa_lan_swpathfilter_del_v1(row.address), 0u);
        expect_row(kPathDel, {"ZR_DeleteIPFromSWPathFilters(" + word + ")"},
                   {info("entry"), info(std::string("Delete SW Path Filter IP ") + row.text + " error 0")});
    }
}

TEST_F(LanPassthroughTest, PathAddAndDelReportErrors)
{
    platform.on("ZR_AddIPToSWPathFilters").fails(62);
    EXPECT_EQ(zr_nexa_lan_swpathfilter_add_v1(0xFFFFFFFE), 0x103Eu);
    expect_row(kPathAdd, {"ZR_AddIPToSWPathFilters(4294967294)"},
               {info("entry"), error("Add SW Path Filter IP failure, ipv4_address:-2")});
    platform.on("ZR_AddIPToSWPathFilters").succeeds(62);
    EXPECT_EQ(zr_nexa_lan_swpathfilter_add_v1(0), 62u);
    expect_row(kPathAdd, {"ZR_AddIPToSWPathFilters(0)"},
               {info("entry"), info("Add SW Path Filter IP 0.0.0.0 error 62")});

    platform.on("ZR_DeleteIPFromSWPathFilters").fails(25);
    EXPECT_EQ(zr_nexa_lan_swpathfilter_del_v1(17), 0x1019u);
    expect_row(kPathDel, {"ZR_DeleteIPFromSWPathFilters(17)"},
               {info("entry"), error("Delete SW Path Filter IP failure, ipv4_address:17")});
    platform.on("ZR_DeleteIPFromSWPathFilters").succeeds(25);
    EXPECT_EQ(zr_nexa_lan_swpathfilter_del_v1(0), 25u);
    expect_row(kPathDel, {"ZR_DeleteIPFromSWPathFilters(0)"},
               {info("entry"), info("Delete SW Path Filter IP 0.0.0.0 error 25")});
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
        EXPECT_EQ(zr_nexa_lan_swpathfilter_get_v1(&memory.list), 0u);
        EXPECT_EQ(memory.list.count, row.copied);
        for (uint32_t i = 0; i < 5; ++i) {
            EXPECT_EQ(memory.list.ipv4_address[i], i < row.copied ? addresses[i] : 0xA5A5A5A5u) << row.count;
        }
        for (const uint8_t byte : memory.behind)
            EXPECT_EQ(byte, 0xA5);
        expect_row(kPathGet, {"ZR_GetIPFromSWPathFilters(count=0)"},
                   {info("entry"), info("Get SW Path Filter IP successfully")});
    }
}

TEST_F(LanPassthroughTest, PathGetReportsErrors)
{
    EXPECT_EQ(zr_nexa_lan_swpathfilter_get_v1(nullptr), 4u);
    expect_row(kPathGet, {}, {info("entry")});

    platform.on("ZR_GetIPFromSWPathFilters").fails(3).gives("count", int32_t{2});
    auto list = poisoned<zr_nexa_lan_swpathfilter_list_t>();
    EXPECT_EQ(zr_nexa_lan_swpathfilter_get_v1(&list), 0x1003u);
    EXPECT_TRUE(is_poisoned(list));
    expect_row(kPathGet, {"ZR_GetIPFromSWPathFilters(count=0)"},
               {info("entry"), error("Get SW Path Filter IP failure")});

    platform.on("ZR_GetIPFromSWPathFilters").succeeds(50);
    EXPECT_EQ(zr_nexa_lan_swpathfilter_get_v1(&list), 50u);
    EXPECT_EQ(list.count, 2u);
}

}  // namespace
