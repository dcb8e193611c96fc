// What the tests of the document's areas share: rows by their keys, on the host platform in a fresh state folder.
#ifndef AREA_TEST_H
#define AREA_TEST_H

#include <sqlite3.h>
#include <zr_nexa_client_api.h>

#include <optional>
#include <stdexcept>

#include "host_fixture.h"
#include "keys.h"
#include "session.h"

namespace ctl {

// The row that stands at this path, or has this field.
inline const Row& row(const std::string& key)
{
    for (const Row& each : rows()) {
        if (!each.path.empty() && each.path == key) return each;
        for (const Field& field : each.fields)
            if (each.path.empty() && field.key == key) return each;
    }
    throw std::out_of_range(key);
}

// "done", the code, or why nothing was asked.
inline std::string answer_of(const Result& result)
{
    if (result.good()) return "done";
    char code[16];
    snprintf(code, sizeof code, "0x%x", result.code);
    return result.words.empty() ? code : result.words;
}

inline std::string read_text(const std::string& key, uint32_t id = 0)
{
    Value value;
    const Result result = row(key).read(id, &value);
    return result.good() ? in_short(value) : answer_of(result);
}

inline std::string write_text(const std::string& key, uint32_t id, const Value& wanted, const Value& present = {})
{
    return answer_of(row(key).write(id, wanted, present));
}

inline std::string add_text(const std::string& key, uint32_t id, const Value& entry)
{
    return answer_of(row(key).add(id, "", entry));
}

inline std::string remove_text(const std::string& key, uint32_t id, const Value& entry)
{
    return answer_of(row(key).remove(id, "", entry));
}

// What is said of a value of the row: its kinds first, then what belongs together.
inline std::string complaints_of(const std::string& key, const std::string& path, Value value)
{
    std::string text;
    const Complain complain = [&](const Value&, const std::string& where, const std::string& problem) {
        text += (text.empty() ? "" : "; ") + where + ": " + problem;
    };
    const Row& wanted = row(key);
    bool good = true;
    if (wanted.shape == Shape::kUnit) {
        for (const Field& field : wanted.fields)
            if (!value.child(field.key).is_nothing())
                good &= normalize(field.type, path + field.key, &value.map()[field.key], complain);
    } else {
        Type type = plain(Type::Kind::kRecord);
        type.fields = wanted.fields;
        good = normalize(wanted.fields[0].key.empty() ? wanted.fields[0].type : type, path, &value, complain);
    }
    if (good && wanted.check) wanted.check(value, path, complain);
    return text;
}

class AreaTest : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        session_.emplace();
        ASSERT_EQ(session_->problem(), "");
    }
    void TearDown() override
    {
        session_.reset();
        HostTest::TearDown();
    }

    // A session of its own, with these faults.
    void with_faults(const std::string& faults)
    {
        session_.reset();
        setenv("MOBILE_AP_FAULTS", faults.c_str(), 1);
        session_.emplace();
        ASSERT_EQ(session_->problem(), "");
    }

    void close()
    {
        session_.reset();
    }

    // What the statement gives, one value behind the other.
    std::string sql(const std::string& statement) const
    {
        sqlite3* db = nullptr;
        EXPECT_EQ(sqlite3_open((folder + "/mobile_ap.db").c_str(), &db), SQLITE_OK);
        std::string text;
        const auto add = [](void* to, int count, char** values, char**) {
            for (int i = 0; i < count; ++i)
                *static_cast<std::string*>(to) += values[i];
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(db, statement.c_str(), add, &text, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        sqlite3_close(db);
        return text;
    }

private:
    std::optional<Session> session_;
};

}  // namespace ctl

#endif
