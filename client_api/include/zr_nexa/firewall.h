/**
 * @file
 * The firewall of a WWAN profile, and hardware MAC filtering.
 */
#ifndef ZR_NEXA_FIREWALL_H
#define ZR_NEXA_FIREWALL_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/**
 * @name Protocol codes of an entry, and the transport fields that belong to each
 *
 * In an entry of the other IP family ICMP and ICMPv6 cannot be expressed: the entry is added with a protocol of 0, and
 * reads back as ZR_NEXA_FIREWALL_PROTO_OTHER. So does every code outside 2..7.
 * @{
 */
#define ZR_NEXA_FIREWALL_PROTO_OTHER 1u   /**< read only: a protocol that has no code; no transport fields */
#define ZR_NEXA_FIREWALL_PROTO_TCP 2u     /**< ports */
#define ZR_NEXA_FIREWALL_PROTO_UDP 3u     /**< ports */
#define ZR_NEXA_FIREWALL_PROTO_ICMP 4u    /**< ICMP type and code; IPv4 */
#define ZR_NEXA_FIREWALL_PROTO_ICMPV6 5u  /**< ICMP type and code; IPv6 */
#define ZR_NEXA_FIREWALL_PROTO_TCP_UDP 6u /**< ports */
#define ZR_NEXA_FIREWALL_PROTO_ESP 7u     /**< SPI */
/** @} */

#define ZR_NEXA_FIREWALL_ENTRIES_MAX 50 /**< entries that a list holds */

/**
 * One filter entry. A value counts only when its flag is set: to set a flag any non-zero byte will do, read back it is
 * 1 or 0. Fields of the family that ip_version does not name, and transport fields that the protocol does not use, are
 * ignored.
 */
typedef struct zr_nexa_firewall_entry_t {
    uint32_t direction;  /**< 1 or 2; any other value: not said */
    uint32_t ip_version; /**< ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6 */

    uint8_t ipv4_src_valid; /**< flag of the source address */
    uint32_t ipv4_src_addr; /**< source address, host byte order, like all IPv4 addresses and masks here */
    uint32_t ipv4_src_mask; /**< its mask */
    uint8_t ipv4_dst_valid; /**< flag of the destination address */
    uint32_t ipv4_dst_addr; /**< destination address */
    uint32_t ipv4_dst_mask; /**< its mask */
    uint8_t ipv4_tos_valid; /**< flag of the type of service */
    uint8_t ipv4_tos;       /**< type of service */
    uint8_t ipv4_tos_mask;  /**< its mask */

    uint8_t ipv6_src_valid;      /**< flag of the source address */
    uint8_t ipv6_src_addr[16];   /**< source address, network byte order */
    uint8_t ipv6_src_prefix_len; /**< its prefix length, bits */
    uint8_t ipv6_dst_valid;      /**< flag of the destination address */
    uint8_t ipv6_dst_addr[16];   /**< destination address, network byte order */
    uint8_t ipv6_dst_prefix_len; /**< its prefix length, bits */
    uint8_t ipv6_nat_flag;       /**< handed to the service and back unchanged; has no flag of its own */
    uint8_t ipv6_tc_valid;       /**< flag of the traffic class */
    uint8_t ipv6_tc;             /**< traffic class */
    uint8_t ipv6_tc_mask;        /**< its mask */

    uint8_t proto_valid; /**< flag of the protocol; not set: the protocol and all that follows is ignored */
    uint32_t protocol;   /**< ZR_NEXA_FIREWALL_PROTO_... */

    uint8_t src_port_valid;  /**< flag of the source ports */
    uint16_t src_port;       /**< first port, host byte order */
    uint16_t src_port_range; /**< how many ports follow the first; the last must be below 65536 */
    uint8_t dst_port_valid;  /**< flag of the destination ports */
    uint16_t dst_port;       /**< as src_port */
    uint16_t dst_port_range; /**< as src_port_range */

    uint8_t icmp_type_valid; /**< flag of the ICMP type */
    uint8_t icmp_type;       /**< ICMP type */
    uint8_t icmp_code_valid; /**< flag of the ICMP code */
    uint8_t icmp_code;       /**< ICMP code */

    uint8_t esp_spi_valid; /**< flag of the SPI */
    uint32_t esp_spi;      /**< security parameter index, host byte order */
} zr_nexa_firewall_entry_t;

/** The entries of one profile, in the service's order; entry[i] belongs to handle[i]. */
typedef struct zr_nexa_firewall_entry_list_t {
    uint32_t count;                                               /**< entries, 0..50 */
    uint32_t handle[ZR_NEXA_FIREWALL_ENTRIES_MAX];                /**< by which an entry is deleted */
    zr_nexa_firewall_entry_t entry[ZR_NEXA_FIREWALL_ENTRIES_MAX]; /**< the entries */
} zr_nexa_firewall_entry_list_t;

/** @name Hardware MAC filtering
 * @{ */
#define ZR_NEXA_FIREWALL_HWFILTER_STATE_MAX 2u  /**< largest state: 0 off, 1 on, 2 as listed */
#define ZR_NEXA_FIREWALL_HWFILTER_MACS_MAX 16   /**< stations of a configuration */
#define ZR_NEXA_FIREWALL_HWFILTER_IFACES_MAX 8  /**< interfaces of a configuration */
#define ZR_NEXA_FIREWALL_HWFILTER_IFACE_WORDS 5 /**< words that describe an interface */
/** @} */

/** Hardware MAC filtering: which stations, on which interfaces. */
typedef struct zr_nexa_firewall_hwfilter_cfg_t {
    uint32_t num_of_macs;                                    /**< 1..16 */
    uint8_t mac_addr[ZR_NEXA_FIREWALL_HWFILTER_MACS_MAX][6]; /**< as they are spoken: first byte first */
    uint32_t num_of_ifaces;                                  /**< 1..8 */
    /** An interface is described by five words, which are handed to the service and back unchanged. */
    uint32_t iface[ZR_NEXA_FIREWALL_HWFILTER_IFACES_MAX][ZR_NEXA_FIREWALL_HWFILTER_IFACE_WORDS];
} zr_nexa_firewall_hwfilter_cfg_t;

/**
 * Adds a filter entry to a profile. The entry's handle is not given back: zr_nexa_firewall_entry_get_v1 tells it.
 *
 * @param[in] wwan_handle  the profile; not checked for 0.
 * @param[in] entry        the entry. Both port ranges are checked whenever their flag is set, whatever the protocol.
 *
 * @retval 13        no session
 * @retval 4         entry null; ip_version neither 4 nor 6; src_port + src_port_range above 65535; the same for dst
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused the entry with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_entry_add_v1(uint32_t wwan_handle, const zr_nexa_firewall_entry_t* entry);

/**
 * Reads the entries of a profile.
 *
 * @param[in]  wwan_handle  the profile; not checked for 0.
 * @param[in]  ip_family    ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6; any other value asks the service without naming a family.
 * @param[out] list         receives count, clamped to 0..50, then each handle with its entry. In an entry every flag is
 *                          written; values without their flag stay as they were, so do direction when the service gives
 *                          neither 1 nor 2, ip_version when it gives neither 4 nor 6, protocol without proto_valid, and
 *                          ipv6_nat_flag of an entry that is not IPv6. Elements behind the count stay as they were.
 *
 * @retval 13        no session
 * @retval 4         list null
 * @retval e|0x1000  the profile could not be selected, error e; list is untouched
 * @retval e|0x2000  the handles could not be read, error e; list is untouched
 * @retval e|0x3000  an entry could not be read, error e; count tells all entries, the ones before it are filled
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_entry_get_v1(uint32_t wwan_handle, uint32_t ip_family,
                                                   zr_nexa_firewall_entry_list_t* list);

/**
 * Deletes a filter entry of a profile.
 *
 * @param[in] wwan_handle            the profile; not checked for 0.
 * @param[in] firewall_entry_handle  as zr_nexa_firewall_entry_get_v1 tells it; 0 is a handle like any other.
 *
 * @retval 13        no session
 * @retval 4         firewall_entry_handle negative
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_entry_del_v1(uint32_t wwan_handle, int32_t firewall_entry_handle);

/**
 * Switches the firewall of a profile and sets its default packet policy.
 *
 * @param[in] wwan_handle      the profile; not checked for 0.
 * @param[in] enable_firewall  0 off, 1 on.
 * @param[in] pkts_allowed     packets that no entry matches: 0 dropped, 1 let through. With the firewall off any value
 *                             is taken and handed on whole.
 *
 * @retval 13        no session
 * @retval 4         enable_firewall above 1, or it is 1 and pkts_allowed above 1
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_config_set_v1(uint32_t wwan_handle, uint32_t enable_firewall,
                                                    uint32_t pkts_allowed);

/**
 * Reads the firewall switch of a profile and its policy.
 *
 * @param[in]  wwan_handle      the profile; not checked for 0.
 * @param[out] enable_firewall  receives the switch, as the service gives it; untouched on failure.
 * @param[out] pkts_allowed     receives the policy, as the service gives it; untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         a pointer null
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_config_get_v1(uint32_t wwan_handle, uint8_t* enable_firewall,
                                                    uint8_t* pkts_allowed);

/**
 * Sets hardware MAC filtering, which belongs to no profile. Both lists must have an entry, whatever the state; entries
 * behind a count are not handed on.
 *
 * @param[in] state   0 off, 1 on, 2 as listed.
 * @param[in] config  the stations and interfaces.
 *
 * @retval 13        no session
 * @retval 4         config null, state above 2, num_of_macs outside 1..16, or num_of_ifaces outside 1..8
 * @retval e|0x2000  the service refused with error e (there is no first step here)
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_hwfiltering_state_set_v1(uint32_t state,
                                                               const zr_nexa_firewall_hwfilter_cfg_t* config);

/**
 * Reads hardware MAC filtering.
 *
 * @param[out] state   receives the state, as the service gives it; untouched on failure.
 * @param[out] config  receives the stations and interfaces. Counts are clamped to 0..16 and 0..8; elements behind a
 *                     count stay as they were. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         a pointer null
 * @retval e|0x2000  the service refused with error e (there is no first step here)
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_firewall_hwfiltering_state_get_v1(uint32_t* state,
                                                               zr_nexa_firewall_hwfilter_cfg_t* config);

ZR_NEXA_C_END

#endif
