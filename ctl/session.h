// The process's session with the mobile-AP service.
#ifndef ZR_NEXA_CTL_SESSION_H
#define ZR_NEXA_CTL_SESSION_H

#include <zr_nexa_client_api.h>

#include <string>

namespace ctl {

class Session {
public:
    explicit Session(zr_nexa_ind_cb_t callback = nullptr);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Why there is none, for people; empty: there is one.
    const std::string& problem() const
    {
        return problem_;
    }

private:
    std::string problem_;
};

}  // namespace ctl

#endif
