#include "keys.h"

#include <iterator>
#include <stdexcept>

namespace ctl {
namespace {

constexpr uint8_t kNoFlag = 0xff;

std::vector<Row> all_rows()
{
    std::vector<Row> all;
    for (const auto& area : {general_rows, lan_addressing_rows, lan_vlan_rows, lan_passthrough_rows, lan_services_rows,
                             alg_rows, wan_profile_rows, wan_connection_rows, wan_mpdn_mapping_rows, nat_rows,
                             vpn_passthrough_rows, firewall_rows, upnp_rows, gre_rows}) {
        std::vector<Row> rows = area();
        std::move(rows.begin(), rows.end(), std::back_inserter(all));
    }
    return all;
}

// A byte as a flag: 0 and 1, or nothing for what was left alone.
Value flag_of(uint8_t byte)
{
    return byte == kNoFlag ? Value() : Value(byte != 0);
}

}  // namespace

const std::vector<Row>& rows()
{
    static const std::vector<Row> all = all_rows();
    return all;
}

const Row& row_of(const std::string& key)
{
    for (const Row& row : rows()) {
        if (!row.path.empty() && row.path == key) return row;
        for (const Field& field : row.fields)
            if (row.path.empty() && field.key == key) return row;
    }
    throw std::logic_error("no row " + key);
}

Row module_flag(Phase phase, Field field, uint32_t (*set)(uint32_t), const char* set_name, uint32_t (*get)(uint8_t*),
                const char* get_name)
{
    Row row = {Scope::kModule, Shape::kUnit, phase, "", {field}, {set_name, get_name}};
    row.read = [get, get_name, key = field.key](uint32_t, Value* out) {
        uint8_t byte = kNoFlag;
        Result result = {get(&byte), get_name};
        if (result.good()) out->map()[key] = flag_of(byte);
        return result;
    };
    row.write = [set, set_name, key = field.key](uint32_t, const Value& wanted, const Value&) {
        return Result{set(wanted.child(key).flag() ? 1 : 0), set_name};
    };
    return row;
}

Row scoped_flag(Scope scope, Phase phase, Field field, uint32_t (*set)(uint32_t, uint32_t), const char* set_name,
                uint32_t (*get)(uint32_t, uint8_t*), const char* get_name)
{
    Row row = {scope, Shape::kUnit, phase, "", {field}, {set_name, get_name}};
    row.read = [get, get_name, key = field.key](uint32_t id, Value* out) {
        uint8_t byte = kNoFlag;
        Result result = {get(id, &byte), get_name};
        if (result.good()) out->map()[key] = flag_of(byte);
        return result;
    };
    row.write = [set, set_name, key = field.key](uint32_t id, const Value& wanted, const Value&) {
        return Result{set(id, wanted.child(key).flag() ? 1 : 0), set_name};
    };
    return row;
}

}  // namespace ctl
