// NAT of each WWAN profile: type, DMZ host and static entries; and routing-behind. A profile without a row has the
// factory settings, and a deleted profile takes its rows along.
#include "session.h"

const char* const mobile_ap::kNatSchema = R"(
CREATE TABLE IF NOT EXISTS nat (
    profile INTEGER PRIMARY KEY REFERENCES wwan_profile(handle) ON DELETE CASCADE,
    type INTEGER NOT NULL DEFAULT 1,
    dmz_ip TEXT NOT NULL DEFAULT '0.0.0.0'
);
CREATE TABLE IF NOT EXISTS nat_static_entry (
    id INTEGER PRIMARY KEY,
    profile INTEGER NOT NULL REFERENCES wwan_profile(handle) ON DELETE CASCADE,
    private_ip TEXT NOT NULL,
    private_port INTEGER NOT NULL,
    global_port INTEGER NOT NULL,
    protocol INTEGER NOT NULL,
    UNIQUE (profile, private_ip, private_port, global_port, protocol)
);
CREATE TABLE IF NOT EXISTS nat_service (
    routing_behind INTEGER NOT NULL,
    routing_behind_in_force INTEGER NOT NULL
);
INSERT INTO nat_service SELECT 0, 0 WHERE NOT EXISTS (SELECT 1 FROM nat_service);
)";

using namespace mobile_ap;

namespace {

uint32_t dmz_host(Store& db, uint32_t profile)
{
    return ipv4_word(db.one<std::string>("SELECT dmz_ip FROM nat WHERE profile = ?", profile).value_or("0.0.0.0"));
}

unsigned int routing_behind(Store& db)
{
    return db.one<unsigned int>("SELECT routing_behind FROM nat_service").value_or(0);
}

}  // namespace

bool QCMAP_Client::SetNatType(qcmap_msgr_nat_enum_v01 nat_type, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (nat_type < QCMAP_MSGR_NAT_SYMMETRIC_V01 || nat_type > QCMAP_MSGR_NAT_ADDRESS_RESTRICTED_V01)
            refuse(QMI_ERR_INVALID_ARG_V01);
        db.run("INSERT INTO nat (profile, type) VALUES (?, ?) ON CONFLICT (profile) DO UPDATE SET type = excluded.type",
               db.selected_profile(), nat_type);
    });
}

bool QCMAP_Client::GetNatType(qcmap_msgr_nat_enum_v01* nat_type, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *nat_type = db.one<qcmap_msgr_nat_enum_v01>("SELECT type FROM nat WHERE profile = ?", db.selected_profile())
                        .value_or(QCMAP_MSGR_NAT_PORT_RESTRICTED_CONE_V01);
    });
}

// A profile has one DMZ host; a further one takes its place.
bool QCMAP_Client::AddDMZ(unsigned int ip, qmi_error_type_v01* err)
{
    const char* const name = __func__;
    return method(session_, __func__, err, [&](Store& db) {
        if (ip == 0) refuse(QMI_ERR_INVALID_ARG_V01);
        const uint32_t profile = db.selected_profile();
        if (dmz_host(db, profile) != ip) judge_dmz_host(db, name, profile, ip);
        db.run(
            "INSERT INTO nat (profile, dmz_ip) VALUES (?, ?)"
            " ON CONFLICT (profile) DO UPDATE SET dmz_ip = excluded.dmz_ip",
            profile, ipv4_text(ip));
    });
}

// Without a host there is nothing to do, which is no error.
bool QCMAP_Client::DeleteDMZ(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run("UPDATE nat SET dmz_ip = '0.0.0.0' WHERE profile = ?", db.selected_profile());
    });
}

bool QCMAP_Client::GetDMZ(unsigned int* ip, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { *ip = dmz_host(db, db.selected_profile()); });
}

bool QCMAP_Client::AddStaticNatEntry(qcmap_msgr_snat_entry_config_v01* entry, qmi_error_type_v01* err)
{
    const char* const name = __func__;
    return method(session_, __func__, err, [&](Store& db) {
        const uint32_t profile = db.selected_profile();
        const int added = db.run(
            "INSERT OR IGNORE INTO nat_static_entry (profile, private_ip, private_port, global_port, protocol)"
            " VALUES (?, ?, ?, ?, ?)",
            profile, ipv4_text(entry->private_ip), entry->private_port, entry->global_port, entry->protocol);
        if (added == 0) refuse(QMI_ERR_ALREADY_THERE_V01);
        const auto entries = db.one<int>("SELECT count(*) FROM nat_static_entry WHERE profile = ?", profile);
        if (entries > QCMAP_MAX_SNAT_ENTRIES) refuse(QMI_ERR_LIMIT_V01);
        judge_mapped_host(db, name, profile, entry->private_ip);
    });
}

bool QCMAP_Client::DeleteStaticNatEntry(qcmap_msgr_snat_entry_config_v01* entry, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const int deleted = db.run(
            "DELETE FROM nat_static_entry WHERE profile = ? AND private_ip = ? AND private_port = ?"
            " AND global_port = ? AND protocol = ?",
            db.selected_profile(), ipv4_text(entry->private_ip), entry->private_port, entry->global_port,
            entry->protocol);
        if (deleted == 0) refuse(QMI_ERR_NO_ENTRY_V01);
    });
}

// In the order in which they were added. The caller's array holds QCMAP_MAX_SNAT_ENTRIES.
bool QCMAP_Client::GetStaticNatConfig(qcmap_msgr_snat_entry_config_v01* entries, int* count, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        Query q = db.query(
            "SELECT private_ip, private_port, global_port, protocol FROM nat_static_entry WHERE profile = ?"
            " ORDER BY id LIMIT ?",
            db.selected_profile(), QCMAP_MAX_SNAT_ENTRIES);
        *count = 0;
        while (q.next()) {
            entries[(*count)++] = {ipv4_word(q.get<std::string>(0)), q.get<uint16_t>(1), q.get<uint16_t>(2),
                                   q.get<uint8_t>(3)};
        }
    });
}

// Kept at once; it comes in force with the next start of the service.
bool QCMAP_Client::ZR_SetRoutingBH(unsigned int routing_bh, qmi_error_type_v01* err)
{
    const char* const name = __func__;
    return method(session_, __func__, err, [&](Store& db) {
        if (routing_bh > 1) refuse(QMI_ERR_INVALID_ARG_V01);
        const bool changes = routing_bh != routing_behind(db);
        db.run("UPDATE nat_service SET routing_behind = ?", routing_bh);
        if (changes) judge_routing_behind(db, name);
    });
}

bool QCMAP_Client::ZR_GetRoutingBH(unsigned int* routing_bh, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { *routing_bh = routing_behind(db); });
}
