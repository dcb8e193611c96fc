// The documented sessions, run as they stand: every fenced block of docs/ and of the README that is marked "console".
// One marked "console continued" goes on with the session before it.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include "run_tool.h"

namespace {

struct Step {
    std::string line;                    // as documented, without "$ "
    std::vector<std::string> variables;  // NAME=value words in front
    std::string program;                 // zr_nexa, in one way or another, or mobile_ap_ctl
    std::vector<std::string> words;
    std::string output;
};

struct Session {
    std::string file;
    int line = 0;
    std::vector<Step> steps;
};

std::vector<std::string> shell_words(const std::string& line)
{
    std::vector<std::string> words;
    std::string word;
    bool begun = false;
    char quote = '\0';
    for (const char c : line + " ") {
        if (quote != '\0') {
            if (c == quote) {
                quote = '\0';
            } else {
                word += c;
            }
        } else if (c == '\'' || c == '"') {
            quote = c;
            begun = true;
        } else if (c == ' ') {
            if (begun) words.push_back(word);
            word.clear();
            begun = false;
        } else {
            word += c;
            begun = true;
        }
    }
    return words;
}

Step step_of(const std::string& line)
{
    Step step{line, {}, "", shell_words(line), ""};
    while (!step.words.empty() && step.words[0].find('=') != std::string::npos) {
        step.variables.push_back(step.words[0]);
        step.words.erase(step.words.begin());
    }
    const std::set<std::string> known = {"zr_nexa", "scripts/run", "mobile_ap_ctl"};
    if (step.words.empty() || known.count(step.words[0]) == 0) {
        step.words.assign({"(not a command of the tool)"});
    } else {
        step.program = step.words[0];
        step.words.erase(step.words.begin());
    }
    return step;
}

// Every line of zr_nexa ends in carriage return and line feed but those of a connected WAN Info, which end in line
// feed, as all of mobile_ap_ctl do.
std::string as_printed(const Step& step, const std::vector<std::string>& lines)
{
    std::string output;
    bool info = step.program == "mobile_ap_ctl";
    for (const auto& line : lines) {
        if (line == "CMD OK") info = false;
        output += line + (info ? "\n" : "\r\n");
        if (line == "WAN Info: connected") info = true;
    }
    return output;
}

std::vector<Session> documented_sessions()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(ZR_NEXA_DOCS_DIR)) {
        if (entry.path().extension() == ".md") files.push_back(entry.path());
    }
    files.push_back(std::filesystem::path(ZR_NEXA_DOCS_DIR) / "../README.md");
    std::sort(files.begin(), files.end());

    std::vector<Session> sessions;
    for (const auto& file : files) {
        std::ifstream text(file);
        std::vector<std::string> printed;
        bool inside = false;
        int number = 0;
        for (std::string line; std::getline(text, line);) {
            ++number;
            const bool continued = line == "```console continued";
            if (!inside && (continued || line == "```console")) {
                inside = true;
                const bool goes_on = continued && !sessions.empty() && sessions.back().file == file.filename();
                if (!goes_on) sessions.push_back({file.filename().string(), number, {}});
                continue;
            }
            if (!inside) continue;
            auto& steps = sessions.back().steps;
            const bool ends = line == "```";
            const bool command = line.rfind("$ ", 0) == 0;
            if ((ends || command) && !steps.empty() && !printed.empty()) {
                steps.back().output = as_printed(steps.back(), printed);
                printed.clear();
            }
            if (ends) {
                inside = false;
            } else if (command) {
                steps.push_back(step_of(line.substr(2)));
            } else {
                printed.push_back(line);
            }
        }
    }
    return sessions;
}

TEST(Transcripts, AreWhatTheToolPrints)
{
    const std::vector<Session> sessions = documented_sessions();
    EXPECT_GE(sessions.size(), 4u);
    for (const Session& session : sessions) {
        SCOPED_TRACE(session.file + ":" + std::to_string(session.line));
        EXPECT_FALSE(session.steps.empty());
        const TempFolder state;
        for (const Step& step : session.steps) {
            SCOPED_TRACE("$ " + step.line);
            ToolOptions options{state.path()};
            options.variables = step.variables;
            if (step.program == "mobile_ap_ctl") options.program = ZR_NEXA_MOBILE_AP_CTL;
            const ToolRun seen = run_tool(step.words, options);
            EXPECT_EQ(seen.out, step.output);
            EXPECT_EQ(seen.err, "");
            EXPECT_EQ(seen.status, 0);
        }
    }
}

TEST(Transcripts, TheWalkThroughShowsEverySettingAtWork)
{
    const std::vector<Session> sessions = documented_sessions();
    std::set<std::string> shown;
    for (const Session& session : sessions) {
        if (session.file != "walkthrough.md") continue;
        for (const Step& step : session.steps) {
            if (step.words.size() > 2) shown.insert(step.words[0] + " " + step.words[1]);
        }
    }
    const std::set<std::string> all = {
        "General Restore",  "General SFE",           "LAN GWURL",        "LAN DHCP",
        "LAN VLAN",         "LAN IPPTNAT",           "LAN IPPTNATPDN",   "LAN IPPT",
        "LAN IPPTGWFilter", "LAN DefaultDHCPEnable", "WAN WWANConfig",   "WAN APWWAN",
        "WAN Status",       "WAN Connect",           "WAN ReConnect",    "WAN AutoConnect",
        "WAN Info",         "WAN MPDNMapping",       "WAN RestartRadvd", "NAT Type",
        "NAT IPV4DMZ",      "NAT IPV4PortMapping",   "NAT RoutingBH"};
    EXPECT_EQ(shown, all);
}

}  // namespace
