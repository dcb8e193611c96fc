// LAN services: DHCP reservations and packet statistics of the module, L2TP of a LAN.
#include <zr_nexa/lan_services.h>

#include <algorithm>
#include <cstring>

#include "keys.h"

namespace ctl {
namespace {

constexpr uint32_t kAny = 0xffffffff;
constexpr uint32_t kPortMax = 65535;

constexpr uint32_t kMtuMin = 576;
constexpr uint32_t kMtuMax = 9000;
constexpr uint32_t kMssMin = 536;
constexpr uint32_t kMssMax = 8960;

// ---- reservations ----

constexpr uint8_t kNoMac[6] = {};

Type host()
{
    Type type = ipv4();
    type.low = 1;
    return type;
}

zr_nexa_lan_dhcp_reserv_record_t record_of(const std::string& address, const Value& entry)
{
    zr_nexa_lan_dhcp_reserv_record_t record = {};
    mac_of(entry.child("mac").text(), record.mac);
    record.reserved_ip = network_ipv4_of(address);
    const std::string name = unescaped(entry.child("name").text());
    std::memcpy(record.device_name, name.data(), std::min(name.size(), sizeof record.device_name));
    record.enable = entry.child("enabled").flag() ? 1 : 0;
    return record;
}

Result read_reservations(uint32_t, Value* out)
{
    zr_nexa_lan_dhcp_reserv_list_t list = {};
    Result result = CALL(zr_nexa_lan_dhcp_reserv_record_get_v1, &list);
    if (!result.good()) return result;
    out->map();
    for (uint32_t i = 0; i < list.count; ++i) {
        const zr_nexa_lan_dhcp_reserv_record_t& record = list.record[i];
        // The service takes none of these: it cannot be made again.
        if (record.reserved_ip == 0 || std::memcmp(record.mac, kNoMac, sizeof kNoMac) == 0) continue;
        out->map()[network_ipv4_text(record.reserved_ip)] =
            Value::Map{{"mac", mac_text(record.mac)},
                       {"name", escaped(record.device_name, sizeof record.device_name)},
                       {"enabled", Value(record.enable != 0)}};
    }
    return result;
}

Row reservations_row()
{
    Row row = {
        Scope::kModule,
        Shape::kKeyed,
        Phase::kReservations,
        "reservations",
        {needed({"mac", plain(Type::Kind::kMac), "device that always gets this address"}),
         or_else({"name", text(0, sizeof(zr_nexa_lan_dhcp_reserv_record_t::device_name)), "name of the device"}, ""),
         or_else({"enabled", flag(), "the reservation is in use"}, "true")},
        {"zr_nexa_lan_dhcp_reserv_record_add_v1", "zr_nexa_lan_dhcp_reserv_record_get_v1",
         "zr_nexa_lan_dhcp_reserv_record_edit_v1", "zr_nexa_lan_dhcp_reserv_record_del_v1"}};
    row.key = host();
    row.most = ZR_NEXA_LAN_DHCP_RESERVATIONS_MAX;
    row.only_once = "mac";
    row.read = read_reservations;
    row.add = [](uint32_t, const std::string& address, const Value& entry) {
        const zr_nexa_lan_dhcp_reserv_record_t record = record_of(address, entry);
        return CALL(zr_nexa_lan_dhcp_reserv_record_add_v1, &record);
    };
    row.change = [](uint32_t, const std::string& address, const Value& wanted, const Value&) {
        const zr_nexa_lan_dhcp_reserv_record_t record = record_of(address, wanted);
        return CALL(zr_nexa_lan_dhcp_reserv_record_edit_v1, record.reserved_ip, &record);
    };
    row.remove = [](uint32_t, const std::string& address, const Value&) {
        return CALL(zr_nexa_lan_dhcp_reserv_record_del_v1, network_ipv4_of(address));
    };
    row.check = [](const Value& entry, const std::string& path, const Complain& complain) {
        if (entry.child("mac").text() == mac_text(kNoMac))
            complain(entry.child("mac"), path + ".mac", "a device's MAC, not all zero");
    };
    return row;
}

// ---- L2TP ----

constexpr uint32_t kUnmanaged = 1;
constexpr uint32_t kManaged = 2;
constexpr uint32_t kUdp = 1;
constexpr uint32_t kNoSuchTunnel = 0x201a;  // of deleting

const Words kModes = {{kUnmanaged, "unmanaged"}, {kManaged, "managed"}};
const Words kEncapsulations = {{kUdp, "udp"}, {2, "ip"}};

bool is_mtu(uint32_t mtu)
{
    return mtu == 0 || (mtu >= kMtuMin && mtu <= kMtuMax);
}

bool is_mss(uint32_t mss)
{
    return mss >= kMssMin && mss <= kMssMax;
}

void check_mtu(const Value& mtu, const std::string& path, const Complain& complain)
{
    if (!mtu.is_nothing() && !is_mtu(mtu.number()))
        complain(mtu, path, "0 for the service's own, or 576 to 9000, not " + mtu.text());
}

bool is_unspecified(const std::string& address)
{
    return address == "0.0.0.0" || address == "::";
}

// A tunnel as an entry; nothing for one that the interface does not take back.
Value tunnel_value(const zr_nexa_lan_l2tp_tunnel_t& tunnel)
{
    const bool is_v4 = tunnel.ip_family == ZR_NEXA_IP_V4;
    const std::string encapsulation = word_of(kEncapsulations, tunnel.encapsulation);
    const std::string local = is_v4 ? network_ipv4_text(tunnel.local_ipv4) : ipv6_text(tunnel.local_ipv6);
    const std::string peer = is_v4 ? network_ipv4_text(tunnel.peer_ipv4) : ipv6_text(tunnel.peer_ipv6);
    if (tunnel.tunnel_id == 0 || tunnel.peer_tunnel_id == 0 || encapsulation.empty() || !is_mtu(tunnel.mtu) ||
        (!is_v4 && tunnel.ip_family != ZR_NEXA_IP_V6) || is_unspecified(local) || is_unspecified(peer))
        return {};

    Value::List sessions;
    for (uint32_t i = 0; i < tunnel.session_count; ++i) {
        const zr_nexa_lan_l2tp_session_t& session = tunnel.session[i];
        if (session.local_session_id == 0 || session.peer_session_id == 0) return {};
        sessions.emplace_back(Value::Map{{"local", session.local_session_id}, {"peer", session.peer_session_id}});
    }
    if (sessions.empty()) return {};

    Value::Map entry = {{"peer_tunnel", tunnel.peer_tunnel_id},
                        {"encapsulation", encapsulation},
                        {"local", local},
                        {"peer", peer},
                        {"mtu", tunnel.mtu},
                        {"sessions", sessions}};
    if (tunnel.encapsulation == kUdp) {
        if (tunnel.local_port == 0 || tunnel.peer_port == 0) return {};
        entry["local_port"] = tunnel.local_port;
        entry["peer_port"] = tunnel.peer_port;
    }
    return entry;
}

zr_nexa_lan_l2tp_tunnel_t tunnel_of(const std::string& id, const Value& entry)
{
    zr_nexa_lan_l2tp_tunnel_t tunnel = {};
    tunnel.tunnel_id = Value(id).number();
    tunnel.peer_tunnel_id = entry.child("peer_tunnel").number();
    tunnel.encapsulation = code_of(kEncapsulations, entry.child("encapsulation").text());
    const std::string& local = entry.child("local").text();
    const std::string& peer = entry.child("peer").text();
    if (is_ipv6(local)) {
        tunnel.ip_family = ZR_NEXA_IP_V6;
        ipv6_of(local, tunnel.local_ipv6);
        ipv6_of(peer, tunnel.peer_ipv6);
    } else {
        tunnel.ip_family = ZR_NEXA_IP_V4;
        tunnel.local_ipv4 = network_ipv4_of(local);
        tunnel.peer_ipv4 = network_ipv4_of(peer);
    }
    tunnel.local_port = static_cast<uint16_t>(entry.child("local_port").number());
    tunnel.peer_port = static_cast<uint16_t>(entry.child("peer_port").number());
    tunnel.mtu = entry.child("mtu").number();
    for (const Value& session : entry.child("sessions").list())
        tunnel.session[tunnel.session_count++] = {session.child("local").number(), session.child("peer").number()};
    return tunnel;
}

Result read_l2tp(uint32_t lan, zr_nexa_lan_l2tp_info_t* info)
{
    *info = {};
    return CALL(zr_nexa_lan_l2tp_get_v1, lan, info);
}

// Every tunnel is written with a mode, and the LAN has the mode that was written last.
Result write_tunnel(uint32_t lan, uint32_t mode, const zr_nexa_lan_l2tp_tunnel_t& tunnel)
{
    const zr_nexa_lan_l2tp_cfg_t config = {mode == kManaged ? kManaged : kUnmanaged, tunnel};
    return CALL(zr_nexa_lan_l2tp_set_v1, lan, &config);
}

Result put_tunnel(uint32_t lan, const std::string& id, const Value& entry)
{
    zr_nexa_lan_l2tp_info_t info;
    Result result = read_l2tp(lan, &info);
    return result.good() ? write_tunnel(lan, info.mode, tunnel_of(id, entry)) : result;
}

void check_tunnel(const Value& entry, const std::string& path, const Complain& complain)
{
    const Value& local = entry.child("local");
    const Value& peer = entry.child("peer");
    for (const auto& [address, key] : {std::pair(&local, ".local"), std::pair(&peer, ".peer")})
        if (is_unspecified(address->text())) complain(*address, path + key, "an address other than " + address->text());
    if (is_ipv6(local.text()) != is_ipv6(peer.text()))
        complain(peer, path + ".peer", "an address of local's family, not " + peer.text());
    check_mtu(entry.child("mtu"), path + ".mtu", complain);
    const bool is_udp = entry.child("encapsulation").text() == "udp";
    for (const char* key : {"local_port", "peer_port"}) {
        if (is_udp && !entry.has(key)) complain(entry, path, std::string(key) + " is missing");
        if (!is_udp && entry.has(key)) complain(entry.child(key), path + "." + key, "only with udp");
    }
}

Row tunnels_row()
{
    const Type id = number(1, kAny);
    Row row = {Scope::kLan,
               Shape::kKeyed,
               Phase::kLanSettings,
               "l2tp.tunnels",
               {needed({"peer_tunnel", id, "tunnel id at the peer"}),
                needed({"encapsulation", word(all_words(kEncapsulations)), "what carries the tunnel"}),
                needed({"local", plain(Type::Kind::kIp), "outer address here"}),
                needed({"peer", plain(Type::Kind::kIp), "outer address of the peer, of the same family"}),
                optional({"local_port", number(1, kPortMax), "UDP port here"}),
                optional({"peer_port", number(1, kPortMax), "UDP port of the peer"}),
                or_else({"mtu", number(0, kMtuMax), "MTU in bytes, 576 or more; 0: the service's own"}, "0"),
                needed({"sessions",
                        list_of_records(
                            {needed({"local", id, "session id here"}), needed({"peer", id, "session id at the peer"})},
                            ZR_NEXA_LAN_L2TP_SESSIONS_MAX),
                        "sessions in the tunnel, in order"})},
               {"zr_nexa_lan_l2tp_set_v1", "zr_nexa_lan_l2tp_get_v1", "zr_nexa_lan_l2tp_delete_v1"}};
    row.fields.back().type.low = 1;
    row.key = id;
    row.most = ZR_NEXA_LAN_L2TP_TUNNELS_MAX;
    row.about = "tunnels of the LAN, by their ids here";
    row.next_follows = true;  // the mode
    row.also_changes = {"l2tp.mode"};
    row.read = [](uint32_t lan, Value* out) {
        zr_nexa_lan_l2tp_info_t info;
        Result result = read_l2tp(lan, &info);
        if (!result.good()) return result;
        out->map();
        for (uint32_t i = 0; i < info.tunnel_count; ++i) {
            Value entry = tunnel_value(info.tunnel[i]);
            if (!entry.is_nothing()) out->map()[std::to_string(info.tunnel[i].tunnel_id)] = std::move(entry);
        }
        return result;
    };
    row.add = put_tunnel;
    row.change = [](uint32_t lan, const std::string& key, const Value& wanted, const Value&) {
        return put_tunnel(lan, key, wanted);
    };
    row.remove = [](uint32_t lan, const std::string& key, const Value&) {
        Result result = CALL(zr_nexa_lan_l2tp_delete_v1, lan, Value(key).number());
        if (result.code == kNoSuchTunnel) result.code = 0;
        return result;
    };
    row.check = check_tunnel;
    return row;
}

Result read_switch(uint32_t lan, Value* out)
{
    zr_nexa_lan_l2tp_info_t info;
    Result result = read_l2tp(lan, &info);
    if (!result.good()) return result;
    Value::Map& record = out->map();
    record["l2tp.enabled"] = Value(info.state != 0);
    if (is_mtu(info.mtu)) record["l2tp.mtu"] = info.mtu;
    if (info.clamp_mss == 0 || is_mss(info.mss)) record["l2tp.mss"] = info.mss;
    record["l2tp.clamp_mss"] = Value(info.clamp_mss != 0);
    // Without tunnels the mode says nothing, and managed stays behind when the last one goes.
    const std::string mode = word_of(kModes, info.tunnel_count == 0 ? kUnmanaged : info.mode);
    if (!mode.empty()) record["l2tp.mode"] = mode;
    return result;
}

// The switch makes the LAN's mode unmanaged, and tunnels have been written with the mode that was there: so the tunnels
// of a managed LAN are written again. What is as wanted is not touched.
Result write_switch(uint32_t lan, const Value& wanted, const Value&)
{
    zr_nexa_lan_l2tp_info_t info;
    Result result = read_l2tp(lan, &info);
    if (!result.good()) return result;

    zr_nexa_lan_unmanaged_l2tp_cfg_t config = {};
    config.state = wanted.child("l2tp.enabled").flag() ? 1 : 0;
    config.mtu = wanted.child("l2tp.mtu").number();
    config.mss = wanted.child("l2tp.mss").number();
    config.clamp_mss = wanted.child("l2tp.clamp_mss").flag() ? 1 : 0;
    const uint32_t mode = code_of(kModes, wanted.child("l2tp.mode").text());  // 0: none is wanted
    const bool same = config.state == info.state && config.mtu == info.mtu && config.mss == info.mss &&
                      config.clamp_mss == info.clamp_mss;
    if (!same || (mode == kUnmanaged && info.tunnel_count > 0 && info.mode != kUnmanaged)) {
        result = CALL(zr_nexa_lan_unmanaged_l2tp_state_set_v1, lan, &config);
        if (result.code >= ZR_NEXA_STEP_UNIT) return result;  // a word below it may come with success
        info.mode = kUnmanaged;
    }
    if (mode != kManaged || info.mode == kManaged) return result;
    for (uint32_t i = 0; i < info.tunnel_count; ++i) {
        if (tunnel_value(info.tunnel[i]).is_nothing()) continue;
        const Result again = write_tunnel(lan, kManaged, info.tunnel[i]);
        if (!again.good()) result = again;
    }
    return result;
}

Row switch_row()
{
    Row row = {Scope::kLan,
               Shape::kUnit,
               Phase::kLanSettings,
               "",
               {{"l2tp.enabled", flag(), "unmanaged L2TP", "false"},
                {"l2tp.mtu", number(0, kMtuMax), "MTU in bytes, 576 or more; 0: the service's own", "0"},
                {"l2tp.mss", number(0, kAny), "size in bytes that TCP segments are clamped to, then 536 to 8960", "0"},
                {"l2tp.clamp_mss", flag(), "TCP segment sizes are clamped to mss", "false"},
                {"l2tp.mode", word(all_words(kModes)), "mode of the LAN's tunnels; managed only where there are some",
                 "unmanaged"}},
               {"zr_nexa_lan_unmanaged_l2tp_state_set_v1", "zr_nexa_lan_l2tp_get_v1", "zr_nexa_lan_l2tp_set_v1"}};
    row.read = read_switch;
    row.write = write_switch;
    row.check = [](const Value& record, const std::string& path, const Complain& complain) {
        check_mtu(record.child("l2tp.mtu"), path + ".l2tp.mtu", complain);
        const Value& mss = record.child("l2tp.mss");
        if (record.child("l2tp.clamp_mss").flag() && !mss.is_nothing() && !is_mss(mss.number()))
            complain(mss, path + ".l2tp.mss", "536 to 8960 where it is clamped to, not " + mss.text());
    };
    return row;
}

}  // namespace

std::vector<Row> lan_services_rows()
{
    return {module_flag(
                Phase::kModule,
                {"general.packet_statistics", flag(), "bytes to and from the devices of the LANs are counted", "false"},
                NAMED(zr_nexa_lan_packetstats_set_v1), NAMED(zr_nexa_lan_packetstats_get_v1)),
            reservations_row(), tunnels_row(), switch_row()};
}

}  // namespace ctl
