// The verbs about documents: show, validate, diff, apply.
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "apply.h"
#include "checks.h"
#include "document.h"
#include "exit_status.h"
#include "explain.h"
#include "gre.h"
#include "held.h"
#include "json.h"
#include "plan.h"
#include "session.h"
#include "tell.h"
#include "tree.h"
#include "verbs.h"

namespace ctl {
namespace {

struct Options {
    std::string file;
    std::vector<std::string> sections;
    std::string state;
    int64_t confirm_within = 0;
    bool json = false;
    bool exact = false;
    bool dry_run = false;
    bool no_verify = false;
    bool keep_going = false;
    bool handles = false;
    bool print = false;
};

// What the last object of --json says; a document that was printed stands without one.
struct Ending {
    bool is_document = false;
    std::optional<std::vector<std::string>> left = {};  // of an apply that was carried out
};

void print(const std::string& text)
{
    std::fputs(text.c_str(), stdout);
}

// Reads and checks a document; with problems, which are told, it is nothing.
Value document_of(const std::string& file)
{
    std::string bytes;
    const std::string problem = read_file(file, &bytes);
    if (!problem.empty()) {
        tell_problem(file + ": " + problem);
        return {};
    }
    Problems problems;
    Value document = check_document(read_document(bytes, &problems), &problems);
    if (problems.empty()) return document;
    tell_problems(file, problems);
    return {};
}

// With the profile's label in place of its handle, as the document has it.
std::string labelled(const std::string& path)
{
    const std::string start = "profiles.";
    if (path.rfind(start, 0) != 0) return path;
    const size_t end = std::min(path.find('.', start.size()), path.size());
    const uint32_t handle = Value(path.substr(start.size(), end - start.size())).number();
    return handle == 0 ? path : start + profile_name(handle) + path.substr(end);
}

void tell_unread(const Module& module)
{
    for (const Unread& each : module.unread)
        tell(labelled(each.path) + " is left out: " + in_words(each.result));
}

bool is_refused(const Module& module)
{
    return std::any_of(module.unread.begin(), module.unread.end(), [](const Unread& each) { return !each.is_missing; });
}

// ---- show, validate ----

bool is_wished(const Row& row, const std::vector<std::string>& sections)
{
    if (sections.empty()) return true;
    const std::string path = record_path(row, "x");
    return std::any_of(sections.begin(), sections.end(), [&path](const std::string& section) {
        return path == section || path.rfind(section + ".", 0) == 0;
    });
}

int show(const Options& options, Ending* ending)
{
    for (const std::string& section : options.sections) {
        if (key_tree().child(section) != nullptr) continue;
        std::vector<std::string> known;
        for (const Node& node : key_tree().children)
            known.push_back(node.key);
        tell_problem(section + ": " + no_such_key(section, known));
        return kWrong;
    }
    const Session session;
    if (!session.problem().empty()) {
        tell_problem(session.problem());
        return kNoService;
    }
    Module module = read_lists();
    Wish wish;
    wish.row = [&options](const Row& row) { return is_wished(row, options.sections); };
    wish.scoped = [&options](const Row& row, uint32_t) { return is_wished(row, options.sections); };
    read_settings(wish, &module);
    Value document = as_document(module, {}, options.handles);
    if (!options.sections.empty()) {
        for (const Node& node : key_tree().children)
            if (std::find(options.sections.begin(), options.sections.end(), node.key) == options.sections.end())
                document.map().erase(node.key);
    }
    print(options.json ? as_json(document) : as_yaml(document));
    ending->is_document = true;
    tell_unread(module);
    return is_refused(module) ? kNoService : kDone;
}

Problems as_warnings(Problems warnings)
{
    for (Problem& each : warnings)
        each.path.insert(0, each.path.empty() ? "warning" : "warning: ");
    return warnings;
}

void tell_warnings(const std::string& file, const Problems& warnings, bool json)
{
    const std::string lines = problem_lines(file, as_warnings(warnings));
    std::fputs(lines.c_str(), stderr);
    if (!json) return;
    std::istringstream each(lines);
    for (std::string line; std::getline(each, line);)
        print(json_object({{"warning", ctl::quoted(line)}}));
}

int validate(const Options& options, Ending* ending)
{
    const Value document = document_of(options.file);
    if (document.is_nothing()) return kWrong;
    Problems problems;
    Problems warnings;
    check_plausible(
        document, [](const std::string&) { return true; }, &problems, &warnings);
    tell_problems(options.file, problems);
    tell_warnings(options.file, warnings, options.json && !options.print);
    if (!problems.empty()) return kWrong;
    if (options.print) print(options.json ? as_json(document) : as_yaml(document));
    ending->is_document = options.print;
    return kDone;
}

// ---- diff, apply ----

// A step that only finishes another one has no line.
std::vector<std::string> lines_of(const Step& step)
{
    return step.lines.empty() ? std::vector<std::string>{path_of(step) + ": written again"} : step.lines;
}

std::string note_of(const Step& step)
{
    return step.kind == Step::Kind::kWrite ? step.row->note : "";
}

void print_plan(const Plan& plan, bool json)
{
    for (const Step& step : plan.steps) {
        if (json) {
            JsonMembers members = {{"plan", json_list(lines_of(step))}};
            if (!step.interrupts.empty()) members.emplace_back("interrupts", quoted(step.interrupts));
            if (!step.not_undone.empty()) members.emplace_back("not_undone", quoted(step.not_undone));
            if (!note_of(step).empty()) members.emplace_back("note", quoted(note_of(step)));
            print(json_object(members));
        } else {
            for (const std::string& line : step.lines)
                print(line + "\n");
        }
    }
}

// What is to be known before the first change. What is interrupted says itself what it is.
void tell_beforehand(const Plan& plan, const std::string& file, bool json)
{
    tell_warnings(file, plan.warnings, json);
    std::set<std::string> told;
    const auto tell_once = [&told](const std::string& line) {
        if (told.insert(line).second) tell(line);
    };
    for (const Step& step : plan.steps) {
        if (!step.interrupts.empty()) tell_once(step.interrupts);
        if (!step.not_undone.empty()) tell_once(path_of(step) + ": not undone: " + step.not_undone);
        if (!note_of(step).empty()) tell_once(path_of(step) + ": " + note_of(step));
    }
}

// Returns why the document cannot be reached, kDone when it can.
int plan_status(const Plan& plan, const Module& module, const std::string& file)
{
    if (plan.problems.empty()) return kDone;
    tell_problems(file, plan.problems);
    return is_refused(module) ? kNoService : kWrong;
}

Reach reach_of(const Options& options)
{
    return options.exact ? Reach::kExact : Reach::kMerge;
}

// Reads what a document names and plans what it changes, and tells either why it cannot be reached, which is the
// status, or what is to be known beforehand.
int plan_for(const Value& document, const Options& options, Module* module, Plan* plan)
{
    *module = read_for(document, reach_of(options));
    *plan = make_plan(document, *module, reach_of(options));
    const int status = plan_status(*plan, *module, options.file);
    if (status == kDone) tell_beforehand(*plan, options.file, options.json);
    return status;
}

int diff_of(const Value& document, const Options& options)
{
    const Session session;
    if (!session.problem().empty()) {
        tell_problem(session.problem());
        return kNoService;
    }
    Module module;
    Plan plan;
    const int status = plan_for(document, options, &module, &plan);
    if (status != kDone) return status;
    print_plan(plan, options.json);
    return plan.steps.empty() ? kDone : kDiffers;
}

int diff(const Options& options, Ending*)
{
    const Value document = document_of(options.file);
    return document.is_nothing() ? kWrong : diff_of(document, options);
}

volatile sig_atomic_t stop_wished = 0;

void stop_no_more()
{
    signal(SIGINT, SIG_IGN);
    signal(SIGTERM, SIG_IGN);
}

void on_stop(int)
{
    stop_wished = 1;
    stop_no_more();  // a second one changes nothing
}

// The very step that cuts the caller off must not leave the rest undone.
void go_on_alone()
{
    struct sigaction stop = {};
    stop.sa_handler = on_stop;
    stop.sa_flags = SA_RESTART;
    sigaction(SIGINT, &stop, nullptr);
    sigaction(SIGTERM, &stop, nullptr);
    signal(SIGHUP, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
}

// How far an apply has come.
struct Way {
    bool has_begun = false;
    bool goes_back = false;
};

JsonMembers members_of(const Step& step, const Result& result, const std::string& note, bool undoes,
                       const std::string& refused)
{
    JsonMembers members = {{undoes ? "undo" : "step", json_list(lines_of(step))},
                           {"outcome", quoted(result.good() ? "done" : refused)}};
    if (!result.good()) {
        members.emplace_back("function", quoted(result.function));
        members.emplace_back("code", std::to_string(result.code));
        members.emplace_back("words", quoted(in_words(result)));
    }
    if (!note.empty()) members.emplace_back("note", quoted(note));
    return members;
}

Progress progress_of(const Options& options, Way* way)
{
    const bool shows = isatty(STDERR_FILENO) != 0 && !options.json;
    Progress progress;
    progress.is_stopped = [] { return stop_wished != 0; };
    progress.tells = [](const std::string& line) { tell(line); };
    progress.starts = [shows, way](const Step&, size_t number, size_t count) {
        way->has_begun = true;
        begin_changing();
        if (shows) std::fprintf(stderr, "\r%zu of %zu ", number, count);
    };
    progress.goes_back = [way] { way->goes_back = true; };
    progress.ends = [json = options.json, shows, way](const Step& step, const Result& result, const std::string& note) {
        if (shows) std::fputs("\r\033[K", stderr);  // the step's line takes its place
        const bool undoes = way->goes_back;
        // The platform gives a step up when a signal comes.
        const std::string refused = stop_wished != 0 && !undoes ? "stopped" : "refused";
        const std::string before = undoes ? "undo: " : "";
        if (json) print(json_object(members_of(step, result, note, undoes, refused)));
        if (result.good()) {
            for (const std::string& line : step.lines)
                if (!json) print(before + line + "\n");
        } else {
            const std::string start = refused + ": " + before;
            const std::string end = ": " + in_words(result);
            for (const std::string& line : lines_of(step))
                tell_problem(std::string(start).append(line).append(end));
        }
        if (!note.empty() && !json) tell(before + lines_of(step)[0] + ": " + note);
        std::fflush(stdout);
    };
    return progress;
}

std::string pending_problem(const Held& held)
{
    const int64_t left = seconds_left(held);
    if (left > 0)
        return "an apply waits to be confirmed, " + std::to_string(left) +
               " s are left: \"zr_nexactl confirm\", or \"zr_nexactl rollback\"";
    return "an apply was not confirmed in time: \"zr_nexactl rollback\"";
}

bool changes_gre(const Plan& plan)
{
    return std::any_of(plan.steps.begin(), plan.steps.end(), [](const Step& step) { return step.row->needs_copy; });
}

// A state that waits to be confirmed keeps the apply from being done, unless it is a follow-up.
bool is_in_the_way(const std::optional<Held>& earlier, const Options& options)
{
    return earlier && earlier->seconds > 0 && (options.confirm_within == 0 || seconds_left(*earlier) == 0);
}

int dry_run(const Value& document, const Options& options)
{
    const std::optional<Held> earlier = read_held(state_folder(options.state, false));
    if (is_in_the_way(earlier, options)) tell("it would not be done now: " + pending_problem(*earlier));
    const int status = diff_of(document, options);
    return status == kDiffers ? kDone : status;
}

// What is held is again what was before this apply.
void put_back(const std::optional<Held>& earlier, const std::string& folder)
{
    if (!earlier) return forget_held(folder);
    write_held(folder, *earlier);
    if (!earlier->has_gre) drop_gre_copy(folder);
}

// What is to be there before the first change; with a problem, which is told, nothing is changed.
bool is_prepared(const Held& held, const std::optional<Held>& earlier, const std::string& folder, bool copies_gre)
{
    std::string problem = copies_gre ? keep_gre_copy(folder) : "";
    if (problem.empty()) {
        try {
            write_held(folder, held);
            if (held.seconds > 0) start_watchdog(folder);
            return true;
        } catch (const UnusableFolder&) {
            throw;
        } catch (const std::runtime_error& error) {
            problem = error.what();
        }
    }
    tell_problem(problem);
    put_back(earlier, folder);
    return false;
}

void set_clock(Held* held, int64_t seconds)
{
    held->seconds = seconds;
    held->until_ms = seconds > 0 ? boot_clock_ms() + seconds * 1000 : 0;
}

constexpr const char* kCutOffHeld = "what was before the apply that was cut off is still held: ";

// What becomes of the held state. That of an apply that was cut off ends only with one that was done and read back
// wholly, or with the module as it was.
void settle(Held held, const std::optional<Held>& earlier, const std::string& folder, const Options& options,
            const Way& way, const Outcome& outcome)
{
    const bool confirms = options.confirm_within > 0;
    const bool was_waiting = earlier && earlier->seconds > 0;
    const bool was_cut_off = earlier && !was_waiting;
    if (outcome.status != kDone && !way.has_begun) {
        put_back(earlier, folder);
        if (was_cut_off) tell(kCutOffHeld + std::string(kWaysOn));
        return;
    }
    if (way.goes_back && outcome.is_back) {
        if (was_cut_off) tell("all is as it was before the apply that was cut off");
        return put_back(was_waiting ? earlier : std::nullopt, folder);
    }
    const bool is_whole = outcome.status == kDone && !(was_cut_off && options.no_verify);
    const bool is_as_wished = options.keep_going && !way.goes_back && !was_cut_off;
    if (!confirms && (is_whole || is_as_wished)) {
        if (was_cut_off) tell("what was before the apply that was cut off is held no longer");
        return forget_held(folder);
    }
    set_clock(&held, options.confirm_within);
    if (outcome.status == kDone)
        held.unnamed = {};
    else
        held.left = outcome.left;
    write_held(folder, held);
    if (confirms)
        tell("\"zr_nexactl confirm\" within " + std::to_string(options.confirm_within) + " s, or all is undone");
    else
        tell((was_cut_off ? kCutOffHeld : "what was before is still held: ") + std::string(kWaysOn));
}

// What an apply that was cut off may have left changed though no document names it, as it was, and as it is what may be
// stored and not in use. A LAN that is away comes back.
Value to_put_back(const Value& unnamed, const Held& held)
{
    Value document = unnamed;
    const Value there = read_lists().tree.child("lans");
    for (const auto& [id, lan] : unnamed.child("lans").map()) {
        const Value& vlan = held.document.child("lans").child(id).child("vlan");
        if (there.map().count(id) == 0 && !vlan.is_nothing()) document.make("lans").map()[id].make("vlan") = vlan;
    }
    if (held.seconds > 0) return document;
    for (const auto& [id, lan] : held.document.child("lans").map()) {
        for (const Row* row : rows_of(Scope::kLan)) {
            if (!row->is_stored_first || there.map().count(id) == 0 || !is_named(*row, lan)) continue;
            Value record;
            if (is_named(*row, document.child("lans").child(id))) continue;
            if (read_record(*row, Value(id).number(), &record).good())
                put_record(*row, record, &make_instance(&document, Scope::kLan, id));
        }
    }
    return document;
}

bool is_as_it_was(const Value& unnamed, const Held& held)
{
    const Value document = to_put_back(unnamed, held);
    return document.is_nothing() ||
           make_plan(document, read_for(document, Reach::kBack), Reach::kBack, true, true).steps.empty();
}

void put_back_unnamed(const Value& unnamed, const Held& held, Progress progress, Outcome* outcome)
{
    progress.goes_back = nullptr;  // the way leads on
    const Outcome rest = go_back(to_put_back(unnamed, held), progress, true);
    outcome->left = rest.left;
    outcome->status = rest.status;
}

int apply(const Options& options, Ending* ending)
{
    const Value document = document_of(options.file);
    if (document.is_nothing()) return kWrong;
    if (options.dry_run) return dry_run(document, options);

    const std::string folder = state_folder(options.state);
    const Lock lock(folder);
    if (!lock.is_held()) {
        tell_problem(lock.holder());
        return kLocked;
    }
    const std::optional<Held> earlier = read_held(folder);
    if (is_in_the_way(earlier, options)) {
        tell_problem(pending_problem(*earlier));
        return kLocked;
    }
    const bool was_cut_off = earlier && earlier->seconds == 0;
    if (was_cut_off)
        tell(std::string(earlier->left.empty() ? "an apply was cut off" : "an apply has not come to its end") +
             "; its state is kept as the one to go back to");
    if (!earlier) drop_gre_copy(folder);  // of an apply that was killed

    const Session session;
    if (!session.problem().empty()) {
        tell_problem(session.problem());
        return kNoService;
    }
    const Reach reach = reach_of(options);
    Module module;
    Plan plan;
    const int status = plan_for(document, options, &module, &plan);
    if (status != kDone) return status;
    if (options.json) print_plan(plan, true);
    const bool confirms = options.confirm_within > 0;
    const Value unnamed = earlier ? unnamed_in(earlier->unnamed, plan, document, reach) : Value();
    const bool is_rest_there = !earlier || is_as_it_was(unnamed, *earlier);
    if (plan.steps.empty() && !(earlier && confirms) && is_rest_there) {
        if (!options.json) tell("nothing differs");
        if (was_cut_off) tell(kCutOffHeld + std::string(kWaysOn));
        ending->left.emplace();
        return kDone;
    }

    // From here on the terminal and its signals end nothing.
    go_on_alone();
    const Value now = held_for(plan, module);
    const bool copies_gre = changes_gre(plan) && (!earlier || !earlier->has_gre);
    Held held;
    held.document = earlier ? held_for(plan, module, earlier->document) : now;
    held.boot = boot_name();
    held.unnamed = unnamed_in(may_be_left(now), plan, document, reach, unnamed);
    held.has_gre = copies_gre || (earlier && earlier->has_gre);
    set_clock(&held, options.confirm_within);
    if (!is_prepared(held, earlier, folder, copies_gre)) return kRefused;

    ApplyOptions how = {reach, !options.no_verify, options.keep_going};
    how.writes_again = was_cut_off;
    how.before_undo = [&] {
        stop_no_more();
        // In a follow-up the copy is of an earlier state than the one to go back to.
        const bool is_of_before = copies_gre || (was_cut_off && held.has_gre);
        const std::string problem = is_of_before ? restore_gre_copy(folder) : "";
        if (!problem.empty()) tell_problem(problem);
    };
    Way way;
    const Progress progress = progress_of(options, &way);
    Outcome outcome = carry_out(plan, document, was_cut_off ? held.document : now, how, progress);
    if (outcome.status == kDone && !is_rest_there) put_back_unnamed(unnamed, *earlier, progress, &outcome);
    if (stop_wished != 0 && !way.goes_back && way.has_begun) tell("the wish to stop came when all was done");
    for (const std::string& line : outcome.left)
        tell_problem("is not as it should be: " + line);
    ending->left = outcome.left;
    settle(held, earlier, folder, options, way, outcome);
    return outcome.status;
}

using DocumentWork = int (*)(const Options&, Ending*);

// With --json it ends with an object on every way out.
int run(const Options& options, DocumentWork work)
{
    Ending ending;
    const int status = guarded([&] { return work(options, &ending); }, work == apply ? kRefused : kNoService);
    if (!options.json || ending.is_document) return status;
    if (ending.left)
        print(json_object({{"status", std::to_string(status)},
                           {"left", json_list(*ending.left)},
                           {"problems", json_list(told_problems())}}));
    else
        print(json_ending(status));
    return status;
}

void choose(Work* chosen, const std::shared_ptr<Options>& options, DocumentWork work)
{
    *chosen = [options, work] { return run(*options, work); };
}

void add_file(CLI::App* verb, const std::shared_ptr<Options>& options)
{
    verb->add_option("FILE", options->file, "The document; - for standard input")->required();
}

void add_json(CLI::App* verb, const std::shared_ptr<Options>& options, const char* about)
{
    verb->add_flag("--json", options->json, about);
}

}  // namespace

void add_show(CLI::App& app, Work* chosen)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const verb = app.add_subcommand("show", "The configuration, as a document that apply takes");
    verb->add_option("SECTION", options->sections, "Only these sections");
    verb->add_flag("--handles", options->handles, "With the handles of all profiles");
    add_json(verb, options, "As JSON");
    verb->final_callback([=] { choose(chosen, options, show); });
}

void add_validate(CLI::App& app, Work* chosen)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const verb = app.add_subcommand("validate", "Checks a document; asks no module");
    add_file(verb, options);
    verb->add_flag("--print", options->print, "Prints its normal form");
    add_json(verb, options, "Prints it as JSON");
    verb->final_callback([=] { choose(chosen, options, validate); });
}

void add_diff_and_apply(CLI::App& app, Work* chosen)
{
    const auto options = std::make_shared<Options>();
    const char* const exact = "What a section of the document does not name goes";
    CLI::App* const differs = app.add_subcommand("diff", "What apply would do, a line a change");
    add_file(differs, options);
    differs->add_flag("--exact", options->exact, exact);
    add_json(differs, options, "An object a step");
    differs->final_callback([=] { choose(chosen, options, diff); });

    CLI::App* const applies = app.add_subcommand("apply", "Makes the module what a document says");
    add_file(applies, options);
    applies->add_flag("--exact", options->exact, exact);
    applies->add_flag("--dry-run", options->dry_run, "Changes nothing; says what would be done");
    applies->add_flag("--no-verify", options->no_verify, "Does not read back what was changed");
    applies->add_flag("--keep-going", options->keep_going, "After a refusal does the rest, and undoes nothing");
    applies
        ->add_option("--confirm-within", options->confirm_within,
                     "Undoes all when \"zr_nexactl confirm\" does not come within so many seconds")
        ->check(CLI::Range(1, 86400));
    applies->add_option("--state", options->state, "Folder of the lock and the held state: one a module");
    add_json(applies, options, "An object a step, and the status");
    applies->final_callback([=] { choose(chosen, options, apply); });
}

}  // namespace ctl
