/* The firewall of a WWAN profile, and hardware MAC filtering. */
#ifndef ZR_NEXA_FIREWALL_H
#define ZR_NEXA_FIREWALL_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/*
 * Protocol codes of an entry, and the transport fields that belong to each. In an entry of the other IP family ICMP and
 * ICMPv6 cannot be expressed: the entry is added with a protocol of 0, and reads back as ZR_NEXA_FIREWALL_PROTO_OTHER.
 * So does every code outside 2..7.
 */
#define ZR_NEXA_FIREWALL_PROTO_OTHER 1u   /* read only: a protocol that has no code; no transport fields */
#define ZR_NEXA_FIREWALL_PROTO_TCP 2u     /* ports */
#define ZR_NEXA_FIREWALL_PROTO_UDP 3u     /* ports */
#define ZR_NEXA_FIREWALL_PROTO_ICMP 4u    /* ICMP type and code; IPv4 */
#define ZR_NEXA_FIREWALL_PROTO_ICMPV6 5u  /* ICMP type and code; IPv6 */
#define ZR_NEXA_FIREWALL_PROTO_TCP_UDP 6u /* ports */
#define ZR_NEXA_FIREWALL_PROTO_ESP 7u     /* SPI */

/* Entries that a list holds. */
#define ZR_NEXA_FIREWALL_MAX_ENTRIES 50

/*
 * One filter entry. A value counts only when its flag is set: to set a flag any non-zero byte will do, read back it is
 * 1 or 0. Fields of the family that ip_version does not name, and transport fields that the protocol does not use, are
 * ignored.
 */
typedef struct zr_nexa_firewall_entry_t {
    uint32_t direction;  /* 1 or 2; any other value: not said */
    uint32_t ip_version; /* ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6 */

    uint8_t ipv4_src_valid;
    uint32_t ipv4_src_addr; /* host byte order, like all IPv4 addresses and masks here */
    uint32_t ipv4_src_mask;
    uint8_t ipv4_dst_valid;
    uint32_t ipv4_dst_addr;
    uint32_t ipv4_dst_mask;
    uint8_t ipv4_tos_valid;
    uint8_t ipv4_tos;
    uint8_t ipv4_tos_mask;

    uint8_t ipv6_src_valid;
    uint8_t ipv6_src_addr[16]; /* network byte order */
    uint8_t ipv6_src_prefix_len;
    uint8_t ipv6_dst_valid;
    uint8_t ipv6_dst_addr[16];
    uint8_t ipv6_dst_prefix_len;
    uint8_t ipv6_nat_flag; /* handed to the service and back unchanged; has no flag of its own */
    uint8_t ipv6_tc_valid; /* traffic class */
    uint8_t ipv6_tc;
    uint8_t ipv6_tc_mask;

    uint8_t proto_valid; /* not set: the protocol and all that follows is ignored */
    uint32_t protocol;   /* ZR_NEXA_FIREWALL_PROTO_... */

    uint8_t src_port_valid;
    uint16_t src_port;       /* first port, host byte order */
    uint16_t src_port_range; /* how many ports follow the first; the last must be below 65536 */
    uint8_t dst_port_valid;
    uint16_t dst_port;
    uint16_t dst_port_range;

    uint8_t icmp_type_valid;
    uint8_t icmp_type;
    uint8_t icmp_code_valid;
    uint8_t icmp_code;

    uint8_t esp_spi_valid;
    uint32_t esp_spi; /* security parameter index, host byte order */
} zr_nexa_firewall_entry_t;

/* The entries of one profile, in the service's order; entry[i] belongs to handle[i]. */
typedef struct zr_nexa_firewall_entry_list_t {
    uint32_t count;
    uint32_t handle[ZR_NEXA_FIREWALL_MAX_ENTRIES];
    zr_nexa_firewall_entry_t entry[ZR_NEXA_FIREWALL_MAX_ENTRIES];
} zr_nexa_firewall_entry_list_t;

/* Hardware MAC filtering: which stations, on which interfaces. */
#define ZR_NEXA_FIREWALL_HWFILTER_STATE_MAX 2u /* 0 off, 1 on, 2 as listed */
#define ZR_NEXA_FIREWALL_HWFILTER_MAX_MACS 16
#define ZR_NEXA_FIREWALL_HWFILTER_MAX_IFACES 8
#define ZR_NEXA_FIREWALL_HWFILTER_IFACE_WORDS 5

typedef struct zr_nexa_firewall_hwfilter_cfg_t {
    uint32_t num_of_macs;                                    /* 1..16 */
    uint8_t mac_addr[ZR_NEXA_FIREWALL_HWFILTER_MAX_MACS][6]; /* as they are spoken: first byte first */
    uint32_t num_of_ifaces;                                  /* 1..8 */
    /* An interface is described by five words, which are handed to the service and back unchanged. */
    uint32_t iface[ZR_NEXA_FIREWALL_HWFILTER_MAX_IFACES][ZR_NEXA_FIREWALL_HWFILTER_IFACE_WORDS];
} zr_nexa_firewall_hwfilter_cfg_t;

/*
 * Adds a filter entry to a profile. The entry's handle is not given back: zr_nexa_firewall_entry_get_v1 tells it.
 *
 * wwan_handle: the profile; not checked for 0.
 * entry:       the entry. Both port ranges are checked whenever their flag is set, whatever the protocol.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           entry null; ip_version neither 4 nor 6; src_port + src_port_range above 65535; the same for dst
 *   e | 0x1000  the profile could not be selected
 *   e | 0x2000  the service refused the entry with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_entry_add_v1(uint32_t wwan_handle, const zr_nexa_firewall_entry_t* entry);

/*
 * Reads the entries of a profile.
 *
 * wwan_handle: the profile; not checked for 0.
 * ip_family:   ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6; any other value asks the service without naming a family.
 * list:        receives count, clamped to 0..50, then each handle with its entry. In an entry every flag is written;
 *              values without their flag stay as they were, so do direction when the service gives neither 1 nor 2,
 *              ip_version when it gives neither 4 nor 6, protocol without proto_valid, and ipv6_nat_flag of an entry
 *              that is not IPv6. Elements behind the count stay as they were.
 *
 * Returns, in order of the steps:
 *   13          no session
 *   4           list null
 *   e | 0x1000  the profile could not be selected; list is untouched
 *   e | 0x2000  the handles could not be read; list is untouched
 *   e | 0x3000  an entry could not be read; count tells all entries, the ones before it are filled
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_entry_get_v1(uint32_t wwan_handle, uint32_t ip_family,
                                                   zr_nexa_firewall_entry_list_t* list);

/*
 * Deletes a filter entry of a profile.
 *
 * wwan_handle:           the profile; not checked for 0.
 * firewall_entry_handle: as zr_nexa_firewall_entry_get_v1 tells it; 0 is a handle like any other.
 *
 * Returns 13 no session; 4 firewall_entry_handle negative; e | 0x1000 the profile could not be selected; e | 0x2000
 * the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_entry_del_v1(uint32_t wwan_handle, int32_t firewall_entry_handle);

/*
 * Switches the firewall of a profile and sets its default packet policy.
 *
 * wwan_handle:     the profile; not checked for 0.
 * enable_firewall: 0 off, 1 on.
 * pkts_allowed:    packets that no entry matches: 0 dropped, 1 let through. With the firewall off any value is taken
 *                  and handed on whole.
 *
 * Returns 13 no session; 4 enable_firewall above 1, or it is 1 and pkts_allowed above 1; e | 0x1000 the profile could
 * not be selected; e | 0x2000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_config_set_v1(uint32_t wwan_handle, uint32_t enable_firewall,
                                                    uint32_t pkts_allowed);

/*
 * Reads the firewall switch of a profile and its policy.
 *
 * wwan_handle:     the profile; not checked for 0.
 * enable_firewall: receives the switch, as the service gives it.
 * pkts_allowed:    receives the policy, as the service gives it.
 *
 * Returns 13 no session; 4 a pointer null; e | 0x1000 the profile could not be selected; e | 0x2000 the service refused
 * with error e; 0. Both outputs are untouched on failure.
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_config_get_v1(uint32_t wwan_handle, uint8_t* enable_firewall,
                                                    uint8_t* pkts_allowed);

/*
 * Sets hardware MAC filtering, which belongs to no profile. Both lists must have an entry, whatever the state; entries
 * behind a count are not handed on.
 *
 * state:  0 off, 1 on, 2 as listed.
 * config: the stations and interfaces.
 *
 * Returns, in order of the checks: 13 no session; 4 config null, state above 2, num_of_macs outside 1..16,
 * num_of_ifaces outside 1..8; e | 0x2000 the service refused with error e (there is no first step here); 0.
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_hwfiltering_state_set_v1(uint32_t state,
                                                               const zr_nexa_firewall_hwfilter_cfg_t* config);

/*
 * Reads hardware MAC filtering.
 *
 * state:  receives the state, as the service gives it.
 * config: receives the stations and interfaces. Counts are clamped to 0..16 and 0..8; elements behind a count stay as
 *         they were.
 *
 * Returns 13 no session; 4 a pointer null; e | 0x2000 the service refused with error e (there is no first step here);
 * 0. Both outputs are untouched on failure.
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_hwfiltering_state_get_v1(uint32_t* state,
                                                               zr_nexa_firewall_hwfilter_cfg_t* config);

ZR_NEXA_C_END

#endif
