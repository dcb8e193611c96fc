#include "dispatch.h"

#include <cstdio>

#include "answers.h"
#include "command_table.h"

namespace cli {

int zr_nexa_dispatch(int argc, char** argv)
{
    const Category* const category = find_category(argv[1]);
    const Setting* const setting = category != nullptr ? find_setting(*category, argv[2]) : nullptr;
    if (setting == nullptr) return invalid();
    if (setting->handler == nullptr) {
        puts("Setting Not Support now\r");
        return 65535;
    }
    const int code = setting->handler(argc, argv);
    if (code == 0) {
        puts("CMD OK\r");
    } else {
        printf("CMD Error#0x%x\r\n", static_cast<unsigned int>(code));
    }
    return code;
}

}  // namespace cli
