/**
 * @file
 * LAN services: DHCP reservations, packet statistics, connected devices, L2TP tunnels.
 *
 * IPv4 addresses of this header are in network byte order.
 */
#ifndef ZR_NEXA_LAN_SERVICES_H
#define ZR_NEXA_LAN_SERVICES_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** @name What the lists hold
 * @{ */
#define ZR_NEXA_LAN_DHCP_RESERVATIONS_MAX 20u /**< DHCP reservations */
#define ZR_NEXA_LAN_CONNECTED_DEVICES_MAX 50u /**< devices that are listed */
#define ZR_NEXA_LAN_DEVICE_IPV6_ADDRS_MAX 6u  /**< IPv6 addresses of a device */
#define ZR_NEXA_LAN_L2TP_TUNNELS_MAX 8u       /**< tunnels of a LAN */
#define ZR_NEXA_LAN_L2TP_SESSIONS_MAX 8u      /**< sessions of a tunnel */
/** @} */

/** Result codes of the L2TP functions: what they refuse in their record. */
enum {
    ZR_NEXA_LAN_L2TP_ERR_FAMILY = 3,   /**< ip_family is neither 4 nor 6 */
    ZR_NEXA_LAN_L2TP_ERR_TUNNEL = 5,   /**< a tunnel id is 0 */
    ZR_NEXA_LAN_L2TP_ERR_ADDRESS = 7,  /**< the family's local or peer address is all zero */
    ZR_NEXA_LAN_L2TP_ERR_PORT = 8,     /**< UDP encapsulation with a port 0 */
    ZR_NEXA_LAN_L2TP_ERR_SESSIONS = 9, /**< no session, more than fit, or a session id 0 */
    ZR_NEXA_LAN_L2TP_ERR_MTU = 10      /**< mtu neither 0 nor 576..9000, or mss not 536..8960 while clamped */
};

/** One DHCP reservation; the layout is the service's own. */
typedef struct zr_nexa_lan_dhcp_reserv_record_t {
    uint8_t mac[6];        /**< of the device, first byte first */
    uint32_t reserved_ip;  /**< network byte order */
    char device_name[100]; /**< not terminated when it fills the field */
    uint8_t enable;        /**< 0 off, 1 on; passed on as it is */
} zr_nexa_lan_dhcp_reserv_record_t;

/** All DHCP reservations. */
typedef struct zr_nexa_lan_dhcp_reserv_list_t {
    uint32_t count;                                                             /**< records, 0..20 */
    zr_nexa_lan_dhcp_reserv_record_t record[ZR_NEXA_LAN_DHCP_RESERVATIONS_MAX]; /**< the reservations */
} zr_nexa_lan_dhcp_reserv_list_t;

/** One device on the LAN. */
typedef struct zr_nexa_lan_connected_device_t {
    uint32_t device_type;                                     /**< the service's own numbers */
    uint32_t ipv4_addr;                                       /**< network byte order */
    uint8_t mac[6];                                           /**< first byte first */
    char host_name[100];                                      /**< not terminated when it fills the field */
    uint8_t reserved[2];                                      /**< 0 */
    uint32_t ipv6_count;                                      /**< valid entries of ipv6_addr */
    uint8_t ipv6_addr[ZR_NEXA_LAN_DEVICE_IPV6_ADDRS_MAX][16]; /**< network byte order */
    uint64_t rx_bytes;                                        /**< received from the device */
    uint64_t tx_bytes;                                        /**< sent to the device */
} zr_nexa_lan_connected_device_t;

/** The switch of unmanaged L2TP. */
typedef struct zr_nexa_lan_unmanaged_l2tp_cfg_t {
    uint32_t state;     /**< 0 off, 1 on */
    uint32_t mtu;       /**< bytes, 576..9000; 0: the service's own */
    uint32_t mss;       /**< bytes, 536..8960 when clamp_mss is 1, else not looked at */
    uint32_t clamp_mss; /**< 1: TCP segment sizes are clamped to mss; 0: not */
} zr_nexa_lan_unmanaged_l2tp_cfg_t;

/** One session of an L2TP tunnel. */
typedef struct zr_nexa_lan_l2tp_session_t {
    uint32_t local_session_id; /**< not 0 */
    uint32_t peer_session_id;  /**< not 0 */
} zr_nexa_lan_l2tp_session_t;

/** One L2TP tunnel. */
typedef struct zr_nexa_lan_l2tp_tunnel_t {
    uint32_t tunnel_id;      /**< local, not 0; names the tunnel on deletion */
    uint32_t peer_tunnel_id; /**< the peer's, not 0 */
    uint32_t ip_family;      /**< of the outer addresses: ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6 */
    uint32_t encapsulation;  /**< 1 UDP, 2 IP */
    uint16_t local_port;     /**< host byte order; UDP only */
    uint16_t peer_port;      /**< host byte order; UDP only */
    uint32_t local_ipv4;     /**< network byte order */
    uint32_t peer_ipv4;      /**< network byte order */
    uint8_t local_ipv6[16];  /**< network byte order */
    uint8_t peer_ipv6[16];   /**< network byte order */
    uint32_t mtu;            /**< bytes, 576..9000; 0: the service's own */
    uint32_t session_count;  /**< 1..8 */
    zr_nexa_lan_l2tp_session_t session[ZR_NEXA_LAN_L2TP_SESSIONS_MAX]; /**< the sessions */
} zr_nexa_lan_l2tp_tunnel_t;

/** What zr_nexa_lan_l2tp_set_v1 takes. */
typedef struct zr_nexa_lan_l2tp_cfg_t {
    uint32_t mode;                    /**< 1 unmanaged, 2 managed */
    zr_nexa_lan_l2tp_tunnel_t tunnel; /**< the tunnel to add or replace */
} zr_nexa_lan_l2tp_cfg_t;

/** What zr_nexa_lan_l2tp_get_v1 fills. */
typedef struct zr_nexa_lan_l2tp_info_t {
    uint32_t state;                                                 /**< 0 off, 1 on */
    uint32_t mode;                                                  /**< 1 unmanaged, 2 managed */
    uint32_t mtu;                                                   /**< bytes */
    uint32_t mss;                                                   /**< bytes */
    uint32_t clamp_mss;                                             /**< as in zr_nexa_lan_unmanaged_l2tp_cfg_t */
    uint32_t tunnel_count;                                          /**< tunnels, 0..8 */
    zr_nexa_lan_l2tp_tunnel_t tunnel[ZR_NEXA_LAN_L2TP_TUNNELS_MAX]; /**< the tunnels */
} zr_nexa_lan_l2tp_info_t;

/**
 * Adds a DHCP reservation.
 *
 * @param[in] record  the reservation; its four fields are passed on as they are, device_name as a block of 100 bytes.
 *
 * @retval 13        no session
 * @retval 4         record null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_reserv_record_add_v1(const zr_nexa_lan_dhcp_reserv_record_t* record);

/**
 * Lists the DHCP reservations, in the service's order.
 *
 * @param[out] list  receives the count and that many records; records behind them stay as they were. Untouched on
 *                   failure.
 *
 * @retval 13        no session
 * @retval 4         list null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_reserv_record_get_v1(zr_nexa_lan_dhcp_reserv_list_t* list);

/**
 * Replaces the DHCP reservation of one address.
 *
 * @param[in] ip_address  the reservation to replace, network byte order.
 * @param[in] record      what takes its place.
 *
 * @retval 13        no session
 * @retval 4         record null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_reserv_record_edit_v1(uint32_t ip_address,
                                                            const zr_nexa_lan_dhcp_reserv_record_t* record);

/**
 * Deletes the DHCP reservation of one address.
 *
 * @param[in] ip_address  the reservation to delete, network byte order.
 *
 * @retval 13        no session
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_reserv_record_del_v1(uint32_t ip_address);

/**
 * Switches the LAN packet statistics.
 *
 * @param[in] enable  0 off, 1 on.
 *
 * @retval 13        no session
 * @retval 4         enable above 1
 * @retval e|0x1000  the service refused to switch on with error e
 * @retval e|0x2000  the service refused to switch off with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_packetstats_set_v1(uint32_t enable);

/**
 * Reads the switch of the LAN packet statistics.
 *
 * @param[out] state  receives 0 off or 1 on; untouched on failure, and when the service reports anything else.
 *
 * @retval 13        no session
 * @retval 4         state null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_packetstats_get_v1(uint8_t* state);

/**
 * Sets the LAN packet statistics to zero.
 *
 * @retval 13        no session
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_packetstats_reset_v1(void);

/**
 * Lists the devices on the LAN.
 *
 * @param[out]    devices  an array of ZR_NEXA_LAN_CONNECTED_DEVICES_MAX entries; as many as count says are filled,
 *                         those behind stay as they were. Untouched on failure.
 * @param[in,out] count    receives the number of devices, at most ZR_NEXA_LAN_CONNECTED_DEVICES_MAX. It is handed to
 *                         the service as it is; on failure it holds what the service left in it.
 *
 * @retval 13        no session
 * @retval 4         devices or count null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_connected_device_info_get_v1(zr_nexa_lan_connected_device_t* devices, uint32_t* count);

/**
 * Switches unmanaged L2TP on one LAN.
 *
 * @param[in] lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[in] config  the switch.
 *
 * @retval 13        no session
 * @retval 4         config null; behind the check of lan_id: state or clamp_mss above 1
 * @retval 6         lan_id above 4094
 * @retval 10        mtu or mss out of range
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_unmanaged_l2tp_state_set_v1(uint32_t lan_id,
                                                             const zr_nexa_lan_unmanaged_l2tp_cfg_t* config);

/**
 * Reads the L2TP configuration of one LAN.
 *
 * @param[in]  lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[out] config  receives the switch and as many tunnels as tunnel_count says, each with as many sessions as its
 *                     session_count says; tunnels and sessions behind them stay as they were. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         config null
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_l2tp_get_v1(uint32_t lan_id, zr_nexa_lan_l2tp_info_t* config);

/**
 * Adds an L2TP tunnel to one LAN, or replaces the tunnel of the same tunnel_id.
 *
 * @param[in] lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[in] config  the tunnel. Sessions behind session_count are not looked at and go out as zero; addresses of the
 *                    other family and, with IP encapsulation, the ports go out as they are.
 *
 * @retval 13        no session
 * @retval 4         config null; behind the check of lan_id: mode or encapsulation neither 1 nor 2
 * @retval 6         lan_id above 4094
 * @retval 5         tunnel_id or peer_tunnel_id 0
 * @retval 3         ip_family neither 4 nor 6
 * @retval 7         the family's local or peer address all zero
 * @retval 8         UDP with a port 0
 * @retval 10        mtu out of range
 * @retval 9         session_count not 1..8 or one of its sessions with an id 0
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_l2tp_set_v1(uint32_t lan_id, const zr_nexa_lan_l2tp_cfg_t* config);

/**
 * Deletes an L2TP tunnel of one LAN.
 *
 * @param[in] lan_id     0 the default LAN, else a VLAN id up to 4094.
 * @param[in] tunnel_id  the local tunnel id; any value is passed on.
 *
 * @retval 13        no session
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service refused with error e (26: there is no such tunnel)
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_l2tp_delete_v1(uint32_t lan_id, uint32_t tunnel_id);

ZR_NEXA_C_END

#endif
