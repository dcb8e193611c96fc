// SIGINT and SIGTERM end a run in order.
#ifndef ZR_NEXA_CLI_SIGNALS_H
#define ZR_NEXA_CLI_SIGNALS_H

namespace cli {

// The handler of both: closes the session from wherever the command stands and ends with status 0.
void on_signal(int signo);

// Before the handlers are set: a signal may end the run at any point, so printing asks neither for memory nor for a
// lock from then on. Only one thread prints.
void own_standard_output();

// From here on the run ends by itself; a second end must not begin inside the first.
void ignore_ending_signals();

}  // namespace cli

#endif
