#include "events.h"

#include <time.h>

#include <algorithm>

#include "complain.h"
#include "provocations.h"
#include "schemas.h"
#include "service.h"
#include "wan_call.h"

// An event's words stand as a JSON array, so that each is kept as it was given.
const char* const mobile_ap::kEventsSchema = R"(
CREATE TABLE IF NOT EXISTS event (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    due_ms INTEGER NOT NULL,
    words TEXT NOT NULL
);
CREATE INDEX IF NOT EXISTS event_by_time ON event (due_ms);
CREATE TRIGGER IF NOT EXISTS event_is_due AFTER INSERT ON event BEGIN
    UPDATE service SET next_ms = min(next_ms, NEW.due_ms);
END;
)";

namespace mobile_ap {
namespace {

// The first of all that is to come, as the row of a table: what happens, and when. At one moment the service returns
// before anything else, and events from outside come before steps of calls.
constexpr const char* kNextSql =
    "SELECT what, id, family, due_ms FROM ("
    " SELECT 1 AS what, 0 AS id, 0 AS family, back_ms AS due_ms FROM service WHERE back_ms IS NOT NULL"
    " UNION ALL SELECT * FROM (SELECT 2, id, 0, due_ms FROM event"
    "  WHERE (SELECT back_ms IS NULL FROM service) OR json_extract(words, '$[0]') = 'service'"
    "  ORDER BY due_ms, id LIMIT 1)"
    " UNION ALL SELECT 3, profile, family, due_ms FROM wwan_call"
    "  WHERE due_ms IS NOT NULL AND (SELECT back_ms IS NULL FROM service)"
    ") ORDER BY due_ms, what, id, family LIMIT 1";

enum class What { kReturn = 1, kEvent = 2, kCall = 3 };

struct Next {
    What what;
    int64_t id;  // of an event; the profile of a call
    int family;  // of a call
    int64_t due_ms;
};

std::optional<Next> next(Store& db)
{
    Query q = db.query(kNextSql);
    if (!q.next()) return std::nullopt;
    return Next{q.get<What>(0), q.get<int64_t>(1), q.get<int>(2), q.get<int64_t>(3)};
}

std::string words_as_text(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

// An event that cannot be carried out, because its call, profile or bridge is not there at its time, changes nothing.
// Returns why, for people; nothing when it was carried out.
std::string carry_out_event(Store& db, int64_t at, int64_t id)
{
    std::vector<std::string> words;
    {
        Query q = db.query("SELECT atom FROM event, json_each(words) WHERE event.id = ? ORDER BY key", id);
        while (q.next())
            words.push_back(q.get<std::string>(0));
    }
    db.run("DELETE FROM event WHERE id = ?", id);
    db.run_script("SAVEPOINT event");
    std::string reason;
    try {
        parse_provocation(words).carry_out(db, at);
    } catch (const Ending& refusal) {
        reason = refusal_text(refusal.word);
    } catch (const ProvocationError& error) {
        reason = error.reason;
    }
    if (!reason.empty()) db.run_script("ROLLBACK TO event");
    db.run_script("RELEASE event");
    return reason.empty() ? "" : "mobile-AP event \"" + words_as_text(words) + "\": " + reason;
}

}  // namespace

int64_t now_ms()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void schedule(Store& db, int64_t due_ms, const std::vector<std::string>& words)
{
    db.run("INSERT INTO event (due_ms, words) VALUES (?, '[]')", due_ms);
    for (const std::string& word : words)
        db.run("UPDATE event SET words = json_insert(words, '$[#]', ?) WHERE id = last_insert_rowid()", word);
    db.touch_on_commit();  // listeners learn of the time
}

int forget_events(Store& db)
{
    return db.run("DELETE FROM event");
}

int64_t next_due_ms(Store& db)
{
    return db.one<int64_t>("SELECT next_ms FROM service").value_or(INT64_MAX);
}

bool is_overdue(Store& db)
{
    return next_due_ms(db) <= now_ms();
}

// What waited for the service's return happens at that time, not at its own. Complaints wait for the end: whoever reads
// them may take his time, and nobody else is to wait for him.
void carry_out_due(Store& db)
{
    std::vector<std::string> complaints;
    Transaction transaction(db, Access::kWrite);
    const int64_t now = now_ms();
    auto first = next(db);
    for (; first && first->due_ms <= now; first = next(db)) {
        const int64_t at = std::max(first->due_ms, last_start_ms(db));
        switch (first->what) {
            case What::kReturn:
                start_service(db, at);
                break;
            case What::kEvent:
                complaints.push_back(carry_out_event(db, at, first->id));
                break;
            case What::kCall:
                continue_call(db, at, static_cast<uint32_t>(first->id), first->family);
                break;
        }
    }
    db.run("UPDATE service SET next_ms = ?", first ? first->due_ms : INT64_MAX);
    transaction.commit();
    for (const std::string& text : complaints) {
        if (!text.empty()) complain(text);
    }
}

}  // namespace mobile_ap
