// What happens at a time: in order, once, before anybody sees the state, and without a word of anybody.
#include "events.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include "provoked.h"

namespace {

class EventsHostTest : public ProvokedTest {};

// A session that does not listen, and so does nothing by itself.
struct QuietClient : QCMAP_Client {
    QuietClient() : QCMAP_Client(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr) {}
};

TEST_F(EventsHostTest, NothingHappensBeforeItsTime)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    told(heard);
    schedule({{5000, "call drop 1"}});
    EXPECT_EQ(status(client), "3 12");
    let_pass(4000);
    EXPECT_EQ(status(client), "3 12");
    EXPECT_EQ(told(heard), "");
    let_pass(1000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "35:6:1 36:6:1 ");
    let_pass(5000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "");
}

TEST_F(EventsHostTest, WhoeverLooksFirstFindsItDone)
{
    QuietClient quiet;
    ASSERT_TRUE(quiet.SetReconnect(true, &err));
    const auto drop_in_the_past = [&] {
        ASSERT_TRUE(quiet.ConnectBackHaul(kCallV4, &err));
        schedule({{-1, "call drop 1"}});
    };
    drop_in_the_past();
    EXPECT_EQ(status(quiet), "6 12");
    drop_in_the_past();
    EXPECT_TRUE(connected(quiet).empty());
    drop_in_the_past();
    EXPECT_FALSE(quiet.ConnectBackHaul(static_cast<qcmap_msgr_wwan_call_type_v01>(7), &err));
    EXPECT_EQ(db.one<std::string>("SELECT state FROM wwan_call"), "down");
    drop_in_the_past();
    EXPECT_TRUE(quiet.IsReady());
    EXPECT_EQ(db.one<std::string>("SELECT state FROM wwan_call"), "down");
    drop_in_the_past();
    OpenClient other;
    EXPECT_TRUE(other.open);
    EXPECT_EQ(db.one<std::string>("SELECT state FROM wwan_call"), "down");
    // What a method makes of the state, it makes of the current one.
    drop_in_the_past();
    EXPECT_TRUE(quiet.DisconnectBackHaul(kCallV4, &err));  // gives the redial up
    EXPECT_FALSE(quiet.DisconnectBackHaul(kCallV4, &err));
    ASSERT_TRUE(quiet.ConnectBackHaul(kCallV4, &err));
    schedule({{-1, "call drop 1"}});
    EXPECT_TRUE(quiet.ConnectBackHaul(kCallV4, &err));
}

TEST_F(EventsHostTest, WhatAMethodRefusesDoesNotUndoWhatWasDue)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    told(heard);
    schedule({{-1, "call drop 1"}});
    EXPECT_FALSE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    EXPECT_EQ(heard.take(2), "35:6:1 36:6:1 ");
    EXPECT_EQ(status(client), "6 12");
}

TEST_F(EventsHostTest, EventsHappenInOrderOfTimeAndThenOfTheirLines)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    ASSERT_TRUE(client.SetReconnect(true, &err));
    told(heard);
    schedule({{4000, "call drop 1 --family 4 --reason 0:4"},
              {1000, "call drop 1 --family 6 --reason 0:1"},
              {1000, "call drop 1 --family 4 --reason 0:2"},
              // At the time of both redials: events from outside come first.
              {4000, "call refuse 1 --family 4 --reason 0:5"}});
    std::string all_told;
    EXPECT_EQ(stderr_of([&] {
                  let_pass(4000);
                  EXPECT_EQ(status(client), "6 9");
                  all_told = told(heard);
              }),
              "mobile-AP event \"call drop 1 --family 4 --reason 0:4\": no such call\n");
    EXPECT_EQ(all_told,
              "35:12:1/0:1 36:12:1/0:1 35:6:1/0:2 36:6:1/0:2 36:1:1 34:2:1/0:5 36:2:1/0:5 36:7:1 34:9:1 36:9:1 ");
}

TEST_F(EventsHostTest, ALongSilenceIsMadeUpForInOrderOfTime)
{
    OpenClient client;
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    ASSERT_TRUE(client.SetReconnect(true, &err));
    // Up 0-10, down 10-13, up 13-20, away 20-30 with the call, down 30-33, up since.
    schedule({{10000, "call drop 1"}, {20000, "service away 10"}, {25000, "call drop 1"}});
    let_pass(43000);
    EXPECT_EQ(statistics(client, 4).bytes_rx, 37000u * 125);
}

TEST_F(EventsHostTest, AnEventThatIsRefusedIsToldAndTheOthersHappen)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    told(heard);
    schedule({{1, "call drop 7"},
              {2, "traffic 1 --family 6 --down 3"},
              {3, "device leave 02:00:00:00:00:01"},
              {4, "sip add --bridge 5 --address 10.0.0.1"},
              {5, "sip add --family 6 --address 10.0.0.1"},
              {6, "call dorp 1"},
              {7, "call drop 1"}});
    std::string all_told;
    EXPECT_EQ(stderr_of([&] {
                  let_pass(10);
                  EXPECT_EQ(status(client), "6 12");
                  all_told = told(heard);
              }),
              "mobile-AP event \"call drop 7\": no such profile\n"
              "mobile-AP event \"traffic 1 --family 6 --down 3\": no such call\n"
              "mobile-AP event \"device leave 02:00:00:00:00:01\": no such device\n"
              "mobile-AP event \"sip add --bridge 5 --address 10.0.0.1\": no such LAN bridge\n"
              "mobile-AP event \"sip add --family 6 --address 10.0.0.1\": a value is out of range\n"
              "mobile-AP event \"call dorp 1\": \"dorp\" is no word that is known here\n");
    EXPECT_EQ(all_told, "35:6:1 36:6:1 ");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(status(client), "6 12"); }), "");
}

// The other process waits for the reader of its standard error. It is made while this one has no database open.
TEST_F(EventsHostTest, NobodyWaitsForWhoIsToldOfARefusedEvent)
{
    schedule({{-1, "call drop 7"}});
    db.close();
    int told_to[2];
    ASSERT_EQ(pipe2(told_to, O_NONBLOCK), 0);
    while (write(told_to[1], "", 1) == 1) {
    }
    fcntl(told_to[1], F_SETFL, 0);
    const pid_t other = start_child([&] {
        dup2(told_to[1], STDERR_FILENO);
        QuietClient quiet;
        return status(quiet) == "6 12" ? 0 : 1;
    });
    ASSERT_EQ(mobile_ap::open_state(db, folder), "");
    const auto events = [&] { return db.one<int>("SELECT count(*) FROM event").value_or(-1); };
    for (int i = 0; i < 500 && events() != 0; ++i)
        usleep(10000);
    EXPECT_EQ(events(), 0);
    kill(other, SIGKILL);
    wait_child(other);
    close(told_to[0]);
    close(told_to[1]);
}

TEST_F(EventsHostTest, WordsAreKeptAsTheyAre)
{
    OpenClient client;
    const std::vector<std::string> names = {"my laptop", "\"quoted\"", "\\u0041", "caf\xc3\xa9", "\xff", "tab\there"};
    int last = 0;
    {
        mobile_ap::Transaction transaction(db, mobile_ap::Access::kWrite);
        for (const std::string& name : names) {
            mobile_ap::schedule(db, mobile_ap::now_ms() + last,
                                {"device", "join", "02:00:00:00:00:0" + std::to_string(last), "192.168.225.21", name});
            ++last;
        }
        transaction.commit();
    }
    let_pass(10);
    status(client);
    for (int i = 0; i < last; ++i) {
        EXPECT_EQ(db.one<std::string>("SELECT host_name FROM connected_device WHERE mac = ?",
                                      "02:00:00:00:00:0" + std::to_string(i)),
                  names[static_cast<size_t>(i)]);
    }
}

TEST_F(EventsHostTest, WhatIsToComeIsTakenBack)
{
    OpenClient client;
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call drop 1");
    schedule({{1000, "roam on"}, {2000, "service away 60"}});
    {
        mobile_ap::Transaction transaction(db, mobile_ap::Access::kWrite);
        EXPECT_EQ(mobile_ap::forget_events(db), 2);
        transaction.commit();
    }
    let_pass(3000);
    EXPECT_EQ(status(client), "3 12");  // the redial is the platform's own
}

// A transaction that cannot be made good undoes the state and what would have been told of it.
TEST_F(EventsHostTest, WhatIsDueIsOneTransactionWithItsIndications)
{
    QuietClient quiet;
    const auto told_of = [&] { return db.one<int>("SELECT count(*) FROM indication").value_or(-1); };
    ASSERT_TRUE(quiet.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(told_of(), 3);
    {
        mobile_ap::Transaction transaction(db, mobile_ap::Access::kWrite);
        db.run_script(
            "CREATE TRIGGER broken BEFORE INSERT ON connected_device BEGIN SELECT raise(ABORT, 'broken'); END");
        transaction.commit();
    }
    schedule({{-2, "call drop 1"}, {-1, "device join 02:00:00:00:00:01 192.168.225.21 laptop"}});
    auto v4_status = QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01;
    auto v6_status = QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01;
    const std::string line = stderr_of([&] {
        EXPECT_FALSE(quiet.GetWWANStatus(&v4_status, &v6_status, &err));
        EXPECT_EQ(err, QMI_ERR_INTERNAL_V01);
    });
    EXPECT_EQ(line, "mobile-AP state " + folder + "/mobile_ap.db: broken\n");
    EXPECT_EQ(db.one<std::string>("SELECT state FROM wwan_call"), "up");
    EXPECT_EQ(told_of(), 3);
    {
        mobile_ap::Transaction transaction(db, mobile_ap::Access::kWrite);
        db.run_script("DROP TRIGGER broken");
        transaction.commit();
    }
    EXPECT_EQ(status(quiet), "6 12");
    EXPECT_EQ(told_of(), 5);
}

// Eight processes look at one moment. They are made while this one has no thread, and no database open, yet.
TEST_F(EventsHostTest, ManyWhoLookAtOnceCarryItOutOnce)
{
    constexpr int kReaders = 8;
    constexpr int kRounds = 20;
    db.close();
    int go[2];
    int seen[2];
    ASSERT_EQ(pipe(go), 0);
    ASSERT_EQ(pipe(seen), 0);
    std::vector<pid_t> readers;
    for (int i = 0; i < kReaders; ++i) {
        readers.push_back(start_child([&] {
            close(go[1]);
            OpenClient client;
            char byte = 0;
            while (read(go[0], &byte, 1) == 1) {
                byte = status(client) == "6 12" ? 'y' : 'n';
                if (write(seen[1], &byte, 1) != 1) return 1;
            }
            return 0;
        }));
    }
    close(go[0]);
    close(seen[1]);
    ASSERT_EQ(mobile_ap::open_state(db, folder), "");
    {
        Heard heard;
        OpenClient client(Heard::callback, &heard);
        for (int round = 0; round < kRounds; ++round) {
            ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
            schedule({{-2, "call drop 1 --reason 0:1"}, {-1, "call refuse 1 --times 0"}});
            ASSERT_EQ(write(go[1], "gggggggg", kReaders), kReaders);
            for (int i = 0; i < kReaders; ++i) {
                char byte = 0;
                ASSERT_EQ(read(seen[0], &byte, 1), 1);
                EXPECT_EQ(byte, 'y');
            }
            ASSERT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 35:6:1/0:1 36:6:1/0:1 ") << "round " << round;
        }
    }
    close(go[1]);
    for (const pid_t reader : readers)
        EXPECT_EQ(wait_child(reader), 0);
    close(seen[0]);
}

}  // namespace
