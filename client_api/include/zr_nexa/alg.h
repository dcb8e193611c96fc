/**
 * @file
 * Application-level gateways (ALG) of the NAT, and the SIP servers (P-CSCF) that LAN clients are told of.
 */
#ifndef ZR_NEXA_ALG_H
#define ZR_NEXA_ALG_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** Result codes of this area. */
enum {
    ZR_NEXA_ALG_ERR_VALUE = 3,  /**< ALG type, pcscf_info_type or IP family not among those served */
    ZR_NEXA_ALG_ERR_ENABLE = 48 /**< ALG switch above 1 */
};

/** @name How a SIP server is named
 * @{ */
#define ZR_NEXA_ALG_SIP_INFO_IP 1u   /**< by its address */
#define ZR_NEXA_ALG_SIP_INFO_FQDN 2u /**< by its domain name */
/** @} */

#define ZR_NEXA_ALG_SIP_FQDN_SIZE 100 /**< bytes of a domain name */

/** A SIP server on the IPv4 side. */
typedef struct zr_nexa_sip_server_info_t {
    uint32_t pcscf_info_type;             /**< ZR_NEXA_ALG_SIP_INFO_... */
    uint32_t ipv4_addr;                   /**< of ZR_NEXA_ALG_SIP_INFO_IP; host byte order */
    char fqdn[ZR_NEXA_ALG_SIP_FQDN_SIZE]; /**< of ZR_NEXA_ALG_SIP_INFO_FQDN; not terminated when it fills the field */
} zr_nexa_sip_server_info_t;

/** A SIP server on the IPv6 side. */
typedef struct zr_nexa_ipv6_sip_server_info_t {
    uint32_t pcscf_info_type;             /**< ZR_NEXA_ALG_SIP_INFO_... */
    uint8_t ipv6_addr[16];                /**< of ZR_NEXA_ALG_SIP_INFO_IP; network byte order */
    char fqdn[ZR_NEXA_ALG_SIP_FQDN_SIZE]; /**< of ZR_NEXA_ALG_SIP_INFO_FQDN; not terminated when it fills the field */
} zr_nexa_ipv6_sip_server_info_t;

#define ZR_NEXA_ALG_SIP_SERVERS_MAX 25 /**< network-assigned SIP servers of one family */

/** @name The buffer of zr_nexa_alg_sip_server_info_get_v1
 * @{ */
#define ZR_NEXA_ALG_SIP_NETWORK_OFFSET 108u /**< of the network-assigned servers, behind the configured one */
#define ZR_NEXA_ALG_SIP_BUFFER_SIZE 3108u   /**< one IPv4 record and 25 IPv6 records */
/** @} */

/**
 * Switches one ALG for all profiles and bridges.
 *
 * @param[in] enable     0 off, 1 on.
 * @param[in] alg_types  the ALG in the service's numbering: 1 or 2, one at a time. All 64 bits are checked.
 *
 * @retval 13        no session
 * @retval 48        enable above 1
 * @retval 3         alg_types neither 1 nor 2
 * @retval e|0x1000  switching it on failed with error e
 * @retval e|0x2000  switching it off failed with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_alg_enable_type_set_v1(uint32_t enable, uint64_t alg_types);

/**
 * Sets the configured SIP server of one LAN bridge.
 *
 * @param[in] lan_id  0 the default LAN, else a VLAN id up to 4094. The bridge stays the session's current one.
 * @param[in] info    the server; only the field that pcscf_info_type names counts. The FQDN is taken as a block of 100
 *                    bytes.
 *
 * @retval 13        no session
 * @retval 4         info null
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval 3         pcscf_info_type neither 1 nor 2; the bridge is selected already
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_alg_sip_server_info_set_v1(uint32_t lan_id, const zr_nexa_sip_server_info_t* info);

/**
 * Reads the SIP servers of one LAN bridge.
 *
 * - ZR_NEXA_IP_V4: out is an array of zr_nexa_sip_server_info_t. Element 0 receives the configured server, also when
 *   count is 0 (all 0: none is configured), elements 1..count the network-assigned ones.
 * - ZR_NEXA_IP_V6: out receives count entries of zr_nexa_ipv6_sip_server_info_t, 120 bytes each, from byte
 *   ZR_NEXA_ALG_SIP_NETWORK_OFFSET on; the bytes before are untouched.
 *
 * What stands behind the last entry is untouched; on failure count and all of out are.
 *
 * @param[in]  lan_id     0 the default LAN, else a VLAN id up to 4094. The bridge stays the session's current one.
 * @param[in]  ip_family  ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6.
 * @param[out] count      receives the number of network-assigned servers, 0..ZR_NEXA_ALG_SIP_SERVERS_MAX; what the
 *                        service reports beyond is cut off.
 * @param[out] out        a buffer of ZR_NEXA_ALG_SIP_BUFFER_SIZE bytes, of any alignment; its size is not checked.
 *
 * @retval 13        no session
 * @retval 4         count or out null
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval 3         ip_family is another one; the bridge is selected already
 * @retval e|0x2000  the service did not give the IPv4 servers, error e
 * @retval e|0x3000  the service did not give the IPv6 servers, error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_alg_sip_server_info_get_v1(uint32_t lan_id, uint32_t ip_family, int* count, void* out);

ZR_NEXA_C_END

#endif
