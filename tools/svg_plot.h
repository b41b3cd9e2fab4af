#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvtool {

/// The text as HTML and SVG take it between tags and in quoted attributes.
std::string escaped(std::string_view text);

/// Round values, 1, 2 or 5 times a power of ten apart, about count of them, that enclose first to last. first
/// above last counts as the other way round, equal ones as a span of 1, and not finite ones as 0 to 1.
std::vector<double> roundTicks(double first, double last, int count);

/// An axis of a plot: where a value lies.
struct PlotAxis {
    std::vector<double> ticks;  ///< ascending, two at least; the first and the last are the ends
    double from = 0;            ///< the place of the first tick in the drawing
    double to = 1;              ///< the place of the last tick
    std::string label;

    double place(double value) const;
    /// The digits that its ticks need.
    int digits() const;
};

/// A line plot in SVG: a frame with grid, ticks and labels, into which the caller draws. Colours come from
/// the classes "grid", "axis" and "label", so that the page can choose them.
class SvgPlot {
public:
    /// width, height  of the whole drawing
    /// label          what the drawing shows, for those who can't see it
    SvgPlot(double width, double height, std::string_view label, PlotAxis x, PlotAxis y);

    const PlotAxis &x() const { return m_x; }
    const PlotAxis &y() const { return m_y; }
    /// Appends elements, which are in the drawing's coordinates.
    void add(std::string_view elements) { m_text += elements; }
    /// The whole drawing; nothing can be added afterwards.
    std::string close();

private:
    void drawTicks();

    PlotAxis m_x;
    PlotAxis m_y;
    std::string m_text;
};

}  // namespace kvtool
