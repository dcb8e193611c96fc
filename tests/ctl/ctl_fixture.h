// What the tests of zr_nexactl's areas share: a module of their own, a session with it, and its rows.
#ifndef CTL_FIXTURE_H
#define CTL_FIXTURE_H

#include <sqlite3.h>

#include <memory>

#include "host_fixture.h"
#include "keys.h"
#include "session.h"

class CtlTest : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        open();
    }
    void TearDown() override
    {
        session.reset();
        HostTest::TearDown();
    }

    // Opens the session anew, with faults.
    void open(const char* faults = "")
    {
        session.reset();
        setenv("MOBILE_AP_FAULTS", faults, 1);
        session = std::make_unique<ctl::Session>();
        ASSERT_EQ(session->problem(), "");
    }

    // The row that stands at this path, or has a field of it.
    static const ctl::Row& row(const std::string& path)
    {
        for (const ctl::Row& each : ctl::rows()) {
            if (each.path == path) return each;
            for (const ctl::Field& field : each.fields)
                if (each.path.empty() && field.key == path) return each;
        }
        throw std::runtime_error("no row " + path);
    }

    // What a row reads, on one line; the code where that is refused. All that is read is taken back by a document.
    static std::string read(const std::string& path, uint32_t id = 0)
    {
        ctl::Value value;
        const ctl::Result result = row(path).read(id, &value);
        if (!result.good()) return refusal(result);
        ctl::Value again = value;
        EXPECT_EQ(problems(path, &again), "");
        EXPECT_TRUE(again == value) << in_short(value);
        return in_short(value);
    }

    // Brings a record, or the entries of a keyed row, into normal form; what is wrong, a line each.
    static std::string problems(const std::string& path, ctl::Value* value)
    {
        const ctl::Row& row = CtlTest::row(path);
        std::string text;
        const ctl::Complain complain = [&](const ctl::Value&, const std::string& at, const std::string& problem) {
            text += at + ": " + problem + "\n";
        };
        if (row.shape == ctl::Shape::kUnit) {
            for (const ctl::Field& field : row.fields)
                if (!value->child(field.key).is_nothing())
                    normalize(field.type, field.key, &value->map()[field.key], complain);
            if (row.check && text.empty()) row.check(*value, "", complain);
            return text;
        }
        ctl::Type entry = {ctl::Type::Kind::kRecord};
        entry.fields = row.fields;
        const auto one = [&](const std::string& at, ctl::Value* each) {
            if (normalize(entry, at, each, complain) && row.check) row.check(*each, at, complain);
        };
        if (row.shape != ctl::Shape::kKeyed) {
            one(path, value);
            return text;
        }
        for (auto& [key, each] : value->map()) {
            ctl::Value name = key;
            normalize(row.key, path, &name, complain);
            one(path + "." + key, &each);
        }
        return text;
    }

    // Writes a unit: what it reads, with some values in place of its own. The answer, 0 or the code and the function.
    static std::string write(const std::string& path, const ctl::Value::Map& values, uint32_t id = 0)
    {
        ctl::Value present;
        const ctl::Result read = row(path).read(id, &present);
        if (!read.good()) return refusal(read);
        ctl::Value wanted = present;
        for (const auto& [key, value] : values)
            wanted.map()[key] = value;
        return refusal(row(path).write(id, wanted, present));
    }

    static std::string refusal(const ctl::Result& result)
    {
        char code[16];
        std::snprintf(code, sizeof code, "0x%x", result.code);
        return result.good() ? "0" : code + std::string(" ") + result.function;
    }

    // Statements in the module's own database.
    void sql(const std::string& statements) const
    {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open((folder + "/mobile_ap.db").c_str(), &db), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(db, statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        sqlite3_close(db);
    }

    // The first value that a question to it gives.
    std::string asked(const std::string& question) const
    {
        sqlite3* db = nullptr;
        sqlite3_stmt* statement = nullptr;
        std::string answer;
        EXPECT_EQ(sqlite3_open((folder + "/mobile_ap.db").c_str(), &db), SQLITE_OK);
        EXPECT_EQ(sqlite3_prepare_v2(db, question.c_str(), -1, &statement, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        if (sqlite3_step(statement) == SQLITE_ROW)
            answer = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        sqlite3_finalize(statement);
        sqlite3_close(db);
        return answer;
    }

    std::unique_ptr<ctl::Session> session;
};

#endif
