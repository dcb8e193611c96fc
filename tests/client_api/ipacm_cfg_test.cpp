// The file work behind the GRE functions, on the scripted double's shell: what would be copied over the file stands in
// the temporary file.
#include <arpa/inet.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <new>
#include <pugixml.hpp>
#include <thread>

#include "api_test.h"
#include "gre_record.h"
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
        commands.push_back("ds_system_call(command=\"" + line.substr(0, 199) + "\")");
    }
    return commands;
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

// A file, and what is made of it for gre_record(1, 2, 1).
const std::string kBefore = file_with(
    "\t\t<GREFlag old=\"kept\">\n\t\t\t<GREServer>1.1.1.1</GREServer>\n\t\t\t<Other>gone</Other>\n"
    "\t\t\t<GREEnabled>0</GREEnabled>\n\t\t\t<GREServerSubnet>2.2.2.2</GREServerSubnet>text\n\t\t</GREFlag>\n");
const std::string kAfter = file_with(
    "\t\t<GREFlag old=\"kept\">\n"
    "\t\t\t<GREEnabled>1</GREEnabled>\n"
    "\t\t\t<GREServer>10.0.0.1</GREServer>\n"
    "\t\t\t<GREServer>10.0.0.2</GREServer>\n"
    "\t\t\t<GREServerSubnet>255.255.0.0</GREServerSubnet>\n"
    "\t\t</GREFlag>\n");

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
    // Reads a file with this GREFlag content.
    zr_nexa_wan_gre_ipacfg_t read(const std::string& content)
    {
        write_file(files.config, file_with("<GREFlag>" + content + "</GREFlag>"));
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_EQ(get(&cfg), 0);
        EXPECT_THAT(platform.journal, testing::IsEmpty()) << "reading ran a command";
        return cfg;
    }
};

using IpacmCfgSetTest = IpacmCfgTest;
using IpacmCfgGetTest = IpacmCfgTest;

TEST_F(IpacmCfgSetTest, WritesTheElementsInOrderAndRunsTheCommands)
{
    write_file(files.config, kBefore);
    EXPECT_EQ(set(gre_record(1, 2, 1)), 0);
    expect_row(kWork, saving,
               {info("SET gre ipa option"), info("GRE ipa enable, num_of_server_addrs:2, num_of_subnet_masks:1"),
                info("serverIP[0]:10.0.0.1"), info("serverIP[1]:10.0.0.2"), info("subnetIP[0]:255.255.0.0")});
    EXPECT_EQ(content_of(files.temporary), kAfter);
    EXPECT_EQ(content_of(files.config), kBefore) << "the file is replaced by the copy only";
}

TEST_F(IpacmCfgSetTest, TenServersAndTwoMasksAreAccepted)
{
    write_file(files.config, file_with("<GREFlag/>"));
    const auto cfg = gre_record(1, 10, 2);
    EXPECT_EQ(set(cfg), 0);
    std::string expected = "\t\t<GREFlag>\n\t\t\t<GREEnabled>1</GREEnabled>\n";
    for (int i = 1; i <= 10; ++i) {
        expected += "\t\t\t<GREServer>10.0.0." + std::to_string(i) + "</GREServer>\n";
    }
    expected +=
        "\t\t\t<GREServerSubnet>255.255.0.0</GREServerSubnet>\n"
        "\t\t\t<GREServerSubnet>255.255.1.0</GREServerSubnet>\n\t\t</GREFlag>\n";
    EXPECT_EQ(content_of(files.temporary), file_with(expected));
    EXPECT_EQ(platform.log.size(), 2u + 12);
}

TEST_F(IpacmCfgSetTest, AnythingBut1DropsTheAddresses)
{
    write_file(files.config, file_with("<GREFlag><GREEnabled>1</GREEnabled><GREServer>1.1.1.1</GREServer></GREFlag>"));
    for (const uint8_t enabled : {uint8_t{0}, uint8_t{2}, uint8_t{255}}) {
        const auto cfg = gre_record(enabled, 1, 1);
        EXPECT_EQ(set(cfg), 0);
        expect_row(kWork, saving, {info("SET gre ipa option")});
        EXPECT_EQ(content_of(files.temporary),
                  file_with("\t\t<GREFlag>\n\t\t\t<GREEnabled>0</GREEnabled>\n\t\t</GREFlag>\n"));
    }
}

TEST_F(IpacmCfgSetTest, WithoutAddressesOnlyTheSwitchIsWritten)
{
    write_file(files.config, file_with("<GREFlag/>"));
    const auto cfg = gre_record(1, 0, 0);
    EXPECT_EQ(set(cfg), 0);
    expect_row(kWork, saving,
               {info("SET gre ipa option"), info("GRE ipa enable, num_of_server_addrs:0, num_of_subnet_masks:0")});
    EXPECT_EQ(content_of(files.temporary),
              file_with("\t\t<GREFlag>\n\t\t\t<GREEnabled>1</GREEnabled>\n\t\t</GREFlag>\n"));
}

TEST_F(IpacmCfgSetTest, WithoutTheElementTheFileIsSavedAsItWas)
{
    for (const std::string& content : {file_with(""), std::string("<?xml version=\"1.0\"?>\n<system />\n"),
                                       std::string("<?xml version=\"1.0\"?>\n<GREFlag />\n")}) {
        write_file(files.config, content);
        const auto cfg = gre_record(1, 1, 1);
        EXPECT_EQ(set(cfg), 0);
        EXPECT_EQ(content_of(files.temporary), content);
        expect_row(kWork, saving,
                   {info("SET gre ipa option"), info("GRE ipa enable, num_of_server_addrs:1, num_of_subnet_masks:1"),
                    info("serverIP[0]:10.0.0.1"), info("subnetIP[0]:255.255.0.0")});
    }
}

TEST_F(IpacmCfgSetTest, OnlyTheFirstElementOfTheNameCounts)
{
    write_file(files.config, file_with("\t\t<GREFlag />\n\t\t<GREFlag>\n\t\t\t<GREServer>9.9.9.9</GREServer>\n"
                                       "\t\t</GREFlag>\n"));
    const auto cfg = gre_record(0, 0, 0);
    EXPECT_EQ(set(cfg), 0);
    EXPECT_EQ(content_of(files.temporary),
              file_with("\t\t<GREFlag>\n\t\t\t<GREEnabled>0</GREEnabled>\n\t\t</GREFlag>\n"
                        "\t\t<GREFlag>\n\t\t\t<GREServer>9.9.9.9</GREServer>\n\t\t</GREFlag>\n"));
}

TEST_F(IpacmCfgSetTest, FailingCommandsDoNotStopTheOthers)
{
    write_file(files.config, file_with("<GREFlag/>"));
    platform.on("ds_system_call").fails(127);
    const auto cfg = gre_record(1, 0, 0);
    EXPECT_EQ(set(cfg), 0);
    EXPECT_THAT(platform.journal, testing::ElementsAreArray(saving));
}

TEST_F(IpacmCfgSetTest, AFailedSaveIsNotReported)
{
    std::filesystem::remove(files.temporary_folder);
    const std::string before = file_with("<GREFlag/>");
    write_file(files.config, before);
    const auto cfg = gre_record(1, 0, 0);
    EXPECT_EQ(set(cfg), 0);
    EXPECT_THAT(platform.journal, testing::ElementsAreArray(saving));
    EXPECT_EQ(content_of(files.config), before);
}

TEST_F(IpacmCfgGetTest, ReadsTheAddressesInOrderAndClearsTheRest)
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
    expect_row(kWork, {},
               {info("GET gre ipa option"), info("GET gre ipa status:1"),
                info("cfg_value->server_ipv4_addr[0]:" + number(0x0A000001)),
                info("cfg_value->server_ipv4_addr[1]:" + number(0xC0A801FE)),
                info("cfg_value->subnet[0]:" + number(0xFFFFFF00))});
}

TEST_F(IpacmCfgGetTest, Exactly0IsOffAndHidesTheAddresses)
{
    for (const char* const off : {"0", "<![CDATA[0]]>", "&#48;", "<!-- - -->0"}) {
        const auto cfg = read(std::string("<GREEnabled>") + off +
                              "</GREEnabled><GREServer>10.0.0.1</GREServer>"
                              "<GREServerSubnet>255.0.0.0</GREServerSubnet><GREEnabled>1</GREEnabled>");
        const zr_nexa_wan_gre_ipacfg_t expected = {};
        EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << off;
        expect_row(kWork, {}, {info("GET gre ipa option")});
    }
}

TEST_F(IpacmCfgGetTest, AnythingElseIsOn)
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

TEST_F(IpacmCfgGetTest, AMissingElementIsOnWithoutAddresses)
{
    for (const std::string& content : {file_with(""), std::string("<system/>"), std::string("<x/>")}) {
        write_file(files.config, content);
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_EQ(get(&cfg), 0);
        zr_nexa_wan_gre_ipacfg_t expected;
        std::memset(&expected, 0, sizeof(expected));
        expected.gre_enabled = 1;
        EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0);
        expect_row(kWork, {}, {info("GET gre ipa option"), info("GET gre ipa status:1")});
    }
}

TEST_F(IpacmCfgGetTest, AnAddressThatDoesNotParseCountsAs0)
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
    EXPECT_EQ(platform.log[3].text, "cfg_value->server_ipv4_addr[1]:0");
    EXPECT_EQ(platform.log[8].text, "cfg_value->subnet[0]:0");
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
        const auto cfg = read(content);
        EXPECT_EQ(cfg.num_of_server_addrs, 10);
        for (uint32_t i = 0; i < 10; ++i) {
            EXPECT_EQ(cfg.server_ipv4_addr[i], htonl(0x0A000000 + i));
        }
        EXPECT_EQ(cfg.num_of_subnet_masks, 2);
        EXPECT_EQ(cfg.subnet_mask[0], htonl(0xFFFF0000));
        EXPECT_EQ(cfg.subnet_mask[1], htonl(0xFFFF0100));
        EXPECT_EQ(platform.log.size(), 2u + 12);
        platform.forget();
    }
}

TEST_F(IpacmCfgGetTest, ReadingChangesNothing)
{
    const auto before = std::filesystem::last_write_time(
        (read("<GREEnabled>0</GREEnabled><GREServer>10.0.0.1</GREServer>"), files.config));
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    EXPECT_EQ(get(&cfg), 0);
    EXPECT_EQ(std::filesystem::last_write_time(files.config), before);
    EXPECT_FALSE(std::filesystem::exists(files.temporary));
}

TEST_F(IpacmCfgTest, TheWorkItselfAlwaysGives0)
{
    write_file(files.config, file_with("<GREFlag/>"));
    auto cfg = gre_record(1, 1, 1);
    for (const uint32_t is_set : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        EXPECT_EQ(get_set_ipacm_cfg(files, is_set, &cfg), 0);
        EXPECT_EQ(platform.log[0].text, is_set == 0 ? "GET gre ipa option" : "SET gre ipa option");
        platform.forget();
    }
}

TEST_F(IpacmCfgTest, SavingWritesTheDocumentAndRunsTheCommands)
{
    pugi::xml_document document;
    document.append_child("a").append_child("b");
    save_ipacm_cfg(files, document);
    EXPECT_EQ(content_of(files.temporary), "<?xml version=\"1.0\"?>\n<a>\n\t<b />\n</a>\n");
    expect_row(kWork, saving, {});
}

TEST_F(IpacmCfgTest, ACommandLineHas199CharactersAtMost)
{
    files.config = files.folder + "/" + std::string(200, 'c');
    write_file(files.config, kBefore);
    EXPECT_EQ(set(gre_record(1, 2, 1)), 0);
    EXPECT_EQ(content_of(files.temporary), kAfter);
    EXPECT_EQ(platform.journal, (save_commands(files.config, files.temporary)));
    EXPECT_EQ(platform.journal[2].size(), std::strlen("ds_system_call(command=\"\")") + 199);
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
    const auto cfg = read("<GREEnabled>0</GREEnabled>" + deep);
    EXPECT_EQ(cfg.gre_enabled, 0);
    const auto off = gre_record(0, 0, 0);
    EXPECT_EQ(set(off), 0);
    EXPECT_EQ(content_of(files.temporary),
              file_with("\t\t<GREFlag>\n\t\t\t<GREEnabled>0</GREEnabled>\n\t\t</GREFlag>\n"));
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
    // The parser asks for memory in large pieces: files of many sizes, so that the new elements need another one. Where
    // pointers are half as long, twice as many elements fit into one.
    constexpr int kMostPadding = sizeof(void*) == 8 ? 500 : 1020;
    for (int padding = 0; padding < kMostPadding; ++padding) {
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
                ASSERT_EQ(set(cfg), 0);
                if (refused <= to_load) {
                    EXPECT_EQ(content_of(files.temporary), whole);
                    EXPECT_THAT(platform.journal, testing::ElementsAreArray(saving));
                } else {
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
    auto cfg = gre_record(1, 0, 0);
    for (const bool is_set : {false, true}) {
        std::filesystem::remove(files.config);
        std::vector<useconds_t> waits;
        on_wait = [&](useconds_t microseconds) {
            waits.push_back(microseconds);
            if (waits.size() == 200) write_file(files.config, file_with("<GREFlag/>"));
        };
        EXPECT_EQ(is_set ? set(cfg) : get(&cfg), 0);
        EXPECT_EQ(waits, std::vector<useconds_t>(200, 50000));
        // Nothing is said of the waiting.
        EXPECT_EQ(platform.log.size(), 2u);
        platform.forget();
    }
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
        "ds_system_call(command=\"fsync -d /var/run/data/zr_IPACM_cfg.tmp\")",
        "ds_system_call(command=\"cp /var/run/data/zr_IPACM_cfg.tmp /etc/data/ipa/IPACM_cfg.xml \")",
        "ds_system_call(command=\"fsync -d /etc/data/ipa/IPACM_cfg.xml\")",
        "ds_system_call(command=\"rm /var/run/data/zr_IPACM_cfg.tmp \")"};

    void SetUp() override
    {
        if (!mounts.enter()) GTEST_SKIP() << "private mounts are not allowed here";
        write_file(ipacm::kConfigFile, kBefore);
    }
    // All records of one call, those of its file work among them.
    void expect_log(const std::vector<std::string>& expected)
    {
        std::vector<std::string> seen;
        for (const auto& line : platform.log) {
            seen.push_back(shown(line.level, line.function, line.text));
        }
        EXPECT_THAT(seen, testing::ElementsAreArray(expected));
    }
};

TEST_F(IpacmPlacesTest, SettingWritesThere)
{
    const auto cfg = gre_record(1, 2, 1);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(platform.journal, (saving));
    expect_log({"info zr_nexa_wan_gre_ipacfg_set_v1: entry",
                "info zr_nexa_wan_gre_ipacfg_set_v1: gre_config.server_ipv4_addr[0]:10.0.0.1",
                "info zr_nexa_wan_gre_ipacfg_set_v1: gre_config.server_ipv4_addr[1]:10.0.0.2",
                "info zr_nexa_wan_gre_ipacfg_set_v1: gre_config.subnet_mask[0]:255.255.0.0",
                "info ZR_GetSetIpacmConfigFromXML: SET gre ipa option",
                "info ZR_GetSetIpacmConfigFromXML: GRE ipa enable, num_of_server_addrs:2, num_of_subnet_masks:1",
                "info ZR_GetSetIpacmConfigFromXML: serverIP[0]:10.0.0.1",
                "info ZR_GetSetIpacmConfigFromXML: serverIP[1]:10.0.0.2",
                "info ZR_GetSetIpacmConfigFromXML: subnetIP[0]:255.255.0.0",
                "info zr_nexa_wan_gre_ipacfg_set_v1: zr_nexa_gre_ipacfg_set_v1 success"});
    EXPECT_EQ(content_of(ipacm::kTemporaryFile), kAfter);
    EXPECT_EQ(content_of(ipacm::kConfigFile), kBefore) << "the file is replaced by the copy only";
}

TEST_F(IpacmPlacesTest, GettingReadsThere)
{
    write_file(ipacm::kConfigFile, kAfter);
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
    EXPECT_EQ(platform.journal, (std::vector<std::string>{}));
    const auto number = [](uint32_t host_order) { return std::to_string(static_cast<int>(htonl(host_order))); };
    expect_log({"info zr_nexa_wan_gre_ipacfg_get_v1: entry", "info ZR_GetSetIpacmConfigFromXML: GET gre ipa option",
                "info ZR_GetSetIpacmConfigFromXML: GET gre ipa status:1",
                "info ZR_GetSetIpacmConfigFromXML: cfg_value->server_ipv4_addr[0]:" + number(0x0A000001),
                "info ZR_GetSetIpacmConfigFromXML: cfg_value->server_ipv4_addr[1]:" + number(0x0A000002),
                "info ZR_GetSetIpacmConfigFromXML: cfg_value->subnet[0]:" + number(0xFFFF0000),
                "info zr_nexa_wan_gre_ipacfg_get_v1: zr_nexa_gre_ipacfg_get_v1 success"});
    zr_nexa_wan_gre_ipacfg_t expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.gre_enabled = 1;
    expected.num_of_server_addrs = 2;
    expected.server_ipv4_addr[0] = htonl(0x0A000001);
    expected.server_ipv4_addr[1] = htonl(0x0A000002);
    expected.num_of_subnet_masks = 1;
    expected.subnet_mask[0] = htonl(0xFFFF0000);
    EXPECT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << "padding included";
    EXPECT_EQ(content_of(ipacm::kConfigFile), kAfter);
    EXPECT_FALSE(std::filesystem::exists(ipacm::kTemporaryFile));
}

TEST_F(IpacmPlacesTest, TooManyAreRefusedBeforeTheFileIsLookedAt)
{
    std::filesystem::remove(ipacm::kConfigFile);  // had it been opened, the call would not come back
    for (const auto& cfg : {gre_record(1, 11, 0), gre_record(1, 10, 3)}) {
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 4);
    }
    EXPECT_EQ(platform.journal, (std::vector<std::string>{}));
    EXPECT_FALSE(std::filesystem::exists(ipacm::kTemporaryFile));
}

TEST_F(IpacmPlacesTest, TheNamedWorkIsDoneThere)
{
    auto cfg = gre_record(1, 2, 1);
    for (const uint32_t is_set : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ZR_GetSetIpacmConfigFromXML(is_set, &cfg), 0);
        EXPECT_EQ(platform.log[0].text, is_set == 0 ? "GET gre ipa option" : "SET gre ipa option");
        EXPECT_EQ(platform.journal, (is_set == 0 ? std::vector<std::string>() : saving));
        EXPECT_EQ(std::filesystem::exists(ipacm::kTemporaryFile), is_set != 0);
        platform.forget();
    }
}

TEST_F(IpacmPlacesTest, TheNamedSaveWritesThere)
{
    pugi::xml_document document;
    document.append_child("a").append_child("b");
    zr_nexa_ipacm_cfg_save(document);
    EXPECT_EQ(content_of(ipacm::kTemporaryFile), "<?xml version=\"1.0\"?>\n<a>\n\t<b />\n</a>\n");
    EXPECT_EQ(platform.journal, (saving));
    expect_log({});
}

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

TEST_F(IpacmCfgTest, RandomFilesAreReadAndWrittenAsAnIndependentReaderSees)
{
    int with_flag = 0;
    int off = 0;
    int full = 0;
    for (uint32_t seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        small_xml::Random random(seed);
        const std::string text = small_xml::random_file(random);
        write_file(files.config, text);
        small_xml::Node document = small_xml::read(text);

        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        ASSERT_EQ(get(&cfg), 0);
        const auto expected = expected_record(document);
        ASSERT_EQ(std::memcmp(&cfg, &expected, sizeof(cfg)), 0) << text;
        with_flag += gre_flag_of(document) != nullptr ? 1 : 0;
        off += cfg.gre_enabled == 0 ? 1 : 0;
        full += cfg.num_of_server_addrs == 10 ? 1 : 0;

        cfg = gre_record(static_cast<uint8_t>(random.below(3)), static_cast<uint8_t>(random.below(11)),
                         static_cast<uint8_t>(random.below(3)));
        cfg.server_ipv4_addr[0] = random.next();
        ASSERT_EQ(set(cfg), 0);
        apply(cfg, &document);
        ASSERT_EQ(small_xml::normalised(small_xml::read(content_of(files.temporary))), small_xml::normalised(document))
            << text;
        std::filesystem::remove(files.temporary);
        platform.forget();
    }
    // The files are worth reading.
    EXPECT_GT(with_flag, 1000);
    EXPECT_GT(off, 50);
    EXPECT_GT(full, 50);
}

// Files with bytes changed, left out and added: whatever they are, they are read, or waited for.
TEST_F(IpacmCfgTest, DamagedFilesAreReadOrWaitedFor)
{
    static const char bytes[] = {'<', '>', '/', '&', '\0', '"', '!', '[', '?', '\xff', '\xfe', '\x80', 'G', '0'};
    int waited = 0;
    int kept = 0;
    bool mended = false;
    on_wait = [&](useconds_t) {
        write_file(files.config, file_with("<GREFlag/>"));
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
