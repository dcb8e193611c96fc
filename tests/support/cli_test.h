// Fixture of the command's tests: handlers and dispatcher in this process, on the scripted double.
#ifndef CLI_TEST_H
#define CLI_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "scripted_platform.h"

constexpr const char* kInvalidAndVerdict = "Input Parameter Invalid\r\nCMD Error#0xffff\r\n";

// The words of a command line, "zr_nexa" first. Every word ends where its memory ends, as the last word of a process
// without an environment does: reading on is seen by the address sanitizer.
class Words {
public:
    explicit Words(const std::vector<std::string>& words);
    int argc() const
    {
        return static_cast<int>(blocks_.size());
    }
    char** argv()
    {
        return pointers_.get();
    }

private:
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::unique_ptr<char*[]> pointers_;
};

// Every byte that action writes to standard output.
std::string printed(const std::function<void()>& action);

class CliTest : public testing::Test {
protected:
    scripted::Platform& platform = scripted::platform();

    CliTest();
    ~CliTest() override;

    // Opens a session, hands the words to the dispatcher, closes the session. Gives the bytes printed; the journal and
    // the log of the platform then hold what the command did, without opening and closing.
    std::string run(const std::vector<std::string>& words);

    // A row: a command, all it prints, all it asks of the platform.
    void expect_run(const std::vector<std::string>& words, const std::string& output,
                    const std::vector<std::string>& calls = {});
    // A row of a command that is refused without a call of the platform.
    void expect_invalid(const std::vector<std::string>& words)
    {
        expect_run(words, kInvalidAndVerdict);
    }
};

#endif
