#include "fault_sweep.h"

std::vector<SweepRow> alg_sweep_rows()
{
    static const zr_nexa_sip_server_info_t server = {ZR_NEXA_ALG_SIP_INFO_IP, 0x0A000005, {}};
    static int count;
    static unsigned char out[ZR_NEXA_ALG_SIP_BUFFER_SIZE];
    const SweepStep select = {"SelectLANBridge", 1, "Select LAN Bridge (LAN_ID=9) error %d"};
    return {
        {SWEPT(zr_nexa_alg_enable_type_set_v1, (1, 2)), {{"EnableAlg", 1, "Failed to Enable ALG. Error:0x%x"}}},
        {SWEPT(zr_nexa_alg_enable_type_set_v1, (0, 2)), {{"DisableAlg", 2, "Failed to Disable ALG. Error:0x%x"}}},
        {SWEPT(zr_nexa_alg_sip_server_info_set_v1, (9, &server)),
         {select, {"SetSIPServerInfo", 2, "Failed to set SIP server information. Error:0x%x"}}},
        {SWEPT(zr_nexa_alg_sip_server_info_get_v1, (9, ZR_NEXA_IP_V4, &count, out)),
         {select, {"GetSIPServerInfo", 2, "Failed to get IPV4 SIP server info. Error:0x%x"}},
         {output(count), output(out)},
         [](scripted::Platform& platform) { platform.on("GetSIPServerInfo").gives("network_count", 2); }},
        {SWEPT(zr_nexa_alg_sip_server_info_get_v1, (9, ZR_NEXA_IP_V6, &count, out)),
         {select, {"GetV6SIPServerInfo", 3, "Failed to get IPV6 SIP server info. Error:0x%x"}},
         {output(count), output(out)},
         [](scripted::Platform& platform) { platform.on("GetV6SIPServerInfo").gives("network_count", 2); }},
    };
}
