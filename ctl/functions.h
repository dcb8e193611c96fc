// What this program does with each function of the client interface.
#ifndef ZR_NEXA_CTL_FUNCTIONS_H
#define ZR_NEXA_CTL_FUNCTIONS_H

#include <string>
#include <vector>

namespace ctl {

enum class Use {
    kRead,       // gives a setting
    kChange,     // changes a setting
    kWriteOnly,  // changes a setting that nothing gives
    kFigure,     // gives what runs
    kAction,     // does something that is no setting
    kSession,
    kNotUsed,
};

struct FunctionUse {
    const char* function;
    Use use;
    std::string where;  // the keys, the verbs, or why it is not used
};

// Those of the table of keys, then those that belong to no key.
const std::vector<FunctionUse>& functions();

}  // namespace ctl

#endif
