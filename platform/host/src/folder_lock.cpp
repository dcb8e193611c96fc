#include "folder_lock.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "complain.h"
#include "database.h"

namespace mobile_ap {
namespace {

constexpr mode_t kOthers = S_IRWXG | S_IRWXO;

const char* kind_of(mode_t mode)
{
    switch (mode & S_IFMT) {
        case S_IFLNK:
            return "a symbolic link";
        case S_IFDIR:
            return "a folder";
        case S_IFIFO:
            return "a FIFO";
        case S_IFSOCK:
            return "a socket";
        default:
            return "a device";
    }
}

[[noreturn]] void fail(const std::string& path, const std::string& reason)
{
    throw DatabaseError{SQLITE_CANTOPEN, path.substr(path.rfind('/') + 1) + ": " + reason};
}

int open_lock(const std::string& path)
{
    keep_private(path);
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, S_IRUSR | S_IWUSR);
    if (fd < 0) fail(path, errno_text(errno));
    return fd;
}

// Not so when somebody has cleared the folder in the meantime: others lock another file then.
bool lies_at(int fd, const std::string& path)
{
    struct stat held = {};
    struct stat there = {};
    return fstat(fd, &held) == 0 && lstat(path.c_str(), &there) == 0 && held.st_ino == there.st_ino &&
           held.st_dev == there.st_dev;
}

}  // namespace

void keep_private(const std::string& path)
{
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0) return;  // whoever opens it is told why
    if (!S_ISREG(info.st_mode)) fail(path, std::string(kind_of(info.st_mode)) + ", not a file");
    close_to_others(path, info);
}

void close_to_others(const std::string& path, const struct stat& info)
{
    if (info.st_uid != geteuid() || (info.st_mode & kOthers) == 0) return;
    const mode_t mode = info.st_mode & ~(S_IFMT | kOthers);
    if (fchmodat(AT_FDCWD, path.c_str(), mode, AT_SYMLINK_NOFOLLOW) != 0) return;  // a file system without modes
}

FolderLock::FolderLock(const std::string& folder, Kind kind, const Patience& patience) : fd_(-1)
{
    const std::string path = folder + "/mobile_ap.lock";
    fd_ = open_lock(path);
    for (int attempt = 0;; ++attempt) {
        if (flock(fd_, (kind == kShared ? LOCK_SH : LOCK_EX) | LOCK_NB) == 0) {
            if (lies_at(fd_, path)) return;
            ::close(fd_);
            if (!patience.nap(attempt))
                throw DatabaseError{SQLITE_BUSY, "the folder's lock is taken away again and again"};
            fd_ = open_lock(path);
            continue;
        }
        const int error = errno;
        const bool taken = error == EWOULDBLOCK;
        if ((taken && patience.nap(attempt)) || error == EINTR) continue;
        ::close(fd_);
        if (taken) throw DatabaseError{SQLITE_BUSY, "the folder's lock is taken"};
        fail(path, errno_text(error));
    }
}

FolderLock::~FolderLock()
{
    ::close(fd_);
}

}  // namespace mobile_ap
