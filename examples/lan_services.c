/*
 * Sets SIP servers of two LANs, DHCP reservations, and the VPN passthrough of a WWAN profile, and reads all of it back.
 *
 *   lan_services [wwan_handle]        profile 1 when left out
 *
 * It may be run again: what is there already is left as it is. Status 0: all is as wanted; 1: something was refused,
 * the printed lines tell what; 2: a word that makes no sense.
 */
#include <arpa/inet.h>
#include <inttypes.h>
#include <stdlib.h>
#include <string.h>
#include <zr_nexa_client_api.h>

#include "result_words.h"

#define DEFAULT_LAN 0
#define OFFICE_LAN 100 /* a VLAN; its id names its LAN bridge */

static uint32_t network_order(const char* dotted)
{
    return inet_addr(dotted);
}

static const char* dotted(uint32_t network_order_address, char text[INET_ADDRSTRLEN])
{
    return inet_ntop(AF_INET, &network_order_address, text, INET_ADDRSTRLEN);
}

/* ---- SIP servers ---- */

static zr_nexa_sip_server_info_t server_by_address(const char* address)
{
    zr_nexa_sip_server_info_t server;
    memset(&server, 0, sizeof(server));
    server.pcscf_info_type = ZR_NEXA_ALG_SIP_INFO_IP;
    server.ipv4_addr = ntohl(network_order(address)); /* this record is in host byte order */
    return server;
}

static zr_nexa_sip_server_info_t server_by_name(const char* name)
{
    zr_nexa_sip_server_info_t server;
    memset(&server, 0, sizeof(server));
    server.pcscf_info_type = ZR_NEXA_ALG_SIP_INFO_FQDN;
    strncpy(server.fqdn, name, sizeof(server.fqdn) - 1);
    return server;
}

static void print_server(const char* whose, const zr_nexa_sip_server_info_t* server)
{
    char address[INET_ADDRSTRLEN];
    if (server->pcscf_info_type == ZR_NEXA_ALG_SIP_INFO_IP) {
        printf("  %s: %s\n", whose, dotted(htonl(server->ipv4_addr), address));
    } else if (server->pcscf_info_type == ZR_NEXA_ALG_SIP_INFO_FQDN) {
        printf("  %s: %.*s\n", whose, ZR_NEXA_ALG_SIP_FQDN_SIZE, server->fqdn); /* need not be terminated */
    } else {
        printf("  %s: none\n", whose);
    }
}

static int set_and_list_sip_servers(uint32_t lan_id, zr_nexa_sip_server_info_t wanted)
{
    unsigned char buffer[ZR_NEXA_ALG_SIP_BUFFER_SIZE];
    zr_nexa_sip_server_info_t server;
    int count = 0;
    int i;

    printf("LAN %" PRIu32 "\n", lan_id);
    if (!report("set SIP server", zr_nexa_alg_sip_server_info_set_v1(lan_id, &wanted))) return 0;
    if (!report("read SIP servers", zr_nexa_alg_sip_server_info_get_v1(lan_id, ZR_NEXA_IP_V4, &count, buffer)))
        return 0;
    memcpy(&server, buffer, sizeof(server));
    print_server("configured", &server);
    for (i = 0; i < count; ++i) {
        memcpy(&server, buffer + ZR_NEXA_ALG_SIP_NETWORK_OFFSET + (size_t)i * sizeof(server), sizeof(server));
        print_server("from the network", &server);
    }
    return 1;
}

static int sip_servers(void)
{
    /* Adding a VLAN that is there already in the same form succeeds. */
    if (!report("add VLAN 100", zr_nexa_lan_vlan_add_v1(OFFICE_LAN, ZR_NEXA_LAN_VLAN_IFACE_ETH, 0))) return 0;
    return set_and_list_sip_servers(DEFAULT_LAN, server_by_address("198.51.100.60")) &&
           set_and_list_sip_servers(OFFICE_LAN, server_by_name("pcscf.office.example"));
}

/* ---- DHCP reservations ---- */

static zr_nexa_lan_dhcp_reserv_record_t reservation(const char* address, const uint8_t mac[6], const char* name)
{
    zr_nexa_lan_dhcp_reserv_record_t record;
    memset(&record, 0, sizeof(record));
    memcpy(record.mac, mac, sizeof(record.mac));
    record.reserved_ip = network_order(address);
    strncpy(record.device_name, name, sizeof(record.device_name) - 1);
    record.enable = 1;
    return record;
}

static const zr_nexa_lan_dhcp_reserv_record_t* find(const zr_nexa_lan_dhcp_reserv_list_t* list, uint32_t reserved_ip)
{
    uint32_t i;
    for (i = 0; i < list->count; ++i) {
        if (list->record[i].reserved_ip == reserved_ip) return &list->record[i];
    }
    return NULL;
}

static int same(const zr_nexa_lan_dhcp_reserv_record_t* a, const zr_nexa_lan_dhcp_reserv_record_t* b)
{
    return memcmp(a->mac, b->mac, sizeof(a->mac)) == 0 && a->reserved_ip == b->reserved_ip &&
           strncmp(a->device_name, b->device_name, sizeof(a->device_name)) == 0 && a->enable == b->enable;
}

/* Adds a reservation, or brings the one of its address into the wanted form. */
static int reserve(const zr_nexa_lan_dhcp_reserv_list_t* list, const zr_nexa_lan_dhcp_reserv_record_t* wanted)
{
    const zr_nexa_lan_dhcp_reserv_record_t* const present = find(list, wanted->reserved_ip);
    char address[INET_ADDRSTRLEN];
    char what[64];

    dotted(wanted->reserved_ip, address);
    if (present == NULL) {
        snprintf(what, sizeof(what), "reserve %s", address);
        return report(what, zr_nexa_lan_dhcp_reserv_record_add_v1(wanted));
    }
    if (same(present, wanted)) {
        printf("reserve %s: is there already\n", address);
        return 1;
    }
    snprintf(what, sizeof(what), "change the reservation of %s", address);
    return report(what, zr_nexa_lan_dhcp_reserv_record_edit_v1(wanted->reserved_ip, wanted));
}

static int reservations(void)
{
    static const uint8_t printer_mac[6] = {0x02, 0x00, 0x00, 0x00, 0x00, 0x11};
    static const uint8_t phone_mac[6] = {0x02, 0x00, 0x00, 0x00, 0x00, 0x12};
    const zr_nexa_lan_dhcp_reserv_record_t printer = reservation("192.168.225.50", printer_mac, "printer");
    const zr_nexa_lan_dhcp_reserv_record_t phone = reservation("192.168.225.51", phone_mac, "desk phone");
    zr_nexa_lan_dhcp_reserv_list_t list;
    char address[INET_ADDRSTRLEN];
    uint32_t i;

    puts("DHCP reservations");
    memset(&list, 0, sizeof(list));
    if (!report("read reservations", zr_nexa_lan_dhcp_reserv_record_get_v1(&list))) return 0;
    if (!reserve(&list, &printer) || !reserve(&list, &phone)) return 0;

    memset(&list, 0, sizeof(list));
    if (!report("read reservations", zr_nexa_lan_dhcp_reserv_record_get_v1(&list))) return 0;
    for (i = 0; i < list.count; ++i) {
        const zr_nexa_lan_dhcp_reserv_record_t* const record = &list.record[i];
        printf("  %s for %02x:%02x:%02x:%02x:%02x:%02x, %.*s, %s\n", dotted(record->reserved_ip, address),
               record->mac[0], record->mac[1], record->mac[2], record->mac[3], record->mac[4], record->mac[5],
               (int)sizeof(record->device_name), record->device_name, record->enable ? "on" : "off");
    }
    return 1;
}

/* ---- VPN passthrough ---- */

/* While the profile is not connected the service keeps the flag and says so with an error: that is as good as done. */
static int allowed(const char* what, uint32_t result)
{
    if (report(what, result)) return 1;
    if (result != ZR_NEXA_VPN_PASSTHROUGH_ERR_BACKHAUL_DOWN) return 0;
    puts("  the profile is not connected; the flag is kept and holds once it is");
    return 1;
}

static int vpn_passthrough(uint32_t wwan_handle)
{
    uint8_t ipsec_ipv4 = 0;
    uint8_t ipsec_ipv6 = 0;

    printf("VPN passthrough of profile %" PRIu32 "\n", wwan_handle);
    if (!allowed("let IPSec over IPv4 pass", zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1(wwan_handle, 1)) ||
        !allowed("let IPSec over IPv6 pass", zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1(wwan_handle, 1)))
        return 0;
    if (!report("read IPSec over IPv4", zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1(wwan_handle, &ipsec_ipv4)) ||
        !report("read IPSec over IPv6", zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1(wwan_handle, &ipsec_ipv6)))
        return 0;
    printf("  IPSec over IPv4 %s, over IPv6 %s\n", ipsec_ipv4 ? "passes" : "is blocked",
           ipsec_ipv6 ? "passes" : "is blocked");
    return ipsec_ipv4 && ipsec_ipv6;
}

int main(int argc, char** argv)
{
    unsigned long long wwan_handle = 1;
    char* end = NULL;
    int done;

    if (argc > 1) wwan_handle = strtoull(argv[1], &end, 10);
    if (argc > 2 || (argc == 2 && (end == argv[1] || *end != '\0')) || wwan_handle > UINT32_MAX) {
        fprintf(stderr, "usage: %s [wwan_handle]\n", argv[0]);
        return 2;
    }

    if (!report("open session", zr_nexa_client_init(NULL))) return EXIT_FAILURE;
    done = sip_servers() && reservations() && vpn_passthrough((uint32_t)wwan_handle);
    if (!report("close session", zr_nexa_client_uninit())) done = 0;
    return done ? EXIT_SUCCESS : EXIT_FAILURE;
}
