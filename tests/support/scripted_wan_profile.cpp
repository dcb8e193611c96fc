#include <algorithm>

#include "scripted_platform.h"

using scripted::Call;
using scripted::platform;

namespace {

Call& policy_of(Call& call, const qcmap_net_policy_info& policy)
{
    call.arg("profile_handle", policy.profile_handle)
        .arg("tech_pref", policy.tech_pref)
        .arg("ip_family", policy.ip_family)
        .arg("profile_index_3gpp", policy.profile_index_3gpp)
        .arg("profile_index_3gpp2", policy.profile_index_3gpp2)
        .text("apn_name", policy.apn_name, sizeof(policy.apn_name))
        .arg("call_bringup_mode", policy.call_bringup_mode);
    // What stands behind the name's zero, if anything.
    const size_t length = strnlen(policy.apn_name, sizeof(policy.apn_name));
    const char* const rest = policy.apn_name + length;
    const size_t rest_size = sizeof(policy.apn_name) - length;
    if (std::any_of(rest, rest + rest_size, [](char byte) { return byte != 0; })) {
        call.bytes("apn_rest", rest, rest_size);
    }
    return call;
}

}  // namespace

bool QCMAP_Client::CreateWWANPolicyEx(qcmap_net_policy_info policy, unsigned int* handle, qmi_error_type_v01* err)
{
    Call call("CreateWWANPolicyEx");
    return policy_of(call, policy).out("handle", handle).finish(err);
}

bool QCMAP_Client::UpdateWWANPolicyEx(qcmap_msgr_update_profile_enum_v01 update, qcmap_net_policy_info policy,
                                      qmi_error_type_v01* err)
{
    Call call("UpdateWWANPolicyEx");
    call.arg("update", update);
    return policy_of(call, policy).finish(err);
}

bool QCMAP_Client::DeleteWWANPolicy(qmi_error_type_v01* err)
{
    return Call("DeleteWWANPolicy").finish(err);
}

bool QCMAP_Client::GetWWANPolicyListEx(qcmap_wwan_policy_list_info* list, qmi_error_type_v01* err)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(list);
    if (std::any_of(bytes, bytes + sizeof(*list), [](unsigned char byte) { return byte != 0; })) {
        platform().complaints.emplace_back("GetWWANPolicyListEx: the list was not cleared");
    }
    return Call("GetWWANPolicyListEx").out("list", list).finish(err);
}

bool QCMAP_Client::SetAPProfileHandle(unsigned int ap, unsigned int apdns, qmi_error_type_v01* err)
{
    return Call("SetAPProfileHandle").arg("ap", ap).arg("apdns", apdns).finish(err);
}

bool QCMAP_Client::GetAPProfileHandle(unsigned int* ap, unsigned int* apdns, qmi_error_type_v01* err)
{
    return Call("GetAPProfileHandle").out("ap", ap).out("apdns", apdns).finish(err);
}
