// The layouts of the public records, which are the same on every CPU: size, then the offset of each field in its order.
//
// Compiled with the library, so that no build gives another one. A record that is added to a header is added here.
#include <assert.h>
#include <stddef.h>
#include <zr_nexa_client_api.h>

#define SIZE(record, bytes) static_assert(sizeof(record) == (bytes), "size of " #record)
#define OFFSET(record, field, bytes) static_assert(offsetof(record, field) == (bytes), "offset in " #record)

// <zr_nexa/alg.h>
SIZE(zr_nexa_sip_server_info_t, 108);
OFFSET(zr_nexa_sip_server_info_t, pcscf_info_type, 0);
OFFSET(zr_nexa_sip_server_info_t, ipv4_addr, 4);
OFFSET(zr_nexa_sip_server_info_t, fqdn, 8);

SIZE(zr_nexa_ipv6_sip_server_info_t, 120);
OFFSET(zr_nexa_ipv6_sip_server_info_t, pcscf_info_type, 0);
OFFSET(zr_nexa_ipv6_sip_server_info_t, ipv6_addr, 4);
OFFSET(zr_nexa_ipv6_sip_server_info_t, fqdn, 20);

// <zr_nexa/firewall.h>
SIZE(zr_nexa_firewall_entry_t, 104);
OFFSET(zr_nexa_firewall_entry_t, direction, 0);
OFFSET(zr_nexa_firewall_entry_t, ip_version, 4);
OFFSET(zr_nexa_firewall_entry_t, ipv4_src_valid, 8);
OFFSET(zr_nexa_firewall_entry_t, ipv4_src_addr, 12);
OFFSET(zr_nexa_firewall_entry_t, ipv4_src_mask, 16);
OFFSET(zr_nexa_firewall_entry_t, ipv4_dst_valid, 20);
OFFSET(zr_nexa_firewall_entry_t, ipv4_dst_addr, 24);
OFFSET(zr_nexa_firewall_entry_t, ipv4_dst_mask, 28);
OFFSET(zr_nexa_firewall_entry_t, ipv4_tos_valid, 32);
OFFSET(zr_nexa_firewall_entry_t, ipv4_tos, 33);
OFFSET(zr_nexa_firewall_entry_t, ipv4_tos_mask, 34);
OFFSET(zr_nexa_firewall_entry_t, ipv6_src_valid, 35);
OFFSET(zr_nexa_firewall_entry_t, ipv6_src_addr, 36);
OFFSET(zr_nexa_firewall_entry_t, ipv6_src_prefix_len, 52);
OFFSET(zr_nexa_firewall_entry_t, ipv6_dst_valid, 53);
OFFSET(zr_nexa_firewall_entry_t, ipv6_dst_addr, 54);
OFFSET(zr_nexa_firewall_entry_t, ipv6_dst_prefix_len, 70);
OFFSET(zr_nexa_firewall_entry_t, ipv6_nat_flag, 71);
OFFSET(zr_nexa_firewall_entry_t, ipv6_tc_valid, 72);
OFFSET(zr_nexa_firewall_entry_t, ipv6_tc, 73);
OFFSET(zr_nexa_firewall_entry_t, ipv6_tc_mask, 74);
OFFSET(zr_nexa_firewall_entry_t, proto_valid, 75);
OFFSET(zr_nexa_firewall_entry_t, protocol, 76);
OFFSET(zr_nexa_firewall_entry_t, src_port_valid, 80);
OFFSET(zr_nexa_firewall_entry_t, src_port, 82);
OFFSET(zr_nexa_firewall_entry_t, src_port_range, 84);
OFFSET(zr_nexa_firewall_entry_t, dst_port_valid, 86);
OFFSET(zr_nexa_firewall_entry_t, dst_port, 88);
OFFSET(zr_nexa_firewall_entry_t, dst_port_range, 90);
OFFSET(zr_nexa_firewall_entry_t, icmp_type_valid, 92);
OFFSET(zr_nexa_firewall_entry_t, icmp_type, 93);
OFFSET(zr_nexa_firewall_entry_t, icmp_code_valid, 94);
OFFSET(zr_nexa_firewall_entry_t, icmp_code, 95);
OFFSET(zr_nexa_firewall_entry_t, esp_spi_valid, 96);
OFFSET(zr_nexa_firewall_entry_t, esp_spi, 100);

SIZE(zr_nexa_firewall_entry_list_t, 5404);
OFFSET(zr_nexa_firewall_entry_list_t, count, 0);
OFFSET(zr_nexa_firewall_entry_list_t, handle, 4);
OFFSET(zr_nexa_firewall_entry_list_t, entry, 204);

SIZE(zr_nexa_firewall_hwfilter_cfg_t, 264);
OFFSET(zr_nexa_firewall_hwfilter_cfg_t, num_of_macs, 0);
OFFSET(zr_nexa_firewall_hwfilter_cfg_t, mac_addr, 4);
OFFSET(zr_nexa_firewall_hwfilter_cfg_t, num_of_ifaces, 100);
OFFSET(zr_nexa_firewall_hwfilter_cfg_t, iface, 104);

// <zr_nexa/gre.h>
SIZE(zr_nexa_wan_gre_ipacfg_t, 56);
OFFSET(zr_nexa_wan_gre_ipacfg_t, gre_enabled, 0);
OFFSET(zr_nexa_wan_gre_ipacfg_t, num_of_server_addrs, 1);
OFFSET(zr_nexa_wan_gre_ipacfg_t, server_ipv4_addr, 4);
OFFSET(zr_nexa_wan_gre_ipacfg_t, num_of_subnet_masks, 44);
OFFSET(zr_nexa_wan_gre_ipacfg_t, subnet_mask, 48);

// <zr_nexa/indications.h>
SIZE(zr_nexa_ind_call_event_t, 92);
OFFSET(zr_nexa_ind_call_event_t, status, 0);
OFFSET(zr_nexa_ind_call_event_t, call_end_type, 4);
OFFSET(zr_nexa_ind_call_event_t, call_end_code, 8);
OFFSET(zr_nexa_ind_call_event_t, iface_name, 12);
OFFSET(zr_nexa_ind_call_event_t, wwan_handle, 28);
OFFSET(zr_nexa_ind_call_event_t, v4_addr, 32);
OFFSET(zr_nexa_ind_call_event_t, v4_pri_dns_addr, 36);
OFFSET(zr_nexa_ind_call_event_t, v4_sec_dns_addr, 40);
OFFSET(zr_nexa_ind_call_event_t, v6_addr, 44);
OFFSET(zr_nexa_ind_call_event_t, v6_pri_dns_addr, 60);
OFFSET(zr_nexa_ind_call_event_t, v6_sec_dns_addr, 76);

SIZE(zr_nexa_ind_status_report_t, 10888);
OFFSET(zr_nexa_ind_status_report_t, kind, 0);
OFFSET(zr_nexa_ind_status_report_t, report, 4);

// <zr_nexa/lan_addressing.h>
SIZE(zr_nexa_lan_dhcp_cfg_t, 36);
OFFSET(zr_nexa_lan_dhcp_cfg_t, gateway_ip, 0);
OFFSET(zr_nexa_lan_dhcp_cfg_t, netmask, 4);
OFFSET(zr_nexa_lan_dhcp_cfg_t, dhcp_start_ip, 8);
OFFSET(zr_nexa_lan_dhcp_cfg_t, dhcp_end_ip, 12);
OFFSET(zr_nexa_lan_dhcp_cfg_t, lease_time, 16);
OFFSET(zr_nexa_lan_dhcp_cfg_t, mtu, 20);
OFFSET(zr_nexa_lan_dhcp_cfg_t, dns_mode, 24);
OFFSET(zr_nexa_lan_dhcp_cfg_t, primary_dns, 28);
OFFSET(zr_nexa_lan_dhcp_cfg_t, secondary_dns, 32);

// <zr_nexa/lan_passthrough.h>
SIZE(zr_nexa_lan_ippt_t, 123);
OFFSET(zr_nexa_lan_ippt_t, lan_id, 0);
OFFSET(zr_nexa_lan_ippt_t, ippt_adaptive_enable, 2);
OFFSET(zr_nexa_lan_ippt_t, ippt_adaptive, 3);
OFFSET(zr_nexa_lan_ippt_t, ippt_mode, 4);
OFFSET(zr_nexa_lan_ippt_t, host_mac, 5);
OFFSET(zr_nexa_lan_ippt_t, host_name, 23);

SIZE(zr_nexa_lan_ipptgwfilter_list_t, 40);
OFFSET(zr_nexa_lan_ipptgwfilter_list_t, protocol, 0);
OFFSET(zr_nexa_lan_ipptgwfilter_list_t, start_port, 20);
OFFSET(zr_nexa_lan_ipptgwfilter_list_t, end_port, 30);

SIZE(zr_nexa_lan_swpathfilter_list_t, 24);
OFFSET(zr_nexa_lan_swpathfilter_list_t, count, 0);
OFFSET(zr_nexa_lan_swpathfilter_list_t, ipv4_address, 4);

// <zr_nexa/lan_services.h>
SIZE(zr_nexa_lan_dhcp_reserv_record_t, 116);
OFFSET(zr_nexa_lan_dhcp_reserv_record_t, mac, 0);
OFFSET(zr_nexa_lan_dhcp_reserv_record_t, reserved_ip, 8);
OFFSET(zr_nexa_lan_dhcp_reserv_record_t, device_name, 12);
OFFSET(zr_nexa_lan_dhcp_reserv_record_t, enable, 112);

SIZE(zr_nexa_lan_dhcp_reserv_list_t, 2324);
OFFSET(zr_nexa_lan_dhcp_reserv_list_t, count, 0);
OFFSET(zr_nexa_lan_dhcp_reserv_list_t, record, 4);

SIZE(zr_nexa_lan_connected_device_t, 232);
OFFSET(zr_nexa_lan_connected_device_t, device_type, 0);
OFFSET(zr_nexa_lan_connected_device_t, ipv4_addr, 4);
OFFSET(zr_nexa_lan_connected_device_t, mac, 8);
OFFSET(zr_nexa_lan_connected_device_t, host_name, 14);
OFFSET(zr_nexa_lan_connected_device_t, reserved, 114);
OFFSET(zr_nexa_lan_connected_device_t, ipv6_count, 116);
OFFSET(zr_nexa_lan_connected_device_t, ipv6_addr, 120);
OFFSET(zr_nexa_lan_connected_device_t, rx_bytes, 216);
OFFSET(zr_nexa_lan_connected_device_t, tx_bytes, 224);

SIZE(zr_nexa_lan_unmanaged_l2tp_cfg_t, 16);
OFFSET(zr_nexa_lan_unmanaged_l2tp_cfg_t, state, 0);
OFFSET(zr_nexa_lan_unmanaged_l2tp_cfg_t, mtu, 4);
OFFSET(zr_nexa_lan_unmanaged_l2tp_cfg_t, mss, 8);
OFFSET(zr_nexa_lan_unmanaged_l2tp_cfg_t, clamp_mss, 12);

SIZE(zr_nexa_lan_l2tp_session_t, 8);
OFFSET(zr_nexa_lan_l2tp_session_t, local_session_id, 0);
OFFSET(zr_nexa_lan_l2tp_session_t, peer_session_id, 4);

SIZE(zr_nexa_lan_l2tp_tunnel_t, 132);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, tunnel_id, 0);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, peer_tunnel_id, 4);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, ip_family, 8);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, encapsulation, 12);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, local_port, 16);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, peer_port, 18);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, local_ipv4, 20);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, peer_ipv4, 24);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, local_ipv6, 28);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, peer_ipv6, 44);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, mtu, 60);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, session_count, 64);
OFFSET(zr_nexa_lan_l2tp_tunnel_t, session, 68);

SIZE(zr_nexa_lan_l2tp_cfg_t, 136);
OFFSET(zr_nexa_lan_l2tp_cfg_t, mode, 0);
OFFSET(zr_nexa_lan_l2tp_cfg_t, tunnel, 4);

SIZE(zr_nexa_lan_l2tp_info_t, 1080);
OFFSET(zr_nexa_lan_l2tp_info_t, state, 0);
OFFSET(zr_nexa_lan_l2tp_info_t, mode, 4);
OFFSET(zr_nexa_lan_l2tp_info_t, mtu, 8);
OFFSET(zr_nexa_lan_l2tp_info_t, mss, 12);
OFFSET(zr_nexa_lan_l2tp_info_t, clamp_mss, 16);
OFFSET(zr_nexa_lan_l2tp_info_t, tunnel_count, 20);
OFFSET(zr_nexa_lan_l2tp_info_t, tunnel, 24);

// <zr_nexa/lan_vlan.h>
SIZE(zr_nexa_lan_vlan_list_t, 8002);
OFFSET(zr_nexa_lan_vlan_list_t, count, 0);
OFFSET(zr_nexa_lan_vlan_list_t, vlan_id, 2);
OFFSET(zr_nexa_lan_vlan_list_t, phy_iface_type, 4002);
OFFSET(zr_nexa_lan_vlan_list_t, is_accelerated, 6002);

// <zr_nexa/nat.h>
SIZE(zr_nexa_nat_ipv4portmapping_list_t, 456);
OFFSET(zr_nexa_nat_ipv4portmapping_list_t, count, 0);
OFFSET(zr_nexa_nat_ipv4portmapping_list_t, private_ip, 4);
OFFSET(zr_nexa_nat_ipv4portmapping_list_t, private_port, 204);
OFFSET(zr_nexa_nat_ipv4portmapping_list_t, global_port, 304);
OFFSET(zr_nexa_nat_ipv4portmapping_list_t, protocol, 404);

// <zr_nexa/wan_connection.h>
SIZE(zr_nexa_wan_info_t, 116);
OFFSET(zr_nexa_wan_info_t, connected, 0);
OFFSET(zr_nexa_wan_info_t, iface_name, 1);
OFFSET(zr_nexa_wan_info_t, v4_addr, 20);
OFFSET(zr_nexa_wan_info_t, v4_gw_addr, 24);
OFFSET(zr_nexa_wan_info_t, v4_netmask, 28);
OFFSET(zr_nexa_wan_info_t, v4_pri_dns_addr, 32);
OFFSET(zr_nexa_wan_info_t, v4_sec_dns_addr, 36);
OFFSET(zr_nexa_wan_info_t, v4_mtu, 40);
OFFSET(zr_nexa_wan_info_t, v6_prefix, 44);
OFFSET(zr_nexa_wan_info_t, v6_addr, 45);
OFFSET(zr_nexa_wan_info_t, v6_gw_addr, 61);
OFFSET(zr_nexa_wan_info_t, v6_pri_dns_addr, 77);
OFFSET(zr_nexa_wan_info_t, v6_sec_dns_addr, 93);
OFFSET(zr_nexa_wan_info_t, v6_mtu, 112);

SIZE(qcmap_msgr_wwan_statistics_type_v01, 32);
OFFSET(qcmap_msgr_wwan_statistics_type_v01, bytes_rx, 0);
OFFSET(qcmap_msgr_wwan_statistics_type_v01, bytes_tx, 8);
OFFSET(qcmap_msgr_wwan_statistics_type_v01, pkts_rx, 16);
OFFSET(qcmap_msgr_wwan_statistics_type_v01, pkts_tx, 20);
OFFSET(qcmap_msgr_wwan_statistics_type_v01, pkts_dropped_rx, 24);
OFFSET(qcmap_msgr_wwan_statistics_type_v01, pkts_dropped_tx, 28);

// <zr_nexa/wan_mpdn_mapping.h>
SIZE(zr_nexa_wan_mpdnmapping_list_t, 1228204);
OFFSET(zr_nexa_wan_mpdnmapping_list_t, count, 0);
OFFSET(zr_nexa_wan_mpdnmapping_list_t, profile_handle, 4);
OFFSET(zr_nexa_wan_mpdnmapping_list_t, vlan_id, 818804);

// <zr_nexa/wan_profile.h>
SIZE(zr_nexa_wan_wwanconfig_t, 60);
OFFSET(zr_nexa_wan_wwanconfig_t, tech_pref, 0);
OFFSET(zr_nexa_wan_wwanconfig_t, ip_family, 4);
OFFSET(zr_nexa_wan_wwanconfig_t, apn_id, 8);
OFFSET(zr_nexa_wan_wwanconfig_t, apn_name, 9);

SIZE(zr_nexa_wan_wwanconfig_list_t, 308);
OFFSET(zr_nexa_wan_wwanconfig_list_t, wwanconfig_num, 0);
OFFSET(zr_nexa_wan_wwanconfig_list_t, default_wwan_handle, 4);
OFFSET(zr_nexa_wan_wwanconfig_list_t, wwan_handle, 8);
OFFSET(zr_nexa_wan_wwanconfig_list_t, tech_pref, 208);
OFFSET(zr_nexa_wan_wwanconfig_list_t, apn_id, 258);

SIZE(zr_nexa_wan_wwanconfig_list_v2_t, 3208);
OFFSET(zr_nexa_wan_wwanconfig_list_v2_t, wwanconfig_num, 0);
OFFSET(zr_nexa_wan_wwanconfig_list_v2_t, default_wwan_handle, 4);
OFFSET(zr_nexa_wan_wwanconfig_list_v2_t, wwan_handle, 8);
OFFSET(zr_nexa_wan_wwanconfig_list_v2_t, wwanconfig, 208);
