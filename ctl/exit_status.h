// How a run ended, the same for all verbs.
#ifndef ZR_NEXA_CTL_EXIT_STATUS_H
#define ZR_NEXA_CTL_EXIT_STATUS_H

#include <functional>

namespace ctl {

enum ExitStatus {
    kDone = 0,       // done, or the same already
    kDiffers = 1,    // something differs, or a state was not reached in time
    kWrong = 2,      // the words, the document or the state folder
    kNoService = 3,  // no service, or reading was refused, or nobody takes the result
    kRefused = 4,    // a change was refused, and all is as before
    kNotUndone = 5,  // refused and not wholly undone, or read back otherwise
    kLocked = 6,     // another process holds the lock, or a confirmation is pending
};

// The same for people, in this order.
constexpr const char* kExitStatuses[] = {"done, or the same already",
                                         "something differs, or a state was not reached in time",
                                         "the words, the document or the state folder are wrong",
                                         "no service, or reading was refused, or the result could not be written",
                                         "a change was refused, and all is as before",
                                         "refused and not wholly undone, or read back otherwise",
                                         "another process holds the lock, or a confirmation is pending"};

// From here on the module may be otherwise than before.
void begin_changing();

// Does a verb's work. What throws ends with a message, and with the status `before` when nothing has been changed yet.
// So does output that cannot be written; once the module is being changed, nobody may be there any more to read it.
int guarded(const std::function<int()>& work, ExitStatus before);

}  // namespace ctl

#endif
