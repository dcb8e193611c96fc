// What happens at a time: events from outside, steps of calls under way, the service's return.
//
// No process waits for them. What is due stands in the database with its time, and whoever looks first after that time
// carries it out, in order of time: a session's method, a listener, a tool. Nobody ever sees a state that is overdue.
//
// While the service is away (service.h) nothing happens but to the service itself; the rest waits for its return.
#ifndef MOBILE_AP_EVENTS_H
#define MOBILE_AP_EVENTS_H

#include <stdint.h>

#include <string>
#include <vector>

#include "store.h"

namespace mobile_ap {

// Milliseconds since 1970 began, of the wall clock, which all processes share and which goes on over a restart of the
// machine.
int64_t now_ms();

// An event from outside, in the words of provocations.h, at this time.
void schedule(Store& db, int64_t due_ms, const std::vector<std::string>& words);

// Takes all events from outside back that are still to come; returns how many.
int forget_events(Store& db);

// Nothing is due before this time. The state keeps it beside what is due, so that every method can afford to ask.
int64_t next_due_ms(Store& db);

// Something should have been carried out by now. For a transaction that wants to see or change the state.
bool is_overdue(Store& db);

// Carries out what is due, in a transaction of its own.
void carry_out_due(Store& db);

// Runs work(transaction) in a transaction on a state in which nothing is overdue.
template <class Work>
auto on_current_state(Store& db, Access access, const Work& work)
{
    for (;; carry_out_due(db)) {
        Transaction transaction(db, access);
        if (!is_overdue(db)) return work(transaction);
    }
}

}  // namespace mobile_ap

#endif
