// Opening and closing the session: one QCMAP_Client object and one user callback for the whole process.
#include "session.h"  // first: the area headers leave the platform's own record to it

#include <zr_nexa_client_api.h>

#include <exception>

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kClientApi;

constexpr unsigned long long kAllServices = 65535;

void ignore_indication(uint32_t, uint32_t, const void*, ...) {}

// Null: there is no memory for it, and no exception leaves the interface.
QCMAP_Client* make_client()
try {
    return new QCMAP_Client(zr_nexa_inds_cb, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
} catch (const std::exception& /* no memory */) {
    return nullptr;
}

// Closes the session if there is one. The pointer is cleared before the object goes: a signal that closes the session
// from inside the destructor then finds none, instead of half of one.
void close_session(qmi_error_type_v01* err)
{
    if (client != nullptr) client->DisableMobileAP(err);
    QCMAP_Client* const closing = client;
    client = nullptr;
    delete closing;
}

}  // namespace

uint32_t zr_nexa_client_init(zr_nexa_ind_cb_t callback)
{
    ZR_LOG_INFO("entry");
    if (client != nullptr) {
        ZR_LOG_ERROR("assertion (QcMapClient == NULL) failed!");
        return ZR_NEXA_ERR_NO_SESSION;
    }
    user_callback = callback != nullptr ? callback : ignore_indication;
    client = make_client();
    if (client == nullptr) {
        ZR_LOG_ERROR("Couldn't setup nexa client");
        return failed_step(1, QMI_ERR_NO_MEMORY_V01);
    }
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->IsReady()) {
        ZR_LOG_ERROR("Couldn't setup nexa client");
        close_session(&err);
        if (err != QMI_ERR_NONE_V01) return failed_step(1, err);
        // Without an error to report the enable step still runs. With no object left it counts as a failed enable.
    }
    if (client != nullptr && client->EnableMobileAP_Ext(&err, kAllServices)) return ZR_NEXA_OK;

    ZR_LOG_ERROR("Couldn't enable nexa client");
    qmi_error_type_v01 disable_err = QMI_ERR_NONE_V01;
    close_session(&disable_err);
    if (err != QMI_ERR_NONE_V01) return failed_step(2, err);
    return ZR_NEXA_OK;
}

uint32_t zr_nexa_client_uninit()
{
    ZR_LOG_INFO("entry");
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    close_session(&err);
    user_callback = nullptr;
    if (err != QMI_ERR_NONE_V01) return failed_step(1, err);
    return ZR_NEXA_OK;
}
