// The real tool on the host platform, as a process of its own.
#ifndef RUN_TOOL_H
#define RUN_TOOL_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

struct ToolOptions {
    std::string state;  // MOBILE_AP_STATE; empty: not set
    std::string program = ZR_NEXA_TOOL;
    std::vector<std::string> variables = {};  // more of the environment, "NAME=value"
    bool pauses = false;                      // keeps the pause of one second
    bool empty_environment = false;           // no variable at all, as under env -i; the tool pauses then
    bool tells = false;                       // for wait_for_handlers() and wait_for_pause()
    bool output_locked = false;               // standard output's lock is held: who asks for it stands still
    std::function<void()> before_exec = {};   // runs in the new process
};

struct ToolRun {
    std::string out;
    std::string err;
    int status = 0;  // exit status, or 1000 + the signal that ended it
    double seconds = 0;
};

// A tool that was started. It is killed if it is still there after a minute.
class StartedTool {
public:
    StartedTool(const std::vector<std::string>& words, const ToolOptions& options);
    ~StartedTool();
    StartedTool(const StartedTool&) = delete;
    StartedTool& operator=(const StartedTool&) = delete;

    pid_t pid() const
    {
        return pid_;
    }
    // Waits until it handles SIGINT and SIGTERM itself. False: it ended before that.
    bool wait_for_handlers() const
    {
        return wait_to_be_told('h');
    }
    // Waits until its pause begins.
    bool wait_for_pause() const
    {
        return wait_to_be_told('p');
    }
    // False: it is no longer there.
    bool send(int signo) const;
    ToolRun wait();

private:
    bool wait_to_be_told(char moment) const;

    pid_t pid_ = -1;
    int out_ = -1;
    int err_ = -1;
    int end_ = -1;   // readable when the process has ended
    int told_ = -1;  // what support/tell.c writes
    double started_ = 0;
};

inline ToolRun run_tool(const std::vector<std::string>& words, const ToolOptions& options)
{
    return StartedTool(words, options).wait();
}

// A fresh folder that is gone afterwards.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::string& path() const
    {
        return path_;
    }

private:
    std::string path_;
};

// A test with a fresh state of its own.
class ToolTest : public testing::Test {
protected:
    ToolOptions options() const
    {
        return ToolOptions{state.path()};
    }
    ToolRun run(const std::vector<std::string>& words) const
    {
        return run_tool(words, options());
    }
    // A command that ends as every command does, with all it prints.
    void expect(const std::vector<std::string>& words, const std::string& out) const
    {
        expect(words, options(), out, "");
    }
    static void expect(const std::vector<std::string>& words, const ToolOptions& options, const std::string& out,
                       const std::string& err);
    std::string database() const
    {
        return state.path() + "/mobile_ap.db";
    }

    TempFolder state;
};

// "ok", or what SQLite finds wrong with a database.
std::string integrity(const std::string& database);

// Runs work in a process of its own whose mounts nobody else sees. Its failed checks count here. False: such a process
// is not allowed on this machine, and work did not run.
bool in_private_mounts(const std::function<void()>& work);

#endif
