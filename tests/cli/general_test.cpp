#include "cli_test.h"

namespace {

using GeneralCliTest = CliTest;

TEST_F(GeneralCliTest, RestoreUsage)
{
    expect_run({"General", "Restore"},
               "How to use:\r\n"
               "zr_nexa General Restore <restore>\r\n"
               "<restore>\r\n"
               "yes: execute restore\r\n"
               "no : do nothing\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(GeneralCliTest, RestoreYesAsksThePlatform)
{
    expect_run({"General", "Restore", "yes"}, "General Restore: success, will reboot in 5s\r\nCMD OK\r\n",
               {"RestoreFactoryConfig()"});
    platform.on("RestoreFactoryConfig").fails(7);
    expect_run({"General", "Restore", "yes"}, "CMD Error#0x1007\r\n", {"RestoreFactoryConfig()"});
}

TEST_F(GeneralCliTest, RestoreNoDoesNothing)
{
    expect_run({"General", "Restore", "no"}, "CMD OK\r\n");
}

TEST_F(GeneralCliTest, RestoreRefusesAnythingElse)
{
    expect_invalid({"General", "Restore", "yes", "extra"});
    expect_invalid({"General", "Restore", "no", "extra"});
    expect_invalid({"General", "Restore", "Yes"});
    expect_invalid({"General", "Restore", "NO"});
    expect_invalid({"General", "Restore", ""});
    expect_invalid({"General", "Restore", "yess"});
    expect_invalid({"General", "Restore", std::string(100000, 'y')});
}

TEST_F(GeneralCliTest, SfeUsage)
{
    expect_run({"General", "SFE"},
               "How to use:\r\n"
               "zr_nexa General SFE <option>\r\n"
               "\r\n"
               "<option>\r\n"
               "get:     zr_nexa General SFE get\r\n"
               "         get SFE status\r\n"
               "enable:  zr_nexa General SFE enable\r\n"
               "         enable SFE\r\n"
               "disable: zr_nexa General SFE disable\r\n"
               "         disable SFE\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(GeneralCliTest, SfeGetPrintsTheSwitch)
{
    // An output that the platform leaves alone reads as off.
    expect_run({"General", "SFE", "get"}, "General SFE: disabled\r\nCMD OK\r\n", {"GetDataPathOptStatus()"});
    platform.on("GetDataPathOptStatus").gives("enable", uint8_t{0});
    expect_run({"General", "SFE", "get"}, "General SFE: disabled\r\nCMD OK\r\n", {"GetDataPathOptStatus()"});
    for (const int on : {1, 2, 255}) {
        platform.on("GetDataPathOptStatus").gives("enable", static_cast<uint8_t>(on));
        expect_run({"General", "SFE", "get"}, "General SFE: enabled\r\nCMD OK\r\n", {"GetDataPathOptStatus()"});
    }
    platform.on("GetDataPathOptStatus").fails(3);
    expect_run({"General", "SFE", "get"}, "CMD Error#0x1003\r\n", {"GetDataPathOptStatus()"});
}

TEST_F(GeneralCliTest, SfeSwitches)
{
    expect_run({"General", "SFE", "enable"}, "CMD OK\r\n", {"SetDataPathOptStatus(1)"});
    expect_run({"General", "SFE", "disable"}, "CMD OK\r\n", {"SetDataPathOptStatus(0)"});
    platform.on("SetDataPathOptStatus").fails(0);
    expect_run({"General", "SFE", "disable"}, "CMD Error#0x1000\r\n", {"SetDataPathOptStatus(0)"});
}

TEST_F(GeneralCliTest, SfeRefusesAnythingElse)
{
    for (const char* option : {"Enable", "GET", "", "on", "enabled", "disabl"}) {
        expect_invalid({"General", "SFE", option});
    }
    for (const char* option : {"get", "enable", "disable"}) {
        expect_invalid({"General", "SFE", option, "x"});
    }
}

}  // namespace
