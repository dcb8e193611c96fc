// Result codes in words.
#ifndef ZR_NEXA_CTL_EXPLAIN_H
#define ZR_NEXA_CTL_EXPLAIN_H

#include <cstdint>
#include <string>

#include "keys.h"

namespace ctl {

// "step 2: the service answered 43, the profile is not connected"; with a function, its own small codes and steps.
std::string in_words(uint32_t code, const std::string& function = "");

// "zr_nexa_nat_type_set_v1: 0x1009, step 1: ...".
std::string in_words(const Result& result);

}  // namespace ctl

#endif
