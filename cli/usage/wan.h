// Usage texts of the WAN settings, one printed line per source line.
#ifndef ZR_NEXA_CLI_USAGE_WAN_H
#define ZR_NEXA_CLI_USAGE_WAN_H

namespace cli {

inline constexpr char kWwanConfigUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN WWANConfig <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "add: zr_nexa WAN WWANConfig add <tech_pref> <apn_id>\r\n"
    "     add a wwanconfig, used by datacall, will return new wwanconfig handle\r\n"
    "set: zr_nexa WAN WWANConfig set <wwan_handle> <tech_pref> <apn_id>\r\n"
    "     update a wwanconfig\r\n"
    "get: zr_nexa WAN WWANConfig get\r\n"
    "     show all wwanconfig in a list\r\n"
    "del: zr_nexa WAN WWANConfig del <wwan_handle>\r\n"
    "     delete a wwanconfig\r\n"
    "setdefault: zr_nexa WAN WWANConfig setdefault <wwan_handle>\r\n"
    "            set a wwanconfig to be default wwanconfig\r\n"
    "\r\n"
    "note: default wwanconfig, which is used for module internally network\r\n"
    "      default wwanconfig handle is 1 in default\r\n"
    "\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n"
    "<tech_pref>\r\n"
    "int type, 0-2\r\n"
    "0: any\r\n"
    "1: umts\r\n"
    "2: cdma\r\n"
    "\r\n"
    "<apn_id>\r\n"
    "int type, the apn id used by network connection, 1-16\r\n"
    "\r\n";

inline constexpr char kApWwanUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN APWWAN <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "set: zr_nexa WAN APWWAN set <ap_wwan_handle> <apdns_wwan_handle>\r\n"
    "     configure the wwanconfig handle used by the module AP\r\n"
    "get: zr_nexa WAN APWWAN get\r\n"
    "     query the wwanconfig handle used by the module AP\r\n"
    "\r\n"
    "<ap_wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "The wwanconfig handle used by the module AP internally\r\n"
    "\r\n"
    "<apdns_wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "The wwanconfig handle used by dns proxy in module AP\r\n"
    "\r\n";

inline constexpr char kStatusUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN Status <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "get: zr_nexa WAN Status get <wwan_handle>\r\n"
    "     get a wwanconfig connect status\r\n"
    "\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n";

inline constexpr char kConnectUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN Connect <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "connect: zr_nexa WAN Connect connect <wwan_handle> <ip_type>\r\n"
    "         connect a wwanconfig\r\n"
    "disconnect: zr_nexa WAN Connect disconnect <wwan_handle> <ip_type>\r\n"
    "            disconnect a wwanconfig\r\n"
    "\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n"
    "<ip_type>\r\n"
    "int type\r\n"
    "4:  connect/disconnect ipv4\r\n"
    "6:  connect/disconnect ipv6\r\n"
    "46: connect/disconnect ipv4 and ipv6\r\n"
    "\r\n";

inline constexpr char kReConnectUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN ReConnect <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "set: zr_nexa WAN ReConnect set <wwan_handle> <reconnect>\r\n"
    "     set a wwanconfig reconnect enable/disable\r\n"
    "get: zr_nexa WAN ReConnect get <wwan_handle>\r\n"
    "     get a wwanconfig reconnect status\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n"
    "<reconnect>\r\n"
    "int type\r\n"
    "1:  enable reconnect\r\n"
    "0:  disable reconnect\r\n"
    "\r\n";

inline constexpr char kAutoConnectUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN AutoConnect <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "set: zr_nexa WAN AutoConnect set <wwan_handle> <autoconnect>\r\n"
    "     set a wwanconfig autoconnect enable/disable\r\n"
    "get: zr_nexa WAN AutoConnect get <wwan_handle>\r\n"
    "     get a wwanconfig autoconnect status\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n"
    "<autoconnect>\r\n"
    "int type\r\n"
    "1:  enable autoconnect\r\n"
    "0:  disable autoconnect\r\n"
    "\r\n";

inline constexpr char kInfoUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN Info <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "get: zr_nexa WAN Info get <wwan_handle>\r\n"
    "     get a wwanconfig network connection info\r\n"
    "\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n";

// "dzr_nexa" is part of the text.
inline constexpr char kMpdnMappingUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN MPDNMapping <option> [parameters]\r\n"
    "\r\n"
    "<option>\r\n"
    "add: zr_nexa WAN MPDNMapping add <wwan_handle> <lan_id>\r\n"
    "     add a mapping rule between wwanconfig and (v)lan\r\n"
    "get: zr_nexa WAN MPDNMapping get\r\n"
    "     get all mapping rule config\r\n"
    "del: dzr_nexa WAN MPDNMapping del <wwan_handle> <lan_id>\r\n"
    "     del a mapping rule\r\n"
    "\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n"
    "<lan_id>\r\n"
    "int type\r\n"
    "if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id\r\n"
    "\r\n";

inline constexpr char kRestartRadvdUsage[] =
    "How to use:\r\n"
    "zr_nexa WAN RestartRadvd\r\n"
    "\r\n"
    "<option>\r\n"
    "restart: zr_nexa WAN RestartRadvd restart <wwan_handle>\r\n"
    "     Restart Radvd for <wwan_handle> (only support on RADVD supported project)\r\n"
    "\r\n"
    "<wwan_handle>\r\n"
    "int type, wwanconfig handle, 1-50\r\n"
    "\r\n";

}  // namespace cli

#endif
