#include "keys.h"

namespace ctl {

std::vector<Row> vpn_passthrough_rows()
{
    return {};
}

}  // namespace ctl
