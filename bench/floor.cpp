// The floor: a request's platform calls and nothing else. It loads the same libraries as the command, opens the
// service, makes the two calls of "NAT Type set 1 2", closes it, prints one verdict line and pauses as the command
// must.
#include <qcmap_client.h>
#include <unistd.h>

#include <cstdio>

namespace {

void ignore_indication(qmi_client_type, unsigned int, void*, unsigned int, void*) {}

}  // namespace

int main()
{
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    auto* const client = new QCMAP_Client(ignore_indication, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
    if (client->IsReady() && client->EnableMobileAP_Ext(&err, 65535) &&
        client->SetWWANProfileHandlePreference(1, &err) && client->SetNatType(QCMAP_MSGR_NAT_FULL_CONE_V01, &err)) {
        puts("CMD OK\r");
    }
    client->DisableMobileAP(&err);
    delete client;
    return static_cast<int>(sleep(1));
}
