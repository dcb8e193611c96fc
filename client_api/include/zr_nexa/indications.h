/* Call-status indications, as the callback given to zr_nexa_client_init receives them. */
#ifndef ZR_NEXA_INDICATIONS_H
#define ZR_NEXA_INDICATIONS_H

#include <zr_nexa/base.h>

ZR_NEXA_C_BEGIN

/*
 * The callback. It is variadic because one event carries a fourth value: a variadic function may be called with three
 * or four values on every CPU, which an ordinary one may not.
 */
typedef void (*zr_nexa_ind_cb_t)(uint32_t event_id, uint32_t length, const void* data, ...);

ZR_NEXA_C_END

#endif
