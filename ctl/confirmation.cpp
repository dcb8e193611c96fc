// What becomes of an apply that waits to be confirmed, or was cut off: confirm, pending, rollback.
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>

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
        tell("an apply is under way: " + lock.holder() + " holds the lock of " + folder);
        return kLocked;
    }
    const auto held = read_held(folder);
    if (!held || held->seconds == 0) {
        tell("nothing waits to be confirmed");
        return kDiffers;
    }
    if (seconds_left(*held) == 0) {
        tell("the time for confirming is over");
        return kDiffers;
    }
    forget_held(folder);
    return kDone;
}

int pending(const Options& options)
{
    const auto held = read_held(state_folder(options.state));
    if (!held) {
        std::puts("nothing is pending");
        return kDone;
    }
    if (held->seconds == 0)
        std::puts("an apply is under way, or was cut off");
    else if (seconds_left(*held) > 0)
        std::printf("an apply waits to be confirmed, %lld s are left\n", static_cast<long long>(seconds_left(*held)));
    else
        std::puts("an apply was not confirmed in time");
    return kDiffers;
}

int rollback(const Options& options)
{
    const std::string folder = state_folder(options.state);
    const Lock lock(folder);
    if (!lock.is_held()) {
        tell("an apply is under way: " + lock.holder() + " holds the lock of " + folder);
        return kLocked;
    }
    const auto held = read_held(folder);
    if (!held) {
        if (!options.if_pending) tell("nothing is pending");
        return options.if_pending ? kDone : kDiffers;
    }
    const Session session;
    if (!session.problem().empty()) {
        tell(session.problem());
        return kNoService;
    }
    signal(SIGHUP, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGINT, SIG_IGN);
    signal(SIGTERM, SIG_IGN);
    Progress progress;
    progress.tells = [](const std::string& line) { tell(line); };
    progress.ends = [](const Step& step, const Result& result, const std::string&) {
        for (const std::string& line : step.lines) {
            if (result.good()) std::printf("%s\n", line.c_str());
            if (!result.good()) tell("refused: " + line + ": " + in_words(result));
        }
    };
    const std::string problem = is_gre_copy_in(folder) ? restore_gre_copy(folder) : "";
    if (!problem.empty()) tell(problem);
    const Outcome outcome = go_back(held->document, progress);
    for (const std::string& line : outcome.left)
        tell("is not as it was: " + line);
    if (outcome.status == kDone) forget_held(folder);
    std::fflush(stdout);
    std::clearerr(stdout);
    return outcome.status;
}

int guarded(const Options& options, int (*work)(const Options&))
{
    try {
        return work(options);
    } catch (const Refusal& refusal) {
        tell(refusal.path + " cannot be read: " + in_words(refusal.result));
        return kNoService;
    } catch (const std::runtime_error& error) {
        tell(error.what());
        return kNotUndone;
    }
}

// Waits off the terminal until the time for confirming is over, and goes back then. It reads the held state each time:
// a confirmation takes it away, another apply sets its time anew.
int watch_over(const Options& options)
{
    signal(SIGHUP, SIG_IGN);
    for (;;) {
        const auto held = read_held(options.state);
        if (!held || held->seconds == 0) return kDone;
        if (seconds_left(*held) == 0) {
            const int status = guarded({options.state, true}, rollback);
            if (status != kLocked && status != kNoService) return status;
        }
        usleep(200000);
    }
}

CLI::App* add_verb(CLI::App& app, const char* name, const char* about, int (*work)(const Options&),
                   const std::shared_ptr<Options>& options, Work* chosen)
{
    CLI::App* const verb = app.add_subcommand(name, about);
    verb->add_option("--state", options->state, "Folder of the lock and the held state: one a module");
    verb->final_callback([=] { *chosen = [=] { return guarded(*options, work); }; });
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
    add_verb(app, "watchdog", "", watch_over, options, chosen)->group("");  // apply's own
}

}  // namespace ctl
