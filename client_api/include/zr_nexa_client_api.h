/**
 * @file
 * Client interface of the module's mobile-AP (router) service: the session, and all areas.
 *
 * @page zr_nexa_conventions Conventions of all functions
 *
 * 1. Every function returns a 32-bit result code, unsigned but for the two GRE file functions, and writes results only
 *    through pointer arguments. 0 is success. The small codes are named in zr_nexa/base.h and in the area's header. A
 *    failed request to the service gives the service's error word e ORed with 0x1000 times the function's step, written
 *    e|0x1000, e|0x2000 and so on: 0x2003 reads as second step, error 3. The OR is literal, so an error word that has
 *    those bits itself hides the step. A request that succeeds although the service wrote an error word returns that
 *    word bare.
 * 2. Checks are made in this order: session (13), null pointers the function refuses (4), then the arguments as the
 *    function lists them, then the service is asked step by step. A function's results stand in that order. The first
 *    check or step that fails ends the function; what earlier steps did stays done.
 * 3. A session (zr_nexa_client_init) must be open for every function but zr_nexa_client_init, zr_nexa_client_uninit,
 *    zr_nexa_wan_radvd_restart_v1 and the two GRE file functions. Without one they return 13 and touch no argument.
 * 4. Records and buffers belong to the caller, before and after the call; nothing is kept beyond it.
 * 5. Outputs are written on success only, unless a function says otherwise. Some getters leave an output as it was when
 *    the service reports a value outside the interface's set: preset outputs before the call.
 * 6. Unless a function says otherwise a null pointer is refused with 4. Where it says "not checked", a null pointer is
 *    undefined behaviour.
 * 7. IPv4 addresses are 32-bit words in host byte order unless a field says network byte order. IPv6 addresses are 16
 *    bytes in network byte order. Ports are in host byte order.
 * 8. Texts in fixed-size fields are blocks of that size: terminated by a zero when shorter, not terminated when they
 *    fill the field. Nothing is read beyond the field.
 * 9. A count that the service reports outside its record's capacity is clamped to 0..capacity; nothing is ever written
 *    past an array.
 * 10. A function that takes a wwan_handle first makes that profile the session's current one, a function that takes a
 *     lan_id that bridge; the choice stays, also when a later step fails.
 * 11. Nothing is locked. Call from one thread at a time; indications arrive on a thread of the platform's own
 *     (zr_nexa/indications.h). A function whose comment says "Not one change" makes several, or reads a setting and
 *     writes it back: it can be cut in between, and another process's change can be lost. All others make one or none.
 * 12. No exception crosses the interface. The functions are C functions; the headers serve C99 and C++11.
 */
#ifndef ZR_NEXA_CLIENT_API_H
#define ZR_NEXA_CLIENT_API_H

#include <zr_nexa/alg.h>
#include <zr_nexa/base.h>
#include <zr_nexa/firewall.h>
#include <zr_nexa/general.h>
#include <zr_nexa/gre.h>
#include <zr_nexa/indications.h>
#include <zr_nexa/lan_addressing.h>
#include <zr_nexa/lan_passthrough.h>
#include <zr_nexa/lan_services.h>
#include <zr_nexa/lan_vlan.h>
#include <zr_nexa/nat.h>
#include <zr_nexa/upnp.h>
#include <zr_nexa/vpn_passthrough.h>
#include <zr_nexa/wan_connection.h>
#include <zr_nexa/wan_mpdn_mapping.h>
#include <zr_nexa/wan_profile.h>

ZR_NEXA_C_BEGIN

/**
 * Opens the process's one session with the mobile-AP service.
 *
 * @param[in] callback  called for call-status indications as zr_nexa/indications.h describes; null: indications are
 *                      only logged. It stays stored until zr_nexa_client_uninit, also when opening fails.
 *
 * @retval 13        a session is already open; it and its callback stay as they are
 * @retval 2|0x1000  there is no memory for the session
 * @retval e|0x1000  the service is not ready, and closing the half-open session gave error e
 * @retval e|0x2000  the service refused to be enabled with error e; no session is open
 * @retval 0         the session is open - or the service was not ready, or refused, without giving an error: then no
 *                   session is open although the result is 0, and every later call returns 13
 */
ZR_NEXA_API uint32_t zr_nexa_client_init(zr_nexa_ind_cb_t callback);

/**
 * Closes the session, if one is open, and forgets the callback. No indication is delivered after it returns. May be
 * called from a handler of SIGINT or SIGTERM on the thread that uses the session; must not be called from the
 * indication callback.
 *
 * @retval e|0x1000  the service gave error e; the session is closed all the same
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_client_uninit(void);

ZR_NEXA_C_END

#endif
