/**
 * @file
 * VLANs of the LAN.
 */
#ifndef ZR_NEXA_LAN_VLAN_H
#define ZR_NEXA_LAN_VLAN_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/** Result codes of this area. */
enum {
    ZR_NEXA_LAN_VLAN_ERR_IFACE_TYPE = 7 /**< phy_iface_type outside 1..4 */
};

#define ZR_NEXA_LAN_VLANS_MAX 2000 /**< VLANs of the module */

/** @name The physical interface that carries a VLAN
 * @{ */
#define ZR_NEXA_LAN_VLAN_IFACE_ETH 1      /**< Ethernet */
#define ZR_NEXA_LAN_VLAN_IFACE_ECM 2      /**< USB, ECM */
#define ZR_NEXA_LAN_VLAN_IFACE_RNDIS 3    /**< USB, RNDIS */
#define ZR_NEXA_LAN_VLAN_IFACE_ETH_NIC2 4 /**< the second Ethernet interface */
/** @} */

/** Entry i of the three arrays describes one VLAN. */
typedef struct zr_nexa_lan_vlan_list_t {
    uint16_t count;                                /**< VLANs, 0..2000 */
    uint16_t vlan_id[ZR_NEXA_LAN_VLANS_MAX];       /**< 1..4094 */
    uint8_t phy_iface_type[ZR_NEXA_LAN_VLANS_MAX]; /**< ZR_NEXA_LAN_VLAN_IFACE_... */
    uint8_t is_accelerated[ZR_NEXA_LAN_VLANS_MAX]; /**< 0 or 1 */
} zr_nexa_lan_vlan_list_t;

/**
 * Creates a VLAN. It selects no bridge and starts no DHCP server.
 *
 * The service's error 118 of a request that succeeded counts as no error.
 *
 * @param[in] vlan_id         1..4094.
 * @param[in] phy_iface_type  ZR_NEXA_LAN_VLAN_IFACE_..., 1..4.
 * @param[in] is_accelerated  1 the VLAN's traffic takes the hardware path (IPA), 0 it does not.
 *
 * @retval 13        no session
 * @retval 6         vlan_id out of range
 * @retval 4         is_accelerated above 1
 * @retval 7         phy_iface_type out of range
 * @retval e|0x1000  the service refused with error e
 * @retval e|0x2000  the service created it and wrote error e, neither 0 nor 118
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_vlan_add_v1(uint16_t vlan_id, uint8_t phy_iface_type, uint32_t is_accelerated);

/**
 * Reads all VLANs.
 *
 * The service's error 50 of a request that succeeded counts as no error.
 *
 * @param[out] list  receives count and the first count entries of each array, in the service's order; the other entries
 *                   stay as they were, and so does the phy_iface_type of a VLAN on an interface that has no number
 *                   here: preset it. Untouched when the service refuses. A count that the service reports outside
 *                   0..2000 is taken as 0 or 2000.
 *
 * @retval 13        no session
 * @retval 4         list null
 * @retval e|0x1000  the service refused with error e
 * @retval e|0x2000  the service gave the list, which is filled in, and wrote error e, neither 0 nor 50
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_vlan_get_v1(zr_nexa_lan_vlan_list_t* list);

/**
 * Deletes a VLAN.
 *
 * @param[in] vlan_id         1..4094.
 * @param[in] phy_iface_type  ZR_NEXA_LAN_VLAN_IFACE_..., 1..4; the one it was created with.
 *
 * @retval 13        no session
 * @retval 6         vlan_id out of range
 * @retval 7         phy_iface_type out of range
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_lan_vlan_del_v1(uint16_t vlan_id, uint8_t phy_iface_type);

ZR_NEXA_C_END

#endif
