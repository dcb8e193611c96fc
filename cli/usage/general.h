// Usage texts of the General settings.
#ifndef ZR_NEXA_CLI_USAGE_GENERAL_H
#define ZR_NEXA_CLI_USAGE_GENERAL_H

namespace cli {

inline constexpr char kRestoreUsage[] = R"(How to use:
zr_nexa General Restore <restore>
<restore>
yes: execute restore
no : do nothing

)";

inline constexpr char kSfeUsage[] = R"(How to use:
zr_nexa General SFE <option>

<option>
get:     zr_nexa General SFE get
         get SFE status
enable:  zr_nexa General SFE enable
         enable SFE
disable: zr_nexa General SFE disable
         disable SFE

)";

}  // namespace cli

#endif
