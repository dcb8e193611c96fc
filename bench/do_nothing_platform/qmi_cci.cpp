#include <qmi_client.h>

int qmi_client_message_decode(qmi_client_type, qmi_idl_type_of_message_type, unsigned int, const void*, unsigned int,
                              void*, unsigned int)
{
    return QMI_NO_ERR;
}
