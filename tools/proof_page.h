#pragma once

#include <array>
#include <string>
#include <vector>

namespace kvtool {

/// One patch as the page shows it: CIELAB under D50.
struct PagePatch {
    std::string name;
    std::string group;
    std::array<float, 3> reference;
    std::array<float, 3> measured;
    float difference = 0;
    char grade = 'A';  ///< 'A' and so on, 'X' out of tolerance
};

/// One judged value of a group: a statistic of a quantity, such as the mean of the colour difference.
struct PageCheck {
    std::string name;
    float value = 0;
    std::vector<float> limits;  ///< of the grades from A on; may be empty
    char grade = 'A';
};

struct PageGroup {
    std::string name;
    std::size_t patches = 0;
    std::vector<PageCheck> checks;
};

/// What a page shows.
struct ProofPage {
    std::string title;
    std::string standard;                             ///< what the limits are named after; may be empty
    std::string formula;                              ///< the name of the colour difference
    std::vector<std::array<std::string, 2>> sources;  ///< label and text, such as the files
    char grade = 'A';
    std::vector<PageGroup> groups;
    std::vector<PagePatch> patches;
    std::vector<PageCheck> limits;  ///< checks over all patches whose first limits the distributions show
};

/// "A", "B" and so on as a sentence for a press operator.
std::string verdict(char grade);

/// One HTML page that needs no other file, no network and no script to be read; sorting its table takes one.
/// Patches stand worst first. Vectors, marks and rows have the classes "vector", "mark" and "patch", one each
/// a patch.
std::string proofPage(const ProofPage &page);

}  // namespace kvtool
