/**
 * @file
 * UPnP: the service with its notify interval, and the pinholes of a WWAN profile.
 */
#ifndef ZR_NEXA_UPNP_H
#define ZR_NEXA_UPNP_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** zr_nexa_media_upnp_pinhole_state_set_v1: the firewall of the profile is off. */
#define ZR_NEXA_UPNP_ERR_FIREWALL_OFF 14u

/** @name Bounds of the notify interval
 * @{ */
#define ZR_NEXA_UPNP_NOTIFY_INTERVAL_MIN 30u    /**< shortest notify interval, seconds */
#define ZR_NEXA_UPNP_NOTIFY_INTERVAL_MAX 60000u /**< longest notify interval, seconds */
/** @} */

/**
 * Switches the UPnP service.
 *
 * @param[in] enable  0 off, 1 on.
 *
 * @retval 13        no session
 * @retval 4         enable above 1
 * @retval e|0x1000  the service refused to switch on with error e
 * @retval e|0x2000  the service refused to switch off with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_media_upnp_set_v1(uint32_t enable);

/**
 * Reads whether the UPnP service is on.
 *
 * @param[out] enable  receives 0 or 1; stays as it was, with result 0, when the service reports neither up nor down,
 * and on failure.
 *
 * @retval 13        no session
 * @retval 4         enable null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_media_upnp_get_v1(uint8_t* enable);

/**
 * Sets the interval at which the UPnP service announces itself.
 *
 * @param[in] interval  seconds. Only its low 16 bits are checked, for 30..60000; the service is handed the whole value:
 *                      65566 passes the check as 30 does.
 *
 * @retval 13        no session
 * @retval 4         interval out of range
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_media_upnp_notify_interval_set_v1(uint32_t interval);

/**
 * Reads the interval at which the UPnP service announces itself.
 *
 * @param[out] interval  receives the seconds, cut to 16 bits; untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         interval null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_media_upnp_notify_interval_get_v1(uint16_t* interval);

/**
 * Lets UPnP open pinholes in the firewall of a profile, or not. The firewall must be on, for either state.
 *
 * Not one change: the firewall's switch is read and handed on with the state. A firewall that another process switches
 * off in between counts as on.
 *
 * @param[in] wwan_handle  the profile; not checked for 0.
 * @param[in] state        0 no pinholes, 1 pinholes.
 *
 * @retval 13        no session
 * @retval 4         state above 1
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the firewall's switch could not be read, error e
 * @retval 14        the firewall is off; nothing is changed
 * @retval e|0x3000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_media_upnp_pinhole_state_set_v1(uint32_t wwan_handle, uint32_t state);

/**
 * Reads whether UPnP may open pinholes in the firewall of a profile.
 *
 * @param[in]  wwan_handle  the profile; not checked for 0.
 * @param[out] state        receives the state, as the service gives it; untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         state null
 * @retval e|0x1000  the profile could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_media_upnp_pinhole_state_get_v1(uint32_t wwan_handle, uint8_t* state);

ZR_NEXA_C_END

#endif
