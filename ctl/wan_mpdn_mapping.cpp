// Multi-PDN mapping: the VLANs whose traffic goes out through a profile.
#include <zr_nexa/wan_mpdn_mapping.h>

#include "keys.h"
#include "lan_vlan.h"

namespace ctl {
namespace {

Result read_mappings(std::map<uint32_t, Value>* out)
{
    static zr_nexa_wan_mpdnmapping_list_t list;  // 1.2 MB; only its count and what lies below it is looked at
    Result result = CALL(zr_nexa_wan_mpdnmapping_get_v1, &list);
    if (!result.good()) return result;
    for (uint32_t i = 0; i < list.count; ++i)
        (*out)[list.profile_handle[i]].list().emplace_back(list.vlan_id[i]);
    return result;
}

}  // namespace

std::vector<Row> wan_mpdn_mapping_rows()
{
    Row row = {Scope::kProfile,
               Shape::kList,
               Phase::kMapping,
               "vlans",
               {{"", number(1, kVlanIdMax), "a VLAN whose traffic goes out through the profile"}},
               {"zr_nexa_wan_mpdnmapping_add_v1", "zr_nexa_wan_mpdnmapping_get_v1", "zr_nexa_wan_mpdnmapping_del_v1"}};
    row.about = "VLANs whose traffic goes out through the profile";
    row.read_all = read_mappings;
    row.add = [](uint32_t handle, const std::string&, const Value& vlan) {
        return CALL(zr_nexa_wan_mpdnmapping_add_v1, handle, static_cast<uint16_t>(vlan.number()));
    };
    row.remove = [](uint32_t handle, const std::string&, const Value& vlan) {
        return CALL(zr_nexa_wan_mpdnmapping_del_v1, handle, static_cast<uint16_t>(vlan.number()));
    };
    row.most = kVlanIdMax;
    row.interrupts = [](const std::string& name, const Value& wanted, const Value& present) {
        return "traffic between VLAN " + (wanted.is_nothing() ? present : wanted).text() + " and " + name +
               (wanted.is_nothing() ? " ends" : " begins");
    };
    row.once = true;
    return {row};
}

}  // namespace ctl
