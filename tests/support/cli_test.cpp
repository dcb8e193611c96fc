#include "cli_test.h"

#include <dispatch.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <cstdio>
#include <cstring>

namespace {

std::vector<std::string> split(const std::string& line)
{
    std::vector<std::string> words;
    bool in_word = false;
    bool in_quotes = false;
    for (const char c : line) {
        if (c == ' ' && !in_quotes) {
            in_word = false;
            continue;
        }
        if (!in_word) words.emplace_back();
        in_word = true;
        if (c == '\'') {
            in_quotes = !in_quotes;
        } else {
            words.back() += c;
        }
    }
    return words;
}

std::string replaced(std::string text, const std::string& word)
{
    const size_t place = text.find('?');
    return place == std::string::npos ? text : text.replace(place, 1, word);
}

}  // namespace

Words::Words(const std::string& line)
{
    for (const std::string& word : split("zr_nexa " + line)) {
        auto block = std::make_unique<char[]>(word.size() + 1);
        std::memcpy(block.get(), word.c_str(), word.size() + 1);
        pointers_.push_back(block.get());
        blocks_.push_back(std::move(block));
    }
    pointers_.push_back(nullptr);
}

std::string printed(const std::function<void()>& action)
{
    std::fflush(stdout);
    const int capture = memfd_create("stdout", 0);
    const int terminal = dup(STDOUT_FILENO);
    dup2(capture, STDOUT_FILENO);
    action();
    std::fflush(stdout);
    dup2(terminal, STDOUT_FILENO);
    close(terminal);

    std::string output(static_cast<size_t>(lseek(capture, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(capture, output.data(), output.size(), 0), static_cast<ssize_t>(output.size()));
    close(capture);
    return output;
}

CliTest::CliTest()
{
    platform.reset();
}

CliTest::~CliTest()
{
    EXPECT_EQ(platform.objects, 0);
    EXPECT_THAT(platform.complaints, testing::IsEmpty());
    EXPECT_THAT(platform.unused_answers(), testing::IsEmpty()) << "an answer was said and never asked for";
    platform.reset();
}

std::string CliTest::run(const std::string& line)
{
    Words words(line);
    EXPECT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    const std::string output = printed([&] { cli::zr_nexa_dispatch(words.argc(), words.argv()); });
    const auto journal = platform.journal;
    const auto log = platform.log;
    zr_nexa_client_uninit();
    platform.journal = journal;
    platform.log = log;
    return output;
}

void CliTest::expect(const std::vector<Command>& commands)
{
    for (const Command& command : commands) {
        SCOPED_TRACE("zr_nexa " + command.line.substr(0, 200));
        if (!command.failing.empty()) platform.on(command.failing).fails(command.error);
        EXPECT_EQ(run(command.line), command.output);
        EXPECT_THAT(platform.journal, testing::ElementsAreArray(command.calls));
        if (!command.failing.empty()) platform.on(command.failing).succeeds();
        platform.forget();
    }
}

void CliTest::expect_each(const Command& command, const std::vector<std::pair<std::string, std::string>>& words)
{
    for (const auto& [word, becomes] : words) {
        Command row = command;
        row.line = replaced(row.line, "'" + word + "'");
        row.output = replaced(row.output, becomes);
        for (std::string& call : row.calls)
            call = replaced(call, becomes);
        expect({row});
    }
}

void CliTest::expect_invalid(const std::vector<std::string>& lines)
{
    for (const std::string& line : lines)
        expect({{line, kInvalidAndVerdict}});
}

void CliTest::expect_invalid(const std::string& line, const std::vector<std::string>& words)
{
    for (const std::string& word : words)
        expect_invalid({replaced(line, "'" + word + "'")});
}
