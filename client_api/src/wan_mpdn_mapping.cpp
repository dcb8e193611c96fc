// Multi-PDN mapping.
#include <zr_nexa/wan_mpdn_mapping.h>

#include <cstring>

#include "session.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kWanMpdnMapping;

static_assert(ZR_NEXA_WAN_MPDNMAPPINGS_MAX == QCMAP_MAX_WWAN_PROFILES * QCMAP_MAX_VLANS_PER_PDN);

bool is_clear(const qcmap_pdn_to_vlan_mapping& mapping)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&mapping);
    return bytes[0] == 0 && std::memcmp(bytes, bytes + 1, sizeof(mapping) - 1) == 0;
}

// The platform's list, about 400 KiB, cleared. It begins as zero pages, so the first call has nothing to clear, and a
// later one writes only to what an earlier one left: pages that the platform's mappings do not fill are never touched.
qcmap_msgr_pdn_to_vlan_mapping_ex_v01* cleared_mappings()
{
    static qcmap_msgr_pdn_to_vlan_mapping_ex_v01 mappings;
    static bool used;
    if (used) {
        for (qcmap_pdn_to_vlan_mapping& mapping : mappings.mapping) {
            if (!is_clear(mapping)) std::memset(&mapping, 0, sizeof(mapping));
        }
    }
    used = true;
    return &mappings;
}

}  // namespace

uint32_t zr_nexa_wan_mpdnmapping_add_v1(uint32_t profile_handle, uint16_t vlan_id)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (profile_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_vlan_id(vlan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, profile_handle, &err)) return failed_step(1, err);
    if (!select_bridge(__func__, vlan_id, &err)) return failed_step(2, err);
    if (!client->AddPDNToVLANMapping(static_cast<short>(vlan_id), profile_handle, &err)) {
        ZR_LOG_ERROR("Add PDN %d To VLAN %d Mapping error %d", profile_handle, vlan_id, err);
        return failed_step(3, err);
    }
    ZR_LOG_INFO("Add PDN %d To VLAN %d Mapping success", profile_handle, vlan_id);
    return result_of(err);
}

uint32_t zr_nexa_wan_mpdnmapping_get_v1(zr_nexa_wan_mpdnmapping_list_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (list == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_msgr_pdn_to_vlan_mapping_ex_v01* const mappings = cleared_mappings();
    int mapping_count = 0;
    if (!client->GetPDNtoVLANMappingsEx(mappings, &mapping_count, &err)) {
        ZR_LOG_ERROR("Get PDN to VLAN Mappings List error %d", err);
        return failed_step(1, err);
    }
    uint32_t index = 0;
    const uint32_t mapping_total = clamped(mapping_count, QCMAP_MAX_WWAN_PROFILES);
    for (uint32_t i = 0; i < mapping_total; ++i) {
        const qcmap_pdn_to_vlan_mapping& mapping = mappings->mapping[i];
        const uint32_t vlan_total = clamped(mapping.vlan_count, QCMAP_MAX_VLANS_PER_PDN);
        for (uint32_t j = 0; j < vlan_total; ++j) {
            list->profile_handle[index] = mapping.profile_handle;
            list->vlan_id[index] = static_cast<uint16_t>(mapping.vlan_id[j]);
            ++index;
        }
    }
    list->count = index;
    return result_of(err);
}

uint32_t zr_nexa_wan_mpdnmapping_del_v1(uint32_t profile_handle, uint16_t vlan_id)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (profile_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_vlan_id(vlan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, profile_handle, &err)) return failed_step(1, err);
    if (!select_bridge(__func__, vlan_id, &err)) return failed_step(2, err);
    if (!client->DeletePDNToVLANMapping(static_cast<short>(vlan_id), profile_handle, &err)) {
        ZR_LOG_ERROR("Delete PDN %d To %d VLAN Mapping error %d", profile_handle, vlan_id, err);
        return failed_step(3, err);
    }
    ZR_LOG_INFO("Delete PDN %d To %d VLAN Mapping success", profile_handle, vlan_id);
    return result_of(err);
}
