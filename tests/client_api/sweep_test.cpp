// Every public function stands in the sweep: clean, without a session, and with each platform call failing in turn.
#include <set>

#include "api_test.h"
#include "fault_sweep.h"

namespace {

class SweepTest : public ApiTest {
protected:
    std::vector<std::string> methods_called() const
    {
        std::vector<std::string> methods;
        for (const auto& line : platform.journal) {
            methods.push_back(line.substr(0, line.find('(')));
        }
        return methods;
    }
    // A fresh start for the next run of a row.
    void prepare(const SweepRow& row)
    {
        platform.reset();
        if (row.prepare) row.prepare(platform);
    }
};

TEST_F(SweepTest, CleanRunsMakeTheCallsOfTheirRow)
{
    for (const SweepRow& row : all_sweep_rows()) {
        SCOPED_TRACE(row.function);
        prepare(row);
        EXPECT_EQ(row.call(), row.clean_result);
        std::vector<std::string> expected;
        for (const auto& step : row.steps) {
            expected.emplace_back(step.method);
        }
        EXPECT_THAT(methods_called(), testing::ElementsAreArray(expected));
        for (const auto& line : platform.log) {
            EXPECT_EQ(line.function, row.function) << line.text;
        }
        EXPECT_THAT(platform.complaints, testing::IsEmpty());
    }
    platform.reset();
}

TEST_F(SweepTest, EveryFailurePointGivesItsTagAndStops)
{
    for (const SweepRow& row : all_sweep_rows()) {
        for (size_t at = 0; at < row.steps.size(); ++at) {
            if (row.steps[at].on_failure == OnFailure::kGoesOn) continue;
            int call_number = 0;
            for (size_t i = 0; i <= at; ++i) {
                if (std::string(row.steps[i].method) == row.steps[at].method) ++call_number;
            }
            for (const uint32_t err : kErrorWords) {
                SCOPED_TRACE(std::string(row.function) + " " + row.steps[at].method + " error " + std::to_string(err));
                prepare(row);
                platform.on(row.steps[at].method, call_number).fails(err);
                EXPECT_EQ(row.call(), err | (0x1000u * row.steps[at].step));
                EXPECT_EQ(platform.journal.size(), at + 1) << "calls were made behind the failure";
                if (row.outputs_untouched) {
                    EXPECT_TRUE(row.outputs_untouched());
                }
                EXPECT_THAT(platform.complaints, testing::IsEmpty());
                const std::string fault = std::string(row.steps[at].method) + "#" + std::to_string(call_number);
                EXPECT_THAT(platform.unused_answers(), testing::Not(testing::Contains(fault)))
                    << "the fault never fired";
            }
        }
    }
    platform.reset();
}

TEST_F(SweepTest, TheErrorWordOfTheLastCallIsReturnedBare)
{
    for (const SweepRow& row : all_sweep_rows()) {
        if (row.steps.empty() || row.clean_result != 0) continue;
        SCOPED_TRACE(row.function);
        const std::string last = row.steps.back().method;
        int call_number = 0;
        for (const auto& step : row.steps) {
            if (step.method == last) ++call_number;
        }
        prepare(row);
        // A copy of what the row's own preparation says about the method, with an error word beside it.
        scripted::Answer& answer = platform.on(last, call_number);
        answer = platform.on(last);
        answer.succeeds(0x123);
        const uint32_t result = row.call();
        EXPECT_TRUE(result == 0x123 || result == (0x123 | 0x2000)) << result;
    }
    platform.reset();
}

TEST_F(SweepTest, WithoutASessionNothingIsTouched)
{
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    for (const SweepRow& row : all_sweep_rows()) {
        if (!row.needs_session) continue;
        SCOPED_TRACE(row.function);
        platform.reset();
        EXPECT_EQ(row.call(), 13u);
        expect_row(row.function, {}, {info("entry"), error("assertion (QcMapClient != NULL) failed!")});
        if (row.outputs_untouched) {
            EXPECT_TRUE(row.outputs_untouched());
        }
    }
}

TEST_F(SweepTest, NoFunctionStandsTwice)
{
    std::set<std::string> seen;
    for (const SweepRow& row : all_sweep_rows()) {
        EXPECT_TRUE(seen.insert(row.function).second) << row.function;
    }
}

}  // namespace
