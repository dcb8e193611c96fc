// WWAN connections: connecting and disconnecting, the modes of a profile, addresses and traffic counts.
#include <string.h>

#include "events.h"
#include "session.h"
#include "wan_call.h"

using namespace mobile_ap;

namespace {

// What a call moves in a millisecond: 1 Mbit/s in, 200 kbit/s out.
constexpr uint64_t kBytesRxPerMs = 125;
constexpr uint64_t kBytesTxPerMs = 25;
constexpr uint64_t kBytesPerPacketRx = 1000;
constexpr uint64_t kBytesPerPacketTx = 500;
constexpr uint64_t kMsPerDrop = 60000;

const CallFamily& family_of(qcmap_msgr_wwan_call_type_v01 call_type)
{
    switch (static_cast<int>(call_type)) {
        case QCMAP_MSGR_WWAN_CALL_TYPE_V4_V01:
            return kV4;
        case QCMAP_MSGR_WWAN_CALL_TYPE_V6_V01:
            return kV6;
        default:
            refuse(QMI_ERR_INVALID_ARG_V01);
    }
}

// The families a statistics request is about, for SQL: 4, 6, or both.
const char* families_of(qcmap_msgr_ip_family_enum_v01 ip_family)
{
    switch (static_cast<int>(ip_family)) {
        case QCMAP_MSGR_IP_FAMILY_V4_V01:
            return "4";
        case QCMAP_MSGR_IP_FAMILY_V6_V01:
            return "6";
        case QCMAP_MSGR_IP_FAMILY_V4V6_V01:
        case QCMAP_MSGR_IP_FAMILY_ANY_V01:
            return "46";
        default:
            refuse(QMI_ERR_INVALID_ARG_V01);
    }
}

// The on/off modes are columns of the profile.
void get_mode(Store& db, const char* sql, unsigned char* enable)
{
    *enable = db.one<unsigned char>(sql, db.selected_profile()).value_or(0);
}

}  // namespace

bool QCMAP_Client::GetWWANStatus(qcmap_msgr_wwan_status_enum_v01* v4_status, qcmap_msgr_wwan_status_enum_v01* v6_status,
                                 qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        const uint32_t profile = db.selected_profile();
        *v4_status = call_status(db, {profile, kV4});
        *v6_status = call_status(db, {profile, kV6});
    });
}

bool QCMAP_Client::ConnectBackHaul(qcmap_msgr_wwan_call_type_v01 call_type, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const CallFamily& family = family_of(call_type);
        const Call call = {db.selected_profile(), family};
        const int profile_family =
            db.one<int>("SELECT ip_family FROM wwan_profile WHERE handle = ?", call.profile).value_or(0);
        if (profile_family != family.number && profile_family != QCMAP_MSGR_IP_FAMILY_V4V6_V01) {
            refuse(QMI_ERR_INVALID_ARG_V01);
        }
        if (call_status(db, call) != family.disconnected) refuse(QMI_ERR_NO_EFFECT_V01);
        dial(db, now_ms(), call, Dialled::kByCaller);
    });
}

// A call that is awaited can be given up, too.
bool QCMAP_Client::DisconnectBackHaul(qcmap_msgr_wwan_call_type_v01 call_type, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const CallFamily& family = family_of(call_type);
        const Call call = {db.selected_profile(), family};
        const auto status = call_status(db, call);
        if (status == family.disconnecting || (status == family.disconnected && !is_awaited(db, call)))
            refuse(QMI_ERR_NO_EFFECT_V01);
        hang_up(db, now_ms(), call);
    });
}

bool QCMAP_Client::SetReconnect(bool enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const uint32_t profile = db.selected_profile();
        db.run("UPDATE wwan_profile SET reconnect = ? WHERE handle = ?", enable, profile);
        if (!enable) give_up_redialling(db, profile);
    });
}

bool QCMAP_Client::GetReconnect(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err,
                       [&](Store& db) { get_mode(db, "SELECT reconnect FROM wwan_profile WHERE handle = ?", enable); });
}

bool QCMAP_Client::SetAutoconnect(bool enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run("UPDATE wwan_profile SET autoconnect = ? WHERE handle = ?", enable, db.selected_profile());
    });
}

bool QCMAP_Client::GetAutoconnect(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        get_mode(db, "SELECT autoconnect FROM wwan_profile WHERE handle = ?", enable);
    });
}

bool QCMAP_Client::SetRoaming(bool enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run("UPDATE wwan_profile SET roaming = ? WHERE handle = ?", enable, db.selected_profile());
        follow_roaming(db, now_ms());
    });
}

bool QCMAP_Client::GetRoaming(unsigned char* enable, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err,
                       [&](Store& db) { get_mode(db, "SELECT roaming FROM wwan_profile WHERE handle = ?", enable); });
}

bool QCMAP_Client::GetAllConnectedPDNEx(unsigned char* count, qcmap_connected_wwan_info* pdn, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        unsigned char found = 0;
        Query q = db.query("SELECT DISTINCT profile FROM wwan_call WHERE state = 'up' ORDER BY profile LIMIT ?",
                           QCMAP_MAX_WWAN_PROFILES);
        while (q.next()) {
            qcmap_connected_wwan_info& info = pdn[found++];
            memset(&info, 0, sizeof info);
            fill_connected_info(db, q.get<uint32_t>(0), &info);
        }
        *count = found;
    });
}

bool QCMAP_Client::GetWWANStatistics(qcmap_msgr_ip_family_enum_v01 ip_family,
                                     qcmap_msgr_wwan_statistics_type_v01* statistics, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        Query q = db.query(
            "SELECT sum(active_ms + (state IN ('up', 'disconnecting')) * max(0, ? - counted_from)), sum(moved_down),"
            " sum(moved_up) FROM wwan_call WHERE profile = ? AND instr(?, family) > 0",
            now_ms(), db.selected_profile(), families_of(ip_family));
        q.next();
        const auto ms = q.get<uint64_t>(0);
        statistics->bytes_rx = ms * kBytesRxPerMs + q.get<uint64_t>(1);
        statistics->bytes_tx = ms * kBytesTxPerMs + q.get<uint64_t>(2);
        statistics->pkts_rx = static_cast<uint32_t>(statistics->bytes_rx / kBytesPerPacketRx);
        statistics->pkts_tx = static_cast<uint32_t>(statistics->bytes_tx / kBytesPerPacketTx);
        statistics->pkts_dropped_rx = static_cast<uint32_t>(ms / kMsPerDrop);
        statistics->pkts_dropped_tx = 0;
    });
}

bool QCMAP_Client::ResetWWANStatistics(qcmap_msgr_ip_family_enum_v01 ip_family, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run(
            "UPDATE wwan_call SET active_ms = 0, counted_from = ?, moved_down = 0, moved_up = 0"
            " WHERE profile = ? AND instr(?, family) > 0",
            now_ms(), db.selected_profile(), families_of(ip_family));
    });
}
