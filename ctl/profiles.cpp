// Profiles and the labels by which documents name them.
#include <algorithm>
#include <set>

#include "plan.h"

namespace ctl {
namespace {

// Handles by what their profiles dial with.
std::multimap<Value, uint32_t> by_dial(const Module& module)
{
    std::multimap<Value, uint32_t> handles;
    for (const auto& [handle, profile] : module.tree.child("profiles").map())
        handles.emplace(profile.child("dial"), Value(handle).number());
    return handles;
}

// The label of a role's profile; "none" stays.
std::string label_of(const std::string& handle, const std::map<uint32_t, std::string>& labels)
{
    const auto found = labels.find(Value(handle).number());
    return found == labels.end() ? handle : found->second;
}

}  // namespace

std::map<uint32_t, std::string> labels_by_handle(const Module& module, const std::map<std::string, uint32_t>& labels)
{
    std::map<uint32_t, std::string> all;
    for (const auto& [label, handle] : labels)
        all[handle] = label;
    for (const auto& [handle, profile] : module.tree.child("profiles").map()) {
        std::string label = profile_name(Value(handle).number());
        // It may be the document's label for another one.
        while (labels.count(label) != 0)
            label.insert(0, "other-");
        all.emplace(Value(handle).number(), label);
    }
    return all;
}

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
    std::map<Value, std::vector<uint32_t>> dialled;
    for (const auto& [dial, handle] : by_dial(module))
        if (taken.count(handle) == 0) dialled[dial].push_back(handle);
    std::map<Value, std::vector<std::string>> wishes;
    for (const auto& [label, profile] : wanted)
        if (labels.count(label) == 0 && profile.has("dial")) wishes[profile.child("dial")].push_back(label);
    for (auto& [dial, wishing] : wishes) {
        std::vector<uint32_t>& candidates = dialled[dial];
        std::sort(candidates.begin(), candidates.end());
        std::stable_sort(wishing.begin(), wishing.end(), [&wanted](const auto& a, const auto& b) {
            return wanted.at(a).child("handle").number() < wanted.at(b).child("handle").number();
        });
        if (candidates.size() > wishing.size()) {
            std::string handles;
            for (const uint32_t handle : candidates)
                handles += (handles.empty() ? "" : ", ") + std::to_string(handle);
            for (const std::string& label : wishing)
                problems->push_back({wanted.at(label).mark, "profiles." + label,
                                     "several profiles dial with this; say which handle it is: " + handles});
        }
        // As many: by the order of their handles.
        for (size_t i = 0; i < std::min(candidates.size(), wishing.size()); ++i) {
            labels[wishing[i]] = candidates[i];
            taken.insert(candidates[i]);
        }
    }
    for (const auto& [label, profile] : wanted) {
        if (labels.count(label) == 0 && profile.has("absent") && !profile.has("dial")) {
            // A label without a profile of its own may be the name that show gave one.
            for (const auto& [handle, other] : there.map())
                if (label == profile_name(Value(handle).number()) && taken.count(Value(handle).number()) == 0)
                    labels[label] = Value(handle).number();
        }
    }
    return labels;
}

Value as_document(const Module& module, const std::map<std::string, uint32_t>& labels, bool with_handles)
{
    Value document = module.tree;
    // Twins are told apart by their handles.
    const auto dialled = with_handles ? std::multimap<Value, uint32_t>() : by_dial(module);
    const std::map<uint32_t, std::string> all = labels_by_handle(module, labels);
    Value::Map profiles;
    for (const auto& [handle, profile] : module.tree.child("profiles").map()) {
        Value named = profile;
        if (with_handles || dialled.count(profile.child("dial")) > 1) named.map()["handle"] = Value(handle);
        profiles.emplace(all.at(Value(handle).number()), std::move(named));
    }
    document.map()["profiles"] = Value(std::move(profiles));
    if (document.has("roles")) {
        for (auto& [role, handle] : document.make("roles").map())
            handle = Value(label_of(handle.text(), all));
    }
    return document;
}

}  // namespace ctl
