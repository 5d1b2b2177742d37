#ifndef ZORWB_INTERVALNEWTON_H
#define ZORWB_INTERVALNEWTON_H

#include <vector>

#include "ZorWBxExport.h"
#include "solver/ZorWBSquareSystem.h"

// What a Newton step did to a box.
enum class ZorWBNewtonOutcome {
    Empty,       // no zero of the system lies in the box
    Unchanged,   // the step could not run (unbounded box, singular midpoint
                 // Jacobian, a function undefined at the midpoint) or
                 // narrowed nothing
    Contracted,  // the box was narrowed
    Proved,      // narrowed, and the image lay strictly inside the box: the
                 // box holds exactly one zero
};

// Interval Newton on a ZorWBSquareSystem: the Hansen–Sengupta operator
// with a Gauss–Seidel sweep, preconditioned by the inverse of the midpoint
// Jacobian, and a proof of existence and uniqueness by inflation.
//
// Step on a box X with center m (a point of X): J = F'(X), C = mid(J)^-1,
// A = C·J, b = C·F(m); then for each unknown in turn
//   y_i = m_i + (−b_i − Σ_{j≠i} A_ij (X_j − m_j)) / A_ii,   X_i ← X_i ∩ y_i,
// the narrowed X_j of the earlier unknowns already used (a divisor A_ii
// holding 0 gives up to two pieces, hulled within X_i). By the mean value
// theorem every zero of F in X lies in the new box; when every y_i lies
// strictly inside X_i, F has exactly one zero in X (Hansen and Sengupta).
// All of it runs in outward rounding, with F(m) enclosed on the point m.
// Cost: one Jacobian and one function evaluation, the inversion of an n × n
// real matrix (n³) and the product C·J over the non-zero entries of J.
//
// Proof by inflation (ProveUnique): point Newton iterations refine the
// cell's midpoint into an approximate zero x̃; the cell is inflated by a
// tenth of its width on each side into a box U, and one step with center x̃
// is tried on U. A proof there means that U, and so the cell, holds at most
// one zero; the step's image, narrowed by a few more steps, encloses it.
class ZORWBX_API ZorWBIntervalNewton {
  public:
    explicit ZorWBIntervalNewton(ZorWBSquareSystem& system);

    // One step on the box (intervals by variable index; only the unknowns
    // change), centered on the midpoint.
    ZorWBNewtonOutcome Contract(std::vector<ZorWBRoundedInterval>& box);

    // Point Newton iterations from point (one coordinate per unknown) with
    // the other variables taken from box; false when they do not converge.
    bool Refine(const std::vector<ZorWBRoundedInterval>& box, std::vector<double>& point);

    // Tries to prove that a box holding the cell holds exactly one zero:
    // on success, uniqueness is that box and existence a box within it that
    // holds the zero. False when the proof failed (nothing is known then).
    bool ProveUnique(const std::vector<ZorWBRoundedInterval>& cell,
                     std::vector<ZorWBRoundedInterval>& existence,
                     std::vector<ZorWBRoundedInterval>& uniqueness);

    // Newton steps on a box known to hold exactly one zero, while they narrow
    // it (a proof's existence box comes out a few units wide); false when a
    // step finds it empty, which contradicts the proof.
    bool Tighten(std::vector<ZorWBRoundedInterval>& box);

    // The last Jacobian evaluated (row-major), for the bisection's smear.
    const std::vector<ZorWBRoundedInterval>& GetJacobian() const { return _jacobian; }

  private:
    static constexpr int MaxTighteningSteps = 30;

    // One step with the given center (one coordinate per unknown); strictly
    // tells whether the image lay strictly inside the box.
    ZorWBNewtonOutcome Step(std::vector<ZorWBRoundedInterval>& box,
                            const std::vector<double>& center, bool& strictly);
    // C = mid(J)^-1 into _inverse; false when mid(J) is singular.
    bool InvertMidpoint();
    bool Precondition(const std::vector<ZorWBRoundedInterval>& box,
                      const std::vector<double>& center);

    ZorWBSquareSystem& _system;
    int _n;
    std::vector<ZorWBRoundedInterval> _jacobian;        // n × n
    std::vector<ZorWBRoundedInterval> _preconditioned;  // C·J, n × n
    std::vector<ZorWBRoundedInterval> _functions;       // F(m), then C·F(m)
    std::vector<double> _inverse;                       // C, n × n
    std::vector<double> _work;                          // n × 2n
    std::vector<ZorWBRoundedInterval> _pointBox;
};

#endif
