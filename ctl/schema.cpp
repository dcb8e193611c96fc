// A JSON Schema of documents, made from the table of keys: by it editors complete and check a document while it is
// written. Draft 7 is what most of them take.
//
// What a schema cannot say is left to the checks; what it says they say too.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "document.h"
#include "lan_vlan.h"
#include "tree.h"
#include "verbs.h"
#include "wan_profile.h"

namespace ctl {
namespace {

using Kind = Type::Kind;

// Of a JSON object, in their order. The values are JSON.
using Members = std::vector<std::pair<std::string, std::string>>;

std::string object(const Members& members)
{
    std::string text;
    for (const auto& [key, value] : members)
        text += (text.empty() ? "" : ", ") + quoted(key) + ": " + value;
    return "{" + text + "}";
}

std::string array(const std::vector<std::string>& values)
{
    std::string text;
    for (const std::string& value : values)
        text += (text.empty() ? "" : ", ") + value;
    return "[" + text + "]";
}

std::string array_of_texts(std::vector<std::string> texts)
{
    for (std::string& text : texts)
        text = ctl::quoted(text);
    return array(texts);
}

// ---- patterns ----

std::string whole(const std::string& pattern)
{
    return "^(" + pattern + ")$";
}

std::string times(size_t least, size_t most)
{
    return "{" + std::to_string(least) + "," + std::to_string(most) + "}";
}

// So many digits.
std::string digits(size_t count)
{
    return count == 0 ? "" : count == 1 ? "[0-9]" : "[0-9]{" + std::to_string(count) + "}";
}

// Numbers as they are written, from 0 or 1 on.
std::string numbers(uint64_t low, uint64_t high)
{
    const std::string last = std::to_string(high);
    std::string pattern = low == 0 ? "0|" : "";
    if (last.size() > 1) pattern += "[1-9]" + (last.size() == 2 ? "" : "[0-9]" + times(0, last.size() - 2)) + "|";
    std::string before;
    for (size_t i = 0; i < last.size(); ++i) {
        const char least = i == 0 ? '1' : '0';
        const char most = static_cast<char>(last[i] - 1);
        if (most == least) pattern += before + least + digits(last.size() - i - 1) + "|";
        if (most > least) pattern += before + "[" + least + "-" + most + "]" + digits(last.size() - i - 1) + "|";
        before += last[i];
    }
    return pattern + last;
}

std::string byte()
{
    return "(" + numbers(0, 255) + ")";
}

std::string ipv4_pattern(uint64_t low = 0, uint64_t high = 0)
{
    std::string pattern = low == 0 ? "" : "(?!0\\.0\\.0\\.0$)";
    if (high != 0) pattern += "(?!255\\.255\\.255\\.255$)";
    return pattern + "(" + byte() + "\\.){3}" + byte();
}

std::string net_pattern()
{
    return ipv4_pattern() + "/(" + numbers(0, 32) + "|" + ipv4_pattern() + ")";
}

// Eight groups, or fewer around a pair of colons; the last two may be written as an IPv4 address.
std::string ipv6_pattern()
{
    const std::string group = "[0-9a-fA-F]{1,4}";
    const std::string before = "(" + group + ":)";
    const std::string behind = "(:" + group + ")";
    std::string pattern = before + "{7}" + group + "|" + before + "{6}" + ipv4_pattern();
    pattern += "|:(" + behind + "{1,7}|:)|::" + before + "{0,5}" + ipv4_pattern();
    for (size_t most = 1; most <= 7; ++most) {
        pattern += "|" + before + times(1, most);
        pattern += most == 7 ? ":" : "(" + behind + times(1, 7 - most) + "|:)";
        if (most > 5) continue;
        pattern += "|" + before + times(1, most);
        pattern += behind + times(0, 5 - most);
        pattern += ":" + ipv4_pattern();
    }
    return "(" + pattern + ")";
}

// Signs, or bytes as \xNN; a sign counts once, though it may have several bytes.
std::string text_pattern(const Type& type)
{
    return "(\\\\(\\\\|x(?!00)[0-9a-fA-F]{2})|[^\\\\\\u0000])" + times(type.low, type.high);
}

// Of the spelling; empty for what is more than one value.
std::string pattern_of(const Type& type)
{
    switch (type.kind) {
        case Kind::kNumber:
            return numbers(type.low, type.high);
        case Kind::kIpv4:
            return ipv4_pattern(type.low, type.high);
        case Kind::kNet:
            return net_pattern();
        case Kind::kIpv6:
            return ipv6_pattern();
        case Kind::kIp:
            return ipv4_pattern() + "|" + ipv6_pattern();
        case Kind::kNet6:
            return ipv6_pattern() + "/" + byte();
        case Kind::kIpNet:
            return net_pattern() + "|" + ipv6_pattern() + "/" + byte();
        case Kind::kMac:
            return "([0-9a-fA-F]{2}:){5}[0-9a-fA-F]{2}";
        case Kind::kText:
            return text_pattern(type);
        case Kind::kPorts:
            return "(" + numbers(type.low, type.high) + ")(-(" + numbers(type.low, type.high) + "))?";
        case Kind::kMasked:
            return byte() + "/" + byte();
        default:
            return "";
    }
}

// ---- values ----

// What is no text in JSON is one in a document all the same: name: 12.
constexpr char kAnyScalar[] = R"(["string", "number", "boolean"])";

Members record(const std::vector<Field>& fields, bool can_be_absent);

Members value(const Type& type)
{
    if (!type.words.empty() && type.kind != Kind::kWord) {
        Type without = type;
        without.words.clear();
        return {
            {"anyOf", array({object({{"enum", array_of_texts(type.words)}}), object(value(without))})},
        };
    }
    const Members range = {{"minimum", std::to_string(type.low)}, {"maximum", std::to_string(type.high)}};
    Members members;
    switch (type.kind) {
        case Kind::kFlag:
            return {{"type", quoted("boolean")}};
        case Kind::kNumber:
            members = range;
            members.insert(members.begin(), {"type", quoted("integer")});
            return members;
        case Kind::kWord:
            return {{"enum", array_of_texts(type.words)}};
        case Kind::kProfile:
            return {{"type", kAnyScalar}, {"minLength", "1"}};
        case Kind::kText:
            return {{"type", kAnyScalar}, {"pattern", quoted(whole(pattern_of(type)))}};
        case Kind::kPorts:
            members = range;
            members.insert(members.begin(), {"type", R"(["integer", "string"])"});
            members.emplace_back("pattern", quoted(whole(pattern_of(type))));
            return members;
        case Kind::kRecord:
            return record(type.fields, false);
        case Kind::kList:
            return {{"type", quoted("array")},
                    {"items", object(value(type.fields[0].type))},
                    {"minItems", std::to_string(type.low)},
                    {"maxItems", std::to_string(type.high)}};
        default:
            return {{"type", quoted("string")}, {"pattern", quoted(whole(pattern_of(type)))}};
    }
}

std::string sentence(std::string text)
{
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text + ".";
}

std::string described(const Field& field)
{
    std::string text = sentence(field.about) + " " + sentence(allowed(field.type));
    if (!field.same_as.empty()) text += " Left out: that of " + field.same_as + ".";
    if (!field.factory.empty()) text += " At first, on the host platform: " + field.factory + ".";
    return text;
}

std::string field_schema(const Field& field)
{
    Members members = {{"description", quoted(described(field))}};
    const bool is_bare = field.type.kind == Kind::kFlag || field.type.kind == Kind::kNumber;
    if (field.need == Field::Need::kDefault && field.same_as.empty())
        members.emplace_back("default", is_bare ? field.fallback : quoted(field.fallback));
    const Members rest = value(field.type);
    members.insert(members.end(), rest.begin(), rest.end());
    return object(members);
}

const std::pair<std::string, std::string> kAbsent = {
    "absent", R"({"description": "The entry goes; it stands alone then.", "const": true})"};

// An object of these keys and no others. One that may be absent needs nothing else then, and has nothing else but what
// it is known by.
Members closed(Members properties, const Members& needs, bool can_be_absent, std::vector<std::string> known_by = {})
{
    if (can_be_absent) properties.insert(properties.begin(), kAbsent);
    Members members = {
        {"type", quoted("object")}, {"properties", object(properties)}, {"additionalProperties", "false"}};
    if (can_be_absent) {
        members.emplace_back("if", R"({"required": ["absent"]})");
        known_by.emplace_back("absent");
        members.emplace_back("then", object({{"propertyNames", object({{"enum", array_of_texts(known_by)}})}}));
        if (!needs.empty()) members.emplace_back("else", object(needs));
    } else {
        members.insert(members.end(), needs.begin(), needs.end());
    }
    return members;
}

Members record(const std::vector<Field>& fields, bool can_be_absent)
{
    Members properties;
    std::vector<std::string> needed_keys;
    for (const Field& field : fields) {
        properties.emplace_back(field.key, field_schema(field));
        if (field.need == Field::Need::kNeeded) needed_keys.push_back(field.key);
    }
    Members needs;
    if (!needed_keys.empty()) needs.emplace_back("required", array_of_texts(needed_keys));
    return closed(properties, needs, can_be_absent);
}

// ---- the tree ----

Members node_members(const Node& node);

std::string node_schema(const Node& node)
{
    if (node.kind == Node::Kind::kField) return field_schema(*node.field);
    Members members = node_members(node);
    members.insert(members.begin(), {"description", quoted(sentence(node.about))});
    return object(members);
}

Members children_of(const Node& node)
{
    Members properties;
    for (const Node& child : node.children)
        properties.emplace_back(child.key, node_schema(child));
    return properties;
}

// Entries under keys of this pattern.
Members under_keys(const std::string& key, const std::string& entry, const Members& more = {})
{
    Members members = {{"type", quoted("object")}};
    members.insert(members.end(), more.begin(), more.end());
    members.emplace_back("patternProperties", object({{whole(key), entry}}));
    members.emplace_back("additionalProperties", "false");
    return members;
}

// The default LAN has no VLAN, cannot go, and has the module's own NAT beside a passthrough.
Members lans()
{
    const std::string lan = R"({"$ref": "#/definitions/lan"})";
    const std::string none = "false";
    const std::string default_lan =
        object({{"description", quoted("The default LAN.")},
                {"allOf", array({lan})},
                {"properties", object({{"absent", none}, {"vlan", none}, {"passthrough_nat", none}})}});
    return under_keys(numbers(1, kVlanIdMax), lan, {{"properties", object({{"0", default_lan}})}});
}

Members profiles(const Node& node)
{
    Members properties = children_of(node);
    Members handle = value(number(1, kProfilesMax));
    handle.insert(handle.begin(), {"description", quoted("The handle of the profile on this module, 1 to 50: picks one "
                                                         "of several that dial alike, or one whose dial changes.")});
    properties.insert(properties.begin(), {"handle", object(handle)});
    const Members needs = {{"anyOf", R"([{"required": ["dial"]}, {"required": ["handle"]}])"}};
    // None is what a role has that no profile has.
    return under_keys("(?!none$)" + pattern_of(text(1, 100)),
                      object(closed(properties, needs, true, {"handle", "dial"})));
}

Members list(const Row& row)
{
    const bool are_plain = row.fields[0].key.empty();
    Members members = {{"type", quoted("array")},
                       {"items", are_plain ? field_schema(row.fields[0]) : object(record(row.fields, false))},
                       {"maxItems", std::to_string(row.most)}};
    if (row.once) members.emplace_back("uniqueItems", "true");
    return members;
}

Members node_members(const Node& node)
{
    switch (node.kind) {
        case Node::Kind::kGroup:
            return closed(children_of(node), {}, false);
        case Node::Kind::kWhole:
            return record(node.row->fields, false);
        case Node::Kind::kList:
            return list(*node.row);
        case Node::Kind::kKeyed:
            return under_keys(pattern_of(node.row->key), object(record(node.row->fields, true)));
        case Node::Kind::kLans:
            return lans();
        case Node::Kind::kProfiles:
            return profiles(node);
        case Node::Kind::kField:
            break;
    }
    return {};
}

std::string schema()
{
    Members properties = children_of(key_tree());
    const std::string version = std::to_string(kVersion);
    properties.insert(properties.begin(),
                      {"version", object({{"description", quoted("The form of the document.")}, {"const", version}})});
    Members members = {{"$schema", quoted("http://json-schema.org/draft-07/schema#")},
                       {"title", quoted("A module's configuration, as zr_nexactl shows and applies it")}};
    const Members rest = closed(properties, {{"required", array_of_texts({"version"})}}, false);
    members.insert(members.end(), rest.begin(), rest.end());
    const std::string lan = object(closed(children_of(*key_tree().child("lans")), {}, true));
    members.emplace_back("definitions", object({{"lan", lan}}));
    return object(members);
}

// One member a line, for people who look into it.
std::string indented(const std::string& json)
{
    std::string text;
    std::string open;  // brackets
    bool is_text = false;
    const auto new_line = [&] {
        text += "\n" + std::string(2 * static_cast<size_t>(std::count(open.begin(), open.end(), '{')), ' ');
    };
    for (size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (c == '"') is_text = !is_text;
        if (is_text) {
            text += c;
            if (c == '\\') text += json[++i];
            continue;
        }
        if (c == '}' || c == ']') {
            open.pop_back();
            if (c == '}') new_line();
        }
        text += c;
        if (c == '{' || c == '[') open += c;
        const bool ends_member = c == ',' && open.back() == '{';
        if (c == '{' || ends_member) new_line();
        if (ends_member) ++i;  // the blank
    }
    return text + "\n";
}

}  // namespace

void add_schema(CLI::App& app, Work* chosen)
{
    CLI::App* const verb =
        app.add_subcommand("schema", "A JSON Schema of documents, for editors: they complete and check by it");
    verb->final_callback([=] {
        *chosen = [] {
            std::fputs(indented(schema()).c_str(), stdout);
            return 0;
        };
    });
}

}  // namespace ctl
