// What an apply makes of a module, for documents made at random, and what becomes of it when the platform refuses.
#include <gmock/gmock.h>
#include <zr_nexa/wan_connection.h>

#include "plan_fixture.h"
#include "platform_calls.h"
#include "random_document.h"
#include "wan_profile.h"

namespace ctl {
namespace {

class ApplyTest : public PlanTest {
protected:
    // The platform tells each of its calls.
    void SetUp() override
    {
        HostTest::SetUp();
        setenv("MOBILE_AP_LOG", ("file:" + log()).c_str(), 1);
        setenv("MOBILE_AP_LOG_LEVEL", "debug", 1);
        open();
        forget_calls();
    }
    void TearDown() override
    {
        PlanTest::TearDown();
        forget_calls();
    }

    // Of the process: it is opened once.
    static const std::string& log()
    {
        static const std::string path =
            (std::filesystem::temp_directory_path() / ("ctl_apply." + std::to_string(getpid()))).string();
        static const bool is_made = static_cast<bool>(std::ofstream(path));
        EXPECT_TRUE(is_made);
        return path;
    }

    static void forget_calls()
    {
        std::filesystem::resize_file(log(), 0);
    }

    // The module as a document, with that document's labels.
    static Value as_seen_by(const Value& document)
    {
        const Module module = read_all();
        for (const Unread& each : module.unread)
            EXPECT_TRUE(each.is_missing) << each.path;
        Problems problems;
        return as_document(module, match_profiles(document, module, &problems), false);
    }
};

// What a document makes of what was there, told without the plan.
Value laid(const Value& document, const Value& before, bool exact)
{
    Value result = before;
    const auto is_absent = [](const Value& entry) { return entry.has("absent"); };
    for (const char* scope : {"lans", "profiles"}) {
        if (!document.has(scope)) continue;
        Value::Map& there = result.make(scope).map();
        const Value::Map& named = document.child(scope).map();
        for (auto each = there.begin(); each != there.end();) {
            const auto wish = named.find(each->first);
            const bool goes = wish == named.end() ? exact && each->first != "0" : is_absent(wish->second);
            each = goes ? there.erase(each) : std::next(each);
        }
        for (const auto& [name, each] : named)
            if (!is_absent(each)) there[name].map();
    }
    for (const Row& row : rows()) {
        each_instance(document, row.scope, [&](const std::string& name, const Value& instance) {
            const Value named = record_of(row, instance);
            if (is_absent(instance) || named.is_nothing()) return;
            Value& there = make_instance(&result, row.scope, name);
            Value record = record_of(row, there);
            if (row.shape == Shape::kUnit)
                for (const auto& [key, value] : named.map())
                    record.map()[key] = value;
            else if (row.shape != Shape::kKeyed || exact)
                record = named;
            else
                for (const auto& [key, entry] : named.map())
                    record.map()[key] = entry;
            if (row.shape == Shape::kKeyed)
                for (const auto& [key, entry] : named.map())
                    if (is_absent(entry)) record.map().erase(key);
            put_record(row, record, &there);
        });
    }
    for (auto& [id, lan] : result.make("lans").map())
        if (lan.at("l2tp.tunnels").map().empty()) lan.erase("l2tp.mode");
    for (auto& [label, profile] : result.make("profiles").map()) {
        Value::List left;
        for (const Value& id : profile.child("vlans").list())
            if (result.child("lans").map().count(id.text()) != 0) left.push_back(id);
        if (profile.has("vlans")) profile.make("vlans") = Value(left);
    }
    return result;
}

// What the module has and expected says otherwise; what a new LAN or profile got by itself is not judged.
Lines unlike(const Value& expected, const Value& seen)
{
    Lines lines;
    for (const char* scope : {"lans", "profiles"})
        for (const auto& [name, each] : seen.child(scope).map())
            if (expected.child(scope).map().count(name) == 0) lines.push_back(std::string(scope) + "." + name);
    for (const Row& row : rows()) {
        if (row.write_only) continue;
        each_instance(expected, row.scope, [&](const std::string& name, const Value& instance) {
            const Value wish = record_of(row, instance);
            const Value there = record_of(row, instance_of(seen, row.scope, name));
            const auto compare = [&](const Value& a, const Value& b) {
                if (a != b) lines.push_back(record_path(row, name) + ": " + in_short(a) + " and not " + in_short(b));
            };
            if (row.shape != Shape::kUnit && !wish.is_nothing()) compare(there, wish);
            for (const auto& [key, value] : wish.map())
                if (row.shape == Shape::kUnit) compare(there.child(key), value);
        });
    }
    return lines;
}

class RandomApplyTest : public ApplyTest, public testing::WithParamInterface<uint32_t> {
protected:
    void expect_applied(const Value& document, Reach reach)
    {
        const Value before = as_seen_by(document);
        const Value expected = laid(document, before, reach == Reach::kExact);
        const Lines plan = lines_of(planned(document, reach));
        Lines done;
        Progress progress;
        progress.ends = [&](const Step& step, const Result& result, const std::string&) {
            EXPECT_TRUE(result.good()) << path_of(step) << " " << told(result);
            done.insert(done.end(), step.lines.begin(), step.lines.end());
        };
        const Outcome outcome = apply(document, reach, progress);
        ASSERT_EQ(outcome.left, Lines());
        ASSERT_EQ(outcome.status, 0);
        EXPECT_EQ(done, plan);
        EXPECT_EQ(unlike(expected, as_seen_by(document)), Lines());
        EXPECT_EQ(lines_of(planned(document, reach)), Lines());
        EXPECT_EQ(changing_calls(log()).empty(), plan.empty());
        forget_calls();
        EXPECT_EQ(apply(document, reach).status, 0);
        EXPECT_EQ(changing_calls(log()), Lines());
    }

    // What is shown is a document of the module that it came from, also when it is read from its text.
    void expect_shown_is_taken()
    {
        const std::string text = shown();
        Problems problems;
        const Value again = check_document(read_document(text, &problems), &problems);
        ASSERT_EQ(problem_lines("", problems), "") << text;
        EXPECT_EQ(as_yaml(again), text);
        EXPECT_EQ(lines_of(planned(again, Reach::kExact)), Lines());
    }
};

TEST_P(RandomApplyTest, ExactlyTheSecondDocumentIsThereAfterTheFirst)
{
    const Value first = RandomDocument(2 * GetParam(), true).make();
    const Value second = RandomDocument(2 * GetParam() + 1, true).make();
    expect_applied(first, Reach::kExact);
    expect_applied(second, Reach::kExact);
    expect_shown_is_taken();
}

TEST_P(RandomApplyTest, ASecondDocumentIsLaidOverTheFirst)
{
    expect_applied(RandomDocument(2 * GetParam(), false).make(), Reach::kMerge);
    expect_applied(RandomDocument(2 * GetParam() + 1, false).make(), Reach::kMerge);
    expect_shown_is_taken();
}

TEST_P(RandomApplyTest, GoingBackFromTheSecondDocumentLeavesTheFirst)
{
    const Value first = RandomDocument(2 * GetParam(), true).make();
    const Value second = RandomDocument(2 * GetParam() + 1, true).make();
    for (const Reach reach : {Reach::kExact, Reach::kMerge}) {
        ASSERT_EQ(apply(first, Reach::kExact).left, Lines());
        const Value before = as_seen_by(first);
        const Module module = read_for(second, reach);
        const Plan plan = make_plan(second, module, reach);
        const Value held = held_for(plan, module);
        if (!plan.problems.empty()) continue;
        ASSERT_EQ(apply(second, reach).left, Lines());
        EXPECT_EQ(go_back(held, {}).left, Lines());
        EXPECT_EQ(unlike(before, as_seen_by(first)), Lines());
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomApplyTest, testing::Range(0u, 50u));

// ---- refusals ----

TEST_F(ApplyTest, WhatCannotBeTakenBackIsToldAndNothingElse)
{
    const std::string before = shown();
    const Value wanted = document(
        "general: {shortcut_engine: false}\nlans: {0: {sip_server: {name: a}}}\nwrite_only: {alg: {1: true, 2: "
        "true}}\n");
    open("EnableAlg#2=fail:3");
    const Outcome outcome = apply(wanted);
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.left, Lines({"lans.0.sip_server: not undone: a SIP server can be replaced, not taken away",
                                   "write_only.alg.1: not undone: the switch of ALG 1 cannot be read"}));
    EXPECT_TRUE(outcome.is_back);
    open();
    EXPECT_EQ(plan_of("lans: {0: {sip_server: {name: a}}}\n"), Lines());
    applied("general: {shortcut_engine: true}\n");
    EXPECT_NE(shown(), before);
}

TEST_F(ApplyTest, ToKeepGoingDoesTheRest)
{
    open("SetNatType=fail:3");
    const Value wanted = document(
        "profiles: {main: {dial: {apn_index: 1}, roaming: true, nat: {type: full-cone}}}\ngeneral: {ipv6: false}\n");
    const Outcome outcome = apply(wanted, Reach::kMerge, {}, true);
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.left, Lines({"profiles.main.nat.type: port-restricted-cone -> full-cone"}));
    EXPECT_EQ(lines_of(planned(wanted)), outcome.left);
}

TEST_F(ApplyTest, AWishToStopIsToldAlsoWhereItEndsACallOrComesTooLate)
{
    const Value wanted = document("profiles: {main: {dial: {apn_index: 1}, nat: {type: full-cone}}}\n");
    Lines told;
    bool is_wished = false;
    Progress progress;
    progress.tells = [&](const std::string& line) { told.push_back(line); };
    progress.starts = [&](const Step&, size_t, size_t) { is_wished = true; };
    progress.is_stopped = [&] { return is_wished; };
    open("SetNatType=fail:3");
    EXPECT_EQ(apply(wanted, Reach::kMerge, progress).status, 4);
    EXPECT_EQ(told, Lines({"stopped; undoing what was done"}));
    open();

    // Before the step, behind it, and when it has been read back.
    told.clear();
    int asked = 0;
    progress.is_stopped = [&] { return ++asked == 3; };
    EXPECT_EQ(apply(wanted, Reach::kMerge, progress).status, 0);
    EXPECT_EQ(told, Lines({"all was done before it could be stopped"}));
}

TEST_F(ApplyTest, AResultThatSaysNoMoreThanAWordIsLookedAt)
{
    open("SetNatType=ok:13");
    applied("profiles: {main: {dial: {apn_index: 1}, nat: {type: full-cone}}}\n");
}

// ---- going back ----

class WayBackTest : public ApplyTest {
protected:
    // Brings all back, and reads it from its text before, as from a file.
    static Lines gone_back(const Value& held, Lines* told = nullptr)
    {
        Problems problems;
        const std::string text = as_yaml(held);
        const Value again = check_document(read_document(text, &problems), &problems, true);
        EXPECT_EQ(problem_lines("held", problems), "") << text;
        EXPECT_EQ(as_yaml(again), text);
        Progress progress;
        progress.tells = [told](const std::string& line) {
            if (told != nullptr) told->push_back(line);
        };
        const Outcome outcome = go_back(again, progress);
        EXPECT_EQ(outcome.status, outcome.left.empty() ? 0 : 5);
        return outcome.left;
    }
    static std::string held_text(const std::string& text, Reach reach = Reach::kMerge)
    {
        return as_yaml(held_by(text, reach)).substr(11);
    }
};

TEST_F(WayBackTest, EndsTheCallsOfWhatWasAddedAndOfNothingElse)
{
    applied("profiles: {other: {dial: {apn_index: 2}}}\n");
    ASSERT_EQ(zr_nexa_wan_connect_v4_set_v1(2, 1), 0u);
    const std::string before = shown();
    const Value held = held_by("profiles: {office: {dial: {apn_index: 3}}}\n");
    ASSERT_EQ(zr_nexa_wan_connect_v4_set_v1(3, 1), 0u);
    EXPECT_EQ(gone_back(held), Lines());
    EXPECT_EQ(shown(), before);
    bool calling = false;
    EXPECT_TRUE(read_calling(2, &calling).good());
    EXPECT_TRUE(calling);
}

constexpr char kOwn[] = R"(
general: {packet_statistics: true}
software_path: [192.168.225.9]
reservations: {192.168.225.30: {mac: "02:00:00:00:00:01"}}
lans:
  0: {dhcp: {enabled: false}, gateway_filters: [{protocol: tcp, ports: 80}]}
  20: {vlan: {interface: ecm}, address: 10.7.3.1/24, dhcp: {first: 10.7.3.2, last: 10.7.3.60}}
profiles:
  main: {dial: {apn_index: 1}, roaming: true}
  office: {dial: {apn_index: 3}, vlans: [20]}
roles: {dns_proxy: office}
)";

constexpr char kOthers[] = R"(
general: {gateway_url: others.example}
reservations: {192.168.225.40: {mac: "02:00:00:00:00:02"}}
lans:
  0: {dhcp: {lease_seconds: 777}}
  10: {vlan: {interface: rndis}, address: 10.7.2.1/24, dhcp: {first: 10.7.2.2, last: 10.7.2.60}}
profiles:
  main: {dial: {apn_index: 1}, reconnect: true}
  other: {dial: {apn_index: 2}, vlans: [10]}
roles: {access_point: other}
)";

TEST_F(WayBackTest, WhatOthersMadeMeanwhileStays)
{
    const Value held = held_by(kOwn);
    applied(kOthers);
    ASSERT_EQ(zr_nexa_wan_connect_v4_set_v1(3, 1), 0u);
    EXPECT_EQ(gone_back(held), Lines());
    const std::string text = shown();
    bool calling = false;
    EXPECT_TRUE(read_calling(3, &calling).good());
    EXPECT_TRUE(calling);
    ASSERT_EQ(zr_nexa_wan_connect_v4_set_v1(3, 0), 0u);

    // As if nobody but the others had been there; their profile has the handle that it got behind ours.
    close();
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    open();
    applied(kOthers);
    std::string expected = shown();
    for (size_t at = 0; (at = expected.find("profile-2", at)) != std::string::npos;)
        expected.replace(at, 9, "profile-3");
    EXPECT_EQ(text, expected);
}

TEST_F(WayBackTest, WhatOthersMadeMeanwhileStaysWhenAnApplyUndoesItself)
{
    Progress progress;
    bool has_come = false;
    progress.ends = [&](const Step& step, const Result&, const std::string&) {
        if (has_come || path_of(step) != "profiles.main.roaming") return;
        has_come = true;
        applied("general: {gateway_url: others.example}\nprofiles: {other: {dial: {apn_index: 2}}}\n");
    };
    open("AddPDNToVLANMapping=fail:3");
    const Outcome outcome = apply(document(kOwn), Reach::kMerge, progress);
    ASSERT_TRUE(has_come);
    EXPECT_EQ(outcome.left, Lines());
    EXPECT_EQ(outcome.status, 4);
    EXPECT_EQ(unlike(document("general: {packet_statistics: false, gateway_url: others.example}\nsoftware_path: []\n"
                              "reservations: {}\nlans: {0: {gateway_filters: [], dhcp: {enabled: true}}}\n"
                              "profiles: {main: {handle: 1, roaming: false}, other: {dial: {apn_index: 2}}}\n"
                              "roles: {default: main, access_point: main, dns_proxy: main}\n"),
                     as_seen_by(document("profiles: {main: {handle: 1}, other: {dial: {apn_index: 2}}}\n"))),
              Lines());
}

TEST_F(WayBackTest, OnlyWhatChangesIsHeld)
{
    EXPECT_EQ(held_text(kOwn), R"(general:
  packet_statistics: false
software_path: []
reservations:
  192.168.225.30: {absent: true}
lans:
  0:
    dhcp:
      enabled: true
    gateway_filters: []
  20:
    absent: true
profiles:
  main:
    handle: 1
    roaming: false
  office:
    absent: true
    dial: {apn_index: 3}
roles:
  dns_proxy: main
)");
    EXPECT_EQ(held_text("lans: {20: {dhcp: {lease_seconds: 60}}}\n"), R"(lans:
  20:
    address: 10.7.3.1/24
    dhcp:
      first: 10.7.3.2
      last: 10.7.3.60
      lease_seconds: 43200
      mtu: 1500
      dns: mode-1
)");
    EXPECT_EQ(held_text("lans: {20: {l2tp: {tunnels: {7: {peer_tunnel: 8, encapsulation: ip, local: 192.0.2.1, peer: "
                        "192.0.2.2, sessions: [{local: 1, peer: 2}]}}}}}\n"),
              "lans:\n  20:\n    l2tp:\n      mode: unmanaged\n      tunnels:\n        7: {absent: true}\n");
    EXPECT_EQ(held_text("profiles: {main: {dial: {apn_index: 1}, upnp_pinholes: true}}\n"),
              "profiles:\n  main:\n    handle: 1\n    firewall:\n      enabled: false\n      unmatched: drop\n    "
              "upnp_pinholes: false\n");
    EXPECT_EQ(held_text("write_only: {alg: {1: true}}\n"), "");
}

TEST_F(WayBackTest, WhatGoesIsHeldWholeAndAStrangerInItsPlaceStays)
{
    applied(kOwn);
    const std::string before = shown();
    const std::string without =
        "lans: {20: {absent: true}}\nprofiles: {main: {handle: 1}, office: {handle: 2, absent: true}}\n"
        "roles: {dns_proxy: main}\n";
    EXPECT_EQ(gone_back(held_by(without)), Lines());
    EXPECT_EQ(shown(), before);

    const Value held = held_by(without);
    applied("profiles: {stranger: {dial: {apn_index: 9}, autoconnect: true}}\n");
    ASSERT_EQ(plan_of("profiles: {stranger: {handle: 2, dial: {apn_index: 9}}}\n"), Lines());
    EXPECT_EQ(gone_back(held), Lines());
    EXPECT_EQ(plan_of(kOwn), Lines());
    EXPECT_EQ(plan_of("profiles: {stranger: {handle: 2, dial: {apn_index: 9}, autoconnect: true}}\n"), Lines());
}

TEST_F(WayBackTest, WhatIsHeldIsTakenThoughItIsAPart)
{
    const std::string tunnel =
        "{peer_tunnel: 8, encapsulation: ip, local: 192.0.2.1, peer: 192.0.2.2, sessions: [{local: 1, peer: 2}]}";
    applied("lans: {0: {l2tp: {mode: managed, tunnels: {7: " + tunnel + "}}}}\n");
    std::string before = shown();
    // The mode that was there, without the tunnel that it is for.
    EXPECT_EQ(gone_back(held_by("lans: {0: {l2tp: {mode: unmanaged, tunnels: {9: " + tunnel + "}}}}\n")), Lines());
    EXPECT_EQ(shown(), before);
    // Two that dial alike, and have no handles yet.
    EXPECT_EQ(gone_back(held_by("profiles: {a: {handle: 30, dial: {apn_index: 3}}, b: {handle: 31, dial: {apn_index: "
                                "3}}}\n")),
              Lines());
    EXPECT_EQ(shown(), before);
    // One MAC of two times.
    applied("reservations: {192.168.225.30: {mac: \"02:00:00:00:00:01\"}}\n");
    before = shown();
    Value held = held_by("reservations: {192.168.225.30: {absent: true}}\n");
    applied("reservations: {192.168.225.31: {mac: \"02:00:00:00:00:01\"}}\n");
    held = held_by("reservations: {192.168.225.31: {absent: true}}\n", Reach::kMerge, held);
    EXPECT_EQ(gone_back(held).size(), 1u);
    EXPECT_EQ(shown(), before);
}

TEST_F(WayBackTest, TwinsAreNotTakenForEachOther)
{
    applied("profiles: {a: {dial: {apn_index: 3}, roaming: true}}\n");
    const std::string before = shown();
    const Value added = held_by("profiles: {a: {handle: 2}, b: {handle: 40, dial: {apn_index: 3}}}\n");
    EXPECT_NE(shown(), before);
    EXPECT_EQ(gone_back(added), Lines());
    EXPECT_EQ(shown(), before);

    applied("profiles: {a: {handle: 2}, b: {handle: 40, dial: {apn_index: 3}}}\n");
    const std::string both = shown();
    const Value removed = held_by("profiles: {a: {handle: 2, absent: true}}\n");
    EXPECT_EQ(gone_back(removed), Lines());
    EXPECT_EQ(shown(), both);
    // Another profile of the same kind takes its place.
    const Value replaced = held_by(
        "profiles: {a: {handle: 2, absent: true}, b: {handle: 3}, c: {handle: 41, dial: "
        "{apn_index: 3}}}\n");
    EXPECT_EQ(gone_back(replaced), Lines());
    EXPECT_EQ(shown().find("roaming: true"), both.find("roaming: true"));
}

TEST_F(WayBackTest, WhatOthersHaveTakenAwayStaysAway)
{
    applied(
        "lans: {10: {vlan: {interface: ecm}}}\n"
        "profiles: {main: {dial: {apn_index: 1}, vlans: [10]}, other: {dial: {apn_index: 2}}}\n");
    const Value held = held_by(R"(
lans: {10: {dhcp: {enabled: false}}}
profiles: {main: {dial: {apn_index: 1}, vlans: []}, other: {dial: {apn_index: 2}, roaming: true}}
roles: {dns_proxy: other}
)");
    applied(
        "roles: {dns_proxy: main}\nprofiles: {main: {handle: 1}, other: {handle: 2, absent: true}}\n"
        "lans: {10: {absent: true}}\n");
    const std::string before = shown();
    Lines told;
    EXPECT_EQ(gone_back(held, &told), Lines());
    EXPECT_EQ(told, Lines({"lans.10: what it was is not there any more, and is left so",
                           "profiles.other: what it was is not there any more, and is left so"}));
    EXPECT_EQ(shown(), before);
}

TEST_F(WayBackTest, TheModeOfTunnelsThatOthersHaveTakenAwayIsNoneToGoBackTo)
{
    applied(
        "lans: {0: {l2tp: {mode: managed, tunnels: {7: {peer_tunnel: 8, encapsulation: ip, local: 192.0.2.1, peer: "
        "192.0.2.2, sessions: [{local: 1, peer: 2}]}}}}}\n");
    const Value held = held_by("lans: {0: {l2tp: {mtu: 1400}}}\n");
    applied("lans: {0: {l2tp: {tunnels: {7: {absent: true}}}}}\n");
    EXPECT_EQ(gone_back(held), Lines());
    EXPECT_EQ(plan_of("lans: {0: {l2tp: {mtu: 0, tunnels: {}}}}\n", Reach::kExact), Lines());
}

TEST_F(WayBackTest, AnApplyBehindAnotherGoesBackToTheFirstState)
{
    applied(kOwn);
    const std::string before = shown();
    Value held = held_by(R"(
general: {packet_statistics: false}
reservations: {192.168.225.30: {mac: "02:00:00:00:00:03"}, 192.168.225.31: {mac: "02:00:00:00:00:04"}}
lans:
  10: {vlan: {interface: rndis}}
  20: {absent: true}
profiles:
  main: {handle: 1, vlans: [10], roaming: false}
  office: {handle: 2, absent: true}
  fresh: {dial: {apn_index: 5}}
roles: {default: fresh, dns_proxy: fresh}
)");
    held = held_by(R"(
general: {packet_statistics: true, gateway_url: second.example}
reservations: {192.168.225.30: {absent: true}, 192.168.225.31: {absent: true}}
lans:
  10: {absent: true}
  20: {vlan: {interface: ethernet}, l2tp: {tunnels: {7: {peer_tunnel: 8, encapsulation: ip, local: 192.0.2.1, peer: 192.0.2.2, sessions: [{local: 1, peer: 2}]}}}}
profiles:
  one: {handle: 1, dial: {apn_index: 6}, reconnect: true}
  other-office: {dial: {apn_index: 3}, autoconnect: true}
  fresh: {handle: 3, dial: {apn_index: 7}}
  fourth: {dial: {apn_index: 1}}
roles: {default: fourth}
)",
                   Reach::kMerge, held);
    EXPECT_EQ(gone_back(held), Lines());
    std::string after = shown();
    const size_t handle = after.find("profile-", after.find("dns_proxy: ")) + 8;  // a new one
    const std::string office = "profile-" + after.substr(handle, after.find('\n', handle) - handle);
    for (size_t at = 0; (at = after.find(office, at)) != std::string::npos;)
        after.replace(at, office.size(), "profile-2");
    EXPECT_EQ(after, before);
}

constexpr char kBefore[] = R"(
general: {shortcut_engine: true, gateway_url: before.example, ipv6: true}
software_path: [10.7.1.9]
reservations: {10.7.1.30: {mac: "02:00:00:00:00:01"}, 10.7.1.31: {mac: "02:00:00:00:00:02"}, 10.7.1.32: {mac: "02:00:00:00:00:03"}}
lans:
  0: {address: 10.7.1.1/24, dhcp: {first: 10.7.1.2, last: 10.7.1.60}, sip_server: {name: sip.example}}
  10:
    vlan: {interface: ethernet}
    address: 10.7.2.1/24
    dhcp: {first: 10.7.2.2, last: 10.7.2.60}
    gateway_filters: [{protocol: tcp, ports: 80}, {protocol: udp, ports: 90}]
    l2tp: {enabled: true, mtu: 1400, mode: managed, tunnels: {
      7: {peer_tunnel: 8, encapsulation: ip, local: 192.0.2.1, peer: 192.0.2.2, sessions: [{local: 1, peer: 2}]}}}
  20: {vlan: {interface: ecm}, address: 10.7.3.1/24, dhcp: {first: 10.7.3.2, last: 10.7.3.60}}
profiles:
  main: {dial: {apn_index: 1}, vlans: [10, 20]}
  office:
    dial: {apn_index: 3, family: ipv4}
    nat: {type: full-cone, dmz: 10.7.1.50, port_mappings: [{protocol: tcp, global_port: 80, host: 10.7.1.50}]}
    firewall: {enabled: true, unmatched: drop, entries: [{family: ipv4, protocol: tcp, destination_ports: 22}]}
    upnp_pinholes: true
roles: {default: main, access_point: main, dns_proxy: office}
hardware_mac_filter: {state: listed, stations: ["02:00:00:00:00:31"], interfaces: [[1, 0, 0, 0, 0]]}
)";

constexpr char kLans[] = R"(
general: {gateway_url: after.example, dhcp_for_new_vlans: false}
software_path: [10.7.1.8, 10.7.1.10]
reservations: {10.7.1.30: {mac: "02:00:00:00:00:02"}, 10.7.1.31: {mac: "02:00:00:00:00:01"}, 10.7.1.32: {absent: true}}
lans:
  0: {address: 10.7.2.1/24, dhcp: {first: 10.7.2.2, last: 10.7.2.60}, sip_server: {name: other.example}}
  10:
    vlan: {interface: rndis}
    address: 10.7.1.1/24
    dhcp: {enabled: false, first: 10.7.1.2, last: 10.7.1.60}
    gateway_filters: [{protocol: tcp, ports: 80}, {protocol: udp, ports: 91}]
  20: {absent: true}
  30: {vlan: {interface: ethernet-2}, address: 10.7.4.1/24, dhcp: {first: 10.7.4.2, last: 10.7.4.60},
       passthrough: {device: adaptive, choice: 3}, passthrough_nat: without-nat}
)";

constexpr char kProfiles[] = R"(
general: {shortcut_engine: false, ipv6: false}
profiles:
  main: {dial: {apn_index: 1}, vlans: [20], reconnect: true, roaming: true, vpn_passthrough: {ipsec: {ipv4: true}}}
  office:
    handle: 2
    dial: {apn_index: 4, family: ipv6, apn_name: office.example}
    nat: {type: symmetric, dmz: none, port_mappings: [{protocol: udp, global_port: 80, host: 10.7.1.50}]}
    firewall: {enabled: false, unmatched: let-through, entries: [{family: ipv6, protocol: udp, source_ports: 1-9}]}
    upnp_pinholes: false
  fresh: {dial: {apn_index: 5}, autoconnect: true, vlans: [10]}
roles: {default: fresh, access_point: fresh, dns_proxy: main}
upnp: {enabled: true, notify_seconds: 60}
hardware_mac_filter: {state: disabled, stations: ["02:00:00:00:00:32"]}
)";

class RefusalTest : public ApplyTest {
protected:
    void keep_state()
    {
        kept_ = folder + ".kept";
        close();
        std::filesystem::remove_all(kept_);
        std::filesystem::copy(folder, kept_, std::filesystem::copy_options::recursive);
    }
    void back_to_kept()
    {
        close();
        std::filesystem::remove_all(folder);
        std::filesystem::copy(kept_, folder, std::filesystem::copy_options::recursive);
    }
    void TearDown() override
    {
        std::filesystem::remove_all(kept_);
        ApplyTest::TearDown();
    }

    // Each call of the platform is refused once. All is as before then, or what is not is told.
    void refuse_each(const std::string& text)
    {
        applied(kBefore);
        keep_state();
        open();
        const Value wanted = document(text);
        const Module module = read_all();
        const Value before = as_document(module, {}, true);
        const Value held = held_for(make_plan(wanted, module, Reach::kMerge), module);
        const std::string shown_before = shown();
        forget_calls();
        ASSERT_EQ(apply(wanted).status, 0);

        const uint32_t words[] = {3, 0, 48, 0xffff, 0x1000};
        size_t trial = 0;
        std::map<int, int> statuses;
        for (const std::string& call : platform_calls(log())) {
            const std::string fault = call + "=fail:" + std::to_string(words[trial++ % std::size(words)]);
            SCOPED_TRACE(fault);
            back_to_kept();
            open(fault);
            Outcome outcome;
            try {
                outcome = apply(wanted);
            } catch (const Refusal& refusal) {
                outcome = {3, {refusal.path}};
            }
            testing::internal::CaptureStderr();
            open();
            testing::internal::GetCapturedStderr();  // of faults that were not reached
            ++statuses[outcome.status];
            if (outcome.status == 0) {
                EXPECT_EQ(lines_of(planned(wanted)), Lines());
            } else if (outcome.status != 5) {
                EXPECT_EQ(shown(), shown_before) << testing::PrintToString(outcome.left);
            } else {
                expect_left(outcome.left, planned(held, Reach::kBack), wanted);
                expect_left(outcome.left, make_plan(before, read_for(before, Reach::kExact), Reach::kExact, false),
                            wanted);
            }
        }
        for (const auto& [status, count] : statuses)
            RecordProperty("status_" + std::to_string(status), count);
        EXPECT_GT(statuses[4], 20);
    }

    // What is left is told, and nothing else.
    static void expect_left(const Lines& left, const Plan& back, const Value& wanted)
    {
        EXPECT_NE(left, Lines());
        const bool is_unread = std::all_of(left.begin(), left.end(), [](const std::string& line) {
            return line.find("cannot be read: ") != std::string::npos;
        });
        if (is_unread) {  // all is done, and one of the settings could not be read back
            EXPECT_EQ(lines_of(planned(wanted)), Lines());
            return;
        }
        for (const Step& step : back.steps) {
            const bool is_told = std::any_of(left.begin(), left.end(), [&step](const std::string& line) {
                return line.rfind(path_of(step) + ":", 0) == 0;
            });
            EXPECT_TRUE(is_told) << path_of(step) << " in " << testing::PrintToString(left);
        }
    }

private:
    std::string kept_;
};

TEST_F(RefusalTest, OfEachCallForLansIsUndoneOrTold)
{
    refuse_each(kLans);
}

TEST_F(RefusalTest, OfEachCallForProfilesIsUndoneOrTold)
{
    refuse_each(kProfiles);
}

}  // namespace
}  // namespace ctl
