// Fixture of the command's tests: handlers and dispatcher in this process, on the scripted double.
#ifndef CLI_TEST_H
#define CLI_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "scripted_platform.h"

constexpr const char* kInvalidAndVerdict = "Input Parameter Invalid\r\nCMD Error#0xffff\r\n";

// A row: a command line without the tool's name, all it prints, all it asks of the platform. Words are separated by
// blanks; '' is an empty word, and between quotes a blank is part of the word.
struct Command {
    std::string line;
    std::string output;
    std::vector<std::string> calls = {};
    // The platform method that fails, and its error word.
    std::string failing = "";
    uint32_t error = 0;
};

// The words of a command line, "zr_nexa" first. Every word ends where its memory ends, as the last word of a process
// without an environment does: reading on is seen by the address sanitizer.
class Words {
public:
    explicit Words(const std::string& line);
    int argc() const
    {
        return static_cast<int>(blocks_.size());
    }
    char** argv()
    {
        return pointers_.data();
    }

private:
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::vector<char*> pointers_;
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
    std::string run(const std::string& line);

    void expect(const std::vector<Command>& commands);
    // The same command with each word in the place of its ?. What the word becomes takes the place of a ? in the output
    // and the calls.
    void expect_each(const Command& command, const std::vector<std::pair<std::string, std::string>>& words);
    // Command lines that are refused without a call of the platform.
    void expect_invalid(const std::vector<std::string>& lines);
    // The same line with each word in the place of its ?.
    void expect_invalid(const std::string& line, const std::vector<std::string>& words);
};

#endif
