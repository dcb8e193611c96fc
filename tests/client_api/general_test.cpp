#include "api_test.h"

namespace {

using GeneralTest = ApiTest;

TEST_F(GeneralTest, RestoreAsksThePlatformOnce)
{
    EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 0u);
    expect_row("zr_nexa_general_restore_nexa_v1", {"RestoreFactoryConfig()"}, {info("entry")});
}

TEST_F(GeneralTest, SfeSetPassesTheSwitch)
{
    EXPECT_EQ(zr_nexa_general_sfe_set_v1(0), 0u);
    expect_row("zr_nexa_general_sfe_set_v1", {"SetDataPathOptStatus(0)"},
               {info("entry"), info("Set data path opt status sfe_config=0, error 0")});
    EXPECT_EQ(zr_nexa_general_sfe_set_v1(1), 0u);
    expect_row("zr_nexa_general_sfe_set_v1", {"SetDataPathOptStatus(1)"},
               {info("entry"), info("Set data path opt status sfe_config=1, error 0")});
}

TEST_F(GeneralTest, SfeSetRefusesOtherValuesWithoutAPlatformCall)
{
    for (const uint32_t value : {2u, 3u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_general_sfe_set_v1(value), 4u) << value;
        expect_row("zr_nexa_general_sfe_set_v1", {}, {info("entry")});
    }
}

TEST_F(GeneralTest, SfeGetLogsWhereTheSwitchWasWritten)
{
    uint8_t state = 0xA5;
    char where[16];
    std::snprintf(where, sizeof(where), "%d", static_cast<int>(reinterpret_cast<uintptr_t>(&state)));
    platform.on("GetDataPathOptStatus").gives("enable", uint8_t{2});
    EXPECT_EQ(zr_nexa_general_sfe_get_v1(&state), 0u);
    EXPECT_EQ(state, 2);
    expect_row("zr_nexa_general_sfe_get_v1", {"GetDataPathOptStatus()"},
               {info("entry"), info(std::string("Get data path opt status sfe_config=") + where + ", error 0")});
}

TEST_F(GeneralTest, SfeGetRefusesNull)
{
    EXPECT_EQ(zr_nexa_general_sfe_get_v1(nullptr), 4u);
    expect_row("zr_nexa_general_sfe_get_v1", {}, {info("entry")});
}

TEST_F(GeneralTest, SfeGetLeavesTheOutputAsThePlatformLeftItOnFailure)
{
    uint8_t state = 0xA5;
    platform.on("GetDataPathOptStatus").fails(3);
    EXPECT_EQ(zr_nexa_general_sfe_get_v1(&state), 0x1003u);
    EXPECT_EQ(state, 0xA5);
    platform.on("GetDataPathOptStatus").gives("enable", uint8_t{1});
    EXPECT_EQ(zr_nexa_general_sfe_get_v1(&state), 0x1003u);
    EXPECT_EQ(state, 1);
}

TEST_F(GeneralTest, AFailureIsTaggedWithItsStep)
{
    platform.on("RestoreFactoryConfig").fails(7);
    EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 0x1007u);
    expect_row("zr_nexa_general_restore_nexa_v1", {"RestoreFactoryConfig()"},
               {info("entry"), error("Restore factory config error 7")});

    platform.on("SetDataPathOptStatus").fails(7);
    EXPECT_EQ(zr_nexa_general_sfe_set_v1(1), 0x1007u);
    expect_row("zr_nexa_general_sfe_set_v1", {"SetDataPathOptStatus(1)"},
               {info("entry"), error("Set data path opt status error 7, sfe_config=1")});

    platform.on("GetDataPathOptStatus").fails(0);
    uint8_t state = 0;
    EXPECT_EQ(zr_nexa_general_sfe_get_v1(&state), 0x1000u);
    expect_row("zr_nexa_general_sfe_get_v1", {"GetDataPathOptStatus()"},
               {info("entry"), error("Get data path opt status error 0")});
}

TEST_F(GeneralTest, AnErrorWordOfASuccessfulCallIsReturnedBare)
{
    platform.on("RestoreFactoryConfig").succeeds(50);
    EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 50u);
    platform.on("SetDataPathOptStatus").succeeds(0xFFFF);
    EXPECT_EQ(zr_nexa_general_sfe_set_v1(0), 0xFFFFu);
}

}  // namespace
