// An indication on the wire, for the library that sends it and the one that decodes it: a header, then the record as it
// lies in memory.
#ifndef MOBILE_AP_INDICATION_WIRE_H
#define MOBILE_AP_INDICATION_WIRE_H

#include <stddef.h>
#include <stdint.h>

#include <array>

namespace mobile_ap {

// Tag 1, then the record's length in 16 bits, low byte first.
using WireHeader = std::array<uint8_t, 3>;

constexpr WireHeader wire_header(size_t record_size)
{
    return {0x01, static_cast<uint8_t>(record_size & 0xff), static_cast<uint8_t>(record_size >> 8)};
}

}  // namespace mobile_ap

#endif
