// Faults on demand: MOBILE_AP_FAULTS="SetNatType=fail:3,GetDMZ#2=ok:7,AddDMZ=delay:500,IsReady=notready".
#ifndef MOBILE_AP_FAULTS_H
#define MOBILE_AP_FAULTS_H

#include <stdint.h>

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace mobile_ap {

// What one call of a method is to do besides its work.
struct Misbehaviour {
    unsigned int delay_ms = 0;          // before the work
    unsigned int hold_ms = 0;           // after the work, before it is made good
    std::optional<uint32_t> fail_with;  // instead of the work: false and this error word
    std::optional<uint32_t> ok_with;    // after the work, whatever it answers: true and this error word
    bool not_ready = false;
};

class Faults {
public:
    // Returns false, and the first word that makes no sense, when the text is malformed.
    bool parse(const std::string& text, std::string* bad_word);

    // Counts one call of this method and says what it is to do.
    Misbehaviour reach(const std::string& method);

    // The words that no call has reached, separated by commas.
    std::string never_reached() const;

private:
    struct Fault {
        std::string word;
        std::string method;
        unsigned int only_call = 0;  // 0: every call
        Misbehaviour effect;
        unsigned int calls = 0;
        bool reached = false;
    };
    mutable std::mutex counting_;
    std::vector<Fault> faults_;
};

}  // namespace mobile_ap

#endif
