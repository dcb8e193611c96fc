#include "scripted_platform.h"

using scripted::Call;

bool QCMAP_Client::EnableUPNP(qmi_error_type_v01* err)
{
    return Call("EnableUPNP").finish(err);
}

bool QCMAP_Client::DisableUPNP(qmi_error_type_v01* err)
{
    return Call("DisableUPNP").finish(err);
}

bool QCMAP_Client::GetUPNPStatus(qcmap_msgr_upnp_mode_enum_v01* mode, qmi_error_type_v01* err)
{
    return Call("GetUPNPStatus").out("mode", mode).finish(err);
}

bool QCMAP_Client::SetUPNPNotifyInterval(unsigned int seconds, qmi_error_type_v01* err)
{
    return Call("SetUPNPNotifyInterval").arg(seconds).finish(err);
}

bool QCMAP_Client::GetUPNPNotifyInterval(unsigned int* seconds, qmi_error_type_v01* err)
{
    return Call("GetUPNPNotifyInterval").out("seconds", seconds).finish(err);
}

bool QCMAP_Client::SetUPNPState(unsigned char firewall_enabled, unsigned char pinhole, qmi_error_type_v01* err)
{
    return Call("SetUPNPState").arg(firewall_enabled).arg(pinhole).finish(err);
}

bool QCMAP_Client::GetUPNPState(unsigned char* pinhole, qmi_error_type_v01* err)
{
    return Call("GetUPNPState").out("pinhole", pinhole).finish(err);
}
