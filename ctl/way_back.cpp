// What a plan changes, as it was: the state to go back to.
//
// Nothing else stands in it, so that going back leaves alone what others have made meanwhile.
#include <algorithm>

#include "plan.h"
#include "tree.h"

namespace ctl {
namespace {

Value gone()
{
    return Value::Map{{"absent", Value(true)}};
}

// What is held already stays as it is; so do the entries under keys and the values of a unit.
void put_unless_held(const Row& row, const std::string& name, Value record, Value* held)
{
    if (record.is_nothing()) return;
    Value& there = make_instance(held, row.scope, name);
    const Value said = record_of(row, there);
    if (row.shape == Shape::kUnit || row.shape == Shape::kKeyed) {
        for (const auto& [key, value] : said.map())
            record.map()[key] = value;
    } else if (!said.is_nothing()) {
        return;
    }
    put_record(row, record, &there);
}

bool changes_beside(const Row& row, const std::string& key)
{
    return std::count(row.also_changes.begin(), row.also_changes.end(), key) != 0;
}

class Holding {
public:
    Holding(const Plan& plan, const Module& module, Value held)
        : plan_(plan), present_(as_document(module, plan.handles, true)), held_(std::move(held))
    {
        Problems unused;
        for (const auto& [label, handle] : match_profiles(held_, module, &unused))
            names_[handle] = label;
    }

    Value all()
    {
        held_.map();
        for (const Step& step : plan_.steps)
            if (!step.row->write_only) hold(step);
        return held_;
    }

private:
    void hold(const Step& step)
    {
        const Row& row = *step.row;
        const bool comes_or_goes = step.kind == Step::Kind::kAdd || step.kind == Step::Kind::kRemove;
        if (row.is_scope && comes_or_goes && row.scope == Scope::kLan) return lan(step.name);
        if (row.is_scope && comes_or_goes)
            return step.kind == Step::Kind::kAdd ? added_profile(step) : removed_profile(step.name);
        const Value& was = instance_of(present_, row.scope, step.name);
        const std::string name = row.scope == Scope::kProfile ? held_name(step.name) : step.name;
        if (row.scope != Scope::kModule) {
            // What is made now goes with all that is in it, unless it is held from before.
            const Value& there = instance_of(held_, row.scope, name);
            if (there.is_nothing() && was.is_nothing()) return;
            if (there.has("absent")) {
                if (&row == &row_of("dial")) known_by_handle(step.name, name);
                return;
            }
        }
        if (row.shape == Shape::kKeyed) {
            const Value entry = record_of(row, was).child(step.key);
            put(row, name, Value::Map{{step.key, entry.is_nothing() ? gone() : entry}});
        } else if (row.phase == Phase::kRoles) {
            roles(step, record_of(row, was));
        } else if (!step.lines.empty()) {
            put(row, name, record_of(row, was));
        }
        for (const Row* other : rows_of(row.scope)) {
            const Value all = record_of(*other, was);
            Value record;
            for (const auto& [key, value] : all.map())
                if (changes_beside(row, key)) record.map()[key] = value;
            put(*other, name, record);
        }
    }

    void put(const Row& row, const std::string& name, const Value& record)
    {
        put_unless_held(row, name, record, &held_);
    }

    void lan(const std::string& id)
    {
        const Value& was = present_.child("lans").child(id);
        const Value& there = held_.child("lans").child(id);
        if (there.has("absent")) return;
        if (was.is_nothing()) {
            if (there.is_nothing()) held_.make("lans").map()[id] = gone();
            return;
        }
        for (const Row* row : rows_of(Scope::kLan))
            put(*row, id, record_of(*row, was));
        for (const auto& [label, profile] : present_.child("profiles").map()) {
            const Value::List& ids = profile.child("vlans").list();
            if (std::find(ids.begin(), ids.end(), Value(id)) == ids.end()) continue;
            const std::string name = held_name(label);
            if (held_.child("profiles").child(name).has("absent")) continue;
            for (const Row* row : rows_of(Scope::kProfile))
                if (row->phase == Phase::kMapping) put(*row, name, record_of(*row, profile));
        }
    }

    // ---- profiles ----

    // What the held state calls a profile. One that is there is known by its handle.
    std::string held_name(const std::string& label)
    {
        const auto made = made_.find(label);
        if (made != made_.end()) return made->second;
        const uint32_t handle = plan_.handles.at(label);
        const auto known = names_.find(handle);
        if (known != names_.end()) return known->second;
        std::string name = free_name(label);
        names_[handle] = name;
        held_.make("profiles").map()[name] = Value::Map{{"handle", handle}};
        return name;
    }

    std::string free_name(const std::string& label) const
    {
        const Value::Map& taken = held_.child("profiles").map();
        std::string name = label;
        for (int i = 1; taken.count(name) != 0; ++i)
            name = "other-" + std::to_string(i);
        return name;
    }

    void known_by_handle(const std::string& label, const std::string& name)
    {
        held_.make("profiles").map()[name].map()["handle"] = plan_.handles.at(label);
    }

    // Others that dial alike are named too, so that none is taken for another.
    void name_twins(const Value& dial)
    {
        for (const auto& [label, profile] : present_.child("profiles").map())
            if (profile.child("dial") == dial) held_name(label);
    }

    // Nobody knows its handle yet: it is known by what it dials with.
    void added_profile(const Step& step)
    {
        name_twins(step.wanted);
        for (const auto& [label, profile] : held_.child("profiles").map()) {
            // One that was there at first, and comes back.
            const bool is_there = std::any_of(names_.begin(), names_.end(),
                                              [own = &label](const auto& each) { return each.second == *own; });
            if (is_there || profile.has("absent") || profile.child("dial") != step.wanted) continue;
            made_[step.name] = label;
            return;
        }
        const std::string name = free_name(step.name);
        made_[step.name] = name;
        held_.make("profiles").map()[name] = gone();
        held_.make("profiles").map()[name].map()["dial"] = step.wanted;
    }

    // The one that takes its place has another handle, and its own may become a stranger's.
    void removed_profile(const std::string& label)
    {
        const Value was = present_.child("profiles").child(label);
        const std::string name = held_name(label);
        if (held_.child("profiles").child(name).has("absent")) return;
        for (const Row* row : rows_of(Scope::kProfile))
            put(*row, name, record_of(*row, was));
        const Value dial = held_.child("profiles").child(name).child("dial");
        name_twins(dial);
        const Value::Map& there = present_.child("profiles").map();
        const bool has_twin =
            std::any_of(there.begin(), there.end(),
                        [&](const auto& each) { return each.first != label && each.second.child("dial") == dial; }) ||
            std::any_of(plan_.steps.begin(), plan_.steps.end(), [&dial](const Step& step) {
                return step.row == &row_of("dial") && step.kind == Step::Kind::kAdd && step.wanted == dial;
            });
        if (!has_twin) held_.make("profiles").map()[name].erase("handle");
    }

    // Only those that change: the others are written as they are then.
    void roles(const Step& step, const Value& was)
    {
        Value changed;
        for (const auto& [role, label] : was.map()) {
            if (step.wanted.child(role) == step.present.child(role)) continue;
            changed.map()[role] = plan_.handles.count(label.text()) != 0 ? Value(held_name(label.text())) : label;
        }
        put(*step.row, "", changed);
    }

    const Plan& plan_;
    const Value present_;
    Value held_;
    std::map<uint32_t, std::string> names_;    // of the held state, by the handles of now
    std::map<std::string, std::string> made_;  // the same of those that the plan makes, by its labels
};

// What a document says nothing of.
Value unnamed(const Row& row, Value record, const Value& said, Reach reach)
{
    const bool is_by_key = row.shape == Shape::kUnit || (row.shape == Shape::kKeyed && reach != Reach::kExact);
    const Value named = record_of(row, said);
    if (named.is_nothing() || record.is_nothing()) return record;
    if (!is_by_key) return {};
    for (const auto& [key, value] : named.map())
        record.map().erase(key);
    return record.map().empty() ? Value() : record;
}

bool may_change_beside(Scope scope, const std::string& key)
{
    const auto& all = rows_of(scope);
    return std::any_of(all.begin(), all.end(), [&key](const Row* row) { return changes_beside(*row, key); });
}

// All that stands on a LAN that is made anew, and of the others what may change beside; nothing of what they are made
// with.
Value may_be_left(const Row& row, const Value& was)
{
    if (row.phase == Phase::kLans || row.phase == Phase::kProfiles) return {};
    Value record = record_of(row, was);
    if (was.has("vlan") || row.phase == Phase::kMapping) return record;
    Value beside;
    for (const auto& [key, value] : record.map())
        if (row.shape == Shape::kUnit && may_change_beside(row.scope, key)) beside.map()[key] = value;
    return beside;
}

}  // namespace

Value may_be_left(const Value& held)
{
    Value left;
    for (const Scope scope : {Scope::kLan, Scope::kProfile}) {
        each_instance(held, scope, [&](const std::string& name, const Value& was) {
            for (const Row* row : rows_of(scope)) {
                const Value record = may_be_left(*row, was);
                if (!record.is_nothing()) put_record(*row, record, &make_instance(&left, scope, name));
            }
            if (was.has("handle") && !instance_of(left, scope, name).is_nothing())
                make_instance(&left, scope, name).map()["handle"] = was.child("handle");
        });
    }
    return left;
}

Value unnamed_in(const Value& left, const Plan& plan, const Value& document, Reach reach, Value kept)
{
    for (const Scope scope : {Scope::kLan, Scope::kProfile}) {
        const bool is_profile = scope == Scope::kProfile;
        each_instance(left, scope, [&](const std::string& left_name, const Value& was) {
            std::string name = left_name;
            std::string label = left_name;
            if (is_profile) {
                const auto known = std::find_if(plan.handles.begin(), plan.handles.end(), [&was](const auto& each) {
                    return each.second == was.child("handle").number();
                });
                if (known == plan.handles.end()) return;
                label = known->first;
                name = profile_name(known->second);
            }
            const Value& said = instance_of(document, scope, label);
            const bool is_whole = reach == Reach::kExact && document.has(is_profile ? "profiles" : "lans");
            if (said.has("absent") || (is_whole && said.is_nothing() && name != "0")) return;
            for (const Row* row : rows_of(scope))
                put_unless_held(*row, name, unnamed(*row, record_of(*row, was), said, reach), &kept);
            if (is_profile && !instance_of(kept, scope, name).is_nothing())
                make_instance(&kept, scope, name).map()["handle"] = was.child("handle");
        });
    }
    return kept;
}

Value held_for(const Plan& plan, const Module& module, Value held)
{
    return Holding(plan, module, std::move(held)).all();
}

}  // namespace ctl
