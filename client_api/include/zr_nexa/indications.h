/**
 * @file
 * Call-status indications, as the callback given to zr_nexa_client_init receives them.
 *
 * - event 34, 92 bytes, zr_nexa_ind_call_event_t: a connect request ended (status 2, 3, 8, 9)
 * - event 35, 92 bytes, zr_nexa_ind_call_event_t: a disconnect request ended (status 5, 6, 11, 12); with status 11 a
 *   fourth value follows
 * - event 37, 92 bytes, zr_nexa_ind_call_event_t: a connection changed its status (1..12)
 * - event 169, 10888 bytes, zr_nexa_ind_status_report_t: a status report of kind 0 or 1
 *
 * An open session gets them whichever process made the request. A call event that is meant for another mobile AP than
 * the session's own is dropped, and so is an indication that cannot be decoded, which is logged.
 *
 * Thread: the callback is called on a thread of the platform's own, one indication at a time, in the order they
 * happened, and never on the thread that calls the interface, nor after zr_nexa_client_uninit has returned. It may be
 * called before zr_nexa_client_init has returned. Nothing is locked: what the callback shares with other threads is for
 * the caller to guard.
 *
 * What the callback may do: read the data and take short notes of them (a write to a pipe, a queue, a condition).
 * While it runs, no other indication is delivered and closing the session waits for it. It must not call any function
 * of the client interface - zr_nexa_client_uninit would wait for itself - and must not let an exception out.
 *
 * Lifetime: data points into the platform thread's stack and is gone when the callback returns. Copy what is needed.
 */
#ifndef ZR_NEXA_INDICATIONS_H
#define ZR_NEXA_INDICATIONS_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** Event ids. A status change bears another number than the service's own message for it (36). */
enum {
    ZR_NEXA_IND_BRING_UP = 34,
    ZR_NEXA_IND_TEAR_DOWN = 35,
    ZR_NEXA_IND_STATUS = 37,
    ZR_NEXA_IND_STATUS_REPORT = 169
};

/** Values of zr_nexa_ind_call_event_t.status. */
enum {
    ZR_NEXA_IND_V4_CONNECTING = 1,
    ZR_NEXA_IND_V4_CONNECTING_FAILED = 2,
    ZR_NEXA_IND_V4_CONNECTED = 3,
    ZR_NEXA_IND_V4_DISCONNECTING = 4,
    ZR_NEXA_IND_V4_DISCONNECTING_FAILED = 5,
    ZR_NEXA_IND_V4_DISCONNECTED = 6,
    ZR_NEXA_IND_V6_CONNECTING = 7,
    ZR_NEXA_IND_V6_CONNECTING_FAILED = 8,
    ZR_NEXA_IND_V6_CONNECTED = 9,
    ZR_NEXA_IND_V6_DISCONNECTING = 10,
    ZR_NEXA_IND_V6_DISCONNECTING_FAILED = 11,
    ZR_NEXA_IND_V6_DISCONNECTED = 12
};

/** The fourth value of event 35 with status 11. */
#define ZR_NEXA_IND_V6_DISCONNECT_FAILED_VALUE 684u

/** wwan_handle of an event whose indication names no profile. */
#define ZR_NEXA_IND_NO_PROFILE 65535u

/**
 * Events 34, 35 and 37. The interface name and the addresses are given by event 34 with status 3 or 9; in every other
 * event they are 0. All six addresses are in network byte order, 0 where the call has none.
 */
typedef struct zr_nexa_ind_call_event_t {
    uint32_t status;             /**< ZR_NEXA_IND_V4_..., ZR_NEXA_IND_V6_... */
    uint32_t call_end_type;      /**< why the call ended, as the service gives it */
    uint32_t call_end_code;      /**< as call_end_type */
    char iface_name[16];         /**< network interface; not terminated when it fills the field */
    uint32_t wwan_handle;        /**< the profile, or ZR_NEXA_IND_NO_PROFILE */
    uint32_t v4_addr;            /**< IPv4 address */
    uint32_t v4_pri_dns_addr;    /**< primary DNS server */
    uint32_t v4_sec_dns_addr;    /**< secondary DNS server */
    uint8_t v6_addr[16];         /**< IPv6 address */
    uint8_t v6_pri_dns_addr[16]; /**< primary DNS server */
    uint8_t v6_sec_dns_addr[16]; /**< secondary DNS server */
} zr_nexa_ind_call_event_t;

/** Event 169: the service's report as it stands. */
typedef struct zr_nexa_ind_status_report_t {
    uint32_t kind;         /**< 0 or 1; reports of other kinds are not handed on */
    uint8_t report[10884]; /**< as the service gives it */
} zr_nexa_ind_status_report_t;

/**
 * The callback.
 *
 * It is variadic because one event carries a fourth value: a variadic function may be called with three or four values
 * on every CPU, which an ordinary one may not. The fourth value is a uint32_t and is there only for event 35 with
 * status 11; read it only then:
 *
 *     void on_indication(uint32_t event_id, uint32_t length, const void* data, ...)
 *     {
 *         zr_nexa_ind_call_event_t event;
 *         if (event_id != ZR_NEXA_IND_TEAR_DOWN || length != sizeof(event)) return;
 *         memcpy(&event, data, sizeof(event));
 *         if (event.status == ZR_NEXA_IND_V6_DISCONNECTING_FAILED) {
 *             va_list values;
 *             va_start(values, data);
 *             note(va_arg(values, uint32_t)); // ZR_NEXA_IND_V6_DISCONNECT_FAILED_VALUE
 *             va_end(values);
 *         }
 *     }
 *
 * @param[in] event_id  one of the event ids above; ignore others.
 * @param[in] length    byte length of data, as said above.
 * @param[in] data      the event's record, never null.
 */
typedef void (*zr_nexa_ind_cb_t)(uint32_t event_id, uint32_t length, const void* data, ...);

ZR_NEXA_C_END

#endif
