// The IPA connection manager's file: what is read from it, written to it and read again.
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <pugixml.hpp>
#include <string>

#include "fuzz.h"
#include "ipacm_cfg.h"
#include "scripted_platform.h"

namespace {

const std::string kConfig = "/tmp/gre_file_fuzz." + std::to_string(getpid());
const std::string kSaved = kConfig + ".saved";

struct RemoveFiles {
    ~RemoveFiles()
    {
        unlink(kConfig.c_str());
        unlink(kSaved.c_str());
    }
} remove_files;

zr_nexa_wan_gre_ipacfg_t read_from(const std::string& file)
{
    zr_nexa_wan_gre_ipacfg_t cfg;
    std::memset(&cfg, 0xa5, sizeof cfg);
    fuzz::expect(zr_nexa::get_set_ipacm_cfg({file.c_str(), kSaved.c_str()}, 0, &cfg) == 0);
    fuzz::expect(cfg.gre_enabled <= 1);
    fuzz::expect(cfg.num_of_server_addrs <= ZR_NEXA_GRE_SERVERS_MAX);
    fuzz::expect(cfg.num_of_subnet_masks <= ZR_NEXA_GRE_SUBNETS_MAX);
    return cfg;
}

}  // namespace

// On the scripted double nothing copies the saved file over the other.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // For a file that cannot be parsed the work waits.
    pugi::xml_document document;
    if (!document.load_buffer(data, size)) return -1;
    std::ofstream(kConfig, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    scripted::platform().reset();
    zr_nexa_wan_gre_ipacfg_t cfg = read_from(kConfig);
    if (cfg.num_of_server_addrs == 0 && size != 0) {
        cfg.num_of_server_addrs = 1;
        cfg.server_ipv4_addr[0] = data[size / 2];
    }
    cfg.gre_enabled = 1;
    fuzz::expect(zr_nexa::get_set_ipacm_cfg({kConfig.c_str(), kSaved.c_str()}, 1, &cfg) == 0);

    pugi::xml_document saved;
    fuzz::expect(saved.load_file(kSaved.c_str()));
    if (!saved.child("system").child("IPACM").child("GREFlag")) return 0;
    const zr_nexa_wan_gre_ipacfg_t again = read_from(kSaved);
    fuzz::expect(std::memcmp(&cfg, &again, sizeof cfg) == 0);
    fuzz::expect(scripted::platform().complaints.empty());
    return 0;
}
