#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> alg_sweep_rows()
{
    static zr_nexa_sip_server_info_t server;
    static int count;
    static unsigned char out[ZR_NEXA_ALG_SIP_BUFFER_SIZE];
    return {
        {"zr_nexa_alg_enable_type_set_v1", [] { return zr_nexa_alg_enable_type_set_v1(1, 2); }, {{"EnableAlg", 1}}},
        {"zr_nexa_alg_sip_server_info_set_v1",
         [] {
             server = {};
             server.pcscf_info_type = ZR_NEXA_ALG_SIP_INFO_IP;
             return zr_nexa_alg_sip_server_info_set_v1(0, &server);
         },
         {{"SelectLANBridge", 1}, {"SetSIPServerInfo", 2}}},
        {"zr_nexa_alg_sip_server_info_get_v1",
         [] {
             count = poisoned<int>();
             std::memset(out, 0xA5, sizeof(out));
             return zr_nexa_alg_sip_server_info_get_v1(0, ZR_NEXA_IP_V4, &count, out);
         },
         {{"SelectLANBridge", 1}, {"GetSIPServerInfo", 2}},
         nullptr,
         [] { return is_poisoned(count) && is_poisoned(out); }},
    };
}
