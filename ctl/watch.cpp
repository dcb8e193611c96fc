// Indications as they come, a line each.
#include <zr_nexa_client_api.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "document.h"
#include "exit_status.h"
#include "explain.h"
#include "indications.h"
#include "json.h"
#include "module.h"
#include "session.h"
#include "tell.h"
#include "verbs.h"
#include "wan_profile.h"

namespace ctl {
namespace {

const Words kEvents = {{ZR_NEXA_IND_BRING_UP, "bring-up"},
                       {ZR_NEXA_IND_TEAR_DOWN, "tear-down"},
                       {ZR_NEXA_IND_STATUS, "status"},
                       {ZR_NEXA_IND_STATUS_REPORT, "report"}};

struct Asked {
    bool json = false;
    std::string until;
    double seconds = -1;   // below 0: for ever
    uint32_t profile = 0;  // 0: all
};

std::string utc(std::chrono::system_clock::time_point time)
{
    const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const std::time_t seconds = since / 1000;
    std::tm parts = {};
    gmtime_r(&seconds, &parts);
    char text[40];
    const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(since % 1000));
    return text;
}

bool is_zero(const uint8_t (&bytes)[16])
{
    return std::all_of(std::begin(bytes), std::end(bytes), [](uint8_t byte) { return byte == 0; });
}

// What an indication says: names and values, in the order in which they are told.
struct Part {
    const char* name;
    std::string text;
    bool is_number = false;
};

std::vector<Part> parts_of(const Indication& indication)
{
    std::vector<Part> parts = {{"event", word_of(kEvents, indication.event)}};
    if (parts[0].text.empty()) parts[0].text = std::to_string(indication.event);
    if (indication.event == ZR_NEXA_IND_STATUS_REPORT) {
        parts.push_back({"kind", std::to_string(indication.kind), true});
        return parts;
    }
    const zr_nexa_ind_call_event_t& call = indication.call;
    if (call.wwan_handle != ZR_NEXA_IND_NO_PROFILE) parts.push_back({"profile", profile_name(call.wwan_handle)});
    const std::string state = word_of(kStates, call.status);
    parts.push_back({"state", state.empty() ? std::to_string(call.status) : state});
    if (call.iface_name[0] != '\0') parts.push_back({"interface", escaped(call.iface_name, sizeof call.iface_name)});
    const std::pair<const char*, uint32_t> v4[] = {
        {"address", call.v4_addr}, {"dns", call.v4_pri_dns_addr}, {"second_dns", call.v4_sec_dns_addr}};
    for (const auto& [name, address] : v4)
        if (address != 0) parts.push_back({name, network_ipv4_text(address)});
    if (!is_zero(call.v6_addr)) parts.push_back({"v6_address", ipv6_text(call.v6_addr)});
    if (!is_zero(call.v6_pri_dns_addr)) parts.push_back({"v6_dns", ipv6_text(call.v6_pri_dns_addr)});
    if (!is_zero(call.v6_sec_dns_addr)) parts.push_back({"second_v6_dns", ipv6_text(call.v6_sec_dns_addr)});
    if (call.call_end_type != 0) parts.push_back({"end_type", std::to_string(call.call_end_type), true});
    if (call.call_end_code != 0) parts.push_back({"end_code", std::to_string(call.call_end_code), true});
    return parts;
}

// Of a line for people, what is no name of its own bears its name.
std::string line_of(const Indication& indication, bool json)
{
    const std::string time = utc(indication.time);
    if (json) {
        JsonMembers members = {{"time", quoted(time)}};
        for (const Part& part : parts_of(indication))
            members.emplace_back(part.name, part.is_number ? part.text : quoted(part.text));
        return json_object(members);
    }
    std::string line = time;
    for (const Part& part : parts_of(indication)) {
        const std::string name = part.name;
        const bool is_plain = name == "event" || name == "profile" || name == "state" || name == "interface";
        line += (is_plain ? " " : " " + name + " ") + part.text;
    }
    return line + "\n";
}

// Whether a profile has this state now.
Result ask(uint32_t state, uint32_t profile, bool* reached)
{
    std::vector<uint32_t> handles = {profile};
    if (profile == 0) {
        zr_nexa_wan_wwanconfig_list_v2_t list = {};
        Result result = CALL(zr_nexa_wan_wwanconfig_get_v2, &list);
        if (!result.good()) return result;
        handles.assign(list.wwan_handle, list.wwan_handle + list.wwanconfig_num);
    }
    for (const uint32_t handle : handles) {
        uint32_t v4 = kNoStatus;
        uint32_t v6 = kNoStatus;
        Result result = CALL(zr_nexa_wan_status_get_v1, handle, &v4, &v6);
        if (!result.good()) return result;
        *reached = *reached || v4 == state || v6 == state;
    }
    return {};
}

int no_service(const std::string& why, bool json)
{
    tell_problem(why);
    if (json) std::fputs(json_ending(kNoService).c_str(), stdout);
    return kNoService;
}

int watch(const Asked& asked)
{
    Indications indications;
    Indications::Deadline deadline;
    if (asked.seconds >= 0)
        deadline = std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                                          std::chrono::duration<double>(asked.seconds));
    const Session session(note_indication);
    if (!session.problem().empty()) return no_service(session.problem(), asked.json);
    const uint32_t state = asked.until.empty() ? kNoStatus : code_of(kStates, asked.until);
    if (!asked.until.empty()) {
        bool reached = false;
        const Result result = ask(state, asked.profile, &reached);
        if (!result.good()) return no_service(in_words(result), asked.json);
        if (reached) return kDone;
    }
    Indication indication;
    while (indications.next(deadline, &indication) == Waited::kIndication) {
        const bool is_call = indication.event != ZR_NEXA_IND_STATUS_REPORT;
        if (asked.profile != 0 && (!is_call || indication.call.wwan_handle != asked.profile)) continue;
        std::fputs(line_of(indication, asked.json).c_str(), stdout);
        std::fflush(stdout);
        if (is_call && indication.call.status == state) return kDone;
    }
    return asked.until.empty() ? kDone : kDiffers;
}

}  // namespace

void add_watch(CLI::App& app, Work* chosen)
{
    CLI::App* const verb = app.add_subcommand("watch", "Tell what happens to the profiles' connections, a line each");
    const auto asked = std::make_shared<Asked>();
    verb->add_flag("--json", asked->json, "A JSON object a line");
    verb->add_option("--until", asked->until,
                     "End with status 0 as soon as a profile has this state: v4-connected, v6-disconnected, ...")
        ->check(CLI::IsMember(all_words(kStates)))
        ->type_name("STATE");
    verb->add_option("--for", asked->seconds, "End after so long; status 1 with --until")
        ->check(CLI::Range(0.0, kMostSeconds))
        ->type_name("SECONDS");
    add_profile(verb, "--profile", &asked->profile, "Only of this one")->type_name("PROFILE");
    verb->final_callback([=] { *chosen = [=] { return watch(*asked); }; });
}

}  // namespace ctl
