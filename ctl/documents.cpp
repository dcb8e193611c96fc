// The verbs about documents: show, validate, diff, apply.
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <stdexcept>

#include "apply.h"
#include "checks.h"
#include "document.h"
#include "exit_status.h"
#include "explain.h"
#include "gre.h"
#include "held.h"
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
        tell(file + ": " + problem);
        return {};
    }
    Problems problems;
    Value document = check_document(read_document(bytes, &problems), &problems);
    if (problems.empty()) return document;
    std::fputs(problem_lines(file, problems).c_str(), stderr);
    return {};
}

void tell_unread(const Module& module)
{
    for (const Unread& each : module.unread)
        tell(each.path + " is left out: " + in_words(each.result));
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

int show(const Options& options)
{
    for (const std::string& section : options.sections) {
        if (key_tree().child(section) != nullptr) continue;
        std::vector<std::string> known;
        for (const Node& node : key_tree().children)
            known.push_back(node.key);
        tell(section + ": " + no_such_key(section, known));
        return kWrong;
    }
    const Session session;
    if (!session.problem().empty()) {
        tell(session.problem());
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
    tell_unread(module);
    return is_refused(module) ? kNoService : kDone;
}

int validate(const Options& options)
{
    const Value document = document_of(options.file);
    if (document.is_nothing()) return kWrong;
    Problems problems;
    Problems warnings;
    check_plausible(
        document, [](const std::string&) { return true; }, &problems, &warnings);
    std::fputs(problem_lines(options.file, problems).c_str(), stderr);
    std::fputs(problem_lines(options.file, warnings).c_str(), stderr);
    if (!problems.empty()) return kWrong;
    if (options.print) print(options.json ? as_json(document) : as_yaml(document));
    return kDone;
}

// ---- diff, apply ----

std::string json_object(const std::vector<std::pair<std::string, std::string>>& members)
{
    std::string text;
    for (const auto& [key, value] : members)
        text += (text.empty() ? "{" : ", ") + quoted(key) + ": " + value;
    return text + "}\n";
}

std::string json_list(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : ", ") + quoted(line);
    return "[" + text + "]";
}

// A step that only finishes another one has no line.
std::vector<std::string> lines_of(const Step& step)
{
    return step.lines.empty() ? std::vector<std::string>{path_of(step) + ": written again"} : step.lines;
}

void print_plan(const Plan& plan, bool json)
{
    for (const Step& step : plan.steps) {
        if (json) {
            std::vector<std::pair<std::string, std::string>> members = {{"plan", json_list(lines_of(step))}};
            if (!step.interrupts.empty()) members.emplace_back("interrupts", quoted(step.interrupts));
            if (!step.not_undone.empty()) members.emplace_back("not_undone", quoted(step.not_undone));
            print(json_object(members));
        } else {
            for (const std::string& line : step.lines)
                print(line + "\n");
        }
    }
}

// What is to be known before the first change.
void tell_beforehand(const Plan& plan, const std::string& file)
{
    std::fputs(problem_lines(file, plan.warnings).c_str(), stderr);
    std::set<std::string> told;
    for (const Step& step : plan.steps) {
        for (const std::string& text :
             {step.interrupts, step.not_undone.empty() ? std::string() : "not undone: " + step.not_undone,
              step.kind == Step::Kind::kWrite ? step.row->note : std::string()})
            if (!text.empty() && told.insert(text).second) tell(text);
    }
}

// Returns why the document cannot be reached, kDone when it can.
int plan_status(const Plan& plan, const Module& module, const std::string& file)
{
    if (plan.problems.empty()) return kDone;
    std::fputs(problem_lines(file, plan.problems).c_str(), stderr);
    return is_refused(module) ? kNoService : kWrong;
}

int diff_of(const Value& document, const Options& options)
{
    const Session session;
    if (!session.problem().empty()) {
        tell(session.problem());
        return kNoService;
    }
    const Reach reach = options.exact ? Reach::kExact : Reach::kMerge;
    const Module module = read_for(document, reach);
    const Plan plan = make_plan(document, module, reach);
    const int status = plan_status(plan, module, options.file);
    if (status != kDone) return status;
    tell_beforehand(plan, options.file);
    print_plan(plan, options.json);
    return plan.steps.empty() ? kDone : kDiffers;
}

int diff(const Options& options)
{
    const Value document = document_of(options.file);
    return document.is_nothing() ? kWrong : diff_of(document, options);
}

volatile sig_atomic_t stop_wished = 0;
bool has_begun = false;  // changing the module

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

Progress progress_of(const Options& options)
{
    const bool shows = isatty(STDERR_FILENO) != 0 && !options.json;
    Progress progress;
    progress.is_stopped = [] { return stop_wished != 0; };
    progress.tells = [](const std::string& line) { tell(line); };
    if (shows) {
        progress.starts = [](const Step&, size_t number, size_t count) {
            std::fprintf(stderr, "\r%zu of %zu ", number, count);
            if (number == count) std::fputs("\r\033[K", stderr);
        };
    }
    const auto undoes = std::make_shared<bool>(false);
    progress.goes_back = [undoes] { *undoes = true; };
    progress.ends = [json = options.json, undoes](const Step& step, const Result& result, const std::string& note) {
        if (json) {
            std::vector<std::pair<std::string, std::string>> members = {
                {*undoes ? "undo" : "step", json_list(lines_of(step))},
                {"outcome", quoted(result.good() ? "done" : "refused")}};
            if (!result.good()) {
                members.emplace_back("function", quoted(result.function));
                members.emplace_back("code", std::to_string(result.code));
                members.emplace_back("words", quoted(in_words(result)));
            }
            if (!note.empty()) members.emplace_back("note", quoted(note));
            print(json_object(members));
        } else {
            const std::string before = *undoes ? "undo: " : "";
            for (const std::string& line : step.lines)
                if (result.good()) print(before + line + "\n");
            for (const std::string& line : lines_of(step))
                if (!result.good()) tell("refused: " + before + line + ": " + in_words(result));
            if (!note.empty()) tell(before + lines_of(step)[0] + ": " + note);
        }
        std::fflush(stdout);
    };
    return progress;
}

int end_with(const Outcome& outcome, const Options& options)
{
    for (const std::string& line : outcome.left)
        tell("is not as it should be: " + line);
    if (options.json) {
        print(json_object({{"status", std::to_string(outcome.status)}, {"left", json_list(outcome.left)}}));
    }
    return outcome.status;
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
    return std::any_of(plan.steps.begin(), plan.steps.end(),
                       [](const Step& step) { return step.wanted.map().count("gre.enabled") != 0; });
}

int apply(const Options& options)
{
    const Value document = document_of(options.file);
    if (document.is_nothing()) return kWrong;
    if (options.dry_run) {
        const int status = diff_of(document, options);
        return status == kDiffers ? kDone : status;
    }

    const std::string folder = state_folder(options.state);
    const Lock lock(folder);
    if (!lock.is_held()) {
        tell("an apply is under way: " + lock.holder() + " holds the lock of " + folder);
        return kLocked;
    }
    const std::optional<Held> earlier = read_held(folder);
    const bool confirms = options.confirm_within > 0;
    if (earlier && earlier->seconds > 0 && (!confirms || seconds_left(*earlier) == 0)) {
        tell(pending_problem(*earlier));
        return kLocked;
    }
    if (earlier && earlier->seconds == 0) tell("an apply was cut off; its state is kept as the one to go back to");

    const Session session;
    if (!session.problem().empty()) {
        tell(session.problem());
        return kNoService;
    }
    const Reach reach = options.exact ? Reach::kExact : Reach::kMerge;
    const bool was_cut_off = earlier && earlier->seconds == 0;
    const Module module = read_for(document, reach);
    const Plan plan = make_plan(document, module, reach);
    const int status = plan_status(plan, module, options.file);
    if (status != kDone) return status;
    tell_beforehand(plan, options.file);
    if (options.json) print_plan(plan, true);
    if (plan.steps.empty() && !(earlier && confirms)) {
        if (was_cut_off) forget_held(folder);
        if (options.json) return end_with({kDone, {}}, options);
        tell("nothing differs");
        return kDone;
    }

    // From here on the terminal and its signals end nothing.
    go_on_alone();
    const Value now = held_for(plan, module);
    if (changes_gre(plan) && (!earlier || !is_gre_copy_in(folder))) {
        const std::string problem = keep_gre_copy(folder);
        if (!problem.empty()) {
            tell(problem);
            return kRefused;
        }
    }
    Held held = {earlier ? held_for(plan, module, earlier->document) : now, boot_name(), 0, 0};
    if (confirms) {
        held.seconds = options.confirm_within;
        held.until_ms = boot_clock_ms() + options.confirm_within * 1000;
    }
    write_held(folder, held);
    if (confirms) start_watchdog(folder);
    has_begun = true;

    ApplyOptions how = {reach, !options.no_verify, options.keep_going};
    how.before_undo = [&] {
        stop_no_more();
        const std::string problem = changes_gre(plan) ? restore_gre_copy(folder) : "";
        if (!problem.empty()) tell(problem);
    };
    const Outcome outcome = carry_out(plan, document, was_cut_off ? held.document : now, how, progress_of(options));
    if (outcome.status == kDone && confirms) {
        held.until_ms = boot_clock_ms() + options.confirm_within * 1000;
        write_held(folder, held);
        tell("\"zr_nexactl confirm\" within " + std::to_string(options.confirm_within) + " s, or all is undone");
    } else if (outcome.is_back && earlier && !was_cut_off) {
        write_held(folder, *earlier);  // what waited before still waits
    } else if (outcome.status == kDone || outcome.is_back || (options.keep_going && !confirms)) {
        forget_held(folder);
    }
    const int ended = end_with(outcome, options);
    std::fflush(stdout);
    std::clearerr(stdout);  // nobody may be there any more to read it
    return ended;
}

// What goes wrong with the machine rather than with the module.
int guarded(const Work& work)
{
    try {
        const int status = work();
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) return status == kDone ? kNotUndone : status;
        return status;
    } catch (const Refusal& refusal) {
        tell(refusal.path + " cannot be read: " + in_words(refusal.result));
        return kNoService;
    } catch (const std::runtime_error& error) {
        tell(error.what());
        return has_begun ? kNotUndone : kRefused;
    }
}

void choose(Work* chosen, const std::shared_ptr<Options>& options, int (*work)(const Options&))
{
    *chosen = [options, work] { return guarded([options, work] { return work(*options); }); };
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
