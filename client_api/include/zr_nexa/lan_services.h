/*
 * LAN services: DHCP reservations, packet statistics, connected devices, L2TP tunnels.
 *
 * IPv4 addresses of this header are in network byte order.
 */
#ifndef ZR_NEXA_LAN_SERVICES_H
#define ZR_NEXA_LAN_SERVICES_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

#define ZR_NEXA_LAN_DHCP_RESERVATIONS_MAX 20u
#define ZR_NEXA_LAN_CONNECTED_DEVICES_MAX 50u
#define ZR_NEXA_LAN_DEVICE_IPV6_MAX 6u
#define ZR_NEXA_LAN_L2TP_TUNNELS_MAX 8u
#define ZR_NEXA_LAN_L2TP_SESSIONS_MAX 8u

/* What zr_nexa_lan_l2tp_set_v1 refuses in its record. */
enum {
    ZR_NEXA_LAN_L2TP_ERR_FAMILY = 3,   /* ip_family is neither 4 nor 6 */
    ZR_NEXA_LAN_L2TP_ERR_TUNNEL = 5,   /* a tunnel id is 0 */
    ZR_NEXA_LAN_L2TP_ERR_ADDRESS = 7,  /* the family's local or peer address is all zero */
    ZR_NEXA_LAN_L2TP_ERR_PORT = 8,     /* UDP encapsulation with a port 0 */
    ZR_NEXA_LAN_L2TP_ERR_SESSIONS = 9, /* no session, more than fit, or a session id 0 */
    ZR_NEXA_LAN_L2TP_ERR_MTU = 10      /* mtu neither 0 nor 576..9000, or mss not 536..8960 while clamped */
};

/* One DHCP reservation; the layout is the service's own. */
typedef struct zr_nexa_lan_dhcp_reserv_record_t {
    uint8_t mac[6];
    uint32_t reserved_ip;  /* network byte order */
    char device_name[100]; /* not terminated when it fills the field */
    uint8_t enable;        /* 0 off, 1 on; passed on as it is */
} zr_nexa_lan_dhcp_reserv_record_t;

typedef struct zr_nexa_lan_dhcp_reserv_list_t {
    uint32_t count;
    zr_nexa_lan_dhcp_reserv_record_t record[ZR_NEXA_LAN_DHCP_RESERVATIONS_MAX];
} zr_nexa_lan_dhcp_reserv_list_t;

/* One device on the LAN. */
typedef struct zr_nexa_lan_connected_device_t {
    uint32_t device_type; /* the service's own numbers */
    uint32_t ipv4_addr;   /* network byte order */
    uint8_t mac[6];
    char host_name[100]; /* not terminated when it fills the field */
    uint8_t reserved[2];
    uint32_t ipv6_count; /* valid entries of ipv6_addr */
    uint8_t ipv6_addr[ZR_NEXA_LAN_DEVICE_IPV6_MAX][16];
    uint64_t rx_bytes; /* received from the device */
    uint64_t tx_bytes; /* sent to the device */
} zr_nexa_lan_connected_device_t;

/* The switch of unmanaged L2TP. */
typedef struct zr_nexa_lan_unmanaged_l2tp_cfg_t {
    uint32_t state;     /* 0 off, 1 on */
    uint32_t mtu;       /* bytes, 576..9000; 0: the service's own */
    uint32_t mss;       /* bytes, 536..8960 when clamp_mss is 1, else not looked at */
    uint32_t clamp_mss; /* 1: TCP segment sizes are clamped to mss; 0: not */
} zr_nexa_lan_unmanaged_l2tp_cfg_t;

typedef struct zr_nexa_lan_l2tp_session_t {
    uint32_t local_session_id;
    uint32_t peer_session_id;
} zr_nexa_lan_l2tp_session_t;

/* One L2TP tunnel. */
typedef struct zr_nexa_lan_l2tp_tunnel_t {
    uint32_t tunnel_id; /* local, not 0; names the tunnel on deletion */
    uint32_t peer_tunnel_id;
    uint32_t ip_family;     /* of the outer addresses: ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6 */
    uint32_t encapsulation; /* 1 UDP, 2 IP */
    uint16_t local_port;    /* host byte order; UDP only */
    uint16_t peer_port;     /* host byte order; UDP only */
    uint32_t local_ipv4;    /* network byte order */
    uint32_t peer_ipv4;     /* network byte order */
    uint8_t local_ipv6[16];
    uint8_t peer_ipv6[16];
    uint32_t mtu;           /* bytes, 576..9000; 0: the service's own */
    uint32_t session_count; /* 1..8 */
    zr_nexa_lan_l2tp_session_t session[ZR_NEXA_LAN_L2TP_SESSIONS_MAX];
} zr_nexa_lan_l2tp_tunnel_t;

/* What zr_nexa_lan_l2tp_set_v1 takes. */
typedef struct zr_nexa_lan_l2tp_cfg_t {
    uint32_t mode; /* 1 unmanaged, 2 managed */
    zr_nexa_lan_l2tp_tunnel_t tunnel;
} zr_nexa_lan_l2tp_cfg_t;

/* What zr_nexa_lan_l2tp_get_v1 fills. */
typedef struct zr_nexa_lan_l2tp_info_t {
    uint32_t state; /* 0 off, 1 on */
    uint32_t mode;  /* 1 unmanaged, 2 managed */
    uint32_t mtu;
    uint32_t mss;
    uint32_t clamp_mss;
    uint32_t tunnel_count;
    zr_nexa_lan_l2tp_tunnel_t tunnel[ZR_NEXA_LAN_L2TP_TUNNELS_MAX];
} zr_nexa_lan_l2tp_info_t;

/*
 * Adds a DHCP reservation.
 *
 * record: read only; its four fields are passed on as they are, device_name as a block of 100 bytes.
 *
 * Returns 13 no session; 4 record null; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_reserv_record_add_v1(const zr_nexa_lan_dhcp_reserv_record_t* record);

/*
 * Lists the DHCP reservations, in the service's order.
 *
 * list: receives the count and that many records; records behind them stay as they were. Untouched on failure.
 *
 * Returns 13 no session; 4 list null; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_reserv_record_get_v1(zr_nexa_lan_dhcp_reserv_list_t* list);

/*
 * Replaces the DHCP reservation of one address.
 *
 * ip_address: the reservation to replace, network byte order.
 * record: what takes its place; read only.
 *
 * Returns 13 no session; 4 record null; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_reserv_record_edit_v1(uint32_t ip_address,
                                                            const zr_nexa_lan_dhcp_reserv_record_t* record);

/*
 * Deletes the DHCP reservation of one address.
 *
 * ip_address: network byte order.
 *
 * Returns 13 no session; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_reserv_record_del_v1(uint32_t ip_address);

/*
 * Switches the LAN packet statistics.
 *
 * enable: 0 off, 1 on.
 *
 * Returns 13 no session; 4 enable above 1; e | 0x1000 switching on, e | 0x2000 switching off was refused with error e;
 * 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_packetstats_set_v1(uint32_t enable);

/*
 * Reads the switch of the LAN packet statistics.
 *
 * state: receives 0 off or 1 on; untouched on failure, and when the service reports anything else.
 *
 * Returns 13 no session; 4 state null; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_packetstats_get_v1(uint8_t* state);

/*
 * Sets the LAN packet statistics to zero.
 *
 * Returns 13 no session; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_packetstats_reset_v1(void);

/*
 * Lists the devices on the LAN.
 *
 * devices: an array of ZR_NEXA_LAN_CONNECTED_DEVICES_MAX entries; as many as count says are filled, those behind stay
 *          as they were. Untouched on failure.
 * count: receives the number of devices, at most ZR_NEXA_LAN_CONNECTED_DEVICES_MAX. It is handed to the service as it
 *        is; on a failure it holds what the service left in it.
 *
 * Returns 13 no session; 4 devices or count null; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_connected_device_info_get_v1(zr_nexa_lan_connected_device_t* devices, uint32_t* count);

/*
 * Switches unmanaged L2TP on one LAN.
 *
 * lan_id: 0 the default LAN, 1..4094 a VLAN.
 * config: read only.
 *
 * Returns, in order of the checks: 13 no session; 4 config null; 6 lan_id above 4094; 4 state or clamp_mss above 1;
 * 10 mtu or mss out of range (ZR_NEXA_LAN_L2TP_ERR_MTU); e | 0x1000 the LAN could not be selected; e | 0x2000 the
 * service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_unmanaged_l2tp_state_set_v1(uint32_t lan_id,
                                                             const zr_nexa_lan_unmanaged_l2tp_cfg_t* config);

/*
 * Reads the L2TP configuration of one LAN.
 *
 * lan_id: as above.
 * config: receives the switch and as many tunnels as tunnel_count says, each with as many sessions as its
 *         session_count says; tunnels and sessions behind them stay as they were. Untouched on failure.
 *
 * Returns 13 no session; 4 config null; 6 lan_id above 4094; e | 0x1000 the LAN could not be selected; e | 0x2000 the
 * service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_l2tp_get_v1(uint32_t lan_id, zr_nexa_lan_l2tp_info_t* config);

/*
 * Adds an L2TP tunnel to one LAN, or replaces the tunnel of the same tunnel_id.
 *
 * lan_id: as above.
 * config: read only. Sessions behind session_count are not looked at and go out as zero; addresses of the other family
 *         and, with IP encapsulation, the ports go out as they are.
 *
 * Returns, in order of the checks: 13 no session; 4 config null; 6 lan_id above 4094; 4 mode or encapsulation neither
 * 1 nor 2; 5 tunnel_id or peer_tunnel_id 0; 3 ip_family neither 4 nor 6; 7 the family's local or peer address all
 * zero; 8 UDP with a port 0; 10 mtu out of range; 9 session_count not 1..8 or one of its sessions with an id 0;
 * e | 0x1000 the LAN could not be selected; e | 0x2000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_l2tp_set_v1(uint32_t lan_id, const zr_nexa_lan_l2tp_cfg_t* config);

/*
 * Deletes an L2TP tunnel of one LAN.
 *
 * lan_id: as above.
 * tunnel_id: the local tunnel id; any value is passed on.
 *
 * Returns 13 no session; 6 lan_id above 4094; e | 0x1000 the LAN could not be selected; e | 0x2000 the service refused
 * with error e (26: there is no such tunnel); 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_l2tp_delete_v1(uint32_t lan_id, uint32_t tunnel_id);

ZR_NEXA_C_END

#endif
