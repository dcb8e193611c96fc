#include "exit_status.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "explain.h"
#include "held.h"
#include "module.h"
#include "tell.h"

namespace ctl {
namespace {

bool has_begun = false;

}  // namespace

void begin_changing()
{
    has_begun = true;
}

int guarded(const std::function<int()>& work, ExitStatus before)
{
    try {
        const int status = work();
        errno = 0;
        const bool is_written = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
        if (is_written || has_begun || (status != kDone && status != kDiffers)) return status;
        std::string why = "the result cannot be written";
        if (errno != 0) why.append(": ").append(std::strerror(errno));
        tell_problem(why);
        return kNoService;
    } catch (const Refusal& refusal) {
        tell_problem(refusal.path + " cannot be read: " + in_words(refusal.result));
        return has_begun ? kNotUndone : kNoService;
    } catch (const UnusableFolder& error) {
        tell_problem(error.what());
        return has_begun ? kNotUndone : kWrong;
    } catch (const std::exception& error) {
        tell_problem(error.what());
        return has_begun ? kNotUndone : before;
    }
}

}  // namespace ctl
