// What is held of an apply to go back to, and who watches it: the program as it is run.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <array>
#include <cstring>
#include <filesystem>

#include "program_fixture.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr char kOne[] = "version: 1\ngeneral: {shortcut_engine: false}\n";
constexpr char kTwo[] = "version: 1\ngeneral: {packet_statistics: true, shortcut_engine: false}\n";
constexpr char kOther[] = "version: 1\ngeneral: {gateway_url: other.example}\n";

const std::string kWaysOn = "\"zr_nexactl rollback\" goes back, \"zr_nexactl confirm\" keeps things as they are\n";
const std::string kStillHeld = "zr_nexactl: what was before the apply that was cut off is still held: " + kWaysOn;
const std::string kCutOff = "zr_nexactl: an apply was cut off; its state is kept as the one to go back to\n";

bool is_rename(const __ptrace_syscall_info& info)
{
#ifdef SYS_rename
    if (info.entry.nr == SYS_rename) return true;
#endif
    return info.entry.nr == SYS_renameat || info.entry.nr == SYS_renameat2;
}

bool is_lock(const __ptrace_syscall_info& info)
{
    return info.entry.nr == SYS_fcntl && info.entry.args[1] == F_SETLK;
}

class HeldTest : public ProgramTest {
protected:
    HeldTest()
    {
        one_ = written("one.yaml", kOne);
        two_ = written("two.yaml", kTwo);
        other_ = written("other.yaml", kOther);
        factory_ = shown();
    }

    // Leaves packet_statistics changed, and the shortcut engine not.
    void cut_off(const Words& more = {}) const
    {
        Words words = {"apply", two_};
        words.insert(words.end(), more.begin(), more.end());
        StartedTool tool(words, ctl_options({"MOBILE_AP_FAULTS=SetDataPathOptStatus=delay:60000"}));
        ASSERT_TRUE(comes([&] { return shown().find("packet_statistics: true") != std::string::npos; }));
        EXPECT_TRUE(tool.send(SIGKILL));
        tool.wait();
    }

    // Kills an apply in a call of the platform's, which it is seen to have begun: this is shown before it.
    void cut_off_in(const std::string& method, const std::string& document, const std::string& shown_then) const
    {
        StartedTool tool({"apply", document}, ctl_options({"MOBILE_AP_FAULTS=" + method + "=delay:60000"}));
        // A LAN may go while it is looked at.
        ASSERT_TRUE(comes([&] { return ctl({"show"}).out.find(shown_then) != std::string::npos; }));
        EXPECT_TRUE(tool.send(SIGKILL));
        tool.wait();
    }

    // What no function of the interface tells.
    bool is_lan_in_use() const
    {
        sqlite3* db = nullptr;
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_open(database().c_str(), &db), SQLITE_OK);
        EXPECT_EQ(sqlite3_prepare_v2(db, "SELECT activated FROM lan_bridge WHERE id = 0", -1, &statement, nullptr),
                  SQLITE_OK);
        EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW);
        const bool in_use = sqlite3_column_int(statement, 0) != 0;
        sqlite3_finalize(statement);
        sqlite3_close(db);
        return in_use;
    }

    // A program that is traced from its start stops at each call of the system.
    ToolOptions traced(const std::vector<std::string>& variables = {}) const
    {
        ToolOptions options = ctl_options(variables);
        options.before_exec = [] { ptrace(PTRACE_TRACEME, 0, nullptr, nullptr); };
        return options;
    }
    static void run_up_to(pid_t pid, const std::function<bool(const __ptrace_syscall_info&)>& is_wanted, int number)
    {
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        ASSERT_EQ(ptrace(PTRACE_SETOPTIONS, pid, nullptr, PTRACE_O_TRACESYSGOOD), 0);
        for (long passed = 0; number > 0;) {
            ASSERT_EQ(ptrace(PTRACE_SYSCALL, pid, nullptr, passed), 0);
            ASSERT_EQ(waitpid(pid, &status, 0), pid);
            ASSERT_TRUE(WIFSTOPPED(status)) << "it has ended";
            passed = WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
            if (passed != (SIGTRAP | 0x80)) continue;
            passed = 0;
            __ptrace_syscall_info info = {};
            ASSERT_GT(ptrace(PTRACE_GET_SYSCALL_INFO, pid, sizeof info, &info), 0);
            if (info.op == PTRACE_SYSCALL_INFO_ENTRY && is_wanted(info)) --number;
        }
    }
    static void go_on(pid_t pid)
    {
        EXPECT_EQ(ptrace(PTRACE_DETACH, pid, nullptr, nullptr), 0);
    }

    // The processes that watch this test's folder.
    std::vector<std::string> watchdogs() const
    {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            std::ifstream file(entry.path() / "cmdline");
            std::ostringstream words;
            words << file.rdbuf();  // nothing of a process that ends meanwhile
            if (words.str().find(std::string("watchdog\0--state\0", 17) + held_folder()) != std::string::npos)
                found.push_back(entry.path());
        }
        return found;
    }

    void end_watchdog() const
    {
        std::vector<std::string> watching;
        ASSERT_TRUE(comes([&] { return (watching = watchdogs()).size() == 1; }));
        // It has told the apply that it runs.
        std::error_code gone;
        ASSERT_TRUE(
            comes([&] { return std::filesystem::read_symlink(watching[0] + "/fd/1", gone).string() == "/dev/null"; }));
        EXPECT_EQ(kill(std::stoi(watching[0].substr(std::strlen("/proc/"))), SIGKILL), 0);
        EXPECT_TRUE(comes([&] { return watchdogs().empty(); }));
    }

    std::string one_;
    std::string two_;
    std::string other_;
    std::string factory_;
};

// ---- an apply that was cut off ----

TEST_F(HeldTest, WhatWasCutOffIsKeptWhenNothingDiffers)
{
    cut_off();
    command({"General", "SFE", "disable"});
    expect_ctl({"apply", two_}, 0, "", kCutOff + "zr_nexactl: nothing differs\n" + kStillHeld);
    expect_ctl({"pending"}, 1, "an apply was cut off\n");
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_THAT(shown(), HasSubstr("packet_statistics: false"));
    expect_ctl({"pending"}, 0, "nothing is pending\n");
}

TEST_F(HeldTest, WhatWasCutOffIsKeptByAnApplyThatIsStoppedBeforeItsFirstChange)
{
    if (kEmulated) GTEST_SKIP() << "an emulated program cannot be traced";
    cut_off();
    StartedTool tool({"apply", other_}, traced());
    run_up_to(tool.pid(), is_rename, 1);  // of the held state
    EXPECT_TRUE(tool.send(SIGTERM));
    go_on(tool.pid());
    const ToolRun stopped = tool.wait();
    EXPECT_EQ(stopped.status, 4);
    EXPECT_EQ(stopped.err, kCutOff + "zr_nexactl: stopped; nothing was changed\n" + kStillHeld);
    expect_ctl({"pending"}, 1, "an apply was cut off\n");
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_EQ(shown(), factory_);
}

TEST_F(HeldTest, WhatWasCutOffEndsWithAnApplyThatIsDoneAndSaysSo)
{
    cut_off();
    expect_ctl({"apply", other_, "--no-verify"}, 0, "general.gateway_url: mobileap.home -> other.example\n",
               kCutOff + kStillHeld);
    expect_ctl({"apply", one_}, 0, "general.shortcut_engine: true -> false\n",
               kCutOff + "zr_nexactl: what was before the apply that was cut off is held no longer\n");
    expect_ctl({"pending"}, 0, "nothing is pending\n");
}

TEST_F(HeldTest, WhatWasCutOffIsKeptAsItIsByConfirm)
{
    cut_off();
    expect_ctl({"confirm"}, 0, "");
    expect_ctl({"pending"}, 0, "nothing is pending\n");
    EXPECT_THAT(shown(), HasSubstr("packet_statistics: true"));
}

constexpr char kTunnel[] = R"(version: 1
lans:
  10:
    vlan: {interface: ethernet}
    address: 10.7.2.1/24
    dhcp: {first: 10.7.2.2, last: 10.7.2.60}
    gateway_filters: [{protocol: tcp, ports: 80}]
    l2tp: {enabled: true, mtu: 1400, mode: managed, tunnels: {
      7: {peer_tunnel: 8, encapsulation: ip, local: 192.0.2.1, peer: 192.0.2.2, sessions: [{local: 1, peer: 2}]}}}
profiles: {main: {handle: 1, vlans: [10]}}
)";

TEST_F(HeldTest, WhatWasChangedBesideIsPutBackByTheNextApply)
{
    ASSERT_EQ(ctl({"apply", written("tunnel.yaml", kTunnel)}).status, 0);
    const std::string mtu =
        written("mtu.yaml", "version: 1\ngeneral: {shortcut_engine: false}\nlans: {10: {l2tp: {mtu: 1300}}}\n");
    cut_off_in("SetL2TPConfig", mtu, "mtu: 1300");
    expect_ctl({"apply", mtu}, 0, "general.shortcut_engine: true -> false\nlans.10.l2tp.mode: unmanaged -> managed\n",
               kCutOff + "zr_nexactl: what was before the apply that was cut off is held no longer\n");
    // Also where nothing else differs.
    const std::string other = written("other_mtu.yaml", "version: 1\nlans: {10: {l2tp: {mtu: 1200}}}\n");
    cut_off_in("SetL2TPConfig", other, "mtu: 1200");
    expect_ctl({"apply", other, "--json"}, 0,
               "{\"step\": [\"lans.10.l2tp.mode: unmanaged -> managed\"], \"outcome\": \"done\"}\n"
               "{\"status\": 0, \"left\": [], \"problems\": []}\n",
               kCutOff + "zr_nexactl: what was before the apply that was cut off is held no longer\n");
    expect_ctl({"pending"}, 0, "nothing is pending\n");
}

TEST_F(HeldTest, WhatStoodOnALanThatWasMadeAnewIsPutBackByTheNextApply)
{
    ASSERT_EQ(ctl({"apply", written("tunnel.yaml", kTunnel)}).status, 0);
    const std::string before = shown();
    const std::string anew = written("anew.yaml", "version: 1\nlans: {10: {vlan: {interface: ecm}}}\n");
    cut_off_in("CreateVLANConfig", anew, "vlans: []");
    EXPECT_EQ(ctl({"apply", anew}).status, 0);
    std::string after = before;
    after.replace(after.find("{interface: ethernet}"), 21, "{interface: ecm}");
    EXPECT_EQ(shown(), after);
    expect_ctl({"pending"}, 0, "nothing is pending\n");

    // A document that says nothing of it has the LAN back as it was, an own value stays.
    const std::string back = written("back.yaml", "version: 1\nlans: {10: {vlan: {interface: ethernet}}}\n");
    cut_off_in("CreateVLANConfig", back, "vlans: []");
    EXPECT_EQ(ctl({"apply", one_}).status, 0);
    after.replace(after.find("shortcut_engine: true"), 21, "shortcut_engine: false");
    EXPECT_EQ(shown(), after);
    cut_off_in("CreateVLANConfig", back, "vlans: []");
    const std::string own = written("own.yaml",
                                    "version: 1\nlans: {10: {vlan: {interface: ethernet}, gateway_filters: []}}\n"
                                    "profiles: {main: {handle: 1, vlans: []}}\n");
    EXPECT_EQ(ctl({"apply", own}).status, 0);
    EXPECT_THAT(shown(), AllOf(HasSubstr("10.7.2.1/24"), Not(HasSubstr("ports: 80")), HasSubstr("vlans: []")));
}

TEST_F(HeldTest, WhatCannotBePutBackByTheNextApplyIsToldAndStaysHeld)
{
    ASSERT_EQ(ctl({"apply", written("tunnel.yaml", kTunnel)}).status, 0);
    const std::string before = shown();
    const std::string anew = written("anew.yaml", "version: 1\nlans: {10: {vlan: {interface: ecm}}}\n");
    cut_off_in("CreateVLANConfig", anew, "vlans: []");
    const ToolRun seen = ctl({"apply", anew}, {"MOBILE_AP_FAULTS=SetIPPassthroughSoftwarePathFilters=fail:3"});
    EXPECT_EQ(seen.status, 5);
    EXPECT_THAT(seen.err, HasSubstr("is not as it should be: lans.10.gateway_filters: + {ports: 80, protocol: tcp}\n"));
    EXPECT_EQ(ctl({"pending"}).status, 1);
    expect_ctl({"apply", anew}, 0, "lans.10.gateway_filters: + {ports: 80, protocol: tcp}\n",
               "zr_nexactl: an apply has not come to its end; its state is kept as the one to go back to\n"
               "zr_nexactl: what was before the apply that was cut off is held no longer\n");
}

constexpr char kLease[] = "version: 1\nlans: {0: {dhcp: {lease_seconds: 7200}}}\n";

TEST_F(HeldTest, ALanThatIsStoredAndNotInUseIsWrittenAgain)
{
    const std::string lease = written("lease.yaml", kLease);
    cut_off_in("ActivateLAN", lease, "lease_seconds: 7200");
    EXPECT_FALSE(is_lan_in_use());
    expect_ctl({"apply", lease}, 0, "",
               kCutOff + "zr_nexactl: what was before the apply that was cut off is held no longer\n");
    EXPECT_TRUE(is_lan_in_use());
    expect_ctl({"pending"}, 0, "nothing is pending\n");
}

TEST_F(HeldTest, ALanThatCannotBePutToUseIsNotUndone)
{
    const std::string lease = written("lease.yaml", kLease);
    const ToolRun refused = ctl({"apply", lease}, {"MOBILE_AP_FAULTS=ActivateLAN=fail:3"});
    EXPECT_EQ(refused.status, 5);
    EXPECT_THAT(refused.err, HasSubstr("is not as it should be: lans.0.address: may be stored and not in use: "));
    EXPECT_EQ(shown(), factory_);
    EXPECT_FALSE(is_lan_in_use());
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_TRUE(is_lan_in_use());
    expect_ctl({"pending"}, 0, "nothing is pending\n");

    // Refused once more while it is undone, and then taken.
    EXPECT_EQ(ctl({"apply", lease}, {"MOBILE_AP_FAULTS=ActivateLAN#1=fail:3,ActivateLAN#2=fail:3"}).status, 4);
    EXPECT_TRUE(is_lan_in_use());
}

// ---- an apply that ends with status 5 ----

TEST_F(HeldTest, AnUndoThatIsRefusedLeavesTheStateAlsoWithKeepGoing)
{
    StartedTool tool({"apply", two_, "--keep-going"},
                     ctl_options({"MOBILE_AP_FAULTS=SetDataPathOptStatus=delay:60000,DisablePacketStats=fail:3"}));
    ASSERT_TRUE(comes([&] { return shown().find("packet_statistics: true") != std::string::npos; }));
    EXPECT_TRUE(tool.send(SIGTERM));
    const ToolRun stopped = tool.wait();
    EXPECT_EQ(stopped.status, 5) << stopped.err;
    // The step that was given up for the signal was not refused.
    EXPECT_THAT(stopped.err, HasSubstr("zr_nexactl: stopped: general.shortcut_engine: true -> false: "));
    EXPECT_THAT(stopped.err, EndsWith("zr_nexactl: what was before is still held: " + kWaysOn));
    expect_ctl({"pending"}, 1,
               "an apply has not come to its end\n"
               "is not as it should be: general.packet_statistics: true -> false\n");
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_EQ(shown(), factory_);
}

TEST_F(HeldTest, WhatIsReadBackOtherwiseSaysWhatCanBeDone)
{
    StartedTool tool({"apply", two_}, ctl_options({"MOBILE_AP_FAULTS=SetDataPathOptStatus=delay:500"}));
    ASSERT_TRUE(comes([&] { return shown().find("packet_statistics: true") != std::string::npos; }));
    const std::string off = written("off.yaml", "version: 1\ngeneral: {packet_statistics: false}\n");
    EXPECT_EQ(ctl({"apply", off, "--state", state.path() + "/beside"}).status, 0);
    const ToolRun ended = tool.wait();
    EXPECT_EQ(ended.status, 5);
    EXPECT_THAT(ended.err, EndsWith("zr_nexactl: is not as it should be: general.packet_statistics: false -> true\n"
                                    "zr_nexactl: what was before is still held: " +
                                    kWaysOn));
    expect_ctl({"confirm"}, 0, "");
    EXPECT_THAT(shown(), HasSubstr("shortcut_engine: false"));
}

TEST_F(HeldTest, WhatKeepGoingLeftWaitsToBeConfirmedToo)
{
    const ToolRun ended =
        ctl({"apply", two_, "--keep-going", "--confirm-within", "60"}, {"MOBILE_AP_FAULTS=EnablePacketStats=fail:3"});
    EXPECT_EQ(ended.status, 5);
    EXPECT_THAT(ended.err, EndsWith("zr_nexactl: \"zr_nexactl confirm\" within 60 s, or all is undone\n"));
    const ToolRun pending = ctl({"pending"});
    EXPECT_THAT(pending.out, HasSubstr("an apply waits to be confirmed, "));
    EXPECT_THAT(pending.out, EndsWith("is not as it should be: general.packet_statistics: false -> true\n"));
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_EQ(shown(), factory_);
}

// ---- the process that watches ----

TEST_F(HeldTest, WhereNobodyCanWatchNothingIsChanged)
{
    if (kEmulated) GTEST_SKIP() << "an emulated program needs no right to be run";
    // A program of its own, which finds its libraries beside it.
    const std::string program = state.path() + "/bin/zr_nexactl";
    std::filesystem::create_directory(state.path() + "/bin");
    std::filesystem::copy_file(ZR_NEXA_CTL, program);
    const std::filesystem::path build = std::filesystem::path(ZR_NEXA_CTL).parent_path().parent_path();
    std::filesystem::create_directory_symlink(build / "lib", state.path() + "/lib");
    ToolOptions options = ctl_options({"MOBILE_AP_FAULTS=GetVLANConfig=delay:300"});
    options.program = program;
    StartedTool tool({"apply", one_, "--confirm-within", "60"}, options);
    ASSERT_TRUE(comes([&] { return access((held_folder() + "/lock").c_str(), F_OK) == 0; }));
    EXPECT_EQ(chmod(program.c_str(), 0600), 0);  // it runs, and cannot be started again
    const ToolRun refused = tool.wait();
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err,
              "zr_nexactl: no process waits for the confirmation, so nothing is changed: Permission denied\n");
    expect_ctl({"pending"}, 0, "nothing is pending\n");
    EXPECT_EQ(shown(), factory_);
}

TEST_F(HeldTest, OneProcessWatchesAndKeepsNothingOfItsCaller)
{
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    ToolOptions options = ctl_options();
    options.before_exec = [&ends] { dup2(ends[1], 9); };
    EXPECT_EQ(run_tool({"apply", one_, "--confirm-within", "600"}, options).status, 0);
    close(ends[1]);
    pollfd end = {ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&end, 1, 5000), 1);  // nobody has the other end any more
    close(ends[0]);
    EXPECT_EQ(ctl({"apply", other_, "--confirm-within", "600"}).status, 0);
    EXPECT_TRUE(comes([&] { return watchdogs().size() == 1; }));
    const std::vector<std::string> watching = watchdogs();
    ASSERT_EQ(watching.size(), 1u);
    EXPECT_EQ(std::filesystem::read_symlink(watching[0] + "/cwd"), "/");
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_TRUE(comes([&] { return watchdogs().empty(); }));
}

TEST_F(HeldTest, AnotherOneWatchesWhereTheFirstWasEnded)
{
    EXPECT_EQ(ctl({"apply", one_, "--confirm-within", "600"}).status, 0);
    end_watchdog();
    EXPECT_EQ(ctl({"apply", other_, "--confirm-within", "1"}).status, 0);
    EXPECT_TRUE(comes([&] { return !is_held(); }));
    EXPECT_EQ(shown(), factory_);
}

// The watch finds the time over while the apply itself still runs, and gets the lock when the clock is set anew.
TEST_F(HeldTest, AnApplyThatHasJustSetItsClockAnewIsNotTakenBack)
{
    if (kEmulated) GTEST_SKIP() << "an emulated program cannot be traced";
    StartedTool tool({"apply", one_, "--confirm-within", "2"},
                     ctl_options({"MOBILE_AP_FAULTS=SetDataPathOptStatus=delay:2300"}));
    end_watchdog();
    StartedTool watch({"watchdog", "--state", held_folder()}, traced());
    run_up_to(watch.pid(), is_lock, 2);  // behind its own lock
    EXPECT_EQ(tool.wait().status, 0);
    go_on(watch.pid());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_THAT(shown(), HasSubstr("shortcut_engine: false"));
    expect_ctl({"confirm"}, 0, "");
    EXPECT_EQ(watch.wait().status, 0);
}

TEST_F(HeldTest, WhatTheWatchCouldNotUndoIsTold)
{
    const std::string dmz = written("dmz.yaml", R"(version: 1
profiles: {main: {dial: {apn_index: 1}, nat: {dmz: 192.168.225.30}}}
)");
    EXPECT_EQ(ctl({"apply", dmz, "--confirm-within", "1"}, {"MOBILE_AP_FAULTS=DeleteDMZ=fail:3"}).status, 0);
    const std::string told =
        "an apply was not confirmed in time\n"
        "is not as it should be: profiles.main.nat.dmz: 192.168.225.30 -> none\n";
    EXPECT_TRUE(comes([&] { return ctl({"pending"}).out == told; })) << ctl({"pending"}).out;
    EXPECT_TRUE(comes([&] { return watchdogs().empty(); }));  // it has tried
    expect_ctl({"rollback"}, 0, "profiles.main.nat.dmz: 192.168.225.30 -> none\n",
               "zr_nexactl: traffic of main may be interrupted\n");
    EXPECT_EQ(shown(), factory_);
}

// ---- what is told on the way ----

TEST_F(HeldTest, ADryRunTellsThatItWouldNotBeDoneNow)
{
    EXPECT_EQ(ctl({"apply", one_, "--confirm-within", "600"}).status, 0);
    const ToolRun dry = ctl({"apply", other_, "--dry-run"});
    EXPECT_EQ(dry.status, 0);
    EXPECT_EQ(dry.out, "general.gateway_url: mobileap.home -> other.example\n");
    EXPECT_THAT(dry.err, testing::MatchesRegex("zr_nexactl: it would not be done now: an apply waits to be confirmed, "
                                               "[0-9]+ s are left: .*\n"));
    expect_ctl({"apply", other_, "--dry-run", "--confirm-within", "9"}, 0, dry.out);
    EXPECT_EQ(ctl({"rollback"}).status, 0);
}

TEST_F(HeldTest, AWishToStopWhileItIsReadBackIsTold)
{
    StartedTool tool({"apply", one_}, ctl_options({"MOBILE_AP_FAULTS=GetDataPathOptStatus#2=hold:400"}));
    ASSERT_TRUE(comes([&] { return shown().find("shortcut_engine: false") != std::string::npos; }));
    EXPECT_TRUE(tool.send(SIGTERM));
    const ToolRun ended = tool.wait();
    EXPECT_THAT(ended.err, HasSubstr("zr_nexactl: the wish to stop came when all was done\n"));
    EXPECT_THAT(shown(), HasSubstr("shortcut_engine: false"));
}

TEST_F(HeldTest, OnATerminalAStepsLineTakesThePlaceOfItsProgress)
{
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(grantpt(terminal), 0);
    ASSERT_EQ(unlockpt(terminal), 0);
    const std::string name = ptsname(terminal);
    ToolOptions options = ctl_options();
    options.before_exec = [&name] {
        const int end = open(name.c_str(), O_RDWR | O_NOCTTY);
        dup2(end, STDOUT_FILENO);
        dup2(end, STDERR_FILENO);
    };
    const int kept = open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);  // what is written stays
    EXPECT_EQ(run_tool({"apply", two_}, options).status, 0);
    std::array<char, 4096> bytes = {};
    const ssize_t size = read(terminal, bytes.data(), bytes.size());
    EXPECT_EQ(std::string(bytes.data(), size > 0 ? static_cast<size_t>(size) : 0),
              "\r1 of 2 \r\033[Kgeneral.packet_statistics: false -> true\r\n"
              "\r2 of 2 \r\033[Kgeneral.shortcut_engine: true -> false\r\n");
    close(kept);
    close(terminal);
}

// ---- the folder ----

TEST_F(HeldTest, AQuestionMakesNoFolder)
{
    const std::string none = state.path() + "/none";
    expect_ctl({"pending", "--state", none}, 0, "nothing is pending\n");
    EXPECT_EQ(ctl({"apply", one_, "--dry-run", "--state", none}).status, 0);
    EXPECT_FALSE(std::filesystem::exists(none));
    expect_ctl({"apply", one_, "--state", none + "/below"}, 0, "general.shortcut_engine: true -> false\n");
    struct stat info = {};
    EXPECT_EQ(stat((none + "/below").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0700u);
}

TEST_F(HeldTest, AFolderThatOthersMayWriteIntoIsRefused)
{
    const std::string open = state.path() + "/open";
    std::filesystem::create_directory(open);
    const std::vector<Words> verbs = {
        {"apply", one_}, {"pending"}, {"confirm"}, {"rollback"}, {"rollback", "--if-pending"}, {"restore", "--yes"}};
    const auto expect_refused = [&](const std::string& why) {
        for (Words verb : verbs) {
            verb.insert(verb.end(), {"--state", open});
            expect_ctl(verb, 2, "", "zr_nexactl: " + open + why + "\n");
        }
    };
    for (const mode_t mode : {0777u, 0770u}) {
        ASSERT_EQ(chmod(open.c_str(), mode), 0);
        expect_refused(": others may write into it; \"chmod 700\" mends that");
    }
    ASSERT_EQ(chmod(open.c_str(), 0700), 0);
    expect_ctl({"pending", "--state", open}, 0, "nothing is pending\n");
    if (geteuid() == 0) {
        ASSERT_EQ(chown(open.c_str(), 12345, 12345), 0);
        expect_refused(": belongs to another user; take a folder of your own");
    }
    EXPECT_EQ(shown(), factory_);
    expect_ctl({"pending", "--state", "/dev/null"}, 2, "", "zr_nexactl: /dev/null: not a folder\n");
}

TEST_F(HeldTest, AHeldStateThatCannotBeReadSaysWhatToDo)
{
    EXPECT_EQ(ctl({"confirm"}).status, 1);  // makes the folder
    const std::string file = held_file();
    std::ofstream(file) << "held: {boot: \"\", until_ms: 0, seconds: 0}\nversion: 1\nfoo: bar\n";
    const std::string told = "zr_nexactl: the state to go back to cannot be read; to keep things as they are, remove " +
                             file + "\n" + file + ":3:1: foo: no such key\n";
    for (const Words& words : std::vector<Words>{{"pending"}, {"apply", one_}, {"confirm"}, {"rollback"}})
        expect_ctl(words, 2, "", told);
    EXPECT_EQ(shown(), factory_);
}

TEST_F(HeldTest, WhatIsPrintedWithoutDescriptorsGoesNowhere)
{
    ToolOptions options = ctl_options();
    options.before_exec = [] {
        close(STDIN_FILENO);
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
    };
    EXPECT_EQ(run_tool({"apply", one_, "--confirm-within", "600"}, options).status, 0);
    for (const auto& entry : std::filesystem::directory_iterator(held_folder())) {
        std::ifstream file(entry.path());
        const std::string bytes((std::istreambuf_iterator<char>(file)), {});
        EXPECT_THAT(bytes, Not(HasSubstr("-> false"))) << entry.path();
    }
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_EQ(shown(), factory_);
}

TEST_F(HeldTest, AFullDiskIsToldBeforeTheFirstChange)
{
    EXPECT_EQ(ctl({"confirm"}).status, 1);  // makes the folder
    const bool ran = in_private_mounts([&] {
        ASSERT_EQ(mount("none", held_folder().c_str(), "tmpfs", 0, "size=4k,mode=700"), 0);
        std::ofstream(held_folder() + "/filler") << std::string(4096, ' ');
        expect_ctl({"apply", one_}, 4, "", "zr_nexactl: " + held_file() + ".new: No space left on device\n");
        EXPECT_FALSE(is_held());
        EXPECT_FALSE(std::filesystem::exists(held_file() + ".new"));
        EXPECT_EQ(shown(), factory_);
    });
    if (!ran) GTEST_SKIP() << "mounts of one's own are not allowed here";
}

// ---- the file of GRE ----

constexpr char kGreFile[] = "/etc/data/ipa/IPACM_cfg.xml";
constexpr char kGreBytes[] = "<system>  <IPACM><GREFlag><GREEnabled>0</GREEnabled></GREFlag>\n\n</IPACM></system>";

std::string gre_bytes()
{
    std::ifstream file(kGreFile);
    return std::string((std::istreambuf_iterator<char>(file)), {});
}

void make_gre_file()
{
    ASSERT_EQ(mount("none", "/etc", "tmpfs", 0, nullptr), 0);
    ASSERT_EQ(mount("none", "/run", "tmpfs", 0, nullptr), 0);
    std::filesystem::create_directories("/etc/data/ipa");
    std::filesystem::create_directories("/run/data");
    std::ofstream(kGreFile) << kGreBytes;
}

constexpr char kGre[] = "version: 1\ngre: {enabled: true, servers: [10.0.0.1], masks: [255.0.0.0]}\n";

TEST_F(HeldTest, AStaleCopyOfTheFileOfGreIsNotPutBack)
{
    const bool ran = in_private_mounts([&] {
        make_gre_file();
        EXPECT_EQ(ctl({"confirm"}).status, 1);  // makes the folder
        const std::string copy = held_folder() + "/IPACM_cfg.xml";
        std::ofstream(copy) << "<system/>";
        EXPECT_EQ(ctl({"apply", one_, "--confirm-within", "600"}).status, 0);
        EXPECT_FALSE(std::filesystem::exists(copy));
        std::ofstream(copy) << "<system/>";  // none that the held state knows of
        EXPECT_EQ(ctl({"rollback"}).status, 0);
        EXPECT_EQ(gre_bytes(), kGreBytes);
    });
    if (!ran) GTEST_SKIP() << "mounts of one's own are not allowed here";
}

TEST_F(HeldTest, ARollbackThatCannotPutTheFileOfGreBackKeepsItsCopy)
{
    const std::string gre = written("gre.yaml", kGre);
    const bool ran = in_private_mounts([&] {
        make_gre_file();
        EXPECT_EQ(ctl({"apply", gre, "--confirm-within", "600"}).status, 0);
        // The same settings in other bytes, on a file that cannot be written.
        std::ofstream(kGreFile) << kGreBytes << "\n";
        ASSERT_EQ(mount(kGreFile, kGreFile, nullptr, MS_BIND, nullptr), 0);
        ASSERT_EQ(mount(nullptr, kGreFile, nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr), 0);
        expect_ctl({"rollback"}, 5, "",
                   "zr_nexactl: is not as it was: gre: " + std::string(kGreFile) + ": Read-only file system\n" +
                       "zr_nexactl: " + kWaysOn);
        EXPECT_EQ(ctl({"pending"}).status, 1);
        ASSERT_EQ(umount(kGreFile), 0);
        EXPECT_EQ(ctl({"rollback"}).status, 0);
        EXPECT_EQ(gre_bytes(), kGreBytes);
        expect_ctl({"pending"}, 0, "nothing is pending\n");
    });
    if (!ran) GTEST_SKIP() << "mounts of one's own are not allowed here";
}

// The copy is of the first state, and what a follow-up goes back to is another one.
TEST_F(HeldTest, ARefusedFollowUpLeavesTheFileOfGreAsTheFirstApplyMadeIt)
{
    const std::string gre = written("gre.yaml", kGre);
    const std::string more = written("more.yaml", "version: 1\ngre: {servers: [10.0.0.2]}\n");
    const bool ran = in_private_mounts([&] {
        make_gre_file();
        EXPECT_EQ(ctl({"apply", gre, "--confirm-within", "600"}).status, 0);
        const std::string between = gre_bytes();
        // No room for the temporary file: the function that writes is not called.
        ASSERT_EQ(mount("none", "/run/data", "tmpfs", MS_RDONLY, nullptr), 0);
        EXPECT_EQ(ctl({"apply", more, "--confirm-within", "600"}).status, 4);
        EXPECT_EQ(gre_bytes(), between);
        ASSERT_EQ(umount("/run/data"), 0);
        EXPECT_EQ(ctl({"rollback"}).status, 0);
        EXPECT_EQ(gre_bytes(), kGreBytes);
    });
    if (!ran) GTEST_SKIP() << "mounts of one's own are not allowed here";
}

}  // namespace
