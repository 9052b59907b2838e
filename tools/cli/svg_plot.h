// The residual-vector plot of a 2D fit as an SVG picture: every matched point at its reference
// position with its id, its residual drawn as an arrow magnified by a stated factor, a scale
// bar for the coordinates and one for the residuals. A fit is judged by looking at it:
// systematic patterns (a swirl, vectors growing towards the edge) show a wrong model where
// the RMS alone does not.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace orvo::cli {

struct ResidualVector {
    std::uint32_t id = 0;
    double x = 0.0;  // reference (control) position
    double y = 0.0;
    double rx = 0.0;  // residual: transformed measured minus reference
    double ry = 0.0;
    bool check = false;  // a check point, kept out of the fit
};

struct ResidualPlotOptions {
    std::string title;
    std::string subtitle;  // a second, smaller line under the title
    /// Magnification of the vectors; 0 chooses one (a round number that makes the longest
    /// vector about an eighth of the picture's width).
    double magnification = 0.0;
};

/// The magnification the plot uses for these vectors when none is given.
double ChooseMagnification(const std::vector<ResidualVector>& vectors);

/// Writes the picture: an SVG document with one `<line class="vector">` (class
/// "vector check" for check points) per residual vector. Returns the magnification used.
double WriteResidualPlot(std::ostream& out, const std::vector<ResidualVector>& vectors,
                         const ResidualPlotOptions& options);

/// The text with the five characters that XML reserves written as entities.
std::string XmlEscape(const std::string& text);

}  // namespace orvo::cli
