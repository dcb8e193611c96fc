// Processes that are killed while they make a state, set one aside, write and deliver: at any moment, and at any of the
// calls that change files.
#include <signal.h>
#include <time.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>

#include "calls.h"
#include "soak.h"
#include "state.h"

namespace soak {
namespace {

constexpr uint32_t kCrowd = 8;
constexpr uint32_t kRounds = 3;
constexpr unsigned int kLimitS = 60;
constexpr int kWorkers = 3;

enum Start { kNothing, kDamaged, kOtherVersion, kWhole, kStarts };

struct Counts {
    std::atomic<uint64_t> kills[kStarts] = {};
    std::atomic<uint64_t> rounds{0};
    std::atomic<uint64_t> copies{0};
    std::atomic<uint64_t> torn{0};
    std::atomic<uint64_t> lost{0};
    std::atomic<uint64_t> cut{0};
    std::atomic<uint64_t> other{0};  // crashed, refused, not ready
};

struct Templates {
    std::string whole;
    std::string damaged;
    std::string other_version;
    uint32_t first_number;  // of the whole one
};

Templates make_templates(const std::string& folder)
{
    const Templates made = {folder + "/whole", folder + "/damaged", folder + "/version", 5};
    make_state(made.whole, made.first_number);
    for (const std::string& other : {made.damaged, made.other_version})
        copy_state(made.whole, other);
    damage_state(made.damaged);
    give_other_version(made.other_version);
    return made;
}

// Evenly on a scale of powers: the first microseconds are as likely as the last milliseconds.
timespec random_moment(Random& random)
{
    const double exponent = std::uniform_real_distribution<double>(4.0, 7.2)(random);
    return {0, static_cast<long>(std::pow(10, exponent))};
}

void count(Counts& counts, const std::string& what)
{
    ++(what.rfind("TORN", 0) == 0 || what.rfind("DAMAGED", 0) == 0 ? counts.torn
       : what.rfind("LOST", 0) == 0                                ? counts.lost
       : what.rfind("CUT", 0) == 0                                 ? counts.cut
                                                                   : counts.other);
}

class Killer {
public:
    Killer(const Task& task, const Templates& templates, int number, Counts& counts)
        : task_(task),
          templates_(templates),
          counts_(counts),
          state_(task.folder + "/state" + std::to_string(number)),
          random_(task.seed * 1000 + static_cast<uint64_t>(number))
    {
    }

    void round()
    {
        constexpr Start kOften[] = {kNothing, kDamaged, kDamaged, kOtherVersion, kOtherVersion, kWhole};
        const Start start = kOften[pick(random_, std::size(kOften))];
        prepare(start);
        const std::string before = start == kDamaged || start == kOtherVersion ? read_file(database_of(state_)) : "";
        const uint32_t workers = pick(random_, 3) == 0 ? 1 : 2 + static_cast<uint32_t>(pick(random_, kCrowd - 1));
        Shared<std::array<Told, kCrowd>> told;
        const std::string ended = run(told->data(), workers, start);
        ++counts_.rounds;
        counts_.copies += set_aside(state_).size();

        for (const std::string& what : {ended, before.empty() ? "" : cut_copies(state_, before),
                                        loss(look_at(state_, before.empty() ? 1 : 2), told->data(), workers,
                                             start == kWhole ? templates_.first_number : 0)}) {
            if (what.empty()) continue;
            count(counts_, what);
            report(task_, state_, what);
        }
    }

private:
    void prepare(Start start)
    {
        const std::map<Start, std::string> from = {
            {kDamaged, templates_.damaged}, {kOtherVersion, templates_.other_version}, {kWhole, templates_.whole}};
        if (start == kNothing) {
            std::filesystem::remove_all(state_);
            std::filesystem::create_directory(state_);
        } else {
            copy_state(from.at(start), state_);
        }
    }

    std::string run(Told* told, uint32_t workers, Start start)
    {
        std::vector<pid_t> processes;
        enum How { kByTime, kByCalls, kNot, kHows };
        const auto how = static_cast<How>(pick(random_, kHows));
        for (uint32_t worker = 0; worker < workers; ++worker) {
            CallPlan plan;
            // A few of the calls beyond the last: some live on.
            if (how == kByCalls) plan.dies_at = 1 + static_cast<int>(pick(random_, start == kWhole ? 60 : 300));
            // While one lingers, others go past it.
            if (pick(random_, 2) == 0) plan.lingers = 1 + static_cast<uint32_t>(pick(random_, 1000000));
            processes.push_back(start_process(
                [&, plan] {
                    plan_calls(plan);
                    return work(state_, worker, kRounds, told[worker]);
                },
                kLimitS));
        }
        if (how == kByTime) {
            for (const pid_t process : processes) {
                const timespec moment = random_moment(random_);
                nanosleep(&moment, nullptr);
                kill(process, SIGKILL);
            }
        }
        std::string wrong;
        for (uint32_t worker = 0; worker < workers; ++worker) {
            const int ended = wait_for_process(processes[worker]);
            if (ended == 1000 + SIGKILL)
                ++counts_.kills[start];
            else if (ended != 0)
                wrong = "a process ended with " + std::to_string(ended);
            if (told[worker].refused != 0) wrong = "a method has failed";
        }
        return wrong;
    }

    const Task& task_;
    const Templates& templates_;
    Counts& counts_;
    const std::string state_;
    Random random_;
};

}  // namespace

bool kills(const Task& task)
{
    const Templates templates = make_templates(task.folder);
    Shared<Counts> counts;
    std::vector<pid_t> workers;
    for (int number = 0; number < kWorkers; ++number) {
        workers.push_back(start_process(
            [&] {
                send_stderr_to((task.folder + "/stderr" + std::to_string(number)).c_str());
                Killer killer(task, templates, number, *counts);
                while (!task.is_over())
                    killer.round();
                return 0;
            },
            0));
    }
    bool good = true;
    for (const pid_t worker : workers)
        good = wait_for_process(worker) == 0 && good;

    uint64_t all = 0;
    for (const auto& of_start : counts->kills)
        all += of_start;
    std::printf(
        "kills: %llu processes killed in %llu rounds (%llu making, %llu with a damaged and %llu with another version's "
        "database, %llu writing and delivering), %llu set aside: %llu torn, %llu lost, %llu cut, %llu else\n",
        static_cast<unsigned long long>(all), static_cast<unsigned long long>(counts->rounds),
        static_cast<unsigned long long>(counts->kills[kNothing]),
        static_cast<unsigned long long>(counts->kills[kDamaged]),
        static_cast<unsigned long long>(counts->kills[kOtherVersion]),
        static_cast<unsigned long long>(counts->kills[kWhole]), static_cast<unsigned long long>(counts->copies),
        static_cast<unsigned long long>(counts->torn), static_cast<unsigned long long>(counts->lost),
        static_cast<unsigned long long>(counts->cut), static_cast<unsigned long long>(counts->other));
    return good && counts->torn + counts->lost + counts->cut + counts->other == 0;
}

}  // namespace soak
