// Every public function stands in the sweep: clean, without a session, and with each platform call failing in turn.
#include <algorithm>
#include <cstring>

#include "fault_sweep.h"

namespace {

class SweepTest : public ApiTest {
protected:
    // One run of a row, from a fresh start: its result. The transcript is that of the call alone.
    uint32_t run(const SweepRow& row)
    {
        for (const SweptOutput& output : row.outputs) {
            std::memset(output.at, 0xA5, output.size);
        }
        platform.forget();
        return row.call();
    }
    void prepare(const SweepRow& row)
    {
        platform.reset();
        if (row.prepare) row.prepare(platform);
    }
    // The answer of one step, which gives what the row's preparation gives.
    scripted::Answer& answer_of(const SweepRow& row, size_t at)
    {
        const std::string method = row.steps[at].method;
        scripted::Answer& answer = platform.on(method, call_number(row, at));
        answer = platform.on(method);
        return answer;
    }
    static int call_number(const SweepRow& row, size_t at)
    {
        const std::string method = row.steps[at].method;
        return static_cast<int>(std::count_if(row.steps.begin(),
                                              row.steps.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                                              [&](const SweepStep& step) { return step.method == method; }));
    }
    // The transcript up to the call of a step.
    std::vector<std::string> lines_up_to(const SweepRow& row, size_t at)
    {
        std::vector<std::string> lines;
        size_t calls = 0;
        for (const std::string& line : platform.lines(row.function)) {
            if (calls > at) break;
            lines.push_back(line);
            if (line.rfind("call  ", 0) == 0) ++calls;
        }
        return lines;
    }
    static std::string filled(std::string text, uint32_t err)
    {
        char shown[16];
        for (const char* const place : {"%d", "%x"}) {
            const size_t at = text.find(place);
            if (at == std::string::npos) continue;
            std::snprintf(shown, sizeof(shown), place[1] == 'd' ? "%d" : "%x", err);
            text.replace(at, 2, shown);
        }
        return text;
    }
    void expect_outputs_untouched(const SweepRow& row)
    {
        for (size_t i = 0; i < row.outputs.size(); ++i) {
            const auto* const bytes = static_cast<const unsigned char*>(row.outputs[i].at);
            EXPECT_TRUE(
                std::all_of(bytes, bytes + row.outputs[i].size, [](unsigned char byte) { return byte == 0xA5; }))
                << "output " << i;
        }
    }
};

TEST_F(SweepTest, CleanRunsMakeTheCallsOfTheirRow)
{
    for (const SweepRow& row : all_sweep_rows()) {
        SCOPED_TRACE(row.function);
        prepare(row);
        EXPECT_EQ(run(row), row.clean_result);
        std::vector<std::string> expected;
        for (const auto& step : row.steps) {
            expected.emplace_back(step.method);
        }
        std::vector<std::string> methods;
        for (const auto& line : platform.transcript) {
            if (line.kind == std::string("call")) {
                methods.push_back(line.text.substr(0, line.text.find('(')));
            } else {
                EXPECT_EQ(line.function, row.function) << line.text;
            }
        }
        EXPECT_EQ(methods, expected);
        EXPECT_THAT(platform.complaints, testing::IsEmpty());
    }
    platform.reset();
}

TEST_F(SweepTest, EveryFailurePointIsLoggedGivesItsTagAndStops)
{
    for (const SweepRow& row : all_sweep_rows()) {
        for (size_t at = 0; at < row.steps.size(); ++at) {
            const SweepStep& step = row.steps[at];
            if (step.on_failure == OnFailure::kGoesOn) continue;
            prepare(row);
            run(row);
            const auto clean = lines_up_to(row, at);
            for (const uint32_t err : row.error_words) {
                SCOPED_TRACE(std::string(row.function) + " " + step.method + " error " + std::to_string(err));
                prepare(row);
                answer_of(row, at).fails(err);
                EXPECT_EQ(run(row), err | (0x1000u * step.step));
                auto expected = clean;
                if (step.logs != kLogsNothing) expected.push_back("error " + filled(step.logs, err));
                expect_lines(__FILE__, __LINE__, row.function, row.function, {expected});
                expect_outputs_untouched(row);
                EXPECT_THAT(platform.complaints, testing::IsEmpty());
                const std::string fault = std::string(step.method) + "#" + std::to_string(call_number(row, at));
                EXPECT_THAT(platform.unused_answers(), testing::Not(testing::Contains(fault)))
                    << "the fault never fired";
            }
        }
    }
    platform.reset();
}

TEST_F(SweepTest, TheErrorWordOfASuccessfulLastCallIsReturned)
{
    for (const SweepRow& row : all_sweep_rows()) {
        if (row.steps.empty() || row.clean_result != 0) continue;
        SCOPED_TRACE(row.function);
        prepare(row);
        answer_of(row, row.steps.size() - 1).succeeds(0x123);
        EXPECT_EQ(run(row), 0x123 | (0x1000u * row.bare_word_step));
    }
    platform.reset();
}

TEST_F(SweepTest, WithoutASessionNothingIsTouched)
{
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    for (const SweepRow& row : all_sweep_rows()) {
        if (!row.needs_session) continue;
        platform.reset();
        EXPECT_ROW_OF(row.function, run(row), 13u,
                      "info  entry",
                      "error assertion (QcMapClient != NULL) failed!");
        expect_outputs_untouched(row);
        EXPECT_ROW_OF(row.function, row.call_with_nothing(), 13u,
                      "info  entry",
                      "error assertion (QcMapClient != NULL) failed!");
    }
}

}  // namespace
