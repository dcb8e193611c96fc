// The verbs of zr_nexactl, a source each. An add_... function adds a verb's words; when they are parsed, its work is
// chosen, which ends with an exit status.
#ifndef ZR_NEXA_CTL_VERBS_H
#define ZR_NEXA_CTL_VERBS_H

#include <cstdint>
#include <functional>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace ctl {

using Work = std::function<int()>;

constexpr double kMostSeconds = 1e9;  // that a verb waits

void add_show(CLI::App& app, Work* chosen);
void add_diff_and_apply(CLI::App& app, Work* chosen);
void add_confirmation(CLI::App& app, Work* chosen);  // confirm, pending, rollback
void add_validate(CLI::App& app, Work* chosen);
void add_schema(CLI::App& app, Work* chosen);
void add_keys(CLI::App& app, Work* chosen);  // for the page of keys
void add_status(CLI::App& app, Work* chosen);
void add_metrics(CLI::App& app, Work* chosen);
void add_connect(CLI::App& app, Work* chosen);  // connect, disconnect
void add_watch(CLI::App& app, Work* chosen);
void add_run(CLI::App& app, Work* chosen);
void add_explain(CLI::App& app, Work* chosen);
void add_actions(CLI::App& app, Work* chosen);  // restore, reset

// An option or word that names a profile: its handle, or profile-<handle>.
CLI::Option* add_profile(CLI::App* verb, const char* name, uint32_t* handle, const char* about);

}  // namespace ctl

#endif
