// The work on the IPA connection manager's file. It is a library of its own, loaded on first use: programs that never
// ask for it do not pay for an XML parser.
#ifndef ZR_NEXA_IPACM_CFG_H
#define ZR_NEXA_IPACM_CFG_H

#include <zr_nexa/gre.h>

namespace pugi {
class xml_document;
}

// is_set 0 fills *cfg from the file, any other value writes it; its counts must be in range. Blocks while the file
// cannot be parsed. Always returns 0.
extern "C" ZR_NEXA_API int32_t ZR_GetSetIpacmConfigFromXML(uint32_t is_set, zr_nexa_wan_gre_ipacfg_t* cfg);

// Replaces the file by the document. Nothing is reported.
extern "C" ZR_NEXA_API void zr_nexa_ipacm_cfg_save(const pugi::xml_document& document);

#endif
