#include "api_test.h"

namespace {

using WanProfileTest = ApiTest;

// A policy record as a call shows it.
std::string policy(int tech_pref, int ip_family, int apn_id, const std::string& apn_name = "")
{
    const std::string id = std::to_string(apn_id);
    return "profile_handle=0 tech_pref=" + std::to_string(tech_pref) + " ip_family=" + std::to_string(ip_family) +
           " profile_index_3gpp=" + id + " profile_index_3gpp2=" + id + " apn_name=\"" + apn_name +
           "\" call_bringup_mode=0";
}

std::string create(const std::string& policy)
{
    return "call  CreateWWANPolicyEx(" + policy + ")";
}

std::string update(int kind, const std::string& policy)
{
    return "call  UpdateWWANPolicyEx(update=" + std::to_string(kind) + " " + policy + ")";
}

zr_nexa_wan_wwanconfig_t profile(int tech_pref, int ip_family, int apn_id, const std::string& apn_name)
{
    auto record = poisoned<zr_nexa_wan_wwanconfig_t>();
    record.tech_pref = static_cast<uint8_t>(tech_pref);
    record.ip_family = ip_family;
    record.apn_id = static_cast<uint8_t>(apn_id);
    std::memset(record.apn_name, 0, sizeof(record.apn_name));
    std::memcpy(record.apn_name, apn_name.data(), apn_name.size());
    return record;
}

const std::string kFiftyCharacters = "0123456789012345678901234567890123456789012345678X";

// ---- add ----

TEST_F(WanProfileTest, AddV1CreatesAProfileForBothFamilies)
{
    for (const int tech_pref : {0, 1, 2}) {
        for (const int apn_id : {1, 16}) {
            uint32_t handle = poisoned<uint32_t>();
            platform.on("CreateWWANPolicyEx").gives("handle", 7u);
            EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v1(&handle, tech_pref, apn_id), 0u,
                       "info  entry",
                       create(policy(tech_pref, 10, apn_id)),
                       "info  Create WWANPolicy success:wwan_handle=7 tech_pref=" + std::to_string(tech_pref) +
                           " apn_id=" + std::to_string(apn_id));
            EXPECT_EQ(handle, 7u);
        }
    }
}

TEST_F(WanProfileTest, AddV1ChecksBeforeAnyPlatformCall)
{
    uint32_t handle = poisoned<uint32_t>();
    for (const int apn_id : {0, 17, -1, 256, 257, 2147483647, -2147483647}) {
        EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v1(&handle, 1, apn_id), 4u, "info  entry");
        EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v1(&handle, 3, apn_id), 4u, "info  entry");
    }
    EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v1(nullptr, 3, 1), 4u, "info  entry");
    for (const int tech_pref : {3, -1, 255, 256, 2147483647}) {
        EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v1(&handle, tech_pref, 1), 11u, "info  entry");
    }
    EXPECT_TRUE(is_poisoned(handle));
}

TEST_F(WanProfileTest, AddV2CreatesTheProfileItIsGiven)
{
    uint32_t handle = poisoned<uint32_t>();
    platform.on("CreateWWANPolicyEx").gives("handle", 50u);
    EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v2(&handle, profile(1, 6, 16, "internet")), 0u,
               "info  entry",
               create(policy(1, 6, 16, "internet")),
               "info  Create WWANPolicy success:wwan_handle=50 tech_pref=1 apn_id=16 apn_name=internet");
    EXPECT_EQ(handle, 50u);
}

TEST_F(WanProfileTest, AddV2WidensUnknownFamilies)
{
    const struct {
        int given;
        int sent;
    } rows[] = {{4, 4}, {6, 6}, {10, 10}, {0, 10}, {5, 10}, {12, 10}, {-4, 10}, {260, 10}, {2147483647, 10}};
    for (const auto& row : rows) {
        uint32_t handle = 0;
        EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v2(&handle, profile(0, row.given, 1, "")), 0u,
                   "info  entry",
                   create(policy(0, row.sent, 1)),
                   "info  Create WWANPolicy success:wwan_handle=0 tech_pref=0 apn_id=1 apn_name=");
    }
}

TEST_F(WanProfileTest, AddV2TakesAWholeNameField)
{
    uint32_t handle = 0;
    EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v2(&handle, profile(0, 4, 1, kFiftyCharacters)), 0u,
               "info  entry",
               create(policy(0, 4, 1, kFiftyCharacters)),
               "info  Create WWANPolicy success:wwan_handle=0 tech_pref=0 apn_id=1 apn_name=" + kFiftyCharacters);
    // The field goes as a block, bytes behind its zero too; an empty one not at all.
    auto with_rest = profile(0, 4, 1, "ab");
    with_rest.apn_name[49] = 'z';
    EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v2(&handle, with_rest), 0u,
               "info  entry",
               create(policy(0, 4, 1, "ab") + " apn_rest=" + std::string(94, '0') + "7a"),
               "info  Create WWANPolicy success:wwan_handle=0 tech_pref=0 apn_id=1 apn_name=ab");
    with_rest.apn_name[0] = '\0';
    EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v2(&handle, with_rest), 0u,
               "info  entry",
               create(policy(0, 4, 1)),
               "info  Create WWANPolicy success:wwan_handle=0 tech_pref=0 apn_id=1 apn_name=");
}

TEST_F(WanProfileTest, AddV2ChecksBeforeAnyPlatformCall)
{
    uint32_t handle = poisoned<uint32_t>();
    for (const int apn_id : {0, 17, 255}) {
        EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v2(&handle, profile(3, 4, apn_id, "a")), 4u, "info  entry");
    }
    EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v2(nullptr, profile(1, 4, 1, "a")), 4u, "info  entry");
    for (const int tech_pref : {3, 255}) {
        EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v2(&handle, profile(tech_pref, 4, 1, "a")), 11u, "info  entry");
    }
    EXPECT_TRUE(is_poisoned(handle));
}

// ---- set ----

TEST_F(WanProfileTest, SetV1SelectsThenUpdatesTwice)
{
    EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v1(51, 2, 16), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(51)",
               update(1, policy(2, 10, 16)),
               update(6, policy(2, 10, 16)),
               "info  Update WWAN Profile success:wwan_handle=51 tech_pref=2 apn_id=16");
}

TEST_F(WanProfileTest, SetV2SelectsThenUpdatesFiveTimes)
{
    const std::string sent = policy(1, 4, 3, "internet");
    EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v2(2, profile(1, 4, 3, "internet")), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(2)",
               update(1, sent),
               update(10, sent),
               update(9, sent),
               update(6, sent),
               update(15, sent),
               "info  Update WWAN Profile success:wwan_handle=2 tech_pref=1 apn_id=3 apn_name=internet");
}

TEST_F(WanProfileTest, SetV2SendsAnEmptyNameAndAWidenedFamily)
{
    const std::string sent = policy(0, 10, 1);
    EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v2(2, profile(0, 5, 1, "")), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(2)",
               update(1, sent),
               update(10, sent),
               update(9, sent),
               update(6, sent),
               update(15, sent),
               "info  Update WWAN Profile success:wwan_handle=2 tech_pref=0 apn_id=1 apn_name=");
}

TEST_F(WanProfileTest, SetChecksHandleAndApnFirst)
{
    EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v1(0, 1, 1), 4u, "info  entry");
    for (const int apn_id : {0, 17, -1, 257}) {
        EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v1(1, 3, apn_id), 4u, "info  entry");
    }
    EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v2(0, profile(1, 4, 1, "a")), 4u, "info  entry");
    for (const int apn_id : {0, 17, 255}) {
        EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v2(1, profile(3, 4, apn_id, "a")), 4u, "info  entry");
    }
}

TEST_F(WanProfileTest, SetFindsABadPreferenceOnlyAfterTheSelection)
{
    for (const int tech_pref : {3, -1, 256}) {
        EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v1(2, tech_pref, 1), 11u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(2)");
    }
    EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v2(2, profile(3, 4, 1, "a")), 11u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(2)");
    // A selection that fails comes before it.
    platform.on("SetWWANProfileHandlePreference").fails(9);
    EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v1(2, 3, 1), 0x1009u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(2)",
               "error Set WWAN Profile Handle Preference (wwan_handle=2) error 9");
    EXPECT_ROW(zr_nexa_wan_wwanconfig_set_v2(0xFFFFFFFF, profile(3, 4, 1, "a")), 0x1009u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(4294967295)",
               "error Set WWAN Profile Handle Preference (wwan_handle=-1) error 9");
}

TEST_F(WanProfileTest, AnErrorWordOfAnEarlierStepIsNotTheResult)
{
    platform.on("SetWWANProfileHandlePreference").succeeds(77);
    platform.on("UpdateWWANPolicyEx", 1).succeeds(78);
    platform.on("UpdateWWANPolicyEx", 2).succeeds(79);
    EXPECT_EQ(zr_nexa_wan_wwanconfig_set_v1(1, 1, 1), 79u);
}

TEST_F(WanProfileTest, DefaultSetSendsAnEmptyRecord)
{
    EXPECT_ROW(zr_nexa_wan_wwanconfig_default_set_v1(0), 4u, "info  entry");
    for (const uint32_t err : {0u, 26u}) {
        platform.on("UpdateWWANPolicyEx").succeeds(err);
        EXPECT_ROW(zr_nexa_wan_wwanconfig_default_set_v1(3), err,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(3)",
                   update(7, policy(0, 0, 0)),
                   "info  Update WWAN Profile (wwan_handle=3) =QCMAP_MSGR_SET_DEFAULT_PROFILE_V01= error " +
                       std::to_string(err));
    }
}

// ---- get ----

qcmap_wwan_policy_list_info three_policies()
{
    qcmap_wwan_policy_list_info list = {};
    list.default_profile_handle = 2;
    list.number_of_policies = 3;
    for (uint32_t i = 0; i < 3; ++i) {
        qcmap_net_policy_info& policy = list.policy[i];
        policy.profile_handle = 10 + i;
        policy.tech_pref = i;
        policy.profile_index_3gpp = static_cast<uint8_t>(5 + i);
        policy.profile_index_3gpp2 = 99;
    }
    list.policy[0].ip_family = 4;
    std::strcpy(list.policy[0].apn_name, "internet");
    list.policy[1].ip_family = 6;
    std::memcpy(list.policy[1].apn_name, kFiftyCharacters.data(), 50);
    list.policy[2].ip_family = 10;
    return list;
}

TEST_F(WanProfileTest, GetV1ListsTheProfiles)
{
    auto policies = three_policies();
    policies.policy[2].tech_pref = 0x1234567890FFull;  // its low byte counts
    platform.on("GetWWANPolicyListEx").gives("list", policies);
    auto list = poisoned<zr_nexa_wan_wwanconfig_list_t>();
    EXPECT_ROW(zr_nexa_wan_wwanconfig_get_v1(&list), 0u, "info  entry", "call  GetWWANPolicyListEx()");
    auto expected = poisoned<zr_nexa_wan_wwanconfig_list_t>();
    expected.wwanconfig_num = 3;
    expected.default_wwan_handle = 2;
    const uint8_t tech_prefs[] = {0, 1, 0xFF};
    for (int i = 0; i < 3; ++i) {
        expected.wwan_handle[i] = static_cast<uint32_t>(10 + i);
        expected.tech_pref[i] = tech_prefs[i];
        expected.apn_id[i] = static_cast<uint8_t>(5 + i);
    }
    EXPECT_EQ(std::memcmp(&list, &expected, sizeof(list)), 0);
}

TEST_F(WanProfileTest, GetV2ListsTheProfilesWhole)
{
    platform.on("GetWWANPolicyListEx").gives("list", three_policies());
    auto list = poisoned<zr_nexa_wan_wwanconfig_list_v2_t>();
    EXPECT_ROW(zr_nexa_wan_wwanconfig_get_v2(&list), 0u, "info  entry", "call  GetWWANPolicyListEx()");
    auto expected = poisoned<zr_nexa_wan_wwanconfig_list_v2_t>();
    expected.wwanconfig_num = 3;
    expected.default_wwan_handle = 2;
    const int families[] = {4, 6, 10};
    for (int i = 0; i < 3; ++i) {
        expected.wwan_handle[i] = static_cast<uint32_t>(10 + i);
        expected.wwanconfig[i].tech_pref = static_cast<uint8_t>(i);
        expected.wwanconfig[i].ip_family = families[i];
        expected.wwanconfig[i].apn_id = static_cast<uint8_t>(5 + i);
    }
    std::memset(expected.wwanconfig[0].apn_name, 0, 50);  // the whole field, zeros too
    std::memcpy(expected.wwanconfig[0].apn_name, "internet", 8);
    std::memcpy(expected.wwanconfig[1].apn_name, kFiftyCharacters.data(), 50);
    // The third has no name: what the caller put there stays.
    EXPECT_EQ(std::memcmp(&list, &expected, sizeof(list)), 0);
}

TEST_F(WanProfileTest, GetV2LeavesWhatItDoesNotKnow)
{
    const uint64_t techs[] = {3, 0x100, 0x100000001ull, ~0ull};
    const uint32_t families[] = {0, 5, 12, 0xFFFFFFFF};
    qcmap_wwan_policy_list_info policies = {};
    policies.number_of_policies = 4;
    for (int i = 0; i < 4; ++i) {
        policies.policy[i].profile_handle = 1;
        policies.policy[i].tech_pref = techs[i];
        policies.policy[i].ip_family = families[i];
        policies.policy[i].profile_index_3gpp = 200;
        policies.policy[i].apn_name[1] = 'x';  // empty all the same
    }
    platform.on("GetWWANPolicyListEx").gives("list", policies);
    auto list = poisoned<zr_nexa_wan_wwanconfig_list_v2_t>();
    EXPECT_EQ(zr_nexa_wan_wwanconfig_get_v2(&list), 0u);
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(is_poisoned(list.wwanconfig[i].tech_pref));
        EXPECT_TRUE(is_poisoned(list.wwanconfig[i].ip_family));
        EXPECT_TRUE(is_poisoned(list.wwanconfig[i].apn_name));
        EXPECT_EQ(list.wwanconfig[i].apn_id, 200);
    }
}

TEST_F(WanProfileTest, AnEmptyListGivesCountAndDefault)
{
    qcmap_wwan_policy_list_info policies = {};
    policies.default_profile_handle = 1;
    platform.on("GetWWANPolicyListEx").gives("list", policies);
    auto list = poisoned<zr_nexa_wan_wwanconfig_list_t>();
    EXPECT_EQ(zr_nexa_wan_wwanconfig_get_v1(&list), 0u);
    EXPECT_EQ(list.wwanconfig_num, 0u);
    EXPECT_EQ(list.default_wwan_handle, 1u);
    EXPECT_TRUE(is_poisoned(list.wwan_handle));
    auto list_v2 = poisoned<zr_nexa_wan_wwanconfig_list_v2_t>();
    EXPECT_EQ(zr_nexa_wan_wwanconfig_get_v2(&list_v2), 0u);
    EXPECT_EQ(list_v2.wwanconfig_num, 0u);
    EXPECT_EQ(list_v2.default_wwan_handle, 1u);
    EXPECT_TRUE(is_poisoned(list_v2.wwanconfig));
}

TEST_F(WanProfileTest, CountsBeyondTheRecordAreClamped)
{
    for (const uint32_t count : {50u, 51u, 0x80000000u, 0xFFFFFFFFu}) {
        qcmap_wwan_policy_list_info policies = {};
        policies.number_of_policies = count;
        for (uint32_t i = 0; i < 50; ++i) {
            policies.policy[i].profile_handle = i + 1;
        }
        platform.on("GetWWANPolicyListEx").gives("list", policies);
        struct {
            zr_nexa_wan_wwanconfig_list_t list;
            uint32_t behind;
        } v1;
        std::memset(&v1, 0xA5, sizeof(v1));
        EXPECT_EQ(zr_nexa_wan_wwanconfig_get_v1(&v1.list), 0u);
        EXPECT_EQ(v1.list.wwanconfig_num, 50u);
        EXPECT_EQ(v1.list.wwan_handle[49], 50u);
        EXPECT_EQ(v1.behind, 0xA5A5A5A5u);
        struct {
            zr_nexa_wan_wwanconfig_list_v2_t list;
            uint32_t behind;
        } v2;
        std::memset(&v2, 0xA5, sizeof(v2));
        EXPECT_EQ(zr_nexa_wan_wwanconfig_get_v2(&v2.list), 0u);
        EXPECT_EQ(v2.list.wwanconfig_num, 50u);
        EXPECT_EQ(v2.list.wwan_handle[49], 50u);
        EXPECT_EQ(v2.behind, 0xA5A5A5A5u);
    }
}

TEST_F(WanProfileTest, GetRefusesNull)
{
    EXPECT_ROW(zr_nexa_wan_wwanconfig_get_v1(nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_wan_wwanconfig_get_v2(nullptr), 4u, "info  entry");
}

// ---- del ----

TEST_F(WanProfileTest, DelSelectsThenDeletes)
{
    EXPECT_ROW(zr_nexa_wan_wwanconfig_del_v1(0), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_wan_wwanconfig_del_v1(0x80000000), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(2147483648)",
               "call  DeleteWWANPolicy()",
               "info  Delete WWAN Policy (wwan_handle=-2147483648) error 0");
}

// ---- profiles of the AP ----

TEST_F(WanProfileTest, ApwwanSetSelectsNothing)
{
    EXPECT_ROW(zr_nexa_wan_apwwan_set_v1(0, 1), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_wan_apwwan_set_v1(1, 0), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_wan_apwwan_set_v1(3, 51), 0u,
               "info  entry",
               "call  SetAPProfileHandle(ap=3 apdns=51)",
               "info  Set AP WWAN Profile Handle Preference (ap_wwan_handle=3 apdns_wwan_handle=51) error 0");
}

TEST_F(WanProfileTest, ApwwanGetLogsItsSuccessAsAnError)
{
    platform.on("GetAPProfileHandle").succeeds(12).gives("ap", 3u).gives("apdns", 4u);
    uint32_t ap = poisoned<uint32_t>();
    uint32_t apdns = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_wan_apwwan_get_v1(&ap, &apdns), 12u,
               "info  entry",
               "call  GetAPProfileHandle()",
               "error Get AP WWAN Profile Handle Preference (ap_wwan_handle=3 apdns_wwan_handle=4) error 12");
    EXPECT_EQ(ap, 3u);
    EXPECT_EQ(apdns, 4u);
    EXPECT_ROW(zr_nexa_wan_apwwan_get_v1(nullptr, &apdns), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_wan_apwwan_get_v1(&ap, nullptr), 4u, "info  entry");
}

}  // namespace
