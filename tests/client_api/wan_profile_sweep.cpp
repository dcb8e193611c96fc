#include "api_test.h"
#include "fault_sweep.h"

namespace {

zr_nexa_wan_wwanconfig_t a_profile()
{
    zr_nexa_wan_wwanconfig_t profile = {};
    profile.tech_pref = 1;
    profile.ip_family = 4;
    profile.apn_id = 3;
    std::strcpy(profile.apn_name, "internet");
    return profile;
}

}  // namespace

std::vector<SweepRow> wan_profile_sweep_rows()
{
    static uint32_t handle;
    static uint32_t other_handle;
    static zr_nexa_wan_wwanconfig_list_t list;
    static zr_nexa_wan_wwanconfig_list_v2_t list_v2;
    const auto handle_untouched = [] { return is_poisoned(handle); };
    return {
        {"zr_nexa_wan_wwanconfig_add_v1",
         [] {
             handle = poisoned<uint32_t>();
             return zr_nexa_wan_wwanconfig_add_v1(&handle, 1, 3);
         },
         {{"CreateWWANPolicyEx", 1}},
         nullptr,
         handle_untouched},
        {"zr_nexa_wan_wwanconfig_add_v2",
         [] {
             handle = poisoned<uint32_t>();
             return zr_nexa_wan_wwanconfig_add_v2(&handle, a_profile());
         },
         {{"CreateWWANPolicyEx", 1}},
         nullptr,
         handle_untouched},
        {"zr_nexa_wan_wwanconfig_set_v1",
         [] { return zr_nexa_wan_wwanconfig_set_v1(2, 1, 3); },
         {{"SetWWANProfileHandlePreference", 1}, {"UpdateWWANPolicyEx", 2}, {"UpdateWWANPolicyEx", 3}}},
        {"zr_nexa_wan_wwanconfig_set_v2",
         [] { return zr_nexa_wan_wwanconfig_set_v2(2, a_profile()); },
         {{"SetWWANProfileHandlePreference", 1},
          {"UpdateWWANPolicyEx", 2},
          {"UpdateWWANPolicyEx", 3},
          {"UpdateWWANPolicyEx", 4},
          {"UpdateWWANPolicyEx", 5},
          {"UpdateWWANPolicyEx", 6}}},
        {"zr_nexa_wan_wwanconfig_default_set_v1",
         [] { return zr_nexa_wan_wwanconfig_default_set_v1(2); },
         {{"SetWWANProfileHandlePreference", 1}, {"UpdateWWANPolicyEx", 2}}},
        {"zr_nexa_wan_wwanconfig_get_v1",
         [] {
             list = poisoned<zr_nexa_wan_wwanconfig_list_t>();
             return zr_nexa_wan_wwanconfig_get_v1(&list);
         },
         {{"GetWWANPolicyListEx", 1}},
         nullptr,
         [] { return is_poisoned(list); }},
        {"zr_nexa_wan_wwanconfig_get_v2",
         [] {
             list_v2 = poisoned<zr_nexa_wan_wwanconfig_list_v2_t>();
             return zr_nexa_wan_wwanconfig_get_v2(&list_v2);
         },
         {{"GetWWANPolicyListEx", 1}},
         nullptr,
         [] { return is_poisoned(list_v2); }},
        {"zr_nexa_wan_wwanconfig_del_v1",
         [] { return zr_nexa_wan_wwanconfig_del_v1(2); },
         {{"SetWWANProfileHandlePreference", 1}, {"DeleteWWANPolicy", 2}}},
        {"zr_nexa_wan_apwwan_set_v1", [] { return zr_nexa_wan_apwwan_set_v1(2, 3); }, {{"SetAPProfileHandle", 1}}},
        {"zr_nexa_wan_apwwan_get_v1",
         [] {
             handle = poisoned<uint32_t>();
             other_handle = poisoned<uint32_t>();
             return zr_nexa_wan_apwwan_get_v1(&handle, &other_handle);
         },
         {{"GetAPProfileHandle", 1}},
         nullptr,
         [] { return is_poisoned(handle) && is_poisoned(other_handle); }},
    };
}
