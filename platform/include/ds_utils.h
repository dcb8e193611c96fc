// Small helpers of the platform's data services.
#ifndef DS_UTILS_H
#define DS_UTILS_H

#include <stdint.h>

// Runs one shell command line of command_len bytes and waits for it. Returns its exit status, -1 when it could not run.
extern "C" int ds_system_call(const char* command, unsigned int command_len);

// Reads "aa:bb:cc:dd:ee:ff", digits of either case, into 6 bytes. Returns false, and writes nothing, for any other
// text.
extern "C" bool ds_mac_addr_pton(const char* text, uint8_t* mac);

// Writes 6 bytes as "aa:bb:cc:dd:ee:ff" in lower case with its terminating zero: 18 bytes.
extern "C" void ds_mac_addr_ntop(const uint8_t* mac, char* text);

#endif
