// What the tests of provocations share: a state that they provoke from inside, and a clock that stands.
#ifndef PROVOKED_H
#define PROVOKED_H

#include <sstream>

#include "calls.h"
#include "events.h"
#include "host_fixture.h"
#include "provocations.h"
#include "state_file.h"
#include "stopped_clock.h"
#include "store.h"

class ProvokedTest : public HostTest {
protected:
    static constexpr auto kCallV4 = QCMAP_MSGR_WWAN_CALL_TYPE_V4_V01;
    static constexpr auto kCallV6 = QCMAP_MSGR_WWAN_CALL_TYPE_V6_V01;

    // Here already, so that a session may be a member of a test.
    ProvokedTest()
    {
        HostTest::SetUp();
        clock_stands_at_ms = 0;
        clock_stands_at_ms = mobile_ap::now_ms();
        EXPECT_EQ(mobile_ap::open_state(db, folder), "");
    }
    void SetUp() override {}
    static std::vector<std::string> words_of(const std::string& line)
    {
        std::istringstream text(line);
        std::vector<std::string> words;
        for (std::string word; text >> word;)
            words.push_back(word);
        return words;
    }
    // Carries it out; returns what is told, or "refused" and the error word.
    std::string provoke(const std::string& line)
    {
        const mobile_ap::Provocation provocation = mobile_ap::parse_provocation(words_of(line));
        try {
            return mobile_ap::on_current_state(db, mobile_ap::Access::kWrite, [&](mobile_ap::Transaction& transaction) {
                const std::string told = provocation.carry_out(db, mobile_ap::now_ms());
                transaction.commit();
                return told;
            });
        } catch (const mobile_ap::Ending& refusal) {
            return "refused " + std::to_string(refusal.word);
        }
    }
    // Lets lines happen, each so many milliseconds from now. Nothing is looked at.
    void schedule(const std::vector<std::pair<int64_t, std::string>>& events)
    {
        mobile_ap::Transaction transaction(db, mobile_ap::Access::kWrite);
        const int64_t now = mobile_ap::now_ms();
        for (const auto& [after_ms, line] : events)
            mobile_ap::schedule(db, now + after_ms, words_of(line));
        transaction.commit();
    }
    static void let_pass(int64_t milliseconds)
    {
        clock_stands_at_ms += milliseconds;
    }
    // All that a session has been told since this was last asked.
    std::string told(Heard& heard)
    {
        EXPECT_EQ(provoke("report 9"), "");
        return heard.take_until_report();
    }

    mobile_ap::Store db;
};

#endif
