// Values that no network could use: MOBILE_AP_JUDGE=log writes a record of each, MOBILE_AP_JUDGE=refuse refuses the
// call that sets one, too. A rule is judged only when a call changes one of the values it is about.
#ifndef MOBILE_AP_JUDGE_H
#define MOBILE_AP_JUDGE_H

#include <stdint.h>

#include <string>

#include "qcmap_client.h"

namespace mobile_ap {

class Store;

enum class Judging { kOff, kLog, kRefuse };

// Returns false when the word is none of ours; the empty one is kOff.
bool parse_judging(const std::string& word, Judging* judging);

// What a call is about to set; refused with INVALID_ARG. A method that calls one of these has made its own checks.
void judge_lan(Store& db, const char* method, int bridge, const qcmap_msgr_lan_config_v01& wanted);
void judge_reservation(Store& db, const char* method, uint32_t address);
void judge_dmz_host(Store& db, const char* method, uint32_t profile, uint32_t address);
void judge_mapped_host(Store& db, const char* method, uint32_t profile, uint32_t address);

// What a call has led to without setting it; never refused.
void judge_new_bridge(Store& db, const char* method, int bridge);
void judge_bridge_gone(Store& db, const char* method);
void judge_routing_behind(Store& db, const char* method);

}  // namespace mobile_ap

#endif
