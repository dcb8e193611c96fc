#include "keys.h"

namespace ctl {

std::vector<Row> wan_profile_rows()
{
    return {};
}

}  // namespace ctl
