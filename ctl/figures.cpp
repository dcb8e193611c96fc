#include "figures.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "exit_status.h"
#include "explain.h"
#include "tell.h"
#include "wan_profile.h"

namespace ctl {
namespace {

constexpr uint8_t kNoTechnology = 0xff;  // what a failed attempt leaves there

const Words kV4States = {{ZR_NEXA_WAN_V4_CONNECTING, "connecting"},
                         {ZR_NEXA_WAN_V4_CONNECTED, "connected"},
                         {ZR_NEXA_WAN_V4_DISCONNECTING, "disconnecting"},
                         {ZR_NEXA_WAN_V4_DISCONNECTED, "disconnected"},
                         {kNoStatus, "failed"}};
const Words kV6States = {{ZR_NEXA_WAN_V6_CONNECTING, "connecting"},
                         {ZR_NEXA_WAN_V6_CONNECTED, "connected"},
                         {ZR_NEXA_WAN_V6_DISCONNECTING, "disconnecting"},
                         {ZR_NEXA_WAN_V6_DISCONNECTED, "disconnected"},
                         {kNoStatus, "failed"}};
const Words kTechnologies = {
    {ZR_NEXA_WAN_TECH_ANY, "any"}, {ZR_NEXA_WAN_TECH_UMTS, "umts"}, {ZR_NEXA_WAN_TECH_CDMA, "cdma"}};
const Words kFamilies = {{ZR_NEXA_IP_V4, "ipv4"}, {ZR_NEXA_IP_V6, "ipv6"}, {ZR_NEXA_IP_V4V6, "ipv4v6"}};

class Reader {
public:
    Figures read()
    {
        read_profiles();
        read_lans();
        read_mappings();
        read_devices();
        return std::move(figures_);
    }

private:
    bool good(const Result& result)
    {
        if (!result.good()) figures_.refused.push_back(result);
        return result.good();
    }

    ProfileFigures* profile(uint32_t handle)
    {
        for (ProfileFigures& each : figures_.profiles)
            if (each.handle == handle) return &each;
        return nullptr;
    }

    void read_profiles()
    {
        zr_nexa_wan_wwanconfig_list_v2_t list = {};
        for (zr_nexa_wan_wwanconfig_t& each : list.wwanconfig)
            each.tech_pref = kNoTechnology;
        if (!good(CALL(zr_nexa_wan_wwanconfig_get_v2, &list))) return;
        for (uint32_t i = 0; i < list.wwanconfig_num; ++i) {
            const zr_nexa_wan_wwanconfig_t& dial = list.wwanconfig[i];
            ProfileFigures each;
            each.handle = list.wwan_handle[i];
            each.technology = word_of(kTechnologies, dial.tech_pref);
            each.family = word_of(kFamilies, static_cast<uint32_t>(dial.ip_family));
            each.apn_index = dial.apn_id;
            each.apn_name = escaped(dial.apn_name, sizeof dial.apn_name);
            read_call(&each);
            figures_.profiles.push_back(each);
        }
        std::sort(figures_.profiles.begin(), figures_.profiles.end(),
                  [](const ProfileFigures& a, const ProfileFigures& b) { return a.handle < b.handle; });
        default_profile_ = list.default_wwan_handle;
        give_role(default_profile_, "default");
        uint32_t access_point = 0;
        uint32_t dns_proxy = 0;
        if (!good(CALL(zr_nexa_wan_apwwan_get_v1, &access_point, &dns_proxy))) return;
        give_role(access_point, "access point");
        give_role(dns_proxy, "DNS proxy");
    }

    void give_role(uint32_t handle, const char* role)
    {
        if (ProfileFigures* const found = profile(handle)) found->roles.emplace_back(role);
    }

    void read_call(ProfileFigures* each)
    {
        uint32_t v4 = kNoStatus;
        uint32_t v6 = kNoStatus;
        if (good(CALL(zr_nexa_wan_status_get_v1, each->handle, &v4, &v6))) {
            each->v4.state = word_of(kV4States, v4);
            each->v6.state = word_of(kV6States, v6);
        }
        good(CALL(zr_nexa_wan_info_get_v1, each->handle, &each->info));
        each->v4.is_counted = good(CALL(zr_nexa_wan_statistics_get_v1, each->handle, ZR_NEXA_IP_V4, &each->v4.counts));
        each->v6.is_counted = good(CALL(zr_nexa_wan_statistics_get_v1, each->handle, ZR_NEXA_IP_V6, &each->v6.counts));
    }

    void read_lans()
    {
        figures_.lans.emplace_back();  // the default one is always there
        static zr_nexa_lan_vlan_list_t vlans;
        if (good(CALL(zr_nexa_lan_vlan_get_v1, &vlans))) {
            for (uint16_t i = 0; i < vlans.count; ++i) {
                figures_.lans.emplace_back();
                figures_.lans.back().id = vlans.vlan_id[i];
            }
        }
        std::sort(figures_.lans.begin(), figures_.lans.end(),
                  [](const LanFigures& a, const LanFigures& b) { return a.id < b.id; });
        for (LanFigures& lan : figures_.lans) {
            zr_nexa_lan_dhcp_cfg_t config = {};
            lan.has_net = good(CALL(zr_nexa_lan_dhcp_get_v1, lan.id, &config));
            lan.address = config.gateway_ip;
            lan.mask = config.netmask;
            read_sip_servers(&lan);
        }
    }

    void read_sip_servers(LanFigures* lan)
    {
        static_assert(sizeof(zr_nexa_sip_server_info_t) == ZR_NEXA_ALG_SIP_NETWORK_OFFSET, "one record in front");
        char buffer[ZR_NEXA_ALG_SIP_BUFFER_SIZE] = {};
        const char* at = buffer + ZR_NEXA_ALG_SIP_NETWORK_OFFSET;
        int count = 0;
        if (good(CALL(zr_nexa_alg_sip_server_info_get_v1, lan->id, ZR_NEXA_IP_V4, &count, buffer))) {
            for (int i = 0; i < count; ++i, at += sizeof(zr_nexa_sip_server_info_t)) {
                zr_nexa_sip_server_info_t server;
                std::memcpy(&server, at, sizeof server);
                lan->v4_sip_servers.push_back(server.pcscf_info_type == ZR_NEXA_ALG_SIP_INFO_IP
                                                  ? ipv4_text(server.ipv4_addr)
                                                  : escaped(server.fqdn, sizeof server.fqdn));
            }
        }
        at = buffer + ZR_NEXA_ALG_SIP_NETWORK_OFFSET;
        if (good(CALL(zr_nexa_alg_sip_server_info_get_v1, lan->id, ZR_NEXA_IP_V6, &count, buffer))) {
            for (int i = 0; i < count; ++i, at += sizeof(zr_nexa_ipv6_sip_server_info_t)) {
                zr_nexa_ipv6_sip_server_info_t server;
                std::memcpy(&server, at, sizeof server);
                lan->v6_sip_servers.push_back(server.pcscf_info_type == ZR_NEXA_ALG_SIP_INFO_IP
                                                  ? ipv6_text(server.ipv6_addr)
                                                  : escaped(server.fqdn, sizeof server.fqdn));
            }
        }
    }

    // LAN 0 and what is not mapped go out through the default profile.
    void read_mappings()
    {
        static zr_nexa_wan_mpdnmapping_list_t mappings;
        if (!good(CALL(zr_nexa_wan_mpdnmapping_get_v1, &mappings))) return;
        for (LanFigures& lan : figures_.lans) {
            for (uint32_t i = 0; i < mappings.count && lan.id != 0; ++i)
                if (mappings.vlan_id[i] == lan.id) lan.profiles.push_back(mappings.profile_handle[i]);
            if (lan.profiles.empty() && profile(default_profile_) != nullptr) lan.profiles.push_back(default_profile_);
            for (const uint32_t handle : lan.profiles)
                if (ProfileFigures* const found = profile(handle)) found->lans.push_back(lan.id);
        }
    }

    void read_devices()
    {
        static zr_nexa_lan_connected_device_t devices[ZR_NEXA_LAN_CONNECTED_DEVICES_MAX];
        uint32_t count = ZR_NEXA_LAN_CONNECTED_DEVICES_MAX;
        if (!good(CALL(zr_nexa_lan_connected_device_info_get_v1, devices, &count))) return;
        for (uint32_t i = 0; i < count; ++i) {
            const zr_nexa_lan_connected_device_t& device = devices[i];
            DeviceFigures each;
            each.type = device.device_type;
            each.address = network_ipv4_text(device.ipv4_addr);
            each.mac = mac_text(device.mac);
            each.host_name = escaped(device.host_name, sizeof device.host_name);
            for (uint32_t k = 0; k < std::min(device.ipv6_count, ZR_NEXA_LAN_DEVICE_IPV6_ADDRS_MAX); ++k)
                each.v6_addresses.push_back(ipv6_text(device.ipv6_addr[k]));
            each.received_bytes = device.rx_bytes;
            each.sent_bytes = device.tx_bytes;
            each.lan = lan_of(ipv4_of(each.address));
            figures_.devices.push_back(each);
        }
    }

    // Of nets that overlap, the smallest.
    int lan_of(uint32_t address) const
    {
        int found = -1;
        uint32_t mask = 0;
        for (const LanFigures& lan : figures_.lans) {
            if (!lan.has_net || (address & lan.mask) != (lan.address & lan.mask) || lan.mask <= mask) continue;
            found = static_cast<int>(lan.id);
            mask = lan.mask;
        }
        return found;
    }

    Figures figures_;
    uint32_t default_profile_ = 0;
};

}  // namespace

Figures read_figures()
{
    return Reader().read();
}

int status_of(const Figures& figures)
{
    for (const Result& result : figures.refused)
        tell(in_words(result));
    return figures.refused.empty() ? kDone : kNoService;
}

}  // namespace ctl
