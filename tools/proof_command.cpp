#include <kvbase/kvbase.h>

#include <cctype>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "command.h"
#include "file_replace.h"
#include "measurement_table.h"
#include "proof_evaluation.h"
#include "proof_page.h"
#include "proof_report.h"

namespace kvtool {
namespace {

struct Arguments {
    std::string judgedBy;
    std::string reference;
    std::string measured;
    std::string report;
    std::string html;
    std::string failAbove;
    PatchMatch match = PatchMatch::Automatic;
    bool isRelative = false;
    bool isForced = false;
};

const std::map<std::string, PatchMatch> kMatches{
    {"auto", PatchMatch::Automatic}, {"device", PatchMatch::DeviceValues}, {"name", PatchMatch::SampleName}};

void proof(const Arguments &args) {
    const ProofTemplate judgedBy = readTemplate(args.judgedBy, args.isRelative);
    const KV_ColorSpace space = judgedBy.comparison.stispace;
    Proof proof = evaluateProof(judgedBy.comparison, readMeasurementTable(args.reference, space),
                                readMeasurementTable(args.measured, space), args.match);
    if (judgedBy.hasOther)
        proof.notes.push_back(args.isRelative
                                  ? "the side-by-side comparison of the template was not made"
                                  : "the media-relative comparison of the template was not made, which "
                                    "--media-relative takes");
    if (!args.report.empty()) writeReport(args.report, judgedBy, proof, args.isForced);
    if (!args.html.empty())
        replaceFile(args.html, proofPage(pageOf(judgedBy, proof, args.reference, args.measured)));
    std::cout << summaryOf(judgedBy, proof);
    if (!args.failAbove.empty() && proof.grade > args.failAbove[0])
        throw NotPassed(args.measured + ": grade " + proof.grade + " is worse than " + args.failAbove);
}

std::string gradeOf(std::string text) {
    if (text.size() != 1 || std::isalpha(static_cast<unsigned char>(text[0])) == 0)
        throw CLI::ValidationError("--fail-above", text + " is no grade: A, B and so on");
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

}  // namespace

void addProofCommand(CLI::App &app) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command = app.add_subcommand("proof", "Judges measured colours against their references");
    command->add_option("TEMPLATE", args->judgedBy, "a colour report with the limits to judge by")
        ->required();
    command->add_option("REFERENCE", args->reference, "the table of wanted colours (CGATS: .ti3, .txt)")
        ->required();
    command->add_option("MEASURED", args->measured, "the table of measured colours")->required();
    command->add_option("--report", args->report, "write the colour report into this file");
    command->add_option("--html", args->html, "write one page with plots and all patches into this file");
    command
        ->add_option("--match", args->match,
                     "find references by device values or by sample name: auto, device or name")
        ->transform(CLI::CheckedTransformer(kMatches).description(""))
        ->default_str("auto");
    command->add_flag("--media-relative", args->isRelative,
                      "take the media-relative comparison of the template");
    command->add_option("--fail-above", args->failAbove, "exit with 3 when the grade is worse than this one")
        ->transform(gradeOf, "GRADE");
    command->add_flag("--force", args->isForced, "write a report that can't be read back, too");
    command->footer(
        "Grades are A, B and so on, X is out of tolerance. Device values are percent, colours CIELAB under "
        "D50.");
    command->callback([args] { proof(*args); });
}

}  // namespace kvtool
