#include <string.h>

#include <set>

#include "host_fixture.h"

namespace {

qcmap_net_policy_info policy(uint64_t tech_pref, uint32_t ip_family, uint8_t apn_id, const std::string& apn_name = "")
{
    qcmap_net_policy_info info = {};
    info.tech_pref = tech_pref;
    info.ip_family = ip_family;
    info.profile_index_3gpp = apn_id;
    info.profile_index_3gpp2 = apn_id;
    memcpy(info.apn_name, apn_name.data(), apn_name.size());
    return info;
}

class WanProfileHostTest : public HostTest {
protected:
    uint32_t create(QCMAP_Client& client, const qcmap_net_policy_info& info = policy(0, 10, 1))
    {
        unsigned int handle = 0xa5a5;
        return client.CreateWWANPolicyEx(info, &handle, &err) ? handle : 0;
    }
    qcmap_wwan_policy_list_info list(QCMAP_Client& client)
    {
        qcmap_wwan_policy_list_info all = {};
        EXPECT_TRUE(client.GetWWANPolicyListEx(&all, &err));
        return all;
    }
    std::string handles(QCMAP_Client& client)
    {
        const auto all = list(client);
        std::string text;
        for (uint32_t i = 0; i < all.number_of_policies; ++i)
            text += std::to_string(all.policy[i].profile_handle) + " ";
        return text;
    }
    bool select(QCMAP_Client& client, unsigned int handle)
    {
        return client.SetWWANProfileHandlePreference(handle, &err);
    }
    bool remove(QCMAP_Client& client, unsigned int handle)
    {
        return select(client, handle) && client.DeleteWWANPolicy(&err);
    }
    std::string ap_handles(QCMAP_Client& client)
    {
        unsigned int ap = 0;
        unsigned int apdns = 0;
        EXPECT_TRUE(client.GetAPProfileHandle(&ap, &apdns, &err));
        return std::to_string(ap) + " " + std::to_string(apdns);
    }
};

TEST_F(WanProfileHostTest, FactoryState)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    const auto all = list(client);
    EXPECT_EQ(all.number_of_policies, 1u);
    EXPECT_EQ(all.default_profile_handle, 1u);
    EXPECT_EQ(all.policy[0].profile_handle, 1u);
    EXPECT_EQ(all.policy[0].tech_pref, 0u);
    EXPECT_EQ(all.policy[0].ip_family, 10u);
    EXPECT_EQ(all.policy[0].profile_index_3gpp, 1);
    EXPECT_EQ(all.policy[0].profile_index_3gpp2, 1);
    EXPECT_EQ(all.policy[0].apn_name[0], '\0');
    EXPECT_EQ(all.policy[0].call_bringup_mode, 0u);
    EXPECT_EQ(ap_handles(client), "1 1");
}

TEST_F(WanProfileHostTest, TheTwoIndicesAreKeptApart)
{
    OpenClient client;
    auto info = policy(0, 10, 2);
    info.profile_index_3gpp2 = 3;
    ASSERT_EQ(create(client, info), 2u);
    EXPECT_EQ(list(client).policy[1].profile_index_3gpp, 2);
    EXPECT_EQ(list(client).policy[1].profile_index_3gpp2, 3);
    info.profile_index_3gpp = 4;
    info.profile_index_3gpp2 = 5;
    ASSERT_TRUE(select(client, 2));
    EXPECT_TRUE(client.UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01, info, &err));
    EXPECT_EQ(list(client).policy[1].profile_index_3gpp, 4);
    EXPECT_EQ(list(client).policy[1].profile_index_3gpp2, 5);
}

TEST_F(WanProfileHostTest, AProfileIsKeptForTheNextSession)
{
    const std::string fifty(50, 'a');
    {
        OpenClient client;
        EXPECT_EQ(create(client, policy(1, 4, 16, "internet")), 2u);
        EXPECT_EQ(create(client, policy(2, 6, 3, fifty)), 3u);
    }
    OpenClient client;
    const auto all = list(client);
    ASSERT_EQ(all.number_of_policies, 3u);
    EXPECT_EQ(all.policy[1].profile_handle, 2u);
    EXPECT_EQ(all.policy[1].tech_pref, 1u);
    EXPECT_EQ(all.policy[1].ip_family, 4u);
    EXPECT_EQ(all.policy[1].profile_index_3gpp, 16);
    EXPECT_EQ(all.policy[1].profile_index_3gpp2, 16);
    EXPECT_STREQ(all.policy[1].apn_name, "internet");
    EXPECT_EQ(all.policy[2].tech_pref, 2u);
    EXPECT_EQ(all.policy[2].ip_family, 6u);
    EXPECT_EQ(std::string(all.policy[2].apn_name, 50), fifty);
}

TEST_F(WanProfileHostTest, FiftyProfilesAndTheLowestFreeHandle)
{
    OpenClient client;
    for (uint32_t handle = 2; handle <= 50; ++handle)
        ASSERT_EQ(create(client), handle);
    EXPECT_EQ(create(client), 0u);
    EXPECT_EQ(err, QMI_ERR_LIMIT_V01);
    EXPECT_EQ(list(client).number_of_policies, 50u);
    EXPECT_TRUE(remove(client, 30));
    EXPECT_TRUE(remove(client, 7));
    EXPECT_EQ(create(client), 7u);
    EXPECT_EQ(create(client), 30u);
    EXPECT_EQ(create(client), 0u);
}

TEST_F(WanProfileHostTest, NonsenseIsRefused)
{
    OpenClient client;
    for (const auto& info : {policy(3, 10, 1), policy(~0ull, 10, 1), policy(0, 0, 1), policy(0, 5, 1), policy(0, 12, 1),
                             policy(0, 10, 0), policy(0, 10, 17), policy(0, 10, 255)}) {
        EXPECT_EQ(create(client, info), 0u);
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    const struct {
        int update;
        qcmap_net_policy_info info;
    } rows[] = {{1, policy(3, 4, 1)}, {6, policy(0, 4, 0)}, {10, policy(0, 5, 1)},
                {0, policy(0, 4, 1)}, {2, policy(0, 4, 1)}, {-1, policy(0, 4, 1)}};
    for (const auto& row : rows) {
        const auto update = static_cast<qcmap_msgr_update_profile_enum_v01>(row.update);
        EXPECT_FALSE(client.UpdateWWANPolicyEx(update, row.info, &err)) << row.update;
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    const auto all = list(client);
    EXPECT_EQ(all.number_of_policies, 1u);
    EXPECT_EQ(all.policy[0].ip_family, 10u);
}

TEST_F(WanProfileHostTest, EachUpdateChangesItsOwnFieldsOfTheSelectedProfile)
{
    OpenClient client;
    ASSERT_EQ(create(client, policy(0, 10, 1, "first")), 2u);
    ASSERT_TRUE(select(client, 2));
    auto wanted = policy(2, 6, 9, "second");
    wanted.call_bringup_mode = 3;
    const auto shown = [&] {
        const auto info = list(client).policy[1];
        return std::to_string(info.tech_pref) + " " + std::to_string(info.ip_family) + " " +
               std::to_string(info.profile_index_3gpp) + " " + std::to_string(info.profile_index_3gpp2) + " " +
               info.apn_name + " " + std::to_string(info.call_bringup_mode);
    };
    const auto update = [&](int kind) {
        EXPECT_TRUE(client.UpdateWWANPolicyEx(static_cast<qcmap_msgr_update_profile_enum_v01>(kind), wanted, &err));
        return shown();
    };
    EXPECT_EQ(shown(), "0 10 1 1 first 0");
    EXPECT_EQ(update(1), "2 10 1 1 first 0");
    EXPECT_EQ(update(6), "2 10 9 9 first 0");
    EXPECT_EQ(update(9), "2 10 9 9 second 0");
    EXPECT_EQ(update(10), "2 6 9 9 second 0");
    EXPECT_EQ(update(15), "2 6 9 9 second 3");
    wanted.apn_name[0] = '\0';
    EXPECT_EQ(update(9), "2 6 9 9  3");
    EXPECT_EQ(list(client).default_profile_handle, 1u);
    update(7);
    EXPECT_EQ(list(client).default_profile_handle, 2u);
    const auto first = list(client).policy[0];
    EXPECT_EQ(first.tech_pref, 0u);
    EXPECT_EQ(first.ip_family, 10u);
}

TEST_F(WanProfileHostTest, SelectionBelongsToTheObject)
{
    OpenClient one;
    OpenClient two;
    ASSERT_EQ(create(one), 2u);
    ASSERT_EQ(create(one), 3u);
    EXPECT_TRUE(select(one, 2));
    EXPECT_TRUE(select(two, 3));
    const auto info = policy(1, 10, 5);
    EXPECT_TRUE(one.UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_TECH_TYPE_V01, info, &err));
    EXPECT_TRUE(two.UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_ALL_PROFILE_INDEX_V01, info, &err));
    const auto all = list(one);
    EXPECT_EQ(all.policy[1].tech_pref, 1u);
    EXPECT_EQ(all.policy[1].profile_index_3gpp, 1);
    EXPECT_EQ(all.policy[2].tech_pref, 0u);
    EXPECT_EQ(all.policy[2].profile_index_3gpp, 5);
}

TEST_F(WanProfileHostTest, UnknownHandlesAreRefusedAndTheSelectionStays)
{
    OpenClient client;
    for (const unsigned int handle : {0u, 2u, 50u, 51u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
        err = QMI_ERR_NONE_V01;
        EXPECT_FALSE(select(client, handle)) << handle;
        EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    }
    EXPECT_TRUE(client.UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_TECH_TYPE_V01, policy(2, 10, 1), &err));
    EXPECT_EQ(list(client).policy[0].tech_pref, 2u);
}

TEST_F(WanProfileHostTest, AProfileThatIsGoneIsNotWorkedOn)
{
    OpenClient client;
    ASSERT_EQ(create(client), 2u);
    EXPECT_TRUE(remove(client, 2));
    EXPECT_EQ(handles(client), "1 ");
    EXPECT_FALSE(client.DeleteWWANPolicy(&err));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    EXPECT_FALSE(client.UpdateWWANPolicyEx(QCMAP_MSGR_SET_DEFAULT_PROFILE_V01, policy(0, 0, 0), &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    EXPECT_EQ(list(client).default_profile_handle, 1u);
}

TEST_F(WanProfileHostTest, ProfilesInUseByTheModuleStay)
{
    OpenClient client;
    for (uint32_t handle = 2; handle <= 4; ++handle)
        ASSERT_EQ(create(client), handle);
    ASSERT_TRUE(select(client, 2));
    ASSERT_TRUE(client.UpdateWWANPolicyEx(QCMAP_MSGR_SET_DEFAULT_PROFILE_V01, policy(0, 0, 0), &err));
    ASSERT_TRUE(client.SetAPProfileHandle(3, 4, &err));
    for (const unsigned int handle : {2u, 3u, 4u}) {
        EXPECT_FALSE(remove(client, handle)) << handle;
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    EXPECT_TRUE(remove(client, 1));  // nothing uses it any more
    EXPECT_EQ(handles(client), "2 3 4 ");
    EXPECT_EQ(create(client), 1u);
}

TEST_F(WanProfileHostTest, AConnectedProfileStays)
{
    OpenClient client;
    ASSERT_EQ(create(client), 2u);
    ASSERT_TRUE(select(client, 2));
    ASSERT_TRUE(client.ConnectBackHaul(QCMAP_MSGR_WWAN_CALL_TYPE_V6_V01, &err));
    EXPECT_FALSE(client.DeleteWWANPolicy(&err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    ASSERT_TRUE(client.DisconnectBackHaul(QCMAP_MSGR_WWAN_CALL_TYPE_V6_V01, &err));
    EXPECT_TRUE(client.DeleteWWANPolicy(&err));
}

TEST_F(WanProfileHostTest, ApHandles)
{
    OpenClient client;
    ASSERT_EQ(create(client), 2u);
    EXPECT_TRUE(client.SetAPProfileHandle(2, 1, &err));
    EXPECT_EQ(ap_handles(client), "2 1");
    EXPECT_FALSE(client.SetAPProfileHandle(1, 3, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    EXPECT_FALSE(client.SetAPProfileHandle(0xffffffff, 1, &err));
    EXPECT_EQ(ap_handles(client), "2 1");
    OpenClient other;
    EXPECT_EQ(ap_handles(other), "2 1");
}

TEST_F(WanProfileHostTest, RestoreLeavesTheFirstProfileOnly)
{
    OpenClient client;
    ASSERT_EQ(create(client, policy(1, 4, 2, "apn")), 2u);
    ASSERT_TRUE(client.SetAPProfileHandle(2, 2, &err));
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(handles(client), "1 ");
    EXPECT_EQ(ap_handles(client), "1 1");
    EXPECT_EQ(list(client).default_profile_handle, 1u);
}

TEST_F(WanProfileHostTest, ProcessesNeverGetTheSameHandle)
{
    {
        OpenClient client;
        ASSERT_TRUE(client.open);
    }
    std::vector<pid_t> children;
    for (int i = 0; i < 7; ++i) {
        children.push_back(start_child([] {
            OpenClient client;
            for (int n = 0; n < 7; ++n) {
                unsigned int handle = 0;
                qmi_error_type_v01 error = QMI_ERR_NONE_V01;
                if (!client.CreateWWANPolicyEx(policy(0, 10, 1), &handle, &error)) return 1;
            }
            return 0;
        }));
    }
    for (const pid_t child : children)
        EXPECT_EQ(wait_child(child), 0);
    OpenClient client;
    const auto all = list(client);
    std::set<uint32_t> seen;
    for (uint32_t i = 0; i < all.number_of_policies; ++i)
        seen.insert(all.policy[i].profile_handle);
    EXPECT_EQ(seen.size(), 50u);
    EXPECT_EQ(*seen.rbegin(), 50u);
}

}  // namespace
