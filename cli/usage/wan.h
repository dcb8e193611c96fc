// Usage texts of the WAN settings.
#ifndef ZR_NEXA_CLI_USAGE_WAN_H
#define ZR_NEXA_CLI_USAGE_WAN_H

namespace cli {

inline constexpr char kWwanConfigUsage[] = R"(How to use:
zr_nexa WAN WWANConfig <option> [parameters]

<option>
add: zr_nexa WAN WWANConfig add <tech_pref> <apn_id>
     add a wwanconfig, used by datacall, will return new wwanconfig handle
set: zr_nexa WAN WWANConfig set <wwan_handle> <tech_pref> <apn_id>
     update a wwanconfig
get: zr_nexa WAN WWANConfig get
     show all wwanconfig in a list
del: zr_nexa WAN WWANConfig del <wwan_handle>
     delete a wwanconfig
setdefault: zr_nexa WAN WWANConfig setdefault <wwan_handle>
            set a wwanconfig to be default wwanconfig

note: default wwanconfig, which is used for module internally network
      default wwanconfig handle is 1 in default

<wwan_handle>
int type, wwanconfig handle, 1-50

<tech_pref>
int type, 0-2
0: any
1: umts
2: cdma

<apn_id>
int type, the apn id used by network connection, 1-16

)";

inline constexpr char kApWwanUsage[] = R"(How to use:
zr_nexa WAN APWWAN <option> [parameters]

<option>
set: zr_nexa WAN APWWAN set <ap_wwan_handle> <apdns_wwan_handle>
     configure the wwanconfig handle used by the module AP
get: zr_nexa WAN APWWAN get
     query the wwanconfig handle used by the module AP

<ap_wwan_handle>
int type, wwanconfig handle, 1-50
The wwanconfig handle used by the module AP internally

<apdns_wwan_handle>
int type, wwanconfig handle, 1-50
The wwanconfig handle used by dns proxy in module AP

)";

inline constexpr char kStatusUsage[] = R"(How to use:
zr_nexa WAN Status <option> [parameters]

<option>
get: zr_nexa WAN Status get <wwan_handle>
     get a wwanconfig connect status

<wwan_handle>
int type, wwanconfig handle, 1-50

)";

inline constexpr char kConnectUsage[] = R"(How to use:
zr_nexa WAN Connect <option> [parameters]

<option>
connect: zr_nexa WAN Connect connect <wwan_handle> <ip_type>
         connect a wwanconfig
disconnect: zr_nexa WAN Connect disconnect <wwan_handle> <ip_type>
            disconnect a wwanconfig

<wwan_handle>
int type, wwanconfig handle, 1-50

<ip_type>
int type
4:  connect/disconnect ipv4
6:  connect/disconnect ipv6
46: connect/disconnect ipv4 and ipv6

)";

inline constexpr char kReConnectUsage[] = R"(How to use:
zr_nexa WAN ReConnect <option> [parameters]

<option>
set: zr_nexa WAN ReConnect set <wwan_handle> <reconnect>
     set a wwanconfig reconnect enable/disable
get: zr_nexa WAN ReConnect get <wwan_handle>
     get a wwanconfig reconnect status
<wwan_handle>
int type, wwanconfig handle, 1-50

<reconnect>
int type
1:  enable reconnect
0:  disable reconnect

)";

inline constexpr char kAutoConnectUsage[] = R"(How to use:
zr_nexa WAN AutoConnect <option> [parameters]

<option>
set: zr_nexa WAN AutoConnect set <wwan_handle> <autoconnect>
     set a wwanconfig autoconnect enable/disable
get: zr_nexa WAN AutoConnect get <wwan_handle>
     get a wwanconfig autoconnect status
<wwan_handle>
int type, wwanconfig handle, 1-50

<autoconnect>
int type
1:  enable autoconnect
0:  disable autoconnect

)";

inline constexpr char kInfoUsage[] = R"(How to use:
zr_nexa WAN Info <option> [parameters]

<option>
get: zr_nexa WAN Info get <wwan_handle>
     get a wwanconfig network connection info

<wwan_handle>
int type, wwanconfig handle, 1-50

)";

// "dzr_nexa" is part of the text.
inline constexpr char kMpdnMappingUsage[] = R"(How to use:
zr_nexa WAN MPDNMapping <option> [parameters]

<option>
add: zr_nexa WAN MPDNMapping add <wwan_handle> <lan_id>
     add a mapping rule between wwanconfig and (v)lan
get: zr_nexa WAN MPDNMapping get
     get all mapping rule config
del: dzr_nexa WAN MPDNMapping del <wwan_handle> <lan_id>
     del a mapping rule

<wwan_handle>
int type, wwanconfig handle, 1-50

<lan_id>
int type
if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id

)";

inline constexpr char kRestartRadvdUsage[] = R"(How to use:
zr_nexa WAN RestartRadvd

<option>
restart: zr_nexa WAN RestartRadvd restart <wwan_handle>
     Restart Radvd for <wwan_handle> (only support on RADVD supported project)

<wwan_handle>
int type, wwanconfig handle, 1-50

)";

}  // namespace cli

#endif
