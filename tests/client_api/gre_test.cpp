// The GRE functions with the real file work, on the scripted double's shell: what would be copied over the file stands
// in the temporary file.
#include <arpa/inet.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <new>
#include <pugixml.hpp>
#include <thread>

#include "api_test.h"
#include "ipacm_cfg.h"
#include "private_ipacm.h"
#include "small_xml.h"

// The waits of the file work. Without somebody to see them they are real.
static std::function<void(useconds_t)> on_wait;

extern "C" int usleep(useconds_t microseconds)
{
    if (on_wait) {
        on_wait(microseconds);
    } else {
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
    }
    return 0;
}

namespace {

using ipacm::content_of;
using ipacm::kConfigFile;
using ipacm::kTemporaryFile;
using ipacm::put_in_place;
using ipacm::write_file;

constexpr const char* kSet = "zr_nexa_wan_gre_ipacfg_set_v1";
constexpr const char* kGet = "zr_nexa_wan_gre_ipacfg_get_v1";
constexpr const char* kWork = "ZR_GetSetIpacmConfigFromXML";

const std::vector<std::string> kSaveCommands = {
    "ds_system_call(command=\"fsync -d /var/run/data/zr_IPACM_cfg.tmp\")",
    "ds_system_call(command=\"cp /var/run/data/zr_IPACM_cfg.tmp /etc/data/ipa/IPACM_cfg.xml \")",
    "ds_system_call(command=\"fsync -d /etc/data/ipa/IPACM_cfg.xml\")",
    "ds_system_call(command=\"rm /var/run/data/zr_IPACM_cfg.tmp \")"};

std::string file_with(const std::string& gre_flag)
{
    return "<?xml version=\"1.0\"?>\n"
           "<system>\n"
           "\t<ODUCfg>\n"
           "\t\t<OduMode>router</OduMode>\n"
           "\t</ODUCfg>\n"
           "\t<IPACM>\n"
           "\t\t<IPACMIface count=\"2\">\n"
           "\t\t\t<Name>rmnet_data0</Name>\n"
           "\t\t\t<Category a=\"1 &amp; 2\" />\n"
           "\t\t</IPACMIface>\n" +
           gre_flag +
           "\t\t<IPACMNAT>\n"
           "\t\t\t<MaxNatEntries>500</MaxNatEntries>\n"
           "\t\t</IPACMNAT>\n"
           "\t</IPACM>\n"
           "</system>\n";
}

// A record with the given counts; addresses 10.0.0.1, 10.0.0.2, ... and 255.255.0.0, 255.255.1.0, ...
zr_nexa_wan_gre_ipacfg_t record(uint8_t enabled, uint8_t servers, uint8_t masks)
{
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    cfg.gre_enabled = enabled;
    cfg.num_of_server_addrs = servers;
    for (uint32_t i = 0; i < 10; ++i) {
        cfg.server_ipv4_addr[i] = htonl(0x0A000001 + i);
    }
    cfg.num_of_subnet_masks = masks;
    for (uint32_t i = 0; i < 2; ++i) {
        cfg.subnet_mask[i] = htonl(0xFFFF0000 + (i << 8));
    }
    return cfg;
}

struct Named {
    const char* function;
    ExpectedRecord record;
};

class GreTest : public ipacm::Folders {
protected:
    scripted::Platform& platform = scripted::platform();

    void SetUp() override
    {
        platform.reset();
        Folders::SetUp();
    }
    void TearDown() override
    {
        on_wait = nullptr;
        EXPECT_THAT(platform.complaints, testing::IsEmpty());
        EXPECT_THAT(platform.unused_answers(), testing::IsEmpty());
        zr_nexa_client_uninit();
        platform.reset();
        Folders::TearDown();
    }
    void expect_row(const std::vector<std::string>& calls, const std::vector<Named>& records)
    {
        EXPECT_THAT(platform.journal, testing::ElementsAreArray(calls));
        std::vector<std::string> expected;
        for (const auto& named : records) {
            expected.push_back(shown(named.record.level, named.function, named.record.text));
        }
        std::vector<std::string> seen;
        for (const auto& line : platform.log) {
            seen.push_back(shown(line.level, line.function, line.text));
        }
        EXPECT_THAT(seen, testing::ElementsAreArray(expected));
        platform.forget();
    }
    // Reads a file with this GREFlag content.
    zr_nexa_wan_gre_ipacfg_t read(const std::string& content)
    {
        write_file(kConfigFile, file_with("<GREFlag>" + content + "</GREFlag>"));
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
        EXPECT_THAT(platform.journal, testing::IsEmpty()) << "reading ran a command";
        return cfg;
    }
};

using GreSetTest = GreTest;
using GreGetTest = GreTest;

TEST_F(GreSetTest, RefusesNull)
{
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(nullptr), 4);
    expect_row({}, {{kSet, info("entry")}, {kSet, error("gre_ipacfg is null")}});
}

TEST_F(GreSetTest, RefusesTooMany)
{
    // The file is missing: had it been opened, the call would not come back.
    struct Row {
        uint8_t servers;
        uint8_t masks;
        bool servers_logged;
        bool masks_logged;
    };
    for (const Row& row : {Row{11, 0, true, false},
                           {255, 2, true, false},
                           {11, 3, true, true},
                           {255, 255, true, true},
                           {10, 3, false, true},
                           {0, 255, false, true}}) {
        const auto cfg = record(1, row.servers, row.masks);
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 4);
        std::vector<Named> records = {{kSet, info("entry")}};
        if (row.servers_logged) records.push_back({kSet, error("num_of_server_addrs greater than 10")});
        if (row.masks_logged) records.push_back({kSet, error("num_of_subnet_masks greater than 2")});
        expect_row({}, records);
    }
    EXPECT_FALSE(std::filesystem::exists(kTemporaryFile));
}

TEST_F(GreSetTest, WritesTheElementsInOrderAndRunsTheCommands)
{
    const std::string before = file_with(
        "\t\t<GREFlag old=\"kept\">\n\t\t\t<GREServer>1.1.1.1</GREServer>\n\t\t\t<Other>gone</Other>\n"
        "\t\t\t<GREEnabled>0</GREEnabled>\n\t\t\t<GREServerSubnet>2.2.2.2</GREServerSubnet>text\n\t\t</GREFlag>\n");
    write_file(kConfigFile, before);
    const auto cfg = record(1, 2, 1);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    expect_row(kSaveCommands, {{kSet, info("entry")},
                               {kSet, info("gre_config.server_ipv4_addr[0]:10.0.0.1")},
                               {kSet, info("gre_config.server_ipv4_addr[1]:10.0.0.2")},
                               {kSet, info("gre_config.subnet_mask[0]:255.255.0.0")},
                               {kWork, info("SET gre ipa option")},
                               {kWork, info("GRE ipa enable, num_of_server_addrs:2, num_of_subnet_masks:1")},
                               {kWork, info("serverIP[0]:10.0.0.1")},
                               {kWork, info("serverIP[1]:10.0.0.2")},
                               {kWork, info("subnetIP[0]:255.255.0.0")},
                               {kSet, info("zr_nexa_gre_ipacfg_set_v1 success")}});
    EXPECT_EQ(content_of(kTemporaryFile), file_with("\t\t<GREFlag old=\"kept\">\n"
                                                    "\t\t\t<GREEnabled>1</GREEnabled>\n"
                                                    "\t\t\t<GREServer>10.0.0.1</GREServer>\n"
                                                    "\t\t\t<GREServer>10.0.0.2</GREServer>\n"
                                                    "\t\t\t<GREServerSubnet>255.255.0.0</GREServerSubnet>\n"
                                                    "\t\t</GREFlag>\n"));
    EXPECT_EQ(content_of(kConfigFile), before) << "the file is replaced by the copy only";
}

TEST_F(GreSetTest, TenServersAndTwoMasksAreAccepted)
{
    write_file(kConfigFile, file_with("<GREFlag/>"));
    const auto cfg = record(1, 10, 2);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    std::string expected = "\t\t<GREFlag>\n\t\t\t<GREEnabled>1</GREEnabled>\n";
    for (int i = 1; i <= 10; ++i) {
        expected += "\t\t\t<GREServer>10.0.0." + std::to_string(i) + "</GREServer>\n";
    }
    expected +=
        "\t\t\t<GREServerSubnet>255.255.0.0</GREServerSubnet>\n"
        "\t\t\t<GREServerSubnet>255.255.1.0</GREServerSubnet>\n\t\t</GREFlag>\n";
    EXPECT_EQ(content_of(kTemporaryFile), file_with(expected));
    EXPECT_EQ(platform.log.size(), 1u + 12 + 2 + 12 + 1);
}

TEST_F(GreSetTest, AnythingBut1DropsTheAddresses)
{
    write_file(kConfigFile, file_with("<GREFlag><GREEnabled>1</GREEnabled><GREServer>1.1.1.1</GREServer></GREFlag>"));
    for (const uint8_t enabled : {uint8_t{0}, uint8_t{2}, uint8_t{255}}) {
        const auto cfg = record(enabled, 1, 1);
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
        expect_row(kSaveCommands, {{kSet, info("entry")},
                                   {kSet, info("gre_config.server_ipv4_addr[0]:10.0.0.1")},
                                   {kSet, info("gre_config.subnet_mask[0]:255.255.0.0")},
                                   {kWork, info("SET gre ipa option")},
                                   {kSet, info("zr_nexa_gre_ipacfg_set_v1 success")}});
        EXPECT_EQ(content_of(kTemporaryFile),
                  file_with("\t\t<GREFlag>\n\t\t\t<GREEnabled>0</GREEnabled>\n\t\t</GREFlag>\n"));
    }
}

TEST_F(GreSetTest, WithoutAddressesOnlyTheSwitchIsWritten)
{
    write_file(kConfigFile, file_with("<GREFlag/>"));
    const auto cfg = record(1, 0, 0);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    expect_row(kSaveCommands, {{kSet, info("entry")},
                               {kWork, info("SET gre ipa option")},
                               {kWork, info("GRE ipa enable, num_of_server_addrs:0, num_of_subnet_masks:0")},
                               {kSet, info("zr_nexa_gre_ipacfg_set_v1 success")}});
    EXPECT_EQ(content_of(kTemporaryFile),
              file_with("\t\t<GREFlag>\n\t\t\t<GREEnabled>1</GREEnabled>\n\t\t</GREFlag>\n"));
}

TEST_F(GreSetTest, WithoutTheElementTheFileIsSavedAsItWas)
{
    for (const std::string& content : {file_with(""), std::string("<?xml version=\"1.0\"?>\n<system />\n"),
                                       std::string("<?xml version=\"1.0\"?>\n<GREFlag />\n")}) {
        write_file(kConfigFile, content);
        const auto cfg = record(1, 1, 1);
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
        EXPECT_EQ(content_of(kTemporaryFile), content);
        expect_row(kSaveCommands, {{kSet, info("entry")},
                                   {kSet, info("gre_config.server_ipv4_addr[0]:10.0.0.1")},
                                   {kSet, info("gre_config.subnet_mask[0]:255.255.0.0")},
                                   {kWork, info("SET gre ipa option")},
                                   {kWork, info("GRE ipa enable, num_of_server_addrs:1, num_of_subnet_masks:1")},
                                   {kWork, info("serverIP[0]:10.0.0.1")},
                                   {kWork, info("subnetIP[0]:255.255.0.0")},
                                   {kSet, info("zr_nexa_gre_ipacfg_set_v1 success")}});
    }
}

TEST_F(GreSetTest, OnlyTheFirstElementOfTheNameCounts)
{
    write_file(kConfigFile, file_with("\t\t<GREFlag />\n\t\t<GREFlag>\n\t\t\t<GREServer>9.9.9.9</GREServer>\n"
                                      "\t\t</GREFlag>\n"));
    const auto cfg = record(0, 0, 0);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(content_of(kTemporaryFile),
              file_with("\t\t<GREFlag>\n\t\t\t<GREEnabled>0</GREEnabled>\n\t\t</GREFlag>\n"
                        "\t\t<GREFlag>\n\t\t\t<GREServer>9.9.9.9</GREServer>\n\t\t</GREFlag>\n"));
}

TEST_F(GreSetTest, FailingCommandsDoNotStopTheOthers)
{
    write_file(kConfigFile, file_with("<GREFlag/>"));
    platform.on("ds_system_call").fails(127);
    const auto cfg = record(1, 0, 0);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_THAT(platform.journal, testing::ElementsAreArray(kSaveCommands));
}

TEST_F(GreSetTest, AFailedSaveIsNotReported)
{
    std::filesystem::remove("/run/data");
    const std::string before = file_with("<GREFlag/>");
    write_file(kConfigFile, before);
    const auto cfg = record(1, 0, 0);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_THAT(platform.journal, testing::ElementsAreArray(kSaveCommands));
    EXPECT_EQ(content_of(kConfigFile), before);
}

TEST_F(GreSetTest, NeedsNoSessionAndUsesNone)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    write_file(kConfigFile, file_with("<GREFlag/>"));
    auto cfg = record(1, 0, 0);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_THAT(platform.journal, testing::ElementsAreArray(kSaveCommands));
    platform.forget();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
    EXPECT_THAT(platform.journal, testing::IsEmpty());
}

TEST_F(GreGetTest, RefusesNull)
{
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(nullptr), 4);
    expect_row({}, {{kGet, info("entry")}, {kGet, error("gre_ipacfg is null!")}});
}

TEST_F(GreGetTest, ReadsTheAddressesInOrderAndClearsTheRest)
{
    const auto cfg = read(
        "<GREServerSubnet>255.255.255.0</GREServerSubnet><GREServer>10.0.0.1</GREServer><Other>1</Other>"
        "<GREEnabled>1</GREEnabled><GREServer>192.168.1.254</GREServer>");
    zr_nexa_wan_gre_ipacfg_t expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.gre_enabled = 1;
    expected.num_of_server_addrs = 2;
    expected.server_ipv4_addr[0] = htonl(0x0A000001);
    expected.server_ipv4_addr[1] = htonl(0xC0A801FE);
    expected.num_of_subnet_masks = 1;
    expected.subnet_mask[0] = htonl(0xFFFFFF00);
    EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << "padding included";
    const auto number = [](uint32_t host_order) { return std::to_string(static_cast<int>(htonl(host_order))); };
    expect_row({}, {{kGet, info("entry")},
                    {kWork, info("GET gre ipa option")},
                    {kWork, info("GET gre ipa status:1")},
                    {kWork, info("cfg_value->server_ipv4_addr[0]:" + number(0x0A000001))},
                    {kWork, info("cfg_value->server_ipv4_addr[1]:" + number(0xC0A801FE))},
                    {kWork, info("cfg_value->subnet[0]:" + number(0xFFFFFF00))},
                    {kGet, info("zr_nexa_gre_ipacfg_get_v1 success")}});
}

TEST_F(GreGetTest, Exactly0IsOffAndHidesTheAddresses)
{
    for (const char* const off : {"0", "<![CDATA[0]]>", "&#48;", "<!-- - -->0"}) {
        const auto cfg = read(std::string("<GREEnabled>") + off +
                              "</GREEnabled><GREServer>10.0.0.1</GREServer>"
                              "<GREServerSubnet>255.0.0.0</GREServerSubnet><GREEnabled>1</GREEnabled>");
        const zr_nexa_wan_gre_ipacfg_t expected = {};
        EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << off;
        expect_row({}, {{kGet, info("entry")},
                        {kWork, info("GET gre ipa option")},
                        {kGet, info("zr_nexa_gre_ipacfg_get_v1 success")}});
    }
}

TEST_F(GreGetTest, AnythingElseIsOn)
{
    for (const char* const on :
         {"<GREEnabled>1</GREEnabled>", "<GREEnabled>00</GREEnabled>", "<GREEnabled> 0</GREEnabled>",
          "<GREEnabled>0 </GREEnabled>", "<GREEnabled>no</GREEnabled>", "<GREEnabled/>", "",
          "<greenabled>0</greenabled>", "<GREEnabled><v>0</v></GREEnabled>",
          "<GREEnabled>1</GREEnabled><GREEnabled>0</GREEnabled>"}) {
        const auto cfg = read(std::string(on) + "<GREServer>10.0.0.1</GREServer>");
        EXPECT_EQ(cfg.gre_enabled, 1) << on;
        EXPECT_EQ(cfg.num_of_server_addrs, 1) << on;
        EXPECT_EQ(cfg.server_ipv4_addr[0], htonl(0x0A000001)) << on;
        platform.forget();
    }
}

TEST_F(GreGetTest, AMissingElementIsOnWithoutAddresses)
{
    for (const std::string& content : {file_with(""), std::string("<system/>"), std::string("<x/>")}) {
        write_file(kConfigFile, content);
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
        zr_nexa_wan_gre_ipacfg_t expected;
        std::memset(&expected, 0, sizeof(expected));
        expected.gre_enabled = 1;
        EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0);
        expect_row({}, {{kGet, info("entry")},
                        {kWork, info("GET gre ipa option")},
                        {kWork, info("GET gre ipa status:1")},
                        {kGet, info("zr_nexa_gre_ipacfg_get_v1 success")}});
    }
}

TEST_F(GreGetTest, AnAddressThatDoesNotParseCountsAs0)
{
    const auto cfg = read(
        "<GREServer>10.0.0.1</GREServer><GREServer/><GREServer>10.0.1</GREServer><GREServer> 10.0.0.2</GREServer>"
        "<GREServer>10.0.0.256</GREServer><GREServer>10.0.0.3</GREServer><GREServerSubnet>/24</GREServerSubnet>");
    EXPECT_EQ(cfg.num_of_server_addrs, 6);
    EXPECT_EQ(cfg.server_ipv4_addr[0], htonl(0x0A000001));
    for (int i = 1; i < 5; ++i) {
        EXPECT_EQ(cfg.server_ipv4_addr[i], 0u) << i;
    }
    EXPECT_EQ(cfg.server_ipv4_addr[5], htonl(0x0A000003));
    EXPECT_EQ(cfg.num_of_subnet_masks, 1);
    EXPECT_EQ(cfg.subnet_mask[0], 0u);
    EXPECT_EQ(platform.log[4].text, "cfg_value->server_ipv4_addr[1]:0");
    EXPECT_EQ(platform.log[9].text, "cfg_value->subnet[0]:0");
}

TEST_F(GreGetTest, MoreThanTheRecordHoldsIsNeitherStoredNorCountedNorLogged)
{
    for (const int extra : {0, 1, 300}) {
        std::string content;
        for (int i = 0; i < 10 + extra; ++i) {
            content += "<GREServer>10.0." + std::to_string(i / 256) + "." + std::to_string(i % 256) + "</GREServer>";
        }
        for (int i = 0; i < 2 + extra; ++i) {
            content += "<GREServerSubnet>255.255." + std::to_string(i % 256) + ".0</GREServerSubnet>";
        }
        const auto cfg = read(content);
        EXPECT_EQ(cfg.num_of_server_addrs, 10);
        for (uint32_t i = 0; i < 10; ++i) {
            EXPECT_EQ(cfg.server_ipv4_addr[i], htonl(0x0A000000 + i));
        }
        EXPECT_EQ(cfg.num_of_subnet_masks, 2);
        EXPECT_EQ(cfg.subnet_mask[0], htonl(0xFFFF0000));
        EXPECT_EQ(cfg.subnet_mask[1], htonl(0xFFFF0100));
        EXPECT_EQ(platform.log.size(), 1u + 2 + 12 + 1);
        platform.forget();
    }
}

TEST_F(GreGetTest, ReadingChangesNothing)
{
    const auto before = std::filesystem::last_write_time(
        (read("<GREEnabled>0</GREEnabled><GREServer>10.0.0.1</GREServer>"), kConfigFile));
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
    EXPECT_EQ(std::filesystem::last_write_time(kConfigFile), before);
    EXPECT_FALSE(std::filesystem::exists(kTemporaryFile));
}

TEST_F(GreTest, TheWorkItselfAlwaysGives0)
{
    write_file(kConfigFile, file_with("<GREFlag/>"));
    auto cfg = record(1, 1, 1);
    for (const uint32_t is_set : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ZR_GetSetIpacmConfigFromXML(is_set, &cfg), 0);
        EXPECT_EQ(platform.log[0].text, is_set == 0 ? "GET gre ipa option" : "SET gre ipa option");
        platform.forget();
    }
}

TEST_F(GreTest, SavingWritesTheDocumentAndRunsTheCommands)
{
    pugi::xml_document document;
    document.append_child("a").append_child("b");
    zr_nexa_ipacm_cfg_save(document);
    EXPECT_EQ(content_of(kTemporaryFile), "<?xml version=\"1.0\"?>\n<a>\n\t<b />\n</a>\n");
    expect_row(kSaveCommands, {});
}

// Deeper than a stack of 8 MiB, if it took a frame a level.
TEST_F(GreTest, AnElementMayNestToAnyDepth)
{
    std::string deep;
    for (int i = 0; i < 500000; ++i) {
        deep += "<a>";
    }
    for (int i = 0; i < 500000; ++i) {
        deep += "</a>";
    }
    const auto cfg = read("<GREEnabled>0</GREEnabled>" + deep);
    EXPECT_EQ(cfg.gre_enabled, 0);
    const auto off = record(0, 0, 0);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&off), 0);
    EXPECT_EQ(content_of(kTemporaryFile),
              file_with("\t\t<GREFlag>\n\t\t\t<GREEnabled>0</GREEnabled>\n\t\t</GREFlag>\n"));
}

// The parser's memory: one request of a run is refused, or ends its thread.
class GreMemoryTest : public GreTest {
protected:
    static inline int requests = 0;
    static inline int refused = 0;    // counted from 1
    static inline int cancelled = 0;  // the thread that makes this one
    static inline bool by_exception = false;

    static void* allocate(size_t size)
    {
        ++requests;
        if (requests == cancelled) {
            pthread_cancel(pthread_self());
            pthread_testcancel();
        }
        if (requests != refused) return std::malloc(size);
        if (by_exception) throw std::bad_alloc();
        return nullptr;
    }
    void SetUp() override
    {
        GreTest::SetUp();
        pugi::set_memory_management_functions(allocate, std::free);
    }
    void TearDown() override
    {
        pugi::set_memory_management_functions(std::malloc, std::free);
        GreTest::TearDown();
    }
};

TEST_F(GreMemoryTest, AWriteIsWholeOrIsNotDone)
{
    int not_done = 0;
    const auto cfg = record(1, 10, 2);
    // The parser asks for memory in large pieces: files of many sizes, so that the new elements need another one. Where
    // pointers are half as long, twice as many elements fit into one.
    constexpr int kMostPadding = sizeof(void*) == 8 ? 500 : 1020;
    for (int padding = 0; padding < kMostPadding; ++padding) {
        std::string elements;
        for (int i = 0; i < padding; ++i) {
            elements += "<x/>";
        }
        write_file(kConfigFile, file_with("<GREFlag/><Padding>" + elements + "</Padding>"));
        refused = 0;
        requests = 0;
        ASSERT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
        const std::string whole = content_of(kTemporaryFile);
        const int asked = requests;
        pugi::xml_document document;
        requests = 0;
        ASSERT_TRUE(document.load_file(kConfigFile));
        const int to_load = requests;
        // A refusal while the file is loaded is tried again 50 ms later: once is enough to see.
        for (refused = padding == 0 ? 1 : to_load + 1; refused <= asked; ++refused) {
            for (const bool throws : {false, true}) {
                SCOPED_TRACE(std::to_string(padding) + " elements, request " + std::to_string(refused));
                by_exception = throws;
                requests = 0;
                std::filesystem::remove(kTemporaryFile);
                platform.forget();
                ASSERT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
                if (refused <= to_load) {
                    EXPECT_EQ(content_of(kTemporaryFile), whole);
                    EXPECT_THAT(platform.journal, testing::ElementsAreArray(kSaveCommands));
                } else {
                    EXPECT_FALSE(std::filesystem::exists(kTemporaryFile));
                    EXPECT_THAT(platform.journal, testing::IsEmpty());
                    ++not_done;
                }
            }
        }
    }
    EXPECT_GT(not_done, 0) << "no file was of the size that matters";
}

TEST_F(GreTest, LooksAgainEvery50Milliseconds)
{
    auto cfg = record(1, 0, 0);
    for (const bool is_set : {false, true}) {
        std::filesystem::remove(kConfigFile);
        std::vector<useconds_t> waits;
        on_wait = [&](useconds_t microseconds) {
            waits.push_back(microseconds);
            if (waits.size() == 200) write_file(kConfigFile, file_with("<GREFlag/>"));
        };
        EXPECT_EQ(is_set ? zr_nexa_wan_gre_ipacfg_set_v1(&cfg) : zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
        EXPECT_EQ(waits, std::vector<useconds_t>(200, 50000));
        // Nothing is said of the waiting.
        EXPECT_EQ(platform.log.size(), 4u);
        platform.forget();
    }
}

// Both functions wait for a file that can be parsed, however long.
TEST_F(GreTest, WaitsUntilTheFileCanBeParsed)
{
    enum class Missing { kAbsent, kEmpty, kTruncated, kFolder };
    for (const Missing missing : {Missing::kAbsent, Missing::kEmpty, Missing::kTruncated, Missing::kFolder}) {
        for (const bool is_set : {false, true}) {
            std::filesystem::remove_all(kConfigFile);
            if (missing == Missing::kEmpty) write_file(kConfigFile, "");
            if (missing == Missing::kTruncated) write_file(kConfigFile, "<system><IPACM><GREFlag>");
            if (missing == Missing::kFolder) std::filesystem::create_directory(kConfigFile);

            auto cfg = record(1, 1, 0);
            std::atomic<bool> ended{false};
            std::thread caller([&] {
                EXPECT_EQ(is_set ? zr_nexa_wan_gre_ipacfg_set_v1(&cfg) : zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
                ended = true;
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(180));
            EXPECT_FALSE(ended) << "it did not wait";
            if (missing == Missing::kFolder) std::filesystem::remove(kConfigFile);
            put_in_place(file_with("<GREFlag><GREEnabled>0</GREEnabled></GREFlag>"));
            const auto readable = std::chrono::steady_clock::now();
            caller.join();
            EXPECT_LT(std::chrono::steady_clock::now() - readable, std::chrono::seconds(5));
            if (!is_set) {
                EXPECT_EQ(cfg.gre_enabled, 0);
            }
            platform.forget();
        }
    }
}

#ifndef ZR_NEXA_NO_CANCELLING
// The wait has no end of its own, so a thread in it can be cancelled: while it sleeps, and while it looks.
TEST_F(GreMemoryTest, AWaitingThreadCanBeCancelled)
{
    for (const bool while_it_looks : {false, true}) {
        if (while_it_looks) write_file(kConfigFile, "<system>");
        requests = 0;
        refused = 0;
        cancelled = while_it_looks ? 2 : 0;
        pthread_t caller;
        ASSERT_EQ(pthread_create(
                      &caller, nullptr,
                      [](void*) -> void* {
                          zr_nexa_wan_gre_ipacfg_t cfg;
                          zr_nexa_wan_gre_ipacfg_get_v1(&cfg);
                          return nullptr;
                      },
                      nullptr),
                  0);
        std::this_thread::sleep_for(std::chrono::milliseconds(120));
        if (!while_it_looks) {
            EXPECT_EQ(pthread_cancel(caller), 0);
        }
        void* result = nullptr;
        EXPECT_EQ(pthread_join(caller, &result), 0);
        EXPECT_EQ(result, PTHREAD_CANCELED);
        platform.forget();
    }
}
#endif

// ---- random files ----

// What the functions make of a file, told by a reading of its own.
const small_xml::Node* gre_flag_of(const small_xml::Node& document)
{
    const small_xml::Node* node = &document;
    for (const char* const name : {"system", "IPACM", "GREFlag"}) {
        node = node == nullptr ? nullptr : node->child(name);
    }
    return node;
}

uint32_t parsed_address(const std::string& text)
{
    unsigned int part[4];
    char end;
    for (const char c : text) {
        if ((c < '0' || c > '9') && c != '.') return 0;
    }
    if (std::sscanf(text.c_str(), "%u.%u.%u.%u%c", &part[0], &part[1], &part[2], &part[3], &end) != 4) return 0;
    uint32_t address = 0;
    for (const unsigned int value : part) {
        if (value > 255) return 0;
        address = address << 8 | value;
    }
    return htonl(address);
}

zr_nexa_wan_gre_ipacfg_t expected_record(const small_xml::Node& document)
{
    zr_nexa_wan_gre_ipacfg_t cfg;
    std::memset(&cfg, 0, sizeof(cfg));
    cfg.gre_enabled = 1;
    const small_xml::Node* const flag = gre_flag_of(document);
    if (flag == nullptr) return cfg;
    const small_xml::Node* const enabled = flag->child("GREEnabled");
    if (enabled != nullptr && enabled->first_text() == "0") {
        cfg.gre_enabled = 0;
        return cfg;
    }
    for (const auto& child : flag->children) {
        if (child.name == "GREServer" && cfg.num_of_server_addrs < 10) {
            cfg.server_ipv4_addr[cfg.num_of_server_addrs++] = parsed_address(child.first_text());
        }
        if (child.name == "GREServerSubnet" && cfg.num_of_subnet_masks < 2) {
            cfg.subnet_mask[cfg.num_of_subnet_masks++] = parsed_address(child.first_text());
        }
    }
    return cfg;
}

small_xml::Node element(const char* name, const std::string& text)
{
    return small_xml::Node::element(name, {small_xml::Node::text_node(text)});
}

void apply(const zr_nexa_wan_gre_ipacfg_t& cfg, small_xml::Node* document)
{
    auto* const flag = const_cast<small_xml::Node*>(gre_flag_of(*document));
    if (flag == nullptr) return;
    flag->children = {element("GREEnabled", cfg.gre_enabled == 1 ? "1" : "0")};
    if (cfg.gre_enabled != 1) return;
    const auto text_of = [](uint32_t address) {
        const uint32_t word = ntohl(address);
        return std::to_string(word >> 24) + "." + std::to_string(word >> 16 & 255) + "." +
               std::to_string(word >> 8 & 255) + "." + std::to_string(word & 255);
    };
    for (int i = 0; i < cfg.num_of_server_addrs; ++i) {
        flag->children.push_back(element("GREServer", text_of(cfg.server_ipv4_addr[i])));
    }
    for (int i = 0; i < cfg.num_of_subnet_masks; ++i) {
        flag->children.push_back(element("GREServerSubnet", text_of(cfg.subnet_mask[i])));
    }
}

TEST_F(GreTest, RandomFilesAreReadAndWrittenAsAnIndependentReaderSees)
{
    int with_flag = 0;
    int off = 0;
    int full = 0;
    for (uint32_t seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        small_xml::Random random(seed);
        const std::string text = small_xml::random_file(random);
        write_file(kConfigFile, text);
        small_xml::Node document = small_xml::read(text);

        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        ASSERT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
        const auto expected = expected_record(document);
        ASSERT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << text;
        with_flag += gre_flag_of(document) != nullptr ? 1 : 0;
        off += cfg.gre_enabled == 0 ? 1 : 0;
        full += cfg.num_of_server_addrs == 10 ? 1 : 0;

        cfg = record(static_cast<uint8_t>(random.below(3)), static_cast<uint8_t>(random.below(11)),
                     static_cast<uint8_t>(random.below(3)));
        cfg.server_ipv4_addr[0] = random.next();
        ASSERT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
        apply(cfg, &document);
        ASSERT_EQ(small_xml::normalised(small_xml::read(content_of(kTemporaryFile))), small_xml::normalised(document))
            << text;
        platform.forget();
    }
    // The files are worth reading.
    EXPECT_GT(with_flag, 1000);
    EXPECT_GT(off, 50);
    EXPECT_GT(full, 50);
}

// Files with bytes changed, left out and added: whatever they are, they are read, or waited for.
TEST_F(GreTest, DamagedFilesAreReadOrWaitedFor)
{
    static const char bytes[] = {'<', '>', '/', '&', '\0', '"', '!', '[', '?', '\xff', '\xfe', '\x80', 'G', '0'};
    int waited = 0;
    int kept = 0;
    bool mended = false;
    on_wait = [&](useconds_t) {
        write_file(kConfigFile, file_with("<GREFlag/>"));
        mended = true;
    };
    for (uint32_t seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        small_xml::Random random(seed);
        std::string text = small_xml::random_file(random);
        for (uint32_t i = 1 + random.below(4); i > 0 && !text.empty(); --i) {
            const size_t at = random.below(static_cast<uint32_t>(text.size()));
            const char byte = bytes[random.below(sizeof(bytes))];
            switch (random.below(4)) {
                case 0:
                    text[at] = byte;
                    break;
                case 1:
                    text.erase(at, 1 + random.below(8));
                    break;
                case 2:
                    text.insert(at, 1, byte);
                    break;
                default:
                    text.insert(0, random.chance(50) ? "\xff\xfe" : "\xef\xbb\xbf");
            }
        }
        write_file(kConfigFile, text);
        mended = false;
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        ASSERT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
        ASSERT_LE(cfg.num_of_server_addrs, 10);
        ASSERT_LE(cfg.num_of_subnet_masks, 2);
        waited += mended ? 1 : 0;

        // What is then written can be read, and holds what was set, if there is a place for it.
        write_file(kConfigFile, text);
        zr_nexa_wan_gre_ipacfg_t wanted = {};
        wanted.gre_enabled = 1;
        wanted.num_of_server_addrs = 1;
        wanted.server_ipv4_addr[0] = htonl(0x0A000001);
        ASSERT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&wanted), 0);
        write_file(kConfigFile, content_of(kTemporaryFile));
        mended = false;
        ASSERT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
        ASSERT_FALSE(mended) << "what was written cannot be read";
        ASSERT_EQ(cfg.gre_enabled, 1);
        if (cfg.num_of_server_addrs == 0) wanted = {1, 0, {}, 0, {}};
        ASSERT_EQ(std::memcmp(&cfg, &wanted, sizeof(cfg)), 0);
        kept += cfg.num_of_server_addrs;
        platform.forget();
    }
    EXPECT_GT(waited, 300);
    EXPECT_GT(kept, 300);
}

}  // namespace
