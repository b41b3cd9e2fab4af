#include "proof_page.h"

#include <algorithm>

#include "display_color.h"
#include "number_text.h"
#include "proof_plots.h"
#include "svg_plot.h"

namespace kvtool {
namespace {

constexpr const char *kStyle = R"(<style>
:root { color-scheme: light dark; --ink: #1b1f24; --soft: #5b6470; --line: #d9dee5; --paper: #fff; --panel: #f5f7f9;
  --accent: #2f6fb5; --good: #1a7f4b; --fair: #9a6700; --bad: #c0342b; }
@media (prefers-color-scheme: dark) { :root { --ink: #e8ebef; --soft: #a2acb8; --line: #38404a; --paper: #14181d;
  --panel: #1d2329; --accent: #79b0ea; --good: #4cc38a; --fair: #e0b040; --bad: #ff7b72; } }
body { font: 15px/1.5 system-ui, sans-serif; color: var(--ink); background: var(--paper); margin: 0 auto;
  max-width: 1180px; padding: 24px 20px 48px; }
h1 { font-size: 24px; margin: 0 0 4px; } h2 { font-size: 18px; margin: 36px 0 8px; }
p { margin: 4px 0; } .soft { color: var(--soft); }
.verdict { display: flex; gap: 20px; align-items: center; background: var(--panel); border-radius: 10px;
  padding: 18px 22px; margin: 18px 0; }
.letter { font-size: 56px; font-weight: 700; line-height: 1; }
.good { color: var(--good); } .fair { color: var(--fair); } .bad { color: var(--bad); }
.verdict strong { font-size: 19px; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; }
th, td { text-align: left; padding: 4px 12px 4px 0; border-bottom: 1px solid var(--line); vertical-align: top; }
thead th { color: var(--soft); font-weight: 600; white-space: nowrap; }
td.number, th.number { text-align: right; }
th button { font: inherit; color: inherit; background: none; border: 0; padding: 0; cursor: pointer; }
.swatch { width: 44px; height: 20px; display: flex; border: 1px solid var(--line); }
.swatch i { flex: 1; }
.plots { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 480px), 1fr)); gap: 12px 32px; }
figure { margin: 0; } figcaption { font-weight: 600; } svg { width: 100%; height: auto; display: block; }
.grid { stroke: var(--line); } .axis, .label, .limit-name { fill: var(--soft); font-size: 12px; }
.mark { stroke: var(--ink); stroke-width: .5; } .vector { stroke: var(--ink); stroke-width: .8; opacity: .6; }
.zero { stroke: var(--soft); } .bar { fill: var(--accent); }
.curve { stroke: var(--accent); stroke-width: 2; fill: none; }
.limit { stroke: var(--bad); stroke-dasharray: 5 4; }
@media print { :root { --ink: #000; --soft: #444; --line: #bbb; --paper: #fff; --panel: #f2f2f2; --accent: #2f6fb5;
  --good: #0a5c33; --fair: #7a5200; --bad: #a3221a; } body { max-width: none; padding: 0; font-size: 11px; }
  thead { display: table-header-group; } tr, figure { break-inside: avoid; }
  .swatch i, .mark, .bar { print-color-adjust: exact; -webkit-print-color-adjust: exact; } }
</style>
)";

// Sorts by a column, numbers as such; a second click turns the order round.
constexpr const char *kScript = R"(<script>
for (const head of document.querySelectorAll('#patches th[data-sort]')) {
  const button = document.createElement('button');
  button.textContent = head.textContent;
  head.replaceChildren(button);
  button.onclick = () => {
    const down = head.getAttribute('aria-sort') === 'ascending';
    for (const other of head.parentNode.children) other.removeAttribute('aria-sort');
    head.setAttribute('aria-sort', down ? 'descending' : 'ascending');
    const body = document.querySelector('#patches tbody'), column = head.cellIndex;
    const isNumber = head.dataset.sort === 'number';
    const key = row => isNumber ? Number(row.cells[column].textContent) : row.cells[column].textContent;
    const order = (a, b) => isNumber ? key(a) - key(b) : key(a).localeCompare(key(b), undefined, {numeric: true});
    body.append(...[...body.rows].sort((a, b) => down ? order(b, a) : order(a, b)));
  };
}
</script>
)";

const char *toneOf(char grade) { return grade == 'A' ? "good" : grade == 'X' ? "bad" : "fair"; }

std::string gradeCell(char grade) {
    return std::string("<td class=\"") + toneOf(grade) + "\"><b>" + grade + "</b></td>";
}

std::string numberCell(double number, int digits) {
    return "<td class=\"number\">" + fixed(number, digits) + "</td>";
}

std::string limitsOf(const PageCheck &check) {
    std::string text;
    for (const float limit : check.limits)
        text += (text.empty() ? "" : " / ") + fixed(limit, 2);
    return text;
}

/// Where the page stands at a glance: the grade, and the checks that fell short of the best.
std::string summary(const ProofPage &page) {
    std::string text = "<h1>" + escaped(page.title) + "</h1>\n";
    for (const auto &[label, value] : page.sources)
        text += "<p class=\"soft\">" + escaped(label) + ": " + escaped(value) + "</p>\n";
    text += std::string("<div class=\"verdict\"><div class=\"letter ") + toneOf(page.grade) + "\">" +
            escaped(std::string(1, page.grade)) + "</div><div><strong>" + verdict(page.grade) +
            "</strong><p>" + std::to_string(page.patches.size()) + " patches, " + escaped(page.formula) +
            (page.standard.empty() ? "" : ", limits of " + escaped(page.standard)) + "</p></div></div>\n";
    return text;
}

std::string groupTable(const std::vector<PageGroup> &groups) {
    std::string text =
        "<h2>Groups</h2>\n<div class=\"scroll\"><table><thead><tr><th>Group</th><th "
        "class=\"number\">Patches</th><th>Check</th><th class=\"number\">Value</th><th>Limits of A / B / "
        "C</th><th>Grade</th></tr></thead><tbody>\n";
    for (const PageGroup &group : groups) {
        bool isFirst = true;
        for (const PageCheck &check : group.checks) {
            text += "<tr class=\"check\"><td>" + (isFirst ? escaped(group.name) : "") +
                    "</td><td class=\"number\">" + (isFirst ? std::to_string(group.patches) : "") +
                    "</td><td>" + escaped(check.name) + "</td>" + numberCell(check.value, 2) + "<td>" +
                    limitsOf(check) + "</td>" +
                    (check.limits.empty() ? "<td></td>" : gradeCell(check.grade)) + "</tr>\n";
            isFirst = false;
        }
    }
    return text + "</tbody></table></div>\n";
}

std::string patchRow(const PagePatch &patch) {
    std::string text = "<tr class=\"patch\"><td><span class=\"swatch\"><i style=\"background:" +
                       displayColor(patch.reference.data()) +
                       "\"></i><i style=\"background:" + displayColor(patch.measured.data()) +
                       "\"></i></span></td><td>" + escaped(patch.name) + "</td><td>" + escaped(patch.group) +
                       "</td>" + numberCell(patch.difference, 2) + gradeCell(patch.grade);
    for (const auto &lab : {patch.reference, patch.measured})
        for (const float value : lab)
            text += numberCell(value, 1);
    return text + "</tr>\n";
}

std::string patchTable(const ProofPage &page, const std::vector<PagePatch> &worstFirst) {
    std::string text =
        "<h2>Patches, worst first</h2>\n<div class=\"scroll\"><table id=\"patches\"><thead><tr><th>"
        "Reference, measured</th><th data-sort=\"text\">Patch</th><th data-sort=\"text\">Group</th>";
    text += "<th class=\"number\" data-sort=\"number\">" + escaped(page.formula) +
            "</th><th data-sort=\"text\">Grade</th>";
    for (const char *name : {"L* ref.", "a* ref.", "b* ref.", "L*", "a*", "b*"})
        text += std::string("<th class=\"number\" data-sort=\"number\">") + name + "</th>";
    text += "</tr></thead><tbody>\n";
    for (const PagePatch &patch : worstFirst)
        text += patchRow(patch);
    return text + "</tbody></table></div>\n";
}

std::string figure(const std::string &caption, const std::string &plot) {
    return "<figure><figcaption>" + caption + "</figcaption>" + plot + "</figure>\n";
}

std::string plots(const ProofPage &page, const std::vector<PagePatch> &patches) {
    if (patches.empty()) return "";
    return "<h2>Distributions</h2>\n<div class=\"plots\">\n" +
           figure("Reference to measured, a* and b*", chromaticityPlot(patches)) +
           figure("Lightness", lightnessPlot(patches)) +
           figure("How many patches have which difference", histogram(patches, page.limits)) +
           figure("Share of patches up to a difference", cumulativePlot(patches, page.limits)) + "</div>\n";
}

}  // namespace

std::string verdict(char grade) {
    if (grade == 'A') return "Within all limits";
    if (grade == 'X') return "Out of tolerance";
    return std::string("Within the limits of grade ") + grade + ", not of all of A";
}

std::string proofPage(const ProofPage &page) {
    std::vector<PagePatch> patches = page.patches;
    std::stable_sort(patches.begin(), patches.end(), [](const PagePatch &one, const PagePatch &other) {
        return one.difference > other.difference;
    });
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><meta name=\"viewport\" "
           "content=\"width=device-width, initial-scale=1\">\n<title>" +
           escaped(page.title) + "</title>\n" + kStyle + "</head><body>\n" + summary(page) +
           groupTable(page.groups) + plots(page, patches) + patchTable(page, patches) + kScript +
           "</body></html>\n";
}

}  // namespace kvtool
