#include "session.h"
#include "api_test.h"

namespace {

using SessionTest = ClosedApiTest;

const std::vector<std::string> kOpening = {"QCMAP_Client(arch=0 user=null)", "IsReady()", "EnableMobileAP_Ext(65535)"};

void a_callback(uint32_t, uint32_t, const void*, ...) {}

TEST_F(SessionTest, OpensInOrder)
{
    EXPECT_EQ(zr_nexa_client_init(a_callback), 0u);
    expect_row("zr_nexa_client_init", kOpening, {info("entry")});
    EXPECT_NE(platform.indication_cb, nullptr);
}

TEST_F(SessionTest, ASecondOpeningIsRefusedAndChangesNothing)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    EXPECT_EQ(zr_nexa_client_init(a_callback), 13u);
    expect_row("zr_nexa_client_init", {}, {info("entry"), error("assertion (QcMapClient == NULL) failed!")});
    EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 0u);
}

TEST_F(SessionTest, TheCallbackStaysUntilTheSessionIsClosed)
{
    using zr_nexa::user_callback;
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    const auto built_in = user_callback;
    EXPECT_NE(built_in, nullptr);
    built_in(35, 0, nullptr);
    EXPECT_EQ(zr_nexa_client_init(a_callback), 13u);
    EXPECT_EQ(user_callback, built_in) << "a refused opening changed it";
    EXPECT_EQ(zr_nexa_client_uninit(), 0u);
    EXPECT_EQ(user_callback, nullptr);

    platform.on("EnableMobileAP_Ext", 2).fails(3);
    EXPECT_EQ(zr_nexa_client_init(a_callback), 0x2003u);
    EXPECT_EQ(user_callback, a_callback) << "a failed opening forgot it";
    EXPECT_EQ(zr_nexa_client_uninit(), 0u);
    EXPECT_EQ(user_callback, nullptr);

    platform.on("IsReady", 3).fails(0);
    platform.on("DisableMobileAP", 3).fails(5);
    EXPECT_EQ(zr_nexa_client_init(a_callback), 0x1005u);
    EXPECT_EQ(user_callback, a_callback);
}

TEST_F(SessionTest, OpeningSucceedsWhateverTheErrorWordHolds)
{
    platform.on("EnableMobileAP_Ext").succeeds(77);
    EXPECT_EQ(zr_nexa_client_init(nullptr), 0u);
    EXPECT_EQ(platform.objects, 1);
}

TEST_F(SessionTest, NotReadyWithAnErrorEndsAtTheFirstStep)
{
    for (const uint32_t err : {1u, 3u, 43u, 0x1000u, 0xFFFFu}) {
        platform.on("IsReady").fails(0);
        platform.on("DisableMobileAP").fails(err);
        EXPECT_EQ(zr_nexa_client_init(nullptr), err | 0x1000);
        expect_row("zr_nexa_client_init",
                   {"QCMAP_Client(arch=0 user=null)", "IsReady()", "DisableMobileAP()", "~QCMAP_Client()"},
                   {info("entry"), error("Couldn't setup nexa client")});
        EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 13u);
        platform.forget();
    }
}

TEST_F(SessionTest, NotReadyWithAnErrorCountsAlsoWhenDisablingSucceeded)
{
    platform.on("IsReady").fails(0);
    platform.on("DisableMobileAP").succeeds(5);
    EXPECT_EQ(zr_nexa_client_init(nullptr), 0x1005u);
}

TEST_F(SessionTest, NotReadyWithoutAnErrorIsAFailedEnableWithoutAnObject)
{
    platform.on("IsReady").fails(0);
    for (const bool disabled : {true, false}) {
        if (disabled) {
            platform.on("DisableMobileAP").succeeds(0);
        } else {
            platform.on("DisableMobileAP").fails(0);
        }
        EXPECT_EQ(zr_nexa_client_init(nullptr), 0u);
        expect_row("zr_nexa_client_init",
                   {"QCMAP_Client(arch=0 user=null)", "IsReady()", "DisableMobileAP()", "~QCMAP_Client()"},
                   {info("entry"), error("Couldn't setup nexa client"), error("Couldn't enable nexa client")});
        EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 13u);
        platform.forget();
    }
}

TEST_F(SessionTest, AFailedEnableClosesTheSession)
{
    for (const uint32_t err : {0u, 1u, 3u, 43u, 0x2000u, 0xFFFFu}) {
        platform.on("EnableMobileAP_Ext").fails(err);
        platform.on("DisableMobileAP").fails(99);  // its error goes nowhere
        EXPECT_EQ(zr_nexa_client_init(nullptr), err == 0 ? 0u : err | 0x2000);
        expect_row("zr_nexa_client_init",
                   {"QCMAP_Client(arch=0 user=null)", "IsReady()", "EnableMobileAP_Ext(65535)", "DisableMobileAP()",
                    "~QCMAP_Client()"},
                   {info("entry"), error("Couldn't enable nexa client")});
        EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 13u);
        platform.forget();
    }
}

TEST_F(SessionTest, AFailedOpeningMayBeTriedAgain)
{
    platform.on("EnableMobileAP_Ext", 1).fails(3);
    EXPECT_EQ(zr_nexa_client_init(nullptr), 0x2003u);
    EXPECT_EQ(zr_nexa_client_init(nullptr), 0u);
    EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 0u);
}

TEST_F(SessionTest, Closes)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    EXPECT_EQ(zr_nexa_client_uninit(), 0u);
    expect_row("zr_nexa_client_uninit", {"DisableMobileAP()", "~QCMAP_Client()"}, {info("entry")});
    EXPECT_EQ(zr_nexa_client_uninit(), 0u);
    expect_row("zr_nexa_client_uninit", {}, {info("entry")});
}

TEST_F(SessionTest, ClosingReportsTheErrorWordAndClosesAllTheSame)
{
    for (const uint32_t err : {1u, 3u, 43u, 0xFFFFu}) {
        for (const bool succeeds : {true, false}) {
            ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
            platform.forget();
            if (succeeds) {
                platform.on("DisableMobileAP").succeeds(err);
            } else {
                platform.on("DisableMobileAP").fails(err);
            }
            EXPECT_EQ(zr_nexa_client_uninit(), err | 0x1000);
            expect_row("zr_nexa_client_uninit", {"DisableMobileAP()", "~QCMAP_Client()"}, {info("entry")});
            EXPECT_EQ(platform.objects, 0);
        }
    }
}

TEST_F(SessionTest, AFailedDisableWithoutAnErrorIsNoError)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.on("DisableMobileAP").fails(0);
    EXPECT_EQ(zr_nexa_client_uninit(), 0u);
}

}  // namespace
