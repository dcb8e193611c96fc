// The General settings.
#include <zr_nexa/general.h>

#include <cstdio>

#include "answers.h"
#include "handlers.h"
#include "usage/general.h"
#include "words.h"

namespace cli {

int general_restore(int argc, char** argv)
{
    if (argc == 3) return usage(kRestoreUsage);
    if (argc == 4 && same(argv[3], "yes")) {
        return result(zr_nexa_general_restore_nexa_v1(), "General Restore: success, will reboot in 5s\r");
    }
    if (argc == 4 && same(argv[3], "no")) return 0;
    return invalid();
}

int general_sfe(int argc, char** argv)
{
    if (argc == 3) return usage(kSfeUsage);
    if (argc == 4 && same(argv[3], "get")) {
        uint8_t state = 0;
        const uint32_t code = zr_nexa_general_sfe_get_v1(&state);
        if (code != 0) return result(code);
        puts(state == 0 ? "General SFE: disabled\r" : "General SFE: enabled\r");
        return 0;
    }
    if (argc == 4 && same(argv[3], "enable")) return result(zr_nexa_general_sfe_set_v1(1));
    if (argc == 4 && same(argv[3], "disable")) return result(zr_nexa_general_sfe_set_v1(0));
    return invalid();
}

}  // namespace cli
