// A place for the state that is missing, unwritable, full or damaged: one line on stderr, a verdict, nothing lost.
#include <dirent.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "private_mounts.h"
#include "run_tool.h"

namespace {

using StateTest = ToolTest;

constexpr const char* kNotReady = "CMD Error#0xd\r\n";

std::string file_contents(const std::string& path)
{
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
    return all.str();
}

TEST_F(StateTest, AMissingFolderIsNamed)
{
    ToolOptions missing;
    missing.state = state.path() + "/none";
    expect({"General", "SFE", "get"}, missing, kNotReady,
           "mobile-AP state " + missing.state + ": No such file or directory; the service is not ready\n");
    EXPECT_TRUE(std::filesystem::is_empty(state.path()));
}

TEST_F(StateTest, AFileIsNoFolder)
{
    ToolOptions file;
    file.state = state.path() + "/file";
    std::ofstream(file.state) << "kept";
    expect({"LAN", "GWURL", "set", "u"}, file, kNotReady,
           "mobile-AP state " + file.state + ": not a folder; the service is not ready\n");
    ToolOptions below;
    below.state = file.state + "/below";
    expect({"LAN", "GWURL", "set", "u"}, below, kNotReady,
           "mobile-AP state " + below.state + ": Not a directory; the service is not ready\n");
    EXPECT_EQ(file_contents(file.state), "kept");
}

TEST_F(StateTest, AnUnwritableFolderIsNamed)
{
    expect({"LAN", "GWURL", "set", "before"}, "CMD OK\r\n");
    const std::string line = "mobile-AP state " + state.path() + ": ";
    const bool ran = in_private_mounts([&] {
        ASSERT_EQ(mount(state.path().c_str(), state.path().c_str(), nullptr, MS_BIND, nullptr), 0);
        ASSERT_EQ(mount(nullptr, state.path().c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr), 0);
        expect({"LAN", "GWURL", "set", "after"}, options(), kNotReady,
               line + "Read-only file system; the service is not ready\n");
    });
    if (!ran && geteuid() != 0) {
        chmod(state.path().c_str(), 0500);
        expect({"LAN", "GWURL", "set", "after"}, options(), kNotReady,
               line + "Permission denied; the service is not ready\n");
        chmod(state.path().c_str(), 0700);
    }
    expect({"LAN", "GWURL", "get"}, "LAN GWURL: before\r\nCMD OK\r\n");
    if (!ran && geteuid() == 0) GTEST_SKIP() << kNoPrivateMounts;
}

TEST_F(StateTest, ADamagedDatabaseIsSetAsideAndReplaced)
{
    const std::string damage =
        "this is not a database, and it is longer than the header of one would be by far: " + std::string(2000, '!');
    std::ofstream(database(), std::ios::binary) << damage;

    const ToolRun first = run({"LAN", "GWURL", "get"});
    EXPECT_EQ(first.out, kNotReady);
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(first.err.rfind("mobile-AP state " + database() + ": damaged (", 0), 0u) << first.err;
    EXPECT_NE(first.err.find("set aside as " + database() + ".corrupt-"), std::string::npos) << first.err;
    EXPECT_EQ(first.err.find('\n'), first.err.size() - 1) << "more than one line";

    expect({"LAN", "GWURL", "get"}, "LAN GWURL: mobileap.home\r\nCMD OK\r\n");
    int kept = 0;
    for (const auto& entry : std::filesystem::directory_iterator(state.path())) {
        if (entry.path().filename().string().rfind("mobile_ap.db.corrupt-", 0) != 0) continue;
        ++kept;
        EXPECT_EQ(file_contents(entry.path()), damage);
    }
    EXPECT_EQ(kept, 1);
}

TEST_F(StateTest, AFullDiskLosesNothing)
{
    const bool ran = in_private_mounts([&] {
        constexpr size_t kPage = 4096;
        ASSERT_EQ(mount("state", state.path().c_str(), "tmpfs", 0, "size=1m"), 0);
        expect({"LAN", "GWURL", "set", "stored.0"}, "CMD OK\r\n");
        std::string stored = "stored.0";
        int refused = 0;
        int taken = 0;
        // From no room at all to room enough, a page more each time.
        for (size_t free_pages = 0; free_pages < 30; ++free_pages) {
            const std::string filler = state.path() + "/filler";
            std::ofstream(filler) << std::string(1 << 20, 'x');
            const auto filled = std::filesystem::file_size(filler);
            std::filesystem::resize_file(filler, filled - std::min<uintmax_t>(filled, free_pages * kPage));

            const std::string next = "stored." + std::to_string(free_pages + 1);
            const ToolRun seen = run({"LAN", "GWURL", "set", next});
            EXPECT_EQ(seen.status, 0);
            std::filesystem::remove(filler);
            if (seen.out == "CMD OK\r\n") {
                ++taken;
                stored = next;
                EXPECT_EQ(seen.err, "");
            } else {
                ++refused;
                EXPECT_EQ(seen.out.rfind("CMD Error#0x", 0), 0u) << seen.out;
                EXPECT_EQ(seen.err.rfind("mobile-AP state " + state.path(), 0), 0u) << seen.err;
                EXPECT_EQ(seen.err.find('\n'), seen.err.size() - 1) << "more than one line";
            }
            EXPECT_EQ(integrity(database()), "ok");
            expect({"LAN", "GWURL", "get"}, "LAN GWURL: " + stored + "\r\nCMD OK\r\n");
        }
        EXPECT_GT(refused, 0);
        EXPECT_GT(taken, 0);
    });
    if (!ran) GTEST_SKIP() << kNoPrivateMounts;
}

TEST_F(StateTest, AFileSizeLimitLosesNothing)
{
    expect({"LAN", "GWURL", "set", "stored"}, "CMD OK\r\n");
    for (const rlim_t limit : {0u, 512u, 4096u, 16384u, 40960u}) {
        ToolOptions limited = options();
        limited.before_exec = [limit] {
            signal(SIGXFSZ, SIG_IGN);
            const rlimit bytes = {limit, limit};
            setrlimit(RLIMIT_FSIZE, &bytes);
        };
        const ToolRun seen = run_tool({"LAN", "GWURL", "set", "after"}, limited);
        EXPECT_EQ(seen.status, 0);
        EXPECT_EQ(integrity(database()), "ok") << limit;
        const ToolRun read = run({"LAN", "GWURL", "get"});
        const std::string wanted = seen.out == "CMD OK\r\n" ? "after" : "stored";
        EXPECT_TRUE(read.out == "LAN GWURL: " + wanted + "\r\nCMD OK\r\n") << limit << " " << read.out << read.err;
    }
}

}  // namespace
