#include "faults.h"

#include <algorithm>

namespace mobile_ap {
namespace {

// Decimal or 0x digits, the whole text, at most limit.
std::optional<uint32_t> number(const std::string& text, uint32_t limit)
{
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char* digits = hex ? "0123456789abcdefABCDEF" : "0123456789";
    const std::string body = hex ? text.substr(2) : text;
    if (body.empty() || body.size() > 10 || body.find_first_not_of(digits) != std::string::npos) return std::nullopt;
    const unsigned long long value = std::stoull(body, nullptr, hex ? 16 : 10);
    if (value > limit) return std::nullopt;
    return static_cast<uint32_t>(value);
}

bool is_method_name(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_") ==
                                std::string::npos;
}

bool parse_effect(const std::string& text, Misbehaviour* effect)
{
    constexpr uint32_t kLongestDelayMs = 600000;
    if (text == "notready") {
        effect->not_ready = true;
        return true;
    }
    const size_t colon = text.find(':');
    if (colon == std::string::npos) return false;
    const std::string kind = text.substr(0, colon);
    const bool is_time = kind == "delay" || kind == "hold";
    const std::optional<uint32_t> value = number(text.substr(colon + 1), is_time ? kLongestDelayMs : UINT32_MAX);
    if (!value) return false;
    if (kind == "fail")
        effect->fail_with = value;
    else if (kind == "ok")
        effect->ok_with = value;
    else if (kind == "delay")
        effect->delay_ms = *value;
    else if (kind == "hold")
        effect->hold_ms = *value;
    else
        return false;
    return true;
}

}  // namespace

bool Faults::parse(const std::string& text, std::string* bad_word)
{
    if (text.empty()) return true;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find(',', begin), text.size());
        Fault fault;
        fault.word = text.substr(begin, end - begin);
        begin = end + 1;

        const size_t equals = fault.word.find('=');
        bool good = equals != std::string::npos && parse_effect(fault.word.substr(equals + 1), &fault.effect);
        fault.method = fault.word.substr(0, equals);
        const size_t hash = fault.method.find('#');
        if (hash != std::string::npos) {
            fault.only_call = number(fault.method.substr(hash + 1), UINT32_MAX).value_or(0);
            good = good && fault.only_call != 0;
            fault.method.resize(hash);
        }
        // The question for readiness has no error word, and no other method knows "not ready".
        const bool asks_readiness = fault.method == "IsReady";
        const bool fits =
            asks_readiness ? fault.effect.not_ready || fault.effect.delay_ms != 0 : !fault.effect.not_ready;
        good = good && fits && is_method_name(fault.method);
        if (!good) {
            *bad_word = fault.word;
            return false;
        }
        faults_.push_back(fault);
    }
    return true;
}

Misbehaviour Faults::reach(const std::string& method)
{
    const std::lock_guard<std::mutex> lock(counting_);
    Misbehaviour all;
    for (Fault& fault : faults_) {
        if (fault.method != method) continue;
        ++fault.calls;
        if (fault.only_call != 0 && fault.only_call != fault.calls) continue;
        fault.reached = true;
        all.delay_ms += fault.effect.delay_ms;
        all.hold_ms += fault.effect.hold_ms;
        if (fault.effect.fail_with) all.fail_with = fault.effect.fail_with;
        if (fault.effect.ok_with) all.ok_with = fault.effect.ok_with;
        all.not_ready = all.not_ready || fault.effect.not_ready;
    }
    return all;
}

std::string Faults::never_reached() const
{
    const std::lock_guard<std::mutex> lock(counting_);
    std::string words;
    for (const Fault& fault : faults_) {
        if (fault.reached) continue;
        if (!words.empty()) words += ",";
        words += fault.word;
    }
    return words;
}

}  // namespace mobile_ap
