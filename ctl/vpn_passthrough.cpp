// VPN passthrough: whether PPTP, IPSec and L2TP may pass through a profile's NAT.
#include <zr_nexa/vpn_passthrough.h>

#include "keys.h"

namespace ctl {
namespace {

Row passthrough(const char* key, const char* about, uint32_t (*set)(uint32_t, uint32_t), const char* set_name,
                uint32_t (*get)(uint32_t, uint8_t*), const char* get_name)
{
    Row row = scoped_flag(Scope::kProfile, Phase::kProfileSettings, {key, flag(), about, "false"}, set, set_name, get,
                          get_name);
    row.done_codes = {ZR_NEXA_VPN_PASSTHROUGH_ERR_BACKHAUL_DOWN};
    row.done_note = "holds with the next connection";
    return row;
}

}  // namespace

std::vector<Row> vpn_passthrough_rows()
{
    return {passthrough("vpn_passthrough.pptp.ipv4", "PPTP over IPv4 passes",
                        NAMED(zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1),
                        NAMED(zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1)),
            passthrough("vpn_passthrough.pptp.ipv6", "PPTP over IPv6 passes",
                        NAMED(zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1),
                        NAMED(zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1)),
            passthrough("vpn_passthrough.ipsec.ipv4", "IPSec over IPv4 passes",
                        NAMED(zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1),
                        NAMED(zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1)),
            passthrough("vpn_passthrough.ipsec.ipv6", "IPSec over IPv6 passes",
                        NAMED(zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1),
                        NAMED(zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1)),
            passthrough("vpn_passthrough.l2tp.ipv4", "L2TP over IPv4 passes",
                        NAMED(zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1),
                        NAMED(zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1)),
            passthrough("vpn_passthrough.l2tp.ipv6", "L2TP over IPv6 passes",
                        NAMED(zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1),
                        NAMED(zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1))};
}

}  // namespace ctl
