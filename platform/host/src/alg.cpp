// Application-level gateways, and the SIP servers of each bridge: the configured one and those the network assigns.
#include "alg.h"

#include "session.h"

const char* const mobile_ap::kAlgSchema = R"(
CREATE TABLE IF NOT EXISTS alg (
    type INTEGER PRIMARY KEY,
    enabled INTEGER NOT NULL
);
INSERT OR IGNORE INTO alg (type, enabled) VALUES (1, 0), (2, 0);
CREATE TABLE IF NOT EXISTS sip_server_configured (
    bridge INTEGER PRIMARY KEY REFERENCES lan_bridge(id) ON DELETE CASCADE,
    type INTEGER NOT NULL,
    address TEXT NOT NULL,
    fqdn TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS sip_server_network (
    position INTEGER PRIMARY KEY,
    bridge INTEGER NOT NULL REFERENCES lan_bridge(id) ON DELETE CASCADE,
    family INTEGER NOT NULL,
    type INTEGER NOT NULL,
    address TEXT NOT NULL,
    fqdn TEXT NOT NULL
);
)";

using namespace mobile_ap;

namespace {

constexpr uint64_t kAllAlgTypes = 3;

void switch_algs(Store& db, uint64_t alg_types, bool enabled)
{
    if (alg_types == 0 || alg_types > kAllAlgTypes) refuse(QMI_ERR_INVALID_ARG_V01);
    db.run("UPDATE alg SET enabled = ? WHERE type & ?", enabled, alg_types);
}

qcmap_msgr_sip_server_info_v01 ipv4_server(const Query& q)
{
    qcmap_msgr_sip_server_info_v01 server = {};
    server.pcscf_info_type = q.get<uint32_t>(0);
    server.ipv4_addr = ipv4_word(q.get<std::string>(1));
    set_field_text(server.fqdn, sizeof server.fqdn, q.get<std::string>(2));
    return server;
}

qcmap_msgr_ipv6_sip_server_info_v01 ipv6_server(const Query& q)
{
    qcmap_msgr_ipv6_sip_server_info_v01 server = {};
    server.pcscf_info_type = q.get<uint32_t>(0);
    ipv6_bytes(q.get<std::string>(1), server.ipv6_addr);
    set_field_text(server.fqdn, sizeof server.fqdn, q.get<std::string>(2));
    return server;
}

Query network_servers(Store& db, uint32_t family)
{
    return db.query(
        "SELECT type, address, fqdn FROM sip_server_network WHERE bridge = ? AND family = ? ORDER BY position LIMIT ?",
        db.selected_bridge(), family, QCMAP_MAX_SIP_SERVERS);
}

}  // namespace

void mobile_ap::add_network_sip_server(Store& db, int bridge, uint32_t family, const std::string& address,
                                       const std::string& fqdn)
{
    db.check_bridge(bridge);
    const bool by_address = !address.empty();
    uint8_t bytes[16];
    if (family != 4 && family != 6) refuse(QMI_ERR_INVALID_ARG_V01);
    if (by_address && inet_pton(family == 4 ? AF_INET : AF_INET6, address.c_str(), bytes) != 1)
        refuse(QMI_ERR_INVALID_ARG_V01);
    if (!by_address && (fqdn.empty() || fqdn.size() > sizeof(qcmap_msgr_sip_server_info_v01::fqdn)))
        refuse(QMI_ERR_INVALID_ARG_V01);
    const int added = db.run(
        "INSERT INTO sip_server_network (bridge, family, type, address, fqdn) SELECT ?1, ?2, ?3, ?4, ?5"
        " WHERE (SELECT count(*) FROM sip_server_network WHERE bridge = ?1 AND family = ?2) < ?6",
        bridge, family, by_address ? QCMAP_SIP_INFO_IP : QCMAP_SIP_INFO_FQDN, address, by_address ? "" : fqdn,
        QCMAP_MAX_SIP_SERVERS);
    if (added == 0) refuse(QMI_ERR_LIMIT_V01);
}

void mobile_ap::clear_network_sip_servers(Store& db, int bridge)
{
    db.check_bridge(bridge);
    db.run("DELETE FROM sip_server_network WHERE bridge = ?", bridge);
}

bool QCMAP_Client::EnableAlg(uint64_t alg_types, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { switch_algs(db, alg_types, true); });
}

bool QCMAP_Client::DisableAlg(uint64_t alg_types, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { switch_algs(db, alg_types, false); });
}

bool QCMAP_Client::SetSIPServerInfo(qcmap_msgr_sip_server_info_v01* info, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (info->pcscf_info_type != QCMAP_SIP_INFO_IP && info->pcscf_info_type != QCMAP_SIP_INFO_FQDN)
            refuse(QMI_ERR_INVALID_ARG_V01);
        db.run("INSERT OR REPLACE INTO sip_server_configured (bridge, type, address, fqdn) VALUES (?, ?, ?, ?)",
               db.selected_bridge(), info->pcscf_info_type, ipv4_text(info->ipv4_addr),
               field_text(info->fqdn, sizeof info->fqdn));
    });
}

// A bridge without a configured server has one of type 0.
bool QCMAP_Client::GetSIPServerInfo(qcmap_msgr_sip_server_info_v01* configured, qcmap_msgr_sip_server_info_v01* network,
                                    int* network_count, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        Query one =
            db.query("SELECT type, address, fqdn FROM sip_server_configured WHERE bridge = ?", db.selected_bridge());
        *configured = {};
        if (one.next()) *configured = ipv4_server(one);
        Query q = network_servers(db, 4);
        *network_count = 0;
        while (q.next())
            network[(*network_count)++] = ipv4_server(q);
    });
}

bool QCMAP_Client::GetV6SIPServerInfo(qcmap_msgr_ipv6_sip_server_info_v01* network, int* network_count,
                                      qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        Query q = network_servers(db, 6);
        *network_count = 0;
        while (q.next())
            network[(*network_count)++] = ipv6_server(q);
    });
}
