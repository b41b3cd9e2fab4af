// A whole run of the tool on real press data: tables read, judged, report and page written.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

namespace {

void BM_Proof(benchmark::State &state) {
    const std::string out = KVBASE_PROOF_OUT;
    const std::string command =
        KVBASE_PROOF_COMMAND " --report " + out + ".xml --html " + out + ".html >" + out + ".txt";
    for ([[maybe_unused]] auto _ : state)
        if (std::system(command.c_str()) != 0) state.SkipWithError("kvtool proof failed");
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Proof)->UseRealTime();

}  // namespace
