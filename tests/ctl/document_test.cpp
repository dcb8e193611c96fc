// The reader of documents, and documents as they are written: YAML and JSON.
#include "document.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "checks.h"
#include "tree.h"

namespace {

using ctl::Value;

// What it reads as, on one line, or what is wrong with it.
std::string read(const std::string& bytes)
{
    ctl::Problems problems;
    const Value value = ctl::read_document(bytes, &problems);
    return problems.empty() ? ctl::in_short(value) : ctl::problem_lines("doc", problems);
}

// What is wrong with it after all checks; "good", or its lines without the file's name.
std::string check(const std::string& bytes)
{
    ctl::Problems problems;
    ctl::check_document(ctl::read_document("version: 1\n" + bytes, &problems), &problems);
    return problems.empty() ? "good" : ctl::problem_lines("doc", problems);
}

// ---- form ----

TEST(Document, IsYamlOrJson)
{
    const std::string same = "{a: 1, b: [x, y], c: {d: \"\"}}";
    EXPECT_EQ(read("a: 1\nb: [x, y]\nc: {d: ''}\n"), same);
    EXPECT_EQ(read("a: 1\nb:\n- x\n- y\nc:\n  d: \"\"\n"), same);
    EXPECT_EQ(read(R"({"a": 1, "b": ["x", "y"], "c": {"d": ""}})"), same);
    EXPECT_EQ(read("---\na: 1\nb: [x, y]\nc: {d: ''}\n...\n"), same);
    EXPECT_EQ(read("%YAML 1.1\n---\na: 1 # a comment\nb: [x, y]\nc: {d: ''}\n"), same);
    EXPECT_EQ(read("\xef\xbb\xbf"
                   "a: 1\nb: [x, y]\nc: {d: ''}\n"),
              same);
    EXPECT_EQ(read("a: 1\r\nb: [x, y]\r\nc: {d: ''}\r\n"), same);
    EXPECT_EQ(read("a: |\n  x\n  y\nb: >\n  x\n  y\n"), "{a: x\ny\n, b: x y\n}");
    EXPECT_EQ(read(R"({"a": "\u00fc\n\"\\\/"})"), "{a: ü\n\"\\/}");
}

TEST(Document, IsOneAndNotEmpty)
{
    EXPECT_EQ(read(""), "doc:1:1: empty\n");
    EXPECT_EQ(read("# nothing\n\n"), "doc:1:1: empty\n");
    EXPECT_EQ(read("a: 1\n---\na: 2\n"), "doc:2:1: a second document\n");
    EXPECT_EQ(read("---\n"), "doc:2:1: nothing stands behind it; leave the key out to leave it alone\n");
}

TEST(Document, IsToldWhereItCannotBeRead)
{
    EXPECT_EQ(read("a: [1, 2\nb: 3\n"), "doc:2:2: did not find expected ',' or ']'\n");
    EXPECT_EQ(read("a: \"x\n"), "doc:2:1: found unexpected end of stream\n");
    EXPECT_EQ(read("a: 1\n\tb: 2\n"), "doc:2:1: found a tab character that violates indentation\n");
    EXPECT_EQ(read("{\"a\": 1}}"), "doc:1:9: did not find expected <document start>\n");
    EXPECT_EQ(read("a: b: c\n"), "doc:1:5: mapping values are not allowed in this context\n");
    EXPECT_EQ(read("<config/>"), "<config/>");
    EXPECT_EQ(read("a: 1\nb: x\xff\xfe\n"), "doc:2:5: not UTF-8: invalid leading UTF-8 octet\n");
    EXPECT_EQ(read("a: \xc3\n"), "doc:1:5: not UTF-8: invalid trailing UTF-8 octet\n");
    EXPECT_EQ(read("a: \xc3"), "doc:1:4: not UTF-8: incomplete UTF-8 octet sequence\n");
    EXPECT_EQ(read("a: \xed\xa0\x80\n"), "doc:1:4: invalid Unicode character\n");
    EXPECT_EQ(read(std::string("a: \0b\n", 6)), "doc:1:4: control characters are not allowed\n");
    EXPECT_EQ(read("a: 1\nb: 2\nc: \x1b[2J\n"), "doc:3:4: control characters are not allowed\n");
    EXPECT_EQ(read("\x7f"
                   "ELF\x02\x01"),
              "doc:1:1: control characters are not allowed\n");
    EXPECT_EQ(read("\xff\xfe"
                   "a\0:\0"),
              "doc:1:1: not UTF-8: invalid leading UTF-8 octet\n");
    // Two halves of a pair, as some writers of JSON spell one sign.
    EXPECT_EQ(
        read(R"({"a": "\ud83d\ude00"})"),
        "doc:1:10: found invalid Unicode character escape code; a sign beyond \\uffff is written as itself, or as "
        "\\U and eight digits\n");
    EXPECT_EQ(read("a: \"\\U0001f600\"\n"), "{a: \xf0\x9f\x98\x80}");
}

TEST(Document, HasNoAliasesAnchorsAndTags)
{
    EXPECT_EQ(read("a: &x 1\nb: 2\n"), "doc:1:4: a: anchors and tags are not taken\n");
    EXPECT_EQ(read("a: 1\nb: *x\n"), "doc:2:4: b: aliases are not taken\n");
    EXPECT_EQ(read("a: &x [1]\n"), "doc:1:4: a: anchors and tags are not taken\n");
    EXPECT_EQ(read("a: &x {b: 1}\n"), "doc:1:4: a: anchors and tags are not taken\n");
    EXPECT_EQ(read("a: !!str 1\n"), "doc:1:4: a: anchors and tags are not taken\n");
    EXPECT_EQ(read("a: !!set {b, c}\n"), "doc:1:4: a: anchors and tags are not taken\n");
    EXPECT_EQ(read("a: ! 1\n"), "doc:1:4: a: anchors and tags are not taken\n");
    EXPECT_EQ(read("!!map {a: 1}\n"), "doc:1:1: anchors and tags are not taken\n");
    EXPECT_EQ(read("&x a: 1\n"), "doc:1:1: a key is a plain text or number\n");
    EXPECT_EQ(read("a: {b: 1}\n<<: *a\n"), "doc:2:5: <<: aliases are not taken\n");
    EXPECT_EQ(read("<<: {b: 1}\n"), "{<<: {b: 1}}");  // no key of any group
}

TEST(Document, HasKeysOnce)
{
    EXPECT_EQ(read("a: 1\nb: 2\na: 3\n"), "doc:3:1: a: key stands on line 1 already\n");
    EXPECT_EQ(read("a: {b: 1, \"b\": 1}\n"), "doc:1:11: a.b: key stands on line 1 already\n");
    EXPECT_EQ(read("? [a]\n: 1\n"), "doc:1:3: a key is a plain text or number\n");
    EXPECT_EQ(read("? {a: 1}\n: 1\n"), "doc:1:3: a key is a plain text or number\n");
    EXPECT_EQ(read("01: 1\n1: 1\n"), "{01: 1, 1: 1}");
}

TEST(Document, HasSomethingBehindEveryKey)
{
    const std::string nothing = "nothing stands behind it; leave the key out to leave it alone\n";
    for (const char* const text : {"a: ~\n", "a: null\n", "a: Null\n", "a: NULL\n"})
        EXPECT_EQ(read(text), "doc:1:4: a: " + nothing) << text;
    EXPECT_EQ(read("a:\nb: 1\n").substr(0, 4), "doc:");
    EXPECT_EQ(read("[1, ~]\n"), "doc:1:5: [1]: " + nothing);
    EXPECT_EQ(read("a: \"null\"\nb: '~'\nc: ''\n"), "{a: null, b: ~, c: \"\"}");
    // Once, whatever would have to stand there.
    EXPECT_EQ(check("general: {ipv4: ~}\n"), "doc:2:17: general.ipv4: " + nothing);
    EXPECT_EQ(check("lans: ~\nreservations: ~\nsoftware_path: null\nprofiles: null\n"),
              "doc:2:7: lans: " + nothing + "doc:3:15: reservations: " + nothing +
                  "doc:4:16: software_path: " + nothing + "doc:5:11: profiles: " + nothing);
    EXPECT_EQ(check("lans: {10: ~}\nprofiles: {main: ~}\n"),
              "doc:2:12: lans.10: " + nothing + "doc:3:18: profiles.main: " + nothing);
}

TEST(Document, IsNotDeeperThan16)
{
    EXPECT_EQ(read(std::string(16, '[') + std::string(16, ']')), std::string(16, '[') + std::string(16, ']'));
    EXPECT_EQ(read(std::string(17, '[') + std::string(17, ']')).substr(0, 10), "doc:1:17: ");
    EXPECT_NE(read(std::string(10000, '[')).find("nested deeper than 16"), std::string::npos);
}

// ---- what YAML's own ideas of values would make of them ----

TEST(Document, HasValuesAsTheTableSays)
{
    const std::string flag = "true or false, not ";
    for (const char* const word : {"no", "on", "off", "yes", "y", "N", "True", "FALSE", "0", "1"})
        EXPECT_EQ(check("general: {ipv4: " + std::string(word) + "}\n"),
                  "doc:2:11: general.ipv4: " + flag + word + "\n");
    const std::string number = "a whole number in decimal digits, 30 to 60000, not ";
    for (const char* const word :
         {"010", "0o100", "0x40", "0b1000000", "1_800", "1800.0", "1.8e3", "30:00", "+1800", ".inf", "2026-01-01"})
        EXPECT_EQ(check("upnp: {notify_seconds: " + std::string(word) + "}\n"),
                  "doc:2:8: upnp.notify_seconds: " + number + word + "\n");
    // Texts are texts, however they look.
    for (const char* const word :
         {"no", "on", "010", "0x10", "1e3", "12:30:45", "2026-01-01", "1.5", "true", ".nan", "<<", "="})
        EXPECT_EQ(check("general: {gateway_url: " + std::string(word) + "}\n"), "good") << word;
    for (const char* const mac :
         {"01:02:03:04:05:06", "10:20:30:40:50:10", "\"01:02:03:04:05:06\"", "'01:02:03:04:05:06'"})
        EXPECT_EQ(check("reservations: {192.168.10.30: {mac: " + std::string(mac) + "}}\n"), "good") << mac;
    for (const char* const label : {"no", "1", "010", "~x", "true", "null", "<<", "12:30"})
        EXPECT_EQ(check("profiles: {" + std::string(label) + ": {handle: 1}}\nroles: {default: '" + label + "'}\n"),
                  "good")
            << label;
}

TEST(Document, HasItsPlacesTold)
{
    EXPECT_EQ(check("lans:\n  0:\n    dhcp:\n      mtu: 12x\n      leas: 1\n    gateway_filters:\n      - {ports: 80}\n"
                    "      - protocol: tpc\nupnp: {enabled: on, notify_seconds: 5}\n"),
              "doc:5:7: lans.0.dhcp.mtu: a whole number in decimal digits, 0 to 4294967295, not 12x\n"
              "doc:6:7: lans.0.dhcp.leas: no such key; did you mean lease_seconds?\n"
              "doc:8:9: lans.0.gateway_filters[0]: protocol is missing\n"
              "doc:9:9: lans.0.gateway_filters[1].protocol: one of tcp, udp, portless, other, not tpc\n"
              "doc:10:8: upnp.enabled: true or false, not on\n"
              "doc:10:21: upnp.notify_seconds: a whole number in decimal digits, 30 to 60000, not 5\n");
}

TEST(Document, OfALaterVersionIsNamed)
{
    ctl::Problems problems;
    ctl::check_document(ctl::read_document("version: 2\n", &problems), &problems);
    EXPECT_EQ(ctl::problem_lines("doc", problems), "doc:1:1: version: 1 is known, 2 is not\n");
}

TEST(Document, MessagesCarryNoControlBytes)
{
    EXPECT_EQ(check("\"x\\e[2J\": 1\n"), "doc:2:1: x\\x1b[2J: no such key\n");
    EXPECT_EQ(check("general: {ipv4: \"a\\nb\"}\n"), "doc:2:11: general.ipv4: true or false, not \"a\\x0ab\"\n");
}

// ---- files ----

TEST(Files, AreReadOrNamed)
{
    char folder[] = "/tmp/document_test.XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string file = std::string(folder) + "/doc";
    std::string bytes;
    std::ofstream(file) << "version: 1\n";
    EXPECT_EQ(ctl::read_file(file, &bytes), "");
    EXPECT_EQ(bytes, "version: 1\n");
    unlink(file.c_str());
    EXPECT_EQ(ctl::read_file(file, &bytes), "No such file or directory");
    EXPECT_EQ(ctl::read_file(folder, &bytes), "Is a directory");
    rmdir(folder);
    EXPECT_EQ(ctl::read_file("/dev/zero", &bytes), "larger than 32 MiB");
}

// ---- writing ----

TEST(Writing, PutsInQuotesWhatOtherReadersMistake)
{
    for (const char* const text : {"router.example", "a", "with-nat", "x_1"})
        EXPECT_EQ(ctl::spelled(Value(text), false), text);
    for (const char* const text :
         {"no",     "NO",  "Yes", "on", "off", "y",   "n",          "true",  "False",
          "null",   "~",   "",    "1",  "010", "1.5", "0x10",       "12:30", "10:20:30:40:50:10",
          "fe80::", "a b", "a:b", "#a", "-a",  "<<",  "=",          "a#",    "a,b",
          "{a",     "[a",  "*a",  "&a", "!a",  "|",   "2026-01-01", ".nan",  "é"})
        EXPECT_EQ(ctl::spelled(Value(text), false), "\"" + std::string(text) + "\"");
    EXPECT_EQ(ctl::quoted("a\"b\\c\n\t\x7fü"), "\"a\\\"b\\\\c\\u000a\\u0009\\u007fü\"");
}

// A document with something of everything.
constexpr const char* kWhole = R"(version: 1
general:
  gateway_url: "no"
  ipv4: true
software_path: [192.168.10.7, 192.168.10.8]
reservations:
  192.168.10.9: {mac: "10:20:30:40:50:10", name: "a\\\\b"}
  192.168.10.30: {absent: true}
lans:
  0:
    address: 192.168.10.1/24
    dhcp:
      dns: [192.0.2.53, 198.51.100.53]
    passthrough: {device: adaptive, choice: 0}
    gateway_filters:
      - {protocol: tcp, ports: 80}
      - {protocol: udp, ports: "5000-5010"}
    l2tp:
      tunnels:
        7: {peer_tunnel: 8, encapsulation: ip, local: "2001:db8::1", peer: "2001:db8::2", sessions: [{local: 1, peer: 2}]}
        70: {absent: true}
    sip_server: {}
  9:
    vlan: {interface: ethernet-2, accelerated: true}
  10:
    absent: true
  20: {}
profiles:
  1:
    handle: 3
    vlans: []
  "no":
    dial: {apn_index: 1}
    nat:
      dmz: none
      port_mappings:
        - {protocol: tcp, global_port: 80, host: 192.168.10.50}
        - {protocol: esp, host: 192.168.10.51}
    firewall:
      entries:
        - {family: ipv6, destination: "2001:db8::/32", protocol: esp, spi: 4096}
        - {family: ipv4, source: "203.0.113.0/255.0.255.0", tos: "16/252", protocol: tcp, destination_ports: 22}
hardware_mac_filter:
  stations: ["02:00:00:00:00:31"]
  interfaces: [[1, 0, 0, 0, 4294967295]]
write_only:
  alg:
    1: true
)";

// Line ends of YAML's that JSON does not know, and signs that its readers refuse.
TEST(Writing, HasTextsThatAreReadAsTheyWere)
{
    EXPECT_EQ(ctl::quoted("\xe2\x80\xa8 \xe2\x80\xa9 \xef\xbb\xbf \xef\xbf\xbf \xc2\x85 \xc2\xa0"),
              "\"\\u2028 \\u2029 \\ufeff \\uffff \\u0085 \xc2\xa0\"");
    for (const char* const text : {" a ",
                                   "a  b",
                                   "\ta",
                                   "a\n b\n",
                                   "a\r\nb",
                                   "a \xe2\x80\xa8 b",
                                   "a \xe2\x80\xa9 b",
                                   "\xef\xbb\xbf"
                                   "a",
                                   "a\xef\xbf\xbe",
                                   "a\xef\xbf\xbf",
                                   "a\xc2\x85"
                                   "b",
                                   "a\xc2\x80",
                                   "\xf0\x9f\x98\x80",
                                   "'",
                                   "\"",
                                   "\\",
                                   "\\u0041",
                                   "%a",
                                   "@a",
                                   "`a",
                                   "? a",
                                   "- a",
                                   ": a",
                                   "a: b",
                                   "a #b",
                                   "---",
                                   "..."})
        for (const char* const behind : {"]\n", "]"})
            EXPECT_EQ(read("[" + ctl::spelled(Value(text), false) + behind), "[" + std::string(text) + "]") << text;
}

TEST(Writing, IsReadAsItWas)
{
    ctl::Problems problems;
    const std::string document = kWhole;
    const Value tree = ctl::check_document(ctl::read_document(document, &problems), &problems);
    ASSERT_EQ(ctl::problem_lines("doc", problems), "");
    EXPECT_EQ(ctl::as_yaml(tree), document);

    const std::string json = ctl::as_json(tree);
    EXPECT_EQ(json.substr(0, 62), R"({"version": 1, "general": {"gateway_url": "no", "ipv4": true},)");
    const Value again = ctl::check_document(ctl::read_document(json, &problems), &problems);
    ASSERT_EQ(ctl::problem_lines("doc", problems), "");
    EXPECT_TRUE(again == tree) << json;
    EXPECT_EQ(ctl::as_yaml(again), document);
    EXPECT_EQ(ctl::as_json(again), json);
}

}  // namespace
