// What is no document: status 2, each named, before the module is asked for anything.
#include <gmock/gmock.h>

#include "program_fixture.h"

namespace {

class BadInputTest : public ProgramTest {
protected:
    // All verbs that take a document say the same of it; a module that is not ready is not asked.
    void expect_refused(const std::string& file, const std::string& said) const
    {
        const std::vector<Words> verbs = {{"validate", file},
                                          {"validate", "--print", file},
                                          {"diff", file},
                                          {"diff", "--exact", file},
                                          {"apply", file},
                                          {"apply", "--dry-run", file},
                                          {"apply", "--exact", "--confirm-within", "60", file}};
        for (Words verb : verbs) {
            expect_ctl(verb, 2, "", said);
            expect_ctl(verb, 2, "", said, {"MOBILE_AP_FAULTS=IsReady=notready"});
        }
        for (const char* verb : {"validate", "diff", "apply"}) {
            const ToolRun seen = ctl({verb, "--json", file});
            EXPECT_EQ(seen.status, 2);
            EXPECT_THAT(seen.out, testing::MatchesRegex("\\{\"status\": 2, \"problems\": \\[\".*\"\\]\\}\n")) << verb;
            EXPECT_EQ(seen.err, said);
        }
    }

    void expect_document_refused(const std::string& document, const std::string& said) const
    {
        const std::string file = folder.path() + "/doc";
        std::ofstream(file) << document;
        expect_refused(file, std::regex_replace(said, std::regex("doc:"), file + ":"));
    }

    TempFolder folder;
};

TEST_F(BadInputTest, FilesThatAreNone)
{
    const std::string none = folder.path() + "/none.yaml";
    expect_refused(none, "zr_nexactl: " + none + ": No such file or directory\n");
    expect_refused(folder.path(), "zr_nexactl: " + folder.path() + ": Is a directory\n");
    expect_refused("/dev/null", "/dev/null:1:1: empty\n");
}

TEST_F(BadInputTest, DocumentsThatAreNone)
{
    const std::string before = ctl({"show"}).out;
    expect_document_refused("<config><lan id=\"0\"/></config>\n",
                            "doc:1:1: a group of keys is expected, with version: 1\n");
    expect_document_refused("version: 1\nlans: {0: {address: [}}\n", "doc:2:22: did not find expected node content\n");
    expect_document_refused("version: 2\nsections: {}\n",
                            "doc:1:1: version: 1 is known, 2 is not\ndoc:2:1: sections: no such key\n");
    expect_document_refused("version: 1\nversion: 1\n", "doc:2:1: version: key stands on line 1 already\n");
    expect_document_refused("version: 1\nupnp: {notify_seconds: 29, enabled: yes}\n",
                            "doc:2:8: upnp.notify_seconds: a whole number in decimal digits, 30 to 60000, not 29\n"
                            "doc:2:28: upnp.enabled: true or false, not yes\n");
    expect_document_refused(
        "version: 1\nreservations: {192.168.225.30: {mac: 00-01-02-03-04-05}}\n",
        "doc:2:33: reservations.192.168.225.30.mac: six pairs of hexadecimal digits with colons: write "
        "\"00:01:02:03:04:0a\", not 00-01-02-03-04-05\n");
    expect_document_refused("version: 1\ngeneral: {ipv4: false}\ngeneral2: {}\n",
                            "doc:3:1: general2: no such key; did you mean general?\n");
    EXPECT_EQ(ctl({"show"}).out, before);
    EXPECT_EQ(ctl({"pending"}).out, "nothing is pending\n");
}

}  // namespace
