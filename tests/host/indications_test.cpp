// Indications, within a process and across two.
#include "indications.h"

#include <pthread.h>
#include <signal.h>
#include <sys/inotify.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>

#include "host_fixture.h"
#include "program.h"
#include "session.h"

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

TEST_F(IndicationsHostTest, TheNewestThousandAreKept)
{
    Session sender(nullptr, nullptr);
    EXPECT_TRUE(send(sender, 1, 1200));
    EXPECT_TRUE(method(&sender, "Test", &err, [](Store& db) {
        EXPECT_EQ(db.one<int>("SELECT count(*) FROM indication"), 1000);
        EXPECT_EQ(db.one<int>("SELECT min(id) FROM indication"), 201);
    }));
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
    EXPECT_TRUE(send(sender, 1, 1));
    EXPECT_EQ(heard.wait_for(1), range(1, 1));
    EXPECT_TRUE(client.DisableMobileAP(&err));
    std::filesystem::remove(folder + "/mobile_ap.db");
    EXPECT_TRUE(send(sender, 2, 2));
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 65535));
    EXPECT_TRUE(send(sender, 3, 3));
    EXPECT_EQ(heard.wait_for(2), (std::vector<uint32_t>{1, 3}));
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
