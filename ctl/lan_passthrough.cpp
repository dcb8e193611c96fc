// IP passthrough of a LAN with its NAT and gateway filters. The NAT of LANs without one of their own and the addresses
// that are kept off the hardware path are the module's.
#include <zr_nexa/lan_passthrough.h>

#include <algorithm>

#include "keys.h"

namespace ctl {
namespace {

const Words kNat = {{ZR_NEXA_LAN_IPPTNAT_WITHOUT_NAT, "without-nat"},
                    {ZR_NEXA_LAN_IPPTNAT_WITH_NAT, "with-nat"},
                    {ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE, "with-nat-one-device"}};

Row module_nat_row()
{
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kModule,
               "",
               {{"general.passthrough_nat", word(all_words(kNat)),
                 "NAT beside the passthrough device, for LANs that say default", "with-nat"}},
               {"zr_nexa_lan_ipptnat_set_v1", "zr_nexa_lan_ipptnat_get_v1"}};
    row.read = [](uint32_t, Value* out) {
        uint8_t mode = 0;
        Result result = CALL(zr_nexa_lan_ipptnat_get_v1, &mode);
        if (result.good()) out->map()["general.passthrough_nat"] = word_of(kNat, mode);
        return result;
    };
    row.write = [](uint32_t, const Value& wanted, const Value&) {
        return CALL(zr_nexa_lan_ipptnat_set_v1, code_of(kNat, wanted.child("general.passthrough_nat").text()));
    };
    row.missing_codes = {ZR_NEXA_LAN_IPPTNAT_ERR_NO_FEATURE, ZR_NEXA_LAN_IPPTNAT_ERR_UNKNOWN_MODE};
    return row;
}

// Of one LAN the codes are signed bytes.
Words lan_nat_words()
{
    Words words = kNat;
    words.push_back({static_cast<uint32_t>(ZR_NEXA_LAN_IPPTNAT_DEFAULT), "default"});
    return words;
}

Row lan_nat_row()
{
    static const Words words = lan_nat_words();
    Row row = {Scope::kLan,
               Shape::kUnit,
               Phase::kLanSettings,
               "",
               {{"passthrough_nat", word(all_words(words)),
                 "NAT beside the passthrough device; default is the module's; not of LAN 0", "default"}},
               {"zr_nexa_lan_ipptnatpdn_set_v1", "zr_nexa_lan_ipptnatpdn_get_v1"}};
    row.read = [](uint32_t lan, Value* out) {
        if (lan == 0) return Result{};  // has none of its own
        int8_t mode = INT8_MIN;         // an unknown one is left alone
        Result result = CALL(zr_nexa_lan_ipptnatpdn_get_v1, lan, &mode);
        const std::string word = word_of(words, static_cast<uint32_t>(mode));
        if (result.good() && !word.empty()) out->map()["passthrough_nat"] = word;
        return result;
    };
    row.write = [](uint32_t lan, const Value& wanted, const Value&) {
        const uint32_t mode = code_of(words, wanted.child("passthrough_nat").text());
        return CALL(zr_nexa_lan_ipptnatpdn_set_v1, lan, static_cast<int8_t>(mode));
    };
    return row;
}

// ---- the passthrough ----

const Words kDevices = {{ZR_NEXA_LAN_IPPT_OFF, "none"},  {ZR_NEXA_LAN_IPPT_ETH, "ethernet"},
                        {ZR_NEXA_LAN_IPPT_WLAN, "wlan"}, {ZR_NEXA_LAN_IPPT_ETH_NIC2, "ethernet-2"},
                        {ZR_NEXA_LAN_IPPT_USB, "usb"},   {ZR_NEXA_LAN_IPPT_ANY_USB, "any-usb"}};
const char* const kAdaptive = "adaptive";
constexpr uint8_t kUntouched = 0xff;  // an adaptive passthrough leaves the mode alone

bool has_mac(const std::string& device)
{
    return device == "ethernet" || device == "wlan" || device == "ethernet-2";
}

Result read_passthrough(uint32_t lan, Value* out)
{
    zr_nexa_lan_ippt_t record = {};
    record.lan_id = static_cast<uint16_t>(lan);
    record.ippt_mode = kUntouched;
    Result result = CALL(zr_nexa_lan_ippt_get_v1, &record);
    if (!result.good()) return result;
    // With a choice the mode tells which device it has taken for now.
    if (record.ippt_adaptive != 0 || record.ippt_mode == kUntouched) {
        if (record.ippt_adaptive > ZR_NEXA_LAN_IPPT_ADAPTIVE_MAX) return result;
        out->map() = {{"device", kAdaptive}, {"choice", record.ippt_adaptive}};
        return result;
    }
    const std::string device = word_of(kDevices, record.ippt_mode);
    if (device == "wlan" && lan != 0) return result;  // cannot be set, so a document cannot say it
    out->map()["device"] = device;
    if (has_mac(device)) out->map()["mac"] = escaped(record.host_mac, sizeof record.host_mac);
    if (device == "usb") out->map()["host_name"] = escaped(record.host_name, sizeof record.host_name);
    return result;
}

Result write_passthrough(uint32_t lan, const Value& wanted, const Value&)
{
    const std::string device = wanted.child("device").text();
    zr_nexa_lan_ippt_t record = {};
    record.lan_id = static_cast<uint16_t>(lan);
    if (device == kAdaptive) {
        record.ippt_adaptive_enable = 1;
        record.ippt_adaptive = static_cast<uint8_t>(wanted.child("choice").number());
    } else {
        record.ippt_mode = static_cast<uint8_t>(code_of(kDevices, device));
    }
    const std::string mac = wanted.child("mac").text();
    const std::string name = unescaped(wanted.child("host_name").text());
    // An empty one would change nothing and give success.
    if (has_mac(device) && mac.empty()) return {0, "zr_nexa_lan_ippt_set_v1", "no MAC address is given"};
    if (device == "usb" && name.empty()) return {0, "zr_nexa_lan_ippt_set_v1", "no host name is given"};
    mac.copy(record.host_mac, sizeof record.host_mac);
    name.copy(record.host_name, sizeof record.host_name);
    return CALL(zr_nexa_lan_ippt_set_v1, &record);
}

// That key stands just where the device needs it.
void check_key(const Value& record, const std::string& path, const std::string& key, bool is_needed,
               const std::string& devices, const Complain& complain)
{
    if (is_needed && !record.has(key)) complain(record, path, key + " is missing");
    if (!is_needed && record.has(key)) complain(record.child(key), path + "." + key, "only with " + devices);
}

void check_passthrough(const Value& record, const std::string& path, const Complain& complain)
{
    const std::string device = record.child("device").text();
    check_key(record, path, "choice", device == kAdaptive, kAdaptive, complain);
    check_key(record, path, "mac", has_mac(device), "ethernet, wlan or ethernet-2", complain);
    check_key(record, path, "host_name", device == "usb", "usb", complain);
    if (device == "wlan" && path.rfind("lans.0.", 0) != 0)
        complain(record.child("device"), path + ".device", "wlan only on LAN 0");
}

std::string passthrough_not_undone(const Value&, const Value& present)
{
    const std::string device = present.child("device").text();
    if (device == "any-usb") return "a passthrough to any-usb can be read only";
    if (device == "usb" && present.child("host_name").text().empty())
        return "a passthrough to usb without a host name can be read only";
    return "";
}

Row passthrough_row()
{
    std::vector<std::string> devices = all_words(kDevices);
    devices.emplace_back(kAdaptive);
    Row row = {Scope::kLan,
               Shape::kWhole,
               Phase::kLanSettings,
               "passthrough",
               {needed({"device", word(devices), "the one device that gets the WWAN address; any-usb can be read only",
                        "none"}),
                optional({"choice", number(0, ZR_NEXA_LAN_IPPT_ADAPTIVE_MAX),
                          "of adaptive: which device is taken by itself, in the service's numbering"}),
                optional({"mac", plain(Type::Kind::kMac), "of ethernet, wlan and ethernet-2: the device"}),
                optional({"host_name", text(0, ZR_NEXA_LAN_IPPT_NAME_SIZE), "of usb: the device"})},
               {"zr_nexa_lan_ippt_set_v1", "zr_nexa_lan_ippt_get_v1"}};
    row.about = "one device of the LAN that gets the WWAN address itself";
    row.read = read_passthrough;
    row.write = write_passthrough;
    row.check = check_passthrough;
    row.interrupts = [](const std::string& name, const Value&, const Value& present) {
        return present.is_nothing() ? "" : name + ": the passthrough device gets another address";
    };
    row.not_undone = passthrough_not_undone;
    return row;
}

// ---- gateway filters ----

const Words kProtocols = {{ZR_NEXA_LAN_IPPTGWFILTER_TCP, "tcp"},
                          {ZR_NEXA_LAN_IPPTGWFILTER_UDP, "udp"},
                          {ZR_NEXA_LAN_IPPTGWFILTER_NO_PORTS, "portless"}};
const char* const kOther = "other";  // can be read only

bool are_ports(uint16_t first, uint16_t last)
{
    return first >= 1 && first <= last && last <= ZR_NEXA_LAN_IPPTGWFILTER_PORT_MAX;
}

Value filter_of(uint32_t protocol, uint16_t first, uint16_t last)
{
    const std::string word = word_of(kProtocols, protocol);
    Value filter;
    if (are_ports(first, last)) filter.map()["ports"] = ports_text(first, last);
    // A portless one keeps any numbers; those that are no ports are not shown, and nobody looks at them.
    const bool is_whole = word == "portless" || filter.has("ports");
    if (!is_whole) filter.map().clear();
    filter.map()["protocol"] = is_whole ? word : kOther;
    return filter;
}

Result read_filters(uint32_t lan, Value* out)
{
    zr_nexa_lan_ipptgwfilter_list_t list = {};
    Result result = CALL(zr_nexa_lan_ipptgwfilter_get_v1, lan, &list);
    if (!result.good()) return result;
    // A filter of another protocol reads as an empty place. Behind the last one it cannot be told from none.
    uint32_t count = ZR_NEXA_LAN_IPPTGWFILTERS_MAX;
    while (count > 0 && list.protocol[count - 1] == 0)
        --count;
    out->list();
    for (uint32_t i = 0; i < count; ++i) {
        out->list().push_back(filter_of(list.protocol[i], list.start_port[i], list.end_port[i]));
        out->list().back().tag = i + 1;
    }
    return result;
}

Result add_filter(uint32_t lan, const std::string&, const Value& filter)
{
    uint16_t first = 0;
    uint16_t last = 0;
    if (filter.has("ports")) split_ports(filter.child("ports").text(), &first, &last);
    return CALL(zr_nexa_lan_ipptgwfilter_add_v1, lan, code_of(kProtocols, filter.child("protocol").text()), first,
                last);
}

Result remove_filter(uint32_t lan, const std::string&, const Value& filter)
{
    return CALL(zr_nexa_lan_ipptgwfilter_del_v1, lan, static_cast<uint8_t>(filter.tag));
}

bool is_other(const Value& filter)
{
    return filter.child("protocol").text() == kOther;
}

std::string filter_not_undone(const Value&, const Value& present)
{
    return is_other(present) ? "a gateway filter of an other protocol cannot be made" : "";
}

Row filters_row()
{
    std::vector<std::string> protocols = all_words(kProtocols);
    protocols.emplace_back(kOther);
    Row row = {
        Scope::kLan,
        Shape::kList,
        Phase::kLanSettings,
        "gateway_filters",
        {needed({"protocol", word(protocols), "what is filtered; other can be read only"}),
         optional({"ports", ports(1, ZR_NEXA_LAN_IPPTGWFILTER_PORT_MAX),
                   "ports whose traffic stays with the module; portless keeps them and does not look at them"})},
        {"zr_nexa_lan_ipptgwfilter_add_v1", "zr_nexa_lan_ipptgwfilter_get_v1", "zr_nexa_lan_ipptgwfilter_del_v1"}};
    row.about = "ports whose traffic stays with the module in spite of the passthrough";
    row.read = read_filters;
    row.add = add_filter;
    row.remove = remove_filter;
    row.most = ZR_NEXA_LAN_IPPTGWFILTERS_MAX;
    row.check = [](const Value& filter, const std::string& path, const Complain& complain) {
        const std::string protocol = filter.child("protocol").text();
        if (protocol != "portless")
            check_key(filter, path, "ports", protocol != kOther, "tcp, udp or portless", complain);
    };
    row.not_undone = filter_not_undone;
    return row;
}

// ---- the software path ----

Result read_software_path(uint32_t, Value* out)
{
    zr_nexa_lan_swpathfilter_list_t list = {};
    Result result = CALL(zr_nexa_lan_swpathfilter_get_v1, &list);
    if (!result.good()) return result;
    out->list();
    for (uint32_t i = 0; i < list.count; ++i)
        if (list.ipv4_address[i] != 0) out->list().emplace_back(network_ipv4_text(list.ipv4_address[i]));
    return result;
}

Row software_path_row()
{
    Type address = ipv4();
    address.low = 1;
    Row row = {
        Scope::kModule,
        Shape::kList,
        Phase::kModule,
        "software_path",
        {needed({"", address, "a device whose traffic is kept off the hardware path"})},
        {"zr_nexa_lan_swpathfilter_add_v1", "zr_nexa_lan_swpathfilter_del_v1", "zr_nexa_lan_swpathfilter_get_v1"}};
    row.read = read_software_path;
    row.add = [](uint32_t, const std::string&, const Value& each) {
        return CALL(zr_nexa_lan_swpathfilter_add_v1, network_ipv4_of(each.text()));
    };
    row.remove = [](uint32_t, const std::string&, const Value& each) {
        return CALL(zr_nexa_lan_swpathfilter_del_v1, network_ipv4_of(each.text()));
    };
    row.most = ZR_NEXA_LAN_SWPATHFILTERS_MAX;
    return row;
}

}  // namespace

std::vector<Row> lan_passthrough_rows()
{
    return {lan_nat_row(), passthrough_row(), filters_row(), module_nat_row(), software_path_row()};
}

}  // namespace ctl
