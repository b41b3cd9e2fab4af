#pragma once

#include <kvbase/evaluation/kv_color_report.h>

#include <string>

namespace kvtool {

/// A report that keeps the words with which the parser refuses it.
class ReadReport : public KV_ColorReport {
public:
    /// False, with the reason, for what is not well-formed.
    bool read(std::string bytes);
    void FatalError(const KV_String &message) override { reason = message.Ptr(); }
    std::string reason;
};

/// What a proof is judged by: a report that holds limits.
struct ProofTemplate {
    KV_ColorComparison comparison;
    KV_WString standard;
    KV_WString basedOn;
    bool hasOther = false;  ///< the report holds a comparison of the other intent, too
};

/// Reads a template. Of a report with two comparisons isRelative tells which is wanted; one alone is taken as
/// it is, but for a side-by-side one where a relative one is asked for. Throws BadInput, with what to do, for
/// what is no report, has no such comparison or no limits, or holds numbers that nothing can be judged by:
/// weights, limits, steps or device values out of their range, or a colour space without device values.
ProofTemplate readTemplate(const std::string &file, bool isRelative);
/// The same of the bytes of a file.
ProofTemplate templateOf(const std::string &file, const std::string &bytes, bool isRelative);

}  // namespace kvtool
