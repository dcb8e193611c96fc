#include "plan.h"

#include <algorithm>
#include <list>
#include <set>

#include "checks.h"
#include "explain.h"
#include "tree.h"
#include "wan_profile.h"

namespace ctl {
namespace {

constexpr size_t kProfilesMax = 50;
constexpr const char* kRoleKeys[] = {"default", "access_point", "dns_proxy"};

const Row& row_of(const char* path)
{
    const auto found = std::find_if(rows().begin(), rows().end(), [path](const Row& row) { return row.path == path; });
    return *found;
}

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
        if (reach != Reach::kMerge && id != "0" && !wanted.map().count(id)) fates.gone.insert(id);
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
        if (reach != Reach::kMerge && !wanted.map().count(label)) fates.gone.insert(label);
    return fates;
}

class Planner {
public:
    Planner(const Value& document, const Module& module, Reach reach, bool judges)
        : document_(document), reach_(reach), judges_(judges && reach != Reach::kBack)
    {
        plan_.handles = match_profiles(document, module, &plan_.problems);
        present_ = as_document(module, plan_.handles, false);
        for (const auto& [label, handle] : all_labels(module))
            plan_.handles[label] = handle;
        unread_ = &module.unread;
    }

    Plan make()
    {
        lans_ = lan_fates(document_, present_, reach_);
        profiles_ = profile_fates(document_, present_, reach_);
        lay_out();
        check();
        if (!plan_.problems.empty()) return std::move(plan_);

        module_rows(Phase::kNewLans);
        mappings(Part::kRemovals);
        vlans();
        addressing();
        module_rows(Phase::kReservations);
        settings(Scope::kLan, Phase::kLanSettings);
        module_rows(Phase::kModule);
        const bool is_crowded = present_.child("profiles").map().size() + profiles_.made.size() > kProfilesMax;
        if (is_crowded) removed_profiles();
        dials();
        module_rows(Phase::kRoles);
        settings(Scope::kProfile, Phase::kProfileSettings);
        mappings(Part::kAdditions);
        if (!is_crowded) removed_profiles();
        module_rows(Phase::kService);
        module_rows(Phase::kCutting);
        module_rows(Phase::kWriteOnly);
        return std::move(plan_);
    }

private:
    enum class Part { kRemovals, kAdditions, kBoth };

    static std::map<std::string, uint32_t> all_labels(const Module& module)
    {
        std::map<std::string, uint32_t> labels;
        for (const auto& [handle, profile] : module.tree.child("profiles").map())
            labels[profile_name(id_of(handle))] = id_of(handle);
        return labels;
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
                if (row->shape == Shape::kUnit || row->shape == Shape::kKeyed)
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
        check_crowd();
        if (judges_) check_nets();
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
                for (const Unread& each : *unread_) {
                    if (each.path != record_path(row, row.scope == Scope::kProfile ? handle_text(name) : name))
                        continue;
                    const Value& at = row.shape == Shape::kUnit ? record.map().begin()->second : record;
                    problem(at, record_path(row, name), "cannot be read: " + in_words(each.result));
                }
            });
        }
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
    }

    // What the checks of what no network could use look at.
    static bool is_of_a_network(const Row& row)
    {
        const std::string& key = row.fields[0].key;
        return row.phase == Phase::kAddressing || row.phase == Phase::kReservations ||
               row.path == "nat.port_mappings" || key == "nat.dmz" || key == "general.routing_behind";
    }

    // As it will be, to the checks of what no network could use.
    void check_nets()
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
            if (!is_of_a_network(row)) continue;
            each_instance(wanted_, row.scope, [&](const std::string& name, const Value& instance) {
                if (is_absent(instance) || is_new(row.scope, name) || !is_named(row, instance)) return;
                Value& there = make_instance(&result, row.scope, name);
                Value record = record_of(row, instance);
                if (row.shape == Shape::kKeyed) {
                    const Value named = record;
                    record = laid_over(named, record_of(row, there));
                    for (const auto& [key, entry] : named.map())
                        if (is_absent(entry)) record.map().erase(key);
                }
                put_record(row, record, &there);
            });
        }
        const auto is_changed = [this](const std::string& path) { return changes(path); };
        check_plausible(result, is_changed, &plan_.problems, &plan_.warnings);
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
                const size_t dot = std::min(rest.find('.'), rest.size());
                return entries.child(rest.substr(0, dot)).at(rest.substr(std::min(dot + 1, rest.size())));
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
        const std::string who = step.row->scope == Scope::kLan ? "LAN " + step.name : step.name;
        if (step.row->interrupts && !step.is_new && step.row != &vlan_row())
            step.interrupts = step.row->interrupts(who, step.wanted, step.present);
        if (step.row->not_undone && !step.is_new) step.not_undone = step.row->not_undone(step.wanted, step.present);
        plan_.steps.push_back(std::move(step));
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
            put_pinholes_first(first);
        });
    }

    // A profile's pinholes can be set only while its firewall is on.
    void put_pinholes_first(size_t first)
    {
        const auto begin = plan_.steps.begin() + static_cast<std::ptrdiff_t>(first);
        const auto is_of = [](const char* key) {
            return [key](const Step& step) {
                return step.kind == Step::Kind::kWrite && step.wanted.map().count(key) != 0;
            };
        };
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
            step.interrupts = "VLAN " + id + " goes with all that stands on it";
            push(std::move(step));
            if (lans_.remade.count(id) != 0) add_vlan_step(id);
        }
        std::vector<std::string> up(lans_.made.begin(), lans_.made.end());
        std::sort(up.begin(), up.end(), [](const auto& a, const auto& b) { return id_of(a) < id_of(b); });
        for (const std::string& id : up)
            add_vlan_step(id);
    }

    void add_vlan_step(const std::string& id)
    {
        const Value& vlan = wanted_.child("lans").child(id).child("vlan");
        Step step = {Step::Kind::kAdd, &vlan_row(), id, "", vlan, {}, true};
        step.lines = {"lans." + id + ": + " + in_short(vlan)};
        push(std::move(step));
    }

    // ---- addressing: nets get free before they are taken ----

    struct Net {
        uint32_t address = 0;
        uint32_t mask = 0;
        bool is_known = false;

        bool meets(const Net& other) const
        {
            return is_known && other.is_known && ((address ^ other.address) & mask & other.mask) == 0;
        }
    };

    static Net net_of(const Value& lan)
    {
        Net net;
        net.is_known = lan.has("address");
        if (net.is_known) split_net(lan.child("address").text(), &net.address, &net.mask);
        return net;
    }

    void addressing()
    {
        struct Move {
            std::string id;
            Net from;
            Net to;
        };
        std::list<Move> moves;
        each_instance(wanted_, Scope::kLan, [&](const std::string& id, const Value& lan) {
            if (!is_absent(lan)) moves.push_back({id, net_of(base_.child("lans").child(id)), net_of(lan)});
        });
        if (!moves.empty() && moves.front().id == "0") moves.splice(moves.end(), moves, moves.begin());
        while (!moves.empty()) {
            const auto is_free = [&moves](const Move& move) {
                return std::none_of(moves.begin(), moves.end(), [&move](const Move& other) {
                    return move.to.meets(other.from) && other.to.is_known && &other != &move;
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
            changes_of(*row, id, instance_of(wanted_, Scope::kLan, id), instance_of(base_, Scope::kLan, id),
                       Part::kBoth, forced);
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
                              [&](const std::string&, const Value& lan) { taken |= net.meets(net_of(lan)); });
            }
            return taken;
        };
        for (uint32_t third = 0; third < 256; ++third) {
            const Net net = {(10u << 24) | (254u << 16) | (third << 8) | 1, 0xffffff00, true};
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

    void dials()
    {
        for (const auto& [label, profile] : document_.child("profiles").map()) {
            if (is_absent(profile) || profiles_.made.count(label) != 0) continue;
            changes_of(dial_row(), label, profile, base_.child("profiles").child(label), Part::kBoth);
        }
        for (const std::string& label : profiles_.made) {
            const Value& dial = document_.child("profiles").child(label).child("dial");
            Step step = {Step::Kind::kAdd, &dial_row(), label, "", dial, {}, true};
            step.lines = {"profiles." + label + ": + " + in_short(dial)};
            push(std::move(step));
        }
    }

    void removed_profiles()
    {
        std::vector<std::string> down(profiles_.gone.begin(), profiles_.gone.end());
        std::sort(down.begin(), down.end(),
                  [this](const auto& a, const auto& b) { return plan_.handles[a] > plan_.handles[b]; });
        for (const std::string& label : down) {
            const Value& dial = present_.child("profiles").child(label).child("dial");
            Step step = {Step::Kind::kRemove, &dial_row(), label, "", {}, dial};
            step.lines = {"profiles." + label + ": - " + in_short(dial)};
            step.not_undone = "the handle " + std::to_string(plan_.handles[label]) + " and the counts of " + label;
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
            step.lines = {join_path(above, row.path) + ": " + in_short(present) + " -> " + in_short(wanted)};
        } else {
            for (const Field& field : row.fields) {
                const Value& value = wanted.child(field.key);
                const Value& old = present.child(field.key);
                if (value.is_nothing() || (value == old && !row.write_only)) continue;
                step.lines.push_back(join_path(above, field.key) + ": " + (old.is_nothing() ? "?" : in_short(old)) +
                                     " -> " + in_short(value));
            }
            if (step.lines.empty() && !forced) return;
            step.wanted = laid_over(wanted, present);
        }
        push(std::move(step));
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
            if (reach_ != Reach::kMerge && !wanted.map().count(key)) gone.insert(key);

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

    const Value& document_;
    const Reach reach_;
    const bool judges_;
    const std::vector<Unread>* unread_ = nullptr;
    Value present_;  // of the module, with labels
    Value wanted_;
    Value base_;
    Fates lans_;
    Fates profiles_;
    Plan plan_;
};

// Handles by what their profiles dial with.
std::multimap<Value, uint32_t> by_dial(const Module& module)
{
    std::multimap<Value, uint32_t> handles;
    for (const auto& [handle, profile] : module.tree.child("profiles").map())
        handles.emplace(profile.child("dial"), id_of(handle));
    return handles;
}

// The label of a role's profile; "none" stays.
std::string label_of(const std::string& handle, const std::map<std::string, uint32_t>& labels)
{
    if (handle.empty() || handle.find_first_not_of("0123456789") != std::string::npos) return handle;
    for (const auto& [label, each] : labels)
        if (std::to_string(each) == handle) return label;
    return profile_name(id_of(handle));
}

// The row before it is named, and finished by this one.
bool follows_named(const Row& row, const Value& instance)
{
    const Row* const before = &row > rows().data() ? &row - 1 : nullptr;
    return before != nullptr && before->next_follows && is_named(*before, instance);
}

}  // namespace

std::map<std::string, uint32_t> match_profiles(const Value& document, const Module& module, Problems* problems)
{
    std::map<std::string, uint32_t> labels;
    std::set<uint32_t> taken;
    const Value::Map& wanted = document.child("profiles").map();
    const Value& there = module.tree.child("profiles");
    for (const auto& [label, profile] : wanted) {
        const Value& handle = profile.child("handle");
        if (handle.is_nothing() || there.child(handle.text()).is_nothing()) continue;
        labels[label] = handle.number();
        taken.insert(handle.number());
    }
    const std::multimap<Value, uint32_t> dialled = by_dial(module);
    for (const auto& [label, profile] : wanted) {
        if (labels.count(label) != 0) continue;
        std::vector<uint32_t> candidates;
        const auto [first, last] = dialled.equal_range(profile.child("dial"));
        for (auto each = first; each != last; ++each)
            if (taken.count(each->second) == 0) candidates.push_back(each->second);
        if (candidates.size() > 1) {
            std::string handles;
            for (const uint32_t handle : candidates)
                handles += (handles.empty() ? "" : ", ") + std::to_string(handle);
            problems->push_back({profile.mark, "profiles." + label,
                                 "several profiles dial with this; say which handle it is: " + handles});
        } else if (candidates.size() == 1) {
            labels[label] = candidates[0];
            taken.insert(candidates[0]);
        } else if (is_absent(profile)) {
            // A label without a profile of its own may be the name that show gave one.
            for (const auto& [handle, other] : there.map())
                if (label == profile_name(id_of(handle)) && taken.count(id_of(handle)) == 0)
                    labels[label] = id_of(handle);
        }
    }
    return labels;
}

Value as_document(const Module& module, const std::map<std::string, uint32_t>& labels, bool with_handles)
{
    Value document = module.tree;
    const std::multimap<Value, uint32_t> dialled = by_dial(module);
    Value::Map profiles;
    for (const auto& [handle, profile] : module.tree.child("profiles").map()) {
        std::string label = label_of(handle, labels);
        // A label of the document's that happens to be the name of another profile.
        if (labels.count(label) != 0 && labels.at(label) != id_of(handle)) label = "other-" + label;
        Value named = profile;
        const auto [first, last] = dialled.equal_range(profile.child("dial"));
        if (with_handles || std::distance(first, last) > 1) named.map()["handle"] = Value(handle);
        profiles.emplace(label, std::move(named));
    }
    document.map()["profiles"] = Value(std::move(profiles));
    if (document.has("roles")) {
        for (auto& [role, handle] : document.make("roles").map())
            handle = Value(label_of(handle.text(), labels));
    }
    return document;
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
    std::set<uint32_t> whole_profiles;
    for (const std::string& label : profiles.gone)
        whole_profiles.insert(labels.count(label) != 0 ? labels.at(label) : id_of(label.substr(label.rfind('-') + 1)));
    std::map<uint32_t, std::string> names_of_handles;
    for (const auto& [label, handle] : labels)
        names_of_handles[handle] = label;

    Wish wish;
    // Nets are looked at as a whole as soon as one of them is named, and roles before a profile goes.
    const bool has_lans = document.has("lans");
    const bool looks_at_hosts = has_lans || document.has("reservations") || document.has("profiles");
    const bool has_mappings_to_keep = !whole_lans.empty();
    const bool loses_profiles = !whole_profiles.empty();
    wish.row = [&document, has_lans, loses_profiles](const Row& row) {
        if (row.phase == Phase::kRoles && loses_profiles) return true;
        if (has_lans && (row.phase == Phase::kReservations || row.fields[0].key == "general.routing_behind"))
            return true;
        return is_named(row, document) || (row.fields[0].key == "general.routing_behind" && document.has("profiles"));
    };
    wish.scoped = [&document, whole_lans, whole_profiles, names_of_handles, looks_at_hosts, has_lans,
                   has_mappings_to_keep](const Row& row, uint32_t id) {
        if (row.scope == Scope::kLan) {
            if (whole_lans.count(id) != 0 || (row.phase == Phase::kAddressing && looks_at_hosts)) return true;
            const Value& lan = document.child("lans").child(std::to_string(id));
            return is_named(row, lan) || follows_named(row, lan);
        }
        if (whole_profiles.count(id) != 0) return true;
        if (row.phase == Phase::kMapping && has_mappings_to_keep) return true;
        if (has_lans && (row.path == "nat.port_mappings" || row.fields[0].key == "nat.dmz")) return true;
        const auto label = names_of_handles.find(id);
        if (label == names_of_handles.end()) return false;
        return is_named(row, document.child("profiles").child(label->second));
    };
    return wish;
}

Plan make_plan(const Value& document, const Module& module, Reach reach, bool judges)
{
    return Planner(document, module, reach, judges).make();
}

}  // namespace ctl
