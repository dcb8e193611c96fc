#include "complain.h"

#include <string.h>
#include <unistd.h>

#include "quiet_write.h"

namespace mobile_ap {

void complain(const std::string& text)
{
    const std::string line = text + "\n";
    const SignalsBlocked blocked;
    quiet_write(STDERR_FILENO, line.data(), line.size());
}

std::string errno_text(int error)
{
    char text[128] = "";
    return strerror_r(error, text, sizeof text);
}

}  // namespace mobile_ap
