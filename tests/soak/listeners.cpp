// Listeners in several processes, half of them without inotify and some slow, while several processes change the state:
// each hears every change, in order and once.
#include <cstdio>
#include <deque>

#include "calls.h"
#include "qmi_client.h"
#include "session.h"
#include "signals.h"
#include "soak.h"
#include "state.h"

namespace soak {
namespace {

using mobile_ap::Store;

constexpr uint32_t kInEachProcess = 10;
constexpr uint32_t kSenders = 4;
constexpr size_t kMostAtOnce = 20;
constexpr uint32_t kLongestSilenceS = 30;  // then what is missing is taken for lost

struct Size {
    uint32_t listeners;
    uint32_t changes;
};
constexpr Size kFullSize = {300, 5000};
constexpr Size kShortSize = {150, 2000};

struct Heard {
    std::atomic<uint32_t> last{0};
    std::atomic<uint32_t> count{0};
    std::atomic<uint32_t> out_of_order{0};  // not the one behind the last
    bool slow = false;
};

struct Common {
    std::atomic<uint32_t> ready{0};
    std::atomic<uint32_t> gone{0};
    Heard heard[kFullSize.listeners];
};

void hear(qmi_client_type client, unsigned int msg_id, void* wire, unsigned int size, void* user)
{
    Heard& heard = *static_cast<Heard*>(user);
    qcmap_msgr_wwan_status_ind_msg_v01 record = {};
    const int code = qmi_client_message_decode(client, QMI_IDL_INDICATION, msg_id, wire, size, &record, sizeof record);
    const uint32_t number = code == QMI_NO_ERR ? record.call.conn_status : 0;
    if (number != heard.last + 1) ++heard.out_of_order;
    heard.last = number;
    ++heard.count;
    if (heard.slow) mobile_ap::sleep_ms(1);
}

// Until all have heard the last change, or nothing has been heard for long.
void wait_for_all(const Heard* heard, uint32_t changes)
{
    uint64_t before = 0;
    auto since = Clock::now();
    while (Clock::now() - since < std::chrono::seconds(kLongestSilenceS)) {
        uint64_t sum = 0;
        bool all = true;
        for (uint32_t i = 0; i < kInEachProcess; ++i) {
            sum += heard[i].count;
            all = all && heard[i].last == changes;
        }
        if (all) return;
        if (sum != before) since = Clock::now();
        before = sum;
        mobile_ap::sleep_ms(20);
    }
}

int listen(const std::string& folder, bool with_watches, uint32_t changes, Common& common, Heard* heard)
{
    CallPlan plan;
    plan.no_watches = !with_watches;
    plan_calls(plan);
    setenv("MOBILE_AP_STATE", folder.c_str(), 1);
    std::deque<QCMAP_Client> clients;
    heard[0].slow = true;
    for (uint32_t i = 0; i < kInEachProcess; ++i) {
        clients.emplace_back(hear, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, &heard[i]);
        qmi_error_type_v01 err = QMI_ERR_NONE_V01;
        if (!clients.back().IsReady() || !clients.back().EnableMobileAP_Ext(&err, 65535)) {
            ++common.gone;
            return static_cast<int>(kNeverReady);
        }
        ++common.ready;
    }
    wait_for_all(heard, changes);
    mobile_ap::sleep_ms(300);  // for one that is heard twice
    return 0;
}

// Counts up to the last number, by one or by some at once, beside others that do.
int send(const std::string& folder, uint32_t changes, uint64_t seed)
{
    setenv("MOBILE_AP_STATE", folder.c_str(), 1);
    mobile_ap::Session session(nullptr, nullptr);
    Random random(seed);
    for (bool more = session.is_ready(); more;) {
        const size_t at_once = pick(random, 2) == 0 ? 1 : pick(random, kMostAtOnce);
        const bool done = mobile_ap::method(&session, "Change", nullptr, [&](Store& db) {
            qcmap_msgr_wwan_status_ind_msg_v01 record = {};
            record.call.mobile_ap_handle = mobile_ap::mobile_ap_handle(db);
            record.call.conn_status = static_cast<uint32_t>(mobile_ap::newest_indication(db));
            for (size_t i = 0; i < at_once && record.call.conn_status < changes; ++i) {
                ++record.call.conn_status;
                mobile_ap::indicate(db, QCMAP_MSGR_WWAN_STATUS_IND_V01, record);
            }
            more = record.call.conn_status < changes;
        });
        if (!done) return 1;
    }
    return 0;
}

struct Totals {
    uint64_t rounds, heard, missed, out_of_order, crashed;
};

void round(const Task& task, const Size& size, Totals& totals)
{
    const std::string folder = task.folder + "/state";
    make_state(folder, 0);
    Shared<Common> common;
    std::vector<pid_t> processes;
    for (uint32_t first = 0; first < size.listeners; first += kInEachProcess) {
        const bool with_watches = first / kInEachProcess % 2 == 0;
        processes.push_back(start_process(
            [&] { return listen(folder, with_watches, size.changes, *common, &common->heard[first]); }, 600));
    }
    while (common->ready < size.listeners && common->gone == 0)
        mobile_ap::sleep_ms(5);
    for (uint32_t sender = 0; sender < kSenders; ++sender)
        processes.push_back(start_process([&] { return send(folder, size.changes, task.seed * 100 + sender); }, 600));
    for (const pid_t process : processes)
        totals.crashed += wait_for_process(process) != 0 ? 1u : 0u;

    for (uint32_t i = 0; i < size.listeners; ++i) {
        const Heard& heard = common->heard[i];
        totals.heard += heard.count;
        totals.out_of_order += heard.out_of_order;
        if (heard.count >= size.changes) continue;
        totals.missed += size.changes - heard.count;
        report(task, "",
               "LOST: listener " + std::to_string(i) + " heard " + std::to_string(heard.count) +
                   " changes, the last of them " + std::to_string(heard.last));
    }
    ++totals.rounds;
}

}  // namespace

bool listeners(const Task& task)
{
    const Size& size = task.full ? kFullSize : kShortSize;
    Totals totals = {};
    do {
        round(task, size, totals);
    } while (!task.is_over());
    std::printf(
        "listeners: %u (half without inotify) and %u changes, %llu rounds: %llu heard, %llu missed, %llu out of order "
        "or "
        "twice, %llu processes failed\n",
        size.listeners, size.changes, static_cast<unsigned long long>(totals.rounds),
        static_cast<unsigned long long>(totals.heard), static_cast<unsigned long long>(totals.missed),
        static_cast<unsigned long long>(totals.out_of_order), static_cast<unsigned long long>(totals.crashed));
    return totals.missed + totals.out_of_order + totals.crashed == 0;
}

}  // namespace soak
