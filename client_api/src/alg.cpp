// Application-level gateways of the NAT, and SIP servers of a LAN bridge.
#include <zr_nexa/alg.h>

#include <cstring>

#include "session.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kAlg;

static_assert(ZR_NEXA_ALG_SIP_NETWORK_OFFSET == sizeof(zr_nexa_sip_server_info_t), "behind the configured server");
static_assert(ZR_NEXA_ALG_SIP_BUFFER_SIZE == sizeof(zr_nexa_sip_server_info_t) +
                                                 ZR_NEXA_ALG_SIP_SERVERS_MAX * sizeof(zr_nexa_ipv6_sip_server_info_t),
              "holds either family");
static_assert(sizeof(qcmap_msgr_sip_server_info_v01::fqdn) == ZR_NEXA_ALG_SIP_FQDN_SIZE, "copied whole");
static_assert(sizeof(qcmap_msgr_ipv6_sip_server_info_v01::fqdn) == ZR_NEXA_ALG_SIP_FQDN_SIZE, "copied whole");

// The caller's buffer has no alignment of its own, so entries are copied into it as bytes.
void write_entry(unsigned char* to, const qcmap_msgr_sip_server_info_v01& from)
{
    zr_nexa_sip_server_info_t entry;
    entry.pcscf_info_type = from.pcscf_info_type;
    entry.ipv4_addr = from.ipv4_addr;
    std::memcpy(entry.fqdn, from.fqdn, sizeof(entry.fqdn));
    std::memcpy(to, &entry, sizeof(entry));
}

void write_entry(unsigned char* to, const qcmap_msgr_ipv6_sip_server_info_v01& from)
{
    zr_nexa_ipv6_sip_server_info_t entry;
    entry.pcscf_info_type = from.pcscf_info_type;
    std::memcpy(entry.ipv6_addr, from.ipv6_addr, sizeof(entry.ipv6_addr));
    std::memcpy(entry.fqdn, from.fqdn, sizeof(entry.fqdn));
    std::memcpy(to, &entry, sizeof(entry));
}

uint32_t get_ipv4_servers(const char* function, int* count, unsigned char* out)
{
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_msgr_sip_server_info_v01 configured = {};
    qcmap_msgr_sip_server_info_v01 network[QCMAP_MAX_SIP_SERVERS] = {};
    int reported = 0;
    if (!client->GetSIPServerInfo(&configured, network, &reported, &err)) {
        ZR_LOG_ERROR_AS(function, "Failed to get IPV4 SIP server info. Error:0x%x", err);
        return failed_step(2, err);
    }
    const uint32_t n = clamped(reported, QCMAP_MAX_SIP_SERVERS);
    *count = static_cast<int>(n);
    if (n > 0) ZR_LOG_INFO_AS(function, "IPv4: Number of network assigned SIP server info is %d", n);
    write_entry(out, configured);
    for (uint32_t i = 0; i < n; ++i) {
        write_entry(out + ZR_NEXA_ALG_SIP_NETWORK_OFFSET + i * sizeof(zr_nexa_sip_server_info_t), network[i]);
    }
    ZR_LOG_INFO_AS(function, "Successfully get IPV4 SIP server info.");
    return result_of(err);
}

uint32_t get_ipv6_servers(const char* function, int* count, unsigned char* out)
{
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_msgr_ipv6_sip_server_info_v01 network[QCMAP_MAX_SIP_SERVERS] = {};
    int reported = 0;
    if (!client->GetV6SIPServerInfo(network, &reported, &err)) {
        ZR_LOG_ERROR_AS(function, "Failed to get IPV6 SIP server info. Error:0x%x", err);
        return failed_step(3, err);
    }
    const uint32_t n = clamped(reported, QCMAP_MAX_SIP_SERVERS);
    *count = static_cast<int>(n);
    for (uint32_t i = 0; i < n; ++i) {
        write_entry(out + ZR_NEXA_ALG_SIP_NETWORK_OFFSET + i * sizeof(zr_nexa_ipv6_sip_server_info_t), network[i]);
    }
    if (n > 0) ZR_LOG_INFO_AS(function, "IPv6: Number of network assigned SIP server info is %d", n);
    // The IPv4 text: log readers look for it after either family.
    ZR_LOG_INFO_AS(function, "Successfully get IPV4 SIP server info.");
    return result_of(err);
}

}  // namespace

uint32_t zr_nexa_alg_enable_type_set_v1(uint32_t enable, uint64_t alg_types)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (enable > 1) {
        ZR_LOG_ERROR("invalid enable(%d)", enable);
        return ZR_NEXA_ALG_ERR_ENABLE;
    }
    const auto shown_types = static_cast<unsigned long long>(alg_types);
    if (alg_types != 1 && alg_types != 2) {
        ZR_LOG_ERROR("Invalid ALG types(%llu)", shown_types);
        return ZR_NEXA_ALG_ERR_VALUE;
    }
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (enable == 1) {
        if (!client->EnableAlg(alg_types, &err)) {
            ZR_LOG_ERROR("Failed to Enable ALG. Error:0x%x", err);
            return failed_step(1, err);
        }
        ZR_LOG_INFO("Successfully Enable ALG types(%llu)", shown_types);
    } else {
        if (!client->DisableAlg(alg_types, &err)) {
            ZR_LOG_ERROR("Failed to Disable ALG. Error:0x%x", err);
            return failed_step(2, err);
        }
        ZR_LOG_INFO("Successfully Disable ALG types(%llu)", shown_types);
    }
    return result_of(err);
}

uint32_t zr_nexa_alg_sip_server_info_set_v1(uint32_t lan_id, const zr_nexa_sip_server_info_t* info)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (info == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);

    qcmap_msgr_sip_server_info_v01 record = {};
    record.pcscf_info_type = info->pcscf_info_type;
    if (info->pcscf_info_type == ZR_NEXA_ALG_SIP_INFO_IP) {
        record.ipv4_addr = info->ipv4_addr;
    } else if (info->pcscf_info_type == ZR_NEXA_ALG_SIP_INFO_FQDN) {
        std::memcpy(record.fqdn, info->fqdn, sizeof(record.fqdn));
    } else {
        ZR_LOG_ERROR("pcscf_info_type:%d, it must be IP ADDRESS or FQDN", info->pcscf_info_type);
        return ZR_NEXA_ALG_ERR_VALUE;
    }
    if (!client->SetSIPServerInfo(&record, &err)) {
        ZR_LOG_ERROR("Failed to set SIP server information. Error:0x%x", err);
        return failed_step(2, err);
    }
    ZR_LOG_INFO("Successfully set SIP server information.");
    return result_of(err);
}

uint32_t zr_nexa_alg_sip_server_info_get_v1(uint32_t lan_id, uint32_t ip_family, int* count, void* out)
{
    if (!guard(__func__)) return ZR_NEXA_ERR_NO_SESSION;
    if (count == nullptr || out == nullptr) return ZR_NEXA_ERR_ARGUMENT;
    if (!is_lan_id(lan_id)) return ZR_NEXA_ERR_RANGE;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!select_bridge(__func__, lan_id, &err)) return failed_step(1, err);

    auto* const buffer = static_cast<unsigned char*>(out);
    if (ip_family == ZR_NEXA_IP_V4) return get_ipv4_servers(__func__, count, buffer);
    if (ip_family == ZR_NEXA_IP_V6) return get_ipv6_servers(__func__, count, buffer);
    ZR_LOG_ERROR("Domain only suuport ZR_NEXA_IP_V4 or ZR_NEXA_IP_V6");
    return ZR_NEXA_ALG_ERR_VALUE;
}
