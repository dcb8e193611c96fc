// The WAN settings.
#include <arpa/inet.h>
#include <zr_nexa/wan_connection.h>
#include <zr_nexa/wan_mpdn_mapping.h>
#include <zr_nexa/wan_profile.h>

#include <cstdio>

#include "handlers.h"
#include "usage/wan.h"
#include "words.h"

namespace cli {

namespace {

constexpr uint8_t kTechPrefMax = ZR_NEXA_WAN_TECH_CDMA;
constexpr uint8_t kApnIdMax = ZR_NEXA_WAN_APN_ID_MAX;

constexpr uint8_t kIpV4 = 4;
constexpr uint8_t kIpV6 = 6;
constexpr uint8_t kIpBoth = 46;

// No state of a connection: one that the interface does not pass through prints nothing.
constexpr uint32_t kNoStatus = 0x80000001;

int print_profiles()
{
    zr_nexa_wan_wwanconfig_list_t list = {};
    const uint32_t code = zr_nexa_wan_wwanconfig_get_v1(&list);
    if (code != 0) return result(code);
    puts("WAN WWANConfig List:\r");
    printf("wwanconfig num = %d\r\n", list.wwanconfig_num);
    if (list.default_wwan_handle != 0) printf("default wwanconfig handle = %d\r\n\r\n", list.default_wwan_handle);
    for (uint32_t i = 0; i < list.wwanconfig_num; ++i) {
        printf("wwan_handle:%d  tech_pref:%d  apn_id:%d\r\n", list.wwan_handle[i], list.tech_pref[i], list.apn_id[i]);
    }
    return 0;
}

int connect_v4(uint32_t handle, bool connect)
{
    const uint32_t code = zr_nexa_wan_connect_v4_set_v1(handle, connect ? 1 : 0);
    if (code != 0) return result(code);
    puts(connect ? "WAN Connect connect v4 set success\r" : "WAN Connect disconnect v4 set success\r");
    return 0;
}

int connect_v6(uint32_t handle, bool connect)
{
    const uint32_t code = zr_nexa_wan_connect_v6_set_v1(handle, connect ? 1 : 0);
    if (code != 0) return result(code);
    puts(connect ? "WAN Connect connect v6 set success\r" : "WAN Connect disconnect v6 set success\r");
    return 0;
}

// An address of a connection as text; its bytes stand in network order.
class AddressText {
public:
    explicit AddressText(const uint32_t& v4_address)
    {
        inet_ntop(AF_INET, &v4_address, text_, INET_ADDRSTRLEN);
    }
    explicit AddressText(const uint8_t (&v6_address)[16])
    {
        inet_ntop(AF_INET6, v6_address, text_, sizeof(text_));
    }
    const char* text() const
    {
        return text_;
    }

private:
    char text_[INET6_ADDRSTRLEN] = {};
};

}  // namespace

int wan_wwanconfig(int argc, char** argv)
{
    if (argc == 3) return usage(kWwanConfigUsage);
    if (argc > 7) return invalid();
    if (same(argv[3], "get")) return print_profiles();
    if (argc == 6 && same(argv[3], "add")) {
        const uint8_t tech_pref = number_u8(argv[4]);
        const uint8_t apn_id = number_u8(argv[5]);
        if (apn_id > kApnIdMax || tech_pref > kTechPrefMax) return invalid();
        uint32_t handle = 0;
        const uint32_t code = zr_nexa_wan_wwanconfig_add_v1(&handle, tech_pref, apn_id);
        if (code != 0) return result(code);
        if (handle != 0) printf("WAN WWANConfig add success, new wwan_handle = %d\r\n", handle);
        return 0;
    }
    if (argc == 7 && same(argv[3], "set")) {
        const uint32_t handle = number_u32(argv[4]);
        const uint8_t tech_pref = number_u8(argv[5]);
        const uint8_t apn_id = number_u8(argv[6]);
        if (handle == 0 || apn_id > kApnIdMax || tech_pref > kTechPrefMax) return invalid();
        const uint32_t code = zr_nexa_wan_wwanconfig_set_v1(handle, tech_pref, apn_id);
        if (code != 0) return result(code);
        puts("WAN WWANConfig modify success\r");
        return 0;
    }
    if (argc == 5 && same(argv[3], "del")) {
        const uint32_t handle = number_u32(argv[4]);
        if (handle == 0) return invalid();
        const uint32_t code = zr_nexa_wan_wwanconfig_del_v1(handle);
        if (code != 0) return result(code);
        puts("WAN WWANConfig delete success\r");
        return 0;
    }
    if (argc == 5 && same(argv[3], "setdefault")) {
        const uint32_t handle = number_u32(argv[4]);
        if (handle == 0) return invalid();
        const uint32_t code = zr_nexa_wan_wwanconfig_default_set_v1(handle);
        if (code != 0) return result(code);
        printf("WAN WWANConfig set default wwanconfig handle = %d success\r\n", handle);
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
        const uint32_t code = zr_nexa_wan_apwwan_set_v1(ap, apdns);
        if (code != 0) return result(code);
        puts("WAN APWWAN modify success\r");
        return 0;
    }
    return invalid();
}

int wan_status(int argc, char** argv)
{
    if (argc == 3) return usage(kStatusUsage);
    if (argc != 5) return invalid();
    const uint32_t handle = number_u32(argv[4]);
    if (handle == 0 || !same(argv[3], "get")) return invalid();
    uint32_t v4_status = kNoStatus;
    uint32_t v6_status = kNoStatus;
    const uint32_t code = zr_nexa_wan_status_get_v1(handle, &v4_status, &v6_status);
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

int wan_connect(int argc, char** argv)
{
    if (argc == 3) return usage(kConnectUsage);
    if (argc != 6) return invalid();
    const uint32_t handle = number_u32(argv[4]);
    const uint8_t ip_type = number_u8(argv[5]);
    if (handle == 0) return invalid();
    if (ip_type != kIpV4 && ip_type != kIpV6 && ip_type != kIpBoth) return invalid();
    const bool connect = same(argv[3], "connect");
    if (!connect && !same(argv[3], "disconnect")) return invalid();
    if (ip_type == kIpV4) return connect_v4(handle, connect);
    // Of both families only the outcome of IPv6 is told.
    if (ip_type == kIpBoth) connect_v4(handle, connect);
    return connect_v6(handle, connect);
}

int wan_reconnect(int argc, char** argv)
{
    if (argc == 3) return usage(kReConnectUsage);
    if (argc != 5 && argc != 6) return invalid();
    const uint32_t handle = number_u32(argv[4]);
    if (handle == 0) return invalid();
    if (same(argv[3], "get")) {
        uint8_t enabled = 0;
        const uint32_t code = zr_nexa_wan_reconnect_get_v1(handle, &enabled);
        if (code != 0) return result(code);
        puts(enabled == 0 ? "WAN ReConnect disabled\r" : "WAN ReConnect enabled\r");
        return 0;
    }
    if (argc == 6 && same(argv[3], "set")) {
        const uint8_t enable = number_u8(argv[5]);
        if (enable > 1) return invalid();
        const uint32_t code = zr_nexa_wan_reconnect_set_v1(handle, enable);
        if (code != 0) return result(code);
        puts(enable == 0 ? "WAN ReConnect set disable success\r" : "WAN ReConnect set enable success\r");
        return 0;
    }
    return invalid();
}

int wan_autoconnect(int argc, char** argv)
{
    if (argc == 3) return usage(kAutoConnectUsage);
    if (argc != 5 && argc != 6) return invalid();
    const uint32_t handle = number_u32(argv[4]);
    if (handle == 0) return invalid();
    if (same(argv[3], "get")) {
        uint8_t enabled = 0;
        const uint32_t code = zr_nexa_wan_autoconnect_get_v1(handle, &enabled);
        if (code != 0) return result(code);
        puts(enabled == 0 ? "WAN AutoConnect disabled\r" : "WAN AutoConnect enabled\r");
        return 0;
    }
    if (argc == 6 && same(argv[3], "set")) {
        const uint8_t enable = number_u8(argv[5]);
        if (enable > 1) return invalid();
        const uint32_t code = zr_nexa_wan_autoconnect_set_v1(handle, enable);
        if (code != 0) return result(code);
        puts(enable == 0 ? "WAN AutoConnect set disable success\r" : "WAN AutoConnect set enable success\r");
        return 0;
    }
    return invalid();
}

int wan_info(int argc, char** argv)
{
    if (argc == 3) return usage(kInfoUsage);
    if (argc != 5) return invalid();
    const uint32_t handle = number_u32(argv[4]);
    if (handle == 0 || !same(argv[3], "get")) return invalid();
    zr_nexa_wan_info_t info = {};
    const uint32_t code = zr_nexa_wan_info_get_v1(handle, &info);
    if (code != 0) return result(code);
    if (info.connected == 0) {
        puts("WAN Info: disconnected\r");
        return 0;
    }
    puts("WAN Info: connected\r");
    // These lines alone end without a carriage return.
    printf("Interface Name          : %.*s\n", ZR_NEXA_WAN_IFACE_NAME_SIZE, info.iface_name);
    printf("Public IPv4 Address     : %s\n", AddressText(info.v4_addr).text());
    printf("Public IPv4 Netmask     : %s\n", AddressText(info.v4_netmask).text());
    printf("Gateway IPv4 Address    : %s\n", AddressText(info.v4_gw_addr).text());
    printf("Pri DNS IPv4 Address    : %s\n", AddressText(info.v4_pri_dns_addr).text());
    printf("Sec DNS IPv4 Address    : %s\n", AddressText(info.v4_sec_dns_addr).text());
    printf("IPv4 MTU                : %d\n", info.v4_mtu);
    printf("Public IPv6 Address     : %s/%d\n", AddressText(info.v6_addr).text(), info.v6_prefix);
    printf("Gateway IPv6 Address    : %s\n", AddressText(info.v6_gw_addr).text());
    printf("Pri DNS IPv6 Address    : %s\n", AddressText(info.v6_pri_dns_addr).text());
    printf("Sec DNS IPv6 Address    : %s\n", AddressText(info.v6_sec_dns_addr).text());
    printf("IPv6 MTU                : %d\n\n", info.v6_mtu);
    return 0;
}

int wan_mpdn_mapping(int argc, char** argv)
{
    if (argc == 3) return usage(kMpdnMappingUsage);
    if (argc != 4 && argc != 6) return invalid();
    if (same(argv[3], "get")) {
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
    const bool add = same(argv[3], "add");
    if (!add && !same(argv[3], "del")) return invalid();
    const uint32_t handle = number_u32(argv[4]);
    const uint16_t lan_id = number_u16(argv[5]);
    if (lan_id == 1 || handle == 0 || lan_id > ZR_NEXA_LAN_ID_MAX) return invalid();
    const uint32_t code =
        add ? zr_nexa_wan_mpdnmapping_add_v1(handle, lan_id) : zr_nexa_wan_mpdnmapping_del_v1(handle, lan_id);
    if (code != 0) return result(code);
    puts(add ? "WAN MPDNMapping add success\r" : "WAN MPDNMapping del success\r");
    return 0;
}

int wan_restart_radvd(int argc, char** argv)
{
    if (argc == 3) return usage(kRestartRadvdUsage);
    if (argc == 5 && same(argv[3], "restart") && number_u32(argv[4]) != 0) {
        const uint32_t code = zr_nexa_wan_radvd_restart_v1();
        if (code != 0) return result(code);  // GCOVR_EXCL_BR_LINE
        puts("WAN RestartRadvd success\r");  // GCOVR_EXCL_LINE
        return 0;                            // GCOVR_EXCL_LINE
    }
    return invalid();
}

}  // namespace cli
