#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> nat_sweep_rows()
{
    static uint8_t byte;
    static uint32_t word;
    static zr_nexa_nat_ipv4portmapping_list_t list;
    return {
        {"zr_nexa_nat_type_set_v1",
         [] { return zr_nexa_nat_type_set_v1(3, 2); },
         {{"SetWWANProfileHandlePreference", 1}, {"SetNatType", 2}}},
        {"zr_nexa_nat_type_get_v1",
         [] {
             byte = poisoned<uint8_t>();
             return zr_nexa_nat_type_get_v1(3, &byte);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetNatType", 2}},
         nullptr,
         [] { return is_poisoned(byte); }},
        {"zr_nexa_nat_ipv4dmz_set_v1",
         [] { return zr_nexa_nat_ipv4dmz_set_v1(3, 1, 0xC0A8E132); },
         {{"SetWWANProfileHandlePreference", 1}, {"AddDMZ", 2}}},
        {"zr_nexa_nat_ipv4dmz_get_v1",
         [] {
             byte = poisoned<uint8_t>();
             word = poisoned<uint32_t>();
             return zr_nexa_nat_ipv4dmz_get_v1(3, &byte, &word);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetDMZ", 2}},
         nullptr,
         [] { return is_poisoned(byte) && is_poisoned(word); }},
        {"zr_nexa_nat_ipv4portmapping_add_v1",
         [] { return zr_nexa_nat_ipv4portmapping_add_v1(3, 0xC0A8E132, 80, 8080, 2); },
         {{"SetWWANProfileHandlePreference", 1}, {"AddStaticNatEntry", 2}}},
        {"zr_nexa_nat_ipv4portmapping_del_v1",
         [] { return zr_nexa_nat_ipv4portmapping_del_v1(3, 0xC0A8E132, 80, 8080, 2); },
         {{"SetWWANProfileHandlePreference", 1}, {"DeleteStaticNatEntry", 2}}},
        {"zr_nexa_nat_ipv4portmapping_get_v1",
         [] {
             list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
             return zr_nexa_nat_ipv4portmapping_get_v1(3, &list);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetStaticNatConfig", 2}},
         nullptr,
         [] { return is_poisoned(list); }},
        {"zr_nexa_nat_routingbh_set_v1", [] { return zr_nexa_nat_routingbh_set_v1(1); }, {{"ZR_SetRoutingBH", 1}}},
        {"zr_nexa_nat_routingbh_get_v1",
         [] {
             word = poisoned<uint32_t>();
             return zr_nexa_nat_routingbh_get_v1(&word);
         },
         {{"ZR_GetRoutingBH", 1}},
         nullptr,
         [] { return is_poisoned(word); }},
    };
}
