// GRE offload in the IPA connection manager's configuration file.
#include <zr_nexa/gre.h>

#include <cstring>

#include "ipacm_cfg.h"
#include "log.h"
#include "texts.h"

namespace {

constexpr auto kLogSource = zr_nexa::LogSource::kGre;

}  // namespace

using zr_nexa::Ipv4Text;

int32_t zr_nexa_wan_gre_ipacfg_set_v1(const zr_nexa_wan_gre_ipacfg_t* cfg)
{
    ZR_LOG_INFO("entry");
    if (cfg == nullptr) {
        ZR_LOG_ERROR("gre_ipacfg is null");
        return ZR_NEXA_ERR_ARGUMENT;
    }
    if (cfg->num_of_server_addrs > ZR_NEXA_GRE_SERVERS_MAX) {
        ZR_LOG_ERROR("num_of_server_addrs greater than %d", ZR_NEXA_GRE_SERVERS_MAX);
        if (cfg->num_of_subnet_masks > ZR_NEXA_GRE_SUBNETS_MAX) {
            ZR_LOG_ERROR("num_of_subnet_masks greater than %d", ZR_NEXA_GRE_SUBNETS_MAX);
        }
        return ZR_NEXA_ERR_ARGUMENT;
    }
    if (cfg->num_of_subnet_masks > ZR_NEXA_GRE_SUBNETS_MAX) {
        ZR_LOG_ERROR("num_of_subnet_masks greater than %d", ZR_NEXA_GRE_SUBNETS_MAX);
        return ZR_NEXA_ERR_ARGUMENT;
    }
    zr_nexa_wan_gre_ipacfg_t local = *cfg;
    for (uint32_t i = 0; i < local.num_of_server_addrs; ++i) {
        ZR_LOG_INFO("gre_config.server_ipv4_addr[%d]:%s", i, Ipv4Text(local.server_ipv4_addr[i]).c_str());
    }
    for (uint32_t i = 0; i < local.num_of_subnet_masks; ++i) {
        ZR_LOG_INFO("gre_config.subnet_mask[%d]:%s", i, Ipv4Text(local.subnet_mask[i]).c_str());
    }
    // Both texts below name the function without its area word: log readers know them so.
    const int32_t result = ZR_GetSetIpacmConfigFromXML(1, &local);
    if (result != 0) {
        ZR_LOG_ERROR("zr_nexa_gre_ipacfg_set_v1 failed, ret:%d", result);
        return result;
    }
    ZR_LOG_INFO("zr_nexa_gre_ipacfg_set_v1 success");
    return ZR_NEXA_OK;
}

int32_t zr_nexa_wan_gre_ipacfg_get_v1(zr_nexa_wan_gre_ipacfg_t* cfg)
{
    ZR_LOG_INFO("entry");
    if (cfg == nullptr) {
        ZR_LOG_ERROR("gre_ipacfg is null!");
        return ZR_NEXA_ERR_ARGUMENT;
    }
    zr_nexa_wan_gre_ipacfg_t local = {};
    const int32_t result = ZR_GetSetIpacmConfigFromXML(0, &local);
    if (result != 0) {
        ZR_LOG_ERROR("zr_nexa_gre_ipacfg_get_v1 failed, ret:%d", result);
        return result;
    }
    ZR_LOG_INFO("zr_nexa_gre_ipacfg_get_v1 success");
    std::memcpy(cfg, &local, sizeof(local));  // padding included
    return ZR_NEXA_OK;
}
