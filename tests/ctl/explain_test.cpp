// Result codes in words: the page of result codes and the headers say the same.
#include <explain.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using ctl::in_words;
using Texts = std::vector<std::string>;

std::string content_of(const std::filesystem::path& file)
{
    std::ostringstream content;
    content << std::ifstream(file).rdbuf();
    return content.str();
}

Texts split(const std::string& text, const std::string& between)
{
    Texts parts;
    size_t start = 0;
    for (size_t at; (at = text.find(between, start)) != std::string::npos; start = at + between.size())
        parts.push_back(text.substr(start, at - start));
    parts.push_back(text.substr(start));
    return parts;
}

std::string trimmed(const std::string& text)
{
    const size_t first = text.find_first_not_of(" \n");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \n") - first + 1);
}

// The rows of the table under a heading of the page, without its head; links as their texts, code in quotes.
std::vector<Texts> table(const std::string& heading)
{
    std::istringstream page(content_of(ZR_NEXA_DOCS_DIR "/result_codes.md"));
    std::vector<Texts> rows;
    bool is_there = false;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("## ", 0) == 0) is_there = line == "## " + heading;
        if (!is_there || line.rfind("| ", 0) != 0) continue;
        for (size_t open; (open = line.find('[')) != std::string::npos;) {
            const size_t close = line.find(']', open);
            const size_t end = line.find(')', close);
            line = line.substr(0, open) + line.substr(open + 1, close - open - 1) + line.substr(end + 1);
        }
        for (char& c : line)
            if (c == '`') c = '"';
        Texts cells = split(line.substr(1, line.size() - 2), "|");
        for (std::string& cell : cells)
            cell = trimmed(cell);
        rows.push_back(cells);
    }
    if (!rows.empty()) rows.erase(rows.begin());
    return rows;
}

uint32_t number_of(const std::string& text)
{
    return static_cast<uint32_t>(std::stoul(text, nullptr, 0));
}

TEST(ExplainTest, TheServicesWordsAreThoseOfThePage)
{
    std::set<uint32_t> told = {1};  // named below the page's table
    for (const Texts& row : table("What the host platform answers")) {
        EXPECT_EQ(ctl::service_word(number_of(row[0])), row[2]);
        told.insert(number_of(row[0]));
    }
    EXPECT_EQ(told.size(), 13u);
    for (uint32_t word = 0; word < 0x1000; ++word)
        EXPECT_EQ(!ctl::service_word(word).empty(), told.count(word) == 1) << word;
}

TEST(ExplainTest, TheAreasSmallCodesAreThoseOfThePage)
{
    std::map<uint32_t, std::set<std::pair<std::string, std::string>>> expected;
    std::string area;
    for (const Texts& row : table("Small codes")) {
        if (!row[0].empty()) area = row[0];
        const Texts codes = split(row[1], ", ");
        const Texts meanings = codes.size() == 1 ? Texts{row[2]} : split(row[2], "; ");
        ASSERT_EQ(codes.size(), meanings.size()) << row[1];
        for (size_t i = 0; i < codes.size(); ++i)
            expected[number_of(codes[i])].insert({area, meanings[i]});
    }
    EXPECT_EQ(expected.size(), 15u);
    for (uint32_t code = 0; code < 0x10000; ++code) {
        const auto told = ctl::area_meanings(code);
        const std::set<std::pair<std::string, std::string>> seen(told.begin(), told.end());
        EXPECT_EQ(seen, expected[code]) << code;
        EXPECT_EQ(seen.size(), told.size()) << code;
    }
}

// What a header says of a function's results.
struct Documented {
    std::set<uint32_t> steps;
    std::set<uint32_t> codes;
};

std::map<std::string, Documented> documented()
{
    std::map<std::string, Documented> all;
    std::string headers;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(ZR_NEXA_INCLUDE_DIR))
        headers += content_of(entry.path());
    for (const std::string& block : split(headers, "/**")) {
        const size_t end = block.find("*/\nZR_NEXA_API ");
        if (end == std::string::npos) continue;
        const size_t name = block.find("zr_nexa_", end);
        Documented& function = all[block.substr(name, block.find('(', name) - name)];
        std::istringstream lines(block.substr(0, end));
        for (std::string word; lines >> word;) {
            std::string what;
            if (word == "@copydetails" && lines >> what) function = all.at(what);
            if (word != "@retval" || !(lines >> what)) continue;
            const size_t bar = what.find('|');
            if (bar != std::string::npos)
                function.steps.insert(number_of(what.substr(bar + 1)) / 0x1000);
            else
                function.codes.insert(number_of(what));
        }
    }
    return all;
}

TEST(ExplainTest, EachFunctionHasTheStepsOfItsHeader)
{
    const auto functions = documented();
    EXPECT_EQ(functions.size(), 107u);
    for (const auto& [name, function] : functions) {
        for (uint32_t step = 0; step < 16; ++step)
            EXPECT_EQ(!ctl::step_of(name, step).empty(), function.steps.count(step) == 1) << name << " " << step;
    }
}

TEST(ExplainTest, EachFunctionHasTheSmallCodesOfItsHeader)
{
    for (const auto& [name, function] : documented()) {
        for (uint32_t code = 0; code < 0x3000; ++code) {
            const bool is_everywhere = code == 0 || code == 4 || code == 6 || code == 13;
            if (is_everywhere) continue;
            EXPECT_EQ(!ctl::small_code(name, code).empty(), function.codes.count(code) == 1) << name << " " << code;
        }
    }
}

TEST(ExplainTest, CodesInWords)
{
    EXPECT_EQ(in_words(0), "done");
    EXPECT_EQ(in_words(4), "a value outside its set");
    EXPECT_EQ(in_words(6), "LAN or VLAN id out of range");
    EXPECT_EQ(in_words(13), "no session");
    EXPECT_EQ(in_words(3), "a small code, which each area has of its own");
    EXPECT_EQ(in_words(0xFFFF), "words that the command does not accept");
    EXPECT_EQ(in_words(0x1000), "step 1: the service refused without an error word");
    EXPECT_EQ(in_words(0x203E), "step 2: the service answered 62, the table is full");
    EXPECT_EQ(in_words(0x2FFF), "step 2: the service answered 4095");
    EXPECT_EQ(in_words(0x7003), "the service answered an error word that hides the step");
    EXPECT_EQ(in_words(0xFFFFFFFF), "the service answered an error word that hides the step");
}

TEST(ExplainTest, CodesOfAFunctionInWords)
{
    EXPECT_EQ(in_words(0x1009, "zr_nexa_nat_type_set_v1"),
              "step 1, selecting the profile: the service answered 9, there is no such profile (any more)");
    EXPECT_EQ(in_words(0x4003, "zr_nexa_lan_dhcp_set_v1"),
              "step 4, activating the LAN, whose configuration is stored: the service answered 3, the service is "
              "away; or it is not ready, or its state failed or stayed busy for 10 seconds, and standard error says "
              "why");
    EXPECT_EQ(in_words(3, "zr_nexa_alg_enable_type_set_v1"), "ALG type, kind of server or IP family not served");
    EXPECT_EQ(in_words(3, "zr_nexa_lan_ippt_set_v1"), "WLAN mode on a LAN other than 0");
    EXPECT_EQ(in_words(13, "zr_nexa_client_init"), "a session is open already");
    // Codes that are no step of theirs.
    EXPECT_EQ(in_words(0x2101, "zr_nexa_lan_ipptnatpdn_set_v1"), "the value read back is not the one that was set");
    EXPECT_EQ(in_words(0x2000, "zr_nexa_nat_routingbh_get_v1"), "the service reports a routing-behind switch above 1");
    EXPECT_EQ(in_words(0x3003, "zr_nexa_nat_type_set_v1"), "the service answered an error word that hides the step");
    EXPECT_EQ(in_words(0x1003, "zr_nexa_lan_ipv4v6_get_v1"), "the service answered an error word that hides the step");
    // The service's word of a request that succeeded.
    EXPECT_EQ(in_words(62, "zr_nexa_nat_type_set_v1"), "done, and the service said 62, the table is full");
}

TEST(ExplainTest, AResultNamesItsFunction)
{
    EXPECT_EQ(
        in_words(ctl::Result{0x1009, "zr_nexa_nat_type_get_v1"}),
        "zr_nexa_nat_type_get_v1: 0x1009, step 1, selecting the profile: the service answered 9, there is no such "
        "profile (any more)");
    EXPECT_EQ(in_words(ctl::Result{0, "zr_nexa_wan_gre_ipacfg_set_v1", "there is no file"}),
              "zr_nexa_wan_gre_ipacfg_set_v1: there is no file");
}

}  // namespace
