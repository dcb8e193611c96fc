// JSON as the verbs write it, an object a line.
#ifndef ZR_NEXA_CTL_JSON_H
#define ZR_NEXA_CTL_JSON_H

#include <string>
#include <utility>
#include <vector>

#include "document.h"

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

}  // namespace ctl

#endif
