// Writing what may be lost: a line that cannot go out at once is dropped, and whoever writes it never waits for a
// reader nor hears of one that has gone. For signal handlers too: no malloc and no locks.
//
// In a header, as two libraries share it.
#ifndef MOBILE_AP_QUIET_WRITE_H
#define MOBILE_AP_QUIET_WRITE_H

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <stddef.h>
#include <stdio.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>

namespace mobile_ap {

// Holds every signal back in this thread.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked()
    {
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_;
};

// write() that does not wait, whatever the descriptor's flags.
inline ssize_t write_at_once(int fd, const char* line, size_t size)
{
    struct stat info = {};
    if ((fcntl(fd, F_GETFL) & O_NONBLOCK) != 0 || fstat(fd, &info) != 0) return write(fd, line, size);
    if (S_ISSOCK(info.st_mode)) return send(fd, line, size, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (!S_ISFIFO(info.st_mode) && !S_ISCHR(info.st_mode)) return write(fd, line, size);

    // The flag of a pipe or terminal is everyone's who has it open, down to the shell: so the same thing is opened once
    // more, with a flag of its own.
    char name[32];
    snprintf(name, sizeof name, "/proc/self/fd/%d", fd);
    const int own = open(name, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (own >= 0) {
        const ssize_t written = write(own, line, size);
        const int error = errno;
        close(own);
        errno = error;
        return written;
    }
    if (errno == ENXIO) return -1;  // nobody reads
    // Where that is not allowed: what has room takes so much without waiting, unless another writer comes between.
    pollfd room = {fd, POLLOUT, 0};
    if (poll(&room, 1, 0) != 1) return -1;
    return write(fd, line, std::min(size, size_t{PIPE_BUF}));
}

// Returns whether the whole line went out. All signals are blocked: those that the write itself made are taken back.
inline bool quiet_write(int fd, const char* line, size_t size)
{
    sigset_t before;
    sigpending(&before);
    const ssize_t written = write_at_once(fd, line, size);
    if (written >= 0) return static_cast<size_t>(written) == size;
    const int made = errno == EPIPE ? SIGPIPE : errno == EFBIG ? SIGXFSZ : 0;
    if (made != 0 && sigismember(&before, made) == 0) {
        sigset_t taken;
        sigemptyset(&taken);
        sigaddset(&taken, made);
        const timespec at_once = {};
        sigtimedwait(&taken, nullptr, &at_once);
    }
    return false;
}

}  // namespace mobile_ap

#endif
