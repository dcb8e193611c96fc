#include "session.h"

#include <stdlib.h>

#include <new>

#include "complain.h"
#include "diag_msg.h"
#include "events.h"
#include "service.h"
#include "signals.h"
#include "state_place.h"

namespace mobile_ap {
namespace {

constexpr uint32_t kLevelDebug = 0x1;

void trace(const char* name, bool good, qmi_error_type_v01 word)
{
    static constexpr msg_const_type kRecord = {1, 66, kLevelDebug, "[%s]%s(): %s, error %d", "session"};
    msg_sprintf(&kRecord, "MOBILE_AP", name, good ? "true" : "false", static_cast<int>(word), 0, 0, 0);
}

qmi_error_type_v01 error_word(int sqlite_code)
{
    switch (sqlite_code & 0xff) {
        case SQLITE_BUSY:
            return signal_waiting() ? QMI_ERR_ABORTED_V01 : QMI_ERR_INTERNAL_V01;
        case SQLITE_FULL:
        case SQLITE_NOMEM:
            return QMI_ERR_NO_MEMORY_V01;
        default:
            return QMI_ERR_INTERNAL_V01;
    }
}

}  // namespace

Session::Session(client_status_ind_t callback, void* user) : listener_(callback, user)
{
    const SignalsHeld held;
    try {
        const char* faults = getenv("MOBILE_AP_FAULTS");
        std::string bad_word;
        if (faults != nullptr && !faults_.parse(faults, &bad_word)) {
            complain("MOBILE_AP_FAULTS: \"" + bad_word + "\" makes no sense; the service is not ready");
            return;
        }
        const char* judge = getenv("MOBILE_AP_JUDGE");
        Judging judging = Judging::kOff;
        if (judge != nullptr && !parse_judging(judge, &judging)) {
            complain("MOBILE_AP_JUDGE: \"" + std::string(judge) + "\" makes no sense; the service is not ready");
            return;
        }
        store_.set_judging(judging);
        const StatePlace place = find_state_place();
        folder_ = place.path;
        std::string where = folder_;
        std::string problem = place.problem;
        if (problem.empty()) {
            where = state_file(folder_);
            problem = open_state(store_, folder_);
        }
        if (problem.empty()) {
            handle_ = mobile_ap_handle(store_);
            ready_ = true;
        } else if (!signal_waiting()) {
            complain("mobile-AP state " + where + ": " + problem + "; the service is not ready");
        }
    } catch (const DatabaseError& error) {
        explain(error);
    } catch (const std::bad_alloc&) {
        ready_ = false;
    }
}

Session::~Session()
{
    const SignalsHeld held;
    listener_.stop();
    store_.close();
    try {
        const std::string words = faults_.never_reached();
        if (!words.empty()) complain("MOBILE_AP_FAULTS: never reached: " + words);
    } catch (const std::bad_alloc&) {
        return;
    }
}

// Tells once per session why a method failed that should not have.
void Session::explain(const DatabaseError& error)
{
    if (signal_waiting() || explained_.exchange(true)) return;
    try {
        complain("mobile-AP state " + store_.path() + ": " + error.reason);
    } catch (const std::bad_alloc&) {
        return;
    }
}

// Runs the work of one method with what MOBILE_AP_FAULTS has to say about it. Nothing is thrown past here.
template <class Work>
bool Session::with_faults(const char* name, qmi_error_type_v01* err, const Work& work)
{
    const SignalsHeld held;
    Outcome outcome = {false, QMI_ERR_NO_MEMORY_V01};
    try {
        const Misbehaviour fault = faults_.reach(name);
        if (!sleep_ms(fault.delay_ms))
            outcome = {false, QMI_ERR_ABORTED_V01};
        else if (fault.fail_with)
            outcome = {false, static_cast<qmi_error_type_v01>(*fault.fail_with)};
        else
            outcome = work(fault);
        if (fault.ok_with) outcome = {true, static_cast<qmi_error_type_v01>(*fault.ok_with)};
    } catch (const DatabaseError& error) {
        outcome = {false, error_word(error.code)};
        explain(error);
    } catch (const std::bad_alloc&) {
        outcome = {false, QMI_ERR_NO_MEMORY_V01};
    }
    if (err != nullptr) *err = outcome.word;
    trace(name, outcome.good, outcome.word);
    return outcome.good;
}

bool Session::run(const char* name, Access access, qmi_error_type_v01* err, const Body& body)
{
    return with_faults(name, err, [&](const Misbehaviour& fault) -> Outcome {
        if (!ready_) return {false, QMI_ERR_INTERNAL_V01};
        const std::lock_guard<std::mutex> lock(one_at_a_time_);
        return perform(access, body, fault.hold_ms);
    });
}

// Opens the database that has taken the place of the one that was open.
void Session::follow_database()
{
    if (!store_.replaced()) return;
    const std::string problem = open_state(store_, folder_);
    if (!problem.empty()) throw DatabaseError{SQLITE_CANTOPEN, problem};
}

Session::Outcome Session::perform(Access access, const Body& body, unsigned int hold_ms)
{
    follow_database();
    return on_current_state(store_, access, [&](Transaction& transaction) -> Outcome {
        if (is_away(store_)) return {false, QMI_ERR_INTERNAL_V01};
        Ending ending = {true, QMI_ERR_NONE_V01, true};
        try {
            body(store_);
        } catch (const Ending& thrown) {
            ending = thrown;
        }
        if (!sleep_ms(hold_ms)) return {false, QMI_ERR_ABORTED_V01};
        if (ending.keeps_changes) transaction.commit();
        return {ending.good, ending.word};
    });
}

// The service has gone away since the session was opened. A state that cannot be read is the next method's to explain.
bool Session::service_is_away()
{
    const std::lock_guard<std::mutex> lock(one_at_a_time_);
    try {
        return on_current_state(store_, Access::kRead, [&](Transaction&) { return is_away(store_); });
    } catch (const DatabaseError&) {
        return false;
    }
}

bool Session::is_ready()
{
    const SignalsHeld held;
    try {
        const Misbehaviour fault = faults_.reach("IsReady");
        sleep_ms(fault.delay_ms);
        if (!ready_ || fault.not_ready) return false;
        {
            const std::lock_guard<std::mutex> lock(one_at_a_time_);
            follow_database();
        }
        return !service_is_away();
    } catch (const DatabaseError& error) {
        explain(error);
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool Session::enable(qmi_error_type_v01* err)
{
    return with_faults("EnableMobileAP_Ext", err, [&](const Misbehaviour& fault) -> Outcome {
        if (!ready_) return {false, QMI_ERR_INTERNAL_V01};
        if (!sleep_ms(fault.hold_ms)) return {false, QMI_ERR_ABORTED_V01};
        const std::lock_guard<std::mutex> lock(one_at_a_time_);
        follow_database();
        return on_current_state(store_, Access::kRead, [&](Transaction&) -> Outcome {
            if (is_away(store_)) return {false, QMI_ERR_INTERNAL_V01};
            if (listener_.is_running()) return {true, QMI_ERR_NONE_V01};
            const bool started = listener_.start(store_.path(), newest_indication(store_));
            return {started, started ? QMI_ERR_NONE_V01 : QMI_ERR_NO_MEMORY_V01};
        });
    });
}

// Also true for a session that was never enabled, or never ready: there is nothing left to do then. When it fails, it
// ends the delivery all the same: whoever closes a session goes on to give up what the callback reads.
bool Session::disable(qmi_error_type_v01* err)
{
    const SignalsHeld held;
    const bool good = with_faults("DisableMobileAP", err, [&](const Misbehaviour& fault) -> Outcome {
        if (listener_.is_this_thread()) return {false, QMI_ERR_INTERNAL_V01};
        sleep_ms(fault.hold_ms);
        if (ready_ && service_is_away()) return {false, QMI_ERR_INTERNAL_V01};
        return {true, QMI_ERR_NONE_V01};
    });
    if (!listener_.is_this_thread()) listener_.stop();
    return good;
}

}  // namespace mobile_ap

// ---- the client class ----

QCMAP_Client::QCMAP_Client(client_status_ind_t indication_cb, qcmap_msgr_arch_type_enum_v01, void* user)
    : mobile_ap_handle(0), session_(nullptr)
{
    const mobile_ap::SignalsHeld held;
    session_ = new (std::nothrow) Session(indication_cb, user);
    if (session_ != nullptr) mobile_ap_handle = session_->handle();
}

QCMAP_Client::~QCMAP_Client()
{
    const mobile_ap::SignalsHeld held;
    delete session_;
    session_ = nullptr;
}

bool QCMAP_Client::IsReady()
{
    return session_ != nullptr && session_->is_ready();
}

bool QCMAP_Client::EnableMobileAP_Ext(qmi_error_type_v01* err, unsigned long long)
{
    return session_ != nullptr ? session_->enable(err) : mobile_ap::no_session(err);
}

bool QCMAP_Client::DisableMobileAP(qmi_error_type_v01* err)
{
    if (session_ != nullptr) return session_->disable(err);
    if (err != nullptr) *err = QMI_ERR_NONE_V01;
    return true;
}
