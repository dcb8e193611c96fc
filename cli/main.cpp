// Entry and signals of the command.
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "dispatch.h"
#include "menu.h"

namespace {

// Standard output's own buffer, so that printing never asks for memory: a signal may end the run at any point.
char output_buffer[65536];

// From here on the run ends by itself; a second end must not begin inside the first.
void block_ending_signals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
}

void on_signal(int signo)
{
    if (signo != SIGTERM && signo != SIGINT) {               // GCOVR_EXCL_BR_LINE
        printf("Receiver unexpected signal %d\r\n", signo);  // GCOVR_EXCL_LINE
        return;                                              // GCOVR_EXCL_LINE
    }
    block_ending_signals();
    zr_nexa_client_uninit();
    exit(0);
}

void ignore_indication(uint32_t, uint32_t, const void*, ...) {}

}  // namespace

int main(int argc, char** argv)
{
    signal(SIGTERM, on_signal);
    signal(SIGINT, on_signal);
    setvbuf(stdout, output_buffer, isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, sizeof(output_buffer));

    if (argc > 2) {
        zr_nexa_client_init(ignore_indication);
        cli::dispatch(argc, argv);
        zr_nexa_client_uninit();
    } else {
        cli::print_menu(argc, argv);
    }
    const unsigned int unslept = sleep(1);
    block_ending_signals();
    return static_cast<int>(unslept);
}
