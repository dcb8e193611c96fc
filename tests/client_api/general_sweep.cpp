#include "fault_sweep.h"

std::vector<SweepRow> general_sweep_rows()
{
    static uint8_t state;
    return {
        {SWEPT(zr_nexa_general_restore_nexa_v1, ()), {{"RestoreFactoryConfig", 1, "Restore factory config error %d"}}},
        {SWEPT(zr_nexa_general_sfe_set_v1, (1)),
         {{"SetDataPathOptStatus", 1, "Set data path opt status error %d, sfe_config=1"}}},
        {SWEPT(zr_nexa_general_sfe_get_v1, (&state)),
         {{"GetDataPathOptStatus", 1, "Get data path opt status error %d"}},
         {output(state)}},
    };
}
