// What a module has, read through the table of keys.
#ifndef ZR_NEXA_CTL_MODULE_H
#define ZR_NEXA_CTL_MODULE_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "keys.h"
#include "value.h"

namespace ctl {

// A setting that could not be read.
struct Unread {
    std::string path;
    Result result;
    bool is_missing;      // the module says that it has not got this, which is no failure
    bool is_odd = false;  // it was read, and no document can say it
};

// What the module has, as a document says it; but profiles stand under their handles, roles are handles, and every
// profile and LAN is there. A role of a profile that is not there is left out.
struct Module {
    Value tree;
    std::vector<Unread> unread;
};

// What of it is to be read.
struct Wish {
    std::function<bool(const Row& row)> row = nullptr;  // of the module's own; null: all
    // Of a LAN or profile, by its id or handle; null: all.
    std::function<bool(const Row& row, uint32_t id)> scoped = nullptr;
};

// Reads which LANs and profiles there are, and what they were made with. A refusal is thrown as a Refusal.
Module read_lists();

// Reads the rest of it.
void read_settings(const Wish& wish, Module* module);

// Reads one record once more.
Result read_record(const Row& row, uint32_t id, Value* record);

struct Refusal {
    std::string path;
    Result result;
};

// "profile-2"
std::string profile_name(uint32_t handle);
// The handle that such a name says; 0 for another one.
uint32_t profile_handle(const std::string& name);

// The path of a record, for people: "lans.10.dhcp.enabled", "profiles.office.nat.port_mappings".
std::string record_path(const Row& row, const std::string& instance);
// The path of an instance: "lans.10", or nothing for the module.
std::string instance_path(Scope scope, const std::string& name);
// A path below another one.
std::string join_path(const std::string& above, const std::string& key);

// For each entry of this scope: its name and its tree. The module itself is one without a name.
void each_instance(const Value& tree, Scope scope,
                   const std::function<void(const std::string& name, const Value& instance)>& work);
const Value& instance_of(const Value& tree, Scope scope, const std::string& name);
Value& make_instance(Value* tree, Scope scope, const std::string& name);

}  // namespace ctl

#endif
