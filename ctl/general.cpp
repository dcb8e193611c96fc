// The software shortcut engine. Other general settings stand where their functions do.
#include <zr_nexa/general.h>

#include "keys.h"

namespace ctl {

std::vector<Row> general_rows()
{
    Row shortcut_engine = module_flag(
        Phase::kRouting,
        {"general.shortcut_engine", flag(), "traffic takes the short cut past the network stack of the system", "true"},
        NAMED(zr_nexa_general_sfe_set_v1), NAMED(zr_nexa_general_sfe_get_v1));
    // The byte is always written, and any but 0 is on.
    shortcut_engine.read = [](uint32_t, Value* out) {
        uint8_t byte = 0;
        Result result = CALL(zr_nexa_general_sfe_get_v1, &byte);
        if (result.good()) out->map()["general.shortcut_engine"] = Value(byte != 0);
        return result;
    };
    return {shortcut_engine};
}

}  // namespace ctl
