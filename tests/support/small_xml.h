// A small reader of XML of its own, and a maker of random files, to hold the real reading and writing against.
#ifndef SMALL_XML_H
#define SMALL_XML_H

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace small_xml {

struct Node {
    std::string name;  // empty: a text
    std::string text;
    bool cdata = false;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<Node> children;

    static Node element(const std::string& name, std::vector<Node> children)
    {
        Node node;
        node.name = name;
        node.children = std::move(children);
        return node;
    }
    static Node text_node(const std::string& text)
    {
        Node node;
        node.text = text;
        return node;
    }
    const Node* child(const std::string& wanted) const
    {
        for (const auto& node : children) {
            if (node.name == wanted) return &node;
        }
        return nullptr;
    }
    std::string first_text() const
    {
        for (const auto& node : children) {
            if (node.name.empty()) return node.text;
        }
        return "";
    }
};

// One line that is the same for trees of the same content: texts that touch are one.
inline std::string normalised(const Node& node)
{
    if (node.name.empty() && node.children.empty()) return (node.cdata ? "[[" : "[") + node.text + "]";
    std::string line = "<" + node.name;
    for (const auto& attribute : node.attributes) {
        line += " " + attribute.first + "='" + attribute.second + "'";
    }
    line += ">";
    Node joined;
    const auto flush = [&] {
        if (!joined.text.empty()) line += normalised(joined);
        joined.text.clear();
    };
    for (const auto& child : node.children) {
        if (child.name.empty() && child.children.empty() && !child.cdata) {
            joined.text += child.text;
        } else {
            flush();
            line += normalised(child);
        }
    }
    flush();
    return line + "</>";
}

class Reader {
public:
    explicit Reader(const std::string& text) : text_(text) {}
    Node document()
    {
        Node root;
        content(&root);
        if (at_ != text_.size()) throw std::runtime_error("an end tag too many");
        return root;
    }

private:
    bool starts(const char* what) const
    {
        return text_.compare(at_, std::char_traits<char>::length(what), what) == 0;
    }
    std::string until(const char* end)
    {
        const size_t found = text_.find(end, at_);
        if (found == std::string::npos) throw std::runtime_error(std::string("no ") + end);
        std::string passed = text_.substr(at_, found - at_);
        at_ = found + std::char_traits<char>::length(end);
        return passed;
    }
    static std::string decoded(const std::string& raw)
    {
        std::string text;
        for (size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] != '&') {
                text += raw[i];
                continue;
            }
            const size_t end = raw.find(';', i);
            const std::string entity = raw.substr(i + 1, end - i - 1);
            if (entity == "amp")
                text += '&';
            else if (entity == "lt")
                text += '<';
            else if (entity == "gt")
                text += '>';
            else if (entity == "quot")
                text += '"';
            else if (entity == "apos")
                text += '\'';
            else if (entity.rfind("#x", 0) == 0)
                text += static_cast<char>(std::stoi(entity.substr(2), nullptr, 16));
            else if (entity.rfind("#", 0) == 0)
                text += static_cast<char>(std::stoi(entity.substr(1)));
            else
                throw std::runtime_error("entity " + entity);
            i = end;
        }
        return text;
    }
    // Everything up to the end tag of node, which is passed, or the end of the file.
    void content(Node* node)
    {
        while (at_ < text_.size()) {
            if (starts("<!--")) {
                until("-->");
            } else if (starts("<![CDATA[")) {
                at_ += 9;
                Node cdata = Node::text_node(until("]]>"));
                cdata.cdata = true;
                node->children.push_back(cdata);
            } else if (starts("<?")) {
                until("?>");
            } else if (starts("</")) {
                if (node->name.empty()) return;
                at_ += 2;
                if (until(">") != node->name) throw std::runtime_error("wrong end tag");
                return;
            } else if (starts("<")) {
                ++at_;
                node->children.push_back(tag());
            } else {
                const size_t end = std::min(text_.find('<', at_), text_.size());
                const std::string raw = text_.substr(at_, end - at_);
                at_ = end;
                if (raw.find_first_not_of(" \t\n") == std::string::npos) continue;
                node->children.push_back(Node::text_node(decoded(raw)));
            }
        }
        if (!node->name.empty()) throw std::runtime_error("no end tag");
    }
    Node tag()
    {
        Node node;
        const size_t name_end = text_.find_first_of(" \t\n/>", at_);
        node.name = text_.substr(at_, name_end - at_);
        at_ = name_end;
        for (;;) {
            at_ = text_.find_first_not_of(" \t\n", at_);
            if (starts("/>")) {
                at_ += 2;
                return node;
            }
            if (starts(">")) {
                ++at_;
                content(&node);
                return node;
            }
            const std::string name = until("=");
            const char quote[2] = {text_[at_++], '\0'};
            node.attributes.emplace_back(name, decoded(until(quote)));
        }
    }

    const std::string& text_;
    size_t at_ = 0;
};

inline Node read(const std::string& text)
{
    return Reader(text).document();
}

// The same numbers on every machine.
class Random {
public:
    explicit Random(uint32_t seed) : state_(seed * 2654435761u | 1u) {}
    uint32_t next()
    {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_;
    }
    uint32_t below(uint32_t bound)
    {
        return (next() >> 8) % bound;
    }
    bool chance(uint32_t percent)
    {
        return below(100) < percent;
    }
    template <size_t size>
    const char* one_of(const char* const (&choices)[size])
    {
        return choices[below(size)];
    }

private:
    uint32_t state_;
};

inline std::string random_text(Random& random)
{
    static const char* const pieces[] = {"a",      "0",        "1",      "&amp;",  "&lt;", "&gt;", "&#65;",
                                         "&#x42;", "\xc3\xa9", " x",     "]]",     "'",    "\"",   "y z",
                                         "=",      "10.0.0.1", "&quot;", "&apos;", ">",    "#"};
    std::string text = random.one_of(pieces);
    for (uint32_t i = random.below(4); i > 0; --i) {
        text += random.one_of(pieces);
    }
    return text;
}

inline std::string random_space(Random& random)
{
    static const char* const spaces[] = {"", "", "\n", " ", "\t\n  ", "<!-- a > b -->", "<?note x?>"};
    return random.one_of(spaces);
}

inline std::string random_attributes(Random& random)
{
    std::string text;
    while (random.chance(25)) {
        const bool single = random.chance(50);
        std::string value;
        for (const char c : random_text(random)) {
            if (c != (single ? '\'' : '"')) value += c;
        }
        const char* const quote = single ? "'" : "\"";
        static const char* const names[] = {" id", "  name", "\n x-1"};
        text += std::string(random.one_of(names)) + std::to_string(text.size()) + "=" + quote + value + quote;
    }
    return text;
}

inline std::string random_element(Random& random, int depth);

inline std::string element_text(Random& random, const std::string& name, const std::string& content)
{
    const std::string attributes = random_attributes(random);
    if (content.empty() && random.chance(50)) return "<" + name + attributes + "/>";
    return "<" + name + attributes + ">" + content + "</" + name + ">";
}

inline std::string random_content(Random& random, int depth)
{
    std::string content;
    while (random.chance(depth > 4 ? 10 : 60)) {
        content += random_space(random);
        switch (random.below(4)) {
            case 0:
                content += random_text(random);
                break;
            case 1:
                content += "<![CDATA[" + std::string(random.chance(50) ? "0" : "<raw> & ]]") + "]]>";
                break;
            default:
                content += random_element(random, depth + 1);
        }
    }
    return content + random_space(random);
}

inline std::string random_element(Random& random, int depth)
{
    static const char* const names[] = {"system",    "IPACM", "GREFlag", "GREEnabled",
                                        "GREServer", "Iface", "Name",    "x-1"};
    return element_text(random, random.one_of(names), random_content(random, depth));
}

inline std::string gre_child(Random& random)
{
    static const char* const switches[] = {"0", "1",     "0",         "1",         "00", " 0", "<![CDATA[0]]>",
                                           "",  "&#48;", "<!--c-->0", "0<!--c-->1"};
    static const char* const addresses[] = {"10.0.0.1",
                                            "192.168.225.1",
                                            "255.255.255.0",
                                            "0.0.0.0",
                                            "255.255.255.255",
                                            "1.2.3",
                                            "1.2.3.4.5",
                                            "256.1.1.1",
                                            "10.0.0.1 ",
                                            "",
                                            "ten",
                                            "&#49;0.1.1.1",
                                            "<![CDATA[10.9.8.7]]>",
                                            "<v/>10.6.5.4"};
    switch (random.below(8)) {
        case 0:
            return element_text(random, "GREEnabled", random.one_of(switches));
        case 1:
        case 2:
            return element_text(random, "GREServerSubnet", random.one_of(addresses));
        case 3:
            return random_content(random, 4);
        default:
            return element_text(random, "GREServer", random.one_of(addresses));
    }
}

// A file that mostly has the GRE element, at the place where it belongs or beside it.
inline std::string random_file(Random& random)
{
    std::string gre;
    for (uint32_t i = random.below(24); i > 0; --i) {
        gre += random_space(random) + gre_child(random);
    }
    std::string ipacm = random_content(random, 2);
    if (random.chance(90)) ipacm += element_text(random, "GREFlag", gre);
    ipacm += random_content(random, 2);
    std::string system = random_content(random, 3);
    if (random.chance(95)) system += element_text(random, "IPACM", ipacm);
    system += random_content(random, 2);
    std::string file = random.chance(50) ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" : "";
    file += random.chance(20) ? "<!-- head -->\n" : "";
    return file + element_text(random, random.chance(95) ? "system" : "other", system) + "\n";
}

}  // namespace small_xml

#endif
