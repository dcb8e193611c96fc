#include "command_table.h"

#include <cstddef>

#include "handlers.h"
#include "words.h"

namespace cli {

namespace {

constexpr Setting kGeneral[] = {
    {1, "Restore", general_restore, "Restore nexa factory default settings(Will Auto reboot)"},
    {1, "SFE", general_sfe, "Enable/Disable/Query software shortcut engine"},
    {0, "GRE", nullptr, nullptr},
};

constexpr Setting kLan[] = {
    {1, "GWURL", lan_gwurl, "LAN Gateway URL address configuration"},
    {1, "DHCP", lan_dhcp, "LAN DHCP related configuration"},
    {0, "MACBind", nullptr, "LAN DHCP MAC address binding configuration"},
    {1, "VLAN", lan_vlan, "Add/Delete/Get VLAN"},
    {1, "IPPTNAT", lan_ipptnat, "IPPassthrough NAT configuration"},
    {1, "IPPTNATPDN", lan_ipptnatpdn, "IPPassthrough NAT config for PDN"},
    {1, "IPPT", lan_ippt, "IPPassthrough enable/disable configuration"},
    {1, "IPPTGWFilter", lan_ipptgwfilter, "IPPassthrough mode getway address software filter configuration"},
    {0, "L2TP", nullptr, nullptr},
    {0, "DefaultDHCPEnable", lan_defaultdhcpenable, "Start DHCP server when first create VLAN or not"},
};

constexpr Setting kWan[] = {
    {1, "WWANConfig", wan_wwanconfig, "Add/Edit/Delete/Query WWAN handle"},
    {1, "APWWAN", wan_apwwan, "Config/Query the WWAN handle used by the module AP"},
    {1, "Status", wan_status, "Get WWAN connect status"},
    {0, "Connect", wan_connect, "Connect/Disconnect WWAN"},
    {0, "ReConnect", wan_reconnect, "Enable/Disable WWAN Reconnect"},
    {1, "AutoConnect", wan_autoconnect, "Enable/Disable WWAN Auto connect"},
    {1, "Info", wan_info, "Get WWAN Info"},
    {1, "MPDNMapping", wan_mpdnmapping, "Multi-Datacall WWAN to LAN/VLAN Mapping"},
    {1, "RestartRadvd", wan_restartradvd, "Restart Radvd (only support on RADVD supported project)"},
};

constexpr Setting kNat[] = {
    {1, "Type", nat_type, "NAT type configuration for LAN"},
    {1, "IPV4DMZ", nat_ipv4dmz, "IPV4 DMZ configuration"},
    {1, "IPV4PortMapping", nat_ipv4portmapping, "IPV4 Port Mapping configuration"},
    {1, "RoutingBH", nat_routingbh, "IPV4 Routing Behind function"},
    {0, "IPV6NAT", nullptr, nullptr},
    {0, "IPV6DNS", nullptr, nullptr},
};

constexpr Setting kWlan[] = {{0, "", nullptr, nullptr}};
constexpr Setting kFirewall[] = {{0, "", nullptr, nullptr}};
constexpr Setting kTethering[] = {{0, "", nullptr, nullptr}};

template <size_t rows>
constexpr int32_t count(const Setting (&)[rows])
{
    return static_cast<int32_t>(rows);
}

}  // namespace

const Category kCategories[kCategoryCount] = {
    {1, count(kGeneral), "General", kGeneral, "Some general configuration items"},
    {1, count(kLan), "LAN", kLan, "LAN network configuration items"},
    {1, count(kWan), "WAN", kWan, "WAN/Datacall related configuration items"},
    {1, count(kNat), "NAT", kNat, "NAT related configuration items"},
    {0, count(kWlan), "WLAN", kWlan, "WLAN/WiFi related configuration items"},
    {0, count(kFirewall), "Firewall", kFirewall, "Firewall related configuration items"},
    {0, count(kTethering), "Tethering", kTethering, "NW Tethering related configuration items"},
};

const Category* find_category(const char* name)
{
    for (const Category& category : kCategories) {
        if (same(category.name, name)) return &category;
    }
    return nullptr;
}

const Setting* find_setting(const Category& category, const char* name)
{
    for (int32_t i = 0; i < category.count; ++i) {
        if (same(category.settings[i].name, name)) return &category.settings[i];
    }
    return nullptr;
}

}  // namespace cli
