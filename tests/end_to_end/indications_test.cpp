// A program that holds a session open, and what it hears of what other processes do.
#include <arpa/inet.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <sstream>

#include "program.h"
#include "run_tool.h"

namespace {

using Texts = std::vector<std::string>;

struct Event {
    uint32_t id;
    std::string data;
    uint32_t fourth;  // 0 where there is none

    zr_nexa_ind_call_event_t call() const
    {
        zr_nexa_ind_call_event_t event = {};
        EXPECT_EQ(data.size(), sizeof(event));
        std::memcpy(&event, data.data(), std::min(sizeof(event), data.size()));
        return event;
    }
    // "37 status 1 of 2": event 37, status 1, profile 2.
    std::string text() const
    {
        const zr_nexa_ind_call_event_t event = call();
        return std::to_string(id) + " status " + std::to_string(event.status) + " of " +
               std::to_string(event.wwan_handle);
    }
};

Texts texts(const std::vector<Event>& events)
{
    Texts all;
    for (const Event& event : events)
        all.push_back(event.text());
    return all;
}

// What the session of this process was told.
class Heard {
public:
    void add(const Event& event)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        events_.push_back(event);
        more_.notify_all();
    }
    // Waits until so many events are there, and a moment longer for any that should not be.
    std::vector<Event> take(size_t count)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        more_.wait_for(lock, std::chrono::seconds(20), [&] { return events_.size() >= count; });
        more_.wait_for(lock, std::chrono::milliseconds(400), [&] { return events_.size() > count; });
        return std::exchange(events_, {});
    }
    bool wait_for_one()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        return more_.wait_for(lock, std::chrono::seconds(20), [&] { return !events_.empty(); });
    }
    std::vector<Event> take_all()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(events_, {});
    }

private:
    std::mutex mutex_;
    std::condition_variable more_;
    std::vector<Event> events_;
};
Heard heard;

void note_event(uint32_t event_id, uint32_t length, const void* data, ...)
{
    Event event{event_id, std::string(static_cast<const char*>(data), length), 0};
    if (event_id == ZR_NEXA_IND_TEAR_DOWN && event.call().status == ZR_NEXA_IND_V6_DISCONNECTING_FAILED) {
        va_list values;
        va_start(values, data);
        event.fourth = va_arg(values, uint32_t);
        va_end(values);
    }
    heard.add(event);
}

std::string ipv4(uint32_t address)
{
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &address, text, sizeof(text));
}

std::string ipv6(const uint8_t (&address)[16])
{
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, address, text, sizeof(text));
}

const Texts kConnectV4 = {"37 status 1 of 1", "34 status 3 of 1", "37 status 3 of 1"};
const Texts kConnectV6 = {"37 status 7 of 1", "34 status 9 of 1", "37 status 9 of 1"};
const Texts kDisconnectV4 = {"37 status 4 of 1", "35 status 6 of 1", "37 status 6 of 1"};
const Texts kDisconnectV6 = {"37 status 10 of 1", "35 status 12 of 1", "37 status 12 of 1"};

Texts joined(Texts first, const Texts& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// This process's sessions are those of a fresh state, like those of the commands it runs.
class IndicationsTest : public ToolTest {
protected:
    IndicationsTest()
    {
        setenv("MOBILE_AP_STATE", state.path().c_str(), 1);
    }
    ~IndicationsTest() override
    {
        zr_nexa_client_uninit();
        heard.take_all();
    }
    static void SetUpTestSuite()
    {
        // Read once, at the first record.
        setenv("MOBILE_AP_LOG", ("file:" + log_file()).c_str(), 1);
    }
    static std::string log_file()
    {
        static const TempFolder folder;
        return folder.path() + "/log";
    }
    static std::string log()
    {
        std::ostringstream text;
        text << std::ifstream(log_file()).rdbuf();
        return text.str();
    }

    void command(const std::vector<std::string>& words) const
    {
        const ToolRun seen = run(words);
        EXPECT_EQ(seen.out.substr(seen.out.rfind("CMD")), "CMD OK\r\n") << seen.out;
    }
    // An indication that no method sends.
    void send_wire(unsigned int msg_id, const std::string& wire) const
    {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(database().c_str(), &db), SQLITE_OK);
        sqlite3_busy_timeout(db, 10000);
        sqlite3_stmt* statement = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(db, "INSERT INTO indication (msg_id, wire, time) VALUES (?, ?, '')", -1,
                                     &statement, nullptr),
                  SQLITE_OK)
            << sqlite3_errmsg(db);
        sqlite3_bind_int64(statement, 1, msg_id);
        sqlite3_bind_blob(statement, 2, wire.data(), static_cast<int>(wire.size()), SQLITE_TRANSIENT);
        EXPECT_EQ(sqlite3_step(statement), SQLITE_DONE) << sqlite3_errmsg(db);
        sqlite3_finalize(statement);
        sqlite3_close(db);
    }
    uint32_t mobile_ap() const
    {
        sqlite3* db = nullptr;
        EXPECT_EQ(sqlite3_open(database().c_str(), &db), SQLITE_OK);
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(db, "SELECT handle FROM mobile_ap", -1, &statement, nullptr);
        EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW);
        const auto handle = static_cast<uint32_t>(sqlite3_column_int64(statement, 0));
        sqlite3_finalize(statement);
        sqlite3_close(db);
        return handle;
    }
    // A record with this beginning, as it stands on the wire.
    static std::string wire(size_t size, const std::vector<uint32_t>& beginning)
    {
        std::string bytes(3 + size, '\0');
        bytes[0] = 1;
        bytes[1] = static_cast<char>(size & 0xff);
        bytes[2] = static_cast<char>(size >> 8);
        std::memcpy(&bytes[3], beginning.data(), beginning.size() * sizeof(uint32_t));
        return bytes;
    }
};

TEST_F(IndicationsTest, AProgramHearsWhatACommandDid)
{
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    command({"WAN", "Connect", "connect", "1", "4"});
    std::vector<Event> events = heard.take(3);
    EXPECT_EQ(texts(events), kConnectV4);
    ASSERT_EQ(events.size(), 3u);
    const zr_nexa_ind_call_event_t v4 = events[1].call();
    EXPECT_STREQ(v4.iface_name, "wwan0");
    EXPECT_EQ(v4.call_end_type, 0u);
    EXPECT_EQ(v4.call_end_code, 0u);
    EXPECT_EQ(ipv4(v4.v4_addr), "10.101.0.2");
    EXPECT_EQ(ipv4(v4.v4_pri_dns_addr), "192.0.2.53");
    EXPECT_EQ(ipv4(v4.v4_sec_dns_addr), "198.51.100.53");
    EXPECT_EQ(ipv6(v4.v6_addr), "::");

    command({"WAN", "Connect", "connect", "1", "6"});
    events = heard.take(3);
    EXPECT_EQ(texts(events), kConnectV6);
    ASSERT_EQ(events.size(), 3u);
    const zr_nexa_ind_call_event_t v6 = events[1].call();
    EXPECT_EQ(ipv4(v6.v4_addr), "10.101.0.2");
    EXPECT_EQ(ipv6(v6.v6_addr), "2001:db8:1::2");
    EXPECT_EQ(ipv6(v6.v6_pri_dns_addr), "2001:db8:ffff::53");
    EXPECT_EQ(ipv6(v6.v6_sec_dns_addr), "2001:db8:ffff::153");

    command({"WAN", "Connect", "disconnect", "1", "46"});
    EXPECT_EQ(texts(heard.take(6)), joined(kDisconnectV4, kDisconnectV6));
}

TEST_F(IndicationsTest, AProfileIsNamedByItsHandle)
{
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    command({"WAN", "WWANConfig", "add", "0", "1"});
    command({"WAN", "Connect", "connect", "2", "4"});
    EXPECT_EQ(texts(heard.take(3)), (Texts{"37 status 1 of 2", "34 status 3 of 2", "37 status 3 of 2"}));
}

TEST_F(IndicationsTest, AProgramHearsOfItsOwnConnections)
{
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    EXPECT_EQ(zr_nexa_wan_connect_v4_set_v1(1, 1), 0u);
    EXPECT_EQ(zr_nexa_wan_connect_v4_set_v1(1, 0), 0u);
    EXPECT_EQ(texts(heard.take(6)), joined(kConnectV4, kDisconnectV4));
}

TEST_F(IndicationsTest, WhatWasBeforeAndAfterASessionIsNotHeard)
{
    command({"WAN", "Connect", "connect", "1", "4"});
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    command({"WAN", "Connect", "connect", "1", "6"});
    EXPECT_EQ(texts(heard.take(3)), kConnectV6);
    EXPECT_EQ(zr_nexa_client_uninit(), 0u);
    command({"WAN", "Connect", "disconnect", "1", "46"});
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    EXPECT_EQ(texts(heard.take(0)), Texts{});
}

TEST_F(IndicationsTest, EveryOpenSessionHearsTheSame)
{
    int told[2];
    ASSERT_EQ(pipe(told), 0);
    const pid_t other = fork();
    if (other == 0) {
        const char opened = zr_nexa_client_init(note_event) == 0 ? 'y' : 'n';
        ssize_t written = write(told[1], &opened, 1);
        std::string all;
        for (const std::string& text : texts(heard.take(3)))
            all += text + "\n";
        written += write(told[1], all.data(), all.size());
        zr_nexa_client_uninit();
        _exit(written == static_cast<ssize_t>(all.size() + 1) ? 0 : 1);
    }
    close(told[1]);
    char opened = '\0';
    EXPECT_EQ(read(told[0], &opened, 1), 1);
    EXPECT_EQ(opened, 'y');
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    command({"WAN", "Connect", "connect", "1", "4"});
    EXPECT_EQ(texts(heard.take(3)), kConnectV4);
    std::string all;
    char some[256];
    for (ssize_t count = 0; (count = read(told[0], some, sizeof(some))) > 0;)
        all.append(some, static_cast<size_t>(count));
    close(told[0]);
    EXPECT_EQ(all, "37 status 1 of 1\n34 status 3 of 1\n37 status 3 of 1\n");
    int status = -1;
    EXPECT_EQ(waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
}

TEST_F(IndicationsTest, SessionsOpenAndCloseWhileIndicationsArrive)
{
    constexpr int kSessions = 40;
    // The other process goes one round for each byte: 6 indications. In all they are fewer than are kept, so that
    // nobody misses one, however slowly a machine runs.
    int rounds[2];
    ASSERT_EQ(pipe(rounds), 0);
    const pid_t other = fork();
    if (other == 0) {
        close(rounds[1]);
        bool good = zr_nexa_client_init(nullptr) == 0;
        for (char byte = 0; good && read(rounds[0], &byte, 1) == 1;)
            good = zr_nexa_wan_connect_v4_set_v1(1, 1) == 0 && zr_nexa_wan_connect_v4_set_v1(1, 0) == 0;
        zr_nexa_client_uninit();
        _exit(good ? 0 : 1);
    }
    // Whatever part of it a session hears is in order and without a gap. No text stands twice in a round.
    const Texts round = joined(kConnectV4, kDisconnectV4);
    for (int session = 0; session < kSessions; ++session) {
        EXPECT_EQ(write(rounds[1], "o", 1), 1);  // while it opens
        EXPECT_EQ(zr_nexa_client_init(note_event), 0u);
        EXPECT_EQ(write(rounds[1], "c", 1), 1);  // while it closes, at the first event or before
        EXPECT_TRUE(session % 2 == 1 || heard.wait_for_one()) << "session " << session;
        EXPECT_EQ(zr_nexa_client_uninit(), 0u);
        const Texts part = texts(heard.take_all());
        if (part.empty()) continue;
        const auto first = std::find(round.begin(), round.end(), part[0]);
        EXPECT_NE(first, round.end()) << part[0];
        for (size_t i = 0; i < part.size(); ++i) {
            const size_t place = static_cast<size_t>(first - round.begin()) + i;
            EXPECT_EQ(part[i], round[place % round.size()]) << "event " << i << " of session " << session;
        }
    }
    close(rounds[1]);
    int status = -1;
    EXPECT_EQ(waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
    close(rounds[0]);
}

TEST_F(IndicationsTest, WhatCannotBeDecodedIsLoggedAndDropped)
{
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    const uint32_t handle = mobile_ap();
    const std::map<unsigned int, size_t> sizes = {{34, 136}, {35, 36}, {36, 444}, {169, 10888}};
    size_t sent = 0;
    for (const auto& [msg_id, size] : sizes) {
        const std::string good = wire(size, {handle, 3});
        std::string other_tag = good;
        other_tag[0] = 2;
        const std::set<std::string> bad = {"",
                                           good.substr(0, 1),
                                           good.substr(0, 3),
                                           good.substr(0, good.size() - 1),
                                           good + '\0',
                                           wire(size - 1, {handle, 3}),
                                           wire(size + 1, {handle, 3}),
                                           other_tag,
                                           std::string(65536, '\xFF')};
        for (const std::string& each : bad) {
            send_wire(msg_id, each);
            ++sent;
        }
    }
    // Others are not of interest, however they look.
    send_wire(33, "");
    send_wire(37, wire(444, {handle, 3}));
    // Meant for another mobile AP.
    send_wire(36, wire(444, {handle + 1, 3}));
    send_wire(36, wire(444, {handle, 3}));
    EXPECT_EQ(texts(heard.take(1)), Texts{"37 status 3 of 65535"});
    size_t logged = 0;
    const std::string lines = log();
    const std::string error = "ERROR [ZR_NEXA]zr_nexa_inds_cb(): zr_nexa_inds_cb: qmi_client_message_decode error -";
    for (size_t at = 0; (at = lines.find(error, at)) != std::string::npos; ++at)
        ++logged;
    EXPECT_EQ(logged, sent) << lines.substr(0, 4000);
}

TEST_F(IndicationsTest, AFailedDisconnectOfIpv6HasAFourthValue)
{
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    const uint32_t handle = mobile_ap();
    for (const uint32_t status : {5u, 6u, 11u, 12u})
        send_wire(35, wire(36, {handle, status, 6, 1030, 1, 1}));
    const std::vector<Event> events = heard.take(4);
    EXPECT_EQ(texts(events), (Texts{"35 status 5 of 1", "35 status 6 of 1", "35 status 11 of 1", "35 status 12 of 1"}));
    for (const Event& event : events) {
        EXPECT_EQ(event.fourth, event.call().status == 11 ? 684u : 0u);
        EXPECT_EQ(event.call().call_end_type, 6u);
        EXPECT_EQ(event.call().call_end_code, 1030u);
    }
}

#ifdef ZR_NEXA_MOBILE_AP_CTL
TEST_F(IndicationsTest, ReportsAreSentOnDemand)
{
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    for (const char* kind : {"0", "1", "2", "4294967295"}) {
        EXPECT_EQ(run_program(ZR_NEXA_MOBILE_AP_CTL, {"report", kind}), 0);
    }
    const std::vector<Event> events = heard.take(2);
    ASSERT_EQ(events.size(), 2u);
    for (uint32_t kind : {0u, 1u}) {
        EXPECT_EQ(events[kind].id, 169u);
        zr_nexa_ind_status_report_t report;
        ASSERT_EQ(events[kind].data.size(), sizeof(report));
        std::memcpy(&report, events[kind].data.data(), sizeof(report));
        EXPECT_EQ(report.kind, kind);
        for (size_t i = 0; i < sizeof(report.report); ++i)
            ASSERT_EQ(report.report[i], i % 251) << i;
    }
}
#endif

}  // namespace
