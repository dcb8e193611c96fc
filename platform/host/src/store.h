// What a method works on: the state, and what its client object has selected in it.
//
// Inside a method nothing is to be checked for errors: a failed statement throws and ends the method, and the shared
// wrapper (session.h) undoes the transaction and answers with a fitting error word.
#ifndef MOBILE_AP_STORE_H
#define MOBILE_AP_STORE_H

#include <stdint.h>

#include "database.h"
#include "ending.h"
#include "judge.h"

namespace mobile_ap {

class Store : public Database {
public:
    // Refuse, with INVALID_HANDLE and INVALID_ID, when there is no such profile or bridge.
    void check_profile(uint32_t handle);
    void check_bridge(int id);

    // What this client object has selected: at first profile 1 and bridge 0. The setters refuse when it is not there,
    // the getters when it has gone since.
    uint32_t selected_profile();
    void select_profile(uint32_t handle);
    int selected_bridge();
    void select_bridge(int id);

    // Whether values that no network could use are judged (judge.h).
    Judging judging() const
    {
        return judging_;
    }
    void set_judging(Judging judging)
    {
        judging_ = judging;
    }

private:
    uint32_t selected_profile_ = 1;
    int selected_bridge_ = 0;
    Judging judging_ = Judging::kOff;
};

}  // namespace mobile_ap

#endif
