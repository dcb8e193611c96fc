// Rows of profiles on a module of their own.
#ifndef PROFILE_FIXTURE_H
#define PROFILE_FIXTURE_H

#include <sqlite3.h>

#include <memory>

#include "document.h"
#include "host_fixture.h"
#include "keys.h"
#include "session.h"
#include "wan_profile.h"

class ProfileRowsTest : public HostTest {
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
    void open(const std::string& faults = "")
    {
        session.reset();
        setenv("MOBILE_AP_FAULTS", faults.c_str(), 1);
        session = std::make_unique<ctl::Session>();
        ASSERT_EQ(session->problem(), "");
    }

    // The row of this path, or with this field.
    static const ctl::Row& row(const std::string& name)
    {
        for (const ctl::Row& row : ctl::rows()) {
            if (!row.path.empty() && row.path == name) return row;
            for (const ctl::Field& field : row.fields)
                if (row.path.empty() && field.key == name) return row;
        }
        throw std::runtime_error("no row " + name);
    }
    static const ctl::Field& field(const std::string& name)
    {
        for (const ctl::Field& field : row(name).fields)
            if (field.key == name) return field;
        throw std::runtime_error("no field " + name);
    }
    static ctl::Value value(const std::string& name, uint32_t id)
    {
        ctl::Value value;
        std::map<uint32_t, ctl::Value> all;
        const ctl::Row& found = row(name);
        const ctl::Result result = found.read != nullptr ? found.read(id, &value) : found.read_all(&all);
        EXPECT_EQ(result.code, 0u) << result.function;
        return found.read != nullptr ? value : all[id];
    }
    static std::string read(const std::string& name, uint32_t id)
    {
        return ctl::in_short(value(name, id));
    }
    // What a unit's write answers: "0", a code, or why nothing was asked.
    static std::string write(const std::string& name, uint32_t id, const ctl::Value::Map& wanted)
    {
        return told(row(name).write(id, ctl::Value(wanted), value(name, id)));
    }
    static std::string told(const ctl::Result& result)
    {
        char code[16];
        snprintf(code, sizeof code, result.code != 0 ? "0x%X" : "%X", result.code);
        return result.words.empty() ? code : result.words;
    }

    // A document's list as the row's entries; what is wrong with it is added to problems, a line each.
    static ctl::Value entries(const std::string& name, const std::string& text, std::string* problems)
    {
        const ctl::Complain complain = [problems](const ctl::Value&, const std::string& path,
                                                  const std::string& problem) {
            *problems += path + ": " + problem + "\n";
        };
        const ctl::Row& found = row(name);
        ctl::Problems of_form;
        ctl::Value list = ctl::read_document(text, &of_form);
        EXPECT_EQ(ctl::problem_lines("document", of_form), "");
        const bool plain = found.fields.size() == 1 && found.fields[0].key.empty();
        const ctl::Type type =
            plain ? ctl::list_of(found.fields[0].type, found.most) : ctl::list_of_records(found.fields, found.most);
        if (ctl::normalize(type, "list", &list, complain) && found.check != nullptr)
            for (size_t i = 0; i < list.list().size(); ++i)
                found.check(list.list()[i], "list[" + std::to_string(i) + "]", complain);
        return list;
    }
    static std::string problems(const std::string& name, const std::string& text)
    {
        std::string problems;
        entries(name, text, &problems);
        return problems;
    }
    // Adds all entries of a document's list.
    static void add(const std::string& name, uint32_t id, const std::string& text)
    {
        std::string problems;
        const ctl::Value list = entries(name, text, &problems);
        ASSERT_EQ(problems, "");
        for (const ctl::Value& entry : list.list())
            ASSERT_EQ(told(row(name).add(id, "", entry)), "0") << ctl::in_short(entry);
    }
    // What the module has, sorted, is what the text says.
    static void expect_entries(const std::string& name, uint32_t id, const std::string& text)
    {
        std::string problems;
        const ctl::Value list = entries(name, text, &problems);
        EXPECT_EQ(problems, "");
        EXPECT_EQ(ctl::in_short(ctl::Value(ctl::sorted(value(name, id).list()))),
                  ctl::in_short(ctl::Value(ctl::sorted(list.list()))));
    }
    // What is wrong with a value of a unit's field; empty: nothing.
    static std::string wrong(const std::string& name, const std::string& text)
    {
        std::string problem;
        ctl::Problems of_form;
        ctl::Value value = ctl::read_document(text, &of_form);
        EXPECT_EQ(ctl::problem_lines("document", of_form), "");
        ctl::normalize(field(name).type, name, &value,
                       [&](const ctl::Value&, const std::string&, const std::string& said) { problem += said; });
        return problem;
    }

    static uint32_t add_profile(const std::string& apn_name = "")
    {
        uint32_t handle = 0;
        const ctl::Value dial(
            ctl::Value::Map{{"technology", "any"}, {"apn_index", 1}, {"family", "ipv4v6"}, {"apn_name", apn_name}});
        EXPECT_EQ(told(ctl::add_profile(dial, &handle)), "0");
        return handle;
    }

    // Straight into the module's state; gives the first column of the first row.
    std::string sql(const std::string& words)
    {
        sqlite3* connection = nullptr;
        EXPECT_EQ(sqlite3_open((folder + "/mobile_ap.db").c_str(), &connection), SQLITE_OK);
        sqlite3_busy_timeout(connection, 5000);
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(connection, words.c_str(), -1, &statement, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection);
        std::string answer;
        const int step = sqlite3_step(statement);
        if (step == SQLITE_ROW) answer = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        EXPECT_TRUE(step == SQLITE_ROW || step == SQLITE_DONE) << sqlite3_errmsg(connection);
        sqlite3_finalize(statement);
        sqlite3_close(connection);
        return answer;
    }

    std::unique_ptr<ctl::Session> session;
};

#endif
