// What the parts of the soak share: their task, and processes with memory in common.
#ifndef SOAK_H
#define SOAK_H

#include <sys/mman.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <new>
#include <random>
#include <string>

namespace soak {

using Clock = std::chrono::steady_clock;
using Random = std::mt19937_64;

struct Task {
    std::string folder;  // the part's own
    Clock::time_point end;
    bool full;  // the whole size, not CI's
    uint64_t seed;

    bool is_over() const
    {
        return Clock::now() >= end;
    }
};

// Each says on one line what it did, and returns whether nothing was lost.
bool kills(const Task& task);
bool writers(const Task& task);
bool listeners(const Task& task);
bool failing_calls(const Task& task);
bool damage(const Task& task);

// 0 .. count - 1.
inline size_t pick(Random& random, size_t count)
{
    return std::uniform_int_distribution<size_t>(0, count - 1)(random);
}

// A T that child processes share with their parent. Its pages are there when they are touched.
template <class T>
class Shared {
public:
    Shared()
    {
        void* memory = mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        shared_ = new (memory) T();
    }
    ~Shared()
    {
        munmap(shared_, sizeof(T));
    }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    T* operator->() const
    {
        return shared_;
    }
    T& operator*() const
    {
        return *shared_;
    }

private:
    T* shared_;
};

// Runs work in a child process, which ends with its result. One that takes longer than limit_s is ended by SIGALRM.
pid_t start_process(const std::function<int()>& work, unsigned int limit_s);

// Its exit status, or 1000 + the signal that ended it.
int wait_for_process(pid_t process);

// What this process and its children say on standard error goes into this file from now on.
void send_stderr_to(const char* path);

// Says on standard output what was found, and keeps a copy of the state folder, if there is one, for a look at it.
void report(const Task& task, const std::string& state, const std::string& what);

}  // namespace soak

#endif
