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

// The interface's headers then leave the platform's own records to these: include this file first.
#ifndef ZR_NEXA_HAVE_PLATFORM_RECORDS
#define ZR_NEXA_HAVE_PLATFORM_RECORDS
#endif

#endif
