#include "held.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "checks.h"
#include "document.h"
#include "gre.h"
#include "tree.h"

namespace ctl {
namespace {

constexpr const char* kHeldName = "/held.yaml";
constexpr const char* kLockName = "/lock";

[[noreturn]] void fail(const std::string& path)
{
    throw std::runtime_error(path + ": " + std::strerror(errno));
}

void make_folders(const std::string& path)
{
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string folder = path.substr(0, end);
        struct stat info = {};
        if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST && stat(folder.c_str(), &info) != 0) fail(folder);
        if (end == std::string::npos) return;
    }
}

std::string variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string default_folder()
{
    if (!variable("ZR_NEXACTL_STATE").empty()) return variable("ZR_NEXACTL_STATE");
    if (geteuid() == 0) return "/var/lib/zr_nexactl";
    if (variable("XDG_STATE_HOME").rfind('/', 0) == 0) return variable("XDG_STATE_HOME") + "/zr_nexactl";
    if (variable("HOME").empty()) throw std::runtime_error("no home folder is known; name a folder with --state");
    return variable("HOME") + "/.local/state/zr_nexactl";
}

// Closes a descriptor at the end of its scope.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor()
    {
        if (fd_ >= 0) close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const
    {
        return fd_;
    }

private:
    int fd_;
};

void write_all(int fd, const std::string& text, const std::string& path)
{
    for (size_t done = 0; done < text.size();) {
        const ssize_t size = write(fd, text.data() + done, text.size() - done);
        if (size < 0 && errno != EINTR) fail(path);
        if (size > 0) done += static_cast<size_t>(size);
    }
}

void sync_folder(const std::string& folder)
{
    const Descriptor fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.get() >= 0) fsync(fd.get());
}

}  // namespace

std::string state_folder(const std::string& wish)
{
    std::string folder = wish.empty() ? default_folder() : wish;
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    make_folders(folder);
    struct stat info = {};
    if (stat(folder.c_str(), &info) != 0) fail(folder);
    if (!S_ISDIR(info.st_mode)) throw std::runtime_error(folder + ": not a folder");
    return folder;
}

Lock::Lock(const std::string& folder)
    : fd_(open((folder + kLockName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600))
{
    if (fd_ < 0) fail(folder + kLockName);
    if (flock(fd_, LOCK_EX | LOCK_NB) == 0) {
        const std::string self = std::to_string(getpid()) + "\n";
        if (ftruncate(fd_, 0) != 0 || pwrite(fd_, self.data(), self.size(), 0) < 0) return;  // only to be told
        return;
    }
    char text[32] = "";
    const ssize_t size = pread(fd_, text, sizeof text - 1, 0);
    const std::string pid(text, size > 0 ? std::find(text, text + size, '\n') : text);
    holder_ = pid.empty() ? "another process" : "process " + pid;
}

Lock::~Lock()
{
    close(fd_);
}

int64_t boot_clock_ms()
{
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

std::string boot_name()
{
    std::string name;
    read_file("/proc/sys/kernel/random/boot_id", &name);
    return name.substr(0, name.find('\n'));
}

int64_t seconds_left(const Held& held)
{
    if (held.boot != boot_name()) return 0;
    return std::max<int64_t>(0, (held.until_ms - boot_clock_ms() + 999) / 1000);
}

std::optional<Held> read_held(const std::string& folder)
{
    const std::string path = folder + kHeldName;
    if (access(path.c_str(), F_OK) != 0 && errno == ENOENT) return std::nullopt;
    std::string bytes;
    const std::string problem = read_file(path, &bytes);
    if (!problem.empty()) throw std::runtime_error(path + ": " + problem);
    Problems problems;
    Value document = read_document(bytes, &problems);
    Held held;
    held.boot = document.at("held.boot").text();
    held.until_ms = std::strtoll(document.at("held.until_ms").text().c_str(), nullptr, 10);
    held.seconds = std::strtoll(document.at("held.seconds").text().c_str(), nullptr, 10);
    document.map().erase("held");
    held.document = check_document(std::move(document), &problems, true);
    if (!problems.empty()) throw std::runtime_error("the held state cannot be read\n" + problem_lines(path, problems));
    return held;
}

void write_held(const std::string& folder, const Held& held)
{
    const std::string path = folder + kHeldName;
    const std::string fresh = path + ".new";
    const std::string head = "held: {boot: " + quoted(held.boot) + ", until_ms: " + std::to_string(held.until_ms) +
                             ", seconds: " + std::to_string(held.seconds) + "}\n";
    unlink(fresh.c_str());  // of an apply that was killed
    {
        const Descriptor fd(open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (fd.get() < 0) fail(fresh);
        write_all(fd.get(), head + as_yaml(held.document), fresh);
        if (fsync(fd.get()) != 0) fail(fresh);
    }
    if (rename(fresh.c_str(), path.c_str()) != 0) fail(path);
    sync_folder(folder);
}

void forget_held(const std::string& folder)
{
    const std::string path = folder + kHeldName;
    if (unlink(path.c_str()) != 0 && errno != ENOENT) fail(path);
    sync_folder(folder);
    drop_gre_copy(folder);
}

void start_watchdog(const std::string& folder)
{
    const pid_t child = fork();
    if (child < 0) fail("a process of its own");
    if (child > 0) {
        waitpid(child, nullptr, 0);
        return;
    }
    // Twice, so that nobody waits for it; from here on only what may follow a fork of a program with threads.
    setsid();
    if (fork() != 0) _exit(0);
    const int null = open("/dev/null", O_RDWR);
    for (int fd = 0; fd < 3; ++fd)
        dup2(null, fd);
    execl("/proc/self/exe", "zr_nexactl", "watchdog", "--state", folder.c_str(), static_cast<char*>(nullptr));
    _exit(127);
}

}  // namespace ctl
