// Indications: queued by methods in their own transaction, delivered to every open session in every process.
#ifndef MOBILE_AP_INDICATIONS_H
#define MOBILE_AP_INDICATIONS_H

#include <pthread.h>
#include <stddef.h>
#include <stdint.h>

#include <atomic>
#include <string>
#include <vector>

#include "qcmap_client.h"
#include "qcmap_indications.h"
#include "store.h"

namespace mobile_ap {

// Queues one indication. It goes out, in order, when the method's transaction is made good.
void indicate_bytes(Database& db, unsigned int msg_id, const void* record, size_t size);

template <class Record>
void indicate(Database& db, unsigned int msg_id, const Record& record)
{
    static_assert(std::is_trivially_copyable_v<Record>, "goes out as it lies in memory");
    indicate_bytes(db, msg_id, &record, sizeof record);
}

// The handle that indications must carry to be meant for the sessions of this state.
uint32_t mobile_ap_handle(Database& db);

// Id of the newest indication; what is younger is delivered.
int64_t newest_indication(Database& db);

// The thread that delivers, and carries out what is due meanwhile (events.h).
class Listener {
public:
    Listener(client_status_ind_t callback, void* user) : callback_(callback), user_(user) {}
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    bool start(const std::string& path, int64_t newest);
    bool is_running() const
    {
        return running_;
    }
    bool is_this_thread() const;
    void stop();  // returns when the last callback has returned

private:
    static constexpr int kRoundMs = 200;

    static void* run(void* listener);
    void listen();
    void watch_file() const;
    void deliver_new();

    struct Pending {
        int64_t id;
        unsigned int msg_id;
        std::vector<uint8_t> wire;
    };
    std::vector<Pending> next_batch();
    void see_to_what_is_due();
    std::vector<Pending> rest_of_replaced();
    std::vector<Pending> read_batch();
    void tell_missed(int64_t count) const;

    const client_status_ind_t callback_;
    void* const user_;
    std::string path_;
    Store db_;
    int64_t newest_ = 0;
    int64_t in_place_ms_ = 0;  // when the database was last seen in its place
    bool was_read_ = false;
    bool elsewhere_ = false;  // newest_ is of another database than the one in place
    pthread_t thread_ = {};
    bool running_ = false;
    std::atomic<pthread_t> listening_thread_{};  // as the thread itself knows it
    std::atomic<bool> stopping_{false};
    int stop_event_ = -1;
    int watch_ = -1;
    int wait_ms_ = kRoundMs;  // until something is due, or until the next round
};

}  // namespace mobile_ap

#endif
