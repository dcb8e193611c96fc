// The UPnP service, and the pinholes of each WWAN profile. A profile without a row has none, and a deleted profile
// takes its row along.
#include "session.h"

const char* const mobile_ap::kUpnpSchema = R"(
CREATE TABLE IF NOT EXISTS upnp_service (
    enabled INTEGER NOT NULL,
    notify_interval INTEGER NOT NULL
);
INSERT INTO upnp_service SELECT 0, 1800 WHERE NOT EXISTS (SELECT 1 FROM upnp_service);
CREATE TABLE IF NOT EXISTS upnp_pinhole (
    profile INTEGER PRIMARY KEY REFERENCES wwan_profile(handle) ON DELETE CASCADE,
    allowed INTEGER NOT NULL
);
)";

using namespace mobile_ap;

namespace {

constexpr unsigned int kMinNotifyInterval = 30;  // seconds
constexpr unsigned int kMaxNotifyInterval = 60000;

}  // namespace

bool QCMAP_Client::EnableUPNP(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { db.run("UPDATE upnp_service SET enabled = 1"); });
}

bool QCMAP_Client::DisableUPNP(qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { db.run("UPDATE upnp_service SET enabled = 0"); });
}

bool QCMAP_Client::GetUPNPStatus(qcmap_msgr_upnp_mode_enum_v01* mode, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        const bool enabled = db.one<int>("SELECT enabled FROM upnp_service").value_or(0) != 0;
        *mode = enabled ? QCMAP_MSGR_UPNP_MODE_UP_V01 : QCMAP_MSGR_UPNP_MODE_DOWN_V01;
    });
}

bool QCMAP_Client::SetUPNPNotifyInterval(unsigned int seconds, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        // A word, of which the service takes 16 bits.
        const auto interval = static_cast<uint16_t>(seconds);
        if (interval < kMinNotifyInterval || interval > kMaxNotifyInterval) refuse(QMI_ERR_INVALID_ARG_V01);
        db.run("UPDATE upnp_service SET notify_interval = ?", interval);
    });
}

bool QCMAP_Client::GetUPNPNotifyInterval(unsigned int* seconds, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *seconds = db.one<unsigned int>("SELECT notify_interval FROM upnp_service").value_or(0);
    });
}

bool QCMAP_Client::SetUPNPState(unsigned char firewall_enabled, unsigned char pinhole, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (firewall_enabled == 0 || pinhole > 1) refuse(QMI_ERR_INVALID_ARG_V01);
        db.run("INSERT OR REPLACE INTO upnp_pinhole (profile, allowed) VALUES (?, ?)", db.selected_profile(), pinhole);
    });
}

bool QCMAP_Client::GetUPNPState(unsigned char* pinhole, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        const uint32_t profile = db.selected_profile();
        *pinhole = db.one<unsigned char>("SELECT allowed FROM upnp_pinhole WHERE profile = ?", profile).value_or(0);
    });
}
