#include "faults.h"

#include <chrono>

#include "host_fixture.h"

namespace {

using mobile_ap::Faults;
using mobile_ap::Misbehaviour;

class FaultsHostTest : public HostTest {
protected:
    static void name_faults(const char* text)
    {
        setenv("MOBILE_AP_FAULTS", text, 1);
    }
    unsigned char data_path(QCMAP_Client& client)
    {
        unsigned char state = 0xa5;
        qmi_error_type_v01 ignored = QMI_ERR_NONE_V01;
        client.GetDataPathOptStatus(&state, &ignored);
        return state;
    }
};

qmi_error_type_v01 word(uint32_t value)
{
    return static_cast<qmi_error_type_v01>(value);
}

TEST_F(FaultsHostTest, FailGivesItsWordAndDoesNothing)
{
    name_faults("SetDataPathOptStatus=fail:0xFFFFFFFF");
    OpenClient client;
    EXPECT_FALSE(client.SetDataPathOptStatus(0, &err));
    EXPECT_EQ(err, word(0xffffffff));
    EXPECT_EQ(data_path(client), 1);
}

TEST_F(FaultsHostTest, FailWithErrorZero)
{
    name_faults("SetDataPathOptStatus=fail:0");
    OpenClient client;
    err = QMI_ERR_INTERNAL_V01;
    EXPECT_FALSE(client.SetDataPathOptStatus(0, &err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
}

TEST_F(FaultsHostTest, OkDoesTheWorkAndLeavesItsWord)
{
    name_faults("SetDataPathOptStatus=ok:43");
    OpenClient client;
    EXPECT_TRUE(client.SetDataPathOptStatus(0, &err));
    EXPECT_EQ(err, QMI_ERR_BACKHAUL_DOWN_V01);
    EXPECT_EQ(data_path(client), 0);
}

TEST_F(FaultsHostTest, OnlyTheNthCall)
{
    name_faults("SetDataPathOptStatus#2=fail:3");
    OpenClient client;
    EXPECT_TRUE(client.SetDataPathOptStatus(0, &err));
    EXPECT_FALSE(client.SetDataPathOptStatus(1, &err));
    EXPECT_EQ(err, QMI_ERR_INTERNAL_V01);
    EXPECT_TRUE(client.SetDataPathOptStatus(0, &err));
}

TEST_F(FaultsHostTest, DelayTakesItsTimeAndMayBeJoinedWithAnother)
{
    name_faults("SetDataPathOptStatus=delay:150,SetDataPathOptStatus=fail:7");
    OpenClient client;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(client.SetDataPathOptStatus(0, &err));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
    EXPECT_EQ(err, word(7));
}

TEST_F(FaultsHostTest, WordsForTheSameMethodAddUp)
{
    Faults faults;
    std::string bad_word;
    EXPECT_TRUE(
        faults.parse("A=delay:1,A=hold:10,A=fail:3,A=ok:5,A=delay:2,A=hold:20,A=fail:4,A=ok:6,"
                     "IsReady=notready,IsReady=delay:7",
                     &bad_word));
    const Misbehaviour a = faults.reach("A");
    EXPECT_EQ(a.delay_ms, 3u);
    EXPECT_EQ(a.hold_ms, 30u);
    EXPECT_EQ(a.fail_with, 4u) << "of two words the last one";
    EXPECT_EQ(a.ok_with, 6u);
    EXPECT_FALSE(a.not_ready);
    const Misbehaviour is_ready = faults.reach("IsReady");
    EXPECT_TRUE(is_ready.not_ready);
    EXPECT_EQ(is_ready.delay_ms, 7u);
}

TEST_F(FaultsHostTest, ReadinessMayBeToldLate)
{
    name_faults("IsReady=delay:150");
    QCMAP_Client client(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(client.IsReady());
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
}

TEST_F(FaultsHostTest, SessionMethods)
{
    name_faults("IsReady=notready,DisableMobileAP=fail:5");
    {
        OpenClient client;
        EXPECT_FALSE(client.open);
        EXPECT_FALSE(client.DisableMobileAP(&err));
        EXPECT_EQ(err, word(5));
    }
    name_faults("EnableMobileAP_Ext=fail:6");
    OpenClient client;
    EXPECT_TRUE(client.IsReady());
    EXPECT_FALSE(client.EnableMobileAP_Ext(&err, 65535));
    EXPECT_EQ(err, word(6));
    EXPECT_TRUE(client.DisableMobileAP(&err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
}

TEST_F(FaultsHostTest, NeverReachedIsReported)
{
    name_faults("SetDataPathOptStatus=fail:1,SetNatType#2=ok:9,AddDMZ=hold:1");
    const std::string told = stderr_of([&] {
        OpenClient client;
        client.SetDataPathOptStatus(1, &err);
    });
    EXPECT_EQ(told, "MOBILE_AP_FAULTS: never reached: SetNatType#2=ok:9,AddDMZ=hold:1\n");
}

TEST_F(FaultsHostTest, AllReachedIsSilent)
{
    name_faults("SetDataPathOptStatus=fail:1");
    EXPECT_EQ(stderr_of([&] {
                  OpenClient client;
                  client.SetDataPathOptStatus(1, &err);
              }),
              "");
}

TEST_F(FaultsHostTest, MalformedTextIsToldAndTheSessionIsNotReady)
{
    name_faults("SetDataPathOptStatus=fail:1,Get=what:3");
    const std::string told = stderr_of([&] {
        OpenClient client;
        EXPECT_FALSE(client.open);
        EXPECT_FALSE(client.SetDataPathOptStatus(1, &err));
    });
    EXPECT_EQ(told, "MOBILE_AP_FAULTS: \"Get=what:3\" makes no sense; the service is not ready\n");
}

TEST(Faults, Words)
{
    struct Row {
        const char* text;
        const char* bad_word;  // null: all is well
    };
    constexpr Row kRows[] = {
        {"", nullptr},
        {"A=fail:1", nullptr},
        {"A=fail:0xFF,B#3=ok:4294967295,C=delay:600000,IsReady=notready", nullptr},
        {"ZR_SetRoutingBH=hold:1", nullptr},
        {"A=fail:0Xff", nullptr},
        {"A", "A"},
        {"A=", "A="},
        {"=fail:1", "=fail:1"},
        {"A=fail", "A=fail"},
        {"A=fail:", "A=fail:"},
        {"A=fail:-1", "A=fail:-1"},
        {"A=fail:4294967296", "A=fail:4294967296"},
        {"A=fail:99999999999999999999", "A=fail:99999999999999999999"},
        {"A=fail:0x", "A=fail:0x"},
        {"A=fail:1 ", "A=fail:1 "},
        {"A=delay:600001", "A=delay:600001"},
        {"A=break:1", "A=break:1"},
        {"A#0=fail:1", "A#0=fail:1"},
        {"A#=fail:1", "A#=fail:1"},
        {"A#x=fail:1", "A#x=fail:1"},
        {"A B=fail:1", "A B=fail:1"},
        {"A=notready", "A=notready"},
        {"IsReady=fail:1", "IsReady=fail:1"},
        {"A=fail:1,", ""},
        {"A=fail:1,,B=fail:2", ""},
    };
    for (const Row& row : kRows) {
        Faults faults;
        std::string bad_word = "untouched";
        EXPECT_EQ(faults.parse(row.text, &bad_word), row.bad_word == nullptr) << row.text;
        EXPECT_EQ(bad_word, row.bad_word == nullptr ? "untouched" : row.bad_word) << row.text;
    }
}

}  // namespace
