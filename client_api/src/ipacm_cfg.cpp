// The work on the IPA connection manager's file.
//
// The parser reports by value and throws only in XPath, which is not used: no exception can arise here.
#include "ipacm_cfg.h"

#include <arpa/inet.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <pugixml.hpp>

#include "log.h"

namespace {

constexpr auto kLogSource = zr_nexa::LogSource::kIpacmCfg;

constexpr const char* kConfigFile = "/etc/data/ipa/IPACM_cfg.xml";
constexpr const char* kTemporaryFile = "/var/run/data/zr_IPACM_cfg.tmp";
constexpr useconds_t kRetryInterval = 50000;  // microseconds
constexpr size_t kCommandSize = 200;

// Those of one name; null: all of them, texts included.
void remove_children(pugi::xml_node parent, const char* name)
{
    while (const pugi::xml_node child = name == nullptr ? parent.first_child() : parent.child(name)) {
        parent.remove_child(child);
    }
}

pugi::xml_node append_text_element(pugi::xml_node parent, const char* name, const char* text)
{
    pugi::xml_node element = parent.append_child(name);
    element.append_child(pugi::node_pcdata).set_value(text);
    return element;
}

// Writes the dotted text of a network-order address.
void dotted(uint32_t address, char (&text)[INET_ADDRSTRLEN])
{
    inet_ntop(AF_INET, &address, text, sizeof(text));
}

// 0 for a text that is no address.
uint32_t address_in(const pugi::xml_node& element)
{
    uint32_t address = 0;
    inet_pton(AF_INET, element.child_value(), &address);
    return address;
}

void run(const char* command)
{
    ds_system_call(command, static_cast<unsigned int>(std::strlen(command)));
}

// The file is replaced by copy, not by rename: others may hold it open. The blanks at the end are part of the lines.
void zr_nexa_ipacm_cfg_save(const pugi::xml_document& document)
{
    document.save_file(kTemporaryFile, "\t", pugi::format_indent, pugi::encoding_auto);
    char command[kCommandSize];
    std::snprintf(command, sizeof(command), "fsync -d %s", kTemporaryFile);
    run(command);
    std::snprintf(command, sizeof(command), "cp %s %s ", kTemporaryFile, kConfigFile);
    run(command);
    std::snprintf(command, sizeof(command), "fsync -d %s", kConfigFile);
    run(command);
    std::snprintf(command, sizeof(command), "rm %s ", kTemporaryFile);
    run(command);
}

}  // namespace

int32_t ZR_GetSetIpacmConfigFromXML(uint32_t is_set, zr_nexa_wan_gre_ipacfg_t* cfg) noexcept
{
    pugi::xml_document document;
    while (!document.load_file(kConfigFile)) {
        usleep(kRetryInterval);
    }
    pugi::xml_node gre_flag = document.child("system").child("IPACM").child("GREFlag");
    char text[INET_ADDRSTRLEN];

    if (is_set != 0) {
        LOG_INFO("SET gre ipa option");
        remove_children(gre_flag, nullptr);
        const pugi::xml_node enabled = append_text_element(gre_flag, "GREEnabled", "0");
        // Nothing of these is left; the second look costs nothing.
        remove_children(gre_flag, "GREServer");
        remove_children(gre_flag, "GREServerSubnet");
        if (cfg->gre_enabled == 1) {
            enabled.first_child().set_value("1");
            LOG_INFO("GRE ipa enable, num_of_server_addrs:%d, num_of_subnet_masks:%d", cfg->num_of_server_addrs,
                     cfg->num_of_subnet_masks);
            for (uint32_t i = 0; i < cfg->num_of_server_addrs; ++i) {
                dotted(cfg->server_ipv4_addr[i], text);
                append_text_element(gre_flag, "GREServer", text);
                LOG_INFO("serverIP[%d]:%s", i, text);
            }
            for (uint32_t i = 0; i < cfg->num_of_subnet_masks; ++i) {
                dotted(cfg->subnet_mask[i], text);
                append_text_element(gre_flag, "GREServerSubnet", text);
                LOG_INFO("subnetIP[%d]:%s", i, text);
            }
        }
        zr_nexa_ipacm_cfg_save(document);
        return 0;
    }

    LOG_INFO("GET gre ipa option");
    std::memset(cfg, 0, sizeof(*cfg));
    if (std::strcmp(gre_flag.child("GREEnabled").child_value(), "0") == 0) {
        // In memory only: addresses of a disabled offload do not count.
        remove_children(gre_flag, nullptr);
        append_text_element(gre_flag, "GREEnabled", "0");
    } else {
        cfg->gre_enabled = 1;
        LOG_INFO("GET gre ipa status:%d", cfg->gre_enabled);
    }
    for (const pugi::xml_node server : gre_flag.children("GREServer")) {
        if (cfg->num_of_server_addrs == ZR_NEXA_GRE_MAX_SERVERS) break;
        const uint32_t address = address_in(server);
        cfg->server_ipv4_addr[cfg->num_of_server_addrs] = address;
        LOG_INFO("cfg_value->server_ipv4_addr[%d]:%d", cfg->num_of_server_addrs, address);
        ++cfg->num_of_server_addrs;
    }
    for (const pugi::xml_node subnet : gre_flag.children("GREServerSubnet")) {
        if (cfg->num_of_subnet_masks == ZR_NEXA_GRE_MAX_SUBNETS) break;
        const uint32_t mask = address_in(subnet);
        cfg->subnet_mask[cfg->num_of_subnet_masks] = mask;
        LOG_INFO("cfg_value->subnet[%d]:%d", cfg->num_of_subnet_masks, mask);
        ++cfg->num_of_subnet_masks;
    }
    return 0;
}
