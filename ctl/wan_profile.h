// Profiles as such: which there are and what each dials with. Their handles are the service's to give.
#ifndef ZR_NEXA_CTL_WAN_PROFILE_H
#define ZR_NEXA_CTL_WAN_PROFILE_H

#include <cstddef>
#include <cstdint>

#include "keys.h"

namespace ctl {

constexpr size_t kProfilesMax = 50;

// All profiles by their handles, {1: {dial: {technology: any, ...}}}, every field said, and the default one's handle; 0
// when the service names none.
Result read_profiles(Value* profiles, uint32_t* default_handle);

// dial is whole and of normal form here. The handle is untouched on failure.
Result add_profile(const Value& dial, uint32_t* handle);

// Several requests to the service: after a failure some of them are done.
Result change_dial(uint32_t handle, const Value& wanted, const Value& present);

// Refused for a profile that has a role or a call.
Result remove_profile(uint32_t handle);

// What a failed attempt to read a call's state leaves there.
constexpr uint32_t kNoStatus = 0x80000001;

// Whether a profile has a call, or is about to have one or to end it, in either family.
Result read_calling(uint32_t handle, bool* calling);

}  // namespace ctl

#endif
