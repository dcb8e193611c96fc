// Entry of the command.
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <csignal>

#include "dispatch.h"
#include "menu.h"
#include "signals.h"

namespace {

void ignore_indication(uint32_t, uint32_t, const void*, ...) {}

}  // namespace

int main(int argc, char** argv)
{
    cli::own_standard_output();
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
