#include "keys.h"

namespace ctl {

std::vector<Row> wan_connection_rows()
{
    return {};
}

}  // namespace ctl
