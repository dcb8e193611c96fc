#include "cli_test.h"

#include <dispatch.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zr_nexa_client_api.h>

#include <cstdio>

Words::Words(const std::vector<std::string>& words)
{
    std::vector<std::string> all = {"zr_nexa"};
    all.insert(all.end(), words.begin(), words.end());
    pointers_ = std::make_unique<char*[]>(all.size() + 1);
    for (const auto& word : all) {
        auto block = std::make_unique<char[]>(word.size() + 1);
        std::memcpy(block.get(), word.c_str(), word.size() + 1);
        pointers_[blocks_.size()] = block.get();
        blocks_.push_back(std::move(block));
    }
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

std::string CliTest::run(const std::vector<std::string>& words)
{
    Words line(words);
    EXPECT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    const std::string output = printed([&] { cli::dispatch(line.argc(), line.argv()); });
    const auto journal = platform.journal;
    const auto log = platform.log;
    zr_nexa_client_uninit();
    platform.journal = journal;
    platform.log = log;
    return output;
}

void CliTest::expect_run(const std::vector<std::string>& words, const std::string& output,
                         const std::vector<std::string>& calls)
{
    std::string shown = "zr_nexa";
    for (const auto& word : words)
        shown += " \"" + word.substr(0, 200) + "\"";
    SCOPED_TRACE(shown);
    EXPECT_EQ(run(words), output);
    EXPECT_THAT(platform.journal, testing::ElementsAreArray(calls));
    platform.forget();
}
