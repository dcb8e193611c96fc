#include "state.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>

#include "qmi_client.h"
#include "session.h"

namespace soak {
namespace {

using mobile_ap::Store;

constexpr uint32_t kWorkersNet = 0x0a000000;
constexpr const char* kFactoryUrl = "mobileap.home";

// Every number of it is the same.
qcmap_msgr_lan_config_v01 lan_of(uint32_t value)
{
    qcmap_msgr_lan_config_v01 lan = {};
    lan.gateway_ip = lan.netmask = lan.dhcp_start_ip = lan.dhcp_end_ip = value;
    lan.lease_time = lan.dns_mode = lan.primary_dns = lan.secondary_dns = lan.mtu = value;
    lan.enable_dhcp = 1;
    return lan;
}

bool is_whole(const qcmap_msgr_lan_config_v01& lan)
{
    if (lan.gateway_ip == 0xc0a8e101) return lan.mtu == 1500 && lan.lease_time == 43200;  // as on the first day
    for (const uint32_t value : {lan.netmask, lan.dhcp_start_ip, lan.dhcp_end_ip, lan.lease_time, lan.dns_mode,
                                 lan.primary_dns, lan.secondary_dns, lan.mtu}) {
        if (value != lan.gateway_ip) return false;
    }
    return true;
}

void hear(qmi_client_type client, unsigned int msg_id, void* wire, unsigned int size, void* user)
{
    Told& told = *static_cast<Told*>(user);
    qcmap_msgr_wwan_status_ind_msg_v01 record = {};
    const int code = qmi_client_message_decode(client, QMI_IDL_INDICATION, msg_id, wire, size, &record, sizeof record);
    const uint32_t number = code == QMI_NO_ERR ? record.call.conn_status : 0;
    if (told.heard != 0 && number != told.heard + 1) ++told.gaps;
    told.heard = number;
}

// The next number, in the gateway's URL and in an indication.
bool count_up(mobile_ap::Session& session)
{
    return mobile_ap::method(&session, "CountUp", nullptr, [](Store& db) {
        const auto number = static_cast<uint32_t>(mobile_ap::newest_indication(db) + 1);
        db.run("UPDATE lan_service SET gateway_url = ?", std::to_string(number));
        qcmap_msgr_wwan_status_ind_msg_v01 record = {};
        record.call.mobile_ap_handle = mobile_ap::mobile_ap_handle(db);
        record.call.conn_status = number;
        mobile_ap::indicate(db, QCMAP_MSGR_WWAN_STATUS_IND_V01, record);
    });
}

std::string damage_of(const std::string& folder)
{
    try {
        mobile_ap::Database db;
        db.open(database_of(folder));
        const std::string verdict = db.one<std::string>("PRAGMA integrity_check").value_or("no answer");
        return verdict == "ok" ? "" : verdict;
    } catch (const mobile_ap::DatabaseError& error) {
        return error.reason;
    }
}

// Numbers in the URL and in the newest indication.
bool same_numbers(QCMAP_Client& client, mobile_ap::Session& session, uint32_t* numbers)
{
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    unsigned char url[256] = "";
    unsigned int length = 0;
    if (!client.GetGatewayUrl(url, &length, &err)) return false;
    uint32_t of_indication = 0;
    const bool read = mobile_ap::read_method(&session, "Numbers", &err, [&](Store& db) {
        *numbers = static_cast<uint32_t>(mobile_ap::newest_indication(db));
        const auto wire = db.one<std::vector<uint8_t>>("SELECT wire FROM indication ORDER BY id DESC LIMIT 1");
        qcmap_msgr_wwan_status_ind_msg_v01 record = {};
        if (wire && qmi_client_message_decode(nullptr, QMI_IDL_INDICATION, QCMAP_MSGR_WWAN_STATUS_IND_V01, wire->data(),
                                              static_cast<unsigned int>(wire->size()), &record, sizeof record) == 0)
            of_indication = record.call.conn_status;
    });
    const std::string text(url, url + length);
    return read && of_indication == *numbers && text == (*numbers == 0 ? kFactoryUrl : std::to_string(*numbers));
}

// Each worker's entries are there without a gap.
bool count_entries(QCMAP_Client& client, Found& found)
{
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_msgr_snat_entry_config_v01 entries[QCMAP_MAX_SNAT_ENTRIES] = {};
    int count = 0;
    if (!client.GetStaticNatConfig(entries, &count, &err)) return false;
    for (int i = 0; i < count; ++i) {
        const uint32_t worker = entries[i].private_ip - kWorkersNet;
        if (worker >= std::size(found.entries) || entries[i].private_port != ++found.entries[worker]) return false;
    }
    return true;
}

}  // namespace

int work(const std::string& folder, uint32_t worker, uint32_t rounds, Told& told)
{
    setenv("MOBILE_AP_STATE", folder.c_str(), 1);
    std::unique_ptr<QCMAP_Client> client;
    for (int attempt = 0; attempt < 2; ++attempt) {
        client = std::make_unique<QCMAP_Client>(hear, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, &told);
        if (client->IsReady()) break;
    }
    if (!client->IsReady()) return kNeverReady;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    if (!client->EnableMobileAP_Ext(&err, 65535)) ++told.refused;
    mobile_ap::Session session(nullptr, nullptr);
    for (uint32_t round = 1; round <= rounds; ++round) {
        ++(count_up(session) ? told.numbers : told.refused);
        if (!client->SetLANConfig(lan_of(worker * 1000 + round), &err)) ++told.refused;
        qcmap_msgr_snat_entry_config_v01 entry = {};
        entry.private_ip = kWorkersNet + worker;
        entry.private_port = static_cast<uint16_t>(told.entries + 1);
        entry.global_port = static_cast<uint16_t>(1000 + round);
        entry.protocol = 17;
        ++(client->AddStaticNatEntry(&entry, &err) ? told.entries : told.refused);
    }
    client->DisableMobileAP(&err);
    return 0;
}

Found look_at(const std::string& folder, int attempts)
{
    setenv("MOBILE_AP_STATE", folder.c_str(), 1);
    Found found;
    while (!found.ready && found.attempts < attempts) {
        ++found.attempts;
        QCMAP_Client client(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
        if (!client.IsReady()) continue;
        found.ready = true;
        mobile_ap::Session session(nullptr, nullptr);
        qmi_error_type_v01 err = QMI_ERR_NONE_V01;
        qcmap_msgr_lan_config_v01 lan = {};
        found.torn = !client.GetLANConfig(&lan, &err) || !is_whole(lan);
        found.torn = !same_numbers(client, session, &found.numbers) || found.torn;
        found.torn = !count_entries(client, found) || found.torn;
    }
    found.damage = found.ready ? damage_of(folder) : "";
    return found;
}

std::string loss(const Found& found, const Told* told, uint32_t workers, uint32_t first)
{
    if (!found.ready) return "NOT READY after " + std::to_string(found.attempts) + " attempts";
    if (!found.damage.empty()) return "DAMAGED: " + found.damage;
    if (found.torn) return "TORN: a change is there by half";
    uint32_t numbers = first;
    for (uint32_t worker = 0; worker < workers; ++worker) {
        const uint32_t entries = told[worker].entries;
        numbers += told[worker].numbers;
        // What was under way may be there.
        if (found.entries[worker] != entries && found.entries[worker] != entries + 1)
            return "LOST: worker " + std::to_string(worker) + " was told of " + std::to_string(entries) +
                   " entries, there are " + std::to_string(found.entries[worker]);
        if (told[worker].gaps != 0) return "LOST: a session has missed an indication";
        if (told[worker].heard > found.numbers) return "LOST: a session has heard of what is not there";
    }
    if (found.numbers < numbers || found.numbers > numbers + workers)
        return "LOST: " + std::to_string(numbers) + " numbers, there are " + std::to_string(found.numbers);
    return "";
}

void make_state(const std::string& folder, uint32_t rounds)
{
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    Told told;
    // Another worker than those whose entries are counted.
    if (work(folder, 63, rounds, told) != 0 || told.refused != 0) throw std::runtime_error("no state in " + folder);
}

void copy_state(const std::string& from, const std::string& to)
{
    std::filesystem::remove_all(to);
    std::filesystem::copy(from, to, std::filesystem::copy_options::recursive);
}

std::string read_file(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void write_file(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string database_of(const std::string& folder)
{
    return folder + "/mobile_ap.db";
}

std::vector<std::string> set_aside(const std::string& folder)
{
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        const bool is_log = name.find("-wal") != std::string::npos || name.find("-journal") != std::string::npos ||
                            name.find("-shm") != std::string::npos;
        const bool is_aside =
            name.rfind("mobile_ap.db.corrupt-", 0) == 0 || name.rfind("mobile_ap.db.version-", 0) == 0;
        if (is_aside && !is_log) paths.push_back(entry.path().string());
    }
    return paths;
}

std::string cut_copies(const std::string& folder, const std::string& bytes)
{
    bool found = read_file(database_of(folder)) == bytes;
    for (const std::string& path : set_aside(folder)) {
        if (std::filesystem::file_size(path) == 0) return "CUT: " + path + " is empty";
        found = read_file(path) == bytes || found;
    }
    return found ? "" : "CUT: what was to be set aside is nowhere as it was";
}

void damage_state(const std::string& folder)
{
    std::string bytes = read_file(database_of(folder));
    std::fill(bytes.begin() + 4096, bytes.begin() + 3 * 4096, '\xa5');
    write_file(database_of(folder), bytes);
}

void give_other_version(const std::string& folder)
{
    constexpr size_t kUserVersion = 60;
    std::string bytes = read_file(database_of(folder));
    bytes[kUserVersion] = static_cast<char>(bytes[kUserVersion] ^ 1);
    write_file(database_of(folder), bytes);
}

}  // namespace soak
