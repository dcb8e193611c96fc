// The GRE offload's file, looked at from outside: the client interface waits for one that can be parsed, for ever if
// need be, and says nothing of what goes wrong while it saves.
#ifndef ZR_NEXA_CTL_GRE_H
#define ZR_NEXA_CTL_GRE_H

#include <zr_nexa/gre.h>

#include <chrono>
#include <functional>
#include <string>

#include "keys.h"

namespace ctl {

// Where the client interface has them.
struct GreFiles {
    std::string config = "/etc/data/ipa/IPACM_cfg.xml";
    std::string temporary_folder = "/var/run/data";
};

// Why the settings cannot be read; empty: they can.
std::string gre_unreadable(const GreFiles& files = {});

// Why they cannot be changed: also for want of the element that holds them, or of room to save it.
std::string gre_unwritable(const GreFiles& files = {});

// A copy of the file in this folder, in place of an earlier one, to go back to; the way back writes it over the file,
// which others may hold open. Why not; empty: done.
std::string keep_gre_copy(const std::string& folder, const GreFiles& files = {});
std::string restore_gre_copy(const std::string& folder, const GreFiles& files = {});
void drop_gre_copy(const std::string& folder);
bool is_gre_copy_in(const std::string& folder);

// A function of the client interface in a child process, which is killed when its time is over. The record is what the
// child made of it.
using GreFunction = std::function<int32_t(zr_nexa_wan_gre_ipacfg_t*)>;
Result call_in_child(const GreFunction& function, const char* name, zr_nexa_wan_gre_ipacfg_t* record,
                     std::chrono::milliseconds time = std::chrono::seconds(10));

}  // namespace ctl

#endif
