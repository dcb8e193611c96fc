// The floor: the platform calls of "NAT Type set 1 2" in their order, on an object on the heap as the service's users
// have it, the verdict through puts, and the pause. Nothing here is the command's own.
#include <diag_msg.h>
#include <qcmap_client.h>
#include <unistd.h>

#include <cstdio>

namespace {

constexpr msg_const_type kRecord = {1, 65, MSG_LEVEL_HIGH, "[%s]%s()", "floor"};

void ignore_indication(qmi_client_type, unsigned int, void*, unsigned int, void*) {}

void write_record(const char* function, unsigned int first, unsigned int second)
{
    msg_sprintf(&kRecord, "ZR_NEXA", function, first, second, 0u, 0u, 0u);
}

bool set_nat_type()
{
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    write_record("init", 0, 0);
    auto* const client = new QCMAP_Client(ignore_indication, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
    if (!client->IsReady() || !client->EnableMobileAP_Ext(&err, 65535)) return false;
    write_record("set", 0, 0);
    if (!client->SetWWANProfileHandlePreference(1, &err)) return false;
    if (!client->SetNatType(QCMAP_MSGR_NAT_FULL_CONE_V01, &err)) return false;
    write_record("set", 1, 2);
    puts("CMD OK\r");
    write_record("uninit", 0, 0);
    const bool closed = client->DisableMobileAP(&err);
    delete client;
    return closed;
}

}  // namespace

int main()
{
    if (!set_nat_type()) return 1;
    return static_cast<int>(sleep(1));
}
