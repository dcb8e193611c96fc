// Call-status indications of the platform: decoded, logged and handed on to the user's callback.
#include <zr_nexa/indications.h>

#include <cstring>

#include "session.h"
#include "texts.h"

using namespace zr_nexa;

namespace {

constexpr auto kLogSource = LogSource::kIndications;

// The function that every record here names, whichever one writes it.
constexpr const char* kFunction = "zr_nexa_inds_cb";

constexpr uint32_t kNoSubscription = 0x7FFFFFFF;
constexpr uint32_t kReportKinds = 2;  // reports of kind 0 and 1 are handed on

// Profile, subscription, call-end type, call-end code.
using StatusRecord = Record<uint32_t, uint32_t, uint32_t, uint32_t>;

struct StatusLine {
    uint32_t message;
    uint32_t status;
    StatusRecord record;
};

// Log readers look for the lines as they are, the two spellings of the IP families and the missing "c" of the status
// changes included. Whole, so that they are found here too.
// clang-format off
constexpr StatusLine kStatusLines[] = {
    {QCMAP_MSGR_BRING_UP_WWAN_IND_V01, QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPV4 WWAN Connected (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_BRING_UP_WWAN_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTED_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPV6 WWAN Connected (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_BRING_UP_WWAN_IND_V01, QCMAP_MSGR_WWAN_STATUS_CONNECTING_FAIL_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPV4 WWAN Connecting Failed (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_BRING_UP_WWAN_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_FAIL_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPV6 WWAN Connecting Failed (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01, QCMAP_MSGR_WWAN_STATUS_DISCONNECTED_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPV4 WWAN Disconnected (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01, QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_FAIL_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPV4 WWAN Disconnecting Failed (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTED_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPV6 WWAN Disconnected (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_FAIL_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPV6 WWAN Disconnecting Failed (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_CONNECTING_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv4 WWAN Connecting (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_CONNECTING_FAIL_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv4 WWAN Connecting Fail (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv4 WWAN Connected (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv4 WWAN Disonnecting (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_FAIL_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv4 WWAN Disonnecting Fail (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_DISCONNECTED_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv4 WWAN Disonnected (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv6 WWAN Connecting (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_FAIL_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv6 WWAN Connecting Fail (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTED_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv6 WWAN Connected (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv6 WWAN Disonnecting (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_FAIL_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv6 WWAN Disonnecting Fail (CallendType=%d CallendCode=%d)")},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTED_V01, ZR_LOG_INFO_RECORD(
     "zr_nexa_inds_cb: WWANProfile=%d (Subs_Id=%d) IPv6 WWAN Disonnected (CallendType=%d CallendCode=%d)")},
};
// clang-format on

// Null: the message says nothing with this status.
const StatusRecord* find_status_record(uint32_t message, uint32_t status)
{
    for (const StatusLine& line : kStatusLines) {
        if (line.message == message && line.status == status) return &line.record;
    }
    return nullptr;
}

// Decodes the indication into record, which has the size of the message's own. A failure is logged.
bool decode(qmi_client_type user_handle, unsigned int msg_id, const void* ind_buf, unsigned int ind_buf_len,
            void* record, unsigned int record_len)
{
    const int error =
        qmi_client_message_decode(user_handle, QMI_IDL_INDICATION, msg_id, ind_buf, ind_buf_len, record, record_len);
    if (error == QMI_NO_ERR) return true;
    ZR_LOG_ERROR_AS(kFunction, "zr_nexa_inds_cb: qmi_client_message_decode error %d", error);
    return false;
}

// Logs a call's status line and begins its event: everything but the addresses.
void take_call(const qcmap_wwan_call_ind& call, const StatusRecord& record, zr_nexa_ind_call_event_t* event)
{
    const uint32_t profile = call.profile_handle_valid == 1 ? call.profile_handle : ZR_NEXA_IND_NO_PROFILE;
    const uint32_t subscription = call.subs_id_valid == 1 ? call.subs_id : kNoSubscription;
    record.write(kFunction, profile, subscription, call.call_end_type, call.call_end_code);
    event->status = call.conn_status;
    event->call_end_type = call.call_end_type;
    event->call_end_code = call.call_end_code;
    event->wwan_handle = profile;
}

void log_addresses(const qcmap_msgr_bring_up_wwan_ind_msg_v01& bring_up)
{
    ZR_LOG_INFO_AS(kFunction, "Interface Name                 : %s", FieldText(bring_up.iface_name).c_str());
    ZR_LOG_INFO_AS(kFunction, "Public IPv4 Address            : %s", Ipv4Text(bring_up.v4_addr).c_str());
    ZR_LOG_INFO_AS(kFunction, "Primary DNS IPv4 Address       : %s", Ipv4Text(bring_up.v4_pri_dns_addr).c_str());
    ZR_LOG_INFO_AS(kFunction, "Seccondary DNS IPv4 Address    : %s", Ipv4Text(bring_up.v4_sec_dns_addr).c_str());
    ZR_LOG_INFO_AS(kFunction, "Public IPv6 Address            : %s", Ipv6Text(bring_up.v6_addr).c_str());
    ZR_LOG_INFO_AS(kFunction, "Primary DNS IPv6 Address       : %s", Ipv6Text(bring_up.v6_pri_dns_addr).c_str());
    ZR_LOG_INFO_AS(kFunction, "Seccondary DNS IPv6 Address    : %s", Ipv6Text(bring_up.v6_sec_dns_addr).c_str());
}

void take_addresses(const qcmap_msgr_bring_up_wwan_ind_msg_v01& bring_up, zr_nexa_ind_call_event_t* event)
{
    std::memcpy(event->iface_name, bring_up.iface_name, sizeof(event->iface_name));
    event->v4_addr = bring_up.v4_addr;
    event->v4_pri_dns_addr = bring_up.v4_pri_dns_addr;
    event->v4_sec_dns_addr = bring_up.v4_sec_dns_addr;
    std::memcpy(event->v6_addr, bring_up.v6_addr, sizeof(event->v6_addr));
    std::memcpy(event->v6_pri_dns_addr, bring_up.v6_pri_dns_addr, sizeof(event->v6_pri_dns_addr));
    std::memcpy(event->v6_sec_dns_addr, bring_up.v6_sec_dns_addr, sizeof(event->v6_sec_dns_addr));
}

void on_bring_up(qmi_client_type user_handle, unsigned int msg_id, const void* ind_buf, unsigned int ind_buf_len)
{
    zr_nexa_ind_call_event_t event = {};
    qcmap_msgr_bring_up_wwan_ind_msg_v01 bring_up = {};
    if (!decode(user_handle, msg_id, ind_buf, ind_buf_len, &bring_up, sizeof(bring_up))) return;
    if (bring_up.call.mobile_ap_handle != client->mobile_ap_handle) return;
    const StatusRecord* const record = find_status_record(msg_id, bring_up.call.conn_status);
    if (record == nullptr) return;
    take_call(bring_up.call, *record, &event);
    if (bring_up.call.conn_status == QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01 ||
        bring_up.call.conn_status == QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTED_V01) {
        log_addresses(bring_up);
        take_addresses(bring_up, &event);
    }
    user_callback(ZR_NEXA_IND_BRING_UP, sizeof(event), &event);
}

void on_tear_down(qmi_client_type user_handle, unsigned int msg_id, const void* ind_buf, unsigned int ind_buf_len)
{
    zr_nexa_ind_call_event_t event = {};
    qcmap_msgr_tear_down_wwan_ind_msg_v01 tear_down = {};
    if (!decode(user_handle, msg_id, ind_buf, ind_buf_len, &tear_down, sizeof(tear_down))) return;
    if (tear_down.call.mobile_ap_handle != client->mobile_ap_handle) return;
    const StatusRecord* const record = find_status_record(msg_id, tear_down.call.conn_status);
    if (record == nullptr) return;
    take_call(tear_down.call, *record, &event);
    if (tear_down.call.conn_status == QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_FAIL_V01) {
        user_callback(ZR_NEXA_IND_TEAR_DOWN, sizeof(event), &event, ZR_NEXA_IND_V6_DISCONNECT_FAILED_VALUE);
    } else {
        user_callback(ZR_NEXA_IND_TEAR_DOWN, sizeof(event), &event);
    }
}

void on_status(qmi_client_type user_handle, unsigned int msg_id, const void* ind_buf, unsigned int ind_buf_len)
{
    zr_nexa_ind_call_event_t event = {};
    qcmap_msgr_wwan_status_ind_msg_v01 status = {};
    if (!decode(user_handle, msg_id, ind_buf, ind_buf_len, &status, sizeof(status))) return;
    if (status.call.mobile_ap_handle != client->mobile_ap_handle) return;
    const StatusRecord* const record = find_status_record(msg_id, status.call.conn_status);
    if (record == nullptr) return;
    take_call(status.call, *record, &event);
    user_callback(ZR_NEXA_IND_STATUS, sizeof(event), &event);
}

void on_status_report(qmi_client_type user_handle, unsigned int msg_id, const void* ind_buf, unsigned int ind_buf_len)
{
    zr_nexa_ind_status_report_t copy = {};
    qcmap_msgr_status_report_ind_msg_v01 report = {};
    if (!decode(user_handle, msg_id, ind_buf, ind_buf_len, &report, sizeof(report))) return;
    static_assert(sizeof(copy) == sizeof(report), "the report is handed on as it stands");
    std::memcpy(&copy, &report, sizeof(copy));
    if (copy.kind < kReportKinds) user_callback(ZR_NEXA_IND_STATUS_REPORT, sizeof(copy), &copy);
}

}  // namespace

void zr_nexa_inds_cb(qmi_client_type user_handle, unsigned int msg_id, void* ind_buf, unsigned int ind_buf_len,
                     void* /* ind_cb_data */)
{
    if (client == nullptr) {
        ZR_LOG_ERROR("qcmap client not Initialize!");
        return;
    }
    ZR_LOG_INFO("zr_nexa_inds_cb: user_handle %p msg_id %d ind_buf_len %d.", user_handle, msg_id, ind_buf_len);
    switch (msg_id) {
        case QCMAP_MSGR_BRING_UP_WWAN_IND_V01:
            on_bring_up(user_handle, msg_id, ind_buf, ind_buf_len);
            break;
        case QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01:
            on_tear_down(user_handle, msg_id, ind_buf, ind_buf_len);
            break;
        case QCMAP_MSGR_WWAN_STATUS_IND_V01:
            on_status(user_handle, msg_id, ind_buf, ind_buf_len);
            break;
        case QCMAP_MSGR_STATUS_REPORT_IND_V01:
            on_status_report(user_handle, msg_id, ind_buf, ind_buf_len);
            break;
        default:
            break;
    }
}
