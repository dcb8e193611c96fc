// The modes of a profile's connection, and whether it has a call.
#include <zr_nexa/wan_connection.h>

#include "keys.h"
#include "wan_profile.h"

namespace ctl {
namespace {

Row mode(Field field, uint32_t (*set)(uint32_t, uint32_t), const char* set_name, uint32_t (*get)(uint32_t, uint8_t*),
         const char* get_name)
{
    return scoped_flag(Scope::kProfile, Phase::kProfileSettings, std::move(field), set, set_name, get, get_name);
}

}  // namespace

Result read_calling(uint32_t handle, bool* calling)
{
    uint32_t ipv4 = kNoStatus;
    uint32_t ipv6 = kNoStatus;
    Result result = CALL(zr_nexa_wan_status_get_v1, handle, &ipv4, &ipv6);
    if (result.good())
        *calling = (ipv4 != kNoStatus && ipv4 != ZR_NEXA_WAN_V4_DISCONNECTED) ||
                   (ipv6 != kNoStatus && ipv6 != ZR_NEXA_WAN_V6_DISCONNECTED);
    return result;
}

std::vector<Row> wan_connection_rows()
{
    return {mode({"reconnect", flag(), "a call that the network ends is made again", "false"},
                 NAMED(zr_nexa_wan_reconnect_set_v1), NAMED(zr_nexa_wan_reconnect_get_v1)),
            mode({"autoconnect", flag(), "it is connected whenever the mobile-AP service starts", "false"},
                 NAMED(zr_nexa_wan_autoconnect_set_v1), NAMED(zr_nexa_wan_autoconnect_get_v1)),
            mode({"roaming", flag(), "it may be connected while the module roams", "false"},
                 NAMED(zr_nexa_wan_roaming_set_v1), NAMED(zr_nexa_wan_roaming_get_v1))};
}

}  // namespace ctl
