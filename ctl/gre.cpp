// GRE offload, which is a file's and needs no session.
#include "gre.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <pugixml.hpp>

#include "document.h"

namespace ctl {
namespace {

std::string why()
{
    return std::strerror(errno);
}

std::string folder_of(const std::string& file)
{
    return file.substr(0, file.rfind('/'));
}

// ---- looking ----

// Loads it as the client interface does. Why not; empty: it is loaded.
std::string load(const std::string& file, pugi::xml_document* document)
{
    struct stat status = {};
    if (stat(file.c_str(), &status) != 0) return file + ": " + why();
    if (!S_ISREG(status.st_mode)) return file + " is no file";
    const pugi::xml_parse_result result = document->load_file(file.c_str());
    return result ? "" : file + " cannot be parsed: " + result.description();
}

// The temporary file is the document with an element a line: more than a file without blanks, and a page at least.
uint64_t room_needed(const std::string& file)
{
    struct stat status = {};
    const bool is_there = stat(file.c_str(), &status) == 0;
    return uint64_t{64} * 1024 + (is_there ? 4 * static_cast<uint64_t>(status.st_size) : 0);
}

std::string no_room(const std::string& folder, uint64_t needed)
{
    struct statvfs status = {};
    if (access(folder.c_str(), W_OK) != 0 || statvfs(folder.c_str(), &status) != 0) return folder + ": " + why();
    const uint64_t room = uint64_t{status.f_bavail} * status.f_frsize;
    if (room < needed)
        return folder + " has " + std::to_string(room) + " bytes free, and " + std::to_string(needed) + " are needed";
    if (status.f_files != 0 && status.f_favail == 0) return folder + " has room for no file more";
    return "";
}

// ---- copies ----

std::string copy_in(const std::string& folder)
{
    return folder + "/IPACM_cfg.xml";
}

std::string read_whole(const std::string& file, std::string* content)
{
    const std::string problem = read_file(file, content);
    return problem.empty() ? "" : file + ": " + problem;
}

// From the start of the file, which ends behind it then. It is cut last: a full disk leaves more of it so.
std::string write_over(const std::string& file, const std::string& content, mode_t mode)
{
    const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, mode);
    if (fd < 0) return file + ": " + why();
    const bool is_whole =
        write_all(fd, content) && ftruncate(fd, static_cast<off_t>(content.size())) == 0 && fsync(fd) == 0;
    std::string problem = is_whole ? "" : file + ": " + why();
    close(fd);
    return problem;
}

// ---- the child ----

struct Answer {
    int32_t code;
    zr_nexa_wan_gre_ipacfg_t record;
};

// An answer comes whole or not at all.
bool wait_for_answer(int fd, std::chrono::milliseconds time, Answer* answer)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + time;
    pollfd waiting = {fd, POLLIN, 0};
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        const int ready = poll(&waiting, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready > 0) return read(fd, answer, sizeof *answer) == static_cast<ssize_t>(sizeof *answer);
        if (ready == 0 || errno != EINTR) return false;
    }
}

[[noreturn]] void answer_and_end(const GreFunction& function, const zr_nexa_wan_gre_ipacfg_t& record, int fd,
                                 pid_t parent)
{
    setpgid(0, 0);  // with its shell commands; the terminal's signals are the parent's
    // Nobody is left waiting for the file when the parent is killed.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    Answer answer = {0, record};
    answer.code = function(&answer.record);
    _exit(write(fd, &answer, sizeof answer) == static_cast<ssize_t>(sizeof answer) ? 0 : 1);
}

// ---- the settings ----

// Of reading: the module has no such file, which alone is no failure. None of the interface's codes.
constexpr uint32_t kNoFile = 0xffff;

Value addresses_of(const uint32_t* addresses, uint8_t count)
{
    Value::List list;
    for (uint8_t i = 0; i < count; ++i)
        list.emplace_back(network_ipv4_text(addresses[i]));
    return list;
}

uint8_t put_addresses(const Value& list, uint32_t* addresses)
{
    for (const Value& each : list.list())
        *addresses++ = network_ipv4_of(each.text());
    return static_cast<uint8_t>(list.list().size());
}

Result read_gre(uint32_t, Value* out)
{
    constexpr const char* kName = "zr_nexa_wan_gre_ipacfg_get_v1";
    const std::string problem = gre_unreadable();
    struct stat status = {};
    const bool is_missing = stat(GreFiles().config.c_str(), &status) != 0 && errno == ENOENT;
    if (!problem.empty()) return {is_missing ? kNoFile : 0, kName, problem};
    zr_nexa_wan_gre_ipacfg_t record = {};
    Result result = call_in_child(zr_nexa_wan_gre_ipacfg_get_v1, kName, &record);
    if (!result.good()) return result;
    out->map()["gre.enabled"] = record.gre_enabled != 0;
    out->map()["gre.servers"] = addresses_of(record.server_ipv4_addr, record.num_of_server_addrs);
    out->map()["gre.masks"] = addresses_of(record.subnet_mask, record.num_of_subnet_masks);
    return result;
}

Result write_gre(uint32_t, const Value& wanted, const Value&)
{
    constexpr const char* kName = "zr_nexa_wan_gre_ipacfg_set_v1";
    const std::string problem = gre_unwritable();
    if (!problem.empty()) return {0, kName, problem};
    zr_nexa_wan_gre_ipacfg_t record = {};
    record.gre_enabled = wanted.child("gre.enabled").flag() ? 1 : 0;
    record.num_of_server_addrs = put_addresses(wanted.child("gre.servers"), record.server_ipv4_addr);
    record.num_of_subnet_masks = put_addresses(wanted.child("gre.masks"), record.subnet_mask);
    return call_in_child(zr_nexa_wan_gre_ipacfg_set_v1, kName, &record);
}

// Addresses that the document itself has: those that are there go with the offload.
void check_gre(const Value& record, const std::string& path, const Complain& complain)
{
    if (record.child("gre.enabled").text() != "false") return;
    for (const char* key : {"gre.servers", "gre.masks"}) {
        const Value& addresses = record.child(key);
        if (!addresses.list().empty() && addresses.mark.line != 0)
            complain(addresses, path.empty() ? key : path + "." + key, "only with enabled: true");
    }
}

}  // namespace

std::string gre_unreadable(const GreFiles& files)
{
    pugi::xml_document document;
    return load(files.config, &document);
}

std::string gre_unwritable(const GreFiles& files)
{
    pugi::xml_document document;
    std::string problem = load(files.config, &document);
    if (!problem.empty()) return problem;
    if (!document.child("system").child("IPACM").child("GREFlag"))
        return files.config + " has no GREFlag element to put them in";
    if (access(files.config.c_str(), W_OK) != 0) return files.config + ": " + why();
    for (const std::string& folder : {files.temporary_folder, folder_of(files.config)}) {
        std::string room = no_room(folder, room_needed(files.config));
        if (!room.empty()) return room;
    }
    return "";
}

std::string keep_gre_copy(const std::string& folder, const GreFiles& files)
{
    const std::string copy = copy_in(folder);
    std::string content;
    std::string problem = gre_unreadable(files);  // half a file is nothing to go back to
    if (problem.empty()) problem = read_whole(files.config, &content);
    if (problem.empty()) problem = write_over(copy + ".new", content, 0600);
    if (problem.empty() && rename((copy + ".new").c_str(), copy.c_str()) != 0) problem = copy + ": " + why();
    return problem;
}

std::string restore_gre_copy(const std::string& folder, const GreFiles& files)
{
    std::string copy;
    std::string present;
    std::string problem = read_whole(copy_in(folder), &copy);
    if (!problem.empty()) return problem;
    if (read_file(files.config, &present).empty() && present == copy) return "";
    return write_over(files.config, copy, 0644);
}

void drop_gre_copy(const std::string& folder)
{
    unlink(copy_in(folder).c_str());
}

bool is_gre_copy_in(const std::string& folder)
{
    return access(copy_in(folder).c_str(), F_OK) == 0;
}

Result call_in_child(const GreFunction& function, const char* name, zr_nexa_wan_gre_ipacfg_t* record,
                     std::chrono::milliseconds time)
{
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return {0, name, "no pipe: " + why()};
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) answer_and_end(function, *record, ends[1], parent);
    const std::string no_child = child < 0 ? "no process: " + why() : "";
    close(ends[1]);
    Answer answer = {};
    const bool is_answered = child > 0 && wait_for_answer(ends[0], time, &answer);
    close(ends[0]);
    if (child < 0) return {0, name, no_child};
    if (!is_answered) kill(-child, SIGKILL);
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (!is_answered) return {0, name, "gave no answer in time and was ended; the file may have broken in between"};
    *record = answer.record;
    return {static_cast<uint32_t>(answer.code), name};
}

std::vector<Row> gre_rows()
{
    Row row = {
        Scope::kModule,
        Shape::kUnit,
        Phase::kCutting,
        "",
        {{"gre.enabled", flag(), "GRE offload, which a file of the module's holds; switched off it has no addresses"},
         {"gre.servers", list_of(ipv4(), ZR_NEXA_GRE_SERVERS_MAX), "the GRE servers"},
         {"gre.masks", list_of(ipv4(), ZR_NEXA_GRE_SUBNETS_MAX), "the subnet masks of the servers"}},
        {"zr_nexa_wan_gre_ipacfg_set_v1", "zr_nexa_wan_gre_ipacfg_get_v1"}};
    row.read = read_gre;
    row.write = write_gre;
    row.check = check_gre;
    row.missing_codes = {kNoFile};
    row.needs_copy = true;
    return {row};
}

}  // namespace ctl
