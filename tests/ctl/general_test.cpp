#include "area_fixture.h"

namespace ctl {
namespace {

using GeneralTest = AreaTest;

TEST_F(GeneralTest, TheShortcutEngineIsReadAndSwitched)
{
    EXPECT_EQ(read("general.shortcut_engine"), "{general.shortcut_engine: true}");
    EXPECT_EQ(write("general.shortcut_engine", 0, {{"general.shortcut_engine", false}}), "done");
    EXPECT_EQ(read("general.shortcut_engine"), "{general.shortcut_engine: false}");
    EXPECT_EQ(sql("SELECT optimised FROM data_path"), "0");
    EXPECT_EQ(write("general.shortcut_engine", 0, {{"general.shortcut_engine", true}}), "done");
    EXPECT_EQ(sql("SELECT optimised FROM data_path"), "1");
}

TEST_F(GeneralTest, AnyByteButZeroIsOn)
{
    for (const char* byte : {"2", "255"}) {
        sql(std::string("UPDATE data_path SET optimised = ") + byte);
        EXPECT_EQ(read("general.shortcut_engine"), "{general.shortcut_engine: true}") << byte;
    }
}

TEST_F(GeneralTest, ARefusedShortcutEngineSaysSo)
{
    open("GetDataPathOptStatus=fail:3");
    EXPECT_EQ(read("general.shortcut_engine"), "0x1003 zr_nexa_general_sfe_get_v1");
    open("SetDataPathOptStatus=fail:48");
    EXPECT_EQ(write("general.shortcut_engine", 0, {{"general.shortcut_engine", false}}),
              "0x1030 zr_nexa_general_sfe_set_v1");
    EXPECT_EQ(read("general.shortcut_engine"), "{general.shortcut_engine: true}");
}

}  // namespace
}  // namespace ctl
