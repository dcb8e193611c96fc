// Entry of zr_nexactl: its words and how it ends.
#include <fcntl.h>
#include <unistd.h>
#include <zr_nexa/base.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>

#include "exit_status.h"
#include "tell.h"
#include "verbs.h"

namespace {

// In the order in which the help lists them.
constexpr void (*kVerbs[])(CLI::App&, ctl::Work*) = {
    ctl::add_show,    ctl::add_validate, ctl::add_schema,  ctl::add_diff_and_apply, ctl::add_confirmation,
    ctl::add_status,  ctl::add_metrics,  ctl::add_connect, ctl::add_watch,          ctl::add_run,
    ctl::add_explain, ctl::add_actions,  ctl::add_keys,
};

std::string exit_statuses()
{
    std::string text = "Exit statuses:";
    int status = 0;
    for (const char* words : ctl::kExitStatuses)
        text += "\n  " + std::to_string(status++) + "  " + words;
    return text;
}

std::string version()
{
    return "zr_nexactl " + std::to_string(ZR_NEXA_VERSION_MAJOR) + "." + std::to_string(ZR_NEXA_VERSION_MINOR) + "." +
           std::to_string(ZR_NEXA_VERSION_PATCH);
}

// On one line. The parser tells of a verb that is missing before it tells of the word in its place.
std::string problem_of(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining(true);
    std::string text = error.what();
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr && !unknown.empty())
        text = "\"" + unknown.front() + "\" is no word that is known here";
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

int run(int argc, char** argv)
{
    CLI::App app("A module's configuration and what it does", "zr_nexactl");
    ctl::Work work;
    app.require_subcommand(1);
    app.set_version_flag("--version", version());
    app.footer(exit_statuses());
    for (const auto add : kVerbs)
        add(app, &work);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        ctl::tell(problem_of(app, error) + "; see --help");
        return ctl::kWrong;
    }
    return work();
}

// A descriptor that is closed would be given to the lock or the held state, and printed into. For reading only: what is
// printed to a closed one fails.
void open_closed_descriptors()
{
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd)
        if (fcntl(fd, F_GETFD) < 0 && open("/dev/null", O_RDONLY) < 0) _exit(ctl::kNoService);
}

}  // namespace

int main(int argc, char** argv)
{
    open_closed_descriptors();
    return ctl::guarded([=] { return run(argc, argv); }, ctl::kNoService);
}
