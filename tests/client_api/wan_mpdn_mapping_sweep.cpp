#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> wan_mpdn_mapping_sweep_rows()
{
    static zr_nexa_wan_mpdnmapping_list_t list;
    return {
        {"zr_nexa_wan_mpdnmapping_add_v1",
         [] { return zr_nexa_wan_mpdnmapping_add_v1(2, 100); },
         {{"SetWWANProfileHandlePreference", 1}, {"SelectLANBridge", 2}, {"AddPDNToVLANMapping", 3}}},
        {"zr_nexa_wan_mpdnmapping_get_v1",
         [] {
             std::memset(&list, 0xA5, sizeof(list));
             return zr_nexa_wan_mpdnmapping_get_v1(&list);
         },
         {{"GetPDNtoVLANMappingsEx", 1}},
         nullptr,
         [] {
             const auto* const bytes = reinterpret_cast<const unsigned char*>(&list);
             return bytes[0] == 0xA5 && std::memcmp(bytes, bytes + 1, sizeof(list) - 1) == 0;
         }},
        {"zr_nexa_wan_mpdnmapping_del_v1",
         [] { return zr_nexa_wan_mpdnmapping_del_v1(2, 100); },
         {{"SetWWANProfileHandlePreference", 1}, {"SelectLANBridge", 2}, {"DeletePDNToVLANMapping", 3}}},
    };
}
