#include "scripted_platform.h"

using scripted::Call;

bool QCMAP_Client::SetNatType(qcmap_msgr_nat_enum_v01 nat_type, qmi_error_type_v01* err)
{
    return Call("SetNatType").arg(nat_type).finish(err);
}

bool QCMAP_Client::GetNatType(qcmap_msgr_nat_enum_v01* nat_type, qmi_error_type_v01* err)
{
    return Call("GetNatType").out("nat_type", nat_type).finish(err);
}

bool QCMAP_Client::AddDMZ(unsigned int ip, qmi_error_type_v01* err)
{
    return Call("AddDMZ").arg(ip).finish(err);
}

bool QCMAP_Client::DeleteDMZ(qmi_error_type_v01* err)
{
    return Call("DeleteDMZ").finish(err);
}

bool QCMAP_Client::GetDMZ(unsigned int* ip, qmi_error_type_v01* err)
{
    return Call("GetDMZ").out("ip", ip).finish(err);
}

bool QCMAP_Client::AddStaticNatEntry(qcmap_msgr_snat_entry_config_v01* entry, qmi_error_type_v01* err)
{
    return Call("AddStaticNatEntry")
        .arg("private_ip", entry->private_ip)
        .arg("private_port", entry->private_port)
        .arg("global_port", entry->global_port)
        .arg("protocol", entry->protocol)
        .finish(err);
}

bool QCMAP_Client::DeleteStaticNatEntry(qcmap_msgr_snat_entry_config_v01* entry, qmi_error_type_v01* err)
{
    return Call("DeleteStaticNatEntry")
        .arg("private_ip", entry->private_ip)
        .arg("private_port", entry->private_port)
        .arg("global_port", entry->global_port)
        .arg("protocol", entry->protocol)
        .finish(err);
}

// The records must come in zeroed.
bool QCMAP_Client::GetStaticNatConfig(qcmap_msgr_snat_entry_config_v01* entries, int* count, qmi_error_type_v01* err)
{
    for (int i = 0; i < QCMAP_MAX_SNAT_ENTRIES; ++i) {
        const auto& entry = entries[i];
        if (entry.private_ip != 0 || entry.private_port != 0 || entry.global_port != 0 || entry.protocol != 0) {
            scripted::platform().complaints.push_back("GetStaticNatConfig: a record is not zeroed");
        }
    }
    return Call("GetStaticNatConfig")
        .out_array("entries", entries, QCMAP_MAX_SNAT_ENTRIES)
        .out("count", count)
        .finish(err);
}

bool QCMAP_Client::ZR_SetRoutingBH(unsigned int routing_bh, qmi_error_type_v01* err)
{
    return Call("ZR_SetRoutingBH").arg(routing_bh).finish(err);
}

bool QCMAP_Client::ZR_GetRoutingBH(unsigned int* routing_bh, qmi_error_type_v01* err)
{
    return Call("ZR_GetRoutingBH").out("routing_bh", routing_bh).finish(err);
}
