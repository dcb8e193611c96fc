// Selection of profile and bridge, which most areas begin with.
#include "scripted_platform.h"

using scripted::Call;

bool QCMAP_Client::SetWWANProfileHandlePreference(unsigned int handle, qmi_error_type_v01* err)
{
    return Call("SetWWANProfileHandlePreference").arg(handle).finish(err);
}

bool QCMAP_Client::SelectLANBridge(short lan_id, qmi_error_type_v01* err)
{
    return Call("SelectLANBridge").arg(lan_id).finish(err);
}
