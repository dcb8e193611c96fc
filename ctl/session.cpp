#include "session.h"

#include "explain.h"
#include "keys.h"

namespace ctl {
namespace {

// Opening answers 0 also when the service is not ready. A question about no profile is answered without the service,
// but not without a session.
bool is_open()
{
    return zr_nexa_wan_status_get_v1(0, nullptr, nullptr) != ZR_NEXA_ERR_NO_SESSION;
}

}  // namespace

Session::Session(zr_nexa_ind_cb_t callback)
{
    const Result result = CALL(zr_nexa_client_init, callback);
    if (!result.good())
        problem_ = "no session: " + in_words(result);
    else if (!is_open())
        problem_ = "no session: the service is not ready";
}

Session::~Session()
{
    zr_nexa_client_uninit();
}

}  // namespace ctl
