#include "checks.h"

#include <algorithm>
#include <map>
#include <set>

#include "lan_vlan.h"
#include "module.h"
#include "tree.h"
#include "wan_profile.h"

namespace ctl {
namespace {

// A key of nothing is one too.
std::string below(const std::string& path, const std::string& key)
{
    return path.empty() ? key : path + "." + key;
}

class Checker {
public:
    Checker(Problems* problems, bool is_held) : problems_(problems), is_held_(is_held) {}

    void document(Value* tree)
    {
        if (!tree->is_map()) {
            return complain(*tree, "", "a group of keys is expected, with version: 1");
        }
        version(tree);
        group(key_tree(), "", tree, {"version"});
        if (is_held_) return;
        for (const Problem& each : *problems_)
            told_.insert(each.path);
        for (const Scope scope : {Scope::kModule, Scope::kLan, Scope::kProfile}) {
            each_instance(*tree, scope,
                          [&](const std::string& name, const Value& instance) { units(scope, name, instance); });
        }
        lans(tree->child("lans"));
        profiles(tree->child("profiles"));
        roles(*tree);
        reservations(tree->child("reservations"));
    }

private:
    void complain(const Value& at, const std::string& path, const std::string& problem)
    {
        if (at.is_nothing()) return;  // told when it was read
        add_problem(problems_, {at.mark, path.substr(path.rfind('.', 0) == 0 ? 1 : 0), problem});
    }

    Complain complainer()
    {
        return [this](const Value& at, const std::string& path, const std::string& problem) {
            complain(at, path, problem);
        };
    }

    void version(Value* tree)
    {
        const Value& version = tree->child("version");
        if (version.is_nothing())
            complain(*tree, "", "version is missing");
        else if (version.text() != std::to_string(kVersion) || version.quoted())
            complain(version, "version", "1 is known, " + as_found(version) + " is not");
    }

    void group(const Node& node, const std::string& path, Value* value, const std::vector<std::string>& more = {})
    {
        if (!value->is_map()) return complain(*value, path, "a group of keys, not " + as_found(*value));
        for (auto& [key, each] : value->map()) {
            if (std::find(more.begin(), more.end(), key) != more.end()) continue;
            const Node* const child = node.child(key);
            if (child != nullptr) {
                member(*child, below(path, key), &each);
                continue;
            }
            std::vector<std::string> known = more;
            for (const Node& other : node.children)
                known.push_back(other.key);
            complain(each, below(path, key), no_such_key(key, known));
        }
    }

    void member(const Node& node, const std::string& path, Value* value)
    {
        switch (node.kind) {
            case Node::Kind::kGroup:
                return group(node, path, value);
            case Node::Kind::kField:
                normalize(node.field->type, path, value, complainer());
                return;
            case Node::Kind::kWhole:
                return record(*node.row, path, value);
            case Node::Kind::kList:
                return entries(*node.row, path, value);
            case Node::Kind::kKeyed:
                return keyed(*node.row, path, value);
            case Node::Kind::kLans:
                return scopes(node, path, value, number(0, kVlanIdMax), {});
            case Node::Kind::kProfiles:
                return scopes(node, path, value, text(1, 100), {"handle"});
        }
    }

    void record(const Row& row, const std::string& path, Value* value)
    {
        if (!value->is_map()) return complain(*value, path, "a group of keys, not " + as_found(*value));
        if (normalize_record(row.fields, path, value, complainer()) && row.check) row.check(*value, path, complainer());
    }

    void entries(const Row& row, const std::string& path, Value* value)
    {
        if (!value->is_list()) return complain(*value, path, "a list, not " + as_found(*value));
        if (value->list().size() > row.most)
            complain(*value, path,
                     std::to_string(value->list().size()) + " entries, " + std::to_string(row.most) + " are the most");
        for (size_t i = 0; i < value->list().size(); ++i) {
            const std::string place = path + "[" + std::to_string(i) + "]";
            if (row.fields[0].key.empty())
                normalize(row.fields[0].type, place, &value->list()[i], complainer());
            else
                record(row, place, &value->list()[i]);
        }
        value->list() = sorted(value->list());
        if (row.once) twice(row, path, *value);
    }

    // What can be read only is not told apart, and may be there several times.
    void twice(const Row& row, const std::string& path, const Value& value)
    {
        for (size_t i = 1; i < value.list().size(); ++i) {
            const Value& entry = value.list()[i];
            if (entry != value.list()[i - 1] || (row.not_undone && !row.not_undone({}, entry).empty())) continue;
            complain(entry, path, in_short(entry) + " stands twice");
        }
    }

    // The normal spelling of a key; the key itself when it has none.
    std::string normal_key(const Type& type, const std::string& path, const std::string& key, const Value& at)
    {
        Value name = key;
        const auto wrong = [&](const Value&, const std::string&, const std::string& problem) {
            complain(at, path, "a key here is " + problem);
        };
        normalize(type, path, &name, wrong);
        return name.text();
    }

    // "absent: true" stands alone: what is to go has no settings. A profile may say by what it is known.
    bool is_absent(const std::string& path, Value* value, const std::vector<std::string>& more = {})
    {
        if (!value->is_map() || !value->has("absent")) return false;
        const Value& absent = value->child("absent");
        if (absent.text() != "true" || absent.quoted())
            complain(absent, path + ".absent", "true, not " + as_found(absent) + "; leave the key out to keep it");
        const auto is_other = [&more](const auto& each) {
            return each.first != "absent" && std::find(more.begin(), more.end(), each.first) == more.end();
        };
        if (std::any_of(value->map().begin(), value->map().end(), is_other))
            complain(*value, path, "is absent, and has other keys too");
        return true;
    }

    void keyed(const Row& row, const std::string& path, Value* value)
    {
        if (!value->is_map()) return complain(*value, path, "a group of keys, not " + as_found(*value));
        Value::Map normal;
        size_t count = 0;
        for (auto& [key, each] : value->map()) {
            const std::string place = below(path, key);
            const std::string name = normal_key(row.key, place, key, each);
            if (!is_absent(place, &each)) {
                record(row, place, &each);
                ++count;
            }
            if (!normal.emplace(name, each).second) complain(each, place, "stands twice");
        }
        if (count > row.most && !is_held_)
            complain(*value, path, std::to_string(count) + " entries, " + std::to_string(row.most) + " are the most");
        value->map() = std::move(normal);
    }

    void scopes(const Node& node, const std::string& path, Value* value, const Type& key_type,
                const std::vector<std::string>& more)
    {
        if (!value->is_map()) return complain(*value, path, "a group of keys, not " + as_found(*value));
        const bool are_lans = node.kind == Node::Kind::kLans;
        size_t count = 0;
        for (auto& [key, each] : value->map()) {
            const std::string place = below(path, key);
            normal_key(key_type, place, key, each);
            if (!are_lans && key == "none") complain(each, place, "none is no label");
            if (is_absent(place, &each, are_lans ? more : std::vector<std::string>{"handle", "dial"})) {
                if (are_lans && key == "0") complain(each, place, "the default LAN is always there");
            } else if (!are_lans || key != "0") {
                ++count;
            }
            if (are_lans && key == "0")
                for (const char* const other : {"vlan", "passthrough_nat"})
                    if (each.has(other)) complain(each.child(other), below(place, other), "not of the default LAN");
            std::vector<std::string> known = more;
            known.emplace_back("absent");
            if (each.has("handle") && !more.empty())
                normalize(number(1, kProfilesMax), place + ".handle", &each.make("handle"), complainer());
            group(node, place, &each, known);
        }
        const size_t most = are_lans ? kVlansMax : kProfilesMax;
        if (count > most && !is_held_)
            complain(*value, path,
                     std::to_string(count) + (are_lans ? " VLANs, " : " profiles, ") + std::to_string(most) +
                         " are the most");
    }

    // ---- what belongs together ----

    // What a document says of a unit may be a part of it.
    void units(Scope scope, const std::string& name, const Value& instance)
    {
        for (const Row* row : rows_of(scope)) {
            if (row->shape != Shape::kUnit || !row->check) continue;
            const Value record = record_of(*row, instance);
            const std::string path = instance_path(scope, name);
            const bool is_wrong = std::any_of(row->fields.begin(), row->fields.end(),
                                              [&](const Field& field) { return is_told(below(path, field.key)); });
            if (!record.is_nothing() && !is_wrong) row->check(record, path, complainer());
        }
    }

    // Something there is wrong in itself, and what it belongs to cannot be judged.
    bool is_told(const std::string& path) const
    {
        const auto first = told_.lower_bound(path);
        const auto is_in = [&path](const std::string& told) {
            return told.rfind(path, 0) == 0 &&
                   (told.size() == path.size() || told[path.size()] == '.' || told[path.size()] == '[');
        };
        return std::any_of(first, told_.end(), is_in);
    }

    void lans(const Value& lans)
    {
        for (const auto& [id, lan] : lans.map()) {
            const Value& mode = lan.at("l2tp.mode");
            const Value& tunnels = lan.at("l2tp.tunnels");
            if (mode.text() != "managed" || tunnels.is_nothing() || is_told("lans." + id + ".l2tp")) continue;
            if (std::all_of(tunnels.map().begin(), tunnels.map().end(),
                            [](const auto& tunnel) { return tunnel.second.has("absent"); }))
                complain(mode, "lans." + id + ".l2tp.mode", "managed needs a tunnel");
        }
    }

    static std::string labels_of(const Value& profiles)
    {
        std::string text;
        for (const auto& [label, each] : profiles.map())
            text += (text.empty() ? "" : ", ") + label;
        return text;
    }

    void profiles(const Value& profiles)
    {
        std::map<std::string, std::string> by_handle;
        std::map<Value, std::string> by_dial;
        for (const auto& [label, each] : profiles.map()) {
            const std::string path = "profiles." + label;
            const Value& handle = each.child("handle");
            const Value& dial = each.child("dial");
            if (handle.is_nothing() && dial.is_nothing() && !is_told(path)) {
                if (!each.has("absent"))
                    complain(each, path, "dial is missing, or the handle of one that is there");
                else if (profile_handle(label) == 0)
                    complain(each, path,
                             "is absent, and has neither dial nor handle, by which it is known on a module");
            }
            if (!handle.is_nothing()) {
                const auto [place, is_new] = by_handle.emplace(handle.text(), label);
                if (!is_new) complain(handle, path + ".handle", place->second + " has this handle already");
            } else if (!dial.is_nothing()) {
                const auto [place, is_new] = by_dial.emplace(dial, label);
                if (!is_new) complain(dial, path + ".dial", place->second + " dials with the same; say their handles");
            }
        }
    }

    void roles(const Value& tree)
    {
        for (const auto& [role, label] : tree.child("roles").map()) {
            if (label.text() == "none" || is_told("roles." + role)) continue;  // none: as a module may have it
            const Value& profiles = tree.child("profiles");
            if (!profiles.is_nothing() && !profiles.is_map()) return;
            const Value& profile = profiles.child(label.text());
            // One that the document does not have may be named as show names it.
            if (profile.is_nothing() && profile_handle(label.text()) != 0) continue;
            if (profile.is_nothing())
                complain(label, "roles." + role,
                         "no profile \"" + label.text() + "\"; " +
                             (profiles.map().empty() ? "profiles are not in the document"
                                                     : "profiles are " + labels_of(profiles)));
            else if (profile.has("absent"))
                complain(label, "roles." + role, label.text() + " is absent");
        }
    }

    void reservations(const Value& reservations)
    {
        std::map<std::string, std::string> by_mac;
        for (const auto& [address, each] : reservations.map()) {
            if (each.has("absent")) continue;
            const auto [place, is_new] = by_mac.emplace(each.child("mac").text(), address);
            if (!is_new)
                complain(each.child("mac"), "reservations." + address + ".mac",
                         place->second + " is for this MAC already");
        }
    }

    Problems* problems_;
    std::set<std::string> told_;  // paths at which something is wrong
    const bool is_held_;
};

// ---- what no network could use ----

struct LanNet {
    std::string id;
    const Value* lan;
    Net net;
};

class Plausibility {
public:
    Plausibility(const Value& tree, const std::function<bool(const std::string&)>& is_changed, Problems* problems,
                 Problems* warnings)
        : tree_(tree), is_changed_(is_changed), problems_(problems), warnings_(warnings)
    {
    }

    void check()
    {
        for (const auto& [id, lan] : tree_.child("lans").map())
            check_lan(id, lan);
        check_hosts();
    }

private:
    // About values at these paths; `at` says where in the document.
    void tell(const Value& at, const std::string& path, const std::vector<std::string>& about, const std::string& text)
    {
        const bool is_change = std::any_of(about.begin(), about.end(), is_changed_);
        (is_change ? problems_ : warnings_)->push_back({at.mark, path, text});
    }

    static bool is_in_document(const Value& value)
    {
        return value.mark.line != 0;
    }

    void check_lan(const std::string& id, const Value& lan)
    {
        const std::string path = "lans." + id;
        const std::string net_path = path + ".address";
        const std::string first_path = path + ".dhcp.first";
        const std::string last_path = path + ".dhcp.last";
        const Value& lease = lan.at("dhcp.lease_seconds");
        if (!lease.is_nothing() && (lease.number() == 0 || lease.number() > 2147483647u))
            tell(lease, path + ".dhcp.lease_seconds", {path + ".dhcp.lease_seconds"},
                 "1 to 2147483647, not " + lease.text());
        const Value& mtu = lan.at("dhcp.mtu");
        if (!mtu.is_nothing() && mtu.number() != 0 && (mtu.number() < 576 || mtu.number() > 9216))
            tell(mtu, path + ".dhcp.mtu", {path + ".dhcp.mtu"}, "0, or 576 to 9216, not " + mtu.text());
        const Value& address = lan.child("address");
        if (address.is_nothing()) return;

        Net net;
        split_net(address.text(), &net.address, &net.mask);
        if (address.text().find('.', address.text().find('/')) != std::string::npos)
            tell(address, net_path, {net_path}, "the netmask has holes");
        const Value& first = lan.at("dhcp.first");
        const Value& last = lan.at("dhcp.last");
        if (!first.is_nothing() && !last.is_nothing()) {
            const uint32_t low = ipv4_of(first.text());
            const uint32_t high = ipv4_of(last.text());
            const std::vector<std::string> all = {net_path, first_path, last_path};
            if (low > high)
                tell(first, first_path, {first_path, last_path}, "behind the last one, " + last.text());
            else if (net.address >= low && net.address <= high)
                tell(address, net_path, all, "in the pool " + first.text() + " to " + last.text());
            // Where the document leaves them to the module, its address is at fault.
            if (!net.holds(low))
                tell(is_in_document(first) ? first : address, first_path, {net_path, first_path},
                     first.text() + " is outside of " + address.text());
            if (!net.holds(high))
                tell(is_in_document(last) ? last : address, last_path, {net_path, last_path},
                     last.text() + " is outside of " + address.text());
        }
        for (const LanNet& other : nets_) {
            if (!net.meets(other.net)) continue;
            tell(address, net_path, {net_path, "lans." + other.id + ".address"},
                 "overlaps LAN " + other.id + ", " + other.lan->child("address").text());
        }
        nets_.push_back({id, &lan, net});
    }

    bool is_in_a_lan(const std::string& host) const
    {
        const uint32_t address = ipv4_of(host);
        return std::any_of(nets_.begin(), nets_.end(),
                           [address](const LanNet& each) { return each.net.holds(address); });
    }

    void check_hosts()
    {
        if (nets_.empty()) return;
        for (const auto& [address, each] : tree_.child("reservations").map()) {
            const std::string path = "reservations." + address;
            if (!is_in_a_lan(address)) tell(each, path, {path, "lans"}, "outside of every LAN");
        }
        const bool behind = tree_.at("general.routing_behind").flag();
        for (const auto& [label, profile] : tree_.child("profiles").map()) {
            const std::string path = "profiles." + label + ".nat";
            const Value& dmz = profile.at("nat.dmz");
            if (!behind && !dmz.is_nothing() && dmz.text() != "none" && !is_in_a_lan(dmz.text()))
                tell(dmz, path + ".dmz", {path + ".dmz", "lans"},
                     "outside of every LAN, and general.routing_behind is false");
            std::map<std::string, std::string> by_port;
            for (const Value& rule : profile.at("nat.port_mappings").list()) {
                const Value& host = rule.child("host");
                if (!behind && !is_in_a_lan(host.text()))
                    tell(rule, path + ".port_mappings", {path + ".port_mappings", "lans"},
                         host.text() + " is outside of every LAN, and general.routing_behind is false");
                if (!rule.has("global_port")) continue;
                const std::string port = rule.child("protocol").text() + " " + rule.child("global_port").text();
                const auto [place, is_new] = by_port.emplace(port, host.text());
                if (!is_new && place->second != host.text())
                    warnings_->push_back({rule.mark, path + ".port_mappings",
                                          "two rules for " + port + ", to " + place->second + " and " + host.text()});
            }
        }
    }

    const Value& tree_;
    const std::function<bool(const std::string&)>& is_changed_;
    Problems* problems_;
    Problems* warnings_;
    std::vector<LanNet> nets_;
};

}  // namespace

Value check_document(Value document, Problems* problems, bool is_held)
{
    try {
        if (!document.is_nothing()) Checker(problems, is_held).document(&document);
    } catch (const Enough&) {
        // what is wrong with it is told
    }
    return document;
}

void check_plausible(const Value& tree, const std::function<bool(const std::string& path)>& is_changed,
                     Problems* problems, Problems* warnings)
{
    Plausibility(tree, is_changed, problems, warnings).check();
}

}  // namespace ctl
