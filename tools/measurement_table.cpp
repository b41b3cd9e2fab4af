#include "measurement_table.h"

#include <kvbase/color/kv_ct_cielab.h>
#include <kvbase/text/kv_string.h>
#include <lcms2.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <utility>

#include "file_replace.h"
#include "table_text.h"
#include "utf8_text.h"

namespace kvtool {
namespace {

using Columns = std::vector<std::size_t>;

struct FreeContext {
    void operator()(cmsContext context) const { cmsDeleteContext(context); }
};
struct FreeTable {
    void operator()(cmsHANDLE table) const { cmsIT8Free(table); }
};

void keepMessage(cmsContext context, cmsUInt32Number, const char *text) {
    // It begins with the name of a file, which a text in memory doesn't have.
    std::string_view message(text);
    message.remove_prefix(std::min(message.find_first_not_of(": "), message.size()));
    *static_cast<std::string *>(cmsGetContextUserData(context)) = " (" + visible(message) + ')';
}

/// Has Little CMS read the table, so that what it takes for a table is one here, too. Its values are not
/// taken: version 2.14 reads 1e-5 as a name that begins with the word before it, which then counts as 0.
void expectReadable(const std::string &file, std::string_view bytes, const TableText &text) {
    std::string message;
    const std::unique_ptr<std::remove_pointer_t<cmsContext>, FreeContext> context(
        cmsCreateContext(nullptr, &message));
    cmsSetLogErrorHandlerTHR(context.get(), keepMessage);
    std::unique_ptr<void, FreeTable> table;
    if (bytes.size() <= std::numeric_limits<cmsUInt32Number>::max())
        table.reset(
            cmsIT8LoadFromMem(context.get(), bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
    char **columns = nullptr;
    if (!table || cmsIT8EnumDataFormat(table.get(), &columns) != static_cast<int>(text.columns.size()) ||
        cmsIT8GetPropertyDbl(table.get(), "NUMBER_OF_SETS") != static_cast<double>(text.rows.size()))
        throw BadInput(file, "is no valid CGATS table" + message + ": export it again");
}

/// Nothing for what isn't a finite number as a whole.
std::optional<float> numberOf(std::string_view word) {
    if (!word.empty() && word.front() == '+') word.remove_prefix(1);
    float value = 0;
    const char *const end = word.data() + word.size();
    const auto parsed = std::from_chars(word.data(), end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::vector<std::string> deviceColumns(KV_ColorSpace space) {
    KV_String text;
    std::int32_t count = 0;
    DataFormatColorSpace(space, text, count, 0, 0, 1);
    std::istringstream words(text.Ptr());
    std::vector<std::string> names;
    for (std::string name; words >> name;)
        names.push_back(name);
    return names;
}

class Table {
public:
    Table(const std::string &file, std::string_view bytes) : m_file(file), m_text(layOutTable(file, bytes)) {
        expectReadable(file, bytes, m_text);
    }

    MeasurementTable take(KV_ColorSpace space, PatchColor wanted) const {
        const Columns xyz = wanted == PatchColor::Xyz ? columns({"XYZ_X", "XYZ_Y", "XYZ_Z"}) : Columns();
        const Columns lab = xyz.empty() ? columns({"LAB_L", "LAB_A", "LAB_B"}) : Columns();
        const Columns device = columns(deviceColumns(space));
        const std::optional<std::size_t> name = nameColumn();
        if (lab.empty() && xyz.empty()) refuseWithoutColors(wanted);
        MeasurementTable made;
        made.file = m_file;
        made.channels = device.size() <= kMostChannels ? device.size() : 0;
        made.hasNames = name.has_value();
        if (made.hasDevice()) refuseOtherUnits(device);
        lab.empty() ? refuseOtherXyz(xyz) : refuseOtherLab(lab);
        for (std::size_t row = 0; row < m_text.rows.size(); ++row) {
            TablePatch &patch = made.patches.emplace_back();
            patch.line = m_text.rows[row].line;
            if (name) patch.name = m_text.rows[row].values[*name];
            for (std::size_t i = 0; i < made.channels; ++i)
                patch.device[i] = number(row, device[i]);
            for (std::size_t i = 0; i < lab.size(); ++i)
                patch.lab[i] = number(row, lab[i]);
            for (std::size_t i = 0; i < xyz.size(); ++i)
                patch.xyz[i] = number(row, xyz[i]);
            if (wanted == PatchColor::Xyz && xyz.empty())
                KV_CTCielab().Lab2XYZ(std::exchange(patch.lab, {}).data(), patch.xyz.data(), 1);
        }
        return made;
    }

private:
    std::optional<std::size_t> column(std::string_view name) const {
        const auto found = std::find_if(m_text.columns.begin(), m_text.columns.end(),
                                        [&](std::string_view known) { return isSameWord(known, name); });
        if (found == m_text.columns.end()) return std::nullopt;
        return static_cast<std::size_t>(found - m_text.columns.begin());
    }
    /// The places of all of them, or nothing when one is missing.
    Columns columns(const std::vector<std::string> &names) const {
        Columns found;
        for (const std::string &name : names)
            if (const auto place = column(name)) found.push_back(*place);
        return found.size() == names.size() ? found : Columns();
    }
    std::optional<std::size_t> nameColumn() const {
        for (const char *name : {"SAMPLE_NAME", "SAMPLE_ID", "SAMPLEID"})
            if (const auto place = column(name)) return place;
        return std::nullopt;
    }

    BadInput bad(std::size_t row, std::size_t column, const std::string &what) const {
        const TableRow &cells = m_text.rows[row];
        return badCell(m_file, cells.line, visible(m_text.columns[column]),
                       '"' + visible(cells.values[column]) + "\" " + what);
    }
    /// A cell that has to be a number.
    float number(std::size_t row, std::size_t column) const {
        const std::string_view text = m_text.rows[row].values[column];
        if (const auto value = numberOf(text)) return *value;
        std::string word(text);
        std::replace(word.begin(), word.end(), ',', '.');
        if (numberOf(word))
            throw bad(row, column,
                      "has a decimal comma: export with decimal points, or replace the commas by points");
        throw bad(row, column, "is no number: correct it, or export the table again");
    }
    struct Cell {
        float value;
        std::size_t row, column;
    };
    /// The first of the largest values in these columns.
    Cell largest(const Columns &columns) const {
        Cell found{number(0, columns[0]), 0, columns[0]};
        for (std::size_t row = 0; row < m_text.rows.size(); ++row)
            for (const std::size_t column : columns)
                if (const float value = number(row, column); value > found.value)
                    found = {value, row, column};
        return found;
    }
    /// The first cell that fails the test.
    template <class Test>
    void expectAll(const Columns &columns, Test test, const std::string &otherwise) const {
        for (std::size_t row = 0; row < m_text.rows.size(); ++row)
            for (const std::size_t column : columns)
                if (!test(number(row, column))) throw bad(row, column, otherwise);
    }

    void refuseWithoutColors(PatchColor wanted) const {
        std::string names;
        for (const std::string_view name : m_text.columns)
            names += ' ' + visible(name);
        throw BadInput(m_file,
                       (wanted == PatchColor::Xyz ? "has neither XYZ_X, XYZ_Y, XYZ_Z nor LAB_L, LAB_A, LAB_B"
                                                  : "has no columns LAB_L, LAB_A, LAB_B") +
                           std::string(": export the table with CIELAB values (D50, 2 degrees); it has the "
                                       "columns") +
                           names);
    }
    void refuseOtherUnits(const Columns &device) const {
        const Cell most = largest(device);
        if (m_text.rows.size() > 1 && most.value > 0 && most.value <= 1)
            throw bad(
                most.row, most.column,
                "is the largest device value: percent are wanted, and the table seems to count from 0 to 1; "
                "multiply its device values by 100");
        const char *const cure =
            most.value <= 255.5F && most.value > 101
                ? "is above 100: percent are wanted, and the table seems to count from 0 to "
                  "255; divide its device values by 2.55"
                : "is above 100: device values have to be percent, from 0 to 100";
        constexpr float kSlack = 0.005F;  // two decimals count
        expectAll(
            device, [](float value) { return value <= 100 + kSlack; }, cure);
        expectAll(
            device, [](float value) { return value >= -kSlack; },
            "is below 0: device values have to be percent, from 0 to 100");
    }
    void refuseOtherXyz(const Columns &xyz) const {
        const Cell lightest = largest({xyz[1]});
        if (m_text.rows.size() > 1 && lightest.value <= 1.3F)
            throw bad(lightest.row, lightest.column,
                      "is the largest Y: the Y of white is 100, and the table seems to count from 0 to 1; "
                      "multiply its XYZ by 100");
        expectAll(
            xyz, [](float value) { return value >= -1 && value <= 200; },
            "is no tristimulus value, of which the Y of white is 100: export plain XYZ values");
    }
    void refuseOtherLab(const Columns &lab) const {
        const Cell lightest = largest({lab[0]});
        if (m_text.rows.size() > 1 && lightest.value <= 1)
            throw bad(
                lightest.row, lightest.column,
                "is the largest L*: L* runs from 0 to 100, and the table seems to count from 0 to 1; export "
                "plain CIELAB values");
        // Fluorescent paper can be somewhat lighter than the white, and black somewhat darker than black.
        expectAll(
            {lab[0]}, [](float value) { return value >= -5 && value <= 115; },
            "is no L*, which runs from 0 to 100: export plain CIELAB values, not encoded ones");
        expectAll(
            {lab[1], lab[2]}, [](float value) { return std::fabs(value) <= 200; },
            "is beyond every colour: export plain CIELAB values, not encoded ones");
    }

    const std::string &m_file;
    TableText m_text;
};

}  // namespace

MeasurementTable measurementTableOf(const std::string &file, const std::string &bytes, KV_ColorSpace space,
                                    PatchColor wanted) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    std::string_view text = bytes;
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
    return Table(file, text).take(space, wanted);
}

MeasurementTable readMeasurementTable(const std::string &file, KV_ColorSpace space, PatchColor wanted) {
    return measurementTableOf(file, readBytes(file), space, wanted);
}

}  // namespace kvtool
