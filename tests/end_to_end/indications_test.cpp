// A program that holds a session open, and what it hears of what other processes do.
#include <poll.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>

#include "run_tool.h"

namespace {

using testing::Test;

struct Event {
    uint32_t id;
    std::string data;
    uint32_t fourth;  // 0 where there is none
};

// What the session of this process was told.
class Heard {
public:
    void add(const Event& event)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        events_.push_back(event);
        more_.notify_all();
    }
    // Waits until so many events are there, and a moment longer for any that should not be.
    std::vector<Event> take(size_t count)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        more_.wait_for(lock, std::chrono::seconds(20), [&] { return events_.size() >= count; });
        more_.wait_for(lock, std::chrono::milliseconds(500), [&] { return events_.size() > count; });
        return std::exchange(events_, {});
    }

private:
    std::mutex mutex_;
    std::condition_variable more_;
    std::vector<Event> events_;
};
Heard heard;

void note_event(uint32_t event_id, uint32_t length, const void* data, ...)
{
    Event event{event_id, std::string(static_cast<const char*>(data), length), 0};
    zr_nexa_ind_call_event_t call;
    if (event_id == ZR_NEXA_IND_TEAR_DOWN && length == sizeof(call)) {
        std::memcpy(&call, data, sizeof(call));
        if (call.status == ZR_NEXA_IND_V6_DISCONNECTING_FAILED) {
            va_list values;
            va_start(values, data);
            event.fourth = va_arg(values, uint32_t);
            va_end(values);
        }
    }
    heard.add(event);
}
