// Exported symbols, public headers, sweep rows and documentation name the same functions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

Names exported(const std::string& library)
{
    Names names;
    FILE* const pipe = popen(("nm -D --defined-only " + library).c_str(), "r");
    char address[32];
    char type[8];
    char name[256];
    while (pipe != nullptr && std::fscanf(pipe, "%31s %7s %255s", address, type, name) == 3) {
        names.insert(name);
    }
    EXPECT_EQ(pclose(pipe), 0);
    return names;
}

TEST(CompletenessTest, TheLibraryExportsThePublicFunctionsOnly)
{
    EXPECT_GT(declared().size(), 4u);
    EXPECT_EQ(exported(ZR_NEXA_LIBRARY), declared());
}

TEST(CompletenessTest, TheFileWorkExportsItsTwoFunctions)
{
    EXPECT_EQ(exported(ZR_NEXA_IPACM_CFG_LIBRARY), (Names{"ZR_GetSetIpacmConfigFromXML", "zr_nexa_ipacm_cfg_save"}));
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
