// WWAN profiles.
#include <zr_nexa/wan_profile.h>

#include <cstring>

#include "session.h"
#include "texts.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kWanProfile;

static_assert(ZR_NEXA_WAN_PROFILES_MAX == QCMAP_MAX_WWAN_PROFILES);
static_assert(ZR_NEXA_WAN_APN_NAME_SIZE == QCMAP_APN_NAME_LEN);

bool is_apn_id(int apn_id)
{
    return apn_id >= ZR_NEXA_WAN_APN_ID_MIN && apn_id <= ZR_NEXA_WAN_APN_ID_MAX;
}

// Builds the platform's record of a profile; apn_name is a whole field, null where a caller cannot name an APN.
// False: the technology preference does not exist.
bool build_policy(int tech_pref, int ip_family, int apn_id, const char* apn_name, qcmap_net_policy_info* policy)
{
    std::memset(policy, 0, sizeof(*policy));
    const bool one_family = ip_family == ZR_NEXA_IP_V4 || ip_family == ZR_NEXA_IP_V6;
    policy->ip_family = one_family ? static_cast<uint32_t>(ip_family) : ZR_NEXA_IP_V4V6;
    switch (tech_pref) {
        case ZR_NEXA_WAN_TECH_ANY:
        case ZR_NEXA_WAN_TECH_UMTS:
        case ZR_NEXA_WAN_TECH_CDMA:
            policy->tech_pref = static_cast<uint64_t>(tech_pref);
            break;
        default:
            return false;
    }
    policy->profile_index_3gpp = static_cast<uint8_t>(apn_id);
    policy->profile_index_3gpp2 = static_cast<uint8_t>(apn_id);
    if (apn_name != nullptr && apn_name[0] != '\0') {
        std::memcpy(policy->apn_name, apn_name, sizeof(policy->apn_name));
    }
    return true;
}

// What a record shows of the 64-bit preference.
uint32_t tech_word(const qcmap_net_policy_info& policy)
{
    return static_cast<uint32_t>(policy.tech_pref);
}

// A refusal is logged for function.
bool get_policies(const char* function, qcmap_wwan_policy_list_info* policies, qmi_error_type_v01* err)
{
    std::memset(policies, 0, sizeof(*policies));
    if (!client->GetWWANPolicyListEx(policies, err)) {
        ZR_LOG_ERROR_AS(function, "Get WWAN Policy List error %d", *err);
        return false;
    }
    policies->number_of_policies = clamped(policies->number_of_policies, QCMAP_MAX_WWAN_PROFILES);
    return true;
}

}  // namespace

uint32_t zr_nexa_wan_wwanconfig_add_v1(uint32_t* wwan_handle, int tech_pref, int apn_id)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == nullptr || !is_apn_id(apn_id)) return ZR_NEXA_ERR_ARGUMENT;
    qcmap_net_policy_info policy;
    if (!build_policy(tech_pref, ZR_NEXA_IP_V4V6, apn_id, nullptr, &policy)) return ZR_NEXA_WAN_ERR_TECH_PREF;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    unsigned int handle = 0;
    if (!client->CreateWWANPolicyEx(policy, &handle, &err)) {
        ZR_LOG_ERROR("Create WWANPolicy error %d, tech_pref=%d apn_id=%d", err, tech_pref, apn_id);
        return failed_step(1, err);
    }
    *wwan_handle = handle;
    ZR_LOG_INFO("Create WWANPolicy success:wwan_handle=%d tech_pref=%d apn_id=%d", handle, tech_pref, apn_id);
    return result_of(err);
}

uint32_t zr_nexa_wan_wwanconfig_add_v2(uint32_t* wwan_handle, zr_nexa_wan_wwanconfig_t wwanconfig)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == nullptr || !is_apn_id(wwanconfig.apn_id)) return ZR_NEXA_ERR_ARGUMENT;
    qcmap_net_policy_info policy;
    if (!build_policy(wwanconfig.tech_pref, wwanconfig.ip_family, wwanconfig.apn_id, wwanconfig.apn_name, &policy)) {
        return ZR_NEXA_WAN_ERR_TECH_PREF;
    }
    const FieldText apn_name(policy.apn_name);
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    unsigned int handle = 0;
    if (!client->CreateWWANPolicyEx(policy, &handle, &err)) {
        ZR_LOG_ERROR("Create WWANPolicy error %d, tech_pref=%d apn_id=%d apn_name=%s", err, tech_word(policy),
                     policy.profile_index_3gpp, apn_name.c_str());
        return failed_step(1, err);
    }
    *wwan_handle = handle;
    ZR_LOG_INFO("Create WWANPolicy success:wwan_handle=%d tech_pref=%d apn_id=%d apn_name=%s", handle,
                tech_word(policy), policy.profile_index_3gpp, apn_name.c_str());
    return result_of(err);
}

uint32_t zr_nexa_wan_wwanconfig_set_v1(uint32_t wwan_handle, int tech_pref, int apn_id)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || !is_apn_id(apn_id)) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    qcmap_net_policy_info policy;
    if (!build_policy(tech_pref, ZR_NEXA_IP_V4V6, apn_id, nullptr, &policy)) return ZR_NEXA_WAN_ERR_TECH_PREF;
    if (!client->UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_TECH_TYPE_V01, policy, &err)) {
        ZR_LOG_ERROR(
            "Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_UPDATE_TECH_TYPE_V01= error %d, tech_pref=%d apn_id=%d",
            wwan_handle, err, tech_pref, apn_id);
        return failed_step(2, err);
    }
    if (!client->UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01, policy, &err)) {
        ZR_LOG_ERROR(
            "Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01= error %d, tech_pref=%d "
            "apn_id=%d",
            wwan_handle, err, tech_pref, apn_id);
        return failed_step(3, err);
    }
    ZR_LOG_INFO("Update WWAN Profile success:wwan_handle=%d tech_pref=%d apn_id=%d", wwan_handle, tech_pref, apn_id);
    return result_of(err);
}

uint32_t zr_nexa_wan_wwanconfig_set_v2(uint32_t wwan_handle, zr_nexa_wan_wwanconfig_t wwanconfig)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || !is_apn_id(wwanconfig.apn_id)) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    qcmap_net_policy_info policy;
    if (!build_policy(wwanconfig.tech_pref, wwanconfig.ip_family, wwanconfig.apn_id, wwanconfig.apn_name, &policy)) {
        return ZR_NEXA_WAN_ERR_TECH_PREF;
    }
    const FieldText apn_name(policy.apn_name);
    if (!client->UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_TECH_TYPE_V01, policy, &err)) {
        ZR_LOG_ERROR("Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_UPDATE_TECH_TYPE_V01= error %d, tech_pref=%d",
                     wwan_handle, err, tech_word(policy));
        return failed_step(2, err);
    }
    if (!client->UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_IP_FAMILY_TYPE_V01, policy, &err)) {
        ZR_LOG_ERROR(
            "Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_UPDATE_IP_FAMILY_TYPE_V01= error %d, ip_family=%d",
            wwan_handle, err, policy.ip_family);
        return failed_step(3, err);
    }
    if (!client->UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_APN_NAME_V01, policy, &err)) {
        ZR_LOG_ERROR("Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_UPDATE_APN_NAME_V01= error %d, apn_name=%s",
                     wwan_handle, err, apn_name.c_str());
        return failed_step(4, err);
    }
    if (!client->UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01, policy, &err)) {
        ZR_LOG_ERROR(
            "Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01= error %d, tech_pref=%d "
            "apn_id=%d",
            wwan_handle, err, tech_word(policy), policy.profile_index_3gpp);
        return failed_step(5, err);
    }
    if (!client->UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_CALL_BRINGUP_MODE_V01, policy, &err)) {
        ZR_LOG_ERROR("Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_UPDATE_CALL_BRINGUP_MODE_V01= error %d",
                     wwan_handle, err);
        return failed_step(6, err);
    }
    ZR_LOG_INFO("Update WWAN Profile success:wwan_handle=%d tech_pref=%d apn_id=%d apn_name=%s", wwan_handle,
                tech_word(policy), policy.profile_index_3gpp, apn_name.c_str());
    return result_of(err);
}

uint32_t zr_nexa_wan_wwanconfig_default_set_v1(uint32_t wwan_handle)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    qcmap_net_policy_info policy;
    std::memset(&policy, 0, sizeof(policy));
    if (!client->UpdateWWANPolicyEx(QCMAP_MSGR_SET_DEFAULT_PROFILE_V01, policy, &err)) {
        ZR_LOG_ERROR("Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_SET_DEFAULT_PROFILE_V01= error %d", wwan_handle,
                     err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Update WWAN Profile (wwan_handle=%d) =QCMAP_MSGR_SET_DEFAULT_PROFILE_V01= error %d", wwan_handle, err);
    return result_of(err);
}

uint32_t zr_nexa_wan_wwanconfig_get_v1(zr_nexa_wan_wwanconfig_list_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (list == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_wwan_policy_list_info policies;
    if (!get_policies(__func__, &policies, &err)) return failed_step(1, err);
    list->wwanconfig_num = policies.number_of_policies;
    list->default_wwan_handle = policies.default_profile_handle;
    for (uint32_t i = 0; i < list->wwanconfig_num; ++i) {
        const qcmap_net_policy_info& policy = policies.policy[i];
        list->wwan_handle[i] = policy.profile_handle;
        list->tech_pref[i] = static_cast<uint8_t>(policy.tech_pref);
        list->apn_id[i] = policy.profile_index_3gpp;
    }
    return result_of(err);
}

uint32_t zr_nexa_wan_wwanconfig_get_v2(zr_nexa_wan_wwanconfig_list_v2_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (list == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_wwan_policy_list_info policies;
    if (!get_policies(__func__, &policies, &err)) return failed_step(1, err);
    list->wwanconfig_num = policies.number_of_policies;
    list->default_wwan_handle = policies.default_profile_handle;
    for (uint32_t i = 0; i < list->wwanconfig_num; ++i) {
        const qcmap_net_policy_info& policy = policies.policy[i];
        zr_nexa_wan_wwanconfig_t& wwanconfig = list->wwanconfig[i];
        list->wwan_handle[i] = policy.profile_handle;
        wwanconfig.apn_id = policy.profile_index_3gpp;
        if (policy.tech_pref <= ZR_NEXA_WAN_TECH_CDMA) wwanconfig.tech_pref = static_cast<uint8_t>(policy.tech_pref);
        if (policy.ip_family == ZR_NEXA_IP_V4 || policy.ip_family == ZR_NEXA_IP_V6 ||
            policy.ip_family == ZR_NEXA_IP_V4V6) {
            wwanconfig.ip_family = static_cast<int32_t>(policy.ip_family);
        }
        if (policy.apn_name[0] != '\0') {
            std::memcpy(wwanconfig.apn_name, policy.apn_name, sizeof(wwanconfig.apn_name));
        }
    }
    return result_of(err);
}

uint32_t zr_nexa_wan_wwanconfig_del_v1(uint32_t wwan_handle)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (!client->DeleteWWANPolicy(&err)) {
        ZR_LOG_ERROR("Delete WWAN Policy (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Delete WWAN Policy (wwan_handle=%d) error %d", wwan_handle, err);
    return result_of(err);
}

uint32_t zr_nexa_wan_apwwan_set_v1(uint32_t ap_wwan_handle, uint32_t apdns_wwan_handle)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (ap_wwan_handle == 0 || apdns_wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SetAPProfileHandle(ap_wwan_handle, apdns_wwan_handle, &err)) {
        ZR_LOG_ERROR("Set AP WWAN Profile Handle Preference (ap_wwan_handle=%d apdns_wwan_handle=%d) error %d",
                     ap_wwan_handle, apdns_wwan_handle, err);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Set AP WWAN Profile Handle Preference (ap_wwan_handle=%d apdns_wwan_handle=%d) error %d",
                ap_wwan_handle, apdns_wwan_handle, err);
    return result_of(err);
}

uint32_t zr_nexa_wan_apwwan_get_v1(uint32_t* ap_wwan_handle, uint32_t* apdns_wwan_handle)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (ap_wwan_handle == nullptr || apdns_wwan_handle == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    unsigned int ap = 0;
    unsigned int apdns = 0;
    if (!client->GetAPProfileHandle(&ap, &apdns, &err)) {
        ZR_LOG_ERROR("Get AP WWAN Profile Handle Preference error %d", err);
        return failed_step(1, err);
    }
    *ap_wwan_handle = ap;
    *apdns_wwan_handle = apdns;
    // At the error level, success or not: log readers know it as it is.
    ZR_LOG_ERROR("Get AP WWAN Profile Handle Preference (ap_wwan_handle=%d apdns_wwan_handle=%d) error %d", ap, apdns,
                 err);
    return result_of(err);
}
