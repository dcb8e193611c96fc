#include "service.h"

#include "schemas.h"
#include "wan_call.h"

//   started_ms   when it started last; 0: it never was away
//   back_ms      when it will be back; NULL: it is there
//   next_ms      nothing is due before this time (events.h)
const char* const mobile_ap::kServiceSchema = R"(
CREATE TABLE IF NOT EXISTS service (
    started_ms INTEGER NOT NULL DEFAULT 0,
    back_ms INTEGER,
    next_ms INTEGER NOT NULL DEFAULT 9223372036854775807
);
INSERT INTO service (started_ms) SELECT 0 WHERE NOT EXISTS (SELECT 1 FROM service);
CREATE TRIGGER IF NOT EXISTS return_is_due AFTER UPDATE OF back_ms ON service WHEN NEW.back_ms IS NOT NULL BEGIN
    UPDATE service SET next_ms = min(next_ms, NEW.back_ms);
END;
)";

namespace mobile_ap {

bool is_away(Store& db)
{
    return db.one<int64_t>("SELECT back_ms FROM service").has_value();
}

void leave(Store& db, int64_t at, int64_t milliseconds)
{
    db.run("UPDATE service SET back_ms = ?", at + milliseconds);
    db.touch_on_commit();  // listeners learn of the time
}

void restart(Store& db, int64_t at, int64_t milliseconds)
{
    drop_all(db, at);
    leave(db, at, milliseconds);
}

void start_service(Store& db, int64_t at)
{
    db.run("UPDATE service SET started_ms = ?, back_ms = NULL", at);
    db.run("UPDATE nat_service SET routing_behind_in_force = routing_behind");
    autoconnect(db, at);
}

int64_t last_start_ms(Store& db)
{
    return db.one<int64_t>("SELECT started_ms FROM service").value_or(0);
}

}  // namespace mobile_ap
