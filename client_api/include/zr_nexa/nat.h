/* NAT of one WWAN profile: type, IPv4 DMZ host and IPv4 port mappings; and routing-behind, which holds for all. */
#ifndef ZR_NEXA_NAT_H
#define ZR_NEXA_NAT_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

enum {
    ZR_NEXA_NAT_ERR_DMZ_ADDRESS = 10,  /* the DMZ is to be enabled for address 0 */
    ZR_NEXA_NAT_ERR_PROTOCOL = 12,     /* protocol is none of ZR_NEXA_NAT_PROTO_... */
    ZR_NEXA_NAT_ERR_ROUTINGBH = 0x2000 /* the service reports a routing-behind switch above 1 */
};

/* NAT types */
#define ZR_NEXA_NAT_TYPE_SYMMETRIC 0
#define ZR_NEXA_NAT_TYPE_PORT_RESTRICTED_CONE 1
#define ZR_NEXA_NAT_TYPE_FULL_CONE 2
#define ZR_NEXA_NAT_TYPE_ADDRESS_RESTRICTED 3

/* Protocols of a port mapping: codes of this interface, not IP protocol numbers. */
#define ZR_NEXA_NAT_PROTO_TCP 2
#define ZR_NEXA_NAT_PROTO_UDP 3
#define ZR_NEXA_NAT_PROTO_ICMP 4 /* without ports */
#define ZR_NEXA_NAT_PROTO_TCP_UDP 6
#define ZR_NEXA_NAT_PROTO_ESP 7 /* without ports */

#define ZR_NEXA_NAT_IPV4PORTMAPPING_MAX 50

/* Port mappings of one profile; entry i of the arrays is rule i. */
typedef struct {
    uint32_t count;                                       /* rules, 0..50 */
    uint32_t private_ip[ZR_NEXA_NAT_IPV4PORTMAPPING_MAX]; /* the LAN device; host byte order */
    uint16_t private_port[ZR_NEXA_NAT_IPV4PORTMAPPING_MAX];
    uint16_t global_port[ZR_NEXA_NAT_IPV4PORTMAPPING_MAX];
    uint8_t protocol[ZR_NEXA_NAT_IPV4PORTMAPPING_MAX]; /* ZR_NEXA_NAT_PROTO_... */
} zr_nexa_nat_ipv4portmapping_list_t;

/*
 * Sets the NAT type of a profile.
 *
 * wwan_handle: the profile, non-zero.
 * nat_type:    ZR_NEXA_NAT_TYPE_..., 0..3.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           wwan_handle 0
 *   4           nat_type above 3; this one is logged
 *   e | 0x1000  there is no such profile, error e
 *   e | 0x2000  the service refused the type with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_nat_type_set_v1(uint32_t wwan_handle, uint32_t nat_type);

/*
 * Reads the NAT type of a profile.
 *
 * wwan_handle: the profile, non-zero.
 * nat_type:    receives ZR_NEXA_NAT_TYPE_..., 0..3; stays as it was when the service reports any other type, which is a
 *              success all the same, and on a failure: preset it.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           wwan_handle 0, or nat_type null
 *   e | 0x1000  there is no such profile, error e
 *   e | 0x2000  the service refused with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_nat_type_get_v1(uint32_t wwan_handle, uint8_t* nat_type);

/*
 * Makes a LAN device a profile's IPv4 DMZ host, or ends the DMZ.
 *
 * wwan_handle: the profile, non-zero.
 * enable:      0 ends the DMZ, 1 sets its host.
 * dmz_ip:      the host, host byte order, non-zero. With enable 0 only logged.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           wwan_handle 0, or enable above 1
 *   e | 0x1000  there is no such profile, error e
 *   10          enable 1 with dmz_ip 0; the profile is selected by then
 *   e | 0x2000  the service refused the host with error e
 *   e | 0x3000  the service refused to end the DMZ with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4dmz_set_v1(uint32_t wwan_handle, uint32_t enable, uint32_t dmz_ip);

/*
 * Reads a profile's IPv4 DMZ host.
 *
 * wwan_handle: the profile, non-zero.
 * enable:      receives 1 there is a DMZ host, 0 there is none.
 * dmz_ip:      receives the host, host byte order; 0 when there is none.
 *
 * Both stay as they were on a failure.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           wwan_handle 0, or enable or dmz_ip null
 *   e | 0x1000  there is no such profile, error e
 *   e | 0x2000  the service refused with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4dmz_get_v1(uint32_t wwan_handle, uint8_t* enable, uint32_t* dmz_ip);

/*
 * Adds an IPv4 port mapping to a profile.
 *
 * wwan_handle:  the profile, non-zero.
 * private_ip:   the LAN device that gets the traffic, host byte order; neither 0 nor 255.255.255.255.
 * private_port: the device's port, 1..65535, host byte order.
 * global_port:  the port on the WWAN side, 1..65535, host byte order.
 * protocol:     ZR_NEXA_NAT_PROTO_...; with ICMP and ESP the ports are ignored and stored as 0.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           wwan_handle 0, private_ip out of range, or a port 0 that is needed, whatever the protocol
 *   12          no such protocol
 *   e | 0x1000  there is no such profile, error e
 *   e | 0x2000  the service refused the rule with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4portmapping_add_v1(uint32_t wwan_handle, uint32_t private_ip,
                                                        uint16_t private_port, uint16_t global_port, uint8_t protocol);

/*
 * Deletes an IPv4 port mapping of a profile. A rule is named by the values it was added with. Arguments, steps and
 * results are those of zr_nexa_nat_ipv4portmapping_add_v1.
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4portmapping_del_v1(uint32_t wwan_handle, uint32_t private_ip,
                                                        uint16_t private_port, uint16_t global_port, uint8_t protocol);

/*
 * Lists the IPv4 port mappings of a profile.
 *
 * wwan_handle: the profile, non-zero.
 * list:        receives count and as many rules in the service's order; entries beyond them stay as they were. A rule
 *              whose protocol has no code here leaves its protocol entry as it was: clear the record before the call.
 *              Untouched on a failure. A count that the service reports outside 0..50 is taken as 0 or 50.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           wwan_handle 0, or list null
 *   e | 0x1000  there is no such profile, error e
 *   e | 0x2000  the service refused with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipv4portmapping_get_v1(uint32_t wwan_handle, zr_nexa_nat_ipv4portmapping_list_t* list);

/*
 * Switches routing behind the module, for all profiles. It takes effect with the next start of the module.
 *
 * routingbh: 0 off, 1 on.
 *
 * Returns 13 no session; 4 routingbh above 1; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_nat_routingbh_set_v1(uint32_t routingbh);

/*
 * Reads the routing-behind switch.
 *
 * routingbh: receives 0 off, 1 on. Not written on a failure.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           routingbh null
 *   e | 0x1000  the service refused with error e
 *   0x2000      the service reports a value above 1
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_nat_routingbh_get_v1(uint32_t* routingbh);

ZR_NEXA_C_END

#endif
