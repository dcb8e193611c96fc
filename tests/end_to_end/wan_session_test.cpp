// A whole WAN session through the client interface on the host platform, and two processes that share it.
#include <arpa/inet.h>
#include <zr_nexa_client_api.h>

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>

#include "host_fixture.h"

namespace {

std::mutex mutex;
std::condition_variable more;
std::vector<std::string> heard;  // "event:status:profile"

void note_event(uint32_t event_id, uint32_t length, const void* data, ...)
{
    zr_nexa_ind_call_event_t event;
    if (length != sizeof(event)) return;
    std::memcpy(&event, data, sizeof(event));
    const std::lock_guard<std::mutex> lock(mutex);
    heard.push_back(std::to_string(event_id) + ":" + std::to_string(event.status) + ":" +
                    std::to_string(event.wwan_handle));
    more.notify_all();
}

std::vector<std::string> take_heard(size_t count)
{
    std::unique_lock<std::mutex> lock(mutex);
    more.wait_for(lock, std::chrono::seconds(20), [&] { return heard.size() >= count; });
    more.wait_for(lock, std::chrono::milliseconds(300), [&] { return heard.size() > count; });
    return std::exchange(heard, {});
}

std::string text(uint32_t network_word)
{
    char buffer[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &network_word, buffer, sizeof buffer);
}

class WanSessionTest : public HostTest {
protected:
    void TearDown() override
    {
        zr_nexa_client_uninit();
        HostTest::TearDown();
    }
};

TEST_F(WanSessionTest, AProfileFromItsMakingToItsEnd)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    zr_nexa_wan_wwanconfig_t config = {};
    config.ip_family = 4;
    config.apn_id = 2;
    std::strcpy(config.apn_name, "internet");
    uint32_t handle = 0;
    ASSERT_EQ(zr_nexa_wan_wwanconfig_add_v2(&handle, config), 0u);
    ASSERT_EQ(handle, 2u);
    config.tech_pref = 1;
    config.ip_family = 10;
    EXPECT_EQ(zr_nexa_wan_wwanconfig_set_v2(2, config), 0u);
    EXPECT_EQ(zr_nexa_wan_wwanconfig_default_set_v1(2), 0u);
    EXPECT_EQ(zr_nexa_wan_apwwan_set_v1(2, 1), 0u);
    static zr_nexa_wan_wwanconfig_list_v2_t list;
    EXPECT_EQ(zr_nexa_wan_wwanconfig_get_v2(&list), 0u);
    EXPECT_EQ(list.wwanconfig_num, 2u);
    EXPECT_EQ(list.default_wwan_handle, 2u);
    EXPECT_EQ(list.wwanconfig[1].tech_pref, 1);
    EXPECT_EQ(list.wwanconfig[1].ip_family, 10);
    EXPECT_STREQ(list.wwanconfig[1].apn_name, "internet");

    EXPECT_EQ(zr_nexa_wan_connect_v4_set_v1(2, 1), 0u);
    EXPECT_EQ(zr_nexa_wan_connect_v6_set_v1(2, 1), 0u);
    EXPECT_EQ(zr_nexa_wan_connect_v6_set_v1(2, 1), 0x201Au);
    uint32_t v4 = 0;
    uint32_t v6 = 0;
    EXPECT_EQ(zr_nexa_wan_status_get_v1(2, &v4, &v6), 0u);
    EXPECT_EQ(v4, 3u);
    EXPECT_EQ(v6, 9u);
    zr_nexa_wan_info_t info;
    EXPECT_EQ(zr_nexa_wan_info_get_v1(2, &info), 0u);
    EXPECT_EQ(info.connected, 1);
    EXPECT_STREQ(info.iface_name, "wwan1");
    EXPECT_EQ(text(info.v4_addr), "10.102.0.2");
    EXPECT_EQ(text(info.v4_gw_addr), "10.102.0.1");
    EXPECT_EQ(info.v6_prefix, 64);
    EXPECT_EQ(zr_nexa_wan_info_get_v1(1, &info), 0u);
    EXPECT_EQ(info.connected, 0);

    EXPECT_EQ(zr_nexa_wan_mpdnmapping_add_v1(2, 100), 0x200Eu);  // there is no such VLAN yet
    EXPECT_EQ(zr_nexa_wan_autoconnect_set_v1(2, 1), 0u);
    uint8_t mode = 0;
    EXPECT_EQ(zr_nexa_wan_autoconnect_get_v1(2, &mode), 0u);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(zr_nexa_wan_wwanconfig_del_v1(2), 0x2030u);  // it is the default one
    EXPECT_EQ(zr_nexa_wan_wwanconfig_default_set_v1(1), 0u);
    EXPECT_EQ(zr_nexa_wan_apwwan_set_v1(1, 1), 0u);
    EXPECT_EQ(zr_nexa_wan_wwanconfig_del_v1(2), 0x201Au);  // it is connected
    EXPECT_EQ(zr_nexa_wan_connect_v4_set_v1(2, 0), 0u);
    EXPECT_EQ(zr_nexa_wan_connect_v6_set_v1(2, 0), 0u);
    EXPECT_EQ(zr_nexa_wan_wwanconfig_del_v1(2), 0u);
    EXPECT_EQ(zr_nexa_wan_wwanconfig_del_v1(2), 0x1009u);
    EXPECT_EQ(zr_nexa_wan_status_get_v1(0xFFFFFFFF, &v4, &v6), 0x1009u);
}

TEST_F(WanSessionTest, TheOtherProcessIsHeardInOrder)
{
    int go[2];
    ASSERT_EQ(pipe(go), 0);
    const pid_t child = start_child([&] {
        char word = 0;
        if (read(go[0], &word, 1) != 1) return 1;
        if (zr_nexa_client_init(nullptr) != 0) return 2;
        uint32_t failures = 0;
        failures |= zr_nexa_wan_connect_v4_set_v1(1, 1);
        failures |= zr_nexa_wan_connect_v6_set_v1(1, 1);
        failures |= zr_nexa_wan_connect_v4_set_v1(1, 0);
        failures |= zr_nexa_wan_connect_v6_set_v1(1, 0);
        failures |= zr_nexa_client_uninit();
        return failures == 0 ? 0 : 3;
    });
    ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
    ASSERT_EQ(write(go[1], "g", 1), 1);
    EXPECT_EQ(take_heard(12),
              (std::vector<std::string>{"37:1:1", "34:3:1", "37:3:1", "37:7:1", "34:9:1", "37:9:1", "37:4:1", "35:6:1",
                                        "37:6:1", "37:10:1", "35:12:1", "37:12:1"}));
    EXPECT_EQ(wait_child(child), 0);
    close(go[0]);
    close(go[1]);
}

TEST_F(WanSessionTest, SessionsOpenAndCloseWhileCallsComeAndGo)
{
    const pid_t child = start_child([] {
        if (zr_nexa_client_init(nullptr) != 0) return 1;
        for (int i = 0; i < 50; ++i) {
            if (zr_nexa_wan_connect_v4_set_v1(1, 1) != 0 || zr_nexa_wan_connect_v4_set_v1(1, 0) != 0) return 2;
        }
        return zr_nexa_client_uninit() == 0 ? 0 : 3;
    });
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(zr_nexa_client_init(note_event), 0u);
        uint32_t v4 = 0;
        uint32_t v6 = 0;
        EXPECT_EQ(zr_nexa_wan_status_get_v1(1, &v4, &v6), 0u);
        ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    }
    EXPECT_EQ(wait_child(child), 0);
    take_heard(0);
}

}  // namespace
