// Diagnostic log records.
//
// A log site owns one static constant record. Its line is unique in the whole library, although every record names the
// same source file: each source numbers its lines from a base of its own, kLogSource, which it defines before its first
// log site.
#ifndef ZR_NEXA_LOG_H
#define ZR_NEXA_LOG_H

#include <cstddef>
#include <type_traits>

#include "platform.h"

namespace zr_nexa {

enum class LogSource : uint16_t {
    kSession,
    kClientApi,
    kIndications,
    kGeneral,
    kGre,
    kLanAddressing,
    kLanVlan,
    kLanPassthrough,
    kLanServices,
    kWanProfile,
    kWanConnection,
    kWanMpdnMapping,
    kNat,
    kVpnPassthrough,
    kAlg,
    kFirewall,
    kUpnp,
    kIpacmCfg,
};

constexpr int kLinesPerSource = 2000;
constexpr uint16_t kLogSubsystem = 65;

template <LogSource source, int line>
constexpr uint16_t log_line()
{
    static_assert(line < kLinesPerSource, "the next source's lines begin here");
    return static_cast<uint16_t>(static_cast<int>(source) * kLinesPerSource + line);
}

// Never called: lets the compiler check a text against its values.
[[gnu::format(printf, 1, 2)]] void check_format(const char* text, ...);

// Every record takes exactly five values; the ones its text does not use are 0.
template <typename... Values>
void write_record(const msg_const_type& record, const char* function, Values... values)
{
    static_assert(sizeof...(Values) <= 5, "a record takes at most five values");
    if constexpr (sizeof...(Values) < 5) {
        write_record(record, function, values..., 0u);
    } else {
        msg_sprintf(&record, "ZR_NEXA", function, values...);
    }
}

template <typename... Values>
void write_log(const msg_const_type& record, const char* function, const char* /* text */, Values... values)
{
    write_record(record, function, values...);
}

// Tells whether a format shows the tag, the function's name and values of these types, one conversion each: a text with
// %s, a 32-bit word with %d or %x.
template <typename... Values>
constexpr bool shows(const char* format)
{
    static_assert(((std::is_same_v<Values, const char*> || sizeof(Values) <= sizeof(uint32_t)) && ...));
    constexpr bool is_text[] = {true, true, std::is_same_v<Values, const char*>...};
    constexpr size_t count = sizeof...(Values) + 2;
    size_t shown = 0;
    for (; *format != '\0'; ++format) {
        if (*format != '%') continue;
        ++format;
        if (shown == count) return false;
        if (is_text[shown] ? *format != 's' : *format != 'd' && *format != 'x') return false;
        ++shown;
    }
    return shown == count;
}

// Never defined, and no constant may call it.
void text_does_not_show_the_values();

// A record for code that several functions share and that is handed its texts. It bears the types of the values it is
// written with; a constant whose text does not show just these does not compile.
template <typename... Values>
class Record {
public:
    constexpr Record(const msg_const_type& record) : record_(record)
    {
        if (!shows<Values...>(record.fmt)) text_does_not_show_the_values();
    }
    void write(const char* function, Values... values) const
    {
        write_record(record_, function, values...);
    }

private:
    msg_const_type record_;
};

// A pointer that a text shows with %d: its low 32 bits, the same on every CPU.
template <typename T>
uint32_t pointer_word(const T* pointer)
{
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer));
}

}  // namespace zr_nexa

#define ZR_FIRST_OF(first, ...) first

#define ZR_LOG_RECORD(level, text)                                                                   \
    msg_const_type                                                                                   \
    {                                                                                                \
        zr_nexa::log_line<kLogSource, __LINE__>(), zr_nexa::kLogSubsystem, level, "[%s]%s(): " text, \
            "zr_nexa_client_api"                                                                     \
    }

#define ZR_LOG_AS(level, function, ...)                                                              \
    do {                                                                                             \
        static constexpr msg_const_type log_site = ZR_LOG_RECORD(level, ZR_FIRST_OF(__VA_ARGS__, )); \
        if (false) zr_nexa::check_format(__VA_ARGS__);                                               \
        zr_nexa::write_log(log_site, function, __VA_ARGS__);                                         \
    } while (false)

// ZR_LOG_INFO("text", values...), ZR_LOG_ERROR("text", values...): under the name of the function they stand in.
#define ZR_LOG_INFO(...) ZR_LOG_AS(MSG_LEVEL_HIGH, __func__, __VA_ARGS__)
#define ZR_LOG_ERROR(...) ZR_LOG_AS(MSG_LEVEL_ERROR, __func__, __VA_ARGS__)
// For code that speaks for another function.
#define ZR_LOG_INFO_AS(function, ...) ZR_LOG_AS(MSG_LEVEL_HIGH, function, __VA_ARGS__)
#define ZR_LOG_ERROR_AS(function, ...) ZR_LOG_AS(MSG_LEVEL_ERROR, function, __VA_ARGS__)
// The text of a zr_nexa::Record.
#define ZR_LOG_INFO_RECORD(text) ZR_LOG_RECORD(MSG_LEVEL_HIGH, text)
#define ZR_LOG_ERROR_RECORD(text) ZR_LOG_RECORD(MSG_LEVEL_ERROR, text)

#endif
