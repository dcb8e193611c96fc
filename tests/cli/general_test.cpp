#include "cli_test.h"

namespace {

using GeneralCliTest = CliTest;

TEST_F(GeneralCliTest, Restore)
{
    expect({{"General Restore yes",
             "General Restore: success, will reboot in 5s\r\nCMD OK\r\n",
             {"RestoreFactoryConfig()"}},
            {"General Restore no", "CMD OK\r\n"},
            {"General Restore yes", "CMD Error#0x1007\r\n", {"RestoreFactoryConfig()"}, "RestoreFactoryConfig", 7}});
}

TEST_F(GeneralCliTest, SfeGetPrintsTheSwitch)
{
    // An output that the platform leaves alone reads as off.
    expect({{"General SFE get", "General SFE: disabled\r\nCMD OK\r\n", {"GetDataPathOptStatus()"}}});
    for (const auto& [enable, text] : {std::pair{0, "disabled"}, {1, "enabled"}, {2, "enabled"}, {255, "enabled"}}) {
        platform.on("GetDataPathOptStatus").gives("enable", static_cast<uint8_t>(enable));
        expect(
            {{"General SFE get", std::string("General SFE: ") + text + "\r\nCMD OK\r\n", {"GetDataPathOptStatus()"}}});
    }
    expect({{"General SFE get", "CMD Error#0x1003\r\n", {"GetDataPathOptStatus()"}, "GetDataPathOptStatus", 3}});
}

TEST_F(GeneralCliTest, SfeSwitches)
{
    expect({{"General SFE enable", "CMD OK\r\n", {"SetDataPathOptStatus(1)"}},
            {"General SFE disable", "CMD OK\r\n", {"SetDataPathOptStatus(0)"}},
            {"General SFE disable", "CMD Error#0x1000\r\n", {"SetDataPathOptStatus(0)"}, "SetDataPathOptStatus", 0}});
}

}  // namespace
