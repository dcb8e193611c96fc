// Usage texts of the LAN settings. Their slips ("getway", a set line that says get) are known to scripts and stay.
#ifndef ZR_NEXA_CLI_USAGE_LAN_H
#define ZR_NEXA_CLI_USAGE_LAN_H

namespace cli {

inline constexpr char kGwurlUsage[] = R"(How to use:
zr_nexa LAN GWURL <option> [parameters]

<option>
get: zr_nexa LAN GWURL get
     get getway url
set: zr_nexa LAN GWURL get <url>
     set getway url

<url>
url type
exp: mobileap.home

)";

inline constexpr char kDhcpUsage[] = R"(How to use:
zr_nexa LAN DHCP <option> [parameters]

<option>
get: zr_nexa LAN DHCP get <lan_id>
     get lan dhcp configs
set: zr_nexa LAN DHCP set <lan_id> <gw_ip> <netmask> <start_ip> <end_ip> <lease_time>
     set lan dhcp configs

<lan_id>
int type
if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id

<gw_ip> <netmask> <start_ip> <end_ip>
IP address type
exp: 192.168.225.1 255.255.255.0 192.168.225.20 192.168.225.60

<lease_time>
int type
unit is second, exp: 43200

)";

inline constexpr char kDefaultDhcpEnableUsage[] = R"(How to use:
zr_nexa LAN DefaultDHCPEnable <option> [action]

<option>
get: zr_nexa LAN DefaultDHCPEnable get
     get current DefaultDHCPEnable config
set: zr_nexa LAN DefaultDHCPEnable set <action>
     get current DefaultDHCPEnable config

<action>
0: do not Start DHCP server when create LAN or boot
1: Start DHCP server when create LAN or boot
)";

inline constexpr char kVlanUsage[] = R"(How to use:
zr_nexa LAN VLAN <option> [parameters]

<option>
add: zr_nexa LAN VLAN add <vlan_id> <vlan_type> <vlan_accelerated>
     add a vlan entry
get: zr_nexa LAN VLAN get
     get all currently existing vlan entries, no other parameters are required
del: zr_nexa LAN VLAN del <vlan_id> <vlan_type>
     delete a currently existing vlan entry

<vlan_id>
int type, 2-255

<vlan_type>
int type
1: ETH type
2: ECM type
3: RNDIS type
4: ETH_NIC2 type

<vlan_accelerated>
bool type
1: enable vlan IPA
0: disable vlan IPA

)";

inline constexpr char kIpptNatUsage[] = R"(How to use:
zr_nexa LAN IPPTNAT <option> [parameters]

<option>
set: zr_nexa LAN IPPTNAT set <ippt_nat>
     set ippt nat mode
get: zr_nexa LAN IPPTNAT get
     get ippt nat mode

<ippt_nat>
int type
1: ippt withnat mode, module will config network NAT for ippt device
0: ippt withoutnat mode, module will not config network NAT for ippt device
2: ippt withnat only one device mode, module will config network NAT for ippt device

)";

inline constexpr char kIpptNatPdnUsage[] = R"(How to use:
zr_nexa LAN IPPTNATPDN <option> [parameters]

<option>
set: zr_nexa LAN IPPTNATPDN set <lan_id> <ippt_nat>
     set ippt nat mode
get: zr_nexa LAN IPPTNATPDN get <lan_id>
     get ippt nat mode

<lan_id>
int type
if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id

<ippt_nat>
int type
1: ippt withnat mode, module will config network NAT for ippt device
0: ippt withoutnat mode, module will not config network NAT for ippt device
2: ippt withnat only one device mode, module will config network NAT for ippt device
-1: ippt default mode for PDN, use the global value of IPPTNAT configuration

)";

inline constexpr char kIpptUsage[] = R"(How to use:
zr_nexa LAN IPPT <option> [parameters]

<option>
adaptive: zr_nexa LAN IPPT adaptive <lan_id> <adaptive_mode>
          set ippt mode
set:      zr_nexa LAN IPPT set <lan_id> <ippt_mode> [<ippt_host_info>]
          set ippt mode
get:      zr_nexa LAN IPPT get <lan_id>
          get ippt mode

<lan_id>
int type
if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id

<adaptive_mode>
int type
0:  disable adaptive ippt
1:  enable adaptive ippt: ETH newest device
2:  enable adaptive ippt: ETH first device
3:  enable adaptive ippt: USB(ECM/RNDIS) newest device
4:  enable adaptive ippt: USB(ECM/RNDIS) first device
5:  enable adaptive ippt: Wi-Fi newest device
6:  enable adaptive ippt: Wi-Fi first device
7:  enable adaptive ippt: Any newest device
8:  enable adaptive ippt: Any first device
9:  enable adaptive ippt: ETH-NIC2 newest device
10: enable adaptive ippt: ETH-NIC2 first device

<ippt_mode>
int type
0: disable ippt mode
1: enable ippt mode on ETH interface
2: enable ippt mode on WLAN interface, not support when <lan_id> is a vlan interface
3: enable ippt mode on USB(ECM/RNDIS) interface
4: enable ippt mode on ETH_NIC2 interface

<ippt_host_info>
string type
if <ippt_mode> is 0 this value can be omitted
if <ippt_mode> is 1/2/4 this value should be hosts mac address, exp: 00:01:02:03:04:05
if <ippt_mode> is 3 this value should be hosts name, exp: Korvane_PC

)";

inline constexpr char kIpptGwFilterUsage[] = R"(How to use:
zr_nexa LAN IPPTGWFilter <option> [parameters]

<option>
add: zr_nexa LAN IPPTGWFilter add <lan_id> <protocol> <start_port> <end_port>
     add a ippt getway address software filter config
del: zr_nexa LAN IPPTGWFilter del <lan_id> <filter_ID>
     del a ippt getway address software filter config
get: zr_nexa LAN IPPTGWFilter get <lan_id>
     get all ippt getway address software filter config

<lan_id>
int type
if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id

<protocol>
int type
1: TCP
2: UDP

<start_port>
int type, 1-65534

<end_port>
int type, 1-65534, must be equal to or greater than <start_port>

<filter_ID>
int type, 1-5
IPPT GW Filter num

)";

}  // namespace cli

#endif
