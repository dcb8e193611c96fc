// The session: one QCMAP_Client object and one user callback for the whole process.
#include "session.h"

#include <zr_nexa_client_api.h>

namespace {

constexpr auto kLogSource = zr_nexa::LogSource::kSession;
constexpr unsigned long long kAllServices = 65535;

void ignore_indication(uint32_t, uint32_t, const void*, ...) {}

// The pointer is cleared first: a signal that closes the session from inside the destructor then finds none, instead of
// half of one.
void destroy_client()
{
    QCMAP_Client* const closing = zr_nexa::client;
    zr_nexa::client = nullptr;
    delete closing;  // GCOVR_EXCL_BR_LINE
}

}  // namespace

namespace zr_nexa {

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

using zr_nexa::client;
using zr_nexa::failed_step;
using zr_nexa::user_callback;

uint32_t zr_nexa_client_init(zr_nexa_ind_cb_t callback)
{
    ZR_LOG_INFO("entry");
    if (client != nullptr) {
        ZR_LOG_ERROR("assertion (QcMapClient == NULL) failed!");
        return ZR_NEXA_ERR_NO_SESSION;
    }
    user_callback = callback != nullptr ? callback : ignore_indication;
    client = new QCMAP_Client(zr_nexa_inds_cb, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);

    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->IsReady()) {
        ZR_LOG_ERROR("Couldn't setup nexa client");
        client->DisableMobileAP(&err);
        destroy_client();
        if (err != QMI_ERR_NONE_V01) return failed_step(1, err);
        // Without an error to report the enable step still runs. With no object left it counts as a failed enable.
    }
    if (client != nullptr && client->EnableMobileAP_Ext(&err, kAllServices)) return ZR_NEXA_OK;

    ZR_LOG_ERROR("Couldn't enable nexa client");
    if (client != nullptr) {
        qmi_error_type_v01 disable_err = QMI_ERR_NONE_V01;
        client->DisableMobileAP(&disable_err);
        destroy_client();
    }
    return err != QMI_ERR_NONE_V01 ? failed_step(2, err) : static_cast<uint32_t>(ZR_NEXA_OK);
}

uint32_t zr_nexa_client_uninit()
{
    ZR_LOG_INFO("entry");
    if (client == nullptr) {
        user_callback = nullptr;
        return ZR_NEXA_OK;
    }
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    client->DisableMobileAP(&err);
    destroy_client();
    user_callback = nullptr;
    return err != QMI_ERR_NONE_V01 ? failed_step(1, err) : static_cast<uint32_t>(ZR_NEXA_OK);
}
