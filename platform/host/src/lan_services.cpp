// LAN services: DHCP reservations, packet statistics, connected devices, L2TP tunnels per bridge.
#include <string.h>

#include "lan_services.h"

#include "session.h"

const char* const mobile_ap::kLanServicesSchema = R"(
CREATE TABLE IF NOT EXISTS dhcp_reservation (
    position INTEGER PRIMARY KEY,
    reserved_ip TEXT NOT NULL UNIQUE,
    mac TEXT NOT NULL UNIQUE,
    device_name TEXT NOT NULL,
    enabled INTEGER NOT NULL
);
CREATE TABLE IF NOT EXISTS packet_stats (
    enabled INTEGER NOT NULL,
    counted_since INTEGER NOT NULL
);
INSERT INTO packet_stats SELECT 0, 0 WHERE NOT EXISTS (SELECT 1 FROM packet_stats);
CREATE TABLE IF NOT EXISTS connected_device (
    mac TEXT PRIMARY KEY,
    device_type INTEGER NOT NULL,
    ipv4 TEXT NOT NULL,
    host_name TEXT NOT NULL,
    rx_bytes INTEGER NOT NULL DEFAULT 0,
    tx_bytes INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE IF NOT EXISTS connected_device_ipv6 (
    mac TEXT NOT NULL REFERENCES connected_device(mac) ON DELETE CASCADE,
    ipv6 TEXT NOT NULL,
    PRIMARY KEY (mac, ipv6)
);
CREATE TABLE IF NOT EXISTS l2tp (
    bridge INTEGER PRIMARY KEY REFERENCES lan_bridge(id) ON DELETE CASCADE,
    state INTEGER NOT NULL DEFAULT 0,
    mode INTEGER NOT NULL DEFAULT 1,
    mtu INTEGER NOT NULL DEFAULT 0,
    mss INTEGER NOT NULL DEFAULT 0,
    clamp_mss INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE IF NOT EXISTS l2tp_tunnel (
    bridge INTEGER NOT NULL REFERENCES lan_bridge(id) ON DELETE CASCADE,
    tunnel_id INTEGER NOT NULL,
    peer_tunnel_id INTEGER NOT NULL,
    ip_family INTEGER NOT NULL,
    encapsulation INTEGER NOT NULL,
    local_port INTEGER NOT NULL,
    peer_port INTEGER NOT NULL,
    local_ipv4 TEXT NOT NULL,
    peer_ipv4 TEXT NOT NULL,
    local_ipv6 TEXT NOT NULL,
    peer_ipv6 TEXT NOT NULL,
    mtu INTEGER NOT NULL,
    PRIMARY KEY (bridge, tunnel_id)
);
CREATE TABLE IF NOT EXISTS l2tp_session (
    bridge INTEGER NOT NULL,
    tunnel_id INTEGER NOT NULL,
    position INTEGER NOT NULL,
    local_session_id INTEGER NOT NULL,
    peer_session_id INTEGER NOT NULL,
    PRIMARY KEY (bridge, tunnel_id, position),
    FOREIGN KEY (bridge, tunnel_id) REFERENCES l2tp_tunnel(bridge, tunnel_id) ON DELETE CASCADE
);
)";

using namespace mobile_ap;

namespace {

void check_reservation(const qcmap_msgr_dhcp_reservation_v01& record)
{
    static constexpr uint8_t no_mac[6] = {};
    if (record.reserved_ip == 0 || record.enable > 1) refuse(QMI_ERR_INVALID_ARG_V01);
    if (memcmp(record.mac, no_mac, sizeof no_mac) == 0) refuse(QMI_ERR_INVALID_ARG_V01);
}

// An address or a MAC that another reservation has is refused.
void check_free(Store& db, const qcmap_msgr_dhcp_reservation_v01& record, int64_t but_position)
{
    const auto taken =
        db.one<int64_t>("SELECT position FROM dhcp_reservation WHERE (reserved_ip = ? OR mac = ?) AND position <> ?",
                        network_ipv4_text(record.reserved_ip), mac_text(record.mac), but_position);
    if (taken) refuse(QMI_ERR_ALREADY_THERE_V01);
}

int64_t position_of(Store& db, uint32_t reserved_ip)
{
    const auto position =
        db.one<int64_t>("SELECT position FROM dhcp_reservation WHERE reserved_ip = ?", network_ipv4_text(reserved_ip));
    if (!position) refuse(QMI_ERR_NO_ENTRY_V01);
    return *position;
}

void read_device_ipv6(Store& db, const std::string& mac, qcmap_connected_device* device)
{
    Query q = db.query("SELECT ipv6 FROM connected_device_ipv6 WHERE mac = ? ORDER BY rowid LIMIT ?", mac,
                       QCMAP_MAX_DEVICE_IPV6);
    while (q.next())
        ipv6_bytes(q.get<std::string>(0), device->ipv6_addr[device->ipv6_count++]);
}

void read_sessions(Store& db, int bridge, qcmap_msgr_l2tp_config_v01* tunnel)
{
    Query q = db.query(
        "SELECT local_session_id, peer_session_id FROM l2tp_session WHERE bridge = ? AND tunnel_id = ?"
        " ORDER BY position LIMIT ?",
        bridge, tunnel->tunnel_id, QCMAP_MAX_L2TP_SESSIONS);
    while (q.next())
        tunnel->session[tunnel->session_count++] = {q.get<uint32_t>(0), q.get<uint32_t>(1)};
}

}  // namespace

void mobile_ap::join_lan(Store& db, const LanDevice& device)
{
    db.run("DELETE FROM connected_device WHERE mac = ?", device.mac);
    db.run("INSERT INTO connected_device VALUES (?, ?, ?, ?, ?, ?)", device.mac, device.type, device.ipv4,
           device.host_name, device.rx_bytes, device.tx_bytes);
    for (const std::string& address : device.ipv6)
        db.run("INSERT OR IGNORE INTO connected_device_ipv6 VALUES (?, ?)", device.mac, address);
}

void mobile_ap::leave_lan(Store& db, const std::string& mac)
{
    const int left = db.run("DELETE FROM connected_device WHERE mac = ?1 OR ?1 = ''", mac);
    if (left == 0 && !mac.empty()) refuse(QMI_ERR_NO_ENTRY_V01);
}

bool QCMAP_Client::AddDHCPReservRecord(qcmap_msgr_dhcp_reservation_v01* record, qmi_error_type_v01* err)
{
    const char* const name = __func__;
    return method(session_, __func__, err, [&](Store& db) {
        check_reservation(*record);
        check_free(db, *record, -1);
        if (db.one<int>("SELECT count(*) FROM dhcp_reservation") >= QCMAP_MAX_DHCP_RESERVATIONS)
            refuse(QMI_ERR_LIMIT_V01);
        judge_reservation(db, name, ntohl(record->reserved_ip));
        db.run("INSERT INTO dhcp_reservation (reserved_ip, mac, device_name, enabled) VALUES (?, ?, ?, ?)",
               network_ipv4_text(record->reserved_ip), mac_text(record->mac),
               field_text(record->device_name, sizeof record->device_name), record->enable);
    });
}

bool QCMAP_Client::GetDHCPReservRecords(qcmap_msgr_dhcp_reservation_v01* records, unsigned int* count,
                                        qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *count = 0;
        Query q =
            db.query("SELECT reserved_ip, mac, device_name, enabled FROM dhcp_reservation ORDER BY position LIMIT ?",
                     QCMAP_MAX_DHCP_RESERVATIONS);
        while (q.next()) {
            qcmap_msgr_dhcp_reservation_v01& record = records[(*count)++];
            record = {};
            record.reserved_ip = network_ipv4_word(q.get<std::string>(0));
            mac_bytes(q.get<std::string>(1), record.mac);
            set_field_text(record.device_name, sizeof record.device_name, q.get<std::string>(2));
            record.enable = q.get<uint8_t>(3);
        }
    });
}

bool QCMAP_Client::EditDHCPReservRecord(unsigned int* ip_address, qcmap_msgr_dhcp_reservation_v01* record,
                                        qmi_error_type_v01* err)
{
    const char* const name = __func__;
    return method(session_, __func__, err, [&](Store& db) {
        const int64_t position = position_of(db, *ip_address);
        check_reservation(*record);
        check_free(db, *record, position);
        if (record->reserved_ip != *ip_address) judge_reservation(db, name, ntohl(record->reserved_ip));
        db.run("UPDATE dhcp_reservation SET reserved_ip = ?, mac = ?, device_name = ?, enabled = ? WHERE position = ?",
               network_ipv4_text(record->reserved_ip), mac_text(record->mac),
               field_text(record->device_name, sizeof record->device_name), record->enable, position);
    });
}

bool QCMAP_Client::DeleteDHCPReservRecord(unsigned int* ip_address, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run("DELETE FROM dhcp_reservation WHERE position = ?", position_of(db, *ip_address));
    });
}

bool QCMAP_Client::EnablePacketStats(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { db.run("UPDATE packet_stats SET enabled = 1"); });
}

bool QCMAP_Client::DisablePacketStats(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { db.run("UPDATE packet_stats SET enabled = 0"); });
}

bool QCMAP_Client::GetPacketStatsStatus(qcmap_msgr_packet_stats_status_enum_v01* status, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *status = db.one<int>("SELECT enabled FROM packet_stats") == 1 ? QCMAP_MSGR_PACKET_STATS_ENABLED_V01
                                                                       : QCMAP_MSGR_PACKET_STATS_DISABLED_V01;
    });
}

bool QCMAP_Client::ResetPacketStats(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run("UPDATE packet_stats SET counted_since = CAST(strftime('%s', 'now') AS INTEGER)");
        db.run("UPDATE connected_device SET rx_bytes = 0, tx_bytes = 0");
    });
}

bool QCMAP_Client::GetConnectedDevicesInfo(qcmap_connected_devices* list, unsigned int* count, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *count = 0;
        Query q = db.query(
            "SELECT mac, device_type, ipv4, host_name, rx_bytes, tx_bytes FROM connected_device ORDER BY rowid LIMIT ?",
            QCMAP_MAX_CONNECTED_DEVICES);
        while (q.next()) {
            qcmap_connected_device& device = list->device[(*count)++];
            device = {};
            mac_bytes(q.get<std::string>(0), device.mac);
            device.device_type = q.get<uint32_t>(1);
            device.ipv4_addr = network_ipv4_word(q.get<std::string>(2));
            set_field_text(device.host_name, sizeof device.host_name, q.get<std::string>(3));
            device.rx_bytes = q.get<uint64_t>(4);
            device.tx_bytes = q.get<uint64_t>(5);
            read_device_ipv6(db, q.get<std::string>(0), &device);
        }
    });
}

bool QCMAP_Client::SetUnmanagedL2TPStateEx(qcmap_set_l2tp_config* config, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run(
            "INSERT INTO l2tp (bridge, state, mode, mtu, mss, clamp_mss) VALUES (?, ?, 1, ?, ?, ?)"
            " ON CONFLICT (bridge) DO UPDATE SET state = excluded.state, mode = excluded.mode, mtu = excluded.mtu,"
            " mss = excluded.mss, clamp_mss = excluded.clamp_mss",
            db.selected_bridge(), config->state, config->mtu, config->mss, config->clamp_mss);
    });
}

bool QCMAP_Client::GetL2TPConfig(qcmap_msgr_l2tp_conf_t* config, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        const int bridge = db.selected_bridge();
        *config = {};
        config->mode = QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01;
        Query settings = db.query("SELECT state, mode, mtu, mss, clamp_mss FROM l2tp WHERE bridge = ?", bridge);
        if (settings.next()) {
            config->state = settings.get<uint32_t>(0);
            config->mode = settings.get<qcmap_msgr_l2tp_mode_enum_v01>(1);
            config->mtu = settings.get<uint32_t>(2);
            config->mss = settings.get<uint32_t>(3);
            config->clamp_mss = settings.get<uint8_t>(4);
        }
        Query q = db.query(
            "SELECT tunnel_id, peer_tunnel_id, ip_family, encapsulation, local_port, peer_port, local_ipv4, peer_ipv4,"
            " local_ipv6, peer_ipv6, mtu FROM l2tp_tunnel WHERE bridge = ? ORDER BY rowid LIMIT ?",
            bridge, QCMAP_MAX_L2TP_TUNNELS);
        while (q.next()) {
            qcmap_msgr_l2tp_config_v01& tunnel = config->tunnel[config->tunnel_count++];
            tunnel.tunnel_id = q.get<uint32_t>(0);
            tunnel.peer_tunnel_id = q.get<uint32_t>(1);
            tunnel.ip_family = q.get<uint32_t>(2);
            tunnel.encapsulation = q.get<uint32_t>(3);
            tunnel.local_port = q.get<uint16_t>(4);
            tunnel.peer_port = q.get<uint16_t>(5);
            tunnel.local_ipv4 = network_ipv4_word(q.get<std::string>(6));
            tunnel.peer_ipv4 = network_ipv4_word(q.get<std::string>(7));
            ipv6_bytes(q.get<std::string>(8), tunnel.local_ipv6);
            ipv6_bytes(q.get<std::string>(9), tunnel.peer_ipv6);
            tunnel.mtu = q.get<uint32_t>(10);
            read_sessions(db, bridge, &tunnel);
        }
    });
}

bool QCMAP_Client::SetL2TPConfig(qcmap_msgr_l2tp_mode_enum_v01 mode, qcmap_msgr_l2tp_config_v01 config,
                                 qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const int bridge = db.selected_bridge();
        if (config.session_count > QCMAP_MAX_L2TP_SESSIONS) refuse(QMI_ERR_INVALID_ARG_V01);
        db.run("DELETE FROM l2tp_tunnel WHERE bridge = ? AND tunnel_id = ?", bridge, config.tunnel_id);
        if (db.one<int>("SELECT count(*) FROM l2tp_tunnel WHERE bridge = ?", bridge) >= QCMAP_MAX_L2TP_TUNNELS)
            refuse(QMI_ERR_LIMIT_V01);
        db.run("INSERT INTO l2tp (bridge, mode) VALUES (?, ?) ON CONFLICT (bridge) DO UPDATE SET mode = excluded.mode",
               bridge, mode);
        db.run("INSERT INTO l2tp_tunnel VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", bridge, config.tunnel_id,
               config.peer_tunnel_id, config.ip_family, config.encapsulation, config.local_port, config.peer_port,
               network_ipv4_text(config.local_ipv4), network_ipv4_text(config.peer_ipv4), ipv6_text(config.local_ipv6),
               ipv6_text(config.peer_ipv6), config.mtu);
        for (uint32_t i = 0; i < config.session_count; ++i)
            db.run("INSERT INTO l2tp_session VALUES (?, ?, ?, ?, ?)", bridge, config.tunnel_id, i,
                   config.session[i].local_session_id, config.session[i].peer_session_id);
    });
}

bool QCMAP_Client::DeleteL2TPTunnelConfig(qcmap_msgr_delete_l2tp_config_v01* config, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const int deleted = db.run("DELETE FROM l2tp_tunnel WHERE bridge = ? AND tunnel_id = ?", db.selected_bridge(),
                                   config->tunnel_id);
        if (deleted == 0) refuse(QMI_ERR_NO_EFFECT_V01);
    });
}
