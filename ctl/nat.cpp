// NAT of a profile: type, DMZ host, port mappings. Routing behind is the module's.
#include <zr_nexa/nat.h>

#include "keys.h"

namespace ctl {
namespace {

const Words kTypes = {{ZR_NEXA_NAT_TYPE_SYMMETRIC, "symmetric"},
                      {ZR_NEXA_NAT_TYPE_PORT_RESTRICTED_CONE, "port-restricted-cone"},
                      {ZR_NEXA_NAT_TYPE_FULL_CONE, "full-cone"},
                      {ZR_NEXA_NAT_TYPE_ADDRESS_RESTRICTED, "address-restricted"}};

const Words kProtocols = {
    {ZR_NEXA_NAT_PROTO_TCP, "tcp"},         {ZR_NEXA_NAT_PROTO_UDP, "udp"},
    {ZR_NEXA_NAT_PROTO_TCP_UDP, "tcp-udp"}, {ZR_NEXA_NAT_PROTO_ICMP, "icmp"},
    {ZR_NEXA_NAT_PROTO_ESP, "esp"},         {0, "other"}};  // read only: a protocol without a code

std::string interrupted(const std::string& name, const Value&, const Value&)
{
    return "traffic of " + name + " may be interrupted";
}

Row type_row()
{
    Row row = {
        Scope::kProfile,
        Shape::kUnit,
        Phase::kProfileSettings,
        "",
        {{"nat.type", word(all_words(kTypes)), "how addresses and ports are translated", "port-restricted-cone"}},
        {"zr_nexa_nat_type_set_v1", "zr_nexa_nat_type_get_v1"}};
    row.read = [](uint32_t handle, Value* out) {
        uint8_t type = 0xff;  // an unknown one is left alone
        Result result = CALL(zr_nexa_nat_type_get_v1, handle, &type);
        if (!result.good()) return result;
        out->map();
        if (!word_of(kTypes, type).empty()) out->map()["nat.type"] = word_of(kTypes, type);
        return result;
    };
    row.write = [](uint32_t handle, const Value& wanted, const Value&) {
        return CALL(zr_nexa_nat_type_set_v1, handle, code_of(kTypes, wanted.child("nat.type").text()));
    };
    row.interrupts = interrupted;
    return row;
}

Row dmz_row()
{
    Type type = ipv4({"none"});
    type.low = 1;
    Row row = {Scope::kProfile,
               Shape::kUnit,
               Phase::kProfileSettings,
               "",
               {{"nat.dmz", type, "the device that gets what comes in and no rule names", "none"}},
               {"zr_nexa_nat_ipv4dmz_set_v1", "zr_nexa_nat_ipv4dmz_get_v1"}};
    row.read = [](uint32_t handle, Value* out) {
        uint8_t enabled = 0;
        uint32_t address = 0;
        Result result = CALL(zr_nexa_nat_ipv4dmz_get_v1, handle, &enabled, &address);
        if (result.good()) out->map()["nat.dmz"] = enabled != 0 ? ipv4_text(address) : "none";
        return result;
    };
    row.write = [](uint32_t handle, const Value& wanted, const Value&) {
        const std::string& device = wanted.child("nat.dmz").text();
        return CALL(zr_nexa_nat_ipv4dmz_set_v1, handle, device != "none" ? 1 : 0, ipv4_of(device));
    };
    row.interrupts = interrupted;
    row.is_judged = true;
    return row;
}

bool has_ports(const std::string& protocol)
{
    return protocol == "tcp" || protocol == "udp" || protocol == "tcp-udp";
}

Result read_mappings(uint32_t handle, Value* out)
{
    zr_nexa_nat_ipv4portmapping_list_t list = {};  // a protocol without a code is left alone
    Result result = CALL(zr_nexa_nat_ipv4portmapping_get_v1, handle, &list);
    if (!result.good()) return result;
    out->list();
    for (uint32_t i = 0; i < list.count; ++i) {
        Value rule;
        rule.map()["protocol"] = word_of(kProtocols, list.protocol[i]);
        rule.map()["host"] = ipv4_text(list.private_ip[i]);
        if (list.global_port[i] != 0) rule.map()["global_port"] = list.global_port[i];
        if (list.private_port[i] != 0) rule.map()["port"] = list.private_port[i];
        out->list().push_back(rule);
    }
    return result;
}

using Change = uint32_t (*)(uint32_t, uint32_t, uint16_t, uint16_t, uint8_t);

// A rule is named by all its values, so adding and removing are one.
Result change_mapping(Change change, const char* function, uint32_t handle, const Value& rule)
{
    const uint32_t protocol = code_of(kProtocols, rule.child("protocol").text());
    if (protocol == 0) return {0, function, "a rule of a protocol that has no word can be read only"};
    return {change(handle, ipv4_of(rule.child("host").text()), static_cast<uint16_t>(rule.child("port").number()),
                   static_cast<uint16_t>(rule.child("global_port").number()), static_cast<uint8_t>(protocol)),
            function};
}

void check_mapping(const Value& rule, const std::string& path, const Complain& complain)
{
    const std::string& protocol = rule.child("protocol").text();
    if (protocol == "other") return;
    if (has_ports(protocol)) {
        if (!rule.has("global_port")) complain(rule, path, "global_port is missing");
        return;
    }
    for (const char* const key : {"global_port", "port"}) {
        const bool filled_in = std::string(key) == "port" && rule.child("port") == rule.child("global_port");
        if (rule.has(key) && !filled_in)
            complain(rule.child(key), path + "." + key, "only with tcp, udp or tcp-udp, not with " + protocol);
    }
}

Row mappings_row()
{
    Row row = {Scope::kProfile,
               Shape::kList,
               Phase::kProfileSettings,
               "nat.port_mappings",
               {needed({"protocol", word(all_words(kProtocols)),
                        "what is let in; other is a protocol without a word and can be read only"}),
                optional({"global_port", number(1, 65535), "port on the WWAN side; needed with tcp, udp and tcp-udp"}),
                needed({"host", host(), "the device that gets the traffic"}),
                or_same_as({"port", number(1, 65535), "the device's port"}, "global_port")},
               {"zr_nexa_nat_ipv4portmapping_add_v1", "zr_nexa_nat_ipv4portmapping_del_v1",
                "zr_nexa_nat_ipv4portmapping_get_v1"}};
    row.about = "rules for what comes in from outside";
    row.read = read_mappings;
    row.add = [](uint32_t handle, const std::string&, const Value& rule) {
        return change_mapping(NAMED(zr_nexa_nat_ipv4portmapping_add_v1), handle, rule);
    };
    row.remove = [](uint32_t handle, const std::string&, const Value& rule) {
        return change_mapping(NAMED(zr_nexa_nat_ipv4portmapping_del_v1), handle, rule);
    };
    row.most = ZR_NEXA_NAT_IPV4PORTMAPPINGS_MAX;
    row.is_judged = true;
    row.check = check_mapping;
    row.interrupts = interrupted;
    row.not_undone = [](const Value& wanted, const Value& present) {
        for (const Value* const rule : {&wanted, &present})
            if (rule->child("protocol").text() == "other")
                return std::string("a rule of a protocol that has no word can be read only");
        return std::string();
    };
    row.once = true;
    return row;
}

Row routing_behind_row()
{
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kRouting,
               "",
               {{"general.routing_behind", flag(),
                 "networks behind the LANs' devices are routed; holds from the module's next start on", "false"}},
               {"zr_nexa_nat_routingbh_set_v1", "zr_nexa_nat_routingbh_get_v1"}};
    row.read = [](uint32_t, Value* out) {
        uint32_t on = 0;
        Result result = CALL(zr_nexa_nat_routingbh_get_v1, &on);
        const bool is_neither = result.code == ZR_NEXA_NAT_ERR_ROUTINGBH;  // on nor off: no refusal
        if (!result.good() && !is_neither) return result;
        out->map();
        if (!is_neither) out->map()["general.routing_behind"] = on != 0;
        return Result{0, result.function};
    };
    row.write = [](uint32_t, const Value& wanted, const Value&) {
        return CALL(zr_nexa_nat_routingbh_set_v1, wanted.child("general.routing_behind").flag() ? 1 : 0);
    };
    row.is_judged = true;
    row.note = "holds from the module's next start on";
    return row;
}

}  // namespace

std::vector<Row> nat_rows()
{
    return {type_row(), dmz_row(), mappings_row(), routing_behind_row()};
}

}  // namespace ctl
