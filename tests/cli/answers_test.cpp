#include <answers.h>

#include "cli_test.h"

namespace {

// What an answer prints, and what it gives the dispatcher.
void expect_answer(const std::function<int()>& answer, const std::string& output, int code)
{
    int given = -1;
    EXPECT_EQ(printed([&] { given = answer(); }), output);
    EXPECT_EQ(given, code);
}

TEST(Answers, EachLineOfAUsageTextIsPrintedWithACarriageReturn)
{
    expect_answer([] { return cli::usage("100%s %n\n"); }, "100%s %n\r\n", 0);
    expect_answer([] { return cli::usage("a\n\n  b\n\n"); }, "a\r\n\r\n  b\r\n\r\n", 0);
    expect_answer([] { return cli::usage(""); }, "", 0);
}

TEST(Answers, InvalidIsOneLineAnd65535)
{
    expect_answer(cli::invalid, "Input Parameter Invalid\r\n", 65535);
}

TEST(Answers, AResultCodeKeepsItsBits)
{
    expect_answer([] { return cli::result(0); }, "", 0);
    expect_answer([] { return cli::result(0x1003); }, "", 0x1003);
    expect_answer([] { return cli::result(0xFFFFF001); }, "", static_cast<int>(0xFFFFF001));
}

TEST(Answers, OnlySuccessIsTold)
{
    expect_answer([] { return cli::result(0, "%d done\r"); }, "%d done\r\n", 0);
    expect_answer([] { return cli::result(0x1003, "done\r"); }, "", 0x1003);
    expect_answer([] { return cli::result(0xFFFFF001, "done\r"); }, "", static_cast<int>(0xFFFFF001));
}

}  // namespace
