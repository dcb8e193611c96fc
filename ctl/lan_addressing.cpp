#include "keys.h"

namespace ctl {

std::vector<Row> lan_addressing_rows()
{
    return {};
}

}  // namespace ctl
