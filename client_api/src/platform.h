// The platform's interface. A module's own headers may bear other file names: this is the one place to say so.
#ifndef ZR_NEXA_PLATFORM_H
#define ZR_NEXA_PLATFORM_H

#include <diag_msg.h>
#include <ds_utils.h>
#include <qcmap_client.h>
#include <qcmap_indications.h>
#include <qcmap_records.h>
#include <qmi_client.h>
#include <qmi_error.h>

// <zr_nexa/wan_connection.h> then leaves this record to the platform's headers, where those do not say so themselves.
#ifndef QCMAP_MSGR_WWAN_STATISTICS_TYPE_V01_DEFINED
#define QCMAP_MSGR_WWAN_STATISTICS_TYPE_V01_DEFINED
#endif
static_assert(sizeof(qcmap_msgr_wwan_statistics_type_v01) == 32, "callers have room for 32 bytes");

#endif
