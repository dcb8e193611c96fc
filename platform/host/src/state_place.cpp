#include "state_place.h"

#include <errno.h>
#include <fcntl.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "complain.h"
#include "folder_lock.h"

namespace mobile_ap {
namespace {

constexpr off_t kRoomNeeded = off_t{64} << 10;
constexpr fsblkcnt_t kPlenty = fsblkcnt_t{16} << 20;

// Makes the folder and those above it. 0 or an errno.
int make_folders(const std::string& path)
{
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string folder = path.substr(0, end);
        if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
            const int error = errno;
            struct stat info;
            if (stat(folder.c_str(), &info) != 0) return error;  // an unwritable folder above is no harm if it is there
        }
        if (end == std::string::npos) return 0;
    }
}

std::string home_folder()
{
    const char* home = getenv("HOME");
    if (home != nullptr && home[0] == '/') return home;
    const passwd* user = getpwuid(getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
}

// Reserves room in an unnamed file. 0 or an errno.
int reserve_room(const std::string& folder)
{
    int fd = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (fd < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == ENOENT || errno == EINVAL)) {
        std::string name = folder + "/mobile_ap.probe.XXXXXX";
        fd = mkostemp(name.data(), O_CLOEXEC);
        if (fd >= 0) unlink(name.c_str());
    }
    if (fd < 0) return errno;
    const int error = posix_fallocate(fd, 0, kRoomNeeded);
    close(fd);
    return error;
}

}  // namespace

StatePlace find_state_place()
{
    StatePlace place;
    const char* named = getenv("MOBILE_AP_STATE");
    const bool is_named = named != nullptr && named[0] != '\0';
    if (is_named) {
        place.path = named;
    } else {
        const char* state_home = getenv("XDG_STATE_HOME");
        if (state_home != nullptr && state_home[0] == '/') {
            place.path = std::string(state_home) + "/zr_nexa";
        } else {
            const std::string home = home_folder();
            place.path = home + "/.local/state/zr_nexa";
            if (home.empty()) {
                place.problem = "no home folder is known; name a folder in MOBILE_AP_STATE";
                return place;
            }
        }
        const int error = make_folders(place.path);
        if (error != 0) {
            place.problem = errno_text(error);
            return place;
        }
    }
    struct stat info = {};
    // The folder that we make is for the user alone, and stays so; one that was named, or linked to, is left as it is.
    if (!is_named && lstat(place.path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) close_to_others(place.path, info);
    const bool is_there = stat(place.path.c_str(), &info) == 0;
    if (is_there && !S_ISDIR(info.st_mode))
        place.problem = "not a folder";
    else if (!is_there || faccessat(AT_FDCWD, place.path.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        place.problem = errno_text(errno);
    return place;
}

bool means_no_room(int error)
{
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

std::string why_no_room(const std::string& folder)
{
    // Reserving takes its time. Nearly always there is room in plenty, and the file system says so at once.
    struct statvfs room = {};
    if (statvfs(folder.c_str(), &room) == 0 && room.f_bavail * room.f_frsize >= kPlenty) return "";
    const int error = reserve_room(folder);
    return means_no_room(error) ? errno_text(error) : "";
}

}  // namespace mobile_ap
