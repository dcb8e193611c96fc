#include "scripted_platform.h"

using scripted::Call;

bool QCMAP_Client::SetGatewayUrl(unsigned char* url, unsigned int len, qmi_error_type_v01* err)
{
    return Call("SetGatewayUrl").text("url", reinterpret_cast<const char*>(url), len + 1).arg("len", len).finish(err);
}

bool QCMAP_Client::GetGatewayUrl(unsigned char* url, unsigned int* len, qmi_error_type_v01* err)
{
    return Call("GetGatewayUrl").out_array("url", url, 128).out("len", len).finish(err);
}

bool QCMAP_Client::GetLANConfig(qcmap_msgr_lan_config_v01* lan, qmi_error_type_v01* err)
{
    return Call("GetLANConfig").out("lan", lan).finish(err);
}

bool QCMAP_Client::SetLANConfig(qcmap_msgr_lan_config_v01 lan, qmi_error_type_v01* err)
{
    return Call("SetLANConfig")
        .arg("gateway_ip", lan.gateway_ip)
        .arg("netmask", lan.netmask)
        .arg("enable_dhcp", lan.enable_dhcp)
        .arg("dhcp_start_ip", lan.dhcp_start_ip)
        .arg("dhcp_end_ip", lan.dhcp_end_ip)
        .arg("lease_time", lan.lease_time)
        .arg("dns_mode", lan.dns_mode)
        .arg("primary_dns", lan.primary_dns)
        .arg("secondary_dns", lan.secondary_dns)
        .arg("mtu", lan.mtu)
        .finish(err);
}

bool QCMAP_Client::ActivateLAN(qmi_error_type_v01* err)
{
    return Call("ActivateLAN").finish(err);
}

bool QCMAP_Client::ZR_SetDefaultEnableDHCP(qcmap_msgr_config_state_enum_v01 state, qmi_error_type_v01* err)
{
    return Call("ZR_SetDefaultEnableDHCP").arg(static_cast<uint32_t>(state)).finish(err);
}

bool QCMAP_Client::ZR_GetDefaultEnableDHCP(qcmap_msgr_config_state_enum_v01* state, qmi_error_type_v01* err)
{
    return Call("ZR_GetDefaultEnableDHCP").out("state", state).finish(err);
}

bool QCMAP_Client::EnableIPV4(qmi_error_type_v01* err)
{
    return Call("EnableIPV4").finish(err);
}

bool QCMAP_Client::DisableIPV4(qmi_error_type_v01* err)
{
    return Call("DisableIPV4").finish(err);
}

bool QCMAP_Client::EnableIPV6(qmi_error_type_v01* err)
{
    return Call("EnableIPV6").finish(err);
}

bool QCMAP_Client::DisableIPV6(qmi_error_type_v01* err)
{
    return Call("DisableIPV6").finish(err);
}

bool QCMAP_Client::GetIPv4State(unsigned char* state, qmi_error_type_v01* err)
{
    return Call("GetIPv4State").out("state", state).finish(err);
}

bool QCMAP_Client::GetIPv6State(unsigned char* state, qmi_error_type_v01* err)
{
    return Call("GetIPv6State").out("state", state).finish(err);
}
