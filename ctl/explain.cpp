// Result codes in words, and the verb that tells them.
#include "explain.h"

#include <zr_nexa/base.h>
#include <zr_nexa/lan_passthrough.h>

#include <CLI/CLI.hpp>
#include <cctype>
#include <cstdio>
#include <string_view>

#include "exit_status.h"
#include "functions.h"
#include "tell.h"
#include "verbs.h"

namespace ctl {
namespace {

constexpr uint32_t kMostSteps = 6;
constexpr uint32_t kWordsNotAccepted = 65535;

// The service's error words; a module may answer others.
const Words kServiceWords = {
    {1, "a malformed message"},
    {2, "there is no memory, or no room left for the state"},
    {3,
     "the service is away; or it is not ready, or its state failed or stayed busy for 10 seconds, and standard error "
     "says why"},
    {4, "SIGINT or SIGTERM came; nothing was changed"},
    {9, "there is no such profile (any more)"},
    {14, "there is no such LAN bridge (any more)"},
    {25, "the entry to be read, changed or deleted is not there: mapping, rule, filter, reservation, VLAN"},
    {26, "nothing to do: connected or disconnected already, or soon; no such tunnel; deleting a profile with a call"},
    {43, "VPN passthrough: the profile is not connected; the flag is kept all the same"},
    {48, "a value is out of range, or does not go with what is there: a profile in use cannot be deleted"},
    {50, "with success: the VLAN list is empty; counts as none"},
    {62, "the table is full"},
    {118, "it is there already; with success when a VLAN is added again in the same form"}};

// A small code of an area's own: of the functions whose names begin so.
struct SmallCode {
    const char* area;
    const char* functions;
    uint32_t code;
    const char* words;
};
constexpr SmallCode kSmallCodes[] = {
    {"VLANs", "lan_vlan_add", 7, "interface type outside 1..4"},
    {"VLANs", "lan_vlan_del", 7, "interface type outside 1..4"},
    {"IP passthrough, the device", "lan_ippt_get", 1, "the service reports neither enabled nor disabled"},
    {"IP passthrough, the device", "lan_ippt_set", 3, "WLAN mode on a LAN other than 0"},
    {"IP passthrough, the device", "lan_ippt_set", 5, "mode above 4"},
    {"IP passthrough, the device", "lan_ippt_set", 8, "adaptive value above 10"},
    {"IP passthrough, the device", "lan_ippt_set", 9, "not a MAC address"},
    {"IP passthrough, NAT", "lan_ipptnat_get", 5, "the service reports a mode that has no number here"},
    {"IP passthrough, NAT", "lan_ipptnat_get", 8, "the service does not report this feature"},
    {"IP passthrough, NAT", "lan_ipptnatpdn_set", 0x2101, "the value read back is not the one that was set"},
    {"IP passthrough, gateway filters", "lan_ipptgwfilter_add", 1, "ports out of range or reversed"},
    {"IP passthrough, gateway filters", "lan_ipptgwfilter_add", 2, "the list is full, or has no filter of that number"},
    {"IP passthrough, gateway filters", "lan_ipptgwfilter_del", 2, "the list is full, or has no filter of that number"},
    {"IP passthrough, gateway filters", "lan_ipptgwfilter_add", 12, "protocol outside 1..3"},
    {"LAN services, L2TP", "lan_l2tp_set", 3, "IP family"},
    {"LAN services, L2TP", "lan_l2tp_set", 5, "a tunnel id 0"},
    {"LAN services, L2TP", "lan_l2tp_set", 7, "an address all zero"},
    {"LAN services, L2TP", "lan_l2tp_set", 8, "a UDP port 0"},
    {"LAN services, L2TP", "lan_l2tp_set", 9, "sessions"},
    {"LAN services, L2TP", "lan_l2tp_set", 10, "MTU or MSS"},
    {"LAN services, L2TP", "lan_unmanaged_l2tp_state_set", 10, "MTU or MSS"},
    {"WAN", "wan_radvd_restart", 3, "restarting the router-advertisement daemon is not available"},
    {"WAN", "wan_wwanconfig_add", 11, "technology preference outside 0..2"},
    {"WAN", "wan_wwanconfig_set", 11, "technology preference outside 0..2"},
    {"NAT", "nat_ipv4dmz_set", 10, "DMZ for address 0"},
    {"NAT", "nat_ipv4portmapping_add", 12, "no such protocol code"},
    {"NAT", "nat_ipv4portmapping_del", 12, "no such protocol code"},
    {"NAT", "nat_routingbh_get", 0x2000, "the service reports a routing-behind switch above 1"},
    {"ALG and SIP servers", "alg_", 3, "ALG type, kind of server or IP family not served"},
    {"ALG and SIP servers", "alg_enable_type_set", 48, "ALG switch above 1"},
    {"UPnP", "media_upnp_pinhole_state_set", 14, "pinholes: the firewall is off"},
    {"the command", "", kWordsNotAccepted, "words not accepted; \"Input Parameter Invalid\" stands in front of it"}};

// What the functions whose names begin so do in their steps. The first row that fits counts.
constexpr const char* kProfile = "selecting the profile";
constexpr const char* kBridge = "selecting the LAN";
constexpr const char* kOn = "switching it on";
constexpr const char* kOff = "switching it off";
constexpr const char* kReading = "reading";
constexpr const char* kSetting = "setting";
struct Steps {
    const char* functions;
    const char* steps[kMostSteps];
};
constexpr Steps kSteps[] = {
    {"client_init", {"opening the session, and closing it half open", "enabling the service"}},
    {"client_uninit", {"closing the session, which is closed all the same"}},
    {"general_restore", {"restoring"}},
    {"general_sfe_set", {kSetting}},
    {"general_sfe_get", {kReading}},
    {"lan_gwurl_set", {kSetting}},
    {"lan_gwurl_get", {kReading}},
    {"lan_dhcp_srvctl_set",
     {"setting the default action, as there is no such LAN", "reading the LAN's configuration",
      "setting the LAN's configuration"}},
    {"lan_dhcp_srvctl_get", {"reading the default action, as there is no such LAN", "reading the LAN's configuration"}},
    {"lan_dhcp_default_action_set", {kSetting}},
    {"lan_dhcp_default_action_get", {kReading}},
    {"lan_dhcp_set",
     {kBridge, "reading the LAN's configuration", "setting the LAN's configuration",
      "activating the LAN, whose configuration is stored"}},
    {"lan_dhcp_get", {kBridge, "reading the LAN's configuration"}},
    {"lan_dhcp_reserv_record_add", {"adding the reservation"}},
    {"lan_dhcp_reserv_record_get", {"reading the reservations"}},
    {"lan_dhcp_reserv_record_edit", {"changing the reservation"}},
    {"lan_dhcp_reserv_record_del", {"deleting the reservation"}},
    {"lan_ipv4v6_set",
     {"switching IPv4 on", "switching IPv4 off", "switching IPv6 on; IPv4 is as asked",
      "switching IPv6 off; IPv4 is as asked"}},
    {"lan_ipv4v6_get", {nullptr, "reading IPv4", "reading IPv6"}},
    {"lan_ipptnat_set", {kSetting}},
    {"lan_ipptnat_get", {kReading}},
    {"lan_ipptnatpdn_set", {kBridge, kSetting, "reading it back, which was taken"}},
    {"lan_ipptnatpdn_get", {kBridge, kReading}},
    {"lan_ippt_set",
     {kBridge, "setting the adaptive passthrough", "ending the adaptive passthrough", "setting the device by its MAC",
      "setting the device by its name", "disabling passthrough, whose adaptive part has ended"}},
    {"lan_ippt_get", {kBridge, kReading}},
    {"lan_ipptgwfilter_add", {kBridge, "reading the filters", "setting the longer list"}},
    {"lan_ipptgwfilter_get", {kBridge, "reading the filters"}},
    {"lan_ipptgwfilter_del", {kBridge, "reading the filters", "setting the shorter list"}},
    {"lan_swpathfilter_add", {"adding the address"}},
    {"lan_swpathfilter_del", {"deleting the address"}},
    {"lan_swpathfilter_get", {"reading the addresses"}},
    {"lan_packetstats_set", {kOn, kOff}},
    {"lan_packetstats_get", {kReading}},
    {"lan_packetstats_reset", {"resetting the counts"}},
    {"lan_connected_device_info_get", {"reading the devices"}},
    {"lan_unmanaged_l2tp_state_set", {kBridge, kSetting}},
    {"lan_l2tp_set", {kBridge, "setting the tunnel"}},
    {"lan_l2tp_get", {kBridge, kReading}},
    {"lan_l2tp_delete", {kBridge, "deleting the tunnel"}},
    {"lan_vlan_add", {"adding the VLAN", "adding the VLAN, which is there"}},
    {"lan_vlan_get", {"reading the VLANs", "reading the VLANs, which were given"}},
    {"lan_vlan_del", {"deleting the VLAN"}},
    {"wan_wwanconfig_add_", {"adding the profile"}},
    {"wan_wwanconfig_set_v1", {kProfile, "setting the technology preference", "setting the APN index"}},
    {"wan_wwanconfig_set_v2",
     {kProfile, "setting the technology preference", "setting the IP family", "setting the APN name",
      "setting the APN index", "setting the bring-up mode"}},
    {"wan_wwanconfig_default_set", {kProfile, "making it the default one"}},
    {"wan_wwanconfig_get_", {"reading the profiles"}},
    {"wan_wwanconfig_del", {kProfile, "deleting the profile"}},
    {"wan_apwwan_set", {kSetting}},
    {"wan_apwwan_get", {kReading}},
    {"wan_status_get", {kProfile, "reading the states"}},
    {"wan_connect_v", {kProfile, "connecting", "disconnecting"}},
    {"wan_reconnect_set", {kProfile, kOn, kOff}},
    {"wan_autoconnect_set", {kProfile, kOn, kOff}},
    {"wan_roaming_set", {kProfile, kOn, kOff}},
    {"wan_reconnect_get", {kProfile, kReading}},
    {"wan_autoconnect_get", {kProfile, kReading}},
    {"wan_roaming_get", {kProfile, kReading}},
    {"wan_info_get", {"reading the connections"}},
    {"wan_statistics_get", {kProfile, "reading the counts"}},
    {"wan_statistics_reset", {kProfile, "resetting the counts"}},
    {"wan_mpdnmapping_get", {"reading the mappings"}},
    {"wan_mpdnmapping_add", {kProfile, kBridge, "adding the mapping"}},
    {"wan_mpdnmapping_del", {kProfile, kBridge, "deleting the mapping"}},
    {"nat_type_set", {kProfile, "setting the type"}},
    {"nat_type_get", {kProfile, "reading the type"}},
    {"nat_ipv4dmz_set", {kProfile, "setting the host", "ending the DMZ"}},
    {"nat_ipv4dmz_get", {kProfile, kReading}},
    {"nat_ipv4portmapping_add", {kProfile, "adding the rule"}},
    {"nat_ipv4portmapping_del", {kProfile, "deleting the rule"}},
    {"nat_ipv4portmapping_get", {kProfile, "reading the rules"}},
    {"nat_routingbh_set", {kSetting}},
    {"nat_routingbh_get", {kReading}},
    {"nat_pptpvpnpassthrough_ipv4_set", {kProfile, kSetting}},
    {"nat_pptpvpnpassthrough_ipv6_set", {kProfile, kSetting}},
    {"nat_ipsecvpnpassthrough_ipv4_set", {kProfile, kSetting}},
    {"nat_ipsecvpnpassthrough_ipv6_set", {kProfile, kSetting}},
    {"nat_l2tpvpnpassthrough_ipv4_set", {kProfile, kSetting}},
    {"nat_l2tpvpnpassthrough_ipv6_set", {kProfile, kSetting}},
    {"nat_pptpvpn", {kProfile, kReading}},
    {"nat_ipsecvpn", {kProfile, kReading}},
    {"nat_l2tpvpn", {kProfile, kReading}},
    {"alg_enable_type_set", {kOn, kOff}},
    {"alg_sip_server_info_set", {kBridge, "setting the server"}},
    {"alg_sip_server_info_get", {kBridge, "reading the IPv4 servers", "reading the IPv6 servers"}},
    {"firewall_entry_add", {kProfile, "adding the entry"}},
    {"firewall_entry_get", {kProfile, "reading the handles", "reading an entry"}},
    {"firewall_entry_del", {kProfile, "deleting the entry"}},
    {"firewall_config_set", {kProfile, kSetting}},
    {"firewall_config_get", {kProfile, kReading}},
    {"firewall_hwfiltering_state_set", {nullptr, kSetting}},
    {"firewall_hwfiltering_state_get", {nullptr, kReading}},
    {"media_upnp_set", {kOn, kOff}},
    {"media_upnp_get", {kReading}},
    {"media_upnp_notify_interval_set", {kSetting}},
    {"media_upnp_notify_interval_get", {kReading}},
    {"media_upnp_pinhole_state_set", {kProfile, "reading the firewall's switch", kSetting}},
    {"media_upnp_pinhole_state_get", {kProfile, kReading}},
};

std::string_view without_prefix(std::string_view function)
{
    constexpr std::string_view kPrefix = "zr_nexa_";
    return function.substr(0, kPrefix.size()) == kPrefix ? function.substr(kPrefix.size()) : function;
}

bool begins(std::string_view function, std::string_view start)
{
    return without_prefix(function).substr(0, start.size()) == start;
}

const char* const* steps_of(const std::string& function)
{
    for (const Steps& row : kSteps)
        if (begins(function, row.functions)) return row.steps;
    return nullptr;
}

std::string hexadecimal(uint32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(code));
    return text;
}

std::string answered(uint32_t word)
{
    const std::string meaning = service_word(word);
    return std::to_string(word) + (meaning.empty() ? "" : ", " + meaning);
}

// Below 0x1000: the interface's own, or the service's word of a request that succeeded.
std::string small_in_words(uint32_t code, const std::string& function)
{
    switch (code) {
        case ZR_NEXA_OK:
            return "done";
        case ZR_NEXA_ERR_ARGUMENT:
            return "a value outside its set";
        case ZR_NEXA_ERR_RANGE:
            return "LAN or VLAN id out of range";
        case ZR_NEXA_ERR_NO_SESSION:
            return begins(function, "client_init") ? "a session is open already" : "no session";
        default:
            break;
    }
    if (function.empty()) return "a small code, which each area has of its own";
    return "done, and the service said " + answered(code);
}

std::string large_in_words(uint32_t code, const std::string& function)
{
    const uint32_t step = code / ZR_NEXA_STEP_UNIT;
    const uint32_t word = code % ZR_NEXA_STEP_UNIT;
    const bool is_step =
        step <= kMostSteps && (steps_of(function) == nullptr || steps_of(function)[step - 1] != nullptr);
    if (!is_step) return "the service answered an error word that hides the step";
    const std::string what = step_of(function, step);
    return "step " + std::to_string(step) + (what.empty() ? "" : ", " + what) +
           (word == 0 ? ": the service refused without an error word" : ": the service answered " + answered(word));
}

// "0x2009" or "8201".
bool number_of(const std::string& text, uint32_t* code)
{
    if (text.empty() || std::isdigit(static_cast<unsigned char>(text.front())) == 0) return false;
    size_t end = 0;
    unsigned long long number = 0;
    try {
        number = std::stoull(text, &end, text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0 ? 16 : 10);
    } catch (const std::exception&) {
        return false;
    }
    *code = static_cast<uint32_t>(number);
    return end == text.size() && number == *code;
}

// The public function of this name, also without what all names begin and end with; empty: there is none.
std::string function_of(const std::string& name)
{
    for (const FunctionUse& each : functions()) {
        std::string full = each.function;
        for (const char* end : {"", "_v1", "_v2"})
            if (full == name + end || full == "zr_nexa_" + name + end) return full;
    }
    return "";
}

int explain(const std::string& code_text, const std::string& function_text)
{
    uint32_t code = 0;
    if (!number_of(code_text, &code)) {
        tell("\"" + code_text + "\" is no result code: 0x2009, or 8201");
        return kWrong;
    }
    const std::string function = function_text.empty() ? "" : function_of(function_text);
    if (!function_text.empty() && function.empty()) {
        tell("the client interface has no function \"" + function_text + "\"");
        return kWrong;
    }
    std::printf("%s: %s\n", hexadecimal(code).c_str(), in_words(code, function).c_str());
    if (function.empty()) {
        for (const auto& [area, meaning] : area_meanings(code))
            std::printf("  %s: %s\n", area.c_str(), meaning.c_str());
        if (code != 0 && code < ZR_NEXA_STEP_UNIT && !service_word(code).empty())
            std::printf("  done, and the service's word: %s\n", service_word(code).c_str());
    }
    return kDone;
}

}  // namespace

std::string service_word(uint32_t word)
{
    return word_of(kServiceWords, word);
}

std::vector<std::pair<std::string, std::string>> area_meanings(uint32_t code)
{
    std::vector<std::pair<std::string, std::string>> all;
    for (const SmallCode& row : kSmallCodes) {
        const std::pair<std::string, std::string> meaning = {row.area, row.words};
        if (row.code == code && (all.empty() || all.back() != meaning)) all.push_back(meaning);
    }
    return all;
}

std::string step_of(const std::string& function, uint32_t step)
{
    const char* const* const steps = steps_of(function);
    if (steps == nullptr || step == 0 || step > kMostSteps || steps[step - 1] == nullptr) return "";
    return steps[step - 1];
}

std::string small_code(const std::string& function, uint32_t code)
{
    for (const SmallCode& row : kSmallCodes)
        if (row.code == code && row.functions[0] != '\0' && begins(function, row.functions)) return row.words;
    return "";
}

std::string in_words(uint32_t code, const std::string& function)
{
    std::string own = small_code(function, code);
    if (!own.empty()) return own;
    if (function.empty() && code == kWordsNotAccepted) return "words that the command does not accept";
    return code < ZR_NEXA_STEP_UNIT ? small_in_words(code, function) : large_in_words(code, function);
}

std::string in_words(const Result& result)
{
    const std::string function = result.function;
    return function + (function.empty() ? "" : ": ") +
           (result.words.empty() ? hexadecimal(result.code) + ", " + in_words(result.code, function) : result.words);
}

void add_explain(CLI::App& app, Work* chosen)
{
    CLI::App* const verb = app.add_subcommand("explain", "Put a result code into words");
    const auto code = std::make_shared<std::string>();
    const auto function = std::make_shared<std::string>();
    verb->add_option("CODE", *code, "As the command prints it: 0x2009, or 8201")->required();
    verb->add_option("FUNCTION", *function, "Whose: zr_nexa_nat_type_set_v1, or nat_type_set");
    verb->final_callback([=] { *chosen = [=] { return explain(*code, *function); }; });
}

}  // namespace ctl
