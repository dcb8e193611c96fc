// Each of the platform's calls of an apply refused in turn, with several words: all is as before then, or what is told
// to be left is what differs, no more and no less. ZR_NEXA_TRIALS=all tries every call with every word.
#include <sys/mount.h>

#include <map>
#include <set>

#include "set_up_module.h"

namespace {

using Lines = std::vector<std::string>;
using Paths = std::set<std::string>;

// 0 is a word of a refusal, too.
constexpr uint32_t kWords[] = {3, 0, 48, 0xffff};

constexpr char kGreFile[] = "/etc/data/ipa/IPACM_cfg.xml";

Lines lines_of(const std::string& text)
{
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

Lines sorted(Lines lines)
{
    std::sort(lines.begin(), lines.end());
    return lines;
}

// Where a line of a plan stands.
std::string path_of(const std::string& line)
{
    return line.substr(0, line.find(": "));
}

bool is_below(const std::string& path, const std::string& other)
{
    return path == other || path.rfind(other + ".", 0) == 0;
}

bool is_in(const std::string& path, const Paths& paths)
{
    return std::any_of(paths.begin(), paths.end(),
                       [&path](const std::string& each) { return is_below(path, each) || is_below(each, path); });
}

// What an apply says to be left, a line each.
Lines left_of(const ToolRun& seen)
{
    const std::string mark = "zr_nexactl: is not as it should be: ";
    Lines left;
    for (const std::string& line : lines_of(seen.err))
        if (line.rfind(mark, 0) == 0) left.push_back(line.substr(mark.size()));
    return left;
}

class FaultsTest : public SetUpModuleTest {
protected:
    // What an apply of a document would change now.
    Lines differences(const std::string& document, const Words& more = {}) const
    {
        Words words = {"diff", document};
        words.insert(words.end(), more.begin(), more.end());
        const ToolRun seen = ctl(words);
        EXPECT_LE(seen.status, 1) << seen.err;
        Lines lines;
        for (const std::string& line : lines_of(seen.out))
            if (line.rfind("write_only.", 0) != 0) lines.push_back(line);  // is never the same
        return lines;
    }

    bool was_called(const std::string& name) const
    {
        const Words calls = platform_calls(log());
        return std::any_of(calls.begin(), calls.end(),
                           [&name](const std::string& call) { return call.rfind(name + "#", 0) == 0; });
    }

    // The status that an apply must end with, and what it must tell, by what is there afterwards.
    void judge(const ToolRun& seen, const std::string& document)
    {
        const Lines left = left_of(seen);
        switch (seen.status) {
            case 0:
                EXPECT_EQ(left, Lines());
                EXPECT_EQ(differences(document, exact_), Lines());
                break;
            case 3:
            case 4:
                EXPECT_EQ(left, Lines());
                EXPECT_EQ(shown(), shown_before_);
                expect_nothing_pending();
                break;
            case 5:
                judge_left(left, document);
                break;
            default:
                ADD_FAILURE() << seen.status << "\n" << seen.err;
        }
    }

    void judge_left(const Lines& left, const std::string& document)
    {
        EXPECT_NE(left, Lines());
        Paths told;
        bool is_unread = false;
        for (const std::string& line : left) {
            is_unread |= line.find(": cannot be read: ") != std::string::npos;
            told.insert(path_of(line));
        }
        // All is done, and one of the settings could not be read back.
        if (is_unread && differences(document, exact_).empty()) return;
        Paths differ;
        for (const std::string& line : differences(kept_document(), {"--exact"}))
            differ.insert(path_of(line));
        for (const std::string& path : differ)
            EXPECT_TRUE(is_in(path, told)) << path << " is not told in " << testing::PrintToString(left);
        if (is_unread) return;
        for (const std::string& path : told) {
            if (path.rfind("write_only.", 0) == 0) continue;
            EXPECT_TRUE(is_in(path, differ)) << path << " is told, and as before: " << testing::PrintToString(left);
        }
    }

    std::string kept_document()
    {
        if (kept_document_.empty()) {
            kept_document_ = written("kept.yaml", "");
            std::ofstream(kept_document_) << shown_kept_;
        }
        return kept_document_;
    }

    void refuse_each(const Words& more, size_t at_most, const std::function<void(const ToolRun&)>& judges)
    {
        shown_kept_ = ctl({"show", "--handles"}).out;
        shown_before_ = shown();
        Words words = {"apply", after_};
        words.insert(words.end(), more.begin(), more.end());
        const ToolRun whole = ctl(words, logging(""));
        EXPECT_EQ(whole.status, 0) << whole.err;
        const Words calls = platform_calls(log());
        EXPECT_GT(calls.size(), 100u);
        std::map<int, int> statuses;
        for (const size_t trial : some_of(calls.size() * std::size(kWords), at_most)) {
            const std::string fault =
                calls[trial / std::size(kWords)] + "=fail:" + std::to_string(kWords[trial % std::size(kWords)]);
            SCOPED_TRACE(fault);
            back_to_kept();
            put_gre_file();
            const ToolRun seen = ctl(words, logging(fault));
            ++statuses[seen.status];
            judges(seen);
            if (HasFailure()) std::cout << fault << "\n" << seen.out << seen.err << "\n";
        }
        for (const auto& [status, count] : statuses)
            std::cout << "status " << status << ": " << count << "\n";
        EXPECT_EQ(statuses.count(1) + statuses.count(2) + statuses.count(6), 0u);
    }

    // With the file of GRE offload where mounts of one's own are allowed; else without its section.
    void with_gre(const std::function<void()>& work)
    {
        const bool ran = in_private_mounts([&] {
            ASSERT_EQ(mount("none", "/etc", "tmpfs", 0, nullptr), 0);
            ASSERT_EQ(mount("none", "/run", "tmpfs", 0, nullptr), 0);
            std::filesystem::create_directories("/etc/data/ipa");
            std::filesystem::create_directories("/run/data");
            has_gre_ = true;
            put_gre_file();
            std::ofstream(after_, std::ios::app) << "gre: {enabled: true, servers: [10.0.0.1], masks: [255.0.0.0]}\n";
            work();
        });
        if (!ran) work();
    }
    void put_gre_file() const
    {
        if (!has_gre_) return;
        std::filesystem::remove(kGreFile);
        std::ofstream(kGreFile) << "<system><IPACM><GREFlag><GREEnabled>0</GREEnabled></GREFlag></IPACM></system>";
    }

    Words exact_;

private:
    bool has_gre_ = false;
    std::string shown_kept_;
    std::string kept_document_;
};

TEST_F(FaultsTest, OfEachCallIsUndoneOrTold)
{
    with_gre([this] { refuse_each({}, 100, [this](const ToolRun& seen) { judge(seen, after_); }); });
}

TEST_F(FaultsTest, OfEachCallOfAnExactApplyIsUndoneOrTold)
{
    exact_ = {"--exact"};
    with_gre([this] { refuse_each(exact_, 60, [this](const ToolRun& seen) { judge(seen, after_); }); });
}

// What is left is what a new apply would do.
TEST_F(FaultsTest, ThatDoesNotStopItLeavesWhatIsTold)
{
    with_gre([this] {
        refuse_each({"--keep-going"}, 60, [this](const ToolRun& seen) {
            const Lines left = left_of(seen);
            if (seen.status == 3) return judge(seen, after_);
            EXPECT_TRUE(seen.status == 0 || seen.status == 5) << seen.status << "\n" << seen.err;
            const bool is_unread = std::any_of(left.begin(), left.end(), [](const std::string& line) {
                return line.find(": cannot be read: ") != std::string::npos;
            });
            if (!is_unread) {
                EXPECT_EQ(sorted(left), sorted(differences(after_)));
            }
            expect_nothing_pending();
        });
    });
}

// A switch that cannot be read is told when it was written, and only then.
TEST_F(FaultsTest, WhatCanOnlyBeWrittenIsToldWhenItWas)
{
    after_ = written("switch.yaml", std::string(kAfter) + "write_only: {alg: {1: true}}\n");
    with_gre([this] {
        refuse_each({}, 40, [this](const ToolRun& seen) {
            const Lines left = left_of(seen);
            const bool is_told = std::any_of(left.begin(), left.end(), [](const std::string& line) {
                return line == "write_only.alg.1: not undone: the switch of ALG 1 cannot be read";
            });
            if (seen.status == 4 || seen.status == 5) {
                const bool is_refused = seen.err.find("refused: write_only.alg.1") != std::string::npos;
                const bool is_undone = seen.err.find("undoing what was done") != std::string::npos;
                EXPECT_EQ(is_told, is_undone && !is_refused && was_called("EnableAlg")) << seen.err;
            }
            if (!is_told) return judge(seen, after_);
            EXPECT_EQ(seen.status, 5);
            judge_left(left, after_);
        });
    });
}

}  // namespace
