// How a run ended, the same for all verbs.
#ifndef ZR_NEXA_CTL_EXIT_STATUS_H
#define ZR_NEXA_CTL_EXIT_STATUS_H

namespace ctl {

enum ExitStatus {
    kDone = 0,       // done, or the same already
    kDiffers = 1,    // something differs, or a state was not reached in time
    kWrong = 2,      // the words or the document
    kNoService = 3,  // no service, or reading was refused
    kRefused = 4,    // a change was refused, and all is as before
    kNotUndone = 5,  // refused and not wholly undone, or read back otherwise
    kLocked = 6,     // another apply holds the lock
};

// The same for people, in this order.
constexpr const char* kExitStatuses[] = {"done, or the same already",
                                         "something differs, or a state was not reached in time",
                                         "the words or the document are wrong",
                                         "no service, or reading was refused",
                                         "a change was refused, and all is as before",
                                         "refused and not wholly undone, or read back otherwise",
                                         "another apply holds the lock"};

}  // namespace ctl

#endif
