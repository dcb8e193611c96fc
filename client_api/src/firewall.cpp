// The firewall of a WWAN profile, and hardware MAC filtering.
#include <zr_nexa/firewall.h>

#include <cstddef>
#include <cstring>
#include <utility>

#include "session.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kFirewall;

using Entry = zr_nexa_firewall_entry_t;
using Filter = qcmap_firewall_filter;

// What a filter can ask of a packet. One of the first two applies to an entry, and one of the others if its protocol
// has any.
enum class Group { kIpv4, kIpv6, kPorts, kIcmp, kSpi, kNone };

struct Protocol {
    uint32_t code;
    uint8_t ipv4_value;  // 0: not translated
    uint8_t ipv6_value;
    Group transport;
};

constexpr uint8_t kUntranslated = 0;

constexpr Protocol kProtocols[] = {
    {ZR_NEXA_FIREWALL_PROTO_TCP, 6, 6, Group::kPorts},
    {ZR_NEXA_FIREWALL_PROTO_UDP, 17, 17, Group::kPorts},
    {ZR_NEXA_FIREWALL_PROTO_ICMP, 1, kUntranslated, Group::kIcmp},
    {ZR_NEXA_FIREWALL_PROTO_ICMPV6, kUntranslated, 58, Group::kIcmp},
    {ZR_NEXA_FIREWALL_PROTO_TCP_UDP, 253, 253, Group::kPorts},
    {ZR_NEXA_FIREWALL_PROTO_ESP, 50, 50, Group::kSpi},
};
constexpr Protocol kOtherProtocol = {ZR_NEXA_FIREWALL_PROTO_OTHER, kUntranslated, kUntranslated, Group::kNone};

const Protocol& protocol_of_code(uint32_t code)
{
    for (const Protocol& protocol : kProtocols) {
        if (protocol.code == code) return protocol;
    }
    return kOtherProtocol;
}

// The platform's value alone decides, not the family it stands in.
const Protocol& protocol_of_value(uint8_t value)
{
    for (const Protocol& protocol : kProtocols) {
        if (value != kUntranslated && (protocol.ipv4_value == value || protocol.ipv6_value == value)) return protocol;
    }
    return kOtherProtocol;
}

// A value that stands in the entry and in the platform's filter alike.
struct Value {
    size_t in_entry;
    size_t in_filter;
    size_t entry_size;
    size_t filter_size;
};

// A validity flag of the entry, the bit of the filter's field mask that is the same, and the values they speak for.
struct Field {
    Group group;
    uint32_t bit;
    size_t flag;
    Value values[2];
};

#define FLAG(field) offsetof(Entry, field)
#define VALUE(entry_field, filter_field)                                                          \
    {                                                                                             \
        offsetof(Entry, entry_field), offsetof(Filter, filter_field), sizeof(Entry::entry_field), \
            sizeof(std::declval<Filter>().filter_field)                                           \
    }
#define NO_VALUE   \
    {              \
        0, 0, 0, 0 \
    }

constexpr Field kFields[] = {
    {Group::kIpv4,
     QCMAP_IP_FIELD_SRC_ADDR,
     FLAG(ipv4_src_valid),
     {VALUE(ipv4_src_addr, ipv4.src_addr), VALUE(ipv4_src_mask, ipv4.src_mask)}},
    {Group::kIpv4,
     QCMAP_IP_FIELD_DST_ADDR,
     FLAG(ipv4_dst_valid),
     {VALUE(ipv4_dst_addr, ipv4.dst_addr), VALUE(ipv4_dst_mask, ipv4.dst_mask)}},
    {Group::kIpv4,
     QCMAP_IP_FIELD_TOS,
     FLAG(ipv4_tos_valid),
     {VALUE(ipv4_tos, ipv4.tos), VALUE(ipv4_tos_mask, ipv4.tos_mask)}},
    {Group::kIpv6,
     QCMAP_IP_FIELD_SRC_ADDR,
     FLAG(ipv6_src_valid),
     {VALUE(ipv6_src_addr, ipv6.src_addr), VALUE(ipv6_src_prefix_len, ipv6.src_prefix_len)}},
    {Group::kIpv6,
     QCMAP_IP_FIELD_DST_ADDR,
     FLAG(ipv6_dst_valid),
     {VALUE(ipv6_dst_addr, ipv6.dst_addr), VALUE(ipv6_dst_prefix_len, ipv6.dst_prefix_len)}},
    {Group::kIpv6,
     QCMAP_IP_FIELD_TOS,
     FLAG(ipv6_tc_valid),
     {VALUE(ipv6_tc, ipv6.traffic_class), VALUE(ipv6_tc_mask, ipv6.traffic_class_mask)}},
    {Group::kPorts,
     QCMAP_TRANSPORT_FIELD_SRC,
     FLAG(src_port_valid),
     {VALUE(src_port, transport.src_port), VALUE(src_port_range, transport.src_port_range)}},
    {Group::kPorts,
     QCMAP_TRANSPORT_FIELD_DST,
     FLAG(dst_port_valid),
     {VALUE(dst_port, transport.dst_port), VALUE(dst_port_range, transport.dst_port_range)}},
    {Group::kIcmp, QCMAP_TRANSPORT_FIELD_SRC, FLAG(icmp_type_valid), {VALUE(icmp_type, transport.icmp_type), NO_VALUE}},
    {Group::kIcmp, QCMAP_TRANSPORT_FIELD_DST, FLAG(icmp_code_valid), {VALUE(icmp_code, transport.icmp_code), NO_VALUE}},
    {Group::kSpi, QCMAP_TRANSPORT_FIELD_SRC, FLAG(esp_spi_valid), {VALUE(esp_spi, transport.esp_spi), NO_VALUE}},
};

constexpr bool sizes_agree()
{
    for (const Field& field : kFields) {
        for (const Value& value : field.values) {
            if (value.entry_size != value.filter_size) return false;
        }
    }
    return true;
}
static_assert(sizes_agree(), "a value has one size on both sides");

Group header_group(uint32_t ip_version)
{
    if (ip_version == ZR_NEXA_IP_V4) return Group::kIpv4;
    if (ip_version == ZR_NEXA_IP_V6) return Group::kIpv6;
    return Group::kNone;
}

// Both directions of the table: which mask a field's bit stands in.
template <typename AFilter>
auto& mask_of(const Field& field, AFilter* filter)
{
    const bool in_header = field.group == Group::kIpv4 || field.group == Group::kIpv6;
    return in_header ? filter->ip_field_mask : filter->transport.field_mask;
}

// Fills a zeroed filter.
void to_platform(const Entry& entry, Filter* filter)
{
    const auto* const from = reinterpret_cast<const unsigned char*>(&entry);
    auto* const to = reinterpret_cast<unsigned char*>(filter);

    const Group header = header_group(entry.ip_version);
    filter->ip_version = entry.ip_version;
    if (header == Group::kIpv6) filter->ipv6.nat_flag = entry.ipv6_nat_flag;
    Group transport = Group::kNone;
    if (entry.proto_valid != 0) {
        const Protocol& protocol = protocol_of_code(entry.protocol);
        filter->ip_field_mask |= QCMAP_IP_FIELD_NEXT_HEADER;
        filter->next_header = header == Group::kIpv4 ? protocol.ipv4_value : protocol.ipv6_value;
        transport = protocol.transport;
    }
    for (const Field& field : kFields) {
        if (field.group != header && field.group != transport) continue;
        if (from[field.flag] == 0) continue;
        mask_of(field, filter) |= field.bit;
        for (const Value& value : field.values) {
            std::memcpy(to + value.in_filter, from + value.in_entry, value.entry_size);
        }
    }
}

// Writes every flag, and of the values only those whose flag is set.
void from_platform(const Filter& filter, Entry* entry)
{
    const auto* const from = reinterpret_cast<const unsigned char*>(&filter);
    auto* const to = reinterpret_cast<unsigned char*>(entry);

    const Group header = header_group(filter.ip_version);
    if (header != Group::kNone) entry->ip_version = filter.ip_version;
    if (header == Group::kIpv6) entry->ipv6_nat_flag = filter.ipv6.nat_flag;
    Group transport = Group::kNone;
    entry->proto_valid = (filter.ip_field_mask & QCMAP_IP_FIELD_NEXT_HEADER) != 0 ? 1 : 0;
    if (entry->proto_valid != 0) {
        const Protocol& protocol = protocol_of_value(filter.next_header);
        entry->protocol = protocol.code;
        transport = protocol.transport;
    }
    for (const Field& field : kFields) {
        const bool applies = field.group == header || field.group == transport;
        const bool valid = applies && (mask_of(field, &filter) & field.bit) != 0;
        to[field.flag] = valid ? 1 : 0;
        if (!valid) continue;
        for (const Value& value : field.values) {
            std::memcpy(to + value.in_entry, from + value.in_filter, value.entry_size);
        }
    }
}

constexpr bool is_direction(uint32_t direction)
{
    return direction == 1 || direction == 2;
}

constexpr bool leaves_port_space(uint16_t port, uint16_t range)
{
    return static_cast<int32_t>(port) + static_cast<int32_t>(range) >= 65536;
}

constexpr bool in_list(uint32_t count, uint32_t capacity)
{
    return count >= 1 && count <= capacity;
}

}  // namespace

uint32_t zr_nexa_firewall_entry_add_v1(uint32_t wwan_handle, const zr_nexa_firewall_entry_t* entry)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (entry == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (entry->ip_version != ZR_NEXA_IP_V4 && entry->ip_version != ZR_NEXA_IP_V6) return ZR_NEXA_ERR_ARGUMENT;
    if (entry->src_port_valid != 0 && leaves_port_space(entry->src_port, entry->src_port_range)) {
        ZR_LOG_ERROR("port range exception: source port = %d, port_range = %d", entry->src_port, entry->src_port_range);
        return ZR_NEXA_ERR_ARGUMENT;
    }
    if (entry->dst_port_valid != 0 && leaves_port_space(entry->dst_port, entry->dst_port_range)) {
        ZR_LOG_ERROR("port range exception: Destination port = %d, port_range = %d !", entry->dst_port,
                     entry->dst_port_range);
        return ZR_NEXA_ERR_ARGUMENT;
    }
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    qcmap_msgr_firewall_conf_t conf = {};
    if (is_direction(entry->direction)) conf.direction = entry->direction;
    to_platform(*entry, &conf.filter);
    if (!client->AddFireWallEntry(&conf, &err)) {
        ZR_LOG_ERROR("Add Firewall Entry error %d", err);
        return failed_step(2, err);
    }
    return result_of(err);
}

uint32_t zr_nexa_firewall_entry_get_v1(uint32_t wwan_handle, uint32_t ip_family, zr_nexa_firewall_entry_list_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (list == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    qcmap_msgr_get_firewall_handle_list_conf_t handles = {};
    if (ip_family == ZR_NEXA_IP_V4 || ip_family == ZR_NEXA_IP_V6) handles.ip_family = ip_family;
    const uint32_t asked_family = handles.ip_family;
    if (!client->GetFireWallHandlesList(&handles, &err)) {
        ZR_LOG_ERROR("Get FireWall Handles List (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    list->count = clamped(handles.count, ZR_NEXA_FIREWALL_ENTRIES_MAX);
    for (uint32_t i = 0; i < list->count; ++i) {
        qcmap_msgr_firewall_entry_conf_t conf = {};
        conf.ip_family = asked_family;
        conf.handle = handles.handle[i];
        if (!client->GetFireWallEntry(&conf, &err)) {
            ZR_LOG_ERROR("Get FireWall Entry (wwan_handle=%d index=%d) error %d", wwan_handle, i, err);
            return failed_step(3, err);
        }
        list->handle[i] = handles.handle[i];
        if (is_direction(conf.direction)) list->entry[i].direction = conf.direction;
        from_platform(conf.filter, &list->entry[i]);
    }
    return result_of(err);
}

uint32_t zr_nexa_firewall_entry_del_v1(uint32_t wwan_handle, int32_t firewall_entry_handle)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (firewall_entry_handle < 0) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (!client->DeleteFireWallEntry(firewall_entry_handle, &err)) {
        // Log readers know the selection's text here too.
        ZR_LOG_ERROR("Set WWAN Profile Handle Preference (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Delete Firewall entry success, wwan_handle=%d firewall_entry_handle=%d", wwan_handle,
                firewall_entry_handle);
    return result_of(err);
}

uint32_t zr_nexa_firewall_config_set_v1(uint32_t wwan_handle, uint32_t enable_firewall, uint32_t pkts_allowed)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (enable_firewall > 1) return ZR_NEXA_ERR_ARGUMENT;
    if (enable_firewall == 1 && pkts_allowed > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (!client->SetFirewall(enable_firewall, pkts_allowed, &err)) {
        ZR_LOG_ERROR("Set Firewall Config error %d", err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Set Firewall Config success, wwan_handle=%d enable_firewall=%d pkts_allowed=%d", wwan_handle,
                enable_firewall, pkts_allowed);
    return result_of(err);
}

uint32_t zr_nexa_firewall_config_get_v1(uint32_t wwan_handle, uint8_t* enable_firewall, uint8_t* pkts_allowed)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (enable_firewall == nullptr || pkts_allowed == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    unsigned char enable = 0;
    unsigned char pkts = 0;
    if (!client->GetFirewall(&enable, &pkts, &err)) {
        ZR_LOG_ERROR("Get Firewall Config error %d", err);
        return failed_step(2, err);
    }
    *enable_firewall = enable;
    *pkts_allowed = pkts;
    ZR_LOG_INFO("Get Firewall Config enable_firewall=%d, pkts_allowed=%d", enable, pkts);
    return result_of(err);
}

uint32_t zr_nexa_firewall_hwfiltering_state_set_v1(uint32_t state, const zr_nexa_firewall_hwfilter_cfg_t* config)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (config == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (state > ZR_NEXA_FIREWALL_HWFILTER_STATE_MAX) return ZR_NEXA_ERR_ARGUMENT;
    if (!in_list(config->num_of_macs, ZR_NEXA_FIREWALL_HWFILTER_MACS_MAX)) return ZR_NEXA_ERR_ARGUMENT;
    if (!in_list(config->num_of_ifaces, ZR_NEXA_FIREWALL_HWFILTER_IFACES_MAX)) {
        ZR_LOG_ERROR("Invalid number of iface:%d", config->num_of_ifaces);
        return ZR_NEXA_ERR_ARGUMENT;
    }
    qcmap_hw_filter_config filter = {};
    filter.mac_count = config->num_of_macs;
    std::memcpy(filter.mac, config->mac_addr, config->num_of_macs * sizeof(config->mac_addr[0]));
    filter.iface_count = config->num_of_ifaces;
    std::memcpy(filter.iface, config->iface, config->num_of_ifaces * sizeof(config->iface[0]));
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->SetHWMACFilteringState(static_cast<qcmap_msgr_config_state_enum_v01>(state), filter, &err)) {
        ZR_LOG_ERROR("Set Hardware Filtering State error %d", err);
        return failed_step(2, err);
    }
    return result_of(err);
}

uint32_t zr_nexa_firewall_hwfiltering_state_get_v1(uint32_t* state, zr_nexa_firewall_hwfilter_cfg_t* config)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (state == nullptr || config == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_msgr_config_state_enum_v01 filter_state = QCMAP_MSGR_CONFIG_STATE_OFF_V01;
    qcmap_hw_filter_config filter = {};
    if (!client->GetHWMACFilteringState(&filter_state, &filter, &err)) {
        ZR_LOG_ERROR("Get Hardware Filtering State error %d", err);
        return failed_step(2, err);
    }
    *state = static_cast<uint32_t>(filter_state);
    config->num_of_macs = clamped(filter.mac_count, ZR_NEXA_FIREWALL_HWFILTER_MACS_MAX);
    std::memcpy(config->mac_addr, filter.mac, config->num_of_macs * sizeof(config->mac_addr[0]));
    config->num_of_ifaces = clamped(filter.iface_count, ZR_NEXA_FIREWALL_HWFILTER_IFACES_MAX);
    std::memcpy(config->iface, filter.iface, config->num_of_ifaces * sizeof(config->iface[0]));
    return result_of(err);
}
