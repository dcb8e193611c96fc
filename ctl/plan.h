// The difference of a document and a module, as the steps that would do away with it, in the order in which they stand
// on each other.
//
// One way serves all: applying a document, undoing half an apply, going back to a state that was held, and proving that
// nothing differs any more, which is an empty plan.
#ifndef ZR_NEXA_CTL_PLAN_H
#define ZR_NEXA_CTL_PLAN_H

#include <map>
#include <string>
#include <vector>

#include "document.h"
#include "keys.h"
#include "module.h"
#include "value.h"

namespace ctl {

// One call, or the few of one function's.
struct Step {
    // Adding and removing is of entries, and of LANs and profiles themselves.
    enum class Kind { kWrite, kAdd, kRemove, kChange };
    Kind kind;
    const Row* row;
    std::string name;  // the LAN's id, the profile's label; empty for the module
    std::string key;   // of a keyed entry
    Value wanted;
    Value present;
    bool is_new = false;                  // its LAN or profile is made by this very plan: what it has is not known yet
    std::vector<std::string> lines = {};  // "lans.10.address: 192.168.11.1/24 -> 192.168.12.1/24"
    std::string interrupts = {};          // what it cuts off meanwhile
    std::string not_undone = {};          // why it cannot be taken back
};

struct Plan {
    std::vector<Step> steps;
    std::map<std::string, uint32_t> handles;  // of the profiles that are there, by their labels
    Problems problems;                        // why the document cannot be reached
    Problems warnings;
};

enum class Reach {
    kMerge,  // what the document does not name stays
    kExact,  // entries that a section of the document does not name go
    kBack,   // merged, to what was held: what stood there is not judged, calls do not stop it, and what others have
             // taken away meanwhile stays away
};

// Where in a document it stands: "lans.10.address"; of several keys the first.
std::string path_of(const Step& step);

// What of the module is to be known for a plan. The lists are those of the module. The document outlives it.
Wish wish_for(const Value& document, const Module& lists, Reach reach);

// document is in its normal form (checks.h). What no network could use is looked for, unless the document is there and
// only what is left of it is asked for. With writes_again, what may be stored and not in use is written in any case.
Plan make_plan(const Value& document, const Module& module, Reach reach, bool judges = true, bool writes_again = false);

// What the module has, with labels for handles, so that it is a document. Profiles that no label is for are called
// profile-<handle>. With handles, a profile says its own.
Value as_document(const Module& module, const std::map<std::string, uint32_t>& labels, bool with_handles);

// What the plan changes, as it was, as a document that brings it back: what the plan makes is absent there, what it
// takes away stands there whole, and nothing else is named. What is held already from an earlier plan stays as it is
// held.
Value held_for(const Plan& plan, const Module& module, Value held = {});

// What of a held state may be left changed by steps that are cut off though no document names it: what stands on a LAN
// that is made anew, and what a function changes beside.
Value may_be_left(const Value& held);

// What of it the plan's document does not name, with what is kept already. Profiles are known by their handles.
Value unnamed_in(const Value& left, const Plan& plan, const Value& document, Reach reach, Value kept = {});

// The labels of all profiles that are there: the document's, or the name that show gives one.
std::map<uint32_t, std::string> labels_by_handle(const Module& module, const std::map<std::string, uint32_t>& labels);

// The labels of a document's profiles that are on the module.
std::map<std::string, uint32_t> match_profiles(const Value& document, const Module& module, Problems* problems);

}  // namespace ctl

#endif
