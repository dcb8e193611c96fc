#include "apply.h"

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
        const bool is_vlan = row.path == "vlan";
        const bool is_dial = row.path == "dial";
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
        const Result result = add_profile(step.wanted, &handle);
        if (result.good()) handles_[step.name] = handle;
        return result;
    }

    // On the way back a profile that the apply has added may have got a call.
    Result remove(uint32_t handle) const
    {
        if (reach_ == Reach::kBack) {
            zr_nexa_wan_connect_v4_set_v1(handle, 0);
            zr_nexa_wan_connect_v6_set_v1(handle, 0);
        }
        return remove_profile(handle);
    }

    // A record that only the service can complete, as that of a LAN just made, is read before it is written.
    Result write(const Step& step, uint32_t id) const
    {
        const Row& row = *step.row;
        if (!step.is_new || row.shape != Shape::kUnit)
            return row.write(id, with_handles(step, step.wanted), step.present);
        Value present;
        const Result result = read_record(row, id, &present);
        if (!result.good()) return result;
        Value wanted = present;
        for (const auto& [key, value] : step.wanted.map())
            wanted.map()[key] = value;
        return row.write(id, with_handles(step, wanted), present);
    }

    bool is_as_wanted(const Step& step) const
    {
        const Row& row = *step.row;
        if (row.write_only || row.path == "vlan" || row.path == "dial") return false;
        Value there;
        if (!read_record(row, id_of(step), &there).good()) return false;
        const auto count = [&there](const Value& entry) {
            return std::count(there.list().begin(), there.list().end(), entry);
        };
        switch (row.shape) {
            case Shape::kUnit:
            case Shape::kWhole:
                return there == with_handles(step, step.wanted);
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

Run run(const Plan& plan, Reach reach, bool keep_going, const Progress& progress)
{
    Run outcome;
    Executor executor(plan, reach);
    for (size_t i = 0; i < plan.steps.size(); ++i) {
        const Step& step = plan.steps[i];
        if (progress.is_stopped && progress.is_stopped()) {
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
        if (!keep_going) return outcome;
    }
    return outcome;
}

// What still differs from a document, a line each. What cannot be read is no difference.
std::vector<std::string> differences(const Value& document, Reach reach)
{
    const Module module = read_for(document, reach);
    const Plan plan = make_plan(document, module, reach, false);
    std::vector<std::string> lines;
    for (const Problem& problem : plan.problems)
        lines.push_back(problem.path + ": " + problem.text);
    for (const Step& step : plan.steps)
        if (!step.row->write_only) lines.insert(lines.end(), step.lines.begin(), step.lines.end());
    return lines;
}

void tell(const Progress& progress, const std::string& line)
{
    if (progress.tells) progress.tells(line);
}

}  // namespace

Module read_for(const Value& document, Reach reach)
{
    Module module = read_lists();
    read_settings(wish_for(document, module, reach), &module);
    return module;
}

Outcome go_back(const Value& before, const Progress& progress)
{
    Plan plan = make_plan(before, read_for(before, Reach::kBack), Reach::kBack);
    plan.steps.erase(
        std::remove_if(plan.steps.begin(), plan.steps.end(), [](const Step& step) { return step.row->write_only; }),
        plan.steps.end());
    Progress steady = progress;
    steady.is_stopped = nullptr;
    for (const Problem& problem : plan.problems)
        tell(progress, problem.path + ": " + problem.text);
    run(plan, Reach::kBack, true, steady);
    Outcome outcome;
    outcome.left = differences(before, Reach::kBack);
    outcome.status = outcome.left.empty() ? kDone : kNotUndone;
    return outcome;
}

Outcome carry_out(const Plan& plan, const Value& document, const Value& before, const ApplyOptions& options,
                  const Progress& progress)
{
    const Run ran = run(plan, options.reach, options.keep_going, progress);
    const bool gives_up = ran.is_stopped || (!ran.refused.empty() && !options.keep_going);
    if (gives_up) {
        tell(progress, ran.is_stopped ? "stopped; undoing what was done" : "refused; undoing what was done");
        Outcome outcome = go_back(before, progress);
        for (const Step* step : ran.done)
            if (step->row->write_only) outcome.left.push_back(step->lines[0] + ": cannot be taken back");
        outcome.status = outcome.left.empty() ? kRefused : kNotUndone;
        return outcome;
    }
    Outcome outcome;
    if (options.verify) outcome.left = differences(document, options.reach);
    outcome.status = outcome.left.empty() && ran.refused.empty() ? kDone : kNotUndone;
    return outcome;
}

}  // namespace ctl
