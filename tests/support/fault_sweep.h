// The fault sweep: every public function once clean, then with each of its platform calls failing in turn.
#ifndef FAULT_SWEEP_H
#define FAULT_SWEEP_H

#include <functional>
#include <string>
#include <vector>

#include "api_test.h"

// A public function with a typical call of it: SWEPT(zr_nexa_nat_type_set_v1, (3, 2)).
struct SweptCall {
    const char* function;
    std::function<uint32_t()> call;
    std::function<uint32_t()> call_with_nothing;  // with zeros and null pointers for arguments
};

template <typename Result, typename... Arguments>
SweptCall swept(const char* name, Result (*function)(Arguments...), std::function<uint32_t()> call)
{
    return {name, std::move(call), [function] { return static_cast<uint32_t>(function(Arguments{}...)); }};
}

#define SWEPT(function, arguments) swept(#function, function, [] { return static_cast<uint32_t>(function arguments); })

// What a failing platform call does to the function.
enum class OnFailure {
    kEndsWithStep,  // the result is the error word ORed with the step; no later call is made
    kGoesOn,        // the function takes another way, which has a row of its own
};

constexpr const char* kLogsNothing = "";

struct SweepStep {
    const char* method;  // as the transcript names it
    uint32_t step;       // tag of its failure
    std::string logs;    // text of the error record that follows, with %d or %x where it shows the error word
    OnFailure on_failure = OnFailure::kEndsWithStep;
};

// An output of the call. It is filled with a pattern before each call, and must be as it was after one that failed.
struct SweptOutput {
    void* at;
    size_t size;
};

template <typename T>
SweptOutput output(T& value)
{
    return {&value, sizeof(value)};
}

// A function has several rows when it can take several ways.
struct SweepRow : SweptCall {
    std::vector<SweepStep> steps;  // the platform calls of the clean run, in order
    std::vector<SweptOutput> outputs = {};
    // Answers the clean run needs, if any.
    std::function<void(scripted::Platform&)> prepare = nullptr;
    std::vector<uint32_t> error_words = kErrorWords;
    bool needs_session = true;
    uint32_t clean_result = 0;
    // The step that an error word of a last call that succeeded comes back with. 0: the word comes back bare.
    uint32_t bare_word_step = 0;
};

// One function per area, in tests/client_api/<area>_sweep.cpp.
std::vector<SweepRow> all_sweep_rows();

#endif
