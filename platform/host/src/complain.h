// What people are told.
#ifndef MOBILE_AP_COMPLAIN_H
#define MOBILE_AP_COMPLAIN_H

#include <string>

namespace mobile_ap {

// One line on standard error, in one write.
void complain(const std::string& text);

// What an errno says.
std::string errno_text(int error);

}  // namespace mobile_ap

#endif
