#include <algorithm>

#include "scripted_platform.h"

using scripted::Call;
using scripted::platform;

bool QCMAP_Client::GetWWANStatus(qcmap_msgr_wwan_status_enum_v01* v4_status, qcmap_msgr_wwan_status_enum_v01* v6_status,
                                 qmi_error_type_v01* err)
{
    return Call("GetWWANStatus").out("v4_status", v4_status).out("v6_status", v6_status).finish(err);
}

bool QCMAP_Client::ConnectBackHaul(qcmap_msgr_wwan_call_type_v01 call_type, qmi_error_type_v01* err)
{
    return Call("ConnectBackHaul").arg(call_type).finish(err);
}

bool QCMAP_Client::DisconnectBackHaul(qcmap_msgr_wwan_call_type_v01 call_type, qmi_error_type_v01* err)
{
    return Call("DisconnectBackHaul").arg(call_type).finish(err);
}

bool QCMAP_Client::SetReconnect(bool enable, qmi_error_type_v01* err)
{
    return Call("SetReconnect").arg(enable).finish(err);
}

bool QCMAP_Client::GetReconnect(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetReconnect").out("enable", enable).finish(err);
}

bool QCMAP_Client::SetAutoconnect(bool enable, qmi_error_type_v01* err)
{
    return Call("SetAutoconnect").arg(enable).finish(err);
}

bool QCMAP_Client::GetAutoconnect(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetAutoconnect").out("enable", enable).finish(err);
}

bool QCMAP_Client::SetRoaming(bool enable, qmi_error_type_v01* err)
{
    return Call("SetRoaming").arg(enable).finish(err);
}

bool QCMAP_Client::GetRoaming(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetRoaming").out("enable", enable).finish(err);
}

bool QCMAP_Client::GetAllConnectedPDNEx(unsigned char* count, qcmap_connected_wwan_info* pdn, qmi_error_type_v01* err)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(pdn);
    const size_t size = sizeof(*pdn) * QCMAP_MAX_WWAN_PROFILES;
    if (*count != 0 || std::any_of(bytes, bytes + size, [](unsigned char byte) { return byte != 0; })) {
        platform().complaints.emplace_back("GetAllConnectedPDNEx: count or array was not cleared");
    }
    return Call("GetAllConnectedPDNEx").out("count", count).out_array("pdn", pdn, QCMAP_MAX_WWAN_PROFILES).finish(err);
}

bool QCMAP_Client::GetWWANStatistics(qcmap_msgr_ip_family_enum_v01 ip_family,
                                     qcmap_msgr_wwan_statistics_type_v01* statistics, qmi_error_type_v01* err)
{
    return Call("GetWWANStatistics").arg(ip_family).out("statistics", statistics).finish(err);
}

bool QCMAP_Client::ResetWWANStatistics(qcmap_msgr_ip_family_enum_v01 ip_family, qmi_error_type_v01* err)
{
    return Call("ResetWWANStatistics").arg(ip_family).finish(err);
}
