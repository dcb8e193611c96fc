// WAN connection: state, connecting, modes, details and traffic counts of a profile.
#include "session.h"  // first: the area's header leaves the platform's own record to it

#include <zr_nexa/wan_connection.h>

#include <cstring>

#include "texts.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kWanConnection;

// The on/off modes of a profile differ in their platform methods and their texts only.
using SetMode = bool (QCMAP_Client::*)(bool enable, qmi_error_type_v01* err);
using GetMode = bool (QCMAP_Client::*)(unsigned char* enable, qmi_error_type_v01* err);

struct SetModeRecords {
    Record<uint32_t, qmi_error_type_v01> enable_failed;   // handle, error word
    Record<uint32_t, qmi_error_type_v01> disable_failed;  // handle, error word
    Record<uint32_t, uint32_t, qmi_error_type_v01> done;  // handle, mode, error word
};

struct GetModeRecords {
    Record<uint32_t, qmi_error_type_v01> failed;          // handle, error word
    Record<uint32_t, uint32_t, qmi_error_type_v01> done;  // handle, mode, error word
};

template <SetMode set>
uint32_t set_mode(const char* function, uint32_t wwan_handle, uint32_t enable, const SetModeRecords& records)
{
    if (!guard(function)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || enable > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(function, wwan_handle, &err)) return failed_step(1, err);
    if (enable == 1) {
        if (!(client->*set)(true, &err)) {
            records.enable_failed.write(function, wwan_handle, err);
            return failed_step(2, err);
        }
    } else {
        if (!(client->*set)(false, &err)) {
            records.disable_failed.write(function, wwan_handle, err);
            return failed_step(3, err);
        }
    }
    records.done.write(function, wwan_handle, enable, err);
    return result_of(err);
}

template <GetMode get>
uint32_t get_mode(const char* function, uint32_t wwan_handle, uint8_t* enable, const GetModeRecords& records)
{
    if (!guard(function)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || enable == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(function, wwan_handle, &err)) return failed_step(1, err);
    unsigned char state = 0;
    if (!(client->*get)(&state, &err)) {
        records.failed.write(function, wwan_handle, err);
        return failed_step(2, err);
    }
    *enable = state;
    records.done.write(function, wwan_handle, state, err);
    return result_of(err);
}

using BackhaulRecord = Record<uint32_t, uint32_t, qmi_error_type_v01>;  // handle, switch, error word

uint32_t set_backhaul(const char* function, uint32_t wwan_handle, uint32_t connect,
                      qcmap_msgr_wwan_call_type_v01 call_type, const BackhaulRecord& done)
{
    if (!guard(function)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || connect > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(function, wwan_handle, &err)) return failed_step(1, err);
    if (connect == 1) {
        if (!client->ConnectBackHaul(call_type, &err)) {
            ZR_LOG_ERROR_AS(function, "Connect BackHaul (wwan_handle=%d call_type=%d) error %d", wwan_handle, call_type,
                            err);
            return failed_step(2, err);
        }
    } else {
        if (!client->DisconnectBackHaul(call_type, &err)) {
            ZR_LOG_ERROR_AS(function, "Disconnect BackHaul (wwan_handle=%d call_type=%d) error %d", wwan_handle,
                            call_type, err);
            return failed_step(3, err);
        }
    }
    done.write(function, wwan_handle, connect, err);
    return result_of(err);
}

// The platform's word for a family, known or not.
qcmap_msgr_ip_family_enum_v01 family_word(uint32_t ip_family)
{
    return static_cast<qcmap_msgr_ip_family_enum_v01>(static_cast<int32_t>(ip_family));
}

bool is_known_family(uint32_t ip_family)
{
    return ip_family == ZR_NEXA_IP_V4 || ip_family == ZR_NEXA_IP_V6 || ip_family == ZR_NEXA_IP_V4V6 ||
           ip_family == ZR_NEXA_WAN_IP_ANY;
}

}  // namespace

uint32_t zr_nexa_wan_status_get_v1(uint32_t wwan_handle, uint32_t* v4_status, uint32_t* v6_status)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    qcmap_msgr_wwan_status_enum_v01 v4 = {};
    qcmap_msgr_wwan_status_enum_v01 v6 = {};
    if (!client->GetWWANStatus(&v4, &v6, &err)) {
        ZR_LOG_ERROR("Get WWAN Status (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    if (v4 == QCMAP_MSGR_WWAN_STATUS_CONNECTING_V01 || v4 == QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01 ||
        v4 == QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_V01 || v4 == QCMAP_MSGR_WWAN_STATUS_DISCONNECTED_V01) {
        *v4_status = static_cast<uint32_t>(v4);
    }
    if (v6 == QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_V01 || v6 == QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTED_V01 ||
        v6 == QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_V01 || v6 == QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTED_V01) {
        *v6_status = static_cast<uint32_t>(v6);
    }
    ZR_LOG_INFO("Get WWAN Status (wwan_handle=%d):wwan_v4_status=%d wwan_v6_status=%d", wwan_handle, v4, v6);
    return result_of(err);
}

uint32_t zr_nexa_wan_connect_v4_set_v1(uint32_t wwan_handle, uint32_t connect)
{
    static constexpr BackhaulRecord done =
        ZR_LOG_INFO_RECORD("Set IPv4 BackHaul (wwan_handle=%d v4_connect=%d) error %d");
    return set_backhaul(__func__, wwan_handle, connect, QCMAP_MSGR_WWAN_CALL_TYPE_V4_V01, done);
}

uint32_t zr_nexa_wan_connect_v6_set_v1(uint32_t wwan_handle, uint32_t connect)
{
    static constexpr BackhaulRecord done =
        ZR_LOG_INFO_RECORD("Set IPv6 BackHaul (wwan_handle=%d v6_connect=%d) error %d");
    return set_backhaul(__func__, wwan_handle, connect, QCMAP_MSGR_WWAN_CALL_TYPE_V6_V01, done);
}

uint32_t zr_nexa_wan_reconnect_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetModeRecords records = {
        ZR_LOG_ERROR_RECORD("Enable Reconnect Mode (wwan_handle=%d) error %d"),
        ZR_LOG_ERROR_RECORD("Disable Reconnect Mode (wwan_handle=%d) error %d"),
        ZR_LOG_INFO_RECORD("Set Reconnect Mode (wwan_handle=%d) Status %d, error %d"),
    };
    return set_mode<&QCMAP_Client::SetReconnect>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_wan_reconnect_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetModeRecords records = {
        ZR_LOG_ERROR_RECORD("Get Reconnect Mode (wwan_handle=%d) error %d"),
        ZR_LOG_INFO_RECORD("Get Reconnect Mode (wwan_handle=%d) Status %d, error %d"),
    };
    return get_mode<&QCMAP_Client::GetReconnect>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_wan_autoconnect_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetModeRecords records = {
        ZR_LOG_ERROR_RECORD("Enable Autoconnect Mode (wwan_handle=%d) error %d"),
        ZR_LOG_ERROR_RECORD("Disable Autoconnect Mode (wwan_handle=%d) error %d"),
        ZR_LOG_INFO_RECORD("Set Autoconnect Mode (wwan_handle=%d) Status %d, error %d"),
    };
    return set_mode<&QCMAP_Client::SetAutoconnect>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_wan_autoconnect_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetModeRecords records = {
        ZR_LOG_ERROR_RECORD("Get Autoconnect Mode (wwan_handle=%d) error %d"),
        ZR_LOG_INFO_RECORD("Get Autoconnect Mode (wwan_handle=%d) Status %d, error %d"),
    };
    return get_mode<&QCMAP_Client::GetAutoconnect>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_wan_roaming_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetModeRecords records = {
        ZR_LOG_ERROR_RECORD("Enable NEXA roaming cfg (wwan_handle=%d) error %d"),
        ZR_LOG_ERROR_RECORD("Disable NEXA roaming cfg (wwan_handle=%d) error %d"),
        ZR_LOG_INFO_RECORD("Set Roaming Mode (wwan_handle=%d) Status %d, error %d"),
    };
    return set_mode<&QCMAP_Client::SetRoaming>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_wan_roaming_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetModeRecords records = {
        ZR_LOG_ERROR_RECORD("Get NEXA roaming cfg (wwan_handle=%d) error %d"),
        ZR_LOG_INFO_RECORD("Get Roaming Mode (wwan_handle=%d) Status %d, error %d"),
    };
    return get_mode<&QCMAP_Client::GetRoaming>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_wan_info_get_v1(uint32_t wwan_handle, zr_nexa_wan_info_t* info)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qcmap_connected_wwan_info pdns[QCMAP_MAX_WWAN_PROFILES];
    std::memset(pdns, 0, sizeof(pdns));
    unsigned char pdn_count = 0;
    std::memset(info, 0, sizeof(*info));
    if (wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->GetAllConnectedPDNEx(&pdn_count, pdns, &err)) {
        ZR_LOG_ERROR("Get All Connected PDN (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(1, err);
    }
    // Every entry of the handle is taken, so that the last one holds.
    for (uint32_t i = 0; i < clamped(pdn_count, QCMAP_MAX_WWAN_PROFILES); ++i) {
        const qcmap_connected_wwan_info& pdn = pdns[i];
        if (pdn.profile_handle != wwan_handle) continue;
        info->connected = 1;
        std::memcpy(info->iface_name, pdn.iface_name, sizeof(info->iface_name));
        info->v4_addr = pdn.v4_addr;
        info->v4_gw_addr = pdn.v4_gw_addr;
        info->v4_netmask = pdn.v4_netmask;
        info->v4_pri_dns_addr = pdn.v4_pri_dns_addr;
        info->v4_sec_dns_addr = pdn.v4_sec_dns_addr;
        info->v4_mtu = pdn.v4_mtu;
        info->v6_prefix = pdn.v6_prefix;
        std::memcpy(info->v6_addr, pdn.v6_addr, sizeof(info->v6_addr));
        std::memcpy(info->v6_gw_addr, pdn.v6_gw_addr, sizeof(info->v6_gw_addr));
        std::memcpy(info->v6_pri_dns_addr, pdn.v6_pri_dns_addr, sizeof(info->v6_pri_dns_addr));
        std::memcpy(info->v6_sec_dns_addr, pdn.v6_sec_dns_addr, sizeof(info->v6_sec_dns_addr));
        info->v6_mtu = pdn.v6_mtu;
        // The IPv6 addresses are shown as they always were: one as its location, three as if they were texts.
        ZR_LOG_INFO("wwan_handle=%d iface_name=%s v4_addr=%d v4_netmask=%d", wwan_handle,
                    FieldText(info->iface_name).c_str(), info->v4_addr, info->v4_netmask);
        ZR_LOG_INFO("wwan_handle=%d v4_gw_addr=%d v4_pri_dns_addr=%d v4_sec_dns_addr=%d", wwan_handle, info->v4_gw_addr,
                    info->v4_pri_dns_addr, info->v4_sec_dns_addr);
        ZR_LOG_INFO("wwan_handle=%d v4_mtu=%d v6_prefix=%d v6_addr=%d", wwan_handle, info->v4_mtu, info->v6_prefix,
                    pointer_word(info->v6_addr));
        ZR_LOG_INFO("wwan_handle=%d v6_gw_addr=%s v6_pri_dns_addr=%s v6_sec_dns_addr=%s", wwan_handle,
                    FieldText(info->v6_gw_addr).c_str(), FieldText(info->v6_pri_dns_addr).c_str(),
                    FieldText(info->v6_sec_dns_addr).c_str());
        ZR_LOG_INFO("wwan_handle=%d v6_mtu=%d", wwan_handle, info->v6_mtu);
    }
    return result_of(err);
}

uint32_t zr_nexa_wan_statistics_get_v1(uint32_t wwan_handle, uint32_t ip_family,
                                       qcmap_msgr_wwan_statistics_type_v01* statistics)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    std::memset(statistics, 0, sizeof(*statistics));
    if (wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (!is_known_family(ip_family)) ZR_LOG_ERROR("invalid ip family %d", ip_family);
    qcmap_msgr_wwan_statistics_type_v01 counts = {};
    if (!client->GetWWANStatistics(family_word(ip_family), &counts, &err)) {
        ZR_LOG_ERROR("Get WWAN Statistics (wwan_handle=%d, ip_family=%d) error %d", wwan_handle, ip_family, err);
        return failed_step(2, err);
    }
    *statistics = counts;
    ZR_LOG_INFO("Get WWAN Statistics (wwan_handle=%d, ip_family=%d) success.", wwan_handle, ip_family);
    return result_of(err);
}

uint32_t zr_nexa_wan_statistics_reset_v1(uint32_t wwan_handle, uint32_t ip_family)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (!is_known_family(ip_family)) ZR_LOG_ERROR("invalid ip family %d", ip_family);
    if (!client->ResetWWANStatistics(family_word(ip_family), &err)) {
        ZR_LOG_ERROR("Reset WWAN Statistics (wwan_handle=%d, ip_family=%d) error %d", wwan_handle, ip_family, err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Reset WWAN Statistics (wwan_handle=%d, ip_family=%d) success.", wwan_handle, ip_family);
    return result_of(err);
}

uint32_t zr_nexa_wan_radvd_restart_v1()
{
    return ZR_NEXA_WAN_ERR_NOT_AVAILABLE;
}
