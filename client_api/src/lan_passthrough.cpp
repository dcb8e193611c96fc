// IP passthrough: NAT beside it, the passthrough itself, the gateway filters and the software-path addresses.
#include <zr_nexa/lan_passthrough.h>
#include <zr_nexa/mac_text.h>

#include <cstring>

#include "session.h"
#include "texts.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kLanPassthrough;

constexpr uint32_t kPassthroughNatFeature = 1;
constexpr uint32_t kFeatureWithNat = 1;
constexpr uint32_t kFeatureWithoutNat = 2;
constexpr uint32_t kFeatureWithNatOneDevice = 3;

constexpr uint8_t kModeMax = ZR_NEXA_LAN_IPPT_ETH_NIC2;

constexpr uint32_t kFilterRequest = 2;  // first header word of every request for the filters
constexpr uint32_t kPlatformNoPorts = 4;

static_assert(ZR_NEXA_LAN_IPPTGWFILTERS_MAX == QCMAP_MAX_SW_PATH_FILTERS);
static_assert(ZR_NEXA_LAN_SWPATHFILTERS_MAX == QCMAP_MAX_SW_PATH_FILTERS);
static_assert(ZR_NEXA_LAN_IPPT_NAME_SIZE == sizeof(qcmap_msgr_ip_passthrough_config_v01::host_name));

bool is_filter_port(uint16_t port)
{
    return port >= 1 && port <= ZR_NEXA_LAN_IPPTGWFILTER_PORT_MAX;
}

// The devices that a passthrough is for.
struct Device {
    uint32_t mode;  // of this interface
    uint32_t type;  // of the platform
    bool has_mac;   // it is named by its MAC address
};

constexpr Device kDevices[] = {
    {ZR_NEXA_LAN_IPPT_ETH, QCMAP_DEVICE_TYPE_ETH, true},
    {ZR_NEXA_LAN_IPPT_WLAN, QCMAP_DEVICE_TYPE_WLAN, true},
    {ZR_NEXA_LAN_IPPT_USB, QCMAP_DEVICE_TYPE_USB, false},
    {ZR_NEXA_LAN_IPPT_ETH_NIC2, QCMAP_DEVICE_TYPE_ETH_NIC2, true},
    {ZR_NEXA_LAN_IPPT_ANY_USB, QCMAP_DEVICE_TYPE_ANY_USB, false},
};

const Device* find_device(uint32_t Device::*field, uint32_t value)
{
    for (const Device& device : kDevices) {
        if (device.*field == value) return &device;
    }
    return nullptr;
}

// A refusal is logged for function.
bool get_filters(const char* function, qcmap_msgr_sw_path_filters_conf_t* filters, qmi_error_type_v01* err)
{
    *filters = {};
    filters->request = kFilterRequest;
    if (!client->GetIPPassthroughSoftwarePathFilters(filters, err)) {
        ZR_LOG_ERROR_AS(function, "Get IPPT SW Filters error %d", *err);
        return false;
    }
    filters->count = static_cast<uint8_t>(clamped(filters->count, QCMAP_MAX_SW_PATH_FILTERS));
    return true;
}

bool set_filters(const char* function, qcmap_msgr_sw_path_filters_conf_t* filters, qmi_error_type_v01* err)
{
    filters->request = kFilterRequest;
    if (client->SetIPPassthroughSoftwarePathFilters(filters, err)) return true;
    ZR_LOG_ERROR_AS(function, "Set IPPT SW Filters error %d", *err);
    return false;
}

}  // namespace

uint32_t zr_nexa_lan_ipptnat_set_v1(uint32_t mode)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qcmap_client_feature_mode_config config = {};
    config.features = kPassthroughNatFeature;
    switch (mode) {
        case ZR_NEXA_LAN_IPPTNAT_WITHOUT_NAT:
            config.feature_mode = kFeatureWithoutNat;
            break;
        case ZR_NEXA_LAN_IPPTNAT_WITH_NAT:
            config.feature_mode = kFeatureWithNat;
            break;
        case ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE:
            config.feature_mode = kFeatureWithNatOneDevice;
            break;
        default:
            return ZR_NEXA_ERR_ARGUMENT;
    }
    const uint32_t feature_mode = config.feature_mode;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SetFeatureMode(kPassthroughNatFeature, &config, &err)) {
        ZR_LOG_ERROR("Set Feature Mode error %d, features=%d feature_mode=%d", err, kPassthroughNatFeature,
                     feature_mode);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Set Feature Mode %d, error %d", feature_mode, err);
    return result_of(err);
}

uint32_t zr_nexa_lan_ipptnat_get_v1(uint8_t* mode_out)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (mode_out == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    unsigned long long features = 0;
    qcmap_client_feature_mode_config config = {};
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->GetFeatureMode(&features, &config, &err)) {
        ZR_LOG_ERROR("Get Feature Mode error %d", err);
        return failed_step(1, err);
    }
    if ((features & kPassthroughNatFeature) == 0) return ZR_NEXA_LAN_IPPTNAT_ERR_NO_FEATURE;
    switch (config.feature_mode) {
        case kFeatureWithNatOneDevice:
            *mode_out = ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE;
            break;
        case kFeatureWithNat:
            *mode_out = ZR_NEXA_LAN_IPPTNAT_WITH_NAT;
            break;
        case kFeatureWithoutNat:
            *mode_out = ZR_NEXA_LAN_IPPTNAT_WITHOUT_NAT;
            break;
        default:
            return ZR_NEXA_LAN_IPPTNAT_ERR_UNKNOWN_MODE;
    }
    ZR_LOG_INFO("Get Feature Mode %d, error %d", config.feature_mode, err);
    return result_of(err);
}

uint32_t zr_nexa_lan_ipptnatpdn_set_v1(uint32_t lan_id, int8_t pdn)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (pdn < ZR_NEXA_LAN_IPPTNAT_DEFAULT || pdn > ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE || !is_vlan_id(lan_id)) {
        return ZR_NEXA_ERR_ARGUMENT;
    }
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    // A refused bridge is not logged here, nor in the get function.
    if (!client->SelectLANBridge(static_cast<short>(lan_id), &err)) return failed_step(1, err);
    if (!client->ZR_SetIPPTNATPDN(pdn, &err)) {
        ZR_LOG_ERROR("Set IPPTNATPDN error %d, lan=%d IPPTNATPDN=%d", err, lan_id, pdn);
        return failed_step(2, err);
    }
    int kept = ZR_NEXA_LAN_IPPTNAT_DEFAULT;
    if (!client->ZR_GetIPPTNATPDN(&kept, &err)) {
        ZR_LOG_ERROR("Get IPPTNATPDN error %d, lan=%d IPPTNATPDN=%d", err, lan_id, kept);
        return failed_step(3, err);
    }
    if (kept != pdn) return ZR_NEXA_LAN_IPPTNATPDN_ERR_DIFFERS;
    ZR_LOG_INFO("Set IPPTNATPDN error %d, lan=%d IPPTNATPDN=%d", err, lan_id, pdn);
    return result_of(err);
}

uint32_t zr_nexa_lan_ipptnatpdn_get_v1(uint32_t lan_id, int8_t* pdn_out)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (pdn_out == nullptr || !is_vlan_id(lan_id)) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SelectLANBridge(static_cast<short>(lan_id), &err)) return failed_step(1, err);
    int pdn = ZR_NEXA_LAN_IPPTNAT_DEFAULT;
    if (!client->ZR_GetIPPTNATPDN(&pdn, &err)) {
        ZR_LOG_ERROR("Get IPPTNATPDN error %d, lan=%d IPPTNATPDN=%d", err, lan_id, *pdn_out);
        return failed_step(2, err);
    }
    if (pdn >= ZR_NEXA_LAN_IPPTNAT_DEFAULT && pdn <= ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE) {
        *pdn_out = static_cast<int8_t>(pdn);
    }
    ZR_LOG_INFO("Get IPPTNATPDN error %d, lan=%d IPPTNATPDN=%d", err, lan_id, *pdn_out);
    return result_of(err);
}

uint32_t zr_nexa_lan_ippt_set_v1(const zr_nexa_lan_ippt_t* rec)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (rec == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(rec->lan_id)) return ZR_NEXA_ERR_RANGE;
    if (rec->ippt_adaptive > ZR_NEXA_LAN_IPPT_ADAPTIVE_MAX) return ZR_NEXA_LAN_IPPT_ERR_ADAPTIVE;
    if (rec->ippt_mode > kModeMax) return ZR_NEXA_LAN_IPPT_ERR_MODE;
    if (rec->lan_id != 0 && rec->ippt_mode == ZR_NEXA_LAN_IPPT_WLAN) return ZR_NEXA_LAN_IPPT_ERR_WLAN_ON_VLAN;

    const FieldText host_mac(rec->host_mac);
    const FieldText host_name(rec->host_name);
    ZR_LOG_INFO("Set IP Passthrough Config (LAN_ID=%d):ippt_adaptive=%d ippt_mode=%d", rec->lan_id, rec->ippt_adaptive,
                rec->ippt_mode);
    ZR_LOG_INFO("Set IP Passthrough Config (LAN_ID=%d):host_mac=%s host_name=%s", rec->lan_id, host_mac.c_str(),
                host_name.c_str());

    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SelectLANBridge(static_cast<short>(rec->lan_id), &err)) return failed_step(1, err);

    qcmap_msgr_ip_passthrough_config_v01 config = {};
    if (rec->ippt_adaptive_enable != 0) {
        config.device_type = QCMAP_DEVICE_TYPE_WILDCARD;
        config.adaptive_flag = 1;
        config.adaptive_value = rec->ippt_adaptive;
        if (!client->SetIPPassthroughConfig(QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01, true, &config, &err)) {
            return failed_step(2, err);
        }
        return result_of(err);
    }

    if (rec->ippt_mode == ZR_NEXA_LAN_IPPT_OFF) {
        // An adaptive passthrough is ended first: disabling alone would let the next device start it again.
        config.device_type = QCMAP_DEVICE_TYPE_WILDCARD;
        config.adaptive_flag = 1;
        config.adaptive_value = 0;
        if (!client->SetIPPassthroughConfig(QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01, true, &config, &err)) {
            return failed_step(3, err);
        }
        if (!client->SetIPPassthroughConfig(QCMAP_MSGR_IP_PASSTHROUGH_MODE_DISABLED_V01, false, nullptr, &err)) {
            return failed_step(6, err);
        }
        return result_of(err);
    }

    if (rec->ippt_mode == ZR_NEXA_LAN_IPPT_USB) {
        if (rec->host_name[0] == '\0') return ZR_NEXA_OK;
        config.device_type = QCMAP_DEVICE_TYPE_USB;
        std::memcpy(config.host_name, rec->host_name, sizeof(config.host_name));
        if (!client->SetIPPassthroughConfig(QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01, true, &config, &err)) {
            return failed_step(5, err);
        }
        return result_of(err);
    }

    // The modes that are left name their device by its MAC address.
    if (rec->host_mac[0] == '\0') return ZR_NEXA_OK;
    config.device_type = find_device(&Device::mode, rec->ippt_mode)->type;
    if (!zr_nexa_is_mac_text(rec->host_mac, sizeof(rec->host_mac))) return ZR_NEXA_LAN_IPPT_ERR_HOST_MAC;
    ds_mac_addr_pton(rec->host_mac, config.mac);
    if (!client->SetIPPassthroughConfig(QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01, true, &config, &err)) {
        return failed_step(4, err);
    }
    return result_of(err);
}

uint32_t zr_nexa_lan_ippt_get_v1(zr_nexa_lan_ippt_t* rec)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (rec == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(rec->lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, rec->lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_ip_passthrough_mode_enum_v01 mode = QCMAP_MSGR_IP_PASSTHROUGH_MODE_DISABLED_V01;
    qcmap_msgr_ip_passthrough_config_v01 config = {};
    if (!client->GetIPPassthroughConfig(&mode, &config, &err)) {
        ZR_LOG_ERROR("Get IP Passthrough Config (LAN_ID=%d) error %d", rec->lan_id, err);
        return failed_step(2, err);
    }
    if (mode == QCMAP_MSGR_IP_PASSTHROUGH_MODE_DISABLED_V01) {
        rec->ippt_mode = ZR_NEXA_LAN_IPPT_OFF;
    } else if (mode == QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01) {
        // A type that has no mode here leaves the mode as it was, and the device is named as that mode names it.
        const Device* device = find_device(&Device::type, config.device_type);
        if (device != nullptr) rec->ippt_mode = static_cast<uint8_t>(device->mode);
        device = find_device(&Device::mode, rec->ippt_mode);
        if (rec->ippt_mode == ZR_NEXA_LAN_IPPT_USB) {
            std::memcpy(rec->host_name, config.host_name, sizeof(rec->host_name));
        } else if (device != nullptr && device->has_mac) {
            ds_mac_addr_ntop(config.mac, rec->host_mac);
        }
    } else {
        return ZR_NEXA_LAN_IPPT_ERR_UNKNOWN_STATE;
    }
    rec->ippt_adaptive = config.adaptive_value;
    return result_of(err);
}

uint32_t zr_nexa_lan_ipptgwfilter_add_v1(uint32_t lan_id, uint32_t protocol, uint16_t start_port, uint16_t end_port)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    if (protocol < ZR_NEXA_LAN_IPPTGWFILTER_TCP || protocol > ZR_NEXA_LAN_IPPTGWFILTER_NO_PORTS) {
        return ZR_NEXA_LAN_IPPTGWFILTER_ERR_PROTOCOL;
    }
    if (protocol != ZR_NEXA_LAN_IPPTGWFILTER_NO_PORTS) {
        if (!is_filter_port(start_port) || start_port > end_port || !is_filter_port(end_port)) {
            return ZR_NEXA_LAN_IPPTGWFILTER_ERR_PORTS;
        }
    }
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_sw_path_filters_conf_t filters;
    if (!get_filters(__func__, &filters, &err)) return failed_step(2, err);
    if (filters.count == QCMAP_MAX_SW_PATH_FILTERS) {
        ZR_LOG_ERROR("IPPT SW Filters config full, number of filters:%d", filters.count);
        return ZR_NEXA_LAN_IPPTGWFILTER_ERR_COUNT;
    }
    qcmap_sw_path_filter& added = filters.filter[filters.count++];
    added.protocol = protocol == ZR_NEXA_LAN_IPPTGWFILTER_NO_PORTS ? kPlatformNoPorts : protocol;
    added.start_port = start_port;
    added.end_port = end_port;
    if (!set_filters(__func__, &filters, &err)) return failed_step(3, err);
    return result_of(err);
}

uint32_t zr_nexa_lan_ipptgwfilter_get_v1(uint32_t lan_id, zr_nexa_lan_ipptgwfilter_list_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    *list = {};
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_sw_path_filters_conf_t filters;
    if (!get_filters(__func__, &filters, &err)) return failed_step(2, err);
    for (uint32_t i = 0; i < filters.count; ++i) {
        const qcmap_sw_path_filter& filter = filters.filter[i];
        switch (filter.protocol) {
            case ZR_NEXA_LAN_IPPTGWFILTER_TCP:
            case ZR_NEXA_LAN_IPPTGWFILTER_UDP:
                list->protocol[i] = filter.protocol;
                break;
            case kPlatformNoPorts:
                list->protocol[i] = ZR_NEXA_LAN_IPPTGWFILTER_NO_PORTS;
                break;
            default:
                continue;
        }
        list->start_port[i] = filter.start_port;
        list->end_port[i] = filter.end_port;
    }
    return result_of(err);
}

uint32_t zr_nexa_lan_ipptgwfilter_del_v1(uint32_t lan_id, uint8_t number)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    if (number < 1 || number > ZR_NEXA_LAN_IPPTGWFILTERS_MAX) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_sw_path_filters_conf_t filters;
    if (!get_filters(__func__, &filters, &err)) return failed_step(2, err);
    if (number > filters.count) {
        ZR_LOG_ERROR("IPPT SW Filters config no exist");
        return ZR_NEXA_LAN_IPPTGWFILTER_ERR_COUNT;
    }
    qcmap_msgr_sw_path_filters_conf_t kept = {};
    kept.flags = filters.flags;
    for (uint32_t i = 0; i < filters.count; ++i) {
        if (i + 1 != number) kept.filter[kept.count++] = filters.filter[i];
    }
    if (!set_filters(__func__, &kept, &err)) return failed_step(3, err);
    return result_of(err);
}

uint32_t zr_nexa_lan_swpathfilter_add_v1(uint32_t ipv4_address)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->ZR_AddIPToSWPathFilters(ipv4_address, &err)) {
        ZR_LOG_ERROR("Add SW Path Filter IP failure, ipv4_address:%d", ipv4_address);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Add SW Path Filter IP %s error %d", Ipv4Text(ipv4_address).c_str(), err);
    return result_of(err);
}

uint32_t zr_nexa_lan_swpathfilter_del_v1(uint32_t ipv4_address)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->ZR_DeleteIPFromSWPathFilters(ipv4_address, &err)) {
        ZR_LOG_ERROR("Delete SW Path Filter IP failure, ipv4_address:%d", ipv4_address);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Delete SW Path Filter IP %s error %d", Ipv4Text(ipv4_address).c_str(), err);
    return result_of(err);
}

uint32_t zr_nexa_lan_swpathfilter_get_v1(zr_nexa_lan_swpathfilter_list_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (list == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qcmap_sw_path_filters_ex_ipv4_addr_list addresses = {};
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->ZR_GetIPFromSWPathFilters(&addresses, &err)) {
        ZR_LOG_ERROR("Get SW Path Filter IP failure");
        return failed_step(1, err);
    }
    list->count = clamped(addresses.count, QCMAP_MAX_SW_PATH_FILTERS);
    for (uint32_t i = 0; i < list->count; ++i) {
        list->ipv4_address[i] = addresses.address[i];
    }
    ZR_LOG_INFO("Get SW Path Filter IP successfully");
    return result_of(err);
}
