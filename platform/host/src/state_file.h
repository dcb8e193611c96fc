// The life of the file that holds the state: made with factory settings, checked when it is opened, set aside when it
// is damaged or of another version, brought back to its first day.
#ifndef MOBILE_AP_STATE_FILE_H
#define MOBILE_AP_STATE_FILE_H

#include <string>

#include "database.h"

namespace mobile_ap {

// Its name in this folder.
std::string state_file(const std::string& folder);

// Opens the state in this folder, and makes it when there is none. A damaged one is renamed and a fresh one takes its
// place, which is not opened yet: whoever meets the damage is told of it. One of another version is renamed, too, and
// the one of this version that lies in the folder, or else a fresh one, is opened: a line on standard error tells it.
// Returns why the state is not open, or nothing.
std::string open_state(Database& db, const std::string& folder);

// Its tables are those that this program knows.
bool is_of_this_version(Database& db);

// Every table of every area as it was on the first day. Sessions and their indications stay. For a transaction.
void restore_factory(Database& db);

}  // namespace mobile_ap

#endif
