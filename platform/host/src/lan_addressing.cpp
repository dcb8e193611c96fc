// LAN bridges and their DHCP servers, the gateway URL, and the IPv4 and IPv6 switches.
#include "lan_addressing.h"

#include <string.h>

#include "session.h"

const char* const mobile_ap::kLanAddressingSchema = R"(
CREATE TABLE IF NOT EXISTS lan_bridge (
    id INTEGER PRIMARY KEY,
    gateway_ip TEXT NOT NULL,
    netmask TEXT NOT NULL DEFAULT '255.255.255.0',
    dhcp_enabled INTEGER NOT NULL,
    dhcp_start_ip TEXT NOT NULL,
    dhcp_end_ip TEXT NOT NULL,
    lease_time INTEGER NOT NULL DEFAULT 43200,
    mtu INTEGER NOT NULL DEFAULT 1500,
    dns_mode INTEGER NOT NULL DEFAULT 1,
    primary_dns TEXT NOT NULL DEFAULT '0.0.0.0',
    secondary_dns TEXT NOT NULL DEFAULT '0.0.0.0',
    activated INTEGER NOT NULL DEFAULT 1
);
INSERT OR IGNORE INTO lan_bridge (id, gateway_ip, dhcp_enabled, dhcp_start_ip, dhcp_end_ip)
    VALUES (0, '192.168.225.1', 1, '192.168.225.20', '192.168.225.60');
CREATE TABLE IF NOT EXISTS lan_service (
    gateway_url TEXT NOT NULL,
    default_dhcp_action INTEGER NOT NULL,
    ipv4_enabled INTEGER NOT NULL,
    ipv6_enabled INTEGER NOT NULL
);
INSERT INTO lan_service SELECT 'mobileap.home', 1, 1, 1 WHERE NOT EXISTS (SELECT 1 FROM lan_service);
)";

using namespace mobile_ap;

namespace {

constexpr unsigned int kMaxGatewayUrlLen = 127;

// 192.168.226.x for the first VLANs, then a net of 10.x for each: no two bridges ever meet.
uint32_t bridge_net(int vlan_id)
{
    const uint32_t id = static_cast<uint32_t>(vlan_id);
    return id <= 30 ? 0xc0a80000u + ((225u + id) << 8) : 0x0a000000u + (id << 8);
}

}  // namespace

void mobile_ap::add_bridge(Store& db, int vlan_id)
{
    const uint32_t net = bridge_net(vlan_id);
    const int added = db.run(
        "INSERT OR IGNORE INTO lan_bridge (id, gateway_ip, dhcp_enabled, dhcp_start_ip, dhcp_end_ip)"
        " VALUES (?, ?, (SELECT default_dhcp_action = 1 FROM lan_service), ?, ?)",
        vlan_id, ipv4_text(net + 1), ipv4_text(net + 20), ipv4_text(net + 60));
    if (added == 0) refuse(QMI_ERR_ALREADY_THERE_V01);
}

void mobile_ap::remove_bridge(Store& db, int vlan_id)
{
    if (db.run("DELETE FROM lan_bridge WHERE id = ? AND id <> 0", vlan_id) == 0) refuse(QMI_ERR_NO_ENTRY_V01);
}

bool QCMAP_Client::SetGatewayUrl(unsigned char* url, unsigned int len, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (len == 0 || len > kMaxGatewayUrlLen) refuse(QMI_ERR_INVALID_ARG_V01);
        db.run("UPDATE lan_service SET gateway_url = ?", std::string(url, url + len));
    });
}

bool QCMAP_Client::GetGatewayUrl(unsigned char* url, unsigned int* len, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        // The caller's buffer holds the longest URL and its end, whatever a hand wrote into the state.
        const std::string text =
            db.one<std::string>("SELECT gateway_url FROM lan_service").value_or("").substr(0, kMaxGatewayUrlLen);
        memcpy(url, text.c_str(), text.size() + 1);
        *len = static_cast<unsigned int>(text.size());
    });
}

bool QCMAP_Client::SelectLANBridge(short lan_id, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { db.select_bridge(lan_id); });
}

bool QCMAP_Client::GetLANConfig(qcmap_msgr_lan_config_v01* lan, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        Query q = db.query(
            "SELECT gateway_ip, netmask, dhcp_enabled, dhcp_start_ip, dhcp_end_ip, lease_time, dns_mode, primary_dns,"
            " secondary_dns, mtu FROM lan_bridge WHERE id = ?",
            db.selected_bridge());
        q.next();
        lan->gateway_ip = ipv4_word(q.get<std::string>(0));
        lan->netmask = ipv4_word(q.get<std::string>(1));
        lan->enable_dhcp = q.get<uint8_t>(2);
        lan->dhcp_start_ip = ipv4_word(q.get<std::string>(3));
        lan->dhcp_end_ip = ipv4_word(q.get<std::string>(4));
        lan->lease_time = q.get<uint32_t>(5);
        lan->dns_mode = q.get<uint32_t>(6);
        lan->primary_dns = ipv4_word(q.get<std::string>(7));
        lan->secondary_dns = ipv4_word(q.get<std::string>(8));
        lan->mtu = q.get<uint32_t>(9);
    });
}

bool QCMAP_Client::SetLANConfig(qcmap_msgr_lan_config_v01 lan, qmi_error_type_v01* err)
{
    const char* const name = __func__;
    return method(session_, __func__, err, [&](Store& db) {
        const int bridge = db.selected_bridge();
        judge_lan(db, name, bridge, lan);
        db.run(
            "UPDATE lan_bridge SET gateway_ip = ?, netmask = ?, dhcp_enabled = ?, dhcp_start_ip = ?, dhcp_end_ip = ?,"
            " lease_time = ?, dns_mode = ?, primary_dns = ?, secondary_dns = ?, mtu = ?, activated = 0 WHERE id = ?",
            ipv4_text(lan.gateway_ip), ipv4_text(lan.netmask), lan.enable_dhcp, ipv4_text(lan.dhcp_start_ip),
            ipv4_text(lan.dhcp_end_ip), lan.lease_time, lan.dns_mode, ipv4_text(lan.primary_dns),
            ipv4_text(lan.secondary_dns), lan.mtu, bridge);
    });
}

bool QCMAP_Client::ActivateLAN(qmi_error_type_v01* err)
{
    return method(session_, __func__, err,
                  [&](Store& db) { db.run("UPDATE lan_bridge SET activated = 1 WHERE id = ?", db.selected_bridge()); });
}

bool QCMAP_Client::ZR_SetDefaultEnableDHCP(qcmap_msgr_config_state_enum_v01 state, qmi_error_type_v01* err)
{
    return method(session_, __func__, err,
                  [&](Store& db) { db.run("UPDATE lan_service SET default_dhcp_action = ?", state); });
}

bool QCMAP_Client::ZR_GetDefaultEnableDHCP(qcmap_msgr_config_state_enum_v01* state, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *state = db.one<qcmap_msgr_config_state_enum_v01>("SELECT default_dhcp_action FROM lan_service")
                     .value_or(QCMAP_MSGR_CONFIG_STATE_OFF_V01);
    });
}

bool QCMAP_Client::EnableIPV4(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { db.run("UPDATE lan_service SET ipv4_enabled = 1"); });
}

bool QCMAP_Client::DisableIPV4(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { db.run("UPDATE lan_service SET ipv4_enabled = 0"); });
}

bool QCMAP_Client::EnableIPV6(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { db.run("UPDATE lan_service SET ipv6_enabled = 1"); });
}

bool QCMAP_Client::DisableIPV6(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { db.run("UPDATE lan_service SET ipv6_enabled = 0"); });
}

bool QCMAP_Client::GetIPv4State(unsigned char* state, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *state = db.one<unsigned char>("SELECT ipv4_enabled FROM lan_service").value_or(0);
    });
}

bool QCMAP_Client::GetIPv6State(unsigned char* state, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *state = db.one<unsigned char>("SELECT ipv6_enabled FROM lan_service").value_or(0);
    });
}
