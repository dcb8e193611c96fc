#include "scripted_platform.h"

using scripted::Call;

bool QCMAP_Client::EnableAlg(uint64_t alg_types, qmi_error_type_v01* err)
{
    return Call("EnableAlg").arg(alg_types).finish(err);
}

bool QCMAP_Client::DisableAlg(uint64_t alg_types, qmi_error_type_v01* err)
{
    return Call("DisableAlg").arg(alg_types).finish(err);
}

bool QCMAP_Client::SetSIPServerInfo(qcmap_msgr_sip_server_info_v01* info, qmi_error_type_v01* err)
{
    return Call("SetSIPServerInfo")
        .arg("pcscf_info_type", info->pcscf_info_type)
        .arg("ipv4_addr", info->ipv4_addr)
        .bytes("fqdn", info->fqdn, sizeof(info->fqdn))
        .finish(err);
}

bool QCMAP_Client::GetSIPServerInfo(qcmap_msgr_sip_server_info_v01* configured, qcmap_msgr_sip_server_info_v01* network,
                                    int* network_count, qmi_error_type_v01* err)
{
    return Call("GetSIPServerInfo")
        .out("configured", configured)
        .out_array("network", network, QCMAP_MAX_SIP_SERVERS)
        .out("network_count", network_count)
        .finish(err);
}

bool QCMAP_Client::GetV6SIPServerInfo(qcmap_msgr_ipv6_sip_server_info_v01* network, int* network_count,
                                      qmi_error_type_v01* err)
{
    return Call("GetV6SIPServerInfo")
        .out_array("network", network, QCMAP_MAX_SIP_SERVERS)
        .out("network_count", network_count)
        .finish(err);
}
