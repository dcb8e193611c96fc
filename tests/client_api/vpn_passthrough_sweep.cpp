#include "api_test.h"
#include "fault_sweep.h"

namespace {

uint8_t flag;

SweepRow set_row(const char* function, uint32_t (*set)(uint32_t, uint32_t), const char* method)
{
    return {function, [set] { return set(1, 1); }, {{"SetWWANProfileHandlePreference", 1}, {method, 2}}};
}

SweepRow get_row(const char* function, uint32_t (*get)(uint32_t, uint8_t*), const char* method)
{
    return {function,
            [get] {
                flag = poisoned<uint8_t>();
                return get(1, &flag);
            },
            {{"SetWWANProfileHandlePreference", 1}, {method, 2}},
            nullptr,
            [] { return is_poisoned(flag); }};
}

}  // namespace

std::vector<SweepRow> vpn_passthrough_sweep_rows()
{
    return {
        set_row("zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1", zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1,
                "SetPPTPVpnPassthrough"),
        get_row("zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1", zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1,
                "GetPPTPVpnPassthrough"),
        set_row("zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1", zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1,
                "SetPPTPVpnPassthrough_Ipv6"),
        get_row("zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1", zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1,
                "GetPPTPVpnPassthrough_Ipv6"),
        set_row("zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1,
                "SetIPSECVpnPassthrough"),
        get_row("zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1,
                "GetIPSECVpnPassthrough"),
        set_row("zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1,
                "SetIPSECVpnPassthrough_Ipv6"),
        get_row("zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1,
                "GetIPSECVpnPassthrough_Ipv6"),
        set_row("zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1,
                "SetL2TPVpnPassthrough"),
        get_row("zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1,
                "GetL2TPVpnPassthrough"),
        set_row("zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1,
                "SetL2TPVpnPassthrough_Ipv6"),
        get_row("zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1,
                "GetL2TPVpnPassthrough_Ipv6"),
    };
}
