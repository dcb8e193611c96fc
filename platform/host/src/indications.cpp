#include "indications.h"

#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>

#include "complain.h"
#include "diag_msg.h"
#include "events.h"
#include "indication_wire.h"
#include "state_file.h"

namespace mobile_ap {
namespace {

constexpr size_t kListenerStackBytes = size_t{2} << 20;
constexpr int kBatch = 32;

// Kept are the newest ones, however old, and all young ones, up to a number that no listener should fall behind.
constexpr int kKeptAlways = 1000;
constexpr int kKeptAtMost = 100000;
constexpr int kRemovedAtOnce = 100;

// The age is looked at in one row alone, the last of those that would go together: what is queued costs the same
// whatever is kept, and what a burst has left goes bit by bit. Ids have no gaps. A time that lies ahead, from before
// the clock was set back, is young.
constexpr const char* kRemoveOld = R"(
WITH ends(oldest, newest) AS (SELECT (SELECT min(id) FROM indication), (SELECT max(id) FROM indication))
DELETE FROM indication WHERE id <= (SELECT coalesce(
    (SELECT id FROM indication
     WHERE id = min(oldest + ? - 1, newest - ?) AND time < strftime('%Y-%m-%dT%H:%M:%fZ', 'now', '-60 seconds')),
    newest - ?) FROM ends)
)";

}  // namespace

void indicate_bytes(Database& db, unsigned int msg_id, const void* record, size_t size)
{
    const WireHeader header = wire_header(size);
    std::vector<uint8_t> wire(header.begin(), header.end());
    const uint8_t* bytes = static_cast<const uint8_t*>(record);
    wire.insert(wire.end(), bytes, bytes + size);
    db.run("INSERT INTO indication (msg_id, wire, time) VALUES (?, ?, strftime('%Y-%m-%dT%H:%M:%fZ', 'now'))", msg_id,
           Blob{wire.data(), wire.size()});
    db.run(kRemoveOld, kRemovedAtOnce, kKeptAlways, kKeptAtMost);
    db.touch_on_commit();
}

uint32_t mobile_ap_handle(Database& db)
{
    return db.one<uint32_t>("SELECT handle FROM mobile_ap").value_or(0);
}

int64_t newest_indication(Database& db)
{
    return db.one<int64_t>("SELECT seq FROM sqlite_sequence WHERE name = 'indication'").value_or(0);
}

Listener::~Listener()
{
    stop();
}

bool Listener::start(const std::string& path, int64_t newest)
{
    path_ = path;
    newest_ = newest;
    in_place_ms_ = now_ms();
    elsewhere_ = false;
    stopping_ = false;
    stop_event_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (stop_event_ < 0) return false;

    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);  // the thread inherits it: handlers run on the program's own threads
    // Callbacks find the same room whatever the user's stack limit, from which a thread's stack is taken by default.
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kListenerStackBytes);
    running_ = pthread_create(&thread_, &attributes, run, this) == 0;
    pthread_attr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (!running_) {
        close(stop_event_);
        stop_event_ = -1;
    }
    return running_;
}

bool Listener::is_this_thread() const
{
    return pthread_equal(listening_thread_, pthread_self()) != 0;
}

void Listener::stop()
{
    if (!running_) return;
    stopping_ = true;
    const uint64_t one = 1;
    if (write(stop_event_, &one, sizeof one) < 0) {
        // The thread looks at stopping_ on its next round.
    }
    pthread_join(thread_, nullptr);
    close(stop_event_);
    stop_event_ = -1;
    listening_thread_ = pthread_t{};
    running_ = false;
}

void* Listener::run(void* listener)
{
    static_cast<Listener*>(listener)->listen();
    return nullptr;
}

void Listener::listen()
{
    listening_thread_ = pthread_self();
    db_.set_patience(kRoundMs / 2);
    // A method that has queued indications touches the database file's times, which tells this from its mere writes.
    // Where no watch is to be had, the rounds alone do.
    watch_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    watch_file();
    pollfd wait[2] = {{stop_event_, POLLIN, 0}, {watch_, POLLIN, 0}};
    while (!stopping_) {
        poll(wait, 2, wait_ms_);
        char events[4096];
        while (watch_ >= 0 && read(watch_, events, sizeof events) > 0) {
        }
        if (!stopping_) deliver_new();
    }
    if (watch_ >= 0) close(watch_);
    watch_ = -1;
    db_.close();
}

void Listener::watch_file() const
{
    if (watch_ >= 0) inotify_add_watch(watch_, path_.c_str(), IN_ATTRIB);
}

void Listener::deliver_new()
{
    for (bool more = true; more;) {
        std::vector<Pending> batch;
        try {
            batch = next_batch();
            if (!batch.empty() && batch.front().id > newest_ + 1) tell_missed(batch.front().id - newest_ - 1);
        } catch (const DatabaseError&) {
            batch.clear();  // nothing is lost: the next round asks again
        } catch (const std::bad_alloc&) {
            batch.clear();
        }
        for (Pending& each : batch) {
            if (stopping_) return;
            newest_ = each.id;
            if (callback_ != nullptr)
                callback_(this, each.msg_id, each.wire.data(), static_cast<unsigned int>(each.wire.size()), user_);
        }
        more = batch.size() == kBatch;
    }
}

std::vector<Listener::Pending> Listener::next_batch()
{
    const int64_t now = now_ms();
    if (db_.is_open() && db_.replaced()) {
        std::vector<Pending> rest = rest_of_replaced();
        if (!rest.empty()) return rest;
        db_.close();
        elsewhere_ = true;
    }
    if (!db_.is_open()) {
        was_read_ = false;
        db_.open(path_);
        watch_file();
    }
    if (elsewhere_) {
        // New is what has been queued in it since it took the other one's place. It may be one that lay aside.
        newest_ = db_.one<int64_t>(
                         "SELECT max(id) FROM indication WHERE time < strftime('%Y-%m-%dT%H:%M:%fZ',"
                         " ? / 1000.0, 'unixepoch')",
                         in_place_ms_)
                      .value_or(0);
        elsewhere_ = false;
    }
    see_to_what_is_due();
    std::vector<Pending> batch = read_batch();
    was_read_ = true;
    in_place_ms_ = now;
    return batch;
}

// What cannot be carried out now, on a full disk say, is tried again with the next round, and stops no delivery. What
// is due in another version's database is not this program's to carry out.
void Listener::see_to_what_is_due()
{
    wait_ms_ = kRoundMs;
    try {
        if (!is_of_this_version(db_)) return;
        if (is_overdue(db_)) carry_out_due(db_);
        wait_ms_ = static_cast<int>(std::clamp<int64_t>(next_due_ms(db_) - mobile_ap::now_ms(), 0, kRoundMs));
    } catch (const DatabaseError&) {
        return;
    }
}

// What is left to hear in a database that another has taken the place of. Without its log open, the other one's would
// be read for it.
std::vector<Listener::Pending> Listener::rest_of_replaced()
{
    try {
        return was_read_ ? read_batch() : std::vector<Pending>();
    } catch (const DatabaseError&) {
        return {};  // it was damaged
    }
}

std::vector<Listener::Pending> Listener::read_batch()
{
    std::vector<Pending> batch;
    const Transaction transaction(db_, Access::kRead);
    Query q = db_.query("SELECT id, msg_id, wire FROM indication WHERE id > ? ORDER BY id LIMIT ?", newest_, kBatch);
    while (q.next())
        batch.push_back({q.get<int64_t>(0), q.get<unsigned int>(1), q.get<std::vector<uint8_t>>(2)});
    return batch;
}

void Listener::tell_missed(int64_t count) const
{
    static constexpr msg_const_type kRecord = {1, 67, MSG_LEVEL_ERROR, "[%s]%s(): %d indications missed",
                                               "indications"};
    msg_sprintf(&kRecord, "MOBILE_AP", __func__, static_cast<int>(count), 0, 0, 0, 0);
    complain("mobile-AP state " + path_ + ": " + std::to_string(count) +
             " indications missed: the callback was busy for too long");
}

}  // namespace mobile_ap
