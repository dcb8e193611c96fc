// What an apply makes of a module, for documents made at random, and what becomes of it when the platform refuses.
#include <gmock/gmock.h>
#include <zr_nexa/wan_connection.h>

#include "plan_fixture.h"
#include "random_document.h"

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
        with_faults("");
        std::filesystem::resize_file(log(), 0);
    }
    void TearDown() override
    {
        PlanTest::TearDown();
        std::filesystem::resize_file(log(), 0);
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

    // The names of the platform's calls since the last time.
    static Lines calls()
    {
        Lines names;
        std::ifstream file(log());
        const std::string mark = "[MOBILE_AP]";
        for (std::string line; std::getline(file, line);) {
            const size_t begin = line.find(mark);
            if (begin == std::string::npos) continue;
            const size_t name = begin + mark.size();
            names.push_back(line.substr(name, line.find('(', name) - name));
        }
        file.close();
        std::filesystem::resize_file(log(), 0);
        return names;
    }
    // Those that do not only look and choose.
    static Lines changing_calls()
    {
        Lines changing;
        for (const std::string& call : calls()) {
            const bool is_looking = call.rfind("Get", 0) == 0 || call.rfind("ZR_Get", 0) == 0 ||
                                    call.rfind("Select", 0) == 0 || call == "IsReady" ||
                                    call == "SetWWANProfileHandlePreference";
            if (!is_looking) changing.push_back(call);
        }
        return changing;
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
            EXPECT_TRUE(result.good()) << path_of(step) << " " << answer_of(result);
            done.insert(done.end(), step.lines.begin(), step.lines.end());
        };
        const Outcome outcome = apply(document, reach, progress);
        ASSERT_EQ(outcome.left, Lines());
        ASSERT_EQ(outcome.status, 0);
        EXPECT_EQ(done, plan);
        EXPECT_EQ(unlike(expected, as_seen_by(document)), Lines());
        EXPECT_EQ(lines_of(planned(document, reach)), Lines());
        EXPECT_EQ(changing_calls().empty(), plan.empty());
        EXPECT_EQ(apply(document, reach).status, 0);
        EXPECT_EQ(changing_calls(), Lines());
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

INSTANTIATE_TEST_SUITE_P(Seeds, RandomApplyTest, testing::Range(0u, 50u));

// ---- refusals ----

TEST_F(ApplyTest, WhatCannotBeTakenBackIsToldAndNothingElse)
{
    const std::string before = shown();
    const Value wanted = document(
        "general: {shortcut_engine: false}\nlans: {0: {sip_server: {name: a}}}\nwrite_only: {alg: {1: true, 2: "
        "true}}\n");
    with_faults("EnableAlg#2=fail:3");
    const Outcome outcome = apply(wanted);
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.left, Lines({"lans.0.sip_server: not undone: a SIP server can be replaced, not taken away",
                                   "write_only.alg.1: not undone: the switch of ALG 1 cannot be read"}));
    EXPECT_TRUE(outcome.is_back);
    with_faults("");
    EXPECT_EQ(plan_of("lans: {0: {sip_server: {name: a}}}\n"), Lines());
    applied("general: {shortcut_engine: true}\n");
    EXPECT_NE(shown(), before);
}

TEST_F(ApplyTest, ToKeepGoingDoesTheRest)
{
    with_faults("SetNatType=fail:3");
    const Value wanted = document(
        "profiles: {main: {dial: {apn_index: 1}, roaming: true, nat: {type: full-cone}}}\ngeneral: {ipv6: false}\n");
    const Outcome outcome = apply(wanted, Reach::kMerge, {}, true);
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.left, Lines({"profiles.main.nat.type: port-restricted-cone -> full-cone"}));
    EXPECT_EQ(lines_of(planned(wanted)), outcome.left);
}

TEST_F(ApplyTest, AResultThatSaysNoMoreThanAWordIsLookedAt)
{
    with_faults("SetNatType=ok:13");
    applied("profiles: {main: {dial: {apn_index: 1}, nat: {type: full-cone}}}\n");
}

TEST_F(ApplyTest, GoingBackEndsTheCallsOfWhatWasAdded)
{
    const std::string shown_before = shown();
    const Value before = as_document(read_all(), {}, true);
    applied("profiles: {office: {dial: {apn_index: 3}}}\n");
    ASSERT_EQ(zr_nexa_wan_connect_v4_set_v1(2, 1), 0u);
    const Outcome outcome = go_back(before, {});
    EXPECT_EQ(outcome.left, Lines());
    EXPECT_EQ(shown(), shown_before);
}

TEST_F(ApplyTest, TheHeldStateIsCompletedWithWhatAnotherDocumentNames)
{
    const Value held = document(R"(
general: {shortcut_engine: true}
lans: {0: {}, 10: {vlan: {interface: ecm}, dhcp: {enabled: true}}}
profiles: {a: {handle: 1, dial: {apn_index: 1}, roaming: false}}
)");
    const Value now = document(R"(
general: {shortcut_engine: false, ipv6: false}
lans: {0: {dhcp: {enabled: false}}, 10: {vlan: {interface: rndis}, dhcp: {enabled: false}}, 20: {vlan: {interface: ecm}}}
profiles:
  b: {handle: 1, dial: {apn_index: 2}, roaming: true, reconnect: true, vlans: [10, 20]}
  c: {handle: 2, dial: {apn_index: 3}, roaming: true}
roles: {default: b, access_point: c, dns_proxy: b}
)");
    EXPECT_EQ(as_yaml(completed(held, now)), as_yaml(document(R"(
general: {shortcut_engine: true, ipv6: false}
lans: {0: {dhcp: {enabled: false}}, 10: {vlan: {interface: ecm}, dhcp: {enabled: true}}}
profiles: {a: {handle: 1, dial: {apn_index: 1}, roaming: false, reconnect: true, vlans: [10]}}
roles: {default: a, dns_proxy: a}
)")));
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
        with_faults("");
        const Value wanted = document(text);
        const Module module = read_all();
        const Value before = as_document(module, {}, true);
        const std::string shown_before = shown();
        calls();
        ASSERT_EQ(apply(wanted).status, 0);
        std::map<std::string, int> counts;
        for (const std::string& call : calls())
            ++counts[call];

        const uint32_t words[] = {3, 0, 48, 0xffff, 0x1000};
        size_t trial = 0;
        std::map<int, int> statuses;
        for (const auto& [method, count] : counts) {
            for (int n = 1; n <= count; ++n) {
                const std::string fault =
                    method + "#" + std::to_string(n) + "=fail:" + std::to_string(words[trial++ % std::size(words)]);
                SCOPED_TRACE(fault);
                back_to_kept();
                with_faults(fault);
                Outcome outcome;
                try {
                    outcome = apply(wanted);
                } catch (const Refusal& refusal) {
                    outcome = {3, {refusal.path}};
                }
                testing::internal::CaptureStderr();
                with_faults("");
                testing::internal::GetCapturedStderr();  // of faults that were not reached
                ++statuses[outcome.status];
                if (outcome.status == 0) {
                    EXPECT_EQ(lines_of(planned(wanted)), Lines());
                } else if (outcome.status != 5) {
                    EXPECT_EQ(shown(), shown_before) << testing::PrintToString(outcome.left);
                } else {
                    expect_left(outcome.left, planned(before, Reach::kBack), wanted);
                }
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
