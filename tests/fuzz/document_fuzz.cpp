// Documents of zr_nexactl: whatever the bytes, they are taken or refused with a reason; what is taken has a normal
// form, as YAML and as JSON, that is taken again and is the same.
#include <string>

#include "checks.h"
#include "document.h"
#include "fuzz.h"
#include "tree.h"

namespace {

ctl::Value checked(const std::string& bytes, ctl::Problems* problems)
{
    return ctl::check_document(ctl::read_document(bytes, problems), problems);
}

void try_printed(const ctl::Value& document, std::string (*print)(const ctl::Value&))
{
    const std::string text = print(document);
    ctl::Problems problems;
    const ctl::Value again = checked(text, &problems);
    fuzz::expect(problems.empty());
    fuzz::expect(again == document);
    fuzz::expect(print(again) == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string bytes(data, data + size);
    ctl::Problems problems;
    const ctl::Value document = checked(bytes, &problems);
    if (!problems.empty()) {
        fuzz::expect(problems.size() <= ctl::kProblemsMax + 1);
        fuzz::expect(!ctl::problem_lines("file", problems).empty());
        return 0;
    }
    fuzz::expect(document.is_map());
    try_printed(document, ctl::as_yaml);
    try_printed(document, ctl::as_json);
    const auto all_change = [](const std::string&) { return true; };
    ctl::Problems warnings;
    ctl::check_plausible(document, all_change, &problems, &warnings);
    return 0;
}
