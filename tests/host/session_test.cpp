// A session from its opening to its end, and signals in between.
#include "session.h"

#include <signal.h>
#include <time.h>

#include <chrono>
#include <cstring>
#include <random>
#include <thread>

#include "host_fixture.h"

namespace {

using mobile_ap::method;
using mobile_ap::read_method;
using mobile_ap::Session;
using mobile_ap::Store;
using Clock = std::chrono::steady_clock;

class SessionHostTest : public HostTest {};

TEST_F(SessionHostTest, OpensAndCloses)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_NE(client.mobile_ap_handle, 0u);
    OpenClient other;
    EXPECT_EQ(client.mobile_ap_handle, other.mobile_ap_handle);
    for (int i = 0; i < 2; ++i) {
        err = QMI_ERR_INTERNAL_V01;
        EXPECT_TRUE(client.DisableMobileAP(&err));
        EXPECT_EQ(err, QMI_ERR_NONE_V01);
    }
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 0));
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 0));
}

TEST_F(SessionHostTest, ErrorWordMayBeLeftOut)
{
    OpenClient client;
    EXPECT_TRUE(client.EnableIPV4(nullptr));
    EXPECT_FALSE(client.SelectLANBridge(7, nullptr));
    EXPECT_TRUE(client.DisableMobileAP(nullptr));
}

TEST_F(SessionHostTest, ErrorWordIsWrittenOnSuccessToo)
{
    OpenClient client;
    err = QMI_ERR_INTERNAL_V01;
    EXPECT_TRUE(client.EnableIPV4(&err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
}

TEST_F(SessionHostTest, SelectionsBelongToTheObject)
{
    Session a(nullptr, nullptr);
    Session b(nullptr, nullptr);
    const auto in = [&](Session& session, const std::function<void(Store&)>& work) {
        return method(&session, "Test", &err, [&](Store& db) { work(db); });
    };
    EXPECT_TRUE(in(a, [](Store& db) {
        db.run(
            "INSERT INTO lan_bridge (id, gateway_ip, dhcp_enabled, dhcp_start_ip, dhcp_end_ip) VALUES (9,'','','','')");
    }));
    EXPECT_TRUE(in(a, [](Store& db) { db.select_bridge(9); }));
    EXPECT_TRUE(in(a, [](Store& db) { EXPECT_EQ(db.selected_bridge(), 9); }));
    EXPECT_TRUE(in(b, [](Store& db) { EXPECT_EQ(db.selected_bridge(), 0); }));
    EXPECT_FALSE(in(a, [](Store& db) { db.select_bridge(10); }));
    EXPECT_EQ(err, QMI_ERR_INVALID_ID_V01);
    EXPECT_TRUE(in(a, [](Store& db) { EXPECT_EQ(db.selected_bridge(), 9); }));
    EXPECT_TRUE(in(b, [](Store& db) { db.run("DELETE FROM lan_bridge WHERE id = 9"); }));
    EXPECT_FALSE(in(a, [](Store& db) { db.selected_bridge(); }));
    EXPECT_EQ(err, QMI_ERR_INVALID_ID_V01);
}

TEST_F(SessionHostTest, ThreadsMayShareAnObject)
{
    OpenClient client;
    const auto work = [&] {
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        unsigned char state = 0;
        for (int i = 0; i < 50; ++i) {
            EXPECT_TRUE(i % 2 == 0 ? client.EnableIPV4(&error) : client.DisableIPV4(&error));
            EXPECT_TRUE(client.GetIPv4State(&state, &error));
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}

TEST_F(SessionHostTest, DescriptorsAreNotHandedDown)
{
    OpenClient client;
    const auto open_here = [] {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code none;
            if (std::filesystem::read_symlink(entry.path(), none).string().find("mobile_ap") != std::string::npos)
                ++count;
        }
        return count;
    };
    EXPECT_GE(open_here(), 1);
    EXPECT_EQ(system("ls -l /proc/self/fd | grep -q -e mobile_ap -e inotify -e eventfd"), 256);
}

// ---- signals ----

#ifdef __SANITIZE_THREAD__
// The handler closes the session, which frees memory. It does so by design, and only where the program stands outside
// of every method and holds no allocator's lock.
extern "C" const char* __tsan_default_options()
{
    return "report_signal_unsafe=0";
}
#endif

QCMAP_Client* handler_client;

// What a program's handler does: closes the session from wherever the program stands, and ends.
void close_and_end(int)
{
    if (handler_client != nullptr) {
        QCMAP_Client* client = handler_client;
        handler_client = nullptr;
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        client->DisableMobileAP(&error);
        delete client;
    }
    _exit(0);
}

void install_handlers()
{
    struct sigaction action = {};
    action.sa_handler = close_and_end;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

// Starts a child that has a session and runs one method, sends it a signal after a while, and returns how long it then
// took to end.
int64_t ms_to_end(const std::function<void(QCMAP_Client&)>& work, int signal_number, int after_ms)
{
    const pid_t child = start_child([&] {
        install_handlers();
        handler_client = new QCMAP_Client(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        handler_client->EnableMobileAP_Ext(&error, 65535);
        work(*handler_client);
        pause();
        return 1;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(after_ms));
    const auto start = Clock::now();
    kill(child, signal_number);
    EXPECT_EQ(wait_child(child), 0);
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

TEST_F(SessionHostTest, SignalEndsADelayBeforeTheWork)
{
    setenv("MOBILE_AP_FAULTS", "DisableIPV4=delay:60000", 1);
    const auto work = [](QCMAP_Client& client) {
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        client.DisableIPV4(&error);
    };
    EXPECT_LT(ms_to_end(work, SIGTERM, 300), 1000);
    EXPECT_LT(ms_to_end(work, SIGINT, 300), 1000);
}

TEST_F(SessionHostTest, SignalUndoesTheTransactionUnderWay)
{
    setenv("MOBILE_AP_FAULTS", "DisableIPV4=hold:60000", 1);
    EXPECT_LT(ms_to_end(
                  [](QCMAP_Client& client) {
                      qmi_error_type_v01 error = QMI_ERR_NONE_V01;
                      client.DisableIPV4(&error);
                  },
                  SIGTERM, 300),
              1000);
    unsetenv("MOBILE_AP_FAULTS");
    OpenClient client;
    unsigned char state = 0xa5;
    EXPECT_TRUE(client.GetIPv4State(&state, &err));
    EXPECT_EQ(state, 1);
}

TEST_F(SessionHostTest, MethodAnswersAbortedWhenASignalWaits)
{
    setenv("MOBILE_AP_FAULTS", "DisableIPV4#1=hold:60000,DisableIPV4#2=delay:60000", 1);
    const pid_t child = start_child([] {
        sigset_t held;
        sigemptyset(&held);
        sigaddset(&held, SIGTERM);
        sigprocmask(SIG_BLOCK, &held, nullptr);
        raise(SIGTERM);
        OpenClient client;
        for (int i = 0; i < 2; ++i) {
            qmi_error_type_v01 error = QMI_ERR_NONE_V01;
            if (client.DisableIPV4(&error) || error != QMI_ERR_ABORTED_V01) return 1 + i;
        }
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        return client.EnableIPV4(&error) ? 0 : 3;
    });
    EXPECT_EQ(wait_child(child), 0);
}

TEST_F(SessionHostTest, SignalEndsTheWaitForAnothersTransaction)
{
    setenv("MOBILE_AP_FAULTS", "EnableIPV6=hold:4000", 1);
    const pid_t holder = start_child([] {
        OpenClient client;
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        return client.EnableIPV6(&error) ? 0 : 1;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    unsetenv("MOBILE_AP_FAULTS");
    EXPECT_LT(ms_to_end(
                  [](QCMAP_Client& client) {
                      qmi_error_type_v01 error = QMI_ERR_NONE_V01;
                      client.DisableIPV4(&error);
                  },
                  SIGTERM, 500),
              1000);
    kill(holder, SIGKILL);
    wait_child(holder);
    OpenClient client;
    unsigned char state = 0xa5;
    EXPECT_TRUE(client.GetIPv4State(&state, &err));
    EXPECT_EQ(state, 1);
}

TEST_F(SessionHostTest, GivingUpAWaitForASignalIsNoFault)
{
    setenv("MOBILE_AP_FAULTS", "EnableIPV6=hold:60000", 1);
    const pid_t holder = start_child([] {
        OpenClient client;
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        return client.EnableIPV6(&error) ? 0 : 1;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    unsetenv("MOBILE_AP_FAULTS");
    const pid_t child = start_child([] {
        OpenClient client;
        sigset_t held;
        sigemptyset(&held);
        sigaddset(&held, SIGTERM);
        sigprocmask(SIG_BLOCK, &held, nullptr);
        raise(SIGTERM);
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        bool done = true;
        const std::string told = stderr_of([&] { done = client.DisableIPV4(&error); });
        return !done && error == QMI_ERR_ABORTED_V01 && told.empty() ? 0 : 1;
    });
    EXPECT_EQ(wait_child(child), 0);
    kill(holder, SIGKILL);
    wait_child(holder);
}

TEST_F(SessionHostTest, WaitsForAnothersTransaction)
{
    setenv("MOBILE_AP_FAULTS", "EnableIPV6=hold:800", 1);
    const pid_t holder = start_child([] {
        OpenClient client;
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        return client.EnableIPV6(&error) ? 0 : 1;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    unsetenv("MOBILE_AP_FAULTS");
    OpenClient client;
    EXPECT_TRUE(client.DisableIPV4(&err));
    EXPECT_EQ(wait_child(holder), 0);
}

TEST_F(SessionHostTest, SignalsAtAnyMoment)
{
    {
        OpenClient first;
    }
    std::minstd_rand random(3);
    for (int round = 0; round < 150; ++round) {
        int handlers_in[2];
        ASSERT_EQ(pipe(handlers_in), 0);
        const pid_t child = start_child([&] {
            install_handlers();
            if (write(handlers_in[1], "", 1) != 1) return 2;
            for (;;) {
                QCMAP_Client* client = new QCMAP_Client(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
                handler_client = client;
                qmi_error_type_v01 error = QMI_ERR_NONE_V01;
                client->EnableMobileAP_Ext(&error, 65535);
                client->DisableIPV4(&error);
                client->EnableIPV4(&error);
                unsigned char state = 0;
                client->GetIPv4State(&state, &error);
                client->DisableMobileAP(&error);
                handler_client = nullptr;
                delete client;
            }
            return 1;
        });
        close(handlers_in[1]);
        char byte;
        ASSERT_EQ(read(handlers_in[0], &byte, 1), 1);
        close(handlers_in[0]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 12000));
        const auto start = Clock::now();
        kill(child, round % 2 == 0 ? SIGTERM : SIGINT);
        ASSERT_EQ(wait_child(child), 0);
        ASSERT_LT(Clock::now() - start, std::chrono::seconds(2));
    }
    OpenClient client;
    EXPECT_TRUE(client.open);
    EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), 0);
}

}  // namespace
