// The program zr_nexactl, as a process of its own, on a fresh state.
#ifndef PROGRAM_FIXTURE_H
#define PROGRAM_FIXTURE_H

#include <fcntl.h>
#include <poll.h>
#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "program.h"
#include "run_tool.h"

class ProgramTest : public ToolTest {
protected:
    using Words = std::vector<std::string>;

    ProgramTest()
    {
        setenv("MOBILE_AP_STATE", state.path().c_str(), 1);  // for what happens around the module
    }

    ToolOptions ctl_options(const std::vector<std::string>& variables = {}) const
    {
        ToolOptions options{state.path()};
        options.program = ZR_NEXA_CTL;
        options.pauses = true;  // it has none, so nothing is preloaded, which the shell of GRE would inherit
        options.variables = variables;
        options.variables.push_back("ZR_NEXACTL_STATE=" + held_folder());
        return options;
    }
    // Of the lock and the held state.
    std::string held_folder() const
    {
        return state.path() + "/held";
    }
    ToolRun ctl(const Words& words, const std::vector<std::string>& variables = {}) const
    {
        return run_tool(words, ctl_options(variables));
    }
    void expect_ctl(const Words& words, int status, const std::string& out, const std::string& err = "",
                    const std::vector<std::string>& variables = {}) const
    {
        const ToolRun seen = ctl(words, variables);
        EXPECT_EQ(seen.status, status) << testing::PrintToString(words);
        EXPECT_EQ(seen.out, out) << testing::PrintToString(words);
        EXPECT_EQ(seen.err, err) << testing::PrintToString(words);
    }
    // Where a document stands.
    std::string written(const std::string& name, const std::string& text) const
    {
        std::string path = state.path() + "/" + name;
        std::ofstream(path) << text;
        return path;
    }
    std::string shown() const
    {
        const ToolRun seen = ctl({"show"});
        EXPECT_EQ(seen.status, 0) << seen.err;
        return seen.out;
    }
    std::string held_file() const
    {
        return held_folder() + "/held.yaml";
    }
    bool is_held() const
    {
        return access(held_file().c_str(), F_OK) == 0;
    }
    void expect_nothing_pending() const
    {
        expect_ctl({"pending"}, 0, "nothing is pending\n");
        EXPECT_FALSE(is_held());
    }
    // The variables with which the platform logs each of its calls.
    static Words logged(const std::string& log, const std::string& faults)
    {
        return {"MOBILE_AP_LOG=file:" + log, "MOBILE_AP_LOG_LEVEL=debug", "MOBILE_AP_FAULTS=" + faults};
    }
    // Within 10 seconds.
    static bool comes(const std::function<bool()>& condition)
    {
        for (int i = 0; i < 1000; ++i) {
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    // What the command does, to get a module into a state.
    void command(const Words& words) const
    {
        const ToolRun seen = run(words);
        EXPECT_EQ(seen.out.substr(seen.out.rfind("CMD")), "CMD OK\r\n") << testing::PrintToString(words) << seen.out;
    }
    // What comes from outside.
    static void happens(const Words& words)
    {
        EXPECT_EQ(run_program(ZR_NEXA_MOBILE_AP_CTL, words), 0) << testing::PrintToString(words);
    }
    // What no function of the interface does.
    void change_state(const char* statement) const
    {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(database().c_str(), &db), SQLITE_OK);
        sqlite3_busy_timeout(db, 10000);
        EXPECT_EQ(sqlite3_exec(db, statement, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(db);
    }
};

#endif
