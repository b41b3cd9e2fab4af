#pragma once

// Colour reports: files in XML that hold one or two comparisons, one side by side and one relative to the
// media.
//
// Writing and reading are not symmetric. A report tells the measured state: what was wanted, what was
// measured, and the limits. Reading takes what a further measurement needs: the frame of each comparison, the
// limits, and the patches with their device values. So a report that came from one measurement serves as the
// template of the next.

#include <array>
#include <cstdint>
#include <iosfwd>

#include "kvbase/base/export.h"
#include "kvbase/base/types.h"
#include "kvbase/evaluation/kv_color_comparison.h"
#include "kvbase/evaluation/kv_gamut_comparison.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/xml/xml_schema_handler.h"

/// Texts and a number that callers keep with a report; the library copies them, and neither reads nor writes
/// them.
class KV_ReportMetaData {
public:
    std::array<KV_WString, 17> texts;
    std::uint16_t number = 0;
    std::array<KV_WString, 11> furtherTexts;
};

/// A report, and its reader. One thread at a time.
class KV_EXPORT KV_ColorReport : public XMLSchemaHandler {
public:
    KV_ColorReport() = default;
    /// Copies the comparisons that there are, the texts and the metadata; what is neither in a report nor
    /// metadata (the gamuts, and what the reader has at hand) stays as it was.
    KV_ColorReport(const KV_ColorReport &other);
    KV_ColorReport &operator=(const KV_ColorReport &other);
    ~KV_ColorReport() override;

    /// No comparison.
    void Clear();

    KV_ColorComparison &GetCompare_Abs() { return compareAbs; }
    KV_ReportMetaData &GetMetaData() { return metaData; }
    KV_WString &GetReportType() { return reportType; }

    /// Reads a report by the parser, which is given this object as both handlers and stays its owner's. False
    /// when the file can't be opened or is not well-formed, and for a null parser; FatalError then has been
    /// told why (override it to know), and what was read before stays here. Elements and attributes that are
    /// unknown are passed over, and nothing is refused: a malformed number is what kv_strtod makes of it.
    ///
    /// The file is no enciphered one. Clears the comparisons first.
    bool ParseFile(KalSAX::Parser *parser, KV_FileSpec file);
    /// The same for a report of length bytes in memory. Clears nothing itself: the report's first element
    /// does.
    bool ParseBuffer(KalSAX::Parser *parser, char *buffer, std::uint32_t length);

    // The reader. A comparison starts out from formula, intent, space and points of the one before it, also
    // of the other intent. What a document that broke off has left is forgotten where a report begins. Device
    // values beyond those that a patch has room for are passed over. Of limits with a ":" what stands behind
    // it is the step; one with nothing but a ":" is passed over, too.
    void StartElement(const KV_String &name, const KalSAX::AttributeList &attributes) override;
    void EndElement(const KV_String &name) override;
    /// Does nothing: reports have no character data.
    void Characters(const KV_String &text) override;

    // What is being read.
    KV_ColorPatch patch;
    KV_ColorStat stat;
    KV_ColorCheck point;
    KV_ColorComparison comparison;

    KV_WString reportType;  ///< the caller's
    KV_WString standard;    ///< what the limits are named after
    KV_WString basedOn;     ///< what the standard rests on; itself when a file doesn't say
    KV_ReportMetaData metaData;
    bool hasAbs = false;            ///< whether compareAbs is part of the report
    bool hasRel = false;            ///< whether compareRel is
    KV_ColorComparison compareAbs;  ///< of any intent but 1
    KV_ColorComparison compareRel;  ///< of intent 1
    KV_GamutComparison gamutAbs;    ///< the caller's
    KV_GamutComparison gamutRel;    ///< the caller's

private:
    void startReport(const KalSAX::AttributeList &attributes);
    void startComparison(const KalSAX::AttributeList &attributes);
    void startPatch(const KalSAX::AttributeList &attributes);
    void startStat(const KalSAX::AttributeList &attributes);
    void startPoint(const KalSAX::AttributeList &attributes);
    void endComparison();
    void endPatch();
    void endStat();
};

/// Writes the report as UTF-8, each line with a line feed that flushes the stream (a binary one, for that to
/// stay so on every system), and leaves the stream in fixed notation with two digits behind a point, whatever
/// its locale. Names and texts are written as they are: one with &, < or a quotation mark makes a file that
/// can't be read. Spaces of more channels than a patch has room for get as many device values as there are. A
/// formula above 3 is written as CIE 1976, which it counts as, and an intent other than 1 as side by side.
/// Failures are the stream's to tell.
KV_EXPORT std::ostream &operator<<(std::ostream &stream, KV_ColorReport &report);
