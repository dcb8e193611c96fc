// The diagnostic log's double: checks the record itself and keeps its level, function and text.
#include <diag_msg.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "scripted_platform.h"

namespace {

constexpr const char* kPrefix = "[%s]%s(): ";

struct Conversion {
    std::string format;  // "%d", "%s", "%llu", ...
    std::string before;  // text in front of it
};

// Cuts a text into its conversions and what stands between them; the last piece has an empty format.
std::vector<Conversion> cut(const char* text)
{
    std::vector<Conversion> pieces;
    Conversion piece;
    for (const char* at = text; *at != '\0';) {
        if (at[0] == '%' && at[1] == '%') {
            piece.before += '%';
            at += 2;
        } else if (*at == '%') {
            const size_t length = std::strcspn(at + 1, "dixuspc") + 2;
            piece.format.assign(at, length);
            pieces.push_back(piece);
            piece = {};
            at += length;
        } else {
            piece.before += *at++;
        }
    }
    pieces.push_back(piece);
    return pieces;
}

template <typename T>
std::string formatted(const std::string& format, T value)
{
    char buffer[64];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(buffer, sizeof(buffer), format.c_str(), value);
#pragma GCC diagnostic pop
    return buffer;
}

}  // namespace

void msg_sprintf(const msg_const_type* record, ...)
{
    auto& complaints = scripted::platform().complaints;
    const auto complain = [&](const std::string& what) {
        complaints.push_back(std::string(record->fmt) + ": " + what);
    };
    if (record->ss_id != 65) complain("wrong subsystem");
    if (record->ss_mask != 0x4 && record->ss_mask != 0x8) complain("wrong level");
    if (std::strcmp(record->src_file, "zr_nexa_client_api") != 0) complain("wrong source file");
    if (std::strncmp(record->fmt, kPrefix, std::strlen(kPrefix)) != 0) {
        complain("wrong prefix");
        return;
    }

    va_list values;
    va_start(values, record);
    if (std::strcmp(va_arg(values, const char*), "ZR_NEXA") != 0) complain("wrong tag");
    scripted::LogLine line{record->ss_mask, va_arg(values, const char*), ""};
    int taken = 0;
    for (const Conversion& piece : cut(record->fmt + std::strlen(kPrefix))) {
        line.text += piece.before;
        if (piece.format.empty()) break;
        ++taken;
        if (piece.format.back() == 's') {
            const char* const text = va_arg(values, const char*);
            line.text += text == nullptr ? "(null)" : text;
        } else if (piece.format.back() == 'p') {
            line.text += formatted(piece.format, va_arg(values, void*));
        } else if (piece.format.find("ll") != std::string::npos) {
            line.text += formatted(piece.format, va_arg(values, unsigned long long));
        } else if (piece.format.find('l') != std::string::npos) {
            line.text += formatted(piece.format, va_arg(values, unsigned long));
        } else {
            line.text += formatted(piece.format, va_arg(values, unsigned int));
        }
    }
    for (; taken < 5; ++taken) {
        if (va_arg(values, unsigned int) != 0) complain("a value that the text does not use is not 0");
    }
    va_end(values);
    scripted::platform().transcript.push_back({line.level == 0x4 ? "info" : "error", line.function, line.text});
    scripted::platform().log.push_back(line);
}
