// The message decoder's double: writes down what it was asked and gives the record that the test says, which must have
// exactly the size of the caller's. fails(error) is what it returns, as a 32-bit word.
#include "scripted_platform.h"

using scripted::Call;

int qmi_client_message_decode(qmi_client_type user_handle, qmi_idl_type_of_message_type type, unsigned int msg_id,
                              const void* wire, unsigned int wire_len, void* record, unsigned int record_len)
{
    Call call("qmi_client_message_decode");
    call.arg("user_handle", reinterpret_cast<uintptr_t>(user_handle)).arg("type", type).arg("msg_id", msg_id);
    call.bytes("wire", wire, wire_len).arg("record_len", record_len);
    // The rest of the caller's record is not touched, so that it shows whether it was cleared.
    call.out_array("record", static_cast<unsigned char*>(record), record_len);
    qmi_error_type_v01 error;
    call.finish(&error);
    return error;
}
