// Who may do what with the files of a state folder.
#ifndef MOBILE_AP_FOLDER_LOCK_H
#define MOBILE_AP_FOLDER_LOCK_H

#include <sys/stat.h>

#include <string>

#include "patience.h"

namespace mobile_ap {

// Refuses what lies at this path and is not a file: a link leads elsewhere, a FIFO never ends. A file of the user's own
// is closed to everybody else; it is not opened for that, as closing it again would give up SQLite's locks on it.
void keep_private(const std::string& path);

// What others may do with a file or folder of the user's own is taken from them.
void close_to_others(const std::string& path, const struct stat& info);

// mobile_ap.lock. Shared while a database is opened, until its logs are open, too; exclusive while one is made, renamed
// or looked at for that.
class FolderLock {
public:
    enum Kind { kShared, kExclusive };

    FolderLock(const std::string& folder, Kind kind, const Patience& patience = Patience());
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int fd_;
};

}  // namespace mobile_ap

#endif
