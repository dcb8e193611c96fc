#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> general_sweep_rows()
{
    static uint8_t state;
    return {
        {"zr_nexa_general_restore_nexa_v1",
         [] { return zr_nexa_general_restore_nexa_v1(); },
         {{"RestoreFactoryConfig", 1}}},
        {"zr_nexa_general_sfe_set_v1", [] { return zr_nexa_general_sfe_set_v1(1); }, {{"SetDataPathOptStatus", 1}}},
        {"zr_nexa_general_sfe_get_v1",
         [] {
             state = poisoned<uint8_t>();
             return zr_nexa_general_sfe_get_v1(&state);
         },
         {{"GetDataPathOptStatus", 1}},
         nullptr,
         [] { return is_poisoned(state); }},
    };
}
