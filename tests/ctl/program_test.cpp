// The verbs about documents as they are run: what goes in and comes out, the options and the exit statuses.
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "set_up_module.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr char kOneChange[] = "version: 1\ngeneral: {shortcut_engine: false}\n";

class WholeProgramTest : public SetUpModuleTest {
protected:
    WholeProgramTest() : one_(written("one.yaml", kOneChange)) {}

    // With this on its standard input.
    ToolRun piped(const Words& words, const std::string& input) const
    {
        const std::string path = written("input", input);
        ToolOptions options = ctl_options();
        options.before_exec = [path] { dup2(open(path.c_str(), O_RDONLY), STDIN_FILENO); };
        return run_tool(words, options);
    }
    // Started another way than by a shell.
    ToolRun started(const Words& words, const std::function<void()>& before_exec, const Words& variables = {}) const
    {
        ToolOptions options = ctl_options(variables);
        options.before_exec = before_exec;
        return run_tool(words, options);
    }
    // Where it looks for the folder of its lock by itself.
    ToolRun without_a_folder(const Words& words, const Words& variables) const
    {
        ToolOptions options = ctl_options();
        options.variables = variables;
        return run_tool(words, options);
    }
    static mode_t mode(const std::string& path)
    {
        struct stat info = {};
        return stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
    }
    void expect_no_change() const
    {
        EXPECT_EQ(shown(), shown_before_);
    }

    std::string one_;
};

TEST_F(WholeProgramTest, WhatIsShownIsTakenBackAndChangesNothing)
{
    for (const Words& show : {Words{"show"}, Words{"show", "--json"}, Words{"show", "--handles"}}) {
        const std::string text = ctl(show).out;
        for (const Words& apply : {Words{"apply", "-"}, Words{"apply", "-", "--exact"}}) {
            const ToolRun seen = piped(apply, text);
            EXPECT_EQ(seen.status, 0) << seen.err;
            EXPECT_EQ(seen.out, "");
            EXPECT_EQ(seen.err, "zr_nexactl: nothing differs\n");
        }
    }
    // Entries are told from each other by what they are, not by where they stand.
    const std::string first = shown();
    EXPECT_EQ(ctl({"apply", after_}).status, 0);
    EXPECT_NE(shown(), first);
    const ToolRun back = piped({"apply", "-", "--exact"}, first);
    EXPECT_EQ(back.status, 0) << back.err;
    EXPECT_EQ(shown(), first);
}

TEST_F(WholeProgramTest, ADifferenceAPlanAndWhatIsDoneAreTheSameLines)
{
    for (const Words& exact : {Words{}, Words{"--exact"}}) {
        const auto with = [&](Words words) {
            words.insert(words.begin() + 1, after_);
            words.insert(words.end(), exact.begin(), exact.end());
            return ctl(words);
        };
        back_to_kept();
        const ToolRun differs = with({"diff"});
        EXPECT_EQ(differs.status, 1) << differs.err;
        EXPECT_NE(differs.out, "");
        const ToolRun would = with({"apply", "--dry-run"});
        EXPECT_EQ(would.status, 0) << would.err;
        EXPECT_EQ(would.out, differs.out);
        expect_no_change();
        expect_nothing_pending();
        const ToolRun done = with({"apply"});
        EXPECT_EQ(done.status, 0) << done.err;
        EXPECT_EQ(done.out, differs.out);
        const ToolRun same = with({"diff"});
        EXPECT_EQ(same.status, 0);
        EXPECT_EQ(same.out, "");
    }
}

TEST_F(WholeProgramTest, WhatADocumentDoesNotNameStaysUnlessItIsExact)
{
    const std::string text = "version: 1\nreservations: {10.7.1.31: {mac: \"02:00:00:00:00:02\"}}\n";
    const std::string document = written("reservations.yaml", text);
    expect_ctl({"diff", document}, 0, "");
    expect_ctl({"diff", document, "--exact"}, 1,
               "reservations.10.7.1.30: - {enabled: true, mac: 02:00:00:00:00:01, name: \"\"}\n");
    expect_ctl({"apply", document, "--exact"}, 0,
               "reservations.10.7.1.30: - {enabled: true, mac: 02:00:00:00:00:01, name: \"\"}\n");
    EXPECT_THAT(ctl({"show", "reservations"}).out, testing::Not(HasSubstr("10.7.1.30")));
    const std::string profile = written("profile.yaml", "version: 1\nprofiles: {profile-1: {roaming: true}}\n");
    EXPECT_EQ(ctl({"apply", profile}).status, 2);  // what it dials with is not said
    const std::string whole =
        written("whole.yaml", "version: 1\nprofiles: {profile-1: {dial: {apn_index: 1}, roaming: true}}\n");
    expect_ctl({"apply", whole}, 0, "profiles.profile-1.roaming: false -> true\n");
    EXPECT_THAT(shown(), HasSubstr("profile-2:"));
}

TEST_F(WholeProgramTest, ASecondApplyChangesNothing)
{
    EXPECT_EQ(ctl({"apply", after_}, logging("")).status, 0);
    EXPECT_GT(changing_calls(log()).size(), 30u);
    expect_ctl({"apply", after_}, 0, "", "zr_nexactl: nothing differs\n", logging(""));
    EXPECT_EQ(changing_calls(log()), Words());
    EXPECT_GT(platform_calls(log()).size(), 30u);
}

TEST_F(WholeProgramTest, ValidateAsksNoModuleAndPrintsTheNormalForm)
{
    const std::string odd = written("odd.yaml",
                                    "%YAML 1.1\n---\n# a comment\nversion: 1\n"
                                    "reservations: {10.7.1.33: {mac: '02:00:00:00:00:AB'}}\n"
                                    "general: {ipv4: true, gateway_url: 'a'}\n");
    expect_ctl({"validate", odd, "--print"}, 0,
               "version: 1\ngeneral:\n  gateway_url: a\n  ipv4: true\nreservations:\n"
               "  10.7.1.33: {mac: \"02:00:00:00:00:ab\"}\n",
               "", {"MOBILE_AP_FAULTS=IsReady=notready"});
    expect_ctl({"validate", odd}, 0, "", "", {"MOBILE_AP_FAULTS=IsReady=notready"});
    const ToolRun again = piped({"validate", "-", "--print"}, ctl({"validate", odd, "--print"}).out);
    EXPECT_EQ(again.out, ctl({"validate", odd, "--print"}).out);
    const ToolRun json = piped({"validate", "-", "--print"}, ctl({"validate", odd, "--print", "--json"}).out);
    EXPECT_EQ(json.out, again.out);
    for (const std::string& text : {std::string("version: 1\ngeneral: {ipv5: true}\n"), std::string("{")}) {
        const ToolRun wrong = ctl({"validate", written("wrong.yaml", text), "--print"});
        EXPECT_EQ(wrong.status, 2);
        EXPECT_EQ(wrong.out, "");
        EXPECT_NE(wrong.err, "");
    }
}

TEST_F(WholeProgramTest, ASectionIsShownByItself)
{
    expect_ctl({"show", "software_path"}, 0, "version: 1\nsoftware_path: [10.7.1.9]\n");
    expect_ctl({"show", "roles", "software_path"}, 0,
               "version: 1\nsoftware_path: [10.7.1.9]\n"
               "roles:\n  default: profile-1\n  access_point: profile-1\n  dns_proxy: profile-2\n");
    EXPECT_EQ(ctl({"show", "role"}).status, 2);
    EXPECT_THAT(ctl({"show", "role"}).err, HasSubstr("did you mean"));
    // Each one is taken back.
    for (const char* section : {"general", "reservations", "lans", "profiles", "upnp", "hardware_mac_filter"}) {
        const ToolRun seen = ctl({"show", section});
        EXPECT_EQ(seen.status, 0);
        EXPECT_THAT(seen.out, StartsWith("version: 1\n" + std::string(section) + ":"));
        EXPECT_EQ(piped({"diff", "-", "--exact"}, seen.out).status, 0) << section;
    }
    // Roles name profiles, which need not be in the document.
    EXPECT_EQ(piped({"diff", "-", "--exact"}, ctl({"show", "profiles", "roles"}).out).status, 0);
    EXPECT_EQ(piped({"diff", "-", "--exact"}, ctl({"show", "roles"}).out).status, 0);
}

TEST_F(WholeProgramTest, ARoleMayNameAProfileAsItIsShown)
{
    const ToolRun other = piped({"diff", "-"}, "version: 1\nroles: {dns_proxy: profile-1}\n");
    EXPECT_EQ(other.out, "roles.dns_proxy: profile-2 -> profile-1\n");
    EXPECT_EQ(other.status, 1);
    // Also where the document calls it otherwise.
    const std::string labelled = "version: 1\nprofiles: {main: {handle: 1}}\nroles: {default: profile-1, ";
    EXPECT_EQ(piped({"diff", "-"}, labelled + "access_point: main}\n").status, 0);
    const ToolRun away = piped({"apply", "-"}, labelled + "access_point: profile-9}\n");
    EXPECT_EQ(away.err, "-:3:29: roles.access_point: there is no profile 9 on the module\n");
    EXPECT_EQ(away.status, 2);
}

TEST_F(WholeProgramTest, AReadThatIsRefusedIsNotedAndStatus3)
{
    const ToolRun seen = ctl({"show"}, {"MOBILE_AP_FAULTS=GetUPNPNotifyInterval=fail:3"});
    EXPECT_EQ(seen.status, 3);
    EXPECT_THAT(seen.err, HasSubstr("zr_nexactl: upnp.notify_seconds is left out: "));
    EXPECT_THAT(seen.out, testing::Not(HasSubstr("notify_seconds")));
    EXPECT_EQ(piped({"apply", "-"}, seen.out).status, 0);
    const ToolRun list = ctl({"show"}, {"MOBILE_AP_FAULTS=GetVLANConfig=fail:3"});
    EXPECT_EQ(list.status, 3);
    const ToolRun applied = ctl({"apply", after_}, {"MOBILE_AP_FAULTS=GetVLANConfig=fail:3"});
    EXPECT_EQ(applied.status, 3) << applied.err;
    expect_no_change();
    expect_nothing_pending();
}

TEST_F(WholeProgramTest, WhatIsReadBackOtherwiseIsStatus5)
{
    // The first question is answered, the one behind the change not.
    const Words faults = {"MOBILE_AP_FAULTS=GetGatewayUrl#2=fail:3"};
    const std::string url = written("url.yaml", "version: 1\ngeneral: {gateway_url: other.example}\n");
    const ToolRun unread = ctl({"apply", url}, faults);
    EXPECT_EQ(unread.status, 5);
    EXPECT_THAT(unread.err, HasSubstr("zr_nexactl: is not as it should be: general.gateway_url: cannot be read: "));
    back_to_kept();
    // It says that it is done, and has done nothing.
    const ToolRun undone = ctl({"apply", url}, {"MOBILE_AP_FAULTS=SetGatewayUrl=fail:3,SetGatewayUrl=ok:0"});
    EXPECT_EQ(undone.status, 5) << undone.err;
    EXPECT_THAT(
        undone.err,
        HasSubstr("zr_nexactl: is not as it should be: general.gateway_url: before.example -> other.example\n"));
    expect_no_change();
}

TEST_F(WholeProgramTest, WithoutReadingBackNothingIsAskedAgain)
{
    const std::string url = written("url.yaml", "version: 1\ngeneral: {gateway_url: other.example}\n");
    expect_ctl({"apply", url, "--no-verify"}, 0, "general.gateway_url: before.example -> other.example\n", "",
               logging(""));
    const Words calls = platform_calls(log());
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "GetGatewayUrl#1"), 1);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "GetGatewayUrl#2"), 0);
    EXPECT_THAT(shown(), HasSubstr("other.example"));
}

TEST_F(WholeProgramTest, ARefusedChangeIsStatus4AndNotWhollyUndone5)
{
    const ToolRun undone = ctl({"apply", after_}, {"MOBILE_AP_FAULTS=SetNatType#1=fail:3"});
    EXPECT_EQ(undone.status, 4);
    EXPECT_THAT(undone.err, HasSubstr("zr_nexactl: refused: profiles.profile-2.nat.type: full-cone -> symmetric: "));
    expect_no_change();
    const ToolRun left =
        ctl({"apply", after_}, {"MOBILE_AP_FAULTS=SetNatType#1=fail:3,SetGatewayUrl#2=fail:3,SetGatewayUrl#3=fail:3"});
    EXPECT_EQ(left.status, 5);
    EXPECT_THAT(
        left.err,
        HasSubstr("zr_nexactl: is not as it should be: general.gateway_url: after.example -> before.example\n"));
}

// ---- the folder of the lock and the held state ----

TEST_F(WholeProgramTest, TheFolderIsTheWordsThenTheVariablesThenTheHomes)
{
    const std::string base = state.path() + "/folders";
    const std::string pending = ctl({"apply", one_, "--confirm-within", "600", "--state", base + "/a/b"}).err;
    EXPECT_THAT(pending, HasSubstr("zr_nexactl confirm"));
    EXPECT_TRUE(std::filesystem::exists(base + "/a/b/held.yaml"));
    EXPECT_EQ(mode(base + "/a"), 0700u);
    EXPECT_EQ(mode(base + "/a/b"), 0700u);
    EXPECT_EQ(mode(base + "/a/b/held.yaml"), 0600u);
    expect_nothing_pending();  // in the other one
    EXPECT_EQ(ctl({"pending", "--state", base + "/a/b"}).status, 1);
    expect_ctl({"rollback", "--state", base + "/a/b/"}, 0, "general.shortcut_engine: false -> true\n");
    EXPECT_FALSE(std::filesystem::exists(base + "/a/b/held.yaml"));

    if (geteuid() == 0) return;  // has its own, which is the machine's
    EXPECT_EQ(without_a_folder({"apply", one_}, {"XDG_STATE_HOME=" + base + "/xdg", "HOME=" + base + "/home"}).status,
              0);
    EXPECT_EQ(mode(base + "/xdg/zr_nexactl"), 0700u);
    EXPECT_EQ(without_a_folder({"apply", one_}, {"XDG_STATE_HOME=relative", "HOME=" + base + "/home"}).status, 0);
    EXPECT_EQ(mode(base + "/home/.local/state/zr_nexactl"), 0700u);
}

TEST_F(WholeProgramTest, AFolderThatCannotBeIsAWrongWord)
{
    const std::string file = written("file", "");
    for (const Words& words : std::vector<Words>{{"apply", one_}, {"pending"}, {"confirm"}, {"rollback"}}) {
        Words all = words;
        all.insert(all.end(), {"--state", file + "/folder"});
        const ToolRun seen = ctl(all);
        EXPECT_EQ(seen.status, 2) << testing::PrintToString(words) << seen.err;
        EXPECT_THAT(seen.err, HasSubstr(file + "/folder: Not a directory"));
    }
    expect_no_change();
}

TEST_F(WholeProgramTest, AFolderThatOthersMayWriteToIsNotTaken)
{
    const std::string folder = state.path() + "/open";
    std::filesystem::create_directory(folder);
    std::filesystem::permissions(folder, std::filesystem::perms::all);
    const ToolRun seen = ctl({"apply", one_, "--state", folder});
    EXPECT_EQ(seen.status, 2) << seen.err;
    EXPECT_THAT(seen.err, HasSubstr(folder));
    expect_no_change();
}

TEST_F(WholeProgramTest, PendingMakesNoFolder)
{
    const std::string folder = state.path() + "/none";
    expect_ctl({"pending", "--state", folder}, 0, "nothing is pending\n");
    EXPECT_FALSE(std::filesystem::exists(folder));
}

// ---- a full disk, a closed terminal ----

TEST_F(WholeProgramTest, WithoutRoomForTheHeldStateNothingIsChanged)
{
    const bool ran = in_private_mounts([this] {
        const std::string folder = state.path() + "/small";
        std::filesystem::create_directory(folder);
        ASSERT_EQ(mount("none", folder.c_str(), "tmpfs", 0, "size=4k,mode=0700"), 0);
        std::ofstream(folder + "/filler") << std::string(4096, 'x');
        const ToolRun seen = ctl({"apply", after_, "--state", folder});
        EXPECT_NE(seen.status, 0);
        EXPECT_THAT(seen.err, HasSubstr("No space left on device"));
        EXPECT_EQ(seen.out, "");
        expect_no_change();
        EXPECT_FALSE(std::filesystem::exists(folder + "/held.yaml"));
        std::filesystem::remove(folder + "/filler");
    });
    if (!ran) GTEST_SKIP() << "mounts of one's own are not allowed here";
}

TEST_F(WholeProgramTest, OutputThatCannotBeWrittenIsNoSuccess)
{
    const auto full = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
    for (const Words& words : std::vector<Words>{{"show"}, {"show", "--json"}, {"validate", one_, "--print"}})
        EXPECT_EQ(started(words, full).status, 3) << words[0];
    for (const Words& words : std::vector<Words>{{"show"}, {"diff", one_}, {"validate", one_, "--print"}}) {
        const ToolRun seen = started(words, [] { close(STDOUT_FILENO); });
        EXPECT_EQ(seen.status, 3) << words[0];
        EXPECT_THAT(seen.err, HasSubstr("zr_nexactl: the result cannot be written: Bad file descriptor\n"));
    }
    // The module is changed all the same.
    started({"apply", one_}, full);
    EXPECT_THAT(shown(), HasSubstr("shortcut_engine: false"));
    expect_nothing_pending();
}

TEST_F(WholeProgramTest, WithoutStandardOutputNothingGoesIntoOtherFiles)
{
    const auto closed = [] {
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
        close(STDIN_FILENO);
    };
    EXPECT_EQ(started({"apply", one_}, closed).status, 0);
    EXPECT_THAT(shown(), HasSubstr("shortcut_engine: false"));
    std::ifstream lock(held_folder() + "/lock");
    const std::string text((std::istreambuf_iterator<char>(lock)), {});
    EXPECT_THAT(text, MatchesRegex("([0-9]+\n)?"));
    EXPECT_EQ(started({"apply", after_, "--confirm-within", "600"}, closed).status, 0);
    EXPECT_EQ(ctl({"pending"}).status, 1);
    EXPECT_EQ(ctl({"rollback"}).status, 0);
}

TEST_F(WholeProgramTest, AHangUpWithoutTheOptionLeavesNothingUndone)
{
    ToolOptions options = ctl_options({"MOBILE_AP_FAULTS=SetNatType#1=delay:300"});
    options.before_exec = [] { setsid(); };
    StartedTool tool({"apply", after_}, options);
    ASSERT_TRUE(comes([&] { return is_held(); }));
    EXPECT_EQ(kill(-tool.pid(), SIGHUP), 0);
    const ToolRun seen = tool.wait();
    EXPECT_EQ(seen.status, 0) << seen.err;
    expect_ctl({"diff", after_}, 0, "");
    expect_nothing_pending();
}

}  // namespace
