#include "keys.h"

namespace ctl {

std::vector<Row> lan_passthrough_rows()
{
    return {};
}

}  // namespace ctl
