// UPnP: the service with its notify interval, and the pinholes of a WWAN profile.
#include <zr_nexa/upnp.h>

#include "session.h"

using namespace zr_nexa;

constexpr auto kLogSource = LogSource::kUpnp;

uint32_t zr_nexa_media_upnp_set_v1(uint32_t enable)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (enable > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (enable == 1) {
        if (!client->EnableUPNP(&err)) {
            ZR_LOG_ERROR("Enable UPnP State error %d", err);
            return failed_step(1, err);
        }
        ZR_LOG_INFO("UPnP is enabled");
    } else {
        if (!client->DisableUPNP(&err)) {
            ZR_LOG_ERROR("Disable UPnP State error %d", err);
            return failed_step(2, err);
        }
        ZR_LOG_INFO("UPnP is disabled");
    }
    return result_of(err);
}

uint32_t zr_nexa_media_upnp_get_v1(uint8_t* enable)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (enable == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_msgr_upnp_mode_enum_v01 mode = {};
    if (!client->GetUPNPStatus(&mode, &err)) {
        ZR_LOG_ERROR("Get UPNP Status error %d", err);
        return failed_step(1, err);
    }
    if (mode == QCMAP_MSGR_UPNP_MODE_UP_V01) {
        *enable = 1;
        ZR_LOG_INFO("Get UPNP Status is QCMAP_MSGR_UPNP_MODE_UP_V01");
    } else if (mode == QCMAP_MSGR_UPNP_MODE_DOWN_V01) {
        *enable = 0;
        ZR_LOG_INFO("Get UPNP Status is QCMAP_MSGR_UPNP_MODE_DOWN_V01");
    }
    return result_of(err);
}

uint32_t zr_nexa_media_upnp_notify_interval_set_v1(uint32_t interval)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    const auto seconds = static_cast<uint16_t>(interval);
    if (seconds < ZR_NEXA_UPNP_NOTIFY_INTERVAL_MIN || seconds > ZR_NEXA_UPNP_NOTIFY_INTERVAL_MAX) {
        return ZR_NEXA_ERR_ARGUMENT;
    }
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SetUPNPNotifyInterval(interval, &err)) {
        ZR_LOG_ERROR("Set UPnP Notify Interval error %d", err);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Set UPnP Notify Interval is %d", seconds);
    return result_of(err);
}

uint32_t zr_nexa_media_upnp_notify_interval_get_v1(uint16_t* interval)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (interval == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    unsigned int value = 0;
    if (!client->GetUPNPNotifyInterval(&value, &err)) {
        ZR_LOG_ERROR("Get UPnP Notify Interval error %d", err);
        return failed_step(1, err);
    }
    *interval = static_cast<uint16_t>(value);
    ZR_LOG_INFO("Get UPnP Notify Interval is %d", *interval);
    return result_of(err);
}

uint32_t zr_nexa_media_upnp_pinhole_state_set_v1(uint32_t wwan_handle, uint32_t state)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (state > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    unsigned char enable_firewall = 0;
    unsigned char pkts_allowed = 0;
    if (!client->GetFirewall(&enable_firewall, &pkts_allowed, &err)) {
        ZR_LOG_ERROR("Get Firewall State error %d", err);
        return failed_step(2, err);
    }
    if (enable_firewall == 0) {
        ZR_LOG_ERROR("Firewall is DISABLED. UPNP NOT ALLOWED");
        return ZR_NEXA_UPNP_ERR_FIREWALL_OFF;
    }
    if (!client->SetUPNPState(enable_firewall, static_cast<unsigned char>(state), &err)) {
        ZR_LOG_ERROR("Set UPNP state error %d", err);
        return failed_step(3, err);
    }
    ZR_LOG_INFO("Set UPNP Pinhole State %d success", state);
    return result_of(err);
}

uint32_t zr_nexa_media_upnp_pinhole_state_get_v1(uint32_t wwan_handle, uint8_t* state)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (state == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    unsigned char pinhole = 0;
    if (!client->GetUPNPState(&pinhole, &err)) {
        ZR_LOG_ERROR("Get UPNP Pinhole state error %d", err);
        return failed_step(2, err);
    }
    *state = pinhole;
    ZR_LOG_INFO("Get UPNP Pinhole state is %d", pinhole);
    return result_of(err);
}
