// Values: their order, and that copies are values of their own.
#include "value.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using ctl::Value;

TEST(Value, runs_of_digits_go_by_their_number)
{
    const std::vector<std::string> in_order = {"",     "0",     "00",   "01",   "1",         "1a",         "2",
                                               "9",    "010",   "10",   "10.1", "10.1.2",    "10.2",       "100",
                                               "dhcp", "lan",   "lan-", "lan1", "lan1.9",    "lan1.10",    "lan2",
                                               "lan9", "lan10", "lans", "p-1x", "profile-9", "profile-10", "\xc3\xa4"};
    const ctl::NaturalOrder before;
    for (size_t i = 0; i < in_order.size(); ++i) {
        for (size_t j = 0; j < in_order.size(); ++j)
            EXPECT_EQ(before(in_order[i], in_order[j]), i < j) << in_order[i] << ", " << in_order[j];
    }
}

TEST(Value, a_copy_is_changed_alone)
{
    Value first;
    first.make("dhcp.first") = "192.168.0.2";
    first.make("filters").list() = {Value("a"), Value("b")};
    Value second = first;
    EXPECT_EQ(first, second);

    second.make("dhcp.first") = "192.168.0.3";
    second.make("filters").list().emplace_back("c");
    EXPECT_EQ(first.at("dhcp.first").text(), "192.168.0.2");
    EXPECT_EQ(first.at("filters").list().size(), 2u);
    EXPECT_EQ(second.at("dhcp.first").text(), "192.168.0.3");
    EXPECT_EQ(second.at("filters").list().size(), 3u);
    EXPECT_NE(first, second);

    Value third = first;
    first.erase("dhcp.first");
    EXPECT_FALSE(first.has("dhcp.first"));
    EXPECT_TRUE(third.has("dhcp.first"));
    const Value of_first = third.child("filters");
    third.make("filters").list().clear();
    EXPECT_EQ(of_first.list().size(), 2u);
}

TEST(Value, a_value_of_another_kind_becomes_empty)
{
    Value value = "text";
    EXPECT_TRUE(value.list().empty());
    EXPECT_TRUE(value.is_list());
    EXPECT_TRUE(value.map().empty());
    EXPECT_TRUE(value.is_map());
    EXPECT_TRUE(value.child("none").is_nothing());
}

TEST(Value, equal_entries_keep_their_order_when_sorted)
{
    Value::List list = {"b", "a", "b", "a"};
    for (uint32_t i = 0; i < 4; ++i)
        list[i].tag = i;
    std::vector<uint32_t> tags;
    for (const Value& each : ctl::sorted(list))
        tags.push_back(each.tag);
    EXPECT_EQ(tags, (std::vector<uint32_t>{1, 3, 0, 2}));
}

}  // namespace
