// Factory restore, and the switch of the software data path.
#include "session.h"

const char* const mobile_ap::kGeneralSchema = R"(
CREATE TABLE IF NOT EXISTS data_path (optimised INTEGER NOT NULL);
INSERT INTO data_path (optimised) SELECT 1 WHERE NOT EXISTS (SELECT 1 FROM data_path);
)";

using namespace mobile_ap;

bool QCMAP_Client::RestoreFactoryConfig(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { restore_factory(db); });
}

bool QCMAP_Client::SetDataPathOptStatus(unsigned char enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (enable > 1) refuse(QMI_ERR_INVALID_ARG_V01);
        db.run("UPDATE data_path SET optimised = ?", enable);
    });
}

bool QCMAP_Client::GetDataPathOptStatus(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *enable = db.one<unsigned char>("SELECT optimised FROM data_path").value_or(0);
    });
}
