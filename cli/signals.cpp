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
    block_ending_signals();
    zr_nexa_client_uninit();
    exit(0);
}

void block_ending_signals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
}

}  // namespace cli
