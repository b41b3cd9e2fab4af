#pragma once

#include <kvbase/evaluation/kv_color_report.h>

#include <string>

#include "proof_evaluation.h"
#include "proof_page.h"

namespace kvtool {

/// What a proof is judged by: a report that holds limits.
struct ProofTemplate {
    KV_ColorComparison comparison;
    std::string standard;
};

/// Reads a template. Of a report with two comparisons relative tells which is wanted; one alone is taken as
/// it is. Throws BadInput for what is no report, holds no comparison, or has no limits.
ProofTemplate readTemplate(const std::string &file, bool relative);

/// Writes the report of a proof. Throws BadInput, with nothing written, when it could not be read back (names
/// with &, < or quotes), unless isForced.
void writeReport(const std::string &file, const ProofTemplate &judgedBy, const Proof &proof, bool isForced);

/// What an operator sees first, for a terminal.
std::string summaryOf(const ProofTemplate &judgedBy, const Proof &proof);

/// The same and more for the page.
ProofPage pageOf(const ProofTemplate &judgedBy, const Proof &proof, const std::string &reference,
                 const std::string &measured);

}  // namespace kvtool
