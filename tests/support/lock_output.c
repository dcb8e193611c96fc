/* Preloaded into the tool: another thread holds standard output's lock from before main() to the end of the process.
   Whoever asks for that lock stands still. */
#include <pthread.h>
#include <semaphore.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

static sem_t locked;

static void* hold(void* unused)
{
    flockfile(stdout);
    sem_post(&locked);
    for (;;)
        pause();
    return unused;
}

__attribute__((constructor)) static void lock_output(void)
{
    pthread_t holder;
    if (sem_init(&locked, 0, 0) != 0 || pthread_create(&holder, NULL, hold, NULL) != 0) abort();
    while (sem_wait(&locked) != 0) {
    }
}
