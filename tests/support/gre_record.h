// GRE settings for tests.
#ifndef GRE_RECORD_H
#define GRE_RECORD_H

#include <arpa/inet.h>
#include <zr_nexa/gre.h>

#include <cstring>

// A record with the given counts, its padding poisoned; addresses 10.0.0.1, 10.0.0.2, ... and 255.255.0.0, 255.255.1.0.
inline zr_nexa_wan_gre_ipacfg_t gre_record(uint8_t enabled, uint8_t servers, uint8_t masks)
{
    zr_nexa_wan_gre_ipacfg_t cfg;
    std::memset(&cfg, 0xA5, sizeof(cfg));
    cfg.gre_enabled = enabled;
    cfg.num_of_server_addrs = servers;
    for (uint32_t i = 0; i < ZR_NEXA_GRE_SERVERS_MAX; ++i) {
        cfg.server_ipv4_addr[i] = htonl(0x0A000001 + i);
    }
    cfg.num_of_subnet_masks = masks;
    for (uint32_t i = 0; i < ZR_NEXA_GRE_SUBNETS_MAX; ++i) {
        cfg.subnet_mask[i] = htonl(0xFFFF0000 + (i << 8));
    }
    return cfg;
}

#endif
