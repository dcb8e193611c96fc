/**
 * @file
 * What every public header of the client interface starts from.
 */
#ifndef ZR_NEXA_BASE_H
#define ZR_NEXA_BASE_H

#include <stdint.h>

/**
 * @name Version of the headers
 *
 * A program built against one version runs with every later library of the same major version.
 * @{
 */
/** Changes when programs must be built anew. */
#define ZR_NEXA_VERSION_MAJOR 1
/** Grows with what is added. */
#define ZR_NEXA_VERSION_MINOR 0
/** Grows with what is mended. */
#define ZR_NEXA_VERSION_PATCH 0
/** @} */

/**
 * @def ZR_NEXA_C_BEGIN
 * Stands before the declarations of a header.
 *
 * @def ZR_NEXA_C_END
 * Stands behind them.
 */
#ifdef __cplusplus
#define ZR_NEXA_C_BEGIN extern "C" {
#define ZR_NEXA_C_END }
#else
#define ZR_NEXA_C_BEGIN
#define ZR_NEXA_C_END
#endif

/** Marks what the library exports. */
#if defined(__GNUC__)
#define ZR_NEXA_API __attribute__((visibility("default")))
#else
#define ZR_NEXA_API
#endif

/** Result codes that mean the same in every area. An area's own small codes stand in its header. */
enum {
    ZR_NEXA_OK = 0,             /**< success */
    ZR_NEXA_ERR_ARGUMENT = 4,   /**< null pointer, or a value outside its set */
    ZR_NEXA_ERR_RANGE = 6,      /**< LAN or VLAN id out of range */
    ZR_NEXA_ERR_NO_SESSION = 13 /**< no session; from zr_nexa_client_init: one is already open */
};

/** A failed platform call gives its error word ORed with its step: ZR_NEXA_STEP_UNIT, twice that, and so on. */
#define ZR_NEXA_STEP_UNIT 0x1000u

/** @name IP families
 * @{ */
#define ZR_NEXA_IP_V4 4u    /**< IPv4 */
#define ZR_NEXA_IP_V6 6u    /**< IPv6 */
#define ZR_NEXA_IP_V4V6 10u /**< both */
/** @} */

/** Largest LAN id: 0 is the default LAN, any other value a VLAN id. */
#define ZR_NEXA_LAN_ID_MAX 4094u

#endif
