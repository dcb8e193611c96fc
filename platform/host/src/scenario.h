// A bad day in a file: what is to happen, and when.
#ifndef MOBILE_AP_SCENARIO_H
#define MOBILE_AP_SCENARIO_H

#include <stdint.h>

#include <string>
#include <vector>

namespace mobile_ap {

struct ScenarioEvent {
    int64_t after_ms;  // from the scenario's start
    std::vector<std::string> words;
};

// Lines such as "1500ms call drop 1 --reason 6:36": a time in ms, s or min, and a provocation's words, which may stand
// in double quotes. Empty lines, and what follows a # between words, are passed over. Throws a ProvocationError that
// names the first line that makes no sense.
std::vector<ScenarioEvent> read_scenario(const std::string& text);

}  // namespace mobile_ap

#endif
