// What the tests of the document's areas share: a module of their own on the host platform, a session with it, and the
// rows, found by their keys. What a row answers is told in one spelling: "done", a code and its function, or why
// nothing was asked.
#ifndef AREA_FIXTURE_H
#define AREA_FIXTURE_H

#include <sqlite3.h>

#include <optional>
#include <stdexcept>

#include "document.h"
#include "host_fixture.h"
#include "keys.h"
#include "session.h"
#include "wan_profile.h"

namespace ctl {

inline const Row& row(const std::string& key)
{
    return row_of(key);
}

inline const Field& field(const std::string& key)
{
    for (const Field& field : row(key).fields)
        if (field.key == key) return field;
    throw std::out_of_range("no field " + key);
}

inline std::string told(const Result& result)
{
    if (result.good()) return "done";
    if (!result.words.empty()) return result.words;
    char code[16];
    std::snprintf(code, sizeof code, "0x%x ", result.code);
    return code + std::string(result.function);
}

// What the text says, as a document's value.
inline Value parsed(const std::string& text)
{
    Problems of_form;
    Value value = read_document(text, &of_form);
    EXPECT_EQ(problem_lines("document", of_form), "");
    return value;
}

// Brings what stands at the row, below this LAN or profile, into normal form: a part of a unit, a whole, or all
// entries. What is wrong with it, a line each: the kinds first, then what belongs together.
inline std::string problems(const std::string& key, Value* value, const std::string& instance = "")
{
    const Row& found = row(key);
    std::string lines;
    const Complain complain = [&lines](const Value&, const std::string& at, const std::string& problem) {
        lines += at + ": " + problem + "\n";
    };
    const auto below = [](const std::string& path, const std::string& name) {
        return path.empty() ? name : path + "." + name;
    };
    const auto checked = [&](const Type& type, const std::string& at, Value* each) {
        if (normalize(type, at, each, complain) && found.check) found.check(*each, at, complain);
    };
    const std::string path = below(instance, found.path);
    Type entry = plain(Type::Kind::kRecord);
    entry.fields = found.fields;
    if (found.fields[0].key.empty()) entry = found.fields[0].type;
    switch (found.shape) {
        case Shape::kUnit:
            for (const Field& field : found.fields)
                if (!value->child(field.key).is_nothing())
                    normalize(field.type, below(instance, field.key), &value->map()[field.key], complain);
            if (found.check && lines.empty()) found.check(*value, instance, complain);
            break;
        case Shape::kWhole:
            checked(entry, path, value);
            break;
        case Shape::kList:
            if (normalize(list_of(entry, found.most), path, value, complain) && found.check)
                for (size_t i = 0; i < value->list().size(); ++i)
                    found.check(value->list()[i], path + "[" + std::to_string(i) + "]", complain);
            break;
        case Shape::kKeyed:
            for (auto& [name, each] : value->map()) {
                Value named = name;
                normalize(found.key, path, &named, complain);
                checked(entry, below(path, name), &each);
            }
            break;
    }
    return lines;
}

inline std::string problems_of(const std::string& key, Value value, const std::string& instance = "")
{
    return problems(key, &value, instance);
}

inline Result read_value(const std::string& key, uint32_t id, Value* value)
{
    const Row& found = row(key);
    if (found.read) return found.read(id, value);
    std::map<uint32_t, Value> all;
    const Result result = found.read_all(&all);
    *value = all[id];
    return result;
}

// What the row reads, which must not be refused.
inline Value value_of(const std::string& key, uint32_t id = 0)
{
    Value value;
    EXPECT_EQ(told(read_value(key, id, &value)), "done") << key;
    return value;
}

// The same on one line, or why it was refused. What is read is taken back by a document.
inline std::string read(const std::string& key, uint32_t id = 0)
{
    Value value;
    const Result result = read_value(key, id, &value);
    if (!result.good()) return told(result);
    if (!value.is_nothing()) {
        Value again = value;
        EXPECT_EQ(problems(key, &again, row(key).scope == Scope::kLan ? "lans." + std::to_string(id) : ""), "");
        EXPECT_EQ(in_short(again), in_short(value));
    }
    return in_short(value);
}

// Writes as the core does: what a document says of a unit is laid over what it reads; anything else is written whole.
inline std::string write(const std::string& key, uint32_t id, const Value::Map& values)
{
    const Row& found = row(key);
    Value present;
    if (found.shape == Shape::kUnit && !found.write_only) {
        const Result result = read_value(key, id, &present);
        if (!result.good()) return told(result);
    }
    Value wanted = present;
    wanted.map();
    for (const auto& [name, value] : values)
        wanted.map()[name] = value;
    return told(found.write(id, wanted, present));
}

// An entry of a list has no name.
inline std::string add(const std::string& key, uint32_t id, const Value& entry, const std::string& name = "")
{
    return told(row(key).add(id, name, entry));
}
inline std::string remove(const std::string& key, uint32_t id, const Value& entry, const std::string& name = "")
{
    return told(row(key).remove(id, name, entry));
}
inline std::string change(const std::string& key, uint32_t id, const std::string& name, const Value& wanted,
                          const Value& present = {})
{
    return told(row(key).change(id, name, wanted, present));
}

// All entries that the text lists.
inline void add_entries(const std::string& key, uint32_t id, const std::string& text)
{
    Value list = parsed(text);
    ASSERT_EQ(problems(key, &list), "");
    for (const Value& entry : list.list())
        ASSERT_EQ(add(key, id, entry), "done") << in_short(entry);
}

// What the module has, sorted, is what the text says.
inline void expect_entries(const std::string& key, uint32_t id, const std::string& text)
{
    Value list = parsed(text);
    EXPECT_EQ(problems(key, &list), "");
    EXPECT_EQ(in_short(sorted(value_of(key, id).list())), in_short(sorted(list.list())));
}

inline uint32_t add_profile(const std::string& apn_name = "")
{
    uint32_t handle = 0;
    const Value dial =
        Value::Map{{"technology", "any"}, {"apn_index", 1}, {"family", "ipv4v6"}, {"apn_name", apn_name}};
    EXPECT_EQ(told(add_profile(dial, &handle)), "done");
    return handle;
}

class AreaTest : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        open();
    }
    void TearDown() override
    {
        close();
        HostTest::TearDown();
    }

    // A session of its own, with these faults.
    void open(const std::string& faults = "")
    {
        close();
        setenv("MOBILE_AP_FAULTS", faults.c_str(), 1);
        session_.emplace();
        ASSERT_EQ(session_->problem(), "");
    }
    void close()
    {
        session_.reset();
    }

    // What the statements give, one value behind the other, straight from the module's state.
    std::string sql(const std::string& statements) const
    {
        sqlite3* db = nullptr;
        EXPECT_EQ(sqlite3_open((folder + "/mobile_ap.db").c_str(), &db), SQLITE_OK);
        sqlite3_busy_timeout(db, 5000);
        std::string text;
        const auto add = [](void* to, int count, char** values, char**) {
            for (int i = 0; i < count; ++i)
                *static_cast<std::string*>(to) += values[i];
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(db, statements.c_str(), add, &text, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        sqlite3_close(db);
        return text;
    }

private:
    std::optional<Session> session_;
};

}  // namespace ctl

#endif
