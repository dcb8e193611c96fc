// What each kind of value takes, its normal spelling, and what is said of others.
#include "types.h"

#include <gtest/gtest.h>

#include "document.h"

namespace {

using ctl::Type;
using ctl::Value;

// The normal spelling, or what is wrong.
std::string normal(const Type& type, Value value)
{
    std::string problem;
    const ctl::Complain complain = [&problem](const Value&, const std::string& path, const std::string& text) {
        problem += (problem.empty() ? "" : "; ") + path + ": " + text;
    };
    return ctl::normalize(type, "key", &value, complain) ? ctl::in_short(value) : problem;
}

std::string normal(const Type& type, const char* text)
{
    return normal(type, Value(text));
}

Value in_quotes(const char* text)
{
    return ctl::Scalar{text, true};
}

struct Spelling {
    const char* document;
    const char* normal;
};

void expect_each(const Type& type, const std::vector<Spelling>& spellings)
{
    for (const Spelling& each : spellings) {
        EXPECT_EQ(normal(type, each.document), each.normal);
        EXPECT_EQ(normal(type, normal(type, each.document).c_str()), each.normal) << "once more";
    }
}

void expect_wrong(const Type& type, const std::string& allowed, const std::vector<const char*>& texts)
{
    EXPECT_EQ(ctl::allowed(type), allowed);
    for (const char* const text : texts)
        EXPECT_EQ(normal(type, text), "key: " + allowed + ", not " + text);
}

TEST(Types, Flags)
{
    expect_each(ctl::flag(), {{"true", "true"}, {"false", "false"}});
    expect_wrong(ctl::flag(), "true or false",
                 {"yes", "no", "on", "off", "y", "n", "True", "TRUE", "1", "0", "~", "null", " true", ""});
    EXPECT_EQ(normal(ctl::flag(), in_quotes("true")), "key: true or false, not \"true\"");
    EXPECT_EQ(normal(ctl::flag(), Value::List()), "key: true or false, not a list");
    EXPECT_EQ(normal(ctl::flag(), Value::Map()), "key: true or false, not a group of keys");
}

TEST(Types, Numbers)
{
    expect_each(ctl::number(0, 4294967295), {{"0", "0"}, {"1", "1"}, {"4294967295", "4294967295"}});
    expect_wrong(ctl::number(0, 4294967295), "a whole number in decimal digits, 0 to 4294967295",
                 {"4294967296", "9999999999", "18446744073709551616", "-1", "+1", "00", "010", "0x10", "0o10", "0b1",
                  "1_000", "1.0", "1e3", "190:20:30", " 1", "1 ", "", ".inf"});
    expect_each(ctl::number(30, 60000), {{"30", "30"}, {"60000", "60000"}});
    expect_wrong(ctl::number(30, 60000), "a whole number in decimal digits, 30 to 60000", {"29", "60001", "65566"});
    EXPECT_EQ(normal(ctl::number(0, 9), in_quotes("5")), "key: a whole number in decimal digits, 0 to 9, not \"5\"");
}

TEST(Types, Words)
{
    const Type type = ctl::word({"udp", "tcp-udp"});
    expect_each(type, {{"udp", "udp"}, {"tcp-udp", "tcp-udp"}});
    EXPECT_EQ(normal(type, in_quotes("udp")), "udp");
    expect_wrong(type, "one of udp, tcp-udp", {"UDP", "tcp", "tcp_udp", "", "udp "});
}

TEST(Types, Ipv4Addresses)
{
    expect_each(ctl::ipv4(),
                {{"0.0.0.0", "0.0.0.0"}, {"255.255.255.255", "255.255.255.255"}, {"192.168.1.1", "192.168.1.1"}});
    expect_wrong(ctl::ipv4(), "an IPv4 address",
                 {"192.168.1", "192.168.1.1.1", "192.168.01.1", "256.0.0.1", "192.168.1.-1", "192.168..1", "0xc0.1.1.1",
                  "3232235777", "192.168.1.1/24", "192.168.1.1 ", "::1", ""});
    Type not_zero = ctl::ipv4({"none"});
    not_zero.low = 1;
    expect_each(not_zero, {{"none", "none"}, {"0.0.0.1", "0.0.0.1"}, {"255.255.255.255", "255.255.255.255"}});
    expect_wrong(not_zero, "an IPv4 address other than 0.0.0.0, or none", {"0.0.0.0", "None"});
    expect_each(ctl::host(), {{"0.0.0.1", "0.0.0.1"}, {"255.255.255.254", "255.255.255.254"}});
    expect_wrong(ctl::host(), "an IPv4 address other than 0.0.0.0 and 255.255.255.255", {"0.0.0.0", "255.255.255.255"});
}

TEST(Types, Nets)
{
    expect_each(ctl::plain(Type::Kind::kNet), {{"192.168.1.1/24", "192.168.1.1/24"},
                                               {"192.168.1.1/255.255.255.0", "192.168.1.1/24"},
                                               {"10.0.0.0/0", "10.0.0.0/0"},
                                               {"10.0.0.0/0.0.0.0", "10.0.0.0/0"},
                                               {"10.0.0.1/32", "10.0.0.1/32"},
                                               {"10.0.0.1/255.255.255.255", "10.0.0.1/32"},
                                               {"10.0.0.1/255.0.255.0", "10.0.0.1/255.0.255.0"},
                                               {"10.0.0.1/0.0.0.255", "10.0.0.1/0.0.0.255"}});
    expect_wrong(ctl::plain(Type::Kind::kNet), "an IPv4 address and its prefix length or mask, as 192.168.1.1/24",
                 {"192.168.1.1", "192.168.1.1/", "192.168.1.1/33", "192.168.1.1/024", "192.168.1.1/255.255.255", "/24",
                  "192.168.1.1/24/24", "::1/64"});
}

TEST(Types, Ipv6AddressesAndNets)
{
    expect_each(ctl::plain(Type::Kind::kIpv6), {{"::", "::"},
                                                {"::1", "::1"},
                                                {"2001:DB8:0:0:0:0:0:1", "2001:db8::1"},
                                                {"2001:0db8::0001", "2001:db8::1"},
                                                {"::ffff:192.0.2.1", "::ffff:192.0.2.1"},
                                                {"::ffff:c000:201", "::ffff:192.0.2.1"},
                                                {"1:2:3:4:5:6:7::", "1:2:3:4:5:6:7:0"}});
    expect_wrong(ctl::plain(Type::Kind::kIpv6), "an IPv6 address",
                 {"1:2:3:4:5:6:7", "1::2::3", "fe80::1%eth0", "[::1]", "12345::", "192.0.2.1", ""});
    expect_each(ctl::plain(Type::Kind::kNet6),
                {{"2001:DB8::/32", "2001:db8::/32"}, {"::/0", "::/0"}, {"2001:db8::1/255", "2001:db8::1/255"}});
    expect_wrong(ctl::plain(Type::Kind::kNet6), "an IPv6 address and its prefix length, as \"2001:db8::/32\"",
                 {"2001:db8::", "2001:db8::/256", "2001:db8::/032", "2001:db8::/", "10.0.0.0/8"});
    expect_each(ctl::plain(Type::Kind::kIp), {{"10.0.0.1", "10.0.0.1"}, {"2001:DB8::1", "2001:db8::1"}});
    expect_wrong(ctl::plain(Type::Kind::kIp), "an IPv4 or IPv6 address", {"10.0.0", "2001:db8", "10.0.0.1/8"});
    expect_each(ctl::plain(Type::Kind::kIpNet),
                {{"10.0.0.1/255.0.0.0", "10.0.0.1/8"}, {"2001:DB8::/32", "2001:db8::/32"}});
    expect_wrong(ctl::plain(Type::Kind::kIpNet),
                 "an address of either family and its prefix length, as 192.168.1.0/24 or \"2001:db8::/32\"",
                 {"10.0.0.1", "2001:db8::/x"});
}

TEST(Types, Macs)
{
    expect_each(ctl::plain(Type::Kind::kMac), {{"00:01:02:03:04:0a", "00:01:02:03:04:0a"},
                                               {"AA:bB:Cc:DD:EE:FF", "aa:bb:cc:dd:ee:ff"},
                                               {"01:02:03:04:05:06", "01:02:03:04:05:06"},
                                               {"10:20:30:40:50:10", "10:20:30:40:50:10"}});
    expect_wrong(ctl::plain(Type::Kind::kMac),
                 "six pairs of hexadecimal digits with colons: write \"00:01:02:03:04:0a\"",
                 {"00-01-02-03-04-0a", "0001.0203.040a", "00010203040a", "0:1:2:3:4:a", "00:01:02:03:04",
                  "00:01:02:03:04:0g", "00:01:02:03:04:0a:", "0:01:02:03:04:0aa", " 0:01:02:03:04:0a", ""});
}

TEST(Types, Texts)
{
    expect_each(ctl::text(0, 4), {{"abcd", "abcd"}, {"010", "010"}, {"no", "no"}, {"\xc3\xbc\xc3\xbc", "üü"}});
    EXPECT_EQ(normal(ctl::text(0, 4), ""), "\"\"");
    expect_wrong(ctl::text(1, 4), "a text of 1 to 4 bytes", {"", "abcde", "\xc3\xbc\xc3\xbc!", "\\x00"});
    for (const std::string text : {"a\\", "\\x", "\\x4", "\\xgg", "\\n"})
        EXPECT_EQ(normal(ctl::text(1, 4), text), "key: a text of 1 to 4 bytes, with \\\\ for a backslash, not " + text);
    // Bytes as they are, and as escapes where they are no text.
    expect_each(ctl::text(0, 4), {{"\\x41", "A"},
                                  {"\\\\", "\\\\"},
                                  {"\\xFF\\x80", "\\xff\\x80"},
                                  {"\\xc3\\xbc", "ü"},
                                  {"\\x0a\t", "\\x0a\\x09"},
                                  {"\\x7f", "\\x7f"},
                                  {"\\xc2\\x80", "\\xc2\\x80"},
                                  {"\\xed\\xa0\\x80", "\\xed\\xa0\\x80"},
                                  {"\\xf0\\x9f\\x98\\x80", "\xf0\x9f\x98\x80"}});
    EXPECT_EQ(ctl::unescaped("a\\x0a\\\\b"), "a\n\\b");
    EXPECT_EQ(ctl::escaped("ab\0c", 4), "ab");
    EXPECT_EQ(ctl::escaped("abcd", 2), "ab");
    EXPECT_EQ(ctl::escaped("\xc3\xbc", 1), "\\xc3");
}

TEST(Types, Ports)
{
    expect_each(ctl::ports(1, 65534),
                {{"1", "1"}, {"65534", "65534"}, {"5000-5010", "5000-5010"}, {"80-80", "80"}, {"1-65534", "1-65534"}});
    EXPECT_EQ(normal(ctl::ports(1, 65534), in_quotes("80")), "80");
    expect_wrong(ctl::ports(1, 65534), "a port or a range of them, as 80 or 5000-5010, 1 to 65534",
                 {"0", "65535", "0-5", "1-65535", "5010-5000", "-5", "5-", "5--6", "080", "5 - 6", "http", "5:6", ""});
}

TEST(Types, Masked)
{
    expect_each(ctl::plain(Type::Kind::kMasked), {{"16/252", "16/252"}, {"0/0", "0/0"}, {"255/255", "255/255"}});
    expect_wrong(ctl::plain(Type::Kind::kMasked), "a byte and its mask, as 16/252",
                 {"16", "16/", "/252", "256/0", "0/256", "16/0xfc", "016/252", "16/252/1"});
}

TEST(Types, Profiles)
{
    Type type = ctl::plain(Type::Kind::kProfile);
    type.words = {"none"};
    expect_each(type, {{"main", "main"}, {"none", "none"}, {"Büro 1", "Büro 1"}});
    expect_wrong(type, "the label of a profile, or none", {""});
}

TEST(Types, Lists)
{
    const Type two = ctl::list_of(ctl::ipv4(), 2, {"unset"}, 2);
    EXPECT_EQ(ctl::allowed(two), "a list of 2 entries, each an IPv4 address, or unset");
    EXPECT_EQ(normal(two, "unset"), "unset");
    EXPECT_EQ(normal(two, "10.0.0.1"), "key: " + ctl::allowed(two) + ", not 10.0.0.1");
    EXPECT_EQ(normal(two, Value::List{"10.0.0.2", "10.0.0.1"}), "[10.0.0.2, 10.0.0.1]");
    EXPECT_EQ(normal(two, Value::List{"10.0.0.2"}), "key: 1 entries, 2 are the fewest");
    EXPECT_EQ(normal(two, Value::List{"1.1.1.1", "1.1.1.2", "1.1.1.3"}), "key: 3 entries, 2 are the most");
    EXPECT_EQ(normal(two, Value::List{"10.0.0.2", "x"}), "key[1]: an IPv4 address, not x");

    const Type any_order = ctl::set_of(ctl::plain(Type::Kind::kMac), 16);
    EXPECT_EQ(ctl::allowed(any_order).substr(0, 30), "a list of 16 entries at most, ");
    EXPECT_EQ(normal(any_order, Value::List{"02:00:00:00:00:0B", "02:00:00:00:00:0a"}),
              "[02:00:00:00:00:0a, 02:00:00:00:00:0b]");
}

TEST(Types, Records)
{
    const std::vector<ctl::Field> fields = {
        ctl::needed({"port", ctl::number(1, 65535), ""}),
        ctl::optional({"name", ctl::text(0, 10), ""}),
        ctl::or_else({"on", ctl::flag(), ""}, "true"),
        ctl::or_same_as({"other_port", ctl::number(1, 65535), ""}, "port"),
    };
    Type type = {Type::Kind::kRecord};
    type.fields = fields;
    EXPECT_EQ(normal(type, Value::Map{{"port", 80}}), "{on: true, other_port: 80, port: 80}");
    EXPECT_EQ(normal(type, Value::Map{{"port", 80}, {"on", false}, {"other_port", 81}, {"name", "a"}}),
              "{name: a, on: false, other_port: 81, port: 80}");
    EXPECT_EQ(normal(type, Value::Map{}), "key: port is missing");
    EXPECT_EQ(normal(type, Value::Map{{"prt", 80}, {"zzzzzz", 1}}),
              "key.prt: no such key; did you mean port?; key.zzzzzz: no such key; key: port is missing");
    EXPECT_EQ(normal(type, "80"), "key: a group of keys, not 80");
}

TEST(Types, WhatMayBeMeant)
{
    const std::vector<std::string> known = {"last", "first", "lease_seconds", "apn_index", "apn_name", "1"};
    EXPECT_EQ(ctl::no_such_key("lst", known), "no such key; did you mean last?");
    EXPECT_EQ(ctl::no_such_key("lease", known), "no such key; did you mean lease_seconds?");
    EXPECT_EQ(ctl::no_such_key("apn", known), "no such key; did you mean apn_name?");
    EXPECT_EQ(ctl::no_such_key("leaseSeconds", known), "no such key; did you mean lease_seconds?");
    EXPECT_EQ(ctl::no_such_key("3", known), "no such key");
    EXPECT_EQ(ctl::no_such_key("", known), "no such key");
    EXPECT_EQ(ctl::no_such_key("gateway", known), "no such key");
    EXPECT_EQ(ctl::no_such_key(std::string(100000, 'a'), known), "no such key");
}

TEST(Types, AMessageCutsALongText)
{
    EXPECT_EQ(normal(ctl::flag(), Value(std::string(201, 'a'))),
              "key: true or false, not " + std::string(200, 'a') + "...");
    std::string text = std::string(199, 'a') + "ü" + "b";
    EXPECT_EQ(normal(ctl::flag(), Value(text)), "key: true or false, not " + std::string(199, 'a') + "...");
}

}  // namespace
