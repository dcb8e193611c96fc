// Usage texts of the LAN settings, one printed line per source line. Their slips ("getway", a set line that says get)
// are known to scripts and stay.
#ifndef ZR_NEXA_CLI_USAGE_LAN_H
#define ZR_NEXA_CLI_USAGE_LAN_H

namespace cli {

inline constexpr char kGwurlUsage[] =
    "How to use:\r\n"
    "zr_nexa LAN GWURL <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "get: zr_nexa LAN GWURL get\r\n"
    "     get getway url\r\n"
    "set: zr_nexa LAN GWURL get <url>\r\n"
    "     set getway url\r\n"
    "\r\n"
    "<url>\r\n"
    "url type\r\n"
    "exp: mobileap.home\r\n"
    "\r\n";

inline constexpr char kDhcpUsage[] =
    "How to use:\r\n"
    "zr_nexa LAN DHCP <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "get: zr_nexa LAN DHCP get <lan_id>\r\n"
    "     get lan dhcp configs\r\n"
    "set: zr_nexa LAN DHCP set <lan_id> <gw_ip> <netmask> <start_ip> <end_ip> <lease_time>\r\n"
    "     set lan dhcp configs\r\n"
    "\r\n"
    "<lan_id>\r\n"
    "int type\r\n"
    "if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id\r\n"
    "\r\n"
    "<gw_ip> <netmask> <start_ip> <end_ip>\r\n"
    "IP address type\r\n"
    "exp: 192.168.225.1 255.255.255.0 192.168.225.20 192.168.225.60\r\n"
    "\r\n"
    "<lease_time>\r\n"
    "int type\r\n"
    "unit is second, exp: 43200\r\n"
    "\r\n";

inline constexpr char kDefaultDhcpEnableUsage[] =
    "How to use:\r\n"
    "zr_nexa LAN DefaultDHCPEnable <option> [action]\r\n"
    "\r\n"
    "<option>\r\n"
    "get: zr_nexa LAN DefaultDHCPEnable get\r\n"
    "     get current DefaultDHCPEnable config\r\n"
    "set: zr_nexa LAN DefaultDHCPEnable set <action>\r\n"
    "     get current DefaultDHCPEnable config\r\n"
    "\r\n"
    "<action>\r\n"
    "0: do not Start DHCP server when create LAN or boot\r\n"
    "1: Start DHCP server when create LAN or boot\r\n";

}  // namespace cli

#endif
