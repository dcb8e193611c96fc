#include "indications.h"

#include <errno.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <vector>

#include "indication_wire.h"

namespace mobile_ap {
namespace {

constexpr size_t kListenerStackBytes = size_t{2} << 20;
constexpr int kRoundMs = 200;
constexpr int kKept = 1000;
constexpr int kBatch = 32;

}  // namespace

void indicate_bytes(Database& db, unsigned int msg_id, const void* record, size_t size)
{
    const WireHeader header = wire_header(size);
    std::vector<uint8_t> wire(header.begin(), header.end());
    const uint8_t* bytes = static_cast<const uint8_t*>(record);
    wire.insert(wire.end(), bytes, bytes + size);
    db.run("INSERT INTO indication (msg_id, wire, time) VALUES (?, ?, strftime('%Y-%m-%dT%H:%M:%fZ', 'now'))", msg_id,
           Blob{wire.data(), wire.size()});
    db.run("DELETE FROM indication WHERE id <= (SELECT max(id) FROM indication) - ?", kKept);
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
    const int watch = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    if (watch >= 0) inotify_add_watch(watch, path_.c_str(), IN_ATTRIB);
    pollfd wait[2] = {{stop_event_, POLLIN, 0}, {watch, POLLIN, 0}};
    while (!stopping_) {
        poll(wait, 2, kRoundMs);
        char events[4096];
        while (watch >= 0 && read(watch, events, sizeof events) > 0) {
        }
        if (!stopping_) deliver_new();
    }
    if (watch >= 0) close(watch);
    db_.close();
}

void Listener::deliver_new()
{
    struct Pending {
        int64_t id;
        unsigned int msg_id;
        std::vector<uint8_t> wire;
    };
    for (bool more = true; more;) {
        std::vector<Pending> batch;
        try {
            if (db_.is_open() && db_.replaced()) {
                db_.close();
                newest_ = 0;  // another database: all that is in it is new
            }
            if (!db_.is_open()) db_.open(path_);
            const Transaction transaction(db_, Access::kRead);
            Query q =
                db_.query("SELECT id, msg_id, wire FROM indication WHERE id > ? ORDER BY id LIMIT ?", newest_, kBatch);
            while (q.next())
                batch.push_back({q.get<int64_t>(0), q.get<unsigned int>(1), q.get<std::vector<uint8_t>>(2)});
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

}  // namespace mobile_ap
