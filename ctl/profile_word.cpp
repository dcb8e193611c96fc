#include <zr_nexa/wan_profile.h>

#include <CLI/CLI.hpp>

#include "verbs.h"

namespace ctl {

CLI::Option* add_profile(CLI::App* verb, const char* name, uint32_t* handle, const char* about)
{
    const CLI::Validator number(
        [](std::string& word) -> std::string {
            constexpr size_t kPrefix = 8;
            const std::string digits = word.rfind("profile-", 0) == 0 ? word.substr(kPrefix) : word;
            const bool plain = !digits.empty() && digits.size() <= 2 && digits[0] != '0' &&
                               digits.find_first_not_of("0123456789") == std::string::npos;
            if (!plain || std::stoi(digits) > ZR_NEXA_WAN_PROFILES_MAX)
                return "\"" + word + "\" is no profile: its handle, 1 to 50, or profile-<handle>";
            word = digits;
            return "";
        },
        "");
    return verb->add_option(name, *handle, about)->transform(number)->type_name("");
}

}  // namespace ctl
