// The firewall of a profile and its entries, and hardware MAC filtering.
#include <zr_nexa/firewall.h>

#include <algorithm>

#include "keys.h"

namespace ctl {
namespace {

using Entry = zr_nexa_firewall_entry_t;

const Words kPolicies = {{0, "drop"}, {1, "let-through"}};
const Words kFamilies = {{ZR_NEXA_IP_V4, "ipv4"}, {ZR_NEXA_IP_V6, "ipv6"}};
const Words kProtocols = {{ZR_NEXA_FIREWALL_PROTO_TCP, "tcp"},         {ZR_NEXA_FIREWALL_PROTO_UDP, "udp"},
                          {ZR_NEXA_FIREWALL_PROTO_TCP_UDP, "tcp-udp"}, {ZR_NEXA_FIREWALL_PROTO_ICMP, "icmp"},
                          {ZR_NEXA_FIREWALL_PROTO_ICMPV6, "icmpv6"},   {ZR_NEXA_FIREWALL_PROTO_ESP, "esp"},
                          {ZR_NEXA_FIREWALL_PROTO_OTHER, "other"}};
const Words kFilterStates = {{0, "disabled"}, {1, "enabled"}, {2, "listed"}};

constexpr char kOtherIsReadOnly[] = "an entry of a protocol that has no word can be read only";
constexpr uint64_t kWordMax = 0xffffffff;

std::string interrupted(const std::string& name, const Value&, const Value&)
{
    return "traffic of " + name + " may be interrupted";
}

// ---- entries ----

// An ICMP of the other family is a number that an entry cannot be made with, as one without a code.
uint32_t protocol_in(uint32_t family, uint32_t protocol)
{
    const uint32_t foreign = family == ZR_NEXA_IP_V4 ? ZR_NEXA_FIREWALL_PROTO_ICMPV6 : ZR_NEXA_FIREWALL_PROTO_ICMP;
    return protocol == foreign ? ZR_NEXA_FIREWALL_PROTO_OTHER : protocol;
}

std::string net6_text(const uint8_t* address, uint8_t bits)
{
    return ipv6_text(address) + "/" + std::to_string(bits);
}

std::string masked_text(uint8_t byte, uint8_t mask)
{
    return std::to_string(byte) + "/" + std::to_string(mask);
}

void put(Value* record, const char* key, uint8_t valid, const Value& value)
{
    if (valid != 0) record->map()[key] = value;
}

// Masks with holes and bits of the host behind a mask are the module's and stay.
Value value_of(const Entry& e)
{
    Value value;
    const bool is_ipv4 = e.ip_version == ZR_NEXA_IP_V4;
    value.map()["family"] = word_of(kFamilies, e.ip_version);
    if (e.direction != 0) value.map()["direction"] = e.direction;
    value.map()["nat_flag"] = is_ipv4 ? 0 : e.ipv6_nat_flag;
    if (is_ipv4) {
        put(&value, "source", e.ipv4_src_valid, net_text(e.ipv4_src_addr, e.ipv4_src_mask));
        put(&value, "destination", e.ipv4_dst_valid, net_text(e.ipv4_dst_addr, e.ipv4_dst_mask));
        put(&value, "tos", e.ipv4_tos_valid, masked_text(e.ipv4_tos, e.ipv4_tos_mask));
    } else {
        put(&value, "source", e.ipv6_src_valid, net6_text(e.ipv6_src_addr, e.ipv6_src_prefix_len));
        put(&value, "destination", e.ipv6_dst_valid, net6_text(e.ipv6_dst_addr, e.ipv6_dst_prefix_len));
        put(&value, "traffic_class", e.ipv6_tc_valid, masked_text(e.ipv6_tc, e.ipv6_tc_mask));
    }
    if (e.proto_valid == 0) return value;
    const uint32_t protocol = protocol_in(e.ip_version, e.protocol);
    value.map()["protocol"] = word_of(kProtocols, protocol);
    if (protocol == ZR_NEXA_FIREWALL_PROTO_OTHER) return value;
    put(&value, "source_ports", e.src_port_valid, ports_text(e.src_port, e.src_port + e.src_port_range));
    put(&value, "destination_ports", e.dst_port_valid, ports_text(e.dst_port, e.dst_port + e.dst_port_range));
    put(&value, "icmp_type", e.icmp_type_valid, e.icmp_type);
    put(&value, "icmp_code", e.icmp_code_valid, e.icmp_code);
    put(&value, "spi", e.esp_spi_valid, e.esp_spi);
    return value;
}

Result read_family(uint32_t handle, uint32_t family, Value* out)
{
    static zr_nexa_firewall_entry_list_t list;
    list = {};  // values without their flag are left alone
    Result result = CALL(zr_nexa_firewall_entry_get_v1, handle, family, &list);
    if (!result.good()) return result;
    for (uint32_t i = 0; i < list.count; ++i) {
        list.entry[i].ip_version = family;
        Value entry = value_of(list.entry[i]);
        entry.tag = list.handle[i];
        out->list().push_back(entry);
    }
    return result;
}

Result read_entries(uint32_t handle, Value* out)
{
    out->list();
    Result result = read_family(handle, ZR_NEXA_IP_V4, out);
    return result.good() ? read_family(handle, ZR_NEXA_IP_V6, out) : result;
}

// The byte and the mask of a text such as 16/252.
void split_masked(const Value& value, uint8_t* valid, uint8_t* byte, uint8_t* mask)
{
    if (value.is_nothing()) return;
    *valid = 1;
    *byte = static_cast<uint8_t>(std::stoul(value.text()));
    *mask = static_cast<uint8_t>(std::stoul(value.text().substr(value.text().find('/') + 1)));
}

void split_ipv4(const Value& value, uint8_t* valid, uint32_t* address, uint32_t* mask)
{
    if (value.is_nothing()) return;
    *valid = 1;
    split_net(value.text(), address, mask);
}

void split_ipv6(const Value& value, uint8_t* valid, uint8_t* address, uint8_t* bits)
{
    if (value.is_nothing()) return;
    const size_t slash = value.text().find('/');
    *valid = 1;
    ipv6_of(value.text().substr(0, slash), address);
    *bits = static_cast<uint8_t>(std::stoul(value.text().substr(slash + 1)));
}

void split_range(const Value& value, uint8_t* valid, uint16_t* port, uint16_t* range)
{
    if (value.is_nothing()) return;
    uint16_t last = 0;
    *valid = 1;
    split_ports(value.text(), port, &last);
    *range = static_cast<uint16_t>(last - *port);
}

void split_byte(const Value& value, uint8_t* valid, uint8_t* byte)
{
    if (value.is_nothing()) return;
    *valid = 1;
    *byte = static_cast<uint8_t>(value.number());
}

Entry entry_of(const Value& value)
{
    Entry e = {};
    e.direction = value.child("direction").number();
    e.ip_version = code_of(kFamilies, value.child("family").text());
    if (e.ip_version == ZR_NEXA_IP_V4) {
        split_ipv4(value.child("source"), &e.ipv4_src_valid, &e.ipv4_src_addr, &e.ipv4_src_mask);
        split_ipv4(value.child("destination"), &e.ipv4_dst_valid, &e.ipv4_dst_addr, &e.ipv4_dst_mask);
        split_masked(value.child("tos"), &e.ipv4_tos_valid, &e.ipv4_tos, &e.ipv4_tos_mask);
    } else {
        split_ipv6(value.child("source"), &e.ipv6_src_valid, e.ipv6_src_addr, &e.ipv6_src_prefix_len);
        split_ipv6(value.child("destination"), &e.ipv6_dst_valid, e.ipv6_dst_addr, &e.ipv6_dst_prefix_len);
        split_masked(value.child("traffic_class"), &e.ipv6_tc_valid, &e.ipv6_tc, &e.ipv6_tc_mask);
        e.ipv6_nat_flag = static_cast<uint8_t>(value.child("nat_flag").number());
    }
    e.proto_valid = value.has("protocol") ? 1 : 0;
    e.protocol = code_of(kProtocols, value.child("protocol").text());
    split_range(value.child("source_ports"), &e.src_port_valid, &e.src_port, &e.src_port_range);
    split_range(value.child("destination_ports"), &e.dst_port_valid, &e.dst_port, &e.dst_port_range);
    split_byte(value.child("icmp_type"), &e.icmp_type_valid, &e.icmp_type);
    split_byte(value.child("icmp_code"), &e.icmp_code_valid, &e.icmp_code);
    e.esp_spi_valid = value.has("spi") ? 1 : 0;
    e.esp_spi = value.child("spi").number();
    return e;
}

bool is_other(const Value& entry)
{
    return entry.child("protocol").text() == "other";
}

Result add_entry(uint32_t handle, const std::string&, const Value& value)
{
    if (is_other(value)) return {0, "zr_nexa_firewall_entry_add_v1", kOtherIsReadOnly};
    const Entry entry = entry_of(value);
    return CALL(zr_nexa_firewall_entry_add_v1, handle, &entry);
}

// A key that goes with some words of another one only.
struct Companion {
    const char* key;
    const char* with;
    std::vector<std::string> words;
};

const std::vector<Companion>& companions()
{
    static const std::vector<Companion> all = {{"tos", "family", {"ipv4"}},
                                               {"traffic_class", "family", {"ipv6"}},
                                               {"nat_flag", "family", {"ipv6"}},
                                               {"source_ports", "protocol", {"tcp", "udp", "tcp-udp"}},
                                               {"destination_ports", "protocol", {"tcp", "udp", "tcp-udp"}},
                                               {"icmp_type", "protocol", {"icmp", "icmpv6"}},
                                               {"icmp_code", "protocol", {"icmp", "icmpv6"}},
                                               {"spi", "protocol", {"esp"}}};
    return all;
}

void check_entry(const Value& entry, const std::string& path, const Complain& complain)
{
    const std::string& family = entry.child("family").text();
    for (const char* const key : {"source", "destination"})
        if (entry.has(key) && is_ipv6(entry.child(key).text()) != (family == "ipv6"))
            complain(entry.child(key), path + "." + key, "an address of the other family than the entry's, " + family);
    for (const Companion& each : companions()) {
        const std::string& word = entry.child(each.with).text();
        const bool fallback = entry.child(each.key).mark.line == 0 && entry.child(each.key).text() == "0";
        if (!entry.has(each.key) || fallback) continue;
        if (std::find(each.words.begin(), each.words.end(), word) != each.words.end()) continue;
        std::string words;
        for (const std::string& one : each.words)
            words += (words.empty() ? "" : one == each.words.back() ? " or " : ", ") + one;
        complain(entry.child(each.key), path + "." + each.key,
                 std::string("only with ") + each.with + " " + words + (word.empty() ? "" : ", not " + word));
    }
    const std::string& protocol = entry.child("protocol").text();
    if ((protocol == "icmp" && family == "ipv6") || (protocol == "icmpv6" && family == "ipv4"))
        complain(entry.child("protocol"), path + ".protocol",
                 std::string(family == "ipv6" ? "icmpv6" : "icmp") + " in " + family + ", not " + protocol);
}

Row entries_row()
{
    const Type net = plain(Type::Kind::kIpNet);
    const Type masked = plain(Type::Kind::kMasked);
    Row row = {
        Scope::kProfile,
        Shape::kList,
        Phase::kProfileSettings,
        "firewall.entries",
        {needed({"family", word(all_words(kFamilies)), "family of the packets"}),
         optional({"direction", number(1, 2), "way of the packets, by the service's own number; not said: either"}),
         optional({"source", net, "source address and its mask"}),
         optional({"destination", net, "destination address and its mask"}),
         optional({"tos", masked, "type of service and its mask; IPv4"}),
         optional({"traffic_class", masked, "traffic class and its mask; IPv6"}),
         or_else({"nat_flag", number(0, 255), "handed to the service as it is; IPv6"}, "0"),
         optional({"protocol", word(all_words(kProtocols)),
                   "protocol of the packets; other is one without a word and can be read only"}),
         optional({"source_ports", ports(0, 65535), "source port or range; tcp, udp, tcp-udp"}),
         optional({"destination_ports", ports(0, 65535), "destination port or range; tcp, udp, tcp-udp"}),
         optional({"icmp_type", number(0, 255), "ICMP type; icmp, icmpv6"}),
         optional({"icmp_code", number(0, 255), "ICMP code; icmp, icmpv6"}),
         optional({"spi", number(0, kWordMax), "security parameter index; esp"})},
        {"zr_nexa_firewall_entry_add_v1", "zr_nexa_firewall_entry_get_v1", "zr_nexa_firewall_entry_del_v1"}};
    row.about = "packets that are treated otherwise than unmatched says";
    row.read = read_entries;
    row.add = add_entry;
    row.remove = [](uint32_t handle, const std::string&, const Value& entry) {
        return CALL(zr_nexa_firewall_entry_del_v1, handle, static_cast<int32_t>(entry.tag));
    };
    row.most = ZR_NEXA_FIREWALL_ENTRIES_MAX;
    row.check = check_entry;
    row.interrupts = interrupted;
    row.not_undone = [](const Value&, const Value& present) {
        return is_other(present) ? std::string(kOtherIsReadOnly) : std::string();
    };
    return row;
}

// ---- switch and policy ----

Result read_config(uint32_t handle, Value* out)
{
    uint8_t enabled = 0;
    uint8_t allowed = 0;
    Result result = CALL(zr_nexa_firewall_config_get_v1, handle, &enabled, &allowed);
    if (!result.good()) return result;
    out->map()["firewall.enabled"] = enabled != 0;
    const std::string policy = word_of(kPolicies, allowed);
    if (!policy.empty()) out->map()["firewall.unmatched"] = policy;
    return result;
}

// One call writes both: of a profile that is new the other one is what the service gave it.
Result write_config(uint32_t handle, const Value& wanted, const Value&)
{
    Value whole = wanted;
    if (wanted.child("firewall.enabled").is_nothing() || wanted.child("firewall.unmatched").is_nothing()) {
        Value now;
        Result result = read_config(handle, &now);
        if (!result.good()) return result;
        whole.map().insert(now.map().begin(), now.map().end());
    }
    const std::string& policy = whole.child("firewall.unmatched").text();
    if (policy.empty())
        return {0, "zr_nexa_firewall_config_set_v1", "the module's policy has no word; say unmatched too"};
    return CALL(zr_nexa_firewall_config_set_v1, handle, whole.child("firewall.enabled").flag() ? 1 : 0,
                code_of(kPolicies, policy));
}

Row config_row()
{
    Row row = {
        Scope::kProfile,
        Shape::kUnit,
        Phase::kProfileSettings,
        "",
        {{"firewall.enabled", flag(), "packets that come in are filtered", "false"},
         {"firewall.unmatched", word(all_words(kPolicies)), "what happens to packets that no entry matches", "drop"}},
        {"zr_nexa_firewall_config_set_v1", "zr_nexa_firewall_config_get_v1"}};
    row.read = read_config;
    row.write = write_config;
    row.interrupts = interrupted;
    return row;
}

// ---- hardware MAC filtering ----

constexpr char kNeedsLists[] = "it takes no state without stations and interfaces";
constexpr char kState[] = "hardware_mac_filter.state";
constexpr char kStations[] = "hardware_mac_filter.stations";
constexpr char kInterfaces[] = "hardware_mac_filter.interfaces";

Result read_mac_filter(uint32_t, Value* out)
{
    uint32_t state = 0;
    zr_nexa_firewall_hwfilter_cfg_t config = {};
    Result result = CALL(zr_nexa_firewall_hwfiltering_state_get_v1, &state, &config);
    if (!result.good()) return result;
    const std::string word = word_of(kFilterStates, state);
    if (!word.empty()) out->map()[kState] = word;
    Value::List stations;
    for (uint32_t i = 0; i < config.num_of_macs; ++i)
        stations.emplace_back(mac_text(config.mac_addr[i]));
    Value::List interfaces;
    for (uint32_t i = 0; i < config.num_of_ifaces; ++i) {
        Value words;
        for (const uint32_t each : config.iface[i])
            words.list().emplace_back(each);
        interfaces.push_back(words);
    }
    // Empty ones are the factory's and cannot be written: what cannot be said is not said.
    if (!stations.empty()) out->map()[kStations] = sorted(stations);
    if (!interfaces.empty()) out->map()[kInterfaces] = interfaces;
    return result;
}

bool is_whole(const Value& filter)
{
    return filter.child(kState).is_scalar() && filter.child(kStations).is_list() && filter.child(kInterfaces).is_list();
}

Result write_mac_filter(uint32_t, const Value& wanted, const Value&)
{
    if (!is_whole(wanted)) return {0, "zr_nexa_firewall_hwfiltering_state_set_v1", kNeedsLists};
    zr_nexa_firewall_hwfilter_cfg_t config = {};
    for (const Value& station : wanted.child(kStations).list())
        mac_of(station.text(), config.mac_addr[config.num_of_macs++]);
    for (const Value& interface : wanted.child(kInterfaces).list()) {
        for (size_t i = 0; i < interface.list().size(); ++i)
            config.iface[config.num_of_ifaces][i] = interface.list()[i].number();
        ++config.num_of_ifaces;
    }
    const uint32_t state = code_of(kFilterStates, wanted.child(kState).text());
    return CALL(zr_nexa_firewall_hwfiltering_state_set_v1, state, &config);
}

Row mac_filter_row()
{
    Type stations = set_of(plain(Type::Kind::kMac), ZR_NEXA_FIREWALL_HWFILTER_MACS_MAX);
    stations.low = 1;
    const size_t words = ZR_NEXA_FIREWALL_HWFILTER_IFACE_WORDS;
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kCutting,
               "",
               {{kState, word(all_words(kFilterStates)), "whether stations are filtered by hardware", "disabled"},
                {kStations, stations, "MACs of the stations; once said, they can be changed and not taken away"},
                {kInterfaces,
                 list_of(list_of(number(0, kWordMax), words, {}, words), ZR_NEXA_FIREWALL_HWFILTER_IFACES_MAX, {}, 1),
                 "the interfaces, each described by five numbers of the service"}},
               {"zr_nexa_firewall_hwfiltering_state_set_v1", "zr_nexa_firewall_hwfiltering_state_get_v1"}};
    row.read = read_mac_filter;
    row.write = write_mac_filter;
    row.interrupts = [](const std::string&, const Value&, const Value&) {
        return std::string("stations may lose the connection");
    };
    row.not_undone = [](const Value&, const Value& present) { return is_whole(present) ? std::string() : kNeedsLists; };
    return row;
}

}  // namespace

std::vector<Row> firewall_rows()
{
    return {entries_row(), config_row(), mac_filter_row()};
}

}  // namespace ctl
