// The UPnP service with its notify interval, and the pinholes of a profile.
#include <zr_nexa/firewall.h>
#include <zr_nexa/upnp.h>

#include "keys.h"

namespace ctl {
namespace {

Row enabled_row()
{
    return module_flag(Phase::kService, {"upnp.enabled", flag(), "the UPnP service", "false"},
                       NAMED(zr_nexa_media_upnp_set_v1), NAMED(zr_nexa_media_upnp_get_v1));
}

Row interval_row()
{
    constexpr uint32_t kMin = ZR_NEXA_UPNP_NOTIFY_INTERVAL_MIN;
    constexpr uint32_t kMax = ZR_NEXA_UPNP_NOTIFY_INTERVAL_MAX;
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kService,
               "",
               {{"upnp.notify_seconds", number(kMin, kMax), "how often the UPnP service announces itself", "1800"}},
               {"zr_nexa_media_upnp_notify_interval_set_v1", "zr_nexa_media_upnp_notify_interval_get_v1"}};
    row.read = [](uint32_t, Value* out) {
        uint16_t seconds = 0;
        Result result = CALL(zr_nexa_media_upnp_notify_interval_get_v1, &seconds);
        if (result.good() && seconds >= kMin && seconds <= kMax) out->map()["upnp.notify_seconds"] = seconds;
        return result;
    };
    row.write = [](uint32_t, const Value& wanted, const Value&) {
        return CALL(zr_nexa_media_upnp_notify_interval_set_v1, wanted.child("upnp.notify_seconds").number());
    };
    return row;
}

constexpr uint32_t kDrop = 0;
constexpr uint32_t kLetThrough = 1;

// The firewall must be on, to forbid them too. One that is off is switched on for the moment, letting through what no
// entry names, and off again with the policy it had.
Result write_pinholes(uint32_t handle, const Value& wanted, const Value&)
{
    uint8_t is_on = 0;
    uint8_t policy = 0;
    Result looked = CALL(zr_nexa_firewall_config_get_v1, handle, &is_on, &policy);
    if (!looked.good()) return looked;
    const uint32_t state = wanted.child("upnp_pinholes").flag() ? 1 : 0;
    if (is_on != 0) return CALL(zr_nexa_media_upnp_pinhole_state_set_v1, handle, state);
    if (policy != kDrop && policy != kLetThrough)
        return {0, looked.function, "the firewall is off, and its policy could not be put back"};
    const Result on = CALL(zr_nexa_firewall_config_set_v1, handle, 1, kLetThrough);
    Result set = CALL(zr_nexa_media_upnp_pinhole_state_set_v1, handle, state);
    Result off = CALL(zr_nexa_firewall_config_set_v1, handle, 0, policy);
    // Once more: the service gives a request up when a signal comes.
    if (!off.good()) off = CALL(zr_nexa_firewall_config_set_v1, handle, 0, policy);
    for (const Result& each : {off, on})
        if (!each.good()) return each;
    return set;
}

Row pinholes_row()
{
    Row row =
        scoped_flag(Scope::kProfile, Phase::kProfileSettings,
                    {"upnp_pinholes", flag(), "UPnP may open pinholes in the profile's firewall", "false"},
                    NAMED(zr_nexa_media_upnp_pinhole_state_set_v1), NAMED(zr_nexa_media_upnp_pinhole_state_get_v1));
    row.write = write_pinholes;
    row.also_changes = {"firewall.enabled", "firewall.unmatched"};
    row.functions.insert(row.functions.end(), {"zr_nexa_firewall_config_get_v1", "zr_nexa_firewall_config_set_v1"});
    return row;
}

}  // namespace

std::vector<Row> upnp_rows()
{
    return {pinholes_row(), enabled_row(), interval_row()};
}

}  // namespace ctl
