// Calls as tests see them: what a session hears of them, profiles to make them with, and what is read of them.
#ifndef CALLS_H
#define CALLS_H

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <string.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "qcmap_client.h"
#include "qcmap_indications.h"
#include "qmi_client.h"

// What a session was told of calls, each as "message:status:profile", with "/type:code" where a reason was given.
class Heard {
public:
    static void callback(qmi_client_type handle, unsigned int msg_id, void* wire, unsigned int wire_len, void* user)
    {
        auto* const heard = static_cast<Heard*>(user);
        if (msg_id == 169) return heard->note_report();
        const unsigned int size = msg_id == 34 ? 136 : msg_id == 35 ? 36 : msg_id == 36 ? 444 : 0;
        unsigned char record[444];
        if (qmi_client_message_decode(handle, QMI_IDL_INDICATION, msg_id, wire, wire_len, record, size) != 0) return;
        qcmap_wwan_call_ind call;
        memcpy(&call, record, sizeof call);
        const std::lock_guard<std::mutex> lock(heard->mutex_);
        heard->text_ +=
            std::to_string(msg_id) + ":" + std::to_string(call.conn_status) + ":" + std::to_string(call.profile_handle);
        if (call.call_end_type != 0 || call.call_end_code != 0)
            heard->text_ += "/" + std::to_string(call.call_end_type) + ":" + std::to_string(call.call_end_code);
        heard->text_ += " ";
        if (msg_id == 34) memcpy(&heard->bring_up_, record, sizeof heard->bring_up_);
        heard->last_ = call;
        ++heard->count_;
        heard->more_.notify_all();
    }
    // Waits for so many, and a moment longer for any that should not be.
    std::string take(int count)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        more_.wait_for(lock, std::chrono::seconds(20), [&] { return count_ >= count; });
        more_.wait_for(lock, std::chrono::milliseconds(300), [&] { return count_ > count; });
        count_ = 0;
        return std::exchange(text_, {});
    }
    // All that came before the report that was sent last.
    std::string take_until_report()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        EXPECT_TRUE(more_.wait_for(lock, std::chrono::seconds(20), [&] { return reports_ > 0; }));
        --reports_;
        count_ = 0;
        return std::exchange(text_, {});
    }
    qcmap_msgr_bring_up_wwan_ind_msg_v01 bring_up()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return bring_up_;
    }
    qcmap_wwan_call_ind last()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return last_;
    }

private:
    void note_report()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++reports_;
        more_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable more_;
    std::string text_;
    int count_ = 0;
    int reports_ = 0;
    qcmap_msgr_bring_up_wwan_ind_msg_v01 bring_up_ = {};
    qcmap_wwan_call_ind last_ = {};
};

inline std::string v4(uint32_t network_word)
{
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &network_word, text, sizeof text);
}

inline std::string v6(const uint8_t* bytes)
{
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, bytes, text, sizeof text);
}

// Makes a profile and selects it.
inline bool create(QCMAP_Client& client, uint32_t ip_family)
{
    qcmap_net_policy_info info = {};
    info.ip_family = ip_family;
    info.profile_index_3gpp = info.profile_index_3gpp2 = 1;
    unsigned int handle = 0;
    qmi_error_type_v01 error = QMI_ERR_NONE_V01;
    return client.CreateWWANPolicyEx(info, &handle, &error) && client.SetWWANProfileHandlePreference(handle, &error);
}

// "3 12": what is told of the selected profile's calls.
inline std::string status(QCMAP_Client& client)
{
    auto v4_status = static_cast<qcmap_msgr_wwan_status_enum_v01>(0);
    auto v6_status = static_cast<qcmap_msgr_wwan_status_enum_v01>(0);
    qmi_error_type_v01 error = QMI_ERR_NONE_V01;
    EXPECT_TRUE(client.GetWWANStatus(&v4_status, &v6_status, &error)) << error;
    return std::to_string(v4_status) + " " + std::to_string(v6_status);
}

inline std::vector<qcmap_connected_wwan_info> connected(QCMAP_Client& client)
{
    qcmap_connected_wwan_info all[50];
    memset(all, 0xa5, sizeof all);
    unsigned char count = 0xa5;
    qmi_error_type_v01 error = QMI_ERR_NONE_V01;
    EXPECT_TRUE(client.GetAllConnectedPDNEx(&count, all, &error)) << error;
    return {all, all + count};
}

inline qcmap_msgr_wwan_statistics_type_v01 statistics(QCMAP_Client& client, int family)
{
    qcmap_msgr_wwan_statistics_type_v01 counts;
    memset(&counts, 0xa5, sizeof counts);
    qmi_error_type_v01 error = QMI_ERR_NONE_V01;
    EXPECT_TRUE(client.GetWWANStatistics(static_cast<qcmap_msgr_ip_family_enum_v01>(family), &counts, &error)) << error;
    return counts;
}

#endif
