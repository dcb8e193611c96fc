/**
 * @file
 * VPN passthrough: whether PPTP, IPSec and L2TP traffic may pass through the NAT of one WWAN profile, switched
 * separately for IPv4 and IPv6.
 */
#ifndef ZR_NEXA_VPN_PASSTHROUGH_H
#define ZR_NEXA_VPN_PASSTHROUGH_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/**
 * The service's error word of a change made while the profile's backhaul is down. The service keeps the new flag all
 * the same, and it holds once the backhaul is up.
 */
#define ZR_NEXA_VPN_PASSTHROUGH_BACKHAUL_DOWN 43u

/** What a set function returns then: 0x202B. */
#define ZR_NEXA_VPN_PASSTHROUGH_ERR_BACKHAUL_DOWN (2u * ZR_NEXA_STEP_UNIT | ZR_NEXA_VPN_PASSTHROUGH_BACKHAUL_DOWN)

/**
 * Sets whether PPTP over IPv4 may pass.
 *
 * @param[in] wwan_handle  the profile, non-zero.
 * @param[in] enable       0 blocked, 1 allowed.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or enable above 1
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service reported error e; 0x202B: the backhaul is down and the flag is kept
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads whether PPTP over IPv4 may pass.
 *
 * @param[in]     wwan_handle  the profile, non-zero.
 * @param[in,out] enable       receives 0 blocked, 1 allowed, as the service writes it; on failure it holds what the
 *                             service left in it. Not checked: the service gets the pointer as it is, also a null
 *                             pointer.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable);

/**
 * Sets whether PPTP over IPv6 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads whether PPTP over IPv6 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable);

/**
 * Sets whether IPSec over IPv4 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads whether IPSec over IPv4 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable);

/**
 * Sets whether IPSec over IPv6 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads whether IPSec over IPv6 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable);

/**
 * Sets whether L2TP over IPv4 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads whether L2TP over IPv4 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable);

/**
 * Sets whether L2TP over IPv6 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable);

/**
 * Reads whether L2TP over IPv6 may pass.
 *
 * @copydetails zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1
 */
ZR_NEXA_API uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable);

ZR_NEXA_C_END

#endif
