/**
 * @file
 * The form of a MAC address text, as every part of the system that takes one checks it.
 */
#ifndef ZR_NEXA_MAC_TEXT_H
#define ZR_NEXA_MAC_TEXT_H

#include <stddef.h>

#include <zr_nexa/base.h>

#define ZR_NEXA_MAC_TEXT_LENGTH 17 /**< characters of a MAC address text */

/**
 * Tells whether text is a MAC address text: exactly 17 characters, ':' at every third position, a hexadecimal digit of
 * either case elsewhere.
 *
 * @param[in] text  ends with a zero or at size, whichever comes first; not checked for null.
 * @param[in] size  bytes of text; nothing is read beyond them.
 *
 * @retval 1  it is
 * @retval 0  it is not
 */
static inline int zr_nexa_is_mac_text(const char* text, size_t size)
{
    size_t i;
    if (size < ZR_NEXA_MAC_TEXT_LENGTH) return 0;
    for (i = 0; i < ZR_NEXA_MAC_TEXT_LENGTH; ++i) {
        const char c = text[i];
        if (i % 3 == 2) {
            if (c != ':') return 0;
        } else if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'))) {
            return 0;
        }
    }
    return size == ZR_NEXA_MAC_TEXT_LENGTH || text[ZR_NEXA_MAC_TEXT_LENGTH] == '\0';
}

#endif
