#pragma once

#include <string>

#include "proof_evaluation.h"
#include "proof_page.h"
#include "proof_template.h"

namespace kvtool {

/// Writes the report of a proof, which can be the next one's template. Throws BadInput, with nothing written,
/// when its names and texts could not be read back as they are (with &, < or quotes, or no UTF-8), unless
/// isForced.
void writeReport(const std::string &file, const ProofTemplate &judgedBy, const Proof &proof, bool isForced);

/// What an operator sees first, for a terminal.
std::string summaryOf(const ProofTemplate &judgedBy, const Proof &proof);

/// The same and more for the page.
ProofPage pageOf(const ProofTemplate &judgedBy, const Proof &proof, const std::string &reference,
                 const std::string &measured);

}  // namespace kvtool
