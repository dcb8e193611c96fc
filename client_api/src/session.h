// What all areas share: the session, the guard every function begins with, selection, and the step-tagged result.
#ifndef ZR_NEXA_SESSION_H
#define ZR_NEXA_SESSION_H

#include <zr_nexa/base.h>
#include <zr_nexa/indications.h>

#include <algorithm>

#include "log.h"
#include "platform.h"

namespace zr_nexa {

// Both plain on purpose: the platform delivers indications only between enabling and disabling, and its thread has
// ended before the object is gone.
extern QCMAP_Client* client;            // null: no session
extern zr_nexa_ind_cb_t user_callback;  // null only when no session was ever asked for

// Logs "entry" for function and tells whether a session is open; without one that is logged and 13 is the result.
bool guard(const char* function);

// The step-th failure point of a function. The OR is literal: an error that has the bits itself hides the step.
constexpr uint32_t failed_step(uint32_t step, qmi_error_type_v01 err)
{
    return static_cast<uint32_t>(err) | (ZR_NEXA_STEP_UNIT * step);
}

// A successful function returns the error word as the platform left it, 0 in practice.
constexpr uint32_t result_of(qmi_error_type_v01 err)
{
    return static_cast<uint32_t>(err);
}

// Makes a profile or a bridge the target of the platform calls that follow; a refusal is logged for function.
bool select_profile(const char* function, uint32_t wwan_handle, qmi_error_type_v01* err);
bool select_bridge(const char* function, uint32_t lan_id, qmi_error_type_v01* err);

// 0 names the default LAN.
constexpr bool is_lan_id(uint32_t lan_id)
{
    return lan_id <= ZR_NEXA_LAN_ID_MAX;
}

constexpr bool is_vlan_id(uint32_t lan_id)
{
    return lan_id != 0 && is_lan_id(lan_id);
}

// The platform's counts are not trusted: nothing is written past an array.
constexpr uint32_t clamped(int64_t count, uint32_t capacity)
{
    return static_cast<uint32_t>(std::clamp<int64_t>(count, 0, capacity));
}

}  // namespace zr_nexa

// Called by the platform, on its own thread, for every indication.
void zr_nexa_inds_cb(qmi_client_type user_handle, unsigned int msg_id, void* ind_buf, unsigned int ind_buf_len,
                     void* ind_cb_data);

#endif
