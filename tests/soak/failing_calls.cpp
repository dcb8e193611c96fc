// Each of the calls that change files fails in turn, once or from then on, while a state is made, set aside or written.
// The next session, with whole calls, opens; what was said to be done is there.
#include <errno.h>
#include <signal.h>

#include <algorithm>
#include <cstdio>

#include "calls.h"
#include "soak.h"
#include "state.h"

namespace soak {
namespace {

constexpr uint32_t kRounds = 4;
constexpr unsigned int kLimitS = 60;
constexpr int kWorkers = 3;

struct Failure {
    CallKind kind;
    const char* name;
    int error;
};
constexpr Failure kFailures[] = {
    {CallKind::kOpen, "open", EMFILE},   {CallKind::kOpen, "open", ENOSPC},     {CallKind::kOpen, "open", EIO},
    {CallKind::kOpen, "open", EINTR},    {CallKind::kWrite, "write", ENOSPC},   {CallKind::kWrite, "write", EIO},
    {CallKind::kWrite, "write", EINTR},  {CallKind::kSync, "sync", EIO},        {CallKind::kSync, "sync", ENOSPC},
    {CallKind::kSize, "truncate", EIO},  {CallKind::kSize, "truncate", ENOSPC}, {CallKind::kSize, "truncate", EINTR},
    {CallKind::kName, "rename", ENOSPC}, {CallKind::kName, "rename", EACCES},   {CallKind::kMap, "mmap", ENOMEM},
};

struct Start {
    const char* name;
    std::string folder;
    uint32_t first_number;
    int attempts;
};

struct Outcome {
    Told told;
    std::atomic<int> reached{0};  // calls that failed
};

struct Totals {
    std::atomic<uint64_t> runs{0};
    std::atomic<uint64_t> failures{0};
    std::atomic<uint64_t> refused{0};
    std::atomic<uint64_t> not_ready{0};
    std::atomic<uint64_t> findings{0};
    std::atomic<int> last{0};  // of the calls of a kind that was made to fail
    std::atomic<bool> all{true};
};

class Turn {
public:
    Turn(const Task& task, int worker, Totals& totals)
        : task_(task), totals_(totals), state_(task.folder + "/state" + std::to_string(worker))
    {
    }

    // Whether there are so many calls of the kind.
    bool run(const Start& start, const Failure& failure, int number, bool from_then_on)
    {
        copy_state(start.folder, state_);
        Shared<Outcome> outcome;
        CallPlan plan;
        plan.kind = failure.kind;
        plan.fails_at = number;
        plan.error = failure.error;
        plan.from_then_on = from_then_on;
        const int ended = wait_for_process(start_process(
            [&] {
                plan_calls(plan);
                const int result = work(state_, 0, kRounds, outcome->told);
                outcome->reached = calls_failed();
                return result;
            },
            kLimitS));
        const bool ended_well = ended == 0 || ended == static_cast<int>(kNeverReady);
        if (ended_well && outcome->reached == 0) return false;

        ++totals_.runs;
        totals_.failures += static_cast<uint64_t>(outcome->reached);
        totals_.refused += outcome->told.refused;
        totals_.not_ready += ended == static_cast<int>(kNeverReady) ? 1 : 0;
        std::string what;
        if (!ended_well) what = "ENDED with " + std::to_string(ended);
        if (what.empty()) what = loss(look_at(state_, start.attempts), &outcome->told, 1, start.first_number);
        if (what.empty() && start.attempts > 1) what = cut_copies(state_, read_file(database_of(start.folder)));
        if (what.empty()) return true;
        ++totals_.findings;
        report(task_, state_,
               what + ": " + start.name + ", " + failure.name + " " + std::to_string(number) +
                   (from_then_on ? " and all later ones" : "") + " failing with errno " +
                   std::to_string(failure.error));
        return true;
    }

private:
    const Task& task_;
    Totals& totals_;
    const std::string state_;
};

std::vector<Start> make_starts(const std::string& folder)
{
    std::vector<Start> starts = {{"making", folder + "/nothing", 0, 1},
                                 {"damaged", folder + "/damaged", 0, 2},
                                 {"whole", folder + "/whole", 2, 1}};
    make_state(starts[2].folder, starts[2].first_number);
    copy_state(starts[2].folder, starts[1].folder);
    damage_state(starts[1].folder);
    copy_state(starts[2].folder, starts[0].folder);
    for (const char* log : {"", "-wal", "-shm"})
        std::remove((database_of(starts[0].folder) + log).c_str());
    return starts;
}

struct Row {
    const Start* start;
    const Failure* failure;
    bool from_then_on;
};

std::vector<Row> make_rows(const std::vector<Start>& starts)
{
    std::vector<Row> rows;
    for (const Failure& failure : kFailures) {
        for (const Start& start : starts) {
            rows.push_back({&start, &failure, false});
            // Interrupted for ever is no interruption.
            if (failure.error != EINTR) rows.push_back({&start, &failure, true});
        }
    }
    return rows;
}

// Fails the first call in each row, then the second, as long as there are any; a short run takes longer steps later on.
void take_turns(const Task& task, std::vector<Row> rows, int worker, Totals& totals)
{
    Turn turn(task, worker, totals);
    for (int number = 1; !rows.empty() && !task.is_over(); number += task.full ? 1 : 1 + number / 8) {
        const auto has_ended = [&](const Row& row) {
            return !turn.run(*row.start, *row.failure, number, row.from_then_on);
        };
        rows.erase(std::remove_if(rows.begin(), rows.end(), has_ended), rows.end());
        if (!rows.empty() && number > totals.last) totals.last = number;
    }
    if (!rows.empty()) totals.all = false;
}

}  // namespace

bool failing_calls(const Task& task)
{
    const std::vector<Start> starts = make_starts(task.folder);
    std::vector<Row> rows[kWorkers];
    size_t next = 0;
    for (const Row& row : make_rows(starts))
        rows[next++ % kWorkers].push_back(row);
    Shared<Totals> totals;
    std::vector<pid_t> workers;
    for (int worker = 0; worker < kWorkers; ++worker) {
        workers.push_back(start_process(
            [&] {
                send_stderr_to((task.folder + "/stderr" + std::to_string(worker)).c_str());
                take_turns(task, rows[worker], worker, *totals);
                return 0;
            },
            0));
    }
    bool good = true;
    for (const pid_t worker : workers)
        good = wait_for_process(worker) == 0 && good;
    std::printf(
        "calls: %llu runs with %llu failing calls, up to the one numbered %d of each kind (%s): %llu methods refused, "
        "%llu "
        "times not ready, %llu findings\n",
        static_cast<unsigned long long>(totals->runs), static_cast<unsigned long long>(totals->failures),
        totals->last.load(), totals->all ? "all there are" : "more there are, but no time",
        static_cast<unsigned long long>(totals->refused), static_cast<unsigned long long>(totals->not_ready),
        static_cast<unsigned long long>(totals->findings));
    return good && totals->findings == 0;
}

}  // namespace soak
