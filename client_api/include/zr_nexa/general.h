/**
 * @file
 * General settings: factory restore and the software shortcut engine.
 */
#ifndef ZR_NEXA_GENERAL_H
#define ZR_NEXA_GENERAL_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/**
 * Restores the factory configuration of the mobile-AP service. The service restarts the module some seconds later; the
 * function neither reboots nor waits.
 *
 * @retval 13        no session
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_general_restore_nexa_v1(void);

/**
 * Switches the software shortcut engine (data-path optimisation).
 *
 * @param[in] sfe_config  0 off, 1 on.
 *
 * @retval 13        no session
 * @retval 4         sfe_config above 1
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_general_sfe_set_v1(uint32_t sfe_config);

/**
 * Reads the software shortcut engine's switch.
 *
 * @param[out] sfe_config  receives 0 off, non-zero on, as the service writes it; on failure it holds what the service
 *                         left in it.
 *
 * @retval 13        no session
 * @retval 4         sfe_config null
 * @retval e|0x1000  the service refused with error e
 * @retval 0         success
 */
ZR_NEXA_API uint32_t zr_nexa_general_sfe_get_v1(uint8_t* sfe_config);

ZR_NEXA_C_END

#endif
