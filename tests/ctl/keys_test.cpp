// The table of keys: what it says of the host platform at first, and of itself.
#include "keys.h"

#include <set>

#include "area_fixture.h"
#include "tree.h"

namespace ctl {
namespace {

using KeysTest = AreaTest;

constexpr uint32_t kFirstProfile = 1;

TEST_F(KeysTest, AFreshModuleHasWhatTheTableSays)
{
    int count = 0;
    for (const Row& row : rows()) {
        if (!row.read || row.shape == Shape::kList || row.shape == Shape::kKeyed) continue;
        Value record;
        ASSERT_TRUE(row.read(row.scope == Scope::kProfile ? kFirstProfile : 0, &record).good() ||
                    row.fields[0].key == "gre.enabled");
        for (const Field& field : row.fields) {
            if (field.factory.empty()) continue;
            // LAN 0 has the module's own; a VLAN that is made has this.
            if (field.key == "passthrough_nat") continue;
            EXPECT_EQ(in_short(record.child(field.key)), field.factory) << field.key;
            ++count;
        }
    }
    EXPECT_GE(count, 35);
}

TEST_F(KeysTest, ListsAreEmptyAtFirst)
{
    for (const Row& row : rows()) {
        if (!row.read || (row.shape != Shape::kList && row.shape != Shape::kKeyed)) continue;
        Value entries;
        ASSERT_TRUE(row.read(row.scope == Scope::kProfile ? kFirstProfile : 0, &entries).good()) << row.path;
        EXPECT_TRUE(entries.list().empty()) << row.path;
        EXPECT_GT(row.most, 0u) << row.path;
    }
}

void expect_described(const Node& node, const std::string& path)
{
    EXPECT_FALSE(node.about.empty()) << path;
    EXPECT_NE(node.about.back(), '.') << path;
    EXPECT_FALSE(std::isupper(static_cast<unsigned char>(node.about[0])) &&
                 std::islower(static_cast<unsigned char>(node.about[1])))
        << path;
    std::set<std::string> keys;
    for (const Node& child : node.children) {
        EXPECT_TRUE(keys.insert(child.key).second) << path << "." << child.key;
        expect_described(child, path + "." + child.key);
    }
}

TEST_F(KeysTest, EveryKeyIsDescribed)
{
    for (const Node& section : key_tree().children)
        expect_described(section, section.key);
    for (const Row& row : rows())
        for (const Field& field : row.fields)
            EXPECT_FALSE(field.about.empty()) << row.path << "." << field.key;
}

}  // namespace
}  // namespace ctl
