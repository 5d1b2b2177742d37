#include "output/ZorWBSvgPlot.h"

#include <algorithm>
#include <cmath>

#include "output/ZorWBMathMLText.h"

namespace {

// The plot area inside the picture.
constexpr double Left = 78.0;
constexpr double Right = ZorWBSvgPlot::Width - 16.0;
constexpr double Top = 14.0;
constexpr double Bottom = ZorWBSvgPlot::Height - 52.0;
// Pixel coordinates are kept within this distance of the area, so that a
// curve leaving it far away still writes finite, short numbers.
constexpr double Reach = 1e5;

class Canvas {
  public:
    explicit Canvas(const ZorWBPlotData& data) : _data(data) {}

    double X(double x) const {
        return Left + (x - _data.low) / (_data.high - _data.low) * (Right - Left);
    }
    double Y(double y) const {
        double pixel = Bottom - (y - _data.yLow) / (_data.yHigh - _data.yLow) * (Bottom - Top);
        return std::clamp(pixel, Top - Reach, Bottom + Reach);
    }

  private:
    const ZorWBPlotData& _data;
};

void Number(ZorQelString& out, double value) {
    out.AppendFixed(value + 0.0, 2);
}

// name="value" with the value in pixels.
void Attribute(ZorQelString& out, const char* name, double value) {
    out += " ";
    out += name;
    out += "=\"";
    Number(out, value);
    out += "\"";
}

void Text(ZorQelString& out, const char* attributes, const ZorQelString& text) {
    out += "<text";
    out += attributes;
    out += ">";
    ZorWBMathMLText::AppendEscaped(out, text.GetString());
    out += "</text>";
}

void Line(ZorQelString& out, double x1, double y1, double x2, double y2, const char* style) {
    out += "<line";
    Attribute(out, "x1", x1);
    Attribute(out, "y1", y1);
    Attribute(out, "x2", x2);
    Attribute(out, "y2", y2);
    out += style;
    out += "/>";
}

double StepOf(const std::vector<double>& ticks) {
    return ticks.size() >= 2 ? ticks[1] - ticks[0] : 1.0;
}

void XAxis(ZorQelString& out, const ZorWBPlotData& data, const Canvas& canvas,
           const ZorQelString& title) {
    std::vector<double> ticks = ZorWBSvgPlot::Ticks(data.low, data.high, 6);
    for (double tick : ticks) {
        double x = canvas.X(tick);
        Line(out, x, Bottom, x, Bottom + 5.0, " class=\"tick\"");
        ZorQelString place(" text-anchor=\"middle\"");
        Attribute(place, "x", x);
        Attribute(place, "y", Bottom + 19.0);
        Text(out, place.GetString(), ZorWBSvgPlot::TickLabel(tick, StepOf(ticks)));
    }
    ZorQelString place(" class=\"title\" text-anchor=\"middle\"");
    Attribute(place, "x", (Left + Right) / 2.0);
    Attribute(place, "y", Bottom + 42.0);
    Text(out, place.GetString(), title);
}

void YAxis(ZorQelString& out, const ZorWBPlotData& data, const Canvas& canvas,
           const ZorQelString& title) {
    std::vector<double> ticks = ZorWBSvgPlot::Ticks(data.yLow, data.yHigh, 6);
    for (double tick : ticks) {
        double y = canvas.Y(tick);
        Line(out, Left - 5.0, y, Left, y, " class=\"tick\"");
        ZorQelString place(" text-anchor=\"end\" dominant-baseline=\"middle\"");
        Attribute(place, "x", Left - 8.0);
        Attribute(place, "y", y);
        Text(out, place.GetString(), ZorWBSvgPlot::TickLabel(tick, StepOf(ticks)));
    }
    ZorQelString place(" class=\"title\" text-anchor=\"middle\" transform=\"rotate(-90)\"");
    Attribute(place, "x", -(Top + Bottom) / 2.0);
    Attribute(place, "y", 16.0);
    Text(out, place.GetString(), title);
}

// One polyline per run of finite samples.
void Curve(ZorQelString& out, const ZorWBPlotData& data, const Canvas& canvas,
           const ZorQelString& clip) {
    bool open = false;
    for (const ZorWBPlotPoint& point : data.samples) {
        if (std::isnan(point.y)) {
            if (open) out += "\"/>";
            open = false;
            continue;
        }
        if (open) {
            out += " ";
        } else {
            out += "<polyline class=\"curve\" clip-path=\"url(#" + clip + ")\" points=\"";
        }
        open = true;
        Number(out, canvas.X(point.x));
        out += ",";
        Number(out, canvas.Y(point.y));
    }
    if (open) out += "\"/>";
}

void Zeros(ZorQelString& out, const ZorWBPlotData& data, const Canvas& canvas) {
    for (double zero : data.zeros) {
        out += "<circle class=\"zero\"";
        Attribute(out, "cx", canvas.X(zero));
        Attribute(out, "cy", canvas.Y(0.0));
        out += " r=\"4\" data-x=\"";
        out.AppendDouble(zero);
        out += "\"><title>zero at ";
        out.AppendDouble(zero, 6);
        out += "</title></circle>";
    }
}

const char* const Style =
    "<style>.frame{fill:none;stroke:#444}.tick{stroke:#444}.axis0{stroke:#888;"
    "stroke-dasharray:4 3}.curve{fill:none;stroke:#1f5fa8;stroke-width:1.6}"
    ".zero{fill:#c0392b}text{font:12px sans-serif;fill:#222}.title{font-style:italic}</style>";

}  // namespace

ZorQelString ZorWBSvgPlot::Write(const ZorWBPlotData& data, const ZorQelString& xTitle,
                                 const ZorQelString& yTitle, const ZorQelString& id) {
    ZorQelString out("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"");
    out.AppendInt(Width).Append("\" height=\"").AppendInt(Height);
    out.Append("\" viewBox=\"0 0 ").AppendInt(Width).AppendChar(' ').AppendInt(Height);
    out += "\">";
    out += Style;
    ZorQelString frame;
    Attribute(frame, "x", Left);
    Attribute(frame, "y", Top);
    Attribute(frame, "width", Right - Left);
    Attribute(frame, "height", Bottom - Top);
    ZorQelString clip;
    ZorWBMathMLText::AppendEscaped(clip, id.GetString());
    out += "<defs><clipPath id=\"" + clip + "\"><rect" + frame + "/></clipPath></defs>";
    out += "<rect class=\"frame\"" + frame + "/>";
    if (data.samples.empty() || !(data.low < data.high) || !(data.yLow < data.yHigh))
        return out + "</svg>";
    Canvas canvas(data);
    XAxis(out, data, canvas, xTitle);
    YAxis(out, data, canvas, yTitle);
    if (data.yLow < 0.0 && data.yHigh > 0.0)
        Line(out, Left, canvas.Y(0.0), Right, canvas.Y(0.0), " class=\"axis0\"");
    Curve(out, data, canvas, clip);
    Zeros(out, data, canvas);
    return out + "</svg>";
}

std::vector<double> ZorWBSvgPlot::Ticks(double low, double high, int count) {
    std::vector<double> ticks;
    if (!std::isfinite(low) || !std::isfinite(high) || !(low < high) || count < 1) return ticks;
    double rough = (high - low) / count;
    double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = power;
    for (double factor : {2.0, 5.0, 10.0})
        if (step < rough) step = factor * power;
    for (double k = std::ceil(low / step); k * step <= high; k += 1.0)
        ticks.push_back(k * step + 0.0);
    return ticks;
}

ZorQelString ZorWBSvgPlot::TickLabel(double value, double step) {
    ZorQelString label;
    if (std::fabs(value) < step * 1e-9) value = 0.0;
    if (step >= 1e-4 && step < 1e7 && std::fabs(value) < 1e9) {
        int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
        return label.AppendFixed(value, decimals);
    }
    return label.AppendDouble(value, 3);
}
