#include "apply.h"

#include <unistd.h>
#include <zr_nexa/wan_connection.h>

#include <algorithm>

#include "exit_status.h"
#include "explain.h"
#include "lan_vlan.h"
#include "tree.h"
#include "wan_profile.h"

namespace ctl {
namespace {

constexpr uint32_t kFirstStep = 0x1000;  // results below are the interface's own, or a service's bare word

class Executor {
public:
    Executor(const Plan& plan, Reach reach) : handles_(plan.handles), reach_(reach) {}

    // Does one step. A bare word may be a success, and a refusal may have done a part: what is there now is looked at.
    Result perform(const Step& step, std::string* note)
    {
        Result result = call(step);
        if (result.good()) return result;
        const auto& done = step.row->done_codes;
        if (std::find(done.begin(), done.end(), result.code) != done.end()) {
            *note = step.row->done_note.empty() ? in_words(result) : step.row->done_note;
            return {};
        }
        if (result.words.empty() && result.code < kFirstStep && is_as_wanted(step)) {
            *note = "done, with " + in_words(result);
            return {};
        }
        return result;
    }

private:
    uint32_t id_of(const Step& step) const
    {
        if (step.row->scope == Scope::kModule) return 0;
        if (step.row->scope == Scope::kLan) return Value(step.name).number();
        const auto found = handles_.find(step.name);
        return found == handles_.end() ? 0 : found->second;
    }

    // Labels as the handles that the interface wants.
    Value with_handles(const Step& step, const Value& record) const
    {
        Value known = record;
        for (const Field& field : step.row->fields) {
            if (field.type.kind != Type::Kind::kProfile || !known.map().count(field.key)) continue;
            const auto found = handles_.find(known.child(field.key).text());
            if (found != handles_.end()) known.map()[field.key] = std::to_string(found->second);
        }
        return known;
    }

    Result call(const Step& step)
    {
        const Row& row = *step.row;
        const uint32_t id = id_of(step);
        const bool is_vlan = row.is_scope && row.scope == Scope::kLan;
        const bool is_dial = row.is_scope && row.scope == Scope::kProfile;
        switch (step.kind) {
            case Step::Kind::kAdd:
                if (is_vlan) return add_vlan(id, step.wanted);
                if (!is_dial) return row.add(id, step.key, step.wanted);
                return add(step);
            case Step::Kind::kRemove:
                if (is_vlan) return remove_vlan(id, step.present);
                if (is_dial) return remove(id);
                return row.remove(id, step.key, step.present);
            case Step::Kind::kChange:
                return row.change(id, step.key, step.wanted, step.present);
            case Step::Kind::kWrite:
                return is_dial ? change_dial(id, step.wanted, step.present) : write(step, id);
        }
        return {};
    }

    Result add(const Step& step)
    {
        uint32_t handle = 0;
        Result result = add_profile(step.wanted, &handle);
        if (result.good()) handles_[step.name] = handle;
        return result;
    }

    // On the way back a profile that the apply has added may have got a call.
    Result remove(uint32_t handle) const
    {
        if (reach_ == Reach::kBack) end_call(handle);
        return remove_profile(handle);
    }

    static void end_call(uint32_t handle)
    {
        bool calling = false;
        if (!read_calling(handle, &calling).good() || !calling) return;
        zr_nexa_wan_connect_v4_set_v1(handle, 0);
        zr_nexa_wan_connect_v6_set_v1(handle, 0);
        for (int i = 0; i < 100 && calling; ++i) {  // 10 s: it is taken, not waited for
            usleep(100000);
            if (!read_calling(handle, &calling).good()) return;
        }
    }

    // A record that only the service can complete, as that of a LAN just made, is read before it is written.
    Result write(const Step& step, uint32_t id) const
    {
        const Row& row = *step.row;
        if (!step.is_new || row.shape != Shape::kUnit)
            return row.write(id, with_handles(step, step.wanted), step.present);
        Value present;
        Result result = read_record(row, id, &present);
        if (!result.good()) return result;
        Value wanted = present;
        for (const auto& [key, value] : step.wanted.map())
            wanted.map()[key] = value;
        return row.write(id, with_handles(step, wanted), present);
    }

    bool is_as_wanted(const Step& step) const
    {
        const Row& row = *step.row;
        if (row.write_only || row.is_scope) return false;
        Value there;
        if (!read_record(row, id_of(step), &there).good()) return false;
        const auto count = [&there](const Value& entry) {
            return std::count(there.list().begin(), there.list().end(), entry);
        };
        switch (row.shape) {
            case Shape::kUnit:
            case Shape::kWhole: {
                const Value wanted = with_handles(step, step.wanted);
                if (row.shape == Shape::kWhole || wanted.map().empty()) return there == wanted;
                return std::all_of(wanted.map().begin(), wanted.map().end(),
                                   [&there](const auto& each) { return there.child(each.first) == each.second; });
            }
            case Shape::kList:
                return step.kind == Step::Kind::kAdd ? count(step.wanted) > 0 : count(step.present) == 0;
            case Shape::kKeyed:
                return there.child(step.key) == step.wanted;
        }
        return false;
    }

    std::map<std::string, uint32_t> handles_;
    const Reach reach_;
};

struct Refused {
    const Step* step;
    Result result;
};

// Does the steps; with keep_going all of them, else up to the first refusal or the wish to stop.
struct Run {
    std::vector<Refused> refused = {};
    std::vector<const Step*> done = {};
    bool is_stopped = false;
};

bool is_stopped(const Progress& progress)
{
    return progress.is_stopped && progress.is_stopped();
}

Run run(const Plan& plan, Reach reach, bool keep_going, const Progress& progress)
{
    Run outcome;
    Executor executor(plan, reach);
    for (size_t i = 0; i < plan.steps.size(); ++i) {
        const Step& step = plan.steps[i];
        if (is_stopped(progress)) {
            outcome.is_stopped = true;
            return outcome;
        }
        if (progress.starts) progress.starts(step, i + 1, plan.steps.size());
        std::string note;
        const Result result = executor.perform(step, &note);
        if (progress.ends) progress.ends(step, result, note);
        if (result.good()) {
            outcome.done.push_back(&step);
            continue;
        }
        outcome.refused.push_back({&step, result});
        if (!keep_going) break;
    }
    // The platform may give a call up because of the signal.
    outcome.is_stopped = !plan.steps.empty() && is_stopped(progress);
    return outcome;
}

std::string unreadable(const Refusal& refusal)
{
    return refusal.path + ": cannot be read: " + in_words(refusal.result);
}

// What still differs from a document, a line each.
std::vector<std::string> differences(const Value& document, Reach reach)
{
    std::vector<std::string> lines;
    try {
        const Module module = read_for(document, reach);
        const Plan plan = make_plan(document, module, reach, false);
        for (const Problem& problem : plan.problems)
            lines.push_back(problem.path + ": " + problem.text);
        for (const Step& step : plan.steps)
            if (!step.row->write_only) lines.insert(lines.end(), step.lines.begin(), step.lines.end());
    } catch (const Refusal& refusal) {
        lines.push_back(unreadable(refusal));
    }
    return lines;
}

void tell(const Progress& progress, const std::string& line)
{
    if (progress.tells) progress.tells(line);
}

// Returns what was stored, and refused to be put to use.
std::vector<std::string> undo(const Value& before, const Progress& progress, bool tells, bool writes_again)
{
    Plan plan = make_plan(before, read_for(before, Reach::kBack), Reach::kBack, true, writes_again);
    for (const Problem& warning : plan.warnings)
        if (tells) tell(progress, warning.path + ": " + warning.text);
    plan.steps.erase(
        std::remove_if(plan.steps.begin(), plan.steps.end(), [](const Step& step) { return step.row->write_only; }),
        plan.steps.end());
    std::vector<std::string> unused;
    for (const Refused& each : run(plan, Reach::kBack, true, progress).refused)
        if (each.step->row->is_stored_first)
            unused.push_back(path_of(*each.step) + ": may be stored and not in use: " + in_words(each.result));
    return unused;
}

// What was done and cannot be taken back, in place of the lines that say the same.
void tell_not_undone(const std::vector<const Step*>& done, Outcome* outcome)
{
    std::vector<std::string> lost;
    std::vector<std::string>& left = outcome->left;
    for (const Step* const step : done) {
        if (step->not_undone.empty()) continue;
        const std::string start = path_of(*step) + ": ";
        left.erase(std::remove_if(left.begin(), left.end(),
                                  [&start](const std::string& line) { return line.rfind(start, 0) == 0; }),
                   left.end());
        lost.push_back(start + "not undone: " + step->not_undone);
    }
    outcome->is_back = left.empty();
    left.insert(left.end(), lost.begin(), lost.end());
}

}  // namespace

Module read_for(const Value& document, Reach reach)
{
    Module module = read_lists();
    read_settings(wish_for(document, module, reach), &module);
    return module;
}

Outcome go_back(const Value& before, const Progress& progress, bool writes_again)
{
    Progress steady = progress;
    steady.is_stopped = nullptr;
    if (progress.goes_back) progress.goes_back();
    Outcome outcome;
    // Once more where something passing came between.
    for (int i = 0; i < 2; ++i) {
        std::vector<std::string> unused;
        try {
            unused = undo(before, steady, i == 0, writes_again);
        } catch (const Refusal& refusal) {
            tell(progress, unreadable(refusal));
        }
        outcome.left = differences(before, Reach::kBack);
        if (outcome.left.empty()) outcome.left = unused;
        if (outcome.left.empty()) break;
        writes_again = !unused.empty();
    }
    outcome.is_back = outcome.left.empty();
    outcome.status = outcome.is_back ? kDone : kNotUndone;
    return outcome;
}

Outcome carry_out(const Plan& plan, const Value& document, const Value& before, const ApplyOptions& options,
                  const Progress& progress)
{
    const Run ran = run(plan, options.reach, options.keep_going, progress);
    if (ran.is_stopped && ran.done.empty() && ran.refused.empty()) {
        tell(progress, "stopped; nothing was changed");
        return {kRefused, {}, true};
    }
    if (ran.is_stopped || (!ran.refused.empty() && !options.keep_going)) {
        tell(progress, ran.is_stopped ? "stopped; undoing what was done" : "refused; undoing what was done");
        if (options.before_undo) options.before_undo();
        Outcome outcome = go_back(before, progress, options.writes_again);
        tell_not_undone(ran.done, &outcome);
        outcome.status = outcome.left.empty() ? kRefused : kNotUndone;
        return outcome;
    }
    Outcome outcome;
    if (options.verify) outcome.left = differences(document, options.reach);
    if (is_stopped(progress)) tell(progress, "all was done before it could be stopped");
    outcome.status = outcome.left.empty() && ran.refused.empty() ? kDone : kNotUndone;
    return outcome;
}

}  // namespace ctl
