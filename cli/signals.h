// SIGINT and SIGTERM end a run in order.
#ifndef ZR_NEXA_CLI_SIGNALS_H
#define ZR_NEXA_CLI_SIGNALS_H

namespace cli {

// The handler of both: closes the session from wherever the command stands and ends with status 0.
void on_signal(int signo);

// From here on the run ends by itself; a second end must not begin inside the first.
void ignore_ending_signals();

}  // namespace cli

#endif
