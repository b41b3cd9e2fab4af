// Any bytes as a table of measurements: patches whose numbers are percent and Lab, or a refusal that names
// the file.

#include "measurement_table.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "bad_input.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void requireSound(const kvtool::MeasurementTable &table, std::size_t bytes) {
    require(!table.patches.empty() && table.patches.size() <= bytes);
    for (const kvtool::TablePatch &patch : table.patches) {
        require(patch.line > 0 && patch.line <= bytes && (table.hasNames || patch.name.empty()));
        for (const float value : patch.device)
            require(value > -0.01F && value < 100.01F);
        for (const float value : patch.lab)
            require(std::fabs(value) <= 200);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    try {
        requireSound(kvtool::measurementTableOf("table", bytes, KV_CS_CMYK), size);
    } catch (const kvtool::BadInput &bad) {
        require(std::string(bad.what()).rfind("table: ", 0) == 0);
    }
    return 0;
}
