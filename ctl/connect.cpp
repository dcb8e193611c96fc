// Connecting and disconnecting a profile, and waiting for it.
#include <zr_nexa_client_api.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "exit_status.h"
#include "explain.h"
#include "indications.h"
#include "module.h"
#include "session.h"
#include "tell.h"
#include "verbs.h"
#include "wan_profile.h"

namespace ctl {
namespace {

constexpr std::chrono::seconds kPatience(1);
constexpr uint32_t kNoEffect = 26;  // the service's word: it is so already

struct Asked {
    bool connect = true;
    uint32_t profile = 0;
    std::string family;
    double seconds = -1;  // below 0: not waited for
};

// One family of a profile: how it is asked for, and how it ends.
struct Call {
    const char* name;
    Result (*ask)(uint32_t profile, uint32_t connect);
    uint32_t connected, disconnected, connecting_failed, disconnecting_failed;
    bool was_so = false;  // there was nothing to do
};
const Call kV4 = {
    "IPv4",
    [](uint32_t profile, uint32_t connect) { return CALL(zr_nexa_wan_connect_v4_set_v1, profile, connect); },
    ZR_NEXA_WAN_V4_CONNECTED,
    ZR_NEXA_WAN_V4_DISCONNECTED,
    ZR_NEXA_IND_V4_CONNECTING_FAILED,
    ZR_NEXA_IND_V4_DISCONNECTING_FAILED};
const Call kV6 = {
    "IPv6",
    [](uint32_t profile, uint32_t connect) { return CALL(zr_nexa_wan_connect_v6_set_v1, profile, connect); },
    ZR_NEXA_WAN_V6_CONNECTED,
    ZR_NEXA_WAN_V6_DISCONNECTED,
    ZR_NEXA_IND_V6_CONNECTING_FAILED,
    ZR_NEXA_IND_V6_DISCONNECTING_FAILED};

// The families that are asked for: those that were said, else what the profile dials; to disconnect, also one that is
// up from before the profile's family was changed.
std::vector<Call> calls_of(const Asked& asked)
{
    if (asked.family == "4") return {kV4};
    if (asked.family == "6") return {kV6};
    uint32_t family = ZR_NEXA_IP_V4V6;
    zr_nexa_wan_wwanconfig_list_v2_t list = {};
    if (asked.family.empty() && zr_nexa_wan_wwanconfig_get_v2(&list) == ZR_NEXA_OK) {
        for (uint32_t i = 0; i < list.wwanconfig_num; ++i)
            if (list.wwan_handle[i] == asked.profile) family = static_cast<uint32_t>(list.wwanconfig[i].ip_family);
    }
    uint32_t v4 = kNoStatus;
    uint32_t v6 = kNoStatus;
    if (!asked.connect) zr_nexa_wan_status_get_v1(asked.profile, &v4, &v6);
    std::vector<Call> calls;
    if (family != ZR_NEXA_IP_V6 || v4 == ZR_NEXA_WAN_V4_CONNECTED) calls.push_back(kV4);
    if (family != ZR_NEXA_IP_V4 || v6 == ZR_NEXA_WAN_V6_CONNECTED) calls.push_back(kV6);
    return calls;
}

bool is_so_already(const Result& result, bool connect)
{
    return result.code == (kNoEffect | (connect ? 2 : 3) * ZR_NEXA_STEP_UNIT);
}

// The state that is wanted of a family, and the indication that says that it will not come.
uint32_t wanted(const Call& call, bool connect)
{
    return connect ? call.connected : call.disconnected;
}
uint32_t failed(const Call& call, bool connect)
{
    return connect ? call.connecting_failed : call.disconnecting_failed;
}

int wait(const Asked& asked, std::vector<Call> calls, Indications* indications)
{
    const auto deadline =
        std::chrono::steady_clock::now() +
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(asked.seconds));
    for (;;) {
        uint32_t v4 = kNoStatus;
        uint32_t v6 = kNoStatus;
        const Result result = CALL(zr_nexa_wan_status_get_v1, asked.profile, &v4, &v6);
        if (!result.good()) {
            tell(in_words(result));
            return kNoService;
        }
        // A call that failed has no state: where there was nothing to disconnect, that is as good.
        const auto reached = [&](const Call& call) {
            const uint32_t state = call.connected == kV4.connected ? v4 : v6;
            return state == wanted(call, asked.connect) || (state == kNoStatus && call.was_so && !asked.connect);
        };
        calls.erase(std::remove_if(calls.begin(), calls.end(), reached), calls.end());
        if (calls.empty()) return kDone;

        // Asked anew after each indication, and now and then in case one did not come.
        Indication indication;
        const Waited waited =
            indications->next(std::min(deadline, std::chrono::steady_clock::now() + kPatience), &indication);
        if (waited == Waited::kTimeIsOver && std::chrono::steady_clock::now() < deadline) continue;
        if (waited != Waited::kIndication) {
            for (const Call& call : calls)
                tell(profile_name(asked.profile) + ": " + call.name + " is not " +
                     (asked.connect ? "connected" : "disconnected") +
                     (waited == Waited::kTimeIsOver ? " in time" : " yet"));
            return kDiffers;
        }
        if (indication.event == ZR_NEXA_IND_STATUS_REPORT || indication.call.wwan_handle != asked.profile) continue;
        for (const Call& call : calls) {
            if (indication.call.status != failed(call, asked.connect)) continue;
            tell(profile_name(asked.profile) + ": " + call.name +
                 (asked.connect ? " could not be connected" : " could not be disconnected") + ", end type " +
                 std::to_string(indication.call.call_end_type) + ", code " +
                 std::to_string(indication.call.call_end_code));
            return kDiffers;
        }
    }
}

int work(const Asked& asked)
{
    // What comes between asking and waiting is kept.
    Indications indications;
    const Session session(note_indication);
    if (!session.problem().empty()) {
        tell(session.problem());
        return kNoService;
    }
    std::vector<Call> calls = calls_of(asked);
    size_t taken = 0;
    size_t refused = 0;
    for (Call& call : calls) {
        const Result result = call.ask(asked.profile, asked.connect ? 1 : 0);
        call.was_so = is_so_already(result, asked.connect);
        if (result.good()) {
            ++taken;
        } else if (!call.was_so) {
            ++refused;
            tell(in_words(result));
        }
    }
    if (refused != 0) return taken == 0 ? kRefused : kNotUndone;
    return asked.seconds < 0 ? static_cast<int>(kDone) : wait(asked, calls, &indications);
}

void add(CLI::App& app, Work* chosen, bool connect)
{
    CLI::App* const verb = connect ? app.add_subcommand("connect", "Connect a profile")
                                   : app.add_subcommand("disconnect", "Disconnect a profile");
    const auto asked = std::make_shared<Asked>();
    asked->connect = connect;
    add_profile(verb, "PROFILE", &asked->profile, "Its handle, or profile-<handle>")->required();
    verb->add_option("--family", asked->family, "4, 6 or 46; else what the profile dials")
        ->check(CLI::IsMember({"4", "6", "46"}))
        ->type_name("");
    verb->add_option("--wait", asked->seconds, "Wait so long until it is so; status 1 when it is not")
        ->check(CLI::Range(0.0, kMostSeconds))
        ->type_name("SECONDS");
    verb->final_callback([=] { *chosen = [=] { return work(*asked); }; });
}

}  // namespace

void add_connect(CLI::App& app, Work* chosen)
{
    add(app, chosen, true);
    add(app, chosen, false);
}

}  // namespace ctl
