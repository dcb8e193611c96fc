#include "keys.h"

namespace ctl {

std::vector<Row> gre_rows()
{
    return {};
}

}  // namespace ctl
