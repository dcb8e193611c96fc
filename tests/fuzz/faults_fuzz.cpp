// The words of MOBILE_AP_FAULTS.
#include "faults.h"

#include <string>

#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    mobile_ap::Faults faults;
    std::string bad_word;
    if (!faults.parse(text, &bad_word)) {
        fuzz::expect(("," + text + ",").find("," + bad_word + ",") != std::string::npos);
        return 0;
    }
    fuzz::expect(faults.never_reached() == text);
    const std::string method = text.substr(0, text.find_first_of("=#"));
    for (int call = 0; call < 3; ++call) {
        const mobile_ap::Misbehaviour fault = faults.reach(method);
        fuzz::expect(!fault.not_ready || method == "IsReady");
    }
    fuzz::expect(faults.never_reached().size() <= text.size());
    return 0;
}
