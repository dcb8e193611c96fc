#include "fault_sweep.h"

std::vector<SweepRow> vpn_passthrough_sweep_rows()
{
    static uint8_t flag;
    const SweepStep select = {"SetWWANProfileHandlePreference", 1,
                              "Set WWAN Profile Handle Preference (wwan_handle=7) error %d"};
    // A backhaul that is down, 43, is logged twice: the area's test shows it.
    const auto set_row = [&](const SweptCall& call, const char* method, const char* failed) {
        SweepRow row = {call, {select, {method, 2, failed}}};
        row.error_words = {0, 1, 3, 42, 44, 0x102B, 0xFFFF, 0x7FFFFFFF};
        return row;
    };
    const auto get_row = [&](const SweptCall& call, const char* method, const char* failed) {
        return SweepRow{call, {select, {method, 2, failed}}, {output(flag)}};
    };
    // Capitals differ from text to text; they are as log readers know them.
    return {
        set_row(SWEPT(zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1, (7, 1)), "SetPPTPVpnPassthrough",
                "PPTP VPN passthrough set fails. Error: 0x%x"),
        set_row(SWEPT(zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1, (7, 1)), "SetPPTPVpnPassthrough_Ipv6",
                "IPv6 PPTP VPN passthrough set fails. Error: 0x%x"),
        set_row(SWEPT(zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1, (7, 1)), "SetIPSECVpnPassthrough",
                "IPSec VPN passthrough set fails. Error: 0x%x"),
        set_row(SWEPT(zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1, (7, 1)), "SetIPSECVpnPassthrough_Ipv6",
                "IPv6 IPSec VPN passthrough set fails. Error: 0x%x"),
        set_row(SWEPT(zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1, (7, 1)), "SetL2TPVpnPassthrough",
                "L2TP VPN passthrough set fails. Error: 0x%x"),
        set_row(SWEPT(zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1, (7, 1)), "SetL2TPVpnPassthrough_Ipv6",
                "IPv6 L2TP VPN passthrough set fails. Error: 0x%x"),
        get_row(SWEPT(zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1, (7, &flag)), "GetPPTPVpnPassthrough",
                "Get PPTP VPN passthrough flag failed. Error: 0x%x"),
        get_row(SWEPT(zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1, (7, &flag)), "GetPPTPVpnPassthrough_Ipv6",
                "Ipv6 PPTP VPN passthrough get fails. Error: 0x%x"),
        get_row(SWEPT(zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1, (7, &flag)), "GetIPSECVpnPassthrough",
                "IPSec VPN passthrough get fails. Error: 0x%x"),
        get_row(SWEPT(zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1, (7, &flag)), "GetIPSECVpnPassthrough_Ipv6",
                "Ipv6 IPSec VPN passthrough get fails. Error: 0x%x"),
        get_row(SWEPT(zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1, (7, &flag)), "GetL2TPVpnPassthrough",
                "L2TP VPN passthrough get fails. Error: 0x%x"),
        get_row(SWEPT(zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1, (7, &flag)), "GetL2TPVpnPassthrough_Ipv6",
                "Ipv6 L2TP VPN passthrough get fails. Error: 0x%x"),
    };
}
