// A state folder, the work that a process does on it, and what must hold behind it.
#ifndef SOAK_STATE_H
#define SOAK_STATE_H

#include <stdint.h>

#include <atomic>
#include <string>
#include <vector>

#include "qcmap_client.h"

namespace soak {

// What the platform has told a process of its work; it outlives the process.
struct Told {
    std::atomic<uint32_t> numbers{0};  // methods done that count up
    std::atomic<uint32_t> entries{0};  // static NAT entries there
    std::atomic<uint32_t> refused{0};  // methods that answered false
    std::atomic<uint32_t> heard{0};    // the last number that an indication brought
    std::atomic<uint32_t> gaps{0};     // between two that were heard
};

constexpr uint32_t kNeverReady = 3;  // what work ends with when no session was ready

// Opens a session on the folder, again when it is not ready, and does so many rounds: a number counted up in the state
// and in an indication at once, a LAN's settings, a static NAT entry of this worker.
int work(const std::string& folder, uint32_t worker, uint32_t rounds, Told& told);

// What a state says of itself. A session that is not ready makes for another attempt.
struct Found {
    int attempts = 0;
    bool ready = false;
    std::string damage;         // of the database; empty: none
    bool torn = false;          // a change is there by half
    uint32_t numbers = 0;       // counted up
    uint32_t entries[64] = {};  // of each worker
};
Found look_at(const std::string& folder, int attempts);

// What is wrong with it behind processes that were told this; empty: nothing. The numbers began at first.
std::string loss(const Found& found, const Told* told, uint32_t workers, uint32_t first);

// A fresh folder with a state in which a worker has done so many rounds.
void make_state(const std::string& folder, uint32_t rounds);
void copy_state(const std::string& from, const std::string& to);  // over what is there

std::string read_file(const std::string& path);
void write_file(const std::string& path, const std::string& bytes);
std::string database_of(const std::string& folder);

// The databases that were set aside there: their paths, without their logs.
std::vector<std::string> set_aside(const std::string& folder);

// What is wrong with them: these bytes must be the database's still, or one of theirs. Empty: nothing.
std::string cut_copies(const std::string& folder, const std::string& bytes);

// Makes the middle of a database unreadable, or gives it another version.
void damage_state(const std::string& folder);
void give_other_version(const std::string& folder);

}  // namespace soak

#endif
