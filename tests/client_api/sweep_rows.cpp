// The areas' sweep rows, one line an area.
#include "fault_sweep.h"

std::vector<SweepRow> general_sweep_rows();

std::vector<SweepRow> all_sweep_rows()
{
    std::vector<SweepRow> all;
    for (const auto& area : {
             general_sweep_rows,
         }) {
        for (auto& row : area()) {
            all.push_back(row);
        }
    }
    return all;
}
