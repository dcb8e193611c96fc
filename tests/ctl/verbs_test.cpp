// Words, exit statuses and printed bytes of the verbs that ask and act.
#include <cstdio>

#include "program_fixture.h"

namespace {

using VerbsTest = ProgramTest;

constexpr const char* kNoServiceText = "zr_nexactl: no session: the service is not ready\n";

TEST_F(VerbsTest, TheHelpTellsTheVerbsAndTheStatuses)
{
    const ToolRun seen = ctl({"--help"});
    EXPECT_EQ(seen.status, 0);
    EXPECT_EQ(seen.err, "");
    for (const char* verb :
         {"status", "metrics", "connect", "disconnect", "watch", "run", "explain", "restore", "reset"})
        EXPECT_NE(seen.out.find("\n  " + std::string(verb) + " "), std::string::npos) << verb;
    EXPECT_NE(seen.out.find("Exit statuses:\n"
                            "  0  done, or the same already\n"
                            "  1  something differs, or a state was not reached in time\n"
                            "  2  the words, the document or the state folder are wrong\n"
                            "  3  no service, or reading was refused, or the result could not be written\n"
                            "  4  a change was refused, and all is as before\n"
                            "  5  refused and not wholly undone, or read back otherwise\n"
                            "  6  another process holds the lock, or a confirmation is pending\n"),
              std::string::npos)
        << seen.out;
    expect_ctl({"--version"}, 0, "zr_nexactl 1.0.0\n");
}

TEST_F(VerbsTest, WrongWordsAreOneLineAndStatus2)
{
    const std::vector<std::pair<Words, std::string>> wrong = {
        {{}, "A subcommand is required"},
        {{"foo"}, "\"foo\" is no word that is known here"},
        {{"f\noo"}, "\"f oo\" is no word that is known here"},
        {{"status", "--json", "--dot"}, "--json excludes --dot"},
        {{"connect"}, "PROFILE is required"},
        {{"connect", "0"}, "PROFILE: \"0\" is no profile: its handle, 1 to 50, or profile-<handle>"},
        {{"connect", "51"}, "PROFILE: \"51\" is no profile: its handle, 1 to 50, or profile-<handle>"},
        {{"connect", "profile-"}, "PROFILE: \"profile-\" is no profile: its handle, 1 to 50, or profile-<handle>"},
        {{"connect", "01"}, "PROFILE: \"01\" is no profile: its handle, 1 to 50, or profile-<handle>"},
        {{"connect", "1", "--family", "5"}, "--family: 5 not in {4,6,46}"},
        {{"disconnect", "1", "--wait", "x"}, "--wait: Value x not in range 0.000000 to 1000000000.000000"},
        {{"reset"}, "A subcommand is required"},
        {{"restore"}, "--yes is required"},
        {{"explain"}, "CODE is required"},
    };
    for (const auto& [words, problem] : wrong)
        expect_ctl(words, 2, "", "zr_nexactl: " + problem + "; see --help\n");
    EXPECT_EQ(ctl({"watch", "--until", "connected"}).status, 2);
    EXPECT_EQ(ctl({"watch", "--for", "-1"}).status, 2);
}

TEST_F(VerbsTest, WithoutAServiceTheStatusIs3)
{
    const std::vector<std::string> away = {"MOBILE_AP_FAULTS=IsReady=notready"};
    for (const Words& words : std::vector<Words>{{"status"},
                                                 {"connect", "1"},
                                                 {"disconnect", "1", "--wait", "1"},
                                                 {"watch", "--for", "0"},
                                                 {"restore", "--yes"},
                                                 {"reset", "lan-statistics"},
                                                 {"reset", "wan-statistics", "1"}})
        expect_ctl(words, 3, "", kNoServiceText, away);
    expect_ctl(
        {"metrics"}, 3,
        "# HELP zr_nexa_up Whether the mobile-AP service answers\n# TYPE zr_nexa_up gauge\nzr_nexa_up 0\n# EOF\n",
        kNoServiceText, away);
    expect_ctl({"run", "General", "SFE", "get"}, 3, "CMD Error#0xd\r\n", "", away);
}

TEST_F(VerbsTest, RunPrintsWhatTheCommandPrintsAndTellsHowItWent)
{
    const std::vector<std::pair<Words, int>> lines = {{{}, 0},
                                                      {{"LAN"}, 0},
                                                      {{"Foo"}, 2},
                                                      {{"General", "SFE"}, 0},
                                                      {{"General", "SFE", "get"}, 0},
                                                      {{"General", "SFE", "Enable"}, 2},
                                                      {{"General", "SFE", "--help"}, 2},
                                                      {{"LAN", "MACBind", "get"}, 2},
                                                      {{"LAN", "foo", "get"}, 2},
                                                      {{"LAN", "VLAN", "add", "10", "1", "1"}, 0},
                                                      {{"LAN", "IPPTNATPDN", "set", "10", "-1"}, 0},
                                                      {{"LAN", "IPPTNATPDN", "set", "20", "-1"}, 5},
                                                      {{"WAN", "Info", "get", "1"}, 0},
                                                      {{"NAT", "Type", "get", "2"}, 5},
                                                      {{"NAT", "Type", "get", "0"}, 2},
                                                      {{"WAN", "RestartRadvd"}, 0},
                                                      {{"LAN", "GWURL", "set", "-h"}, 0}};
    for (const auto& [words, status] : lines) {
        ToolOptions options = ctl_options();
        options.tells = true;
        Words all = {"run"};
        all.insert(all.end(), words.begin(), words.end());
        StartedTool tool(all, options);
        EXPECT_FALSE(tool.wait_for_pause());  // it has none
        const ToolRun seen = tool.wait();
        EXPECT_EQ(seen.status, status) << testing::PrintToString(words);
        EXPECT_EQ(seen.out, run(words).out) << testing::PrintToString(words);
        EXPECT_EQ(seen.err, "");
    }
    expect_ctl({"run", "General", "SFE", "get"}, 0, "General SFE: enabled\r\nCMD OK\r\n");
    expect_ctl({"run", "NAT", "Type", "get", "2"}, 5, "CMD Error#0x1009\r\n");
}

// As the command, which ends with 0: what was asked for may be done or not.
TEST_F(VerbsTest, ASignalEndsRunWithStatus5)
{
    for (const int signo : {SIGINT, SIGTERM}) {
        ToolOptions options = ctl_options({"MOBILE_AP_FAULTS=SetDataPathOptStatus=delay:20000"});
        options.tells = true;
        StartedTool tool({"run", "General", "SFE", "disable"}, options);
        ASSERT_TRUE(tool.wait_for_handlers());
        EXPECT_TRUE(tool.send(signo));
        const ToolRun seen = tool.wait();
        EXPECT_EQ(seen.status, 5);
        EXPECT_EQ(seen.out, "");
    }
}

// As in the command: a signal may meet the lock half taken, and the handler would wait for it.
TEST_F(VerbsTest, RunDoesNotAskForStandardOutputsLock)
{
    ToolOptions options = ctl_options();
    options.output_locked = true;
    const ToolRun seen = run_tool({"run", "General", "SFE", "get"}, options);
    EXPECT_EQ(seen.status, 0);
    EXPECT_EQ(seen.out, "General SFE: enabled\r\nCMD OK\r\n");
    EXPECT_EQ(seen.err, "");
}

TEST_F(VerbsTest, ExplainPutsACodeIntoWords)
{
    expect_ctl({"explain", "0x2009"}, 0,
               "0x2009: step 2: the service answered 9, there is no such profile (any more)\n");
    for (const char* name : {"zr_nexa_nat_type_set_v1", "nat_type_set_v1", "nat_type_set", "zr_nexa_nat_type_set"})
        expect_ctl({"explain", "8201", name}, 0,
                   "0x2009: step 2, setting the type: the service answered 9, there is no such profile (any more)\n");
    expect_ctl({"explain", "9"}, 0,
               "0x9: a small code, which each area has of its own\n"
               "  IP passthrough, the device: not a MAC address\n"
               "  LAN services, L2TP: sessions\n"
               "  done, and the service's word: there is no such profile (any more)\n");
    expect_ctl({"explain", "0xD"}, 0, "0xD: no session\n");
    for (const char* code : {"", "x", "0x", "-1", "+1", " 1", "1 ", "0x100000000", "99999999999999999999"})
        expect_ctl({"explain", code}, 2, "",
                   "zr_nexactl: \"" + std::string(code) + "\" is no result code: 0x2009, or 8201\n");
    expect_ctl({"explain", "9", "nat"}, 2, "", "zr_nexactl: the client interface has no function \"nat\"\n");
}

TEST_F(VerbsTest, RestorePutsTheFactoryBack)
{
    command({"General", "SFE", "disable"});
    EXPECT_EQ(ctl({"restore"}).status, 2);
    expect_ctl({"run", "General", "SFE", "get"}, 0, "General SFE: disabled\r\nCMD OK\r\n");
    expect_ctl({"restore", "--yes"}, 0, "");
    expect_ctl({"run", "General", "SFE", "get"}, 0, "General SFE: enabled\r\nCMD OK\r\n");
}

TEST_F(VerbsTest, ResetsSetTheCountsBack)
{
    command({"WAN", "Connect", "connect", "1", "46"});
    happens({"traffic", "1", "--down", "1000", "--up", "2000", "--family", "4"});
    command({"WAN", "Connect", "disconnect", "1", "46"});
    EXPECT_NE(ctl({"status"}).out.find("received "), std::string::npos);
    expect_ctl({"reset", "wan-statistics", "profile-1"}, 0, "");
    EXPECT_EQ(ctl({"status"}).out.find("received "), std::string::npos);
    expect_ctl({"reset", "lan-statistics"}, 0, "");
    expect_ctl(
        {"reset", "wan-statistics", "7"}, 4, "",
        "zr_nexactl: zr_nexa_wan_statistics_reset_v1: 0x1009, step 1, selecting the profile: the service answered "
        "9, there is no such profile (any more)\n");
    expect_ctl(
        {"reset", "lan-statistics"}, 4, "",
        "zr_nexactl: zr_nexa_lan_packetstats_reset_v1: 0x1030, step 1, resetting the counts: the service answered "
        "48, a value is out of range, or does not go with what is there: a profile in use cannot be deleted\n",
        {"MOBILE_AP_FAULTS=ResetPacketStats=fail:48"});
}

TEST_F(VerbsTest, ConnectAndDisconnectAreDoneAlsoWhenThereIsNothingToDo)
{
    const auto states = [&] {
        const ToolRun seen = run({"WAN", "Status", "get", "1"});
        return seen.out;
    };
    const std::string down = states();
    expect_ctl({"connect", "1", "--wait", "10"}, 0, "");
    const std::string up = states();
    EXPECT_NE(up, down);
    expect_ctl({"connect", "profile-1", "--wait", "10"}, 0, "");
    expect_ctl({"connect", "1"}, 0, "");
    EXPECT_EQ(states(), up);
    expect_ctl({"disconnect", "1", "--wait", "10"}, 0, "");
    EXPECT_EQ(states(), down);
    expect_ctl({"disconnect", "1", "--wait", "10"}, 0, "");
}

TEST_F(VerbsTest, OneFamilyIsConnectedWithoutTheOther)
{
    expect_ctl({"connect", "1", "--family", "6", "--wait", "10"}, 0, "");
    const std::string tree = ctl({"status"}).out;
    EXPECT_NE(tree.find("IPv4 disconnected"), std::string::npos) << tree;
    EXPECT_NE(tree.find("IPv6 connected"), std::string::npos) << tree;
    expect_ctl({"watch", "--until", "v4-connected", "--for", "0"}, 1, "");
    expect_ctl({"watch", "--until", "v6-connected", "--for", "0"}, 0, "");
}

TEST_F(VerbsTest, WaitingEndsWhenTheTimeIsOverOrTheNetworkRefuses)
{
    happens({"call", "slow", "1", "1500"});
    const ToolRun late = ctl({"connect", "1", "--family", "4", "--wait", "0.2"});
    EXPECT_EQ(late.status, 1);
    EXPECT_EQ(late.err, "zr_nexactl: profile-1: IPv4 is not connected in time\n");
    expect_ctl({"connect", "1", "--family", "4", "--wait", "20"}, 0, "");  // it is on its way

    happens({"call", "slow", "1", "0"});
    happens({"call", "refuse", "1"});
    const ToolRun refused = ctl({"connect", "1", "--family", "6", "--wait", "20"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err.find("zr_nexactl: profile-1: IPv6 could not be connected, end type "), 0u) << refused.err;
    EXPECT_LT(refused.seconds, 10);
}

TEST_F(VerbsTest, ARefusedConnectIsTold)
{
    const std::string refusal =
        ": 0x1009, step 1, selecting the profile: the service answered 9, there is no such "
        "profile (any more)\n";
    expect_ctl(
        {"connect", "9", "--wait", "10"}, 4, "",
        "zr_nexactl: zr_nexa_wan_connect_v4_set_v1" + refusal + "zr_nexactl: zr_nexa_wan_connect_v6_set_v1" + refusal);
    expect_ctl({"connect", "1"}, 5, "",
               "zr_nexactl: zr_nexa_wan_connect_v6_set_v1: 0x2003, step 2, connecting: the service answered 3, the "
               "service is away; or it is not ready, or its state failed or stayed busy for 10 seconds, and standard "
               "error says why\n",
               {"MOBILE_AP_FAULTS=ConnectBackHaul#2=fail:3"});
}

TEST_F(VerbsTest, AProfileOfOneFamilyIsAskedForThatOne)
{
    command({"WAN", "WWANConfig", "add", "0", "2"});
    change_state("UPDATE wwan_profile SET ip_family = 4 WHERE handle = 2");
    expect_ctl(
        {"connect", "2", "--family", "6"}, 4, "",
        "zr_nexactl: zr_nexa_wan_connect_v6_set_v1: 0x2030, step 2, connecting: the service answered 48, a value "
        "is out of range, or does not go with what is there: a profile in use cannot be deleted\n");
    expect_ctl({"connect", "2", "--wait", "10"}, 0, "");
    expect_ctl({"disconnect", "2", "--wait", "10"}, 0, "");
}

// ---- the verbs about documents ----

TEST_F(VerbsTest, AResultThatCannotBeWrittenIsTold)
{
    const std::string document = written("one.yaml", "version: 1\ngeneral: {shortcut_engine: false}\n");
    ToolOptions options = ctl_options();
    options.before_exec = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
    for (const Words& words : std::vector<Words>{{"show"},
                                                 {"diff", document},
                                                 {"validate", "--print", document},
                                                 {"apply", "--dry-run", document},
                                                 {"pending"},
                                                 {"schema"},
                                                 {"status"}}) {
        const ToolRun seen = run_tool(words, options);
        EXPECT_EQ(seen.status, 3) << words[0];
        EXPECT_NE(seen.err.find("zr_nexactl: the result cannot be written"), std::string::npos) << words[0] << seen.err;
    }
    // It is done, and that nobody reads it undoes nothing.
    EXPECT_EQ(run_tool({"apply", document}, options).status, 0);
}

TEST_F(VerbsTest, WithJsonEveryWayOutIsAnObject)
{
    const std::string document = written("one.yaml", "version: 1\ngeneral: {shortcut_engine: false}\n");
    expect_ctl({"diff", "--json", document}, 1,
               "{\"plan\": [\"general.shortcut_engine: true -> false\"]}\n{\"status\": 1, \"problems\": []}\n");
    expect_ctl({"apply", "--dry-run", "--json", document}, 0,
               "{\"plan\": [\"general.shortcut_engine: true -> false\"]}\n{\"status\": 0, \"problems\": []}\n");
    expect_ctl({"validate", "--json", document}, 0, "{\"status\": 0, \"problems\": []}\n");
    expect_ctl({"validate", "--json", "--print", document}, 0,
               "{\"version\": 1, \"general\": {\"shortcut_engine\": false}}\n");
    expect_ctl({"show", "--json", "lan"}, 2,
               "{\"status\": 2, \"problems\": [\"lan: no such key; did you mean lans?\"]}\n",
               "zr_nexactl: lan: no such key; did you mean lans?\n");
    for (const Words& words :
         std::vector<Words>{{"show"}, {"diff", document}, {"apply", document}, {"status"}, {"watch", "--for", "0"}}) {
        Words all = words;
        all.push_back("--json");
        expect_ctl(all, 3, "{\"status\": 3, \"problems\": [\"no session: the service is not ready\"]}\n",
                   kNoServiceText, {"MOBILE_AP_FAULTS=IsReady=notready"});
    }
    expect_ctl({"apply", "--json", "--state", "/dev/null", document}, 2,
               "{\"status\": 2, \"problems\": [\"/dev/null: not a folder\"]}\n",
               "zr_nexactl: /dev/null: not a folder\n");
}

TEST_F(VerbsTest, WhatShowLeavesOutBearsTheLabelThatItPrints)
{
    const ToolRun seen = ctl({"show", "profiles"}, {"MOBILE_AP_FAULTS=GetNatType=fail:3"});
    EXPECT_EQ(seen.status, 3);
    EXPECT_NE(seen.out.find("\n  profile-1:\n"), std::string::npos);
    EXPECT_EQ(seen.err.find("zr_nexactl: profiles.profile-1.nat.type is left out: "), 0u) << seen.err;
}

TEST_F(VerbsTest, AWarningSaysThatItIsOne)
{
    const std::string document =
        written("far.yaml", "version: 1\nreservations: {10.0.0.9: {mac: \"02:00:00:00:00:09\"}}\n");
    EXPECT_EQ(ctl({"apply", document}).status, 2);  // where it would be a change
    change_state("INSERT INTO dhcp_reservation VALUES (1, '10.0.0.9', '02:00:00:00:00:09', '', 1)");
    const std::string warning = document + ":2:16: warning: reservations.10.0.0.9: outside of every LAN";
    expect_ctl({"diff", document}, 0, "", warning + "\n");
    expect_ctl({"diff", "--json", document}, 0,
               "{\"warning\": \"" + warning + "\"}\n{\"status\": 0, \"problems\": []}\n", warning + "\n");
}

TEST_F(VerbsTest, WhatCannotBeUndoneBearsItsPath)
{
    const std::string document = written("sip.yaml", R"(version: 1
hardware_mac_filter: {state: enabled, stations: ["02:00:00:00:00:01"], interfaces: [[1, 2, 3, 4, 5]]}
lans: {0: {sip_server: {address: 192.168.225.9}}}
)");
    EXPECT_EQ(ctl({"diff", document}).err,
              "zr_nexactl: lans.0.sip_server: not undone: a SIP server can be replaced, not taken away\n"
              "zr_nexactl: stations may lose the connection\n"
              "zr_nexactl: hardware_mac_filter.state: not undone: it takes no state without stations and interfaces\n");
    const ToolRun seen = ctl({"diff", "--json", document});
    EXPECT_EQ(seen.out.find("{\"plan\": [\"lans.0.sip_server: {} -> {address: 192.168.225.9}\"], "
                            "\"not_undone\": \"a SIP server can be replaced, not taken away\"}\n"),
              0u)
        << seen.out;
}

}  // namespace
