// GRE offload as keys of a document: its file looked at, copied and put back, and functions that would wait for ever.
#include "gre.h"

#include <arpa/inet.h>

#include "area_fixture.h"
#include "module.h"
#include "private_ipacm.h"

namespace ctl {
namespace {

using ipacm::content_of;
using ipacm::write_file;
using std::chrono::milliseconds;
using Map = Value::Map;

const std::string kOff =
    "<?xml version=\"1.0\"?>\n<system>\n\t<IPACM>\n\t\t<GREFlag>\n\t\t\t<GREEnabled>0</GREEnabled>\n\t\t</GREFlag>\n"
    "\t\t<Kept>yes</Kept>\n\t</IPACM>\n</system>\n";
const std::string kFlagless = "<system><IPACM><Kept>yes</Kept></IPACM></system>";

bool has_children()
{
    return waitpid(-1, nullptr, WNOHANG) >= 0;
}

class GreLookTest : public testing::Test {
protected:
    ipacm::TemporaryFiles place;
    GreFiles files = {place.config, place.temporary_folder};
};

TEST_F(GreLookTest, AFileIsReadableWhenItParses)
{
    EXPECT_EQ(gre_unreadable(files), place.config + ": No such file or directory");
    EXPECT_EQ(gre_unwritable(files), place.config + ": No such file or directory");
    write_file(place.config, kOff);
    EXPECT_EQ(gre_unreadable(files), "");
    EXPECT_EQ(gre_unwritable(files), "");
    write_file(place.config, kOff.substr(0, 60));
    EXPECT_EQ(gre_unreadable(files).rfind(place.config + " cannot be parsed: ", 0), 0U);
    EXPECT_EQ(gre_unwritable(files).rfind(place.config + " cannot be parsed: ", 0), 0U);
    write_file(place.config, "");
    EXPECT_NE(gre_unreadable(files), "");
    EXPECT_EQ(gre_unreadable({place.folder, place.temporary_folder}), place.folder + " is no file");
}

TEST_F(GreLookTest, WithoutItsElementNothingIsWritten)
{
    write_file(place.config, kFlagless);
    EXPECT_EQ(gre_unreadable(files), "");
    EXPECT_EQ(gre_unwritable(files), place.config + " has no GREFlag element to put them in");
}

TEST_F(GreLookTest, TheTemporaryFolderMustBeThere)
{
    write_file(place.config, kOff);
    std::filesystem::remove(place.temporary_folder);
    EXPECT_EQ(gre_unreadable(files), "");
    EXPECT_EQ(gre_unwritable(files), place.temporary_folder + ": No such file or directory");
}

TEST_F(GreLookTest, ACopyIsKeptAndWrittenOverTheFile)
{
    const std::string held = place.folder + "/held";
    std::filesystem::create_directory(held);
    EXPECT_EQ(keep_gre_copy(held, files), place.config + ": No such file or directory");
    write_file(place.config, kOff);
    EXPECT_EQ(keep_gre_copy(held, files), "");
    EXPECT_EQ(content_of(held + "/IPACM_cfg.xml"), kOff);

    struct stat before = {};
    struct stat after = {};
    for (const std::string& broken : {std::string("<system>"), kOff + kOff, std::string()}) {
        write_file(place.config, broken);
        ASSERT_EQ(stat(place.config.c_str(), &before), 0);
        EXPECT_EQ(restore_gre_copy(held, files), "");
        EXPECT_EQ(content_of(place.config), kOff);
        ASSERT_EQ(stat(place.config.c_str(), &after), 0);
        EXPECT_EQ(after.st_ino, before.st_ino);
    }
    // One that is the same is not touched, one that is gone is made.
    ASSERT_EQ(stat(place.config.c_str(), &before), 0);
    EXPECT_EQ(restore_gre_copy(held, files), "");
    ASSERT_EQ(stat(place.config.c_str(), &after), 0);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    std::filesystem::remove(place.config);
    EXPECT_EQ(restore_gre_copy(held, files), "");
    EXPECT_EQ(content_of(place.config), kOff);
}

TEST_F(GreLookTest, ACopyIsWholeOrStaysAsItWas)
{
    const std::string held = place.folder + "/held";
    const std::string copy = held + "/IPACM_cfg.xml";
    write_file(place.config, kOff);
    EXPECT_EQ(keep_gre_copy(held, files), copy + ".new: No such file or directory");
    std::filesystem::create_directory(held);
    EXPECT_EQ(restore_gre_copy(held, files), copy + ": No such file or directory");
    EXPECT_EQ(keep_gre_copy(held, files), "");
    write_file(place.config, kOff.substr(0, 60));
    EXPECT_NE(keep_gre_copy(held, files), "");
    EXPECT_EQ(content_of(copy), kOff);
    write_file(place.config, kFlagless);
    EXPECT_EQ(keep_gre_copy(held, files), "");
    EXPECT_EQ(content_of(copy), kFlagless);
    drop_gre_copy(held);
    EXPECT_TRUE(std::filesystem::is_empty(held));
}

TEST(GreChildTest, ItsAnswerAndRecordComeBack)
{
    zr_nexa_wan_gre_ipacfg_t record = {};
    record.num_of_subnet_masks = 7;
    const auto function = [](zr_nexa_wan_gre_ipacfg_t* given) {
        given->num_of_server_addrs = static_cast<uint8_t>(given->num_of_subnet_masks + 1);
        return 4;
    };
    const Result result = call_in_child(function, "name", &record);
    EXPECT_EQ(result.code, 4U);
    EXPECT_STREQ(result.function, "name");
    EXPECT_EQ(result.words, "");
    EXPECT_EQ(record.num_of_server_addrs, 8);
    EXPECT_FALSE(has_children());
}

TEST(GreChildTest, OneThatWaitsForEverIsKilled)
{
    zr_nexa_wan_gre_ipacfg_t record = {};
    const auto function = [](zr_nexa_wan_gre_ipacfg_t* given) {
        given->gre_enabled = 1;
        for (const int signal : {SIGTERM, SIGINT})
            ::signal(signal, SIG_IGN);
        return static_cast<int32_t>(sleep(10));
    };
    const Result result = call_in_child(function, "name", &record, milliseconds(50));
    EXPECT_EQ(result.words, "gave no answer in time and was ended; the file may have broken in between");
    EXPECT_FALSE(result.good());
    EXPECT_EQ(record.gre_enabled, 0);
    EXPECT_FALSE(has_children());
}

TEST(GreChildTest, ItsShellCommandsGoWithIt)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const auto start = std::chrono::steady_clock::now();
    zr_nexa_wan_gre_ipacfg_t record = {};
    const auto function = [](zr_nexa_wan_gre_ipacfg_t*) { return system("sleep 10"); };
    EXPECT_FALSE(call_in_child(function, "name", &record, milliseconds(200)).good());
    close(ends[1]);
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 0);  // nobody holds the other end any more
    close(ends[0]);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(9));
}

TEST(GreChildTest, OneThatDiesIsNotWaitedFor)
{
    zr_nexa_wan_gre_ipacfg_t record = {};
    const Result result = call_in_child([](zr_nexa_wan_gre_ipacfg_t*) -> int32_t { _exit(0); }, "name", &record);
    EXPECT_FALSE(result.good());
    EXPECT_FALSE(has_children());
}

TEST(GreChildTest, ItEndsWithItsParent)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const auto start = std::chrono::steady_clock::now();
    const pid_t parent = start_child([&] {
        zr_nexa_wan_gre_ipacfg_t record = {};
        const auto function = [&ends](zr_nexa_wan_gre_ipacfg_t*) {
            EXPECT_EQ(::write(ends[1], "x", 1), 1);
            return static_cast<int32_t>(sleep(10));
        };
        call_in_child(function, "name", &record);
        return 0;
    });
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    kill(parent, SIGKILL);
    EXPECT_EQ(wait_child(parent), 1000 + SIGKILL);
    close(ends[1]);
    EXPECT_EQ(::read(ends[0], &byte, 1), 0);
    close(ends[0]);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(9));
}

// The library's functions, in the places of the module's files.
class GreTest : public testing::Test {
protected:
    ipacm::PrivateMounts mounts;

    void SetUp() override
    {
        if (!mounts.enter()) GTEST_SKIP() << "private mounts are not allowed here";
        write_file(ipacm::kConfigFile, kOff);
    }
    static Map settings(bool enabled, const Value::List& servers, const Value::List& masks)
    {
        return {{"gre.enabled", enabled}, {"gre.servers", servers}, {"gre.masks", masks}};
    }
};

TEST_F(GreTest, SettingsAreWrittenAndReadBack)
{
    EXPECT_EQ(read("gre.enabled"), "{gre.enabled: false, gre.masks: [], gre.servers: []}");
    EXPECT_EQ(write("gre.enabled", 0, settings(true, {"10.0.0.2", "10.0.0.1"}, {"255.255.255.0", "255.0.0.0"})),
              "done");
    EXPECT_EQ(read("gre.enabled"),
              "{gre.enabled: true, gre.masks: [255.255.255.0, 255.0.0.0], gre.servers: [10.0.0.2, 10.0.0.1]}");
    zr_nexa_wan_gre_ipacfg_t record = {};
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&record), 0);
    EXPECT_EQ(record.server_ipv4_addr[0], htonl(0x0a000002));
    EXPECT_EQ(record.subnet_mask[1], htonl(0xff000000));
    EXPECT_NE(content_of(ipacm::kConfigFile).find("<Kept>yes</Kept>"), std::string::npos);

    const Value::List ten(10, "10.0.0.9");
    EXPECT_EQ(write("gre.enabled", 0, settings(true, ten, {})), "done");
    EXPECT_EQ(read("gre.enabled"), "{gre.enabled: true, gre.masks: [], gre.servers: " + in_short(ten) + "}");
    EXPECT_EQ(write("gre.enabled", 0, settings(false, ten, {})), "done");
    EXPECT_EQ(content_of(ipacm::kConfigFile), kOff);
}

TEST_F(GreTest, WithoutAFileReadingIsNotedAndOfABrokenOneRefused)
{
    for (const std::string& content : {std::string(), std::string("<system>")}) {
        if (content.empty())
            std::filesystem::remove(ipacm::kConfigFile);
        else
            write_file(ipacm::kConfigFile, content);
        Value value;
        const Result result = row("gre.enabled").read(0, &value);
        Module module;
        Wish wish;
        wish.row = [](const Row& each) { return each.path.empty() && each.fields[0].key == "gre.enabled"; };
        wish.scoped = [](const Row&, uint32_t) { return false; };
        read_settings(wish, &module);
        ASSERT_EQ(module.unread.size(), 1U);
        EXPECT_EQ(module.unread[0].path, "gre.enabled");
        EXPECT_EQ(module.unread[0].is_missing, content.empty());
        EXPECT_EQ(result.words, gre_unreadable());
        EXPECT_NE(result.words, "");
        EXPECT_TRUE(value.is_nothing());
        EXPECT_EQ(write("gre.enabled", 0, settings(true, {}, {})), gre_unreadable());
    }
    EXPECT_EQ(content_of(ipacm::kConfigFile), "<system>");
}

TEST_F(GreTest, WithoutItsElementItIsReadAsTheInterfaceDoesAndNotWritten)
{
    write_file(ipacm::kConfigFile, kFlagless);
    EXPECT_EQ(read("gre.enabled"), "{gre.enabled: true, gre.masks: [], gre.servers: []}");
    EXPECT_EQ(write("gre.enabled", 0, settings(false, {}, {})),
              "/etc/data/ipa/IPACM_cfg.xml has no GREFlag element to put them in");
    EXPECT_EQ(content_of(ipacm::kConfigFile), kFlagless);
}

TEST_F(GreTest, ThereMustBeRoomInBothPlaces)
{
    ASSERT_EQ(mount("none", "/run/data", "tmpfs", 0, "size=68k"), 0);
    EXPECT_EQ(gre_unwritable(), "");
    write_file(ipacm::kConfigFile, kOff + std::string(1024 - kOff.size(), ' '));
    EXPECT_EQ(gre_unwritable(), "");  // just enough
    write_file(ipacm::kConfigFile, kOff);
    write_file("/run/data/other", std::string(4096, 'x'));
    EXPECT_EQ(write("gre.enabled", 0, settings(true, {}, {})),
              "/var/run/data has 65536 bytes free, and " + std::to_string(65536 + 4 * kOff.size()) + " are needed");
    EXPECT_EQ(umount("/run/data"), 0);

    ASSERT_EQ(mount("none", "/run/data", "tmpfs", 0, "nr_inodes=2"), 0);
    EXPECT_EQ(gre_unwritable(), "");
    write_file("/run/data/other", "");
    EXPECT_EQ(gre_unwritable(), "/var/run/data has room for no file more");
    EXPECT_EQ(umount("/run/data"), 0);

    ASSERT_EQ(mount("none", "/etc/data/ipa", "tmpfs", 0, "size=68k"), 0);
    write_file(ipacm::kConfigFile, kOff);
    EXPECT_EQ(gre_unwritable(),
              "/etc/data/ipa has 65536 bytes free, and " + std::to_string(65536 + 4 * kOff.size()) + " are needed");
    EXPECT_EQ(umount("/etc/data/ipa"), 0);
    EXPECT_EQ(content_of(ipacm::kConfigFile), kOff);
}

TEST_F(GreTest, ReadOnlyPlacesAreSeen)
{
    mounts.make_read_only("/run");
    EXPECT_EQ(gre_unwritable(), "/var/run/data: Read-only file system");
    mounts.make_read_only("/etc");
    EXPECT_EQ(gre_unwritable(), "/etc/data/ipa/IPACM_cfg.xml: Read-only file system");
    EXPECT_EQ(read("gre.enabled"), "{gre.enabled: false, gre.masks: [], gre.servers: []}");
}

// As when it breaks between looking and calling.
TEST_F(GreTest, AFunctionThatWaitsForTheFileIsEnded)
{
    write_file(ipacm::kConfigFile, "<system>");
    zr_nexa_wan_gre_ipacfg_t record = {};
    EXPECT_FALSE(call_in_child(zr_nexa_wan_gre_ipacfg_get_v1, "get", &record, milliseconds(200)).good());
    EXPECT_FALSE(call_in_child(zr_nexa_wan_gre_ipacfg_set_v1, "set", &record, milliseconds(200)).good());
    EXPECT_FALSE(has_children());
    EXPECT_EQ(content_of(ipacm::kConfigFile), "<system>");
}

TEST_F(GreTest, AddressesOfADocumentNeedIt)
{
    Value record = settings(false, {"10.0.0.1"}, {"255.0.0.0"});
    std::string said;
    const Complain complain = [&](const Value&, const std::string& path, const std::string& problem) {
        said += path + ": " + problem + "; ";
    };
    row("gre.enabled").check(record, "", complain);
    EXPECT_EQ(said, "");  // what the module has goes with the offload
    record.map()["gre.servers"].mark = {3, 4};
    row("gre.enabled").check(record, "", complain);
    EXPECT_EQ(said, "gre.servers: only with enabled: true; ");
    record.map()["gre.enabled"] = true;
    row("gre.enabled").check(record, "", complain);
    EXPECT_EQ(said, "gre.servers: only with enabled: true; ");
    EXPECT_NE(problems_of("gre.enabled", Map{{"gre.servers", Value::List(11, "10.0.0.1")}}), "");
    EXPECT_NE(problems_of("gre.enabled", Map{{"gre.masks", Value::List(3, "255.0.0.0")}}), "");
}

}  // namespace
}  // namespace ctl
