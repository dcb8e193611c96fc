// The work on the IPA connection manager's file.
//
// No exception leaves it: a change that cannot be completed for want of memory ends in one. The parser itself throws
// none, but where it is a shared library it takes its memory where the application told it to.
#include "ipacm_cfg.h"

#include <arpa/inet.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <pugixml.hpp>
#include <string_view>

#include "log.h"
#include "texts.h"

namespace {

constexpr auto kLogSource = zr_nexa::LogSource::kIpacmCfg;

constexpr zr_nexa::IpacmFiles kIpacmFiles = {"/etc/data/ipa/IPACM_cfg.xml", "/var/run/data/zr_IPACM_cfg.tmp"};
constexpr const char* kLogName = "ZR_GetSetIpacmConfigFromXML";
constexpr useconds_t kRetryInterval = 50000;  // microseconds
constexpr size_t kCommandSize = 200;

// Short of memory, a file cannot be parsed like any other.
bool load(const char* file, pugi::xml_document* document)
{
    try {
        return document->load_file(file);
    } catch (const std::exception&) {
        return false;
    }
}

// From the leaves up: the parser removes what an element holds by recursion, and a file may nest deeper than the stack.
void remove_children(pugi::xml_node parent)
{
    pugi::xml_node node = parent;
    while (parent.first_child()) {
        while (node.first_child()) {
            node = node.first_child();
        }
        const pugi::xml_node leaf = node;
        node = leaf.parent();
        node.remove_child(leaf);
    }
}

// Nothing is appended to a missing parent.
void append_text_element(pugi::xml_node parent, const char* name, const char* text)
{
    pugi::xml_node element = parent.append_child(pugi::node_element);
    const bool appended = element.set_name(name) && element.append_child(pugi::node_pcdata).set_value(text);
    if (parent && !appended) throw std::bad_alloc();
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

}  // namespace

namespace zr_nexa {

// The file is replaced by copy, not by rename: others may hold it open. The blanks at the end are part of the lines.
void save_ipacm_cfg(const IpacmFiles& files, const pugi::xml_document& document)
{
    document.save_file(files.temporary, "\t", pugi::format_indent, pugi::encoding_auto);
    char command[kCommandSize];
    std::snprintf(command, sizeof(command), "fsync -d %s", files.temporary);
    run(command);
    std::snprintf(command, sizeof(command), "cp %s %s ", files.temporary, files.config);
    run(command);
    std::snprintf(command, sizeof(command), "fsync -d %s", files.config);
    run(command);
    std::snprintf(command, sizeof(command), "rm %s ", files.temporary);
    run(command);
}

int32_t get_set_ipacm_cfg(const IpacmFiles& files, uint32_t is_set, zr_nexa_wan_gre_ipacfg_t* cfg)
try {
    pugi::xml_document document;
    while (!load(files.config, &document)) {
        usleep(kRetryInterval);
    }
    pugi::xml_node gre_flag = document.child("system").child("IPACM").child("GREFlag");

    if (is_set != 0) {
        ZR_LOG_INFO_AS(kLogName, "SET gre ipa option");
        remove_children(gre_flag);
        append_text_element(gre_flag, "GREEnabled", "0");
        // The addresses alone once more. Behind the clearing of all children this finds none.
        for (pugi::xml_node child = gre_flag.first_child(), next; child; child = next) {
            next = child.next_sibling();
            const std::string_view name = child.name();
            if (name == "GREServer" || name == "GREServerSubnet") gre_flag.remove_child(child);
        }
        if (cfg->gre_enabled == 1) {
            gre_flag.child("GREEnabled").first_child().set_value("1");
            ZR_LOG_INFO_AS(kLogName, "GRE ipa enable, num_of_server_addrs:%d, num_of_subnet_masks:%d",
                           cfg->num_of_server_addrs, cfg->num_of_subnet_masks);
            for (uint32_t i = 0; i < cfg->num_of_server_addrs; ++i) {
                const Ipv4Text server(cfg->server_ipv4_addr[i]);
                append_text_element(gre_flag, "GREServer", server.c_str());
                ZR_LOG_INFO_AS(kLogName, "serverIP[%d]:%s", i, server.c_str());
            }
            for (uint32_t i = 0; i < cfg->num_of_subnet_masks; ++i) {
                const Ipv4Text subnet(cfg->subnet_mask[i]);
                append_text_element(gre_flag, "GREServerSubnet", subnet.c_str());
                ZR_LOG_INFO_AS(kLogName, "subnetIP[%d]:%s", i, subnet.c_str());
            }
        }
        save_ipacm_cfg(files, document);
        return 0;
    }

    ZR_LOG_INFO_AS(kLogName, "GET gre ipa option");
    std::memset(cfg, 0, sizeof(*cfg));
    if (std::strcmp(gre_flag.child("GREEnabled").child_value(), "0") == 0) {
        // In memory only: addresses of a disabled offload do not count.
        remove_children(gre_flag);
        append_text_element(gre_flag, "GREEnabled", "0");
    } else {
        cfg->gre_enabled = 1;
        ZR_LOG_INFO_AS(kLogName, "GET gre ipa status:%d", cfg->gre_enabled);
    }
    for (const pugi::xml_node server : gre_flag.children("GREServer")) {
        if (cfg->num_of_server_addrs == ZR_NEXA_GRE_SERVERS_MAX) break;
        const uint32_t address = address_in(server);
        cfg->server_ipv4_addr[cfg->num_of_server_addrs] = address;
        ZR_LOG_INFO_AS(kLogName, "cfg_value->server_ipv4_addr[%d]:%d", cfg->num_of_server_addrs, address);
        ++cfg->num_of_server_addrs;
    }
    for (const pugi::xml_node subnet : gre_flag.children("GREServerSubnet")) {
        if (cfg->num_of_subnet_masks == ZR_NEXA_GRE_SUBNETS_MAX) break;
        const uint32_t mask = address_in(subnet);
        cfg->subnet_mask[cfg->num_of_subnet_masks] = mask;
        ZR_LOG_INFO_AS(kLogName, "cfg_value->subnet[%d]:%d", cfg->num_of_subnet_masks, mask);
        ++cfg->num_of_subnet_masks;
    }
    return 0;
} catch (const std::exception&) {
    // Short of memory in the middle: nothing was saved, and half a file never is.
    return 0;
}

}  // namespace zr_nexa

int32_t ZR_GetSetIpacmConfigFromXML(uint32_t is_set, zr_nexa_wan_gre_ipacfg_t* cfg)
{
    return zr_nexa::get_set_ipacm_cfg(kIpacmFiles, is_set, cfg);
}

void zr_nexa_ipacm_cfg_save(const pugi::xml_document& document)
{
    zr_nexa::save_ipacm_cfg(kIpacmFiles, document);
}
