// Fixture and row helpers of the client interface's tests.
#ifndef API_TEST_H
#define API_TEST_H

#include "scripted_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zr_nexa_client_api.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

// Error words every failure point is tried with. 0x1000 and 0xFFFF swallow step tags.
inline const std::vector<uint32_t> kErrorWords = {0, 1, 3, 43, 0x1000, 0xFFFF, 0x7FFFFFFF};

// A line of a row, or several that belong together.
class Lines {
public:
    Lines(const char* line) : lines_{line} {}
    Lines(const std::string& line) : lines_{line} {}
    Lines(const std::vector<std::string>& lines) : lines_(lines) {}
    static std::vector<std::string> all(std::initializer_list<Lines> groups)
    {
        std::vector<std::string> lines;
        for (const Lines& group : groups) {
            lines.insert(lines.end(), group.lines_.begin(), group.lines_.end());
        }
        return lines;
    }

private:
    std::vector<std::string> lines_;
};
inline const std::vector<std::string> kNothing;

// Compares the whole transcript, shows where it differs, and leaves it empty.
inline void expect_lines(const char* file, int line, const std::string& what, const std::string& function,
                         std::initializer_list<Lines> lines)
{
    const auto wrong = scripted::difference(Lines::all(lines), scripted::platform().lines(function));
    if (!wrong.empty()) ADD_FAILURE_AT(file, line) << what << wrong;
    scripted::platform().forget();
}

// What EXPECT_ROW makes: the transcript in front of the call must be empty, looked at or forgotten.
class RowExpectation {
public:
    RowExpectation(const char* file, int line) : file_(file), line_(line)
    {
        expect_lines(file, line, "in front of the row", "", {});
    }
    void gave(const std::string& expression, int64_t result, int64_t expected, std::initializer_list<Lines> lines) const
    {
        if (result != expected) {
            ADD_FAILURE_AT(file_, line_) << expression << " gave " << std::hex << std::showbase << result << ", not "
                                         << expected;
        }
        expect_lines(file_, line_, expression, expression.substr(0, expression.find('(')), lines);
    }

private:
    const char* file_;
    int line_;
};

// A row: a call of the interface, its result, and all that happened in its order. A record of the function itself
// stands without its name.
//     EXPECT_ROW(zr_nexa_nat_type_set_v1(50, 2), 0u,
//                "info  entry",
//                "call  SetWWANProfileHandlePreference(50)",
//                "call  SetNatType(2)",
//                "info  Set Nat Type success : wwan_handle=50 set_nat_type=2");
#define EXPECT_ROW(expression, expected, ...) \
    RowExpectation(__FILE__, __LINE__).gave(#expression, expression, expected, {__VA_ARGS__})
// The same for a function that a table names.
#define EXPECT_ROW_OF(function, expression, expected, ...) \
    RowExpectation(__FILE__, __LINE__).gave(function, expression, expected, {__VA_ARGS__})
// A row of what the platform did by itself; every record bears its function's name.
#define EXPECT_TRANSCRIPT(...) expect_lines(__FILE__, __LINE__, "the transcript", "", {__VA_ARGS__})

// Fills an output with a pattern, so that an untouched one is seen to be untouched.
template <typename T>
T poisoned()
{
    T value;
    std::memset(static_cast<void*>(&value), 0xA5, sizeof(T));
    return value;
}

template <typename T>
bool is_poisoned(const T& value)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&value);
    return bytes[0] == 0xA5 && std::memcmp(bytes, bytes + 1, sizeof(T) - 1) == 0;
}

// A test without a session.
class ClosedApiTest : public testing::Test {
protected:
    scripted::Platform& platform = scripted::platform();

    ClosedApiTest()
    {
        platform.reset();
    }
    ~ClosedApiTest() override
    {
        zr_nexa_client_uninit();
        EXPECT_EQ(platform.objects, 0) << "an object of the platform was left behind";
        EXPECT_THAT(platform.complaints, testing::IsEmpty());
        EXPECT_THAT(platform.unused_answers(), testing::IsEmpty()) << "an answer was said and never asked for";
        platform.reset();
    }
};

// A test with an open session; the transcript begins behind its opening.
class ApiTest : public ClosedApiTest {
protected:
    ApiTest()
    {
        EXPECT_EQ(zr_nexa_client_init(nullptr), 0u);
        platform.forget();
    }
};

#endif
