#include "value.h"

#include <algorithm>
#include <cstdlib>

namespace ctl {
namespace {

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// The run of digits at this place without its leading zeros.
std::string_view number_at(std::string_view text, size_t* place)
{
    size_t begin = *place;
    while (*place < text.size() && is_digit(text[*place]))
        ++*place;
    while (begin + 1 < *place && text[begin] == '0')
        ++begin;
    return text.substr(begin, *place - begin);
}

size_t digits_at(std::string_view text, size_t place)
{
    size_t end = place;
    while (end < text.size() && is_digit(text[end]))
        ++end;
    return end - place;
}

// What a value of this kind holds, of its own when others share it; an empty one in a value of another kind.
template <class Wanted, class Content>
Wanted& own(Content* content)
{
    auto* const held = std::get_if<std::shared_ptr<Wanted>>(content);
    if (held == nullptr) return *content->template emplace<std::shared_ptr<Wanted>>(std::make_shared<Wanted>());
    if (held->use_count() > 1) *held = std::make_shared<Wanted>(**held);
    return **held;
}

}  // namespace

bool NaturalOrder::stands_before(std::string_view a, std::string_view b, size_t differ)
{
    size_t i = differ;
    if (i < a.size() && i < b.size() && !is_digit(a[i]) && !is_digit(b[i]))
        return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]);

    size_t begin = i;  // of the number
    while (begin > 0 && is_digit(a[begin - 1]))
        --begin;
    const auto is_plain_number = [begin](std::string_view text) {
        return begin < text.size() && is_digit(text[begin]) && text[begin] != '0';
    };
    if (is_plain_number(a) && is_plain_number(b)) {
        const size_t x = digits_at(a, i);
        const size_t y = digits_at(b, i);
        return x != y ? x < y : i < a.size() && i < b.size() ? a[i] < b[i] : i < b.size();
    }
    i = begin;
    size_t j = begin;
    while (i < a.size() && j < b.size()) {
        if (is_digit(a[i]) && is_digit(b[j])) {
            const std::string_view x = number_at(a, &i);
            const std::string_view y = number_at(b, &j);
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

const std::string& Value::no_text()
{
    static const std::string empty;
    return empty;
}

const Value::Map& Value::no_map()
{
    static const Map empty;
    return empty;
}

bool Value::quoted() const
{
    const auto* const held = std::get_if<Scalar>(&content_);
    return held != nullptr && held->quoted;
}

const Value::List& Value::list() const
{
    static const List empty;
    const auto* const held = std::get_if<std::shared_ptr<List>>(&content_);
    return held != nullptr ? **held : empty;
}

Value::List& Value::list()
{
    return own<List>(&content_);
}

Value::Map& Value::map()
{
    return own<Map>(&content_);
}

uint32_t Value::number() const
{
    return static_cast<uint32_t>(std::strtoul(text().c_str(), nullptr, 10));
}

const Value& Value::child(std::string_view key) const
{
    static const Value nothing;
    const Map& children = map();
    const auto found = children.lower_bound(key);
    return found != children.end() && found->first == key ? found->second : nothing;
}

const Value& Value::at(std::string_view path) const
{
    const Value* value = this;
    while (!path.empty()) {
        const size_t dot = std::min(path.find('.'), path.size());
        value = &value->child(path.substr(0, dot));
        path.remove_prefix(std::min(dot + 1, path.size()));
    }
    return *value;
}

Value& Value::make(std::string_view path)
{
    Value* value = this;
    while (!path.empty()) {
        const size_t dot = std::min(path.find('.'), path.size());
        Map& children = value->map();
        const auto place = children.lower_bound(path.substr(0, dot));
        const bool is_there = place != children.end() && place->first == path.substr(0, dot);
        value = is_there ? &place->second
                         : &children.emplace_hint(place, std::string(path.substr(0, dot)), Value())->second;
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
    if (a.is_list()) return &a.list() == &b.list() || a.list() == b.list();  // often they share it
    if (a.is_map()) return &a.map() == &b.map() || a.map() == b.map();
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
    Value::List in_order = list;
    std::stable_sort(in_order.begin(), in_order.end());
    return in_order;
}

std::string shortened(const std::string& text)
{
    constexpr size_t kMost = 200;
    if (text.size() <= kMost) return text;
    size_t end = kMost;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80)  // no half of a sign
        --end;
    return text.substr(0, end) + "...";
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
