// Decoding of indications.
#include <stdint.h>
#include <string.h>

#include <algorithm>

#include "indication_wire.h"
#include "qcmap_indications.h"
#include "qmi_client.h"

namespace {

unsigned int decoded_size(unsigned int msg_id)
{
    switch (msg_id) {
        case QCMAP_MSGR_BRING_UP_WWAN_IND_V01:
            return sizeof(qcmap_msgr_bring_up_wwan_ind_msg_v01);
        case QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01:
            return sizeof(qcmap_msgr_tear_down_wwan_ind_msg_v01);
        case QCMAP_MSGR_WWAN_STATUS_IND_V01:
            return sizeof(qcmap_msgr_wwan_status_ind_msg_v01);
        case QCMAP_MSGR_STATUS_REPORT_IND_V01:
            return sizeof(qcmap_msgr_status_report_ind_msg_v01);
        default:
            return 0;
    }
}

}  // namespace

extern "C" int qmi_client_message_decode(qmi_client_type, qmi_idl_type_of_message_type type, unsigned int msg_id,
                                         const void* wire, unsigned int wire_len, void* record, unsigned int record_len)
{
    if (wire == nullptr || record == nullptr) return QMI_INTERNAL_ERR;
    if (type != QMI_IDL_INDICATION) return QMI_IDL_LIB_MISMATCHED_MESSAGE;
    const unsigned int size = decoded_size(msg_id);
    if (size == 0) return QMI_IDL_LIB_UNKNOWN_MESSAGE;
    const mobile_ap::WireHeader header = mobile_ap::wire_header(size);
    if (record_len != size || wire_len < header.size()) return QMI_IDL_LIB_BAD_LENGTH;
    const uint8_t* bytes = static_cast<const uint8_t*>(wire);
    if (bytes[0] != header[0]) return QMI_IDL_LIB_MISMATCHED_MESSAGE;
    if (!std::equal(header.begin(), header.end(), bytes) || wire_len != header.size() + size)
        return QMI_IDL_LIB_BAD_LENGTH;
    memcpy(record, bytes + header.size(), size);
    return QMI_NO_ERR;
}
