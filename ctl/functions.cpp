#include "functions.h"

#include <algorithm>
#include <cstring>

#include "keys.h"

namespace ctl {
namespace {

// The functions that belong to no key.
const FunctionUse kOthers[] = {
    {"zr_nexa_client_init", Use::kSession, "every verb that asks the module"},
    {"zr_nexa_client_uninit", Use::kSession, "every verb that asks the module"},
    {"zr_nexa_general_restore_nexa_v1", Use::kAction, "restore"},
    {"zr_nexa_lan_packetstats_reset_v1", Use::kAction, "reset lan-statistics"},
    {"zr_nexa_wan_statistics_reset_v1", Use::kAction, "reset wan-statistics"},
    {"zr_nexa_wan_connect_v4_set_v1", Use::kAction, "connect, disconnect"},
    {"zr_nexa_wan_connect_v6_set_v1", Use::kAction, "connect, disconnect"},
    {"zr_nexa_wan_status_get_v1", Use::kFigure, "status, metrics, connect, disconnect, watch"},
    {"zr_nexa_wan_info_get_v1", Use::kFigure, "status, metrics"},
    {"zr_nexa_wan_statistics_get_v1", Use::kFigure, "status, metrics"},
    {"zr_nexa_lan_connected_device_info_get_v1", Use::kFigure, "status, metrics"},
    {"zr_nexa_wan_wwanconfig_add_v1", Use::kNotUsed, "the second version does the same and more"},
    {"zr_nexa_wan_wwanconfig_get_v1", Use::kNotUsed, "the second version does the same and more"},
    {"zr_nexa_wan_radvd_restart_v1", Use::kNotUsed, "it is not available and always answers 3"},
};

Use use_of(const Row& row, const char* function)
{
    if (std::strstr(function, "_get_v") != nullptr) return Use::kRead;
    return row.write_only ? Use::kWriteOnly : Use::kChange;
}

std::string place_of(const Row& row)
{
    if (!row.path.empty()) return row.path;
    std::string keys;
    for (const Field& field : row.fields)
        keys += (keys.empty() ? "" : ", ") + field.key;
    return keys;
}

std::vector<FunctionUse> all_functions()
{
    std::vector<FunctionUse> all;
    for (const Row& row : rows()) {
        for (const char* function : row.functions) {
            const FunctionUse use = {function, use_of(row, function), place_of(row)};
            const auto same = std::find_if(all.begin(), all.end(), [&](const FunctionUse& each) {
                return std::strcmp(each.function, function) == 0 && each.use == use.use;
            });
            if (same == all.end())
                all.push_back(use);
            else
                same->where += ", " + use.where;
        }
    }
    all.insert(all.end(), std::begin(kOthers), std::end(kOthers));
    return all;
}

}  // namespace

const std::vector<FunctionUse>& functions()
{
    static const std::vector<FunctionUse> all = all_functions();
    return all;
}

}  // namespace ctl
