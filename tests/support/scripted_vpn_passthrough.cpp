#include "scripted_platform.h"

using scripted::Call;

bool QCMAP_Client::SetPPTPVpnPassthrough(unsigned char enable, qmi_error_type_v01* err)
{
    return Call("SetPPTPVpnPassthrough").arg(enable).finish(err);
}

bool QCMAP_Client::GetPPTPVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetPPTPVpnPassthrough").out("enable", enable).finish(err);
}

bool QCMAP_Client::SetPPTPVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err)
{
    return Call("SetPPTPVpnPassthrough_Ipv6").arg(enable).finish(err);
}

bool QCMAP_Client::GetPPTPVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetPPTPVpnPassthrough_Ipv6").out("enable", enable).finish(err);
}

bool QCMAP_Client::SetIPSECVpnPassthrough(unsigned char enable, qmi_error_type_v01* err)
{
    return Call("SetIPSECVpnPassthrough").arg(enable).finish(err);
}

bool QCMAP_Client::GetIPSECVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetIPSECVpnPassthrough").out("enable", enable).finish(err);
}

bool QCMAP_Client::SetIPSECVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err)
{
    return Call("SetIPSECVpnPassthrough_Ipv6").arg(enable).finish(err);
}

bool QCMAP_Client::GetIPSECVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetIPSECVpnPassthrough_Ipv6").out("enable", enable).finish(err);
}

bool QCMAP_Client::SetL2TPVpnPassthrough(unsigned char enable, qmi_error_type_v01* err)
{
    return Call("SetL2TPVpnPassthrough").arg(enable).finish(err);
}

bool QCMAP_Client::GetL2TPVpnPassthrough(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetL2TPVpnPassthrough").out("enable", enable).finish(err);
}

bool QCMAP_Client::SetL2TPVpnPassthrough_Ipv6(unsigned char enable, qmi_error_type_v01* err)
{
    return Call("SetL2TPVpnPassthrough_Ipv6").arg(enable).finish(err);
}

bool QCMAP_Client::GetL2TPVpnPassthrough_Ipv6(unsigned char* enable, qmi_error_type_v01* err)
{
    return Call("GetL2TPVpnPassthrough_Ipv6").out("enable", enable).finish(err);
}
