// Diagnostic log of the platform.
#ifndef DIAG_MSG_H
#define DIAG_MSG_H

#include <stdint.h>

#define MSG_LEVEL_HIGH 0x4u   // information
#define MSG_LEVEL_ERROR 0x8u  // errors

// One per log statement, constant, never built at run time.
struct msg_const_type {
    uint16_t line;         // source line: unique and stable for its source
    uint16_t ss_id;        // subsystem
    uint32_t ss_mask;      // level
    const char* fmt;       // printf format of what follows the record
    const char* src_file;  // source the record stands in
};

// Writes one record to the diagnostic log. May be called from any thread and from a signal handler.
extern "C" void msg_sprintf(const msg_const_type* record, ...);

#endif
