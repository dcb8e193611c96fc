#include "scripted_platform.h"

using scripted::Call;

bool QCMAP_Client::RestoreFactoryConfig(qmi_error_type_v01* err)
{
    return Call("RestoreFactoryConfig").finish(err);
}

bool QCMAP_Client::SetDataPathOptStatus(unsigned char enable, qmi_error_type_v01* err)
{
    return Call("SetDataPathOptStatus").arg(enable).finish(err);
}

bool QCMAP_Client::GetDataPathOptStatus(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetDataPathOptStatus").out("enable", enable).finish(err);
}
