// Functions that are not one change: those of the sweep, of the page's table and of the headers' comments are the same.
#include "steps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "fault_sweep.h"

namespace {

using Names = std::set<std::string>;
using Methods = std::map<std::string, Names>;  // of a function: what it calls beside the selection

// It works on a file, and makes no call that the sweep sees.
constexpr const char* kFileWriter = "zr_nexa_wan_gre_ipacfg_set_v1";

// A function counts as soon as one of its ways is not one change.
Methods swept()
{
    Methods functions = {{kFileWriter, {}}};
    for (const SweepRow& row : all_sweep_rows()) {
        std::vector<std::string> methods;
        for (const SweepStep& step : row.steps) {
            methods.emplace_back(step.method);
        }
        if (is_one_change(methods)) continue;
        for (const std::string& method : methods) {
            if (!is_selection(method)) functions[row.function].insert(method);
        }
    }
    return functions;
}

TEST(StepsTest, ASelectionOrAReadBehindAChangeIsNoFurtherOne)
{
    EXPECT_TRUE(is_one_change({}));
    EXPECT_TRUE(is_one_change({"SelectLANBridge", "GetLANConfig"}));
    EXPECT_TRUE(is_one_change({"SetWWANProfileHandlePreference", "SelectLANBridge", "AddPDNToVLANMapping"}));
    EXPECT_TRUE(is_one_change({"ZR_SetIPPTNATPDN", "ZR_GetIPPTNATPDN"}));
    EXPECT_FALSE(is_one_change({"GetLANConfig", "SetLANConfig"}));
    EXPECT_FALSE(is_one_change({"EnableIPV4", "EnableIPV6"}));
    EXPECT_FALSE(is_one_change({"SetNatType", "SelectLANBridge", "SetNatType"}));
}

TEST(StepsTest, ThePageNamesThemWithTheirCalls)
{
    Methods documented;
    for (const DocumentedSteps& row : documented_steps(ZR_NEXA_DOCS_DIR "/steps.md")) {
        for (const std::string& function : row.functions) {
            EXPECT_TRUE(documented.emplace(function, row.methods).second) << function << " has two rows";
        }
    }
    EXPECT_THAT(documented, testing::ContainerEq(swept()));
}

TEST(StepsTest, TheirCommentsSaySo)
{
    const std::regex declaration("ZR_NEXA_API u?int32_t (\\w+)\\(");
    Names commented;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(ZR_NEXA_INCLUDE_DIR)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream stream(entry.path());
        bool says_so = false;
        for (std::string line; std::getline(stream, line);) {
            std::smatch function;
            if (line == "/**") says_so = false;
            if (line.rfind(" * Not one change", 0) == 0) says_so = true;
            if (!std::regex_search(line, function, declaration)) continue;
            if (says_so) commented.insert(function[1]);
            says_so = false;
        }
    }
    Names expected;
    for (const auto& [function, methods] : swept()) {
        expected.insert(function);
    }
    EXPECT_THAT(commented, testing::ContainerEq(expected));
}

// The table alone is where nobody looks first.
TEST(StepsTest, TheirAreasPagesLeadThere)
{
    const std::filesystem::path table = ZR_NEXA_DOCS_DIR "/steps.md";
    std::string pages;
    for (const auto& entry : std::filesystem::directory_iterator(ZR_NEXA_DOCS_DIR)) {
        if (entry.path().extension() != ".md" || entry.path() == table) continue;
        std::ifstream stream(entry.path());
        const std::string page(std::istreambuf_iterator<char>(stream), {});
        if (page.find("(steps.md)") != std::string::npos) pages += page;
    }
    for (const DocumentedSteps& row : documented_steps(table)) {
        for (const Names& names : {row.functions, row.commands}) {
            for (const std::string& name : names) {
                EXPECT_NE(pages.find(name), std::string::npos) << name;
            }
        }
    }
}

}  // namespace
