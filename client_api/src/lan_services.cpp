// LAN services: DHCP reservations, packet statistics, connected devices, L2TP tunnels.
#include <zr_nexa/lan_services.h>

#include <cstddef>
#include <cstring>

#include "session.h"
#include "texts.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kLanServices;

constexpr uint32_t kMtuMin = 576;
constexpr uint32_t kMtuMax = 9000;
constexpr uint32_t kMssMin = 536;
constexpr uint32_t kMssMax = 8960;

static_assert(sizeof(zr_nexa_lan_dhcp_reserv_record_t) == sizeof(qcmap_msgr_dhcp_reservation_v01) &&
                  offsetof(zr_nexa_lan_dhcp_reserv_record_t, device_name) ==
                      offsetof(qcmap_msgr_dhcp_reservation_v01, device_name) &&
                  offsetof(zr_nexa_lan_dhcp_reserv_record_t, enable) ==
                      offsetof(qcmap_msgr_dhcp_reservation_v01, enable),
              "the two reservations have one layout");

template <typename To, typename From>
void copy_reservation(To* to, const From& from)
{
    std::memcpy(to->mac, from.mac, sizeof(to->mac));
    to->reserved_ip = from.reserved_ip;
    std::memcpy(to->device_name, from.device_name, sizeof(to->device_name));
    to->enable = from.enable;
}

void copy_device(zr_nexa_lan_connected_device_t* to, const qcmap_connected_device& from)
{
    to->device_type = from.device_type;
    to->ipv4_addr = from.ipv4_addr;
    std::memcpy(to->mac, from.mac, sizeof(to->mac));
    std::memcpy(to->host_name, from.host_name, sizeof(to->host_name));
    std::memset(to->reserved, 0, sizeof(to->reserved));
    to->ipv6_count = clamped(from.ipv6_count, ZR_NEXA_LAN_DEVICE_IPV6_ADDRS_MAX);
    std::memcpy(to->ipv6_addr, from.ipv6_addr, sizeof(to->ipv6_addr));
    to->rx_bytes = from.rx_bytes;
    to->tx_bytes = from.tx_bytes;
}

template <typename To, typename From>
void copy_tunnel(To* to, const From& from)
{
    to->tunnel_id = from.tunnel_id;
    to->peer_tunnel_id = from.peer_tunnel_id;
    to->ip_family = from.ip_family;
    to->encapsulation = from.encapsulation;
    to->local_port = from.local_port;
    to->peer_port = from.peer_port;
    to->local_ipv4 = from.local_ipv4;
    to->peer_ipv4 = from.peer_ipv4;
    std::memcpy(to->local_ipv6, from.local_ipv6, sizeof(to->local_ipv6));
    std::memcpy(to->peer_ipv6, from.peer_ipv6, sizeof(to->peer_ipv6));
    to->mtu = from.mtu;
    to->session_count = clamped(from.session_count, ZR_NEXA_LAN_L2TP_SESSIONS_MAX);
    for (uint32_t i = 0; i < to->session_count; ++i) {
        to->session[i].local_session_id = from.session[i].local_session_id;
        to->session[i].peer_session_id = from.session[i].peer_session_id;
    }
}

bool is_mtu(uint32_t mtu)
{
    return mtu == 0 || (mtu >= kMtuMin && mtu <= kMtuMax);
}

bool is_zero(const uint8_t (&address)[16])
{
    static constexpr uint8_t zero[16] = {};
    return std::memcmp(address, zero, sizeof(zero)) == 0;
}

bool has_endpoints(const zr_nexa_lan_l2tp_tunnel_t& tunnel)
{
    if (tunnel.ip_family == ZR_NEXA_IP_V4) return tunnel.local_ipv4 != 0 && tunnel.peer_ipv4 != 0;
    return !is_zero(tunnel.local_ipv6) && !is_zero(tunnel.peer_ipv6);
}

bool has_sessions(const zr_nexa_lan_l2tp_tunnel_t& tunnel)
{
    if (tunnel.session_count == 0 || tunnel.session_count > ZR_NEXA_LAN_L2TP_SESSIONS_MAX) return false;
    for (uint32_t i = 0; i < tunnel.session_count; ++i) {
        if (tunnel.session[i].local_session_id == 0 || tunnel.session[i].peer_session_id == 0) return false;
    }
    return true;
}

uint32_t check_unmanaged(const zr_nexa_lan_unmanaged_l2tp_cfg_t& config)
{
    if (config.state > 1 || config.clamp_mss > 1) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_mtu(config.mtu)) return ZR_NEXA_LAN_L2TP_ERR_MTU;
    if (config.clamp_mss == 1 && (config.mss < kMssMin || config.mss > kMssMax)) return ZR_NEXA_LAN_L2TP_ERR_MTU;
    return ZR_NEXA_OK;
}

uint32_t check_tunnel(const zr_nexa_lan_l2tp_cfg_t& config)
{
    const zr_nexa_lan_l2tp_tunnel_t& tunnel = config.tunnel;
    if (config.mode != QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01 && config.mode != QCMAP_MSGR_L2TP_MODE_MANAGED_V01) {
        return ZR_NEXA_ERR_ARGUMENT;
    }
    if (tunnel.encapsulation != QCMAP_L2TP_UDP && tunnel.encapsulation != QCMAP_L2TP_IP) return ZR_NEXA_ERR_ARGUMENT;
    if (tunnel.tunnel_id == 0 || tunnel.peer_tunnel_id == 0) return ZR_NEXA_LAN_L2TP_ERR_TUNNEL;
    if (tunnel.ip_family != ZR_NEXA_IP_V4 && tunnel.ip_family != ZR_NEXA_IP_V6) return ZR_NEXA_LAN_L2TP_ERR_FAMILY;
    if (!has_endpoints(tunnel)) return ZR_NEXA_LAN_L2TP_ERR_ADDRESS;
    if (tunnel.encapsulation == QCMAP_L2TP_UDP && (tunnel.local_port == 0 || tunnel.peer_port == 0)) {
        return ZR_NEXA_LAN_L2TP_ERR_PORT;
    }
    if (!is_mtu(tunnel.mtu)) return ZR_NEXA_LAN_L2TP_ERR_MTU;
    if (!has_sessions(tunnel)) return ZR_NEXA_LAN_L2TP_ERR_SESSIONS;
    return ZR_NEXA_OK;
}

}  // namespace

uint32_t zr_nexa_lan_dhcp_reserv_record_add_v1(const zr_nexa_lan_dhcp_reserv_record_t* record)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (record == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qcmap_msgr_dhcp_reservation_v01 reservation = {};
    copy_reservation(&reservation, *record);
    ZR_LOG_INFO("Add a DHCP Reservation Record, MAC:%s, Reserved IP:%s, Device name:%s, enable:%d",
                MacText(reservation.mac).c_str(), Ipv4Text(reservation.reserved_ip).c_str(),
                FieldText(reservation.device_name).c_str(), reservation.enable);
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->AddDHCPReservRecord(&reservation, &err)) {
        ZR_LOG_ERROR("Failed to Add DHCP Reservation record. Error 0x%x.", err);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("DHCP Reservation Record added successfully");
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_reserv_record_get_v1(zr_nexa_lan_dhcp_reserv_list_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (list == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qcmap_msgr_dhcp_reservation_v01 reservations[QCMAP_MAX_DHCP_RESERVATIONS] = {};
    unsigned int count = 0;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->GetDHCPReservRecords(reservations, &count, &err)) {
        ZR_LOG_ERROR("Failed to Get DHCP Reservation record. Error 0x%x.", err);
        return failed_step(1, err);
    }
    list->count = clamped(count, ZR_NEXA_LAN_DHCP_RESERVATIONS_MAX);
    if (list->count == 0) ZR_LOG_INFO("No DHCP Reservation Records");
    for (uint32_t i = 0; i < list->count; ++i) {
        copy_reservation(&list->record[i], reservations[i]);
    }
    ZR_LOG_INFO("DHCP Reservation Record get successfully");
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_reserv_record_edit_v1(uint32_t ip_address, const zr_nexa_lan_dhcp_reserv_record_t* record)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (record == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    ZR_LOG_INFO("IP addr to edit:%s", Ipv4Text(ip_address).c_str());
    qcmap_msgr_dhcp_reservation_v01 reservation = {};
    copy_reservation(&reservation, *record);
    ZR_LOG_INFO("Edit a DHCP Reservation Record, MAC:%s, Reserved IP:%s, Device name:%s, enable:%d",
                MacText(reservation.mac).c_str(), Ipv4Text(reservation.reserved_ip).c_str(),
                FieldText(reservation.device_name).c_str(), reservation.enable);
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->EditDHCPReservRecord(&ip_address, &reservation, &err)) {
        ZR_LOG_ERROR("Failed to Edit DHCP Reservation record. Error 0x%x.", err);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("DHCP Reservation Record edited successfully");
    return result_of(err);
}

uint32_t zr_nexa_lan_dhcp_reserv_record_del_v1(uint32_t ip_address)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    ZR_LOG_INFO("IP addr to edit:%s", Ipv4Text(ip_address).c_str());  // a delete says "edit" too
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->DeleteDHCPReservRecord(&ip_address, &err)) {
        ZR_LOG_ERROR("Failed to Delete DHCP Reservation record. Error 0x%x.", err);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("DHCP Reservation Record deleted successfully");
    return result_of(err);
}

uint32_t zr_nexa_lan_packetstats_set_v1(uint32_t enable)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (enable > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (enable == 1) {
        if (!client->EnablePacketStats(&err)) {
            ZR_LOG_ERROR("Packet Stats Enable failed");
            return failed_step(1, err);
        }
        ZR_LOG_INFO("Packet Stats Enable successfully");
    } else {
        if (!client->DisablePacketStats(&err)) {
            ZR_LOG_ERROR("Packet Stats Disable failed");
            return failed_step(2, err);
        }
        ZR_LOG_INFO("Packet Stats Disable succeeded");
    }
    return result_of(err);
}

uint32_t zr_nexa_lan_packetstats_get_v1(uint8_t* state)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (state == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qcmap_msgr_packet_stats_status_enum_v01 status = {};
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->GetPacketStatsStatus(&status, &err)) {
        ZR_LOG_ERROR("Get Packet Stats failed");
        return failed_step(1, err);
    }
    if (status == QCMAP_MSGR_PACKET_STATS_ENABLED_V01) *state = 1;
    if (status == QCMAP_MSGR_PACKET_STATS_DISABLED_V01) *state = 0;
    ZR_LOG_INFO("Get Packet Stats succeeded");
    return result_of(err);
}

uint32_t zr_nexa_lan_packetstats_reset_v1()
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->ResetPacketStats(&err)) {
        ZR_LOG_ERROR("Packet Stats reset request failed");
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Packet Stats reset request succeeded");
    return result_of(err);
}

uint32_t zr_nexa_lan_connected_device_info_get_v1(zr_nexa_lan_connected_device_t* devices, uint32_t* count)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (devices == nullptr || count == nullptr) {
        ZR_LOG_ERROR("Error, incorrect input parameter.");
        return ZR_NEXA_ERR_ARGUMENT;
    }
    qcmap_connected_devices list = {};
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->GetConnectedDevicesInfo(&list, count, &err)) {
        ZR_LOG_ERROR("GetConnectedDevicesInfo failed(%d)", err);
        return failed_step(1, err);
    }
    *count = clamped(*count, ZR_NEXA_LAN_CONNECTED_DEVICES_MAX);
    for (uint32_t i = 0; i < *count; ++i) {
        const qcmap_connected_device& device = list.device[i];
        copy_device(&devices[i], device);
        ZR_LOG_INFO("[No %d]device type(%d), IP Addr(%s), MAC(%s)", i, device.device_type,
                    Ipv4Text(device.ipv4_addr).c_str(), MacText(device.mac).c_str());
        // The record has room for 32 bits of each count.
        ZR_LOG_INFO("[No %d]RX bytes: %lu TX bytes: %lu", i,
                    static_cast<unsigned long>(static_cast<uint32_t>(device.rx_bytes)),
                    static_cast<unsigned long>(static_cast<uint32_t>(device.tx_bytes)));
    }
    ZR_LOG_INFO("GetConnectedDevicesInfo successful");
    return result_of(err);
}

uint32_t zr_nexa_lan_unmanaged_l2tp_state_set_v1(uint32_t lan_id, const zr_nexa_lan_unmanaged_l2tp_cfg_t* config)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (config == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    if (const uint32_t bad = check_unmanaged(*config); bad != ZR_NEXA_OK) return bad;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_set_l2tp_config request = {};
    request.state = config->state;
    request.mtu = config->mtu;
    request.mss = config->mss;
    request.clamp_mss = static_cast<uint8_t>(config->clamp_mss);
    if (!client->SetUnmanagedL2TPStateEx(&request, &err)) {
        ZR_LOG_ERROR("Set L2TP Unmanaged state fails, Error: 0x%x", err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Set L2TP Unmanaged state succeeds.");
    return result_of(err);
}

uint32_t zr_nexa_lan_l2tp_get_v1(uint32_t lan_id, zr_nexa_lan_l2tp_info_t* config)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (config == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_l2tp_conf_t answer = {};
    if (!client->GetL2TPConfig(&answer, &err)) {
        ZR_LOG_ERROR("Get L2TP Config Failed, Error: 0x%x", err);
        return failed_step(2, err);
    }
    config->state = answer.state;
    config->mode = static_cast<uint32_t>(answer.mode);
    config->mtu = answer.mtu;
    config->mss = answer.mss;
    config->clamp_mss = answer.clamp_mss;
    config->tunnel_count = clamped(answer.tunnel_count, ZR_NEXA_LAN_L2TP_TUNNELS_MAX);
    for (uint32_t i = 0; i < config->tunnel_count; ++i) {
        copy_tunnel(&config->tunnel[i], answer.tunnel[i]);
    }
    ZR_LOG_INFO("Get L2TP Config succeeds.");
    return result_of(err);
}

uint32_t zr_nexa_lan_l2tp_set_v1(uint32_t lan_id, const zr_nexa_lan_l2tp_cfg_t* config)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (config == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    if (const uint32_t bad = check_tunnel(*config); bad != ZR_NEXA_OK) return bad;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_l2tp_config_v01 request = {};
    copy_tunnel(&request, config->tunnel);
    if (!client->SetL2TPConfig(static_cast<qcmap_msgr_l2tp_mode_enum_v01>(config->mode), request, &err)) {
        ZR_LOG_ERROR("Set L2TP Config error %d", err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Set L2TP Config succeeds.");
    return result_of(err);
}

uint32_t zr_nexa_lan_l2tp_delete_v1(uint32_t lan_id, uint32_t tunnel_id)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);
    qcmap_msgr_delete_l2tp_config_v01 request = {};
    request.tunnel_id = tunnel_id;
    if (!client->DeleteL2TPTunnelConfig(&request, &err)) {
        if (err == QMI_ERR_NO_EFFECT_V01) ZR_LOG_ERROR("Tunnel config is not found to delete.");
        ZR_LOG_ERROR("Delete L2TP Config fails, Error: 0x%x", err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Delete L2TP Config succeeds.");
    return result_of(err);
}
