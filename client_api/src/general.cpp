// General settings: factory restore and the software shortcut engine.
#include <zr_nexa/general.h>

#include "session.h"

using namespace zr_nexa;

constexpr auto kLogSource = LogSource::kGeneral;

uint32_t zr_nexa_general_restore_nexa_v1()
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->RestoreFactoryConfig(&err)) {
        ZR_LOG_ERROR("Restore factory config error %d", err);
        return failed_step(1, err);
    }
    return result_of(err);
}

uint32_t zr_nexa_general_sfe_set_v1(uint32_t sfe_config)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (sfe_config > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SetDataPathOptStatus(static_cast<unsigned char>(sfe_config), &err)) {
        ZR_LOG_ERROR("Set data path opt status error %d, sfe_config=%d", err, sfe_config);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Set data path opt status sfe_config=%d, error %d", sfe_config, err);
    return result_of(err);
}

uint32_t zr_nexa_general_sfe_get_v1(uint8_t* sfe_config)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (sfe_config == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->GetDataPathOptStatus(sfe_config, &err)) {
        ZR_LOG_ERROR("Get data path opt status error %d", err);
        return failed_step(1, err);
    }
    // The record shows where the switch was written, not the switch: log readers know it as it is.
    ZR_LOG_INFO("Get data path opt status sfe_config=%d, error %d", pointer_word(sfe_config), err);
    return result_of(err);
}
