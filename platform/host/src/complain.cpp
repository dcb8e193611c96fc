#include "complain.h"

#include <string.h>
#include <unistd.h>

namespace mobile_ap {

void complain(const std::string& text)
{
    const std::string line = text + "\n";
    if (write(STDERR_FILENO, line.data(), line.size()) < 0) return;  // nobody left to tell
}

std::string errno_text(int error)
{
    char text[128] = "";
    return strerror_r(error, text, sizeof text);
}

}  // namespace mobile_ap
