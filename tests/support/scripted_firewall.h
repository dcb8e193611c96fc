// What the firewall's double keeps besides the journal.
#ifndef SCRIPTED_FIREWALL_H
#define SCRIPTED_FIREWALL_H

#include <qcmap_records.h>

namespace scripted {

// The record that the last AddFireWallEntry was handed.
extern qcmap_msgr_firewall_conf_t added_firewall_entry;

}  // namespace scripted

#endif
