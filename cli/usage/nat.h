// Usage texts of the NAT settings, one printed line per source line. The protocols they name are IP protocol numbers,
// which is not what the interface takes: users know both as they are.
#ifndef ZR_NEXA_CLI_USAGE_NAT_H
#define ZR_NEXA_CLI_USAGE_NAT_H

namespace cli {

inline constexpr char kNatTypeUsage[] =
    "How to use:\r\n"
    "zr_nexa NAT Type <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "set: zr_nexa NAT Type set <wwan_handle> <nat_type>\r\n"
    "     set wan interface nat type\r\n"
    "get: zr_nexa NAT Type get <wwan_handle>\r\n"
    "     get wan interface nat type\r\n"
    "\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n"
    "<nat_type>\r\n"
    "0 : SYMMETRIC NAT\r\n"
    "1 : PORT RESTRICTED CONE NAT\r\n"
    "2 : FULL CONE NAT\r\n"
    "3 : ADDRESS RESTRICTED NAT\r\n"
    "\r\n";

inline constexpr char kNatIpv4DmzUsage[] =
    "How to use:\r\n"
    "zr_nexa NAT IPV4DMZ <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "enable: zr_nexa NAT IPV4DMZ enable <wwan_handle> <dmz_ip>\r\n"
    "        enable default lan ipv4 dmz\r\n"
    "disable: zr_nexa NAT IPV4DMZ disable <wwan_handle>\r\n"
    "         disable default lan ipv4 dmz\r\n"
    "get: zr_nexa NAT IPV4DMZ get <wwan_handle>\r\n"
    "     get default lan ipv4 dmz config\r\n"
    "\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n"
    "<dmz_ip>\r\n"
    "IP address type\r\n"
    "exp: 192.168.225.50\r\n"
    "\r\n";

inline constexpr char kNatIpv4PortMappingUsage[] =
    "How to use:\r\n"
    "zr_nexa NAT IPV4PortMapping <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "add: zr_nexa NAT IPV4PortMapping add <wwan_handle> <private_ip> <private_port> <global_port> <protocol>\r\n"
    "     add a ipv4 port mapping rule on default lan\r\n"
    "get: zr_nexa NAT IPV4PortMapping get <wwan_handle>\r\n"
    "     get all ipv4 port mapping rule config on default lan\r\n"
    "del: zr_nexa NAT IPV4PortMapping del <wwan_handle> <private_ip> <private_port> <global_port> <protocol>\r\n"
    "     del a ipv4 port mapping rule on default lan\r\n"
    "\r\n"
    "<private_ip>\r\n"
    "IP address type\r\n"
    "exp: 192.168.225.50\r\n"
    "\r\n"
    "<private_port>\r\n"
    "int type, 1-65535\r\n"
    "\r\n"
    "<global_port>\r\n"
    "int type, 1-65535\r\n"
    "\r\n"
    "<protocol>\r\n"
    "1: ICMP\r\n"
    "6: TCP\r\n"
    "17: UDP\r\n"
    "50: ESP\r\n"
    "253: TCP_UDP\r\n"
    "\r\n";

inline constexpr char kNatRoutingBhUsage[] =
    "How to use:\r\n"
    "zr_nexa NAT RoutingBH <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "set: zr_nexa NAT RoutingBH set <routingbh>\r\n"
    "     configure the routingbh/routingbh_ippt enable or disable\r\n"
    "get: zr_nexa NAT RoutingBH get\r\n"
    "     query the routingbh/routingbh_ippt status\r\n"
    "\r\n"
    "<routingbh>\r\n"
    "int type, routingbh config, 0-1\r\n"
    "The Routing Behind function on internal datacall enable or disable\r\n"
    "\r\n";

}  // namespace cli

#endif
