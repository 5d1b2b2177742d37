#ifndef ZORWB_LINEARPROGRAM_H
#define ZORWB_LINEARPROGRAM_H

#include <vector>

#include "ZorWBxExport.h"

// A small dense linear program solved by the simplex method:
//
//   maximise c·x  subject to  A x <= b  and  low <= x <= high,
//
// with m rows, n columns and finite bounds, for several objectives over the
// same rows. An optimum comes with the dual values y >= 0 of the rows (one
// per row of A); an infeasible program with a certificate in y (y >= 0 with
// y·A x > y·b on the whole box, up to rounding). The results are floating-point approximations:
// callers that need rigour verify them (ZorWBLinearContractor does, by weak duality in
// outward-rounded arithmetic, which holds for any y >= 0).
//
// Method: the variables are shifted to z = x - low in [0, high - low], the
// bounds become rows, and the tableau of A' z + s = b' is solved in two
// phases (artificial variables for the rows whose right side is negative),
// entering by the most negative reduced cost with Bland's rule after a run
// of degenerate pivots, leaving by the ratio test; each further objective
// starts from the last optimal basis. Cost: O((m + n)^2) per pivot; meant
// for tens of rows and columns.
class ZORWBX_API ZorWBLinearProgram {
  public:
    enum class Result { Optimal, Infeasible, Unbounded, Failed };

    // Sets the rows (a: m rows of n coefficients) and the box, and finds a
    // feasible point: Optimal when there is one (Maximize can then run, for
    // any number of objectives, each from the last basis), Infeasible with
    // its certificate in GetDuals.
    Result Prepare(int m, int n, const std::vector<double>& a, const std::vector<double>& b,
                   const std::vector<double>& low, const std::vector<double>& high);
    // Maximises c·x over the prepared rows and box.
    Result Maximize(const std::vector<double>& c);

    const std::vector<double>& GetSolution() const { return _x; }
    const std::vector<double>& GetDuals() const { return _y; }

  private:
    // The simplex over the first columns of the tableau, from its current
    // basis; false when it cannot finish (unbounded or too many pivots).
    bool Run(int columns, bool& unbounded);
    void Pivot(int row, int column);
    void ReadDuals();
    double& At(int row, int column) {
        return _tableau[static_cast<std::size_t>(row) * _width + column];
    }

    int _m = 0;
    int _n = 0;
    int _rows = 0;   // m + n
    int _width = 0;  // columns of the tableau, right side last
    int _slack0 = 0;
    int _artificial0 = 0;
    Result _state = Result::Failed;
    std::vector<double> _tableau;
    std::vector<double> _objective;  // reduced costs, the objective value last
    std::vector<int> _basis;
    std::vector<double> _low;
    std::vector<double> _x;
    std::vector<double> _y;
};

#endif
