// Makes things happen at the host platform that on a module come from outside. The words are in provocations.cpp.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "events.h"
#include "provocations.h"
#include "scenario.h"
#include "service.h"
#include "signals.h"
#include "state_file.h"
#include "state_place.h"
#include "store.h"

namespace {

using mobile_ap::DatabaseError;
using mobile_ap::Store;

constexpr const char* kExamples = R"(
Examples:
  mobile_ap_ctl call drop 1 --reason 6:36       the network ends the calls of profile 1
  mobile_ap_ctl call refuse 1 --times 3         the next three connects fail
  mobile_ap_ctl call refuse 1 disconnect        the next disconnect fails
  mobile_ap_ctl call slow 1 1500                connecting takes a second and a half from now on
  mobile_ap_ctl service restart 5               all calls end, and nothing answers for five seconds
  mobile_ap_ctl device join 02:00:00:00:00:07 192.168.225.21 laptop
  mobile_ap_ctl play bad_day.txt                the lines of a file, each at its time

A scenario's line is a time and the words of a command:
  0      call slow 1 800
  2s     call drop 1 --family 4                 # seen by every open session
  2500ms service away 10
Nothing waits for these times: they stand in the state, and whoever looks next finds them done.

Works on the state that MOBILE_AP_STATE names, as all sessions do. Statuses: 0 done, 1 not done, 2 wrong words.)";

// Opens the state, with nothing overdue, and runs work as one transaction on it. Throws what open and work throw.
void change_state(const std::function<void(Store&)>& work)
{
    const mobile_ap::SignalsHeld held;
    const mobile_ap::StatePlace place = mobile_ap::find_state_place();
    Store db;
    const std::string problem = place.problem.empty() ? mobile_ap::open_state(db, place.path) : place.problem;
    if (!problem.empty()) throw DatabaseError{SQLITE_CANTOPEN, "mobile-AP state " + place.path + ": " + problem};
    try {
        mobile_ap::on_current_state(db, mobile_ap::Access::kWrite, [&](mobile_ap::Transaction& transaction) {
            work(db);
            transaction.commit();
        });
    } catch (const DatabaseError& error) {
        throw DatabaseError{error.code, "mobile-AP state " + db.path() + ": " + error.reason};
    }
}

// What concerns the service itself is done while it is away, too; all else waits for its return.
void provoke(const mobile_ap::Provocation& provocation, const std::vector<std::string>& words)
{
    std::string told;
    change_state([&](Store& db) {
        const int64_t now = mobile_ap::now_ms();
        if (mobile_ap::is_away(db) && words.front() != "service") {
            mobile_ap::schedule(db, now, words);
            told = "the service is away; this happens when it is back\n";
        } else {
            told = provocation.carry_out(db, now);
        }
    });
    std::fputs(told.c_str(), stdout);
}

void play(const std::string& path)
{
    std::ifstream file(path);
    if (!file) throw mobile_ap::ProvocationError{path + ": cannot be read"};
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::vector<mobile_ap::ScenarioEvent> events;
    try {
        events = mobile_ap::read_scenario(text);
    } catch (const mobile_ap::ProvocationError& error) {
        throw mobile_ap::ProvocationError{path + ": " + error.reason};
    }
    change_state([&](Store& db) {
        const int64_t start = mobile_ap::now_ms();
        for (const mobile_ap::ScenarioEvent& event : events)
            mobile_ap::schedule(db, start + event.after_ms, event.words);
    });
    std::printf("events to come: %zu\n", events.size());
}

void forget()
{
    int count = 0;
    change_state([&](Store& db) { count = mobile_ap::forget_events(db); });
    std::printf("events taken back: %d\n", count);
}

}  // namespace

int main(int argc, char** argv)
try {
    CLI::App app("What happens around the host platform, on demand", "mobile_ap_ctl");
    app.require_subcommand(1);
    mobile_ap::Provocation chosen;
    mobile_ap::add_provocations(app, &chosen);

    std::string path;
    CLI::App* plays = app.add_subcommand("play", "Let the lines of a scenario file happen, each at its time");
    plays->add_option("file", path, "The file")->required()->check(CLI::ExistingFile);
    CLI::App* forgets = app.add_subcommand("forget", "Take back all that is still to come");
    app.footer(kExamples);  // after the subcommands, which would take it over

    const std::vector<std::string> words(argv + 1, argv + argc);
    mobile_ap::check_words(words);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        throw mobile_ap::ProvocationError{mobile_ap::parse_problem(app, error) + "; see --help"};
    }
    if (plays->parsed())
        play(path);
    else if (forgets->parsed())
        forget();
    else
        provoke(chosen, words);
    return 0;
} catch (const mobile_ap::ProvocationError& error) {
    std::fprintf(stderr, "mobile_ap_ctl: %s\n", error.reason.c_str());
    return 2;
} catch (const mobile_ap::Ending& refusal) {
    std::fprintf(stderr, "mobile_ap_ctl: %s\n", mobile_ap::refusal_text(refusal.word).c_str());
    return 1;
} catch (const DatabaseError& error) {
    std::fprintf(stderr, "mobile_ap_ctl: %s\n", error.reason.c_str());
    return 1;
} catch (const std::exception& error) {
    std::fprintf(stderr, "mobile_ap_ctl: %s\n", error.what());
    return 1;
}
