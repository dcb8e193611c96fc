// The firewall of each WWAN profile with its entries, and hardware MAC filtering. A profile without a row has its
// firewall off, and a deleted profile takes its rows along.
#include <stdlib.h>
#include <string.h>

#include "session.h"

// A number of fields or transport_fields says which columns count, as the service's field masks do: 1 source, 2
// destination, 4 protocol, 8 TOS or traffic class; 1 source port, ICMP type or SPI, 2 destination port or ICMP code.
// A mask is a dotted word for IPv4 and a prefix length for IPv6.
const char* const mobile_ap::kFirewallSchema = R"(
CREATE TABLE IF NOT EXISTS firewall (
    profile INTEGER PRIMARY KEY REFERENCES wwan_profile(handle) ON DELETE CASCADE,
    enabled INTEGER NOT NULL,
    packets_allowed INTEGER NOT NULL
);
CREATE TABLE IF NOT EXISTS firewall_entry (
    handle INTEGER PRIMARY KEY AUTOINCREMENT,
    profile INTEGER NOT NULL REFERENCES wwan_profile(handle) ON DELETE CASCADE,
    direction INTEGER NOT NULL,
    ip_version INTEGER NOT NULL,
    fields INTEGER NOT NULL,
    src_addr TEXT NOT NULL,
    src_mask TEXT NOT NULL,
    dst_addr TEXT NOT NULL,
    dst_mask TEXT NOT NULL,
    tos INTEGER NOT NULL,
    tos_mask INTEGER NOT NULL,
    nat_flag INTEGER NOT NULL,
    protocol INTEGER NOT NULL,
    transport_fields INTEGER NOT NULL,
    src_port INTEGER NOT NULL,
    src_port_range INTEGER NOT NULL,
    dst_port INTEGER NOT NULL,
    dst_port_range INTEGER NOT NULL,
    icmp_type INTEGER NOT NULL,
    icmp_code INTEGER NOT NULL,
    esp_spi INTEGER NOT NULL
);
CREATE TABLE IF NOT EXISTS hw_mac_filter (state INTEGER NOT NULL);
INSERT INTO hw_mac_filter SELECT 0 WHERE NOT EXISTS (SELECT 1 FROM hw_mac_filter);
CREATE TABLE IF NOT EXISTS hw_mac_filter_station (
    position INTEGER PRIMARY KEY,
    mac TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS hw_mac_filter_interface (
    position INTEGER PRIMARY KEY,
    word_1 INTEGER NOT NULL,
    word_2 INTEGER NOT NULL,
    word_3 INTEGER NOT NULL,
    word_4 INTEGER NOT NULL,
    word_5 INTEGER NOT NULL
);
)";

using namespace mobile_ap;

namespace {

// What the two families' headers have in common, as it is stored.
struct Header {
    std::string src_addr;
    std::string src_mask;
    std::string dst_addr;
    std::string dst_mask;
    uint8_t tos;
    uint8_t tos_mask;
    uint8_t nat_flag;
};

Header stored_header(const qcmap_firewall_filter& filter)
{
    if (filter.ip_version == 4) {
        const qcmap_ipv4_header_filter& ipv4 = filter.ipv4;
        return {ipv4_text(ipv4.src_addr),
                ipv4_text(ipv4.src_mask),
                ipv4_text(ipv4.dst_addr),
                ipv4_text(ipv4.dst_mask),
                ipv4.tos,
                ipv4.tos_mask,
                0};
    }
    const qcmap_ipv6_header_filter& ipv6 = filter.ipv6;
    return {ipv6_text(ipv6.src_addr),
            std::to_string(ipv6.src_prefix_len),
            ipv6_text(ipv6.dst_addr),
            std::to_string(ipv6.dst_prefix_len),
            ipv6.traffic_class,
            ipv6.traffic_class_mask,
            ipv6.nat_flag};
}

// Fills the header of a zeroed filter whose version is known.
void restore_header(const Header& header, qcmap_firewall_filter* filter)
{
    if (filter->ip_version == 4) {
        filter->ipv4 = {ipv4_word(header.src_addr),
                        ipv4_word(header.src_mask),
                        ipv4_word(header.dst_addr),
                        ipv4_word(header.dst_mask),
                        header.tos,
                        header.tos_mask};
        return;
    }
    qcmap_ipv6_header_filter& ipv6 = filter->ipv6;
    ipv6_bytes(header.src_addr, ipv6.src_addr);
    ipv6.src_prefix_len = static_cast<uint8_t>(strtoul(header.src_mask.c_str(), nullptr, 10));
    ipv6_bytes(header.dst_addr, ipv6.dst_addr);
    ipv6.dst_prefix_len = static_cast<uint8_t>(strtoul(header.dst_mask.c_str(), nullptr, 10));
    ipv6.nat_flag = header.nat_flag;
    ipv6.traffic_class = header.tos;
    ipv6.traffic_class_mask = header.tos_mask;
}

void check_family(uint32_t ip_family)
{
    if (ip_family != 0 && ip_family != 4 && ip_family != 6) refuse(QMI_ERR_INVALID_ARG_V01);
}

}  // namespace

bool QCMAP_Client::AddFireWallEntry(qcmap_msgr_firewall_conf_t* conf, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const qcmap_firewall_filter& filter = conf->filter;
        const qcmap_transport_filter& transport = filter.transport;
        if (filter.ip_version != 4 && filter.ip_version != 6) refuse(QMI_ERR_INVALID_ARG_V01);
        if (conf->direction > 2) refuse(QMI_ERR_INVALID_ARG_V01);
        const uint32_t profile = db.selected_profile();
        const auto entries = db.one<int>("SELECT count(*) FROM firewall_entry WHERE profile = ?", profile);
        if (entries >= QCMAP_MAX_FIREWALL_ENTRIES) refuse(QMI_ERR_LIMIT_V01);
        const Header header = stored_header(filter);
        db.run(
            "INSERT INTO firewall_entry (profile, direction, ip_version, fields, src_addr, src_mask, dst_addr,"
            " dst_mask, tos, tos_mask, nat_flag, protocol, transport_fields, src_port, src_port_range, dst_port,"
            " dst_port_range, icmp_type, icmp_code, esp_spi) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
            "?, ?, ?, ?)",
            profile, conf->direction, filter.ip_version, filter.ip_field_mask, header.src_addr, header.src_mask,
            header.dst_addr, header.dst_mask, header.tos, header.tos_mask, header.nat_flag, filter.next_header,
            transport.field_mask, transport.src_port, transport.src_port_range, transport.dst_port,
            transport.dst_port_range, transport.icmp_type, transport.icmp_code, transport.esp_spi);
    });
}

bool QCMAP_Client::GetFireWallHandlesList(qcmap_msgr_get_firewall_handle_list_conf_t* handles, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        check_family(handles->ip_family);
        Query q = db.query(
            "SELECT handle FROM firewall_entry WHERE profile = ? AND ? IN (0, ip_version) ORDER BY handle LIMIT ?",
            db.selected_profile(), handles->ip_family, QCMAP_MAX_FIREWALL_ENTRIES);
        handles->count = 0;
        while (q.next()) {
            handles->handle[handles->count++] = q.get<uint32_t>(0);
        }
    });
}

bool QCMAP_Client::GetFireWallEntry(qcmap_msgr_firewall_entry_conf_t* conf, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        check_family(conf->ip_family);
        Query q = db.query(
            "SELECT direction, ip_version, fields, src_addr, src_mask, dst_addr, dst_mask, tos, tos_mask, nat_flag,"
            " protocol, transport_fields, src_port, src_port_range, dst_port, dst_port_range, icmp_type, icmp_code,"
            " esp_spi FROM firewall_entry WHERE handle = ? AND profile = ? AND ? IN (0, ip_version)",
            conf->handle, db.selected_profile(), conf->ip_family);
        if (!q.next()) refuse(QMI_ERR_NO_ENTRY_V01);
        qcmap_firewall_filter& filter = conf->filter;
        memset(&filter, 0, sizeof filter);
        conf->direction = q.get<uint32_t>(0);
        filter.ip_version = q.get<uint32_t>(1);
        filter.ip_field_mask = q.get<uint32_t>(2);
        restore_header({q.get<std::string>(3), q.get<std::string>(4), q.get<std::string>(5), q.get<std::string>(6),
                        q.get<uint8_t>(7), q.get<uint8_t>(8), q.get<uint8_t>(9)},
                       &filter);
        filter.next_header = q.get<uint8_t>(10);
        filter.transport = {q.get<uint32_t>(11), q.get<uint16_t>(12), q.get<uint16_t>(13), q.get<uint16_t>(14),
                            q.get<uint16_t>(15), q.get<uint8_t>(16),  q.get<uint8_t>(17),  q.get<uint32_t>(18)};
    });
}

bool QCMAP_Client::DeleteFireWallEntry(int handle, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const int deleted =
            db.run("DELETE FROM firewall_entry WHERE handle = ? AND profile = ?", handle, db.selected_profile());
        if (deleted == 0) refuse(QMI_ERR_NO_ENTRY_V01);
    });
}

bool QCMAP_Client::SetFirewall(unsigned int enable_firewall, unsigned int pkts_allowed, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (enable_firewall > 1 || (enable_firewall == 1 && pkts_allowed > 1)) refuse(QMI_ERR_INVALID_ARG_V01);
        const uint32_t profile = db.selected_profile();
        db.run("INSERT OR IGNORE INTO firewall (profile, enabled, packets_allowed) VALUES (?, 0, 0)", profile);
        db.run("UPDATE firewall SET enabled = ? WHERE profile = ?", enable_firewall, profile);
        // Switched off with a policy that is none: the one there is stays.
        if (pkts_allowed <= 1) {
            db.run("UPDATE firewall SET packets_allowed = ? WHERE profile = ?", pkts_allowed, profile);
        }
    });
}

bool QCMAP_Client::GetFirewall(unsigned char* enable_firewall, unsigned char* pkts_allowed, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        Query q = db.query("SELECT enabled, packets_allowed FROM firewall WHERE profile = ?", db.selected_profile());
        const bool said = q.next();
        *enable_firewall = said ? q.get<unsigned char>(0) : 0;
        *pkts_allowed = said ? q.get<unsigned char>(1) : 0;
    });
}

bool QCMAP_Client::SetHWMACFilteringState(qcmap_msgr_config_state_enum_v01 state, qcmap_hw_filter_config config,
                                          qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (state < QCMAP_MSGR_CONFIG_STATE_OFF_V01 || state > QCMAP_MSGR_CONFIG_STATE_LIST_V01) {
            refuse(QMI_ERR_INVALID_ARG_V01);
        }
        if (config.mac_count > QCMAP_MAX_HW_FILTER_MACS || config.iface_count > QCMAP_MAX_HW_FILTER_IFACES) {
            refuse(QMI_ERR_INVALID_ARG_V01);
        }
        db.run("UPDATE hw_mac_filter SET state = ?", state);
        db.run("DELETE FROM hw_mac_filter_station");
        for (uint32_t i = 0; i < config.mac_count; ++i) {
            db.run("INSERT INTO hw_mac_filter_station VALUES (?, ?)", i, mac_text(config.mac[i]));
        }
        db.run("DELETE FROM hw_mac_filter_interface");
        for (uint32_t i = 0; i < config.iface_count; ++i) {
            const uint32_t* const word = config.iface[i];
            db.run("INSERT INTO hw_mac_filter_interface VALUES (?, ?, ?, ?, ?, ?)", i, word[0], word[1], word[2],
                   word[3], word[4]);
        }
    });
}

bool QCMAP_Client::GetHWMACFilteringState(qcmap_msgr_config_state_enum_v01* state, qcmap_hw_filter_config* config,
                                          qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        const auto stored = db.one<qcmap_msgr_config_state_enum_v01>("SELECT state FROM hw_mac_filter");
        *state = stored.value_or(QCMAP_MSGR_CONFIG_STATE_OFF_V01);
        memset(config, 0, sizeof *config);
        Query station =
            db.query("SELECT mac FROM hw_mac_filter_station ORDER BY position LIMIT ?", QCMAP_MAX_HW_FILTER_MACS);
        while (station.next()) {
            mac_bytes(station.get<std::string>(0), config->mac[config->mac_count++]);
        }
        Query iface = db.query(
            "SELECT word_1, word_2, word_3, word_4, word_5 FROM hw_mac_filter_interface ORDER BY position LIMIT ?",
            QCMAP_MAX_HW_FILTER_IFACES);
        while (iface.next()) {
            for (int word = 0; word < QCMAP_HW_FILTER_IFACE_WORDS; ++word) {
                config->iface[config->iface_count][word] = iface.get<uint32_t>(word);
            }
            ++config->iface_count;
        }
    });
}
