#include <kvbase/kvbase.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "color_columns.h"
#include "command.h"

namespace kvtool {
namespace {

struct Arguments {
    std::vector<std::string> values;
    std::string formula = "2000";
    float kL = 1;
    float kC = 1;
    float kH = 1;
};

struct Formula {
    const char *name;
    const char *column;
    std::int32_t number;  // as KV_ColorDifferenceFormula counts them
};
constexpr Formula kFormulas[] = {
    {"1976", "dE76", 0}, {"94", "dE94", 1}, {"cmc", "dEcmc", 2}, {"2000", "dE00", 3}};

const std::vector<ColumnNames> kPair{{"L1"}, {"a1"}, {"b1"}, {"L2"}, {"a2"}, {"b2"}};

void difference(const Arguments &args) {
    const Formula *formula =
        std::find_if(std::begin(kFormulas), std::end(kFormulas),
                     [&args](const Formula &candidate) { return candidate.name == args.formula; });
    const KV_ColorDifferenceFormula weighted{formula->number, args.kL, args.kC, args.kH};
    printTransformed(args.values, kPair, {{formula->column}},
                     [&weighted](std::vector<float> pair) -> std::vector<float> {
                         return {ColorDifference(pair.data(), pair.data() + 3, weighted)};
                     });
}

}  // namespace

void addDifferenceCommand(CLI::App &color) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command = color.add_subcommand("difference", "Tells how far CIELAB colours lie apart");
    command->add_option("VALUE", args->values,
                        "L* a* b* of both colours of each pair; without any, standard input is read");
    command->add_option("--formula", args->formula, "1976, 94, cmc or 2000")
        ->check(CLI::IsMember({"1976", "94", "cmc", "2000"}))
        ->capture_default_str();
    const auto addWeight = [command](const char *name, float &weight, const char *help) {
        command->add_option(name, weight, help)->check(CLI::PositiveNumber)->capture_default_str();
    };
    addWeight("--kl", args->kL, "the weight of lightness; l of cmc");
    addWeight("--kc", args->kC, "the weight of chroma; c of cmc");
    addWeight("--kh", args->kH, "the weight of hue, which cmc and 1976 have not");
    command->footer(
        "Standard input has a pair a line, in cells separated by tabs, semicolons, commas or blanks. A "
        "first\n"
        "line may name the columns (L1 a1 b1 L2 a2 b2); others then are kept in front of the result.");
    command->callback([args] { difference(*args); });
}

}  // namespace kvtool
