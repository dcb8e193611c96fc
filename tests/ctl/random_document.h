// Documents made at random from the table of keys. States that cannot be left again are not made: a SIP server that is
// none, a hardware MAC filter without its lists, a role that nobody has, entries that can be read only; nor what needs
// a file that the host platform has not got (gre), and what is never the same (write_only).
#ifndef RANDOM_DOCUMENT_H
#define RANDOM_DOCUMENT_H

#include <algorithm>
#include <random>
#include <set>
#include <string>

#include "keys.h"
#include "tree.h"

namespace ctl {

class RandomDocument {
public:
    // Whole: every key is named, and entries take each other's nets and MACs. Otherwise what is named is less, and goes
    // together with what another document of this kind leaves behind.
    RandomDocument(uint32_t seed, bool whole) : random_(seed), whole_(whole) {}

    Value make()
    {
        tree_ = Value();
        nets_.clear();
        lans();
        profiles();
        for (const Row* row : rows_of(Scope::kModule))
            if (row->phase != Phase::kRoles) add(*row, "", &tree_);
        return tree_;
    }

private:
    size_t below(size_t end)
    {
        return random_() % end;
    }
    bool chance(size_t percent)
    {
        return below(100) < percent;
    }
    bool names()
    {
        return whole_ || chance(60);
    }

    // ---- LANs and profiles ----

    void lans()
    {
        const std::vector<uint32_t> ids = {0, 10, 20, 300, 4094};
        std::vector<uint32_t> thirds = {1, 2, 3, 4, 5};
        if (whole_) std::shuffle(thirds.begin(), thirds.end(), random_);
        for (size_t i = 0; i < ids.size(); ++i) {
            if (i > 0 && !chance(60)) continue;
            const std::string name = std::to_string(ids[i]);
            Value& lan = tree_.make("lans").map()[name];
            if (i > 0 && !whole_ && chance(15)) {
                lan.map()["absent"] = true;
                continue;
            }
            lan.map();
            if (i > 0) ids_.push_back(name);
            if (i == 0 || names()) addressing(thirds[i], &lan);
            for (const Row* row : rows_of(Scope::kLan)) {
                const bool is_of_a_vlan = row->path == "vlan" || row->fields[0].key == "passthrough_nat";
                if (row->fields[0].key == "address" || (i == 0 && is_of_a_vlan)) continue;
                if (row->path == "vlan")
                    put_record(*row, record(row->fields), &lan);
                else
                    add(*row, "lans." + name, &lan);
            }
            const Value tunnels = lan.at("l2tp.tunnels");
            const bool has_tunnels = std::any_of(tunnels.map().begin(), tunnels.map().end(),
                                                 [](const auto& each) { return !each.second.has("absent"); });
            if (lan.at("l2tp.mode").text() == "managed" && !has_tunnels) lan.make("l2tp.mode") = "unmanaged";
        }
    }

    void addressing(uint32_t third, Value* lan)
    {
        if (!whole_) third += static_cast<uint32_t>(10 * below(3));
        const std::string net = "10.7." + std::to_string(third) + ".";
        const size_t bits = 24 + below(3);
        nets_.push_back(net);
        lan->make("address") = net + "1/" + std::to_string(bits);
        lan->make("dhcp.first") = net + std::to_string(2 + below(10));
        lan->make("dhcp.last") = net + std::to_string(20 + below(40));
        if (names()) lan->make("dhcp.lease_seconds") = 1 + below(2147483647);
        if (names()) lan->make("dhcp.mtu") = chance(30) ? 0 : 576 + below(9216 - 576 + 1);
        if (names()) {
            const char* const modes[] = {"mode-1", "mode-2", "unset"};
            lan->make("dhcp.dns") = chance(50) ? Value(modes[below(3)]) : Value(Value::List{address(), address()});
        }
    }

    void profiles()
    {
        std::set<Value> dials;
        const std::string labels[] = {"main", "office", "a.b", "voice", "none of these", "5"};
        for (size_t i = 0; i < 6; ++i) {
            if (i > 0 && !chance(50)) continue;
            Value dial;
            for (const Row* row : rows_of(Scope::kProfile))
                if (row->path == "dial") dial = record(row->fields);
            dial.map()["apn_index"] = 1 + i;
            if (!dials.insert(dial).second) continue;
            labels_.push_back(labels[i]);
            Value& profile = tree_.make("profiles").map()[labels[i]];
            profile.map()["dial"] = dial;
            for (const Row* row : rows_of(Scope::kProfile))
                if (row->path != "dial") add(*row, "profiles." + labels[i], &profile);
        }
        for (const char* role : {"roles.default", "roles.access_point", "roles.dns_proxy"})
            tree_.make(role) = labels_[below(labels_.size())];
    }

    // ---- rows ----

    void add(const Row& row, const std::string& path, Value* instance)
    {
        if (row.write_only || row.fields[0].key.rfind("gre.", 0) == 0 || !names()) return;
        const bool all_or_none = row.check || row.fields[0].key == "hardware_mac_filter.state";
        switch (row.shape) {
            case Shape::kUnit:
                put_record(row, checked(row, path, [&] { return unit(row, whole_ || all_or_none); }), instance);
                break;
            case Shape::kWhole:
                put_record(row, entry(row, path + "." + row.path), instance);
                break;
            case Shape::kList:
                instance->make(row.path) = Value(list(row, path));
                break;
            case Shape::kKeyed:
                instance->make(row.path) = Value(keyed(row, path));
                break;
        }
    }

    template <class Make>
    Value checked(const Row& row, const std::string& path, const Make& make)
    {
        for (;;) {
            Value value = make();
            bool good = true;
            const Complain complain = [&](const Value&, const std::string&, const std::string&) { good = false; };
            Value normal = value;
            if (row.shape != Shape::kUnit && !row.fields[0].key.empty())
                good = normalize_record(row.fields, path, &normal, complain);
            if (good && row.check) row.check(normal, path, complain);
            if (good && row.not_undone && row.shape != Shape::kUnit) good = row.not_undone({}, normal).empty();
            if (good && row.path == "sip_server") good = !normal.map().empty();
            if (good) return normal;
        }
    }

    Value unit(const Row& row, bool all)
    {
        Value value;
        for (const Field& field : row.fields)
            if (all || chance(60)) value.map()[field.key] = any(field.type, field.key);
        return value;
    }

    Value entry(const Row& row, const std::string& path)
    {
        if (row.fields[0].key.empty()) return any(row.fields[0].type, row.path);
        return checked(row, path, [&] { return record(row.fields); });
    }

    Value record(const std::vector<Field>& fields)
    {
        Value value;
        for (const Field& field : fields) {
            const bool is_there = field.need == Field::Need::kNeeded || chance(40);
            if (is_there) {
                value.map()[field.key] = any(field.type, field.key);
                value.map()[field.key].mark.line = 1;  // said, and no fallback
            } else if (!fallback_of(field, value).is_nothing()) {
                value.map()[field.key] = fallback_of(field, value);
            }
        }
        return value;
    }

    size_t count(size_t most)
    {
        return chance(25) ? 0 : chance(15) ? most : 1 + below(std::min<size_t>(most, 4));
    }

    Value::List list(const Row& row, const std::string& path)
    {
        if (row.path == "vlans") {
            Value::List some;
            for (const std::string& id : ids_)
                if (chance(50)) some.emplace_back(id);
            return sorted(some);
        }
        std::set<Value> entries;
        const size_t size = count(row.most);
        while (entries.size() < size)
            entries.insert(entry(row, path + "." + row.path));
        Value::List all(entries.begin(), entries.end());
        const bool may_stand_twice = row.path == "gateway_filters" && !all.empty() && all.size() < row.most;
        if (may_stand_twice && chance(50)) all.push_back(all[0]);
        return sorted(all);
    }

    Value::Map keyed(const Row& row, const std::string& path)
    {
        Value::Map entries;
        const size_t size = whole_ ? count(row.most) : below(4);
        const bool are_addresses = row.path == "reservations";
        while (entries.size() < size) {
            const std::string key = are_addresses ? host_in_a_net() : std::to_string(1 + below(whole_ ? 20 : 4));
            if (entries.count(key) != 0) continue;
            Value each = entry(row, path + "." + row.path + "." + key);
            // Each device once: in a whole document they are shared out anew each time.
            if (are_addresses) each.map()["mac"] = mac(whole_ ? entries.size() : std::hash<std::string>()(key));
            if (!whole_ && chance(20)) each = Value::Map{{"absent", true}};
            entries[key] = each;
        }
        return entries;
    }

    // ---- values ----

    std::string mac(size_t number)
    {
        char text[18];
        std::snprintf(text, sizeof text, "02:00:%02x:%02x:%02x:%02x", static_cast<unsigned>(number >> 24 & 255),
                      static_cast<unsigned>(number >> 16 & 255), static_cast<unsigned>(number >> 8 & 255),
                      static_cast<unsigned>(number & 255));
        return text;
    }
    std::string address()
    {
        return ipv4_text(static_cast<uint32_t>(1 + below(0xfffffffe)));
    }
    std::string host_in_a_net()
    {
        return nets_[below(nets_.size())] + std::to_string(2 + below(60));
    }
    std::string ipv6()
    {
        return "2001:db8:" + std::to_string(1 + below(9)) + "::" + std::to_string(1 + below(9));
    }

    Value any(const Type& type, const std::string& key)
    {
        if (!type.words.empty() && (type.kind == Type::Kind::kWord || chance(30))) {
            const std::string& word = type.words[below(type.words.size())];
            if (word != "other" && word != "any-usb") return word;
            return any(type, key);
        }
        const uint64_t span = type.high - type.low + 1;
        switch (type.kind) {
            case Type::Kind::kFlag:
                return chance(50);
            case Type::Kind::kNumber:
                if (chance(20)) return chance(50) ? type.low : type.high;
                return type.low + below(chance(50) ? span : std::min<uint64_t>(span, 2000));
            case Type::Kind::kIpv4:
                return key == "host" || key == "nat.dmz" ? host_in_a_net() : address();
            case Type::Kind::kIpv6:
                return ipv6();
            case Type::Kind::kIp:
                return chance(50) ? address() : ipv6();
            case Type::Kind::kNet:
                return address() + "/" + std::to_string(1 + below(32));
            case Type::Kind::kNet6:
                return ipv6() + "/" + std::to_string(below(129));
            case Type::Kind::kIpNet:
                return chance(50) ? ipv6() + "/" + std::to_string(below(129))
                                  : address() + "/" + std::to_string(1 + below(32));
            case Type::Kind::kMac:
                return mac(below(1u << 30));
            case Type::Kind::kText:
                return text(std::max<uint64_t>(type.low, 1), type.high);
            case Type::Kind::kPorts: {
                const auto first = static_cast<uint32_t>(type.low + below(span));
                const auto last = static_cast<uint32_t>(first + below(type.high - first + 1));
                return ports_text(first, chance(50) ? first : last);
            }
            case Type::Kind::kMasked:
                return std::to_string(below(256)) + "/" + std::to_string(below(256));
            case Type::Kind::kList: {
                std::set<Value> known;
                Value::List all;
                const size_t least = std::max<size_t>(type.low, type.is_set ? 1 : type.low);
                const size_t size = least + (type.high > least ? below(type.high - least + 1) : 0);
                while (all.size() < size) {
                    Value each = any(type.fields[0].type, key);
                    if (known.insert(each).second || !type.is_set) all.push_back(each);
                }
                return type.is_set ? sorted(all) : all;
            }
            case Type::Kind::kRecord:
                return record(type.fields);
            default:
                return {};
        }
    }

    std::string text(uint64_t low, uint64_t high)
    {
        const std::string letters = "abcXYZ019 -_:#'\"{}[],&*!|>%@`~";
        const uint64_t size = chance(20) ? high : low + below(std::min<uint64_t>(high - low + 1, 12));
        std::string made;
        for (uint64_t i = 0; i < size; ++i)
            made += letters[below(letters.size())];
        return made;
    }

    std::mt19937 random_;
    const bool whole_;
    Value tree_;
    std::vector<std::string> nets_;
    std::vector<std::string> ids_ = {};
    std::vector<std::string> labels_ = {};
};

}  // namespace ctl

#endif
