// The table of keys as a tree, in the order in which a document is written: what reads, checks, prints and describes
// documents walks it.
#ifndef ZR_NEXA_CTL_TREE_H
#define ZR_NEXA_CTL_TREE_H

#include <string>
#include <vector>

#include "keys.h"

namespace ctl {

struct Node {
    enum class Kind {
        kGroup,     // keys below
        kField,     // a value of a unit
        kWhole,     // a record of its own
        kList,      // entries of a row
        kKeyed,     // entries of a row under keys
        kLans,      // LANs by id, with keys below each
        kProfiles,  // profiles by label, with keys below each
    };
    Kind kind = Kind::kGroup;
    std::string key;
    std::string about = {};
    const Row* row = nullptr;
    const Field* field = nullptr;
    std::vector<Node> children = {};

    const Node* child(const std::string& name) const;
};

constexpr uint32_t kVersion = 1;  // of the document's form

const Node& key_tree();

// The rows of one scope, in the table's order.
const std::vector<const Row*>& rows_of(Scope scope);

// What a document calls a record of this row: the record itself, or for a unit the values of its fields.
Value record_of(const Row& row, const Value& instance);
void put_record(const Row& row, const Value& record, Value* instance);
// An instance says something of this row.
bool is_named(const Row& row, const Value& instance);

// The tree as a document. Values that an entry has anyway are left out.
std::string as_yaml(const Value& tree);
std::string as_json(const Value& tree);

}  // namespace ctl

#endif
