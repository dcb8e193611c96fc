// Databases with every kind of damage: a session is ready or says why not, within seconds; the next one is ready, and
// what was set aside is what was there.
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "session.h"
#include "soak.h"
#include "state.h"

namespace soak {
namespace {

constexpr unsigned int kLimitS = 15;
constexpr size_t kPage = 4096;
constexpr uint64_t kVariants = 1500;
constexpr uint64_t kVariantsOfAShortRun = 300;

void overwrite(std::string& bytes, size_t place, size_t count, Random& random)
{
    for (size_t i = place; i < std::min(bytes.size(), place + count); ++i)
        bytes[i] = static_cast<char>(random());
}

std::string noise(size_t count, Random& random)
{
    std::string bytes(count, '\0');
    overwrite(bytes, 0, count, random);
    return bytes;
}

size_t random_page(const std::string& bytes, Random& random)
{
    return pick(random, std::max<size_t>(bytes.size() / kPage, 1)) * kPage;
}

// ---- what is done to the database's bytes, or to the files beside it ----

void flip_bytes(const std::string&, std::string& bytes, Random& random)
{
    for (size_t i = 1 + pick(random, 20); i > 0; --i)
        bytes[pick(random, bytes.size())] = static_cast<char>(random());
}

void flip_in_header(const std::string&, std::string& bytes, Random& random)
{
    for (size_t i = 1 + pick(random, 3); i > 0; --i)
        bytes[pick(random, 100)] = static_cast<char>(random());
}

// 1 and 2 are formats that SQLite knows.
void other_format(const std::string&, std::string& bytes, Random& random)
{
    bytes[18 + pick(random, 2)] = static_cast<char>(random());
}

void cut(const std::string&, std::string& bytes, Random& random)
{
    bytes.resize(pick(random, bytes.size()));
}

void zero_page(const std::string&, std::string& bytes, Random& random)
{
    const size_t page = random_page(bytes, random);
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(page), std::min(kPage, bytes.size() - page), '\0');
}

void swap_pages(const std::string&, std::string& bytes, Random& random)
{
    const auto one = bytes.begin() + static_cast<std::ptrdiff_t>(random_page(bytes, random));
    const auto other = bytes.begin() + static_cast<std::ptrdiff_t>(random_page(bytes, random));
    std::swap_ranges(one, one + kPage, other);
}

void noise_in_page(const std::string&, std::string& bytes, Random& random)
{
    overwrite(bytes, random_page(bytes, random), 1 + pick(random, kPage), random);
}

void noise_behind(const std::string&, std::string& bytes, Random& random)
{
    bytes += noise(1 + pick(random, 3 * kPage), random);
}

void noise_alone(const std::string&, std::string& bytes, Random& random)
{
    bytes = noise(1 + pick(random, 3 * kPage), random);
}

void noise_in_log(const std::string& folder, std::string&, Random& random)
{
    write_file(database_of(folder) + "-wal", noise(1 + pick(random, 3 * kPage), random));
}

void noise_in_index(const std::string& folder, std::string&, Random& random)
{
    write_file(database_of(folder) + "-shm", noise(1 + pick(random, 9 * kPage), random));
}

void noise_in_journal(const std::string& folder, std::string&, Random& random)
{
    write_file(database_of(folder) + "-journal", noise(1 + pick(random, 3 * kPage), random));
}

void cut_with_log(const std::string& folder, std::string& bytes, Random& random)
{
    cut(folder, bytes, random);
    noise_in_log(folder, bytes, random);
}

struct Damage {
    const char* name;
    void (*make)(const std::string& folder, std::string& bytes, Random& random);
};
constexpr Damage kDamages[] = {
    {"bytes flipped", flip_bytes},
    {"header bytes flipped", flip_in_header},
    {"another file format", other_format},
    {"cut", cut},
    {"a page zeroed", zero_page},
    {"pages swapped", swap_pages},
    {"noise in a page", noise_in_page},
    {"noise behind the end", noise_behind},
    {"noise alone", noise_alone},
    {"noise in the log", noise_in_log},
    {"noise in the log's index", noise_in_index},
    {"noise in a journal", noise_in_journal},
    {"cut, noise in the log", cut_with_log},
};

constexpr int kReady = 0;
constexpr int kNotReady = 10;

// Opens a session, and reads and writes a setting when it is ready. Damage may show as late as there.
int open_once(const std::string& folder)
{
    setenv("MOBILE_AP_STATE", folder.c_str(), 1);
    QCMAP_Client client(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
    if (!client.IsReady()) return kNotReady;
    qmi_error_type_v01 err = QMI_ERR_NONE_V01;
    qcmap_msgr_lan_config_v01 lan = {};
    if (client.GetLANConfig(&lan, &err)) client.SetLANConfig(lan, &err);
    return kReady;
}

struct Totals {
    uint64_t variants, unnoticed, told, aside, findings;
};

class Variant {
public:
    Variant(const Task& task, Totals& totals)
        : task_(task), totals_(totals), whole_(task.folder + "/whole"), state_(task.folder + "/state")
    {
        make_state(whole_, 30);
        bytes_ = read_file(database_of(whole_));
    }

    void run(const Damage& damage, uint64_t number)
    {
        Random random(task_.seed * 1000003 + number);
        copy_state(whole_, state_);
        std::string bytes = bytes_;
        damage.make(state_, bytes, random);
        write_file(database_of(state_), bytes);
        const std::string finding = judge(bytes);
        ++totals_.variants;
        if (finding.empty()) return;
        ++totals_.findings;
        report(task_, state_, std::string(damage.name) + ", variant " + std::to_string(number) + ": " + finding);
    }

private:
    std::string judge(const std::string& bytes)
    {
        const int first = open_process();
        if (first != kReady && first != kNotReady) return "ENDED with " + std::to_string(first);
        if (first == kReady) {
            ++totals_.unnoticed;
        } else {
            ++totals_.told;
            if (read_file(stderr_).find(database_of(state_)) == std::string::npos) return "NOT TOLD";
        }
        const std::vector<std::string> aside = set_aside(state_);
        totals_.aside += aside.size();
        if (aside.size() > 1) return "TWO set aside for one";
        if (aside.size() == 1 && read_file(aside[0]) != bytes) return "CUT: what was set aside is not what was there";
        if (first == kNotReady && aside.empty()) return "NOT SET ASIDE: " + read_file(stderr_);
        const int second = open_process();
        if (second != kReady) return "NOT READY the second time, " + std::to_string(second) + ": " + read_file(stderr_);
        return "";
    }

    int open_process()
    {
        return wait_for_process(start_process(
            [&] {
                send_stderr_to(stderr_.c_str());
                return open_once(state_);
            },
            kLimitS));
    }

    const Task& task_;
    Totals& totals_;
    const std::string whole_;
    const std::string state_;
    const std::string stderr_ = task_.folder + "/stderr";
    std::string bytes_;
};

}  // namespace

bool damage(const Task& task)
{
    Totals totals = {};
    Variant variant(task, totals);
    const uint64_t enough = task.full ? kVariants : kVariantsOfAShortRun;
    for (uint64_t number = 0; number < enough || !task.is_over(); ++number)
        variant.run(kDamages[number % std::size(kDamages)], number);
    std::printf("damage: %llu variants, %llu without harm, %llu told of, %llu set aside: %llu findings\n",
                static_cast<unsigned long long>(totals.variants), static_cast<unsigned long long>(totals.unnoticed),
                static_cast<unsigned long long>(totals.told), static_cast<unsigned long long>(totals.aside),
                static_cast<unsigned long long>(totals.findings));
    return totals.findings == 0;
}

}  // namespace soak
