// What differs between a document and a module, and in which order it is changed.
#include <zr_nexa/wan_connection.h>

#include "plan_fixture.h"

namespace ctl {
namespace {

TEST_F(PlanTest, NothingDiffersFromWhatIsShown)
{
    EXPECT_EQ(plan_of(shown().substr(11), Reach::kExact), Lines());
}

TEST_F(PlanTest, StepsStandInTheOrderInWhichTheyStandOnEachOther)
{
    const Lines expected = {
        "general.dhcp_for_new_vlans: true -> false",
        "lans.10: + {accelerated: false, interface: ethernet}",
        "lans.10.dhcp.enabled: true",
        "lans.10.address: 10.7.2.1/24",
        "lans.10.dhcp.first: 10.7.2.20",
        "lans.10.dhcp.last: 10.7.2.60",
        "lans.0.dhcp.enabled: true -> false",
        "reservations.10.7.2.9: + {enabled: true, mac: 02:00:00:00:00:01, name: \"\"}",
        "lans.0.passthrough: {device: none} -> {choice: 3, device: adaptive}",
        "lans.0.gateway_filters: + {ports: 80, protocol: tcp}",
        "lans.0.l2tp.enabled: false -> true",
        "lans.0.sip_server: {} -> {name: sip.example}",
        "general.gateway_url: mobileap.home -> a.example",
        "profiles.office: + {apn_index: 3, apn_name: \"\", family: ipv4v6, technology: any}",
        "roles.default: main -> office",
        "profiles.main.reconnect: false -> true",
        "profiles.main.upnp_pinholes: false -> true",
        "profiles.office.nat.type: full-cone",
        "profiles.main.vlans: + 10",
        "upnp.enabled: false -> true",
        "general.shortcut_engine: true -> false",
        "general.routing_behind: false -> true",
        "general.ipv6: true -> false",
        "hardware_mac_filter.state: disabled -> listed",
        "hardware_mac_filter.stations: ? -> [02:00:00:00:00:31]",
        "hardware_mac_filter.interfaces: ? -> [[1, 0, 0, 0, 0]]",
        "write_only.alg.1: true",
    };
    Lines seen = plan_of(R"(
write_only: {alg: {1: true}}
upnp: {enabled: true}
general: {dhcp_for_new_vlans: false, gateway_url: a.example, shortcut_engine: false, routing_behind: true, ipv6: false}
reservations: {10.7.2.9: {mac: "02:00:00:00:00:01"}}
roles: {default: office}
profiles:
  office: {dial: {apn_index: 3}, nat: {type: full-cone}}
  main: {dial: {apn_index: 1}, vlans: [10], reconnect: true, upnp_pinholes: true}
lans:
  10: {vlan: {interface: ethernet}, address: 10.7.2.1/24, dhcp: {enabled: true, first: 10.7.2.20, last: 10.7.2.60}}
  0: {dhcp: {enabled: false}, gateway_filters: [{protocol: tcp, ports: 80}], passthrough: {device: adaptive, choice: 3},
      l2tp: {enabled: true}, sip_server: {name: sip.example}}
hardware_mac_filter: {state: listed, stations: ["02:00:00:00:00:31"], interfaces: [[1, 0, 0, 0, 0]]}
)");
    EXPECT_EQ(seen, expected);
}

// An entry may be what lets in the one who asks for it.
TEST_F(PlanTest, AFirewallIsOpenedBeforeItsEntriesGoAndClosedBehindThoseThatCome)
{
    const auto firewall = [](const std::string& text) {
        return document("profiles: {main: {dial: {apn_index: 1}, firewall: {" + text + "}}}\n");
    };
    const auto is_told = [&](const Value& wanted, const Lines& lines) {
        const Module module = read_for(wanted, Reach::kMerge);
        const Plan plan = make_plan(wanted, module, Reach::kMerge);
        EXPECT_EQ(lines_of(plan), lines);
        const Value held = held_for(plan, module);
        EXPECT_EQ(apply(wanted).left, Lines());
        return held;
    };
    const std::string entry =
        "profiles.main.firewall.entries: + {destination_ports: 22, family: ipv4, nat_flag: 0, "
        "protocol: tcp}";
    const std::string ssh = "entries: [{family: ipv4, protocol: tcp, destination_ports: 22}]";
    std::string gone = entry;
    gone.replace(gone.find('+'), 1, "-");
    const std::string path = "profiles.main.firewall.";

    const Value off = is_told(firewall("enabled: true, " + ssh), Lines({entry, path + "enabled: false -> true"}));
    EXPECT_EQ(lines_of(planned(off, Reach::kBack)), Lines({path + "enabled: true -> false", gone}));
    const Value drops = is_told(firewall("unmatched: let-through, entries: []"),
                                Lines({path + "unmatched: drop -> let-through", gone}));
    EXPECT_EQ(lines_of(planned(drops, Reach::kBack)), Lines({entry, path + "unmatched: let-through -> drop"}));
    is_told(firewall("unmatched: drop, " + ssh), Lines({entry, path + "unmatched: let-through -> drop"}));
    is_told(firewall("enabled: false, entries: []}, upnp_pinholes: true, nat: {"),
            Lines({"profiles.main.upnp_pinholes: false -> true", path + "enabled: true -> false", gone}));
}

TEST_F(PlanTest, WhatTheDocumentDoesNotNameStaysUnlessItIsToBeExact)
{
    applied(R"(
reservations: {192.168.225.30: {mac: "02:00:00:00:00:01"}}
lans: {10: {vlan: {interface: ecm}}}
profiles: {office: {dial: {apn_index: 3}}}
)");
    const std::string some = R"(
reservations: {}
lans: {}
profiles: {main: {dial: {apn_index: 1}}}
)";
    EXPECT_EQ(plan_of(some), Lines());
    EXPECT_EQ(plan_of(some, Reach::kExact),
              Lines({"lans.10: - {accelerated: false, interface: ecm}",
                     "reservations.192.168.225.30: - {enabled: true, mac: 02:00:00:00:00:01, name: \"\"}",
                     "profiles.profile-2: - {apn_index: 3, apn_name: \"\", family: ipv4v6, technology: any}"}));
    EXPECT_EQ(plan_of("general: {ipv4: true}\n", Reach::kExact), Lines());
    EXPECT_EQ(plan_of("reservations: {192.168.225.30: {absent: true}, 192.168.225.31: {absent: true}}\n"),
              Lines({"reservations.192.168.225.30: - {enabled: true, mac: 02:00:00:00:00:01, name: \"\"}"}));
    EXPECT_EQ(plan_of("lans: {10: {absent: true}, 11: {absent: true}}\n"),
              Lines({"lans.10: - {accelerated: false, interface: ecm}"}));
    EXPECT_EQ(plan_of("profiles: {gone: {dial: {apn_index: 4}, absent: true}}\n"), Lines());
    EXPECT_EQ(plan_of("profiles: {gone: {dial: {apn_index: 3}, absent: true}}\n"),
              Lines({"profiles.gone: - {apn_index: 3, apn_name: \"\", family: ipv4v6, technology: any}"}));
    EXPECT_EQ(plan_of("profiles: {profile-2: {absent: true}, profile-7: {absent: true}}\n"),
              Lines({"profiles.profile-2: - {apn_index: 3, apn_name: \"\", family: ipv4v6, technology: any}"}));
}

// ---- profiles ----

TEST_F(PlanTest, ProfilesAreKnownByWhatTheyDialWithOrTheirHandle)
{
    applied("profiles: {office: {dial: {apn_index: 3, apn_name: a.example}}}\n");
    EXPECT_EQ(plan_of("profiles: {any: {dial: {apn_index: 3, apn_name: a.example}}}\n"), Lines());
    EXPECT_EQ(plan_of("profiles: {any: {dial: {apn_index: 3, apn_name: b.example}}}\n"),
              Lines({"profiles.any: + {apn_index: 3, apn_name: b.example, family: ipv4v6, technology: any}"}));
    EXPECT_EQ(plan_of("profiles: {any: {handle: 2, dial: {apn_index: 3, apn_name: b.example}}}\n"),
              Lines({"profiles.any.dial: {apn_index: 3, apn_name: a.example, family: ipv4v6, technology: any} -> "
                     "{apn_index: 3, apn_name: b.example, family: ipv4v6, technology: any}"}));
    // A handle of another module's falls through to what is dialled with.
    EXPECT_EQ(plan_of("profiles: {any: {handle: 9, dial: {apn_index: 3, apn_name: a.example}}}\n"), Lines());
    EXPECT_EQ(plan_of("profiles: {any: {handle: 2, roaming: true}}\n"), Lines({"profiles.any.roaming: false -> true"}));
    EXPECT_EQ(plan_of("profiles: {any: {handle: 9}}\n"),
              Lines({"problem: profiles.any: there is no such profile on the module; dial is missing"}));
    // The name that show gives one profile, here for another one.
    EXPECT_EQ(plan_of("profiles: {profile-2: {dial: {apn_index: 1}, roaming: true}}\n"
                      "roles: {default: profile-2, dns_proxy: profile-2}\n"),
              Lines({"profiles.profile-2.roaming: false -> true"}));
}

TEST_F(PlanTest, TwinsAreTakenInTheOrderOfTheirHandlesWhereThereAreAsMany)
{
    applied("profiles: {a: {handle: 30, dial: {apn_index: 3}}, b: {handle: 31, dial: {apn_index: 3}}}\n");
    EXPECT_EQ(plan_of("profiles: {a: {dial: {apn_index: 3}, roaming: true}}\n"),
              Lines({"problem: profiles.a: several profiles dial with this; say which handle it is: 2, 3"}));
    const Plan plan =
        planned(document("profiles: {b: {handle: 7, dial: {apn_index: 3}},"
                         " a: {handle: 8, dial: {apn_index: 3}}}\n"));
    EXPECT_EQ(lines_of(plan), Lines());
    EXPECT_EQ(plan.handles.at("b"), 2u);
    EXPECT_EQ(plan.handles.at("a"), 3u);
    EXPECT_EQ(plan_of("profiles: {a: {handle: 3, dial: {apn_index: 3}, absent: true}}\n").size(), 1u);
}

TEST_F(PlanTest, AProfileThatGoesLosesItsRolesAndItsCallFirst)
{
    applied("profiles: {office: {dial: {apn_index: 3}}}\n");
    EXPECT_EQ(plan_of("profiles: {profile-1: {absent: true}}\n"),
              Lines({"problem: profiles.profile-1: it is roles.default; give that to another one",
                     "problem: profiles.profile-1: it is roles.access_point; give that to another one",
                     "problem: profiles.profile-1: it is roles.dns_proxy; give that to another one"}));
    const std::string moved =
        "profiles: {office: {dial: {apn_index: 3}}, profile-1: {absent: true}}\n"
        "roles: {default: office, access_point: office, dns_proxy: office}\n";
    EXPECT_EQ(plan_of(moved),
              Lines({"roles.default: profile-1 -> office", "roles.access_point: profile-1 -> office",
                     "roles.dns_proxy: profile-1 -> office",
                     "profiles.profile-1: - {apn_index: 1, apn_name: \"\", family: ipv4v6, technology: any}"}));
    ASSERT_EQ(zr_nexa_wan_connect_v4_set_v1(1, 1), 0u);
    EXPECT_EQ(plan_of(moved), Lines({"problem: profiles.profile-1: profile-1 is connected: \"zr_nexactl disconnect 1\" "
                                     "first"}));
    EXPECT_EQ(said_of("profiles: {main: {handle: 1, dial: {apn_index: 2}}}\n"),
              Lines({"main: its call keeps the old values or is ended"}));
    EXPECT_EQ(said_of("profiles: {main: {handle: 2, dial: {apn_index: 2}}}\n"), Lines());
}

TEST_F(PlanTest, WhereThereIsNoRoomAProfileGoesFirstAndItsRolesAreParked)
{
    std::string many = "profiles:\n";
    for (int i = 1; i <= 50; ++i)
        many += "  p" + std::to_string(i) + ": {dial: {apn_index: " + std::to_string((i - 1) % 16 + 1) +
                ", apn_name: " + (i == 1 ? "\"\"" : "n" + std::to_string(i)) + "}}\n";
    applied(many);
    const std::string roles = "roles: {default: fresh, access_point: fresh, dns_proxy: p2}\n";
    const auto count = [](const Lines& lines, const std::string& part) {
        return std::count_if(lines.begin(), lines.end(),
                             [&part](const std::string& line) { return line.find(part) != std::string::npos; });
    };
    const std::string fresh =
        "  fresh: {dial: {apn_index: 9, apn_name: fresh}}\n  p1: {dial: {apn_index: 1}, absent: "
        "true}\n  p2: {dial: {apn_index: 2, apn_name: n2}}\n";
    EXPECT_EQ(plan_of("profiles:\n" + fresh + roles),
              Lines({"roles.default: p1 -> p2", "roles.access_point: p1 -> p2", "roles.dns_proxy: p1 -> p2",
                     "profiles.p1: - {apn_index: 1, apn_name: \"\", family: ipv4v6, technology: any}",
                     "profiles.fresh: + {apn_index: 9, apn_name: fresh, family: ipv4v6, technology: any}",
                     "roles.default: p2 -> fresh", "roles.access_point: p2 -> fresh"}));
    EXPECT_EQ(plan_of("profiles: {x: {dial: {apn_index: 9, apn_name: x}}}\n"),
              Lines({"problem: profiles: 51 profiles would be there, 50 are the most"}));
    applied("profiles:\n" + fresh + roles);

    // Fifty others: those with a role are the last to go.
    std::string others = "profiles:\n";
    for (int i = 1; i <= 50; ++i)
        others += "  q" + std::to_string(i) + ": {dial: {apn_index: 16, apn_name: q" + std::to_string(i) + "}}\n";
    others += "roles: {default: q50, access_point: q49, dns_proxy: q49}\n";
    const Lines all = plan_of(others, Reach::kExact);
    EXPECT_EQ(count(all, ": + "), 50);
    EXPECT_EQ(count(all, ": - "), 50);
    applied(others, Reach::kExact);
}

// ---- LANs ----

constexpr char kLan[] = R"(
lans:
  10:
    vlan: {interface: ethernet}
    address: 10.7.2.1/24
    dhcp: {first: 10.7.2.2, last: 10.7.2.60}
    gateway_filters: [{protocol: tcp, ports: 80}, {protocol: udp, ports: 90}]
    l2tp: {tunnels: {7: {peer_tunnel: 8, encapsulation: ip, local: 192.0.2.1, peer: 192.0.2.2, sessions: [{local: 1, peer: 2}]}}}
profiles: {office: {dial: {apn_index: 3}, vlans: [10]}}
)";

TEST_F(PlanTest, AVlanOfAnotherKindIsMadeAnewWithAllThatStoodOnIt)
{
    applied(kLan);
    const std::string before = shown();
    const std::string other = "lans: {10: {vlan: {interface: rndis}}}\n";
    const Lines lines = plan_of(other);
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "lans.10: - {accelerated: false, interface: ethernet}");
    EXPECT_EQ(lines[1], "lans.10: + {accelerated: false, interface: rndis}");
    EXPECT_EQ(lines.back(), "profiles.profile-2.vlans: + 10");
    EXPECT_EQ(said_of(other)[0],
              "VLAN 10 is made anew with its addresses, 2 filters, 1 tunnel and its mapping to "
              "profile-2");
    applied(other);
    std::string expected = before;
    expected.replace(expected.find("ethernet"), 8, "rndis");
    EXPECT_EQ(shown(), expected);
}

TEST_F(PlanTest, AVlanThatDoesNotSayThatItIsAcceleratedIsNot)
{
    applied("lans: {20: {vlan: {interface: ethernet-2}}, 30: {vlan: {interface: ecm, accelerated: true}}}\n");
    EXPECT_EQ(sql("SELECT id, accelerated FROM vlan ORDER BY id"), "200301");
    EXPECT_NE(shown().find("  20:\n    vlan: {interface: ethernet-2}\n"), std::string::npos);
    EXPECT_NE(shown().find("  30:\n    vlan: {interface: ecm, accelerated: true}\n"), std::string::npos);
    EXPECT_EQ(plan_of(shown().substr(11), Reach::kExact), Lines());
}

TEST_F(PlanTest, ALanIsActivatedAlsoWhenOnlyItsDhcpSwitchDiffers)
{
    const std::string off = "lans: {0: {dhcp: {enabled: false}}}\n";
    EXPECT_EQ(plan_of(off), Lines({"lans.0.dhcp.enabled: true -> false"}));
    EXPECT_EQ(said_of(off), Lines({"LAN 0 is activated anew: its devices lose the connection for a moment"}));
    applied(off);
    EXPECT_EQ(plan_of(off), Lines());
    applied("lans: {10: {vlan: {interface: ecm}}}\n");
    EXPECT_EQ(said_of("lans: {20: {vlan: {interface: ecm}, address: 10.7.3.1/24, dhcp: {enabled: false}}}\n"), Lines());
}

TEST_F(PlanTest, WhatCannotBeReadIsNeverTheSame)
{
    const std::string alg = "write_only: {alg: {2: false}}\n";
    applied(alg);
    EXPECT_EQ(plan_of(alg, Reach::kExact), Lines({"write_only.alg.2: false"}));
    EXPECT_EQ(said_of(alg), Lines({"not undone: the switch of ALG 2 cannot be read"}));
}

TEST_F(PlanTest, WhatGoesWithAVlanIsSaid)
{
    applied(kLan);
    EXPECT_EQ(said_of("lans: {10: {absent: true}}\nprofiles: {office: {dial: {apn_index: 3}}}\n"),
              Lines({"VLAN 10 goes with its addresses, 2 filters, 1 tunnel and its mapping to office"}));
    applied("lans: {20: {vlan: {interface: ecm}}}\n");
    EXPECT_EQ(said_of("lans: {20: {absent: true}}\n"), Lines({"VLAN 20 goes with its addresses"}));
}

TEST_F(PlanTest, LansThatSwapTheirNetsAreParked)
{
    applied("lans: {10: {vlan: {interface: ecm}, address: 10.7.2.1/24, dhcp: {first: 10.7.2.2, last: 10.7.2.9}}}\n");
    const std::string swapped = R"(
lans:
  0: {address: 10.7.2.1/24, dhcp: {first: 10.7.2.2, last: 10.7.2.9}}
  10: {address: 192.168.225.1/24, dhcp: {first: 192.168.225.20, last: 192.168.225.60}}
)";
    EXPECT_EQ(
        plan_of(swapped),
        Lines({"lans.10.address: 10.7.2.1/24 -> 10.254.0.1/24", "lans.10.dhcp.first: 10.7.2.2 -> 10.254.0.2",
               "lans.10.dhcp.last: 10.7.2.9 -> 10.254.0.3", "lans.0.address: 192.168.225.1/24 -> 10.7.2.1/24",
               "lans.0.dhcp.first: 192.168.225.20 -> 10.7.2.2", "lans.0.dhcp.last: 192.168.225.60 -> 10.7.2.9",
               "lans.10.address: 10.254.0.1/24 -> 192.168.225.1/24", "lans.10.dhcp.first: 10.254.0.2 -> 192.168.225.20",
               "lans.10.dhcp.last: 10.254.0.3 -> 192.168.225.60"}));
    EXPECT_EQ(said_of(swapped)[0],
              "LAN 10 is activated anew: its devices lose the connection for a moment; the module answers at "
              "10.254.0.1 then; LAN 10 waits in another net until its own is free");
    applied(swapped);
}

TEST_F(PlanTest, ReservationsThatSwapTheirMacsAreMadeAnew)
{
    applied(
        "reservations: {192.168.225.30: {mac: \"02:00:00:00:00:01\"}, 192.168.225.31: {mac: "
        "\"02:00:00:00:00:02\"}}\n");
    const std::string swapped =
        "reservations: {192.168.225.30: {mac: \"02:00:00:00:00:02\"}, 192.168.225.31: {mac: \"02:00:00:00:00:01\"}}\n";
    EXPECT_EQ(plan_of(swapped),
              Lines({"reservations.192.168.225.30: - {enabled: true, mac: 02:00:00:00:00:01, name: \"\"}",
                     "reservations.192.168.225.31: - {enabled: true, mac: 02:00:00:00:00:02, name: \"\"}",
                     "reservations.192.168.225.30: + {enabled: true, mac: 02:00:00:00:00:02, name: \"\"}",
                     "reservations.192.168.225.31: + {enabled: true, mac: 02:00:00:00:00:01, name: \"\"}"}));
    applied(swapped);
    EXPECT_EQ(plan_of("reservations: {192.168.225.40: {mac: \"02:00:00:00:00:02\"}}\n"),
              Lines({"problem: reservations.192.168.225.40.mac: 192.168.225.30 has it already"}));
    EXPECT_EQ(plan_of("reservations: {192.168.225.40: {mac: \"02:00:00:00:00:02\"}, 192.168.225.30: {absent: true}}\n")
                  .size(),
              2u);
}

// ---- what is refused beforehand ----

TEST_F(PlanTest, WhatNoFunctionCanDoIsRefusedBeforehand)
{
    EXPECT_EQ(plan_of("lans: {0: {sip_server: {}}}\n"), Lines());
    EXPECT_EQ(said_of("lans: {0: {sip_server: {name: a}}}\n"),
              Lines({"not undone: a SIP server can be replaced, not taken away"}));
    applied("lans: {0: {sip_server: {name: a}}, 10: {vlan: {interface: ecm}}}\n");
    sql("INSERT INTO gateway_filter VALUES (10, 1, 99, 80, 80), (10, 2, 1, 80, 80)");
    const std::vector<std::pair<std::string, std::string>> refused = {
        {"lans: {0: {sip_server: {}}}", "lans.0.sip_server: a SIP server can be replaced, not taken away"},
        {"lans: {0: {passthrough: {device: any-usb}}}",
         "lans.0.passthrough: a passthrough to any-usb can be read only"},
        {"lans: {0: {gateway_filters: [{protocol: other}]}}",
         "lans.0.gateway_filters: a gateway filter of an other protocol cannot be made"},
        {"lans: {10: {vlan: {interface: rndis}}}",
         "lans.10.gateway_filters: a gateway filter of an other protocol cannot be made"},
        {"hardware_mac_filter: {state: enabled}",
         "hardware_mac_filter.state: it takes no state without stations and interfaces"},
        {"profiles: {a: {dial: {apn_index: 1}, nat: {port_mappings: [{protocol: other, host: 192.168.225.9}]}}}",
         "profiles.a.nat.port_mappings: a rule of a protocol that has no word can be read only"},
        {"profiles: {a: {dial: {apn_index: 1}, firewall: {entries: [{family: ipv4, protocol: other}]}}}",
         "profiles.a.firewall.entries: an entry of a protocol that has no word can be read only"},
        {"profiles: {a: {dial: {apn_index: 9, technology: other}}}",
         "profiles.a: a technology or family that has no word can be read only"},
        {"roles: {default: none}",
         "roles.default: roles.default cannot be taken from a profile, only given to another"},
        {"lans: {0: {l2tp: {mode: managed}}}", "lans.0.l2tp.mode: managed needs a tunnel"},
        {"lans: {0: {l2tp: {clamp_mss: true}}}", "lans.0.l2tp.mss: 536 to 8960 where it is clamped to, not 0"},
        {"lans: {20: {address: 10.7.3.1/24}}", "lans.20: there is no LAN 20; vlan is missing"},
        {"lans: {20: {vlan: {interface: ecm}, address: 10.7.3.1/24}}",
         "lans.20: a new LAN has all of address, dhcp.first and dhcp.last, or none of them"},
        {"lans: {20: {vlan: {interface: ecm}, dhcp: {first: 10.7.3.20, last: 10.7.3.60}}}",
         "lans.20: a new LAN has all of address, dhcp.first and dhcp.last, or none of them"},
        {"profiles: {a: {dial: {apn_index: 1}, vlans: [20]}}", "profiles.a.vlans: there is no LAN 20"},
    };
    for (const auto& [text, problem] : refused)
        EXPECT_EQ(plan_of(text + "\n"), Lines({"problem: " + problem}));
    // The pool is the module's own, the address is the document's: it is told there.
    const Plan moved = planned(document("lans: {0: {address: 10.7.3.1/24}}\n"), Reach::kMerge);
    EXPECT_EQ(lines_of(moved), Lines({"problem: lans.0.dhcp.first: 192.168.225.20 is outside of 10.7.3.1/24",
                                      "problem: lans.0.dhcp.last: 192.168.225.60 is outside of 10.7.3.1/24"}));
    for (const Problem& each : moved.problems)
        EXPECT_EQ(each.mark.column, 12u);
    // It stands already.
    EXPECT_EQ(plan_of("lans: {10: {gateway_filters: [{protocol: other}, {protocol: tcp, ports: 80}]}}\n"), Lines());
    EXPECT_EQ(said_of("lans: {10: {absent: true}}\n"),
              Lines({"VLAN 10 goes with its addresses and 2 filters",
                     "not undone: a gateway filter of an other protocol cannot be made"}));
    EXPECT_EQ(said_of("profiles: {a: {dial: {apn_index: 1}, reconnect: true}}\n"), Lines());
}

TEST_F(PlanTest, WhatCannotBeReadIsRefused)
{
    open("GetNatType=fail:3");
    const Lines lines = plan_of("profiles: {a: {dial: {apn_index: 1}, nat: {type: full-cone}, roaming: true}}\n");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].rfind("problem: profiles.a.nat.type: cannot be read: zr_nexa_nat_type_get_v1: 0x2003", 0), 0u)
        << lines[0];
    EXPECT_EQ(plan_of("profiles: {a: {dial: {apn_index: 1}, roaming: true}}\n").size(), 1u);

    open();
    applied(kLan);
    open("GetPDNtoVLANMappingsEx=fail:3");
    const Lines mapped = plan_of("profiles: {a: {dial: {apn_index: 1}, vlans: [10]}}\n");
    ASSERT_EQ(mapped.size(), 1u);
    EXPECT_EQ(mapped[0].rfind("problem: profiles.a.vlans: cannot be read: ", 0), 0u) << mapped[0];
    // What would go with a VLAN is not known.
    const Lines gone = plan_of("lans: {10: {absent: true}}\n");
    ASSERT_EQ(gone.size(), 1u);
    EXPECT_EQ(gone[0].rfind("problem: lans.10: profiles.*.vlans cannot be read, and would be lost: ", 0), 0u)
        << gone[0];

    open("GetIPPassthroughSoftwarePathFilters=fail:3");
    const Lines lost = plan_of("lans: {10: {absent: true}}\n");
    ASSERT_EQ(lost.size(), 1u);
    EXPECT_EQ(lost[0].rfind("problem: lans.10: lans.10.gateway_filters cannot be read, and would be lost: ", 0), 0u)
        << lost[0];
}

TEST_F(PlanTest, ARoleOfAProfileThatIsNotThereIsLeftOutAndCanBeGivenToAnother)
{
    sql("UPDATE wwan_service SET apdns_profile = 7");
    const Module module = read_all();
    std::vector<std::string> notes;
    for (const Unread& each : module.unread) {
        EXPECT_TRUE(each.is_missing);
        if (each.is_odd) notes.push_back(each.path + ": " + each.result.words);
    }
    EXPECT_EQ(notes, Lines({"roles.dns_proxy: it is given to profile 7, which is not there"}));
    const std::string text = shown();
    EXPECT_NE(text.find("roles:\n  default: profile-1\n  access_point: profile-1\nupnp:"), std::string::npos) << text;
    EXPECT_EQ(plan_of(text.substr(11), Reach::kExact), Lines());

    const std::string given = "profiles: {main: {dial: {apn_index: 1}}}\nroles: {dns_proxy: main}\n";
    EXPECT_EQ(plan_of(given), Lines({"roles.dns_proxy: ? -> main"}));
    EXPECT_EQ(said_of(given), Lines({"traffic of the access point and its DNS may be interrupted",
                                     "not undone: roles.dns_proxy was given to a profile that is not there"}));
    applied(given);
    EXPECT_EQ(sql("SELECT apdns_profile FROM wwan_service"), "1");

    // The service does not take it with the other role, which is not given to nobody for that.
    sql("UPDATE wwan_service SET apdns_profile = 7");
    const Outcome outcome =
        apply(document("profiles: {office: {dial: {apn_index: 3}}}\nroles: {access_point: office}\n"));
    EXPECT_EQ(outcome.status, 4);
    EXPECT_EQ(sql("SELECT ap_profile, apdns_profile FROM wwan_service"), "17");
}

TEST_F(PlanTest, WhatADocumentCannotSayIsRefusedWithoutAModule)
{
    const std::vector<std::pair<std::string, std::string>> refused = {
        {"profiles: {a: {dial: {apn_index: 1}, vlans: [1, 2, 1]}}", "2:52: profiles.a.vlans: 1 stands twice"},
        {"lans: {0: {vlan: {interface: ecm}}}", "2:12: lans.0.vlan: not of the default LAN"},
        {"lans: {0: {passthrough_nat: default}}", "2:12: lans.0.passthrough_nat: not of the default LAN"},
        {"lans: {0: {l2tp: {mode: managed, tunnels: {}}}}", "2:19: lans.0.l2tp.mode: managed needs a tunnel"},
        {"profiles: {none: {dial: {apn_index: 1}}}", "2:12: profiles.none: none is no label"},
    };
    for (const auto& [text, problem] : refused)
        EXPECT_EQ(document_problems(text + "\n"), ":" + problem + "\n");
    std::string many = "lans:\n  0: {}\n";
    for (int i = 1; i <= 2001; ++i)
        many += "  " + std::to_string(i) + ": {vlan: {interface: ecm}}\n";
    EXPECT_EQ(document_problems(many), ":2:1: lans: 2001 VLANs, 2000 are the most\n");
}

TEST_F(PlanTest, KeyedEntriesAreCountedWithThoseThatStay)
{
    const auto reservations = [](int first, int last) {
        std::string text = "reservations:\n";
        for (int i = first; i <= last; ++i)
            text += "  192.168.225." + std::to_string(i) + ": {mac: \"02:00:00:00:00:" + std::to_string(i) + "\"}\n";
        return text;
    };
    applied(reservations(20, 39));
    EXPECT_EQ(plan_of(reservations(40, 40)),
              Lines({"problem: reservations: 21 entries would be there, 20 are the most"}));
    EXPECT_EQ(plan_of(reservations(40, 59), Reach::kExact).size(), 40u);
    applied(reservations(40, 59), Reach::kExact);
}

TEST_F(PlanTest, AListIsCompleteAndARemovalComesBehindUnlessItIsFull)
{
    applied("software_path: [10.0.0.1, 10.0.0.2]\n");
    EXPECT_EQ(plan_of("software_path: [10.0.0.2, 10.0.0.3]\n"),
              Lines({"software_path: + 10.0.0.3", "software_path: - 10.0.0.1"}));
    EXPECT_EQ(plan_of("software_path: [10.0.0.2, 10.0.0.3, 10.0.0.4, 10.0.0.5, 10.0.0.6]\n"),
              Lines({"software_path: - 10.0.0.1", "software_path: + 10.0.0.3", "software_path: + 10.0.0.4",
                     "software_path: + 10.0.0.5", "software_path: + 10.0.0.6"}));
    EXPECT_EQ(plan_of("software_path: []\n"), Lines({"software_path: - 10.0.0.1", "software_path: - 10.0.0.2"}));
    // The later ones move up.
    applied("lans: {0: {gateway_filters: [{protocol: portless}, {protocol: portless}, {protocol: tcp, ports: 1}]}}\n");
    EXPECT_EQ(plan_of("lans: {0: {gateway_filters: [{protocol: portless}]}}\n").size(), 2u);
    applied("lans: {0: {gateway_filters: [{protocol: portless}]}}\n");
}

}  // namespace
}  // namespace ctl
