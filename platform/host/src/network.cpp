#include "network.h"

#include "schemas.h"

const char* const mobile_ap::kNetworkSchema = R"(
CREATE TABLE IF NOT EXISTS network (roaming INTEGER NOT NULL);
INSERT INTO network SELECT 0 WHERE NOT EXISTS (SELECT 1 FROM network);
CREATE TABLE IF NOT EXISTS network_refusal (
    profile INTEGER NOT NULL,
    family INTEGER NOT NULL,
    request TEXT NOT NULL CHECK (request IN ('connect', 'disconnect')),
    times INTEGER NOT NULL,
    end_type INTEGER NOT NULL,
    end_code INTEGER NOT NULL,
    PRIMARY KEY (profile, family, request)
) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS network_delay (profile INTEGER PRIMARY KEY, ms INTEGER NOT NULL);
)";

namespace mobile_ap {
namespace {

const char* request_word(CallRequest request)
{
    return request == CallRequest::kConnect ? "connect" : "disconnect";
}

}  // namespace

void refuse_calls(Store& db, const Call& call, CallRequest request, uint32_t times, EndReason reason)
{
    db.run("INSERT OR REPLACE INTO network_refusal VALUES (?, ?, ?, ?, ?, ?)", call.profile, call.family.number,
           request_word(request), times, reason.type, reason.code);
    db.run("DELETE FROM network_refusal WHERE times = 0");
}

std::optional<EndReason> take_refusal(Store& db, const Call& call, CallRequest request)
{
    std::optional<EndReason> reason;
    {
        Query q =
            db.query("SELECT end_type, end_code FROM network_refusal WHERE profile = ? AND family = ? AND request = ?",
                     call.profile, call.family.number, request_word(request));
        if (q.next()) reason = {q.get<uint32_t>(0), q.get<uint32_t>(1)};
    }
    if (reason) {
        db.run("UPDATE network_refusal SET times = times - 1 WHERE profile = ? AND family = ? AND request = ?",
               call.profile, call.family.number, request_word(request));
        db.run("DELETE FROM network_refusal WHERE times = 0");
    }
    return reason;
}

void set_call_delay(Store& db, uint32_t profile, int64_t milliseconds)
{
    db.run("INSERT OR REPLACE INTO network_delay VALUES (?, ?)", profile, milliseconds);
}

int64_t call_delay(Store& db, uint32_t profile)
{
    return db.one<int64_t>("SELECT ms FROM network_delay WHERE profile = ?", profile).value_or(0);
}

void set_roaming(Store& db, bool roams)
{
    db.run("UPDATE network SET roaming = ?", roams);
}

bool is_roaming(Store& db)
{
    return db.one<bool>("SELECT roaming FROM network").value_or(false);
}

}  // namespace mobile_ap
