// The diagnostic log: msg_sprintf, and where MOBILE_AP_LOG sends it.
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include <atomic>

#include "diag_msg.h"
#include "utc_time.h"

namespace {

// No malloc, no locks and no time zone here: a signal handler may have interrupted any of them.

enum Target { kUnknown, kOff, kDescriptor, kSyslog };

constexpr size_t kTextSize = 3000;
constexpr size_t kLineSize = 4096;  // one write of this size is never torn, on a pipe either
constexpr const char kSyslogSocket[] = "/dev/log";

std::atomic<int> log_target{kUnknown};
std::atomic<int> log_descriptor{-1};
std::atomic<bool> log_debug{false};

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

void complain(const char* what, const char* reason)
{
    char line[1024];
    snprintf(line, sizeof line, "MOBILE_AP_LOG: %.800s: %s\n", what, reason);
    if (write(STDERR_FILENO, line, strlen(line)) < 0) return;  // nobody left to tell
}

int connect_to_syslog()
{
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0) return -1;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, kSyslogSocket, sizeof kSyslogSocket);
    // Through a pointer of the generic type, as the socket calls want it.
    const void* generic = &address;
    if (connect(fd, static_cast<const sockaddr*>(generic), sizeof address) == 0) return fd;
    const int error = errno;
    close(fd);
    errno = error;
    return -1;
}

// Returns the target. Two threads may come here at once: the first one's descriptor is used, the other's closed.
int choose_target()
{
    const char* wish = getenv("MOBILE_AP_LOG");
    const char* level = getenv("MOBILE_AP_LOG_LEVEL");
    log_debug = level != nullptr && strcmp(level, "debug") == 0;
    int target = kOff;
    int fd = -1;
    if (wish == nullptr || wish[0] == '\0') {
        target = kOff;
    } else if (strcmp(wish, "stderr") == 0) {
        target = kDescriptor;
        fd = STDERR_FILENO;
    } else if (strcmp(wish, "syslog") == 0) {
        fd = connect_to_syslog();
        target = fd >= 0 ? kSyslog : kOff;
        if (fd < 0) complain(kSyslogSocket, strerrordesc_np(errno));
    } else if (strncmp(wish, "file:", 5) == 0) {
        fd = open(wish + 5, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0600);
        target = fd >= 0 ? kDescriptor : kOff;
        if (fd < 0) complain(wish + 5, strerrordesc_np(errno));
    } else {
        complain(wish, "is neither stderr, syslog nor file:PATH");
    }
    int unset = -1;
    if (fd >= 0 && !log_descriptor.compare_exchange_strong(unset, fd) && fd != STDERR_FILENO) close(fd);
    log_target = target;
    return target;
}

// "2025-11-20T11:20:33.123Z"
size_t put_time(char* out, size_t size)
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const mobile_ap::UtcTime utc = mobile_ap::utc_time(now.tv_sec);
    const int length = snprintf(out, size, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.year, utc.month, utc.day,
                                utc.hour, utc.minute, utc.second, static_cast<int>(now.tv_nsec / 1000000));
    return length > 0 ? static_cast<size_t>(length) : 0;
}

// Copies text so that it stays one line: control bytes as \xNN, a backslash doubled; cut, with "...", to the room.
size_t put_escaped(char* out, size_t room, const char* text, bool cut)
{
    constexpr char kDigits[] = "0123456789abcdef";
    constexpr size_t kMarkSize = 3;
    size_t used = 0;
    for (; *text != '\0'; ++text) {
        const unsigned char byte = static_cast<unsigned char>(*text);
        const bool control = byte < 0x20 || byte == 0x7f;
        const size_t needed = control ? 4 : byte == '\\' ? 2 : 1;
        if (used + needed + kMarkSize > room) {
            cut = true;
            break;
        }
        if (control) {
            out[used++] = '\\';
            out[used++] = 'x';
            out[used++] = kDigits[byte >> 4];
            out[used++] = kDigits[byte & 15];
        } else {
            if (byte == '\\') out[used++] = '\\';
            out[used++] = static_cast<char>(byte);
        }
    }
    for (size_t i = 0; cut && i < kMarkSize; ++i)
        out[used++] = '.';
    return used;
}

}  // namespace

extern "C" void msg_sprintf(const msg_const_type* record, ...)
{
    int target = log_target;
    if (target == kOff) return;
    const int caller_errno = errno;
    const SignalsBlocked blocked;
    if (target == kUnknown) target = choose_target();
    const bool is_debug = (record->ss_mask & (MSG_LEVEL_HIGH | MSG_LEVEL_ERROR)) == 0;
    if (target == kOff || (is_debug && !log_debug)) {
        errno = caller_errno;
        return;
    }

    char text[kTextSize];
    va_list arguments;
    va_start(arguments, record);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = vsnprintf(text, sizeof text, record->fmt, arguments);
#pragma GCC diagnostic pop
    va_end(arguments);
    if (length < 0) text[0] = '\0';

    const bool is_error = (record->ss_mask & MSG_LEVEL_ERROR) != 0;
    char line[kLineSize];
    size_t used = 0;
    if (target == kSyslog) {
        const int priority = 8 + (is_error ? 3 : is_debug ? 7 : 6);  // facility user
        used = static_cast<size_t>(snprintf(line, sizeof line, "<%d>mobile_ap[%d]:", priority, getpid()));
    } else {
        used = put_time(line, sizeof line);
    }
    const char* level = is_error ? " ERROR " : is_debug ? " DEBUG " : " INFO  ";
    memcpy(line + used, level, strlen(level));
    used += strlen(level);
    used += put_escaped(line + used, sizeof line - used - 1, text, length >= static_cast<int>(sizeof text));
    if (target == kDescriptor) line[used++] = '\n';
    if (write(log_descriptor, line, used) < 0) {
        // A full disk or a stopped syslog costs log lines, never the work.
    }
    errno = caller_errno;
}
