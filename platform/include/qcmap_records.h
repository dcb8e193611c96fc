// Records and enumerations of the mobile-AP service, as far as this system uses them.
// Every enumeration is a 32-bit word that may also carry values without a name.
// IPv4 addresses are 32-bit words in host byte order unless a field says otherwise.
#ifndef QCMAP_RECORDS_H
#define QCMAP_RECORDS_H

#include <stdint.h>

#define QCMAP_WORD_ENUM(name) name##_MIN_ENUM_VAL = -2147483647, name##_MAX_ENUM_VAL = 2147483647

// ---- session ----

enum qcmap_msgr_arch_type_enum_v01 { QCMAP_MSGR_ARCH_TYPE_LOCAL_V01 = 0, QCMAP_WORD_ENUM(QCMAP_MSGR_ARCH_TYPE) };

// ---- LAN addressing ----

enum qcmap_msgr_config_state_enum_v01 {
    QCMAP_MSGR_CONFIG_STATE_OFF_V01 = 0,
    QCMAP_MSGR_CONFIG_STATE_ON_V01 = 1,
    QCMAP_MSGR_CONFIG_STATE_LIST_V01 = 2,
    QCMAP_WORD_ENUM(QCMAP_MSGR_CONFIG_STATE)
};

struct qcmap_msgr_lan_config_v01 {
    uint32_t gateway_ip;
    uint32_t netmask;
    uint8_t enable_dhcp;  // DHCP server of this bridge
    uint32_t dhcp_start_ip;
    uint32_t dhcp_end_ip;
    uint32_t lease_time;  // seconds
    uint32_t dns_mode;
    uint32_t primary_dns;
    uint32_t secondary_dns;
    uint32_t mtu;
};

// ---- VLANs ----

enum qcmap_msgr_interface_type_enum_v01 {
    QCMAP_MSGR_INTERFACE_TYPE_ETH_V01 = 2,
    QCMAP_MSGR_INTERFACE_TYPE_ECM_V01 = 3,
    QCMAP_MSGR_INTERFACE_TYPE_RNDIS_V01 = 4,
    QCMAP_MSGR_INTERFACE_TYPE_ETH_NIC2_V01 = 6,
    QCMAP_WORD_ENUM(QCMAP_MSGR_INTERFACE_TYPE)
};

struct qcmap_msgr_vlan_config_ex_v01 {
    qcmap_msgr_interface_type_enum_v01 interface_type;
    int16_t vlan_id;
    uint8_t is_accelerated;
};

#define QCMAP_MAX_VLAN_ENTRIES 2000

struct qcmap_msgr_vlan_conf_t {
    int32_t count;
    qcmap_msgr_vlan_config_ex_v01 vlan[QCMAP_MAX_VLAN_ENTRIES];
};

// ---- IP passthrough ----

struct qcmap_client_feature_mode_config {
    uint32_t features;
    uint32_t feature_mode;
};

enum qcmap_msgr_ip_passthrough_mode_enum_v01 {
    QCMAP_MSGR_IP_PASSTHROUGH_MODE_DISABLED_V01 = 0,
    QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01 = 1,
    QCMAP_WORD_ENUM(QCMAP_MSGR_IP_PASSTHROUGH_MODE)
};

#define QCMAP_DEVICE_TYPE_USB 3u
#define QCMAP_DEVICE_TYPE_ETH 4u
#define QCMAP_DEVICE_TYPE_WLAN 8u
#define QCMAP_DEVICE_TYPE_ANY_USB 9u
#define QCMAP_DEVICE_TYPE_ETH_NIC2 16u
#define QCMAP_DEVICE_TYPE_WILDCARD 0x7FFFFFFFu

struct qcmap_msgr_ip_passthrough_config_v01 {
    uint32_t device_type;
    uint8_t adaptive_flag;
    uint8_t adaptive_value;
    uint8_t mac[6];
    char host_name[100];
};

#define QCMAP_MAX_SW_PATH_FILTERS 5

struct qcmap_sw_path_filter {
    uint16_t start_port;
    uint16_t end_port;
    uint32_t protocol;
};

struct qcmap_msgr_sw_path_filters_conf_t {
    uint32_t request;  // first header word
    uint8_t count;
    uint32_t flags;  // second header word
    qcmap_sw_path_filter filter[QCMAP_MAX_SW_PATH_FILTERS];
};

struct qcmap_sw_path_filters_ex_ipv4_addr_list {
    int32_t count;
    uint32_t address[QCMAP_MAX_SW_PATH_FILTERS];  // network byte order
};

// ---- LAN services ----

#define QCMAP_MAX_DHCP_RESERVATIONS 20

struct qcmap_msgr_dhcp_reservation_v01 {
    uint8_t mac[6];
    uint32_t reserved_ip;  // network byte order
    char device_name[100];
    uint8_t enable;
};

enum qcmap_msgr_packet_stats_status_enum_v01 {
    QCMAP_MSGR_PACKET_STATS_ENABLED_V01 = 1,
    QCMAP_MSGR_PACKET_STATS_DISABLED_V01 = 2,
    QCMAP_WORD_ENUM(QCMAP_MSGR_PACKET_STATS)
};

#define QCMAP_MAX_CONNECTED_DEVICES 50
#define QCMAP_MAX_DEVICE_IPV6 6

struct qcmap_connected_device {
    uint32_t device_type;
    uint32_t ipv4_addr;  // network byte order
    uint8_t mac[6];
    char host_name[100];
    uint32_t ipv6_count;
    uint8_t ipv6_addr[QCMAP_MAX_DEVICE_IPV6][16];
    uint64_t rx_bytes;
    uint64_t tx_bytes;
};

struct qcmap_connected_devices {
    qcmap_connected_device device[QCMAP_MAX_CONNECTED_DEVICES];
};

#define QCMAP_MAX_L2TP_TUNNELS 8
#define QCMAP_L2TP_UDP 1u
#define QCMAP_L2TP_IP 2u
#define QCMAP_MAX_L2TP_SESSIONS 8

enum qcmap_msgr_l2tp_mode_enum_v01 {
    QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01 = 1,
    QCMAP_MSGR_L2TP_MODE_MANAGED_V01 = 2,
    QCMAP_WORD_ENUM(QCMAP_MSGR_L2TP_MODE)
};

struct qcmap_l2tp_session {
    uint32_t local_session_id;
    uint32_t peer_session_id;
};

struct qcmap_msgr_l2tp_config_v01 {
    uint32_t tunnel_id;
    uint32_t peer_tunnel_id;
    uint32_t ip_family;      // family of the outer addresses: 4 or 6
    uint32_t encapsulation;  // 1 UDP, 2 IP
    uint16_t local_port;     // UDP only
    uint16_t peer_port;      // UDP only
    uint32_t local_ipv4;     // network byte order
    uint32_t peer_ipv4;      // network byte order
    uint8_t local_ipv6[16];
    uint8_t peer_ipv6[16];
    uint32_t mtu;  // 0: the service's own
    uint32_t session_count;
    qcmap_l2tp_session session[QCMAP_MAX_L2TP_SESSIONS];
};

struct qcmap_set_l2tp_config {
    uint32_t state;     // 1 on, 0 off
    uint32_t mtu;       // 0: the service's own
    uint32_t mss;       // TCP segment size, 0: not clamped
    uint8_t clamp_mss;  // 1: clamp to mss
};

struct qcmap_msgr_l2tp_conf_t {
    uint32_t state;
    qcmap_msgr_l2tp_mode_enum_v01 mode;
    uint32_t mtu;
    uint32_t mss;
    uint8_t clamp_mss;
    uint32_t tunnel_count;
    qcmap_msgr_l2tp_config_v01 tunnel[QCMAP_MAX_L2TP_TUNNELS];
};

struct qcmap_msgr_delete_l2tp_config_v01 {
    uint32_t tunnel_id;
};

// ---- WWAN profiles ----

#define QCMAP_MAX_WWAN_PROFILES 50
#define QCMAP_APN_NAME_LEN 50

enum qcmap_msgr_update_profile_enum_v01 {
    QCMAP_MSGR_UPDATE_TECH_TYPE_V01 = 1,
    QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01 = 6,
    QCMAP_MSGR_SET_DEFAULT_PROFILE_V01 = 7,
    QCMAP_MSGR_UPDATE_APN_NAME_V01 = 9,
    QCMAP_MSGR_UPDATE_IP_FAMILY_TYPE_V01 = 10,
    QCMAP_MSGR_UPDATE_CALL_BRINGUP_MODE_V01 = 15,
    QCMAP_WORD_ENUM(QCMAP_MSGR_UPDATE_PROFILE)
};

struct qcmap_net_policy_info {
    uint32_t profile_handle;
    uint64_t tech_pref;  // 0 any, 1 3GPP, 2 3GPP2
    uint32_t ip_family;  // 4, 6 or 10
    uint8_t profile_index_3gpp;
    uint8_t profile_index_3gpp2;
    char apn_name[QCMAP_APN_NAME_LEN];  // not terminated when it fills the field
    uint32_t call_bringup_mode;
};

struct qcmap_wwan_policy_list_info {
    uint32_t default_profile_handle;
    uint32_t number_of_policies;
    qcmap_net_policy_info policy[QCMAP_MAX_WWAN_PROFILES];
};

// ---- WWAN connection ----

enum qcmap_msgr_wwan_status_enum_v01 {
    QCMAP_MSGR_WWAN_STATUS_CONNECTING_V01 = 1,
    QCMAP_MSGR_WWAN_STATUS_CONNECTING_FAIL_V01 = 2,
    QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01 = 3,
    QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_V01 = 4,
    QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_FAIL_V01 = 5,
    QCMAP_MSGR_WWAN_STATUS_DISCONNECTED_V01 = 6,
    QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_V01 = 7,
    QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_FAIL_V01 = 8,
    QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTED_V01 = 9,
    QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_V01 = 10,
    QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_FAIL_V01 = 11,
    QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTED_V01 = 12,
    QCMAP_WORD_ENUM(QCMAP_MSGR_WWAN_STATUS)
};

enum qcmap_msgr_wwan_call_type_v01 {
    QCMAP_MSGR_WWAN_CALL_TYPE_V4_V01 = 1,
    QCMAP_MSGR_WWAN_CALL_TYPE_V6_V01 = 2,
    QCMAP_WORD_ENUM(QCMAP_MSGR_WWAN_CALL_TYPE)
};

enum qcmap_msgr_ip_family_enum_v01 {
    QCMAP_MSGR_IP_FAMILY_V4_V01 = 4,
    QCMAP_MSGR_IP_FAMILY_V6_V01 = 6,
    QCMAP_MSGR_IP_FAMILY_V4V6_V01 = 10,
    QCMAP_MSGR_IP_FAMILY_ANY_V01 = 12,
    QCMAP_WORD_ENUM(QCMAP_MSGR_IP_FAMILY)
};

struct qcmap_connected_wwan_info {
    uint32_t profile_handle;
    char iface_name[16];  // not terminated when it fills the field
    uint32_t v4_addr;     // the four address bytes in network byte order, like all of this record
    uint32_t v4_netmask;
    uint32_t v4_gw_addr;
    uint32_t v4_pri_dns_addr;
    uint32_t v4_sec_dns_addr;
    uint32_t v4_mtu;
    uint8_t v6_prefix;
    uint8_t v6_addr[16];
    uint8_t v6_gw_addr[16];
    uint8_t v6_pri_dns_addr[16];
    uint8_t v6_sec_dns_addr[16];
    uint32_t v6_mtu;
};

// Users of a client interface have this record without these headers too, then from there.
#ifndef QCMAP_MSGR_WWAN_STATISTICS_TYPE_V01_DEFINED
#define QCMAP_MSGR_WWAN_STATISTICS_TYPE_V01_DEFINED
struct qcmap_msgr_wwan_statistics_type_v01 {
    uint64_t bytes_rx;
    uint64_t bytes_tx;
    uint32_t pkts_rx;
    uint32_t pkts_tx;
    uint32_t pkts_dropped_rx;
    uint32_t pkts_dropped_tx;
};
#endif
static_assert(sizeof(qcmap_msgr_wwan_statistics_type_v01) == 32, "callers receive these 32 bytes whole");

// ---- multi-PDN mapping ----

#define QCMAP_MAX_VLANS_PER_PDN 4094

struct qcmap_pdn_to_vlan_mapping {
    uint32_t profile_handle;
    int32_t vlan_count;
    int16_t vlan_id[QCMAP_MAX_VLANS_PER_PDN];
};

// 50 mappings, about 400 KiB: never on a stack.
struct qcmap_msgr_pdn_to_vlan_mapping_ex_v01 {
    qcmap_pdn_to_vlan_mapping mapping[QCMAP_MAX_WWAN_PROFILES];
};

// ---- NAT ----

enum qcmap_msgr_nat_enum_v01 {
    QCMAP_MSGR_NAT_SYMMETRIC_V01 = 0,
    QCMAP_MSGR_NAT_PORT_RESTRICTED_CONE_V01 = 1,
    QCMAP_MSGR_NAT_FULL_CONE_V01 = 2,
    QCMAP_MSGR_NAT_ADDRESS_RESTRICTED_V01 = 3,
    QCMAP_WORD_ENUM(QCMAP_MSGR_NAT)
};

#define QCMAP_MAX_SNAT_ENTRIES 50

struct qcmap_msgr_snat_entry_config_v01 {
    uint32_t private_ip;
    uint16_t private_port;
    uint16_t global_port;
    uint8_t protocol;  // IP protocol number, 253 for TCP and UDP
};

// ---- SIP servers ----

#define QCMAP_MAX_SIP_SERVERS 25
#define QCMAP_SIP_INFO_IP 1u
#define QCMAP_SIP_INFO_FQDN 2u

struct qcmap_msgr_sip_server_info_v01 {
    uint32_t pcscf_info_type;
    uint32_t ipv4_addr;
    char fqdn[100];
};

struct qcmap_msgr_ipv6_sip_server_info_v01 {
    uint32_t pcscf_info_type;
    uint8_t ipv6_addr[16];
    char fqdn[100];
};

// ---- firewall ----

#define QCMAP_IP_FIELD_SRC_ADDR 1u
#define QCMAP_IP_FIELD_DST_ADDR 2u
#define QCMAP_IP_FIELD_NEXT_HEADER 4u
#define QCMAP_IP_FIELD_TOS 8u  // traffic class for IPv6
#define QCMAP_TRANSPORT_FIELD_SRC 1u
#define QCMAP_TRANSPORT_FIELD_DST 2u

struct qcmap_ipv4_header_filter {
    uint32_t src_addr;
    uint32_t src_mask;
    uint32_t dst_addr;
    uint32_t dst_mask;
    uint8_t tos;
    uint8_t tos_mask;
};

struct qcmap_ipv6_header_filter {
    uint8_t src_addr[16];
    uint8_t src_prefix_len;
    uint8_t dst_addr[16];
    uint8_t dst_prefix_len;
    uint8_t nat_flag;  // carried unchanged
    uint8_t traffic_class;
    uint8_t traffic_class_mask;
};

struct qcmap_transport_filter {
    uint32_t field_mask;
    uint16_t src_port;
    uint16_t src_port_range;
    uint16_t dst_port;
    uint16_t dst_port_range;
    uint8_t icmp_type;
    uint8_t icmp_code;
    uint32_t esp_spi;
};

struct qcmap_firewall_filter {
    uint32_t ip_version;  // 4 or 6
    uint32_t ip_field_mask;
    qcmap_ipv4_header_filter ipv4;
    qcmap_ipv6_header_filter ipv6;
    uint8_t next_header;  // IP protocol number, 253 for TCP and UDP
    qcmap_transport_filter transport;
};

struct qcmap_msgr_firewall_conf_t {
    qcmap_firewall_filter filter;
    uint32_t direction;  // 1 or 2; 0: not said
};

#define QCMAP_MAX_FIREWALL_ENTRIES 50

struct qcmap_msgr_get_firewall_handle_list_conf_t {
    uint32_t ip_family;  // in: 4 or 6; 0: not said
    int32_t count;
    uint32_t handle[QCMAP_MAX_FIREWALL_ENTRIES];
};

struct qcmap_msgr_firewall_entry_conf_t {
    uint32_t ip_family;  // in
    uint32_t handle;     // in
    qcmap_firewall_filter filter;
    uint32_t direction;
};

#define QCMAP_MAX_HW_FILTER_MACS 16
#define QCMAP_MAX_HW_FILTER_IFACES 8
#define QCMAP_HW_FILTER_IFACE_WORDS 5

struct qcmap_hw_filter_config {
    uint32_t mac_count;
    uint8_t mac[QCMAP_MAX_HW_FILTER_MACS][6];
    uint32_t iface_count;
    uint32_t iface[QCMAP_MAX_HW_FILTER_IFACES][QCMAP_HW_FILTER_IFACE_WORDS];
};

// ---- UPnP ----

enum qcmap_msgr_upnp_mode_enum_v01 {
    QCMAP_MSGR_UPNP_MODE_UP_V01 = 1,
    QCMAP_MSGR_UPNP_MODE_DOWN_V01 = 2,
    QCMAP_WORD_ENUM(QCMAP_MSGR_UPNP_MODE)
};

#endif
