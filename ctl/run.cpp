// The fixed command's own words and printed bytes, without its pause and with a status that says how it went.
#include <command_table.h>
#include <dispatch.h>
#include <menu.h>
#include <signals.h>
#include <zr_nexa_client_api.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "exit_status.h"
#include "verbs.h"

namespace ctl {
namespace {

constexpr int kNotAccepted = 65535;

void ignore_indication(uint32_t, uint32_t, const void*, ...) {}

// Whether the request was done is not known then.
void on_signal(int)
{
    cli::ignore_ending_signals();
    zr_nexa_client_uninit();
    exit(kNotUndone);
}

int status_of(int code)
{
    switch (code) {
        case 0:
            return kDone;
        case kNotAccepted:
            return kWrong;
        case ZR_NEXA_ERR_NO_SESSION:
            return kNoService;
        default:
            return kNotUndone;
    }
}

int run(std::vector<std::string> words)
{
    words.insert(words.begin(), "zr_nexa");
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    const int argc = static_cast<int>(words.size());

    if (argc <= 2) {
        cli::zr_nexa_print_menu(argc, argv.data());
        return argc == 2 && cli::find_category(argv[1]) == nullptr ? kWrong : kDone;
    }
    cli::own_standard_output();
    signal(SIGTERM, on_signal);
    signal(SIGINT, on_signal);
    zr_nexa_client_init(ignore_indication);
    const int code = cli::zr_nexa_dispatch(argc, argv.data());
    zr_nexa_client_uninit();
    cli::ignore_ending_signals();
    return status_of(code);
}

}  // namespace

void add_run(CLI::App& app, Work* chosen)
{
    CLI::App* const verb =
        app.add_subcommand("run", "The words of the command zr_nexa, with a status that says how it went");
    verb->prefix_command();
    verb->footer(
        "zr_nexactl run CATEGORY SETTING ...: without a setting, the menus\n"
        "\n"
        "Exit statuses:\n"
        "  0  done, or a usage text or a menu\n"
        "  2  words that nobody knows, or a setting without a handler\n"
        "  3  no session\n"
        "  5  refused with any other code, or ended by a signal: what was done is not known");
    verb->final_callback([=] { *chosen = [=] { return run(verb->remaining()); }; });
}

}  // namespace ctl
