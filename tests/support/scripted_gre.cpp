// The shell's double: a command line is written down and not run. A failing answer's error word is its exit status.
#include <ds_utils.h>

#include "scripted_platform.h"

int ds_system_call(const char* command, unsigned int command_len)
{
    if (std::strlen(command) != command_len) {
        scripted::platform().complaints.push_back("ds_system_call: wrong length of \"" + std::string(command) + "\"");
    }
    qmi_error_type_v01 status;
    scripted::Call("ds_system_call").text("command", command, command_len).finish(&status);
    return static_cast<int>(status);
}
