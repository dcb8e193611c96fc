// The life of a WWAN call: dialled, up, hung up, ended by the network, dialled again.
//
// A call is one profile's in one IP family. It dials and hangs up at once, unless the network is slow for its profile
// (network.h). What is under way then stands with the call, and the time when it comes to its end (events.h). Every
// function takes that time from its caller: what was due while nobody looked happened when it was due.
#ifndef MOBILE_AP_WAN_CALL_H
#define MOBILE_AP_WAN_CALL_H

#include <stdint.h>

#include "qcmap_client.h"
#include "store.h"

namespace mobile_ap {

// Why a call ended or did not come up, as its indications carry it. The platform does not read it.
struct EndReason {
    uint32_t type = 0;
    uint32_t code = 0;
};

// How the states of a call are told in one IP family.
struct CallFamily {
    int number;  // 4 or 6
    qcmap_msgr_wwan_status_enum_v01 connecting;
    qcmap_msgr_wwan_status_enum_v01 connecting_failed;
    qcmap_msgr_wwan_status_enum_v01 connected;
    qcmap_msgr_wwan_status_enum_v01 disconnecting;
    qcmap_msgr_wwan_status_enum_v01 disconnecting_failed;
    qcmap_msgr_wwan_status_enum_v01 disconnected;
};
inline constexpr CallFamily kV4 = {4,
                                   QCMAP_MSGR_WWAN_STATUS_CONNECTING_V01,
                                   QCMAP_MSGR_WWAN_STATUS_CONNECTING_FAIL_V01,
                                   QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01,
                                   QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_V01,
                                   QCMAP_MSGR_WWAN_STATUS_DISCONNECTING_FAIL_V01,
                                   QCMAP_MSGR_WWAN_STATUS_DISCONNECTED_V01};
inline constexpr CallFamily kV6 = {6,
                                   QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_V01,
                                   QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTING_FAIL_V01,
                                   QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTED_V01,
                                   QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_V01,
                                   QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTING_FAIL_V01,
                                   QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTED_V01};

struct Call {
    uint32_t profile;
    const CallFamily& family;
};

// How long the platform waits before it dials again by itself.
constexpr int64_t kRedialMs = 3000;

// Whose wish a call is: a caller's, or the platform's own, because of a profile's reconnect or autoconnect.
enum class Dialled { kByCaller, kByPlatform };

// What is told of the state of a call: connecting, connected, disconnecting or disconnected.
qcmap_msgr_wwan_status_enum_v01 call_status(Store& db, const Call& call);

// A call of the profile, in either IP family, is up.
bool is_connected(Store& db, uint32_t profile);

// Nothing is under way or up for the profile.
bool is_idle(Store& db, uint32_t profile);

// The call is not up, but the platform means to dial it: after a while, or when the module does not roam any more.
bool is_awaited(Store& db, const Call& call);

// Dials a call that is down.
void dial(Store& db, int64_t at, const Call& call, Dialled by);

// Ends one that is not down, or that is awaited.
void hang_up(Store& db, int64_t at, const Call& call);

// The network ends a call. With reconnect on, the platform dials it again after kRedialMs. Returns false when there is
// none.
bool drop(Store& db, int64_t at, const Call& call, EndReason reason);

// Stops waiting for the profile's calls to be dialled again.
void give_up_redialling(Store& db, uint32_t profile);

// The service goes: all calls end, and none is awaited.
void drop_all(Store& db, int64_t at);

// The service starts: profiles with autoconnect dial what is not up.
void autoconnect(Store& db, int64_t at);

// The module roams, or not any more, or a profile's permission to do so has changed: calls that may not be up any more
// end, and those that ended so come back when they may.
void follow_roaming(Store& db, int64_t at);

// The next step of a call whose time has come.
void continue_call(Store& db, int64_t at, uint32_t profile, int family);

// Counts bytes that a call has moved.
void count_traffic(Store& db, const Call& call, int64_t down, int64_t up);

// What calls of a profile that are up know of it.
void fill_connected_info(Store& db, uint32_t profile, qcmap_connected_wwan_info* info);

}  // namespace mobile_ap

#endif
