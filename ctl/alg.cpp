#include "keys.h"

namespace ctl {

std::vector<Row> alg_rows()
{
    return {};
}

}  // namespace ctl
