/**
 * @file
 * LAN addressing: gateway URL, addresses and DHCP server of a LAN bridge, default DHCP action, IPv4 and IPv6 switches.
 */
#ifndef ZR_NEXA_LAN_ADDRESSING_H
#define ZR_NEXA_LAN_ADDRESSING_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

#define ZR_NEXA_LAN_GWURL_SIZE 128        /**< bytes of a buffer for the gateway URL */
#define ZR_NEXA_LAN_DNS_MODE_ADDRESSES 3u /**< the only DNS mode that carries addresses of its own */

/** Addressing of one LAN bridge. Every address is in host byte order. */
typedef struct zr_nexa_lan_dhcp_cfg_t {
    uint32_t gateway_ip;    /**< of the bridge itself */
    uint32_t netmask;       /**< of the bridge */
    uint32_t dhcp_start_ip; /**< first address of the DHCP pool */
    uint32_t dhcp_end_ip;   /**< last address of the DHCP pool */
    uint32_t lease_time;    /**< seconds */
    uint32_t mtu;           /**< handed out by DHCP */
    uint32_t dns_mode;      /**< 1, 2 or 3; 3: the two addresses below */
    uint32_t primary_dns;   /**< with dns_mode 3 */
    uint32_t secondary_dns; /**< with dns_mode 3 */
} zr_nexa_lan_dhcp_cfg_t;

/**
 * Sets the gateway URL: the host name under which the module's own pages answer on the LAN.
 *
 * @param[in] url  terminated by a zero; handed to the service whole, whatever its length.
 *
 * @retval 13        no session
 * @retval 4         url null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_gwurl_set_v1(const char* url);

/**
 * Reads the gateway URL.
 *
 * Preset both. On failure they hold what the service left in them, and the log shows it: of url what stands before
 * its zero, its first ZR_NEXA_LAN_GWURL_SIZE bytes at most.
 *
 * @param[out] url  buffer of ZR_NEXA_LAN_GWURL_SIZE bytes at least. The service writes the text into it; its size is
 *                  not checked, and a text that fills it is not terminated.
 * @param[out] len  receives the text's length in bytes.
 *
 * @retval 13        no session
 * @retval 4         url or len null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_gwurl_get_v1(char* url, uint32_t* len);

/**
 * Switches the DHCP server of one LAN bridge. A lan_id without a bridge switches the default DHCP action instead, as
 * zr_nexa_lan_dhcp_default_action_set_v1 does.
 *
 * The bridge is not activated anew.
 *
 * Not one change: a bridge's whole configuration is read and written back. Addresses that another process sets in
 * between are set back.
 *
 * @param[in] lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[in] enable  0 off, 1 on. A bridge gets the low 8 bits (256 switches off, 2 is stored as 2), the default action
 *                    the lowest bit (2 switches off).
 *
 * @retval 13        no session
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  there is no such bridge, and the service refused the default action with error e
 * @retval e|0x2000  the service did not give the bridge's configuration, error e
 * @retval e|0x3000  the service refused the bridge's new configuration with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_srvctl_set_v1(uint32_t lan_id, int32_t enable);

/**
 * Reads the DHCP server's switch of one LAN bridge; for a lan_id without a bridge the default DHCP action.
 *
 * @param[in]  lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[out] enable  receives the bridge's byte as the service keeps it, 0..255, or 0 or 1 for the default action. Not
 *                     checked for null; untouched on failure.
 *
 * @retval 13        no session
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  there is no such bridge, and the service did not give the default action, error e
 * @retval e|0x2000  the service did not give the bridge's configuration, error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_srvctl_get_v1(uint32_t lan_id, uint32_t* enable);

/**
 * Sets address and DHCP pool of one LAN bridge and activates it. The DHCP server's switch stays as it is.
 *
 * Not one change: the configuration is read for its switch, written, then activated. What a step did stays done when a
 * later one fails; ended behind the writing, the bridge has the new configuration and is not activated. A DHCP server
 * that another process switches in between is switched back.
 *
 * @param[in] lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[in] cfg     the new configuration; the service judges its values. The DNS addresses count with dns_mode 3
 *                    only; a dns_mode other than 1, 2 and 3 is stored as 0.
 *
 * @retval 13        no session
 * @retval 4         cfg null
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service did not give the bridge's configuration, error e
 * @retval e|0x3000  the service refused the new configuration with error e
 * @retval e|0x4000  the configuration is stored, but activating it failed with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_set_v1(uint32_t lan_id, const zr_nexa_lan_dhcp_cfg_t* cfg);

/**
 * Reads address and DHCP pool of one LAN bridge.
 *
 * @param[in]  lan_id  0 the default LAN, else a VLAN id up to 4094.
 * @param[out] cfg     receives the configuration. dns_mode is written when it is 1, 2 or 3, the DNS addresses when it
 *                     is 3; otherwise they stay as they were: preset them. Untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         cfg null
 * @retval 6         lan_id above 4094
 * @retval e|0x1000  the bridge could not be selected, error e
 * @retval e|0x2000  the service did not give the bridge's configuration, error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_get_v1(uint32_t lan_id, zr_nexa_lan_dhcp_cfg_t* cfg);

/**
 * Reads the default DHCP action: whether the DHCP server starts when a VLAN bridge is first created.
 *
 * @param[out] enable  receives 1 it starts, 0 it does not. Not checked for null; untouched on failure.
 *
 * @retval 13        no session
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_default_action_get_v1(uint8_t* enable);

/**
 * Sets the default DHCP action.
 *
 * @param[in] state  0 the DHCP server does not start with a new bridge, 1 it starts. Not checked: the service gets it
 *                   as it is.
 *
 * @retval 13        no session
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_dhcp_default_action_set_v1(uint32_t state);

/**
 * Switches IPv4 and IPv6 of the mobile-AP service, IPv4 first. The IPv4 change stays when the IPv6 step fails.
 *
 * Not one change: ended between the two steps, IPv4 is as asked and IPv6 as before. Of two processes at the same moment
 * one may set IPv4 and the other IPv6.
 *
 * @param[in] ipv4  0 off, 1 on.
 * @param[in] ipv6  0 off, 1 on.
 *
 * @retval 13        no session
 * @retval 4         ipv4 or ipv6 above 1
 * @retval e|0x1000  switching IPv4 on failed with error e
 * @retval e|0x2000  switching IPv4 off failed with error e
 * @retval e|0x3000  switching IPv6 on failed with error e
 * @retval e|0x4000  switching IPv6 off failed with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipv4v6_set_v1(uint32_t ipv4, uint32_t ipv6);

/**
 * Reads the IPv4 and IPv6 switches.
 *
 * There is no first step: the tags begin at 0x2000.
 *
 * @param[out] ipv4  receives the IPv4 switch, as the service gives it; already written when reading IPv6 fails.
 * @param[out] ipv6  receives the IPv6 switch; untouched on failure.
 *
 * @retval 13        no session
 * @retval 4         ipv4 or ipv6 null
 * @retval e|0x2000  the service did not give the IPv4 switch, error e
 * @retval e|0x3000  the service did not give the IPv6 switch, error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_ipv4v6_get_v1(uint8_t* ipv4, uint8_t* ipv6);

ZR_NEXA_C_END

#endif
