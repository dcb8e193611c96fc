#include "tree.h"

#include <algorithm>
#include <array>

#include "document.h"

namespace ctl {
namespace {

using Kind = Node::Kind;

struct Section {
    const char* key;
    const char* about;
};

// In the order in which people set a module up. What a row puts elsewhere comes behind.
constexpr Section kSections[] = {
    {"general", "switches and values of the module as a whole"},
    {"software_path", "addresses that are kept off the hardware path"},
    {"reservations", "addresses that DHCP keeps for one device each, by address"},
    {"lans", "LANs by id: 0 is always there, every other one belongs to a VLAN"},
    {"profiles", "WWAN profiles, by a label of the document's own"},
    {"roles", "which profile serves what"},
    {"upnp", "UPnP"},
    {"hardware_mac_filter", "stations that the hardware filters"},
    {"gre", "GRE offload"},
    {"write_only", "settings that cannot be read: written whenever they are named, never the same"},
};

// The groups in LANs and profiles, and in sections.
constexpr Section kGroups[] = {
    {"lans.dhcp", "the LAN's DHCP server"},
    {"lans.l2tp", "L2TP on the LAN"},
    {"profiles.nat", "NAT of what goes out through the profile"},
    {"profiles.vpn_passthrough", "which VPNs pass the profile's NAT"},
    {"profiles.vpn_passthrough.pptp", "PPTP"},
    {"profiles.vpn_passthrough.ipsec", "IPSec"},
    {"profiles.vpn_passthrough.l2tp", "L2TP"},
    {"profiles.firewall", "the profile's firewall"},
    {"write_only.alg", "the switches of the ALGs, by the service's own numbers"},
};

// What stands before the rest of its group: the table's order is that in which things are done.
constexpr const char* kFirst[] = {
    "general.shortcut_engine",
    "general.packet_statistics",
    "lans.vlan",
    "lans.address",
    "lans.dhcp.enabled",
    "lans.passthrough",
    "lans.passthrough_nat",
    "lans.gateway_filters",
    "lans.l2tp.enabled",
    "lans.l2tp.mtu",
    "lans.l2tp.mss",
    "lans.l2tp.clamp_mss",
    "lans.l2tp.mode",
    "profiles.dial",
    "profiles.reconnect",
    "profiles.autoconnect",
    "profiles.roaming",
    "profiles.vlans",
    "profiles.nat",
    "profiles.vpn_passthrough",
    "profiles.firewall.enabled",
    "profiles.firewall.unmatched",
};

Node& child_of(Node* parent, const std::string& key)
{
    for (Node& child : parent->children)
        if (child.key == key) return child;
    parent->children.push_back({Kind::kGroup, key});
    return parent->children.back();
}

Node& node_at(Node* root, const std::string& path)
{
    Node* node = root;
    for (size_t begin = 0; begin <= path.size();) {
        const size_t end = std::min(path.find('.', begin), path.size());
        node = &child_of(node, path.substr(begin, end - begin));
        begin = end + 1;
    }
    return *node;
}

void add_row(Node* root, const Row& row)
{
    const char* const scopes[] = {"", "lans", "profiles"};
    Node* const scope = row.scope == Scope::kModule ? root : &child_of(root, scopes[static_cast<int>(row.scope)]);
    if (row.shape == Shape::kUnit) {
        for (const Field& field : row.fields) {
            Node& node = node_at(scope, field.key);
            node.kind = Kind::kField;
            node.about = field.about;
            node.row = &row;
            node.field = &field;
        }
        return;
    }
    Node& node = node_at(scope, row.path);
    node.kind = row.shape == Shape::kWhole ? Kind::kWhole : row.shape == Shape::kList ? Kind::kList : Kind::kKeyed;
    if (!row.about.empty()) node.about = row.about;  // a section has its own
    node.row = &row;
}

Node make_tree()
{
    Node root;
    for (const Section& section : kSections)
        root.children.push_back({Kind::kGroup, section.key, section.about});
    child_of(&root, "lans").kind = Kind::kLans;
    child_of(&root, "profiles").kind = Kind::kProfiles;
    for (const char* const path : kFirst)
        node_at(&root, path);
    for (const Row& row : rows())
        add_row(&root, row);
    for (const Section& group : kGroups)
        node_at(&root, group.key).about = group.about;
    return root;
}

// ---- printing ----

// Other readers take it for nothing but what it is: what is no text is bare.
bool is_bare(const Type& type, const std::string& text)
{
    switch (type.kind) {
        case Type::Kind::kFlag:
        case Type::Kind::kNumber:
            return std::find(type.words.begin(), type.words.end(), text) == type.words.end();
        case Type::Kind::kPorts:
            return text.find_first_not_of("0123456789") == std::string::npos;
        default:
            return false;
    }
}

bool is_address(const std::string& text)
{
    return std::count(text.begin(), text.end(), '.') == 3 &&
           text.find_first_not_of("0123456789./") == std::string::npos;
}

class Printer {
public:
    explicit Printer(bool json) : json_(json) {}

    std::string print(const Value& tree)
    {
        if (json_) {
            out_ = "{\"version\": " + std::to_string(kVersion);
            is_first_ = false;
        } else {
            out_ = "version: " + std::to_string(kVersion) + "\n";
        }
        group(key_tree(), tree, 0);
        out_ += json_ ? "}\n" : "";
        return out_;
    }

private:
    // Keys in the tree's order.
    void group(const Node& node, const Value& value, size_t depth)
    {
        for (const Node& child : node.children) {
            const Value& below = value.child(child.key);
            if (below.is_nothing()) continue;
            start_key(child.key, depth);
            member(child, below, depth);
        }
    }

    void member(const Node& node, const Value& value, size_t depth)
    {
        switch (node.kind) {
            case Kind::kField:
                out_ += " " + flow(node.field->type, value);
                end_line();
                break;
            case Kind::kWhole:
                out_ += " " + record(node.row->fields, value);
                end_line();
                break;
            case Kind::kList:
                entries(*node.row, value, depth + 1);
                break;
            case Kind::kKeyed:
                keyed(node, value, depth + 1);
                break;
            case Kind::kLans:
            case Kind::kProfiles:
                scopes(node, value, depth + 1);
                break;
            case Kind::kGroup:
                open(value.map().empty());
                group(node, value, depth + 1);
                close();
                break;
        }
    }

    void scopes(const Node& node, const Value& value, size_t depth)
    {
        open(value.map().empty());
        for (const auto& [key, each] : value.map()) {
            start_key(key, depth);
            const bool has_keys = !each.map().empty();
            open(!has_keys);
            if (each.has("absent")) {
                start_key("absent", depth + 1);
                out_ += " true";
                end_line();
            }
            if (each.has("handle")) {
                start_key("handle", depth + 1);
                out_ += " " + each.child("handle").text();
                end_line();
            }
            group(node, each, depth + 1);
            close();
        }
        close();
    }

    void keyed(const Node& node, const Value& value, size_t depth)
    {
        open(value.map().empty());
        for (const auto& [key, each] : value.map()) {
            start_key(key, depth);
            out_ += " " + (each.has("absent") ? std::string(json_ ? "{\"absent\": true}" : "{absent: true}")
                                              : record(node.row->fields, each));
            end_line();
        }
        close();
    }

    void entries(const Row& row, const Value& value, size_t depth)
    {
        const bool are_plain = row.fields[0].key.empty();
        if (json_ || are_plain || value.list().empty()) {
            std::string text;
            for (const Value& each : value.list())
                text += (text.empty() ? "" : ", ") + entry(row, each);
            out_ += " [" + text + "]";
            end_line();
            return;
        }
        out_ += "\n";
        for (const Value& each : value.list())
            out_ += std::string(2 * depth, ' ') + "- " + entry(row, each) + "\n";
    }

    std::string entry(const Row& row, const Value& value) const
    {
        return row.fields[0].key.empty() ? flow(row.fields[0].type, value) : record(row.fields, value);
    }

    std::string flow(const Type& type, const Value& value) const
    {
        if (value.is_scalar()) return scalar(value, is_bare(type, value.text()));
        if (type.kind == Type::Kind::kRecord) return record(type.fields, value);
        std::string text;
        for (const Value& each : value.list())
            text += (text.empty() ? "" : ", ") + flow(type.fields[0].type, each);
        return "[" + text + "]";
    }

    std::string record(const std::vector<Field>& fields, const Value& value) const
    {
        std::string text;
        for (const Field& field : fields) {
            const Value& each = value.child(field.key);
            if (each.is_nothing()) continue;
            if (each == fallback_of(field, value)) continue;
            text += (text.empty() ? "" : ", ") + key_text(field.key) + ": " + flow(field.type, each);
        }
        return "{" + text + "}";
    }

    std::string scalar(const Value& value, bool bare) const
    {
        if (json_) return bare ? value.text() : quoted(value.text());
        return spelled(value, bare || is_address(value.text()));
    }

    std::string key_text(const std::string& key) const
    {
        const bool is_number = !key.empty() && key.find_first_not_of("0123456789") == std::string::npos;
        return json_ ? quoted(key) : spelled(Value(key), is_number || is_address(key));
    }

    void start_key(const std::string& key, size_t depth)
    {
        if (json_)
            out_ += is_first_ ? "" : ", ";
        else
            out_ += std::string(2 * depth, ' ');
        is_first_ = false;
        out_ += key_text(key) + ":";
    }

    void open(bool is_empty)
    {
        if (json_)
            out_ += " {";
        else
            out_ += is_empty ? " {}\n" : "\n";
        is_first_ = true;
    }

    void close()
    {
        if (json_) out_ += "}";
        is_first_ = false;
    }

    void end_line()
    {
        if (!json_) out_ += "\n";
    }

    const bool json_;
    bool is_first_ = true;
    std::string out_;
};

}  // namespace

const Node* Node::child(const std::string& name) const
{
    for (const Node& each : children)
        if (each.key == name) return &each;
    return nullptr;
}

const Node& key_tree()
{
    static const Node tree = make_tree();
    return tree;
}

const std::vector<const Row*>& rows_of(Scope scope)
{
    static const auto by_scope = [] {
        std::array<std::vector<const Row*>, 3> found;
        for (const Row& row : rows())
            found[static_cast<size_t>(row.scope)].push_back(&row);
        return found;
    }();
    return by_scope[static_cast<size_t>(scope)];
}

Value record_of(const Row& row, const Value& instance)
{
    if (row.shape != Shape::kUnit) return instance.at(row.path);
    Value record;
    for (const Field& field : row.fields) {
        const Value& value = instance.at(field.key);
        if (!value.is_nothing()) record.map()[field.key] = value;
    }
    return record;
}

void put_record(const Row& row, const Value& record, Value* instance)
{
    if (record.is_nothing()) return;
    if (row.shape != Shape::kUnit) {
        instance->make(row.path) = record;
        return;
    }
    for (const auto& [key, value] : record.map())
        if (!value.is_nothing()) instance->make(key) = value;
}

bool is_named(const Row& row, const Value& instance)
{
    if (row.shape != Shape::kUnit) return instance.has(row.path);
    return std::any_of(row.fields.begin(), row.fields.end(),
                       [&instance](const Field& field) { return instance.has(field.key); });
}

std::string as_yaml(const Value& tree)
{
    return Printer(false).print(tree);
}

std::string as_json(const Value& tree)
{
    return Printer(true).print(tree);
}

}  // namespace ctl
