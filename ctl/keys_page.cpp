// The page of all keys, made from the table: docs/configuration.md has it behind its introduction.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>

#include "tree.h"
#include "verbs.h"

namespace ctl {
namespace {

// The command's settings, by a function that they call.
constexpr struct {
    const char* function;
    const char* command;
} kCommands[] = {
    {"zr_nexa_general_sfe_set_v1", "General SFE"},
    {"zr_nexa_lan_gwurl_set_v1", "LAN GWURL"},
    {"zr_nexa_lan_dhcp_set_v1", "LAN DHCP"},
    {"zr_nexa_lan_dhcp_default_action_set_v1", "LAN DefaultDHCPEnable"},
    {"zr_nexa_lan_vlan_add_v1", "LAN VLAN"},
    {"zr_nexa_lan_ipptnat_set_v1", "LAN IPPTNAT"},
    {"zr_nexa_lan_ipptnatpdn_set_v1", "LAN IPPTNATPDN"},
    {"zr_nexa_lan_ippt_set_v1", "LAN IPPT"},
    {"zr_nexa_lan_ipptgwfilter_add_v1", "LAN IPPTGWFilter"},
    {"zr_nexa_wan_wwanconfig_set_v1", "WAN WWANConfig"},
    {"zr_nexa_wan_wwanconfig_default_set_v1", "WAN WWANConfig"},
    {"zr_nexa_wan_apwwan_set_v1", "WAN APWWAN"},
    {"zr_nexa_wan_reconnect_set_v1", "WAN ReConnect"},
    {"zr_nexa_wan_autoconnect_set_v1", "WAN AutoConnect"},
    {"zr_nexa_wan_mpdnmapping_add_v1", "WAN MPDNMapping"},
    {"zr_nexa_nat_type_set_v1", "NAT Type"},
    {"zr_nexa_nat_ipv4dmz_set_v1", "NAT IPV4DMZ"},
    {"zr_nexa_nat_ipv4portmapping_add_v1", "NAT IPV4PortMapping"},
    {"zr_nexa_nat_routingbh_set_v1", "NAT RoutingBH"},
};

// The settings of a record that the command has no words for.
constexpr const char* kNoCommand[] = {"lans.N.dhcp.mtu", "lans.N.dhcp.dns"};

std::string code(const std::string& text)
{
    return "`" + text + "`";
}

std::string command_of(const Row& row, const std::string& path)
{
    for (const char* const without : kNoCommand)
        if (path == without) return "–";
    for (const char* const function : row.functions)
        for (const auto& each : kCommands)
            if (std::strcmp(function, each.function) == 0) return code(each.command);
    return "–";
}

std::string functions_of(const Row& row)
{
    std::string text;
    for (const char* const function : row.functions)
        text += (text.empty() ? "" : ", ") + code(function);
    return text;
}

// What it is when nobody has said it.
std::string at_first(const Field& field)
{
    switch (field.need) {
        case Field::Need::kNeeded:
            return "needed";
        case Field::Need::kOptional:
            return "may be left out";
        case Field::Need::kDefault:
            if (!field.same_as.empty()) return "left out: that of " + code(field.same_as);
            return "left out: " + (field.fallback.empty() ? "empty" : code(field.fallback));
        case Field::Need::kLeftAlone:
            return field.factory.empty() ? "–" : code(field.factory);
    }
    return "";
}

class Page {
public:
    std::string print()
    {
        for (const Node& section : key_tree().children)
            print_section(section);
        return page_;
    }

private:
    void line(const std::string& path, const std::string& about, const std::string& takes, const std::string& first,
              const Row* row)
    {
        page_ += "| " + code(path) + " | " + about + " | " + takes + " | " + first + " | " +
                 (row == nullptr ? "" : command_of(*row, path)) + " |\n";
        if (row == nullptr) return;
        if (uses_.empty() || uses_.back().first != row) uses_.push_back({row, ""});
        std::string& paths = uses_.back().second;
        paths += (paths.empty() ? "" : ", ") + code(path);
    }

    void fields(const Row& row, const std::string& path, const std::vector<Field>& all)
    {
        for (const Field& field : all) {
            const std::string below = path + "." + field.key;
            line(below, field.about, allowed(field.type), at_first(field), nullptr);
            const Type* const each = field.type.kind == Type::Kind::kList ? &field.type.fields[0].type : nullptr;
            if (each != nullptr && each->kind == Type::Kind::kRecord) fields(row, below + "[]", each->fields);
        }
    }

    void entries(const Node& node, const std::string& path)
    {
        const Row& row = *node.row;
        const std::string most = std::to_string(row.most) + " entries at most";
        if (node.kind == Node::Kind::kWhole) {
            line(path, node.about, "a group of keys", "–", &row);
            fields(row, path, row.fields);
        } else if (row.fields[0].key.empty()) {
            line(path, node.about, "a list, " + most + "; each " + allowed(row.fields[0].type), "empty", &row);
        } else if (node.kind == Node::Kind::kList) {
            line(path, node.about, "a list, " + most, "empty", &row);
            fields(row, path + "[]", row.fields);
        } else {
            line(path, node.about, "entries under keys, " + most + "; a key is " + allowed(row.key), "empty", &row);
            fields(row, path + ".KEY", row.fields);
        }
    }

    void walk(const Node& node, const std::string& path)
    {
        if (node.kind == Node::Kind::kField)
            line(path, node.field->about, allowed(node.field->type), at_first(*node.field), node.row);
        else if (node.row != nullptr)
            entries(node, path);
        else
            for (const Node& child : node.children)
                walk(child, path + "." + child.key);
    }

    void print_section(const Node& section)
    {
        uses_.clear();
        page_ += "\n## " + section.key + "\n\n" + section.about + "\n\n";
        page_[page_.size() - section.about.size() - 2] =
            static_cast<char>(std::toupper(static_cast<unsigned char>(section.about[0])));
        page_.insert(page_.size() - 2, ".");
        page_ += "| key | what it is | what it takes | at first | command |\n|---|---|---|---|---|\n";
        std::string path = section.key;
        if (section.kind == Node::Kind::kLans) path += ".N";
        if (section.kind == Node::Kind::kProfiles) {
            path += ".P";
            line(path + ".handle", "picks the profile on this module where several dial alike, or its dial changes",
                 "a whole number in decimal digits, 1 to 50", "may be left out", nullptr);
        }
        walk(section, path);
        page_ += "\n| keys | functions of the interface |\n|---|---|\n";
        for (const auto& [row, paths] : uses_)
            page_ += "| " + paths + " | " + functions_of(*row) + " |\n";
    }

    std::vector<std::pair<const Row*, std::string>> uses_;  // of the section: rows and their keys
    std::string page_;
};

}  // namespace

void add_keys(CLI::App& app, Work* chosen)
{
    CLI::App* const verb = app.add_subcommand("keys", "All keys, as the page docs/configuration.md has them");
    verb->group("");  // of no use but there
    verb->final_callback([=] {
        *chosen = [] {
            std::fputs(Page().print().c_str(), stdout);
            return 0;
        };
    });
}

}  // namespace ctl
