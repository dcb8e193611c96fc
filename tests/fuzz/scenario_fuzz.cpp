// Scenario files, and with them the words of all provocations.
#include "scenario.h"

#include <algorithm>
#include <string>

#include "fuzz.h"
#include "provocations.h"

namespace {

std::string as_line(const mobile_ap::ScenarioEvent& event)
{
    std::string line = std::to_string(event.after_ms) + "ms";
    for (const std::string& word : event.words)
        line += " \"" + word + "\"";
    return line + "\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    try {
        const auto events = mobile_ap::read_scenario(text);
        fuzz::expect(events.size() <= 1 + static_cast<size_t>(std::count(text.begin(), text.end(), '\n')));
        for (const mobile_ap::ScenarioEvent& event : events) {
            fuzz::expect(event.after_ms >= 0 && event.after_ms <= 7ll * 24 * 3600 * 1000);
            // Times of nine digits can be written anew, and say the same.
            if (event.after_ms > 999999999) continue;
            const auto again = mobile_ap::read_scenario(as_line(event));
            fuzz::expect(again.size() == 1 && again[0].after_ms == event.after_ms && again[0].words == event.words);
        }
    } catch (const mobile_ap::ProvocationError& error) {
        fuzz::expect(error.reason.rfind("line ", 0) == 0);
    }
    return 0;
}
