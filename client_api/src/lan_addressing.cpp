// LAN addressing: gateway URL, addresses and DHCP server of a LAN bridge, default DHCP action, IPv4 and IPv6 switches.
#include <zr_nexa/lan_addressing.h>

#include <arpa/inet.h>

#include <cstring>

#include "session.h"
#include "texts.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kLanAddressing;

using UrlText = FieldText<ZR_NEXA_LAN_GWURL_SIZE>;

void log_dhcp_cfg(const char* function, uint32_t lan_id, const zr_nexa_lan_dhcp_cfg_t& cfg)
{
    ZR_LOG_INFO_AS(function, "LAN_ID=%d GatewayIP=%s", lan_id, Ipv4Text(htonl(cfg.gateway_ip)).c_str());
    ZR_LOG_INFO_AS(function, "LAN_ID=%d Netmask=%s", lan_id, Ipv4Text(htonl(cfg.netmask)).c_str());
    ZR_LOG_INFO_AS(function, "LAN_ID=%d DHCPStartIP=%s", lan_id, Ipv4Text(htonl(cfg.dhcp_start_ip)).c_str());
    ZR_LOG_INFO_AS(function, "LAN_ID=%d DHCPEndIP=%s", lan_id, Ipv4Text(htonl(cfg.dhcp_end_ip)).c_str());
    ZR_LOG_INFO_AS(function, "LAN_ID=%d DHCPLeaseTime=%d", lan_id, cfg.lease_time);
    ZR_LOG_INFO_AS(function, "LAN_ID=%d DHCPMTU=%d", lan_id, cfg.mtu);
    ZR_LOG_INFO_AS(function, "LAN_ID=%d DNSMode=%d PriDNSAddr=%s", lan_id, cfg.dns_mode,
                   Ipv4Text(htonl(cfg.primary_dns)).c_str());
    ZR_LOG_INFO_AS(function, "LAN_ID=%d SecDNSAddr=%s", lan_id, Ipv4Text(htonl(cfg.secondary_dns)).c_str());
}

// Both ways between the interface's record and the platform's. The DNS servers are taken only with the mode that has
// them, and an unknown mode not at all.
template <typename To, typename From>
void copy_addressing(To* to, const From& from)
{
    to->gateway_ip = from.gateway_ip;
    to->netmask = from.netmask;
    to->dhcp_start_ip = from.dhcp_start_ip;
    to->dhcp_end_ip = from.dhcp_end_ip;
    to->lease_time = from.lease_time;
    to->mtu = from.mtu;
    if (from.dns_mode >= 1 && from.dns_mode <= ZR_NEXA_LAN_DNS_MODE_ADDRESSES) to->dns_mode = from.dns_mode;
    if (from.dns_mode == ZR_NEXA_LAN_DNS_MODE_ADDRESSES) {
        to->primary_dns = from.primary_dns;
        to->secondary_dns = from.secondary_dns;
    }
}

}  // namespace

uint32_t zr_nexa_lan_gwurl_set_v1(const char* url)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (url == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    // The service only reads the text, although it does not say so.
    auto* const text = reinterpret_cast<unsigned char*>(const_cast<char*>(url));
    if (!client->SetGatewayUrl(text, static_cast<unsigned int>(std::strlen(url)), &err)) {
        ZR_LOG_ERROR("Set gateway url error %d, gwurl:%s", err, url);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Set gateway url:%s, error %d", url, err);
    return result_of(err);
}

uint32_t zr_nexa_lan_gwurl_get_v1(char* url, uint32_t* len)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (url == nullptr || len == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->GetGatewayUrl(reinterpret_cast<unsigned char*>(url), len, &err)) {
        ZR_LOG_ERROR("Get gateway url error %d, gwurl:%s gwurl_len=%d", err, UrlText(url).c_str(), *len);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Get gateway url:%s gwurl_len=%d, error %d", UrlText(url).c_str(), *len, err);
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_srvctl_set_v1(uint32_t lan_id, int32_t enable)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    ZR_LOG_INFO("lan_id: %d", lan_id);
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SelectLANBridge(static_cast<short>(lan_id), &err)) {
        // No such bridge yet: the switch is kept as the default for bridges to come.
        if (!client->ZR_SetDefaultEnableDHCP(static_cast<qcmap_msgr_config_state_enum_v01>(enable & 1), &err)) {
            ZR_LOG_ERROR("Set ZR DHCP Default Action failure");
            return failed_step(1, err);
        }
        ZR_LOG_INFO("Set ZR DHCP Default Action successfully ");
        return result_of(err);
    }
    qcmap_msgr_lan_config_v01 lan = {};
    if (!client->GetLANConfig(&lan, &err)) {
        ZR_LOG_ERROR("Get LAN ID %d DHCP Server(enable_dhcp=%d) config error %d", lan_id, enable, err);
        return failed_step(2, err);
    }
    lan.enable_dhcp = static_cast<uint8_t>(enable);
    if (!client->SetLANConfig(lan, &err)) {
        ZR_LOG_ERROR("Set LAN ID %d DHCP Server(enable_dhcp=%d) config error %d", lan_id, enable, err);
        return failed_step(3, err);
    }
    ZR_LOG_INFO("Set LAN ID %d DHCP Server(enable_dhcp=%x) config successfully", lan_id, enable);
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_srvctl_get_v1(uint32_t lan_id, uint32_t* enable)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SelectLANBridge(static_cast<short>(lan_id), &err)) {
        qcmap_msgr_config_state_enum_v01 state = QCMAP_MSGR_CONFIG_STATE_OFF_V01;
        if (!client->ZR_GetDefaultEnableDHCP(&state, &err)) {
            ZR_LOG_ERROR("Get ZR DHCP Default Action failure");
            return failed_step(1, err);
        }
        *enable = state == QCMAP_MSGR_CONFIG_STATE_ON_V01 ? 1 : 0;
        ZR_LOG_INFO("Get ZR DHCP Default Action successfully: %d", *enable);
        return result_of(err);
    }
    qcmap_msgr_lan_config_v01 lan = {};
    if (!client->GetLANConfig(&lan, &err)) {
        ZR_LOG_ERROR("Get LAN ID %d DHCP Server(enable_dhcp=%d) config error %d", lan_id, lan.enable_dhcp, err);
        return failed_step(2, err);
    }
    *enable = lan.enable_dhcp;
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_set_v1(uint32_t lan_id, const zr_nexa_lan_dhcp_cfg_t* cfg)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (cfg == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;

    qcmap_msgr_lan_config_v01 lan = {};
    copy_addressing(&lan, *cfg);
    log_dhcp_cfg(__func__, lan_id, *cfg);

    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_lan_config_v01 current = {};
    if (!client->GetLANConfig(&current, &err)) {
        ZR_LOG_ERROR("Get LAN ID %d DHCP Server(enable_dhcp=%d) config error %d", lan_id, current.enable_dhcp, err);
        return failed_step(2, err);
    }
    lan.enable_dhcp = current.enable_dhcp;
    if (!client->SetLANConfig(lan, &err)) {
        ZR_LOG_ERROR("Set LAN (LAN_ID=%d) config error %d", lan_id, err);
        return failed_step(3, err);
    }
    if (!client->ActivateLAN(&err)) {
        ZR_LOG_ERROR("Activate LAN (LAN_ID=%d) error %d", lan_id, err);
        return failed_step(4, err);
    }
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_get_v1(uint32_t lan_id, zr_nexa_lan_dhcp_cfg_t* cfg)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (cfg == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_lan_config_v01 lan = {};
    if (!client->GetLANConfig(&lan, &err)) {
        ZR_LOG_ERROR("Get LAN (LAN_ID=%d) config error %d", lan_id, err);
        return failed_step(2, err);
    }
    copy_addressing(cfg, lan);
    log_dhcp_cfg(__func__, lan_id, *cfg);
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_default_action_get_v1(uint8_t* enable)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_msgr_config_state_enum_v01 state = QCMAP_MSGR_CONFIG_STATE_OFF_V01;
    if (!client->ZR_GetDefaultEnableDHCP(&state, &err)) {
        ZR_LOG_ERROR("Get DHCP Default Action failure");
        return failed_step(1, err);
    }
    *enable = state == QCMAP_MSGR_CONFIG_STATE_ON_V01 ? 1 : 0;
    ZR_LOG_INFO("Get DHCP Default Action successfully: %d", *enable);
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_default_action_set_v1(uint32_t state)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->ZR_SetDefaultEnableDHCP(static_cast<qcmap_msgr_config_state_enum_v01>(state), &err)) {
        ZR_LOG_ERROR("Set DHCP Default Action failure");
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Set DHCP Default Action successfully ");
    return result_of(err);
}

uint32_t zr_nexa_lan_ipv4v6_set_v1(uint32_t ipv4, uint32_t ipv6)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (ipv4 > 1 || ipv6 > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (ipv4 == 1) {
        if (!client->EnableIPV4(&err)) {
            ZR_LOG_ERROR("Enable NEXA IPv4 cfg error %d", err);
            return failed_step(1, err);
        }
    } else {
        if (!client->DisableIPV4(&err)) {
            ZR_LOG_ERROR("Disable NEXA IPv4 cfg error %d", err);
            return failed_step(2, err);
        }
    }
    if (ipv6 == 1) {
        if (!client->EnableIPV6(&err)) {
            ZR_LOG_ERROR("Enable NEXA IPv6 cfg error %d", err);
            return failed_step(3, err);
        }
    } else {
        if (!client->DisableIPV6(&err)) {
            ZR_LOG_ERROR("Disable NEXA IPv6 cfg error %d", err);
            return failed_step(4, err);
        }
    }
    ZR_LOG_INFO("Set IPv4 cfg:%d, IPv6 cfg:%d, error %d", ipv4, ipv6, err);
    return result_of(err);
}

uint32_t zr_nexa_lan_ipv4v6_get_v1(uint8_t* ipv4, uint8_t* ipv6)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (ipv4 == nullptr || ipv6 == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    unsigned char v4_state = 0;
    // The tags begin with the second: callers know them so.
    if (!client->GetIPv4State(&v4_state, &err)) {
        ZR_LOG_ERROR("Get NEXA IPv4 cfg error %d", err);
        return failed_step(2, err);
    }
    *ipv4 = v4_state;
    unsigned char v6_state = 0;
    if (!client->GetIPv6State(&v6_state, &err)) {
        ZR_LOG_ERROR("Get NEXA IPv6 cfg error %d", err);
        return failed_step(3, err);
    }
    *ipv6 = v6_state;
    ZR_LOG_INFO("Get NEXA IPv4 cfg %d, IPv6 cfg %d, error %d", v4_state, v6_state, err);
    return result_of(err);
}
