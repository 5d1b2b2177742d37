// ZorWBx's side of the polynomial benchmark (scripts/bench-polynomial.sh):
// reads the cases of polynomial_cases.py and prints, per case, the line
//   KIND  NAME  CLOSED  SECONDS  DETAIL
// as sympy_polynomial.py does, so that the two can be joined.
// - integrate: the integrand read by the parser, then CreateAntiDerivative
//   (CLOSED when done); every closed form is checked against the integrand
//   by central differences at a few points, and a mismatch prints "WRONG".
// - roots: the polynomial read exactly, isolated and refined to width
//   1e-10 (ZorWBRealRoots::Isolate); DETAIL the number of real roots.
// - resultant: both polynomials read exactly, eliminating x
//   (ZorWBMultiResultant::Resultant); DETAIL the resultant at y = 3 (the
//   table reduces it modulo 2^61 - 1, as SymPy's side prints it).
// SECONDS is the median of repeated runs (until 0.2 s or 25 runs), each
// from a fresh factory; reading the texts is not timed.
//
// Usage: polynomial_versus_sympy CASES

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "ZorWBx.h"
#include "expressions/ZorWBPolynomialTools.h"

namespace {

using Clock = std::chrono::steady_clock;

double MedianSeconds(const std::function<void()>& work) {
    std::vector<double> seconds;
    double total = 0.0;
    while (seconds.size() < 25 && (seconds.size() < 3 || total < 0.2)) {
        Clock::time_point start = Clock::now();
        work();
        seconds.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        total += seconds.back();
        if (seconds.back() > 2.0) break;
    }
    std::sort(seconds.begin(), seconds.end());
    return seconds[seconds.size() / 2];
}

// A sum of terms c*x^i*y^j (c an integer or p/q of any length) read
// exactly into a polynomial in x and y.
ZorWBMultiPolynomial ReadExact(const std::string& text) {
    ZorWBMultiPolynomial p(2);
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find_first_of("+-", at + 1);
        std::string term = text.substr(at, end == std::string::npos ? std::string::npos : end - at);
        at = end == std::string::npos ? text.size() : end;
        bool negative = term[0] == '-';
        if (term[0] == '+' || term[0] == '-') term.erase(0, 1);
        ZorWBRational coefficient(1);
        std::vector<int> exponents{0, 0};
        std::stringstream factors(term);
        std::string factor;
        while (std::getline(factors, factor, '*')) {
            if (factor[0] == 'x' || factor[0] == 'y') {
                std::size_t caret = factor.find('^');
                exponents[factor[0] == 'x' ? 0 : 1] =
                    caret == std::string::npos ? 1 : std::stoi(factor.substr(caret + 1));
            } else {
                ZorWBRational::FromText(factor, coefficient);
            }
        }
        p.AddTerm(negative ? -coefficient : coefficient, exponents);
    }
    return p;
}

ZorWBExpression* ReadExpression(ZorWBFactory& factory, const std::string& text) {
    ZorWBModel model;
    ZorQelIntArray ids, equationIds;
    ZorWBParserMessenger messenger;
    if (ZorWBParser::Parse((text + ";").c_str(), model, ids, messenger) != 0) return nullptr;
    model.FillFactory(factory, equationIds);
    return factory.GetNbOfEquations() > 0 ? factory.GetEquation(0)->GetRoot() : nullptr;
}

// Whether the antiderivative's central differences match the integrand.
bool DifferentiatesBack(ZorWBExpression* integrand, ZorWBExpression* antiDerivative,
                        ZorWBVariable* x) {
    for (double point : {-2.7, -0.45, 0.3, 1.7, 3.3}) {
        auto at = [&](ZorWBExpression* e, double t) {
            x->SetExprValue(ZorWBValue(t));
            return e->Eval();
        };
        double expected = at(integrand, point);
        if (!std::isfinite(expected) || std::fabs(expected) > 1e6) continue;
        double coarse =
            (at(antiDerivative, point + 1e-4) - at(antiDerivative, point - 1e-4)) / 2e-4;
        double fine = (at(antiDerivative, point + 1e-5) - at(antiDerivative, point - 1e-5)) / 2e-5;
        if (std::fabs(coarse - fine) > 1e-4 * (1 + std::fabs(fine))) continue;  // next to a pole
        if (std::fabs(fine - expected) > 1e-4 * (1 + std::fabs(expected))) return false;
    }
    return true;
}

std::string Integrate(const std::string& text, int& closed, double& seconds) {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    x->SetName("x");
    ZorWBExpression* integrand = ReadExpression(factory, text);
    if (!integrand) return "unreadable";
    bool done = false;
    seconds = MedianSeconds([&] {
        ZorWBFactory fresh;
        ZorWBExpression* copy = fresh.CloneExpression(integrand);
        fresh.CreateAntiDerivative(copy, fresh.GetVariable(0), done);
    });
    ZorWBExpression* antiDerivative = factory.CreateAntiDerivative(integrand, x, done);
    closed = done;
    return done && !DifferentiatesBack(integrand, antiDerivative, x) ? "WRONG" : "";
}

std::string Roots(const std::string& text, int& closed, double& seconds) {
    ZorWBPolynomial p;
    ReadExact(text).ToUnivariate(0, p);
    std::vector<ZorWBRealRoot> roots;
    ZorWBRational width(1, 10000000000LL);
    ZorWBPolynomialStatus status = ZorWBPolynomialStatus::Success;
    seconds = MedianSeconds([&] { status = ZorWBRealRoots::Isolate(p, width, roots); });
    closed = status == ZorWBPolynomialStatus::Success;
    return std::to_string(roots.size()) + " roots";
}

std::string Resultant(const std::string& f, const std::string& g, int& closed, double& seconds) {
    ZorWBMultiPolynomial a = ReadExact(f), b = ReadExact(g), resultant;
    ZorWBPolynomialStatus status = ZorWBPolynomialStatus::Success;
    seconds = MedianSeconds([&] { status = ZorWBMultiResultant::Resultant(a, b, 0, resultant); });
    closed = status == ZorWBPolynomialStatus::Success;
    return resultant.Evaluate(std::vector<ZorWBRational>{ZorWBRational(), ZorWBRational(3)})
        .ToText();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: polynomial_versus_sympy CASES\n";
        return 2;
    }
    std::ifstream cases(argv[1]);
    std::string line;
    while (std::getline(cases, line)) {
        std::vector<std::string> fields;
        std::stringstream split(line);
        std::string field;
        while (std::getline(split, field, '\t'))
            fields.push_back(field);
        if (fields.size() < 3) continue;
        int closed = 0;
        double seconds = 0.0;
        std::string detail;
        if (fields[0] == "integrate")
            detail = Integrate(fields[2], closed, seconds);
        else if (fields[0] == "roots")
            detail = Roots(fields[2], closed, seconds);
        else if (fields.size() == 4)
            detail = Resultant(fields[2], fields[3], closed, seconds);
        std::printf("%s\t%s\t%d\t%.6f\t%s\n", fields[0].c_str(), fields[1].c_str(), closed, seconds,
                    detail.c_str());
        std::fflush(stdout);
    }
    return 0;
}
