// What becomes of an apply that waits to be confirmed, or was cut off: confirm, pending, rollback.
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>

#include "apply.h"
#include "exit_status.h"
#include "explain.h"
#include "gre.h"
#include "held.h"
#include "session.h"
#include "tell.h"
#include "verbs.h"

namespace ctl {
namespace {

struct Options {
    std::string state;
    bool if_pending = false;
};

int confirm(const Options& options)
{
    const std::string folder = state_folder(options.state);
    const Lock lock(folder);
    if (!lock.is_held()) {
        tell_problem(lock.holder());
        return kLocked;
    }
    const auto held = read_held(folder);
    if (!held) {
        tell("nothing waits to be confirmed");
        return kDiffers;
    }
    // What going back has left otherwise may be kept, too.
    if (held->seconds > 0 && seconds_left(*held) == 0 && held->left.empty()) {
        tell("the time for confirming is over: \"zr_nexactl rollback\"");
        return kDiffers;
    }
    forget_held(folder);
    return kDone;
}

int pending(const Options& options)
{
    const std::string folder = state_folder(options.state, false);
    const auto held = read_held(folder);
    if (!held) {
        std::puts("nothing is pending");
        return kDone;
    }
    const std::string holder = lock_holder(folder);
    if (!holder.empty())
        std::printf("an apply is under way: %s\n", holder.c_str());
    else if (held->seconds > 0 && seconds_left(*held) > 0)
        std::printf("an apply waits to be confirmed, %lld s are left\n", static_cast<long long>(seconds_left(*held)));
    else if (held->seconds > 0)
        std::puts("an apply was not confirmed in time");
    else
        std::puts(held->left.empty() ? "an apply was cut off" : "an apply has not come to its end");
    for (const std::string& line : held->left)
        std::printf("is not as it should be: %s\n", line.c_str());
    return kDiffers;
}

// With the lock.
int go_back_to(Held held, const std::string& folder)
{
    const Session session;
    if (!session.problem().empty()) {
        tell_problem(session.problem());
        return kNoService;
    }
    signal(SIGHUP, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGINT, SIG_IGN);
    signal(SIGTERM, SIG_IGN);
    std::set<std::string> told;
    Progress progress;
    progress.tells = [](const std::string& line) { tell(line); };
    progress.starts = [&told](const Step& step, size_t, size_t) {
        if (!step.interrupts.empty() && told.insert(step.interrupts).second) tell(step.interrupts);
    };
    progress.ends = [](const Step& step, const Result& result, const std::string&) {
        for (const std::string& line : step.lines) {
            if (result.good()) std::printf("%s\n", line.c_str());
            if (!result.good()) tell_problem("refused: " + line + ": " + in_words(result));
        }
        std::fflush(stdout);
    };
    begin_changing();
    const std::string problem = held.has_gre && is_gre_copy_in(folder) ? restore_gre_copy(folder) : "";
    Outcome outcome = go_back(held.document, progress, true);
    if (!problem.empty()) {
        outcome.left.push_back("gre: " + problem);
        outcome.status = kNotUndone;
    }
    for (const std::string& line : outcome.left)
        tell_problem("is not as it was: " + line);
    if (outcome.status == kDone) {
        forget_held(folder);
        return kDone;
    }
    held.left = outcome.left;
    write_held(folder, held);
    tell(kWaysOn);
    return outcome.status;
}

int rollback(const Options& options)
{
    const std::string folder = state_folder(options.state);
    const Lock lock(folder);
    if (!lock.is_held()) {
        tell_problem(lock.holder());
        return kLocked;
    }
    const auto held = read_held(folder);
    if (held) return go_back_to(*held, folder);
    if (!options.if_pending) tell("nothing is pending");
    return options.if_pending ? kDone : kDiffers;
}

// Goes back when the time is over, unless another apply has just set it anew.
int go_back_in_time(const std::string& folder)
{
    const Lock lock(folder);
    if (!lock.is_held()) return kLocked;
    const auto held = read_held(folder);
    if (!held || held->seconds == 0) return kDone;
    if (milliseconds_left(*held) > 0) return kLocked;
    tell("an apply was not confirmed in time; undoing it");
    const int status = go_back_to(*held, folder);
    if (status == kDone) tell("all is as it was before");
    return status;
}

constexpr int64_t kLookMs = 1000;

// Waits until the time for confirming is over, and goes back then. A confirmation takes the held state away, another
// apply sets the time anew: the file is looked at each second, and read when it is another one.
void watch_over(const std::string& folder)
{
    std::string seen;
    std::optional<Held> held;
    for (;;) {
        const std::string stamp = held_stamp(folder);
        if (stamp != seen) held = read_held_head(folder);
        seen = stamp;
        if (!held || held->seconds == 0) return;
        const int64_t left = milliseconds_left(*held);
        if (left == 0) {
            const int status = guarded([&folder] { return go_back_in_time(folder); }, kRefused);
            if (status != kLocked && status != kNoService) return;
        }
        usleep(static_cast<useconds_t>(1000 * (left == 0 ? kLookMs : std::min(left, kLookMs))));
    }
}

// Apply's own. Off its terminal, one a folder.
int watchdog(const Options& options)
{
    signal(SIGHUP, SIG_IGN);
    leave_the_caller();
    const std::string folder = state_folder(options.state);
    bool is_answered = false;
    for (;;) {
        {
            const Lock alone(folder, "/watchdog");
            if (!is_answered) answer_as_watchdog();
            is_answered = true;
            if (!alone.is_held()) return kDone;
            watch_over(folder);
        }
        // One that was started meanwhile has left the watch to this one.
        const auto held = read_held_head(folder);
        if (!held || held->seconds == 0 || milliseconds_left(*held) == 0) return kDone;
    }
}

CLI::App* add_verb(CLI::App& app, const char* name, const char* about, int (*work)(const Options&),
                   const std::shared_ptr<Options>& options, Work* chosen)
{
    CLI::App* const verb = app.add_subcommand(name, about);
    verb->add_option("--state", options->state, "Folder of the lock and the held state: one a module");
    const ExitStatus before = work == pending ? kNoService : kRefused;
    verb->final_callback([=] { *chosen = [=] { return guarded([=] { return work(*options); }, before); }; });
    return verb;
}

}  // namespace

void add_confirmation(CLI::App& app, Work* chosen)
{
    const auto options = std::make_shared<Options>();
    add_verb(app, "confirm", "Keeps what an apply with --confirm-within has changed", confirm, options, chosen);
    add_verb(app, "pending", "Says whether an apply waits to be confirmed, or was cut off", pending, options, chosen);
    add_verb(app, "rollback", "Goes back to the state before what is pending", rollback, options, chosen)
        ->add_flag("--if-pending", options->if_pending, "Says nothing when nothing is pending, for start-up scripts");
    add_verb(app, "watchdog", "", watchdog, options, chosen)->group("");  // apply's own
}

}  // namespace ctl
