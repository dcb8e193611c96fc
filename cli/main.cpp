// Entry of the command.
#include <stdio_ext.h>
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <csignal>
#include <cstdio>

#include "dispatch.h"
#include "menu.h"
#include "signals.h"

namespace {

// Standard output's own buffer, so that printing never asks for memory: a signal may end the run at any point.
char output_buffer[65536];

void ignore_indication(uint32_t, uint32_t, const void*, ...) {}

}  // namespace

int main(int argc, char** argv)
{
    // Only this thread prints. A signal that met standard output's lock half taken would wait for it in the handler's
    // exit() for ever.
    __fsetlocking(stdout, FSETLOCKING_BYCALLER);
    setvbuf(stdout, output_buffer, isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, sizeof(output_buffer));
    signal(SIGTERM, cli::on_signal);
    signal(SIGINT, cli::on_signal);

    if (argc > 2) {
        zr_nexa_client_init(ignore_indication);
        cli::zr_nexa_dispatch(argc, argv);
        zr_nexa_client_uninit();
    } else {
        cli::zr_nexa_print_menu(argc, argv);
    }
    const unsigned int unslept = sleep(1);
    cli::ignore_ending_signals();
    return static_cast<int>(unslept);
}
