/**
 * @file
 * GRE offload in the IPA connection manager's configuration file, /etc/data/ipa/IPACM_cfg.xml.
 *
 * Both functions work on the file alone: with or without a session, and without asking the service. Nothing is locked:
 * of two writers at the same time the last one wins.
 */
#ifndef ZR_NEXA_GRE_H
#define ZR_NEXA_GRE_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

#define ZR_NEXA_GRE_SERVERS_MAX 10 /**< GRE servers */
#define ZR_NEXA_GRE_SUBNETS_MAX 2  /**< subnet masks */

/** The GRE settings of the file. */
typedef struct zr_nexa_wan_gre_ipacfg_t {
    uint8_t gre_enabled;                                /**< 1 on, any other value off */
    uint8_t num_of_server_addrs;                        /**< servers, 0..10 */
    uint32_t server_ipv4_addr[ZR_NEXA_GRE_SERVERS_MAX]; /**< network byte order, as inet_pton writes it */
    uint8_t num_of_subnet_masks;                        /**< masks, 0..2 */
    uint32_t subnet_mask[ZR_NEXA_GRE_SUBNETS_MAX];      /**< network byte order */
} zr_nexa_wan_gre_ipacfg_t;

/**
 * Writes the settings into the file. All that the file's GREFlag element held is replaced; with gre_enabled other than
 * 1 the addresses are dropped. The other elements stay as they are; comments, processing instructions and a document
 * type are not kept. The file is replaced by a copy of /var/run/data/zr_IPACM_cfg.tmp; a failure (a folder missing,
 * read-only or full, no memory) is not reported.
 *
 * With /var/run/data full the file is cut, the result is 0, and every later call waits until a whole file is put back.
 * 64 KiB and four times the file's size are enough, there and beside the file. Keep a copy of the file.
 *
 * Waits without limit, trying every 50 ms, while the file is missing or cannot be parsed.
 *
 * Not one change: the file is read, changed and written back. Of two writers at the same moment one loses its settings,
 * or the file is cut, as it is by a process that ends while it is copied.
 *
 * @param[in] cfg  the settings.
 *
 * @retval 4  cfg null, num_of_server_addrs above 10 or num_of_subnet_masks above 2, and the file is untouched
 * @retval 0  success
 */
ZR_NEXA_API int32_t zr_nexa_wan_gre_ipacfg_set_v1(const zr_nexa_wan_gre_ipacfg_t* cfg);

/**
 * Reads the settings from the file, which is left as it is.
 *
 * Waits without limit, trying every 50 ms, while the file is missing or cannot be parsed: for ever, if a full disk has
 * cut it and nobody puts it back.
 *
 * @param[out] cfg  receives the whole record, unused elements and padding cleared. gre_enabled is 0 when the file says
 *                  "0", with no addresses then, and 1 when it says anything else or nothing. An address that does not
 *                  parse counts and is stored as 0. Of more servers or masks than the record holds the first 10 and 2
 *                  are taken, the others not counted.
 *
 * @retval 4  cfg null
 * @retval 0  success
 */
ZR_NEXA_API int32_t zr_nexa_wan_gre_ipacfg_get_v1(zr_nexa_wan_gre_ipacfg_t* cfg);

ZR_NEXA_C_END

#endif
