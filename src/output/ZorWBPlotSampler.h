#ifndef ZORWB_PLOTSAMPLER_H
#define ZORWB_PLOTSAMPLER_H

#include <functional>
#include <vector>

#include "ZorWBxExport.h"

class ZorWBExpression;
class ZorWBVariable;

// One sample of a plotted function; y is NaN where the curve has a gap (a
// domain error, a non-finite value, or a jump the sampling could not close).
struct ZorWBPlotPoint {
    double x;
    double y;
};

// What a plot shows: the samples in increasing x, the x of the zeros found
// between them, and the range of y to draw.
struct ZorWBPlotData {
    std::vector<ZorWBPlotPoint> samples;
    std::vector<double> zeros;
    double low = 0.0;  // the x range
    double high = 0.0;
    double yLow = 0.0;  // the y range to draw
    double yHigh = 0.0;
};

// Samples a real function of one variable adaptively, for plotting.
//
// Method. The interval is first cut into InitialSegments equal segments.
// Each segment [a, b] is then split at its midpoint m, depth first and left
// to right, while it is not fine enough:
//   - the value at m is further than the flatness tolerance from the chord
//     between a and b (the curve bends or is steep there): split, so that
//     steep parts get as many samples as their drawing needs;
//   - f(a) and f(b) have opposite signs: split, so that a zero is bracketed
//     by two close samples;
//   - exactly one end is a gap: split, so that gaps end where the domain
//     does.
// A segment is never split beyond MaxDepth halvings, nor once MaxSamples
// samples were taken. The flatness tolerance is a fraction (Flatness) of the
// height of the y range that the first samples show, about half a pixel of
// a plot 400 pixels high; values further than that height beyond the range
// count as on its edge, since they are drawn clipped.
//
// The y range to draw is that of the first, evenly spaced samples (YRange),
// so that the samples gathered near a pole do not widen it.
//
// Invariants: samples are sorted by x, the first at low and the last at
// high. Two consecutive finite samples of a segment split to the full depth
// that still differ (within the band drawn) by more than JumpFraction of the
// y range are a jump: a gap point (y NaN) goes between them, so that jumps
// and poles are not drawn as steep lines. A zero is reported between two
// consecutive finite samples of opposite signs that are not a jump (by
// linear interpolation, so within one sample of the true zero), and at a
// sample that is exactly 0 whose neighbours are not. Rounding makes a
// function cross 0 several times near a simple zero: crossings closer than
// MergeDistance are one zero, at the middle of the first and the last.
//
// Cost: at most MaxSamples evaluations, and for a smooth function about
// InitialSegments plus MaxDepth per zero, gap edge and jump.
class ZORWBX_API ZorWBPlotSampler {
  public:
    using Function = std::function<double(double)>;

    static constexpr int InitialSegments = 128;
    static constexpr int MaxDepth = 30;
    static constexpr int MaxSamples = 20000;
    static constexpr double Flatness = 1.0 / 800.0;
    static constexpr double JumpFraction = 0.1;
    // Crossings closer than this fraction of the x range (half a pixel of a
    // plot 640 pixels wide) are one zero.
    static constexpr double MergeDistance = 1.0 / 1280.0;

    // Samples f over [low, high] (low < high, both finite; otherwise the
    // result holds no sample). Non-finite values of f are gaps.
    static ZorWBPlotData Sample(const Function& f, double low, double high);

    // Samples root against the variable, the other variables keeping their
    // values: the variable is set to each x as a real and root evaluated
    // with Eval(). The variable's value is put back afterwards. No sample
    // for a null root or variable.
    static ZorWBPlotData SampleRoot(const ZorWBExpression* root, ZorWBVariable* variable,
                                    double low, double high);

    // The y range to draw: the finite values between the 2nd and 98th
    // percentiles (so that a pole does not squash the rest), stretched to
    // 0 when 0 is nearer than the range's own height, then widened by 5% on
    // each side; [-1, 1] around a constant's value when all values are
    // equal, and [-1, 1] without any finite value.
    static void YRange(const std::vector<ZorWBPlotPoint>& samples, double& low, double& high);
};

#endif
