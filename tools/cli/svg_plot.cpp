#include "svg_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orvo::cli {

namespace {

constexpr double kWidth = 800.0;      // picture width in SVG units
constexpr double kMargin = 60.0;      // around the plotted area
constexpr double kTitleBand = 40.0;   // above it
constexpr double kLegendBand = 30.0;  // below it

// The largest of 1, 2, 5 times a power of ten that is not above `value` (> 0).
double RoundDown125(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    const double mantissa = value / power;
    const double step = mantissa >= 5.0 ? 5.0 : mantissa >= 2.0 ? 2.0 : 1.0;
    return step * power;
}

// A number for the picture: short, and enough digits for coordinates.
std::string Num(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

std::string Label(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

}  // namespace

std::string XmlEscape(const std::string& text) {
    std::string escaped;
    for (char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&apos;";
                break;
            default:
                // Control characters other than tab and line ends are not allowed in XML 1.0.
                if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r')
                    escaped += ' ';
                else
                    escaped += c;
        }
    }
    return escaped;
}

double ChooseMagnification(const std::vector<ResidualVector>& vectors) {
    double minX = 0.0, maxX = 0.0, minY = 0.0, maxY = 0.0, longest = 0.0;
    bool first = true;
    for (const ResidualVector& v : vectors) {
        if (first) {
            minX = maxX = v.x;
            minY = maxY = v.y;
            first = false;
        }
        minX = std::min(minX, v.x);
        maxX = std::max(maxX, v.x);
        minY = std::min(minY, v.y);
        maxY = std::max(maxY, v.y);
        const double length = std::hypot(v.rx, v.ry);
        if (std::isfinite(length)) longest = std::max(longest, length);
    }
    const double extent = std::max(maxX - minX, maxY - minY);
    if (!(longest > 0.0) || !(extent > 0.0)) return 1.0;
    return RoundDown125(extent / 8.0 / longest);
}

double WriteResidualPlot(std::ostream& out, const std::vector<ResidualVector>& vectors,
                         const ResidualPlotOptions& options) {
    const double magnification =
        options.magnification > 0.0 ? options.magnification : ChooseMagnification(vectors);

    // The plotted area: the points' bounding box, widened a little so that no point sits on
    // the frame, and kept square-ish when all points lie on a line.
    double minX = 0.0, maxX = 1.0, minY = 0.0, maxY = 1.0;
    if (!vectors.empty()) {
        minX = maxX = vectors.front().x;
        minY = maxY = vectors.front().y;
        for (const ResidualVector& v : vectors) {
            minX = std::min(minX, v.x);
            maxX = std::max(maxX, v.x);
            minY = std::min(minY, v.y);
            maxY = std::max(maxY, v.y);
        }
    }
    double spanX = maxX - minX;
    double spanY = maxY - minY;
    const double span = std::max({spanX, spanY, 1e-9});
    if (spanX < span * 0.05) spanX = span * 0.05;
    if (spanY < span * 0.05) spanY = span * 0.05;
    const double centerX = (minX + maxX) / 2.0;
    const double centerY = (minY + maxY) / 2.0;
    minX = centerX - spanX * 0.55;
    maxX = centerX + spanX * 0.55;
    minY = centerY - spanY * 0.55;
    maxY = centerY + spanY * 0.55;

    const double plotWidth = kWidth - 2.0 * kMargin;
    double scale = plotWidth / (maxX - minX);
    double plotHeight = (maxY - minY) * scale;
    if (plotHeight > plotWidth * 1.25) {  // tall sets are shrunk to keep the picture on screen
        scale *= plotWidth * 1.25 / plotHeight;
        plotHeight = plotWidth * 1.25;
    }
    const double height = kTitleBand + plotHeight + 2.0 * kMargin + kLegendBand;
    const double top = kTitleBand + kMargin;
    auto px = [&](double x) { return kMargin + (x - minX) * scale; };
    auto py = [&](double y) { return top + (maxY - y) * scale; };

    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << Num(kWidth) << "\" height=\""
        << Num(height) << "\" viewBox=\"0 0 " << Num(kWidth) << " " << Num(height) << "\">\n"
        << "  <defs>\n"
        << "    <marker id=\"arrow\" viewBox=\"0 0 10 10\" refX=\"9\" refY=\"5\" "
           "markerWidth=\"6\" markerHeight=\"6\" orient=\"auto\">\n"
        << "      <path d=\"M 0 0 L 10 5 L 0 10 z\" fill=\"context-stroke\"/>\n"
        << "    </marker>\n"
        << "  </defs>\n"
        << "  <style>\n"
        << "    text { font-family: sans-serif; font-size: 12px; fill: #222; }\n"
        << "    .title { font-size: 15px; }\n"
        << "    .frame { fill: none; stroke: #bbb; }\n"
        << "    .point { fill: #1f4e9c; }\n"
        << "    .vector { stroke: #c0392b; stroke-width: 1.5; marker-end: url(#arrow); }\n"
        << "    .check { stroke: #2e8b57; stroke-dasharray: 4 2; }\n"
        << "    .bar { stroke: #222; stroke-width: 2; }\n"
        << "  </style>\n"
        << "  <rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n"
        << "  <text class=\"title\" x=\"" << Num(kMargin) << "\" y=\"22\">"
        << XmlEscape(options.title) << "</text>\n"
        << "  <text x=\"" << Num(kMargin) << "\" y=\"42\">" << XmlEscape(options.subtitle)
        << "</text>\n"
        << "  <rect class=\"frame\" x=\"" << Num(kMargin) << "\" y=\"" << Num(top) << "\" width=\""
        << Num(plotWidth) << "\" height=\"" << Num(plotHeight) << "\"/>\n";

    out << "  <g class=\"points\">\n";
    for (const ResidualVector& v : vectors) {
        out << "    <circle class=\"point\" cx=\"" << Num(px(v.x)) << "\" cy=\"" << Num(py(v.y))
            << "\" r=\"2.5\"/>\n"
            << "    <text x=\"" << Num(px(v.x) + 4.0) << "\" y=\"" << Num(py(v.y) - 4.0) << "\">"
            << v.id << "</text>\n";
    }
    out << "  </g>\n  <g class=\"vectors\">\n";
    for (const ResidualVector& v : vectors) {
        const double rx = std::isfinite(v.rx) ? v.rx : 0.0;
        const double ry = std::isfinite(v.ry) ? v.ry : 0.0;
        out << "    <line class=\"vector" << (v.check ? " check" : "") << "\" x1=\"" << Num(px(v.x))
            << "\" y1=\"" << Num(py(v.y)) << "\" x2=\"" << Num(px(v.x) + rx * magnification * scale)
            << "\" y2=\"" << Num(py(v.y) - ry * magnification * scale) << "\"><title>point " << v.id
            << ": residual " << Label(rx) << ", " << Label(ry) << "</title></line>\n";
    }
    out << "  </g>\n";

    // Scale bars: one for the coordinates, one for the residuals at their magnification.
    const double barY = top + plotHeight + kMargin * 0.6;
    const double coordinateBar = RoundDown125((maxX - minX) / 4.0);
    out << "  <g class=\"legend\">\n"
        << "    <line class=\"bar\" x1=\"" << Num(kMargin) << "\" y1=\"" << Num(barY) << "\" x2=\""
        << Num(kMargin + coordinateBar * scale) << "\" y2=\"" << Num(barY) << "\"/>\n"
        << "    <text x=\"" << Num(kMargin) << "\" y=\"" << Num(barY + 18.0)
        << "\">coordinates: " << Label(coordinateBar) << "</text>\n";
    double longest = 0.0;
    for (const ResidualVector& v : vectors) {
        const double length = std::hypot(v.rx, v.ry);
        if (std::isfinite(length)) longest = std::max(longest, length);
    }
    const double residualBar = longest > 0.0 ? RoundDown125(longest) : 0.0;
    const double residualX = kMargin + plotWidth / 2.0;
    out << "    <line class=\"bar\" x1=\"" << Num(residualX) << "\" y1=\"" << Num(barY)
        << "\" x2=\"" << Num(residualX + residualBar * magnification * scale) << "\" y2=\""
        << Num(barY) << "\"/>\n"
        << "    <text x=\"" << Num(residualX) << "\" y=\"" << Num(barY + 18.0)
        << "\">residual: " << Label(residualBar) << " (vectors magnified " << Label(magnification)
        << " times)</text>\n"
        << "  </g>\n"
        << "</svg>\n";
    return magnification;
}

}  // namespace orvo::cli
