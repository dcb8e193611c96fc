// The client library of a platform that does nothing: every request succeeds at once and costs a call and a return.
// What is left when the command runs on it is the command's own cost. CMakeLists.txt writes the methods that do not
// stand here.
#include <qcmap_client.h>

// The one list that can be long: how many pairs it has.
static int listed_pairs = 0;

extern "C" void do_nothing_list_pairs(int pairs);  // for bench/interface.cpp
void do_nothing_list_pairs(int pairs)
{
    listed_pairs = pairs;
}

QCMAP_Client::QCMAP_Client(client_status_ind_t, qcmap_msgr_arch_type_enum_v01, void*)
    : mobile_ap_handle(0), session_(nullptr)
{
}
QCMAP_Client::~QCMAP_Client() = default;

bool QCMAP_Client::IsReady()
{
    return true;
}

bool QCMAP_Client::GetPDNtoVLANMappingsEx(qcmap_msgr_pdn_to_vlan_mapping_ex_v01* mappings, int* count,
                                          qmi_error_type_v01* err)
{
    *err = QMI_ERR_NONE_V01;
    *count = 0;
    for (int left = listed_pairs; left > 0; left -= QCMAP_MAX_VLANS_PER_PDN) {
        qcmap_pdn_to_vlan_mapping& mapping = mappings->mapping[(*count)++];
        mapping.profile_handle = static_cast<uint32_t>(*count);
        mapping.vlan_count = left < QCMAP_MAX_VLANS_PER_PDN ? left : QCMAP_MAX_VLANS_PER_PDN;
        for (int i = 0; i < mapping.vlan_count; ++i) {
            mapping.vlan_id[i] = static_cast<int16_t>(i + 1);
        }
    }
    return true;
}
