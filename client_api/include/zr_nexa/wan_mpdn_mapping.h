/**
 * @file
 * Multi-PDN mapping: which VLAN's traffic goes out through which WWAN profile.
 */
#ifndef ZR_NEXA_WAN_MPDN_MAPPING_H
#define ZR_NEXA_WAN_MPDN_MAPPING_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

#define ZR_NEXA_WAN_MPDNMAPPINGS_MAX 204700 /**< mappings: 50 profiles with 4094 VLAN ids each */

/**
 * All mappings: pair i is (profile_handle[i], vlan_id[i]), i below count. The record is about 1.2 MB large: keep it
 * in static or mapped memory, not on a stack. In zero pages it costs only the pages that the pairs fill.
 */
typedef struct zr_nexa_wan_mpdnmapping_list_t {
    uint32_t count;                                        /**< pairs */
    uint32_t profile_handle[ZR_NEXA_WAN_MPDNMAPPINGS_MAX]; /**< the profile of pair i */
    uint16_t vlan_id[ZR_NEXA_WAN_MPDNMAPPINGS_MAX];        /**< the VLAN of pair i */
} zr_nexa_wan_mpdnmapping_list_t;

/**
 * Maps a VLAN to a profile.
 *
 * @param[in] profile_handle  the profile, non-zero. It is the session's current profile afterwards, also when a later
 *                            step failed.
 * @param[in] vlan_id         1..4094. Its bridge is the session's current LAN afterwards, also when the last step
 *                            failed.
 *
 * @retval 13        no session
 * @retval 4         profile_handle 0
 * @retval 6         vlan_id outside 1..4094
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the bridge could not be selected, error e
 * @retval e|0x3000  the service refused the mapping with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_mpdnmapping_add_v1(uint32_t profile_handle, uint16_t vlan_id);

/**
 * Lists all mappings, profile by profile, in the service's order.
 *
 * Not reentrant: the service's own list, about 400 KiB, is kept in static memory for the time of the call.
 *
 * @param[out] list  receives the pairs and their count; what lies beyond them stays as it was, so that a short list
 *                   touches little memory. Nothing is ever written past its end: the service's list is taken as 50
 *                   profiles at most, and of a profile the first 4094 VLAN ids are given. What the service reports
 *                   beyond that is left out, without an error. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         list null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_mpdnmapping_get_v1(zr_nexa_wan_mpdnmapping_list_t* list);

/**
 * Takes a mapping away.
 *
 * @copydetails zr_nexa_wan_mpdnmapping_add_v1
 */
ZR_NEXA_API uint32_t zr_nexa_wan_mpdnmapping_del_v1(uint32_t profile_handle, uint16_t vlan_id);

ZR_NEXA_C_END

#endif
