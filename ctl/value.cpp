#include "value.h"

#include <algorithm>
#include <cstdlib>
#include <set>

namespace ctl {
namespace {

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// The run of digits at this place without its leading zeros.
std::string_view digits_at(const std::string& text, size_t* place)
{
    size_t begin = *place;
    while (*place < text.size() && is_digit(text[*place]))
        ++*place;
    while (begin + 1 < *place && text[begin] == '0')
        ++begin;
    return std::string_view(text).substr(begin, *place - begin);
}

template <class Wanted, class Content>
const Wanted& content_or_empty(const Content& content)
{
    static const Wanted empty{};
    const Wanted* const held = std::get_if<Wanted>(&content);
    return held != nullptr ? *held : empty;
}

}  // namespace

bool NaturalOrder::operator()(const std::string& a, const std::string& b) const
{
    size_t i = 0;
    size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (is_digit(a[i]) && is_digit(b[j])) {
            const std::string_view x = digits_at(a, &i);
            const std::string_view y = digits_at(b, &j);
            if (x.size() != y.size()) return x.size() < y.size();
            if (x != y) return x < y;
        } else {
            if (a[i] != b[j]) return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[j]);
            ++i;
            ++j;
        }
    }
    if (i == a.size() && j == b.size()) return a < b;  // "01" and "1" are two keys
    return j < b.size();
}

const std::string& Value::text() const
{
    return content_or_empty<Scalar>(content_).text;
}

bool Value::quoted() const
{
    return content_or_empty<Scalar>(content_).quoted;
}

const Value::List& Value::list() const
{
    return content_or_empty<List>(content_);
}

const Value::Map& Value::map() const
{
    return content_or_empty<Map>(content_);
}

Value::List& Value::list()
{
    if (!is_list()) content_ = List();
    return std::get<List>(content_);
}

Value::Map& Value::map()
{
    if (!is_map()) content_ = Map();
    return std::get<Map>(content_);
}

uint32_t Value::number() const
{
    return static_cast<uint32_t>(std::strtoul(text().c_str(), nullptr, 10));
}

const Value& Value::child(const std::string& key) const
{
    static const Value nothing;
    const auto found = map().find(key);
    return found != map().end() ? found->second : nothing;
}

const Value& Value::at(std::string_view path) const
{
    const Value* value = this;
    while (!path.empty()) {
        const size_t dot = std::min(path.find('.'), path.size());
        value = &value->child(std::string(path.substr(0, dot)));
        path.remove_prefix(std::min(dot + 1, path.size()));
    }
    return *value;
}

Value& Value::make(std::string_view path)
{
    Value* value = this;
    while (!path.empty()) {
        const size_t dot = std::min(path.find('.'), path.size());
        value = &value->map()[std::string(path.substr(0, dot))];
        path.remove_prefix(std::min(dot + 1, path.size()));
    }
    return *value;
}

void Value::erase(std::string_view path)
{
    const size_t dot = path.rfind('.');
    const std::string_view above = dot == std::string_view::npos ? std::string_view() : path.substr(0, dot);
    if (!at(above).is_map()) return;
    make(above).map().erase(std::string(dot == std::string_view::npos ? path : path.substr(dot + 1)));
}

bool operator==(const Value& a, const Value& b)
{
    if (a.content_.index() != b.content_.index()) return false;
    if (a.is_list()) return a.list() == b.list();
    if (a.is_map()) return a.map() == b.map();
    return a.text() == b.text();
}

bool operator<(const Value& a, const Value& b)
{
    if (a.content_.index() != b.content_.index()) return a.content_.index() < b.content_.index();
    if (a.is_list()) return a.list() < b.list();
    if (a.is_map()) return a.map() < b.map();
    return NaturalOrder()(a.text(), b.text());
}

Value::List sorted(const Value::List& list)
{
    const std::multiset<Value> in_order(list.begin(), list.end());
    return Value::List(in_order.begin(), in_order.end());
}

std::string in_short(const Value& value)
{
    if (value.is_nothing()) return "none";
    if (value.is_scalar()) return value.text().empty() ? "\"\"" : value.text();
    std::string text;
    if (value.is_list()) {
        for (const Value& each : value.list())
            text += (text.empty() ? "" : ", ") + in_short(each);
        return "[" + text + "]";
    }
    for (const auto& [key, each] : value.map())
        text += (text.empty() ? "" : ", ") + key + ": " + in_short(each);
    return "{" + text + "}";
}

}  // namespace ctl
