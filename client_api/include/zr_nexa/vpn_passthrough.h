/*
 * VPN passthrough: whether PPTP, IPSec and L2TP traffic may pass through the NAT of one WWAN profile, switched
 * separately for IPv4 and IPv6.
 */
#ifndef ZR_NEXA_VPN_PASSTHROUGH_H
#define ZR_NEXA_VPN_PASSTHROUGH_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/*
 * The service's error word of a change made while the profile's backhaul is down. The service keeps the new flag all
 * the same, and it holds once the backhaul is up.
 */
#define ZR_NEXA_VPN_PASSTHROUGH_BACKHAUL_DOWN 43u

/* What a set function returns then: 0x202B. */
#define ZR_NEXA_VPN_PASSTHROUGH_ERR_BACKHAUL_DOWN (2u * ZR_NEXA_STEP_UNIT | ZR_NEXA_VPN_PASSTHROUGH_BACKHAUL_DOWN)

/*
 * All set functions:
 *
 * wwan_handle: the profile, not 0. It stays the session's current one.
 * enable:      0 blocked, 1 allowed.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           wwan_handle 0, or enable above 1
 *   e | 0x1000  there is no such profile, error e
 *   e | 0x2000  the service reported error e; 0x202B: the backhaul is down and the flag is kept
 *   0
 *
 * All get functions:
 *
 * wwan_handle: the profile, not 0. It stays the session's current one.
 * enable:      receives 0 blocked, 1 allowed, as the service writes it; on a failure it holds what the service left in
 * it. Not checked: the service gets the pointer as it is, also a null pointer.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           wwan_handle 0
 *   e | 0x1000  there is no such profile, error e
 *   e | 0x2000  the service refused with error e
 *   0
 */

/* Sets whether PPTP over IPv4 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable);

/* Reads whether PPTP over IPv4 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable);

/* Sets whether PPTP over IPv6 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable);

/* Reads whether PPTP over IPv6 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable);

/* Sets whether IPSec over IPv4 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable);

/* Reads whether IPSec over IPv4 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable);

/* Sets whether IPSec over IPv6 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable);

/* Reads whether IPSec over IPv6 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable);

/* Sets whether L2TP over IPv4 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1(uint32_t wwan_handle, uint32_t enable);

/* Reads whether L2TP over IPv4 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1(uint32_t wwan_handle, uint8_t* enable);

/* Sets whether L2TP over IPv6 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1(uint32_t wwan_handle, uint32_t enable);

/* Reads whether L2TP over IPv6 may pass. */
ZR_NEXA_API uint32_t zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1(uint32_t wwan_handle, uint8_t* enable);

ZR_NEXA_C_END

#endif
