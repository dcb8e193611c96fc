#include "keys.h"

namespace ctl {

std::vector<Row> wan_mpdn_mapping_rows()
{
    return {};
}

}  // namespace ctl
