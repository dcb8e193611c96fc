// What every platform method shares. An area's source includes this header and nothing else of the machinery.
#ifndef MOBILE_AP_SESSION_H
#define MOBILE_AP_SESSION_H

#include <atomic>
#include <functional>
#include <mutex>

#include "addresses.h"
#include "faults.h"
#include "indications.h"
#include "qcmap_client.h"
#include "schemas.h"
#include "state_file.h"
#include "store.h"

namespace mobile_ap {

// A method's own rules and storage, as the shared wrapper calls them.
using Body = std::function<void(Store&)>;

class Session {
public:
    Session(client_status_ind_t callback, void* user);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool run(const char* name, Access access, qmi_error_type_v01* err, const Body& body);

    bool is_ready();
    bool enable(qmi_error_type_v01* err);
    bool disable(qmi_error_type_v01* err);
    uint32_t handle() const
    {
        return handle_;
    }

private:
    struct Outcome {
        bool good;
        qmi_error_type_v01 word;
    };
    template <class Work>
    bool with_faults(const char* name, qmi_error_type_v01* err, const Work& work);
    void follow_database();
    Outcome perform(Access access, const Body& body, unsigned int hold_ms);
    bool service_is_away();
    void explain(const DatabaseError& error);

    std::mutex one_at_a_time_;
    std::string folder_;
    Store store_;
    Faults faults_;
    Listener listener_;
    uint32_t handle_ = 0;
    bool ready_ = false;
    std::atomic<bool> explained_{false};
};

// The object got no memory for its session.
inline bool no_session(qmi_error_type_v01* err)
{
    if (err != nullptr) *err = QMI_ERR_NO_MEMORY_V01;
    return false;
}

// A method that changes something:
//     return method(session_, __func__, err, [&](Store& db) { db.run(...); });
// The work is one transaction. When it returns, the transaction is made good, and the method returns true with
// QMI_ERR_NONE_V01 in *err; ending.h has its other ways to end.
template <class Work>
bool method(Session* session, const char* name, qmi_error_type_v01* err, Work&& work)
{
    if (session == nullptr) return no_session(err);
    return session->run(name, Access::kWrite, err, std::ref(work));  // a reference: nothing is allocated for it
}

// The same for one that only reads; it never waits for another reader.
template <class Work>
bool read_method(Session* session, const char* name, qmi_error_type_v01* err, Work&& work)
{
    if (session == nullptr) return no_session(err);
    return session->run(name, Access::kRead, err, std::ref(work));
}

}  // namespace mobile_ap

struct QCMAP_Client::Session : mobile_ap::Session {
    using mobile_ap::Session::Session;
};

#endif
