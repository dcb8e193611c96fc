// Where the state is kept.
#ifndef MOBILE_AP_STATE_PLACE_H
#define MOBILE_AP_STATE_PLACE_H

#include <string>

namespace mobile_ap {

struct StatePlace {
    std::string path;     // the folder; what is known of it when there is a problem
    std::string problem;  // empty: the folder is there, can be written and has room
};

// MOBILE_AP_STATE names a folder that exists. Without it: zr_nexa in the user's state folder, made when missing.
StatePlace find_state_place();

}  // namespace mobile_ap

#endif
