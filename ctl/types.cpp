#include "types.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>

namespace ctl {
namespace {

using Kind = Type::Kind;

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

// A number in decimal digits without leading zeros; nothing for any other text.
std::optional<uint64_t> decimal(std::string_view text)
{
    if (text.empty() || text.size() > 10 || (text.size() > 1 && text[0] == '0')) return std::nullopt;
    uint64_t value = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') return std::nullopt;
        value = value * 10 + static_cast<uint64_t>(digit - '0');
    }
    return value;
}

bool in_range(const Type& type, std::optional<uint64_t> value)
{
    return value && *value >= type.low && *value <= type.high;
}

std::optional<uint32_t> dotted(std::string_view text)
{
    uint32_t address = 0;
    size_t begin = 0;
    for (int part = 0; part < 4; ++part) {
        const size_t end = part < 3 ? text.find('.', begin) : text.size();
        if (end == std::string::npos) return std::nullopt;
        const auto byte = decimal(text.substr(begin, end - begin));
        if (!byte || *byte > 255) return std::nullopt;
        address = address << 8 | static_cast<uint32_t>(*byte);
        begin = end + 1;
    }
    return address;
}

bool is_ipv4(const Type& type, const std::string& text)
{
    const auto address = dotted(text);
    return address && *address >= type.low && (type.high == 0 || *address <= type.high);
}

std::optional<std::string> normal_net(const std::string& text)
{
    const size_t slash = text.find('/');
    if (slash == std::string::npos) return std::nullopt;
    const auto address = dotted(std::string_view(text).substr(0, slash));
    const std::string behind = text.substr(slash + 1);
    const auto bits = decimal(behind);
    const auto mask =
        bits && *bits <= 32 ? std::optional<uint32_t>(*bits == 0 ? 0 : ~uint32_t{0} << (32 - *bits)) : dotted(behind);
    if (!address || !mask) return std::nullopt;
    return net_text(*address, *mask);
}

std::optional<std::string> normal_ipv6(const std::string& text)
{
    uint8_t bytes[16];
    if (inet_pton(AF_INET6, text.c_str(), bytes) != 1) return std::nullopt;
    return ipv6_text(bytes);
}

std::optional<std::string> normal_net6(const std::string& text)
{
    const size_t slash = text.find('/');
    if (slash == std::string::npos) return std::nullopt;
    const auto address = normal_ipv6(text.substr(0, slash));
    const auto bits = decimal(text.substr(slash + 1));
    // The interface takes any byte; a prefix beyond 128 is what a plausibility check is for.
    if (!address || !bits || *bits > 255) return std::nullopt;
    return *address + "/" + std::to_string(*bits);
}

std::optional<std::string> normal_ip_net(const std::string& text)
{
    return is_ipv6(text) ? normal_net6(text) : normal_net(text);
}

std::optional<std::string> normal_mac(std::string text)
{
    if (text.size() != 17) return std::nullopt;
    for (size_t i = 0; i < text.size(); ++i) {
        if (i % 3 == 2 ? text[i] != ':' : std::isxdigit(static_cast<unsigned char>(text[i])) == 0) return std::nullopt;
        text[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
    }
    return text;
}

std::optional<std::string> normal_ports(const Type& type, const std::string& text)
{
    const size_t dash = text.find('-');
    const auto first = decimal(text.substr(0, dash));
    const auto last = dash == std::string::npos ? first : decimal(text.substr(dash + 1));
    if (!in_range(type, first) || !in_range(type, last) || *first > *last) return std::nullopt;
    return ports_text(static_cast<uint32_t>(*first), static_cast<uint32_t>(*last));
}

std::optional<std::string> normal_masked(const std::string& text)
{
    const size_t slash = text.find('/');
    if (slash == std::string::npos) return std::nullopt;
    const auto byte = decimal(text.substr(0, slash));
    const auto mask = decimal(text.substr(slash + 1));
    if (!byte || !mask || *byte > 255 || *mask > 255) return std::nullopt;
    return text;
}

bool is_hex(char c)
{
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

// The escapes of a text are in order.
bool is_escaped(const std::string& text)
{
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') continue;
        if (i + 1 < text.size() && text[i + 1] == '\\')
            ++i;
        else if (i + 3 < text.size() && text[i + 1] == 'x' && is_hex(text[i + 2]) && is_hex(text[i + 3]))
            i += 3;
        else
            return false;
    }
    return true;
}

std::optional<std::string> normal_text(const Type& type, const std::string& text)
{
    if (!is_escaped(text)) return std::nullopt;
    const std::string bytes = unescaped(text);
    if (bytes.size() < type.low || bytes.size() > type.high || bytes.find('\0') != std::string::npos)
        return std::nullopt;
    return escaped(bytes.data(), bytes.size());
}

// Kinds whose values are numbers and words elsewhere too are not taken in quotes: "no" is a text, and 010 is no number.
bool must_be_bare(Kind kind)
{
    return kind == Kind::kFlag || kind == Kind::kNumber;
}

std::optional<std::string> normal_scalar(const Type& type, const Value& value)
{
    const std::string& text = value.text();
    if (std::find(type.words.begin(), type.words.end(), text) != type.words.end()) return text;
    if (must_be_bare(type.kind) && value.quoted()) return std::nullopt;
    switch (type.kind) {
        case Kind::kFlag:
            return text == "true" || text == "false" ? std::optional<std::string>(text) : std::nullopt;
        case Kind::kNumber:
            return in_range(type, decimal(text)) ? std::optional<std::string>(text) : std::nullopt;
        case Kind::kIpv4:
            return is_ipv4(type, text) ? std::optional<std::string>(text) : std::nullopt;
        case Kind::kNet:
            return normal_net(text);
        case Kind::kIpv6:
            return normal_ipv6(text);
        case Kind::kIp:
            return dotted(text) ? std::optional<std::string>(text) : normal_ipv6(text);
        case Kind::kNet6:
            return normal_net6(text);
        case Kind::kIpNet:
            return normal_ip_net(text);
        case Kind::kMac:
            return normal_mac(text);
        case Kind::kText:
            return normal_text(type, text);
        case Kind::kPorts:
            return normal_ports(type, text);
        case Kind::kMasked:
            return normal_masked(text);
        case Kind::kProfile:
            return text.empty() ? std::nullopt : std::optional<std::string>(text);
        case Kind::kWord:
        case Kind::kList:
        case Kind::kRecord:
            return std::nullopt;
    }
    return std::nullopt;
}

bool normalize_list(const Type& type, const std::string& path, Value* value, const Complain& complain)
{
    bool good = true;
    Value::List& list = value->list();
    size_t place = 0;
    const Complain below = [&](const Value& at, const std::string& rest, const std::string& problem) {
        complain(at, path + "[" + std::to_string(place) + "]" + rest, problem);
    };
    for (; place < list.size(); ++place)
        good &= normalize(type.fields[0].type, "", &list[place], below);
    const size_t count = list.size();
    if (count > type.high) {
        complain(*value, path, std::to_string(count) + " entries, " + std::to_string(type.high) + " are the most");
        return false;
    }
    if (count < type.low) {
        complain(*value, path, std::to_string(count) + " entries, " + std::to_string(type.low) + " are the fewest");
        return false;
    }
    if (good && type.is_set) list = sorted(list);
    return good;
}

// How many letters must be changed, put in or left out to make one of the other.
size_t distance(const std::string& a, const std::string& b)
{
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

std::string as_found(const Value& value)
{
    if (value.is_list()) return "a list";
    if (value.is_map()) return "a group of keys";
    const std::string text = shortened(value.text());
    return value.quoted() ? "\"" + text + "\"" : text;
}

Type flag()
{
    return {Kind::kFlag};
}

Type number(uint64_t low, uint64_t high)
{
    return {Kind::kNumber, low, high};
}

Type word(std::vector<std::string> words)
{
    return {Kind::kWord, 0, 0, std::move(words)};
}

Type ipv4(std::vector<std::string> words)
{
    return {Kind::kIpv4, 0, 0, std::move(words)};
}

Type host()
{
    return {Kind::kIpv4, 1, 0xfffffffe};
}

Type text(uint64_t low, uint64_t high)
{
    return {Kind::kText, low, high};
}

Type plain(Type::Kind kind)
{
    return {kind};
}

Type ports(uint64_t low, uint64_t high)
{
    return {Kind::kPorts, low, high};
}

Type list_of(Type each, uint64_t most, std::vector<std::string> words, uint64_t least)
{
    return {Kind::kList, least, most, std::move(words), {{"", std::move(each), ""}}};
}

Type set_of(Type each, uint64_t most)
{
    Type type = list_of(std::move(each), most);
    type.is_set = true;
    return type;
}

Type list_of_records(std::vector<Field> fields, uint64_t most)
{
    Type record = {Kind::kRecord};
    record.fields = std::move(fields);
    return list_of(std::move(record), most);
}

Field needed(Field field)
{
    field.need = Field::Need::kNeeded;
    return field;
}

Field optional(Field field)
{
    field.need = Field::Need::kOptional;
    return field;
}

Field or_else(Field field, std::string fallback)
{
    field.need = Field::Need::kDefault;
    field.fallback = std::move(fallback);
    return field;
}

Field or_same_as(Field field, std::string key)
{
    field.need = Field::Need::kDefault;
    field.same_as = std::move(key);
    return field;
}

Value fallback_of(const Field& field, const Value& record)
{
    if (field.need != Field::Need::kDefault) return {};
    return field.same_as.empty() ? Value(field.fallback) : record.at(field.same_as);
}

bool normalize_record(const std::vector<Field>& fields, const std::string& path, Value* value, const Complain& complain)
{
    bool good = true;
    Value::Map& record = value->map();
    // Paths are put together only where something is wrong.
    const Complain below = [&](const Value& at, const std::string& rest, const std::string& problem) {
        complain(at, path + "." + rest, problem);
    };
    for (const auto& [key, each] : record) {
        const bool known =
            std::any_of(fields.begin(), fields.end(), [&name = key](const Field& field) { return field.key == name; });
        if (known) continue;
        std::vector<std::string> keys;
        keys.reserve(fields.size());
        for (const Field& field : fields)
            keys.push_back(field.key);
        below(each, key, no_such_key(key, keys));
        good = false;
    }
    for (const Field& field : fields) {
        const auto found = record.find(field.key);
        if (found != record.end()) {
            good &= normalize(field.type, field.key, &found->second, below);
        } else if (const Value fallback = fallback_of(field, *value); !fallback.is_nothing()) {
            record[field.key] = fallback;
        } else if (field.need == Field::Need::kNeeded) {
            complain(*value, path, field.key + " is missing");
            good = false;
        }
    }
    return good;
}

std::string no_such_key(const std::string& key, const std::vector<std::string>& known)
{
    std::string closest;
    size_t least = SIZE_MAX;
    for (const std::string& each : known) {
        if (key.size() > 100) break;
        size_t steps = distance(key, each);
        const bool begins_so = key.size() > 1 && each.rfind(key, 0) == 0;
        const bool is_close = steps <= std::max<size_t>(2, key.size() / 3) && steps < key.size();
        if (!begins_so) steps += 1000;  // "lease" is lease_seconds rather than last
        if (steps >= least || !(begins_so || is_close)) continue;
        least = steps;
        closest = each;
    }
    return closest.empty() ? "no such key" : "no such key; did you mean " + closest + "?";
}

bool normalize(const Type& type, const std::string& path, Value* value, const Complain& complain)
{
    if (type.kind == Kind::kList && value->is_list()) return normalize_list(type, path, value, complain);
    if (type.kind == Kind::kRecord && value->is_map()) return normalize_record(type.fields, path, value, complain);
    auto normal = value->is_scalar() ? normal_scalar(type, *value) : std::nullopt;
    if (!normal) {
        const bool has_bare_backslash = type.kind == Kind::kText && !is_escaped(value->text());
        complain(
            *value, path,
            allowed(type) + (has_bare_backslash ? ", with \\\\ for a backslash" : "") + ", not " + as_found(*value));
        return false;
    }
    const Mark mark = value->mark;
    *value = Value(std::move(*normal));
    value->mark = mark;
    return true;
}

std::string allowed(const Type& type)
{
    const std::string range = std::to_string(type.low) + " to " + std::to_string(type.high);
    std::string text;
    switch (type.kind) {
        case Kind::kFlag:
            text = "true or false";
            break;
        case Kind::kNumber:
            text = "a whole number in decimal digits, " + range;
            break;
        case Kind::kWord:
            return "one of " + joined(type.words);
        case Kind::kIpv4:
            text = type.low == 0 ? "an IPv4 address" : "an IPv4 address other than 0.0.0.0";
            if (type.high != 0) text += " and 255.255.255.255";
            break;
        case Kind::kNet:
            text = "an IPv4 address and its prefix length or mask, as 192.168.1.1/24";
            break;
        case Kind::kIpv6:
            text = "an IPv6 address";
            break;
        case Kind::kIp:
            text = "an IPv4 or IPv6 address";
            break;
        case Kind::kNet6:
            text = "an IPv6 address and its prefix length, as \"2001:db8::/32\"";
            break;
        case Kind::kIpNet:
            text = "an address of either family and its prefix length, as 192.168.1.0/24 or \"2001:db8::/32\"";
            break;
        case Kind::kMac:
            text = "six pairs of hexadecimal digits with colons: write \"00:01:02:03:04:0a\"";
            break;
        case Kind::kText:
            text = "a text of " + range + " bytes";
            break;
        case Kind::kPorts:
            text = "a port or a range of them, as 80 or 5000-5010, " + range;
            break;
        case Kind::kMasked:
            text = "a byte and its mask, as 16/252";
            break;
        case Kind::kProfile:
            text = "the label of a profile";
            break;
        case Kind::kList:
            text = "a list of " + (type.low == type.high ? std::to_string(type.high) + " entries"
                                   : type.low == 0       ? std::to_string(type.high) + " entries at most"
                                                         : range + " entries");
            text += ", each " + allowed(type.fields[0].type);
            break;
        case Kind::kRecord:
            text = "a group of keys";
            break;
    }
    if (!type.words.empty()) text += ", or " + joined(type.words);
    return text;
}

// ---- spellings ----

std::string ipv4_text(uint32_t host_order)
{
    char text[INET_ADDRSTRLEN];
    char* end = text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        if (shift < 24) *end++ = '.';
        end = std::to_chars(end, text + sizeof text, host_order >> shift & 0xff).ptr;
    }
    return std::string(text, end);
}

uint32_t ipv4_of(const std::string& text)
{
    return dotted(text).value_or(0);
}

std::string network_ipv4_text(uint32_t network_order)
{
    return ipv4_text(ntohl(network_order));
}

uint32_t network_ipv4_of(const std::string& text)
{
    return htonl(ipv4_of(text));
}

std::string net_text(uint32_t address, uint32_t mask)
{
    int bits = 0;
    while (bits < 32 && (mask >> (31 - bits) & 1) != 0)
        ++bits;
    const bool has_holes = bits < 32 && mask << bits != 0;
    return ipv4_text(address) + "/" + (has_holes ? ipv4_text(mask) : std::to_string(bits));
}

void split_net(const std::string& text, uint32_t* address, uint32_t* mask)
{
    const size_t slash = text.find('/');
    const std::string behind = text.substr(slash + 1);
    const auto bits = decimal(behind);
    *address = ipv4_of(text.substr(0, slash));
    *mask = !bits ? ipv4_of(behind) : *bits == 0 ? 0 : ~uint32_t{0} << (32 - *bits);
}

std::string ipv6_text(const uint8_t* bytes)
{
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, bytes, text, sizeof text);
}

void ipv6_of(const std::string& text, uint8_t* bytes)
{
    inet_pton(AF_INET6, text.c_str(), bytes);
}

bool is_ipv6(const std::string& text)
{
    return text.find(':') != std::string::npos;
}

std::string mac_text(const uint8_t* bytes)
{
    std::string text;
    for (int i = 0; i < 6; ++i) {
        constexpr char kDigits[] = "0123456789abcdef";
        if (i > 0) text += ':';
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

void mac_of(const std::string& text, uint8_t* bytes)
{
    for (size_t i = 0; i < 6; ++i)
        bytes[i] = static_cast<uint8_t>(std::stoul(text.substr(3 * i, 2), nullptr, 16));
}

std::string ports_text(uint32_t first, uint32_t last)
{
    return first == last ? std::to_string(first) : std::to_string(first) + "-" + std::to_string(last);
}

void split_ports(const std::string& text, uint16_t* first, uint16_t* last)
{
    const size_t dash = text.find('-');
    *first = static_cast<uint16_t>(std::stoul(text));
    *last = dash == std::string::npos ? *first : static_cast<uint16_t>(std::stoul(text.substr(dash + 1)));
}

namespace {

// Length of the UTF-8 sequence at this place; 0 when there is none. Overlong forms, halves of pairs and what lies
// beyond the last code point are none.
size_t utf8_length(const unsigned char* bytes, size_t size)
{
    const unsigned char first = bytes[0];
    const size_t length = first < 0x80                    ? 1
                          : first >= 0xc2 && first < 0xe0 ? 2
                          : first >= 0xe0 && first < 0xf0 ? 3
                          : first >= 0xf0 && first < 0xf5 ? 4
                                                          : 0;
    if (length == 0 || length > size) return 0;
    for (size_t i = 1; i < length; ++i)
        if ((bytes[i] & 0xc0) != 0x80) return 0;
    if ((first == 0xe0 && bytes[1] < 0xa0) || (first == 0xed && bytes[1] > 0x9f) ||
        (first == 0xf0 && bytes[1] < 0x90) || (first == 0xf4 && bytes[1] > 0x8f))
        return 0;
    return length;
}

}  // namespace

std::string escaped(const char* bytes, size_t size)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < size && bytes[i] != '\0';) {
        const unsigned char byte = static_cast<unsigned char>(bytes[i]);
        std::vector<unsigned char> rest(bytes + i, bytes + std::min(size, i + 4));
        const size_t length = utf8_length(rest.data(), rest.size());
        const bool control = byte < 0x20 || byte == 0x7f || (byte == 0xc2 && length == 2 && rest[1] < 0xa0);
        if (length == 0 || control) {
            text += std::string("\\x") + kDigits[byte >> 4] + kDigits[byte & 15];
            ++i;
        } else {
            text += byte == '\\' ? "\\\\" : std::string(bytes + i, length);
            i += length;
        }
    }
    return text;
}

std::string unescaped(const std::string& text)
{
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
        } else if (text[i + 1] == 'x') {
            bytes += static_cast<char>(std::stoul(text.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else {
            bytes += '\\';
            ++i;
        }
    }
    return bytes;
}

// ---- words ----

std::string word_of(const Words& words, uint32_t code)
{
    for (const Word& each : words)
        if (each.code == code) return each.word;
    return "";
}

uint32_t code_of(const Words& words, const std::string& word)
{
    for (const Word& each : words)
        if (word == each.word) return each.code;
    return 0;
}

std::vector<std::string> all_words(const Words& words)
{
    std::vector<std::string> all;
    for (const Word& each : words)
        all.emplace_back(each.word);
    return all;
}

}  // namespace ctl
