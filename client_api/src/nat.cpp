// NAT of one WWAN profile, and routing-behind.
#include <zr_nexa/nat.h>

#include "session.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kNat;

constexpr uint32_t kNatTypeMax = ZR_NEXA_NAT_TYPE_ADDRESS_RESTRICTED;
constexpr uint32_t kBroadcastAddress = 0xFFFFFFFF;

struct Protocol {
    uint8_t code;      // of this interface
    uint8_t platform;  // IP protocol number, 253 for TCP and UDP
    bool has_ports;
};

constexpr Protocol kProtocols[] = {
    {ZR_NEXA_NAT_PROTO_TCP, 6, true},        //
    {ZR_NEXA_NAT_PROTO_UDP, 17, true},       //
    {ZR_NEXA_NAT_PROTO_ICMP, 1, false},      //
    {ZR_NEXA_NAT_PROTO_TCP_UDP, 253, true},  //
    {ZR_NEXA_NAT_PROTO_ESP, 50, false},
};

const Protocol* find_protocol(uint8_t Protocol::*field, uint8_t value)
{
    for (const Protocol& protocol : kProtocols) {
        if (protocol.*field == value) return &protocol;
    }
    return nullptr;
}

// Checks a rule and builds the platform's record of it, for adding and deleting alike. A missing port is found before
// an unknown protocol.
uint32_t build_entry(uint32_t wwan_handle, uint32_t private_ip, uint16_t private_port, uint16_t global_port,
                     uint8_t protocol, qcmap_msgr_snat_entry_config_v01* entry)
{
    *entry = {};
    if (wwan_handle == 0 || private_ip == 0 || private_ip == kBroadcastAddress) return ZR_NEXA_ERR_ARGUMENT;
    const Protocol* const known = find_protocol(&Protocol::code, protocol);
    if (known == nullptr || known->has_ports) {
        if (private_port == 0 || global_port == 0) return ZR_NEXA_ERR_ARGUMENT;
        if (known == nullptr) return ZR_NEXA_NAT_ERR_PROTOCOL;
        entry->private_port = private_port;
        entry->global_port = global_port;
    }
    entry->private_ip = private_ip;
    entry->protocol = known->platform;
    return ZR_NEXA_OK;
}

}  // namespace

uint32_t zr_nexa_nat_type_set_v1(uint32_t wwan_handle, uint32_t nat_type)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0) return ZR_NEXA_ERR_ARGUMENT;
    if (nat_type > kNatTypeMax) {
        ZR_LOG_ERROR("Invalid NAT Type : %d, wwan_handle : %d", nat_type, wwan_handle);
        return ZR_NEXA_ERR_ARGUMENT;
    }
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (!client->SetNatType(static_cast<qcmap_msgr_nat_enum_v01>(nat_type), &err)) {
        ZR_LOG_ERROR("Set Nat Type (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Set Nat Type success : wwan_handle=%d set_nat_type=%d", wwan_handle, nat_type);
    return result_of(err);
}

uint32_t zr_nexa_nat_type_get_v1(uint32_t wwan_handle, uint8_t* nat_type)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || nat_type == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    qcmap_msgr_nat_enum_v01 type = QCMAP_MSGR_NAT_SYMMETRIC_V01;
    if (!client->GetNatType(&type, &err)) {
        ZR_LOG_ERROR("Get Nat Type (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    if (static_cast<uint32_t>(type) <= kNatTypeMax) *nat_type = static_cast<uint8_t>(type);
    ZR_LOG_INFO("Get Nat Type (wwan_handle=%d) %d, error %d", wwan_handle, type, err);
    return result_of(err);
}

uint32_t zr_nexa_nat_ipv4dmz_set_v1(uint32_t wwan_handle, uint32_t enable, uint32_t dmz_ip)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || enable > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (enable == 1) {
        if (dmz_ip == 0) return ZR_NEXA_NAT_ERR_DMZ_ADDRESS;
        if (!client->AddDMZ(dmz_ip, &err)) {
            ZR_LOG_ERROR("Add DMZ IP (wwan_handle=%d) error %d", wwan_handle, err);
            return failed_step(2, err);
        }
        ZR_LOG_INFO("Add DMZ IP success : wwan_handle=%d dmz_ip=%d", wwan_handle, dmz_ip);
        return result_of(err);
    }
    if (!client->DeleteDMZ(&err)) {
        ZR_LOG_ERROR("Delete DMZ IP (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(3, err);
    }
    ZR_LOG_INFO("Delete DMZ IP success : wwan_handle=%d dmz_ip=%d", wwan_handle, dmz_ip);
    return result_of(err);
}

uint32_t zr_nexa_nat_ipv4dmz_get_v1(uint32_t wwan_handle, uint8_t* enable, uint32_t* dmz_ip)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || enable == nullptr || dmz_ip == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    uint32_t ip = 0;
    if (!client->GetDMZ(&ip, &err)) {
        ZR_LOG_ERROR("Get DMZ IP (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    *enable = ip != 0 ? 1 : 0;
    *dmz_ip = ip;
    // The record shows where the answer was written, not the answer: log readers know it as it is.
    ZR_LOG_INFO("Get DMZ IP success : wwan_handle=%d dmz_enable=%d dmz_ip=%d", wwan_handle, pointer_word(enable),
                pointer_word(dmz_ip));
    return result_of(err);
}

uint32_t zr_nexa_nat_ipv4portmapping_add_v1(uint32_t wwan_handle, uint32_t private_ip, uint16_t private_port,
                                            uint16_t global_port, uint8_t protocol)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qcmap_msgr_snat_entry_config_v01 entry;
    const uint32_t refused = build_entry(wwan_handle, private_ip, private_port, global_port, protocol, &entry);
    if (refused != ZR_NEXA_OK) return refused;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (!client->AddStaticNatEntry(&entry, &err)) {
        ZR_LOG_ERROR("Add Static Nat Entry (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Add Static Nat Entry success : wwan_handle=%d private_ip=%d private_port=%d global_port=%d",
                wwan_handle, entry.private_ip, entry.private_port, entry.global_port);
    ZR_LOG_INFO("Add Static Nat Entry success : wwan_handle=%d protocol=%d", wwan_handle, entry.protocol);
    return result_of(err);
}

uint32_t zr_nexa_nat_ipv4portmapping_del_v1(uint32_t wwan_handle, uint32_t private_ip, uint16_t private_port,
                                            uint16_t global_port, uint8_t protocol)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    qcmap_msgr_snat_entry_config_v01 entry;
    const uint32_t refused = build_entry(wwan_handle, private_ip, private_port, global_port, protocol, &entry);
    if (refused != ZR_NEXA_OK) return refused;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    if (!client->DeleteStaticNatEntry(&entry, &err)) {
        ZR_LOG_ERROR("Delete Static Nat Entry (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Delete Static Nat Entry success : wwan_handle=%d private_ip=%d private_port=%d global_port=%d",
                wwan_handle, entry.private_ip, entry.private_port, entry.global_port);
    ZR_LOG_INFO("Delete Static Nat Entry success : wwan_handle=%d protocol=%d", wwan_handle, entry.protocol);
    return result_of(err);
}

uint32_t zr_nexa_nat_ipv4portmapping_get_v1(uint32_t wwan_handle, zr_nexa_nat_ipv4portmapping_list_t* list)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (wwan_handle == 0 || list == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_profile(__func__, wwan_handle, &err)) return failed_step(1, err);
    qcmap_msgr_snat_entry_config_v01 entries[QCMAP_MAX_SNAT_ENTRIES] = {};
    int num_entries = 0;
    if (!client->GetStaticNatConfig(entries, &num_entries, &err)) {
        ZR_LOG_ERROR("Get Static Nat Config List (wwan_handle=%d) error %d", wwan_handle, err);
        return failed_step(2, err);
    }
    static_assert(ZR_NEXA_NAT_IPV4PORTMAPPINGS_MAX == QCMAP_MAX_SNAT_ENTRIES, "one list holds the other");
    list->count = clamped(num_entries, ZR_NEXA_NAT_IPV4PORTMAPPINGS_MAX);
    for (uint32_t i = 0; i < list->count; ++i) {
        list->private_ip[i] = entries[i].private_ip;
        list->private_port[i] = entries[i].private_port;
        list->global_port[i] = entries[i].global_port;
        const Protocol* const known = find_protocol(&Protocol::platform, entries[i].protocol);
        if (known != nullptr) list->protocol[i] = known->code;
    }
    return result_of(err);
}

uint32_t zr_nexa_nat_routingbh_set_v1(uint32_t routingbh)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (routingbh > 1) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->ZR_SetRoutingBH(routingbh, &err)) {
        ZR_LOG_ERROR("Set RoutingBH(routingbh=%d) error %d", routingbh, err);
        return failed_step(1, err);
    }
    ZR_LOG_INFO("Set RoutingBH(routingbh=%d) error %d", routingbh, err);
    return result_of(err);
}

uint32_t zr_nexa_nat_routingbh_get_v1(uint32_t* routingbh)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (routingbh == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    uint32_t value = 0;
    if (!client->ZR_GetRoutingBH(&value, &err)) {
        ZR_LOG_ERROR("Get RoutingBH error %d", err);
        return failed_step(1, err);
    }
    if (value > 1) return ZR_NEXA_NAT_ERR_ROUTINGBH;
    *routingbh = value;
    ZR_LOG_INFO("Get RoutingBH(routingbh=%d) error %d", value, err);
    return result_of(err);
}
