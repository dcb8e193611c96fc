#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <regex>
#include <thread>

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

// A write that a signal interrupts would lose its line.
TEST_F(DiagLogHostTest, SignalsCostNoLineWhereTheReaderIsSlow)
{
    constexpr int kLines = 2000;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = start_child([&] {
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        setenv("MOBILE_AP_LOG", "stderr", 1);
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);
        const itimerval often = {{0, 1000}, {0, 1000}};
        setitimer(ITIMER_REAL, &often, nullptr);
        for (int n = 0; n < kLines; ++n)
            write_info(n, "x");
        return 0;
    });
    close(ends[1]);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // the pipe is full by then
    std::string text;
    char part[4096];
    for (ssize_t got; (got = read(ends[0], part, sizeof part)) > 0;)
        text.append(part, static_cast<size_t>(got));
    close(ends[0]);
    EXPECT_EQ(wait_child(child), 0);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), kLines);
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
        static volatile sig_atomic_t handled;
        handled = 0;
        action.sa_handler = [](int) {
            write_info(7, "handler");
            handled = handled + 1;
        };
        sigaction(SIGALRM, &action, nullptr);
        const itimerval often = {{0, 200}, {0, 200}};
        setitimer(ITIMER_REAL, &often, nullptr);
        int written = 0;
        for (; written < 3000 || handled < 30; ++written)
            write_info(8, "program");
        const itimerval never = {};
        setitimer(ITIMER_REAL, &never, nullptr);
        dprintf(STDERR_FILENO, "%d by the program, %d by the handler", written, static_cast<int>(handled));
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
