#ifndef ZORWB_SVGPLOT_H
#define ZORWB_SVGPLOT_H

#include <vector>

#include "ZorWBxExport.h"
#include "output/ZorWBPlotSampler.h"
#include "qel/ZorQelString.h"

// Draws sampled plot data as an inline SVG element (in the SVG namespace, in
// ASCII, well-formed XML), Width by Height pixels:
// - the plot area is a frame (<rect class="frame">) with the x range from
//   its left to its right edge and the y range of the data from its bottom
//   to its top;
// - ticks at "nice" steps (1, 2 or 5 times a power of ten, about six per
//   axis) on the bottom and left edges, labelled with their values, and the
//   axis titles under the x axis and along the y axis;
// - the line y = 0 dashed when it is in the y range;
// - the curve as one <polyline class="curve"> per run of finite samples,
//   clipped to the frame, so gaps stay gaps;
// - each zero as a <circle class="zero"> on the line y = 0, with its x in a
//   data-x attribute and a tooltip.
// Coordinates are written with two decimals, whatever the locale.
class ZORWBX_API ZorWBSvgPlot {
  public:
    static constexpr int Width = 640;
    static constexpr int Height = 400;

    // Draws the data; xTitle and yTitle are plain text (escaped here). id
    // names the clipping path, and must be unique within the page.
    static ZorQelString Write(const ZorWBPlotData& data, const ZorQelString& xTitle,
                              const ZorQelString& yTitle, const ZorQelString& id);

    // The ticks of [low, high]: the multiples of a step of 1, 2 or 5 times a
    // power of ten that lie in the range, about count of them.
    static std::vector<double> Ticks(double low, double high, int count);
    // A tick's label: as many decimals as its step needs, or three
    // significant digits in exponent form for very large and very small
    // steps.
    static ZorQelString TickLabel(double value, double step);
};

#endif
