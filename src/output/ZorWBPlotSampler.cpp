#include "output/ZorWBPlotSampler.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBVariable.h"

namespace {

const double Gap = std::numeric_limits<double>::quiet_NaN();

struct Segment {
    ZorWBPlotPoint a;
    ZorWBPlotPoint b;
    int depth;
};

bool OppositeSigns(double u, double v) {
    return (u < 0.0 && v > 0.0) || (u > 0.0 && v < 0.0);
}

class Sampler {
  public:
    Sampler(const ZorWBPlotSampler::Function& f, double low, double high)
        : _f(f), _low(low), _high(high) {}

    ZorWBPlotData Run() {
        ZorWBPlotData data;
        data.low = _low;
        data.high = _high;
        std::vector<ZorWBPlotPoint> first = Uniform();
        ZorWBPlotSampler::YRange(first, data.yLow, data.yHigh);
        double height = data.yHigh - data.yLow;
        _tolerance = height * ZorWBPlotSampler::Flatness;
        _jump = height * ZorWBPlotSampler::JumpFraction;
        _visibleLow = data.yLow - height;
        _visibleHigh = data.yHigh + height;
        for (std::size_t i = 0; i + 1 < first.size(); ++i)
            Refine({first[i], first[i + 1], 0}, data.samples);
        data.samples.push_back(first.back());
        data.zeros = Zeros(data.samples);
        return data;
    }

  private:
    ZorWBPlotPoint At(double x) {
        ++_evaluations;
        double y = _f(x);
        return {x, std::isfinite(y) ? y : Gap};
    }

    std::vector<ZorWBPlotPoint> Uniform() {
        const int n = ZorWBPlotSampler::InitialSegments;
        std::vector<ZorWBPlotPoint> points;
        for (int i = 0; i <= n; ++i)
            points.push_back(At(i == n ? _high : _low + (_high - _low) * i / n));
        return points;
    }

    // Appends the samples of [a, b), splitting it depth first.
    void Refine(const Segment& whole, std::vector<ZorWBPlotPoint>& out) {
        std::vector<Segment> stack{whole};
        while (!stack.empty()) {
            Segment s = stack.back();
            stack.pop_back();
            bool room =
                s.depth < ZorWBPlotSampler::MaxDepth && _evaluations < ZorWBPlotSampler::MaxSamples;
            if (!room || (std::isnan(s.a.y) && std::isnan(s.b.y))) {
                Emit(s.a, s.b, s.depth >= ZorWBPlotSampler::MaxDepth, out);
                continue;
            }
            ZorWBPlotPoint m = At(0.5 * (s.a.x + s.b.x));
            if (m.x <= s.a.x || m.x >= s.b.x) {  // as fine as doubles go
                Emit(s.a, s.b, true, out);
            } else if (!NeedsSplit(s, m)) {
                out.push_back(s.a);
                out.push_back(m);
            } else {
                stack.push_back({m, s.b, s.depth + 1});
                stack.push_back({s.a, m, s.depth + 1});
            }
        }
    }

    bool NeedsSplit(const Segment& s, const ZorWBPlotPoint& m) const {
        if (std::isnan(s.a.y) != std::isnan(s.b.y) || std::isnan(m.y)) return true;
        if (OppositeSigns(s.a.y, s.b.y)) return true;
        double chord = 0.5 * (Visible(s.a.y) + Visible(s.b.y));
        return std::fabs(Visible(m.y) - chord) > _tolerance;
    }

    // Values far outside the y range are drawn at its edge: their exact
    // place needs no samples.
    double Visible(double y) const { return std::clamp(y, _visibleLow, _visibleHigh); }

    // Appends a, and a gap after it when [a, b] is as fine as it gets and
    // still jumps.
    void Emit(const ZorWBPlotPoint& a, const ZorWBPlotPoint& b, bool finest,
              std::vector<ZorWBPlotPoint>& out) const {
        out.push_back(a);
        if (finest && std::fabs(Visible(b.y) - Visible(a.y)) > _jump)
            out.push_back({0.5 * (a.x + b.x), Gap});
    }

    std::vector<double> Zeros(const std::vector<ZorWBPlotPoint>& samples) const {
        std::vector<double> crossings;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const ZorWBPlotPoint& p = samples[i];
            bool previousZero = i > 0 && samples[i - 1].y == 0.0;
            bool nextZero = i + 1 < samples.size() && samples[i + 1].y == 0.0;
            if (p.y == 0.0 && !previousZero && !nextZero) crossings.push_back(p.x);
            if (i + 1 == samples.size()) break;
            const ZorWBPlotPoint& q = samples[i + 1];
            if (OppositeSigns(p.y, q.y) && std::fabs(q.y - p.y) <= _jump)
                crossings.push_back(p.x - p.y * (q.x - p.x) / (q.y - p.y));
        }
        return Merged(crossings);
    }

    // One zero per cluster of crossings closer than MergeDistance, at the
    // middle of its first and last.
    std::vector<double> Merged(const std::vector<double>& crossings) const {
        std::vector<double> zeros;
        double reach = (_high - _low) * ZorWBPlotSampler::MergeDistance;
        for (std::size_t first = 0; first < crossings.size();) {
            std::size_t last = first;
            while (last + 1 < crossings.size() && crossings[last + 1] - crossings[last] < reach)
                ++last;
            zeros.push_back(0.5 * (crossings[first] + crossings[last]));
            first = last + 1;
        }
        return zeros;
    }

    const ZorWBPlotSampler::Function& _f;
    double _low;
    double _high;
    double _tolerance = 0.0;
    double _jump = 0.0;
    double _visibleLow = 0.0;
    double _visibleHigh = 0.0;
    int _evaluations = 0;
};

// The value of a sorted, non-empty list at a fraction of its length.
double Percentile(const std::vector<double>& sorted, double fraction) {
    std::size_t i = static_cast<std::size_t>(fraction * static_cast<double>(sorted.size() - 1));
    return sorted[i];
}

}  // namespace

ZorWBPlotData ZorWBPlotSampler::Sample(const Function& f, double low, double high) {
    if (!f || !std::isfinite(low) || !std::isfinite(high) || !(low < high)) {
        ZorWBPlotData empty;
        YRange(empty.samples, empty.yLow, empty.yHigh);
        return empty;
    }
    return Sampler(f, low, high).Run();
}

ZorWBPlotData ZorWBPlotSampler::SampleRoot(const ZorWBExpression* root, ZorWBVariable* variable,
                                           double low, double high) {
    if (!root || !variable) return Sample(Function(), low, high);
    ZorWBValue saved = variable->GetExprValue();
    ZorWBPlotData data = Sample(
        [root, variable](double x) {
            variable->SetExprValue(ZorWBValue(x));
            return root->Eval();
        },
        low, high);
    variable->SetExprValue(saved);
    return data;
}

void ZorWBPlotSampler::YRange(const std::vector<ZorWBPlotPoint>& samples, double& low,
                              double& high) {
    std::vector<double> values;
    for (const ZorWBPlotPoint& point : samples)
        if (std::isfinite(point.y)) values.push_back(point.y);
    if (values.empty()) {
        low = -1.0;
        high = 1.0;
        return;
    }
    std::sort(values.begin(), values.end());
    low = Percentile(values, 0.02);
    high = Percentile(values, 0.98);
    if (low == high) {
        low -= 1.0;
        high += 1.0;
        return;
    }
    double height = high - low;
    if (low > 0.0 && low < height) low = 0.0;
    if (high < 0.0 && -high < height) high = 0.0;
    double margin = 0.05 * (high - low);
    low -= margin;
    high += margin;
}
