#include "state_place.h"

#include <errno.h>
#include <fcntl.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "complain.h"

namespace mobile_ap {
namespace {

constexpr off_t kRoomNeeded = 65536;

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

// Reserves room in an unnamed file, so that a full or unwritable folder is seen before anything is changed in it.
std::string why_not_writable(const std::string& path)
{
    int fd = open(path.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (fd < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == ENOENT || errno == EINVAL)) {
        std::string name = path + "/mobile_ap.probe.XXXXXX";
        fd = mkostemp(name.data(), O_CLOEXEC);
        if (fd >= 0) unlink(name.c_str());
    }
    if (fd < 0) return errno_text(errno);
    const int error = posix_fallocate(fd, 0, kRoomNeeded);
    close(fd);
    return error == 0 ? "" : errno_text(error);
}

}  // namespace

StatePlace find_state_place()
{
    StatePlace place;
    const char* named = getenv("MOBILE_AP_STATE");
    if (named != nullptr && named[0] != '\0') {
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
    struct stat info;
    if (stat(place.path.c_str(), &info) != 0)
        place.problem = errno_text(errno);
    else if (!S_ISDIR(info.st_mode))
        place.problem = "not a folder";
    else
        place.problem = why_not_writable(place.path);
    return place;
}

}  // namespace mobile_ap
