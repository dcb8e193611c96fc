// Every function of the client interface stands in the table of what this program does with it, and stands there once.
#include <functions.h>

#include <fstream>
#include <map>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;

Names exported()
{
    Names names;
    std::ifstream map(ZR_NEXA_MAP);
    for (std::string line; std::getline(map, line);) {
        const size_t name = line.find("zr_nexa_");
        if (name != std::string::npos) names.insert(line.substr(name, line.find(';') - name));
    }
    return names;
}

TEST(CtlCompletenessTest, EachFunctionHasItsUse)
{
    Names named;
    for (const ctl::FunctionUse& each : ctl::functions())
        named.insert(each.function);
    const Names all = exported();
    EXPECT_EQ(all.size(), 107u);
    for (const std::string& function : all)
        EXPECT_EQ(named.count(function), 1u) << function << " stands in no row";
    for (const std::string& function : named)
        EXPECT_EQ(all.count(function), 1u) << function << " is no function of the interface";
}

TEST(CtlCompletenessTest, NoFunctionHasTwoUses)
{
    std::map<std::string, std::string> places;
    for (const ctl::FunctionUse& each : ctl::functions()) {
        EXPECT_NE(each.where, "") << each.function;
        EXPECT_EQ(places[each.function], "") << each.function << " stands at " << each.where << " too";
        places[each.function] = each.where;
    }
}

TEST(CtlCompletenessTest, KindsFitTheNames)
{
    for (const ctl::FunctionUse& each : ctl::functions()) {
        const std::string name = each.function;
        const bool gives = name.find("_get_v") != std::string::npos;
        EXPECT_EQ(gives, each.use == ctl::Use::kRead || each.use == ctl::Use::kFigure ||
                             (each.use == ctl::Use::kNotUsed && gives))
            << name;
    }
}

}  // namespace
