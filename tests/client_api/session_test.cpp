#include "session.h"

#include <cstdlib>
#include <new>

#include "api_test.h"

static bool no_memory_for_the_object;

[[gnu::noinline]] void* operator new(size_t size)
{
    void* const memory = no_memory_for_the_object && size == sizeof(QCMAP_Client) ? nullptr : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

namespace {

using SessionTest = ClosedApiTest;

const std::vector<std::string> kCreating = {"info  entry", "call  QCMAP_Client(arch=0 user=null)", "call  IsReady()"};
const std::vector<std::string> kDestroying = {"call  DisableMobileAP()", "call  ~QCMAP_Client()"};

void a_callback(uint32_t, uint32_t, const void*, ...) {}

TEST_F(SessionTest, OpensInOrder)
{
    EXPECT_ROW(zr_nexa_client_init(a_callback), 0u,
               "info  entry",
               "call  QCMAP_Client(arch=0 user=null)",
               "call  IsReady()",
               "call  EnableMobileAP_Ext(65535)");
    EXPECT_EQ(platform.indication_cb, &zr_nexa_inds_cb);
}

TEST_F(SessionTest, ASecondOpeningIsRefusedAndChangesNothing)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    EXPECT_ROW(zr_nexa_client_init(a_callback), 13u,
               "info  entry",
               "error assertion (QcMapClient == NULL) failed!");
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
    EXPECT_ROW(zr_nexa_client_init(nullptr), 0u, kCreating, "call  EnableMobileAP_Ext(65535)");
    EXPECT_EQ(platform.objects, 1);
}

TEST_F(SessionTest, NotReadyWithAnErrorEndsAtTheFirstStep)
{
    platform.on("IsReady").fails(0);
    for (const uint32_t err : {1u, 3u, 43u, 0x1000u, 0xFFFFu}) {
        for (const bool disabled : {true, false}) {
            if (disabled) {
                platform.on("DisableMobileAP").succeeds(err);
            } else {
                platform.on("DisableMobileAP").fails(err);
            }
            EXPECT_ROW(zr_nexa_client_init(nullptr), err | 0x1000,
                       kCreating,
                       "error Couldn't setup nexa client",
                       kDestroying);
            EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 13u);
            platform.forget();
        }
    }
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
        EXPECT_ROW(zr_nexa_client_init(nullptr), 0u,
                   kCreating,
                   "error Couldn't setup nexa client",
                   kDestroying,
                   "error Couldn't enable nexa client");
        EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 13u);
        platform.forget();
    }
}

TEST_F(SessionTest, AFailedEnableClosesTheSession)
{
    for (const uint32_t err : {0u, 1u, 3u, 43u, 0x2000u, 0xFFFFu}) {
        platform.on("EnableMobileAP_Ext").fails(err);
        platform.on("DisableMobileAP").fails(99);  // its error goes nowhere
        EXPECT_ROW(zr_nexa_client_init(nullptr), err == 0 ? 0u : err | 0x2000,
                   kCreating,
                   "call  EnableMobileAP_Ext(65535)",
                   "error Couldn't enable nexa client",
                   kDestroying);
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

TEST_F(SessionTest, WithoutMemoryForTheObjectThereIsNoSession)
{
    no_memory_for_the_object = true;
    EXPECT_ROW(zr_nexa_client_init(nullptr), 0x1002u,
        "info  entry",
        "error Couldn't setup nexa client");
    no_memory_for_the_object = false;
    EXPECT_EQ(zr_nexa_general_restore_nexa_v1(), 13u);
    platform.forget();
    EXPECT_ROW(zr_nexa_client_init(nullptr), 0u, kCreating, "call  EnableMobileAP_Ext(65535)");
}

TEST_F(SessionTest, Closes)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    EXPECT_ROW(zr_nexa_client_uninit(), 0u, "info  entry", "call  DisableMobileAP()", "call  ~QCMAP_Client()");
    EXPECT_ROW(zr_nexa_client_uninit(), 0u, "info  entry");
}

TEST_F(SessionTest, ClosingReportsTheErrorWordAndClosesAllTheSame)
{
    for (const uint32_t err : {0u, 1u, 3u, 43u, 0xFFFFu}) {
        for (const bool succeeds : {true, false}) {
            ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
            platform.forget();
            if (succeeds) {
                platform.on("DisableMobileAP").succeeds(err);
            } else {
                platform.on("DisableMobileAP").fails(err);
            }
            EXPECT_ROW(zr_nexa_client_uninit(), err == 0 ? 0u : err | 0x1000, "info  entry", kDestroying);
            EXPECT_EQ(platform.objects, 0);
        }
    }
}

}  // namespace
