#include "service.h"

#include "schemas.h"
#include "wan_call.h"

const char* const mobile_ap::kServiceSchema = R"(
CREATE TABLE IF NOT EXISTS service (started_ms INTEGER NOT NULL, back_ms INTEGER);
INSERT INTO service SELECT 0, NULL WHERE NOT EXISTS (SELECT 1 FROM service);
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
