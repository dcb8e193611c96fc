// The program killed at any moment of an apply, of its undo and of a rollback: in the platform's calls, also those that
// only look, and in its own system calls. ZR_NEXA_TRIALS=all tries every one.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>

#include <optional>
#include <set>

#include "set_up_module.h"

namespace {

using testing::HasSubstr;

class KillTest : public SetUpModuleTest {
protected:
    // The platform's calls of a run, from the state that is kept.
    Words calls_of(const Words& words, int status, const std::string& faults = "")
    {
        back_to_kept();
        const ToolRun seen = ctl(words, logging(faults));
        EXPECT_EQ(seen.status, status) << seen.err;
        return platform_calls(log());
    }

    // Kills a run in its call of this number, before the call does anything or when it has done all but end.
    void kill_in(const Words& words, const Words& calls, size_t number, const std::string& faults = "",
                 int milliseconds = 60000)
    {
        const std::string kind = number % 2 == 0 ? "=hold:" : "=delay:";
        StartedTool tool(words, ctl_options(logging((faults.empty() ? "" : faults + ",") + calls[number] + kind +
                                                    std::to_string(milliseconds))));
        EXPECT_TRUE(comes([&] { return platform_calls(log()).size() >= number; }));
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
        tool.send(SIGKILL);
        EXPECT_EQ(tool.wait().status, 1000 + SIGKILL);
    }

    // Nobody has the lock, and what is held is whole.
    void expect_whole() const
    {
        const int fd = open((held_folder() + "/lock").c_str(), O_RDWR | O_CLOEXEC);
        if (fd >= 0) {
            EXPECT_EQ(flock(fd, LOCK_EX | LOCK_NB), 0);
            close(fd);
        }
        EXPECT_EQ(ctl({"pending"}).status, is_held() ? 1 : 0);
    }
    void expect_taken_back() const
    {
        const ToolRun back = ctl({"rollback", "--if-pending"});
        EXPECT_EQ(back.status, 0) << back.err;
        EXPECT_EQ(shown(), shown_before_);
        expect_nothing_pending();
    }
    void expect_completed(const Words& words, const std::string& shown_after) const
    {
        const ToolRun again = ctl(words);
        EXPECT_EQ(again.status, 0) << again.err;
        EXPECT_EQ(shown(), shown_after);
    }

    void kill_everywhere(const Words& more, size_t at_most)
    {
        Words words = {"apply", after_};
        words.insert(words.end(), more.begin(), more.end());
        const Words calls = calls_of(words, 0);
        const std::string shown_after = shown();
        EXPECT_NE(shown_after, shown_before_);
        EXPECT_GT(calls.size(), 100u);
        for (const size_t number : some_of(calls.size(), at_most)) {
            SCOPED_TRACE(calls[number]);
            back_to_kept();
            kill_in(words, calls, number);
            expect_whole();
            // The session is closed when all is done and nothing is held any more.
            if (calls[number] == "DisableMobileAP#1" && !is_held()) {
                EXPECT_EQ(shown(), shown_after);
                continue;
            }
            expect_taken_back();

            back_to_kept();
            kill_in(words, calls, number);
            expect_completed(words, shown_after);
        }
    }
};

TEST_F(KillTest, AnApplyIsTakenBackOrCompletedFromEachCall)
{
    kill_everywhere({}, 30);
}

TEST_F(KillTest, AnApplyThatWouldWaitIsTakenBackOrCompletedFromEachCall)
{
    kill_everywhere({"--confirm-within", "600"}, 20);
}

TEST_F(KillTest, WithoutARollbackTheTimeThatIsOverTakesItBack)
{
    const Words words = {"apply", after_, "--confirm-within", "1"};
    const Words calls = calls_of({"apply", after_}, 0);
    size_t first = 0;
    while (!is_changing(calls[first]))
        ++first;
    for (const size_t number : some_of(calls.size() - first, 4)) {
        SCOPED_TRACE(calls[first + number]);
        back_to_kept();
        // What goes back has the same fault.
        kill_in(words, calls, first + number, "", 300);
        EXPECT_TRUE(comes([&] { return !is_held(); }));
        EXPECT_EQ(shown(), shown_before_);
        expect_nothing_pending();
    }
}

TEST_F(KillTest, AnUndoIsTakenBackOrCompletedFromEachCall)
{
    const Words words = {"apply", after_};
    calls_of(words, 0);
    const std::string shown_after = shown();
    const std::string last = changing_calls(log()).back();
    const std::string fault = last + "=fail:3";
    const Words calls = calls_of(words, 4, fault);
    EXPECT_EQ(shown(), shown_before_);
    const auto refused = static_cast<size_t>(std::find(calls.begin(), calls.end(), last) - calls.begin());
    ASSERT_LT(refused + 30, calls.size());
    for (const size_t number : some_of(calls.size() - refused - 1, 12)) {
        SCOPED_TRACE(calls[refused + 1 + number]);
        back_to_kept();
        kill_in(words, calls, refused + 1 + number, fault);
        expect_whole();
        EXPECT_TRUE(is_held());
        expect_taken_back();

        back_to_kept();
        kill_in(words, calls, refused + 1 + number, fault);
        expect_completed(words, shown_after);
    }
}

TEST_F(KillTest, ARollbackGoesOnFromEachCall)
{
    EXPECT_EQ(ctl({"apply", after_, "--confirm-within", "600"}).status, 0);
    keep_state();
    const Words calls = calls_of({"rollback"}, 0);
    EXPECT_EQ(shown(), shown_before_);
    for (const size_t number : some_of(calls.size(), 15)) {
        SCOPED_TRACE(calls[number]);
        back_to_kept();
        kill_in({"rollback"}, calls, number);
        expect_whole();
        expect_taken_back();
    }
}

// ---- its own system calls ----

// Those that make, name and forget files.
bool is_file_call(uint64_t number)
{
    static const std::set<uint64_t> numbers = {
#ifdef SYS_rename
        SYS_rename,   SYS_unlink,    SYS_mkdir,    SYS_open,      SYS_fork,
#endif
        SYS_renameat, SYS_renameat2, SYS_unlinkat, SYS_mkdirat,   SYS_openat,
        SYS_clone,    SYS_fsync,     SYS_flock,    SYS_ftruncate, SYS_write,
    };
    return numbers.count(number) != 0;
}

// Runs the program to its end, or kills it where it enters the file call of this number. How many it has entered;
// nothing where nobody may be traced.
std::optional<size_t> traced(const std::vector<std::string>& words, const std::vector<std::string>& variables,
                             size_t killed_at)
{
    std::vector<std::string> all = words;
    all.insert(all.begin(), ZR_NEXA_CTL);
    const std::vector<char*> arguments = pointers(all);
    const pid_t child = fork();
    if (child == 0) {
        for (const std::string& variable : variables)
            putenv(const_cast<char*>(variable.c_str()));
        const int null = open("/dev/null", O_RDWR);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(126);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    size_t count = 0;
    int status = 0;
    bool is_first = true;
    while (waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
        int signo = WSTOPSIG(status);
        if (is_first) {
            ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
            is_first = false;
            signo = 0;
        } else if (signo == (SIGTRAP | 0x80)) {
            signo = 0;
            __ptrace_syscall_info info = {};
            if (ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) <= 0) {
                kill(child, SIGKILL);
                continue;
            }
            if (info.op == PTRACE_SYSCALL_INFO_ENTRY && is_file_call(info.entry.nr) && count++ == killed_at)
                kill(child, SIGKILL);
        }
        ptrace(PTRACE_SYSCALL, child, nullptr, reinterpret_cast<void*>(static_cast<intptr_t>(signo)));
    }
    if (is_first || count == 0) return std::nullopt;
    return count;
}

class SystemCallTest : public KillTest {
protected:
    Words variables() const
    {
        return {"MOBILE_AP_STATE=" + state.path(), "ZR_NEXACTL_STATE=" + held_folder(), "ASAN_OPTIONS=detect_leaks=0"};
    }

    // Each of them, or some; found is false where nothing may be traced.
    void kill_at_each(const Words& words, size_t at_most, const std::function<void()>& check)
    {
        back_to_kept();
        const auto count = traced(words, variables(), SIZE_MAX);
        if (!count) GTEST_SKIP() << "nobody may be traced here";
        EXPECT_GT(*count, 10u);
        for (const size_t number : some_of(*count, at_most)) {
            SCOPED_TRACE("file call " + std::to_string(number));
            back_to_kept();
            traced(words, variables(), number);
            check();
        }
    }
};

TEST_F(SystemCallTest, AnApplyIsTakenBackFromEach)
{
    kill_at_each({"apply", after_}, 40, [this] {
        expect_whole();
        // One whose end was near may have forgotten what it held.
        if (!is_held() && shown() != shown_before_) return expect_ctl({"diff", after_}, 0, "");
        expect_taken_back();
    });
}

TEST_F(SystemCallTest, ARefusedApplyIsTakenBackFromEach)
{
    setenv("MOBILE_AP_FAULTS", "SetNatType=fail:3", 1);
    kill_at_each({"apply", after_, "--confirm-within", "600"}, 30, [this] {
        unsetenv("MOBILE_AP_FAULTS");
        expect_whole();
        expect_taken_back();
        setenv("MOBILE_AP_FAULTS", "SetNatType=fail:3", 1);
    });
    unsetenv("MOBILE_AP_FAULTS");
}

TEST_F(SystemCallTest, ARollbackGoesOnFromEach)
{
    EXPECT_EQ(ctl({"apply", after_, "--confirm-within", "600"}).status, 0);
    keep_state();
    kill_at_each({"rollback"}, 25, [this] {
        expect_whole();
        expect_taken_back();
    });
}

// A copy of GRE offload's file that was left behind is of another time.
TEST_F(SystemCallTest, NoLaterApplyPutsAnEarlierCopyOfTheFileOfGreBack)
{
    const bool ran = in_private_mounts([this] {
        ASSERT_EQ(mount("none", "/etc", "tmpfs", 0, nullptr), 0);
        ASSERT_EQ(mount("none", "/run", "tmpfs", 0, nullptr), 0);
        std::filesystem::create_directories("/etc/data/ipa");
        std::filesystem::create_directories("/run/data");
        const std::string path = "/etc/data/ipa/IPACM_cfg.xml";
        const auto content = [&path] {
            std::ifstream file(path);
            return std::string((std::istreambuf_iterator<char>(file)), {});
        };
        const std::string first = "<system><IPACM><GREFlag><GREEnabled>0</GREEnabled></GREFlag> </IPACM></system>";
        const std::string later = "<system><IPACM><GREFlag><GREEnabled>0</GREEnabled></GREFlag>\n</IPACM></system>";
        const std::string gre =
            written("gre.yaml", "version: 1\ngre: {enabled: true, servers: [10.0.0.1], masks: [255.0.0.0]}\n");
        const std::string other = written("other.yaml", "version: 1\ngeneral: {shortcut_engine: false, ipv6: false}\n");
        std::ofstream(path) << first;
        kill_at_each({"apply", gre}, 40, [&] {
            EXPECT_EQ(ctl({"rollback", "--if-pending"}).status, 0);
            std::ofstream(path) << later;
            EXPECT_EQ(ctl({"apply", other, "--confirm-within", "600"}).status, 0);
            EXPECT_EQ(ctl({"rollback"}).status, 0);
            EXPECT_EQ(content(), later);
            std::ofstream(path) << first;
        });
    });
    if (!ran) GTEST_SKIP() << "mounts of one's own are not allowed here";
}

}  // namespace
