// What runs, as a tree: each profile, the LANs that it feeds, the devices on them.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "document.h"
#include "exit_status.h"
#include "figures.h"
#include "json.h"
#include "session.h"
#include "tell.h"
#include "verbs.h"

namespace ctl {
namespace {

using Texts = std::vector<std::string>;

std::string joined(const Texts& texts, const std::string& between)
{
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : between) + text;
    return all;
}

bool is_zero(const uint8_t (&bytes)[16])
{
    return std::all_of(std::begin(bytes), std::end(bytes), [](uint8_t byte) { return byte == 0; });
}

// The addresses of a connected family; empty where there is none.
struct Addresses {
    std::string address, gateway;
    Texts dns;
    uint32_t mtu = 0;
};

Addresses v4_addresses(const ProfileFigures& profile)
{
    const zr_nexa_wan_info_t& info = profile.info;
    Addresses all;
    if (!profile.v4.is_connected() || info.connected != 1) return all;
    all.address = net_text(ipv4_of(network_ipv4_text(info.v4_addr)), ipv4_of(network_ipv4_text(info.v4_netmask)));
    if (info.v4_gw_addr != 0) all.gateway = network_ipv4_text(info.v4_gw_addr);
    for (const uint32_t server : {info.v4_pri_dns_addr, info.v4_sec_dns_addr})
        if (server != 0) all.dns.push_back(network_ipv4_text(server));
    all.mtu = info.v4_mtu;
    return all;
}

Addresses v6_addresses(const ProfileFigures& profile)
{
    const zr_nexa_wan_info_t& info = profile.info;
    Addresses all;
    if (!profile.v6.is_connected() || info.connected != 1) return all;
    all.address = ipv6_text(info.v6_addr) + "/" + std::to_string(info.v6_prefix);
    if (!is_zero(info.v6_gw_addr)) all.gateway = ipv6_text(info.v6_gw_addr);
    if (!is_zero(info.v6_pri_dns_addr)) all.dns.push_back(ipv6_text(info.v6_pri_dns_addr));
    if (!is_zero(info.v6_sec_dns_addr)) all.dns.push_back(ipv6_text(info.v6_sec_dns_addr));
    all.mtu = info.v6_mtu;
    return all;
}

std::string interface_of(const ProfileFigures& profile)
{
    return escaped(profile.info.iface_name, sizeof profile.info.iface_name);
}

// ---- for people ----

std::string dials(const ProfileFigures& profile)
{
    Texts parts = {"APN index " + std::to_string(profile.apn_index)};
    if (!profile.apn_name.empty()) parts.push_back("APN " + profile.apn_name);
    if (!profile.technology.empty())
        parts.push_back(profile.technology == "any" ? "any technology" : profile.technology);
    if (!profile.family.empty()) parts.push_back(profile.family);
    return joined(parts, ", ");
}

std::string traffic(const std::string& received, uint64_t received_packets, const std::string& sent,
                    uint64_t sent_packets, uint64_t dropped)
{
    return "received " + received + " bytes in " + std::to_string(received_packets) + " packets, sent " + sent +
           " bytes in " + std::to_string(sent_packets) + " packets, " + std::to_string(dropped) + " dropped";
}

void print_family(const char* name, const FamilyFigures& family, const Addresses& addresses)
{
    if (family.state.empty()) return;
    Texts parts = {family.state};
    if (!addresses.address.empty()) parts.push_back(addresses.address);
    if (!addresses.gateway.empty()) parts.push_back("gateway " + addresses.gateway);
    if (!addresses.dns.empty()) parts.push_back("DNS " + joined(addresses.dns, " and "));
    if (addresses.mtu != 0) parts.push_back("MTU " + std::to_string(addresses.mtu));
    std::printf("  %s %s\n", name, joined(parts, ", ").c_str());
    const qcmap_msgr_wwan_statistics_type_v01& counts = family.counts;
    if (!family.is_counted || (counts.bytes_rx == 0 && counts.bytes_tx == 0)) return;
    std::printf("       %s\n", traffic(std::to_string(counts.bytes_rx), counts.pkts_rx, std::to_string(counts.bytes_tx),
                                       counts.pkts_tx, uint64_t{counts.pkts_dropped_rx} + counts.pkts_dropped_tx)
                                   .c_str());
}

void print_device(const DeviceFigures& device)
{
    Texts parts = {device.address, device.mac};
    if (!device.host_name.empty()) parts.push_back(device.host_name);
    parts.insert(parts.end(), device.v6_addresses.begin(), device.v6_addresses.end());
    std::printf("    %s, received %s bytes, sent %s bytes\n", joined(parts, "  ").c_str(),
                std::to_string(device.received_bytes).c_str(), std::to_string(device.sent_bytes).c_str());
}

void print_devices(const Figures& figures, int lan)
{
    for (const DeviceFigures& device : figures.devices)
        if (device.lan == lan) print_device(device);
}

void print_lan(const Figures& figures, const LanFigures& lan)
{
    std::printf("  LAN %u%s\n", lan.id, lan.has_net ? (", " + lan.net()).c_str() : "");
    Texts servers = lan.v4_sip_servers;
    servers.insert(servers.end(), lan.v6_sip_servers.begin(), lan.v6_sip_servers.end());
    if (!servers.empty()) std::printf("    SIP servers of the network: %s\n", joined(servers, ", ").c_str());
    print_devices(figures, static_cast<int>(lan.id));
}

void print_tree(const Figures& figures)
{
    for (const ProfileFigures& profile : figures.profiles) {
        const std::string interface = interface_of(profile);
        std::printf("%s: %s%s%s\n", profile.name().c_str(), dials(profile).c_str(),
                    profile.roles.empty() ? "" : ("; " + joined(profile.roles, ", ")).c_str(),
                    interface.empty() ? "" : ("; on " + interface).c_str());
        print_family("IPv4", profile.v4, v4_addresses(profile));
        print_family("IPv6", profile.v6, v6_addresses(profile));
        for (const LanFigures& lan : figures.lans)
            if (std::count(profile.lans.begin(), profile.lans.end(), lan.id) != 0) print_lan(figures, lan);
    }
    bool is_first = true;
    for (const LanFigures& lan : figures.lans) {
        if (!lan.profiles.empty()) continue;
        if (std::exchange(is_first, false)) std::printf("without a profile:\n");
        print_lan(figures, lan);
    }
    is_first = true;
    for (const DeviceFigures& device : figures.devices) {
        if (device.lan >= 0) continue;
        if (std::exchange(is_first, false)) std::printf("on no LAN that is known:\n");
        print_device(device);
    }
}

// ---- for programs ----

Value text_value(const std::string& text)
{
    return Value(Scalar{text, true});
}

Value texts_value(const Texts& texts)
{
    Value::List list;
    for (const std::string& text : texts)
        list.push_back(text_value(text));
    return list;
}

// Scalars that are no texts, which are numbers and flags, are not quoted.
std::string json(const Value& value)
{
    std::string out;
    if (value.is_list()) {
        for (const Value& each : value.list())
            out += (out.empty() ? "" : ", ") + json(each);
        return "[" + out + "]";
    }
    if (value.is_map()) {
        for (const auto& [key, each] : value.map())
            out += (out.empty() ? "" : ", ") + quoted(key) + ": " + json(each);
        return "{" + out + "}";
    }
    if (value.is_nothing()) return "null";
    return value.quoted() ? quoted(value.text()) : value.text();
}

Value family_value(const FamilyFigures& family, const Addresses& addresses)
{
    Value out;
    out.map();
    if (!family.state.empty()) out.map()["state"] = text_value(family.state);
    if (!addresses.address.empty()) {
        out.map()["address"] = text_value(addresses.address);
        if (!addresses.gateway.empty()) out.map()["gateway"] = text_value(addresses.gateway);
        out.map()["dns"] = texts_value(addresses.dns);
        out.map()["mtu"] = addresses.mtu;
    }
    if (family.is_counted) {
        out.map()["received_bytes"] = family.counts.bytes_rx;
        out.map()["sent_bytes"] = family.counts.bytes_tx;
        out.map()["received_packets"] = family.counts.pkts_rx;
        out.map()["sent_packets"] = family.counts.pkts_tx;
        out.map()["received_dropped_packets"] = family.counts.pkts_dropped_rx;
        out.map()["sent_dropped_packets"] = family.counts.pkts_dropped_tx;
    }
    return out;
}

Value profile_value(const ProfileFigures& profile)
{
    Value out;
    out.map()["handle"] = profile.handle;
    out.map()["apn_index"] = profile.apn_index;
    out.map()["apn_name"] = text_value(profile.apn_name);
    if (!profile.technology.empty()) out.map()["technology"] = text_value(profile.technology);
    if (!profile.family.empty()) out.map()["family"] = text_value(profile.family);
    if (profile.info.connected == 1) out.map()["interface"] = text_value(interface_of(profile));
    out.map()["roles"] = texts_value(profile.roles);
    out.map()["ipv4"] = family_value(profile.v4, v4_addresses(profile));
    out.map()["ipv6"] = family_value(profile.v6, v6_addresses(profile));
    Value::List lans;
    for (const uint32_t lan : profile.lans)
        lans.emplace_back(lan);
    out.map()["lans"] = lans;
    return out;
}

Value device_value(const DeviceFigures& device)
{
    Value out;
    out.map()["address"] = text_value(device.address);
    out.map()["mac"] = text_value(device.mac);
    out.map()["type"] = device.type;
    out.map()["host_name"] = text_value(device.host_name);
    out.map()["ipv6"] = texts_value(device.v6_addresses);
    out.map()["received_bytes"] = device.received_bytes;
    out.map()["sent_bytes"] = device.sent_bytes;
    if (device.lan >= 0) out.map()["lan"] = device.lan;
    return out;
}

void print_json(const Figures& figures)
{
    Value::List profiles;
    for (const ProfileFigures& profile : figures.profiles)
        profiles.push_back(profile_value(profile));
    Value::List lans;
    for (const LanFigures& lan : figures.lans) {
        Value each;
        each.map()["lan"] = lan.id;
        if (lan.has_net) each.map()["address"] = text_value(lan.net());
        each.map()["sip_servers"] = texts_value(lan.v4_sip_servers);
        each.map()["ipv6_sip_servers"] = texts_value(lan.v6_sip_servers);
        lans.push_back(each);
    }
    Value::List devices;
    for (const DeviceFigures& device : figures.devices)
        devices.push_back(device_value(device));
    Value all;
    all.map()["profiles"] = profiles;
    all.map()["lans"] = lans;
    all.map()["devices"] = devices;
    std::printf("%s\n", json(all).c_str());
}

// ---- for Graphviz ----

// Lines below each other.
std::string label(const Texts& lines)
{
    std::string all;
    for (const std::string& line : lines) {
        const std::string in_quotes = quoted(line);
        if (!line.empty()) all += (all.empty() ? "" : "\\n") + in_quotes.substr(1, in_quotes.size() - 2);
    }
    return "\"" + all + "\"";
}

std::string family_line(const char* name, const FamilyFigures& family, const Addresses& addresses)
{
    if (family.state.empty()) return "";
    return std::string(name) + " " + (addresses.address.empty() ? family.state : addresses.address);
}

void print_dot(const Figures& figures)
{
    std::printf("digraph module {\n  rankdir=LR;\n  node [shape=box];\n");
    for (const ProfileFigures& profile : figures.profiles) {
        const bool is_connected = profile.v4.is_connected() || profile.v6.is_connected();
        std::printf("  %s [label=%s%s];\n", quoted(profile.name()).c_str(),
                    label({profile.name(), profile.apn_name, joined(profile.roles, ", "),
                           family_line("IPv4", profile.v4, v4_addresses(profile)),
                           family_line("IPv6", profile.v6, v6_addresses(profile))})
                        .c_str(),
                    is_connected ? ", style=filled, fillcolor=palegreen" : "");
    }
    for (const LanFigures& lan : figures.lans) {
        std::printf("  \"lan-%u\" [label=%s];\n", lan.id, label({"LAN " + std::to_string(lan.id), lan.net()}).c_str());
        for (const uint32_t profile : lan.profiles)
            std::printf("  \"profile-%u\" -> \"lan-%u\";\n", profile, lan.id);
    }
    for (const DeviceFigures& device : figures.devices) {
        const std::string name = quoted("device-" + device.mac);
        std::printf("  %s [shape=ellipse, label=%s];\n", name.c_str(),
                    label({device.host_name, device.address, device.mac}).c_str());
        if (device.lan >= 0) std::printf("  \"lan-%d\" -> %s;\n", device.lan, name.c_str());
    }
    std::printf("}\n");
}

int status(bool as_json, bool as_dot)
{
    const Session session;
    if (!session.problem().empty()) {
        tell_problem(session.problem());
        if (as_json) std::fputs(json_ending(kNoService).c_str(), stdout);
        return kNoService;
    }
    const Figures figures = read_figures();
    if (as_json)
        print_json(figures);
    else if (as_dot)
        print_dot(figures);
    else
        print_tree(figures);
    return status_of(figures);
}

}  // namespace

void add_status(CLI::App& app, Work* chosen)
{
    CLI::App* const verb = app.add_subcommand("status", "What runs: profiles, the LANs they feed, the devices on them");
    const auto as_json = std::make_shared<bool>(false);
    const auto as_dot = std::make_shared<bool>(false);
    CLI::Option* const json_flag = verb->add_flag("--json", *as_json, "As a JSON object");
    verb->add_flag("--dot", *as_dot, "As a graph for Graphviz")->excludes(json_flag);
    verb->final_callback([=] { *chosen = [=] { return status(*as_json, *as_dot); }; });
}

}  // namespace ctl
