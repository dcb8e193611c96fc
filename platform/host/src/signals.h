// What a platform method does about SIGINT and SIGTERM.
#ifndef MOBILE_AP_SIGNALS_H
#define MOBILE_AP_SIGNALS_H

#include <signal.h>

namespace mobile_ap {

// Holds SIGINT and SIGTERM back in this thread. A handler that closes the session from wherever the program stands
// thus never runs inside a method: it runs when the method's transaction is done or undone.
class SignalsHeld {
public:
    SignalsHeld();
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t before_;
};

// A held signal waits for the method to end.
bool signal_waiting();

// Sleeps, but no longer than until a held signal waits. Returns false in that case; no sleep at all is never cut short.
bool sleep_ms(unsigned int milliseconds);

}  // namespace mobile_ap

#endif
