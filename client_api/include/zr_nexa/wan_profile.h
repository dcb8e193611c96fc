/**
 * @file
 * WWAN profiles ("wwanconfigs"): what the module dials with. A profile has a handle (wwan_handle) by which all other
 * areas name it. One profile is the default one, which the module uses for its own network; two more handles name the
 * profiles of the module's AP and of its DNS proxy.
 */
#ifndef ZR_NEXA_WAN_PROFILE_H
#define ZR_NEXA_WAN_PROFILE_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** Result code of this area: tech_pref is not 0, 1 or 2. */
enum { ZR_NEXA_WAN_ERR_TECH_PREF = 11 };

/** Technology preferences (tech_pref). */
enum { ZR_NEXA_WAN_TECH_ANY = 0, ZR_NEXA_WAN_TECH_UMTS = 1, ZR_NEXA_WAN_TECH_CDMA = 2 };

#define ZR_NEXA_WAN_PROFILES_MAX 50  /**< profiles that the service keeps; largest wwan_handle */
#define ZR_NEXA_WAN_APN_ID_MIN 1     /**< smallest apn_id, the index of the modem's APN profile */
#define ZR_NEXA_WAN_APN_ID_MAX 16    /**< largest apn_id */
#define ZR_NEXA_WAN_APN_NAME_SIZE 50 /**< bytes of an APN name */

/** A profile, as the version-2 functions take and give it. */
typedef struct zr_nexa_wan_wwanconfig_t {
    uint8_t tech_pref;                        /**< ZR_NEXA_WAN_TECH_... */
    int32_t ip_family;                        /**< ZR_NEXA_IP_V4, _V6 or _V4V6 */
    uint8_t apn_id;                           /**< 1..16 */
    char apn_name[ZR_NEXA_WAN_APN_NAME_SIZE]; /**< zero-terminated when shorter; empty: no name is given */
} zr_nexa_wan_wwanconfig_t;

/** All profiles; entry i of the three arrays describes the same profile, i below wwanconfig_num. */
typedef struct zr_nexa_wan_wwanconfig_list_t {
    uint32_t wwanconfig_num;                        /**< 0..50 */
    uint32_t default_wwan_handle;                   /**< 0: the service names none */
    uint32_t wwan_handle[ZR_NEXA_WAN_PROFILES_MAX]; /**< the handles */
    uint8_t tech_pref[ZR_NEXA_WAN_PROFILES_MAX];    /**< ZR_NEXA_WAN_TECH_... */
    uint8_t apn_id[ZR_NEXA_WAN_PROFILES_MAX];       /**< 1..16 */
} zr_nexa_wan_wwanconfig_list_t;

/** All profiles, whole; profile i has the handle wwan_handle[i], i below wwanconfig_num. */
typedef struct zr_nexa_wan_wwanconfig_list_v2_t {
    uint32_t wwanconfig_num;                                       /**< 0..50 */
    uint32_t default_wwan_handle;                                  /**< 0: the service names none */
    uint32_t wwan_handle[ZR_NEXA_WAN_PROFILES_MAX];                /**< the handles */
    zr_nexa_wan_wwanconfig_t wwanconfig[ZR_NEXA_WAN_PROFILES_MAX]; /**< the profiles */
} zr_nexa_wan_wwanconfig_list_v2_t;

/**
 * Creates a profile for IPv4 and IPv6 without an APN name.
 *
 * @param[out] wwan_handle  receives the new profile's handle; untouched on failure.
 * @param[in]  tech_pref    ZR_NEXA_WAN_TECH_....
 * @param[in]  apn_id       1..16.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle null, or apn_id outside 1..16
 * @retval 11        tech_pref outside 0..2
 * @retval e|0x1000  the service refused to create it with error e (the table is full, ...)
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_wwanconfig_add_v1(uint32_t* wwan_handle, int tech_pref, int apn_id);

/**
 * Creates a profile.
 *
 * @param[out] wwan_handle  receives the new profile's handle; untouched on failure.
 * @param[in]  wwanconfig   the profile. An ip_family other than 4 and 6 is taken as IPv4 and IPv6 (10), not refused.
 *                          The apn_name is sent as the whole block of 50 bytes when its first byte is not zero.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle null, or apn_id outside 1..16
 * @retval 11        tech_pref outside 0..2
 * @retval e|0x1000  the service refused to create it with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_wwanconfig_add_v2(uint32_t* wwan_handle, zr_nexa_wan_wwanconfig_t wwanconfig);

/**
 * Changes a profile's technology preference, then its apn_id. IP family and APN name stay. Nothing is rolled back: a
 * change that was made before a later one failed stays.
 *
 * Not one change: ended between the two, the technology preference is new and the apn_id old. Of two processes at the
 * same moment one may set the first and the other the second.
 *
 * @param[in] wwan_handle  the profile, non-zero; whether it exists is the service's to say. It is the session's current
 *                         profile afterwards, also when the function ends with 11 or a later failure.
 * @param[in] tech_pref    ZR_NEXA_WAN_TECH_....
 * @param[in] apn_id       1..16.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or apn_id outside 1..16
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval 11        tech_pref outside 0..2 (found only now)
 * @retval e|0x2000  technology preference refused with error e
 * @retval e|0x3000  apn_id refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_wwanconfig_set_v1(uint32_t wwan_handle, int tech_pref, int apn_id);

/**
 * Changes a whole profile: technology preference, IP family, APN name, apn_id and call bring-up mode (always set to 0),
 * in this order. Nothing is rolled back: a change that was made before a later one failed stays.
 *
 * Not one change: ended in between, the first ones of these are new and the rest old. Of two processes at the same
 * moment each may set some of them.
 *
 * @param[in] wwan_handle  the profile, non-zero. It is the session's current profile afterwards, also when the function
 *                         ends with 11 or a later failure.
 * @param[in] wwanconfig   the profile, as for zr_nexa_wan_wwanconfig_add_v2; an empty apn_name takes the profile's name
 *                         away.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0, or apn_id outside 1..16
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval 11        tech_pref outside 0..2 (found only now)
 * @retval e|0x2000  technology preference refused with error e
 * @retval e|0x3000  IP family refused with error e
 * @retval e|0x4000  APN name refused with error e
 * @retval e|0x5000  apn_id refused with error e
 * @retval e|0x6000  bring-up mode refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_wwanconfig_set_v2(uint32_t wwan_handle, zr_nexa_wan_wwanconfig_t wwanconfig);

/**
 * Makes a profile the default one, which the module uses for its own network.
 *
 * @param[in] wwan_handle  the profile, non-zero. It is the session's current profile afterwards.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused the change with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_wwanconfig_default_set_v1(uint32_t wwan_handle);

/**
 * Lists all profiles.
 *
 * @param[out] list  receives count, default handle and that many entries of each array; entries beyond the count stay
 *                   as they were. tech_pref is the low byte of what the service keeps. More than 50 profiles are never
 *                   given: the count is clamped. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         list null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_wwanconfig_get_v1(zr_nexa_wan_wwanconfig_list_t* list);

/**
 * Lists all profiles, whole.
 *
 * @param[out] list  receives count, default handle and that many entries; entries beyond the count stay as they were.
 *                   Of an entry tech_pref is written only when it is 0, 1 or 2, ip_family only when it is 4, 6 or 10,
 *                   and apn_name (50 bytes) only when it is not empty: clear the record before the call. More than 50
 *                   profiles are never given: the count is clamped. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         list null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_wwanconfig_get_v2(zr_nexa_wan_wwanconfig_list_v2_t* list);

/**
 * Deletes a profile.
 *
 * @param[in] wwan_handle  the profile, non-zero. The session's current profile names it even when it is gone.
 *
 * @retval 13        no session
 * @retval 4         wwan_handle 0
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused to delete it with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_wwanconfig_del_v1(uint32_t wwan_handle);

/**
 * Names the profiles that the module's AP and its DNS proxy use. The session's current profile stays as it is.
 *
 * @param[in] ap_wwan_handle     profile of the AP, non-zero.
 * @param[in] apdns_wwan_handle  profile of the DNS proxy, non-zero.
 *
 * @retval 13        no session
 * @retval 4         a handle 0
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_apwwan_set_v1(uint32_t ap_wwan_handle, uint32_t apdns_wwan_handle);

/**
 * Reads which profiles the module's AP and its DNS proxy use. A success is logged at the error level.
 *
 * @param[out] ap_wwan_handle     receives the profile of the AP; untouched on failure.
 * @param[out] apdns_wwan_handle  receives the profile of the DNS proxy; untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         a pointer null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_wan_apwwan_get_v1(uint32_t* ap_wwan_handle, uint32_t* apdns_wwan_handle);

ZR_NEXA_C_END

#endif
