/**
 * @file
 * NAT of one WWAN profile: type, IPv4 DMZ host and IPv4 port mappings; and routing-behind, which holds for all.
 */
#ifndef ZR_NEXA_NAT_H
#define ZR_NEXA_NAT_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** Result codes of this area. */
enum {
    ZR_NEXA_NAT_ERR_DMZ_ADDRESS = 10,  /**< the DMZ is to be enabled for address 0 */
    ZR_NEXA_NAT_ERR_PROTOCOL = 12,     /**< protocol is none of ZR_NEXA_NAT_PROTO_... */
    ZR_NEXA_NAT_ERR_ROUTINGBH = 0x2000 /**< the service reports a routing-behind switch above 1 */
};

/** @name NAT types
 * @{ */
#define ZR_NEXA_NAT_TYPE_SYMMETRIC 0            /**< symmetric */
#define ZR_NEXA_NAT_TYPE_PORT_RESTRICTED_CONE 1 /**< port-restricted cone */
#define ZR_NEXA_NAT_TYPE_FULL_CONE 2            /**< full cone */
#define ZR_NEXA_NAT_TYPE_ADDRESS_RESTRICTED 3   /**< address-restricted */
/** @} */

/** @name Protocols of a port mapping: codes of this interface, not IP protocol numbers
 * @{ */
#define ZR_NEXA_NAT_PROTO_TCP 2     /**< TCP */
#define ZR_NEXA_NAT_PROTO_UDP 3     /**< UDP */
#define ZR_NEXA_NAT_PROTO_ICMP 4    /**< ICMP, without ports */
#define ZR_NEXA_NAT_PROTO_TCP_UDP 6 /**< TCP and UDP */
#define ZR_NEXA_NAT_PROTO_ESP 7     /**< ESP, without ports */
/** @} */

#define ZR_NEXA_NAT_IPV4PORTMAPPINGS_MAX 50 /**< port mappings of a profile */

/** Port mappings of one profile; entry i of the arrays is rule i. */
typedef struct zr_nexa_nat_ipv4portmapping_list_t {
    uint32_t count;                                          /**< rules, 0..50 */
    uint32_t private_ip[ZR_NEXA_NAT_IPV4PORTMAPPINGS_MAX];   /**< the LAN device; host byte order */
    uint16_t private_port[ZR_NEXA_NAT_IPV4PORTMAPPINGS_MAX]; /**< the device's port, host byte order */
    uint16_t global_port[ZR_NEXA_NAT_IPV4PORTMAPPINGS_MAX];  /**< the port on the WWAN side, host byte order */
    uint8_t protocol[ZR_NEXA_NAT_IPV4PORTMAPPINGS_MAX];      /**< ZR_NEXA_NAT_PROTO_... */
} zr_nexa_nat_ipv4portmapping_list_t;

/**
 * Sets the NAT type of a profile.
 *
 * @param[in] wwan_handle  the profile, non-zero.
 * @param[in] nat_type     ZR_NEXA_NAT_TYPE_..., 0..3.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0; nat_type above 3, which is logged
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused the type with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_type_set_v1(uint32_t wwan_handle, uint32_t nat_type);

/**
 * Reads the NAT type of a profile.
 *
 * @param[in]  wwan_handle  the profile, non-zero.
 * @param[out] nat_type     receives ZR_NEXA_NAT_TYPE_..., 0..3; stays as it was when the service reports any other
 *                          type, which is a success all the same, and on failure: preset it.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or nat_type null
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_type_get_v1(uint32_t wwan_handle, uint8_t* nat_type);

/**
 * Makes a LAN device a profile's IPv4 DMZ host, or ends the DMZ.
 *
 * @param[in] wwan_handle  the profile, non-zero.
 * @param[in] enable       0 ends the DMZ, 1 sets its host.
 * @param[in] dmz_ip       the host, host byte order, non-zero. With enable 0 only logged.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or enable above 1
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval 10        enable 1 with dmz_ip 0; the profile is selected by then
 * @retval e|0x2000  the service refused the host with error e
 * @retval e|0x3000  the service refused to end the DMZ with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4dmz_set_v1(uint32_t wwan_handle, uint32_t enable, uint32_t dmz_ip);

/**
 * Reads a profile's IPv4 DMZ host.
 *
 * @param[in]  wwan_handle  the profile, non-zero.
 * @param[out] enable       receives 1 there is a DMZ host, 0 there is none; untouched on failure.
 * @param[out] dmz_ip       receives the host, host byte order; 0 when there is none. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or enable or dmz_ip null
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4dmz_get_v1(uint32_t wwan_handle, uint8_t* enable, uint32_t* dmz_ip);

/**
 * Adds an IPv4 port mapping to a profile.
 *
 * @param[in] wwan_handle   the profile, non-zero.
 * @param[in] private_ip    the LAN device that gets the traffic, host byte order; neither 0 nor 255.255.255.255.
 * @param[in] private_port  the device's port, 1..65535, host byte order.
 * @param[in] global_port   the port on the WWAN side, 1..65535, host byte order.
 * @param[in] protocol      ZR_NEXA_NAT_PROTO_...; with ICMP and ESP the ports are ignored and stored as 0.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, private_ip out of range, or a port 0 that is needed, whatever the protocol
 * @retval 12        no such protocol
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused the rule with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4portmapping_add_v1(uint32_t wwan_handle, uint32_t private_ip,
                                                        uint16_t private_port, uint16_t global_port, uint8_t protocol);

/**
 * Deletes an IPv4 port mapping of a profile. A rule is named by the values it was added with.
 *
 * @copydetails zr_nexa_nat_ipv4portmapping_add_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4portmapping_del_v1(uint32_t wwan_handle, uint32_t private_ip,
                                                        uint16_t private_port, uint16_t global_port, uint8_t protocol);

/**
 * Lists the IPv4 port mappings of a profile.
 *
 * @param[in]  wwan_handle  the profile, non-zero.
 * @param[out] list         receives count and as many rules in the service's order; entries beyond them stay as they
 *                          were. A rule whose protocol has no code here leaves its protocol entry as it was: clear the
 *                          record before the call. Untouched on failure. A count that the service reports outside
 *                          0..50 is taken as 0 or 50.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or list null
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4portmapping_get_v1(uint32_t wwan_handle, zr_nexa_nat_ipv4portmapping_list_t* list);

/**
 * Switches routing behind the module, for all profiles. It takes effect with the next start of the module.
 *
 * @param[in] routingbh  0 off, 1 on.
 *
 * @retval 13        no session
 * @retval 4         routingbh above 1
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_routingbh_set_v1(uint32_t routingbh);

/**
 * Reads the routing-behind switch.
 *
 * @param[out] routingbh  receives 0 off, 1 on. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         routingbh null
 * @retval e|0x1000  the service refused with error e
 * @retval 0x2000    the service reports a value above 1
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_routingbh_get_v1(uint32_t* routingbh);

ZR_NEXA_C_END

#endif
