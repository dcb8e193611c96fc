// JSON as the verbs write it, an object a line.
#ifndef ZR_NEXA_CTL_JSON_H
#define ZR_NEXA_CTL_JSON_H

#include <string>
#include <utility>
#include <vector>

#include "document.h"
#include "tell.h"

namespace ctl {

// Keys and their values as JSON, in this order.
using JsonMembers = std::vector<std::pair<std::string, std::string>>;

inline std::string json_object(const JsonMembers& members)
{
    std::string text;
    for (const auto& [key, value] : members)
        text += (text.empty() ? "{" : ", ") + quoted(key) + ": " + value;
    return text + "}\n";
}

inline std::string json_list(const std::vector<std::string>& texts)
{
    std::string text;
    for (const std::string& each : texts)
        text += (text.empty() ? "" : ", ") + quoted(each);
    return "[" + text + "]";
}

// What ends the output of a verb that printed no result.
inline std::string json_ending(int status)
{
    return json_object({{"status", std::to_string(status)}, {"problems", json_list(told_problems())}});
}

}  // namespace ctl

#endif
