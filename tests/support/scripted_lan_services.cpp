#include "scripted_platform.h"

using scripted::Call;

namespace {

Call& add_reservation(Call& call, const qcmap_msgr_dhcp_reservation_v01& record)
{
    return call.bytes("mac", record.mac, sizeof(record.mac))
        .bytes("reserved_ip", &record.reserved_ip, sizeof(record.reserved_ip))
        .text("device_name", record.device_name, sizeof(record.device_name))
        .arg("enable", record.enable);
}

}  // namespace

bool QCMAP_Client::AddDHCPReservRecord(qcmap_msgr_dhcp_reservation_v01* record, qmi_error_type_v01* err)
{
    Call call("AddDHCPReservRecord");
    return add_reservation(call, *record).finish(err);
}

bool QCMAP_Client::GetDHCPReservRecords(qcmap_msgr_dhcp_reservation_v01* records, unsigned int* count,
                                        qmi_error_type_v01* err)
{
    return Call("GetDHCPReservRecords")
        .out_array("records", records, QCMAP_MAX_DHCP_RESERVATIONS)
        .out("count", count)
        .finish(err);
}

bool QCMAP_Client::EditDHCPReservRecord(unsigned int* ip_address, qcmap_msgr_dhcp_reservation_v01* record,
                                        qmi_error_type_v01* err)
{
    Call call("EditDHCPReservRecord");
    call.bytes("ip_address", ip_address, sizeof(*ip_address));
    return add_reservation(call, *record).finish(err);
}

bool QCMAP_Client::DeleteDHCPReservRecord(unsigned int* ip_address, qmi_error_type_v01* err)
{
    return Call("DeleteDHCPReservRecord").bytes("ip_address", ip_address, sizeof(*ip_address)).finish(err);
}

bool QCMAP_Client::EnablePacketStats(qmi_error_type_v01* err)
{
    return Call("EnablePacketStats").finish(err);
}

bool QCMAP_Client::DisablePacketStats(qmi_error_type_v01* err)
{
    return Call("DisablePacketStats").finish(err);
}

bool QCMAP_Client::GetPacketStatsStatus(qcmap_msgr_packet_stats_status_enum_v01* status, qmi_error_type_v01* err)
{
    return Call("GetPacketStatsStatus").out("status", status).finish(err);
}

bool QCMAP_Client::ResetPacketStats(qmi_error_type_v01* err)
{
    return Call("ResetPacketStats").finish(err);
}

bool QCMAP_Client::GetConnectedDevicesInfo(qcmap_connected_devices* list, unsigned int* count, qmi_error_type_v01* err)
{
    return Call("GetConnectedDevicesInfo")
        .out_array("device", list->device, QCMAP_MAX_CONNECTED_DEVICES)
        .out("count", count)
        .finish(err);
}

bool QCMAP_Client::SetUnmanagedL2TPStateEx(qcmap_set_l2tp_config* config, qmi_error_type_v01* err)
{
    return Call("SetUnmanagedL2TPStateEx")
        .arg("state", config->state)
        .arg("mtu", config->mtu)
        .arg("mss", config->mss)
        .arg("clamp_mss", config->clamp_mss)
        .finish(err);
}

bool QCMAP_Client::GetL2TPConfig(qcmap_msgr_l2tp_conf_t* config, qmi_error_type_v01* err)
{
    return Call("GetL2TPConfig").out("config", config).finish(err);
}

bool QCMAP_Client::SetL2TPConfig(qcmap_msgr_l2tp_mode_enum_v01 mode, qcmap_msgr_l2tp_config_v01 config,
                                 qmi_error_type_v01* err)
{
    Call call("SetL2TPConfig");
    call.arg("mode", mode)
        .arg("tunnel_id", config.tunnel_id)
        .arg("peer_tunnel_id", config.peer_tunnel_id)
        .arg("ip_family", config.ip_family)
        .arg("encapsulation", config.encapsulation)
        .arg("local_port", config.local_port)
        .arg("peer_port", config.peer_port)
        .bytes("local_ipv4", &config.local_ipv4, sizeof(config.local_ipv4))
        .bytes("peer_ipv4", &config.peer_ipv4, sizeof(config.peer_ipv4))
        .bytes("local_ipv6", config.local_ipv6, sizeof(config.local_ipv6))
        .bytes("peer_ipv6", config.peer_ipv6, sizeof(config.peer_ipv6))
        .arg("mtu", config.mtu)
        .arg("session_count", config.session_count);
    for (const auto& session : config.session) {
        call.arg("local", session.local_session_id).arg("peer", session.peer_session_id);
    }
    return call.finish(err);
}

bool QCMAP_Client::DeleteL2TPTunnelConfig(qcmap_msgr_delete_l2tp_config_v01* config, qmi_error_type_v01* err)
{
    return Call("DeleteL2TPTunnelConfig").arg("tunnel_id", config->tunnel_id).finish(err);
}
