// 64 processes that write to one state, each write counted in a row of its process's own and in one that all share, and
// told of by an indication.
#include <cstdio>
#include <filesystem>

#include "session.h"
#include "signals.h"
#include "soak.h"
#include "state.h"

namespace soak {
namespace {

using mobile_ap::Store;

constexpr uint32_t kWriters = 64;
constexpr uint32_t kWrites = 1000;
constexpr uint32_t kAll = kWriters;  // the row that all share

struct Writer {
    std::atomic<uint32_t> done{0};
    std::atomic<uint32_t> gave_up{0};  // answered false, so nothing was written
    std::atomic<uint32_t> wrong{0};    // did not find what it had written last
};

bool write_once(mobile_ap::Session& session, uint32_t writer, Writer& own)
{
    bool found_last = false;
    const bool done = mobile_ap::method(&session, "Write", nullptr, [&](Store& db) {
        found_last = db.one<uint32_t>("SELECT count FROM soak WHERE writer = ?", writer) == own.done;
        db.run("UPDATE soak SET count = count + 1 WHERE writer IN (?, ?)", writer, kAll);
        qcmap_msgr_wwan_status_ind_msg_v01 record = {};
        record.call.conn_status = writer;
        mobile_ap::indicate(db, QCMAP_MSGR_WWAN_STATUS_IND_V01, record);
    });
    if (done && !found_last) ++own.wrong;
    return done;
}

int write_all(const std::string& folder, uint32_t writer, std::atomic<uint32_t>& ready, Writer& own)
{
    setenv("MOBILE_AP_STATE", folder.c_str(), 1);
    mobile_ap::Session session(nullptr, nullptr);
    if (!session.is_ready()) return static_cast<int>(kNeverReady);
    for (++ready; ready < kWriters;)
        mobile_ap::sleep_ms(1);
    while (own.done < kWrites)
        ++(write_once(session, writer, own) ? own.done : own.gave_up);
    return 0;
}

// How many writes are not there.
uint32_t count_lost(const std::string& folder, const Writer* writers)
{
    mobile_ap::Database db;
    db.open(database_of(folder));
    uint32_t lost = 0;
    uint32_t all = 0;
    for (uint32_t writer = 0; writer < kWriters; ++writer) {
        const uint32_t done = writers[writer].done;
        all += done;
        if (db.one<uint32_t>("SELECT count FROM soak WHERE writer = ?", writer) != done) ++lost;
    }
    if (db.one<uint32_t>("SELECT count FROM soak WHERE writer = ?", kAll) != all) ++lost;
    if (mobile_ap::newest_indication(db) != static_cast<int64_t>(all)) ++lost;
    return lost;
}

void make_rows(const std::string& folder)
{
    make_state(folder, 0);
    mobile_ap::Database db;
    db.open(database_of(folder));
    db.run("CREATE TABLE soak (writer INTEGER PRIMARY KEY, count INTEGER NOT NULL)");
    for (uint32_t writer = 0; writer <= kAll; ++writer)
        db.run("INSERT INTO soak VALUES (?, 0)", writer);
}

}  // namespace

bool writers(const Task& task)
{
    struct Totals {
        uint64_t rounds, done, gave_up, lost, wrong, crashed;
    } totals = {};
    const std::string folder = task.folder + "/state";
    do {
        struct Common {
            std::atomic<uint32_t> ready{0};
            Writer writers[kWriters];
        };
        make_rows(folder);
        Shared<Common> common;
        std::vector<pid_t> processes;
        for (uint32_t writer = 0; writer < kWriters; ++writer) {
            processes.push_back(
                start_process([&] { return write_all(folder, writer, common->ready, common->writers[writer]); }, 600));
        }
        for (const pid_t process : processes)
            totals.crashed += wait_for_process(process) != 0 ? 1u : 0u;
        for (const Writer& each : common->writers) {
            totals.done += each.done;
            totals.gave_up += each.gave_up;
            totals.wrong += each.wrong;
        }
        const uint32_t lost = count_lost(folder, common->writers);
        if (lost != 0) report(task, folder, "LOST: " + std::to_string(lost) + " counts of writes are wrong");
        totals.lost += lost;
        ++totals.rounds;
    } while (!task.is_over());
    std::printf(
        "writers: %u processes, %llu writes in %llu rounds: %llu lost, %llu overwritten, %llu crashed; %llu were "
        "refused "
        "for want of time\n",
        kWriters, static_cast<unsigned long long>(totals.done), static_cast<unsigned long long>(totals.rounds),
        static_cast<unsigned long long>(totals.lost), static_cast<unsigned long long>(totals.wrong),
        static_cast<unsigned long long>(totals.crashed), static_cast<unsigned long long>(totals.gave_up));
    return totals.lost + totals.wrong + totals.crashed == 0;
}

}  // namespace soak
