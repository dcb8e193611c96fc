#include <arpa/inet.h>
#include <zr_nexa_client_api.h>

#include <functional>

#include "host_fixture.h"

namespace {

using Records = std::vector<std::string>;
using Work = std::function<void(QCMAP_Client&)>;
using Call = std::function<bool(QCMAP_Client&, qmi_error_type_v01*)>;
using Lan = qcmap_msgr_lan_config_v01;

uint32_t address(const char* text)
{
    in_addr network = {};
    EXPECT_EQ(inet_pton(AF_INET, text, &network), 1) << text;
    return ntohl(network.s_addr);
}

Lan lan_config(QCMAP_Client& client, short id)
{
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    Lan lan = {};
    EXPECT_TRUE(client.SelectLANBridge(id, &err) && client.GetLANConfig(&lan, &err)) << id;
    return lan;
}

// Changes the LAN's record as it stands.
bool set_lan(QCMAP_Client& client, short id, const std::function<void(Lan&)>& change, qmi_error_type_v01* err)
{
    Lan lan = lan_config(client, id);
    change(lan);
    return client.SetLANConfig(lan, err);
}

// Moves it to the net of this address, with a pool from its 20th address to its 60th.
void move_to(Lan& lan, const char* gateway, uint32_t netmask = 0xffffff00)
{
    lan.gateway_ip = address(gateway);
    lan.netmask = netmask;
    lan.dhcp_start_ip = (lan.gateway_ip & lan.netmask) + 20;
    lan.dhcp_end_ip = (lan.gateway_ip & lan.netmask) + 60;
}

bool add_vlan(QCMAP_Client& client, short id, qmi_error_type_v01* err)
{
    qcmap_msgr_vlan_config_ex_v01 vlan = {};
    vlan.vlan_id = id;
    vlan.interface_type = QCMAP_MSGR_INTERFACE_TYPE_ETH_V01;
    bool accelerated = false;
    return client.CreateVLANConfig(vlan, err, &accelerated);
}

qcmap_msgr_dhcp_reservation_v01 reservation(const char* ip)
{
    qcmap_msgr_dhcp_reservation_v01 record = {};
    record.reserved_ip = htonl(address(ip));
    record.mac[0] = 2;
    record.mac[5] = static_cast<uint8_t>(address(ip));
    record.enable = 1;
    return record;
}

bool reserve(QCMAP_Client& client, const char* ip, qmi_error_type_v01* err)
{
    auto record = reservation(ip);
    return client.AddDHCPReservRecord(&record, err);
}

bool edit(QCMAP_Client& client, const char* ip, qcmap_msgr_dhcp_reservation_v01 record, qmi_error_type_v01* err)
{
    unsigned int old = htonl(address(ip));
    return client.EditDHCPReservRecord(&old, &record, err);
}

bool map_port(QCMAP_Client& client, const char* host, uint16_t port, qmi_error_type_v01* err)
{
    qcmap_msgr_snat_entry_config_v01 entry = {address(host), port, port, 6};
    return client.AddStaticNatEntry(&entry, err);
}

// All that is judged, as it stands.
std::string state(QCMAP_Client& client)
{
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    std::ostringstream out;
    for (const short id : {short{0}, short{10}, short{20}}) {
        if (!client.SelectLANBridge(id, &err)) continue;
        const Lan lan = lan_config(client, id);
        out << "LAN " << id;
        for (const uint32_t value : {lan.gateway_ip, lan.netmask, uint32_t{lan.enable_dhcp}, lan.dhcp_start_ip,
                                     lan.dhcp_end_ip, lan.lease_time, lan.mtu, lan.dns_mode})
            out << " " << value;
    }
    qcmap_msgr_dhcp_reservation_v01 records[QCMAP_MAX_DHCP_RESERVATIONS] = {};
    unsigned int count = 0;
    EXPECT_TRUE(client.GetDHCPReservRecords(records, &count, &err));
    for (unsigned int i = 0; i < count; ++i)
        out << " reserved " << records[i].reserved_ip << " " << int{records[i].enable};
    unsigned int ip = 0;
    EXPECT_TRUE(client.GetDMZ(&ip, &err));
    out << " DMZ " << ip;
    qcmap_msgr_snat_entry_config_v01 entries[QCMAP_MAX_SNAT_ENTRIES] = {};
    int entry_count = 0;
    EXPECT_TRUE(client.GetStaticNatConfig(entries, &entry_count, &err));
    for (int i = 0; i < entry_count; ++i)
        out << " mapped " << entries[i].private_ip << ":" << entries[i].private_port;
    unsigned int routing_behind = 0;
    EXPECT_TRUE(client.ZR_GetRoutingBH(&routing_behind, &err));
    out << " routing-behind " << routing_behind;
    return out.str();
}

class JudgeHostTest : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        setenv("MOBILE_AP_LOG", "stderr", 1);  // the same for every test: it is read at the process's first record
    }

    // The judge's records, without their times.
    static Records records_of(const std::function<void()>& work)
    {
        std::istringstream lines(stderr_of(work));
        Records records;
        for (std::string line; std::getline(lines, line);) {
            const size_t start = line.find(" ERROR [MOBILE_AP]");
            if (start != std::string::npos) records.push_back(line.substr(start + 1));
        }
        return records;
    }

    struct Answer {
        bool good;
        int word;
        Records records;
        std::string before;
        std::string after;
    };

    // Makes the call on a fresh state of its own, which was brought there unjudged.
    Answer answer(const char* judging, const Work& prepare, const Call& call)
    {
        const std::string own = folder + "/" + std::to_string(++states_);
        std::filesystem::create_directory(own);
        setenv("MOBILE_AP_STATE", own.c_str(), 1);
        unsetenv("MOBILE_AP_JUDGE");
        if (prepare) {
            OpenClient client;
            prepare(client);
        }
        Answer answer = {};
        setenv("MOBILE_AP_JUDGE", judging, 1);
        OpenClient client;
        EXPECT_TRUE(client.open);
        answer.before = state(client);
        answer.records = records_of([&] { answer.good = call(client, &err); });
        answer.word = static_cast<int>(err);
        answer.after = state(client);
        return answer;
    }

    // A call that does as it does unjudged, with these records in both modes.
    void expect_told(const Work& prepare, const Call& call, const Records& records)
    {
        const Answer off = answer("", prepare, call);
        EXPECT_TRUE(off.good);
        EXPECT_EQ(off.records, Records{});
        for (const char* judging : {"log", "refuse"}) {
            const Answer judged = answer(judging, prepare, call);
            EXPECT_TRUE(judged.good) << judging;
            EXPECT_EQ(judged.word, off.word) << judging;
            EXPECT_EQ(judged.records, records) << judging;
            EXPECT_EQ(judged.after, off.after) << judging;
        }
    }
    void expect_fine(const Work& prepare, const Call& call)
    {
        expect_told(prepare, call, {});
    }

    // A call that is refused where values are refused.
    void expect_refused(const Work& prepare, const Call& call, const Records& records)
    {
        const Answer off = answer("", prepare, call);
        EXPECT_TRUE(off.good);
        EXPECT_EQ(off.records, Records{});
        const Answer told = answer("log", prepare, call);
        EXPECT_TRUE(told.good);
        EXPECT_EQ(told.word, QMI_ERR_NONE_V01);
        EXPECT_EQ(told.records, records);
        EXPECT_EQ(told.after, off.after);
        EXPECT_NE(told.after, told.before);
        const Answer refused = answer("refuse", prepare, call);
        EXPECT_FALSE(refused.good);
        EXPECT_EQ(refused.word, QMI_ERR_INVALID_ARG_V01);
        EXPECT_EQ(refused.records, records);
        EXPECT_EQ(refused.after, refused.before);
    }

    // The same for one change of the default LAN: 192.168.225.1/24, pool .20 to .60, lease 43200, MTU 1500.
    void expect_lan_fine(const std::function<void(Lan&)>& change)
    {
        expect_fine(nullptr, [&](auto& client, auto* word) { return set_lan(client, 0, change, word); });
    }
    void expect_lan_refused(const std::function<void(Lan&)>& change, const Records& findings)
    {
        Records records;
        for (const std::string& finding : findings)
            records.push_back("ERROR [MOBILE_AP]SetLANConfig(): LAN 0: " + finding);
        expect_refused(
            nullptr, [&](auto& client, auto* word) { return set_lan(client, 0, change, word); }, records);
    }

private:
    int states_ = 0;
};

// ---- the setting ----

TEST_F(JudgeHostTest, AnUnknownWordIsToldAndTheSessionIsNotReady)
{
    for (const std::string word : {"LOG", "log,refuse", "1", " "}) {
        setenv("MOBILE_AP_JUDGE", word.c_str(), 1);
        const std::string told = stderr_of([&] {
            OpenClient client;
            EXPECT_FALSE(client.IsReady());
        });
        EXPECT_EQ(told, "MOBILE_AP_JUDGE: \"" + word + "\" makes no sense; the service is not ready\n");
    }
    for (const char* word : {"", "log", "refuse"}) {
        setenv("MOBILE_AP_JUDGE", word, 1);
        EXPECT_EQ(stderr_of([&] { EXPECT_TRUE(OpenClient().open); }), "");
    }
}

// ---- a LAN's own values ----

TEST_F(JudgeHostTest, NetmaskWithoutHoles)
{
    const auto netmask = [](uint32_t mask) { return [mask](Lan& lan) { lan.netmask = mask; }; };
    for (const uint32_t mask : {0u, 0x80000000u, 0xffff0000u, 0xffffff80u, 0xffffffc0u})
        expect_lan_fine(netmask(mask));
    expect_lan_refused(netmask(0xff00ff00), {"netmask 255.0.255.0 has holes"});
    expect_lan_refused(netmask(0x7fffff00), {"netmask 127.255.255.0 has holes"});
    expect_lan_refused(netmask(0xfffffe40), {"netmask 255.255.254.64 has holes"});
}

TEST_F(JudgeHostTest, PoolInsideTheNet)
{
    const auto pool = [](const char* first, const char* last) {
        return [=](Lan& lan) {
            lan.dhcp_start_ip = address(first);
            lan.dhcp_end_ip = address(last);
        };
    };
    expect_lan_fine(pool("192.168.225.2", "192.168.225.255"));
    expect_lan_fine(pool("192.168.225.0", "192.168.225.0"));
    expect_lan_refused(pool("192.168.225.2", "192.168.226.0"),
                       {"pool 192.168.225.2-192.168.226.0 is not inside the LAN's net 192.168.225.0/255.255.255.0"});
    expect_lan_refused(pool("192.168.224.255", "192.168.225.0"),
                       {"pool 192.168.224.255-192.168.225.0 is not inside the LAN's net 192.168.225.0/255.255.255.0"});
    // The net moves away from the pool as well.
    expect_lan_refused([](Lan& lan) { lan.gateway_ip = address("192.168.10.1"); },
                       {"pool 192.168.225.20-192.168.225.60 is not inside the LAN's net 192.168.10.0/255.255.255.0"});
    expect_lan_refused(
        [](Lan& lan) { lan.netmask = 0xffffffe0; },
        {"pool 192.168.225.20-192.168.225.60 is not inside the LAN's net 192.168.225.0/255.255.255.224"});
}

TEST_F(JudgeHostTest, PoolInOrder)
{
    expect_lan_fine([](Lan& lan) { lan.dhcp_end_ip = lan.dhcp_start_ip; });
    expect_lan_refused([](Lan& lan) { lan.dhcp_end_ip = lan.dhcp_start_ip - 1; },
                       {"pool 192.168.225.20-192.168.225.19 is reversed"});
}

TEST_F(JudgeHostTest, GatewayOutsideThePool)
{
    const auto gateway = [](const char* ip) { return [ip](Lan& lan) { lan.gateway_ip = address(ip); }; };
    expect_lan_fine(gateway("192.168.225.19"));
    expect_lan_fine(gateway("192.168.225.61"));
    expect_lan_refused(gateway("192.168.225.20"),
                       {"gateway 192.168.225.20 is in the pool 192.168.225.20-192.168.225.60"});
    expect_lan_refused(gateway("192.168.225.60"),
                       {"gateway 192.168.225.60 is in the pool 192.168.225.20-192.168.225.60"});
    expect_lan_refused([](Lan& lan) { lan.dhcp_start_ip = address("192.168.225.1"); },
                       {"gateway 192.168.225.1 is in the pool 192.168.225.1-192.168.225.60"});
}

TEST_F(JudgeHostTest, LeaseTime)
{
    const auto lease = [](uint32_t seconds) { return [seconds](Lan& lan) { lan.lease_time = seconds; }; };
    expect_lan_fine(lease(1));
    expect_lan_fine(lease(2147483647));
    expect_lan_refused(lease(0), {"lease time 0 is not in 1..2147483647"});
    expect_lan_refused(lease(2147483648), {"lease time 2147483648 is not in 1..2147483647"});
    expect_lan_refused(lease(4294967295), {"lease time 4294967295 is not in 1..2147483647"});
}

TEST_F(JudgeHostTest, Mtu)
{
    const auto mtu = [](uint32_t size) { return [size](Lan& lan) { lan.mtu = size; }; };
    for (const uint32_t size : {0u, 576u, 9216u})
        expect_lan_fine(mtu(size));
    expect_lan_refused(mtu(1), {"MTU 1 is neither 0 nor in 576..9216"});
    expect_lan_refused(mtu(575), {"MTU 575 is neither 0 nor in 576..9216"});
    expect_lan_refused(mtu(9217), {"MTU 9217 is neither 0 nor in 576..9216"});
}

TEST_F(JudgeHostTest, EveryFindingIsTold)
{
    expect_lan_refused(
        [](Lan& lan) {
            lan.netmask = 0xff00ff00;
            lan.dhcp_start_ip = address("192.168.225.60");
            lan.dhcp_end_ip = address("10.0.0.1");
            lan.lease_time = 0;
            lan.mtu = 1;
        },
        {"netmask 255.0.255.0 has holes",
         "pool 192.168.225.60-10.0.0.1 is not inside the LAN's net 192.0.225.0/255.0.255.0",
         "pool 192.168.225.60-10.0.0.1 is reversed", "lease time 0 is not in 1..2147483647",
         "MTU 1 is neither 0 nor in 576..9216"});
}

// ---- LANs beside each other ----

TEST_F(JudgeHostTest, LansThatDoNotOverlap)
{
    const Work two_vlans = [](auto& client) {
        qmi_error_type_v01 word = QMI_ERR_NONE_V01;
        EXPECT_TRUE(add_vlan(client, 10, &word) && add_vlan(client, 20, &word));  // 192.168.235.0 and 192.168.245.0
    };
    const auto net = [](const char* gateway, uint32_t netmask) {
        return [=](auto& client, auto* word) {
            return set_lan(
                client, 10, [&](Lan& lan) { move_to(lan, gateway, netmask); }, word);
        };
    };
    expect_fine(two_vlans, net("192.168.224.1", 0xffffff00));
    expect_fine(two_vlans, net("192.168.226.1", 0xffffff00));
    expect_refused(two_vlans, net("192.168.225.129", 0xffffff00),
                   {"ERROR [MOBILE_AP]SetLANConfig(): LAN 10: net 192.168.225.0/255.255.255.0 overlaps LAN 0's,"
                    " 192.168.225.0/255.255.255.0"});
    expect_refused(two_vlans, net("192.168.225.129", 0xffffff80),
                   {"ERROR [MOBILE_AP]SetLANConfig(): LAN 10: net 192.168.225.128/255.255.255.128 overlaps LAN 0's,"
                    " 192.168.225.0/255.255.255.0"});
    expect_refused(two_vlans, net("192.168.224.1", 0xfffffe00),
                   {"ERROR [MOBILE_AP]SetLANConfig(): LAN 10: net 192.168.224.0/255.255.254.0 overlaps LAN 0's,"
                    " 192.168.225.0/255.255.255.0"});
    expect_refused(two_vlans, net("192.168.224.1", 0xffff0000),
                   {"ERROR [MOBILE_AP]SetLANConfig(): LAN 10: net 192.168.0.0/255.255.0.0 overlaps LAN 0's,"
                    " 192.168.225.0/255.255.255.0",
                    "ERROR [MOBILE_AP]SetLANConfig(): LAN 10: net 192.168.0.0/255.255.0.0 overlaps LAN 20's,"
                    " 192.168.245.0/255.255.255.0"});
}

// The platform gives a new VLAN its net, and the caller another one afterwards.
TEST_F(JudgeHostTest, TheNetOfANewVlanIsOnlyTold)
{
    const auto lan_0_at = [](const char* gateway) {
        return [=](auto& client) {
            qmi_error_type_v01 word = QMI_ERR_NONE_V01;
            EXPECT_TRUE(set_lan(
                client, 0, [&](Lan& lan) { move_to(lan, gateway); }, &word));
        };
    };
    const Call add = [](auto& client, auto* word) { return add_vlan(client, 10, word); };
    expect_fine(lan_0_at("192.168.234.1"), add);
    expect_told(lan_0_at("192.168.235.1"), add,
                {"ERROR [MOBILE_AP]CreateVLANConfig(): LAN 10: net 192.168.235.0/255.255.255.0 overlaps LAN 0's,"
                 " 192.168.235.0/255.255.255.0"});
}

// ---- only what a call changes ----

TEST_F(JudgeHostTest, WhatStandsIsNotJudgedAgain)
{
    const Work all_odd = [](auto& client) {
        qmi_error_type_v01 word = QMI_ERR_NONE_V01;
        EXPECT_TRUE(add_vlan(client, 10, &word));
        EXPECT_TRUE(set_lan(
            client, 0,
            [](Lan& lan) {
                lan = {address("192.168.235.30"),
                       0xffffff40,
                       1,
                       address("192.168.235.60"),
                       address("10.0.0.1"),
                       0,
                       1,
                       0,
                       0,
                       1};
            },
            &word));
        EXPECT_TRUE(reserve(client, "172.16.0.1", &word));
        EXPECT_TRUE(client.AddDMZ(address("172.16.0.2"), &word));
        EXPECT_TRUE(map_port(client, "172.16.0.3", 80, &word));
    };
    const auto changed = [](void (*change)(Lan&)) {
        return [change](auto& client, auto* word) { return set_lan(client, 0, change, word); };
    };
    expect_fine(all_odd, changed([](Lan&) {}));
    expect_fine(all_odd, changed([](Lan& lan) { lan.enable_dhcp = 0; }));
    expect_fine(all_odd, changed([](Lan& lan) { lan.dns_mode = 2; }));
    expect_fine(all_odd, changed([](Lan& lan) { lan.lease_time = 7200; }));
    expect_fine(all_odd, changed([](Lan& lan) { lan.mtu = 1400; }));
    expect_fine(all_odd, changed([](Lan& lan) { lan.gateway_ip = address("192.168.235.31"); }));
    expect_refused(all_odd, changed([](Lan& lan) { lan.lease_time = 0x80000000; }),
                   {"ERROR [MOBILE_AP]SetLANConfig(): LAN 0: lease time 2147483648 is not in 1..2147483647"});
    expect_refused(all_odd, changed([](Lan& lan) { lan.dhcp_end_ip = address("10.0.0.2"); }),
                   {"ERROR [MOBILE_AP]SetLANConfig(): LAN 0: pool 192.168.235.60-10.0.0.2 is not inside the LAN's net"
                    " 192.168.235.0/255.255.255.64",
                    "ERROR [MOBILE_AP]SetLANConfig(): LAN 0: pool 192.168.235.60-10.0.0.2 is reversed"});

    expect_fine(all_odd, [](auto& client, auto* word) {
        auto switched_off = reservation("172.16.0.1");
        switched_off.enable = 0;
        return edit(client, "172.16.0.1", switched_off, word);
    });
    expect_fine(all_odd, [](auto& client, auto* word) { return client.AddDMZ(address("172.16.0.2"), word); });
    expect_fine(all_odd, [](auto& client, auto* word) { return client.ZR_SetRoutingBH(0, word); });
    expect_fine(all_odd, [](auto& client, auto* word) { return client.DeleteDMZ(word); });
}

// A call that fails for another cause sets nothing, and its values are not judged.
TEST_F(JudgeHostTest, OtherRefusalsComeFirst)
{
    const Work mapped = [](auto& client) {
        qmi_error_type_v01 word = QMI_ERR_NONE_V01;
        EXPECT_TRUE(map_port(client, "172.16.0.3", 80, &word) && reserve(client, "172.16.0.1", &word));
    };
    for (const char* judging : {"log", "refuse"}) {
        const Answer map_again =
            answer(judging, mapped, [](auto& client, auto* word) { return map_port(client, "172.16.0.3", 80, word); });
        EXPECT_FALSE(map_again.good);
        EXPECT_EQ(map_again.word, QMI_ERR_ALREADY_THERE_V01);
        EXPECT_EQ(map_again.records, Records{});
        const Answer reserve_again =
            answer(judging, mapped, [](auto& client, auto* word) { return reserve(client, "172.16.0.1", word); });
        EXPECT_EQ(reserve_again.word, QMI_ERR_ALREADY_THERE_V01);
        EXPECT_EQ(reserve_again.records, Records{});
    }
}

// ---- reservations and hosts ----

TEST_F(JudgeHostTest, ReservationInsideALan)
{
    const Work vlan = [](auto& client) {
        qmi_error_type_v01 word = QMI_ERR_NONE_V01;
        EXPECT_TRUE(add_vlan(client, 10, &word) && reserve(client, "192.168.225.9", &word));
    };
    for (const char* ip : {"192.168.225.0", "192.168.225.255", "192.168.235.7"})
        expect_fine(vlan, [=](auto& client, auto* word) { return reserve(client, ip, word); });
    for (const std::string ip : {"192.168.226.0", "192.168.224.255"}) {
        expect_refused(vlan, [&](auto& client, auto* word) { return reserve(client, ip.c_str(), word); },
                       {"ERROR [MOBILE_AP]AddDHCPReservRecord(): reservation " + ip + " is outside every LAN's net"});
        expect_refused(
            vlan,
            [&](auto& client, auto* word) { return edit(client, "192.168.225.9", reservation(ip.c_str()), word); },
            {"ERROR [MOBILE_AP]EditDHCPReservRecord(): reservation " + ip + " is outside every LAN's net"});
    }
    expect_fine(vlan, [](auto& client, auto* word) {
        return edit(client, "192.168.225.9", reservation("192.168.235.8"), word);
    });
}

TEST_F(JudgeHostTest, HostsInsideALanUnlessRoutingBehind)
{
    const Work routing_behind = [](auto& client) {
        qmi_error_type_v01 word = QMI_ERR_NONE_V01;
        EXPECT_TRUE(client.ZR_SetRoutingBH(1, &word));
    };
    const auto dmz = [](const char* ip) {
        return [ip](auto& client, auto* word) { return client.AddDMZ(address(ip), word); };
    };
    const auto mapping = [](const char* ip) {
        return [ip](auto& client, auto* word) { return map_port(client, ip, 80, word); };
    };
    expect_fine(nullptr, dmz("192.168.225.50"));
    expect_fine(nullptr, mapping("192.168.225.255"));
    expect_fine(routing_behind, dmz("172.16.0.2"));
    expect_fine(routing_behind, mapping("172.16.0.3"));
    expect_refused(nullptr, dmz("192.168.224.255"),
                   {"ERROR [MOBILE_AP]AddDMZ(): DMZ host 192.168.224.255 of profile 1 is outside every LAN's net, and"
                    " routing-behind is off"});
    expect_refused(
        nullptr, mapping("192.168.226.0"),
        {"ERROR [MOBILE_AP]AddStaticNatEntry(): mapped host 192.168.226.0 of profile 1 is outside every LAN's"
         " net, and routing-behind is off"});
}

// ---- what a change leaves outside ----

class JudgeLeftOutsideTest : public JudgeHostTest {
protected:
    // Reservations, a DMZ host and mapped hosts in LAN 0 and in VLAN 10.
    static void in_both_lans(QCMAP_Client& client)
    {
        qmi_error_type_v01 word = QMI_ERR_NONE_V01;
        EXPECT_TRUE(add_vlan(client, 10, &word));
        EXPECT_TRUE(reserve(client, "192.168.225.30", &word) && reserve(client, "192.168.235.31", &word));
        EXPECT_TRUE(client.AddDMZ(address("192.168.235.40"), &word));
        EXPECT_TRUE(map_port(client, "192.168.225.50", 80, &word) && map_port(client, "192.168.225.50", 81, &word) &&
                    map_port(client, "192.168.235.51", 82, &word));
    }
    static bool move_lan_0(QCMAP_Client& client, qmi_error_type_v01* word)
    {
        return set_lan(
            client, 0, [](Lan& lan) { move_to(lan, "192.168.10.1"); }, word);
    }
};

TEST_F(JudgeLeftOutsideTest, ByALanThatMoves)
{
    expect_told(in_both_lans, move_lan_0,
                {"ERROR [MOBILE_AP]SetLANConfig(): reservation 192.168.225.30 is outside every LAN's net",
                 "ERROR [MOBILE_AP]SetLANConfig(): mapped host 192.168.225.50 of profile 1 is outside every LAN's net,"
                 " and routing-behind is off"});
}

TEST_F(JudgeLeftOutsideTest, NothingWhereThereIsNoHost)
{
    expect_fine(
        [](auto& client) {
            qmi_error_type_v01 word = QMI_ERR_NONE_V01;
            EXPECT_TRUE(client.SetNatType(QCMAP_MSGR_NAT_SYMMETRIC_V01, &word));
        },
        move_lan_0);
}

TEST_F(JudgeLeftOutsideTest, ByAVlanThatGoes)
{
    expect_told(
        in_both_lans,
        [](auto& client, auto* word) { return client.DeleteVLANConfig(10, QCMAP_MSGR_INTERFACE_TYPE_ETH_V01, word); },
        {"ERROR [MOBILE_AP]DeleteVLANConfig(): reservation 192.168.235.31 is outside every LAN's net",
         "ERROR [MOBILE_AP]DeleteVLANConfig(): DMZ host 192.168.235.40 of profile 1 is outside every LAN's net, and"
         " routing-behind is off",
         "ERROR [MOBILE_AP]DeleteVLANConfig(): mapped host 192.168.235.51 of profile 1 is outside every LAN's net, and"
         " routing-behind is off"});
}

TEST_F(JudgeLeftOutsideTest, WithRoutingBehindOnlyReservations)
{
    expect_told(
        [](auto& client) {
            in_both_lans(client);
            qmi_error_type_v01 word = QMI_ERR_NONE_V01;
            EXPECT_TRUE(client.ZR_SetRoutingBH(1, &word));
        },
        move_lan_0, {"ERROR [MOBILE_AP]SetLANConfig(): reservation 192.168.225.30 is outside every LAN's net"});
}

TEST_F(JudgeLeftOutsideTest, ByRoutingBehindThatGoesOff)
{
    expect_told(
        [](auto& client) {
            qmi_error_type_v01 word = QMI_ERR_NONE_V01;
            EXPECT_TRUE(client.ZR_SetRoutingBH(1, &word) && client.AddDMZ(address("172.16.0.2"), &word));
            EXPECT_TRUE(reserve(client, "172.16.0.1", &word) && map_port(client, "192.168.225.50", 80, &word));
        },
        [](auto& client, auto* word) { return client.ZR_SetRoutingBH(0, word); },
        {"ERROR [MOBILE_AP]ZR_SetRoutingBH(): DMZ host 172.16.0.2 of profile 1 is outside every LAN's net, and"
         " routing-behind is off"});
}

// A refused change leaves nothing outside.
TEST_F(JudgeLeftOutsideTest, NotByAChangeThatIsRefused)
{
    const Answer refused = answer("refuse", in_both_lans, [](auto& client, auto* word) {
        return set_lan(
            client, 0,
            [](Lan& lan) {
                move_to(lan, "192.168.10.1");
                lan.lease_time = 0;
            },
            word);
    });
    EXPECT_FALSE(refused.good);
    EXPECT_EQ(refused.records, Records{"ERROR [MOBILE_AP]SetLANConfig(): LAN 0: lease time 0 is not in 1..2147483647"});
}

// ---- a whole set-up through the client interface ----

class JudgeSetUpTest : public JudgeHostTest {
protected:
    void SetUp() override
    {
        JudgeHostTest::SetUp();
        setenv("MOBILE_AP_JUDGE", "refuse", 1);
        ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    }
    void TearDown() override
    {
        zr_nexa_client_uninit();
        JudgeHostTest::TearDown();
    }
    // As the command sets it: without an MTU.
    static uint32_t set(uint32_t lan_id, const std::string& net)
    {
        zr_nexa_lan_dhcp_cfg_t cfg = {};
        cfg.gateway_ip = address((net + "1").c_str());
        cfg.netmask = 0xffffff00;
        cfg.dhcp_start_ip = address((net + "20").c_str());
        cfg.dhcp_end_ip = address((net + "60").c_str());
        cfg.lease_time = 7200;
        return zr_nexa_lan_dhcp_set_v1(lan_id, &cfg);
    }
    static zr_nexa_lan_dhcp_reserv_record_t reserved(const char* ip)
    {
        zr_nexa_lan_dhcp_reserv_record_t record = {};
        record.reserved_ip = htonl(address(ip));
        record.mac[5] = 1;
        record.enable = 1;
        return record;
    }
};

TEST_F(JudgeSetUpTest, ALanMovesFirstAndItsHostsFollow)
{
    auto record = reserved("192.168.225.30");
    ASSERT_EQ(zr_nexa_lan_dhcp_reserv_record_add_v1(&record), 0u);
    ASSERT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, address("192.168.225.50")), 0u);

    const uint32_t old = record.reserved_ip;
    record = reserved("192.168.10.30");
    EXPECT_EQ(zr_nexa_lan_dhcp_reserv_record_edit_v1(old, &record), 0x1030u) << "before the LAN";
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, address("192.168.10.50")), 0x2030u) << "before the LAN";

    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(0, 0), 0u);
    EXPECT_EQ(set(0, "192.168.10."), 0u);
    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(0, 1), 0u);
    EXPECT_EQ(zr_nexa_lan_dhcp_reserv_record_edit_v1(old, &record), 0u);
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, address("192.168.10.50")), 0u);
}

TEST_F(JudgeSetUpTest, ANetIsFreeBeforeAnotherLanTakesIt)
{
    ASSERT_EQ(zr_nexa_lan_vlan_add_v1(10, 1, 1), 0u);
    ASSERT_EQ(set(10, "192.168.11."), 0u);
    EXPECT_EQ(set(10, "192.168.225."), 0x3030u);
    EXPECT_EQ(set(0, "192.168.11."), 0x3030u);
    // Two LANs swap their nets over a third one.
    EXPECT_EQ(set(10, "192.168.12."), 0u);
    EXPECT_EQ(set(0, "192.168.11."), 0u);
    EXPECT_EQ(set(10, "192.168.225."), 0u);
}

TEST_F(JudgeSetUpTest, AVlanMovesOutOfALanThatIsInItsWay)
{
    ASSERT_EQ(set(0, "192.168.235."), 0u);
    EXPECT_EQ(zr_nexa_lan_vlan_add_v1(10, 1, 1), 0u);
    EXPECT_EQ(set(10, "192.168.11."), 0u);
}

}  // namespace
