#include "wan_call.h"

#include <string.h>

#include <vector>

#include "addresses.h"
#include "indications.h"
#include "network.h"
#include "qcmap_indications.h"
#include "schemas.h"

// One row for each profile and family that ever had a call.
//   due_ms        when the state comes to its end; a call that is down is dialled again then
//   own           the platform dialled by itself, or means to
//   held          down until the module does not roam any more
//   active_ms     how long the call has been up, without the time since counted_from while it is up
//   moved_*       bytes moved beyond what the time makes
const char* const mobile_ap::kWanCallSchema = R"(
CREATE TABLE IF NOT EXISTS wwan_call (
    profile INTEGER NOT NULL,
    family INTEGER NOT NULL CHECK (family IN (4, 6)),
    state TEXT NOT NULL DEFAULT 'down' CHECK (state IN ('down', 'connecting', 'up', 'disconnecting')),
    due_ms INTEGER,
    own INTEGER NOT NULL DEFAULT 0,
    held INTEGER NOT NULL DEFAULT 0,
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
    moved_down INTEGER NOT NULL DEFAULT 0,
    moved_up INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (profile, family)
);
CREATE TRIGGER IF NOT EXISTS calls_go_with_their_profile AFTER DELETE ON wwan_profile BEGIN
    DELETE FROM wwan_call WHERE profile = OLD.handle;
END;
CREATE TRIGGER IF NOT EXISTS call_is_due AFTER UPDATE OF due_ms ON wwan_call WHEN NEW.due_ms IS NOT NULL BEGIN
    UPDATE service SET next_ms = min(next_ms, NEW.due_ms);
END;
)";

namespace mobile_ap {
namespace {

constexpr uint32_t kPrimarySubscription = 1;

const CallFamily& family_of_number(int number)
{
    return number == 4 ? kV4 : kV6;
}

std::string state_of(Store& db, const Call& call)
{
    return db
        .one<std::string>("SELECT state FROM wwan_call WHERE profile = ? AND family = ?", call.profile,
                          call.family.number)
        .value_or("down");
}

// The calls that are so, by profile and family.
std::vector<Call> calls_where(Store& db, const std::string& condition)
{
    std::vector<Call> calls;
    Query q = db.query(("SELECT profile, family FROM wwan_call WHERE " + condition + " ORDER BY 1, 2").c_str());
    while (q.next())
        calls.push_back({q.get<uint32_t>(0), family_of_number(q.get<int>(1))});
    return calls;
}

// Every call gets addresses of its own, out of a net of its profile's: 10.101.0.0 and 2001:db8:1:: for profile 1.
void give_addresses(Store& db, const Call& call)
{
    const uint32_t profile = call.profile;
    const auto calls =
        db.one<uint32_t>("SELECT calls FROM wwan_call WHERE profile = ? AND family = ?", profile, call.family.number)
            .value_or(0);
    std::string address;
    std::string gateway;
    std::string netmask;
    std::string primary_dns;
    std::string secondary_dns;
    int prefix_length = 0;
    if (call.family.number == 4) {
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
        profile, call.family.number);
}

// ---- what is told ----

qcmap_wwan_call_ind call_indication(Store& db, const Call& call, qcmap_msgr_wwan_status_enum_v01 status,
                                    EndReason reason)
{
    qcmap_wwan_call_ind record = {};
    record.mobile_ap_handle = mobile_ap_handle(db);
    record.conn_status = static_cast<uint32_t>(status);
    record.call_end_type = reason.type;
    record.call_end_code = reason.code;
    record.profile_handle_valid = 1;
    record.profile_handle = call.profile;
    record.subs_id_valid = 1;
    record.subs_id = kPrimarySubscription;
    return record;
}

void tell_status(Store& db, const Call& call, qcmap_msgr_wwan_status_enum_v01 status, EndReason reason = {})
{
    qcmap_msgr_wwan_status_ind_msg_v01 record = {};
    record.call = call_indication(db, call, status, reason);
    indicate(db, QCMAP_MSGR_WWAN_STATUS_IND_V01, record);
}

void tell_brought_up(Store& db, const Call& call, qcmap_msgr_wwan_status_enum_v01 status, EndReason reason = {})
{
    qcmap_msgr_bring_up_wwan_ind_msg_v01 record = {};
    record.call = call_indication(db, call, status, reason);
    qcmap_connected_wwan_info info = {};
    fill_connected_info(db, call.profile, &info);
    memcpy(record.iface_name, info.iface_name, sizeof record.iface_name);
    record.v4_addr = info.v4_addr;
    record.v4_pri_dns_addr = info.v4_pri_dns_addr;
    record.v4_sec_dns_addr = info.v4_sec_dns_addr;
    memcpy(record.v6_addr, info.v6_addr, sizeof record.v6_addr);
    memcpy(record.v6_pri_dns_addr, info.v6_pri_dns_addr, sizeof record.v6_pri_dns_addr);
    memcpy(record.v6_sec_dns_addr, info.v6_sec_dns_addr, sizeof record.v6_sec_dns_addr);
    indicate(db, QCMAP_MSGR_BRING_UP_WWAN_IND_V01, record);
}

void tell_torn_down(Store& db, const Call& call, qcmap_msgr_wwan_status_enum_v01 status, EndReason reason = {})
{
    qcmap_msgr_tear_down_wwan_ind_msg_v01 record = {};
    record.call = call_indication(db, call, status, reason);
    indicate(db, QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01, record);
}

// ---- steps ----

// What becomes of a call that is down.
enum class Then { kStaysDown, kIsDialledAgain, kWaitsForHome };

void enter(Store& db, const Call& call, const char* state, std::optional<int64_t> due)
{
    db.run("UPDATE wwan_call SET state = ?, due_ms = ?, held = 0 WHERE profile = ? AND family = ?", state, due,
           call.profile, call.family.number);
}

void come_down(Store& db, int64_t at, const Call& call, Then then)
{
    db.run(
        "UPDATE wwan_call SET active_ms = active_ms + max(0, ? - counted_from), interface = '', address = '',"
        " netmask = '', prefix_length = 0, gateway = '', primary_dns = '', secondary_dns = ''"
        " WHERE profile = ? AND family = ? AND state IN ('up', 'disconnecting')",
        at, call.profile, call.family.number);
    const bool again = then == Then::kIsDialledAgain;
    enter(db, call, "down", again ? std::optional<int64_t>(at + kRedialMs) : std::nullopt);
    db.run("UPDATE wwan_call SET own = ?, held = ? WHERE profile = ? AND family = ?", then != Then::kStaysDown,
           then == Then::kWaitsForHome, call.profile, call.family.number);
}

bool reconnects(Store& db, uint32_t profile)
{
    return db.one<bool>("SELECT reconnect FROM wwan_profile WHERE handle = ?", profile).value_or(false);
}

bool may_be_up(Store& db, uint32_t profile)
{
    return !is_roaming(db) ||
           db.one<bool>("SELECT roaming FROM wwan_profile WHERE handle = ?", profile).value_or(false);
}

bool has_family(Store& db, const Call& call)
{
    const auto family = db.one<int>("SELECT ip_family FROM wwan_profile WHERE handle = ?", call.profile).value_or(0);
    return family == call.family.number || family == QCMAP_MSGR_IP_FAMILY_V4V6_V01;
}

void fail_to_connect(Store& db, int64_t at, const Call& call, EndReason reason, Then then)
{
    come_down(db, at, call, then);
    tell_brought_up(db, call, call.family.connecting_failed, reason);
    tell_status(db, call, call.family.connecting_failed, reason);
}

// A dial of the platform's own that fails is repeated while reconnect is on; a caller's is the caller's to repeat.
void end_connecting(Store& db, int64_t at, const Call& call)
{
    const bool own =
        db.one<bool>("SELECT own FROM wwan_call WHERE profile = ? AND family = ?", call.profile, call.family.number)
            .value_or(false);
    if (!may_be_up(db, call.profile))
        return fail_to_connect(db, at, call, {}, own ? Then::kWaitsForHome : Then::kStaysDown);
    if (const auto reason = take_refusal(db, call, CallRequest::kConnect)) {
        const bool again = own && reconnects(db, call.profile);
        return fail_to_connect(db, at, call, *reason, again ? Then::kIsDialledAgain : Then::kStaysDown);
    }
    give_addresses(db, call);
    enter(db, call, "up", std::nullopt);
    db.run("UPDATE wwan_call SET calls = calls + 1, counted_from = ? WHERE profile = ? AND family = ?", at,
           call.profile, call.family.number);
    tell_brought_up(db, call, call.family.connected);
    tell_status(db, call, call.family.connected);
}

void end_disconnecting(Store& db, int64_t at, const Call& call)
{
    const auto reason = take_refusal(db, call, CallRequest::kDisconnect);
    if (reason && may_be_up(db, call.profile)) {
        enter(db, call, "up", std::nullopt);
        tell_torn_down(db, call, call.family.disconnecting_failed, *reason);
        tell_status(db, call, call.family.disconnecting_failed, *reason);
        return;
    }
    come_down(db, at, call, Then::kStaysDown);
    tell_torn_down(db, call, call.family.disconnected);
    tell_status(db, call, call.family.disconnected);
}

void end_by_network(Store& db, int64_t at, const Call& call, EndReason reason, Then then)
{
    if (state_of(db, call) == "connecting") return fail_to_connect(db, at, call, reason, then);
    come_down(db, at, call, then);
    tell_torn_down(db, call, call.family.disconnected, reason);
    tell_status(db, call, call.family.disconnected, reason);
}

// Dials a call that is awaited. Its profile may have changed since.
void redial(Store& db, int64_t at, const Call& call)
{
    if (!has_family(db, call))
        come_down(db, at, call, Then::kStaysDown);
    else if (!may_be_up(db, call.profile))
        come_down(db, at, call, Then::kWaitsForHome);
    else
        dial(db, at, call, Dialled::kByPlatform);
}

}  // namespace

qcmap_msgr_wwan_status_enum_v01 call_status(Store& db, const Call& call)
{
    const std::string state = state_of(db, call);
    if (state == "up") return call.family.connected;
    if (state == "connecting") return call.family.connecting;
    if (state == "disconnecting") return call.family.disconnecting;
    return call.family.disconnected;
}

bool is_connected(Store& db, uint32_t profile)
{
    return db.one<int>("SELECT 1 FROM wwan_call WHERE profile = ? AND state = 'up'", profile).has_value();
}

bool is_idle(Store& db, uint32_t profile)
{
    return !db.one<int>("SELECT 1 FROM wwan_call WHERE profile = ? AND state <> 'down'", profile);
}

bool is_awaited(Store& db, const Call& call)
{
    return db
        .one<int>(
            "SELECT 1 FROM wwan_call WHERE profile = ? AND family = ? AND state = 'down'"
            " AND (held = 1 OR due_ms IS NOT NULL)",
            call.profile, call.family.number)
        .has_value();
}

void dial(Store& db, int64_t at, const Call& call, Dialled by)
{
    const int64_t delay = call_delay(db, call.profile);
    tell_status(db, call, call.family.connecting);
    db.run("INSERT OR IGNORE INTO wwan_call (profile, family) VALUES (?, ?)", call.profile, call.family.number);
    enter(db, call, "connecting", at + delay);
    db.run("UPDATE wwan_call SET own = ? WHERE profile = ? AND family = ?", by == Dialled::kByPlatform, call.profile,
           call.family.number);
    if (delay == 0) end_connecting(db, at, call);
}

// What is not up yet goes at once: the network has nothing to give back then.
void hang_up(Store& db, int64_t at, const Call& call)
{
    tell_status(db, call, call.family.disconnecting);
    if (state_of(db, call) == "up") {
        const int64_t delay = call_delay(db, call.profile);
        enter(db, call, "disconnecting", at + delay);
        if (delay == 0) end_disconnecting(db, at, call);
        return;
    }
    come_down(db, at, call, Then::kStaysDown);
    tell_torn_down(db, call, call.family.disconnected);
    tell_status(db, call, call.family.disconnected);
}

bool drop(Store& db, int64_t at, const Call& call, EndReason reason)
{
    const std::string state = state_of(db, call);
    if (state == "down") return false;
    const bool again = state != "disconnecting" && reconnects(db, call.profile);
    end_by_network(db, at, call, reason, again ? Then::kIsDialledAgain : Then::kStaysDown);
    return true;
}

void give_up_redialling(Store& db, uint32_t profile)
{
    db.run("UPDATE wwan_call SET due_ms = NULL, own = 0 WHERE profile = ? AND state = 'down' AND held = 0", profile);
}

void drop_all(Store& db, int64_t at)
{
    for (const Call& call : calls_where(db, "state <> 'down'"))
        end_by_network(db, at, call, {}, Then::kStaysDown);
    db.run("UPDATE wwan_call SET due_ms = NULL, own = 0, held = 0");
}

void autoconnect(Store& db, int64_t at)
{
    std::vector<uint32_t> profiles;
    {
        Query q = db.query("SELECT handle FROM wwan_profile WHERE autoconnect = 1 ORDER BY handle");
        while (q.next())
            profiles.push_back(q.get<uint32_t>(0));
    }
    for (const uint32_t profile : profiles) {
        for (const Call& call : {Call{profile, kV4}, Call{profile, kV6}}) {
            if (has_family(db, call) && state_of(db, call) == "down" && !is_awaited(db, call))
                dial(db, at, call, Dialled::kByPlatform);
        }
    }
}

void follow_roaming(Store& db, int64_t at)
{
    for (const Call& call : calls_where(db, "state IN ('connecting', 'up')")) {
        if (!may_be_up(db, call.profile)) end_by_network(db, at, call, {}, Then::kWaitsForHome);
    }
    for (const Call& call : calls_where(db, "held = 1")) {
        if (may_be_up(db, call.profile)) redial(db, at, call);
    }
}

void continue_call(Store& db, int64_t at, uint32_t profile, int family)
{
    const Call call = {profile, family_of_number(family)};
    const std::string state = state_of(db, call);
    if (state == "connecting") return end_connecting(db, at, call);
    if (state == "disconnecting") return end_disconnecting(db, at, call);
    redial(db, at, call);
}

void count_traffic(Store& db, const Call& call, int64_t down, int64_t up)
{
    db.run("UPDATE wwan_call SET moved_down = moved_down + ?, moved_up = moved_up + ? WHERE profile = ? AND family = ?",
           down, up, call.profile, call.family.number);
}

void fill_connected_info(Store& db, uint32_t profile, qcmap_connected_wwan_info* info)
{
    Query q = db.query(
        "SELECT family, interface, address, netmask, prefix_length, gateway, primary_dns, secondary_dns, mtu"
        " FROM wwan_call WHERE profile = ? AND state = 'up'",
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

}  // namespace mobile_ap
