// Usage texts of the NAT settings. The protocols they name are IP protocol numbers, which is not what the interface
// takes: users know both as they are.
#ifndef ZR_NEXA_CLI_USAGE_NAT_H
#define ZR_NEXA_CLI_USAGE_NAT_H

namespace cli {

inline constexpr char kTypeUsage[] = R"(How to use:
zr_nexa NAT Type <option> [parameters]

<option>
set: zr_nexa NAT Type set <wwan_handle> <nat_type>
     set wan interface nat type
get: zr_nexa NAT Type get <wwan_handle>
     get wan interface nat type

<wwan_handle>
int type, wwanconfig handle, 1-50

<nat_type>
0 : SYMMETRIC NAT
1 : PORT RESTRICTED CONE NAT
2 : FULL CONE NAT
3 : ADDRESS RESTRICTED NAT

)";

inline constexpr char kIpv4DmzUsage[] = R"(How to use:
zr_nexa NAT IPV4DMZ <option> [parameters]

<option>
enable: zr_nexa NAT IPV4DMZ enable <wwan_handle> <dmz_ip>
        enable default lan ipv4 dmz
disable: zr_nexa NAT IPV4DMZ disable <wwan_handle>
         disable default lan ipv4 dmz
get: zr_nexa NAT IPV4DMZ get <wwan_handle>
     get default lan ipv4 dmz config

<wwan_handle>
int type, wwanconfig handle, 1-50

<dmz_ip>
IP address type
exp: 192.168.225.50

)";

inline constexpr char kIpv4PortMappingUsage[] = R"(How to use:
zr_nexa NAT IPV4PortMapping <option> [parameters]

<option>
add: zr_nexa NAT IPV4PortMapping add <wwan_handle> <private_ip> <private_port> <global_port> <protocol>
     add a ipv4 port mapping rule on default lan
get: zr_nexa NAT IPV4PortMapping get <wwan_handle>
     get all ipv4 port mapping rule config on default lan
del: zr_nexa NAT IPV4PortMapping del <wwan_handle> <private_ip> <private_port> <global_port> <protocol>
     del a ipv4 port mapping rule on default lan

<private_ip>
IP address type
exp: 192.168.225.50

<private_port>
int type, 1-65535

<global_port>
int type, 1-65535

<protocol>
1: ICMP
6: TCP
17: UDP
50: ESP
253: TCP_UDP

)";

inline constexpr char kRoutingBhUsage[] = R"(How to use:
zr_nexa NAT RoutingBH <option> [parameters]

<option>
set: zr_nexa NAT RoutingBH set <routingbh>
     configure the routingbh/routingbh_ippt enable or disable
get: zr_nexa NAT RoutingBH get
     query the routingbh/routingbh_ippt status

<routingbh>
int type, routingbh config, 0-1
The Routing Behind function on internal datacall enable or disable

)";

}  // namespace cli

#endif
