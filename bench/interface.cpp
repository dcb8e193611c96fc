// What one call of the interface costs, and how the cost of the mapping list grows to its limit of 204,700 pairs. The
// platform is bench/do_nothing_platform, so the figures are the interface's own.
#include <benchmark/benchmark.h>
#include <zr_nexa_client_api.h>

#include <cstdint>

// How many pairs the do-nothing platform lists: mappings of up to 4094 VLAN ids each.
extern "C" void do_nothing_list_pairs(int pairs);

namespace {

// A scratch record of the caller's, as in the command: zero pages until a list is long.
zr_nexa_wan_mpdnmapping_list_t list;

void set_nat_type(benchmark::State& state)
{
    zr_nexa_client_init(nullptr);
    for (auto _ : state) {
        benchmark::DoNotOptimize(zr_nexa_nat_type_set_v1(1, 2));
    }
    zr_nexa_client_uninit();
}
BENCHMARK(set_nat_type);

void list_mappings(benchmark::State& state)
{
    zr_nexa_client_init(nullptr);
    do_nothing_list_pairs(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(zr_nexa_wan_mpdnmapping_get_v1(&list));
    }
    if (list.count != static_cast<uint32_t>(state.range(0))) state.SkipWithError("pairs are missing");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    zr_nexa_client_uninit();
}
BENCHMARK(list_mappings)->Arg(0)->Arg(100)->Arg(4094)->Arg(50000)->Arg(204700);

}  // namespace

BENCHMARK_MAIN();
