#include "scenario.h"

#include <optional>
#include <sstream>

#include "provocations.h"

namespace mobile_ap {
namespace {

// All of them may be due at once, and are carried out in one transaction then: others wait for it, for 10 s at most.
constexpr size_t kMostEvents = 1000;
constexpr int64_t kLongestMs = int64_t{7} * 24 * 3600 * 1000;

// Words between blanks; double quotes keep blanks in a word. Nothing when a quote stands open.
std::optional<std::vector<std::string>> split(const std::string& line)
{
    std::vector<std::string> words;
    bool in_word = false;
    bool quoted = false;
    for (const char c : line) {
        const bool blank = c == ' ' || c == '\t' || c == '\r';
        if (c == '#' && !in_word && !quoted) break;
        if (blank && !quoted) {
            in_word = false;
            continue;
        }
        if (!in_word) words.emplace_back();
        in_word = true;
        if (c == '"')
            quoted = !quoted;
        else
            words.back() += c;
    }
    if (quoted) return std::nullopt;
    return words;
}

// "500ms", "2s", "1min"; a bare 0 is the start.
std::optional<int64_t> milliseconds(const std::string& word)
{
    const size_t end = word.find_first_not_of("0123456789");
    const std::string digits = word.substr(0, end);
    if (digits.empty() || digits.size() > 9) return std::nullopt;
    const std::string unit = end == std::string::npos ? "" : word.substr(end);
    int64_t value = std::stoll(digits);
    if (unit == "s")
        value *= 1000;
    else if (unit == "min")
        value *= 60000;
    else if (unit != "ms" && !(unit.empty() && value == 0))
        return std::nullopt;
    if (value > kLongestMs) return std::nullopt;
    return value;
}

ScenarioEvent read_line(const std::vector<std::string>& words)
{
    const auto after = milliseconds(words[0]);
    if (!after) throw ProvocationError{"\"" + words[0] + "\" is no time such as 500ms, 2s or 1min, a week at most"};
    const std::vector<std::string> rest(words.begin() + 1, words.end());
    parse_provocation(rest);
    return {*after, rest};
}

}  // namespace

std::vector<ScenarioEvent> read_scenario(const std::string& text)
{
    std::vector<ScenarioEvent> events;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        try {
            if (line.find('\0') != std::string::npos) throw ProvocationError{"a zero byte is no text"};
            const auto words = split(line);
            if (!words) throw ProvocationError{"a quote stands open"};
            if (words->empty()) continue;
            if (events.size() == kMostEvents) throw ProvocationError{"more than 1000 events"};
            events.push_back(read_line(*words));
        } catch (const ProvocationError& error) {
            throw ProvocationError{"line " + std::to_string(number) + ": " + error.reason};
        }
    }
    return events;
}

}  // namespace mobile_ap
