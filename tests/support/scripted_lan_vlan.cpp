#include "scripted_platform.h"

using scripted::Call;

bool QCMAP_Client::CreateVLANConfig(qcmap_msgr_vlan_config_ex_v01 vlan, qmi_error_type_v01* err, bool* is_accelerated)
{
    return Call("CreateVLANConfig")
        .arg("interface_type", vlan.interface_type)
        .arg("vlan_id", vlan.vlan_id)
        .arg("is_accelerated", vlan.is_accelerated)
        .arg("beside", *is_accelerated)
        .out("beside", is_accelerated)
        .finish(err);
}

// What is given as "vlan" are the first entries only. The list must come in cleared.
bool QCMAP_Client::GetVLANConfig(qcmap_msgr_vlan_conf_t* list, qmi_error_type_v01* err)
{
    bool cleared = list->count == 0;
    for (const qcmap_msgr_vlan_config_ex_v01& vlan : list->vlan) {
        cleared = cleared && vlan.interface_type == 0 && vlan.vlan_id == 0 && vlan.is_accelerated == 0;
    }
    if (!cleared) scripted::platform().complaints.emplace_back("GetVLANConfig: the list was not cleared");
    return Call("GetVLANConfig")
        .out("count", &list->count)
        .out_array("vlan", list->vlan, QCMAP_MAX_VLAN_ENTRIES)
        .finish(err);
}

bool QCMAP_Client::DeleteVLANConfig(short vlan_id, qcmap_msgr_interface_type_enum_v01 interface_type,
                                    qmi_error_type_v01* err)
{
    return Call("DeleteVLANConfig").arg("vlan_id", vlan_id).arg("interface_type", interface_type).finish(err);
}
