// How a method ends. One that returns has succeeded; every other way out is one of these, called at any depth.
#ifndef MOBILE_AP_ENDING_H
#define MOBILE_AP_ENDING_H

#include "qmi_error.h"

namespace mobile_ap {

struct Ending {
    bool good;                // what the method returns
    qmi_error_type_v01 word;  // and writes as its error word
    bool keeps_changes;
};

// The method fails with this error word, and its changes are undone.
[[noreturn]] inline void refuse(qmi_error_type_v01 word)
{
    throw Ending{false, word, false};
}

// The method fails with this error word, and yet what it has changed is made good.
[[noreturn]] inline void refuse_but_keep_changes(qmi_error_type_v01 word)
{
    throw Ending{false, word, true};
}

// The method succeeds, and writes this error word all the same.
[[noreturn]] inline void succeed_with(qmi_error_type_v01 word)
{
    throw Ending{true, word, true};
}

}  // namespace mobile_ap

#endif
