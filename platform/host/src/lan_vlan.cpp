// VLANs: each has a bridge of its own, which comes and goes with it.
#include "lan_addressing.h"
#include "session.h"

const char* const mobile_ap::kLanVlanSchema = R"(
CREATE TABLE IF NOT EXISTS vlan (
    id INTEGER PRIMARY KEY REFERENCES lan_bridge(id) ON DELETE CASCADE,
    interface_type INTEGER NOT NULL,
    accelerated INTEGER NOT NULL
);
)";

using namespace mobile_ap;

namespace {

constexpr int kVlanIdMax = 4094;

bool is_vlan_id(int id)
{
    return id >= 1 && id <= kVlanIdMax;
}

bool is_interface_type(qcmap_msgr_interface_type_enum_v01 type)
{
    return type == QCMAP_MSGR_INTERFACE_TYPE_ETH_V01 || type == QCMAP_MSGR_INTERFACE_TYPE_ECM_V01 ||
           type == QCMAP_MSGR_INTERFACE_TYPE_RNDIS_V01 || type == QCMAP_MSGR_INTERFACE_TYPE_ETH_NIC2_V01;
}

}  // namespace

// The flag beside the record is left as it is: acceleration is always there.
bool QCMAP_Client::CreateVLANConfig(qcmap_msgr_vlan_config_ex_v01 vlan, qmi_error_type_v01* err, bool*)
{
    const char* const name = __func__;
    return method(session_, __func__, err, [&](Store& db) {
        if (!is_vlan_id(vlan.vlan_id) || !is_interface_type(vlan.interface_type) || vlan.is_accelerated > 1)
            refuse(QMI_ERR_INVALID_ARG_V01);
        const auto same = db.one<bool>("SELECT interface_type = ? AND accelerated = ? FROM vlan WHERE id = ?",
                                       vlan.interface_type, vlan.is_accelerated, vlan.vlan_id);
        if (same && *same) succeed_with(QMI_ERR_ALREADY_THERE_V01);
        if (same) refuse(QMI_ERR_ALREADY_THERE_V01);
        if (db.one<int>("SELECT count(*) FROM vlan") >= QCMAP_MAX_VLAN_ENTRIES) refuse(QMI_ERR_LIMIT_V01);
        add_bridge(db, vlan.vlan_id);
        db.run("INSERT INTO vlan (id, interface_type, accelerated) VALUES (?, ?, ?)", vlan.vlan_id, vlan.interface_type,
               vlan.is_accelerated);
        judge_new_bridge(db, name, vlan.vlan_id);
    });
}

bool QCMAP_Client::GetVLANConfig(qcmap_msgr_vlan_conf_t* list, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        list->count = 0;
        Query q =
            db.query("SELECT interface_type, id, accelerated FROM vlan ORDER BY id LIMIT ?", QCMAP_MAX_VLAN_ENTRIES);
        while (q.next()) {
            list->vlan[list->count++] = {q.get<qcmap_msgr_interface_type_enum_v01>(0), q.get<int16_t>(1),
                                         q.get<uint8_t>(2)};
        }
        if (list->count == 0) succeed_with(QMI_ERR_EMPTY_LIST_V01);
    });
}

bool QCMAP_Client::DeleteVLANConfig(short vlan_id, qcmap_msgr_interface_type_enum_v01 interface_type,
                                    qmi_error_type_v01* err)
{
    const char* const name = __func__;
    return method(session_, __func__, err, [&](Store& db) {
        if (!is_vlan_id(vlan_id) || !is_interface_type(interface_type)) refuse(QMI_ERR_INVALID_ARG_V01);
        const auto type =
            db.one<qcmap_msgr_interface_type_enum_v01>("SELECT interface_type FROM vlan WHERE id = ?", vlan_id);
        if (!type) refuse(QMI_ERR_NO_ENTRY_V01);
        if (*type != interface_type) refuse(QMI_ERR_INVALID_ARG_V01);
        remove_bridge(db, vlan_id);
        judge_bridge_gone(db, name);
    });
}
