// Exported symbols, version script, public headers, sweep rows and documentation name the same functions; public
// headers and layouts the same records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zr_nexa/base.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "fault_sweep.h"

namespace {

using Names = std::set<std::string>;

std::string content_of(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::stringstream content;
    content << stream.rdbuf();
    return content.str();
}

Names all_matches(const std::string& text, const std::string& pattern)
{
    const std::regex expression(pattern);
    Names names;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
        names.insert((*at)[1]);
    }
    return names;
}

std::string content_below(const std::filesystem::path& folder, const std::string& extension)
{
    std::string all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == extension) all += content_of(entry.path());
    }
    return all;
}

Names declared()
{
    return all_matches(content_below(ZR_NEXA_INCLUDE_DIR, ".h"), "ZR_NEXA_API u?int32_t (zr_nexa_\\w+)\\(");
}

std::string output_of(const std::string& command)
{
    std::string output;
    FILE* const pipe = popen(command.c_str(), "r");
    for (int c; pipe != nullptr && (c = std::fgetc(pipe)) != EOF;) {
        output += static_cast<char>(c);
    }
    EXPECT_EQ(pclose(pipe), 0);
    return output;
}

// Type, name and version of every exported symbol.
Names exported()
{
    return all_matches(output_of("nm -D --defined-only " ZR_NEXA_LIBRARY), "[0-9a-f]+ (. \\S+)");
}

TEST(CompletenessTest, TheLibraryExportsThePublicFunctionsOnly)
{
    EXPECT_GT(declared().size(), 4u);
    Names expected = {"A ZR_NEXA_CLIENT_API_1.0"};  // the version itself
    for (const auto& name : declared()) {
        expected.insert("T " + name + "@@ZR_NEXA_CLIENT_API_1.0");
    }
    EXPECT_EQ(exported(), expected);
}

TEST(CompletenessTest, TheVersionScriptListsThePublicFunctionsInOrder)
{
    std::string expected = "ZR_NEXA_CLIENT_API_1.0 {\n    global:\n";
    for (const auto& name : declared()) {
        expected += "        " + name + ";\n";
    }
    expected += "    local:\n        *;\n};\n";
    EXPECT_EQ(content_of(ZR_NEXA_MAP), expected);
}

TEST(CompletenessTest, TheLibraryHoldsItsXmlParser)
{
    const std::string dynamic = output_of("readelf -d " ZR_NEXA_LIBRARY);
    EXPECT_THAT(dynamic, testing::HasSubstr("libqcmap_client.so"));
    EXPECT_THAT(dynamic, testing::Not(testing::HasSubstr("pugixml")));
}

TEST(CompletenessTest, EveryPublicRecordHasItsLayout)
{
    const Names records = all_matches(content_below(ZR_NEXA_INCLUDE_DIR, ".h"), "\\n\\} (\\w+);");
    EXPECT_GT(records.size(), 4u);
    EXPECT_EQ(all_matches(content_of(ZR_NEXA_LAYOUTS), "\\nSIZE\\((\\w+),"), records);
}

TEST(CompletenessTest, TheBuildHasTheHeadersVersion)
{
    EXPECT_EQ(std::to_string(ZR_NEXA_VERSION_MAJOR) + "." + std::to_string(ZR_NEXA_VERSION_MINOR) + "." +
                  std::to_string(ZR_NEXA_VERSION_PATCH),
              ZR_NEXA_VERSION);
}

TEST(CompletenessTest, EveryPublicFunctionStandsInTheSweep)
{
    Names swept = {"zr_nexa_client_init", "zr_nexa_client_uninit"};  // session_test sweeps these two
    for (const SweepRow& row : all_sweep_rows()) {
        swept.insert(row.function);
    }
    EXPECT_EQ(swept, declared());
}

TEST(CompletenessTest, EveryPublicFunctionIsDocumented)
{
    const std::string pages = content_below(ZR_NEXA_DOCS_DIR, ".md");
    for (const auto& name : declared()) {
        EXPECT_THAT(pages, testing::HasSubstr(name));
    }
}

}  // namespace
