/*
 * Listens for what happens to the WWAN connections, in an event loop.
 *
 *   listener [seconds]        without them until SIGINT or SIGTERM
 *
 * The callback runs on a thread of the platform's own, where it may take a note and no more: it writes the event to a
 * pipe, and main() waits for that pipe as it would for sockets and timers. Status 0: it listened and closed in order;
 * 1: no session; 2: a word that makes no sense.
 */
#define _GNU_SOURCE
#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <inttypes.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/signalfd.h>
#include <time.h>
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include "result_words.h"

/* What goes through the pipe: smaller than PIPE_BUF, so that it comes whole or not at all. */
typedef struct {
    uint32_t event_id;
    zr_nexa_ind_call_event_t event;
} note_t;

static int note_pipe[2];    /* read by the loop, written by the callback */
static unsigned notes_lost; /* the pipe was full; the callback's own until the session is closed */

static void on_indication(uint32_t event_id, uint32_t length, const void* data, ...)
{
    note_t note;
    ssize_t written;

    if (length != sizeof(note.event)) return; /* not a call event */
    memset(&note, 0, sizeof(note));
    note.event_id = event_id;
    memcpy(&note.event, data, sizeof(note.event));
    do {
        written = write(note_pipe[1], &note, sizeof(note));
    } while (written < 0 && errno == EINTR);
    if (written < 0) ++notes_lost;
}

static const char* status_words(uint32_t status)
{
    static const char* const words[] = {"connecting",    "connecting failed",    "connected",
                                        "disconnecting", "disconnecting failed", "disconnected"};
    return status >= 1 && status <= 12 ? words[(status - 1) % 6] : "in an unknown state";
}

static void tell(const note_t* note)
{
    const zr_nexa_ind_call_event_t* const event = &note->event;
    const int v6 = event->status >= ZR_NEXA_IND_V6_CONNECTING;
    char address[INET6_ADDRSTRLEN];

    /* The end of a request is told twice: this event has the addresses, the status change only the status. */
    if (note->event_id == ZR_NEXA_IND_STATUS) {
        printf("profile %" PRIu32 ": %s %s\n", event->wwan_handle, v6 ? "IPv6" : "IPv4", status_words(event->status));
    } else if (event->status == ZR_NEXA_IND_V4_CONNECTED || event->status == ZR_NEXA_IND_V6_CONNECTED) {
        inet_ntop(v6 ? AF_INET6 : AF_INET, v6 ? (const void*)event->v6_addr : (const void*)&event->v4_addr, address,
                  sizeof(address));
        printf("profile %" PRIu32 ": %s on %.*s\n", event->wwan_handle, address, (int)sizeof(event->iface_name),
               event->iface_name);
    }
}

static long long now_ms(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

/* Until the time has come, or a signal. */
static void listen_for(int signals, long long seconds)
{
    const long long end = now_ms() + seconds * 1000;
    struct pollfd sources[2] = {{0, POLLIN, 0}, {0, POLLIN, 0}};
    note_t note;

    sources[0].fd = note_pipe[0];
    sources[1].fd = signals;
    for (;;) {
        const long long left = end - now_ms();
        if (seconds >= 0 && left <= 0) return;
        if (poll(sources, 2, seconds < 0 ? -1 : (int)left) < 0 && errno != EINTR) return;
        while (read(note_pipe[0], &note, sizeof(note)) == (ssize_t)sizeof(note)) {
            tell(&note);
        }
        if (sources[1].revents != 0) return;
    }
}

int main(int argc, char** argv)
{
    long long seconds = -1;
    char* end = NULL;
    sigset_t ending;
    uint8_t engine;
    int signals;
    int listens;
    int closed;

    if (argc > 1) seconds = strtoll(argv[1], &end, 10);
    if (argc > 2 || (argc == 2 && (end == argv[1] || *end != '\0' || seconds < 0 || seconds > 86400))) {
        fprintf(stderr, "usage: %s [seconds]\n", argv[0]);
        return 2;
    }
    setvbuf(stdout, NULL, _IOLBF, 0);

    /* Blocked before the session is opened: its threads block them too, and they come to the loop alone. */
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    sigprocmask(SIG_BLOCK, &ending, NULL);
    signals = signalfd(-1, &ending, SFD_CLOEXEC);
    /* Not waited for at either end: a full pipe must not hold the platform's thread up. */
    if (signals < 0 || pipe2(note_pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        perror(argv[0]);
        return EXIT_FAILURE;
    }

    if (!report("open session", zr_nexa_client_init(on_indication))) return EXIT_FAILURE;
    /* A service that is not ready may give no error: only the next call tells that there is no session. */
    listens = report("ask the service", zr_nexa_general_sfe_get_v1(&engine));
    if (listens) {
        puts("listening");
        listen_for(signals, seconds);
    }
    closed = report("close session", zr_nexa_client_uninit()); /* no callback runs behind it */
    if (notes_lost != 0) printf("events lost: %u\n", notes_lost);
    return listens && closed ? EXIT_SUCCESS : EXIT_FAILURE;
}
