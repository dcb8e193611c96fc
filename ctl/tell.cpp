#include "tell.h"

#include <syslog.h>

#include <cstdio>
#include <sstream>

namespace ctl {
namespace {

bool to_log = false;
std::vector<std::string> problems_so_far;

}  // namespace

void tell(const std::string& message)
{
    if (to_log)
        syslog(LOG_NOTICE, "%s", message.c_str());
    else
        std::fprintf(stderr, "zr_nexactl: %s\n", message.c_str());
}

void tell_problem(const std::string& message)
{
    tell(message);
    problems_so_far.push_back(message);
}

void tell_problems(const std::string& file, const Problems& problems)
{
    std::istringstream lines(problem_lines(file, problems));
    for (std::string line; std::getline(lines, line);) {
        std::fprintf(stderr, "%s\n", line.c_str());
        problems_so_far.push_back(line);
    }
}

const std::vector<std::string>& told_problems()
{
    return problems_so_far;
}

void tell_the_log()
{
    openlog("zr_nexactl", LOG_PID, LOG_DAEMON);
    to_log = true;
}

}  // namespace ctl
