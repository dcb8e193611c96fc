#include "signals.h"

#include <stdio_ext.h>
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace cli {
namespace {

char output_buffer[65536];

}  // namespace

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

void own_standard_output()
{
    // A signal that met the lock half taken would wait for it in the handler's exit() for ever.
    __fsetlocking(stdout, FSETLOCKING_BYCALLER);
    setvbuf(stdout, output_buffer, isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, sizeof(output_buffer));
}

void ignore_ending_signals()
{
    signal(SIGTERM, SIG_IGN);
    signal(SIGINT, SIG_IGN);
}

}  // namespace cli
