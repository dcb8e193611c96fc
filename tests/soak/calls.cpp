// Defined in the program, these come before the C library's own for every shared library that asks for them.
#include "calls.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/inotify.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <random>

namespace soak {
namespace {

CallPlan plan;
std::atomic<int> made[kCallKinds];
std::atomic<int> made_in_all;
std::atomic<int> failed;

// Mostly around the few calls by which files come, go and change their names: what others do meanwhile is what matters.
void linger(CallKind kind)
{
    constexpr long kLongestNs = 5000000;
    if (plan.lingers == 0) return;
    thread_local std::minstd_rand random(plan.lingers);
    const bool changes_names = kind == CallKind::kOpen || kind == CallKind::kName;
    if (random() % (changes_names ? 4 : 40) != 0) return;
    const timespec moment = {0, static_cast<long>(random()) % kLongestNs};
    nanosleep(&moment, nullptr);
}

int opened(int fd)
{
    const int error = errno;
    linger(CallKind::kOpen);
    errno = error;
    return fd;
}

// Counts a call. True: it is to fail with plan.error, which stands in errno.
bool fails(CallKind kind)
{
    if (++made_in_all == plan.dies_at) raise(SIGKILL);
    linger(kind);
    const int number = ++made[static_cast<int>(kind)];
    const bool reached = plan.from_then_on ? number >= plan.fails_at : number == plan.fails_at;
    if (plan.fails_at == 0 || kind != plan.kind || !reached) return false;
    ++failed;
    errno = plan.error;
    return true;
}

template <class Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

void plan_calls(const CallPlan& wanted)
{
    plan = wanted;
    for (std::atomic<int>& count : made)
        count = 0;
    made_in_all = 0;
    failed = 0;
}

int calls_made(CallKind kind)
{
    return made[static_cast<int>(kind)];
}

int calls_failed()
{
    return failed;
}

}  // namespace soak

using soak::CallKind;
using soak::fails;
using soak::next;
using soak::opened;

extern "C" {

int open(const char* path, int flags, ...)
{
    static auto* const real = next<int(const char*, int, ...)>("open");
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return fails(CallKind::kOpen) ? -1 : opened(real(path, flags, mode));
}

int open64(const char* path, int flags, ...)
{
    static auto* const real = next<int(const char*, int, ...)>("open64");
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return fails(CallKind::kOpen) ? -1 : opened(real(path, flags, mode));
}

int openat(int folder, const char* path, int flags, ...)
{
    static auto* const real = next<int(int, const char*, int, ...)>("openat");
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return fails(CallKind::kOpen) ? -1 : opened(real(folder, path, flags, mode));
}

ssize_t write(int fd, const void* data, size_t size)
{
    static auto* const real = next<ssize_t(int, const void*, size_t)>("write");
    return fails(CallKind::kWrite) ? -1 : real(fd, data, size);
}

ssize_t pwrite64(int fd, const void* data, size_t size, off64_t place)
{
    static auto* const real = next<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
    if (soak::made_in_all + 1 == soak::plan.dies_at) real(fd, data, size / 2, place);
    return fails(CallKind::kWrite) ? -1 : real(fd, data, size, place);
}

int fsync(int fd)
{
    static auto* const real = next<int(int)>("fsync");
    return fails(CallKind::kSync) ? -1 : real(fd);
}

int fdatasync(int fd)
{
    static auto* const real = next<int(int)>("fdatasync");
    return fails(CallKind::kSync) ? -1 : real(fd);
}

int ftruncate(int fd, off_t size) noexcept
{
    static auto* const real = next<int(int, off_t)>("ftruncate");
    return fails(CallKind::kSize) ? -1 : real(fd, size);
}

int ftruncate64(int fd, off64_t size) noexcept
{
    static auto* const real = next<int(int, off64_t)>("ftruncate64");
    return fails(CallKind::kSize) ? -1 : real(fd, size);
}

int posix_fallocate(int fd, off_t offset, off_t size)
{
    static auto* const real = next<int(int, off_t, off_t)>("posix_fallocate");
    return fails(CallKind::kSize) ? soak::plan.error : real(fd, offset, size);
}

int rename(const char* from, const char* to) noexcept
{
    static auto* const real = next<int(const char*, const char*)>("rename");
    return fails(CallKind::kName) ? -1 : real(from, to);
}

int renameat2(int from_folder, const char* from, int to_folder, const char* to, unsigned int flags) noexcept
{
    static auto* const real = next<int(int, const char*, int, const char*, unsigned int)>("renameat2");
    return fails(CallKind::kName) ? -1 : real(from_folder, from, to_folder, to, flags);
}

int link(const char* from, const char* to) noexcept
{
    static auto* const real = next<int(const char*, const char*)>("link");
    return fails(CallKind::kName) ? -1 : real(from, to);
}

int unlink(const char* path) noexcept
{
    static auto* const real = next<int(const char*)>("unlink");
    return fails(CallKind::kName) ? -1 : real(path);
}

void* mmap(void* place, size_t size, int protection, int flags, int fd, off_t offset) noexcept
{
    static auto* const real = next<void*(void*, size_t, int, int, int, off_t)>("mmap");
    return fails(CallKind::kMap) ? MAP_FAILED : real(place, size, protection, flags, fd, offset);
}

void* mmap64(void* place, size_t size, int protection, int flags, int fd, off64_t offset) noexcept
{
    static auto* const real = next<void*(void*, size_t, int, int, int, off64_t)>("mmap64");
    return fails(CallKind::kMap) ? MAP_FAILED : real(place, size, protection, flags, fd, offset);
}

int inotify_init1(int flags) noexcept
{
    static auto* const real = next<int(int)>("inotify_init1");
    if (!soak::plan.no_watches) return real(flags);
    errno = EMFILE;
    return -1;
}

}  // extern "C"
