#include "signals.h"

#include <zr_nexa_client_api.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace cli {

void on_signal(int signo)
{
    if (signo != SIGTERM && signo != SIGINT) {
        printf("Receiver unexpected signal %d\r\n", signo);
        return;
    }
    ignore_ending_signals();
    zr_nexa_client_uninit();
    exit(0);
}

void ignore_ending_signals()
{
    signal(SIGTERM, SIG_IGN);
    signal(SIGINT, SIG_IGN);
}

}  // namespace cli
