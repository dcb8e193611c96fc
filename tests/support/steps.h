// What one change is, and what the page of those that are none says.
#ifndef STEPS_H
#define STEPS_H

#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

// A selection is the session's own and changes nothing of the service.
inline bool is_selection(const std::string& method)
{
    return method == "SelectLANBridge" || method == "SetWWANProfileHandlePreference";
}

inline bool is_read(const std::string& method)
{
    return method.rfind("Get", 0) == 0 || method.rfind("ZR_Get", 0) == 0;
}

// Methods of the platform in their order. A change behind another one, or behind what was read, is not one change.
inline bool is_one_change(const std::vector<std::string>& methods)
{
    bool has_begun = false;
    for (const std::string& method : methods) {
        if (is_selection(method)) continue;
        if (has_begun && !is_read(method)) return false;
        has_begun = true;
    }
    return true;
}

// A row of the page's table.
struct DocumentedSteps {
    std::set<std::string> functions;
    std::set<std::string> commands;  // category, setting and option
    std::set<std::string> methods;
};

// What stands between backticks, as far as the pattern goes from its beginning.
inline std::set<std::string> quoted(const std::string& text, const std::string& pattern)
{
    const std::regex expression("`(" + pattern + ")[^`]*`");
    std::set<std::string> words;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
        words.insert((*at)[1]);
    }
    return words;
}

inline std::vector<DocumentedSteps> documented_steps(const std::string& page)
{
    std::vector<DocumentedSteps> rows;
    std::ifstream stream(page);
    for (std::string line; std::getline(stream, line);) {
        std::smatch cells;
        if (!std::regex_match(line, cells, std::regex("\\|([^|]*)\\|([^|]*)\\|([^|]*)\\|[^|]*\\|[^|]*\\|"))) continue;
        rows.push_back(
            {quoted(cells[1], "zr_nexa_\\w+"), quoted(cells[2], "\\w+ \\w+ \\w+"), quoted(cells[3], "\\w+")});
    }
    return rows;
}

#endif
