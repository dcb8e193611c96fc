// The fault sweep: every public function once clean, then with each of its platform calls failing in turn.
#ifndef FAULT_SWEEP_H
#define FAULT_SWEEP_H

#include <functional>
#include <string>
#include <vector>

#include "scripted_platform.h"

// What a failing platform call does to the function.
enum class OnFailure {
    kEndsWithStep,  // the result is the error word ORed with the step; no later call is made
    kGoesOn,        // the function takes another way; the row's own tests show which
};

struct SweepStep {
    const char* method;  // as the journal names it
    uint32_t step;       // tag of its failure
    OnFailure on_failure = OnFailure::kEndsWithStep;
};

struct SweepRow {
    const char* function;
    std::function<uint32_t()> call;  // a typical call; its outputs are poisoned by the row itself
    std::vector<SweepStep> steps;    // the platform calls of the clean run, in order
    // Answers the clean run needs, if any.
    std::function<void(scripted::Platform&)> prepare = nullptr;
    // Tells whether the outputs are as they were before a call that failed. Null: no outputs, or none that stay.
    std::function<bool()> outputs_untouched = nullptr;
    bool needs_session = true;
    uint32_t clean_result = 0;
    // The step that an error word of a last call that succeeded comes back with. 0: the word comes back bare.
    uint32_t bare_word_step = 0;
};

// One function per area, in tests/client_api/<area>_sweep.cpp.
std::vector<SweepRow> all_sweep_rows();

#endif
