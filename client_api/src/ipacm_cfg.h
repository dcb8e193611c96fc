// The work on the IPA connection manager's file.
#ifndef ZR_NEXA_IPACM_CFG_H
#define ZR_NEXA_IPACM_CFG_H

#include <zr_nexa/gre.h>

namespace pugi {
class xml_document;
}

namespace zr_nexa {

struct IpacmFiles {
    const char* config;
    const char* temporary;  // copied over the other
};

// is_set 0 fills *cfg from the file, any other value writes it; its counts must be in range. Blocks while the file
// cannot be parsed. Always returns 0.
int32_t get_set_ipacm_cfg(const IpacmFiles& files, uint32_t is_set, zr_nexa_wan_gre_ipacfg_t* cfg);

// Replaces the file by the document. Nothing is reported.
void save_ipacm_cfg(const IpacmFiles& files, const pugi::xml_document& document);

}  // namespace zr_nexa

// The same on the module's own files.
int32_t ZR_GetSetIpacmConfigFromXML(uint32_t is_set, zr_nexa_wan_gre_ipacfg_t* cfg);
void zr_nexa_ipacm_cfg_save(const pugi::xml_document& document);

#endif
