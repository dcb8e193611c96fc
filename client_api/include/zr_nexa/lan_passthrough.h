/**
 * @file
 * IP passthrough: a LAN's one device that gets the WWAN address itself, NAT beside it, the gateway filters whose ports
 * stay with the module, and the addresses that are kept off the hardware path.
 */
#ifndef ZR_NEXA_LAN_PASSTHROUGH_H
#define ZR_NEXA_LAN_PASSTHROUGH_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** Result codes of IP-passthrough NAT. */
enum {
    ZR_NEXA_LAN_IPPTNAT_ERR_UNKNOWN_MODE = 5,   /**< the service reports a mode that has no number here */
    ZR_NEXA_LAN_IPPTNAT_ERR_NO_FEATURE = 8,     /**< the service does not report this feature */
    ZR_NEXA_LAN_IPPTNATPDN_ERR_DIFFERS = 0x2101 /**< what was read back is not what was set */
};

/** @name IP-passthrough NAT
 * @{ */
#define ZR_NEXA_LAN_IPPTNAT_WITHOUT_NAT 0         /**< no NAT */
#define ZR_NEXA_LAN_IPPTNAT_WITH_NAT 1            /**< NAT beside the device */
#define ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE 2 /**< NAT for one device only */
#define ZR_NEXA_LAN_IPPTNAT_DEFAULT (-1)          /**< of one LAN only: the setting that holds for all */
/** @} */

/** Result codes of IP passthrough. */
enum {
    ZR_NEXA_LAN_IPPT_ERR_UNKNOWN_STATE = 1, /**< the service reports neither enabled nor disabled */
    ZR_NEXA_LAN_IPPT_ERR_WLAN_ON_VLAN = 3,  /**< ippt_mode 2 on a LAN other than 0 */
    ZR_NEXA_LAN_IPPT_ERR_MODE = 5,          /**< ippt_mode above 4 */
    ZR_NEXA_LAN_IPPT_ERR_ADAPTIVE = 8,      /**< ippt_adaptive above 10 */
    ZR_NEXA_LAN_IPPT_ERR_HOST_MAC = 9       /**< host_mac is not a MAC address */
};

/** @name Values of ippt_mode
 * @{ */
#define ZR_NEXA_LAN_IPPT_OFF 0      /**< no passthrough */
#define ZR_NEXA_LAN_IPPT_ETH 1      /**< the device with host_mac, on Ethernet */
#define ZR_NEXA_LAN_IPPT_WLAN 2     /**< the device with host_mac, on WLAN */
#define ZR_NEXA_LAN_IPPT_USB 3      /**< the device with host_name, on USB (ECM or RNDIS) */
#define ZR_NEXA_LAN_IPPT_ETH_NIC2 4 /**< the device with host_mac, on the second Ethernet interface */
#define ZR_NEXA_LAN_IPPT_ANY_USB 5  /**< any device on USB; only read */
/** @} */

#define ZR_NEXA_LAN_IPPT_ADAPTIVE_MAX 10 /**< largest ippt_adaptive */
#define ZR_NEXA_LAN_IPPT_MAC_SIZE 18     /**< bytes of host_mac */
#define ZR_NEXA_LAN_IPPT_NAME_SIZE 100   /**< bytes of host_name */

#pragma pack(push, 1)
/** The IP passthrough of one LAN; without gaps, also behind the last field. */
typedef struct zr_nexa_lan_ippt_t {
    uint16_t lan_id;              /**< 0..4094 */
    uint8_t ippt_adaptive_enable; /**< non-zero: set asks for the adaptive passthrough and leaves the rest out */
    uint8_t ippt_adaptive;        /**< 0..10: 0 off, else which device is taken by itself */
    uint8_t ippt_mode;            /**< ZR_NEXA_LAN_IPPT_... */
    char host_mac[ZR_NEXA_LAN_IPPT_MAC_SIZE];   /**< "00:01:02:03:04:05" and its zero */
    char host_name[ZR_NEXA_LAN_IPPT_NAME_SIZE]; /**< terminated by a zero when shorter than the field */
} zr_nexa_lan_ippt_t;
#pragma pack(pop)

/** Result codes of gateway filters. */
enum {
    ZR_NEXA_LAN_IPPTGWFILTER_ERR_PORTS = 1,    /**< ports out of range or reversed */
    ZR_NEXA_LAN_IPPTGWFILTER_ERR_COUNT = 2,    /**< the list is full, or has no filter of that number */
    ZR_NEXA_LAN_IPPTGWFILTER_ERR_PROTOCOL = 12 /**< protocol outside 1..3 */
};

#define ZR_NEXA_LAN_IPPTGWFILTERS_MAX 5         /**< filters of a LAN */
#define ZR_NEXA_LAN_IPPTGWFILTER_PORT_MAX 65534 /**< largest port of a filter */

/** @name Protocols of a gateway filter
 * @{ */
#define ZR_NEXA_LAN_IPPTGWFILTER_TCP 1      /**< TCP */
#define ZR_NEXA_LAN_IPPTGWFILTER_UDP 2      /**< UDP */
#define ZR_NEXA_LAN_IPPTGWFILTER_NO_PORTS 3 /**< the protocol whose ports are not looked at */
/** @} */

/** The gateway filters of a LAN; entry i of the three arrays is filter i + 1. */
typedef struct zr_nexa_lan_ipptgwfilter_list_t {
    uint32_t protocol[ZR_NEXA_LAN_IPPTGWFILTERS_MAX];   /**< ZR_NEXA_LAN_IPPTGWFILTER_..., 0: no filter */
    uint16_t start_port[ZR_NEXA_LAN_IPPTGWFILTERS_MAX]; /**< first port, host byte order */
    uint16_t end_port[ZR_NEXA_LAN_IPPTGWFILTERS_MAX];   /**< last port, host byte order */
} zr_nexa_lan_ipptgwfilter_list_t;

#define ZR_NEXA_LAN_SWPATHFILTERS_MAX 5 /**< addresses that are kept off the hardware path */

/** The addresses that are kept off the hardware path. */
typedef struct zr_nexa_lan_swpathfilter_list_t {
    uint32_t count;                                       /**< addresses, 0..5 */
    uint32_t ipv4_address[ZR_NEXA_LAN_SWPATHFILTERS_MAX]; /**< network byte order */
} zr_nexa_lan_swpathfilter_list_t;

/**
 * Sets the IP-passthrough NAT that holds for every LAN without a setting of its own.
 *
 * @param[in] mode  ZR_NEXA_LAN_IPPTNAT_..., 0..2.
 *
 * @retval 13        no session
 * @retval 4         mode above 2
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptnat_set_v1(uint32_t mode);

/**
 * Reads the IP-passthrough NAT that holds for every LAN without a setting of its own.
 *
 * @param[out] mode_out  receives ZR_NEXA_LAN_IPPTNAT_..., 0..2. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         mode_out null
 * @retval e|0x1000  the service refused with error e
 * @retval 8         the service does not report this feature
 * @retval 5         the service reports a mode that has no number here
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptnat_get_v1(uint8_t* mode_out);

/**
 * Sets the IP-passthrough NAT of one VLAN and reads it back.
 *
 * @param[in] lan_id  1..4094; the default LAN has no setting of its own.
 * @param[in] pdn     ZR_NEXA_LAN_IPPTNAT_..., -1..2.
 *
 * @retval 13        no session
 * @retval 4         pdn or lan_id out of range
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service refused the value with error e
 * @retval e|0x3000  the service took the value and did not give it back, error e
 * @retval 0x2101    the value read back, whole, is not the one that was set
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptnatpdn_set_v1(uint32_t lan_id, int8_t pdn);

/**
 * Reads the IP-passthrough NAT of one VLAN.
 *
 * @param[in]     lan_id   1..4094.
 * @param[in,out] pdn_out  receives ZR_NEXA_LAN_IPPTNAT_..., -1..2; stays as it was when the service reports any other
 *                         value, and on failure. Its value is read for the log: preset it.
 *
 * @retval 13        no session
 * @retval 4         pdn_out null, or lan_id out of range
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptnatpdn_get_v1(uint32_t lan_id, int8_t* pdn_out);

/**
 * Sets the IP passthrough of one LAN.
 *
 * - ippt_adaptive_enable non-zero: asks for the adaptive passthrough with ippt_adaptive; mode and host fields are not
 *   used.
 * - ippt_mode 0: ends the adaptive passthrough, then disables passthrough.
 * - ippt_mode 3: takes the device with host_name.
 * - ippt_mode 1, 2 or 4: takes the device with host_mac.
 *
 * An empty host_name or host_mac changes nothing and gives 0.
 *
 * Not one change with ippt_mode 0: ended between the two steps, the adaptive passthrough is ended and passthrough
 * itself not disabled. A passthrough that another process sets in between is disabled.
 *
 * @param[in] rec  every field is checked, whichever request is made.
 *
 * @retval 13        no session
 * @retval 4         rec null
 * @retval 6         lan_id above 4094
 * @retval 8         ippt_adaptive above 10
 * @retval 5         ippt_mode above 4
 * @retval 3         ippt_mode 2 on a LAN other than 0
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval 9         the MAC address is needed, and host_mac is not one: 17 characters, ':' at every third place,
 *                   hexadecimal digits elsewhere
 * @retval e|0x2000  the adaptive passthrough was refused with error e
 * @retval e|0x3000  disabling: the first step was refused with error e
 * @retval e|0x6000  disabling: the second step was refused with error e; the first one holds
 * @retval e|0x4000  the device with host_mac was refused with error e
 * @retval e|0x5000  the device with host_name was refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ippt_set_v1(const zr_nexa_lan_ippt_t* rec);

/**
 * Reads the IP passthrough of one LAN.
 *
 * @param[in,out] rec  lan_id names the LAN, 0..4094. ippt_adaptive and ippt_mode are filled in, host_mac with ippt_mode
 * 1, 2 or 4 (lower case), host_name with 3. A device of a type that has no number here, the adaptive one among them,
 * leaves ippt_mode as it was, and that value chooses which host field is filled in: preset it. All other fields, and
 * everything on failure, stay as they were.
 *
 * @retval 13        no session
 * @retval 4         rec null
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service refused with error e
 * @retval 1         the service reports neither enabled nor disabled
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ippt_get_v1(zr_nexa_lan_ippt_t* rec);

/**
 * Adds a gateway filter behind the LAN's last one. Whether it is there already is not looked at.
 *
 * Not one change: the list is read and written back. A filter that another process adds in between is gone, one that it
 * deletes is back.
 *
 * @param[in] lan_id      0 the default LAN, else a VLAN id up to 4094.
 * @param[in] protocol    ZR_NEXA_LAN_IPPTGWFILTER_..., 1..3.
 * @param[in] start_port  1..65534, not above end_port; with protocol 3 any.
 * @param[in] end_port    1..65534; with protocol 3 any.
 *
 * @retval 13        no session
 * @retval 6         lan_id above 4094
 * @retval 12        protocol out of range
 * @retval 1         ports out of range or reversed
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the list could not be read, error e
 * @retval 2         the list holds 5 filters already
 * @retval e|0x3000  the service refused the longer list with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptgwfilter_add_v1(uint32_t lan_id, uint32_t protocol, uint16_t start_port,
                                                     uint16_t end_port);

/**
 * Reads a LAN's gateway filters.
 *
 * A count that the service reports above 5 is taken as 5; so it is when a filter is added or deleted.
 *
 * @param[in]  lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[out] list    not checked for null. Cleared as soon as there is a session, whatever comes after. A filter whose
 *                     protocol has no number here leaves its entry 0.
 *
 * @retval 13        no session
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the list could not be read, error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptgwfilter_get_v1(uint32_t lan_id, zr_nexa_lan_ipptgwfilter_list_t* list);

/**
 * Deletes a LAN's gateway filter. The ones behind it move up by one: a number is a place in the list.
 *
 * Not one change: the list is read and written back. A filter that another process adds in between is gone, one that it
 * deletes is back.
 *
 * @param[in] lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[in] number  1..5.
 *
 * @retval 13        no session
 * @retval 6         lan_id above 4094
 * @retval 4         number out of range
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the list could not be read, error e
 * @retval 2         the list has no filter of that number
 * @retval e|0x3000  the service refused the shorter list with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipptgwfilter_del_v1(uint32_t lan_id, uint8_t number);

/**
 * Keeps the traffic of an address off the hardware path.
 *
 * @param[in] ipv4_address  network byte order; any value is handed on.
 *
 * @retval 13        no session
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_swpathfilter_add_v1(uint32_t ipv4_address);

/**
 * Lets the traffic of an address take the hardware path again.
 *
 * @param[in] ipv4_address  network byte order; any value is handed on.
 *
 * @retval 13        no session
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_swpathfilter_del_v1(uint32_t ipv4_address);

/**
 * Reads the addresses that are kept off the hardware path.
 *
 * @param[out] list  receives count and as many addresses; the others stay as they were. Untouched on failure. A
 *                   count that the service reports outside 0..5 is taken as 0 or 5.
 *
 * @retval 13        no session
 * @retval 4         list null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_swpathfilter_get_v1(zr_nexa_lan_swpathfilter_list_t* list);

ZR_NEXA_C_END

#endif
