#include "plan.h"

#include <algorithm>
#include <list>
#include <optional>
#include <set>

#include "checks.h"
#include "explain.h"
#include "lan_vlan.h"
#include "tree.h"
#include "wan_profile.h"

namespace ctl {
namespace {

constexpr const char* kRoleKeys[] = {"default", "access_point", "dns_proxy"};

const Row& vlan_row()
{
    static const Row& row = row_of("vlan");
    return row;
}

const Row& dial_row()
{
    static const Row& row = row_of("dial");
    return row;
}

uint32_t id_of(const std::string& name)
{
    return Value(name).number();
}

bool is_absent(const Value& entry)
{
    return entry.has("absent");
}

// Wanted laid over present. What a part does not say stays.
Value laid_over(const Value& wanted, const Value& present)
{
    Value record = present;
    for (const auto& [key, value] : wanted.map())
        record.map()[key] = value;
    return record;
}

std::set<std::string> names(const Value& map)
{
    std::set<std::string> all;
    for (const auto& [name, each] : map.map())
        all.insert(name);
    return all;
}

const Value& nothing()
{
    static const Value none;
    return none;
}

// What becomes of the LANs and profiles themselves.
struct Fates {
    std::set<std::string> made;
    std::set<std::string> gone;
    std::set<std::string> remade;  // LANs whose VLAN is of another kind: gone and made
};

Fates lan_fates(const Value& document, const Value& present, Reach reach)
{
    Fates fates;
    if (!document.has("lans")) return fates;
    const Value& wanted = document.child("lans");
    const Value& there = present.child("lans");
    for (const auto& [id, lan] : wanted.map()) {
        const Value& same = there.child(id);
        if (is_absent(lan)) {
            if (!same.is_nothing()) fates.gone.insert(id);
        } else if (same.is_nothing()) {
            fates.made.insert(id);
        } else if (lan.has("vlan") && lan.child("vlan") != same.child("vlan")) {
            fates.remade.insert(id);
        }
    }
    for (const auto& [id, lan] : there.map())
        if (reach == Reach::kExact && id != "0" && !wanted.map().count(id)) fates.gone.insert(id);
    return fates;
}

Fates profile_fates(const Value& document, const Value& present, Reach reach)
{
    Fates fates;
    if (!document.has("profiles")) return fates;
    const Value& wanted = document.child("profiles");
    const Value& there = present.child("profiles");
    for (const auto& [label, profile] : wanted.map()) {
        const bool is_there = there.map().count(label) != 0;
        if (is_absent(profile) && is_there) fates.gone.insert(label);
        if (!is_absent(profile) && !is_there) fates.made.insert(label);
    }
    for (const auto& [label, profile] : there.map())
        if (reach == Reach::kExact && !wanted.map().count(label)) fates.gone.insert(label);
    return fates;
}

// The row before it is named, and finished by this one.
bool follows_named(const Row& row, const Value& instance)
{
    const Row* const before = &row > rows().data() ? &row - 1 : nullptr;
    return before != nullptr && before->next_follows && is_named(*before, instance);
}

// The rows that may leave fields of this one changed.
const std::vector<const Row*>& rows_beside(const Row& row)
{
    static const auto by_row = [] {
        std::map<const Row*, std::vector<const Row*>> all;
        for (const Row& each : rows())
            for (const Row* other : rows_of(each.scope))
                for (const Field& field : each.fields)
                    if (std::count(other->also_changes.begin(), other->also_changes.end(), field.key) != 0)
                        all[&each].push_back(other);
        return all;
    }();
    static const std::vector<const Row*> none;
    const auto found = by_row.find(&row);
    return found == by_row.end() ? none : found->second;
}

bool is_beside_named(const Row& row, const Value& instance)
{
    const auto& others = rows_beside(row);
    return std::any_of(others.begin(), others.end(), [&](const Row* other) { return is_named(*other, instance); });
}

class Planner {
public:
    Planner(const Value& document, const Module& module, Reach reach, bool judges, bool writes_again)
        : document_(document), reach_(reach), judges_(judges && reach != Reach::kBack), writes_again_(writes_again)
    {
        const auto labels = match_profiles(document, module, &plan_.problems);
        present_ = as_document(module, labels, false);
        for (const auto& [handle, label] : labels_by_handle(module, labels))
            plan_.handles[label] = handle;
        if (reach == Reach::kBack) {
            plan_.problems.clear();
            leave_out_what_is_away();
        } else {
            find_role_profiles();
        }
        unread_ = &module.unread;
    }

    Plan make()
    {
        lans_ = lan_fates(document_, present_, reach_);
        profiles_ = profile_fates(document_, present_, reach_);
        lay_out();
        check();
        if (!plan_.problems.empty() && reach_ != Reach::kBack) return std::move(plan_);

        module_rows(Phase::kNewLans);
        mappings(Part::kRemovals);
        vlans();
        addressing();
        module_rows(Phase::kReservations);
        settings(Scope::kLan, Phase::kLanSettings);
        module_rows(Phase::kModule);
        const std::vector<std::string> last = dials();
        settings(Scope::kProfile, Phase::kProfileSettings);
        mappings(Part::kAdditions);
        removed_profiles(last);
        module_rows(Phase::kService);
        module_rows(Phase::kRouting);
        module_rows(Phase::kCutting);
        module_rows(Phase::kWriteOnly);
        if (reach_ != Reach::kBack)
            plan_.problems.insert(plan_.problems.end(), unreachable_.begin(), unreachable_.end());
        if (!plan_.problems.empty() && reach_ != Reach::kBack) plan_.steps.clear();
        return std::move(plan_);
    }

private:
    enum class Part { kRemovals, kAdditions, kBoth };

    // What others have taken away since it was held, and is not held whole, cannot be put back.
    void leave_out_what_is_away()
    {
        const std::pair<const char*, const char*> scopes[] = {{"lans", "vlan"}, {"profiles", "dial"}};
        for (const auto& [scope, made_with] : scopes) {
            for (const std::string& name : names(document_.child(scope))) {
                const Value& instance = document_.child(scope).child(name);
                if (is_absent(instance) || instance.has(made_with) || stands(scope, name)) continue;
                // Others are named only so that they are known.
                const bool is_held = instance.map().size() > instance.map().count("handle");
                document_.make(scope).map().erase(name);
                if (is_held) left_away(std::string(scope) + "." + name);
            }
        }
        for (const std::string& id : names(document_.child("lans")))
            if (document_.child("lans").child(id).at("l2tp.mode").text() == "managed" && !has_tunnels_then(id))
                document_.make("lans").map()[id].erase("l2tp.mode");
        for (const std::string& label : names(document_.child("profiles"))) {
            if (!document_.child("profiles").child(label).has("vlans")) continue;
            Value::List left;
            for (const Value& id : document_.child("profiles").child(label).child("vlans").list()) {
                const Value& lan = document_.child("lans").child(id.text());
                if (!is_absent(lan) && (lan.has("vlan") || stands("lans", id.text()))) left.push_back(id);
            }
            document_.make("profiles").map()[label].make("vlans") = Value(left);
        }
        for (const std::string& role : names(document_.child("roles"))) {
            const std::string label = document_.child("roles").child(role).text();
            if (label == "none" || document_.child("profiles").map().count(label) != 0) continue;
            document_.make("roles").map().erase(role);
            left_away("roles." + role);
        }
    }

    bool has_tunnels_then(const std::string& id) const
    {
        const Value& wanted = document_.child("lans").child(id).at("l2tp.tunnels");
        const Value all = laid_over(wanted, present_.child("lans").child(id).at("l2tp.tunnels"));
        return std::any_of(all.map().begin(), all.map().end(),
                           [](const auto& each) { return !is_absent(each.second); });
    }

    // A role's profile that the document does not have bears the name that show gives one.
    void find_role_profiles()
    {
        for (const std::string& role : names(document_.child("roles"))) {
            const Value label = document_.child("roles").child(role);
            const uint32_t handle = profile_handle(label.text());
            if (handle == 0 || document_.child("profiles").map().count(label.text()) != 0) continue;
            const auto found = std::find_if(plan_.handles.begin(), plan_.handles.end(),
                                            [handle](const auto& each) { return each.second == handle; });
            if (found == plan_.handles.end())
                problem(label, "roles." + role, "there is no profile " + std::to_string(handle) + " on the module");
            else
                document_.make("roles").map()[role] = found->first;
        }
    }

    bool stands(const char* scope, const std::string& name) const
    {
        return present_.child(scope).map().count(name) != 0;
    }

    void left_away(const std::string& path)
    {
        plan_.warnings.push_back({{}, path, "what it was is not there any more, and is left so"});
    }

    // What a document does not say of it stays.
    bool is_laid_over(const Row& row) const
    {
        return row.shape == Shape::kUnit || (row.shape == Shape::kKeyed && reach_ != Reach::kExact);
    }

    // What is wanted, and what is left to change from once LANs and profiles have come and gone: a LAN that is made
    // anew wants all that stood on it again.
    void lay_out()
    {
        wanted_ = document_;
        base_ = present_;
        std::set<std::string> cleared = lans_.gone;
        cleared.insert(lans_.remade.begin(), lans_.remade.end());
        for (const std::string& id : lans_.remade) {
            Value& lan = wanted_.make("lans").map()[id];
            for (const Row* row : rows_of(Scope::kLan)) {
                const Value stood = record_of(*row, present_.child("lans").child(id));
                if (stood.is_nothing() || row == &vlan_row()) continue;
                const Value named = record_of(*row, lan);
                if (is_laid_over(*row))
                    put_record(*row, laid_over(named, stood), &lan);
                else if (named.is_nothing())
                    put_record(*row, stood, &lan);
            }
        }
        for (const std::string& id : cleared)
            base_.make("lans").map()[id] = Value(Value::Map());
        if (base_.has("profiles") && !cleared.empty()) {
            for (auto& [label, profile] : base_.make("profiles").map()) {
                if (!profile.has("vlans")) continue;
                Value::List& vlans = profile.make("vlans").list();
                Value::List left;
                for (const Value& id : vlans)
                    if (cleared.count(id.text()) == 0) left.push_back(id);
                const bool loses_remade = std::any_of(
                    vlans.begin(), vlans.end(), [this](const Value& id) { return lans_.remade.count(id.text()) != 0; });
                Value& own = wanted_.make("profiles").map()[label];
                if (loses_remade && !own.has("vlans") && !is_absent(own)) {
                    Value::List again;
                    for (const Value& id : vlans)
                        if (lans_.gone.count(id.text()) == 0) again.push_back(id);
                    own.make("vlans") = Value(again);
                }
                vlans = left;
            }
        }
    }

    // ---- what cannot be ----

    void problem(const Value& at, const std::string& path, const std::string& text)
    {
        plan_.problems.push_back({at.mark, path, text});
    }

    void check()
    {
        for (const std::string& id : lans_.made)
            if (!document_.child("lans").child(id).has("vlan"))
                problem(document_.child("lans").child(id), "lans." + id, "there is no LAN " + id + "; vlan is missing");
        for (const std::set<std::string>* each : {&lans_.gone, &lans_.remade})
            for (const std::string& id : *each)
                if (!present_.child("lans").child(id).child("vlan").has("interface"))
                    problem(document_.child("lans").child(id), "lans." + id,
                            "its VLAN is of an interface without a name here, and cannot be taken away");
        for (const std::string& label : profiles_.made)
            if (!document_.child("profiles").child(label).has("dial"))
                problem(document_.child("profiles").child(label), "profiles." + label,
                        "there is no such profile on the module; dial is missing");
        check_gone_profiles();
        check_mapped_lans();
        check_unread();
        check_lost();
        check_crowd();
        if (judges_) check_result();
    }

    // A profile that goes must lose its roles and its call first.
    void check_gone_profiles()
    {
        const Value roles = laid_over(wanted_.child("roles"), present_.child("roles"));
        for (const std::string& label : profiles_.gone) {
            const Value& at = document_.child("profiles").child(label);
            for (const char* role : kRoleKeys)
                if (roles.child(role).text() == label)
                    problem(at, "profiles." + label, std::string("it is roles.") + role + "; give that to another one");
            bool calling = false;
            if (reach_ == Reach::kBack) continue;
            if (plan_.handles.count(label) != 0 && read_calling(plan_.handles[label], &calling).good() && calling)
                problem(at, "profiles." + label,
                        label + " is connected: \"zr_nexactl disconnect " + std::to_string(plan_.handles[label]) +
                            "\" first");
        }
    }

    void check_mapped_lans()
    {
        for (const auto& [label, profile] : document_.child("profiles").map()) {
            for (const Value& id : profile.child("vlans").list()) {
                const bool stands = present_.child("lans").map().count(id.text()) != 0;
                if ((!stands && lans_.made.count(id.text()) == 0) || lans_.gone.count(id.text()) != 0)
                    problem(id, "profiles." + label + ".vlans", "there is no LAN " + id.text());
            }
        }
    }

    // What the module has not got, or does not tell, cannot be compared.
    void check_unread()
    {
        if (unread_->empty()) return;
        for (const Row& row : rows()) {
            each_instance(document_, row.scope, [&](const std::string& name, const Value& instance) {
                const Value record = record_of(row, instance);
                if (record.is_nothing() || row.write_only) return;
                const Unread* const unread = unread_of(row, name);
                if (unread == nullptr) return;
                const Value& at = row.shape == Shape::kUnit ? record.map().begin()->second : record;
                problem(at, record_path(row, name), "cannot be read: " + in_words(unread->result));
            });
        }
    }

    const Unread* unread_of(const Row& row, const std::string& name) const
    {
        if (unread_->empty()) return nullptr;
        const std::string path = record_path(row, row.scope == Scope::kProfile ? handle_text(name) : name);
        const std::string of_all = record_path(row, "*");
        const auto found = std::find_if(unread_->begin(), unread_->end(), [&](const Unread& each) {
            return !each.is_odd && (each.path == path || (row.read_all && each.path == of_all));
        });
        return found == unread_->end() ? nullptr : &*found;
    }

    // What goes, or is made anew, is held as a whole before.
    void check_lost()
    {
        const auto check = [this](const Row& row, const std::string& of, Scope scope, const std::string& name) {
            const Unread* const unread = unread_of(row, of);
            if (unread != nullptr && !unread->is_missing)
                problem(instance_of(document_, scope, name), instance_path(scope, name),
                        record_path(row, of) + " cannot be read, and would be lost: " + in_words(unread->result));
        };
        for (const std::set<std::string>* each : {&lans_.gone, &lans_.remade}) {
            for (const std::string& id : *each) {
                for (const Row* row : rows_of(Scope::kLan))
                    check(*row, id, Scope::kLan, id);
                for (const Row* row : rows_of(Scope::kProfile))
                    if (row->phase == Phase::kMapping) check(*row, "*", Scope::kLan, id);
            }
        }
        for (const std::string& label : profiles_.gone)
            for (const Row* row : rows_of(Scope::kProfile))
                check(*row, label, Scope::kProfile, label);
    }

    std::string handle_text(const std::string& label) const
    {
        const auto found = plan_.handles.find(label);
        return found == plan_.handles.end() ? label : std::to_string(found->second);
    }

    void check_crowd()
    {
        const size_t there = present_.child("profiles").map().size();
        const size_t then = there + profiles_.made.size() - profiles_.gone.size();
        if (then > kProfilesMax)
            problem(
                document_.child("profiles"), "profiles",
                std::to_string(then) + " profiles would be there, " + std::to_string(kProfilesMax) + " are the most");
        const size_t vlans = present_.child("lans").map().size() - 1 + lans_.made.size() - lans_.gone.size();
        if (vlans > kVlansMax)
            problem(document_.child("lans"), "lans",
                    std::to_string(vlans) + " VLANs would be there, " + std::to_string(kVlansMax) + " are the most");
    }

    // What the checks of the result look at.
    static bool is_judged(const Row& row)
    {
        return row.shape == Shape::kKeyed || row.phase == Phase::kAddressing || row.is_judged;
    }

    // As it will be, to the checks of what no module takes and no network could use.
    void check_result()
    {
        Value result = base_;
        for (const std::string& id : lans_.gone)
            result.make("lans").map().erase(id);
        for (const std::string& label : profiles_.gone)
            result.make("profiles").map().erase(label);
        for (const std::set<std::string>* each : {&lans_.made, &lans_.remade})
            for (const std::string& id : *each)
                make_instance(&result, Scope::kLan, id) = instance_of(wanted_, Scope::kLan, id);
        for (const std::string& label : profiles_.made)
            make_instance(&result, Scope::kProfile, label) = instance_of(wanted_, Scope::kProfile, label);
        for (const Row& row : rows()) {
            if (!is_judged(row)) continue;
            each_instance(wanted_, row.scope, [&](const std::string& name, const Value& instance) {
                if (is_absent(instance) || !is_named(row, instance)) return;
                if (is_new(row.scope, name) && row.shape != Shape::kKeyed) return;
                Value& there = make_instance(&result, row.scope, name);
                Value record = record_of(row, instance);
                if (row.shape == Shape::kKeyed) {
                    const Value named = record;
                    if (is_laid_over(row)) record = laid_over(named, record_of(row, there));
                    for (const auto& [key, entry] : named.map())
                        if (is_absent(entry)) record.map().erase(key);
                }
                put_record(row, record, &there);
            });
        }
        for (const auto& [id, lan] : wanted_.child("lans").map())
            if (lan.at("l2tp.mode").text() == "managed" &&
                instance_of(result, Scope::kLan, id).at("l2tp.tunnels").map().empty())
                problem(lan.at("l2tp.mode"), "lans." + id + ".l2tp.mode", "managed needs a tunnel");
        // What the module gives a new one is not known yet.
        for (const std::string& id : lans_.made) {
            const Value& lan = instance_of(wanted_, Scope::kLan, id);
            const int named = lan.has("address") + lan.has("dhcp.first") + lan.has("dhcp.last");
            if (lan.has("vlan") && (named == 1 || named == 2))
                problem(lan, "lans." + id, "a new LAN has all of address, dhcp.first and dhcp.last, or none of them");
        }
        for (const Row& row : rows())
            if (row.shape == Shape::kKeyed) check_keyed(row, result);
        const auto is_changed = [this](const std::string& path) { return changes(path); };
        check_plausible(result, is_changed, &plan_.problems, &plan_.warnings);
    }

    void check_keyed(const Row& row, const Value& result)
    {
        each_instance(document_, row.scope, [&](const std::string& name, const Value& instance) {
            std::multimap<Value, std::string> owners;
            const Value then = record_of(row, instance_of(result, row.scope, name));
            const Value named = record_of(row, instance);
            if (then.map().size() > row.most && !named.is_nothing())
                problem(named, record_path(row, name),
                        std::to_string(then.map().size()) + " entries would be there, " + std::to_string(row.most) +
                            " are the most");
            if (row.only_once.empty()) return;
            for (const auto& [key, entry] : then.map())
                owners.emplace(entry.child(row.only_once), key);
            for (const auto& [key, entry] : named.map()) {
                const auto [first, last] = owners.equal_range(entry.child(row.only_once));
                for (auto owner = first; owner != last && !is_absent(entry); ++owner)
                    if (owner->second != key)
                        problem(entry.child(row.only_once),
                                join_path(join_path(record_path(row, name), key), row.only_once),
                                owner->second + " has it already");
            }
        });
    }

    // The document says something else at this path than the module has.
    bool changes(const std::string& path) const
    {
        const auto at = [&path](const Value& tree) -> const Value& {
            for (const char* above : {"reservations.", "lans.", "profiles."}) {
                if (path.rfind(above, 0) != 0) continue;
                const std::string rest = path.substr(std::string(above).size());
                const Value& entries = tree.child(std::string(above, std::string(above).size() - 1));
                if (above[0] == 'r') return entries.child(rest);
                for (const auto& [name, entry] : entries.map())  // there are dots in labels
                    if (rest.rfind(name + ".", 0) == 0 && entry.has(rest.substr(name.size() + 1)))
                        return entry.at(rest.substr(name.size() + 1));
                return nothing();
            }
            return tree.at(path);
        };
        const Value& named = at(document_);
        if (path == "lans") return false;
        return !named.is_nothing() && named != at(present_);
    }

    // ---- steps ----

    void push(Step step)
    {
        const Row& row = *step.row;
        const std::string who = row.scope == Scope::kLan ? "LAN " + step.name : step.name;
        if (row.interrupts && !step.is_new && may_interrupt(step))
            step.interrupts = row.interrupts(who, step.wanted, step.present);
        if (row.not_undone && !step.is_new && step.not_undone.empty())
            step.not_undone = row.not_undone(step.wanted, step.present);
        if (row.not_undone && !row.write_only && !goes(step)) {
            const std::string why = row.not_undone(step.present, step.wanted);
            if (!why.empty()) unreachable_.push_back({mark_of(step), path_of(step), why});
        }
        plan_.steps.push_back(std::move(step));
    }

    // A whole LAN or profile, with all that is in it.
    static bool goes(const Step& step)
    {
        return step.kind == Step::Kind::kRemove && step.row->is_scope;
    }

    // A call that is not there is not interrupted.
    bool may_interrupt(const Step& step)
    {
        if (step.row != &dial_row()) return true;
        bool calling = false;
        return step.kind == Step::Kind::kWrite && read_calling(plan_.handles[step.name], &calling).good() && calling;
    }

    // Where the document says it, or the LAN or profile that it belongs to.
    Mark mark_of(const Step& step) const
    {
        const Value& instance = instance_of(document_, step.row->scope, step.name);
        const Value record = record_of(*step.row, instance);
        if (step.wanted.mark.line != 0) return step.wanted.mark;
        if (step.row->shape == Shape::kUnit && !record.is_nothing()) return record.map().begin()->second.mark;
        return record.is_nothing() ? instance.mark : record.mark;
    }

    void module_rows(Phase phase)
    {
        for (const Row* row : rows_of(Scope::kModule))
            if (row->phase == phase) changes_of(*row, "", wanted_, base_, Part::kBoth);
    }

    bool is_new(Scope scope, const std::string& name) const
    {
        if (scope == Scope::kLan) return lans_.made.count(name) + lans_.remade.count(name) != 0;
        return scope == Scope::kProfile && profiles_.made.count(name) != 0;
    }

    void settings(Scope scope, Phase phase)
    {
        each_instance(wanted_, scope, [&](const std::string& name, const Value& instance) {
            if (is_absent(instance)) return;
            const size_t first = plan_.steps.size();
            const Value& base = instance_of(base_, scope, name);
            bool forced = false;
            for (const Row* row : rows_of(scope)) {
                if (row->phase != phase) continue;
                const size_t before = plan_.steps.size();
                changes_of(*row, name, instance, base, Part::kBoth, forced);
                forced = row->next_follows && plan_.steps.size() > before;
            }
            open_before_removals(first);
            put_pinholes_first(first);
        });
    }

    static bool is_write_of(const Step& step, const char* key)
    {
        return step.kind == Step::Kind::kWrite && step.row == &row_of(key) && step.wanted.map().count(key) != 0;
    }

    // An entry may be what lets the caller in: where a profile's firewall ends with letting all through, it does so
    // before entries go.
    void open_before_removals(size_t first)
    {
        const auto begin = plan_.steps.begin() + static_cast<std::ptrdiff_t>(first);
        const auto opens = std::find_if(begin, plan_.steps.end(),
                                        [](const Step& step) { return is_write_of(step, "firewall.enabled"); });
        if (opens == plan_.steps.end()) return;
        const Value& config = opens->wanted;
        if (config.child("firewall.enabled").flag() && config.child("firewall.unmatched").text() != "let-through")
            return;
        const auto removal = std::find_if(begin, opens, [](const Step& step) {
            return step.kind == Step::Kind::kRemove && step.row == &row_of("firewall.entries");
        });
        std::rotate(removal, opens, opens + 1);
    }

    // A profile's pinholes can be set only while its firewall is on.
    void put_pinholes_first(size_t first)
    {
        const auto begin = plan_.steps.begin() + static_cast<std::ptrdiff_t>(first);
        const auto is_of = [](const char* key) { return [key](const Step& step) { return is_write_of(step, key); }; };
        const auto off = std::find_if(begin, plan_.steps.end(), is_of("firewall.enabled"));
        if (off == plan_.steps.end() || off->wanted.child("firewall.enabled").flag()) return;
        const auto pinholes = std::find_if(off, plan_.steps.end(), is_of("upnp_pinholes"));
        if (pinholes != plan_.steps.end()) std::rotate(off, pinholes, pinholes + 1);
    }

    void mappings(Part part)
    {
        for (const Row* row : rows_of(Scope::kProfile)) {
            if (row->phase != Phase::kMapping) continue;
            each_instance(wanted_, Scope::kProfile, [&](const std::string& name, const Value& instance) {
                if (!is_absent(instance))
                    changes_of(*row, name, instance, instance_of(base_, Scope::kProfile, name), part);
            });
        }
    }

    void vlans()
    {
        std::vector<std::string> down(lans_.gone.begin(), lans_.gone.end());
        down.insert(down.end(), lans_.remade.begin(), lans_.remade.end());
        std::sort(down.begin(), down.end(), [](const auto& a, const auto& b) { return id_of(a) > id_of(b); });
        for (const std::string& id : down) {
            const Value& lan = present_.child("lans").child(id);
            Step step = {Step::Kind::kRemove, &vlan_row(), id, "", {}, lan.child("vlan")};
            step.lines = {"lans." + id + ": - " + in_short(lan.child("vlan"))};
            step.interrupts = "VLAN " + id + (lans_.remade.count(id) != 0 ? " is made anew with " : " goes with ") +
                              what_stands_on(id);
            if (lans_.gone.count(id) != 0) step.not_undone = lost_with(Scope::kLan, id);
            push(std::move(step));
            if (lans_.remade.count(id) != 0) add_vlan_step(id);
        }
        std::vector<std::string> up(lans_.made.begin(), lans_.made.end());
        std::sort(up.begin(), up.end(), [](const auto& a, const auto& b) { return id_of(a) < id_of(b); });
        for (const std::string& id : up)
            add_vlan_step(id);
    }

    // "its addresses, 2 filters, 1 tunnel and its mapping to office"
    std::string what_stands_on(const std::string& id) const
    {
        const Value& lan = present_.child("lans").child(id);
        std::vector<std::string> all = {"its addresses"};
        const auto count = [&all](size_t number, const std::string& what) {
            if (number > 0) all.push_back(std::to_string(number) + " " + what + (number == 1 ? "" : "s"));
        };
        if (lan.has("passthrough") && lan.at("passthrough.device").text() != "none")
            all.emplace_back("its passthrough");
        count(lan.child("gateway_filters").list().size(), "filter");
        count(lan.at("l2tp.tunnels").map().size(), "tunnel");
        if (!lan.child("sip_server").map().empty()) all.emplace_back("its SIP server");
        for (const auto& [label, profile] : present_.child("profiles").map())
            for (const Value& vlan : profile.child("vlans").list())
                if (vlan.text() == id) all.push_back("its mapping to " + label);
        std::string text = all[0];
        for (size_t i = 1; i < all.size(); ++i)
            text += (i + 1 < all.size() ? ", " : " and ") + all[i];
        return text;
    }

    // What of a LAN or profile that goes could not be made again.
    std::string lost_with(Scope scope, const std::string& name) const
    {
        std::string lost;
        const auto add = [&lost](const std::string& why) {
            if (!why.empty() && lost.find(why) == std::string::npos) lost += (lost.empty() ? "" : "; ") + why;
        };
        for (const Row* row : rows_of(scope)) {
            if (!row->not_undone) continue;
            const Value record = record_of(*row, instance_of(present_, scope, name));
            if (row->shape != Shape::kList) add(row->not_undone({}, record));
            for (const Value& entry : record.list())
                add(row->not_undone({}, entry));
        }
        return lost;
    }

    void add_vlan_step(const std::string& id)
    {
        const Value& vlan = wanted_.child("lans").child(id).child("vlan");
        Step step = {Step::Kind::kAdd, &vlan_row(), id, "", vlan, {}, true};
        step.lines = {"lans." + id + ": + " + in_short(vlan)};
        push(std::move(step));
    }

    // ---- addressing: nets get free before they are taken ----

    // Nothing where it is not known.
    static std::optional<Net> net_of(const Value& lan)
    {
        Net net;
        if (!lan.has("address")) return {};
        split_net(lan.child("address").text(), &net.address, &net.mask);
        return net;
    }
    static bool do_meet(const std::optional<Net>& one, const std::optional<Net>& other)
    {
        return one && other && one->meets(*other);
    }

    void addressing()
    {
        struct Move {
            std::string id;
            std::optional<Net> from;
            std::optional<Net> to;
        };
        std::list<Move> moves;
        each_instance(wanted_, Scope::kLan, [&](const std::string& id, const Value& lan) {
            if (!is_absent(lan)) moves.push_back({id, net_of(base_.child("lans").child(id)), net_of(lan)});
        });
        if (!moves.empty() && moves.front().id == "0") moves.splice(moves.end(), moves, moves.begin());
        while (!moves.empty()) {
            const auto is_free = [&moves](const Move& move) {
                return std::none_of(moves.begin(), moves.end(), [&move](const Move& other) {
                    return do_meet(move.to, other.from) && other.to && &other != &move;
                });
            };
            auto next = std::find_if(moves.begin(), moves.end(), is_free);
            if (next == moves.end()) {
                // They take each other's nets: one of them waits elsewhere.
                next = moves.begin();
                if (park(next->id)) {
                    next->from = {};
                    continue;
                }
            }
            address(next->id);
            moves.erase(next);
        }
    }

    void address(const std::string& id)
    {
        bool forced = false;
        for (const Row* row : rows_of(Scope::kLan)) {
            if (row->phase != Phase::kAddressing) continue;
            const size_t before = plan_.steps.size();
            const Value& wanted = instance_of(wanted_, Scope::kLan, id);
            forced |= writes_again_ && row->is_stored_first && is_named(*row, wanted);
            changes_of(*row, id, wanted, instance_of(base_, Scope::kLan, id), Part::kBoth, forced);
            forced = row->next_follows && plan_.steps.size() > before;
        }
    }

    // Gives a LAN a net that nothing is in and nothing wants, until its own is free. Returns false when there is none.
    bool park(const std::string& id)
    {
        const auto is_taken = [this](const Net& net) {
            bool taken = false;
            for (const Value* tree : {&base_, &wanted_}) {
                each_instance(*tree, Scope::kLan,
                              [&](const std::string&, const Value& lan) { taken |= do_meet(net, net_of(lan)); });
            }
            return taken;
        };
        for (uint32_t third = 0; third < 256; ++third) {
            const Net net = {(10u << 24) | (254u << 16) | (third << 8) | 1, 0xffffff00};
            if (is_taken(net)) continue;
            Value& lan = base_.make("lans").map()[id];
            const Value before = lan;
            Value parked = lan;
            parked.make("address") = net_text(net.address, net.mask);
            parked.make("dhcp.first") = ipv4_text(net.address + 1);
            parked.make("dhcp.last") = ipv4_text(net.address + 2);
            for (const Row* row : rows_of(Scope::kLan))
                if (row->phase == Phase::kAddressing) changes_of(*row, id, parked, before, Part::kBoth);
            plan_.steps.back().interrupts += "; LAN " + id + " waits in another net until its own is free";
            lan = parked;
            return true;
        }
        return false;
    }

    // ---- profiles ----

    // Profiles changed and added, and the roles. Returns those that go once nothing needs them any more: all, unless
    // there is no room.
    std::vector<std::string> dials()
    {
        for (const auto& [label, profile] : document_.child("profiles").map()) {
            if (is_absent(profile) || profiles_.made.count(label) != 0) continue;
            changes_of(dial_row(), label, profile, base_.child("profiles").child(label), Part::kBoth);
        }
        std::vector<std::string> added(profiles_.made.begin(), profiles_.made.end());
        std::vector<std::string> gone(profiles_.gone.begin(), profiles_.gone.end());
        const size_t there = present_.child("profiles").map().size();
        if (there + added.size() <= kProfilesMax) {
            add_profiles(added);
            module_rows(Phase::kRoles);
            return gone;
        }
        // Those without a role make room first; and those that get one are made before the others.
        const auto with_role = std::stable_partition(gone.begin(), gone.end(),
                                                     [this](const auto& each) { return !has_role(present_, each); });
        std::stable_partition(added.begin(), added.end(), [this](const auto& each) { return has_role(wanted_, each); });
        removed_profiles({gone.begin(), with_role});
        gone.erase(gone.begin(), with_role);
        const size_t room = kProfilesMax + profiles_.gone.size() - gone.size() - there;
        if (room < added.size() && park_roles()) {
            removed_profiles(gone);
            gone.clear();
        }
        const auto first = added.begin() + static_cast<std::ptrdiff_t>(std::min(room, added.size()));
        if (gone.empty()) {
            add_profiles(added);
            module_rows(Phase::kRoles);
            return {};
        }
        add_profiles({added.begin(), first});
        module_rows(Phase::kRoles);
        if (first == added.end()) return gone;
        removed_profiles(gone);
        add_profiles({first, added.end()});
        return {};
    }

    static bool has_role(const Value& tree, const std::string& label)
    {
        const Value::Map& roles = tree.child("roles").map();
        return std::any_of(roles.begin(), roles.end(),
                           [&label](const auto& role) { return role.second.text() == label; });
    }

    // Gives the roles of profiles that go to one that stays, until their own are there. Returns false when none stays.
    bool park_roles()
    {
        const Value::Map& there = present_.child("profiles").map();
        const auto stays = std::find_if(there.begin(), there.end(),
                                        [this](const auto& each) { return profiles_.gone.count(each.first) == 0; });
        if (stays == there.end()) return false;
        Value parked = base_;
        for (auto& [role, label] : parked.make("roles").map())
            if (profiles_.gone.count(label.text()) != 0) label = stays->first;
        for (const Row* row : rows_of(Scope::kModule))
            if (row->phase == Phase::kRoles) changes_of(*row, "", parked, base_, Part::kBoth);
        base_.make("roles") = parked.child("roles");
        return true;
    }

    void add_profiles(const std::vector<std::string>& labels)
    {
        for (const std::string& label : labels) {
            const Value& dial = document_.child("profiles").child(label).child("dial");
            Step step = {Step::Kind::kAdd, &dial_row(), label, "", dial, {}, true};
            step.lines = {"profiles." + label + ": + " + in_short(dial)};
            push(std::move(step));
        }
    }

    void removed_profiles(std::vector<std::string> down)
    {
        std::sort(down.begin(), down.end(),
                  [this](const auto& a, const auto& b) { return plan_.handles[a] > plan_.handles[b]; });
        for (const std::string& label : down) {
            const Value& dial = present_.child("profiles").child(label).child("dial");
            Step step = {Step::Kind::kRemove, &dial_row(), label, "", {}, dial};
            step.lines = {"profiles." + label + ": - " + in_short(dial)};
            const std::string lost = lost_with(Scope::kProfile, label);
            step.not_undone = "the handle " + std::to_string(plan_.handles[label]) + " and the counts of " + label +
                              (lost.empty() ? "" : "; " + lost);
            push(std::move(step));
        }
    }

    // ---- rows ----

    // Nothing is to be done: it is not named, or there just so.
    static bool is_as_wanted(const Row& row, const Value& wanted, const Value& base)
    {
        if (row.shape != Shape::kUnit) return !wanted.has(row.path) || wanted.at(row.path) == base.at(row.path);
        return std::all_of(row.fields.begin(), row.fields.end(), [&](const Field& field) {
            const Value& value = wanted.at(field.key);
            return value.is_nothing() || (!row.write_only && value == base.at(field.key));
        });
    }

    // The steps of one row of one instance.
    void changes_of(const Row& row, const std::string& name, const Value& wanted, const Value& base, Part part,
                    bool forced = false)
    {
        const bool is_made = is_new(row.scope, name);
        if (!forced && (is_made ? !is_named(row, wanted) : is_as_wanted(row, wanted, base))) return;
        const Value record = record_of(row, wanted);
        // On the way back a list that could not be read would be filled once more.
        const bool is_entries = row.shape == Shape::kList || row.shape == Shape::kKeyed;
        if (is_entries && reach_ == Reach::kBack && unread_of(row, name) != nullptr) return;
        const Value present = is_made ? Value() : record_of(row, base);
        switch (row.shape) {
            case Shape::kUnit:
            case Shape::kWhole:
                if (part != Part::kRemovals) unit(row, name, record, present, forced);
                break;
            case Shape::kList:
                list(row, name, record, present, part);
                break;
            case Shape::kKeyed:
                keyed(row, name, record, present);
                break;
        }
    }

    void unit(const Row& row, const std::string& name, const Value& wanted, const Value& present, bool forced)
    {
        Step step = {Step::Kind::kWrite, &row, name, "", {}, present, is_new(row.scope, name)};
        const std::string above = instance_path(row.scope, name);
        if (row.shape == Shape::kWhole) {
            if (wanted == present && !forced) return;
            step.wanted = wanted;
            step.lines = {changed_line(join_path(above, row.path), in_short(present), wanted, step.is_new)};
        } else {
            for (const Field& field : row.fields) {
                const Value& value = wanted.child(field.key);
                const Value& old = present.child(field.key);
                if (value.is_nothing() || (value == old && !row.write_only)) continue;
                step.lines.push_back(changed_line(join_path(above, field.key), old.is_nothing() ? "?" : in_short(old),
                                                  value, step.is_new || row.write_only));
            }
            if (step.lines.empty() && !forced) return;
            step.wanted = laid_over(wanted, present);
            if (!step.is_new) check_whole(row, above, step.wanted);
        }
        push(std::move(step));
    }

    // What belongs together, of what is said and what is there.
    void check_whole(const Row& row, const std::string& path, const Value& record)
    {
        if (!row.check || reach_ == Reach::kBack) return;
        row.check(record, path, [this](const Value& at, const std::string& where, const std::string& text) {
            unreachable_.push_back({at.mark, where, text});
        });
    }

    // What it was is not said of what was not there, or cannot be known.
    static std::string changed_line(const std::string& path, const std::string& old, const Value& value, bool is_new)
    {
        return path + ": " + (is_new ? "" : old + " -> ") + in_short(value);
    }

    void list(const Row& row, const std::string& name, const Value& wanted, const Value& present, Part part)
    {
        std::vector<Value> added;
        std::multiset<Value> there(present.list().begin(), present.list().end());
        for (const Value& entry : wanted.list()) {
            const auto found = there.find(entry);
            if (found == there.end())
                added.push_back(entry);
            else
                there.erase(found);
        }
        std::vector<Value> removed(there.begin(), there.end());
        // From behind: what comes behind an entry moves up when it goes.
        std::stable_sort(removed.begin(), removed.end(), [](const Value& a, const Value& b) { return a.tag > b.tag; });
        const std::string path = record_path(row, name);
        const auto remove = [&] {
            for (const Value& entry : removed) {
                Step step = {Step::Kind::kRemove, &row, name, "", {}, entry};
                step.lines = {path + ": - " + in_short(entry)};
                push(std::move(step));
            }
        };
        const bool is_full = present.list().size() + added.size() > row.most;
        if (part != Part::kAdditions && (is_full || part == Part::kRemovals)) remove();
        for (const Value& entry : added) {
            if (part == Part::kRemovals) break;
            Step step = {Step::Kind::kAdd, &row, name, "", entry, {}, is_new(row.scope, name)};
            step.lines = {path + ": + " + in_short(entry)};
            push(std::move(step));
        }
        if (part == Part::kBoth && !is_full) remove();
    }

    void keyed(const Row& row, const std::string& name, const Value& wanted, const Value& present)
    {
        const std::string path = record_path(row, name);
        std::set<std::string> gone;
        std::set<std::string> changed;
        std::vector<std::string> added;
        for (const auto& [key, entry] : wanted.map()) {
            const Value& there = present.child(key);
            if (is_absent(entry)) {
                if (!there.is_nothing()) gone.insert(key);
            } else if (there.is_nothing()) {
                added.push_back(key);
            } else if (entry != there) {
                changed.insert(key);
            }
        }
        for (const std::string& key : names(present))
            if (reach_ == Reach::kExact && !wanted.map().count(key)) gone.insert(key);

        // One that takes what another one has is made anew, once that one has let go of it.
        std::set<std::string> remade;
        for (const std::string& key : changed) {
            if (row.only_once.empty()) break;
            const Value& value = wanted.child(key).child(row.only_once);
            for (const auto& [other, entry] : present.map())
                if (other != key && entry.child(row.only_once) == value) remade.insert(key);
        }
        for (const std::string& key : names(present)) {
            if (gone.count(key) + remade.count(key) == 0) continue;
            Step step = {Step::Kind::kRemove, &row, name, key, {}, present.child(key)};
            step.lines = {join_path(path, key) + ": - " + in_short(present.child(key))};
            push(std::move(step));
        }
        for (const std::string& key : changed) {
            if (remade.count(key) != 0) continue;
            Step step = {Step::Kind::kChange, &row, name, key, wanted.child(key), present.child(key)};
            step.lines = {join_path(path, key) + ": " + in_short(present.child(key)) + " -> " +
                          in_short(wanted.child(key))};
            push(std::move(step));
        }
        added.insert(added.end(), remade.begin(), remade.end());
        for (const std::string& key : added) {
            Step step = {Step::Kind::kAdd, &row, name, key, wanted.child(key), {}, is_new(row.scope, name)};
            step.lines = {join_path(path, key) + ": + " + in_short(wanted.child(key))};
            push(std::move(step));
        }
    }

    Value document_;
    const Reach reach_;
    const bool judges_;
    const bool writes_again_;
    const std::vector<Unread>* unread_ = nullptr;
    Value present_;  // of the module, with labels
    Value wanted_;
    Value base_;
    Fates lans_;
    Fates profiles_;
    Problems unreachable_;  // for what the module's functions cannot do
    Plan plan_;
};

}  // namespace

std::string path_of(const Step& step)
{
    if (step.row->shape == Shape::kUnit || step.row->is_scope)
        return step.lines.empty() ? record_path(*step.row, step.name)
                                  : step.lines[0].substr(0, step.lines[0].find(": "));
    return step.key.empty() ? record_path(*step.row, step.name)
                            : join_path(record_path(*step.row, step.name), step.key);
}

Wish wish_for(const Value& document, const Module& lists, Reach reach)
{
    // Rows that the document names anywhere, and instances that it names; and all of what goes or is made anew.
    Problems unused;
    const auto labels = match_profiles(document, lists, &unused);
    const Value present = as_document(lists, labels, false);
    const Fates lans = lan_fates(document, present, reach);
    const Fates profiles = profile_fates(document, present, reach);
    std::set<uint32_t> whole_lans;
    for (const std::set<std::string>* each : {&lans.gone, &lans.remade})
        for (const std::string& id : *each)
            whole_lans.insert(id_of(id));
    const std::map<uint32_t, std::string> names_of_handles = labels_by_handle(lists, labels);
    std::set<uint32_t> whole_profiles;
    for (const auto& [handle, label] : names_of_handles)
        if (profiles.gone.count(label) != 0) whole_profiles.insert(handle);

    Wish wish;
    // Nets are looked at as a whole as soon as one of them is named, and roles before a profile goes.
    const bool has_lans = document.has("lans");
    const bool looks_at_hosts = has_lans || document.has("reservations") || document.has("profiles");
    const bool has_mappings_to_keep = !whole_lans.empty();
    const bool loses_profiles = !whole_profiles.empty();
    wish.row = [&document, has_lans, loses_profiles](const Row& row) {
        if (row.phase == Phase::kRoles && loses_profiles) return true;
        if (has_lans && (row.phase == Phase::kReservations || row.is_judged)) return true;
        return is_named(row, document) || (row.is_judged && document.has("profiles"));
    };
    wish.scoped = [&document, whole_lans, whole_profiles, names_of_handles, looks_at_hosts, has_lans,
                   has_mappings_to_keep](const Row& row, uint32_t id) {
        if (row.scope == Scope::kLan) {
            if (whole_lans.count(id) != 0 || (row.phase == Phase::kAddressing && looks_at_hosts)) return true;
            const Value& lan = document.child("lans").child(std::to_string(id));
            if (lan.has("l2tp.mode") && &row == &row_of("l2tp.tunnels")) return true;
            return is_named(row, lan) || follows_named(row, lan) || is_beside_named(row, lan);
        }
        if (whole_profiles.count(id) != 0) return true;
        if (row.phase == Phase::kMapping && has_mappings_to_keep) return true;
        if (has_lans && row.is_judged) return true;
        const auto label = names_of_handles.find(id);
        if (label == names_of_handles.end()) return false;
        const Value& profile = document.child("profiles").child(label->second);
        return is_named(row, profile) || is_beside_named(row, profile);
    };
    return wish;
}

Plan make_plan(const Value& document, const Module& module, Reach reach, bool judges, bool writes_again)
{
    return Planner(document, module, reach, judges, writes_again).make();
}

}  // namespace ctl
