// Result codes in words.
#ifndef ZR_NEXA_CTL_EXPLAIN_H
#define ZR_NEXA_CTL_EXPLAIN_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "keys.h"

namespace ctl {

// "step 2: the service answered 9, there is no such profile (any more)"; with a function, what its step does and its
// own small codes.
std::string in_words(uint32_t code, const std::string& function = "");

// "zr_nexa_nat_type_set_v1: 0x2009, step 2, setting the type: ...".
std::string in_words(const Result& result);

// What the service means by an error word; empty for one without a name.
std::string service_word(uint32_t word);

// What a small code means in the areas that have one of their own: area and meaning.
std::vector<std::pair<std::string, std::string>> area_meanings(uint32_t code);

// What a function does in a step; empty where nothing is known of it.
std::string step_of(const std::string& function, uint32_t step);

// What a function means by a small code of its own; empty for one that it does not have.
std::string small_code(const std::string& function, uint32_t code);

}  // namespace ctl

#endif
