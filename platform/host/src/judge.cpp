#include "judge.h"

#include <algorithm>
#include <vector>

#include "addresses.h"
#include "diag_msg.h"
#include "store.h"

namespace mobile_ap {
namespace {

struct Lan {
    int id;
    uint32_t gateway;
    uint32_t netmask;
    uint32_t first;
    uint32_t last;
    uint32_t lease;
    uint32_t mtu;

    uint32_t net() const
    {
        return gateway & netmask;
    }
    bool holds(uint32_t address) const
    {
        return (address & netmask) == net();
    }
};

using Lans = std::vector<Lan>;
using Findings = std::vector<std::string>;

std::string net_text(const Lan& lan)
{
    return ipv4_text(lan.net()) + "/" + ipv4_text(lan.netmask);
}

std::string pool_text(const Lan& lan)
{
    return "pool " + ipv4_text(lan.first) + "-" + ipv4_text(lan.last);
}

// ---- what changes ----

bool net_changes(const Lan& was, const Lan& lan)
{
    return was.net() != lan.net() || was.netmask != lan.netmask;
}

bool pool_changes(const Lan& was, const Lan& lan)
{
    return was.first != lan.first || was.last != lan.last;
}

// ---- the rules for one LAN ----

struct LanRule {
    bool (*concerns)(const Lan& was, const Lan& lan);
    bool (*holds)(const Lan& lan);
    std::string (*finding)(const Lan& lan);
};

constexpr uint32_t kLeaseMax = 2147483647;
constexpr uint32_t kMtuMin = 576;
constexpr uint32_t kMtuMax = 9216;

constexpr LanRule kLanRules[] = {
    {[](const Lan& was, const Lan& lan) { return was.netmask != lan.netmask; },
     [](const Lan& lan) { return (~lan.netmask & (~lan.netmask + 1)) == 0; },
     [](const Lan& lan) { return "netmask " + ipv4_text(lan.netmask) + " has holes"; }},
    {[](const Lan& was, const Lan& lan) { return net_changes(was, lan) || pool_changes(was, lan); },
     [](const Lan& lan) { return lan.holds(lan.first) && lan.holds(lan.last); },
     [](const Lan& lan) { return pool_text(lan) + " is not inside the LAN's net " + net_text(lan); }},
    {[](const Lan& was, const Lan& lan) { return pool_changes(was, lan); },
     [](const Lan& lan) { return lan.first <= lan.last; },
     [](const Lan& lan) { return pool_text(lan) + " is reversed"; }},
    {[](const Lan& was, const Lan& lan) { return was.gateway != lan.gateway || pool_changes(was, lan); },
     [](const Lan& lan) { return lan.gateway < lan.first || lan.gateway > lan.last; },
     [](const Lan& lan) { return "gateway " + ipv4_text(lan.gateway) + " is in the " + pool_text(lan); }},
    {[](const Lan& was, const Lan& lan) { return was.lease != lan.lease; },
     [](const Lan& lan) { return lan.lease >= 1 && lan.lease <= kLeaseMax; },
     [](const Lan& lan) { return "lease time " + std::to_string(lan.lease) + " is not in 1..2147483647"; }},
    {[](const Lan& was, const Lan& lan) { return was.mtu != lan.mtu; },
     [](const Lan& lan) { return lan.mtu == 0 || (lan.mtu >= kMtuMin && lan.mtu <= kMtuMax); },
     [](const Lan& lan) { return "MTU " + std::to_string(lan.mtu) + " is neither 0 nor in 576..9216"; }},
};

// ---- the rules against what stands ----

void find_overlaps(const Lans& lans, const Lan& lan, Findings* findings)
{
    for (const Lan& other : lans) {
        // Two nets have an address in common when they agree in all bits that both fix.
        if (other.id == lan.id || ((lan.gateway ^ other.gateway) & lan.netmask & other.netmask) != 0) continue;
        findings->push_back("LAN " + std::to_string(lan.id) + ": net " + net_text(lan) + " overlaps LAN " +
                            std::to_string(other.id) + "'s, " + net_text(other));
    }
}

bool is_in_a_lan(const Lans& lans, uint32_t address)
{
    return std::any_of(lans.begin(), lans.end(), [&](const Lan& lan) { return lan.holds(address); });
}

void find_outside(const Lans& lans, uint32_t reserved, Findings* findings)
{
    if (!is_in_a_lan(lans, reserved))
        findings->push_back("reservation " + ipv4_text(reserved) + " is outside every LAN's net");
}

// A host behind a router in the LAN is reached only with routing-behind.
void find_unreachable(Store& db, const Lans& lans, const char* what, uint32_t profile, uint32_t host,
                      Findings* findings)
{
    if (is_in_a_lan(lans, host) || db.one<int>("SELECT routing_behind FROM nat_service").value_or(0) != 0) return;
    findings->push_back(std::string(what) + " " + ipv4_text(host) + " of profile " + std::to_string(profile) +
                        " is outside every LAN's net, and routing-behind is off");
}

constexpr const char kDmzHost[] = "DMZ host";
constexpr const char kMappedHost[] = "mapped host";

// ---- what stands ----

Lans standing_lans(Store& db)
{
    Lans lans;
    Query q = db.query(
        "SELECT id, gateway_ip, netmask, dhcp_start_ip, dhcp_end_ip, lease_time, mtu FROM lan_bridge ORDER BY id");
    while (q.next())
        lans.push_back({q.get<int>(0), ipv4_word(q.get<std::string>(1)), ipv4_word(q.get<std::string>(2)),
                        ipv4_word(q.get<std::string>(3)), ipv4_word(q.get<std::string>(4)), q.get<uint32_t>(5),
                        q.get<uint32_t>(6)});
    return lans;
}

void find_reservations_outside(Store& db, const Lans& lans, Findings* findings)
{
    Query q = db.query("SELECT reserved_ip FROM dhcp_reservation ORDER BY position");
    while (q.next())
        find_outside(lans, ipv4_word(q.get<std::string>(0)), findings);
}

void find_hosts_unreachable(Store& db, const Lans& lans, Findings* findings)
{
    Query dmz = db.query("SELECT profile, dmz_ip FROM nat WHERE dmz_ip <> '0.0.0.0' ORDER BY profile");
    while (dmz.next())
        find_unreachable(db, lans, kDmzHost, dmz.get<uint32_t>(0), ipv4_word(dmz.get<std::string>(1)), findings);
    Query mapped = db.query(
        "SELECT profile, private_ip FROM nat_static_entry GROUP BY profile, private_ip ORDER BY profile, min(id)");
    while (mapped.next())
        find_unreachable(db, lans, kMappedHost, mapped.get<uint32_t>(0), ipv4_word(mapped.get<std::string>(1)),
                         findings);
}

// ---- what becomes of it ----

void tell(const char* method, const Findings& findings)
{
    static constexpr msg_const_type kRecord = {1, 66, MSG_LEVEL_ERROR, "[%s]%s(): %s", "judge"};
    for (const std::string& finding : findings)
        msg_sprintf(&kRecord, "MOBILE_AP", method, finding.c_str());
}

void conclude(Store& db, const char* method, const Findings& findings)
{
    tell(method, findings);
    if (!findings.empty() && db.judging() == Judging::kRefuse) refuse(QMI_ERR_INVALID_ARG_V01);
}

void tell_left_outside(Store& db, const char* method, const Lans& lans)
{
    Findings findings;
    find_reservations_outside(db, lans, &findings);
    find_hosts_unreachable(db, lans, &findings);
    tell(method, findings);
}

void judge_host(Store& db, const char* method, const char* what, uint32_t profile, uint32_t host)
{
    if (db.judging() == Judging::kOff) return;
    Findings findings;
    find_unreachable(db, standing_lans(db), what, profile, host, &findings);
    conclude(db, method, findings);
}

}  // namespace

bool parse_judging(const std::string& word, Judging* judging)
{
    if (word.empty())
        *judging = Judging::kOff;
    else if (word == "log")
        *judging = Judging::kLog;
    else if (word == "refuse")
        *judging = Judging::kRefuse;
    else
        return false;
    return true;
}

void judge_lan(Store& db, const char* method, int bridge, const qcmap_msgr_lan_config_v01& wanted)
{
    if (db.judging() == Judging::kOff) return;
    const Lan lan = {
        bridge,    wanted.gateway_ip, wanted.netmask, wanted.dhcp_start_ip, wanted.dhcp_end_ip, wanted.lease_time,
        wanted.mtu};
    Lans lans = standing_lans(db);
    const auto standing = std::find_if(lans.begin(), lans.end(), [&](const Lan& one) { return one.id == bridge; });
    if (standing == lans.end()) return;
    const Lan was = *standing;
    *standing = lan;

    Findings findings;
    for (const LanRule& rule : kLanRules)
        if (rule.concerns(was, lan) && !rule.holds(lan))
            findings.push_back("LAN " + std::to_string(bridge) + ": " + rule.finding(lan));
    if (net_changes(was, lan)) find_overlaps(lans, lan, &findings);
    conclude(db, method, findings);
    if (net_changes(was, lan)) tell_left_outside(db, method, lans);
}

void judge_reservation(Store& db, const char* method, uint32_t address)
{
    if (db.judging() == Judging::kOff) return;
    Findings findings;
    find_outside(standing_lans(db), address, &findings);
    conclude(db, method, findings);
}

void judge_dmz_host(Store& db, const char* method, uint32_t profile, uint32_t address)
{
    judge_host(db, method, kDmzHost, profile, address);
}

void judge_mapped_host(Store& db, const char* method, uint32_t profile, uint32_t address)
{
    judge_host(db, method, kMappedHost, profile, address);
}

// Its net is the platform's choice, and the caller can give it another one only once it is there.
void judge_new_bridge(Store& db, const char* method, int bridge)
{
    if (db.judging() == Judging::kOff) return;
    Findings findings;
    const Lans lans = standing_lans(db);
    for (const Lan& lan : lans)
        if (lan.id == bridge) find_overlaps(lans, lan, &findings);
    tell(method, findings);
}

void judge_bridge_gone(Store& db, const char* method)
{
    if (db.judging() == Judging::kOff) return;
    tell_left_outside(db, method, standing_lans(db));
}

void judge_routing_behind(Store& db, const char* method)
{
    if (db.judging() == Judging::kOff) return;
    Findings findings;
    find_hosts_unreachable(db, standing_lans(db), &findings);
    tell(method, findings);
}

}  // namespace mobile_ap
