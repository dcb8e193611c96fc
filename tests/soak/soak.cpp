// Wears the host platform down: processes that are killed, many that write and listen, calls that fail, databases that
// are damaged. Ends with 1 when anything is lost, torn or cut.
#include "soak.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>

namespace soak {

pid_t start_process(const std::function<int()>& work, unsigned int limit_s)
{
    std::fflush(stdout);
    const pid_t process = fork();
    if (process != 0) return process;
    alarm(limit_s);
    const int result = work();
    std::fflush(stdout);
    _exit(result);
}

int wait_for_process(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

void send_stderr_to(const char* path)
{
    const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) return;
    dup2(file, STDERR_FILENO);
    close(file);
}

void report(const Task& task, const std::string& state, const std::string& what)
{
    constexpr int kMost = 20;  // of each process
    static int reports = 0;
    if (++reports > kMost) return;
    std::string line = "  " + what.substr(0, what.find('\n'));
    if (!state.empty()) {
        const std::string kept = task.folder + "/found." + std::to_string(getpid()) + "." + std::to_string(reports);
        std::error_code error;
        std::filesystem::copy(state, kept, std::filesystem::copy_options::recursive, error);
        line += " (" + kept + ")";
    }
    if (reports == kMost) line += "; more are counted only";
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

}  // namespace soak

namespace {

struct Part {
    const char* name;
    double share;  // of the time
    bool (*run)(const soak::Task&);
};

constexpr Part kParts[] = {
    {"kills", 0.30, soak::kills},         {"writers", 0.15, soak::writers}, {"listeners", 0.20, soak::listeners},
    {"calls", 0.20, soak::failing_calls}, {"damage", 0.15, soak::damage},
};

constexpr double kShortMinutes = 2.25;

// In memory where there is a place for that: then the processes are what takes the time.
std::filesystem::path place_for_states()
{
    const std::filesystem::path memory = "/dev/shm";
    return access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

}  // namespace

int main(int argc, char** argv)
try {
    std::string only;
    double minutes = 0;
    uint64_t seed = 1;
    std::vector<std::string> names;
    for (const Part& part : kParts)
        names.emplace_back(part.name);
    CLI::App app("Wears the host platform down");
    app.add_option("part", only, "The only part to run")->check(CLI::IsMember(names));
    app.add_option("--minutes", minutes, "In all, at full size; without it a short run")->check(CLI::PositiveNumber);
    app.add_option("--seed", seed, "Of what is random")->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    for (const char* variable : {"MOBILE_AP_FAULTS", "MOBILE_AP_LOG", "MOBILE_AP_LOG_LEVEL", "MOBILE_AP_JUDGE"})
        unsetenv(variable);
    std::string work = (place_for_states() / "mobile_ap_soak.XXXXXX").string();
    if (mkdtemp(work.data()) == nullptr) throw std::runtime_error("no folder " + work);
    std::printf("seed %llu, states in %s\n", static_cast<unsigned long long>(seed), work.c_str());
    std::fflush(stdout);

    bool good = true;
    for (const Part& part : kParts) {
        if (!only.empty() && only != part.name) continue;
        const double share = only.empty() || minutes == 0 ? part.share : 1;
        const std::chrono::duration<double, std::ratio<60>> time((minutes > 0 ? minutes : kShortMinutes) * share);
        soak::Task task = {work + "/" + part.name, soak::Clock::now(), minutes > 0, seed};
        task.end += std::chrono::duration_cast<soak::Clock::duration>(time);
        std::filesystem::create_directory(task.folder);
        // In a process of its own, which nothing of an earlier part is left in.
        const pid_t process = soak::start_process([&] { return part.run(task) ? 0 : 1; }, 0);
        const int ended = soak::wait_for_process(process);
        if (ended > 1) std::printf("%s: ended with %d\n", part.name, ended);
        if (ended == 0) std::filesystem::remove_all(task.folder);
        good = good && ended == 0;
    }
    if (good) std::filesystem::remove_all(work);
    std::printf("soak: %s\n", good ? "nothing lost" : ("FAILED; what was found stands in " + work).c_str());
    return good ? 0 : 1;
} catch (const std::exception& error) {
    std::fprintf(stderr, "soak: %s\n", error.what());
    return 1;
}
