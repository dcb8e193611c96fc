// Decoded indications of the mobile-AP service. Their sizes are part of the interface: fixed-width fields only, so that
// 32-bit and 64-bit builds agree.
#ifndef QCMAP_INDICATIONS_H
#define QCMAP_INDICATIONS_H

#include <stdint.h>

#define QCMAP_MSGR_BRING_UP_WWAN_IND_V01 34u
#define QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01 35u
#define QCMAP_MSGR_WWAN_STATUS_IND_V01 36u
#define QCMAP_MSGR_STATUS_REPORT_IND_V01 169u

// What the three call indications begin with.
struct qcmap_wwan_call_ind {
    uint32_t mobile_ap_handle;
    uint32_t conn_status;  // qcmap_msgr_wwan_status_enum_v01
    uint32_t call_end_type;
    uint32_t call_end_code;
    uint8_t profile_handle_valid;  // 1: profile_handle holds a value
    uint8_t subs_id_valid;         // 1: subs_id holds a value
    uint8_t reserved[2];
    uint32_t profile_handle;
    uint32_t subs_id;
};

struct qcmap_msgr_bring_up_wwan_ind_msg_v01 {
    qcmap_wwan_call_ind call;
    char iface_name[16];  // not terminated when it fills the field
    uint32_t v4_addr;     // network byte order, like the next two
    uint32_t v4_pri_dns_addr;
    uint32_t v4_sec_dns_addr;
    uint8_t v6_addr[16];
    uint8_t v6_pri_dns_addr[16];
    uint8_t v6_sec_dns_addr[16];
    uint8_t reserved[32];
};
static_assert(sizeof(qcmap_msgr_bring_up_wwan_ind_msg_v01) == 136, "decoded size of indication 34");

struct qcmap_msgr_tear_down_wwan_ind_msg_v01 {
    qcmap_wwan_call_ind call;
    uint8_t reserved[8];
};
static_assert(sizeof(qcmap_msgr_tear_down_wwan_ind_msg_v01) == 36, "decoded size of indication 35");

struct qcmap_msgr_wwan_status_ind_msg_v01 {
    qcmap_wwan_call_ind call;
    uint8_t reserved[416];
};
static_assert(sizeof(qcmap_msgr_wwan_status_ind_msg_v01) == 444, "decoded size of indication 36");

struct qcmap_msgr_status_report_ind_msg_v01 {
    uint32_t kind;  // 0 and 1 are of interest to callers
    uint8_t report[10884];
};
static_assert(sizeof(qcmap_msgr_status_report_ind_msg_v01) == 10888, "decoded size of indication 169");

#endif
