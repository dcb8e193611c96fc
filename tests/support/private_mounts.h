// A process whose mounts nobody else sees.
#ifndef PRIVATE_MOUNTS_H
#define PRIVATE_MOUNTS_H

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>
#include <string>

// Why a test was skipped.
inline constexpr const char* kNoPrivateMounts = "private mounts are not allowed here";

// Mounts made from here on are seen by this process and its children alone. False: the machine does not allow that.
inline bool enter_private_mounts()
{
    const std::string user = std::to_string(getuid());
    const std::string group = std::to_string(getgid());
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1\n";
        std::ofstream("/proc/self/setgroups") << "deny\n";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1\n";
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

#endif
