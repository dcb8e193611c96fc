#include "explain.h"

namespace ctl {

std::string in_words(uint32_t code, const std::string&)
{
    return "code " + std::to_string(code);
}

std::string in_words(const Result& result)
{
    return std::string(result.function) + ": " + (result.words.empty() ? in_words(result.code) : result.words);
}

}  // namespace ctl
