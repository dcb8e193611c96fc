// NAT of a profile: type, DMZ host, port mappings. Routing behind is the module's.
#include <zr_nexa/nat.h>

#include "keys.h"

namespace ctl {
namespace {

const Words kTypes = {{ZR_NEXA_NAT_TYPE_SYMMETRIC, "symmetric"},
                      {ZR_NEXA_NAT_TYPE_PORT_RESTRICTED_CONE, "port-restricted-cone"},
                      {ZR_NEXA_NAT_TYPE_FULL_CONE, "full-cone"},
                      {ZR_NEXA_NAT_TYPE_ADDRESS_RESTRICTED, "address-restricted"}};

const Words kProtocols = {{ZR_NEXA_NAT_PROTO_TCP, "tcp"},
                          {ZR_NEXA_NAT_PROTO_UDP, "udp"},
                          {ZR_NEXA_NAT_PROTO_TCP_UDP, "tcp-udp"},
                          {ZR_NEXA_NAT_PROTO_ICMP, "icmp"},
                          {ZR_NEXA_NAT_PROTO_ESP, "esp"}};

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
        const Result result = CALL(zr_nexa_nat_type_get_v1, handle, &type);
        if (result.good() && !word_of(kTypes, type).empty()) out->map()["nat.type"] = word_of(kTypes, type);
        return result;
    };
    row.write = [](uint32_t handle, const Value& wanted, const Value&) {
        return CALL(zr_nexa_nat_type_set_v1, handle, code_of(kTypes, wanted.child("nat.type").text()));
    };
    return row;
}

}  // namespace

std::vector<Row> nat_rows()
{
    return {type_row()};
}

}  // namespace ctl
