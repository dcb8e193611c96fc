#include "api_test.h"
#include "fault_sweep.h"

// Neither function asks the platform, nor needs a session: their rows show a refusal, their work is shown by gre_test
// and gre_file_test.
std::vector<SweepRow> gre_sweep_rows()
{
    std::vector<SweepRow> rows = {
        {"zr_nexa_wan_gre_ipacfg_set_v1",
         [] {
             zr_nexa_wan_gre_ipacfg_t cfg = {};
             cfg.num_of_subnet_masks = 3;
             return static_cast<uint32_t>(zr_nexa_wan_gre_ipacfg_set_v1(&cfg));
         },
         {}},
        {"zr_nexa_wan_gre_ipacfg_get_v1",
         [] { return static_cast<uint32_t>(zr_nexa_wan_gre_ipacfg_get_v1(nullptr)); },
         {}},
    };
    for (auto& row : rows) {
        row.needs_session = false;
        row.clean_result = 4;
    }
    return rows;
}
