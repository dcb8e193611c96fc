// What every function of an area begins with: the guard, and the choice of a profile or a bridge.
#include "session.h"

namespace zr_nexa {

namespace {
constexpr auto kLogSource = LogSource::kSession;
}

QCMAP_Client* client = nullptr;
zr_nexa_ind_cb_t user_callback = nullptr;

bool guard(const char* function)
{
    ZR_LOG_INFO_AS(function, "entry");
    if (client == nullptr) {
        ZR_LOG_ERROR_AS(function, "assertion (QcMapClient != NULL) failed!");
        return false;
    }
    return true;
}

bool select_profile(const char* function, uint32_t wwan_handle, qmi_error_type_v01* err)
{
    if (client->SetWWANProfileHandlePreference(wwan_handle, err)) return true;
    ZR_LOG_ERROR_AS(function, "Set WWAN Profile Handle Preference (wwan_handle=%d) error %d", wwan_handle, *err);
    return false;
}

bool select_bridge(const char* function, uint32_t lan_id, qmi_error_type_v01* err)
{
    if (client->SelectLANBridge(static_cast<short>(lan_id), err)) return true;
    ZR_LOG_ERROR_AS(function, "Select LAN Bridge (LAN_ID=%d) error %d", lan_id, *err);
    return false;
}

}  // namespace zr_nexa
