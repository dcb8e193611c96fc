#include "module.h"

#include <algorithm>

#include "lan_vlan.h"
#include "tree.h"
#include "wan_profile.h"

namespace ctl {
namespace {

bool is_missing(const Row& row, const Result& result)
{
    return std::find(row.missing_codes.begin(), row.missing_codes.end(), result.code) != row.missing_codes.end();
}

class Reading {
public:
    Reading(const Wish& wish, Module* module) : wish_(wish), module_(module) {}

    void read()
    {
        for (const Row& row : rows()) {
            if (row.write_only || row.is_scope) continue;  // VLANs and dials are read with the lists
            if (row.scope == Scope::kModule) {
                if (!wish_.row || wish_.row(row)) one(row, 0, "", &module_->tree);
            } else if (row.read_all) {
                all(row);
            } else {
                each(row);
            }
        }
        roles();
    }

private:
    const Value::Map& names(Scope scope) const
    {
        return module_->tree.child(scope == Scope::kLan ? "lans" : "profiles").map();
    }

    bool wishes(const Row& row, uint32_t id) const
    {
        return !wish_.scoped || wish_.scoped(row, id);
    }

    void each(const Row& row)
    {
        for (const auto& [name, instance] : names(row.scope)) {
            const uint32_t id = Value(name).number();
            if (wishes(row, id)) one(row, id, name, &make_instance(&module_->tree, row.scope, name));
        }
    }

    void all(const Row& row)
    {
        const auto& known = names(row.scope);
        const bool is_wished = std::any_of(known.begin(), known.end(),
                                           [&](const auto& each) { return wishes(row, Value(each.first).number()); });
        if (!is_wished) return;
        std::map<uint32_t, Value> records;
        const Result result = row.read_all(&records);
        if (!result.good()) {
            module_->unread.push_back({record_path(row, "*"), result, is_missing(row, result)});
            return;
        }
        for (const auto& [name, instance] : known) {
            Value& record = records[Value(name).number()];
            if (record.is_nothing()) record.list();
            record.list() = sorted(record.list());
            if (wishes(row, Value(name).number()))
                put_record(row, record, &make_instance(&module_->tree, row.scope, name));
        }
    }

    // The service keeps the handle of a profile that was never there.
    void roles()
    {
        if (!module_->tree.has("roles")) return;
        Value::Map& roles = module_->tree.make("roles").map();
        for (auto role = roles.begin(); role != roles.end();) {
            const std::string& handle = role->second.text();
            if (handle == "none" || names(Scope::kProfile).count(handle) != 0) {
                ++role;
                continue;
            }
            const Result odd = {0, "", "it is given to profile " + handle + ", which is not there"};
            module_->unread.push_back({"roles." + role->first, odd, true, true});
            role = roles.erase(role);
        }
    }

    void one(const Row& row, uint32_t id, const std::string& name, Value* instance)
    {
        Value record;
        const Result result = read_record(row, id, &record);
        if (result.good() && row.shape == Shape::kList) record.list() = sorted(record.list());
        if (result.good())
            put_record(row, record, instance);
        else
            module_->unread.push_back({record_path(row, name), result, is_missing(row, result)});
    }

    const Wish& wish_;
    Module* module_;
};

}  // namespace

Module read_lists()
{
    Module module;
    const Result vlans = read_lans(&module.tree.make("lans"));
    if (!vlans.good()) throw Refusal{"lans", vlans};
    module.tree.make("lans").map()["0"].map();
    uint32_t default_handle = 0;  // read with the roles
    const Result profiles = read_profiles(&module.tree.make("profiles"), &default_handle);
    if (!profiles.good()) throw Refusal{"profiles", profiles};
    return module;
}

void read_settings(const Wish& wish, Module* module)
{
    Reading(wish, module).read();
}

Result read_record(const Row& row, uint32_t id, Value* record)
{
    if (!row.read_all) {
        Result result = row.read(id, record);
        // An empty list or group is one that was read.
        if (result.good() && row.shape == Shape::kList) record->list();
        if (result.good() && row.shape == Shape::kKeyed) record->map();
        return result;
    }
    std::map<uint32_t, Value> records;
    Result result = row.read_all(&records);
    if (result.good()) *record = records[id].is_nothing() ? Value(Value::List()) : records[id];
    return result;
}

std::string profile_name(uint32_t handle)
{
    return "profile-" + std::to_string(handle);
}

uint32_t profile_handle(const std::string& name)
{
    for (uint32_t handle = 1; handle <= kProfilesMax; ++handle)
        if (name == profile_name(handle)) return handle;
    return 0;
}

std::string join_path(const std::string& above, const std::string& key)
{
    return above.empty() ? key : key.empty() ? above : above + "." + key;
}

std::string instance_path(Scope scope, const std::string& name)
{
    if (scope == Scope::kModule) return "";
    return (scope == Scope::kLan ? "lans." : "profiles.") + name;
}

std::string record_path(const Row& row, const std::string& instance)
{
    const std::string below = row.shape == Shape::kUnit ? row.fields[0].key : row.path;
    return join_path(instance_path(row.scope, instance), below);
}

void each_instance(const Value& tree, Scope scope,
                   const std::function<void(const std::string& name, const Value& instance)>& work)
{
    if (scope == Scope::kModule) return work("", tree);
    for (const auto& [name, instance] : tree.child(scope == Scope::kLan ? "lans" : "profiles").map())
        work(name, instance);
}

const Value& instance_of(const Value& tree, Scope scope, const std::string& name)
{
    if (scope == Scope::kModule) return tree;
    return tree.child(scope == Scope::kLan ? "lans" : "profiles").child(name);
}

Value& make_instance(Value* tree, Scope scope, const std::string& name)
{
    if (scope == Scope::kModule) return *tree;
    return tree->make(scope == Scope::kLan ? "lans" : "profiles").map()[name];
}

}  // namespace ctl
