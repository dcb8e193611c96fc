// Usage texts of the General settings, one printed line per source line.
#ifndef ZR_NEXA_CLI_USAGE_GENERAL_H
#define ZR_NEXA_CLI_USAGE_GENERAL_H

namespace cli {

inline constexpr char kRestoreUsage[] =
    "How to use:\r\n"
    "zr_nexa General Restore <restore>\r\n"
    "<restore>\r\n"
    "yes: execute restore\r\n"
    "no : do nothing\r\n"
    "\r\n";

inline constexpr char kSfeUsage[] =
    "How to use:\r\n"
    "zr_nexa General SFE <option>\r\n"
    "\r\n"
    "<option>\r\n"
    "get:     zr_nexa General SFE get\r\n"
    "         get SFE status\r\n"
    "enable:  zr_nexa General SFE enable\r\n"
    "         enable SFE\r\n"
    "disable: zr_nexa General SFE disable\r\n"
    "         disable SFE\r\n"
    "\r\n";

}  // namespace cli

#endif
