// WWAN profiles, the default one, and the ones of the AP and its DNS proxy.
#include "session.h"
#include "wan_call.h"

const char* const mobile_ap::kWanProfileSchema = R"(
CREATE TABLE IF NOT EXISTS wwan_profile (
    handle INTEGER PRIMARY KEY,
    tech_pref INTEGER NOT NULL DEFAULT 0,
    ip_family INTEGER NOT NULL DEFAULT 10,
    apn_id_3gpp INTEGER NOT NULL DEFAULT 1,
    apn_id_3gpp2 INTEGER NOT NULL DEFAULT 1,
    apn_name TEXT NOT NULL DEFAULT '',
    call_bringup_mode INTEGER NOT NULL DEFAULT 0,
    reconnect INTEGER NOT NULL DEFAULT 0,
    autoconnect INTEGER NOT NULL DEFAULT 0,
    roaming INTEGER NOT NULL DEFAULT 0
);
INSERT INTO wwan_profile (handle) SELECT 1 WHERE NOT EXISTS (SELECT 1 FROM wwan_profile);
CREATE TABLE IF NOT EXISTS wwan_service (
    default_profile INTEGER NOT NULL,
    ap_profile INTEGER NOT NULL,
    apdns_profile INTEGER NOT NULL
);
INSERT INTO wwan_service SELECT 1, 1, 1 WHERE NOT EXISTS (SELECT 1 FROM wwan_service);
)";

using namespace mobile_ap;

namespace {

void check_tech_pref(const qcmap_net_policy_info& policy)
{
    if (policy.tech_pref > 2) refuse(QMI_ERR_INVALID_ARG_V01);
}

void check_ip_family(const qcmap_net_policy_info& policy)
{
    const uint32_t family = policy.ip_family;
    if (family != QCMAP_MSGR_IP_FAMILY_V4_V01 && family != QCMAP_MSGR_IP_FAMILY_V6_V01 &&
        family != QCMAP_MSGR_IP_FAMILY_V4V6_V01) {
        refuse(QMI_ERR_INVALID_ARG_V01);
    }
}

void check_apn_ids(const qcmap_net_policy_info& policy)
{
    for (const uint8_t id : {policy.profile_index_3gpp, policy.profile_index_3gpp2}) {
        if (id < 1 || id > 16) refuse(QMI_ERR_INVALID_ARG_V01);
    }
}

std::string apn_name(const qcmap_net_policy_info& policy)
{
    return field_text(policy.apn_name, sizeof policy.apn_name);
}

uint32_t lowest_free_handle(Store& db)
{
    const auto handle = db.one<uint32_t>(
        "WITH RECURSIVE number(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM number WHERE n < ?)"
        " SELECT min(n) FROM number WHERE n NOT IN (SELECT handle FROM wwan_profile)",
        QCMAP_MAX_WWAN_PROFILES);
    if (!handle) refuse(QMI_ERR_LIMIT_V01);
    return *handle;
}

}  // namespace

bool QCMAP_Client::CreateWWANPolicyEx(qcmap_net_policy_info policy, unsigned int* handle, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        check_tech_pref(policy);
        check_ip_family(policy);
        check_apn_ids(policy);
        const uint32_t free_handle = lowest_free_handle(db);
        db.run(
            "INSERT INTO wwan_profile (handle, tech_pref, ip_family, apn_id_3gpp, apn_id_3gpp2, apn_name,"
            " call_bringup_mode) VALUES (?, ?, ?, ?, ?, ?, ?)",
            free_handle, policy.tech_pref, policy.ip_family, policy.profile_index_3gpp, policy.profile_index_3gpp2,
            apn_name(policy), policy.call_bringup_mode);
        *handle = free_handle;
    });
}

bool QCMAP_Client::UpdateWWANPolicyEx(qcmap_msgr_update_profile_enum_v01 update, qcmap_net_policy_info policy,
                                      qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const uint32_t profile = db.selected_profile();
        switch (static_cast<int>(update)) {
            case QCMAP_MSGR_UPDATE_TECH_TYPE_V01:
                check_tech_pref(policy);
                db.run("UPDATE wwan_profile SET tech_pref = ? WHERE handle = ?", policy.tech_pref, profile);
                return;
            case QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01:
                check_apn_ids(policy);
                db.run("UPDATE wwan_profile SET apn_id_3gpp = ?, apn_id_3gpp2 = ? WHERE handle = ?",
                       policy.profile_index_3gpp, policy.profile_index_3gpp2, profile);
                return;
            case QCMAP_MSGR_SET_DEFAULT_PROFILE_V01:
                db.run("UPDATE wwan_service SET default_profile = ?", profile);
                return;
            case QCMAP_MSGR_UPDATE_APN_NAME_V01:
                db.run("UPDATE wwan_profile SET apn_name = ? WHERE handle = ?", apn_name(policy), profile);
                return;
            case QCMAP_MSGR_UPDATE_IP_FAMILY_TYPE_V01:
                check_ip_family(policy);
                db.run("UPDATE wwan_profile SET ip_family = ? WHERE handle = ?", policy.ip_family, profile);
                return;
            case QCMAP_MSGR_UPDATE_CALL_BRINGUP_MODE_V01:
                db.run("UPDATE wwan_profile SET call_bringup_mode = ? WHERE handle = ?", policy.call_bringup_mode,
                       profile);
                return;
            default:
                refuse(QMI_ERR_INVALID_ARG_V01);
        }
    });
}

bool QCMAP_Client::SetWWANProfileHandlePreference(unsigned int handle, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { db.select_profile(handle); });
}

// A profile that the module itself uses stays, and so does one with a call.
bool QCMAP_Client::DeleteWWANPolicy(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const uint32_t profile = db.selected_profile();
        if (db.one<int>("SELECT 1 FROM wwan_service WHERE ? IN (default_profile, ap_profile, apdns_profile)",
                        profile)) {
            refuse(QMI_ERR_INVALID_ARG_V01);
        }
        if (!is_idle(db, profile)) refuse(QMI_ERR_NO_EFFECT_V01);
        db.run("DELETE FROM wwan_profile WHERE handle = ?", profile);
    });
}

bool QCMAP_Client::GetWWANPolicyListEx(qcmap_wwan_policy_list_info* list, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        uint32_t count = 0;
        Query q = db.query(
            "SELECT handle, tech_pref, ip_family, apn_id_3gpp, apn_id_3gpp2, apn_name, call_bringup_mode"
            " FROM wwan_profile ORDER BY handle LIMIT ?",
            QCMAP_MAX_WWAN_PROFILES);
        while (q.next()) {
            qcmap_net_policy_info& policy = list->policy[count++];
            policy.profile_handle = q.get<uint32_t>(0);
            policy.tech_pref = q.get<uint64_t>(1);
            policy.ip_family = q.get<uint32_t>(2);
            policy.profile_index_3gpp = q.get<uint8_t>(3);
            policy.profile_index_3gpp2 = q.get<uint8_t>(4);
            set_field_text(policy.apn_name, sizeof policy.apn_name, q.get<std::string>(5));
            policy.call_bringup_mode = q.get<uint32_t>(6);
        }
        list->number_of_policies = count;
        list->default_profile_handle = db.one<uint32_t>("SELECT default_profile FROM wwan_service").value_or(0);
    });
}

bool QCMAP_Client::SetAPProfileHandle(unsigned int ap, unsigned int apdns, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.check_profile(ap);
        db.check_profile(apdns);
        db.run("UPDATE wwan_service SET ap_profile = ?, apdns_profile = ?", ap, apdns);
    });
}

bool QCMAP_Client::GetAPProfileHandle(unsigned int* ap, unsigned int* apdns, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *ap = db.one<unsigned int>("SELECT ap_profile FROM wwan_service").value_or(0);
        *apdns = db.one<unsigned int>("SELECT apdns_profile FROM wwan_service").value_or(0);
    });
}
