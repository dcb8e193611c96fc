// VPN passthrough: one flag each for PPTP, IPSec and L2TP, for IPv4 and for IPv6, of one WWAN profile.
#include <zr_nexa/vpn_passthrough.h>

#include "session.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kVpnPassthrough;

using SetMethod = bool (QCMAP_Client::*)(unsigned char enable, qmi_error_type_v01* err);
using GetMethod = bool (QCMAP_Client::*)(unsigned char* enable, qmi_error_type_v01* err);

struct SetRecords {
    Record<> backhaul_down;
    Record<qmi_error_type_v01> failed;
    Record<uint32_t, uint32_t, qmi_error_type_v01> done;  // handle, flag, error word
};

struct GetRecords {
    Record<qmi_error_type_v01> failed;
    Record<uint32_t, uint32_t, qmi_error_type_v01> done;  // handle, flag, error word
};

template <SetMethod set>
uint32_t set_passthrough(const char* function, uint32_t wwan_handle, uint32_t enable, const SetRecords& records)
{
    if (!guard(function)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || enable > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(function, wwan_handle, &err)) return failed_step(1, err);
    if (!(client->*set)(static_cast<unsigned char>(enable), &err)) {
        if (err == QMI_ERR_BACKHAUL_DOWN_V01) records.backhaul_down.write(function);
        records.failed.write(function, err);
        return failed_step(2, err);
    }
    records.done.write(function, wwan_handle, enable, err);
    return result_of(err);
}

template <GetMethod get>
uint32_t get_passthrough(const char* function, uint32_t wwan_handle, uint8_t* enable, const GetRecords& records)
{
    if (!guard(function)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(function, wwan_handle, &err)) return failed_step(1, err);
    if (!(client->*get)(enable, &err)) {
        records.failed.write(function, err);
        return failed_step(2, err);
    }
    // A null pointer is the service's to judge; when it does not mind, the record shows 0.
    const uint32_t status = enable != nullptr ? *enable : 0;
    records.done.write(function, wwan_handle, status, err);
    return result_of(err);
}

}  // namespace

uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetRecords records = {
        ZR_LOG_ERROR_RECORD("Backhaul down. PPTP VPN passthrough enabled in xml file."),
        ZR_LOG_ERROR_RECORD("PPTP VPN passthrough set fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Set IPv4 PPTP Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return set_passthrough<&QCMAP_Client::SetPPTPVpnPassthrough>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetRecords records = {
        ZR_LOG_ERROR_RECORD("Get PPTP VPN passthrough flag failed. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Get IPv4 PPTP Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return get_passthrough<&QCMAP_Client::GetPPTPVpnPassthrough>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetRecords records = {
        ZR_LOG_ERROR_RECORD("Backhaul down. IPv6 PPTP VPN passthrough enabled in xml file."),
        ZR_LOG_ERROR_RECORD("IPv6 PPTP VPN passthrough set fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Set IPv6 PPTP Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return set_passthrough<&QCMAP_Client::SetPPTPVpnPassthrough_Ipv6>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetRecords records = {
        ZR_LOG_ERROR_RECORD("Ipv6 PPTP VPN passthrough get fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Get IPv6 PPTP Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return get_passthrough<&QCMAP_Client::GetPPTPVpnPassthrough_Ipv6>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetRecords records = {
        ZR_LOG_ERROR_RECORD("Backhaul down. IPSec VPN passthrough enabled in xml file."),
        ZR_LOG_ERROR_RECORD("IPSec VPN passthrough set fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Set IPv4 IPSec VPN Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return set_passthrough<&QCMAP_Client::SetIPSECVpnPassthrough>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetRecords records = {
        ZR_LOG_ERROR_RECORD("IPSec VPN passthrough get fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Get IPv4 IPSec VPN Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return get_passthrough<&QCMAP_Client::GetIPSECVpnPassthrough>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetRecords records = {
        ZR_LOG_ERROR_RECORD("Backhaul down. IPv6 IPSec VPN passthrough enabled in xml file."),
        ZR_LOG_ERROR_RECORD("IPv6 IPSec VPN passthrough set fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Set IPv6 IPSec VPN Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return set_passthrough<&QCMAP_Client::SetIPSECVpnPassthrough_Ipv6>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetRecords records = {
        ZR_LOG_ERROR_RECORD("Ipv6 IPSec VPN passthrough get fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Get IPv6 IPSec VPN Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return get_passthrough<&QCMAP_Client::GetIPSECVpnPassthrough_Ipv6>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetRecords records = {
        ZR_LOG_ERROR_RECORD("Backhaul down. L2TP VPN passthrough enabled in xml file."),
        ZR_LOG_ERROR_RECORD("L2TP VPN passthrough set fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Set IPv4 L2TP VPN Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return set_passthrough<&QCMAP_Client::SetL2TPVpnPassthrough>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetRecords records = {
        ZR_LOG_ERROR_RECORD("L2TP VPN passthrough get fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Get IPv4 L2TP VPN Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return get_passthrough<&QCMAP_Client::GetL2TPVpnPassthrough>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable)
{
    static constexpr SetRecords records = {
        ZR_LOG_ERROR_RECORD("Backhaul down. IPv6 L2TP VPN passthrough enabled in xml file."),
        ZR_LOG_ERROR_RECORD("IPv6 L2TP VPN passthrough set fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Set IPv6 L2TP VPN Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return set_passthrough<&QCMAP_Client::SetL2TPVpnPassthrough_Ipv6>(__func__, wwan_handle, enable, records);
}

uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable)
{
    static constexpr GetRecords records = {
        ZR_LOG_ERROR_RECORD("Ipv6 L2TP VPN passthrough get fails. Error: 0x%x"),
        ZR_LOG_INFO_RECORD("Get IPv6 L2TP VPN Passthrough (wwan_handle=%d) Status %d, error %d"),
    };
    return get_passthrough<&QCMAP_Client::GetL2TPVpnPassthrough_Ipv6>(__func__, wwan_handle, enable, records);
}
