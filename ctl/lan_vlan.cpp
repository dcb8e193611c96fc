// VLANs. Each has a LAN of its own, which comes and goes with it.
#include "lan_vlan.h"

#include <zr_nexa/lan_vlan.h>

namespace ctl {
namespace {

static_assert(kVlansMax == ZR_NEXA_LAN_VLANS_MAX);

const Words kInterfaces = {{ZR_NEXA_LAN_VLAN_IFACE_ETH, "ethernet"},
                           {ZR_NEXA_LAN_VLAN_IFACE_ECM, "ecm"},
                           {ZR_NEXA_LAN_VLAN_IFACE_RNDIS, "rndis"},
                           {ZR_NEXA_LAN_VLAN_IFACE_ETH_NIC2, "ethernet-2"}};

Result read_vlans(std::map<uint32_t, Value>* out)
{
    zr_nexa_lan_vlan_list_t list = {};  // an interface without a number is left alone
    Result result = CALL(zr_nexa_lan_vlan_get_v1, &list);
    if ((result.code & ~uint32_t{0xfff}) == 0x2000) result.code = 0;  // the list is there all the same
    if (!result.good()) return result;
    for (uint32_t i = 0; i < list.count; ++i) {
        if (list.vlan_id[i] == 0 || list.vlan_id[i] > kVlanIdMax) continue;
        Value::Map& vlan = (*out)[list.vlan_id[i]].map();
        vlan["accelerated"] = Value(list.is_accelerated[i] != 0);
        const std::string interface = word_of(kInterfaces, list.phy_iface_type[i]);
        if (!interface.empty()) vlan["interface"] = interface;
    }
    return result;
}

}  // namespace

Result read_lans(Value* lans)
{
    std::map<uint32_t, Value> vlans;
    Result result = read_vlans(&vlans);
    if (!result.good()) return result;
    lans->map() = {{"0", Value::Map()}};
    for (auto& [id, vlan] : vlans)
        lans->map()[std::to_string(id)].map()["vlan"] = std::move(vlan);
    return result;
}

Result add_vlan(uint32_t id, const Value& vlan)
{
    return CALL(zr_nexa_lan_vlan_add_v1, static_cast<uint16_t>(id),
                static_cast<uint8_t>(code_of(kInterfaces, vlan.child("interface").text())),
                vlan.child("accelerated").flag() ? 1 : 0);
}

Result remove_vlan(uint32_t id, const Value& vlan)
{
    return CALL(zr_nexa_lan_vlan_del_v1, static_cast<uint16_t>(id),
                static_cast<uint8_t>(code_of(kInterfaces, vlan.child("interface").text())));
}

std::vector<Row> lan_vlan_rows()
{
    Row row = {Scope::kLan,
               Shape::kWhole,
               Phase::kLans,
               "vlan",
               {needed({"interface", word(all_words(kInterfaces)), "physical interface that carries the VLAN"}),
                or_else({"accelerated", flag(), "the VLAN's traffic takes the hardware path"}, "false")},
               {"zr_nexa_lan_vlan_add_v1", "zr_nexa_lan_vlan_get_v1", "zr_nexa_lan_vlan_del_v1"}};
    row.about = "the VLAN that the LAN belongs to; not of LAN 0";
    row.is_scope = true;
    row.read_all = read_vlans;
    return {row};
}

}  // namespace ctl
