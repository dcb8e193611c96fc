// Carrying a plan out, and what becomes of it.
#ifndef ZR_NEXA_CTL_APPLY_H
#define ZR_NEXA_CTL_APPLY_H

#include <functional>
#include <string>
#include <vector>

#include "plan.h"

namespace ctl {

struct ApplyOptions {
    Reach reach = Reach::kMerge;
    bool verify = true;
    bool keep_going = false;
    bool writes_again = false;  // on the way back
    std::function<void()> before_undo = nullptr;
};

// What happens on the way, for whoever shows it.
struct Progress {
    std::function<void(const Step& step, size_t number, size_t count)> starts = nullptr;
    // The result is good when it was done; a note may stand beside it.
    std::function<void(const Step& step, const Result& result, const std::string& note)> ends = nullptr;
    std::function<void(const std::string& line)> tells = nullptr;
    std::function<bool()> is_stopped = nullptr;  // between steps: the rest is left out and all is undone
    std::function<void()> goes_back = nullptr;   // the steps from here on undo
};

struct Outcome {
    int status = 0;                      // exit_status.h
    std::vector<std::string> left = {};  // what is not as it should be, a line each
    bool is_back = false;                // all that can be is as it was before
};

// Carries the steps out. before is the state to go back to, as held_for makes it.
Outcome carry_out(const Plan& plan, const Value& document, const Value& before, const ApplyOptions& options,
                  const Progress& progress);

// Brings the module to a held state. With writes_again, what a process that was cut off may have stored and not put to
// use is written in any case.
Outcome go_back(const Value& before, const Progress& progress, bool writes_again = false);

// What the module has of all that a document names, read now.
Module read_for(const Value& document, Reach reach);

}  // namespace ctl

#endif
