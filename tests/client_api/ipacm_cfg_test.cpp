// The file work behind the GRE functions, on the scripted double's shell: what would be copied over the file stands in
// the temporary file.
#include <arpa/inet.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <iterator>
#include <new>
#include <pugixml.hpp>
#include <random>
#include <thread>

#include "api_test.h"
#include "gre_record.h"
#include "ipacm_cfg.h"
#include "private_ipacm.h"

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
using ipacm::put_in_place;
using ipacm::write_file;
using zr_nexa::get_set_ipacm_cfg;
using zr_nexa::save_ipacm_cfg;

constexpr const char* kWork = "ZR_GetSetIpacmConfigFromXML";

// What a save runs. A line is cut at 199 characters.
std::vector<std::string> save_commands(const std::string& config, const std::string& temporary)
{
    std::vector<std::string> commands;
    for (const std::string& line : {"fsync -d " + temporary, "cp " + temporary + " " + config + " ",
                                    "fsync -d " + config, "rm " + temporary + " "}) {
        commands.push_back("call  ds_system_call(command=\"" + line.substr(0, 199) + "\")");
    }
    return commands;
}

// What is said of gre_record(1, servers, masks) while it is written.
std::vector<std::string> addresses_set(int servers, int masks)
{
    std::vector<std::string> lines = {"info  GRE ipa enable, num_of_server_addrs:" + std::to_string(servers) +
                                      ", num_of_subnet_masks:" + std::to_string(masks)};
    for (int i = 0; i < servers; ++i) {
        lines.push_back("info  serverIP[" + std::to_string(i) + "]:10.0.0." + std::to_string(i + 1));
    }
    for (int i = 0; i < masks; ++i) {
        lines.push_back("info  subnetIP[" + std::to_string(i) + "]:255.255." + std::to_string(i) + ".0");
    }
    return lines;
}

// What is said of a record that was read with the switch on.
std::vector<std::string> addresses_read(const zr_nexa_wan_gre_ipacfg_t& cfg)
{
    std::vector<std::string> lines = {"info  GET gre ipa status:1"};
    const auto number = [](uint32_t address) { return std::to_string(static_cast<int32_t>(address)); };
    for (int i = 0; i < cfg.num_of_server_addrs; ++i) {
        lines.push_back("info  cfg_value->server_ipv4_addr[" + std::to_string(i) +
                        "]:" + number(cfg.server_ipv4_addr[i]));
    }
    for (int i = 0; i < cfg.num_of_subnet_masks; ++i) {
        lines.push_back("info  cfg_value->subnet[" + std::to_string(i) + "]:" + number(cfg.subnet_mask[i]));
    }
    return lines;
}

// A file of tests/client_api/ipacm_cfg.
std::string golden(const std::string& name)
{
    const std::string content = content_of(ZR_NEXA_GOLDEN_DIR "/" + name + ".xml");
    EXPECT_NE(content, "") << "there is no " << name;
    return content;
}

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

class IpacmCfgTest : public ClosedApiTest {
protected:
    ipacm::TemporaryFiles files;
    const std::vector<std::string> saving = save_commands(files.config, files.temporary);

    ~IpacmCfgTest() override
    {
        on_wait = nullptr;
    }
    int32_t set(zr_nexa_wan_gre_ipacfg_t cfg)
    {
        return get_set_ipacm_cfg(files, 1, &cfg);
    }
    int32_t get(zr_nexa_wan_gre_ipacfg_t* cfg)
    {
        return get_set_ipacm_cfg(files, 0, cfg);
    }
    void has_gre_flag(const std::string& content)
    {
        write_file(files.config, file_with("<GREFlag>" + content + "</GREFlag>"));
    }
};

using IpacmCfgSetTest = IpacmCfgTest;
using IpacmCfgGetTest = IpacmCfgTest;

TEST_F(IpacmCfgSetTest, WritesTheElementsInOrderAndRunsTheCommands)
{
    write_file(files.config, golden("usual.before"));
    EXPECT_ROW_OF(kWork, set(gre_record(1, 2, 1)), 0,
                  "info  SET gre ipa option",
                  "info  GRE ipa enable, num_of_server_addrs:2, num_of_subnet_masks:1",
                  "info  serverIP[0]:10.0.0.1",
                  "info  serverIP[1]:10.0.0.2",
                  "info  subnetIP[0]:255.255.0.0",
                  "call  ds_system_call(command=\"fsync -d " + files.temporary + "\")",
                  "call  ds_system_call(command=\"cp " + files.temporary + " " + files.config + " \")",
                  "call  ds_system_call(command=\"fsync -d " + files.config + "\")",
                  "call  ds_system_call(command=\"rm " + files.temporary + " \")");
    EXPECT_EQ(content_of(files.temporary), golden("usual.after"));
    EXPECT_EQ(content_of(files.config), golden("usual.before")) << "the file is replaced by the copy only";
}

// What is made of NAME.before for gre_record(enabled, servers, masks) is NAME.after, to the byte.
struct Written {
    const char* name;
    uint8_t enabled;
    uint8_t servers;
    uint8_t masks;
};
constexpr Written kWritten[] = {
    {"usual", 1, 2, 1},
    {"empty_gre_flag", 1, 10, 2},
    {"no_addresses", 1, 0, 0},
    {"off", 0, 1, 1},
    {"off", 2, 1, 1},
    {"off", 255, 10, 2},
    {"off_with_addresses", 1, 0, 2},
    {"too_many", 1, 3, 2},
    {"two_gre_flags", 1, 1, 0},
    // Nowhere to write it: what is not the first of its name, or not in its place, is left as it is.
    {"without_gre_flag", 1, 1, 1},
    {"without_ipacm", 1, 1, 1},
    {"without_system", 1, 1, 1},
    {"first_of_each", 1, 1, 1},
    // What the rest of a file keeps and does not keep.
    {"attributes", 1, 1, 0},
    {"texts", 1, 1, 0},
    {"mixed", 0, 1, 1},
    {"cdata", 1, 1, 0},
    {"not_kept", 2, 1, 1},
    {"spaces", 1, 0, 1},
    {"line_ends", 0, 0, 0},
    {"nested", 1, 1, 1},
    {"utf8_bom", 1, 2, 2},
    {"utf16_little_endian", 1, 2, 2},
    {"utf16_big_endian", 1, 2, 2},
    {"latin1", 1, 2, 2},
};

TEST_F(IpacmCfgSetTest, WritesTheGoldenFiles)
{
    for (const Written& row : kWritten) {
        SCOPED_TRACE(row.name);
        write_file(files.config, golden(std::string(row.name) + ".before"));
        const auto addresses = row.enabled == 1 ? addresses_set(row.servers, row.masks) : kNothing;
        EXPECT_ROW_OF(kWork, set(gre_record(row.enabled, row.servers, row.masks)), 0,
                      "info  SET gre ipa option",
                      addresses,
                      saving);
        EXPECT_EQ(content_of(files.temporary), golden(std::string(row.name) + ".after"));
        std::filesystem::remove(files.temporary);
    }
}

TEST_F(IpacmCfgSetTest, WritesAnyAddress)
{
    auto cfg = gre_record(1, 3, 1);
    cfg.server_ipv4_addr[0] = htonl(0xC0A8E1FE);
    cfg.server_ipv4_addr[1] = 0;
    cfg.server_ipv4_addr[2] = htonl(0x80017F09);
    cfg.subnet_mask[0] = 0xFFFFFFFF;
    has_gre_flag("");
    EXPECT_ROW_OF(kWork, set(cfg), 0,
                  "info  SET gre ipa option",
                  "info  GRE ipa enable, num_of_server_addrs:3, num_of_subnet_masks:1",
                  "info  serverIP[0]:192.168.225.254",
                  "info  serverIP[1]:0.0.0.0",
                  "info  serverIP[2]:128.1.127.9",
                  "info  subnetIP[0]:255.255.255.255",
                  saving);
    EXPECT_EQ(content_of(files.temporary), file_with("\t\t<GREFlag>\n"
                                                     "\t\t\t<GREEnabled>1</GREEnabled>\n"
                                                     "\t\t\t<GREServer>192.168.225.254</GREServer>\n"
                                                     "\t\t\t<GREServer>0.0.0.0</GREServer>\n"
                                                     "\t\t\t<GREServer>128.1.127.9</GREServer>\n"
                                                     "\t\t\t<GREServerSubnet>255.255.255.255</GREServerSubnet>\n"
                                                     "\t\t</GREFlag>\n"));
}

TEST_F(IpacmCfgSetTest, FailingCommandsDoNotStopTheOthers)
{
    has_gre_flag("");
    platform.on("ds_system_call").fails(127);
    EXPECT_ROW_OF(kWork, set(gre_record(1, 0, 0)), 0,
                  "info  SET gre ipa option",
                  addresses_set(0, 0),
                  saving);
}

TEST_F(IpacmCfgSetTest, AFailedSaveIsNotReported)
{
    std::filesystem::remove(files.temporary_folder);
    write_file(files.config, golden("usual.before"));
    EXPECT_ROW_OF(kWork, set(gre_record(1, 0, 0)), 0,
                  "info  SET gre ipa option",
                  addresses_set(0, 0),
                  saving);
    EXPECT_EQ(content_of(files.config), golden("usual.before"));
}

TEST_F(IpacmCfgGetTest, ReadsTheAddressesInOrderAndClearsTheRest)
{
    has_gre_flag(
        "<GREServerSubnet>255.255.255.0</GREServerSubnet><GREServer>10.0.0.1</GREServer><Other>1</Other>"
        "<GREEnabled>1</GREEnabled><GREServer>192.168.1.254</GREServer>");
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    EXPECT_ROW_OF(kWork, get(&cfg), 0,
                  "info  GET gre ipa option",
                  "info  GET gre ipa status:1",
                  "info  cfg_value->server_ipv4_addr[0]:16777226",
                  "info  cfg_value->server_ipv4_addr[1]:-33445696",
                  "info  cfg_value->subnet[0]:16777215");
    zr_nexa_wan_gre_ipacfg_t expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.gre_enabled = 1;
    expected.num_of_server_addrs = 2;
    expected.server_ipv4_addr[0] = htonl(0x0A000001);
    expected.server_ipv4_addr[1] = htonl(0xC0A801FE);
    expected.num_of_subnet_masks = 1;
    expected.subnet_mask[0] = htonl(0xFFFFFF00);
    EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << "padding included";
}

// The record that a file holds. An address that does not parse counts, as 0.
struct Read {
    const char* name;
    bool enabled;
    std::vector<const char*> servers = {};
    std::vector<const char*> masks = {};
};
const Read kRead[] = {
    {"usual.before", false},
    {"usual.after", true, {"10.0.0.1", "10.0.0.2"}, {"255.255.0.0"}},
    {"empty_gre_flag.before", true},
    {"empty_gre_flag.after",
     true,
     {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4", "10.0.0.5", "10.0.0.6", "10.0.0.7", "10.0.0.8", "10.0.0.9",
      "10.0.0.10"},
     {"255.255.0.0", "255.255.1.0"}},
    {"no_addresses.before", true},
    {"off.before", true, {"1.1.1.1"}},
    {"off.after", false},
    {"off_with_addresses.before", false},
    {"too_many.before",
     true,
     {"192.168.225.1", "192.168.225.2", "192.168.225.3", "192.168.225.4", "192.168.225.5", "192.168.225.6",
      "192.168.225.7", "192.168.225.8", "192.168.225.9", "192.168.225.10"},
     {"255.255.255.0", "255.255.254.0"}},
    {"two_gre_flags.before", true},
    {"two_gre_flags.after", true, {"10.0.0.1"}},
    {"without_gre_flag.before", true},
    {"without_ipacm.before", true},
    {"without_system.before", true},
    {"other_root", true},
    {"first_of_each.before", true},
    {"attributes.before", true, {"10.0.0.9"}},
    {"texts.before", true, {"10.0.0.9"}},
    {"mixed.before", true, {"10.0.0.9"}},
    {"mixed.after", false},
    {"cdata.before", true, {"10.9.8.7"}},
    {"not_kept.before", true, {"10.0.0.6"}},
    {"spaces.before", true},
    {"line_ends.before", true},
    {"nested.before", true, {"10.0.0.9"}},
    {"nested.after", true, {"10.0.0.1"}, {"255.255.0.0"}},
    {"utf8_bom.before", true, {"10.0.0.9"}, {"255.255.255.0"}},
    {"utf16_little_endian.before", true, {"10.0.0.9"}, {"255.255.255.0"}},
    {"utf16_big_endian.before", true, {"10.0.0.9"}, {"255.255.255.0"}},
    {"latin1.before", true, {"10.0.0.9"}, {"255.255.255.0"}},
    {"addresses_not_parsed",
     true,
     {"10.0.0.1", "0.0.0.0", "0.0.0.0", "0.0.0.0", "0.0.0.0", "0.0.0.0", "0.0.0.0", "0.0.0.0", "0.0.0.0", "10.0.0.3"},
     {"0.0.0.0", "0.0.0.0"}},
    {"addresses_in_other_forms",
     true,
     {"10.1.1.1", "10.9.8.7", "10.6.5.4", "10.0.0.5", "10.0.0.6", "0.0.0.0"},
     {"255.255.255.255", "255.255.0.0"}},
};

TEST_F(IpacmCfgGetTest, ReadsTheGoldenFiles)
{
    for (const Read& row : kRead) {
        SCOPED_TRACE(row.name);
        zr_nexa_wan_gre_ipacfg_t expected;
        std::memset(&expected, 0, sizeof(expected));
        expected.gre_enabled = row.enabled ? 1 : 0;
        for (const char* const server : row.servers) {
            expected.server_ipv4_addr[expected.num_of_server_addrs++] = inet_addr(server);
        }
        for (const char* const mask : row.masks) {
            expected.subnet_mask[expected.num_of_subnet_masks++] = inet_addr(mask);
        }
        write_file(files.config, golden(row.name));
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_ROW_OF(kWork, get(&cfg), 0,
                      "info  GET gre ipa option",
                      row.enabled ? addresses_read(expected) : kNothing);
        EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << "padding included";
    }
}

TEST_F(IpacmCfgGetTest, Exactly0IsOffAndHidesTheAddresses)
{
    for (const char* const off : {"0", "<![CDATA[0]]>", "&#48;", "<!-- - -->0", "0<!-- - -->1"}) {
        SCOPED_TRACE(off);
        has_gre_flag(std::string("<GREEnabled>") + off +
                     "</GREEnabled><GREServer>10.0.0.1</GREServer>"
                     "<GREServerSubnet>255.0.0.0</GREServerSubnet><GREEnabled>1</GREEnabled>");
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_ROW_OF(kWork, get(&cfg), 0, "info  GET gre ipa option");
        const zr_nexa_wan_gre_ipacfg_t expected = {};
        EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0);
    }
}

TEST_F(IpacmCfgGetTest, AnythingElseIsOn)
{
    for (const char* const on :
         {"<GREEnabled>1</GREEnabled>", "<GREEnabled>00</GREEnabled>", "<GREEnabled> 0</GREEnabled>",
          "<GREEnabled>0 </GREEnabled>", "<GREEnabled>no</GREEnabled>", "<GREEnabled/>", "",
          "<greenabled>0</greenabled>", "<GREEnabled><v>0</v></GREEnabled>",
          "<GREEnabled>1</GREEnabled><GREEnabled>0</GREEnabled>"}) {
        SCOPED_TRACE(on);
        has_gre_flag(std::string(on) + "<GREServer>10.0.0.1</GREServer>");
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_ROW_OF(kWork, get(&cfg), 0,
                      "info  GET gre ipa option",
                      "info  GET gre ipa status:1",
                      "info  cfg_value->server_ipv4_addr[0]:16777226");
        EXPECT_EQ(cfg.gre_enabled, 1);
        EXPECT_EQ(cfg.num_of_server_addrs, 1);
        EXPECT_EQ(cfg.server_ipv4_addr[0], htonl(0x0A000001));
    }
}

TEST_F(IpacmCfgGetTest, MoreThanTheRecordHoldsIsNeitherStoredNorCountedNorLogged)
{
    for (const int extra : {0, 1, 300}) {
        std::string content;
        for (int i = 0; i < 10 + extra; ++i) {
            content += "<GREServer>10.0." + std::to_string(i / 256) + "." + std::to_string(i % 256) + "</GREServer>";
        }
        for (int i = 0; i < 2 + extra; ++i) {
            content += "<GREServerSubnet>255.255." + std::to_string(i % 256) + ".0</GREServerSubnet>";
        }
        has_gre_flag(content);
        zr_nexa_wan_gre_ipacfg_t expected;
        std::memset(&expected, 0, sizeof(expected));
        expected.gre_enabled = 1;
        expected.num_of_server_addrs = 10;
        for (uint32_t i = 0; i < 10; ++i) {
            expected.server_ipv4_addr[i] = htonl(0x0A000000 + i);
        }
        expected.num_of_subnet_masks = 2;
        expected.subnet_mask[0] = htonl(0xFFFF0000);
        expected.subnet_mask[1] = htonl(0xFFFF0100);
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_ROW_OF(kWork, get(&cfg), 0,
                      "info  GET gre ipa option",
                      addresses_read(expected));
        EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0);
    }
}

TEST_F(IpacmCfgGetTest, ReadingChangesNothing)
{
    for (const char* const name : {"usual.before", "usual.after"}) {
        write_file(files.config, golden(name));
        const auto before = std::filesystem::last_write_time(files.config);
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_EQ(get(&cfg), 0);
        EXPECT_EQ(std::filesystem::last_write_time(files.config), before);
        EXPECT_EQ(content_of(files.config), golden(name));
        EXPECT_FALSE(std::filesystem::exists(files.temporary));
    }
}

TEST_F(IpacmCfgTest, AnyOtherWordThan0Writes)
{
    has_gre_flag("");
    auto cfg = gre_record(1, 1, 1);
    EXPECT_ROW_OF(kWork, get_set_ipacm_cfg(files, 0, &cfg), 0,
                  "info  GET gre ipa option",
                  "info  GET gre ipa status:1");
    for (const uint32_t is_set : {1u, 2u, 0xFFFFFFFFu}) {
        EXPECT_ROW_OF(kWork, get_set_ipacm_cfg(files, is_set, &cfg), 0,
                      "info  SET gre ipa option",
                      addresses_set(0, 0),
                      saving);
    }
}

TEST_F(IpacmCfgTest, SavingWritesTheDocumentAndRunsTheCommands)
{
    pugi::xml_document document;
    document.append_child("a").append_child("b");
    save_ipacm_cfg(files, document);
    EXPECT_EQ(content_of(files.temporary), "<?xml version=\"1.0\"?>\n<a>\n\t<b />\n</a>\n");
    EXPECT_TRANSCRIPT(saving);
}

TEST_F(IpacmCfgTest, ACommandLineHas199CharactersAtMost)
{
    files.config = files.folder + "/" + std::string(200, 'c');
    write_file(files.config, golden("usual.before"));
    const auto commands = save_commands(files.config, files.temporary);
    ASSERT_EQ(commands[2].size(), std::strlen("call  ds_system_call(command=\"\")") + 199);
    EXPECT_ROW_OF(kWork, set(gre_record(1, 2, 1)), 0,
                  "info  SET gre ipa option",
                  addresses_set(2, 1),
                  commands);
    EXPECT_EQ(content_of(files.temporary), golden("usual.after"));
}

// Deeper than a stack of 8 MiB, if it took a frame a level.
TEST_F(IpacmCfgTest, AnElementMayNestToAnyDepth)
{
    std::string deep;
    for (int i = 0; i < 500000; ++i) {
        deep += "<a>";
    }
    for (int i = 0; i < 500000; ++i) {
        deep += "</a>";
    }
    has_gre_flag("<GREEnabled>0</GREEnabled>" + deep);
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    EXPECT_ROW_OF(kWork, get(&cfg), 0, "info  GET gre ipa option");
    EXPECT_EQ(cfg.gre_enabled, 0);
    EXPECT_ROW_OF(kWork, set(gre_record(0, 0, 0)), 0,
                  "info  SET gre ipa option",
                  saving);
    EXPECT_EQ(content_of(files.temporary), golden("off.after"));
}

// The parser's memory: one request of a run is refused, or ends its thread.
class IpacmCfgMemoryTest : public IpacmCfgTest {
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
        IpacmCfgTest::SetUp();
        pugi::set_memory_management_functions(allocate, std::free);
    }
    void TearDown() override
    {
        pugi::set_memory_management_functions(std::malloc, std::free);
        IpacmCfgTest::TearDown();
    }
};

TEST_F(IpacmCfgMemoryTest, AWriteIsWholeOrIsNotDone)
{
    int not_done = 0;
    const auto cfg = gre_record(1, 10, 2);
    // The parser asks for memory in large pieces: files of many sizes, so that the new elements need another one.
    constexpr int kMostPadding = sizeof(void*) == 8 ? 500 : 1020;  // elements are half as large where pointers are
    for (int padding = 0; padding < kMostPadding; padding += 2) {
        std::string elements;
        for (int i = 0; i < padding; ++i) {
            elements += "<x/>";
        }
        write_file(files.config, file_with("<GREFlag/><Padding>" + elements + "</Padding>"));
        refused = 0;
        requests = 0;
        ASSERT_EQ(set(cfg), 0);
        const std::string whole = content_of(files.temporary);
        const int asked = requests;
        pugi::xml_document document;
        requests = 0;
        ASSERT_TRUE(document.load_file(files.config.c_str()));
        const int to_load = requests;
        // A refusal while the file is loaded is tried again 50 ms later: once is enough to see.
        for (refused = padding == 0 ? 1 : to_load + 1; refused <= asked; ++refused) {
            for (const bool throws : {false, true}) {
                SCOPED_TRACE(std::to_string(padding) + " elements, request " + std::to_string(refused));
                by_exception = throws;
                requests = 0;
                std::filesystem::remove(files.temporary);
                platform.forget();
                if (refused <= to_load) {
                    EXPECT_ROW_OF(kWork, set(cfg), 0,
                                  "info  SET gre ipa option",
                                  addresses_set(10, 2),
                                  saving);
                    EXPECT_EQ(content_of(files.temporary), whole);
                } else {
                    ASSERT_EQ(set(cfg), 0);
                    EXPECT_FALSE(std::filesystem::exists(files.temporary));
                    EXPECT_THAT(platform.journal, testing::IsEmpty());
                    ++not_done;
                }
            }
        }
    }
    EXPECT_GT(not_done, 0) << "no file was of the size that matters";
}

TEST_F(IpacmCfgTest, LooksAgainEvery50Milliseconds)
{
    std::vector<useconds_t> waits;
    on_wait = [&](useconds_t microseconds) {
        waits.push_back(microseconds);
        if (waits.size() == 200) has_gre_flag("");
    };
    // Nothing is said of the waiting.
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    EXPECT_ROW_OF(kWork, get(&cfg), 0,
                  "info  GET gre ipa option",
                  "info  GET gre ipa status:1");
    EXPECT_EQ(waits, std::vector<useconds_t>(200, 50000));
    std::filesystem::remove(files.config);
    waits.clear();
    EXPECT_ROW_OF(kWork, set(gre_record(1, 0, 0)), 0,
                  "info  SET gre ipa option",
                  addresses_set(0, 0),
                  saving);
    EXPECT_EQ(waits, std::vector<useconds_t>(200, 50000));
}

// Both functions wait for a file that can be parsed, however long.
TEST_F(IpacmCfgTest, WaitsUntilTheFileCanBeParsed)
{
    enum class Missing { kAbsent, kEmpty, kTruncated, kFolder };
    for (const Missing missing : {Missing::kAbsent, Missing::kEmpty, Missing::kTruncated, Missing::kFolder}) {
        for (const bool is_set : {false, true}) {
            std::filesystem::remove_all(files.config);
            if (missing == Missing::kEmpty) write_file(files.config, "");
            if (missing == Missing::kTruncated) write_file(files.config, "<system><IPACM><GREFlag>");
            if (missing == Missing::kFolder) std::filesystem::create_directory(files.config);

            auto cfg = gre_record(1, 1, 0);
            std::atomic<bool> ended{false};
            std::thread caller([&] {
                EXPECT_EQ(is_set ? set(cfg) : get(&cfg), 0);
                ended = true;
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(180));
            EXPECT_FALSE(ended) << "it did not wait";
            if (missing == Missing::kFolder) std::filesystem::remove(files.config);
            put_in_place(files.config, file_with("<GREFlag><GREEnabled>0</GREEnabled></GREFlag>"));
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
TEST_F(IpacmCfgMemoryTest, AWaitingThreadCanBeCancelled)
{
    const auto reads = [](void* given) -> void* {
        zr_nexa_wan_gre_ipacfg_t cfg;
        get_set_ipacm_cfg(*static_cast<const zr_nexa::IpacmFiles*>(given), 0, &cfg);
        return nullptr;
    };
    zr_nexa::IpacmFiles both = files;
    for (const bool while_it_looks : {false, true}) {
        if (while_it_looks) write_file(files.config, "<system>");
        requests = 0;
        refused = 0;
        cancelled = while_it_looks ? 2 : 0;
        pthread_t caller;
        ASSERT_EQ(pthread_create(&caller, nullptr, reads, &both), 0);
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

// ---- in the places of the module's files ----

class IpacmPlacesTest : public ClosedApiTest {
protected:
    ipacm::PrivateMounts mounts;
    const std::vector<std::string> saving = {
        "call  ds_system_call(command=\"fsync -d /var/run/data/zr_IPACM_cfg.tmp\")",
        "call  ds_system_call(command=\"cp /var/run/data/zr_IPACM_cfg.tmp /etc/data/ipa/IPACM_cfg.xml \")",
        "call  ds_system_call(command=\"fsync -d /etc/data/ipa/IPACM_cfg.xml\")",
        "call  ds_system_call(command=\"rm /var/run/data/zr_IPACM_cfg.tmp \")"};

    void SetUp() override
    {
        if (!mounts.enter()) GTEST_SKIP() << "private mounts are not allowed here";
        write_file(ipacm::kConfigFile, golden("usual.before"));
    }
};

TEST_F(IpacmPlacesTest, SettingWritesThere)
{
    const auto cfg = gre_record(1, 2, 1);
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0,
               "info  entry",
               "info  gre_config.server_ipv4_addr[0]:10.0.0.1",
               "info  gre_config.server_ipv4_addr[1]:10.0.0.2",
               "info  gre_config.subnet_mask[0]:255.255.0.0",
               "info  ZR_GetSetIpacmConfigFromXML: SET gre ipa option",
               "info  ZR_GetSetIpacmConfigFromXML: GRE ipa enable, num_of_server_addrs:2, num_of_subnet_masks:1",
               "info  ZR_GetSetIpacmConfigFromXML: serverIP[0]:10.0.0.1",
               "info  ZR_GetSetIpacmConfigFromXML: serverIP[1]:10.0.0.2",
               "info  ZR_GetSetIpacmConfigFromXML: subnetIP[0]:255.255.0.0",
               saving,
               "info  zr_nexa_gre_ipacfg_set_v1 success");
    EXPECT_EQ(content_of(ipacm::kTemporaryFile), golden("usual.after"));
    EXPECT_EQ(content_of(ipacm::kConfigFile), golden("usual.before")) << "the file is replaced by the copy only";
}

TEST_F(IpacmPlacesTest, GettingReadsThere)
{
    write_file(ipacm::kConfigFile, golden("usual.after"));
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0,
               "info  entry",
               "info  ZR_GetSetIpacmConfigFromXML: GET gre ipa option",
               "info  ZR_GetSetIpacmConfigFromXML: GET gre ipa status:1",
               "info  ZR_GetSetIpacmConfigFromXML: cfg_value->server_ipv4_addr[0]:16777226",
               "info  ZR_GetSetIpacmConfigFromXML: cfg_value->server_ipv4_addr[1]:33554442",
               "info  ZR_GetSetIpacmConfigFromXML: cfg_value->subnet[0]:65535",
               "info  zr_nexa_gre_ipacfg_get_v1 success");
    zr_nexa_wan_gre_ipacfg_t expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.gre_enabled = 1;
    expected.num_of_server_addrs = 2;
    expected.server_ipv4_addr[0] = htonl(0x0A000001);
    expected.server_ipv4_addr[1] = htonl(0x0A000002);
    expected.num_of_subnet_masks = 1;
    expected.subnet_mask[0] = htonl(0xFFFF0000);
    EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << "padding included";
    EXPECT_EQ(content_of(ipacm::kConfigFile), golden("usual.after"));
    EXPECT_FALSE(std::filesystem::exists(ipacm::kTemporaryFile));
}

TEST_F(IpacmPlacesTest, TooManyAreRefusedBeforeTheFileIsLookedAt)
{
    std::filesystem::remove(ipacm::kConfigFile);  // had it been opened, the call would not come back
    const auto servers = gre_record(1, 11, 0);
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&servers), 4,
               "info  entry",
               "error num_of_server_addrs greater than 10");
    const auto masks = gre_record(1, 10, 3);
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&masks), 4,
               "info  entry",
               "error num_of_subnet_masks greater than 2");
    EXPECT_FALSE(std::filesystem::exists(ipacm::kTemporaryFile));
}

TEST_F(IpacmPlacesTest, TheNamedWorkIsDoneThere)
{
    auto cfg = gre_record(1, 2, 1);
    EXPECT_ROW(ZR_GetSetIpacmConfigFromXML(0, &cfg), 0, "info  GET gre ipa option");
    EXPECT_FALSE(std::filesystem::exists(ipacm::kTemporaryFile));
    for (const uint32_t is_set : {1u, 2u, 0xFFFFFFFFu}) {
        EXPECT_ROW(ZR_GetSetIpacmConfigFromXML(is_set, &cfg), 0,
                   "info  SET gre ipa option",
                   saving);
        EXPECT_TRUE(std::filesystem::remove(ipacm::kTemporaryFile));
    }
}

TEST_F(IpacmPlacesTest, TheNamedSaveWritesThere)
{
    pugi::xml_document document;
    document.append_child("a").append_child("b");
    zr_nexa_ipacm_cfg_save(document);
    EXPECT_EQ(content_of(ipacm::kTemporaryFile), "<?xml version=\"1.0\"?>\n<a>\n\t<b />\n</a>\n");
    EXPECT_TRANSCRIPT(saving);
}

// ---- damaged files ----

// A few bytes changed, left out or added, a byte order mark, or the end missing.
std::string damaged(std::string text, uint32_t seed)
{
    static const char bytes[] = {'<', '>', '/', '&', '\0', '"', '!', '[', '?', '\xff', '\xfe', '\x80', 'G', '0'};
    std::mt19937 random(seed);
    for (uint32_t i = 1 + random() % 4; i > 0 && !text.empty(); --i) {
        const size_t at = random() % text.size();
        const char byte = bytes[random() % sizeof(bytes)];
        switch (random() % 5) {
            case 0:
                text[at] = byte;
                break;
            case 1:
                text.erase(at, 1 + random() % 8);
                break;
            case 2:
                text.insert(at, 1, byte);
                break;
            case 3:
                text.insert(0, random() % 2 == 0 ? "\xff\xfe" : "\xef\xbb\xbf");
                break;
            default:
                text.resize(text.size() - random() % std::min<size_t>(text.size(), 40));
        }
    }
    return text;
}

// Whatever they are, they are read, or waited for.
TEST_F(IpacmCfgTest, DamagedFilesAreReadOrWaitedFor)
{
    int waited = 0;
    int kept = 0;
    bool mended = false;
    on_wait = [&](useconds_t) {
        has_gre_flag("");
        mended = true;
    };
    for (uint32_t seed = 1; seed <= 3000; ++seed) {
        const Written& row = kWritten[seed % std::size(kWritten)];
        SCOPED_TRACE(row.name + (" damaged by seed " + std::to_string(seed)));
        const std::string text = damaged(golden(std::string(row.name) + ".before"), seed);
        write_file(files.config, text);
        mended = false;
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        ASSERT_EQ(get(&cfg), 0);
        ASSERT_LE(cfg.num_of_server_addrs, 10);
        ASSERT_LE(cfg.num_of_subnet_masks, 2);
        waited += mended ? 1 : 0;

        // What is then written can be read, and holds what was set, if there is a place for it.
        write_file(files.config, text);
        zr_nexa_wan_gre_ipacfg_t wanted = {};
        wanted.gre_enabled = 1;
        wanted.num_of_server_addrs = 1;
        wanted.server_ipv4_addr[0] = htonl(0x0A000001);
        ASSERT_EQ(set(wanted), 0);
        write_file(files.config, content_of(files.temporary));
        mended = false;
        ASSERT_EQ(get(&cfg), 0);
        ASSERT_FALSE(mended) << "what was written cannot be read";
        ASSERT_EQ(cfg.gre_enabled, 1);
        if (cfg.num_of_server_addrs == 0) wanted = {1, 0, {}, 0, {}};
        ASSERT_EQ(std::memcmp(&cfg, &wanted, sizeof(cfg)), 0);
        kept += cfg.num_of_server_addrs;
        std::filesystem::remove(files.temporary);
        platform.forget();
    }
    EXPECT_GT(waited, 300);
    EXPECT_GT(kept, 300);
}

}  // namespace
