// Documents that are large, deep or many: refused within a second, and without the memory that they ask for.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "checks.h"
#include "document.h"
#include "tree.h"

namespace {

using ctl::Problems;

std::string many(size_t count, const std::string& text)
{
    std::string all;
    all.reserve(count * text.size());
    for (size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

double processor_seconds()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// The most that this process ever had, in KiB.
long peak()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define UNDER_A_SANITIZER
#endif
#endif
#if defined(UNDER_A_SANITIZER) || defined(__SANITIZE_THREAD__)
constexpr int kDearer = 3;
#else
constexpr int kDearer = 1;
#endif
constexpr long kRoom = 300 * 1024 * kDearer;  // KiB beside the document
// Of the processor: what else runs on the machine does not count. A tenth of it is needed.
constexpr double kSeconds = 5 * kDearer;

// The problems of a document, found quickly and in little memory.
Problems problems_of(const std::string& document)
{
    Problems problems;
    const long before = peak();
    const double begin = processor_seconds();
    ctl::check_document(ctl::read_document(document, &problems), &problems);
    EXPECT_LT(processor_seconds() - begin, kSeconds);
    EXPECT_LT(peak() - before, kRoom);
    return problems;
}

// The one problem, as it is told.
std::string problem_of(const std::string& document)
{
    const Problems problems = problems_of(document);
    EXPECT_EQ(problems.size(), 1u);
    return ctl::problem_lines("file", problems);
}

const std::string kVersion = "version: 1\n";

TEST(Limits, a_file_of_100_megabytes_is_not_read_to_its_end)
{
    char name[] = "/tmp/limits_test_XXXXXX";
    const int fd = mkstemp(name);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(ftruncate(fd, 100 << 20), 0);
    close(fd);
    const long before = peak();
    std::string bytes;
    EXPECT_EQ(ctl::read_file(name, &bytes), "larger than 32 MiB");
    EXPECT_LT(bytes.size(), size_t{33} << 20);
    EXPECT_LT(peak() - before, kRoom);
    std::remove(name);
}

TEST(Limits, a_document_of_32_mebibytes_is_read)
{
    const std::string rest = kVersion + "general: {ipv4: true}\n";
    Problems problems;
    const ctl::Value value =
        ctl::read_document(rest + "#" + std::string(ctl::kDocumentMax - rest.size() - 1, 'x'), &problems);
    EXPECT_TRUE(problems.empty());
    EXPECT_EQ(value.at("general.ipv4").text(), "true");
}

TEST(Limits, no_document_is_nested_deeper_than_16)
{
    const std::string path = many(14, "[0]");
    EXPECT_EQ(problem_of(kVersion + "lans: " + many(10000, "[") + many(10000, "]")),
              "file:2:22: lans[0]" + path + ": nested deeper than 16\n");
    EXPECT_EQ(problem_of(kVersion + "lans: " + many(10000, "{a: ")),
              "file:2:67: lans" + many(15, ".a") + ": nested deeper than 16\n");
}

TEST(Limits, aliases_that_multiply_end_at_the_first_anchor)
{
    std::string document = kVersion + "a: &a [x, x]\n";
    for (char name = 'b'; name < 'z'; ++name)
        document += std::string(1, name) + ": &" + name + many(1, " [*") + static_cast<char>(name - 1) + ", *" +
                    static_cast<char>(name - 1) + "]\n";
    EXPECT_EQ(problem_of(document), "file:2:4: a: anchors and tags are not taken\n");
}

TEST(Limits, a_document_has_a_million_values_at_most)
{
    EXPECT_EQ(problem_of(kVersion + "software_path:\n" + many(1100000, "- 1\n")),
              "file:1000000:3: software_path[999997]: more than 1000000 values\n");
}

TEST(Limits, a_thousand_problems_are_told)
{
    std::string keys = kVersion;
    for (int i = 0; i < 500000; ++i)
        keys += "k" + std::to_string(i) + ": 1\n";
    for (const std::string& document : {keys, kVersion + "software_path:\n" + many(900000, "- 1\n"),
                                        kVersion + "software_path:\n" + many(900000, "-\n")}) {
        const Problems problems = problems_of(document);
        ASSERT_EQ(problems.size(), 1001u);
        EXPECT_EQ(problems.back().text, "there are more problems than are told");
    }
}

TEST(Limits, a_key_has_1024_bytes_at_most)
{
    EXPECT_EQ(problem_of(kVersion + "? \"" + many(1024, "k") + "\"\n: 1\n"),
              "file:2:3: " + many(1024, "k") + ": no such key\n");
    EXPECT_EQ(problem_of(kVersion + "? \"" + many(1025, "k") + "\"\n: 1\n"),
              "file:2:3: a key of more than 1024 bytes\n");
    // Each path would be a copy of it.
    EXPECT_EQ(problem_of(kVersion + "? \"" + many(16000000, "k") + "\"\n:\n" + many(3000, "  - 1\n")),
              "file:2:3: a key of more than 1024 bytes\n");
}

TEST(Limits, a_message_says_the_begin_of_a_long_text)
{
    const std::string begin = "file:2:11: general.gateway_url: a text of 1 to 127 bytes, not ";
    EXPECT_EQ(problem_of(kVersion + "general: {gateway_url: " + many(20000000, "k") + "}\n"),
              begin + many(200, "k") + "...\n");
    // Never half a sign.
    EXPECT_EQ(problem_of(kVersion + "general: {gateway_url: k" + many(1000, "\xc3\xa4") + "}\n"),
              begin + "k" + many(99, "\xc3\xa4") + "...\n");
}

// libyaml compares each with all others.
TEST(Limits, directives_other_than_the_version_are_not_taken)
{
    std::string tags;
    for (int i = 0; i < 300000; ++i)
        tags += "%TAG !a" + std::to_string(i) + "! b\n";
    EXPECT_EQ(problem_of(tags + "---\nversion: 1\n"), "file:1:1: directives other than %YAML are not taken\n");
    EXPECT_EQ(problem_of("%YAML 1.1\n" + tags + "---\nversion: 1\n"),
              "file:2:1: directives other than %YAML are not taken\n");
    EXPECT_EQ(problem_of("# first\n\n  \n" + tags + "---\nversion: 1\n"),
              "file:4:1: directives other than %YAML are not taken\n");
    EXPECT_EQ(problem_of("\xef\xbb\xbf" + tags + "---\nversion: 1\n"),
              "file:1:1: directives other than %YAML are not taken\n");
    // Whatever ends their lines.
    for (const char* const end : {"\r", "\r\n", "\xc2\x85", "\xe2\x80\xa8", "\xe2\x80\xa9"}) {
        std::string others = std::string("# first") + end;
        for (int i = 0; i < 100000; ++i)
            others += "%TAG !a" + std::to_string(i) + "! b" + end;
        EXPECT_EQ(problem_of(others + "---" + end + "version: 1" + end),
                  "file:2:1: directives other than %YAML are not taken\n");
    }
    EXPECT_EQ(problem_of(kVersion + "...\n# behind\n" + tags + "---\nversion: 1\n"),
              "file:4:1: directives other than %YAML are not taken\n");
    // Elsewhere the sign is one like all others.
    EXPECT_EQ(problem_of(kVersion + "general: {gateway_url: \"%TAG\"}\nx: \"a\n%b\"\n"), "file:3:1: x: no such key\n");
}

// ---- a module that is full ----

std::string numbered(const char* before, size_t number, const std::string& behind)
{
    return before + std::to_string(number) + behind;
}

// With the longest spelling of each value, a byte of a text being \\xff.
std::string full_lan(size_t id)
{
    const std::string text = many(100, "\\\\xff");
    std::string lan = numbered("  ", id, ":\n");
    if (id != 0)
        lan += "    vlan: {interface: ethernet-2, accelerated: true}\n    passthrough_nat: with-nat-one-device\n";
    lan +=
        "    address: 255.255.255.255/255.255.255.251\n    dhcp: {enabled: false, first: 255.255.255.254, last: "
        "255.255.255.254, lease_seconds: 4294967295, mtu: 4294967295, dns: [255.255.255.254, 255.255.255.254]}\n"
        "    passthrough: {device: usb, host_name: \"" +
        text + "\"}\n    gateway_filters:\n" + many(5, "      - {protocol: portless, ports: 65533-65534}\n") +
        "    l2tp:\n      enabled: false\n      mtu: 9000\n      mss: 4294967295\n      clamp_mss: false\n"
        "      mode: unmanaged\n      tunnels:\n";
    std::string sessions;
    for (int i = 0; i < 8; ++i)
        sessions += std::string(i == 0 ? "" : ", ") + "{local: 4294967295, peer: 4294967295}";
    const std::string address = "\"ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe\"";
    for (size_t i = 0; i < 8; ++i)
        lan += numbered("        ", 4294967288 + i,
                        ": {peer_tunnel: 4294967295, encapsulation: udp, local: " + address + ", peer: " + address +
                            ", local_port: 65535, peer_port: 65535, mtu: 9000, sessions: [" + sessions + "]}\n");
    return lan + "    sip_server: {name: \"" + text + "\"}\n";
}

std::string full_profile(size_t number)
{
    std::string profile = numbered("  profile-", number, numbered(":\n    handle: ", number, "\n"));
    profile += "    dial: {technology: other, apn_index: 16, family: ipv4, apn_name: \"" + many(50, "\\\\xff") +
               "\"}\n    reconnect: false\n    autoconnect: false\n    roaming: false\n    vlans: [1000";
    for (size_t id = 1001; id < 3000; ++id)
        profile += ", " + std::to_string(id);
    profile += "]\n    nat:\n      type: port-restricted-cone\n      dmz: 255.255.255.254\n      port_mappings:\n";
    for (size_t port = 65486; port < 65536; ++port)
        profile +=
            numbered("        - {protocol: tcp-udp, global_port: ", port, ", host: 255.255.255.254, port: 65534}\n");
    profile +=
        "    upnp_pinholes: false\n    firewall:\n      enabled: false\n      unmatched: let-through\n"
        "      entries:\n";
    const std::string net = "\"ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe/128\"";
    return profile + many(50, "        - {family: ipv6, direction: 2, source: " + net + ", destination: " + net +
                                  ", traffic_class: 255/255, nat_flag: 255, protocol: tcp-udp, source_ports: "
                                  "65534-65535, destination_ports: 65534-65535}\n");
}

TEST(Limits, what_a_full_module_shows_is_a_document)
{
    std::string document = kVersion + "lans:\n" + full_lan(0);
    for (size_t id = 1000; id < 3000; ++id)
        document += full_lan(id);
    document += "profiles:\n";
    for (size_t number = 1; number <= 50; ++number)
        document += full_profile(number);
    Problems problems;
    const ctl::Value value = ctl::check_document(ctl::read_document(document, &problems), &problems);
    EXPECT_EQ(ctl::problem_lines("file", problems), "");
    EXPECT_EQ(value.child("lans").map().size(), 2001u);
    // 2 MiB are left for what there is once.
    EXPECT_LT(ctl::as_yaml(value).size(), ctl::kDocumentMax - (2 << 20));
    EXPECT_LT(ctl::as_json(value).size(), ctl::kDocumentMax - (2 << 20));
}

}  // namespace
