// VLANs of the LAN.
#include <zr_nexa/lan_vlan.h>

#include <iterator>

#include "session.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kLanVlan;

static_assert(ZR_NEXA_LAN_VLANS_MAX == QCMAP_MAX_VLAN_ENTRIES);

// phy_iface_type 1..4, in order.
constexpr qcmap_msgr_interface_type_enum_v01 kInterfaceTypes[] = {
    QCMAP_MSGR_INTERFACE_TYPE_ETH_V01,
    QCMAP_MSGR_INTERFACE_TYPE_ECM_V01,
    QCMAP_MSGR_INTERFACE_TYPE_RNDIS_V01,
    QCMAP_MSGR_INTERFACE_TYPE_ETH_NIC2_V01,
};

bool is_phy_iface_type(uint8_t phy_iface_type)
{
    return phy_iface_type >= 1 && phy_iface_type <= std::size(kInterfaceTypes);
}

// The phy_iface_type of a platform interface type; one without a number leaves it as it is.
void read_interface_type(qcmap_msgr_interface_type_enum_v01 type, uint8_t* phy_iface_type)
{
    for (size_t i = 0; i < std::size(kInterfaceTypes); ++i) {
        if (kInterfaceTypes[i] == type) *phy_iface_type = static_cast<uint8_t>(i + 1);
    }
}

}  // namespace

uint32_t zr_nexa_lan_vlan_add_v1(uint16_t vlan_id, uint8_t phy_iface_type, uint32_t is_accelerated)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (!is_vlan_id(vlan_id)) return ZR_NEXA_ERR_RANGE;
    if (is_accelerated > 1) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_phy_iface_type(phy_iface_type)) {
        ZR_LOG_ERROR("Invalid phy_iface_type:(%d)", phy_iface_type);
        return ZR_NEXA_LAN_VLAN_ERR_IFACE_TYPE;
    }
    qcmap_msgr_vlan_config_ex_v01 vlan = {};
    vlan.interface_type = kInterfaceTypes[phy_iface_type - 1];
    vlan.vlan_id = static_cast<int16_t>(vlan_id);
    vlan.is_accelerated = static_cast<uint8_t>(is_accelerated);
    bool accelerated = is_accelerated != 0;  // the platform may change it; nobody asks for its answer
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->CreateVLANConfig(vlan, &err, &accelerated)) {
        ZR_LOG_ERROR("Create VLAN(%d) Config error %d", vlan_id, err);
        return failed_step(1, err);
    }
    if (err == QMI_ERR_ALREADY_THERE_V01) err = QMI_ERR_NONE_V01;
    ZR_LOG_INFO("Create VLAN(%d) vlan_type=%d is_accelerated=%d error %d", vlan_id, phy_iface_type, is_accelerated,
                err);
    return err == QMI_ERR_NONE_V01 ? static_cast<uint32_t>(ZR_NEXA_OK) : failed_step(2, err);
}

uint32_t zr_nexa_lan_vlan_get_v1(zr_nexa_lan_vlan_list_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (list == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qcmap_msgr_vlan_conf_t vlans = {};  // cleared: a count may promise more entries than were filled in
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->GetVLANConfig(&vlans, &err)) {
        ZR_LOG_ERROR("Get VLAN List Config error %d", err);
        return failed_step(1, err);
    }
    if (err == QMI_ERR_EMPTY_LIST_V01) err = QMI_ERR_NONE_V01;
    const uint32_t count = clamped(vlans.count, QCMAP_MAX_VLAN_ENTRIES);
    list->count = static_cast<uint16_t>(count);
    for (uint32_t i = 0; i < count; ++i) {
        list->vlan_id[i] = static_cast<uint16_t>(vlans.vlan[i].vlan_id);
        list->is_accelerated[i] = vlans.vlan[i].is_accelerated;
        read_interface_type(vlans.vlan[i].interface_type, &list->phy_iface_type[i]);
    }
    ZR_LOG_INFO("Get VLAN List Config Len %d, error %d", count, err);
    return err == QMI_ERR_NONE_V01 ? static_cast<uint32_t>(ZR_NEXA_OK) : failed_step(2, err);
}

uint32_t zr_nexa_lan_vlan_del_v1(uint16_t vlan_id, uint8_t phy_iface_type)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (!is_vlan_id(vlan_id)) return ZR_NEXA_ERR_RANGE;
    if (!is_phy_iface_type(phy_iface_type)) {
        ZR_LOG_ERROR("Invalid phy_iface_type:(%d)", phy_iface_type);
        return ZR_NEXA_LAN_VLAN_ERR_IFACE_TYPE;
    }
    const qcmap_msgr_interface_type_enum_v01 type = kInterfaceTypes[phy_iface_type - 1];
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->DeleteVLANConfig(static_cast<short>(vlan_id), type, &err)) {
        ZR_LOG_ERROR("Delete VLAN(ID=%d type=%d) Config error %d", vlan_id, type, err);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Delete VLAN(ID=%d type=%d) Config error %d", vlan_id, type, err);
    return result_of(err);
}
