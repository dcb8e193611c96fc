#include "fault_sweep.h"

std::vector<SweepRow> nat_sweep_rows()
{
    static uint8_t byte;
    static uint32_t word;
    static zr_nexa_nat_ipv4portmapping_list_t list;
    const SweepStep select = {"SetWWANProfileHandlePreference", 1,
                              "Set WWAN Profile Handle Preference (wwan_handle=51) error %d"};
    return {
        {SWEPT(zr_nexa_nat_type_set_v1, (51, 2)),
         {select, {"SetNatType", 2, "Set Nat Type (wwan_handle=51) error %d"}}},
        {SWEPT(zr_nexa_nat_type_get_v1, (51, &byte)),
         {select, {"GetNatType", 2, "Get Nat Type (wwan_handle=51) error %d"}},
         {output(byte)}},
        {SWEPT(zr_nexa_nat_ipv4dmz_set_v1, (51, 1, 0xC0A8E132)),
         {select, {"AddDMZ", 2, "Add DMZ IP (wwan_handle=51) error %d"}}},
        {SWEPT(zr_nexa_nat_ipv4dmz_set_v1, (51, 0, 0xC0A8E132)),
         {select, {"DeleteDMZ", 3, "Delete DMZ IP (wwan_handle=51) error %d"}}},
        {SWEPT(zr_nexa_nat_ipv4dmz_get_v1, (51, &byte, &word)),
         {select, {"GetDMZ", 2, "Get DMZ IP (wwan_handle=51) error %d"}},
         {output(byte), output(word)}},
        {SWEPT(zr_nexa_nat_ipv4portmapping_add_v1, (51, 0xC0A8E132, 80, 8080, 2)),
         {select, {"AddStaticNatEntry", 2, "Add Static Nat Entry (wwan_handle=51) error %d"}}},
        {SWEPT(zr_nexa_nat_ipv4portmapping_del_v1, (51, 0xC0A8E132, 80, 8080, 2)),
         {select, {"DeleteStaticNatEntry", 2, "Delete Static Nat Entry (wwan_handle=51) error %d"}}},
        {SWEPT(zr_nexa_nat_ipv4portmapping_get_v1, (51, &list)),
         {select, {"GetStaticNatConfig", 2, "Get Static Nat Config List (wwan_handle=51) error %d"}},
         {output(list)},
         [](scripted::Platform& platform) { platform.on("GetStaticNatConfig").gives("count", 3); }},
        {SWEPT(zr_nexa_nat_routingbh_set_v1, (1)), {{"ZR_SetRoutingBH", 1, "Set RoutingBH(routingbh=1) error %d"}}},
        {SWEPT(zr_nexa_nat_routingbh_get_v1, (&word)),
         {{"ZR_GetRoutingBH", 1, "Get RoutingBH error %d"}},
         {output(word)}},
    };
}
