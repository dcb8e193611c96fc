// A configuration, or a part of one, as a tree: what a document says, and what a module has.
//
// Behind the checks every scalar stands in its one normal spelling (types.h), so that two values are the same when
// their texts are.
//
// Copies share their lists and maps until one of them is changed: a tree is copied at no cost. So no reference into a
// value is written through after the value has been copied.
#ifndef ZR_NEXA_CTL_VALUE_H
#define ZR_NEXA_CTL_VALUE_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ctl {

// A place in a document; line 0 for what does not come from one.
struct Mark {
    uint32_t line = 0;
    uint32_t column = 0;
};

// Runs of digits go by their number: "lan 9" stands before "lan 10", 192.168.0.9 before 192.168.0.10.
struct NaturalOrder {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const
    {
        const size_t shorter = a.size() < b.size() ? a.size() : b.size();
        size_t i = 0;
        while (i < shorter && a[i] == b[i])
            ++i;
        if (i == a.size() && i == b.size()) return false;
        // Most keys are words, which differ in a letter.
        if (i < shorter && a[i] > '9' && b[i] > '9') return a[i] < b[i];
        return stands_before(a, b, i);
    }

private:
    // differ: the first place where they do.
    static bool stands_before(std::string_view a, std::string_view b, size_t differ);
};

struct Scalar {
    std::string text;
    bool quoted = false;  // as the document has it: a number in quotes is a text
};

class Value {
public:
    using List = std::vector<Value>;
    using Map = std::map<std::string, Value, NaturalOrder>;

    Value() = default;
    Value(std::string text) : content_(Scalar{std::move(text), false}) {}
    Value(const char* text) : Value(std::string(text)) {}
    Value(bool flag) : Value(flag ? "true" : "false") {}
    template <class Number, std::enable_if_t<std::is_integral_v<Number> && !std::is_same_v<Number, bool>, int> = 0>
    Value(Number number) : Value(std::to_string(number))
    {
    }
    Value(List list) : content_(std::make_shared<List>(std::move(list))) {}
    Value(Map map) : content_(std::make_shared<Map>(std::move(map))) {}
    Value(Scalar scalar) : content_(std::move(scalar)) {}

    bool is_nothing() const
    {
        return std::holds_alternative<std::monostate>(content_);
    }
    bool is_scalar() const
    {
        return std::holds_alternative<Scalar>(content_);
    }
    bool is_list() const
    {
        return std::holds_alternative<std::shared_ptr<List>>(content_);
    }
    bool is_map() const
    {
        return std::holds_alternative<std::shared_ptr<Map>>(content_);
    }

    // The empty text, list or map for a value of another kind.
    const std::string& text() const
    {
        const auto* const held = std::get_if<Scalar>(&content_);
        return held != nullptr ? held->text : no_text();
    }
    bool quoted() const;
    const List& list() const;
    const Map& map() const
    {
        const auto* const held = std::get_if<std::shared_ptr<Map>>(&content_);
        return held != nullptr ? **held : no_map();
    }

    // Makes an empty one of a value of another kind.
    List& list();
    Map& map();

    // Of normal spellings.
    bool flag() const
    {
        return text() == "true";
    }
    uint32_t number() const;

    // What stands under this key of a map; nothing where there is none.
    const Value& child(std::string_view key) const;

    // What stands at this path, such as "dhcp.first". Keys with dots in them, which are addresses, are children.
    const Value& at(std::string_view path) const;
    bool has(std::string_view path) const
    {
        return !at(path).is_nothing();
    }
    // The same, made with the maps on the way.
    Value& make(std::string_view path);
    void erase(std::string_view path);

    Mark mark;
    // What the module knows a list's entry by, its place or its handle: no part of the value.
    uint32_t tag = 0;

    friend bool operator==(const Value& a, const Value& b);
    friend bool operator!=(const Value& a, const Value& b)
    {
        return !(a == b);
    }
    friend bool operator<(const Value& a, const Value& b);

private:
    static const std::string& no_text();
    static const Map& no_map();

    std::variant<std::monostate, Scalar, std::shared_ptr<List>, std::shared_ptr<Map>> content_;
};

Value::List sorted(const Value::List& list);

// As much of a text as a message has room for.
std::string shortened(const std::string& text);

// On one line, as it stands in differences and messages: {a: 1, b: [2, 3]}; "none" for nothing.
std::string in_short(const Value& value);

}  // namespace ctl

#endif
