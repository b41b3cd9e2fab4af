#include "proof_matching.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "bad_input.h"
#include "number_text.h"
#include "utf8_text.h"

namespace kvtool {
namespace {

/// The device values of a patch as its key has them.
std::string deviceText(const MeasurementTable &table, const TablePatch &patch) {
    std::string text;
    for (std::size_t i = 0; i < table.channels; ++i)
        text += (i == 0 ? "" : " ") + hundredths(patch.device[i]);
    return text;
}

/// The patches of a reference by their keys, handed out in their order.
template <class Key>
class References {
public:
    void add(const Key &key, const TablePatch &patch) { m_entries[key].patches.push_back(&patch); }
    /// The next one of this key, and the last one again when there is no further; null if there is none.
    const TablePatch *take(const Key &key) {
        const auto found = m_entries.find(key);
        if (found == m_entries.end()) return nullptr;
        Entry &entry = found->second;
        const std::size_t place = std::min(entry.taken, entry.patches.size() - 1);
        ++entry.taken;
        return entry.patches[place];
    }
    std::size_t untaken() const {
        std::size_t count = 0;
        for (const auto &[key, entry] : m_entries)
            count += entry.patches.size() - std::min(entry.taken, entry.patches.size());
        return count;
    }

private:
    struct Entry {
        std::vector<const TablePatch *> patches;
        std::size_t taken = 0;
    };
    std::map<Key, Entry> m_entries;
};

MatchedPatch pairOf(const TablePatch &reference, const TablePatch &measured, bool measuredDevice) {
    MatchedPatch pair;
    pair.name = !measured.name.empty()    ? measured.name
                : !reference.name.empty() ? reference.name
                                          : "line " + std::to_string(measured.line);
    pair.line = measured.line;
    pair.device = deviceOf(deviceKey((measuredDevice ? measured : reference).device.data()));
    pair.reference = reference.lab;
    pair.measured = measured.lab;
    return pair;
}

template <class KeyOf>
MatchedPatches matchBy(const MeasurementTable &reference, const MeasurementTable &measured, KeyOf keyOf) {
    References<decltype(keyOf(reference.patches[0]))> references;
    for (const TablePatch &patch : reference.patches)
        references.add(keyOf(patch), patch);
    MatchedPatches made;
    for (const TablePatch &patch : measured.patches)
        if (const TablePatch *const found = references.take(keyOf(patch)))
            made.patches.push_back(pairOf(*found, patch, measured.hasDevice()));
    made.onlyReference = references.untaken();
    made.onlyMeasured = measured.patches.size() - made.patches.size();
    return made;
}

void needDevice(const MeasurementTable &table) {
    if (!table.hasDevice())
        throw BadInput(table.file,
                       "has no columns of the template's device values: export the table with them, or "
                       "match by sample name (--match name)");
}
void needNames(const MeasurementTable &table) {
    if (!table.hasNames)
        throw BadInput(table.file,
                       "has no SAMPLE_NAME or SAMPLE_ID: export the table with names, or match by device "
                       "values (--match device)");
}

/// Samples of one name have to be the same patch.
void refuseOtherLayout(const MeasurementTable &reference, const MeasurementTable &measured) {
    if (!reference.hasDevice() || !measured.hasDevice()) return;
    References<std::string> references;
    for (const TablePatch &patch : reference.patches)
        references.add(patch.name, patch);
    for (const TablePatch &patch : measured.patches) {
        const TablePatch *const found = references.take(patch.name);
        if (!found || deviceKey(found->device.data()) == deviceKey(patch.device.data())) continue;
        throw BadInput(measured.file, "line " + std::to_string(patch.line) + ": sample \"" +
                                          visible(patch.name) + "\" has other device values than on line " +
                                          std::to_string(found->line) + " of " + reference.file +
                                          ": the targets are laid out differently; match by device values "
                                          "(--match device)");
    }
}

}  // namespace

DeviceKey deviceKey(const float *device) {
    DeviceKey key;
    std::transform(device, device + kMostChannels, key.begin(), [](float value) {
        return static_cast<std::int32_t>(std::lround(static_cast<double>(value) * 100));
    });
    return key;
}

std::array<float, kMostChannels> deviceOf(const DeviceKey &key) {
    std::array<float, kMostChannels> device;
    std::transform(key.begin(), key.end(), device.begin(),
                   [](std::int32_t value) { return static_cast<float>(value / 100.0); });
    return device;
}

MatchedPatches matchPatches(const MeasurementTable &reference, const MeasurementTable &measured,
                            PatchMatch match) {
    if (match == PatchMatch::Automatic)
        match =
            reference.hasDevice() && measured.hasDevice() ? PatchMatch::DeviceValues : PatchMatch::SampleName;
    MatchedPatches made;
    if (match == PatchMatch::DeviceValues) {
        needDevice(reference);
        needDevice(measured);
        made = matchBy(reference, measured,
                       [](const TablePatch &patch) { return deviceKey(patch.device.data()); });
    } else {
        if (!reference.hasDevice()) needDevice(measured);
        needNames(reference);
        needNames(measured);
        refuseOtherLayout(reference, measured);
        made = matchBy(reference, measured, [](const TablePatch &patch) { return patch.name; });
    }
    if (!made.patches.empty()) return made;
    const TablePatch &first = measured.patches[0], &other = reference.patches[0];
    const bool byName = match == PatchMatch::SampleName;
    throw BadInput(
        measured.file,
        "no patch is in " + reference.file + ", matched by " +
            (byName ? "sample name: the first ones are \"" + visible(first.name) + "\" here and \"" +
                          visible(other.name) + "\" there; match by device values (--match device)"
                    : "device values: the first ones are " + deviceText(measured, first) + " here and " +
                          deviceText(reference, other) + " there; compare tables of the same target") +
            (byName ? "" : ", or match by sample name (--match name)"));
}

}  // namespace kvtool
