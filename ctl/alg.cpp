// The ALG switches, which cannot be read, and the SIP server that the clients of a LAN are told of.
#include <zr_nexa/alg.h>

#include <cstring>

#include "keys.h"

namespace ctl {
namespace {

Row switch_row(uint32_t alg)
{
    const std::string key = "write_only.alg." + std::to_string(alg);
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kWriteOnly,
               "",
               {{key, flag(), "ALG " + std::to_string(alg) + " in the service's numbering, of all profiles and LANs"}},
               {"zr_nexa_alg_enable_type_set_v1"}};
    row.write = [alg, key](uint32_t, const Value& wanted, const Value&) {
        return CALL(zr_nexa_alg_enable_type_set_v1, wanted.child(key).flag() ? 1 : 0, alg);
    };
    row.not_undone = [alg](const Value&, const Value&) {
        return "the switch of ALG " + std::to_string(alg) + " cannot be read";
    };
    row.write_only = true;
    return row;
}

const char* const kStays = "a SIP server can be replaced, not taken away";

Result read_sip_server(uint32_t lan, Value* out)
{
    static unsigned char buffer[ZR_NEXA_ALG_SIP_BUFFER_SIZE];
    int count = 0;
    Result result = CALL(zr_nexa_alg_sip_server_info_get_v1, lan, ZR_NEXA_IP_V4, &count, buffer);
    if (!result.good()) return result;
    zr_nexa_sip_server_info_t server;
    std::memcpy(&server, buffer, sizeof server);
    if (server.pcscf_info_type == 0) out->map();
    if (server.pcscf_info_type == ZR_NEXA_ALG_SIP_INFO_IP) out->map()["address"] = ipv4_text(server.ipv4_addr);
    if (server.pcscf_info_type == ZR_NEXA_ALG_SIP_INFO_FQDN)
        out->map()["name"] = escaped(server.fqdn, sizeof server.fqdn);
    return result;
}

Result write_sip_server(uint32_t lan, const Value& wanted, const Value& present)
{
    zr_nexa_sip_server_info_t server = {};
    if (wanted.has("address")) {
        server.pcscf_info_type = ZR_NEXA_ALG_SIP_INFO_IP;
        server.ipv4_addr = ipv4_of(wanted.child("address").text());
    } else if (wanted.has("name")) {
        server.pcscf_info_type = ZR_NEXA_ALG_SIP_INFO_FQDN;
        unescaped(wanted.child("name").text()).copy(server.fqdn, sizeof server.fqdn);
    } else {
        return {0, "zr_nexa_alg_sip_server_info_set_v1", present.map().empty() ? "" : kStays};
    }
    return CALL(zr_nexa_alg_sip_server_info_set_v1, lan, &server);
}

Row sip_server_row()
{
    Row row = {Scope::kLan,
               Shape::kWhole,
               Phase::kLanSettings,
               "sip_server",
               {optional({"address", ipv4(), "the SIP server that clients are told of, by its address"}),
                optional({"name", text(0, ZR_NEXA_ALG_SIP_FQDN_SIZE), "the same by its name"})},
               {"zr_nexa_alg_sip_server_info_set_v1", "zr_nexa_alg_sip_server_info_get_v1"}};
    row.about = "the SIP server of the LAN's clients, by address or name; empty: none";
    row.read = read_sip_server;
    row.write = write_sip_server;
    row.check = [](const Value& server, const std::string& path, const Complain& complain) {
        if (server.has("address") && server.has("name"))
            complain(server.child("name"), path + ".name", "address or name, not both");
    };
    row.not_undone = [](const Value& wanted, const Value& present) {
        return present.is_map() && present.map().empty() && !wanted.map().empty() ? kStays : "";
    };
    return row;
}

}  // namespace

std::vector<Row> alg_rows()
{
    return {sip_server_row(), switch_row(1), switch_row(2)};
}

}  // namespace ctl
