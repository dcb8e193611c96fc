#include "run_tool.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "private_mounts.h"
#include "program.h"

namespace {

constexpr int kPatienceMs = 60000;

double now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// What the tool's process gets of this one's environment, with more to say.
void hand_on(std::vector<std::string>& variables, const std::string& name, const std::string& more = "")
{
    const char* const value = getenv(name.c_str());
    if (value == nullptr && more.empty()) return;
    variables.push_back(name + "=" + (value == nullptr ? "" : value) + more);
}

std::vector<std::string> environment(const ToolOptions& options)
{
    std::vector<std::string> variables;
    if (options.empty_environment) return variables;
    hand_on(variables, "LD_LIBRARY_PATH");
    hand_on(variables, "UBSAN_OPTIONS");
    // The preloaded pause stands before the sanitizer's library, which would complain.
    hand_on(variables, "ASAN_OPTIONS", ":verify_asan_link_order=0");
    // The handler of SIGINT and SIGTERM closes the session, whatever that takes.
    hand_on(variables, "TSAN_OPTIONS", ":report_signal_unsafe=0");
    if (!options.state.empty()) variables.push_back("MOBILE_AP_STATE=" + options.state);
    std::string preloaded = options.pauses ? "" : ZR_NEXA_NO_PAUSE;
    if (options.tells) preloaded += ":" ZR_NEXA_TELL;
    if (options.output_locked) preloaded += ":" ZR_NEXA_LOCK_OUTPUT;
    if (!preloaded.empty()) variables.push_back("LD_PRELOAD=" + preloaded);
    variables.insert(variables.end(), options.variables.begin(), options.variables.end());
    return variables;
}

std::string contents(int fd)
{
    std::string bytes(static_cast<size_t>(lseek(fd, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(fd, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    return bytes;
}

bool can_be_read(int fd, int patience_ms)
{
    pollfd end = {fd, POLLIN, 0};
    int found = 0;
    while ((found = poll(&end, 1, patience_ms)) < 0 && errno == EINTR) {
    }
    return found > 0;
}

}  // namespace

StartedTool::StartedTool(const std::vector<std::string>& words, const ToolOptions& options)
    : out_(memfd_create("stdout", MFD_CLOEXEC)), err_(memfd_create("stderr", MFD_CLOEXEC)), started_(now())
{
    int told[2] = {-1, -1};
    std::vector<std::string> variables = environment(options);
    if (options.tells) {
        EXPECT_EQ(pipe2(told, O_CLOEXEC), 0);
        variables.push_back("ZR_NEXA_TELL=" + std::to_string(told[1]));
    }
    const std::vector<std::string> all = program_words(options.program, words, &variables);
    const std::vector<char*> argv = pointers(all);
    const std::vector<char*> envp = pointers(variables);

    pid_ = fork();
    if (pid_ == 0) {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        dup2(out_, STDOUT_FILENO);
        dup2(err_, STDERR_FILENO);
        if (options.tells) fcntl(told[1], F_SETFD, 0);
        if (options.before_exec) options.before_exec();
        execvpe(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    end_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
    fcntl(end_, F_SETFD, FD_CLOEXEC);
    told_ = told[0];
    if (options.tells) close(told[1]);
}

StartedTool::~StartedTool()
{
    if (pid_ > 0) wait();
}

bool StartedTool::wait_to_be_told(char moment) const
{
    char told = '\0';
    while (can_be_read(told_, kPatienceMs) && read(told_, &told, 1) == 1) {
        if (told == moment) return true;
    }
    return false;
}

bool StartedTool::send(int signo) const
{
    return syscall(SYS_pidfd_send_signal, end_, signo, nullptr, 0) == 0;
}

ToolRun StartedTool::wait()
{
    ToolRun run;
    if (!can_be_read(end_, kPatienceMs)) {
        ADD_FAILURE() << "the tool is still running and is killed";
        send(SIGKILL);
    }
    run.seconds = now() - started_;
    run.status = exit_status(pid_);
    run.out = contents(out_);
    run.err = contents(err_);
    close(out_);
    close(err_);
    close(end_);
    if (told_ >= 0) close(told_);
    pid_ = -1;
    return run;
}

TempFolder::TempFolder() : path_((std::filesystem::temp_directory_path() / "zr_nexa_test.XXXXXX").string())
{
    EXPECT_NE(mkdtemp(path_.data()), nullptr);
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void ToolTest::expect(const std::vector<std::string>& words, const ToolOptions& options, const std::string& out,
                      const std::string& err)
{
    std::string shown = "zr_nexa";
    for (const auto& word : words)
        shown += " \"" + word.substr(0, 100) + "\"";
    SCOPED_TRACE(shown);
    const ToolRun seen = run_tool(words, options);
    EXPECT_EQ(seen.out, out);
    EXPECT_EQ(seen.err, err);
    EXPECT_EQ(seen.status, 0);
}

std::string integrity(const std::string& database)
{
    sqlite3* connection = nullptr;
    std::string verdict = "cannot be opened";
    if (sqlite3_open_v2(database.c_str(), &connection, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
        const auto keep = [](void* text, int, char** values, char**) {
            *static_cast<std::string*>(text) = values[0];
            return 0;
        };
        char* problem = nullptr;
        if (sqlite3_exec(connection, "PRAGMA integrity_check(1)", keep, &verdict, &problem) != SQLITE_OK) {
            verdict = problem;
        }
        sqlite3_free(problem);
    }
    sqlite3_close(connection);
    return verdict;
}

bool in_private_mounts(const std::function<void()>& work)
{
    constexpr int kNotAllowed = 99;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (!enter_private_mounts()) _exit(kNotAllowed);
        try {
            work();
        } catch (const std::exception& exception) {
            ADD_FAILURE() << exception.what();
        }
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    const int status = exit_status(child);
    if (status == kNotAllowed) return false;
    EXPECT_EQ(status, 0) << "a check failed behind private mounts";
    return true;
}
