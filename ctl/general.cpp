#include "keys.h"

namespace ctl {

std::vector<Row> general_rows()
{
    return {};
}

}  // namespace ctl
