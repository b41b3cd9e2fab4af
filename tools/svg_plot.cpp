#include "svg_plot.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "number_text.h"

namespace kvtool {

std::string escaped(std::string_view text) {
    std::string safe;
    for (const char c : text) {
        switch (c) {
        case '&':
            safe += "&amp;";
            break;
        case '<':
            safe += "&lt;";
            break;
        case '>':
            safe += "&gt;";
            break;
        case '"':
            safe += "&quot;";
            break;
        default:
            safe += c;
        }
    }
    return safe;
}

std::vector<double> roundTicks(double first, double last, int count) {
    if (!std::isfinite(first) || !std::isfinite(last)) first = last = 0;
    if (first > last) std::swap(first, last);
    if (first == last) last = first + 1;
    const double raw = (last - first) / count;
    const double power = std::pow(10, std::floor(std::log10(raw)));
    const double steps[] = {1, 2, 5, 10};
    const double step = power * *std::find_if(std::begin(steps), std::end(steps) - 1,
                                              [&](double s) { return power * s >= raw * 0.999; });
    std::vector<double> ticks;
    const double begin = std::floor(first / step + 1e-9);
    for (double i = begin; ticks.empty() || ticks.back() < last - step * 1e-9; ++i)
        ticks.push_back(i * step);
    return ticks;
}

double PlotAxis::place(double value) const {
    return from + (value - ticks.front()) / (ticks.back() - ticks.front()) * (to - from);
}

int PlotAxis::digits() const {
    const double step = ticks[1] - ticks[0];
    return std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 9);
}

SvgPlot::SvgPlot(double width, double height, std::string_view label, PlotAxis x, PlotAxis y)
    : m_x(std::move(x)), m_y(std::move(y)) {
    m_text = "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" viewBox=\"0 0 " + fixed(width, 0) + ' ' +
             fixed(height, 0) + "\" aria-label=\"" + escaped(label) + "\">\n";
    drawTicks();
    const std::string bottom = fixed(height - 6, 1);
    m_text += "<text class=\"label\" text-anchor=\"middle\" x=\"" + fixed((m_x.from + m_x.to) / 2, 1) +
              "\" y=\"" + bottom + "\">" + escaped(m_x.label) + "</text>\n";
    m_text += "<text class=\"label\" x=\"4\" y=\"14\">" + escaped(m_y.label) + "</text>\n";
}

void SvgPlot::drawTicks() {
    const auto line = [this](double x1, double y1, double x2, double y2) {
        m_text += "<path class=\"grid\" d=\"M" + fixed(x1, 1) + ' ' + fixed(y1, 1) + 'L' + fixed(x2, 1) +
                  ' ' + fixed(y2, 1) + "\"/>";
    };
    const auto text = [this](const char *anchor, double x, double y, const std::string &number) {
        m_text += std::string("<text class=\"axis\" text-anchor=\"") + anchor + "\" x=\"" + fixed(x, 1) +
                  "\" y=\"" + fixed(y, 1) + "\">" + number + "</text>\n";
    };
    for (const double tick : m_x.ticks) {
        line(m_x.place(tick), m_y.from, m_x.place(tick), m_y.to);
        text("middle", m_x.place(tick), m_y.from + 15, fixed(tick, m_x.digits()));
    }
    for (const double tick : m_y.ticks) {
        line(m_x.from, m_y.place(tick), m_x.to, m_y.place(tick));
        text("end", m_x.from - 6, m_y.place(tick) + 4, fixed(tick, m_y.digits()));
    }
}

std::string SvgPlot::close() {
    m_text += "</svg>\n";
    return std::move(m_text);
}

}  // namespace kvtool
