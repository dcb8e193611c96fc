#include "cli_test.h"

#include <signals.h>
#include <zr_nexa_client_api.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

using SignalsTest = CliTest;

bool is_ignored(int signo)
{
    struct sigaction action = {};
    sigaction(signo, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

// Printed behind all that the run itself does.
void print_the_end()
{
    fprintf(stderr, "sessions %d, ignores SIGINT %d, SIGTERM %d, SIGHUP %d", scripted::platform().objects,
            is_ignored(SIGINT), is_ignored(SIGTERM), is_ignored(SIGHUP));
}

TEST_F(SignalsTest, BothCloseTheSessionAndEndTheRunOnce)
{
    for (const int signo : {SIGINT, SIGTERM}) {
        EXPECT_EXIT(
            {
                zr_nexa_client_init(nullptr);
                std::atexit(print_the_end);
                cli::on_signal(signo);
            },
            testing::ExitedWithCode(0), "^sessions 0, ignores SIGINT 1, SIGTERM 1, SIGHUP 0$");
    }
}

TEST_F(SignalsTest, AnyOtherIsNamedAndEndsNothing)
{
    EXPECT_EXIT(
        {
            zr_nexa_client_init(nullptr);
            std::atexit(print_the_end);
            std::fputs(printed([] { cli::on_signal(SIGUSR1); }).c_str(), stderr);
            std::exit(7);
        },
        testing::ExitedWithCode(7),
        "^Receiver unexpected signal 10\r\nsessions 1, ignores SIGINT 0, SIGTERM 0, SIGHUP 0$");
}

}  // namespace
