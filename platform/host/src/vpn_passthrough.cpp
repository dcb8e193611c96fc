// VPN passthrough: six flags of each WWAN profile. A profile without a row has them all at 0, and a deleted profile
// takes its row along.
#include "session.h"
#include "wan_call.h"

const char* const mobile_ap::kVpnPassthroughSchema = R"(
CREATE TABLE IF NOT EXISTS vpn_passthrough (
    profile INTEGER PRIMARY KEY REFERENCES wwan_profile(handle) ON DELETE CASCADE,
    pptp_ipv4 INTEGER NOT NULL DEFAULT 0,
    pptp_ipv6 INTEGER NOT NULL DEFAULT 0,
    ipsec_ipv4 INTEGER NOT NULL DEFAULT 0,
    ipsec_ipv6 INTEGER NOT NULL DEFAULT 0,
    l2tp_ipv4 INTEGER NOT NULL DEFAULT 0,
    l2tp_ipv6 INTEGER NOT NULL DEFAULT 0
);
)";

using namespace mobile_ap;

namespace {

// Stores a flag; while the profile's backhaul is down it is stored too, and the answer says so.
void set_flag(Store& db, const char* column, unsigned char enable)
{
    if (enable > 1) refuse(QMI_ERR_INVALID_ARG_V01);
    const uint32_t profile = db.selected_profile();
    db.run("INSERT OR IGNORE INTO vpn_passthrough (profile) VALUES (?)", profile);
    const std::string sql = std::string("UPDATE vpn_passthrough SET ") + column + " = ? WHERE profile = ?";
    db.run(sql.c_str(), enable, profile);
    if (!is_connected(db, profile)) refuse_but_keep_changes(QMI_ERR_BACKHAUL_DOWN_V01);
}

void get_flag(Store& db, const char* column, unsigned char* enable)
{
    const uint32_t profile = db.selected_profile();
    if (enable == nullptr) refuse(QMI_ERR_INVALID_ARG_V01);
    const std::string sql = std::string("SELECT ") + column + " FROM vpn_passthrough WHERE profile = ?";
    *enable = db.one<unsigned char>(sql.c_str(), profile).value_or(0);
}

}  // namespace

bool QCMAP_Client::SetPPTPVpnPassthrough(unsigned char enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { set_flag(db, "pptp_ipv4", enable); });
}

bool QCMAP_Client::GetPPTPVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { get_flag(db, "pptp_ipv4", enable); });
}

bool QCMAP_Client::SetPPTPVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { set_flag(db, "pptp_ipv6", enable); });
}

bool QCMAP_Client::GetPPTPVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { get_flag(db, "pptp_ipv6", enable); });
}

bool QCMAP_Client::SetIPSECVpnPassthrough(unsigned char enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { set_flag(db, "ipsec_ipv4", enable); });
}

bool QCMAP_Client::GetIPSECVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { get_flag(db, "ipsec_ipv4", enable); });
}

bool QCMAP_Client::SetIPSECVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { set_flag(db, "ipsec_ipv6", enable); });
}

bool QCMAP_Client::GetIPSECVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { get_flag(db, "ipsec_ipv6", enable); });
}

bool QCMAP_Client::SetL2TPVpnPassthrough(unsigned char enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { set_flag(db, "l2tp_ipv4", enable); });
}

bool QCMAP_Client::GetL2TPVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { get_flag(db, "l2tp_ipv4", enable); });
}

bool QCMAP_Client::SetL2TPVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) { set_flag(db, "l2tp_ipv6", enable); });
}

bool QCMAP_Client::GetL2TPVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) { get_flag(db, "l2tp_ipv6", enable); });
}
