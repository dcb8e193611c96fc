// Client library of the service's message transport: what the indications need of it.
#ifndef QMI_CLIENT_H
#define QMI_CLIENT_H

typedef void* qmi_client_type;

enum qmi_idl_type_of_message_type { QMI_IDL_REQUEST = 0, QMI_IDL_RESPONSE = 1, QMI_IDL_INDICATION = 2 };

enum qmi_client_error_type {
    QMI_NO_ERR = 0,
    QMI_INTERNAL_ERR = -1,
    QMI_TIMEOUT_ERR = -3,
    QMI_IDL_LIB_MISMATCHED_MESSAGE = -16,
    QMI_IDL_LIB_BAD_LENGTH = -17,
    QMI_IDL_LIB_UNKNOWN_MESSAGE = -18
};

// Decodes message msg_id from wire into record, which has room for exactly record_len bytes.
// Returns QMI_NO_ERR, or a negative error with record untouched.
extern "C" int qmi_client_message_decode(qmi_client_type user_handle, qmi_idl_type_of_message_type type,
                                         unsigned int msg_id, const void* wire, unsigned int wire_len, void* record,
                                         unsigned int record_len);

#endif
