// Runs of the whole tool: words in, bytes out, and what stays for the next process.
#include <fcntl.h>
#include <sys/mount.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "private_mounts.h"
#include "run_tool.h"

namespace {

using CommandTest = ToolTest;

constexpr const char* kMainMenu =
    "Korvane MoblieAP CMD\r\n"
    "\r\n"
    "Main Setting List:\r\n"
    "General             Some general configuration items\r\n"
    "LAN                 LAN network configuration items\r\n"
    "WAN                 WAN/Datacall related configuration items\r\n"
    "NAT                 NAT related configuration items\r\n"
    "\r\n";

TEST_F(CommandTest, EveryRunEndsWithAPauseOfOneSecond)
{
    ToolOptions pausing = options();
    pausing.pauses = true;
    StartedTool command({"General", "SFE", "get"}, pausing);
    StartedTool menu({}, pausing);
    for (StartedTool* tool : {&command, &menu}) {
        const ToolRun run = tool->wait();
        EXPECT_GE(run.seconds, 1.0);
        EXPECT_EQ(run.status, 0);
    }
}

TEST_F(CommandTest, ATerminalSeesTheLinesBeforeThePause)
{
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(grantpt(terminal), 0);
    ASSERT_EQ(unlockpt(terminal), 0);
    const int tool_side = open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(tool_side, 0);
    termios raw;
    ASSERT_EQ(tcgetattr(tool_side, &raw), 0);
    cfmakeraw(&raw);
    ASSERT_EQ(tcsetattr(tool_side, TCSANOW, &raw), 0);

    ToolOptions on_terminal = options();
    on_terminal.pauses = true;
    on_terminal.before_exec = [tool_side] { dup2(tool_side, STDOUT_FILENO); };
    StartedTool tool({"General", "SFE", "get"}, on_terminal);
    const std::string expected = "General SFE: enabled\r\nCMD OK\r\n";
    std::string seen;
    while (seen.size() < expected.size()) {
        char bytes[64];
        const ssize_t count = read(terminal, bytes, sizeof(bytes));
        ASSERT_GT(count, 0);
        seen.append(bytes, static_cast<size_t>(count));
    }
    EXPECT_EQ(seen, expected);
    const auto printed = std::chrono::steady_clock::now();
    EXPECT_EQ(tool.wait().status, 0);
    EXPECT_GT(std::chrono::steady_clock::now() - printed, std::chrono::milliseconds(500))
        << "only the end flushed them";
    close(tool_side);
    close(terminal);
}

TEST_F(CommandTest, MenusNeedNoService)
{
    ToolOptions nowhere;
    nowhere.state = "/nowhere/at/all";
    expect({}, nowhere, kMainMenu, "");
    expect({"WLAN"}, nowhere, "Korvane MoblieAP CMD\r\n\r\nWLAN Setting List:\r\n\r\n", "");
    expect({"lan"}, nowhere, "Korvane MoblieAP CMD\r\n\r\nInput Setting Invalid\r\n\r\n", "");
    EXPECT_TRUE(std::filesystem::is_empty(state.path()));
}

TEST_F(CommandTest, TheStatusIsZeroWhateverTheVerdict)
{
    expect({"Foo", "Bar"}, "Input Parameter Invalid\r\n");
    expect({"LAN", "MACBind", "get"}, "Setting Not Support now\r\n");
    expect({"WLAN", "", "x"}, "Setting Not Support now\r\n");
    expect({"General", "SFE", "Enable"}, "Input Parameter Invalid\r\nCMD Error#0xffff\r\n");
    expect({"LAN", "DHCP", "get", "70000"}, "CMD Error#0x6\r\n");
    expect({"LAN", "DHCP", "get", "1"}, "Input Parameter Invalid\r\nCMD Error#0xffff\r\n");
}

TEST_F(CommandTest, OneProcessReadsBackWhatAnotherSet)
{
    expect({"General", "SFE", "disable"}, "CMD OK\r\n");
    expect({"General", "SFE", "get"}, "General SFE: disabled\r\nCMD OK\r\n");
    expect({"General", "SFE", "enable"}, "CMD OK\r\n");
    expect({"General", "SFE", "get"}, "General SFE: enabled\r\nCMD OK\r\n");

    expect({"LAN", "DHCP", "set", "0", "192.168.10.1", "255.255.255.0", "192.168.10.20", "192.168.10.60", "7200"},
           "CMD OK\r\n");
    const std::string configured =
        "(V)LAN DHCP Config:\r\n"
        "(v)lan_id:       0\r\n"
        "Gateway IP:      192.168.10.1\r\n"
        "Netmask:         255.255.255.0\r\n"
        "DHCP Start IP:   192.168.10.20\r\n"
        "DHCP End IP:     192.168.10.60\r\n"
        "DHCP Lease Time: 7200\r\n"
        "CMD OK\r\n";
    expect({"LAN", "DHCP", "get", "0"}, configured);
    // What is refused changes nothing.
    expect({"LAN", "DHCP", "set", "0", "10.0.0.1", "255.0.0.0", "10.0.0.2", "10.0.0.3", "0"},
           "Input Parameter Invalid\r\nCMD Error#0xffff\r\n");
    expect({"LAN", "DHCP", "get", "0"}, configured);

    expect({"LAN", "DefaultDHCPEnable", "set", "0"}, "Set DefaultDHCPEnable successful\r\nCMD OK\r\n");
    expect({"LAN", "DefaultDHCPEnable", "get"}, "DefaultDHCPEnable: 0(disable)\r\nCMD OK\r\n");
    expect({"LAN", "GWURL", "set", "my.module"}, "CMD OK\r\n");
    expect({"LAN", "GWURL", "get"}, "LAN GWURL: my.module\r\nCMD OK\r\n");

    expect({"General", "Restore", "no"}, "CMD OK\r\n");
    expect({"LAN", "GWURL", "get"}, "LAN GWURL: my.module\r\nCMD OK\r\n");
    expect({"General", "Restore", "yes"}, "General Restore: success, will reboot in 5s\r\nCMD OK\r\n");
    expect({"LAN", "GWURL", "get"}, "LAN GWURL: mobileap.home\r\nCMD OK\r\n");
    expect({"LAN", "DefaultDHCPEnable", "get"}, "DefaultDHCPEnable: 1(enable)\r\nCMD OK\r\n");
    expect({"LAN", "DHCP", "get", "0"},
           "(V)LAN DHCP Config:\r\n"
           "(v)lan_id:       0\r\n"
           "Gateway IP:      192.168.225.1\r\n"
           "Netmask:         255.255.255.0\r\n"
           "DHCP Start IP:   192.168.225.20\r\n"
           "DHCP End IP:     192.168.225.60\r\n"
           "DHCP Lease Time: 43200\r\n"
           "CMD OK\r\n");
}

TEST_F(CommandTest, AFailureOfTheServiceShowsItsStep)
{
    ToolOptions faulty = options();
    faulty.variables = {"MOBILE_AP_FAULTS=SetLANConfig=fail:3"};
    expect({"LAN", "DHCP", "set", "0", "10.0.0.1", "255.0.0.0", "10.0.0.2", "10.0.0.3", "60"}, faulty,
           "CMD Error#0x3003\r\n", "");
    faulty.variables = {"MOBILE_AP_FAULTS=IsReady=notready"};
    expect({"General", "SFE", "get"}, faulty, "CMD Error#0xd\r\n", "");
    faulty.variables = {"MOBILE_AP_FAULTS=EnableMobileAP_Ext=fail:1"};
    expect({"General", "SFE", "get"}, faulty, "CMD Error#0xd\r\n", "");
}

TEST_F(CommandTest, TheDiagnosticLogStaysOutOfTheOutput)
{
    ToolOptions logging = options();
    logging.variables = {"MOBILE_AP_LOG=stderr"};
    const ToolRun run = run_tool({"General", "SFE", "enable"}, logging);
    EXPECT_EQ(run.out, "CMD OK\r\n");
    EXPECT_NE(run.err.find("zr_nexa_client_init"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("zr_nexa_general_sfe_set_v1"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("zr_nexa_client_uninit"), std::string::npos) << run.err;
}

TEST_F(CommandTest, AnIndicationInTheMiddleChangesNothing)
{
    ToolOptions slow = options();
    slow.variables = {"MOBILE_AP_FAULTS=SetGatewayUrl=delay:1000", "MOBILE_AP_LOG=stderr"};
    slow.tells = true;
    StartedTool listener({"LAN", "GWURL", "set", "my.module"}, slow);
    ASSERT_TRUE(listener.wait_for_handlers());
    usleep(300000);
    expect({"WAN", "Connect", "connect", "1", "4"}, "WAN Connect connect v4 set success\r\nCMD OK\r\n");
    const ToolRun run = listener.wait();
    EXPECT_EQ(run.out, "CMD OK\r\n");
    EXPECT_NE(run.err.find("zr_nexa_inds_cb"), std::string::npos) << run.err;
    EXPECT_EQ(run.status, 0);
}

struct UrlRow {
    size_t length;
    const char* verdict;
};
// The service takes URLs of up to 127 characters; a longer word reaches it as its first 128.
constexpr std::array<UrlRow, 6> kUrlRows = {{{0, "CMD Error#0x1030\r\n"},
                                             {1, "CMD OK\r\n"},
                                             {127, "CMD OK\r\n"},
                                             {128, "CMD Error#0x1030\r\n"},
                                             {129, "CMD Error#0x1030\r\n"},
                                             {100000, "CMD Error#0x1030\r\n"}}};

TEST_F(CommandTest, AUrlOfAnyLengthHasItsOutcome)
{
    std::string stored = "mobileap.home";
    for (const UrlRow& row : kUrlRows) {
        const std::string url(row.length, 'u');
        expect({"LAN", "GWURL", "set", url}, row.verdict);
        if (std::string(row.verdict) == "CMD OK\r\n") stored = url;
        expect({"LAN", "GWURL", "get"}, "LAN GWURL: " + stored + "\r\nCMD OK\r\n");
    }
}

TEST_F(CommandTest, AUrlOfAnyLengthHasItsOutcomeWithoutAnyEnvironment)
{
    // Without a variable the state stands in the user's home: here every user's home is this test's folder.
    const bool ran = in_private_mounts([&] {
        const TempFolder etc;
        std::ofstream(etc.path() + "/passwd") << "user:x:" << getuid() << ":0::" << state.path() << ":/bin/sh\n";
        ASSERT_EQ(mount((etc.path() + "/passwd").c_str(), "/etc/passwd", nullptr, MS_BIND, nullptr), 0);
        ToolOptions nothing;
        nothing.empty_environment = true;
        std::vector<std::unique_ptr<StartedTool>> tools;
        for (const UrlRow& row : kUrlRows) {
            tools.push_back(std::make_unique<StartedTool>(
                std::vector<std::string>{"LAN", "GWURL", "set", std::string(row.length, 'u')}, nothing));
        }
        for (size_t i = 0; i < tools.size(); ++i) {
            const ToolRun run = tools[i]->wait();
            EXPECT_EQ(run.out, kUrlRows[i].verdict) << kUrlRows[i].length;
            EXPECT_EQ(run.err, "") << kUrlRows[i].length;
            EXPECT_EQ(run.status, 0) << kUrlRows[i].length;
        }
    });
    if (!ran) GTEST_SKIP() << kNoPrivateMounts;
    EXPECT_TRUE(std::filesystem::exists(state.path() + "/.local/state/zr_nexa/mobile_ap.db"));
}

TEST_F(CommandTest, WordsOfAnyBytesAreAnswered)
{
    std::string bytes;
    for (int c = 1; c < 256; ++c)
        bytes += static_cast<char>(c);
    const std::string long_word(100000, '\xFF');
    for (const std::string& word : {bytes, long_word, std::string("%n%s%n"), std::string()}) {
        expect({word, word, word}, "Input Parameter Invalid\r\n");
        expect({word}, "Korvane MoblieAP CMD\r\n\r\nInput Setting Invalid\r\n\r\n");
        expect({"LAN", word, word}, "Input Parameter Invalid\r\n");
        expect({"LAN", "DHCP", word, word}, "Input Parameter Invalid\r\nCMD Error#0xffff\r\n");
        expect({"LAN", "DHCP", "set", "0", word, word, word, word, word},
               "Input Parameter Invalid\r\nCMD Error#0xffff\r\n");
    }
}

}  // namespace
