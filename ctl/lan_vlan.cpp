#include "keys.h"

namespace ctl {

std::vector<Row> lan_vlan_rows()
{
    return {};
}

}  // namespace ctl
