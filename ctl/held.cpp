#include "held.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "checks.h"
#include "document.h"
#include "gre.h"
#include "tell.h"
#include "tree.h"

namespace ctl {
namespace {

constexpr const char* kHeldName = "/held.yaml";
constexpr const char* kUnnamed = "unnamed";  // a line of its own, too
constexpr const char* kReady = "ready\n";
constexpr int kReadyMs = 10000;
constexpr size_t kLeftMax = 20;  // lines

[[noreturn]] void fail(const std::string& path)
{
    throw std::runtime_error(path + ": " + std::strerror(errno));
}

[[noreturn]] void refuse(const std::string& path)
{
    throw UnusableFolder(path + ": " + std::strerror(errno));
}

void make_folders(const std::string& path)
{
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string folder = path.substr(0, end);
        struct stat info = {};
        if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST && stat(folder.c_str(), &info) != 0) refuse(folder);
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
    if (variable("HOME").empty()) throw UnusableFolder("no home folder is known; name a folder with --state");
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

void sync_folder(const std::string& folder)
{
    const Descriptor fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.get() >= 0) fsync(fd.get());
}

std::string holder_of(int fd, const std::string& folder)
{
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    if (fcntl(fd, F_GETLK, &whole) != 0) refuse(folder);
    if (whole.l_type == F_UNLCK) return "";
    const std::string process = whole.l_pid > 0 ? "process " + std::to_string(whole.l_pid) : "another process";
    return process + " holds the lock of " + folder;
}

// The head is one line of its own, so that it can be read without the rest.
std::string head_of(const Held& held)
{
    std::string left;
    for (size_t i = 0; i < std::min(held.left.size(), kLeftMax); ++i)
        left.append(i == 0 ? "" : ", ").append(quoted(held.left[i]));
    return "held: {boot: " + quoted(held.boot) + ", until_ms: " + std::to_string(held.until_ms) +
           ", seconds: " + std::to_string(held.seconds) + ", gre: " + (held.has_gre ? "true" : "false") + ", left: [" +
           left + "]}\n";
}

Held held_with_head(const Value& head)
{
    Held held;
    held.boot = head.child("boot").text();
    held.until_ms = std::strtoll(head.child("until_ms").text().c_str(), nullptr, 10);
    held.seconds = std::strtoll(head.child("seconds").text().c_str(), nullptr, 10);
    held.has_gre = head.child("gre").flag();
    for (const Value& line : head.child("left").list())
        held.left.push_back(line.text());
    return held;
}

// Why they cannot be read comes as lines that name the file.
Held held_of(const std::string& bytes, const std::string& path, std::string* why)
{
    Problems problems;
    Value document = read_document(bytes, &problems);
    Held held = held_with_head(document.child("held"));
    held.unnamed = check_document(document.child(kUnnamed), &problems, true);
    for (const char* const key : {"held", kUnnamed})
        document.map().erase(key);
    held.document = check_document(std::move(document), &problems, true);
    *why = problem_lines(path, problems);
    if (!why->empty()) why->pop_back();  // its last line's end
    return held;
}

bool is_missing(const std::string& path)
{
    return access(path.c_str(), F_OK) != 0 && errno == ENOENT;
}

[[noreturn]] void tell_unreadable(const std::string& path, const std::string& why)
{
    throw UnusableFolder("the state to go back to cannot be read; to keep things as they are, remove " + path + "\n" +
                         why);
}

// What comes before the other end is closed, up to the word that all is well. Who says nothing is not waited for.
std::string answer_from(int fd)
{
    std::string answer;
    const int64_t end = boot_clock_ms() + kReadyMs;
    while (answer.find(kReady) == std::string::npos) {
        pollfd waiting = {fd, POLLIN, 0};
        const int ready = poll(&waiting, 1, static_cast<int>(std::max<int64_t>(0, end - boot_clock_ms())));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return "it gives no answer";
        std::array<char, 512> bytes = {};
        const ssize_t size = read(fd, bytes.data(), bytes.size());
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) break;
        answer.append(bytes.data(), static_cast<size_t>(size));
    }
    return answer;
}

// Where a program with threads has forked: only calls that may follow that.
[[noreturn]] void become_watchdog(const char* folder, int answer)
{
    setsid();
    const pid_t child = fork();  // twice, so that nobody waits for it
    if (child > 0) _exit(0);
    if (child == 0) {
        dup2(open("/dev/null", O_RDWR), STDIN_FILENO);
        dup2(answer, STDOUT_FILENO);
        dup2(answer, STDERR_FILENO);
        execl("/proc/self/exe", "zr_nexactl", "watchdog", "--state", folder, static_cast<char*>(nullptr));
    }
    const int error = errno;
    const ssize_t size = write(answer, &error, sizeof error);
    _exit(size == sizeof error ? 127 : 126);
}

}  // namespace

std::string state_folder(const std::string& wish, bool is_made)
{
    std::string folder = std::filesystem::absolute(wish.empty() ? default_folder() : wish).string();
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    if (is_made) make_folders(folder);
    struct stat info = {};
    if (stat(folder.c_str(), &info) != 0) {
        if (errno == ENOENT && !is_made) return folder;
        refuse(folder);
    }
    if (!S_ISDIR(info.st_mode)) throw UnusableFolder(folder + ": not a folder");
    // What others put there would be applied.
    if (info.st_uid != geteuid()) throw UnusableFolder(folder + ": belongs to another user; take a folder of your own");
    if ((info.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        throw UnusableFolder(folder + ": others may write into it; \"chmod 700\" mends that");
    return folder;
}

Lock::Lock(const std::string& folder, const char* name)
    : fd_(open((folder + name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600))
{
    if (fd_ < 0) refuse(folder + name);
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    if (fcntl(fd_, F_SETLK, &whole) == 0) return;
    holder_ = holder_of(fd_, folder);
    if (holder_.empty()) holder_ = "another process holds the lock of " + folder;  // it did a moment ago
}

Lock::~Lock()
{
    close(fd_);
}

std::string lock_holder(const std::string& folder)
{
    const Descriptor fd(open((folder + "/lock").c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    return fd.get() < 0 ? "" : holder_of(fd.get(), folder);
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

int64_t milliseconds_left(const Held& held)
{
    return held.boot == boot_name() ? std::max<int64_t>(0, held.until_ms - boot_clock_ms()) : 0;
}

int64_t seconds_left(const Held& held)
{
    return (milliseconds_left(held) + 999) / 1000;
}

std::optional<Held> read_held(const std::string& folder)
{
    const std::string path = folder + kHeldName;
    if (is_missing(path)) return std::nullopt;
    std::string bytes;
    const std::string problem = read_file(path, &bytes);
    if (!problem.empty()) tell_unreadable(path, path + ": " + problem);
    std::string why;
    Held held = held_of(bytes, path, &why);
    if (!why.empty()) tell_unreadable(path, why);
    return held;
}

std::optional<Held> read_held_head(const std::string& folder)
{
    const std::string path = folder + kHeldName;
    if (is_missing(path)) return std::nullopt;
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    Problems problems;
    const Value head = read_document(line, &problems);
    if (!problems.empty()) tell_unreadable(path, problem_lines(path, problems));
    return held_with_head(head.child("held"));
}

std::string held_stamp(const std::string& folder)
{
    struct stat info = {};
    if (stat((folder + kHeldName).c_str(), &info) != 0) return "";
    return std::to_string(info.st_ino) + " " + std::to_string(info.st_size) + " " +
           std::to_string(info.st_mtim.tv_sec) + " " + std::to_string(info.st_mtim.tv_nsec);
}

void write_held(const std::string& folder, const Held& held)
{
    const std::string path = folder + kHeldName;
    const std::string fresh = path + ".new";
    const std::string unnamed = held.unnamed.is_nothing() ? "" : std::string(kUnnamed) + ": " + as_json(held.unnamed);
    const std::string bytes = head_of(held) + unnamed + as_yaml(held.document);
    std::string why;
    held_of(bytes, path, &why);
    if (!why.empty()) throw std::runtime_error("what the module has cannot be held to go back to\n" + why);
    unlink(fresh.c_str());  // of an apply that was killed
    try {
        const Descriptor fd(open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (fd.get() < 0) fail(fresh);
        if (!write_all(fd.get(), bytes)) fail(fresh);
        if (fsync(fd.get()) != 0) fail(fresh);
        if (rename(fresh.c_str(), path.c_str()) != 0) fail(path);
    } catch (const std::runtime_error&) {
        unlink(fresh.c_str());
        throw;
    }
    sync_folder(folder);
}

void forget_held(const std::string& folder)
{
    const std::string path = folder + kHeldName;
    drop_gre_copy(folder);  // first: a copy that stays would be another state's
    if (unlink(path.c_str()) != 0 && errno != ENOENT) fail(path);
    sync_folder(folder);
}

void start_watchdog(const std::string& folder)
{
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) fail("no process waits for the confirmation, so nothing is changed");
    const Descriptor answers(ends[0]);
    pid_t child = -1;
    {
        const Descriptor answer(ends[1]);
        child = fork();
        if (child < 0) fail("no process waits for the confirmation, so nothing is changed");
        if (child == 0) become_watchdog(folder.c_str(), answer.get());
    }
    std::string answer = answer_from(answers.get());
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (answer.find(kReady) != std::string::npos) return;
    int error = 0;
    if (answer.size() == sizeof error) {
        std::memcpy(&error, answer.data(), sizeof error);
        answer = std::strerror(error);
    }
    throw std::runtime_error("no process waits for the confirmation, so nothing is changed: " + answer);
}

void leave_the_caller()
{
    std::vector<int> inherited;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        inherited.push_back(std::atoi(entry.path().filename().c_str()));
    for (const int fd : inherited)
        if (fd > STDERR_FILENO) close(fd);
    if (chdir("/") != 0) fail("/");
}

void answer_as_watchdog()
{
    if (!write_all(STDOUT_FILENO, kReady)) fail("the answer");
    dup2(STDIN_FILENO, STDOUT_FILENO);
    dup2(STDIN_FILENO, STDERR_FILENO);
    tell_the_log();
}

}  // namespace ctl
