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

// "file:4:7: lans.10.dhcp: no such key", in the order of their places.
std::string problem_lines(const std::string& file, Problems problems);

// Largest document, in bytes, and most values of one.
constexpr size_t kDocumentMax = size_t{32} << 20;
constexpr size_t kValuesMax = 1000000;

// The bytes of a file, or of standard input for "-". Returns why it cannot be read; empty: it was.
std::string read_file(const std::string& file, std::string* bytes);

// Reads one. Scalars keep the document's spelling; aliases, anchors and tags are not taken, and no key stands twice.
Value read_document(const std::string& bytes, Problems* problems);

// The value of a scalar as it stands in a document: bare where every reader takes it for what it is, else in double
// quotes.
std::string spelled(const Value& scalar, bool bare);

// A text in double quotes, as YAML and JSON both read it.
std::string quoted(const std::string& text);

}  // namespace ctl

#endif
