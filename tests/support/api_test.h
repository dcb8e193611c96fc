// Fixture and row helpers of the client interface's tests.
#ifndef API_TEST_H
#define API_TEST_H

#include "scripted_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zr_nexa_client_api.h>

#include <cstring>
#include <string>
#include <vector>

// Error words every failure point is tried with. 0x1000 and 0xFFFF swallow step tags.
inline const std::vector<uint32_t> kErrorWords = {0, 1, 3, 43, 0x1000, 0xFFFF, 0x7FFFFFFF};

struct ExpectedRecord {
    uint32_t level;
    std::string text;
};
inline ExpectedRecord info(const std::string& text)
{
    return {4, text};
}
inline ExpectedRecord error(const std::string& text)
{
    return {8, text};
}

inline std::string shown(uint32_t level, const std::string& function, const std::string& text)
{
    return (level == 4 ? "info " : "error ") + function + ": " + text;
}

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

    // The whole journal since the session was opened.
    void expect_calls(const std::vector<std::string>& calls)
    {
        EXPECT_THAT(platform.journal, testing::ElementsAreArray(calls));
    }
    // All records since the session was opened, every one under the given function's name.
    void expect_log(const std::string& function, const std::vector<ExpectedRecord>& records)
    {
        std::vector<std::string> expected;
        for (const auto& record : records) {
            expected.push_back(shown(record.level, function, record.text));
        }
        std::vector<std::string> seen;
        for (const auto& line : platform.log) {
            seen.push_back(shown(line.level, line.function, line.text));
        }
        EXPECT_THAT(seen, testing::ElementsAreArray(expected));
    }
    // A row: the whole journal and all records of one call, then both are forgotten for the next row.
    void expect_row(const std::string& function, const std::vector<std::string>& calls,
                    const std::vector<ExpectedRecord>& records)
    {
        expect_calls(calls);
        expect_log(function, records);
        platform.forget();
    }
};

// A test with an open session; journal and log begin behind its opening.
class ApiTest : public ClosedApiTest {
protected:
    ApiTest()
    {
        EXPECT_EQ(zr_nexa_client_init(nullptr), 0u);
        platform.forget();
    }
};

#endif
