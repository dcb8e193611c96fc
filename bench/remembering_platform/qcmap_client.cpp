// The client library of a platform that remembers in plain arrays what has many entries, and does nothing else: what
// is left when zr_nexactl runs on it is zr_nexactl's own cost. CMakeLists.txt writes the methods that do not stand
// here; they do nothing at all.
//
// The arrays lie in the file $REMEMBERED, which may be empty, so that the next program finds them. They begin with the
// number of calls.
#include <fcntl.h>
#include <qcmap_client.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

void count_call();

namespace {

struct Lan {
    qcmap_msgr_lan_config_v01 addressing;
    qcmap_msgr_sw_path_filters_conf_t filters;
    qcmap_msgr_l2tp_conf_t l2tp;
};

struct FirewallEntry {
    qcmap_firewall_filter filter;
    uint32_t direction;
};

struct Profile {
    qcmap_msgr_nat_enum_v01 nat_type;
    uint32_t dmz;
    int mapping_count;
    qcmap_msgr_snat_entry_config_v01 mapping[QCMAP_MAX_SNAT_ENTRIES];
    int entry_count;
    FirewallEntry entry[QCMAP_MAX_FIREWALL_ENTRIES];
    uint8_t firewall;
    uint8_t let_through;
    uint8_t reconnect;
    uint8_t autoconnect;
    uint8_t roaming;
};

struct State {
    uint64_t calls;
    qcmap_msgr_vlan_conf_t vlans;
    qcmap_wwan_policy_list_info policies;
    Lan lan[4095];
    Profile profile[QCMAP_MAX_WWAN_PROFILES + 1];
    qcmap_msgr_pdn_to_vlan_mapping_ex_v01 pairs;
    unsigned int reservation_count;
    qcmap_msgr_dhcp_reservation_v01 reservation[QCMAP_MAX_DHCP_RESERVATIONS];
    qcmap_sw_path_filters_ex_ipv4_addr_list addresses;
};

State* state;
Lan* lan;
Profile* profile;

State* open_state()
{
    const char* const path = getenv("REMEMBERED");
    const int fd = path != nullptr ? open(path, O_RDWR) : -1;
    if (fd < 0 || ftruncate(fd, sizeof(State)) != 0) abort();
    void* const memory = mmap(nullptr, sizeof(State), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    if (memory == MAP_FAILED) abort();
    auto* const opened = static_cast<State*>(memory);
    if (opened->lan[0].addressing.netmask == 0)
        opened->lan[0].addressing = {0xc0a8e101, 0xffffff00, 1, 0xc0a8e114, 0xc0a8e13c, 43200, 1, 0, 0, 1500};
    return opened;
}

bool done(qmi_error_type_v01* err)
{
    ++state->calls;
    *err = QMI_ERR_NONE_V01;
    return true;
}

}  // namespace

void count_call()
{
    ++state->calls;
}

QCMAP_Client::QCMAP_Client(client_status_ind_t, qcmap_msgr_arch_type_enum_v01, void*)
    : mobile_ap_handle(0), session_(nullptr)
{
    state = open_state();
}

QCMAP_Client::~QCMAP_Client()
{
    munmap(state, sizeof(State));
}

bool QCMAP_Client::IsReady()
{
    return true;
}

// ---- LANs ----

bool QCMAP_Client::SelectLANBridge(short lan_id, qmi_error_type_v01* err)
{
    lan = &state->lan[lan_id];
    return done(err);
}

bool QCMAP_Client::GetLANConfig(qcmap_msgr_lan_config_v01* config, qmi_error_type_v01* err)
{
    *config = lan->addressing;
    return done(err);
}

bool QCMAP_Client::SetLANConfig(qcmap_msgr_lan_config_v01 config, qmi_error_type_v01* err)
{
    lan->addressing = config;
    return done(err);
}

bool QCMAP_Client::CreateVLANConfig(qcmap_msgr_vlan_config_ex_v01 vlan, qmi_error_type_v01* err, bool*)
{
    state->vlans.vlan[state->vlans.count++] = vlan;
    return done(err);
}

bool QCMAP_Client::GetVLANConfig(qcmap_msgr_vlan_conf_t* list, qmi_error_type_v01* err)
{
    list->count = state->vlans.count;
    memcpy(list->vlan, state->vlans.vlan, static_cast<size_t>(list->count) * sizeof list->vlan[0]);
    return done(err);
}

bool QCMAP_Client::GetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t* list, qmi_error_type_v01* err)
{
    *list = lan->filters;
    return done(err);
}

bool QCMAP_Client::SetIPPassthroughSoftwarePathFilters(qcmap_msgr_sw_path_filters_conf_t* list, qmi_error_type_v01* err)
{
    lan->filters = *list;
    return done(err);
}

bool QCMAP_Client::GetL2TPConfig(qcmap_msgr_l2tp_conf_t* config, qmi_error_type_v01* err)
{
    *config = lan->l2tp;
    return done(err);
}

bool QCMAP_Client::SetL2TPConfig(qcmap_msgr_l2tp_mode_enum_v01 mode, qcmap_msgr_l2tp_config_v01 config,
                                 qmi_error_type_v01* err)
{
    lan->l2tp.mode = mode;
    lan->l2tp.tunnel[lan->l2tp.tunnel_count++] = config;
    return done(err);
}

bool QCMAP_Client::AddDHCPReservRecord(qcmap_msgr_dhcp_reservation_v01* record, qmi_error_type_v01* err)
{
    state->reservation[state->reservation_count++] = *record;
    return done(err);
}

bool QCMAP_Client::GetDHCPReservRecords(qcmap_msgr_dhcp_reservation_v01* records, unsigned int* count,
                                        qmi_error_type_v01* err)
{
    *count = state->reservation_count;
    memcpy(records, state->reservation, *count * sizeof records[0]);
    return done(err);
}

bool QCMAP_Client::ZR_AddIPToSWPathFilters(unsigned int ipv4_address, qmi_error_type_v01* err)
{
    state->addresses.address[state->addresses.count++] = ipv4_address;
    return done(err);
}

bool QCMAP_Client::ZR_GetIPFromSWPathFilters(qcmap_sw_path_filters_ex_ipv4_addr_list* list, qmi_error_type_v01* err)
{
    *list = state->addresses;
    return done(err);
}

// ---- profiles ----

bool QCMAP_Client::CreateWWANPolicyEx(qcmap_net_policy_info policy, unsigned int* handle, qmi_error_type_v01* err)
{
    policy.profile_handle = *handle = state->policies.number_of_policies + 1;
    state->policies.policy[state->policies.number_of_policies++] = policy;
    return done(err);
}

bool QCMAP_Client::GetWWANPolicyListEx(qcmap_wwan_policy_list_info* list, qmi_error_type_v01* err)
{
    *list = state->policies;
    return done(err);
}

bool QCMAP_Client::SetWWANProfileHandlePreference(unsigned int handle, qmi_error_type_v01* err)
{
    profile = &state->profile[handle];
    return done(err);
}

bool QCMAP_Client::SetReconnect(bool enable, qmi_error_type_v01* err)
{
    profile->reconnect = enable;
    return done(err);
}

bool QCMAP_Client::GetReconnect(unsigned char* enable, qmi_error_type_v01* err)
{
    *enable = profile->reconnect;
    return done(err);
}

bool QCMAP_Client::SetAutoconnect(bool enable, qmi_error_type_v01* err)
{
    profile->autoconnect = enable;
    return done(err);
}

bool QCMAP_Client::GetAutoconnect(unsigned char* enable, qmi_error_type_v01* err)
{
    *enable = profile->autoconnect;
    return done(err);
}

bool QCMAP_Client::SetRoaming(bool enable, qmi_error_type_v01* err)
{
    profile->roaming = enable;
    return done(err);
}

bool QCMAP_Client::GetRoaming(unsigned char* enable, qmi_error_type_v01* err)
{
    *enable = profile->roaming;
    return done(err);
}

bool QCMAP_Client::AddPDNToVLANMapping(short vlan_id, unsigned int profile_handle, qmi_error_type_v01* err)
{
    qcmap_pdn_to_vlan_mapping& mapping = state->pairs.mapping[profile_handle - 1];
    mapping.vlan_id[mapping.vlan_count++] = vlan_id;
    return done(err);
}

bool QCMAP_Client::GetPDNtoVLANMappingsEx(qcmap_msgr_pdn_to_vlan_mapping_ex_v01* mappings, int* count,
                                          qmi_error_type_v01* err)
{
    *count = static_cast<int>(state->policies.number_of_policies);
    for (int i = 0; i < *count; ++i) {
        const qcmap_pdn_to_vlan_mapping& from = state->pairs.mapping[i];
        mappings->mapping[i].profile_handle = static_cast<uint32_t>(i + 1);
        mappings->mapping[i].vlan_count = from.vlan_count;
        memcpy(mappings->mapping[i].vlan_id, from.vlan_id, static_cast<size_t>(from.vlan_count) * sizeof(int16_t));
    }
    return done(err);
}

bool QCMAP_Client::SetNatType(qcmap_msgr_nat_enum_v01 nat_type, qmi_error_type_v01* err)
{
    profile->nat_type = nat_type;
    return done(err);
}

bool QCMAP_Client::GetNatType(qcmap_msgr_nat_enum_v01* nat_type, qmi_error_type_v01* err)
{
    *nat_type = profile->nat_type;
    return done(err);
}

bool QCMAP_Client::AddDMZ(unsigned int ip, qmi_error_type_v01* err)
{
    profile->dmz = ip;
    return done(err);
}

bool QCMAP_Client::GetDMZ(unsigned int* ip, qmi_error_type_v01* err)
{
    *ip = profile->dmz;
    return done(err);
}

bool QCMAP_Client::AddStaticNatEntry(qcmap_msgr_snat_entry_config_v01* entry, qmi_error_type_v01* err)
{
    profile->mapping[profile->mapping_count++] = *entry;
    return done(err);
}

bool QCMAP_Client::GetStaticNatConfig(qcmap_msgr_snat_entry_config_v01* entries, int* count, qmi_error_type_v01* err)
{
    *count = profile->mapping_count;
    memcpy(entries, profile->mapping, static_cast<size_t>(*count) * sizeof entries[0]);
    return done(err);
}

// An entry's handle is its place, from 1.
bool QCMAP_Client::AddFireWallEntry(qcmap_msgr_firewall_conf_t* conf, qmi_error_type_v01* err)
{
    profile->entry[profile->entry_count++] = {conf->filter, conf->direction};
    return done(err);
}

bool QCMAP_Client::GetFireWallHandlesList(qcmap_msgr_get_firewall_handle_list_conf_t* list, qmi_error_type_v01* err)
{
    list->count = 0;
    for (int i = 0; i < profile->entry_count; ++i)
        if (profile->entry[i].filter.ip_version == list->ip_family)
            list->handle[list->count++] = static_cast<uint32_t>(i + 1);
    return done(err);
}

bool QCMAP_Client::GetFireWallEntry(qcmap_msgr_firewall_entry_conf_t* conf, qmi_error_type_v01* err)
{
    conf->filter = profile->entry[conf->handle - 1].filter;
    conf->direction = profile->entry[conf->handle - 1].direction;
    return done(err);
}

bool QCMAP_Client::SetFirewall(unsigned int enable, unsigned int pkts_allowed, qmi_error_type_v01* err)
{
    profile->firewall = static_cast<uint8_t>(enable);
    profile->let_through = static_cast<uint8_t>(pkts_allowed);
    return done(err);
}

bool QCMAP_Client::GetFirewall(unsigned char* enable, unsigned char* pkts_allowed, qmi_error_type_v01* err)
{
    *enable = profile->firewall;
    *pkts_allowed = profile->let_through;
    return done(err);
}
