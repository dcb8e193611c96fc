/**
 * @file
 * WAN connection: the state of a profile's IPv4 and IPv6 backhaul, connecting and disconnecting, the modes that do so
 * on their own, the addresses of a connection, and its traffic counts.
 *
 * Every function that takes a wwan_handle, zr_nexa_wan_info_get_v1 apart, makes that profile the session's current one
 * first, and it stays so. wwan_handle is non-zero; whether such a profile exists is the service's to say.
 */
#ifndef ZR_NEXA_WAN_CONNECTION_H
#define ZR_NEXA_WAN_CONNECTION_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** Result code of zr_nexa_wan_radvd_restart_v1: not available in this build. */
enum { ZR_NEXA_WAN_ERR_NOT_AVAILABLE = 3 };

/** States of a backhaul, as zr_nexa_wan_status_get_v1 gives them. */
enum {
    ZR_NEXA_WAN_V4_CONNECTING = 1,
    ZR_NEXA_WAN_V4_CONNECTED = 3,
    ZR_NEXA_WAN_V4_DISCONNECTING = 4,
    ZR_NEXA_WAN_V4_DISCONNECTED = 6,
    ZR_NEXA_WAN_V6_CONNECTING = 7,
    ZR_NEXA_WAN_V6_CONNECTED = 9,
    ZR_NEXA_WAN_V6_DISCONNECTING = 10,
    ZR_NEXA_WAN_V6_DISCONNECTED = 12
};

/** IP family of the statistics functions besides ZR_NEXA_IP_V4, _V6 and _V4V6. */
#define ZR_NEXA_WAN_IP_ANY 12u

#define ZR_NEXA_WAN_IFACE_NAME_SIZE 16 /**< bytes of an interface name */

/** Details of a connected profile. All addresses, the IPv4 ones too, are their bytes in network byte order. */
typedef struct zr_nexa_wan_info_t {
    uint8_t connected;                            /**< 1: the profile is connected; 0: the other fields are all zero */
    char iface_name[ZR_NEXA_WAN_IFACE_NAME_SIZE]; /**< network interface; zero-terminated when shorter */
    uint32_t v4_addr;                             /**< IPv4 address */
    uint32_t v4_gw_addr;                          /**< gateway */
    uint32_t v4_netmask;                          /**< netmask */
    uint32_t v4_pri_dns_addr;                     /**< primary DNS server */
    uint32_t v4_sec_dns_addr;                     /**< secondary DNS server */
    uint32_t v4_mtu;                              /**< IPv4 MTU, bytes */
    uint8_t v6_prefix;                            /**< prefix length of v6_addr, in bits */
    uint8_t v6_addr[16];                          /**< IPv6 address */
    uint8_t v6_gw_addr[16];                       /**< gateway */
    uint8_t v6_pri_dns_addr[16];                  /**< primary DNS server */
    uint8_t v6_sec_dns_addr[16];                  /**< secondary DNS server */
    uint32_t v6_mtu;                              /**< IPv6 MTU, bytes */
} zr_nexa_wan_info_t;

/*
 * The platform's own record, for programs without the platform's headers. Headers of a module that do not know this
 * guard are included first, and the guard is defined behind them; else the record is declared twice, which no compiler
 * accepts.
 */
#ifndef QCMAP_MSGR_WWAN_STATISTICS_TYPE_V01_DEFINED
/** The record is declared. */
#define QCMAP_MSGR_WWAN_STATISTICS_TYPE_V01_DEFINED
/** Traffic counts of a connection, the platform's own record. */
typedef struct qcmap_msgr_wwan_statistics_type_v01 {
    uint64_t bytes_rx;        /**< bytes received */
    uint64_t bytes_tx;        /**< bytes sent */
    uint32_t pkts_rx;         /**< packets received */
    uint32_t pkts_tx;         /**< packets sent */
    uint32_t pkts_dropped_rx; /**< received packets that were dropped */
    uint32_t pkts_dropped_tx; /**< packets to be sent that were dropped */
} qcmap_msgr_wwan_statistics_type_v01;
#endif

/**
 * Reads the states of a profile's backhauls.
 *
 * @param[in]  wwan_handle  the profile, non-zero.
 * @param[out] v4_status    receives ZR_NEXA_WAN_V4_...; stays as it was when the service reports another value (a
 *                          failed attempt, say), and on failure: preset it to a value that is no state. Not checked for
 *                          null.
 * @param[out] v6_status    the same with ZR_NEXA_WAN_V6_...; not checked for null.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_status_get_v1(uint32_t wwan_handle, uint32_t* v4_status, uint32_t* v6_status);

/**
 * Connects or disconnects a profile's IPv4 backhaul. The function returns when the service has taken the request; the
 * outcome is told by indications (zr_nexa/indications.h).
 *
 * @param[in] wwan_handle  the profile, non-zero.
 * @param[in] connect      1 connect, 0 disconnect.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or connect above 1
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  connecting refused with error e
 * @retval e|0x3000  disconnecting refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_connect_v4_set_v1(uint32_t wwan_handle, uint32_t connect);

/**
 * Connects or disconnects a profile's IPv6 backhaul.
 *
 * @copydetails zr_nexa_wan_connect_v4_set_v1
 */
ZR_NEXA_API uint32_t zr_nexa_wan_connect_v6_set_v1(uint32_t wwan_handle, uint32_t connect);

/**
 * Switches a profile's reconnect mode: a call that the network ends is made again.
 *
 * @param[in] wwan_handle  the profile, non-zero.
 * @param[in] enable       1 on, 0 off.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or enable above 1
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  switching on refused with error e
 * @retval e|0x3000  switching off refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_reconnect_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads a profile's reconnect mode.
 *
 * @param[in]  wwan_handle  the profile, non-zero.
 * @param[out] enable       receives the service's byte, 0 off, non-zero on; untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or enable null
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_reconnect_get_v1(uint32_t wwan_handle, uint8_t* enable);

/**
 * Switches a profile's autoconnect mode: it is connected whenever the mobile-AP service starts.
 *
 * @copydetails zr_nexa_wan_reconnect_set_v1
 */
ZR_NEXA_API uint32_t zr_nexa_wan_autoconnect_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads a profile's autoconnect mode.
 *
 * @copydetails zr_nexa_wan_reconnect_get_v1
 */
ZR_NEXA_API uint32_t zr_nexa_wan_autoconnect_get_v1(uint32_t wwan_handle, uint8_t* enable);

/**
 * Switches a profile's roaming mode: it may be connected while the module roams.
 *
 * @copydetails zr_nexa_wan_reconnect_set_v1
 */
ZR_NEXA_API uint32_t zr_nexa_wan_roaming_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads a profile's roaming mode.
 *
 * @copydetails zr_nexa_wan_reconnect_get_v1
 */
ZR_NEXA_API uint32_t zr_nexa_wan_roaming_get_v1(uint32_t wwan_handle, uint8_t* enable);

/**
 * Reads the connection details of a profile. Selects no profile.
 *
 * @param[in]  wwan_handle  the profile, non-zero.
 * @param[out] info         zeroed as soon as a session is found, before any other check, and so all zero on any failure
 *                          but 13; not checked for null. Receives the details when the profile is connected and stays
 *                          zero, with result 0, when not. When the service lists the profile more than once, the last
 *                          entry holds. The service's list is taken as 50 entries at most.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0
 * @retval e|0x1000  the service refused its list with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_info_get_v1(uint32_t wwan_handle, zr_nexa_wan_info_t* info);

/**
 * Reads the traffic counts of a profile.
 *
 * @param[in]  wwan_handle  the profile, non-zero.
 * @param[in]  ip_family    ZR_NEXA_IP_V4, _V6, _V4V6 or ZR_NEXA_WAN_IP_ANY. Any other value is logged as an error and
 *                          still passed on: the service decides.
 * @param[out] statistics   zeroed as soon as a session is found, before any other check, and so all zero on any failure
 *                          but 13; not checked for null.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_statistics_get_v1(uint32_t wwan_handle, uint32_t ip_family,
                                                   qcmap_msgr_wwan_statistics_type_v01* statistics);

/**
 * Sets the traffic counts of a profile back to zero.
 *
 * @param[in] wwan_handle  the profile, non-zero.
 * @param[in] ip_family    as for zr_nexa_wan_statistics_get_v1.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_statistics_reset_v1(uint32_t wwan_handle, uint32_t ip_family);

/**
 * Would restart the router-advertisement daemon, which this build does not have. Needs no session, logs nothing and
 * does nothing.
 *
 * @retval 3  always
 */
ZR_NEXA_API uint32_t zr_nexa_wan_radvd_restart_v1(void);

ZR_NEXA_C_END

#endif
