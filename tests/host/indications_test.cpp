// Indications, within a process and across two.
#include "indications.h"

#include <pthread.h>
#include <signal.h>
#include <stdarg.h>
#include <sys/inotify.h>
#include <sys/syscall.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "diag_msg.h"
#include "events.h"
#include "host_fixture.h"
#include "program.h"
#include "session.h"
#include "signals.h"

namespace {

// The user's share of watches, used up on demand.
std::atomic<bool> no_watches{false};

// What was written to the diagnostic log as an error.
std::vector<std::string> error_records;

}  // namespace

extern "C" void msg_sprintf(const msg_const_type* record, ...)
{
    if ((record->ss_mask & MSG_LEVEL_ERROR) == 0) return;
    char text[256];
    va_list arguments;
    va_start(arguments, record);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    vsnprintf(text, sizeof text, record->fmt, arguments);
#pragma GCC diagnostic pop
    va_end(arguments);
    error_records.push_back(text);
}

extern "C" int inotify_init1(int flags) noexcept
{
    if (!no_watches) return static_cast<int>(syscall(SYS_inotify_init1, flags));
    errno = EMFILE;
    return -1;
}

namespace {

using mobile_ap::indicate;
using mobile_ap::method;
using mobile_ap::Session;
using mobile_ap::Store;

// What a session was told, in order.
class Heard {
public:
    static void callback(qmi_client_type user_handle, unsigned int msg_id, void* wire, unsigned int size, void* user)
    {
        qcmap_msgr_wwan_status_ind_msg_v01 record = {};
        const int code =
            qmi_client_message_decode(user_handle, QMI_IDL_INDICATION, msg_id, wire, size, &record, sizeof record);
        Heard* self = static_cast<Heard*>(user);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->numbers_.push_back(code == QMI_NO_ERR ? record.call.conn_status : 0xffffffff);
    }
    std::vector<uint32_t> wait_for(size_t count) const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (numbers().size() < count && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return numbers();
    }
    std::vector<uint32_t> numbers() const
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return numbers_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<uint32_t> numbers_;
};

std::vector<uint32_t> range(uint32_t first, uint32_t last)
{
    std::vector<uint32_t> numbers;
    for (uint32_t n = first; n <= last; ++n)
        numbers.push_back(n);
    return numbers;
}

bool send(Session& session, uint32_t first, uint32_t last, qmi_error_type_v01 answer = QMI_ERR_NONE_V01)
{
    return method(&session, "Send", nullptr, [&](Store& db) {
        for (uint32_t n = first; n <= last; ++n) {
            qcmap_msgr_wwan_status_ind_msg_v01 record = {};
            record.call.mobile_ap_handle = mobile_ap::mobile_ap_handle(db);
            record.call.conn_status = n;
            indicate(db, QCMAP_MSGR_WWAN_STATUS_IND_V01, record);
        }
        if (answer != QMI_ERR_NONE_V01) mobile_ap::refuse(answer);
    });
}

class IndicationsHostTest : public HostTest {
protected:
    void settle() const
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
    }
};

TEST_F(IndicationsHostTest, ReachEverySessionOnceAndInOrder)
{
    Heard first;
    Heard second;
    OpenClient a(Heard::callback, &first);
    OpenClient b(Heard::callback, &second);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 5));
    EXPECT_TRUE(send(sender, 6, 6));
    EXPECT_EQ(first.wait_for(6), range(1, 6));
    EXPECT_EQ(second.wait_for(6), range(1, 6));
    settle();
    EXPECT_EQ(first.numbers(), range(1, 6));
}

// Nobody calls a method when the time comes.
TEST_F(IndicationsHostTest, AListenerCarriesOutWhatIsDue)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.ConnectBackHaul(QCMAP_MSGR_WWAN_CALL_TYPE_V4_V01, &err));
    ASSERT_EQ(heard.wait_for(3).size(), 3u);
    Session other(nullptr, nullptr);
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(method(&other, "Schedule", nullptr, [](Store& db) {
        mobile_ap::schedule(db, mobile_ap::now_ms() + 300, {"call", "drop", "1"});
    }));
    EXPECT_EQ(heard.wait_for(5), (std::vector<uint32_t>{1, 0xffffffff, 3, 0xffffffff, 6}));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(290));
}

// Another version of the program has put its database in place.
TEST_F(IndicationsHostTest, AListenerLeavesWhatIsDueInTablesThatItDoesNotKnow)
{
    const std::string path = folder + "/mobile_ap.db";
    {
        Session earlier(nullptr, nullptr);
        ASSERT_TRUE(method(&earlier, "Schedule", nullptr, [](Store& db) {
            mobile_ap::schedule(db, mobile_ap::now_ms() + 500, {"roam", "on"});
            db.run("PRAGMA user_version = 7");
        }));
    }
    for (const char* part : {"", "-wal", "-shm"})
        std::filesystem::rename(path + part, folder + "/other" + part);
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.IsReady());
    std::filesystem::rename(path, folder + "/aside");
    for (const char* part : {"-wal", "-shm", ""})
        std::filesystem::rename(folder + "/other" + part, path + part);
    mobile_ap::sleep_ms(1000);
    mobile_ap::Database other;
    other.open(path);
    EXPECT_EQ(other.one<int>("SELECT count(*) FROM event"), 1);
}

TEST_F(IndicationsHostTest, OnlyBetweenEnablingAndDisabling)
{
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 3));
    Heard heard;
    QCMAP_Client client(Heard::callback, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, &heard);
    EXPECT_TRUE(send(sender, 4, 4));
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 65535));
    EXPECT_TRUE(send(sender, 5, 6));
    EXPECT_EQ(heard.wait_for(2), range(5, 6));
    EXPECT_TRUE(client.DisableMobileAP(&err));
    EXPECT_TRUE(send(sender, 7, 7));
    settle();
    EXPECT_EQ(heard.numbers(), range(5, 6));
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 65535));
    EXPECT_TRUE(send(sender, 8, 8));
    EXPECT_EQ(heard.wait_for(3), (std::vector<uint32_t>{5, 6, 8}));
}

TEST_F(IndicationsHostTest, ADisablingThatFailsEndsTheDeliveryToo)
{
    for (const char* fault : {"DisableMobileAP=fail:5", "DisableMobileAP=ok:5"}) {
        setenv("MOBILE_AP_FAULTS", fault, 1);
        Heard heard;
        OpenClient client(Heard::callback, &heard);
        unsetenv("MOBILE_AP_FAULTS");
        Session sender(nullptr, nullptr);
        EXPECT_TRUE(send(sender, 1, 1));
        EXPECT_EQ(heard.wait_for(1), range(1, 1));
        client.DisableMobileAP(&err);
        EXPECT_EQ(err, static_cast<qmi_error_type_v01>(5));
        EXPECT_TRUE(send(sender, 2, 2));
        settle();
        EXPECT_EQ(heard.numbers(), range(1, 1));
    }
}

TEST_F(IndicationsHostTest, AnUndoneMethodTellsNothing)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    Session sender(nullptr, nullptr);
    EXPECT_FALSE(send(sender, 1, 3, QMI_ERR_NO_EFFECT_V01));
    EXPECT_TRUE(send(sender, 4, 4));
    EXPECT_EQ(heard.wait_for(1), range(4, 4));
}

TEST_F(IndicationsHostTest, AnotherProcessIsHeardInOrder)
{
    Heard heard;
    constexpr uint32_t kCount = 200;
    {
        OpenClient first;
    }
    int go[2];
    ASSERT_EQ(pipe(go), 0);
    const pid_t child = start_child([&] {
        char byte = 0;
        if (read(go[0], &byte, 1) != 1) return 1;
        Session sender(nullptr, nullptr);
        for (uint32_t n = 1; n <= kCount; ++n)
            if (!send(sender, n, n)) return 2;
        return 0;
    });
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.open);
    ASSERT_EQ(write(go[1], "x", 1), 1);
    EXPECT_EQ(heard.wait_for(kCount), range(1, kCount));
    EXPECT_EQ(wait_child(child), 0);
    close(go[0]);
    close(go[1]);
}

TEST_F(IndicationsHostTest, ComeSoonerThanTheRounds)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    Session sender(nullptr, nullptr);
    const auto start = std::chrono::steady_clock::now();
    constexpr uint32_t kCount = 10;
    for (uint32_t n = 1; n <= kCount; ++n) {
        EXPECT_TRUE(send(sender, n, n));
        EXPECT_EQ(heard.wait_for(n).size(), n);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200 * kCount / 2));
}

TEST_F(IndicationsHostTest, ManyAtOnceWaitForNoRounds)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    Session sender(nullptr, nullptr);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(send(sender, 1, 1000));
    EXPECT_EQ(heard.wait_for(1000), range(1, 1000));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(IndicationsHostTest, OnlyAMethodThatTellsTouchesTheFile)
{
    Session session(nullptr, nullptr);
    const int watch = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, (folder + "/mobile_ap.db").c_str(), IN_ATTRIB), 0);
    const auto touched = [watch] {
        char events[4096];
        return read(watch, events, sizeof events) > 0;
    };
    const auto change = [&] {
        EXPECT_TRUE(method(&session, "Test", &err, [](Store& db) { db.run("UPDATE data_path SET optimised = 5"); }));
    };
    change();
    EXPECT_FALSE(touched());
    EXPECT_TRUE(send(session, 1, 1));
    EXPECT_TRUE(touched());
    change();
    EXPECT_FALSE(touched());
    EXPECT_FALSE(send(session, 2, 2, QMI_ERR_NO_EFFECT_V01));
    change();
    EXPECT_FALSE(touched());
    close(watch);
}

// How many are kept, and the first of them.
std::pair<int, int> kept(Session& session)
{
    std::pair<int, int> result;
    method(&session, "Test", nullptr, [&](Store& db) {
        result = {db.one<int>("SELECT count(*) FROM indication").value_or(-1),
                  db.one<int>("SELECT min(id) FROM indication").value_or(-1)};
    });
    return result;
}

void set_times(Session& session, const char* modifier)
{
    method(&session, "Test", nullptr, [&](Store& db) {
        db.run("UPDATE indication SET time = strftime('%Y-%m-%dT%H:%M:%fZ', 'now', ?)", modifier);
    });
}

// Many at once, all young.
void put(Session& session, int count)
{
    method(&session, "Test", nullptr, [&](Store& db) {
        db.run(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?)"
            " INSERT INTO indication (msg_id, wire, time)"
            " SELECT 1, x'00', strftime('%Y-%m-%dT%H:%M:%fZ', 'now') FROM n",
            count);
    });
}

TEST_F(IndicationsHostTest, OldOnesGoBeyondTheNewestThousand)
{
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 1200));
    EXPECT_EQ(kept(sender), std::make_pair(1200, 1)) << "young ones stay";
    set_times(sender, "-59 seconds");
    EXPECT_TRUE(send(sender, 1201, 1201));
    EXPECT_EQ(kept(sender), std::make_pair(1201, 1));
    set_times(sender, "-61 seconds");
    EXPECT_TRUE(send(sender, 1202, 1202));
    EXPECT_EQ(kept(sender), std::make_pair(1102, 101)) << "a hundred at once";
    EXPECT_TRUE(send(sender, 1203, 1250));
    EXPECT_EQ(kept(sender), std::make_pair(1000, 251));
}

TEST_F(IndicationsHostTest, AHundredThousandAreKeptAtMost)
{
    const auto time_of_sending = [](Session& sender) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_TRUE(send(sender, 1, 2000));
        return std::chrono::steady_clock::now() - start;
    };
    Session sender(nullptr, nullptr);
    const auto with_few = time_of_sending(sender);
    EXPECT_TRUE(method(&sender, "Clear", nullptr, [](Store& db) { db.run("DELETE FROM indication"); }));
    put(sender, 99999);
    EXPECT_TRUE(send(sender, 1, 1));
    EXPECT_EQ(kept(sender), std::make_pair(100000, 2001));
    EXPECT_TRUE(send(sender, 2, 3));
    EXPECT_EQ(kept(sender), std::make_pair(100000, 2003));
    set_times(sender, "+1 day");  // the clock was set back
    EXPECT_TRUE(send(sender, 4, 4));
    EXPECT_EQ(kept(sender), std::make_pair(100000, 2004));
    // What is kept costs nothing: a look at each would take a thousand times as long.
    EXPECT_LT(time_of_sending(sender), 50 * with_few);
    EXPECT_EQ(kept(sender), std::make_pair(100000, 4004));
}

TEST_F(IndicationsHostTest, ASlowCallbackMissesNothingYoung)
{
    struct Slow {
        static void callback(qmi_client_type client, unsigned int msg_id, void* wire, unsigned int size, void* user)
        {
            Slow* self = static_cast<Slow*>(user);
            Heard::callback(client, msg_id, wire, size, &self->heard);
            while (!self->go)
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        Heard heard;
        std::atomic<bool> go{false};
    };
    constexpr uint32_t kCount = 3000;
    std::array<Slow, 8> slow;
    std::vector<std::unique_ptr<OpenClient>> clients;
    for (Slow& each : slow)
        clients.push_back(std::make_unique<OpenClient>(Slow::callback, &each));
    Session sender(nullptr, nullptr);
    const std::string told = stderr_of([&] {
        for (uint32_t n = 1; n <= kCount; n += 3)
            EXPECT_TRUE(send(sender, n, n + 2));
        for (Slow& each : slow)
            each.go = true;
        for (const Slow& each : slow)
            ASSERT_EQ(each.heard.wait_for(kCount), range(1, kCount));
    });
    EXPECT_EQ(told, "");
}

// Hears until it is told to stop, and then waits.
struct Blocked {
    static void callback(qmi_client_type client, unsigned int msg_id, void* wire, unsigned int size, void* user)
    {
        Blocked* self = static_cast<Blocked*>(user);
        Heard::callback(client, msg_id, wire, size, &self->heard);
        while (self->stop)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    Heard heard;
    std::atomic<bool> stop{true};
};

TEST_F(IndicationsHostTest, AListenerIsToldHowManyItMissed)
{
    Blocked blocked;
    OpenClient client(Blocked::callback, &blocked);
    Session sender(nullptr, nullptr);
    std::vector<uint32_t> expected;
    error_records.clear();
    const std::string told = stderr_of([&] {
        for (const uint32_t first : {1u, 5001u}) {
            blocked.stop = true;
            expected.push_back(first);
            EXPECT_TRUE(send(sender, first, first));
            blocked.heard.wait_for(expected.size());
            EXPECT_TRUE(send(sender, first + 1, first + 2500));
            set_times(sender, "-2 minutes");
            EXPECT_TRUE(send(sender, first + 2501, first + 4999));
            EXPECT_EQ(kept(sender), std::make_pair(2499, static_cast<int>(first) + 2501)) << "only the old ones went";
            for (uint32_t n = first + 2501; n < first + 5000; ++n)
                expected.push_back(n);
            blocked.stop = false;
            EXPECT_EQ(blocked.heard.wait_for(expected.size()), expected);
        }
    });
    const std::string line =
        "mobile-AP state " + folder + "/mobile_ap.db: 2500 indications missed: the callback was busy for too long\n";
    EXPECT_EQ(told, line + line);
    const std::string record = "[MOBILE_AP]tell_missed(): 2500 indications missed";
    EXPECT_EQ(error_records, (std::vector<std::string>{record, record}));
}

TEST_F(IndicationsHostTest, BeyondTheLimitOfWatchesNothingIsLost)
{
    constexpr uint32_t kCount = 300;
    no_watches = true;
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 1));
    EXPECT_EQ(heard.wait_for(1), range(1, 1));
    no_watches = false;
    for (uint32_t n = 2; n <= kCount; ++n)
        EXPECT_TRUE(send(sender, n, n));
    EXPECT_EQ(heard.wait_for(kCount), range(1, kCount));
}

TEST_F(IndicationsHostTest, WhatADatabaseHeldWhenItWasReplacedIsHeardFirst)
{
    Blocked blocked;
    OpenClient client(Blocked::callback, &blocked);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 1));
    blocked.heard.wait_for(1);
    EXPECT_TRUE(send(sender, 2, 100));
    std::filesystem::rename(folder + "/mobile_ap.db", folder + "/aside");
    EXPECT_TRUE(send(sender, 101, 103));
    blocked.stop = false;
    ASSERT_EQ(blocked.heard.wait_for(103), range(1, 103));
    settle();
    // And as soon as before.
    const auto start = std::chrono::steady_clock::now();
    for (uint32_t n = 104; n <= 113; ++n) {
        EXPECT_TRUE(send(sender, n, n));
        blocked.heard.wait_for(n);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(blocked.heard.numbers(), range(1, 113));
}

TEST_F(IndicationsHostTest, WhatADatabaseHeldBeforeItWasPutInPlaceIsNotHeard)
{
    const std::string path = folder + "/mobile_ap.db";
    {
        Session earlier(nullptr, nullptr);
        EXPECT_TRUE(send(earlier, 901, 905));
        EXPECT_TRUE(method(&earlier, "Test", nullptr, [](Store&) {}));
    }
    for (const char* part : {"", "-wal", "-shm"})
        std::filesystem::rename(path + part, folder + "/other" + part);
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 2));
    EXPECT_EQ(heard.wait_for(2), range(1, 2));
    for (const char* part : {"-wal", "-shm", ""})
        std::filesystem::rename(folder + "/other" + part, path + part);
    EXPECT_TRUE(send(sender, 3, 4));
    EXPECT_EQ(heard.wait_for(4), range(1, 4));
    settle();
    EXPECT_EQ(heard.numbers(), range(1, 4));
}

TEST_F(IndicationsHostTest, AFactoryRestoreLeavesSessionsAndIndicationsAlone)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 2));
    EXPECT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_TRUE(send(sender, 3, 4));
    EXPECT_EQ(heard.wait_for(4), range(1, 4));
}

TEST_F(IndicationsHostTest, AnotherDatabaseInTheSamePlaceIsHeard)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 3));
    EXPECT_EQ(heard.wait_for(3), range(1, 3));
    std::filesystem::remove(folder + "/mobile_ap.db");
    EXPECT_TRUE(send(sender, 4, 4));
    EXPECT_EQ(heard.wait_for(4), range(1, 4));
}

TEST_F(IndicationsHostTest, AnotherDatabaseMadeWhileDisabledHasNothingNew)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 5));
    EXPECT_EQ(heard.wait_for(5), range(1, 5));
    EXPECT_TRUE(client.DisableMobileAP(&err));
    std::filesystem::remove(folder + "/mobile_ap.db");
    EXPECT_TRUE(send(sender, 6, 6));
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 65535));
    EXPECT_TRUE(send(sender, 7, 7));
    EXPECT_EQ(heard.wait_for(6), (std::vector<uint32_t>{1, 2, 3, 4, 5, 7}));
}

TEST_F(IndicationsHostTest, DisablingDoesNotWaitForWhatIsQueued)
{
    struct Slow {
        static void callback(qmi_client_type, unsigned int, void*, unsigned int, void* user)
        {
            ++static_cast<Slow*>(user)->begun;
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            ++static_cast<Slow*>(user)->ended;
        }
        std::atomic<int> begun{0};
        std::atomic<int> ended{0};
    };
    Slow slow;
    OpenClient client(Slow::callback, &slow);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 100));
    for (int i = 0; i < 5000 && slow.begun == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_TRUE(client.DisableMobileAP(&err));
    const int told = slow.ended;
    EXPECT_EQ(told, slow.begun) << "the callback under way has returned";
    EXPECT_GE(told, 1);
    EXPECT_LE(told, 10) << "and those that waited were not called";
    settle();
    EXPECT_EQ(slow.begun, told);
}

TEST_F(IndicationsHostTest, DescriptorsAreGivenBack)
{
    const auto open_here = [] {
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        return std::distance(begin(descriptors), end(descriptors));
    };
    const auto open_and_close = [&] {
        Heard heard;
        OpenClient client(Heard::callback, &heard);
        Session sender(nullptr, nullptr);
        EXPECT_TRUE(send(sender, 1, 1));
        EXPECT_EQ(heard.wait_for(1), range(1, 1));
        EXPECT_TRUE(client.DisableMobileAP(&err));
        EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 65535));
    };
    open_and_close();
    const auto before = open_here();
    for (int opening = 0; opening < 50; ++opening)
        open_and_close();
    EXPECT_EQ(open_here(), before);
}

std::atomic<int> handler_runs{0};

TEST_F(IndicationsHostTest, HandlersDoNotRunOnTheThreadThatDelivers)
{
    handler_runs = 0;
    struct sigaction action = {};
    action.sa_handler = [](int) { ++handler_runs; };
    struct sigaction before = {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
    OpenClient client;
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &held, nullptr);
    kill(getpid(), SIGUSR1);
    settle();
    EXPECT_EQ(handler_runs, 0);
    pthread_sigmask(SIG_UNBLOCK, &held, nullptr);
    EXPECT_EQ(handler_runs, 1);
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(IndicationsHostTest, CallbacksHaveTwoMegabytesOfStack)
{
    struct Room {
        static void callback(qmi_client_type, unsigned int, void*, unsigned int, void* user)
        {
            pthread_attr_t attributes;
            size_t size = 0;
            if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
            pthread_attr_getstacksize(&attributes, &size);
            pthread_attr_destroy(&attributes);
            *static_cast<std::atomic<size_t>*>(user) = size;
        }
    };
    std::atomic<size_t> size{0};
    OpenClient client(Room::callback, &size);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 1));
    for (int i = 0; i < 5000 && size == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_GE(size, size_t{2} << 20);
    EXPECT_LT(size, size_t{3} << 20);
}

TEST_F(IndicationsHostTest, TheLargeReport)
{
    struct Report {
        static void callback(qmi_client_type, unsigned int msg_id, void* wire, unsigned int size, void* user)
        {
            auto* record = new qcmap_msgr_status_report_ind_msg_v01;
            if (qmi_client_message_decode(nullptr, QMI_IDL_INDICATION, msg_id, wire, size, record, sizeof *record) == 0)
                static_cast<std::atomic<uint32_t>*>(user)->store(record->kind + record->report[10883]);
            delete record;
        }
    };
    std::atomic<uint32_t> told{0};
    OpenClient client(Report::callback, &told);
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(method(&sender, "Send", &err, [](Store& db) {
        static qcmap_msgr_status_report_ind_msg_v01 record;
        record.kind = 1;
        record.report[10883] = 200;
        indicate(db, QCMAP_MSGR_STATUS_REPORT_IND_V01, record);
    }));
    for (int i = 0; i < 2000 && told == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(told, 201u);
}

TEST_F(IndicationsHostTest, CallbackMayAskButNotClose)
{
    struct Asking {
        static void callback(qmi_client_type, unsigned int, void*, unsigned int, void* user)
        {
            Asking* self = static_cast<Asking*>(user);
            qmi_error_type_v01 error = QMI_ERR_NONE_V01;
            unsigned char state = 0;
            const bool asked = self->client->GetIPv4State(&state, &error);
            const bool closed = self->client->DisableMobileAP(&error);
            self->result = asked && !closed && error == QMI_ERR_INTERNAL_V01 ? 1 : 2;
        }
        QCMAP_Client* client = nullptr;
        std::atomic<int> result{0};
    };
    Asking asking;
    QCMAP_Client client(Asking::callback, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, &asking);
    asking.client = &client;
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 65535));
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 1));
    for (int i = 0; i < 2000 && asking.result == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(asking.result, 1);
}

// A program's two plain variables, which the callback reads without a lock.
struct PlainSession {
    static QCMAP_Client* client;
    static int user_value;
    static std::atomic<int> calls;
    static void callback(qmi_client_type, unsigned int, void*, unsigned int, void*)
    {
        if (client != nullptr && client->mobile_ap_handle != 0 && user_value == 5) ++calls;
    }
};
QCMAP_Client* PlainSession::client;
int PlainSession::user_value;
std::atomic<int> PlainSession::calls{0};

TEST_F(IndicationsHostTest, SessionsOpenAndCloseWhileIndicationsFlow)
{
    {
        OpenClient first;
    }
    const pid_t child = start_child([] {
        Session sender(nullptr, nullptr);
        for (uint32_t n = 1;; ++n)
            send(sender, n, n);
        return 0;
    });
    PlainSession::calls = 0;
    int opened = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while ((opened < 60 || PlainSession::calls < 60) && std::chrono::steady_clock::now() < end) {
        PlainSession::user_value = 5;
        PlainSession::client = new QCMAP_Client(PlainSession::callback, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
        EXPECT_TRUE(PlainSession::client->IsReady());
        EXPECT_TRUE(PlainSession::client->EnableMobileAP_Ext(&err, 65535));
        std::this_thread::sleep_for(std::chrono::milliseconds(opened % 4 * (kEmulated ? 10 : 1)));
        EXPECT_TRUE(PlainSession::client->DisableMobileAP(&err));
        delete PlainSession::client;
        PlainSession::client = nullptr;
        PlainSession::user_value = 0;
        ++opened;
    }
    kill(child, SIGKILL);
    wait_child(child);
    EXPECT_GE(opened, 60);
    EXPECT_GE(PlainSession::calls, 60);
}

}  // namespace
