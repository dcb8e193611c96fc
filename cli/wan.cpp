// The WAN settings.
#include <zr_nexa/wan_connection.h>
#include <zr_nexa/wan_mpdn_mapping.h>
#include <zr_nexa/wan_profile.h>

#include <cstdio>

#include "answers.h"
#include "handlers.h"
#include "usage/wan.h"
#include "words.h"

namespace cli {

namespace {

constexpr uint8_t kIpV4 = 4;
constexpr uint8_t kIpV6 = 6;
constexpr uint8_t kIpBoth = 46;

// No state of a connection: one that the interface does not pass through prints nothing.
constexpr uint32_t kNoStatus = 0x80000001;

bool is_tech_pref(uint8_t tech_pref)
{
    return tech_pref <= ZR_NEXA_WAN_TECH_CDMA;
}

// 0 is the interface's to refuse.
bool is_apn_id(uint8_t apn_id)
{
    return apn_id <= ZR_NEXA_WAN_APN_ID_MAX;
}

int connect_v4(uint32_t wwan_handle, bool connect)
{
    return result(zr_nexa_wan_connect_v4_set_v1(wwan_handle, connect ? 1 : 0),
                  connect ? "WAN Connect connect v4 set success\r" : "WAN Connect disconnect v4 set success\r");
}

int connect_v6(uint32_t wwan_handle, bool connect)
{
    return result(zr_nexa_wan_connect_v6_set_v1(wwan_handle, connect ? 1 : 0),
                  connect ? "WAN Connect connect v6 set success\r" : "WAN Connect disconnect v6 set success\r");
}

}  // namespace

int wan_wwanconfig(int argc, char** argv)
{
    if (argc == 3) return usage(kWwanConfigUsage);
    if (argc <= 7 && same(argv[3], "get")) {
        zr_nexa_wan_wwanconfig_list_t list = {};
        const uint32_t code = zr_nexa_wan_wwanconfig_get_v1(&list);
        if (code != 0) return result(code);
        puts("WAN WWANConfig List:\r");
        printf("wwanconfig num = %d\r\n", list.wwanconfig_num);
        if (list.default_wwan_handle != 0) printf("default wwanconfig handle = %d\r\n\r\n", list.default_wwan_handle);
        for (uint32_t i = 0; i < list.wwanconfig_num; ++i) {
            printf("wwan_handle:%d  tech_pref:%d  apn_id:%d\r\n", list.wwan_handle[i], list.tech_pref[i],
                   list.apn_id[i]);
        }
        return 0;
    }
    if (argc == 6 && same(argv[3], "add")) {
        const uint8_t tech_pref = number_u8(argv[4]);
        const uint8_t apn_id = number_u8(argv[5]);
        if (!is_tech_pref(tech_pref) || !is_apn_id(apn_id)) return invalid();
        uint32_t wwan_handle = 0;
        const uint32_t code = zr_nexa_wan_wwanconfig_add_v1(&wwan_handle, tech_pref, apn_id);
        if (code != 0) return result(code);
        if (wwan_handle != 0) printf("WAN WWANConfig add success, new wwan_handle = %d\r\n", wwan_handle);
        return 0;
    }
    if (argc == 7 && same(argv[3], "set")) {
        const uint32_t wwan_handle = number_u32(argv[4]);
        const uint8_t tech_pref = number_u8(argv[5]);
        const uint8_t apn_id = number_u8(argv[6]);
        if (wwan_handle == 0 || !is_tech_pref(tech_pref) || !is_apn_id(apn_id)) return invalid();
        return result(zr_nexa_wan_wwanconfig_set_v1(wwan_handle, tech_pref, apn_id), "WAN WWANConfig modify success\r");
    }
    if (argc == 5 && same(argv[3], "del")) {
        const uint32_t wwan_handle = number_u32(argv[4]);
        if (wwan_handle == 0) return invalid();
        return result(zr_nexa_wan_wwanconfig_del_v1(wwan_handle), "WAN WWANConfig delete success\r");
    }
    if (argc == 5 && same(argv[3], "setdefault")) {
        const uint32_t wwan_handle = number_u32(argv[4]);
        if (wwan_handle == 0) return invalid();
        const uint32_t code = zr_nexa_wan_wwanconfig_default_set_v1(wwan_handle);
        if (code != 0) return result(code);
        printf("WAN WWANConfig set default wwanconfig handle = %d success\r\n", wwan_handle);
        return 0;
    }
    return invalid();
}

int wan_apwwan(int argc, char** argv)
{
    if (argc == 3) return usage(kApWwanUsage);
    if (argc == 4 && same(argv[3], "get")) {
        uint32_t ap = 0;
        uint32_t apdns = 0;
        const uint32_t code = zr_nexa_wan_apwwan_get_v1(&ap, &apdns);
        if (code != 0) return result(code);
        puts("WAN APWWAN Config:\r");
        printf("AP wwanconfig handle = %d\r\n", ap);
        printf("AP DNS wwanconfig handle = %d\r\n", apdns);
        return 0;
    }
    if (argc == 6 && same(argv[3], "set")) {
        const uint32_t ap = number_u32(argv[4]);
        const uint32_t apdns = number_u32(argv[5]);
        if (ap == 0 || apdns == 0) return invalid();
        return result(zr_nexa_wan_apwwan_set_v1(ap, apdns), "WAN APWWAN modify success\r");
    }
    return invalid();
}

int wan_status(int argc, char** argv)
{
    if (argc == 3) return usage(kStatusUsage);
    if (argc != 5) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    if (wwan_handle == 0) return invalid();

    if (same(argv[3], "get")) {
        uint32_t v4_status = kNoStatus;
        uint32_t v6_status = kNoStatus;
        const uint32_t code = zr_nexa_wan_status_get_v1(wwan_handle, &v4_status, &v6_status);
        if (code != 0) return result(code);
        puts("WAN Status:\r");
        if (v4_status == ZR_NEXA_WAN_V4_CONNECTING) puts("v4 connecting\r");
        if (v4_status == ZR_NEXA_WAN_V4_CONNECTED) puts("v4 connected\r");
        if (v4_status == ZR_NEXA_WAN_V4_DISCONNECTING) puts("v4 disconnecting\r");
        if (v4_status == ZR_NEXA_WAN_V4_DISCONNECTED) puts("v4 disconnected\r");
        if (v6_status == ZR_NEXA_WAN_V6_CONNECTING) puts("v6 connecting\r");
        if (v6_status == ZR_NEXA_WAN_V6_CONNECTED) puts("v6 connected\r");
        if (v6_status == ZR_NEXA_WAN_V6_DISCONNECTING) puts("v6 disconnecting\r");
        if (v6_status == ZR_NEXA_WAN_V6_DISCONNECTED) puts("v6 disconnected\r");
        return 0;
    }
    return invalid();
}

int wan_connect(int argc, char** argv)
{
    if (argc == 3) return usage(kConnectUsage);
    if (argc != 6) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    const uint8_t ip_type = number_u8(argv[5]);
    if (wwan_handle == 0) return invalid();
    if (ip_type != kIpV4 && ip_type != kIpV6 && ip_type != kIpBoth) return invalid();

    const bool connect = same(argv[3], "connect");
    if (connect || same(argv[3], "disconnect")) {
        if (ip_type == kIpV4) return connect_v4(wwan_handle, connect);
        // Of both families only the outcome of IPv6 is told.
        if (ip_type == kIpBoth) connect_v4(wwan_handle, connect);
        return connect_v6(wwan_handle, connect);
    }
    return invalid();
}

int wan_reconnect(int argc, char** argv)
{
    if (argc == 3) return usage(kReConnectUsage);
    if (argc != 5 && argc != 6) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    if (wwan_handle == 0) return invalid();

    if (same(argv[3], "get")) {
        uint8_t enable = 0;
        const uint32_t code = zr_nexa_wan_reconnect_get_v1(wwan_handle, &enable);
        if (code != 0) return result(code);
        puts(enable == 0 ? "WAN ReConnect disabled\r" : "WAN ReConnect enabled\r");
        return 0;
    }
    if (argc == 6 && same(argv[3], "set")) {
        const uint8_t enable = number_u8(argv[5]);
        if (enable > 1) return invalid();
        return result(zr_nexa_wan_reconnect_set_v1(wwan_handle, enable),
                      enable == 0 ? "WAN ReConnect set disable success\r" : "WAN ReConnect set enable success\r");
    }
    return invalid();
}

int wan_autoconnect(int argc, char** argv)
{
    if (argc == 3) return usage(kAutoConnectUsage);
    if (argc != 5 && argc != 6) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    if (wwan_handle == 0) return invalid();

    if (same(argv[3], "get")) {
        uint8_t enable = 0;
        const uint32_t code = zr_nexa_wan_autoconnect_get_v1(wwan_handle, &enable);
        if (code != 0) return result(code);
        puts(enable == 0 ? "WAN AutoConnect disabled\r" : "WAN AutoConnect enabled\r");
        return 0;
    }
    if (argc == 6 && same(argv[3], "set")) {
        const uint8_t enable = number_u8(argv[5]);
        if (enable > 1) return invalid();
        return result(zr_nexa_wan_autoconnect_set_v1(wwan_handle, enable),
                      enable == 0 ? "WAN AutoConnect set disable success\r" : "WAN AutoConnect set enable success\r");
    }
    return invalid();
}

int wan_info(int argc, char** argv)
{
    if (argc == 3) return usage(kInfoUsage);
    if (argc != 5) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    if (wwan_handle == 0) return invalid();

    if (same(argv[3], "get")) {
        zr_nexa_wan_info_t info = {};
        const uint32_t code = zr_nexa_wan_info_get_v1(wwan_handle, &info);
        if (code != 0) return result(code);
        if (info.connected == 0) {
            puts("WAN Info: disconnected\r");
            return 0;
        }
        puts("WAN Info: connected\r");
        // These lines alone end without a carriage return.
        printf("Interface Name          : %.*s\n", ZR_NEXA_WAN_IFACE_NAME_SIZE, info.iface_name);
        printf("Public IPv4 Address     : %s\n", ipv4_bytes_text(info.v4_addr));
        printf("Public IPv4 Netmask     : %s\n", ipv4_bytes_text(info.v4_netmask));
        printf("Gateway IPv4 Address    : %s\n", ipv4_bytes_text(info.v4_gw_addr));
        printf("Pri DNS IPv4 Address    : %s\n", ipv4_bytes_text(info.v4_pri_dns_addr));
        printf("Sec DNS IPv4 Address    : %s\n", ipv4_bytes_text(info.v4_sec_dns_addr));
        printf("IPv4 MTU                : %d\n", info.v4_mtu);
        printf("Public IPv6 Address     : %s/%d\n", ipv6_bytes_text(info.v6_addr), info.v6_prefix);
        printf("Gateway IPv6 Address    : %s\n", ipv6_bytes_text(info.v6_gw_addr));
        printf("Pri DNS IPv6 Address    : %s\n", ipv6_bytes_text(info.v6_pri_dns_addr));
        printf("Sec DNS IPv6 Address    : %s\n", ipv6_bytes_text(info.v6_sec_dns_addr));
        printf("IPv6 MTU                : %d\n\n", info.v6_mtu);
        return 0;
    }
    return invalid();
}

int wan_mpdnmapping(int argc, char** argv)
{
    if (argc == 3) return usage(kMpdnMappingUsage);
    if ((argc == 4 || argc == 6) && same(argv[3], "get")) {
        static zr_nexa_wan_mpdnmapping_list_t list;  // 1.2 MB of zero pages, which cost nothing until they are written
        const uint32_t code = zr_nexa_wan_mpdnmapping_get_v1(&list);
        if (code != 0) return result(code);
        puts("WAN MPDNMapping List:\r");
        printf("MPDNMapping rule num: %d\r\n", list.count);
        for (uint32_t i = 0; i < list.count; ++i) {
            printf("wwan_handle: %d  (v)lan_id: %d\r\n", list.profile_handle[i], list.vlan_id[i]);
        }
        return 0;
    }
    if (argc != 6) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    const uint16_t lan_id = number_u16(argv[5]);
    if (wwan_handle == 0 || !is_lan_id(lan_id)) return invalid();

    if (same(argv[3], "add")) {
        return result(zr_nexa_wan_mpdnmapping_add_v1(wwan_handle, lan_id), "WAN MPDNMapping add success\r");
    }
    if (same(argv[3], "del")) {
        return result(zr_nexa_wan_mpdnmapping_del_v1(wwan_handle, lan_id), "WAN MPDNMapping del success\r");
    }
    return invalid();
}

int wan_restartradvd(int argc, char** argv)
{
    if (argc == 3) return usage(kRestartRadvdUsage);
    if (argc != 5) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    if (wwan_handle == 0) return invalid();

    if (same(argv[3], "restart")) {
        // The handle is asked for and not passed on.
        return result(zr_nexa_wan_radvd_restart_v1(), "WAN RestartRadvd success\r");
    }
    return invalid();
}

}  // namespace cli
