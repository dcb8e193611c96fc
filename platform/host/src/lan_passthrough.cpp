// IP passthrough of each bridge with its NAT and gateway filters, which go away with the bridge; the NAT that holds for
// all bridges, and the addresses that are kept off the hardware path. A bridge without a row has the factory settings.
#include "session.h"

const char* const mobile_ap::kLanPassthroughSchema = R"(
CREATE TABLE IF NOT EXISTS passthrough (
    bridge INTEGER PRIMARY KEY REFERENCES lan_bridge(id) ON DELETE CASCADE,
    device_type INTEGER NOT NULL,
    adaptive_flag INTEGER NOT NULL,
    adaptive_value INTEGER NOT NULL,
    mac TEXT NOT NULL,
    host_name TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS passthrough_nat (
    bridge INTEGER PRIMARY KEY REFERENCES lan_bridge(id) ON DELETE CASCADE,
    mode INTEGER NOT NULL
);
CREATE TABLE IF NOT EXISTS passthrough_service (nat_mode INTEGER NOT NULL);
INSERT INTO passthrough_service (nat_mode) SELECT 1 WHERE NOT EXISTS (SELECT 1 FROM passthrough_service);
CREATE TABLE IF NOT EXISTS gateway_filter_list (
    bridge INTEGER PRIMARY KEY REFERENCES lan_bridge(id) ON DELETE CASCADE,
    flags INTEGER NOT NULL
);
CREATE TABLE IF NOT EXISTS gateway_filter (
    bridge INTEGER NOT NULL REFERENCES lan_bridge(id) ON DELETE CASCADE,
    number INTEGER NOT NULL,
    protocol INTEGER NOT NULL,
    start_port INTEGER NOT NULL,
    end_port INTEGER NOT NULL,
    PRIMARY KEY (bridge, number)
);
CREATE TABLE IF NOT EXISTS software_path_address (
    number INTEGER PRIMARY KEY,
    address TEXT NOT NULL UNIQUE
);
)";

using namespace mobile_ap;

namespace {

constexpr unsigned long long kNatFeature = 1;
constexpr uint32_t kNatModeMin = 1;
constexpr uint32_t kNatModeMax = 3;
constexpr int kPdnMin = -1;  // as the NAT mode that holds for all bridges
constexpr int kPdnMax = 2;
constexpr uint8_t kAdaptiveValueMax = 10;

constexpr uint32_t kFilterRequest = 2;
constexpr uint32_t kProtocolTcp = 1;
constexpr uint32_t kProtocolUdp = 2;
constexpr uint32_t kProtocolNoPorts = 4;

bool is_passthrough(const qcmap_msgr_ip_passthrough_config_v01& config)
{
    switch (config.device_type) {
        case QCMAP_DEVICE_TYPE_WILDCARD:
            return config.adaptive_flag == 1 && config.adaptive_value <= kAdaptiveValueMax;
        case QCMAP_DEVICE_TYPE_USB:
            return config.adaptive_flag == 0 && config.host_name[0] != '\0';
        case QCMAP_DEVICE_TYPE_ETH:
        case QCMAP_DEVICE_TYPE_WLAN:
        case QCMAP_DEVICE_TYPE_ETH_NIC2:
        case QCMAP_DEVICE_TYPE_ANY_USB:
            return config.adaptive_flag == 0;
        default:
            return false;
    }
}

bool is_filter(const qcmap_sw_path_filter& filter)
{
    if (filter.protocol == kProtocolNoPorts) return true;
    return (filter.protocol == kProtocolTcp || filter.protocol == kProtocolUdp) && filter.start_port != 0 &&
           filter.start_port <= filter.end_port;
}

}  // namespace

bool QCMAP_Client::SetFeatureMode(unsigned long long features, qcmap_client_feature_mode_config* config,
                                  qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (features != kNatFeature || config->features != kNatFeature || config->feature_mode < kNatModeMin ||
            config->feature_mode > kNatModeMax)
            refuse(QMI_ERR_INVALID_ARG_V01);
        db.run("UPDATE passthrough_service SET nat_mode = ?", config->feature_mode);
    });
}

bool QCMAP_Client::GetFeatureMode(unsigned long long* features, qcmap_client_feature_mode_config* config,
                                  qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *features = kNatFeature;
        config->features = kNatFeature;
        config->feature_mode = db.one<uint32_t>("SELECT nat_mode FROM passthrough_service").value_or(kNatModeMin);
    });
}

bool QCMAP_Client::ZR_SetIPPTNATPDN(int pdn, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (pdn < kPdnMin || pdn > kPdnMax) refuse(QMI_ERR_INVALID_ARG_V01);
        db.run(
            "INSERT INTO passthrough_nat (bridge, mode) VALUES (?, ?)"
            " ON CONFLICT (bridge) DO UPDATE SET mode = excluded.mode",
            db.selected_bridge(), pdn);
    });
}

bool QCMAP_Client::ZR_GetIPPTNATPDN(int* pdn, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *pdn = db.one<int>("SELECT mode FROM passthrough_nat WHERE bridge = ?", db.selected_bridge()).value_or(kPdnMin);
    });
}

bool QCMAP_Client::SetIPPassthroughConfig(qcmap_msgr_ip_passthrough_mode_enum_v01 mode, bool has_config,
                                          qcmap_msgr_ip_passthrough_config_v01* config, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const int bridge = db.selected_bridge();
        if (mode == QCMAP_MSGR_IP_PASSTHROUGH_MODE_DISABLED_V01) {
            db.run("DELETE FROM passthrough WHERE bridge = ?", bridge);
            return;
        }
        if (mode != QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01 || !has_config || config == nullptr ||
            !is_passthrough(*config))
            refuse(QMI_ERR_INVALID_ARG_V01);
        db.run(
            "INSERT OR REPLACE INTO passthrough (bridge, device_type, adaptive_flag, adaptive_value, mac, host_name)"
            " VALUES (?, ?, ?, ?, ?, ?)",
            bridge, config->device_type, config->adaptive_flag, config->adaptive_value, mac_text(config->mac),
            field_text(config->host_name, sizeof config->host_name));
    });
}

bool QCMAP_Client::GetIPPassthroughConfig(qcmap_msgr_ip_passthrough_mode_enum_v01* mode,
                                          qcmap_msgr_ip_passthrough_config_v01* config, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        Query q = db.query(
            "SELECT device_type, adaptive_flag, adaptive_value, mac, host_name FROM passthrough WHERE bridge = ?",
            db.selected_bridge());
        *mode = QCMAP_MSGR_IP_PASSTHROUGH_MODE_DISABLED_V01;
        *config = {};
        if (!q.next()) return;
        *mode = QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01;
        config->device_type = q.get<uint32_t>(0);
        config->adaptive_flag = q.get<uint8_t>(1);
        config->adaptive_value = q.get<uint8_t>(2);
        mac_bytes(q.get<std::string>(3), config->mac);
        set_field_text(config->host_name, sizeof config->host_name, q.get<std::string>(4));
    });
}

bool QCMAP_Client::GetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t* list, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        if (list->request != kFilterRequest) refuse(QMI_ERR_INVALID_ARG_V01);
        const int bridge = db.selected_bridge();
        *list = {};
        list->request = kFilterRequest;
        list->flags = db.one<uint32_t>("SELECT flags FROM gateway_filter_list WHERE bridge = ?", bridge).value_or(0);
        Query q = db.query(
            "SELECT start_port, end_port, protocol FROM gateway_filter WHERE bridge = ? ORDER BY number LIMIT ?",
            bridge, QCMAP_MAX_SW_PATH_FILTERS);
        while (q.next()) {
            list->filter[list->count++] = {q.get<uint16_t>(0), q.get<uint16_t>(1), q.get<uint32_t>(2)};
        }
    });
}

// The list takes the place of the bridge's former one.
bool QCMAP_Client::SetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t* list, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (list->request != kFilterRequest) refuse(QMI_ERR_INVALID_ARG_V01);
        if (list->count > QCMAP_MAX_SW_PATH_FILTERS) refuse(QMI_ERR_LIMIT_V01);
        const int bridge = db.selected_bridge();
        db.run("INSERT OR REPLACE INTO gateway_filter_list (bridge, flags) VALUES (?, ?)", bridge, list->flags);
        db.run("DELETE FROM gateway_filter WHERE bridge = ?", bridge);
        for (int i = 0; i < list->count; ++i) {
            const qcmap_sw_path_filter& filter = list->filter[i];
            if (!is_filter(filter)) refuse(QMI_ERR_INVALID_ARG_V01);
            db.run("INSERT INTO gateway_filter (bridge, number, protocol, start_port, end_port) VALUES (?, ?, ?, ?, ?)",
                   bridge, i + 1, filter.protocol, filter.start_port, filter.end_port);
        }
    });
}

bool QCMAP_Client::ZR_AddIPToSWPathFilters(unsigned int ipv4_address, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        if (ipv4_address == 0) refuse(QMI_ERR_INVALID_ARG_V01);
        const int added =
            db.run("INSERT OR IGNORE INTO software_path_address (address) VALUES (?)", network_ipv4_text(ipv4_address));
        if (added == 0) refuse(QMI_ERR_ALREADY_THERE_V01);
        const auto addresses = db.one<int>("SELECT count(*) FROM software_path_address");
        if (addresses > QCMAP_MAX_SW_PATH_FILTERS) refuse(QMI_ERR_LIMIT_V01);
    });
}

bool QCMAP_Client::ZR_DeleteIPFromSWPathFilters(unsigned int ipv4_address, qmi_error_type_v01* err)
{
    return method(session_, __func__, err, [&](Store& db) {
        const int deleted =
            db.run("DELETE FROM software_path_address WHERE address = ?", network_ipv4_text(ipv4_address));
        if (deleted == 0) refuse(QMI_ERR_NO_ENTRY_V01);
    });
}

bool QCMAP_Client::ZR_GetIPFromSWPathFilters(qcmap_sw_path_filters_ex_ipv4_addr_list* list, qmi_error_type_v01* err)
{
    return read_method(session_, __func__, err, [&](Store& db) {
        *list = {};
        Query q =
            db.query("SELECT address FROM software_path_address ORDER BY number LIMIT ?", QCMAP_MAX_SW_PATH_FILTERS);
        while (q.next()) {
            list->address[list->count++] = network_ipv4_word(q.get<std::string>(0));
        }
    });
}
