// What is done and is no setting: restoring the factory configuration, resetting counts.
#include <zr_nexa/wan_connection.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "exit_status.h"
#include "explain.h"
#include "held.h"
#include "session.h"
#include "tell.h"
#include "verbs.h"

namespace ctl {
namespace {

// CALL wants an argument for its dots.
Result call_plain(uint32_t (*function)(), const char* name)
{
    return {function(), name};
}

int done(const std::function<Result()>& action)
{
    const Session session;
    if (!session.problem().empty()) {
        tell_problem(session.problem());
        return kNoService;
    }
    const Result result = action();
    if (result.good()) return kDone;
    tell_problem(in_words(result));
    return result.code == ZR_NEXA_ERR_NO_SESSION ? kNoService : kRefused;
}

// There is nothing to go back to any more.
int restore_factory(const std::string& state)
{
    const std::string folder = state_folder(state);
    const Lock lock(folder);
    if (!lock.is_held()) {
        tell_problem(lock.holder());
        return kLocked;
    }
    const int status = done([] {
        begin_changing();
        return call_plain(NAMED(zr_nexa_general_restore_nexa_v1));
    });
    if (status == kDone) forget_held(folder);
    return status;
}

}  // namespace

void add_actions(CLI::App& app, Work* chosen)
{
    CLI::App* const restore = app.add_subcommand("restore", "Put everything back to the factory's settings");
    restore->add_flag("--yes", "It cannot be undone")->required();
    const auto state = std::make_shared<std::string>();
    restore->add_option("--state", *state, "Folder of the lock and the held state: one a module");
    restore->final_callback(
        [=] { *chosen = [=] { return guarded([=] { return restore_factory(*state); }, kRefused); }; });

    CLI::App* const reset = app.add_subcommand("reset", "Set counts back to zero")->require_subcommand(1);
    CLI::App* const lan = reset->add_subcommand("lan-statistics", "The LAN's packet counts");
    lan->final_callback(
        [=] { *chosen = [] { return done([] { return call_plain(NAMED(zr_nexa_lan_packetstats_reset_v1)); }); }; });

    CLI::App* const wan = reset->add_subcommand("wan-statistics", "A profile's traffic counts");
    const auto handle = std::make_shared<uint32_t>(0);
    add_profile(wan, "PROFILE", handle.get(), "Its handle, or profile-<handle>")->required();
    wan->final_callback([=] {
        *chosen = [=] {
            return done([=] { return CALL(zr_nexa_wan_statistics_reset_v1, *handle, ZR_NEXA_WAN_IP_ANY); });
        };
    });
}

}  // namespace ctl
