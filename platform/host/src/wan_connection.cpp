// WWAN connections: a call for each profile and IP family, with its addresses, modes and traffic counts.
//
// The network of the host platform answers at once: a call is up, or down, when the method returns. What happened in
// between is told by indications, which go out in order with the transaction.
#include "wan_connection.h"

#include <string.h>
#include <time.h>

#include "session.h"

// One row for each profile and family that ever had a call. The counts are those of active_ms milliseconds and, while
// the call is up, of the time since counted_from.
const char* const mobile_ap::kWanConnectionSchema = R"(
CREATE TABLE IF NOT EXISTS wwan_call (
    profile INTEGER NOT NULL,
    family INTEGER NOT NULL CHECK (family IN (4, 6)),
    up INTEGER NOT NULL DEFAULT 0,
    calls INTEGER NOT NULL DEFAULT 0,
    interface TEXT NOT NULL DEFAULT '',
    address TEXT NOT NULL DEFAULT '',
    netmask TEXT NOT NULL DEFAULT '',
    prefix_length INTEGER NOT NULL DEFAULT 0,
    gateway TEXT NOT NULL DEFAULT '',
    primary_dns TEXT NOT NULL DEFAULT '',
    secondary_dns TEXT NOT NULL DEFAULT '',
    mtu INTEGER NOT NULL DEFAULT 1500,
    active_ms INTEGER NOT NULL DEFAULT 0,
    counted_from INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (profile, family)
);
CREATE TRIGGER IF NOT EXISTS calls_go_with_their_profile AFTER DELETE ON wwan_profile BEGIN
    DELETE FROM wwan_call WHERE profile = OLD.handle;
END;
)";

using namespace mobile_ap;

namespace {

// The states of a call and how it is named in one family.
struct Family {
    int number;  // 4 or 6
    qcmap_msgr_wwan_status_enum_v01 connecting;
    qcmap_msgr_wwan_status_enum_v01 connected;
    qcmap_msgr_wwan_status_enum_v01 disconnecting;
    qcmap_msgr_wwan_status_enum_v01 disconnected;
};
constexpr Family kV4 = {4, QCMAP_MSGR_WWAN_STATUS_CONNECTING_V01, QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01,
                        QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_V01, QCMAP_MSGR_WWAN_STATUS_DISCONNECTED_V01};
constexpr Family kV6 = {6, QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTED_V01,
                        QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTED_V01};

constexpr uint32_t kPrimarySubscription = 1;

// What a call moves in a millisecond: 1 Mbit/s in, 200 kbit/s out.
constexpr uint64_t kBytesRxPerMs = 125;
constexpr uint64_t kBytesTxPerMs = 25;
constexpr uint64_t kMsPerPacketRx = 8;
constexpr uint64_t kMsPerPacketTx = 20;
constexpr uint64_t kMsPerDrop = 60000;

const Family& family_of(qcmap_msgr_wwan_call_type_v01 call_type)
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

// Of the wall clock, which all processes share and which goes on over a restart of the machine.
int64_t now_ms()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

bool is_up(Store& db, uint32_t profile, const Family& family)
{
    return db.one<int>("SELECT up FROM wwan_call WHERE profile = ? AND family = ?", profile, family.number)
               .value_or(0) != 0;
}

// Every call gets addresses of its own, out of a net of its profile's: 10.101.0.0 and 2001:db8:1:: for profile 1.
void give_addresses(Store& db, uint32_t profile, const Family& family)
{
    const auto calls =
        db.one<uint32_t>("SELECT calls FROM wwan_call WHERE profile = ? AND family = ?", profile, family.number)
            .value_or(0);
    std::string address;
    std::string gateway;
    std::string netmask;
    std::string primary_dns;
    std::string secondary_dns;
    int prefix_length = 0;
    if (family.number == 4) {
        const uint32_t net = (10u << 24) | ((100 + profile) << 16) | ((calls % 16384) << 2);
        address = ipv4_text(net + 2);
        gateway = ipv4_text(net + 1);
        netmask = "255.255.255.252";
        prefix_length = 30;
        primary_dns = "192.0.2.53";
        secondary_dns = "198.51.100.53";
    } else {
        uint8_t bytes[16] = {0x20, 0x01, 0x0d, 0xb8, 0, static_cast<uint8_t>(profile)};
        bytes[6] = static_cast<uint8_t>(calls >> 8);
        bytes[7] = static_cast<uint8_t>(calls);
        bytes[15] = 2;
        address = ipv6_text(bytes);
        bytes[15] = 1;
        gateway = ipv6_text(bytes);
        prefix_length = 64;
        primary_dns = "2001:db8:ffff::53";
        secondary_dns = "2001:db8:ffff::153";
    }
    db.run(
        "UPDATE wwan_call SET interface = ?, address = ?, netmask = ?, prefix_length = ?, gateway = ?, primary_dns = ?,"
        " secondary_dns = ? WHERE profile = ? AND family = ?",
        "wwan" + std::to_string(profile - 1), address, netmask, prefix_length, gateway, primary_dns, secondary_dns,
        profile, family.number);
}

// Adds what the calls of a profile that are up know of it.
void fill_info(Store& db, uint32_t profile, qcmap_connected_wwan_info* info)
{
    Query q = db.query(
        "SELECT family, interface, address, netmask, prefix_length, gateway, primary_dns, secondary_dns, mtu"
        " FROM wwan_call WHERE profile = ? AND up = 1",
        profile);
    while (q.next()) {
        info->profile_handle = profile;
        set_field_text(info->iface_name, sizeof info->iface_name, q.get<std::string>(1));
        if (q.get<int>(0) == 4) {
            info->v4_addr = network_ipv4_word(q.get<std::string>(2));
            info->v4_netmask = network_ipv4_word(q.get<std::string>(3));
            info->v4_gw_addr = network_ipv4_word(q.get<std::string>(5));
            info->v4_pri_dns_addr = network_ipv4_word(q.get<std::string>(6));
            info->v4_sec_dns_addr = network_ipv4_word(q.get<std::string>(7));
            info->v4_mtu = q.get<uint32_t>(8);
        } else {
            ipv6_bytes(q.get<std::string>(2), info->v6_addr);
            info->v6_prefix = q.get<uint8_t>(4);
            ipv6_bytes(q.get<std::string>(5), info->v6_gw_addr);
            ipv6_bytes(q.get<std::string>(6), info->v6_pri_dns_addr);
            ipv6_bytes(q.get<std::string>(7), info->v6_sec_dns_addr);
            info->v6_mtu = q.get<uint32_t>(8);
        }
    }
}

qcmap_wwan_call_ind call_indication(Store& db, uint32_t profile, qcmap_msgr_wwan_status_enum_v01 status)
{
    qcmap_wwan_call_ind call = {};
    call.mobile_ap_handle = mobile_ap_handle(db);
    call.conn_status = static_cast<uint32_t>(status);
    call.profile_handle_valid = 1;
    call.profile_handle = profile;
    call.subs_id_valid = 1;
    call.subs_id = kPrimarySubscription;
    return call;
}

void tell_status(Store& db, uint32_t profile, qcmap_msgr_wwan_status_enum_v01 status)
{
    qcmap_msgr_wwan_status_ind_msg_v01 record = {};
    record.call = call_indication(db, profile, status);
    indicate(db, QCMAP_MSGR_WWAN_STATUS_IND_V01, record);
}

void tell_brought_up(Store& db, uint32_t profile, qcmap_msgr_wwan_status_enum_v01 status)
{
    qcmap_msgr_bring_up_wwan_ind_msg_v01 record = {};
    record.call = call_indication(db, profile, status);
    qcmap_connected_wwan_info info = {};
    fill_info(db, profile, &info);
    memcpy(record.iface_name, info.iface_name, sizeof record.iface_name);
    record.v4_addr = info.v4_addr;
    record.v4_pri_dns_addr = info.v4_pri_dns_addr;
    record.v4_sec_dns_addr = info.v4_sec_dns_addr;
    memcpy(record.v6_addr, info.v6_addr, sizeof record.v6_addr);
    memcpy(record.v6_pri_dns_addr, info.v6_pri_dns_addr, sizeof record.v6_pri_dns_addr);
    memcpy(record.v6_sec_dns_addr, info.v6_sec_dns_addr, sizeof record.v6_sec_dns_addr);
    indicate(db, QCMAP_MSGR_BRING_UP_WWAN_IND_V01, record);
}

void tell_torn_down(Store& db, uint32_t profile, qcmap_msgr_wwan_status_enum_v01 status)
{
    qcmap_msgr_tear_down_wwan_ind_msg_v01 record = {};
    record.call = call_indication(db, profile, status);
    indicate(db, QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01, record);
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

bool mobile_ap::is_connected(Store& db, uint32_t profile)
{
    return db.one<int>("SELECT 1 FROM wwan_call WHERE profile = ? AND up = 1", profile).has_value();
}

bool QCMAP_Client::GetWWANStatus(qcmap_msgr_wwan_status_enum_v01* v4_status, qcmap_msgr_wwan_status_enum_v01* v6_status,
                                 qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        const uint32_t profile = db.selected_profile();
        *v4_status = is_up(db, profile, kV4) ? kV4.connected : kV4.disconnected;
        *v6_status = is_up(db, profile, kV6) ? kV6.connected : kV6.disconnected;
    });
}

bool QCMAP_Client::ConnectBackHaul(qcmap_msgr_wwan_call_type_v01 call_type, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const Family& family = family_of(call_type);
        const uint32_t profile = db.selected_profile();
        const int profile_family =
            db.one<int>("SELECT ip_family FROM wwan_profile WHERE handle = ?", profile).value_or(0);
        if (profile_family != family.number && profile_family != QCMAP_MSGR_IP_FAMILY_V4V6_V01) {
            refuse(QMI_ERR_INVALID_ARG_V01);
        }
        if (is_up(db, profile, family)) refuse(QMI_ERR_NO_EFFECT_V01);
        tell_status(db, profile, family.connecting);
        db.run("INSERT OR IGNORE INTO wwan_call (profile, family) VALUES (?, ?)", profile, family.number);
        give_addresses(db, profile, family);
        db.run("UPDATE wwan_call SET up = 1, calls = calls + 1, counted_from = ? WHERE profile = ? AND family = ?",
               now_ms(), profile, family.number);
        tell_brought_up(db, profile, family.connected);
        tell_status(db, profile, family.connected);
    });
}

bool QCMAP_Client::DisconnectBackHaul(qcmap_msgr_wwan_call_type_v01 call_type, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const Family& family = family_of(call_type);
        const uint32_t profile = db.selected_profile();
        if (!is_up(db, profile, family)) refuse(QMI_ERR_NO_EFFECT_V01);
        tell_status(db, profile, family.disconnecting);
        db.run(
            "UPDATE wwan_call SET up = 0, active_ms = active_ms + max(0, ? - counted_from), interface = '',"
            " address = '', netmask = '', prefix_length = 0, gateway = '', primary_dns = '', secondary_dns = ''"
            " WHERE profile = ? AND family = ?",
            now_ms(), profile, family.number);
        tell_torn_down(db, profile, family.disconnected);
        tell_status(db, profile, family.disconnected);
    });
}

bool QCMAP_Client::SetReconnect(bool enable, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run("UPDATE wwan_profile SET reconnect = ? WHERE handle = ?", enable, db.selected_profile());
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
        Query q = db.query("SELECT DISTINCT profile FROM wwan_call WHERE up = 1 ORDER BY profile LIMIT ?",
                           QCMAP_MAX_WWAN_PROFILES);
        while (q.next()) {
            qcmap_connected_wwan_info& info = pdn[found++];
            memset(&info, 0, sizeof info);
            fill_info(db, q.get<uint32_t>(0), &info);
        }
        *count = found;
    });
}

bool QCMAP_Client::GetWWANStatistics(qcmap_msgr_ip_family_enum_v01 ip_family,
                                     qcmap_msgr_wwan_statistics_type_v01* statistics, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        const char* const families = families_of(ip_family);
        const auto ms = db.one<uint64_t>(
                              "SELECT sum(active_ms + up * max(0, ? - counted_from)) FROM wwan_call"
                              " WHERE profile = ? AND instr(?, family) > 0",
                              now_ms(), db.selected_profile(), families)
                            .value_or(0);
        statistics->bytes_rx = ms * kBytesRxPerMs;
        statistics->bytes_tx = ms * kBytesTxPerMs;
        statistics->pkts_rx = static_cast<uint32_t>(ms / kMsPerPacketRx);
        statistics->pkts_tx = static_cast<uint32_t>(ms / kMsPerPacketTx);
        statistics->pkts_dropped_rx = static_cast<uint32_t>(ms / kMsPerDrop);
        statistics->pkts_dropped_tx = 0;
    });
}

bool QCMAP_Client::ResetWWANStatistics(qcmap_msgr_ip_family_enum_v01 ip_family, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        db.run("UPDATE wwan_call SET active_ms = 0, counted_from = ? WHERE profile = ? AND instr(?, family) > 0",
               now_ms(), db.selected_profile(), families_of(ip_family));
    });
}
