// Documents: YAML, and with it JSON, as trees, and trees as documents.
#ifndef ZR_NEXA_CTL_DOCUMENT_H
#define ZR_NEXA_CTL_DOCUMENT_H

#include <string>
#include <vector>

#include "value.h"

namespace ctl {

// What is wrong with a document, and where.
struct Problem {
    Mark mark;
    std::string path;  // of the key; empty when it is about the document as a whole
    std::string text;
};
using Problems = std::vector<Problem>;

// More are not told: what has so many is not looked at any further.
constexpr size_t kProblemsMax = 1000;

// Thrown with the problem that is one too many.
struct Enough {};
void add_problem(Problems* problems, Problem problem);

// "file:4:7: lans.10.dhcp: no such key", in the order of their places.
std::string problem_lines(const std::string& file, Problems problems);

// Largest document, in bytes, most values of one, and longest key, in bytes.
constexpr size_t kDocumentMax = size_t{32} << 20;
constexpr size_t kValuesMax = 1000000;
constexpr size_t kKeyMax = 1024;

// The bytes of a file, or of standard input for "-". Returns why it cannot be read; empty: it was.
std::string read_file(const std::string& file, std::string* bytes);

// Writes all of it; if false is returned, errno says why.
bool write_all(int fd, const std::string& bytes);

// Reads one. Scalars keep the document's spelling; aliases, anchors, tags and directives other than %YAML are not
// taken, and no key stands twice.
Value read_document(const std::string& bytes, Problems* problems);

// The value of a scalar as it stands in a document: bare where every reader takes it for what it is, else in double
// quotes.
std::string spelled(const Value& scalar, bool bare);

// A text in double quotes, as YAML and JSON both read it.
std::string quoted(const std::string& text);

}  // namespace ctl

#endif
