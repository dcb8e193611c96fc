// The platform's calls in its debug log, each as MOBILE_AP_FAULTS names it: SetNatType#2 is the second one of its name.
#ifndef PLATFORM_CALLS_H
#define PLATFORM_CALLS_H

#include <fstream>
#include <map>
#include <string>
#include <vector>

inline std::vector<std::string> platform_calls(const std::string& log)
{
    const std::string mark = "[MOBILE_AP]";
    std::vector<std::string> calls;
    std::map<std::string, int> numbers;
    std::ifstream file(log);
    for (std::string line; std::getline(file, line);) {
        size_t begin = line.find(mark);
        if (begin == std::string::npos) continue;
        begin += mark.size();
        const std::string name = line.substr(begin, line.find('(', begin) - begin);
        calls.push_back(name + "#" + std::to_string(++numbers[name]));
    }
    return calls;
}

// Whether it does more than look and choose.
inline bool is_changing(const std::string& call)
{
    const auto begins = [&call](const char* start) { return call.rfind(start, 0) == 0; };
    return !(begins("Get") || begins("ZR_Get") || begins("Select") || begins("IsReady") ||
             begins("EnableMobileAP_Ext") || begins("DisableMobileAP") || begins("SetWWANProfileHandlePreference"));
}

inline std::vector<std::string> changing_calls(const std::string& log)
{
    std::vector<std::string> changing;
    for (const std::string& call : platform_calls(log))
        if (is_changing(call)) changing.push_back(call);
    return changing;
}

#endif
