// Messages for people, on standard error.
#ifndef ZR_NEXA_CTL_TELL_H
#define ZR_NEXA_CTL_TELL_H

#include <string>
#include <vector>

#include "document.h"

namespace ctl {

void tell(const std::string& message);

// Why it is not done; the last object of --json has these too.
void tell_problem(const std::string& message);
void tell_problems(const std::string& file, const Problems& problems);
const std::vector<std::string>& told_problems();

// For a process that nobody sees: from here on messages go to the system's log.
void tell_the_log();

}  // namespace ctl

#endif
