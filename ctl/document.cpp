#include "document.h"

#include <fcntl.h>
#include <unistd.h>
#include <yaml.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

namespace ctl {
namespace {

constexpr int kDepthMax = 16;

// A document that cannot be read on.
struct Broken {
    Problem problem;
};

// Of what it cannot take for text, libyaml tells which byte of the whole.
Mark mark_of(const yaml_parser_t& parser)
{
    const unsigned char* const begin = parser.input.string.start;
    const unsigned char* const at =
        begin + std::min<ptrdiff_t>(static_cast<ptrdiff_t>(parser.problem_offset), parser.input.string.end - begin);
    Mark mark = {1, 1};
    for (const unsigned char* each = begin; each < at; ++each) {
        const bool ends_line = *each == '\n';
        mark = ends_line ? Mark{mark.line + 1, 1} : Mark{mark.line, mark.column + 1};
    }
    return mark;
}

class Event {
public:
    explicit Event(yaml_parser_t* parser)
    {
        if (yaml_parser_parse(parser, &event_) != 0) return;
        if (parser->error == YAML_MEMORY_ERROR) throw std::bad_alloc();
        const yaml_mark_t& at = parser->problem_mark;
        Mark mark = {static_cast<uint32_t>(at.line) + 1, static_cast<uint32_t>(at.column) + 1};
        std::string text = parser->problem != nullptr ? parser->problem : "cannot be read";
        if (parser->error == YAML_READER_ERROR) {
            mark = mark_of(*parser);
            if (text.find("UTF-8") != std::string::npos) text = "not UTF-8: " + text;
        }
        if (text.find("Unicode character escape") != std::string::npos)
            text += "; a sign beyond \\uffff is written as itself, or as \\U and eight digits";
        throw Broken{{mark, "", text}};
    }
    ~Event()
    {
        yaml_event_delete(&event_);
    }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    yaml_event_type_t type() const
    {
        return event_.type;
    }
    Mark mark() const
    {
        return {static_cast<uint32_t>(event_.start_mark.line) + 1, static_cast<uint32_t>(event_.start_mark.column) + 1};
    }
    std::string text() const
    {
        const auto& scalar = event_.data.scalar;
        const void* const bytes = scalar.value;
        return std::string(static_cast<const char*>(bytes), scalar.length);
    }
    bool is_plain() const
    {
        return event_.data.scalar.style == YAML_PLAIN_SCALAR_STYLE;
    }
    // An anchor or a tag of a node that has just begun.
    bool is_marked() const
    {
        switch (event_.type) {
            case YAML_SCALAR_EVENT:
                return event_.data.scalar.anchor != nullptr || event_.data.scalar.tag != nullptr;
            case YAML_SEQUENCE_START_EVENT:
                return event_.data.sequence_start.anchor != nullptr || event_.data.sequence_start.tag != nullptr;
            case YAML_MAPPING_START_EVENT:
                return event_.data.mapping_start.anchor != nullptr || event_.data.mapping_start.tag != nullptr;
            default:
                return false;
        }
    }

private:
    yaml_event_t event_;
};

// Where a value stands, told as a path only where something is wrong.
struct Place {
    const Place* above;
    const std::string* key;  // null: an entry of a list
    size_t index;

    std::string path() const
    {
        const std::string before = above != nullptr ? above->path() : "";
        if (key == nullptr) return above != nullptr ? before + "[" + std::to_string(index) + "]" : "";
        return before.empty() ? *key : before + "." + *key;
    }
};

// Takes the first line off the bytes, with the break that ends it: of those that YAML has.
std::string_view take_line(std::string_view* bytes)
{
    size_t end = bytes->find_first_of("\n\r\xc2\xe2");
    for (; end != std::string_view::npos; end = bytes->find_first_of("\n\r\xc2\xe2", end + 1)) {
        for (const std::string_view each : {"\r\n", "\n", "\r", "\xc2\x85", "\xe2\x80\xa8", "\xe2\x80\xa9"}) {
            if (bytes->substr(end, each.size()) != each) continue;
            const std::string_view line = bytes->substr(0, end);
            bytes->remove_prefix(end + each.size());
            return line;
        }
    }
    return std::exchange(*bytes, {});
}

// The line of the first directive that is not of YAML's version; 0 when there is none. They stand where a document may
// begin, and are looked for here since libyaml compares each with all others.
uint32_t directive_line(std::string_view bytes)
{
    if (bytes.substr(0, 3) == "\xef\xbb\xbf") bytes.remove_prefix(3);
    bool may_begin = true;
    for (uint32_t line = 1; !bytes.empty(); ++line) {
        const std::string_view text = take_line(&bytes);
        const bool is_version = text.substr(0, 6) == "%YAML ";
        if (may_begin && text.substr(0, 1) == "%" && !is_version) return line;
        const size_t first = text.find_first_not_of(" \t");
        const bool is_empty = first == std::string_view::npos || text[first] == '#';
        may_begin = (may_begin && (is_empty || is_version)) || text.substr(0, 3) == "...";
    }
    return 0;
}

class Reader {
public:
    Reader(const std::string& bytes, Problems* problems) : problems_(problems)
    {
        if (yaml_parser_initialize(&parser_) == 0) throw std::bad_alloc();
        const size_t mark =
            bytes.rfind("\xef\xbb\xbf", 0) == 0 ? 3 : 0;  // of bytes that are UTF-8; some editors put it
        const void* const start = bytes.data() + mark;
        yaml_parser_set_encoding(&parser_, YAML_UTF8_ENCODING);
        yaml_parser_set_input_string(&parser_, static_cast<const unsigned char*>(start), bytes.size() - mark);
    }
    ~Reader()
    {
        yaml_parser_delete(&parser_);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Value read()
    {
        const Event stream(&parser_);
        const Event start(&parser_);
        if (start.type() == YAML_STREAM_END_EVENT) {
            tell({1, 1}, "", "empty");
            return {};
        }
        const Event first(&parser_);
        const Place root = {};
        Value value = node(first, root, 1);
        const Event end(&parser_);
        const Event next(&parser_);
        if (next.type() != YAML_STREAM_END_EVENT) tell(next.mark(), "", "a second document");
        return value;
    }

private:
    void tell(Mark mark, const std::string& path, const std::string& text)
    {
        add_problem(problems_, {mark, path, text});
    }

    Value node(const Event& event, const Place& place, int depth)
    {
        const Mark mark = event.mark();
        const auto broken = [&](const std::string& text) { return Broken{{mark, place.path(), text}}; };
        if (depth > kDepthMax) throw broken("nested deeper than " + std::to_string(kDepthMax));
        if (++values_ > kValuesMax) throw broken("more than " + std::to_string(kValuesMax) + " values");
        if (event.type() == YAML_ALIAS_EVENT) throw broken("aliases are not taken");
        if (event.is_marked()) throw broken("anchors and tags are not taken");
        Value value;
        if (event.type() == YAML_SCALAR_EVENT)
            value = scalar(event, place);
        else if (event.type() == YAML_SEQUENCE_START_EVENT)
            value = list(place, depth);
        else
            value = map(place, depth);
        value.mark = mark;
        return value;
    }

    // What YAML takes for nothing is no value here: a forgotten one never means "delete all".
    Value scalar(const Event& event, const Place& place)
    {
        std::string text = event.text();
        const bool may_be_nothing = text.empty() || text[0] == '~' || text[0] == 'n' || text[0] == 'N';
        if (event.is_plain() && may_be_nothing &&
            (text.empty() || text == "~" || text == "null" || text == "Null" || text == "NULL")) {
            tell(event.mark(), place.path(), "nothing stands behind it; leave the key out to leave it alone");
            return {};
        }
        return Value(Scalar{std::move(text), !event.is_plain()});
    }

    Value list(const Place& place, int depth)
    {
        Value::List list;
        for (;;) {
            const Event event(&parser_);
            if (event.type() == YAML_SEQUENCE_END_EVENT) return Value(std::move(list));
            const Place entry = {&place, nullptr, list.size()};
            list.push_back(node(event, entry, depth + 1));
        }
    }

    Value map(const Place& place, int depth)
    {
        Value::Map map;
        for (;;) {
            const Event event(&parser_);
            if (event.type() == YAML_MAPPING_END_EVENT) return Value(std::move(map));
            if (event.type() != YAML_SCALAR_EVENT || event.is_marked())
                throw Broken{{event.mark(), place.path(), "a key is a plain text or number"}};
            std::string key = event.text();
            if (key.size() > kKeyMax)
                throw Broken{{event.mark(), place.path(), "a key of more than " + std::to_string(kKeyMax) + " bytes"}};
            const Place below = {&place, &key, 0};
            const Event behind(&parser_);
            Value value = node(behind, below, depth + 1);
            value.mark = event.mark();  // a problem is told at the key, which is never empty
            // Keys mostly stand in order: the end is tried first.
            const bool is_last = map.empty() || map.key_comp()(map.rbegin()->first, key);
            const auto behind_it = is_last ? map.end() : map.lower_bound(key);
            if (behind_it != map.end() && behind_it->first == key)
                tell(event.mark(), below.path(),
                     "key stands on line " + std::to_string(behind_it->second.mark.line) + " already");
            else
                map.emplace_hint(behind_it, std::move(key), std::move(value));
        }
    }

    yaml_parser_t parser_;
    Problems* problems_;
    size_t values_ = 0;
};

// Every reader takes it for the text that it is: no number, no flag, no place in time, no punctuation of YAML's.
bool can_be_bare(const std::string& text)
{
    if (text.empty() || !std::isalpha(static_cast<unsigned char>(text[0]))) return false;
    const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_' || c == '.';
    });
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    const std::initializer_list<const char*> others = {"y", "n", "yes", "no", "on", "off", "true", "false", "null"};
    return plain && std::find(others.begin(), others.end(), lower) == others.end();
}

// With control bytes as \xNN: what a document says goes to a terminal here.
std::string visible(const std::string& text)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    for (const char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7f)
            out += c;
        else
            out += std::string("\\x") + kDigits[byte >> 4] + kDigits[byte & 15];
    }
    return out;
}

}  // namespace

void add_problem(Problems* problems, Problem problem)
{
    if (problems->size() >= kProblemsMax) {
        problems->push_back({{}, "", "there are more problems than are told"});
        throw Enough();
    }
    problems->push_back(std::move(problem));
}

std::string problem_lines(const std::string& file, Problems problems)
{
    std::stable_sort(problems.begin(), problems.end(), [](const Problem& a, const Problem& b) {
        return a.mark.line != b.mark.line ? a.mark.line < b.mark.line : a.mark.column < b.mark.column;
    });
    const auto same = [](const Problem& a, const Problem& b) {
        return a.mark.line == b.mark.line && a.mark.column == b.mark.column && a.path == b.path && a.text == b.text;
    };
    problems.erase(std::unique(problems.begin(), problems.end(), same), problems.end());
    std::string lines;
    for (const Problem& problem : problems) {
        lines += file + ":";
        if (problem.mark.line != 0)
            lines += std::to_string(problem.mark.line) + ":" + std::to_string(problem.mark.column) + ":";
        lines += (problem.path.empty() ? " " : " " + visible(problem.path) + ": ") + visible(problem.text) + "\n";
    }
    return lines;
}

std::string read_file(const std::string& file, std::string* bytes)
{
    struct Descriptor {
        int fd;
        ~Descriptor()
        {
            if (fd > STDIN_FILENO) close(fd);
        }
    };
    const Descriptor input = {file == "-" ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC)};
    if (input.fd < 0) return std::strerror(errno);
    bytes->clear();
    char block[65536];
    for (;;) {
        const ssize_t size = read(input.fd, block, sizeof block);
        if (size < 0 && errno == EINTR) continue;
        if (size < 0) return std::strerror(errno);
        if (size == 0) return "";
        bytes->append(block, static_cast<size_t>(size));
        if (bytes->size() > kDocumentMax) return "larger than 32 MiB";
    }
}

bool write_all(int fd, const std::string& bytes)
{
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t size = write(fd, bytes.data() + done, bytes.size() - done);
        if (size < 0 && errno != EINTR) return false;
        if (size > 0) done += static_cast<size_t>(size);
    }
    return true;
}

Value read_document(const std::string& bytes, Problems* problems)
{
    try {
        const uint32_t directive = directive_line(bytes);
        if (directive != 0) throw Broken{{{directive, 1}, "", "directives other than %YAML are not taken"}};
        return Reader(bytes, problems).read();
    } catch (const Broken& broken) {
        problems->push_back(broken.problem);
    } catch (const Enough&) {
    }
    return {};
}

std::string quoted(const std::string& text)
{
    constexpr char kDigits[] = "0123456789abcdef";
    // Signs that YAML takes for the end of a line, or refuses.
    constexpr struct {
        std::string_view bytes;
        const char* escape;
    } kSigns[] = {{"\xe2\x80\xa8", "\\u2028"},
                  {"\xe2\x80\xa9", "\\u2029"},
                  {"\xef\xbb\xbf", "\\ufeff"},
                  {"\xef\xbf\xbe", "\\ufffe"},
                  {"\xef\xbf\xbf", "\\uffff"}};
    std::string out = "\"";
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const unsigned char byte = static_cast<unsigned char>(c);
        const unsigned char next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0xff);
        const auto* const sign =
            byte < 0xe2 ? std::end(kSigns) : std::find_if(std::begin(kSigns), std::end(kSigns), [&](const auto& each) {
                return text.compare(i, each.bytes.size(), each.bytes) == 0;
            });
        if (sign != std::end(kSigns)) {
            out += sign->escape;
            i += sign->bytes.size() - 1;
        } else if (byte == 0xc2 && next < 0xa0) {
            out += std::string("\\u00") + kDigits[next >> 4] + kDigits[next & 15];
            ++i;
        } else if (c == '"' || c == '\\') {
            out += std::string("\\") + c;
        } else if (byte < 0x20 || byte == 0x7f) {
            out += std::string("\\u00") + kDigits[byte >> 4] + kDigits[byte & 15];
        } else {
            out += c;
        }
    }
    return out + "\"";
}

std::string spelled(const Value& scalar, bool bare)
{
    return bare || can_be_bare(scalar.text()) ? scalar.text() : quoted(scalar.text());
}

}  // namespace ctl
