#include "proof_plots.h"

#include <algorithm>
#include <cmath>

#include "display_color.h"
#include "number_text.h"
#include "svg_plot.h"

namespace kvtool {
namespace {

std::string point(double x, double y) { return fixed(x, 1) + ' ' + fixed(y, 1); }

std::string tooltip(const PagePatch &patch) {
    return "<title>" + escaped(patch.name) + ": " + fixed(patch.difference, 2) + "</title>";
}

std::string mark(const PagePatch &patch, double x, double y) {
    return "<circle class=\"mark\" cx=\"" + fixed(x, 1) + "\" cy=\"" + fixed(y, 1) + "\" r=\"3\" fill=\"" +
           displayColor(patch.measured.data()) + "\">" + tooltip(patch) + "</circle>\n";
}

struct Range {
    double low = 0;
    double high = 0;
    void hold(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
};

double largestDifference(const std::vector<PagePatch> &patches, const std::vector<PageCheck> &limits) {
    Range range;
    for (const PagePatch &patch : patches)
        range.hold(patch.difference);
    for (const PageCheck &check : limits)
        if (!check.limits.empty()) range.hold(check.limits[0] * 1.1);
    return range.high;
}

/// Dashed lines with their names, which step down so that near ones don't cover each other.
void addLimits(SvgPlot &plot, const std::vector<PageCheck> &limits) {
    double y = plot.y().to + 12;
    for (const PageCheck &check : limits) {
        if (check.limits.empty()) continue;
        const double x = plot.x().place(check.limits[0]);
        plot.add("<path class=\"limit\" d=\"M" + point(x, plot.y().from) + 'L' + point(x, plot.y().to) +
                 "\"/>");
        const bool isRight = x > (plot.x().from + plot.x().to) / 2;
        plot.add(std::string("<text class=\"limit-name\" text-anchor=\"") + (isRight ? "end" : "start") +
                 "\" x=\"" + fixed(isRight ? x - 4 : x + 4, 1) + "\" y=\"" + fixed(y, 1) + "\">" +
                 escaped(check.name) + " \xE2\x89\xA4 " + hundredths(check.limits[0]) + "</text>\n");
        y += 13;
    }
}

PlotAxis differenceAxis(const std::vector<PagePatch> &patches, const std::vector<PageCheck> &limits) {
    return {roundTicks(0, largestDifference(patches, limits), 8), 48, 544, "difference"};
}

}  // namespace

std::string chromaticityPlot(const std::vector<PagePatch> &patches) {
    Range a, b;
    for (const PagePatch &patch : patches) {
        for (const auto &lab : {patch.reference, patch.measured}) {
            a.hold(lab[1]);
            b.hold(lab[2]);
        }
    }
    // Both axes have one scale, so that hues and distances show as they are.
    PlotAxis x{roundTicks(a.low, a.high, 8), 48, 0, "a*"};
    const double step = x.ticks[1] - x.ticks[0];
    PlotAxis y{{}, 0, 24, "b*"};
    for (double tick = std::floor(b.low / step) * step; y.ticks.size() < 2 || y.ticks.back() < b.high;
         tick += step)
        y.ticks.push_back(tick);
    const auto steps = static_cast<double>(std::max(x.ticks.size(), y.ticks.size()) - 1);
    const double scale = 500 / steps;
    x.to = x.from + scale * static_cast<double>(x.ticks.size() - 1);
    y.from = y.to + scale * static_cast<double>(y.ticks.size() - 1);
    SvgPlot plot(560, y.from + 44, "a* and b* of reference and measured colours", x, y);
    std::string vectors, marks;
    for (const PagePatch &patch : patches) {
        const double toX = x.place(patch.measured[1]), toY = y.place(patch.measured[2]);
        vectors += "<path class=\"vector\" d=\"M" +
                   point(x.place(patch.reference[1]), y.place(patch.reference[2])) + 'L' + point(toX, toY) +
                   "\"/>\n";
        marks += mark(patch, toX, toY);
    }
    plot.add(vectors + marks);
    return plot.close();
}

std::string lightnessPlot(const std::vector<PagePatch> &patches) {
    Range range;
    for (const PagePatch &patch : patches)
        range.hold(patch.measured[0] - patch.reference[0]);
    SvgPlot plot(560, 480, "Lightness differences over the lightness of the reference",
                 {roundTicks(0, 100, 5), 48, 544, "L* of the reference"},
                 {roundTicks(range.low, range.high, 8), 436, 24, "measured L* less reference"});
    plot.add("<path class=\"zero\" d=\"M" + point(48, plot.y().place(0)) + "H544\"/>\n");
    for (const PagePatch &patch : patches)
        plot.add(mark(patch, plot.x().place(patch.reference[0]),
                      plot.y().place(patch.measured[0] - patch.reference[0])));
    return plot.close();
}

std::string histogram(const std::vector<PagePatch> &patches, const std::vector<PageCheck> &limits) {
    const PlotAxis x = differenceAxis(patches, limits);
    // Differences are rounded to tenths as a rule: a fifth of what lies between ticks holds as many of these
    // in each bin.
    const double width = (x.ticks[1] - x.ticks[0]) / 5;
    std::vector<int> counts((x.ticks.size() - 1) * 5 + 1);
    for (const PagePatch &patch : patches)
        ++counts[std::min(static_cast<std::size_t>(patch.difference / width + 1e-4), counts.size() - 1)];
    const int most = *std::max_element(counts.begin(), counts.end());
    SvgPlot plot(560, 260, "How many patches have which difference", x,
                 {roundTicks(0, most, 4), 216, 24, "patches"});
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0) continue;
        const double left = x.place(static_cast<double>(i) * width);
        const double right = x.place(static_cast<double>(i + 1) * width);
        const double top = plot.y().place(counts[i]);
        plot.add("<rect class=\"bar\" x=\"" + fixed(left + 1, 1) + "\" y=\"" + fixed(top, 1) + "\" width=\"" +
                 fixed(right - left - 2, 1) + "\" height=\"" + fixed(216 - top, 1) + "\"><title>" +
                 std::to_string(counts[i]) + "</title></rect>\n");
    }
    addLimits(plot, limits);
    return plot.close();
}

std::string cumulativePlot(const std::vector<PagePatch> &patches, const std::vector<PageCheck> &limits) {
    std::vector<float> differences;
    differences.reserve(patches.size());
    for (const PagePatch &patch : patches)
        differences.push_back(patch.difference);
    std::sort(differences.begin(), differences.end());
    SvgPlot plot(560, 260, "What share of the patches has at most which difference",
                 differenceAxis(patches, limits), {roundTicks(0, 100, 5), 216, 24, "% of the patches"});
    std::string path = "<path class=\"curve\" d=\"M" + point(plot.x().place(0), plot.y().place(0));
    for (std::size_t i = 0; i < differences.size(); ++i) {
        path += 'H' + fixed(plot.x().place(differences[i]), 1);
        path += 'V' + fixed(plot.y().place(100.0 * static_cast<double>(i + 1) /
                                           static_cast<double>(differences.size())),
                            1);
    }
    plot.add(path + "\"/>\n");
    addLimits(plot, limits);
    return plot.close();
}

}  // namespace kvtool
