#include "scripted_platform.h"

using scripted::Call;

namespace {

// Entries behind count are shown when they are not empty.
void show_filters(Call* call, const qcmap_msgr_sw_path_filters_conf_t& list)
{
    call->arg("request", list.request).arg("count", list.count).arg("flags", list.flags);
    for (int i = 0; i < QCMAP_MAX_SW_PATH_FILTERS; ++i) {
        const qcmap_sw_path_filter& filter = list.filter[i];
        if (i >= list.count && filter.start_port == 0 && filter.end_port == 0 && filter.protocol == 0) continue;
        call->arg("start", filter.start_port).arg("end", filter.end_port).arg("protocol", filter.protocol);
    }
}

}  // namespace

bool QCMAP_Client::SetFeatureMode(unsigned long long features, qcmap_client_feature_mode_config* config,
                                  qmi_error_type_v01* err)
{
    return Call("SetFeatureMode")
        .arg(features)
        .arg("features", config->features)
        .arg("feature_mode", config->feature_mode)
        .finish(err);
}

bool QCMAP_Client::GetFeatureMode(unsigned long long* features, qcmap_client_feature_mode_config* config,
                                  qmi_error_type_v01* err)
{
    return Call("GetFeatureMode").out("features", features).out("config", config).finish(err);
}

bool QCMAP_Client::ZR_SetIPPTNATPDN(int pdn, qmi_error_type_v01* err)
{
    return Call("ZR_SetIPPTNATPDN").arg(pdn).finish(err);
}

// The value before the call is an argument: it must be -1.
bool QCMAP_Client::ZR_GetIPPTNATPDN(int* pdn, qmi_error_type_v01* err)
{
    return Call("ZR_GetIPPTNATPDN").arg(*pdn).out("pdn", pdn).finish(err);
}

bool QCMAP_Client::SetIPPassthroughConfig(qcmap_msgr_ip_passthrough_mode_enum_v01 mode, bool has_config,
                                          qcmap_msgr_ip_passthrough_config_v01* config, qmi_error_type_v01* err)
{
    Call call("SetIPPassthroughConfig");
    call.arg("mode", mode).arg("has_config", has_config);
    if (config == nullptr) {
        call.out("config", config);
    } else {
        call.arg("device_type", config->device_type)
            .arg("adaptive_flag", config->adaptive_flag)
            .arg("adaptive_value", config->adaptive_value)
            .bytes("mac", config->mac, sizeof(config->mac))
            .text("host_name", config->host_name, sizeof(config->host_name));
    }
    return call.finish(err);
}

bool QCMAP_Client::GetIPPassthroughConfig(qcmap_msgr_ip_passthrough_mode_enum_v01* mode,
                                          qcmap_msgr_ip_passthrough_config_v01* config, qmi_error_type_v01* err)
{
    return Call("GetIPPassthroughConfig").out("mode", mode).out("config", config).finish(err);
}

bool QCMAP_Client::GetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t* list, qmi_error_type_v01* err)
{
    Call call("GetIPPassthroughSoftwarePathFilters");
    show_filters(&call, *list);
    return call.out("list", list).finish(err);
}

bool QCMAP_Client::SetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t* list, qmi_error_type_v01* err)
{
    Call call("SetIPPassthroughSoftwarePathFilters");
    show_filters(&call, *list);
    return call.finish(err);
}

bool QCMAP_Client::ZR_AddIPToSWPathFilters(unsigned int ipv4_address, qmi_error_type_v01* err)
{
    return Call("ZR_AddIPToSWPathFilters").arg(ipv4_address).finish(err);
}

bool QCMAP_Client::ZR_DeleteIPFromSWPathFilters(unsigned int ipv4_address, qmi_error_type_v01* err)
{
    return Call("ZR_DeleteIPFromSWPathFilters").arg(ipv4_address).finish(err);
}

// What is given as "address" are the first entries only. The list comes cleared.
bool QCMAP_Client::ZR_GetIPFromSWPathFilters(qcmap_sw_path_filters_ex_ipv4_addr_list* list, qmi_error_type_v01* err)
{
    Call call("ZR_GetIPFromSWPathFilters");
    call.arg("count", list->count);
    for (const uint32_t address : list->address) {
        if (address != 0) call.arg("address", address);
    }
    return call.out("count", &list->count).out_array("address", list->address, QCMAP_MAX_SW_PATH_FILTERS).finish(err);
}
