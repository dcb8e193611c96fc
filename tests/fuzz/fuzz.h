// What the fuzz targets share.
#ifndef FUZZ_H
#define FUZZ_H

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

namespace fuzz {

// What does not hold is a finding.
inline void expect(bool holds)
{
    if (!holds) abort();
}

}  // namespace fuzz

#endif
