// The diagnostic log: msg_sprintf, and where MOBILE_AP_LOG sends it.
#include <errno.h>
#include <fcntl.h>
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
#include "quiet_write.h"
#include "utc_time.h"

namespace {

// No malloc, no locks and no time zone here: a signal handler may have interrupted any of them.

using mobile_ap::quiet_write;
using mobile_ap::SignalsBlocked;

enum Target { kUnknown, kOff, kDescriptor, kSyslog };

struct Level {
    char name[8];
    int syslog;
};
constexpr Level kErrorLevel = {" ERROR ", 3};
constexpr Level kInfoLevel = {" INFO  ", 6};
constexpr Level kDebugLevel = {" DEBUG ", 7};

constexpr size_t kTextSize = 3000;
constexpr size_t kLineSize = 4096;  // one write of this size is never torn, on a pipe either
constexpr const char kSyslogSocket[] = "/dev/log";

std::atomic<int> log_target{kUnknown};
std::atomic<int> log_descriptor{-1};
std::atomic<bool> log_debug{false};
std::atomic<int> records_lost{0};  // since the last line that went out

void complain(const char* what, const char* reason)
{
    char line[1024];
    snprintf(line, sizeof line, "MOBILE_AP_LOG: %.800s: %s\n", what, reason);
    quiet_write(STDERR_FILENO, line, strlen(line));
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

// A FIFO that nobody reads keeps what it has room for, as long as a process has it open for reading: this one.
int open_log_file(const char* path)
{
    constexpr int kFlags = O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const int fd = open(path, O_WRONLY | kFlags, 0600);
    return fd < 0 && errno == ENXIO ? open(path, O_RDWR | kFlags, 0600) : fd;
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
        fd = open_log_file(wish + 5);
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

// Returns whether the record went out, as one line.
bool put_record(int target, Level level, const char* text, bool cut)
{
    char line[kLineSize];
    size_t used = 0;
    if (target == kSyslog) {
        const int priority = 8 + level.syslog;  // facility user
        const int length = snprintf(line, sizeof line, "<%d>mobile_ap[%d]:", priority, getpid());
        used = length > 0 ? static_cast<size_t>(length) : 0;
    } else {
        used = put_time(line, sizeof line);
    }
    memcpy(line + used, level.name, sizeof level.name - 1);
    used += sizeof level.name - 1;
    used += put_escaped(line + used, sizeof line - used - 1, text, cut);
    if (target == kDescriptor) line[used++] = '\n';
    return quiet_write(log_descriptor, line, used);
}

// Tells of those that were lost, once there is room again.
bool put_lost(int target, int lost)
{
    char text[64];
    snprintf(text, sizeof text, "%d records lost", lost);
    return put_record(target, kErrorLevel, text, false);
}

}  // namespace

extern "C" void msg_sprintf(const msg_const_type* record, ...)
{
    int target = log_target;
    if (target == kOff) return;
    const int caller_errno = errno;
    const SignalsBlocked blocked;
    if (target == kUnknown) target = choose_target();
    const bool is_error = (record->ss_mask & MSG_LEVEL_ERROR) != 0;
    const bool is_debug = !is_error && (record->ss_mask & MSG_LEVEL_HIGH) == 0;
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

    int lost = records_lost.exchange(0);
    if (lost > 0 && put_lost(target, lost)) lost = 0;
    const bool cut = length >= static_cast<int>(sizeof text);
    if (lost > 0 || !put_record(target, is_error ? kErrorLevel : is_debug ? kDebugLevel : kInfoLevel, text, cut))
        records_lost += lost + 1;
    errno = caller_errno;
}
