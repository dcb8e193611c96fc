#include "provocations.h"

#include <string.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "addresses.h"
#include "alg.h"
#include "indications.h"
#include "lan_services.h"
#include "network.h"
#include "qcmap_indications.h"
#include "qcmap_records.h"
#include "service.h"
#include "wan_call.h"

namespace mobile_ap {
namespace {

constexpr int64_t kMostBytes = int64_t{1} << 50;

// What the options of a subcommand are read into; the subcommand's callback owns it.
struct CallWords {
    uint32_t profile = 0;
    int family = 0;  // 0: both
    std::string request = "connect";
    uint32_t times = 1;
    EndReason reason;
    int64_t delay_ms = 0;
    int64_t down = 0;
    int64_t up = 0;
};

std::vector<Call> calls_of(const CallWords& words)
{
    std::vector<Call> calls;
    for (const CallFamily* family : {&kV4, &kV6}) {
        if (words.family == 0 || words.family == family->number) calls.push_back({words.profile, *family});
    }
    return calls;
}

std::string seconds_text(int64_t milliseconds)
{
    const std::string whole = std::to_string(milliseconds / 1000);
    const std::string rest = std::to_string(1000 + milliseconds % 1000).substr(1);
    return (rest == "000" ? whole : whole + "." + rest) + " s";
}

std::string call_text(const Call& call)
{
    return "profile " + std::to_string(call.profile) + ": IPv" + std::to_string(call.family.number) + " call";
}

std::string drop_calls(Store& db, int64_t at, const CallWords& words)
{
    db.check_profile(words.profile);
    std::string told;
    for (const Call& call : calls_of(words)) {
        if (!drop(db, at, call, words.reason)) continue;
        told += call_text(call) + " ended";
        if (is_awaited(db, call)) told += "; dialled again in " + seconds_text(kRedialMs);
        told += "\n";
    }
    if (told.empty()) refuse(QMI_ERR_NO_EFFECT_V01);
    return told;
}

std::string refuse_next_calls(Store& db, const CallWords& words)
{
    db.check_profile(words.profile);
    const CallRequest request = words.request == "connect" ? CallRequest::kConnect : CallRequest::kDisconnect;
    for (const Call& call : calls_of(words))
        refuse_calls(db, call, request, words.times, words.reason);
    return "";
}

std::string slow_calls(Store& db, const CallWords& words)
{
    db.check_profile(words.profile);
    set_call_delay(db, words.profile, words.delay_ms);
    return "";
}

// Counted for IPv4 where that is up, without an option.
std::string move_bytes(Store& db, const CallWords& words)
{
    db.check_profile(words.profile);
    for (const Call& call : calls_of(words)) {
        if (call_status(db, call) != call.family.connected) continue;
        count_traffic(db, call, words.down, words.up);
        return "";
    }
    refuse(QMI_ERR_NO_EFFECT_V01);
}

std::string roam(Store& db, int64_t at, bool roams)
{
    set_roaming(db, roams);
    follow_roaming(db, at);
    return "";
}

std::string away_text(int64_t milliseconds)
{
    return milliseconds == 0 ? "" : "the service is back in " + seconds_text(milliseconds) + "\n";
}

std::string report(Store& db, uint32_t kind)
{
    qcmap_msgr_status_report_ind_msg_v01 record = {};
    record.kind = kind;
    for (size_t i = 0; i < sizeof record.report; ++i)
        record.report[i] = static_cast<uint8_t>(i % 251);
    indicate(db, QCMAP_MSGR_STATUS_REPORT_IND_V01, record);
    return "";
}

EndReason end_reason(const std::string& text)
{
    const size_t colon = text.find(':');
    return {static_cast<uint32_t>(std::stoul(text.substr(0, colon))),
            static_cast<uint32_t>(std::stoul(text.substr(colon + 1)))};
}

std::string check_reason(std::string& text)
{
    const size_t colon = text.find(':');
    const auto is_number = [](const std::string& part) {
        return !part.empty() && part.size() <= 9 && part.find_first_not_of("0123456789") == std::string::npos;
    };
    const bool good =
        colon != std::string::npos && is_number(text.substr(0, colon)) && is_number(text.substr(colon + 1));
    return good ? "" : "two numbers, as in 6:36, not " + text;
}

// A transformation, into the form in which it stands in the state.
std::string lower_mac(std::string& text)
{
    uint8_t bytes[6];
    mac_bytes(text, bytes);
    const std::string known = mac_text(bytes);
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text == known ? "" : "six pairs of hexadecimal digits with colons, not " + text;
}

std::string check_host_name(std::string& text)
{
    return text.empty() || text.size() > sizeof(qcmap_connected_device::host_name) ? "1 to 100 bytes" : "";
}

std::string check_ipv6(std::string& text)
{
    uint8_t bytes[16];
    ipv6_bytes(text, bytes);
    const std::vector<uint8_t> none(sizeof bytes, 0);
    return memcmp(bytes, none.data(), sizeof bytes) == 0 && text != "::" ? "an IPv6 address, not " + text : "";
}

using CallWork = std::function<std::string(Store&, int64_t, const CallWords&)>;

// A subcommand about the calls of a profile. Its options are the caller's to add.
CLI::App* add_call_command(CLI::App* parent, const std::string& name, const std::string& about,
                           const std::shared_ptr<CallWords>& words, Provocation* chosen, const CallWork& work)
{
    CLI::App* command = parent->add_subcommand(name, about);
    command->add_option("profile", words->profile, "Profile handle")
        ->required()
        ->check(CLI::Range(1, QCMAP_MAX_WWAN_PROFILES));
    command->callback([words, chosen, work] {
        chosen->carry_out = [words, work](Store& db, int64_t at) { return work(db, at, *words); };
    });
    return command;
}

void add_family(CLI::App* command, const std::shared_ptr<CallWords>& words)
{
    command->add_option("--family", words->family, "Only the call of this IP family: 4 or 6")
        ->check(CLI::IsMember({4, 6}));
}

void add_reason(CLI::App* command, const std::shared_ptr<CallWords>& words)
{
    command
        ->add_option_function<std::string>(
            "--reason", [words](const std::string& text) { words->reason = end_reason(text); },
            "Call-end type and code that the indications carry; 0:0 without it")
        ->type_name("TYPE:CODE")
        ->check(CLI::Validator(check_reason, ""));
}

void add_call(CLI::App& app, Provocation* chosen)
{
    CLI::App* call = app.add_subcommand("call", "What the network does to the calls of a profile");
    call->require_subcommand(1);

    auto dropped = std::make_shared<CallWords>();
    CLI::App* drop = add_call_command(
        call, "drop", "End them; with reconnect on they are dialled again after " + seconds_text(kRedialMs), dropped,
        chosen, drop_calls);
    add_family(drop, dropped);
    add_reason(drop, dropped);

    auto refused = std::make_shared<CallWords>();
    CLI::App* refuse =
        add_call_command(call, "refuse", "Let the next requests fail", refused, chosen,
                         [](Store& db, int64_t, const CallWords& words) { return refuse_next_calls(db, words); });
    refuse->add_option("request", refused->request, "connect or disconnect; connect without it")
        ->check(CLI::IsMember({"connect", "disconnect"}));
    refuse->add_option("--times", refused->times, "How many; 1 without it, 0 takes it back")
        ->check(CLI::Range(0, 1000));
    add_family(refuse, refused);
    add_reason(refuse, refused);

    auto slow = std::make_shared<CallWords>();
    add_call_command(call, "slow", "Let connecting and disconnecting take time, from now on", slow, chosen,
                     [](Store& db, int64_t, const CallWords& words) { return slow_calls(db, words); })
        ->add_option("ms", slow->delay_ms, "Milliseconds; 0: at once, as at first")
        ->required()
        ->check(CLI::Range(0, 600000));
}

void add_traffic(CLI::App& app, Provocation* chosen)
{
    auto words = std::make_shared<CallWords>();
    CLI::App* traffic =
        add_call_command(&app, "traffic", "Count bytes that a profile's call moves", words, chosen,
                         [](Store& db, int64_t, const CallWords& moved) { return move_bytes(db, moved); });
    traffic->add_option("--down", words->down, "Bytes received")->check(CLI::Range(int64_t{0}, kMostBytes));
    traffic->add_option("--up", words->up, "Bytes sent")->check(CLI::Range(int64_t{0}, kMostBytes));
    add_family(traffic, words);
}

void add_service(CLI::App& app, Provocation* chosen)
{
    CLI::App* service = app.add_subcommand("service", "The mobile-AP service itself");
    service->require_subcommand(1);
    auto seconds = std::make_shared<int64_t>(2);
    const auto in_range = CLI::Range(0, 86400);

    CLI::App* restarts = service->add_subcommand(
        "restart", "End all calls and be away for a while; then profiles with autoconnect dial");
    restarts->add_option("seconds", *seconds, "How long; 2 without it")->check(in_range);
    restarts->callback([seconds, chosen] {
        chosen->carry_out = [seconds](Store& db, int64_t at) {
            restart(db, at, *seconds * 1000);
            return away_text(*seconds * 1000);
        };
    });

    CLI::App* away = service->add_subcommand(
        "away", "Be away for a while; calls go on. Methods of open sessions answer false with 3 meanwhile");
    away->add_option("seconds", *seconds, "How long; 0: be back at once")->required()->check(in_range);
    away->callback([seconds, chosen] {
        chosen->carry_out = [seconds](Store& db, int64_t at) {
            leave(db, at, *seconds * 1000);
            return away_text(*seconds * 1000);
        };
    });
}

void add_roam(CLI::App& app, Provocation* chosen)
{
    auto word = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand(
        "roam", "Whether the module roams: calls of profiles without roaming end, and come back when it is off");
    command->add_option("state", *word, "on or off")->required()->check(CLI::IsMember({"on", "off"}));
    command->callback(
        [word, chosen] { chosen->carry_out = [word](Store& db, int64_t at) { return roam(db, at, *word == "on"); }; });
}

void add_device(CLI::App& app, Provocation* chosen)
{
    CLI::App* device = app.add_subcommand("device", "Devices on the LAN");
    device->require_subcommand(1);

    auto words = std::make_shared<LanDevice>();
    CLI::App* join = device->add_subcommand("join", "Join the LAN; a device with this MAC address is replaced");
    join->add_option("mac", words->mac, "MAC address")->required()->transform(CLI::Validator(lower_mac, ""));
    join->add_option("ipv4", words->ipv4, "IPv4 address")->required()->check(CLI::ValidIPV4);
    join->add_option("name", words->host_name, "Host name, 1 to 100 bytes")
        ->required()
        ->check(CLI::Validator(check_host_name, ""));
    join->add_option("--ipv6", words->ipv6, "IPv6 addresses, at most 6")
        ->expected(1, QCMAP_MAX_DEVICE_IPV6)
        ->check(CLI::Validator(check_ipv6, ""));
    join->add_option("--type", words->type, "3 USB, 4 Ethernet, 8 WLAN, 16 second Ethernet; 4 without it")
        ->check(CLI::IsMember({3, 4, 8, 16}));
    join->add_option("--rx", words->rx_bytes, "Bytes received from it")->check(CLI::Range(int64_t{0}, kMostBytes));
    join->add_option("--tx", words->tx_bytes, "Bytes sent to it")->check(CLI::Range(int64_t{0}, kMostBytes));
    join->callback([words, chosen] {
        chosen->carry_out = [words](Store& db, int64_t) {
            join_lan(db, *words);
            return std::string();
        };
    });

    auto mac = std::make_shared<std::string>();
    CLI::App* leave = device->add_subcommand("leave", "Leave the LAN");
    CLI::Option_group* which = leave->add_option_group("which");
    which->add_option("mac", *mac, "The one with this MAC address")->transform(CLI::Validator(lower_mac, ""));
    which->add_flag("--all", "All of them");
    which->require_option(1);
    leave->callback([mac, chosen] {
        chosen->carry_out = [mac](Store& db, int64_t) {
            leave_lan(db, *mac);
            return std::string();
        };
    });
}

void add_sip(CLI::App& app, Provocation* chosen)
{
    struct SipWords {
        int bridge = 0;
        uint32_t family = 4;
        std::string address;
        std::string fqdn;
    };
    auto words = std::make_shared<SipWords>();
    CLI::App* sip = app.add_subcommand("sip", "SIP servers that the network assigns to a LAN bridge");
    sip->require_subcommand(1);

    CLI::App* add = sip->add_subcommand("add", "Assign one more");
    add->add_option("--bridge", words->bridge, "LAN id; 0 without it");
    add->add_option("--family", words->family, "4 or 6; 4 without it")->check(CLI::IsMember({4, 6}));
    CLI::Option_group* name = add->add_option_group("server", "How it is named");
    name->add_option("--address", words->address, "By its address");
    name->add_option("--fqdn", words->fqdn, "By its name");
    name->require_option(1);
    add->callback([words, chosen] {
        chosen->carry_out = [words](Store& db, int64_t) {
            add_network_sip_server(db, words->bridge, words->family, words->address, words->fqdn);
            return std::string();
        };
    });

    CLI::App* clear = sip->add_subcommand("clear", "Take all servers of a bridge away");
    clear->add_option("--bridge", words->bridge, "LAN id; 0 without it");
    clear->callback([words, chosen] {
        chosen->carry_out = [words](Store& db, int64_t) {
            clear_network_sip_servers(db, words->bridge);
            return std::string();
        };
    });
}

void add_report(CLI::App& app, Provocation* chosen)
{
    auto kind = std::make_shared<uint32_t>(0);
    CLI::App* command = app.add_subcommand("report", "Send a large status report to every open session");
    command->add_option("kind", *kind, "First word of the report; callers are told of 0 and 1")->required();
    command->callback([kind, chosen] { chosen->carry_out = [kind](Store& db, int64_t) { return report(db, *kind); }; });
}

}  // namespace

void add_provocations(CLI::App& app, Provocation* chosen)
{
    add_call(app, chosen);
    add_service(app, chosen);
    add_roam(app, chosen);
    add_traffic(app, chosen);
    add_device(app, chosen);
    add_sip(app, chosen);
    add_report(app, chosen);
}

void check_words(const std::vector<std::string>& words)
{
    if (std::any_of(words.begin(), words.end(), [](const std::string& word) { return word.empty(); }))
        throw ProvocationError{"an empty word makes no sense"};
}

Provocation parse_provocation(const std::vector<std::string>& words)
{
    check_words(words);
    Provocation chosen;
    CLI::App app;
    app.require_subcommand(1);
    app.set_help_flag();
    add_provocations(app, &chosen);
    std::vector<std::string> backwards(words.rbegin(), words.rend());  // as the parser takes them
    try {
        app.parse(backwards);
    } catch (const CLI::Error& error) {
        throw ProvocationError{parse_problem(app, error)};
    }
    return chosen;
}

// The parser tells of a subcommand that is missing before it tells of the word in its place.
std::string parse_problem(const CLI::App& app, const CLI::Error& error)
{
    const std::vector<std::string> unknown = app.remaining(true);
    if (dynamic_cast<const CLI::RequiredError*>(&error) == nullptr || unknown.empty()) return error.what();
    return "\"" + unknown.front() + "\" is no word that is known here";
}

std::string refusal_text(qmi_error_type_v01 word)
{
    switch (static_cast<int>(word)) {
        case QMI_ERR_INVALID_HANDLE_V01:
            return "no such profile";
        case QMI_ERR_INVALID_ID_V01:
            return "no such LAN bridge";
        case QMI_ERR_NO_ENTRY_V01:
            return "no such device";
        case QMI_ERR_NO_EFFECT_V01:
            return "no such call";
        case QMI_ERR_INVALID_ARG_V01:
            return "a value is out of range";
        case QMI_ERR_LIMIT_V01:
            return "the list is full";
        default:
            return "refused with error " + std::to_string(static_cast<int>(word));
    }
}

}  // namespace mobile_ap
