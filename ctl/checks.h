// What a document is held to before anything is asked of a module.
#ifndef ZR_NEXA_CTL_CHECKS_H
#define ZR_NEXA_CTL_CHECKS_H

#include <functional>
#include <string>

#include "document.h"
#include "value.h"

namespace ctl {

// Checks form, values, references and what belongs together, and brings the document into its normal form. What is
// wrong is told, all of it at once; with any problem the tree is of no use. Of a held state, which is a part of what a
// module had, and maybe of two of its states, only form and values are checked.
Value check_document(Value document, Problems* problems, bool is_held = false);

// What no network could use, in the tree as it would be. `is_changed` tells of a path whether the document changes it:
// what is wrong with such a value is a problem; what stands on the module already is only a warning.
void check_plausible(const Value& tree, const std::function<bool(const std::string& path)>& is_changed,
                     Problems* problems, Problems* warnings);

}  // namespace ctl

#endif
