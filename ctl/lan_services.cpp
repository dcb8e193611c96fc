#include "keys.h"

namespace ctl {

std::vector<Row> lan_services_rows()
{
    return {};
}

}  // namespace ctl
