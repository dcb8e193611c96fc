// Client class of the mobile-AP service.
//
// Every configuration method returns true on success and writes its error word in either case. Profile and bridge
// selection belong to the object. Indications are delivered on a thread of the platform's own, between
// EnableMobileAP_Ext and DisableMobileAP only.
#ifndef QCMAP_CLIENT_H
#define QCMAP_CLIENT_H

#include <stdint.h>

#include "qcmap_records.h"
#include "qmi_client.h"
#include "qmi_error.h"

typedef void (*client_status_ind_t)(qmi_client_type user_handle, unsigned int msg_id, void* ind_buf,
                                    unsigned int ind_buf_len, void* ind_cb_data);

class QCMAP_Client {
public:
    QCMAP_Client(client_status_ind_t indication_cb, qcmap_msgr_arch_type_enum_v01 arch, void* user);
    virtual ~QCMAP_Client();
    QCMAP_Client(const QCMAP_Client&) = delete;
    QCMAP_Client& operator=(const QCMAP_Client&) = delete;

    uint32_t mobile_ap_handle;  // of this session; indications carry the handle they are meant for

    // session
    bool IsReady();
    bool EnableMobileAP_Ext(qmi_error_type_v01* err, unsigned long long mask);
    bool DisableMobileAP(qmi_error_type_v01* err);

    // general
    bool RestoreFactoryConfig(qmi_error_type_v01* err);
    bool SetDataPathOptStatus(unsigned char enable, qmi_error_type_v01* err);
    bool GetDataPathOptStatus(unsigned char* enable, qmi_error_type_v01* err);

    // LAN addressing
    bool SetGatewayUrl(unsigned char* url, unsigned int len, qmi_error_type_v01* err);
    bool GetGatewayUrl(unsigned char* url, unsigned int* len, qmi_error_type_v01* err);
    bool SelectLANBridge(short lan_id, qmi_error_type_v01* err);
    bool GetLANConfig(qcmap_msgr_lan_config_v01* lan, qmi_error_type_v01* err);
    bool SetLANConfig(qcmap_msgr_lan_config_v01 lan, qmi_error_type_v01* err);
    bool ActivateLAN(qmi_error_type_v01* err);
    bool ZR_SetDefaultEnableDHCP(qcmap_msgr_config_state_enum_v01 state, qmi_error_type_v01* err);
    bool ZR_GetDefaultEnableDHCP(qcmap_msgr_config_state_enum_v01* state, qmi_error_type_v01* err);
    bool EnableIPV4(qmi_error_type_v01* err);
    bool DisableIPV4(qmi_error_type_v01* err);
    bool EnableIPV6(qmi_error_type_v01* err);
    bool DisableIPV6(qmi_error_type_v01* err);
    bool GetIPv4State(unsigned char* state, qmi_error_type_v01* err);
    bool GetIPv6State(unsigned char* state, qmi_error_type_v01* err);

    // VLANs
    bool CreateVLANConfig(qcmap_msgr_vlan_config_ex_v01 vlan, qmi_error_type_v01* err, bool* is_accelerated);
    bool GetVLANConfig(qcmap_msgr_vlan_conf_t* list, qmi_error_type_v01* err);
    bool DeleteVLANConfig(short vlan_id, qcmap_msgr_interface_type_enum_v01 interface_type, qmi_error_type_v01* err);

    // IP passthrough
    bool SetFeatureMode(unsigned long long features, qcmap_client_feature_mode_config* config, qmi_error_type_v01* err);
    bool GetFeatureMode(unsigned long long* features, qcmap_client_feature_mode_config* config,
                        qmi_error_type_v01* err);
    bool ZR_SetIPPTNATPDN(int pdn, qmi_error_type_v01* err);
    bool ZR_GetIPPTNATPDN(int* pdn, qmi_error_type_v01* err);
    bool SetIPPassthroughConfig(qcmap_msgr_ip_passthrough_mode_enum_v01 mode, bool has_config,
                                qcmap_msgr_ip_passthrough_config_v01* config, qmi_error_type_v01* err);
    bool GetIPPassthroughConfig(qcmap_msgr_ip_passthrough_mode_enum_v01* mode,
                                qcmap_msgr_ip_passthrough_config_v01* config, qmi_error_type_v01* err);
    bool GetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t* list, qmi_error_type_v01* err);
    bool SetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t* list, qmi_error_type_v01* err);
    bool ZR_AddIPToSWPathFilters(unsigned int ipv4_address, qmi_error_type_v01* err);
    bool ZR_DeleteIPFromSWPathFilters(unsigned int ipv4_address, qmi_error_type_v01* err);
    bool ZR_GetIPFromSWPathFilters(qcmap_sw_path_filters_ex_ipv4_addr_list* list, qmi_error_type_v01* err);

    // LAN services; reserved addresses name a reservation in network byte order
    bool AddDHCPReservRecord(qcmap_msgr_dhcp_reservation_v01* record, qmi_error_type_v01* err);
    bool GetDHCPReservRecords(qcmap_msgr_dhcp_reservation_v01* records, unsigned int* count, qmi_error_type_v01* err);
    bool EditDHCPReservRecord(unsigned int* ip_address, qcmap_msgr_dhcp_reservation_v01* record,
                              qmi_error_type_v01* err);
    bool DeleteDHCPReservRecord(unsigned int* ip_address, qmi_error_type_v01* err);
    bool EnablePacketStats(qmi_error_type_v01* err);
    bool DisablePacketStats(qmi_error_type_v01* err);
    bool GetPacketStatsStatus(qcmap_msgr_packet_stats_status_enum_v01* status, qmi_error_type_v01* err);
    bool ResetPacketStats(qmi_error_type_v01* err);
    bool GetConnectedDevicesInfo(qcmap_connected_devices* list, unsigned int* count, qmi_error_type_v01* err);
    bool SetUnmanagedL2TPStateEx(qcmap_set_l2tp_config* config, qmi_error_type_v01* err);
    bool GetL2TPConfig(qcmap_msgr_l2tp_conf_t* config, qmi_error_type_v01* err);
    bool SetL2TPConfig(qcmap_msgr_l2tp_mode_enum_v01 mode, qcmap_msgr_l2tp_config_v01 config, qmi_error_type_v01* err);
    bool DeleteL2TPTunnelConfig(qcmap_msgr_delete_l2tp_config_v01* config, qmi_error_type_v01* err);

    // WWAN profiles
    bool CreateWWANPolicyEx(qcmap_net_policy_info policy, unsigned int* handle, qmi_error_type_v01* err);
    bool UpdateWWANPolicyEx(qcmap_msgr_update_profile_enum_v01 update, qcmap_net_policy_info policy,
                            qmi_error_type_v01* err);
    bool SetWWANProfileHandlePreference(unsigned int handle, qmi_error_type_v01* err);
    bool DeleteWWANPolicy(qmi_error_type_v01* err);
    bool GetWWANPolicyListEx(qcmap_wwan_policy_list_info* list, qmi_error_type_v01* err);
    bool SetAPProfileHandle(unsigned int ap, unsigned int apdns, qmi_error_type_v01* err);
    bool GetAPProfileHandle(unsigned int* ap, unsigned int* apdns, qmi_error_type_v01* err);

    // WWAN connection
    bool GetWWANStatus(qcmap_msgr_wwan_status_enum_v01* v4_status, qcmap_msgr_wwan_status_enum_v01* v6_status,
                       qmi_error_type_v01* err);
    bool ConnectBackHaul(qcmap_msgr_wwan_call_type_v01 call_type, qmi_error_type_v01* err);
    bool DisconnectBackHaul(qcmap_msgr_wwan_call_type_v01 call_type, qmi_error_type_v01* err);
    bool SetReconnect(bool enable, qmi_error_type_v01* err);
    bool GetReconnect(unsigned char* enable, qmi_error_type_v01* err);
    bool SetAutoconnect(bool enable, qmi_error_type_v01* err);
    bool GetAutoconnect(unsigned char* enable, qmi_error_type_v01* err);
    bool SetRoaming(bool enable, qmi_error_type_v01* err);
    bool GetRoaming(unsigned char* enable, qmi_error_type_v01* err);
    bool GetAllConnectedPDNEx(unsigned char* count, qcmap_connected_wwan_info* pdn, qmi_error_type_v01* err);
    bool GetWWANStatistics(qcmap_msgr_ip_family_enum_v01 ip_family, qcmap_msgr_wwan_statistics_type_v01* statistics,
                           qmi_error_type_v01* err);
    bool ResetWWANStatistics(qcmap_msgr_ip_family_enum_v01 ip_family, qmi_error_type_v01* err);

    // multi-PDN mapping
    bool AddPDNToVLANMapping(short vlan_id, unsigned int profile_handle, qmi_error_type_v01* err);
    bool DeletePDNToVLANMapping(short vlan_id, unsigned int profile_handle, qmi_error_type_v01* err);
    bool GetPDNtoVLANMappingsEx(qcmap_msgr_pdn_to_vlan_mapping_ex_v01* mappings, int* count, qmi_error_type_v01* err);

    // NAT
    bool SetNatType(qcmap_msgr_nat_enum_v01 nat_type, qmi_error_type_v01* err);
    bool GetNatType(qcmap_msgr_nat_enum_v01* nat_type, qmi_error_type_v01* err);
    bool AddDMZ(unsigned int ip, qmi_error_type_v01* err);
    bool DeleteDMZ(qmi_error_type_v01* err);
    bool GetDMZ(unsigned int* ip, qmi_error_type_v01* err);
    bool AddStaticNatEntry(qcmap_msgr_snat_entry_config_v01* entry, qmi_error_type_v01* err);
    bool DeleteStaticNatEntry(qcmap_msgr_snat_entry_config_v01* entry, qmi_error_type_v01* err);
    bool GetStaticNatConfig(qcmap_msgr_snat_entry_config_v01* entries, int* count, qmi_error_type_v01* err);
    bool ZR_SetRoutingBH(unsigned int routing_bh, qmi_error_type_v01* err);
    bool ZR_GetRoutingBH(unsigned int* routing_bh, qmi_error_type_v01* err);

    // VPN passthrough
    bool SetPPTPVpnPassthrough(unsigned char enable, qmi_error_type_v01* err);
    bool GetPPTPVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err);
    bool SetPPTPVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err);
    bool GetPPTPVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err);
    bool SetIPSECVpnPassthrough(unsigned char enable, qmi_error_type_v01* err);
    bool GetIPSECVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err);
    bool SetIPSECVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err);
    bool GetIPSECVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err);
    bool SetL2TPVpnPassthrough(unsigned char enable, qmi_error_type_v01* err);
    bool GetL2TPVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err);
    bool SetL2TPVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err);
    bool GetL2TPVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err);

    // ALG and SIP servers
    bool EnableAlg(uint64_t alg_types, qmi_error_type_v01* err);
    bool DisableAlg(uint64_t alg_types, qmi_error_type_v01* err);
    bool SetSIPServerInfo(qcmap_msgr_sip_server_info_v01* info, qmi_error_type_v01* err);
    bool GetSIPServerInfo(qcmap_msgr_sip_server_info_v01* configured, qcmap_msgr_sip_server_info_v01* network,
                          int* network_count, qmi_error_type_v01* err);
    bool GetV6SIPServerInfo(qcmap_msgr_ipv6_sip_server_info_v01* network, int* network_count, qmi_error_type_v01* err);

    // firewall
    bool AddFireWallEntry(qcmap_msgr_firewall_conf_t* conf, qmi_error_type_v01* err);
    bool GetFireWallHandlesList(qcmap_msgr_get_firewall_handle_list_conf_t* handles, qmi_error_type_v01* err);
    bool GetFireWallEntry(qcmap_msgr_firewall_entry_conf_t* conf, qmi_error_type_v01* err);
    bool DeleteFireWallEntry(int handle, qmi_error_type_v01* err);
    bool SetFirewall(unsigned int enable_firewall, unsigned int pkts_allowed, qmi_error_type_v01* err);
    bool GetFirewall(unsigned char* enable_firewall, unsigned char* pkts_allowed, qmi_error_type_v01* err);
    bool SetHWMACFilteringState(qcmap_msgr_config_state_enum_v01 state, qcmap_hw_filter_config config,
                                qmi_error_type_v01* err);
    bool GetHWMACFilteringState(qcmap_msgr_config_state_enum_v01* state, qcmap_hw_filter_config* config,
                                qmi_error_type_v01* err);

    // UPnP
    bool EnableUPNP(qmi_error_type_v01* err);
    bool DisableUPNP(qmi_error_type_v01* err);
    bool GetUPNPStatus(qcmap_msgr_upnp_mode_enum_v01* mode, qmi_error_type_v01* err);
    bool SetUPNPNotifyInterval(unsigned int seconds, qmi_error_type_v01* err);
    bool GetUPNPNotifyInterval(unsigned int* seconds, qmi_error_type_v01* err);
    bool SetUPNPState(unsigned char firewall_enabled, unsigned char pinhole, qmi_error_type_v01* err);
    bool GetUPNPState(unsigned char* pinhole, qmi_error_type_v01* err);

private:
    struct Session;
    Session* session_;
};

#endif
