// The client library of a platform that does nothing: every request succeeds at once and costs a call and a return.
// What is left when the command runs on it is the command's own cost.
#include <qcmap_client.h>

#include <cstdlib>

// The one list that can be long: how many pairs it has.
static int listed_pairs = 0;

extern "C" void do_nothing_list_pairs(int pairs);  // for bench/interface.cpp
void do_nothing_list_pairs(int pairs)
{
    listed_pairs = pairs;
}

// The command's client interface leaves the C++ runtime to the platform. This platform has none either, only this.
void* operator new(std::size_t size)
{
    return std::malloc(size);
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

QCMAP_Client::QCMAP_Client(client_status_ind_t, qcmap_msgr_arch_type_enum_v01, void*)
    : mobile_ap_handle(0), session_(nullptr)
{
}
QCMAP_Client::~QCMAP_Client() = default;

bool QCMAP_Client::IsReady()
{
    return true;
}

bool QCMAP_Client::EnableMobileAP_Ext(qmi_error_type_v01* err, unsigned long long)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DisableMobileAP(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::RestoreFactoryConfig(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetDataPathOptStatus(unsigned char, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetDataPathOptStatus(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetGatewayUrl(unsigned char*, unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetGatewayUrl(unsigned char*, unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SelectLANBridge(short, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetLANConfig(qcmap_msgr_lan_config_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetLANConfig(qcmap_msgr_lan_config_v01, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ActivateLAN(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_SetDefaultEnableDHCP(qcmap_msgr_config_state_enum_v01, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_GetDefaultEnableDHCP(qcmap_msgr_config_state_enum_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::EnableIPV4(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DisableIPV4(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::EnableIPV6(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DisableIPV6(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetIPv4State(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetIPv6State(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::CreateVLANConfig(qcmap_msgr_vlan_config_ex_v01, qmi_error_type_v01* err, bool*)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetVLANConfig(qcmap_msgr_vlan_conf_t*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DeleteVLANConfig(short, qcmap_msgr_interface_type_enum_v01, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetFeatureMode(unsigned long long, qcmap_client_feature_mode_config*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetFeatureMode(unsigned long long*, qcmap_client_feature_mode_config*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_SetIPPTNATPDN(int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_GetIPPTNATPDN(int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetIPPassthroughConfig(qcmap_msgr_ip_passthrough_mode_enum_v01, bool,
                                          qcmap_msgr_ip_passthrough_config_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetIPPassthroughConfig(qcmap_msgr_ip_passthrough_mode_enum_v01*,
                                          qcmap_msgr_ip_passthrough_config_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_AddIPToSWPathFilters(unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_DeleteIPFromSWPathFilters(unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_GetIPFromSWPathFilters(qcmap_sw_path_filters_ex_ipv4_addr_list*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::AddDHCPReservRecord(qcmap_msgr_dhcp_reservation_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetDHCPReservRecords(qcmap_msgr_dhcp_reservation_v01*, unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::EditDHCPReservRecord(unsigned int*, qcmap_msgr_dhcp_reservation_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DeleteDHCPReservRecord(unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::EnablePacketStats(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DisablePacketStats(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetPacketStatsStatus(qcmap_msgr_packet_stats_status_enum_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ResetPacketStats(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetConnectedDevicesInfo(qcmap_connected_devices*, unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetUnmanagedL2TPStateEx(qcmap_set_l2tp_config*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetL2TPConfig(qcmap_msgr_l2tp_conf_t*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetL2TPConfig(qcmap_msgr_l2tp_mode_enum_v01, qcmap_msgr_l2tp_config_v01, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DeleteL2TPTunnelConfig(qcmap_msgr_delete_l2tp_config_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::CreateWWANPolicyEx(qcmap_net_policy_info, unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::UpdateWWANPolicyEx(qcmap_msgr_update_profile_enum_v01, qcmap_net_policy_info,
                                      qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetWWANProfileHandlePreference(unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DeleteWWANPolicy(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetWWANPolicyListEx(qcmap_wwan_policy_list_info*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetAPProfileHandle(unsigned int, unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetAPProfileHandle(unsigned int*, unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetWWANStatus(qcmap_msgr_wwan_status_enum_v01*, qcmap_msgr_wwan_status_enum_v01*,
                                 qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ConnectBackHaul(qcmap_msgr_wwan_call_type_v01, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DisconnectBackHaul(qcmap_msgr_wwan_call_type_v01, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetReconnect(bool, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetReconnect(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetAutoconnect(bool, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetAutoconnect(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetRoaming(bool, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetRoaming(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetAllConnectedPDNEx(unsigned char*, qcmap_connected_wwan_info*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetWWANStatistics(qcmap_msgr_ip_family_enum_v01, qcmap_msgr_wwan_statistics_type_v01*,
                                     qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ResetWWANStatistics(qcmap_msgr_ip_family_enum_v01, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::AddPDNToVLANMapping(short, unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DeletePDNToVLANMapping(short, unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetPDNtoVLANMappingsEx(qcmap_msgr_pdn_to_vlan_mapping_ex_v01* mappings, int* count,
                                          qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    *count = 0;
    for (int left = listed_pairs; left > 0; left -= QCMAP_MAX_VLANS_PER_PDN) {
        qcmap_pdn_to_vlan_mapping& mapping = mappings->mapping[(*count)++];
        mapping.profile_handle = static_cast<uint32_t>(*count);
        mapping.vlan_count = left < QCMAP_MAX_VLANS_PER_PDN ? left : QCMAP_MAX_VLANS_PER_PDN;
        for (int i = 0; i < mapping.vlan_count; ++i) {
            mapping.vlan_id[i] = static_cast<int16_t>(i + 1);
        }
    }
    return true;
}

bool QCMAP_Client::SetNatType(qcmap_msgr_nat_enum_v01, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetNatType(qcmap_msgr_nat_enum_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::AddDMZ(unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DeleteDMZ(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetDMZ(unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::AddStaticNatEntry(qcmap_msgr_snat_entry_config_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DeleteStaticNatEntry(qcmap_msgr_snat_entry_config_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetStaticNatConfig(qcmap_msgr_snat_entry_config_v01*, int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_SetRoutingBH(unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::ZR_GetRoutingBH(unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetPPTPVpnPassthrough(unsigned char, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetPPTPVpnPassthrough(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetPPTPVpnPassthrough_Ipv6(unsigned char, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetPPTPVpnPassthrough_Ipv6(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetIPSECVpnPassthrough(unsigned char, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetIPSECVpnPassthrough(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetIPSECVpnPassthrough_Ipv6(unsigned char, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetIPSECVpnPassthrough_Ipv6(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetL2TPVpnPassthrough(unsigned char, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetL2TPVpnPassthrough(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetL2TPVpnPassthrough_Ipv6(unsigned char, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetL2TPVpnPassthrough_Ipv6(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::EnableAlg(uint64_t, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DisableAlg(uint64_t, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetSIPServerInfo(qcmap_msgr_sip_server_info_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetSIPServerInfo(qcmap_msgr_sip_server_info_v01*, qcmap_msgr_sip_server_info_v01*, int*,
                                    qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetV6SIPServerInfo(qcmap_msgr_ipv6_sip_server_info_v01*, int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::AddFireWallEntry(qcmap_msgr_firewall_conf_t*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetFireWallHandlesList(qcmap_msgr_get_firewall_handle_list_conf_t*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetFireWallEntry(qcmap_msgr_firewall_entry_conf_t*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DeleteFireWallEntry(int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetFirewall(unsigned int, unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetFirewall(unsigned char*, unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetHWMACFilteringState(qcmap_msgr_config_state_enum_v01, qcmap_hw_filter_config,
                                          qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetHWMACFilteringState(qcmap_msgr_config_state_enum_v01*, qcmap_hw_filter_config*,
                                          qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::EnableUPNP(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::DisableUPNP(qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetUPNPStatus(qcmap_msgr_upnp_mode_enum_v01*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetUPNPNotifyInterval(unsigned int, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetUPNPNotifyInterval(unsigned int*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::SetUPNPState(unsigned char, unsigned char, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}

bool QCMAP_Client::GetUPNPState(unsigned char*, qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    return true;
}
