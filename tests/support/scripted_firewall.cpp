#include "scripted_firewall.h"

#include "scripted_platform.h"

using scripted::Call;

namespace scripted {
qcmap_msgr_firewall_conf_t added_firewall_entry;
}

bool QCMAP_Client::AddFireWallEntry(qcmap_msgr_firewall_conf_t* conf, qmi_error_type_v01* err)
{
    scripted::added_firewall_entry = *conf;
    const qcmap_firewall_filter& filter = conf->filter;
    return Call("AddFireWallEntry")
        .arg("direction", conf->direction)
        .arg("ip", filter.ip_version)
        .arg("mask", filter.ip_field_mask)
        .arg("src4", filter.ipv4.src_addr)
        .arg("src4_mask", filter.ipv4.src_mask)
        .arg("dst4", filter.ipv4.dst_addr)
        .arg("dst4_mask", filter.ipv4.dst_mask)
        .arg("tos", filter.ipv4.tos)
        .arg("tos_mask", filter.ipv4.tos_mask)
        .bytes("src6", filter.ipv6.src_addr, sizeof(filter.ipv6.src_addr))
        .arg("src6_len", filter.ipv6.src_prefix_len)
        .bytes("dst6", filter.ipv6.dst_addr, sizeof(filter.ipv6.dst_addr))
        .arg("dst6_len", filter.ipv6.dst_prefix_len)
        .arg("nat", filter.ipv6.nat_flag)
        .arg("tc", filter.ipv6.traffic_class)
        .arg("tc_mask", filter.ipv6.traffic_class_mask)
        .arg("proto", filter.next_header)
        .arg("transport", filter.transport.field_mask)
        .arg("sport", filter.transport.src_port)
        .arg("sport_range", filter.transport.src_port_range)
        .arg("dport", filter.transport.dst_port)
        .arg("dport_range", filter.transport.dst_port_range)
        .arg("icmp_type", filter.transport.icmp_type)
        .arg("icmp_code", filter.transport.icmp_code)
        .arg("spi", filter.transport.esp_spi)
        .finish(err);
}

bool QCMAP_Client::GetFireWallHandlesList(qcmap_msgr_get_firewall_handle_list_conf_t* handles, qmi_error_type_v01* err)
{
    return Call("GetFireWallHandlesList")
        .arg("ip_family", handles->ip_family)
        .out("count", &handles->count)
        .out_array("handle", handles->handle, QCMAP_MAX_FIREWALL_ENTRIES)
        .out("ip_family", &handles->ip_family)
        .finish(err);
}

bool QCMAP_Client::GetFireWallEntry(qcmap_msgr_firewall_entry_conf_t* conf, qmi_error_type_v01* err)
{
    return Call("GetFireWallEntry")
        .arg("ip_family", conf->ip_family)
        .arg("handle", conf->handle)
        .arg("clear", conf->direction == 0 && conf->filter.ip_version == 0 && conf->filter.ip_field_mask == 0)
        .out("handle", &conf->handle)
        .out("filter", &conf->filter)
        .out("direction", &conf->direction)
        .finish(err);
}

bool QCMAP_Client::DeleteFireWallEntry(int handle, qmi_error_type_v01* err)
{
    return Call("DeleteFireWallEntry").arg(handle).finish(err);
}

bool QCMAP_Client::SetFirewall(unsigned int enable_firewall, unsigned int pkts_allowed, qmi_error_type_v01* err)
{
    return Call("SetFirewall").arg(enable_firewall).arg(pkts_allowed).finish(err);
}

bool QCMAP_Client::GetFirewall(unsigned char* enable_firewall, unsigned char* pkts_allowed, qmi_error_type_v01* err)
{
    return Call("GetFirewall").out("enable_firewall", enable_firewall).out("pkts_allowed", pkts_allowed).finish(err);
}

bool QCMAP_Client::SetHWMACFilteringState(qcmap_msgr_config_state_enum_v01 state, qcmap_hw_filter_config config,
                                          qmi_error_type_v01* err)
{
    Call call("SetHWMACFilteringState");
    call.arg("state", state).arg("macs", config.mac_count);
    for (const auto& mac : config.mac) {
        call.bytes("mac", mac, sizeof(mac));
    }
    call.arg("ifaces", config.iface_count);
    for (const auto& iface : config.iface) {
        for (const uint32_t word : iface) {
            call.arg(word);
        }
    }
    return call.finish(err);
}

bool QCMAP_Client::GetHWMACFilteringState(qcmap_msgr_config_state_enum_v01* state, qcmap_hw_filter_config* config,
                                          qmi_error_type_v01* err)
{
    return Call("GetHWMACFilteringState").out("state", state).out("config", config).finish(err);
}
