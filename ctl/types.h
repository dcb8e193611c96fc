// What a value may be: how it is spelled, what it is held to, and what is said when it is something else.
#ifndef ZR_NEXA_CTL_TYPES_H
#define ZR_NEXA_CTL_TYPES_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "value.h"

namespace ctl {

struct Field;

struct Type {
    enum class Kind {
        kFlag,     // true, false
        kNumber,   // low..high
        kWord,     // one of words
        kIpv4,     // "192.168.1.1"
        kNet,      // "192.168.1.1/24", or with a mask behind the slash where it has holes
        kIpv6,     // "2001:db8::1"
        kIp,       // an address of either family
        kNet6,     // "2001:db8::/32"
        kIpNet,    // a net of either family
        kMac,      // "00:01:02:03:04:0a"
        kText,     // low..high bytes; others than UTF-8 and control bytes as \xNN
        kPorts,    // "80", or "5000-5010"; low..high
        kMasked,   // "16/252": a byte and its mask
        kProfile,  // the label of a profile
        kList,     // low..high values of one kind: fields[0]
        kRecord,   // fields
    };
    Kind kind = Kind::kFlag;
    uint64_t low = 0;
    uint64_t high = 0;
    std::vector<std::string> words = {};  // taken beside what the kind takes
    std::vector<Field> fields = {};
    bool is_set = false;  // a list in which order says nothing; its normal form is sorted
};

// A key of the document.
struct Field {
    enum class Need {
        kLeftAlone,  // what is not said stays as it is
        kNeeded,     // an entry is none without it
        kOptional,   // an entry can be without it
        kDefault,    // an entry that does not say it has the fallback
    };
    std::string key;  // its path, as "dhcp.first"; empty for the entries of a list of plain values
    Type type;
    std::string about;         // what it is, for people: no capital, no full stop
    std::string factory = {};  // what the host platform has at first; empty: nothing, or it does not say
    Need need = Need::kLeftAlone;
    std::string fallback = {};
    std::string same_as = {};  // in place of a fallback: the key whose value it has then
};

Type flag();
Type number(uint64_t low, uint64_t high);
Type word(std::vector<std::string> words);
Type ipv4(std::vector<std::string> words = {});
Type host();  // an IPv4 address that a device can have
Type text(uint64_t low, uint64_t high);
Type plain(Type::Kind kind);  // of one that needs no more
Type ports(uint64_t low, uint64_t high);
Type list_of(Type each, uint64_t most, std::vector<std::string> words = {}, uint64_t least = 0);
Type set_of(Type each, uint64_t most);
Type list_of_records(std::vector<Field> fields, uint64_t most);

Field needed(Field field);
Field optional(Field field);
Field or_else(Field field, std::string fallback);
Field or_same_as(Field field, std::string key);

// What a field has that a record does not say; nothing when it has none.
Value fallback_of(const Field& field, const Value& record);

// Where a value is not what it must be: told with its place.
using Complain = std::function<void(const Value& at, const std::string& path, const std::string& problem)>;

// Brings value, as a document has it, into its normal form. What is wrong is told, and false is returned.
bool normalize(const Type& type, const std::string& path, Value* value, const Complain& complain);

// The same for the fields of a record: what it does not say is filled in where there is a fallback.
bool normalize_record(const std::vector<Field>& fields, const std::string& path, Value* value,
                      const Complain& complain);

// What stands there, for messages: "a list", 010, "no"; a long text is cut.
std::string as_found(const Value& value);

// "no such key", with the one that may have been meant.
std::string no_such_key(const std::string& key, const std::vector<std::string>& known);

// What is allowed, for messages and pages: "true or false", "a whole number, 1 to 50".
std::string allowed(const Type& type);

// Normal spellings and the values of the client interface.
std::string ipv4_text(uint32_t host_order);
uint32_t ipv4_of(const std::string& text);  // host byte order
std::string network_ipv4_text(uint32_t network_order);
uint32_t network_ipv4_of(const std::string& text);
std::string net_text(uint32_t address, uint32_t mask);  // both host byte order
void split_net(const std::string& text, uint32_t* address, uint32_t* mask);
// A LAN's address and its net, host byte order.
struct Net {
    uint32_t address = 0;
    uint32_t mask = 0;

    bool holds(uint32_t other) const
    {
        return ((address ^ other) & mask) == 0;
    }
    bool meets(const Net& other) const
    {
        return ((address ^ other.address) & mask & other.mask) == 0;
    }
};
std::string ipv6_text(const uint8_t* bytes);
void ipv6_of(const std::string& text, uint8_t* bytes);
bool is_ipv6(const std::string& text);
std::string mac_text(const uint8_t* bytes);
void mac_of(const std::string& text, uint8_t* bytes);
std::string ports_text(uint32_t first, uint32_t last);
void split_ports(const std::string& text, uint16_t* first, uint16_t* last);
// Bytes of the module as a text of the document, and back: \xNN for what is no UTF-8 or a control byte, \\ for a
// backslash.
std::string escaped(const char* bytes, size_t size);  // up to a zero, at most size
std::string unescaped(const std::string& text);

// A code of the client interface and its word. The first one that fits counts.
struct Word {
    uint32_t code;
    const char* word;
};
using Words = std::vector<Word>;
std::string word_of(const Words& words, uint32_t code);  // empty for a code without one
uint32_t code_of(const Words& words, const std::string& word);
std::vector<std::string> all_words(const Words& words);

}  // namespace ctl

#endif
