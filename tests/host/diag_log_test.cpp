#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <termios.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <regex>
#include <thread>
#include <utility>

#include "diag_msg.h"
#include "host_fixture.h"
#include "private_mounts.h"
#include "utc_time.h"

namespace {

constexpr msg_const_type kInfo = {1, 65, MSG_LEVEL_HIGH, "[%s]%s(): value %d text %s", "diag_log_test"};
constexpr msg_const_type kError = {2, 65, MSG_LEVEL_ERROR, "[%s]%s(): failed %d", "diag_log_test"};
constexpr msg_const_type kDebug = {3, 65, 0x1, "[%s]%s(): detail %d", "diag_log_test"};

// Where the log goes is settled at a process's first record, so each test writes in a process of its own.
class DiagLogHostTest : public HostTest {
protected:
    // What the child wrote to standard error.
    static std::string run(const std::function<void()>& work)
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        const pid_t child = start_child([&] {
            dup2(ends[1], STDERR_FILENO);
            close(ends[0]);
            close(ends[1]);
            work();
            return 0;
        });
        close(ends[1]);
        std::string text;
        char part[4096];
        for (ssize_t got; (got = read(ends[0], part, sizeof part)) > 0;)
            text.append(part, static_cast<size_t>(got));
        close(ends[0]);
        EXPECT_EQ(wait_child(child), 0);
        return text;
    }
    static void write_info(int value, const char* text)
    {
        msg_sprintf(&kInfo, "ZR_NEXA", "zr_nexa_x", value, text, 0, 0, 0);
    }
    static std::string read_file(const std::string& name)
    {
        std::ifstream file(name, std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }
};

#define STAMP "20[0-9]{2}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{3}Z"

TEST_F(DiagLogHostTest, OffByDefault)
{
    EXPECT_EQ(run([] { write_info(1, "x"); }), "");
}

TEST_F(DiagLogHostTest, OneLineForEachRecord)
{
    const std::string text = run([] {
        setenv("MOBILE_AP_LOG", "stderr", 1);
        write_info(-5, "hello");
        msg_sprintf(&kError, "ZR_NEXA", "zr_nexa_y", 0x1003, 0, 0, 0, 0);
        msg_sprintf(&kDebug, "ZR_NEXA", "zr_nexa_y", 1, 0, 0, 0, 0);
    });
    EXPECT_TRUE(
        std::regex_match(text, std::regex(STAMP " INFO  \\[ZR_NEXA\\]zr_nexa_x\\(\\): value -5 text hello\n" STAMP
                                                " ERROR \\[ZR_NEXA\\]zr_nexa_y\\(\\): failed 4099\n")))
        << text;
}

TEST_F(DiagLogHostTest, DebugRecordsOnWish)
{
    const std::string text = run([] {
        setenv("MOBILE_AP_LOG", "stderr", 1);
        setenv("MOBILE_AP_LOG_LEVEL", "debug", 1);
        msg_sprintf(&kDebug, "ZR_NEXA", "zr_nexa_y", 1, 0, 0, 0, 0);
    });
    EXPECT_NE(text.find(" DEBUG [ZR_NEXA]zr_nexa_y(): detail 1\n"), std::string::npos) << text;
}

TEST_F(DiagLogHostTest, TimeIsUtc)
{
    const time_t before = time(nullptr);
    const std::string text = run([] {
        setenv("MOBILE_AP_LOG", "stderr", 1);
        setenv("TZ", "Asia/Kathmandu", 1);
        write_info(1, "x");
    });
    tm parts = {};
    ASSERT_NE(strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &parts), nullptr) << text;
    const time_t logged = timegm(&parts);
    EXPECT_GE(logged, before);
    EXPECT_LE(logged, time(nullptr));
}

TEST(UtcTime, OfGivenMoments)
{
    struct Row {
        const char* text;
        long long seconds;
    };
    constexpr Row kRows[] = {
        {"1970-01-01T00:00:00", 0},          {"1999-12-31T23:59:59", 946684799},  {"2000-01-01T00:00:00", 946684800},
        {"2000-02-29T12:34:56", 951827696},  {"2000-03-01T00:00:00", 951868800},  {"2000-12-31T23:59:59", 978307199},
        {"2023-12-31T23:59:59", 1704067199}, {"2024-01-01T00:00:00", 1704067200}, {"2024-02-29T00:00:00", 1709164800},
        {"2024-12-31T00:00:00", 1735603200}, {"2025-03-01T00:00:00", 1740787200}, {"2038-01-19T03:14:08", 2147483648},
        {"2100-02-28T23:59:59", 4107542399}, {"2100-03-01T00:00:00", 4107542400}, {"2101-01-01T00:00:00", 4133980800},
    };
    for (const Row& row : kRows) {
        const mobile_ap::UtcTime utc = mobile_ap::utc_time(row.seconds);
        char text[32];
        snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", utc.year, utc.month, utc.day, utc.hour, utc.minute,
                 utc.second);
        EXPECT_STREQ(text, row.text);
    }
}

TEST(UtcTime, OfEveryDayOfFourHundredYears)
{
    for (long long day = 0; day < 146097; ++day) {
        const time_t seconds = day * 86400 + day % 86400;
        tm parts = {};
        ASSERT_NE(gmtime_r(&seconds, &parts), nullptr);
        const mobile_ap::UtcTime utc = mobile_ap::utc_time(seconds);
        ASSERT_EQ(utc.year, parts.tm_year + 1900) << seconds;
        ASSERT_EQ(utc.month, parts.tm_mon + 1) << seconds;
        ASSERT_EQ(utc.day, parts.tm_mday) << seconds;
        ASSERT_EQ(utc.hour * 3600 + utc.minute * 60 + utc.second, day % 86400) << seconds;
    }
}

TEST_F(DiagLogHostTest, ControlBytesStayOnOneLine)
{
    const std::string text = run([] {
        setenv("MOBILE_AP_LOG", "stderr", 1);
        write_info(1, "a\nb\r\tc\x7f\\d\x1b[31m\xc3\xa9");
    });
    EXPECT_NE(text.find("text a\\x0ab\\x0d\\x09c\\x7f\\\\d\\x1b[31m\xc3\xa9\n"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

TEST_F(DiagLogHostTest, LongTextIsCut)
{
    for (const char* piece : {"x", "\n", "\\"}) {
        std::string huge;
        while (huge.size() < 100000)
            huge += piece;
        const std::string text = run([&] {
            setenv("MOBILE_AP_LOG", "stderr", 1);
            write_info(1, huge.c_str());
        });
        EXPECT_LE(text.size(), 4096u);
        EXPECT_GT(text.size(), 2000u);
        EXPECT_EQ(text.substr(text.size() - 4), "...\n");
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
    }
}

TEST_F(DiagLogHostTest, FileIsAppendedTo)
{
    const std::string name = folder + "/log";
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(run([&] {
                      setenv("MOBILE_AP_LOG", ("file:" + name).c_str(), 1);
                      write_info(i, "x");
                  }),
                  "");
    }
    const std::string text = read_file(name);
    EXPECT_NE(text.find("value 0"), std::string::npos);
    EXPECT_NE(text.find("value 1"), std::string::npos);
}

TEST_F(DiagLogHostTest, LinesOfManyProcessesStayWhole)
{
    const std::string name = folder + "/log";
    setenv("MOBILE_AP_LOG", ("file:" + name).c_str(), 1);
    std::vector<pid_t> children;
    for (int i = 0; i < 8; ++i) {
        children.push_back(start_child([i] {
            for (int n = 0; n < 200; ++n)
                write_info(i, std::string(500, 'y').c_str());
            return 0;
        }));
    }
    for (const pid_t child : children)
        EXPECT_EQ(wait_child(child), 0);
    unsetenv("MOBILE_AP_LOG");
    std::ifstream file(name);
    int lines = 0;
    for (std::string line; std::getline(file, line); ++lines)
        ASSERT_EQ(line.size(),
                  std::string("2025-11-20T11:20:33.123Z INFO  [ZR_NEXA]zr_nexa_x(): value 1 text ").size() + 500);
    EXPECT_EQ(lines, 1600);
}

TEST_F(DiagLogHostTest, BadPlaceIsToldOnce)
{
    const auto twice = [](const std::string& wish) {
        return run([&] {
            setenv("MOBILE_AP_LOG", wish.c_str(), 1);
            write_info(1, "x");
            write_info(2, "x");
        });
    };
    EXPECT_EQ(twice("file:" + folder + "/no/log"), "MOBILE_AP_LOG: " + folder + "/no/log: No such file or directory\n");
    EXPECT_EQ(twice("file:" + folder), "MOBILE_AP_LOG: " + folder + ": Is a directory\n");
    EXPECT_EQ(twice("elsewhere"), "MOBILE_AP_LOG: elsewhere: is neither stderr, syslog nor file:PATH\n");
    EXPECT_EQ(twice("file:/dev/full"), "");
}

TEST_F(DiagLogHostTest, ErrnoIsKept)
{
    run([] {
        setenv("MOBILE_AP_LOG", "file:/no/such/folder/x", 1);
        errno = 77;
        write_info(1, "x");
        if (errno != 77) _exit(1);
    });
    run([] {
        setenv("MOBILE_AP_LOG", "file:/dev/full", 1);
        for (int record = 0; record < 2; ++record) {
            errno = 77;
            write_info(record, "x");
            if (errno != 77) _exit(1);
        }
    });
}

TEST_F(DiagLogHostTest, ATextThatCannotBeWrittenIsEmpty)
{
    const std::string text = run([] {
        setenv("MOBILE_AP_LOG", "stderr", 1);
        static constexpr msg_const_type kWide = {1, 65, MSG_LEVEL_HIGH, "[%s]%s(): wide %ls", "diag_log_test"};
        const wchar_t no_character[] = {static_cast<wchar_t>(0x7fffffff), 0};
        msg_sprintf(&kWide, "ZR_NEXA", "zr_nexa_x", no_character, 0, 0, 0, 0);
    });
    EXPECT_TRUE(std::regex_match(text, std::regex(STAMP " INFO  \n"))) << text;
}

TEST_F(DiagLogHostTest, ThreadsThatBeginTogetherOpenOneFile)
{
    for (int round = 0; round < 40; ++round) {
        run([&] {
            setenv("MOBILE_AP_LOG", ("file:" + folder + "/log").c_str(), 1);
            constexpr int kThreads = 4;
            std::atomic<int> there{0};
            std::vector<std::thread> threads;
            for (int i = 0; i < kThreads; ++i) {
                threads.emplace_back([&there] {
                    ++there;
                    while (there < kThreads)
                        std::this_thread::yield();
                    write_info(1, "x");
                });
            }
            for (std::thread& thread : threads)
                thread.join();
            int open_files = 0;
            for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
                open_files += std::filesystem::read_symlink(entry.path()).filename() == "log" ? 1 : 0;
            if (open_files != 1) _exit(1);
        });
    }
}

// ---- a log that cannot be written costs log lines, never the work ----

// What a log in trouble is tried with: a setting, and the records of its methods. Returns 0 when it is made.
int change_a_setting()
{
    setenv("MOBILE_AP_LOG_LEVEL", "debug", 1);
    qmi_error_type_v01 err = QMI_ERR_INTERNAL_V01;
    OpenClient client;
    return client.open && client.SetUPNPNotifyInterval(77, &err) ? 0 : 1;
}

// Its exit status as wait_child() tells it, or -1 when it hangs.
int wait_child_a_while(pid_t child)
{
    int status = 0;
    for (int round = 0; round < 1000; ++round) {
        if (waitpid(child, &status, WNOHANG) == child)
            return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return -1;
}

struct Pipe {
    Pipe()
    {
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    }
    ~Pipe()
    {
        close_reader();
        close_writer();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void close_reader()
    {
        close(std::exchange(ends[0], -1));
    }
    void close_writer()
    {
        close(std::exchange(ends[1], -1));
    }
    int reader() const
    {
        return ends[0];
    }
    int writer() const
    {
        return ends[1];
    }
    int ends[2];
};

void fill(int fd)
{
    const int flags = fcntl(fd, F_GETFL);
    fcntl(fd, F_SETFL, flags | O_NONBLOCK);
    for (const size_t size : {size_t{4096}, size_t{1}})
        while (write(fd, std::string(size, '.').data(), size) > 0) {
        }
    fcntl(fd, F_SETFL, flags);
}

// What stands in a pipe or FIFO now.
std::string drain(int fd)
{
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    std::string text;
    char part[4096];
    for (ssize_t got; (got = read(fd, part, sizeof part)) > 0;)
        text.append(part, static_cast<size_t>(got));
    return text;
}

// One byte, before long.
bool comes(int fd)
{
    pollfd wait = {fd, POLLIN, 0};
    char byte = 0;
    return poll(&wait, 1, 5000) == 1 && read(fd, &byte, 1) == 1;
}

std::atomic<int> handled{0};

void handle(int number)
{
    struct sigaction action = {};
    action.sa_handler = [](int) { ++handled; };
    sigaction(number, &action, nullptr);
}

// With /proc, and where it is not there to find a descriptor by.
class StderrInTrouble : public DiagLogHostTest, public testing::WithParamInterface<bool> {
protected:
    int work_with(const Pipe& err_pipe, const std::function<int()>& work) const
    {
        setenv("MOBILE_AP_LOG", "stderr", 1);
        return wait_child_a_while(start_child([&] {
            if (!GetParam()) {
                if (!enter_private_mounts()) return 77;
                if (mount("tmpfs", "/proc", "tmpfs", 0, nullptr) != 0) return 77;
            }
            close(err_pipe.reader());
            dup2(err_pipe.writer(), STDERR_FILENO);
            return work();
        }));
    }
};
INSTANTIATE_TEST_SUITE_P(Proc, StderrInTrouble, testing::Bool());

TEST_P(StderrInTrouble, WithoutAReaderTheWorkIsDone)
{
    Pipe err_pipe;
    err_pipe.close_reader();
    const int status = work_with(err_pipe, change_a_setting);
    if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
    EXPECT_EQ(status, 0);
}

TEST_P(StderrInTrouble, WithoutAReaderNoHandlerIsCalled)
{
    Pipe err_pipe;
    err_pipe.close_reader();
    const int status = work_with(err_pipe, [] {
        handle(SIGPIPE);
        write_info(1, "x");
        return handled.load();
    });
    if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
    EXPECT_EQ(status, 0);
}

TEST_P(StderrInTrouble, FullTheWorkIsDone)
{
    Pipe err_pipe;
    fill(err_pipe.writer());
    const int status = work_with(err_pipe, change_a_setting);
    if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
    EXPECT_EQ(status, 0);
    EXPECT_EQ(fcntl(err_pipe.writer(), F_GETFL) & O_NONBLOCK, 0) << "the flag is the shell's, too";
    EXPECT_EQ(drain(err_pipe.reader()).find_first_not_of('.'), std::string::npos);
}

TEST_P(StderrInTrouble, FullOrWithoutAReaderComplaintsAreDropped)
{
    for (const bool read : {true, false}) {
        Pipe err_pipe;
        fill(err_pipe.writer());
        if (!read) err_pipe.close_reader();
        const int status = work_with(err_pipe, [] {
            setenv("MOBILE_AP_LOG", "nonsense", 1);
            setenv("MOBILE_AP_STATE", "/no/such/folder", 1);
            write_info(1, "x");
            return OpenClient().open ? 1 : 0;
        });
        if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
        EXPECT_EQ(status, 0);
    }
}

TEST_P(StderrInTrouble, AStoppedTerminalTheWorkIsDone)
{
    Pipe terminal;
    terminal.close_reader();
    terminal.close_writer();
    ASSERT_EQ(openpty(&terminal.ends[0], &terminal.ends[1], nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(tcflow(terminal.writer(), TCOOFF), 0);
    const int status = work_with(terminal, change_a_setting);
    if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
    EXPECT_EQ(status, 0);
}

// Each write alone finds some room, but not for the whole line.
TEST_F(DiagLogHostTest, ATerminalThatNobodyReadsDoesNotStopTheWork)
{
    int ends[2];
    ASSERT_EQ(openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr), 0);
    const pid_t child = start_child([&] {
        dup2(ends[1], STDERR_FILENO);
        setenv("MOBILE_AP_LOG", "stderr", 1);
        for (int n = 0; n < 300; ++n)
            write_info(n, std::string(2900, 'x').c_str());
        return 0;
    });
    EXPECT_EQ(wait_child_a_while(child), 0);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(DiagLogHostTest, ASocketInTroubleDoesNotStopTheWork)
{
    for (const bool read : {true, false}) {
        int ends[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
        if (read) fill(ends[1]);
        if (!read) close(ends[0]);
        const pid_t child = start_child([&] {
            dup2(ends[1], STDERR_FILENO);
            setenv("MOBILE_AP_LOG", "stderr", 1);
            handle(SIGPIPE);
            return change_a_setting() + handled;
        });
        EXPECT_EQ(wait_child_a_while(child), 0);
        if (read) close(ends[0]);
        close(ends[1]);
    }
}

TEST_F(DiagLogHostTest, WhatFindsNoRoomIsCounted)
{
    constexpr int kLines = 2000;
    Pipe err_pipe;
    Pipe go;
    Pipe filled;
    const pid_t child = start_child([&] {
        dup2(err_pipe.writer(), STDERR_FILENO);
        setenv("MOBILE_AP_LOG", "stderr", 1);
        for (int n = 0; n < kLines; ++n)
            write_info(n, "x");
        char byte = 0;
        if (write(filled.writer(), "x", 1) != 1 || read(go.reader(), &byte, 1) != 1) return 1;
        for (int n = 0; n < 2; ++n)
            write_info(kLines, "last");
        return 0;
    });
    EXPECT_TRUE(comes(filled.reader()));
    const std::string early = drain(err_pipe.reader());
    ASSERT_EQ(write(go.writer(), "x", 1), 1);
    EXPECT_EQ(wait_child_a_while(child), 0);
    std::istringstream lines(early);
    int whole = 0;
    for (std::string line; std::getline(lines, line); ++whole)
        ASSERT_NE(line.find("value " + std::to_string(whole) + " text x"), std::string::npos) << line;
    EXPECT_GT(whole, 500);
    EXPECT_LT(whole, kLines);
    const std::string late = drain(err_pipe.reader());
    const std::string last = STAMP " INFO  \\[ZR_NEXA\\]zr_nexa_x\\(\\): value 2000 text last\n";
    EXPECT_TRUE(std::regex_match(
        late, std::regex(STAMP " ERROR " + std::to_string(kLines - whole) + " records lost\n" + last + last)))
        << late;
}

TEST_F(DiagLogHostTest, APendingSignalOfTheProgramStaysPending)
{
    Pipe err_pipe;
    err_pipe.close_reader();
    const std::string fifo = folder + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& wish : {std::string("stderr"), "file:" + fifo}) {
        const pid_t child = start_child([&] {
            dup2(err_pipe.writer(), STDERR_FILENO);
            setenv("MOBILE_AP_LOG", wish.c_str(), 1);
            const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
            write_info(1, "x");
            close(reader);
            handle(SIGPIPE);
            sigset_t held;
            sigemptyset(&held);
            sigaddset(&held, SIGPIPE);
            sigprocmask(SIG_BLOCK, &held, nullptr);
            raise(SIGPIPE);
            write_info(2, "x");
            sigset_t pending;
            sigpending(&pending);
            if (sigismember(&pending, SIGPIPE) == 0) return 100;
            sigprocmask(SIG_UNBLOCK, &held, nullptr);
            return handled.load();
        });
        EXPECT_EQ(wait_child_a_while(child), 1) << wish;
    }
}

TEST_F(DiagLogHostTest, AFifoKeepsRecordsForAReaderToCome)
{
    const std::string fifo = folder + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    setenv("MOBILE_AP_LOG", ("file:" + fifo).c_str(), 1);
    EXPECT_EQ(wait_child_a_while(start_child(change_a_setting)), 0);
    Pipe written;
    Pipe go;
    const pid_t child = start_child([&] {
        write_info(1, "early");
        char byte = 0;
        return write(written.writer(), "x", 1) == 1 && read(go.reader(), &byte, 1) == 1 ? 0 : 1;
    });
    EXPECT_TRUE(comes(written.reader()));
    const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_NE(drain(reader).find("value 1 text early\n"), std::string::npos);
    close(reader);
    ASSERT_EQ(write(go.writer(), "x", 1), 1);
    EXPECT_EQ(wait_child_a_while(child), 0);
}

TEST_F(DiagLogHostTest, AFifoWhoseReaderGoesOrStopsDoesNotStopTheWork)
{
    const std::string fifo = folder + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    setenv("MOBILE_AP_LOG", ("file:" + fifo).c_str(), 1);
    for (const bool goes : {true, false}) {
        const pid_t child = start_child([&] {
            handle(SIGPIPE);
            const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
            write_info(1, "heard");
            if (drain(reader).find("value 1 text heard\n") == std::string::npos) return 1;
            if (goes) close(reader);
            for (int n = 0; n < 2000; ++n)
                write_info(n, "lost");
            if (change_a_setting() != 0) return 2;
            if (handled != 0) return 3;
            // One that comes again hears of it.
            const int again = goes ? open(fifo.c_str(), O_RDONLY | O_NONBLOCK) : reader;
            drain(again);
            write_info(2, "heard again");
            const std::string text = drain(again);
            if (text.find(" records lost\n") == std::string::npos) return 4;
            return text.find("value 2 text heard again\n") == std::string::npos ? 5 : 0;
        });
        EXPECT_EQ(wait_child_a_while(child), 0) << goes;
    }
}

TEST_F(DiagLogHostTest, AFileAtItsLargestSizeDoesNotStopTheWork)
{
    const std::string name = folder + "/log";
    const pid_t child = start_child([&] {
        handle(SIGXFSZ);
        setenv("MOBILE_AP_LOG", ("file:" + name).c_str(), 1);
        const rlimit limit = {200, 200};
        setrlimit(RLIMIT_FSIZE, &limit);
        for (int n = 0; n < 10; ++n)
            write_info(n, "x");
        return handled.load();
    });
    EXPECT_EQ(wait_child_a_while(child), 0);
    EXPECT_EQ(read_file(name).size(), 200u);
}

TEST_F(DiagLogHostTest, AFullDiskDoesNotStopTheWork)
{
    setenv("MOBILE_AP_LOG", "file:/dev/full", 1);
    EXPECT_EQ(wait_child_a_while(start_child(change_a_setting)), 0);
}

// A handler of the program's would be lost behind a mask that a record left.
TEST_F(DiagLogHostTest, SignalMaskIsKept)
{
    for (const char* wish : {"stderr", "nonsense", ""}) {
        run([wish] {
            setenv("MOBILE_AP_LOG", wish, 1);
            sigset_t before;
            sigemptyset(&before);
            sigaddset(&before, SIGUSR1);
            sigprocmask(SIG_SETMASK, &before, nullptr);
            for (int record = 0; record < 2; ++record) {
                write_info(record, "x");
                sigset_t after;
                sigprocmask(SIG_SETMASK, nullptr, &after);
                for (int number = 1; number < SIGRTMIN; ++number)
                    if (sigismember(&after, number) != sigismember(&before, number)) _exit(1);
            }
        });
    }
}

TEST_F(DiagLogHostTest, HandlersMayLogWhileTheProgramLogs)
{
    const std::string name = folder + "/log";
    const std::string counts = run([&] {
        setenv("MOBILE_AP_LOG", ("file:" + name).c_str(), 1);
        struct sigaction action = {};
        static volatile sig_atomic_t runs;
        runs = 0;
        action.sa_handler = [](int) {
            write_info(7, "handler");
            runs = runs + 1;
        };
        sigaction(SIGALRM, &action, nullptr);
        const itimerval often = {{0, 200}, {0, 200}};
        setitimer(ITIMER_REAL, &often, nullptr);
        int written = 0;
        for (; written < 3000 || runs < 30; ++written)
            write_info(8, "program");
        const itimerval never = {};
        setitimer(ITIMER_REAL, &never, nullptr);
        dprintf(STDERR_FILENO, "%d by the program, %d by the handler", written, static_cast<int>(runs));
    });
    std::ifstream file(name);
    int program = 0;
    int handler = 0;
    for (std::string line; std::getline(file, line);) {
        const bool from_program = line.find("value 8 text program") != std::string::npos;
        ASSERT_TRUE(from_program || line.find("value 7 text handler") != std::string::npos) << line;
        ++(from_program ? program : handler);
    }
    EXPECT_EQ(counts, std::to_string(program) + " by the program, " + std::to_string(handler) + " by the handler");
}

TEST_F(DiagLogHostTest, Syslog)
{
    // A syslog of our own, seen by this one child only.
    const pid_t child = start_child([&] {
        if (!enter_private_mounts()) return 77;
        if (mount("tmpfs", "/dev", "tmpfs", 0, nullptr) != 0) return 77;
        const int server = socket(AF_UNIX, SOCK_DGRAM, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        snprintf(address.sun_path, sizeof address.sun_path, "/dev/log");
        if (bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return 1;
        setenv("MOBILE_AP_LOG", "syslog", 1);
        setenv("MOBILE_AP_LOG_LEVEL", "debug", 1);
        write_info(1, "hello");
        msg_sprintf(&kError, "ZR_NEXA", "zr_nexa_y", 2, 0, 0, 0, 0);
        msg_sprintf(&kDebug, "ZR_NEXA", "zr_nexa_y", 3, 0, 0, 0, 0);
        char text[512] = "";
        const std::string tag = "mobile_ap[" + std::to_string(getpid()) + "]: ";
        if (recv(server, text, sizeof text - 1, MSG_DONTWAIT) < 0) return 2;
        if (text != "<14>" + tag + "INFO  [ZR_NEXA]zr_nexa_x(): value 1 text hello") return 3;
        memset(text, 0, sizeof text);
        if (recv(server, text, sizeof text - 1, MSG_DONTWAIT) < 0) return 4;
        if (text != "<11>" + tag + "ERROR [ZR_NEXA]zr_nexa_y(): failed 2") return 5;
        memset(text, 0, sizeof text);
        if (recv(server, text, sizeof text - 1, MSG_DONTWAIT) < 0) return 6;
        if (text != "<15>" + tag + "DEBUG [ZR_NEXA]zr_nexa_y(): detail 3") return 7;
        return 0;
    });
    const int status = wait_child(child);
    if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
    EXPECT_EQ(status, 0);
}

}  // namespace
