#include "scripted_platform.h"

#include <algorithm>
#include <cstdio>

namespace scripted {

Platform& platform()
{
    static Platform instance;
    return instance;
}

void Platform::reset()
{
    answers_.clear();
    numbered_.clear();
    used_.clear();
    complaints.clear();
    forget();
}

void Platform::forget()
{
    transcript.clear();
    journal.clear();
    log.clear();
    calls_.clear();
}

std::vector<std::string> Platform::lines(const std::string& function) const
{
    std::vector<std::string> shown;
    for (const Line& line : transcript) {
        std::string kind = line.kind;
        kind.resize(6, ' ');
        const bool bears_name = !line.function.empty() && line.function != function;
        shown.push_back(kind + (bears_name ? line.function + ": " : "") + line.text);
    }
    return shown;
}

void Platform::note_call(const std::string& call)
{
    transcript.push_back({"call", "", call});
    journal.push_back(call);
}

const Answer& Platform::take(const std::string& method)
{
    static const Answer success;
    const int number = ++calls_[method];
    if (const auto found = numbered_.find({method, number}); found != numbered_.end()) {
        used_.push_back(method + "#" + std::to_string(number));
        return found->second;
    }
    if (const auto found = answers_.find(method); found != answers_.end()) {
        used_.push_back(method);
        return found->second;
    }
    return success;
}

std::vector<std::string> Platform::unused_answers() const
{
    std::vector<std::string> unused;
    const auto never_used = [this](const std::string& name) {
        return std::find(used_.begin(), used_.end(), name) == used_.end();
    };
    for (const auto& entry : answers_) {
        if (never_used(entry.first)) unused.push_back(entry.first);
    }
    for (const auto& entry : numbered_) {
        const std::string name = entry.first.first + "#" + std::to_string(entry.first.second);
        if (never_used(name)) unused.push_back(name);
    }
    return unused;
}

std::string difference(const std::vector<std::string>& expected, const std::vector<std::string>& seen)
{
    if (expected == seen) return "";
    const size_t shorter = std::min(expected.size(), seen.size());
    size_t head = 0;
    while (head < shorter && expected[head] == seen[head]) {
        ++head;
    }
    size_t tail = 0;
    while (tail < shorter - head && expected[expected.size() - 1 - tail] == seen[seen.size() - 1 - tail]) {
        ++tail;
    }
    std::string text;
    const auto show = [&text](const char* mark, const std::vector<std::string>& lines, size_t from, size_t to) {
        for (size_t i = from; i < to; ++i) {
            text += "\n" + std::string(mark) + lines[i];
        }
    };
    show("  ", expected, 0, head);
    show("- ", expected, head, expected.size() - tail);
    show("+ ", seen, head, seen.size() - tail);
    show("  ", expected, expected.size() - tail, expected.size());
    return text;
}

Call& Call::add(const std::string& argument)
{
    if (!arguments_.empty()) arguments_ += " ";
    arguments_ += argument;
    return *this;
}

Call& Call::text(const char* name, const char* field, size_t size)
{
    return add(std::string(name) + "=\"" + std::string(field, strnlen(field, size)) + "\"");
}

Call& Call::bytes(const char* name, const void* field, size_t size)
{
    std::string hex;
    for (size_t i = 0; i < size; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", static_cast<const unsigned char*>(field)[i]);
        hex += digits;
    }
    return add(std::string(name) + "=" + hex);
}

void Call::write_output(const char* name, void* pointer, size_t size, bool shorter_allowed)
{
    const auto given = answer_.outputs_.find(name);
    if (given == answer_.outputs_.end()) return;
    const auto& bytes = given->second;
    if (bytes.size() > size || (bytes.size() < size && !shorter_allowed)) {
        platform().complaints.push_back(method_ + ": output " + name + " was given with the wrong type");
        return;
    }
    if (!bytes.empty()) std::memcpy(pointer, bytes.data(), bytes.size());
}

bool Call::finish(qmi_error_type_v01* err)
{
    const std::string call = method_ + "(" + arguments_ + ")";
    platform().transcript[line_].text = call;
    platform().journal.push_back(call);
    *err = static_cast<qmi_error_type_v01>(answer_.err_);
    return answer_.succeeds_;
}

}  // namespace scripted

using scripted::Call;
using scripted::platform;

QCMAP_Client::QCMAP_Client(client_status_ind_t indication_cb, qcmap_msgr_arch_type_enum_v01 arch, void* user)
    : mobile_ap_handle(0x51), session_(nullptr)
{
    platform().note_call("QCMAP_Client(arch=" + std::to_string(arch) + " user=" + (user == nullptr ? "null" : "set") +
                         ")");
    platform().indication_cb = indication_cb;
    platform().indication_user = user;
    ++platform().objects;
}

QCMAP_Client::~QCMAP_Client()
{
    platform().note_call("~QCMAP_Client()");
    --platform().objects;
}

bool QCMAP_Client::IsReady()
{
    qmi_error_type_v01 no_err;
    return Call("IsReady").finish(&no_err);
}

bool QCMAP_Client::EnableMobileAP_Ext(qmi_error_type_v01* err, unsigned long long mask)
{
    return Call("EnableMobileAP_Ext").arg(mask).finish(err);
}

bool QCMAP_Client::DisableMobileAP(qmi_error_type_v01* err)
{
    return Call("DisableMobileAP").finish(err);
}
