// A scenario's lines: their times, their words, and what is wrong with them.
#include "scenario.h"

#include <gtest/gtest.h>

#include "provocations.h"

namespace {

// Each event as "after_ms word|word|...", a line for each; or what is wrong.
std::string read(const std::string& text)
{
    std::string shown;
    try {
        for (const mobile_ap::ScenarioEvent& event : mobile_ap::read_scenario(text)) {
            shown += std::to_string(event.after_ms) + " ";
            for (const std::string& word : event.words)
                shown += word + "|";
            shown += "\n";
        }
    } catch (const mobile_ap::ProvocationError& error) {
        return error.reason;
    }
    return shown;
}

TEST(ScenarioHostTest, TimesHaveUnits)
{
    EXPECT_EQ(read("0 roam on\n0ms roam on\n250ms roam off\n2s roam on\n3min roam off\n"),
              "0 roam|on|\n0 roam|on|\n250 roam|off|\n2000 roam|on|\n180000 roam|off|\n");
    EXPECT_EQ(read("604800s roam on"), "604800000 roam|on|\n");
    EXPECT_EQ(read("10080min roam on"), "604800000 roam|on|\n");
    EXPECT_EQ(read("604800000ms roam on"), "604800000 roam|on|\n");
    for (const char* time : {"1", "-1s", "1.5s", "1h", "s", "10s5", "604801s", "10081min", "604800001ms",
                             "9999999999ms", "999999999min", "call", "+1s", "0x1s", "1S"}) {
        EXPECT_EQ(read(std::string(time) + " roam on"),
                  "line 1: \"" + std::string(time) + "\" is no time such as 500ms, 2s or 1min, a week at most");
    }
}

TEST(ScenarioHostTest, LinesStayInTheirOrder)
{
    EXPECT_EQ(read("2s roam on\n1s roam off\n2s call drop 1"), "2000 roam|on|\n1000 roam|off|\n2000 call|drop|1|\n");
}

TEST(ScenarioHostTest, NothingIsReadFromNothing)
{
    EXPECT_EQ(read(""), "");
    EXPECT_EQ(read("\n  \n\t\n# a comment\n   # another \" one\n\r\n"), "");
}

TEST(ScenarioHostTest, CommentsEndALine)
{
    EXPECT_EQ(read("1s roam on # 2s roam off\n1s roam off #\n"), "1000 roam|on|\n1000 roam|off|\n");
    const std::string join = "1s device join 02:00:00:00:00:07 192.168.225.21 ";
    EXPECT_EQ(read(join + "a#b"), "1000 device|join|02:00:00:00:00:07|192.168.225.21|a#b|\n");
    EXPECT_EQ(read(join + "\"# b\""), "1000 device|join|02:00:00:00:00:07|192.168.225.21|# b|\n");
}

TEST(ScenarioHostTest, QuotesKeepBlanks)
{
    const std::string join = "1s device join 02:00:00:00:00:07 192.168.225.21 ";
    const std::string read_join = "1000 device|join|02:00:00:00:00:07|192.168.225.21|";
    EXPECT_EQ(read(join + "\"my  laptop\""), read_join + "my  laptop|\n");
    EXPECT_EQ(read(join + "my\" \"laptop\t--type 8"), read_join + "my laptop|--type|8|\n");
    EXPECT_EQ(read("\"1s\" \"roam\" on"), "1000 roam|on|\n");
    EXPECT_EQ(read("0 roam on\n1s roam \"off"), "line 2: a quote stands open");
}

TEST(ScenarioHostTest, LinesMayEndAsOnOtherSystems)
{
    EXPECT_EQ(read("1s roam on\r\n2s roam off\r\n"), "1000 roam|on|\n2000 roam|off|\n");
    EXPECT_EQ(read("  1s\t roam   on  \n2s roam off"), "1000 roam|on|\n2000 roam|off|\n");
}

TEST(ScenarioHostTest, TheFirstWrongLineIsNamed)
{
    EXPECT_EQ(read("0 roam on\n\n# x\n2s call dorp 1\n3s nonsense\n"),
              "line 4: \"dorp\" is no word that is known here");
    EXPECT_EQ(read("1s"), "line 1: A subcommand is required");
    EXPECT_EQ(read("1s sip add \"\" --x"), "line 1: an empty word makes no sense");
    EXPECT_EQ(read("1s play other.txt"), "line 1: \"play\" is no word that is known here");
    EXPECT_EQ(read("1s forget"), "line 1: \"forget\" is no word that is known here");
    EXPECT_EQ(read("1s roam on\n1s roam maybe"), "line 2: state: maybe not in {on,off}");
    EXPECT_EQ(read(std::string("1s roam on\0\n", 12)), "line 1: a zero byte is no text");
}

// All of them may be due at once.
TEST(ScenarioHostTest, EventsAreSoMany)
{
    std::string lines;
    for (int i = 0; i < 1000; ++i)
        lines += "0 roam on\n";
    EXPECT_EQ(mobile_ap::read_scenario(lines).size(), 1000u);
    EXPECT_EQ(read(lines + "\n0 roam off\n"), "line 1002: more than 1000 events");
}

}  // namespace
