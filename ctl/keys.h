// The table of all keys: every setting once. The reader, the checks, show, the schema, the page of keys, the
// difference, the plan and the undo walk it; an area's source holds its rows and how they are read and written, and
// nothing else.
#ifndef ZR_NEXA_CTL_KEYS_H
#define ZR_NEXA_CTL_KEYS_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "types.h"
#include "value.h"

namespace ctl {

// What a function of the client interface answered.
struct Result {
    uint32_t code = 0;
    const char* function = "";
    std::string words = {};  // instead of a code: why nothing was asked

    bool good() const
    {
        return code == 0 && words.empty();
    }
};

// Calls a function of the client interface and keeps its name beside its answer.
#define CALL(function, ...) (::ctl::Result{static_cast<uint32_t>(function(__VA_ARGS__)), #function})

// Where a setting belongs. Settings of a LAN or profile are read and written with its id or handle.
enum class Scope { kModule, kLan, kProfile };

enum class Shape {
    kUnit,   // a record that one call writes; a document may name a part of it
    kWhole,  // the same, always compared and written whole: what an entry does not say is its fallback, or not there
    kList,   // entries without names, added and removed; a list that a document names is complete
    kKeyed,  // entries under keys, added, changed and removed; one that is not named stays
};

// When it is changed, in this order; what goes is taken away in the reverse order where one stands on the other.
enum class Phase {
    kNewLans,     // what new LANs go by
    kLans,        // VLANs, and with them their LANs
    kAddressing,  // a LAN's own addresses
    kReservations,
    kLanSettings,  // what stands on a LAN
    kModule,
    kProfiles,
    kRoles,
    kProfileSettings,
    kMapping,    // profiles and LANs
    kService,    // what the service does beside
    kRouting,    // which way all packets go
    kCutting,    // what can cut the caller off
    kWriteOnly,  // cannot be undone, so nothing may fail behind it
};

struct Row {
    Scope scope;
    Shape shape;
    Phase phase;
    std::string path;                    // where it stands: "nat.port_mappings"; empty for a unit whose fields say it
    std::vector<Field> fields;           // of a unit with their whole path; of an entry, below the entry
    std::vector<const char*> functions;  // that it calls

    // The whole record: a map of field keys, for a list the entries, for a keyed one the map of them. Nothing is what
    // is not there.
    std::function<Result(uint32_t id, Value* out)> read = nullptr;

    // In place of read where one call reads them all: the records by id.
    std::function<Result(std::map<uint32_t, Value>* out)> read_all = nullptr;

    // Of a unit: writes the whole record. present is what the module has; nothing when it is new.
    std::function<Result(uint32_t id, const Value& wanted, const Value& present)> write = nullptr;

    // Of an entry.
    std::function<Result(uint32_t id, const std::string& key, const Value& entry)> add = nullptr;
    std::function<Result(uint32_t id, const std::string& key, const Value& entry)> remove = nullptr;
    std::function<Result(uint32_t id, const std::string& key, const Value& wanted, const Value& present)> change =
        nullptr;

    std::string about = {};  // of what has a path, for people
    // What it does is finished by the next row's write, which follows it even where that one's values stay the same.
    bool next_follows = false;
    // What it writes is read back before it is in use: refused or cut off in between, it is to be written again.
    bool is_stored_first = false;
    // Fields of other rows of the same LAN or profile that its functions may leave changed.
    std::vector<std::string> also_changes = {};
    size_t most = 0;  // entries
    // A field whose values only one entry can have: an entry is changed to a value that is free, else removed and
    // added.
    std::string only_once = {};
    Type key = {};  // of a keyed one's keys
    // What belongs together in a record or entry that is whole and of normal form.
    std::function<void(const Value& record, const std::string& path, const Complain& complain)> check = nullptr;
    // What the change interrupts, for people; nothing for most. `name` is "LAN 10" or a profile's label.
    std::function<std::string(const std::string& name, const Value& wanted, const Value& present)> interrupts = nullptr;
    // Why going back from wanted to present is impossible; empty: it is possible. Asked of each entry of a list, one of
    // the two being nothing. Asked the other way round it tells why wanted cannot be reached.
    std::function<std::string(const Value& wanted, const Value& present)> not_undone = nullptr;
    std::vector<uint32_t> done_codes = {};     // results that say: done all the same
    std::vector<uint32_t> missing_codes = {};  // results of reading that say: this module does not have it
    bool write_only = false;
    bool is_scope = false;       // a LAN or profile comes and goes with it
    bool is_judged = false;      // beside addressing and entries under keys: the checks of a whole result look at it
    bool needs_copy = false;     // of the module's file, before it is changed
    bool once = false;           // of a list: no two entries may be the same
    std::string note = {};       // what else is to be known of every change, for people
    std::string done_note = {};  // what a result of done_codes means, for people
};

// The rows of all areas, in the order in which they stand in a document.
const std::vector<Row>& rows();

// The one that stands at this path, or has this field. A key that none has is an error of the program: it throws.
const Row& row_of(const std::string& key);

// One function an area, in its source.
std::vector<Row> general_rows();
std::vector<Row> lan_services_rows();
std::vector<Row> lan_addressing_rows();
std::vector<Row> lan_vlan_rows();
std::vector<Row> lan_passthrough_rows();
std::vector<Row> alg_rows();
std::vector<Row> wan_profile_rows();
std::vector<Row> wan_connection_rows();
std::vector<Row> wan_mpdn_mapping_rows();
std::vector<Row> nat_rows();
std::vector<Row> vpn_passthrough_rows();
std::vector<Row> firewall_rows();
std::vector<Row> upnp_rows();
std::vector<Row> gre_rows();

// ---- shapes of settings that many areas have ----

// A switch of the module: set(0 or 1), get(&byte). Preset to a value that is none, so that a state without a word is
// left out.
Row module_flag(Phase phase, Field field, uint32_t (*set)(uint32_t), const char* set_name, uint32_t (*get)(uint8_t*),
                const char* get_name);
// The same of a profile or LAN: set(id, 0 or 1), get(id, &byte).
Row scoped_flag(Scope scope, Phase phase, Field field, uint32_t (*set)(uint32_t, uint32_t), const char* set_name,
                uint32_t (*get)(uint32_t, uint8_t*), const char* get_name);
// A function of the client interface and its name, for these two.
#define NAMED(function) function, #function

}  // namespace ctl

#endif
