// Messages for people, on standard error.
#ifndef ZR_NEXA_CTL_TELL_H
#define ZR_NEXA_CTL_TELL_H

#include <cstdio>
#include <string>

namespace ctl {

inline void tell(const std::string& message)
{
    std::fprintf(stderr, "zr_nexactl: %s\n", message.c_str());
}

}  // namespace ctl

#endif
