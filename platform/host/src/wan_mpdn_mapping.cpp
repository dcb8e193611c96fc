// Multi-PDN mapping: VLANs mapped to profiles.
#include "session.h"

const char* const mobile_ap::kWanMpdnMappingSchema = R"(
CREATE TABLE IF NOT EXISTS pdn_vlan_mapping (
    profile INTEGER NOT NULL,
    vlan_id INTEGER NOT NULL CHECK (vlan_id BETWEEN 1 AND 4094),
    PRIMARY KEY (profile, vlan_id)
) WITHOUT ROWID;
CREATE TRIGGER IF NOT EXISTS mappings_go_with_their_profile AFTER DELETE ON wwan_profile BEGIN
    DELETE FROM pdn_vlan_mapping WHERE profile = OLD.handle;
END;
CREATE TRIGGER IF NOT EXISTS mappings_go_with_their_bridge AFTER DELETE ON lan_bridge BEGIN
    DELETE FROM pdn_vlan_mapping WHERE vlan_id = OLD.id;
END;
)";

using namespace mobile_ap;

bool QCMAP_Client::AddPDNToVLANMapping(short vlan_id, unsigned int profile_handle, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.check_profile(profile_handle);
        if (vlan_id < 1) refuse(QMI_ERR_INVALID_ID_V01);
        db.check_bridge(vlan_id);
        const int added =
            db.run("INSERT OR IGNORE INTO pdn_vlan_mapping (profile, vlan_id) VALUES (?, ?)", profile_handle, vlan_id);
        if (added == 0) refuse(QMI_ERR_ALREADY_THERE_V01);
    });
}

bool QCMAP_Client::DeletePDNToVLANMapping(short vlan_id, unsigned int profile_handle, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const int removed =
            db.run("DELETE FROM pdn_vlan_mapping WHERE profile = ? AND vlan_id = ?", profile_handle, vlan_id);
        if (removed == 0) refuse(QMI_ERR_NO_ENTRY_V01);
    });
}

bool QCMAP_Client::GetPDNtoVLANMappingsEx(qcmap_msgr_pdn_to_vlan_mapping_ex_v01* mappings, int* count,
                                          qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        int profiles = 0;
        qcmap_pdn_to_vlan_mapping* mapping = nullptr;
        Query q = db.query("SELECT profile, vlan_id FROM pdn_vlan_mapping ORDER BY profile, vlan_id");
        while (q.next()) {
            const auto profile = q.get<uint32_t>(0);
            if (mapping == nullptr || mapping->profile_handle != profile) {
                if (profiles == QCMAP_MAX_WWAN_PROFILES) break;
                mapping = &mappings->mapping[profiles++];
                mapping->profile_handle = profile;
                mapping->vlan_count = 0;
            }
            // Ids are whole numbers that stand once, so there is room; not so when the table was changed by hand.
            if (mapping->vlan_count == QCMAP_MAX_VLANS_PER_PDN) continue;
            mapping->vlan_id[mapping->vlan_count++] = q.get<int16_t>(1);
        }
        *count = profiles;
    });
}
