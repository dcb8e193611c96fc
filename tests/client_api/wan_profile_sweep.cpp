#include "fault_sweep.h"

namespace {

const std::string kFiftyCharacters = "0123456789012345678901234567890123456789012345678X";

// Its family is widened, and its name fills the field.
zr_nexa_wan_wwanconfig_t a_profile()
{
    zr_nexa_wan_wwanconfig_t profile = {2, 5, 7, {}};
    std::memcpy(profile.apn_name, kFiftyCharacters.data(), 50);
    return profile;
}

}  // namespace

std::vector<SweepRow> wan_profile_sweep_rows()
{
    static uint32_t handle;
    static uint32_t other_handle;
    static zr_nexa_wan_wwanconfig_list_t list;
    static zr_nexa_wan_wwanconfig_list_v2_t list_v2;
    const SweepStep select = {"SetWWANProfileHandlePreference", 1,
                              "Set WWAN Profile Handle Preference (wwan_handle=8) error %d"};
    const auto one_policy = [](scripted::Platform& platform) {
        qcmap_wwan_policy_list_info policies = {};
        policies.number_of_policies = 1;
        platform.on("GetWWANPolicyListEx").gives("list", policies);
    };
    return {
        {SWEPT(zr_nexa_wan_wwanconfig_add_v1, (&handle, 2, 7)),
         {{"CreateWWANPolicyEx", 1, "Create WWANPolicy error %d, tech_pref=2 apn_id=7"}},
         {output(handle)}},
        {SWEPT(zr_nexa_wan_wwanconfig_add_v2, (&handle, a_profile())),
         {{"CreateWWANPolicyEx", 1, "Create WWANPolicy error %d, tech_pref=2 apn_id=7 apn_name=" + kFiftyCharacters}},
         {output(handle)}},
        {SWEPT(zr_nexa_wan_wwanconfig_set_v1, (8, 2, 7)),
         {select,
          {"UpdateWWANPolicyEx", 2,
           "Update WWAN Profile (wwan_handle=8) =QCMAP_MSGR_UPDATE_TECH_TYPE_V01= error %d, tech_pref=2 apn_id=7"},
          {"UpdateWWANPolicyEx", 3,
           "Update WWAN Profile (wwan_handle=8) =QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01= error %d, tech_pref=2 "
           "apn_id=7"}}},
        {SWEPT(zr_nexa_wan_wwanconfig_set_v2, (8, a_profile())),
         {select,
          {"UpdateWWANPolicyEx", 2,
           "Update WWAN Profile (wwan_handle=8) =QCMAP_MSGR_UPDATE_TECH_TYPE_V01= error %d, tech_pref=2"},
          {"UpdateWWANPolicyEx", 3,
           "Update WWAN Profile (wwan_handle=8) =QCMAP_MSGR_UPDATE_IP_FAMILY_TYPE_V01= error %d, ip_family=10"},
          {"UpdateWWANPolicyEx", 4,
           "Update WWAN Profile (wwan_handle=8) =QCMAP_MSGR_UPDATE_APN_NAME_V01= error %d, apn_name=" +
               kFiftyCharacters},
          {"UpdateWWANPolicyEx", 5,
           "Update WWAN Profile (wwan_handle=8) =QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01= error %d, tech_pref=2 "
           "apn_id=7"},
          {"UpdateWWANPolicyEx", 6,
           "Update WWAN Profile (wwan_handle=8) =QCMAP_MSGR_UPDATE_CALL_BRINGUP_MODE_V01= error %d"}}},
        {SWEPT(zr_nexa_wan_wwanconfig_default_set_v1, (8)),
         {select,
          {"UpdateWWANPolicyEx", 2,
           "Update WWAN Profile (wwan_handle=8) =QCMAP_MSGR_SET_DEFAULT_PROFILE_V01= error %d"}}},
        {SWEPT(zr_nexa_wan_wwanconfig_get_v1, (&list)),
         {{"GetWWANPolicyListEx", 1, "Get WWAN Policy List error %d"}},
         {output(list)},
         one_policy},
        {SWEPT(zr_nexa_wan_wwanconfig_get_v2, (&list_v2)),
         {{"GetWWANPolicyListEx", 1, "Get WWAN Policy List error %d"}},
         {output(list_v2)},
         one_policy},
        {SWEPT(zr_nexa_wan_wwanconfig_del_v1, (8)),
         {select, {"DeleteWWANPolicy", 2, "Delete WWAN Policy (wwan_handle=8) error %d"}}},
        {SWEPT(zr_nexa_wan_apwwan_set_v1, (3, 4)),
         {{"SetAPProfileHandle", 1,
           "Set AP WWAN Profile Handle Preference (ap_wwan_handle=3 apdns_wwan_handle=4) error %d"}}},
        {SWEPT(zr_nexa_wan_apwwan_get_v1, (&handle, &other_handle)),
         {{"GetAPProfileHandle", 1, "Get AP WWAN Profile Handle Preference error %d"}},
         {output(handle), output(other_handle)}},
    };
}
