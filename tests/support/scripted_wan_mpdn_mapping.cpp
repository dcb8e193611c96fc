#include <algorithm>

#include "scripted_platform.h"

using scripted::Call;
using scripted::platform;

bool QCMAP_Client::AddPDNToVLANMapping(short vlan_id, unsigned int profile_handle, qmi_error_type_v01* err)
{
    return Call("AddPDNToVLANMapping").arg("vlan_id", vlan_id).arg("profile_handle", profile_handle).finish(err);
}

bool QCMAP_Client::DeletePDNToVLANMapping(short vlan_id, unsigned int profile_handle, qmi_error_type_v01* err)
{
    return Call("DeletePDNToVLANMapping").arg("vlan_id", vlan_id).arg("profile_handle", profile_handle).finish(err);
}

bool QCMAP_Client::GetPDNtoVLANMappingsEx(qcmap_msgr_pdn_to_vlan_mapping_ex_v01* mappings, int* count,
                                          qmi_error_type_v01* err)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(mappings);
    if (*count != 0 || std::any_of(bytes, bytes + sizeof(*mappings), [](unsigned char byte) { return byte != 0; })) {
        platform().complaints.emplace_back("GetPDNtoVLANMappingsEx: count or list was not cleared");
    }
    return Call("GetPDNtoVLANMappingsEx")
        .out_array("mapping", mappings->mapping, QCMAP_MAX_WWAN_PROFILES)
        .out("count", count)
        .finish(err);
}
