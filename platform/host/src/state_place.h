// Where the state is kept.
#ifndef MOBILE_AP_STATE_PLACE_H
#define MOBILE_AP_STATE_PLACE_H

#include <string>

namespace mobile_ap {

struct StatePlace {
    std::string path;     // the folder; what is known of it when there is a problem
    std::string problem;  // empty: the folder is there and can be written
};

// MOBILE_AP_STATE names a folder that exists. Without it: zr_nexa in the user's state folder, made when missing, and
// closed to others.
StatePlace find_state_place();

// Why a write in this folder has not enough room; empty: it has.
std::string why_no_room(const std::string& folder);
bool means_no_room(int error);

}  // namespace mobile_ap

#endif
