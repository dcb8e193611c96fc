// What comes from outside on a module, in words: the network ends a call, the service restarts, a device joins.
//
// The words are those of mobile_ap_ctl, of a scenario's lines and of the events that stand in the database.
#ifndef MOBILE_AP_PROVOCATIONS_H
#define MOBILE_AP_PROVOCATIONS_H

#include <stdint.h>

#include <functional>
#include <string>
#include <vector>

#include "store.h"

namespace CLI {
class App;
class Error;
}  // namespace CLI

namespace mobile_ap {

// Carries it out in the transaction under way, as of this time; returns what to tell whoever asked for it. Refuses as a
// method does.
struct Provocation {
    std::function<std::string(Store& db, int64_t at)> carry_out;
};

struct ProvocationError {
    std::string reason;
};

// Throws a ProvocationError when the words make no sense.
Provocation parse_provocation(const std::vector<std::string>& words);

// Adds the words as subcommands; the one that is parsed becomes *chosen.
void add_provocations(CLI::App& app, Provocation* chosen);

// Throws a ProvocationError for an empty word, in which the parser would lose itself. Before the words are parsed.
void check_words(const std::vector<std::string>& words);

// Why the words of an app could not be read, for people.
std::string parse_problem(const CLI::App& app, const CLI::Error& error);

// Why a provocation was refused, for people.
std::string refusal_text(qmi_error_type_v01 word);

}  // namespace mobile_ap

#endif
