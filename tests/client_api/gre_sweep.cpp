#include "fault_sweep.h"

// Neither function asks the platform, nor needs a session: their rows show a refusal, their work is shown by gre_test
// and gre_file_test.
std::vector<SweepRow> gre_sweep_rows()
{
    static zr_nexa_wan_gre_ipacfg_t too_many = {};
    too_many.num_of_subnet_masks = 3;
    std::vector<SweepRow> rows = {
        {SWEPT(zr_nexa_wan_gre_ipacfg_set_v1, (&too_many)), {}},
        {SWEPT(zr_nexa_wan_gre_ipacfg_get_v1, (nullptr)), {}},
    };
    for (auto& row : rows) {
        row.needs_session = false;
        row.clean_result = 4;
    }
    return rows;
}
