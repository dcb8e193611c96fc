/*
 * IP passthrough: a LAN's one device that gets the WWAN address itself, NAT beside it, the gateway filters whose ports
 * stay with the module, and the addresses that are kept off the hardware path.
 */
#ifndef ZR_NEXA_LAN_PASSTHROUGH_H
#define ZR_NEXA_LAN_PASSTHROUGH_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/* IP-passthrough NAT */
enum {
    ZR_NEXA_LAN_IPPTNAT_ERR_UNKNOWN_MODE = 5,   /* the service reports a mode that has no number here */
    ZR_NEXA_LAN_IPPTNAT_ERR_NO_FEATURE = 8,     /* the service does not report this feature */
    ZR_NEXA_LAN_IPPTNATPDN_ERR_DIFFERS = 0x2101 /* what was read back is not what was set */
};

#define ZR_NEXA_LAN_IPPTNAT_WITHOUT_NAT 0
#define ZR_NEXA_LAN_IPPTNAT_WITH_NAT 1
#define ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE 2
#define ZR_NEXA_LAN_IPPTNAT_DEFAULT (-1) /* of one LAN only: the setting that holds for all */

/* IP passthrough */
enum {
    ZR_NEXA_LAN_IPPT_ERR_UNKNOWN_STATE = 1, /* the service reports neither enabled nor disabled */
    ZR_NEXA_LAN_IPPT_ERR_WLAN_ON_VLAN = 3,  /* ippt_mode 2 on a LAN other than 0 */
    ZR_NEXA_LAN_IPPT_ERR_MODE = 5,          /* ippt_mode above 4 */
    ZR_NEXA_LAN_IPPT_ERR_ADAPTIVE = 8,      /* ippt_adaptive above 10 */
    ZR_NEXA_LAN_IPPT_ERR_HOST_MAC = 9       /* host_mac is not a MAC address */
};

#define ZR_NEXA_LAN_IPPT_OFF 0
#define ZR_NEXA_LAN_IPPT_ETH 1      /* the device with host_mac, on Ethernet */
#define ZR_NEXA_LAN_IPPT_WLAN 2     /* the device with host_mac, on WLAN */
#define ZR_NEXA_LAN_IPPT_USB 3      /* the device with host_name, on USB (ECM or RNDIS) */
#define ZR_NEXA_LAN_IPPT_ETH_NIC2 4 /* the device with host_mac, on the second Ethernet interface */
#define ZR_NEXA_LAN_IPPT_ANY_USB 5  /* any device on USB; only read */

#define ZR_NEXA_LAN_IPPT_MAC_SIZE 18
#define ZR_NEXA_LAN_IPPT_NAME_SIZE 100

/* Without gaps, also behind the last field. */
#pragma pack(push, 1)
typedef struct {
    uint16_t lan_id;              /* 0..4094 */
    uint8_t ippt_adaptive_enable; /* non-zero: set asks for the adaptive passthrough and leaves the rest out */
    uint8_t ippt_adaptive;        /* 0..10: 0 off, else which device is taken by itself */
    uint8_t ippt_mode;            /* ZR_NEXA_LAN_IPPT_... */
    char host_mac[ZR_NEXA_LAN_IPPT_MAC_SIZE];   /* "00:01:02:03:04:05" and its zero */
    char host_name[ZR_NEXA_LAN_IPPT_NAME_SIZE]; /* terminated by a zero when shorter than the field */
} zr_nexa_lan_ippt_t;
#pragma pack(pop)

/* Gateway filters */
enum {
    ZR_NEXA_LAN_IPPTGWFILTER_ERR_PORTS = 1,    /* ports out of range or reversed */
    ZR_NEXA_LAN_IPPTGWFILTER_ERR_COUNT = 2,    /* the list is full, or has no filter of that number */
    ZR_NEXA_LAN_IPPTGWFILTER_ERR_PROTOCOL = 12 /* protocol outside 1..3 */
};

#define ZR_NEXA_LAN_IPPTGWFILTER_MAX 5

#define ZR_NEXA_LAN_IPPTGWFILTER_TCP 1
#define ZR_NEXA_LAN_IPPTGWFILTER_UDP 2
#define ZR_NEXA_LAN_IPPTGWFILTER_NO_PORTS 3 /* the protocol whose ports are not looked at */

/* Entry i of the three arrays is filter i + 1. */
typedef struct {
    uint32_t protocol[ZR_NEXA_LAN_IPPTGWFILTER_MAX]; /* ZR_NEXA_LAN_IPPTGWFILTER_..., 0: no filter */
    uint16_t start_port[ZR_NEXA_LAN_IPPTGWFILTER_MAX];
    uint16_t end_port[ZR_NEXA_LAN_IPPTGWFILTER_MAX];
} zr_nexa_lan_ipptgwfilter_list_t;

/* Software-path addresses */
#define ZR_NEXA_LAN_SWPATHFILTER_MAX 5

typedef struct {
    uint32_t count;
    uint32_t ipv4_address[ZR_NEXA_LAN_SWPATHFILTER_MAX]; /* network byte order */
} zr_nexa_lan_swpathfilter_list_t;

/*
 * Sets the IP-passthrough NAT that holds for every LAN without a setting of its own.
 *
 * mode: ZR_NEXA_LAN_IPPTNAT_..., 0..2.
 *
 * Returns 13 no session; 4 mode above 2; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptnat_set_v1(uint32_t mode);

/*
 * Reads the IP-passthrough NAT that holds for every LAN without a setting of its own.
 *
 * mode_out: receives ZR_NEXA_LAN_IPPTNAT_..., 0..2. Not written on a failure.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           mode_out null
 *   e | 0x1000  the service refused with error e
 *   8           the service does not report this feature
 *   5           the service reports a mode that has no number here
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptnat_get_v1(uint8_t* mode_out);

/*
 * Sets the IP-passthrough NAT of one VLAN and reads it back.
 *
 * lan_id: 1..4094; the default LAN has no setting of its own.
 * pdn:    ZR_NEXA_LAN_IPPTNAT_..., -1..2.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           pdn or lan_id out of range
 *   e | 0x1000  the bridge was refused with error e
 *   e | 0x2000  the service refused the value with error e
 *   e | 0x3000  the service took the value and did not give it back, with error e
 *   0x2101      the value read back, whole, is not the one that was set
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptnatpdn_set_v1(uint32_t lan_id, int8_t pdn);

/*
 * Reads the IP-passthrough NAT of one VLAN.
 *
 * lan_id:  1..4094.
 * pdn_out: receives ZR_NEXA_LAN_IPPTNAT_..., -1..2; stays as it was when the service reports any other value, and on a
 *          failure. Its value is read for the log: preset it.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           pdn_out null, or lan_id out of range
 *   e | 0x1000  the bridge was refused with error e
 *   e | 0x2000  the service refused with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptnatpdn_get_v1(uint32_t lan_id, int8_t* pdn_out);

/*
 * Sets the IP passthrough of one LAN.
 *
 * rec: every field is checked, whichever request is made. Then
 *      - ippt_adaptive_enable non-zero: asks for the adaptive passthrough with ippt_adaptive; mode and host fields are
 *        not used;
 *      - ippt_mode 0: ends the adaptive passthrough, then disables passthrough;
 *      - ippt_mode 3: takes the device with host_name;
 *      - ippt_mode 1, 2 or 4: takes the device with host_mac.
 *      An empty host_name or host_mac changes nothing and gives 0.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           rec null
 *   6           lan_id above 4094
 *   8           ippt_adaptive above 10
 *   5           ippt_mode above 4
 *   3           ippt_mode 2 on a LAN other than 0
 *   e | 0x1000  the bridge was refused with error e
 *   9           the MAC address is needed, and host_mac is not one: 17 characters, ':' at every third place,
 *               hexadecimal digits elsewhere
 *   e | 0x2000  the adaptive passthrough was refused with error e
 *   e | 0x3000  disabling: the first step was refused with error e
 *   e | 0x6000  disabling: the second step was refused with error e; the first one holds
 *   e | 0x4000  the device with host_mac was refused with error e
 *   e | 0x5000  the device with host_name was refused with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ippt_set_v1(const zr_nexa_lan_ippt_t* rec);

/*
 * Reads the IP passthrough of one LAN.
 *
 * rec: lan_id names the LAN, 0..4094. ippt_adaptive and ippt_mode are filled in, host_mac with ippt_mode 1, 2 or 4
 *      (lower case), host_name with 3. A device of a type that has no number here, the adaptive one among them, leaves
 *      ippt_mode as it was, and that value chooses which host field is filled in: preset it. All other fields, and
 *      everything on a failure, stay as they were.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   4           rec null
 *   6           lan_id above 4094
 *   e | 0x1000  the bridge was refused with error e
 *   e | 0x2000  the service refused with error e
 *   1           the service reports neither enabled nor disabled
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ippt_get_v1(zr_nexa_lan_ippt_t* rec);

/*
 * Adds a gateway filter behind the LAN's last one. Whether it is there already is not looked at.
 *
 * lan_id:     0..4094.
 * protocol:   ZR_NEXA_LAN_IPPTGWFILTER_..., 1..3.
 * start_port: 1..65534, not above end_port; with protocol 3 any.
 * end_port:   1..65534; with protocol 3 any.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   6           lan_id above 4094
 *   12          protocol out of range
 *   1           ports out of range or reversed
 *   e | 0x1000  the bridge was refused with error e
 *   e | 0x2000  the list could not be read, with error e
 *   2           the list holds 5 filters already
 *   e | 0x3000  the service refused the longer list with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptgwfilter_add_v1(uint32_t lan_id, uint32_t protocol, uint16_t start_port,
                                                     uint16_t end_port);

/*
 * Reads a LAN's gateway filters.
 *
 * lan_id: 0..4094.
 * list:   not checked for null. Cleared as soon as there is a session, whatever comes after. A filter whose protocol
 *         has no number here leaves its entry 0.
 *
 * A count that the service reports above 5 is taken as 5; so it is when a filter is added or deleted.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   6           lan_id above 4094
 *   e | 0x1000  the bridge was refused with error e
 *   e | 0x2000  the list could not be read, with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptgwfilter_get_v1(uint32_t lan_id, zr_nexa_lan_ipptgwfilter_list_t* list);

/*
 * Deletes a LAN's gateway filter. The ones behind it move up by one: a number is a place in the list.
 *
 * lan_id: 0..4094.
 * number: 1..5.
 *
 * Returns, in order of the checks:
 *   13          no session
 *   6           lan_id above 4094
 *   4           number out of range
 *   e | 0x1000  the bridge was refused with error e
 *   e | 0x2000  the list could not be read, with error e
 *   2           the list has no filter of that number
 *   e | 0x3000  the service refused the shorter list with error e
 *   0
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptgwfilter_del_v1(uint32_t lan_id, uint8_t number);

/*
 * Keeps the traffic of an address off the hardware path.
 *
 * ipv4_address: network byte order; any value is handed on.
 *
 * Returns 13 no session; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_swpathfilter_add_v1(uint32_t ipv4_address);

/*
 * Lets the traffic of an address take the hardware path again.
 *
 * ipv4_address: network byte order; any value is handed on.
 *
 * Returns 13 no session; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_swpathfilter_del_v1(uint32_t ipv4_address);

/*
 * Reads the addresses that are kept off the hardware path.
 *
 * list: receives count and as many addresses; the others stay as they were. Not written on a failure. A count that the
 *       service reports outside 0..5 is taken as 0 or 5.
 *
 * Returns 13 no session; 4 list null; e | 0x1000 the service refused with error e; 0.
 */
ZR_NEXA_API uint32_t zr_nexa_lan_swpathfilter_get_v1(zr_nexa_lan_swpathfilter_list_t* list);

ZR_NEXA_C_END

#endif
