// HC4 propagation over compiled relations. Invariant: while a propagation
// runs, the box's intervals live in the tape's variable slots, and a
// constraint is in the queue at most once (the queue is a ring of one entry
// per constraint). Each revision costs one forward and one backward pass of
// its program; the budget of revisions bounds a propagation whatever the
// ratio. Method and budget: see the class comment in the header.

#include "solver/ZorWBConstraintSystem.h"

#include <algorithm>
#include <cmath>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "values/ZorWBValueFunctions.h"

namespace {

// Whether a domain shrank enough to revise the constraints that read it.
bool Shrank(const ZorWBRoundedInterval& before, const ZorWBRoundedInterval& after, double ratio) {
    if (before.IsSameAs(after)) return false;
    if (!before.IsBounded()) {
        // An infinite end that became finite, or a finite end that moved by
        // more than the ratio of its magnitude.
        auto moved = [ratio](double from, double to) {
            return to != from && (std::isinf(from) ||
                                  std::fabs(to - from) > ratio * std::max(1.0, std::fabs(from)));
        };
        return moved(before.low, after.low) || moved(before.high, after.high);
    }
    const double width = before.high - before.low;
    return width - (after.high - after.low) > ratio * width;
}

}  // namespace

ZorWBConstraintSystem::ZorWBConstraintSystem(const ZorWBFactory& factory,
                                             const std::vector<ZorWBEquation*>& equations)
    : _environment(factory.GetEnvironment()),
      _tape(factory.GetNbOfVariables()),
      _constraintsOf(static_cast<std::size_t>(factory.GetNbOfVariables())),
      _kinds(static_cast<std::size_t>(factory.GetNbOfVariables()), ZorWBDomainKind::Real) {
    for (ZorWBEquation* equation : equations) {
        if (!equation || !equation->GetRoot() || !ZorWBIsRelation(equation->GetType())) continue;
        Constraint constraint;
        constraint.equationId = equation->GetId();
        constraint.relation = equation->GetType();
        constraint.root = _tape.Compile(equation->GetRoot());
        if (constraint.IsOnTape()) {
            constraint.program = _tape.MakeProgram({constraint.root});
            constraint.variables = _tape.FindVariables({constraint.root});
        } else {
            constraint.values.reset(new ZorWBValueConstraint(equation->GetRoot()));
            constraint.variables = constraint.values->GetVariables();
        }
        const int index = static_cast<int>(_constraints.size());
        for (int variable : constraint.variables)
            _constraintsOf[variable].push_back(index);
        _constraints.push_back(std::move(constraint));
    }
    _slots = _tape.MakeSlots();
}

int ZorWBConstraintSystem::CompileExpression(const ZorWBExpression* expression) {
    const int slot = _tape.Compile(expression);
    // New instructions need their slots, new constants their values.
    std::vector<ZorWBRoundedInterval> slots = _tape.MakeSlots();
    std::copy(_slots.begin(), _slots.begin() + GetNbOfVariables(), slots.begin());
    _slots.swap(slots);
    return slot;
}

double ZorWBConstraintSystem::ResolveTolerance(const ZorWBPropagationSettings& settings) const {
    double tolerance = _environment.ResolveTolerance(settings.tolerance);
    return tolerance >= 0.0 ? tolerance : 0.0;
}

void ZorWBConstraintSystem::SetKinds(const std::vector<ZorWBDomainKind>& kinds) {
    for (std::size_t i = 0; i < _kinds.size() && i < kinds.size(); ++i)
        _kinds[i] = kinds[i];
}

std::vector<ZorWBValue>& ZorWBConstraintSystem::ValueDomains(const Constraint& constraint,
                                                             const ZorWBRoundedInterval* intervals,
                                                             const ZorWBDomainBox& box) {
    _valueDomains.resize(static_cast<std::size_t>(GetNbOfVariables()));
    for (int v : constraint.variables)
        _valueDomains[v] = ZorWBDomainValue(_kinds[v], intervals[v], box.GetListed(v));
    return _valueDomains;
}

// One propagation: the box's intervals live in the tape's variable slots
// while it runs.
class ZorWBConstraintSystem::Run {
  public:
    Run(ZorWBConstraintSystem& system, ZorWBDomainBox& box, double tolerance)
        : _system(system), _box(box), _tolerance(tolerance), _slots(system._slots.data()) {
        for (int v = 0; v < _box.GetSize() && v < system.GetNbOfVariables(); ++v)
            _slots[v] = _box.intervals[v];
    }
    ~Run() {
        for (int v = 0; v < _box.GetSize() && v < _system.GetNbOfVariables(); ++v)
            _box.intervals[v] = _slots[v];
    }

    // HC4-revise of one constraint.
    bool Revise(const Constraint& constraint) {
        return constraint.IsOnTape() ? ReviseOnTape(constraint) : ReviseValues(constraint);
    }

    // Keeps a variable's domain in its kind after a revision: integer bounds,
    // or the listed elements inside the new hull.
    bool Normalize(int v) {
        ZorWBRoundedInterval& interval = _slots[v];
        switch (_system._kinds[v]) {
            case ZorWBDomainKind::Integer:
                interval = ZorWBIntegerHull(interval);
                break;
            case ZorWBDomainKind::Listed:
                if (v < static_cast<int>(_box.values.size())) {
                    ZorWBIntersect(_system._environment, _box.values[v],
                                   ZorWBValue(ZorWBToRealInterval(interval)));
                    interval = ZorWBIntersect(interval, ZorWBDomainHull(_box.values[v]));
                }
                break;
            case ZorWBDomainKind::Real:
                break;
        }
        return !interval.IsEmpty();
    }

    ZorWBRoundedInterval Slot(int v) const { return _slots[v]; }

  private:
    bool ReviseOnTape(const Constraint& constraint) {
        const ZorWBConstraintTape& tape = _system._tape;
        if (!tape.Evaluate(constraint.program, _slots)) return false;
        ZorWBRoundedInterval& root = _slots[constraint.root];
        ZorWBBoolean holds = ZorWBRelationHolds(constraint.relation, root, _tolerance);
        if (holds == ZorWBFalse || holds == ZorWBEmpty) return false;
        if (holds == ZorWBTrue) return true;
        ZorWBRoundedInterval allowed =
            ZorWBIntersect(root, ZorWBAllowedSet(constraint.relation, _tolerance));
        if (allowed.IsEmpty()) return false;
        if (tape.IsLeaf(constraint.root) &&
            tape.GetInstruction(constraint.root).op == ZorWBTapeOp::Constant)
            return true;
        root = allowed;
        return tape.Project(constraint.program, _slots);
    }

    bool ReviseValues(const Constraint& constraint) {
        std::vector<ZorWBValue>& domains = _system.ValueDomains(constraint, _slots, _box);
        if (!constraint.values->Revise(_system._environment, constraint.relation, _tolerance,
                                       domains))
            return false;
        for (int v : constraint.variables) {
            if (_system._kinds[v] == ZorWBDomainKind::Listed &&
                v < static_cast<int>(_box.values.size()))
                _box.values[v] = domains[v];
            _slots[v] = ZorWBIntersect(_slots[v], ZorWBDomainHull(domains[v]));
            if (_slots[v].IsEmpty()) return false;
        }
        return true;
    }

    ZorWBConstraintSystem& _system;
    ZorWBDomainBox& _box;
    double _tolerance;
    ZorWBRoundedInterval* _slots;
};

bool ZorWBConstraintSystem::Propagate(ZorWBDomainBox& box, const ZorWBPropagationSettings& settings,
                                      ZorWBPropagationReport& report,
                                      const std::vector<int>* seeds) {
    report = ZorWBPropagationReport();
    // A ring of constraint indices: each is queued at most once at a time.
    const std::size_t size = _constraints.size();
    _queued.assign(size, 0);
    _queue.resize(size + 1);
    std::size_t head = 0, tail = 0;
    auto enqueue = [&](int c) {
        if (_queued[c]) return;
        _queued[c] = 1;
        _queue[tail] = c;
        tail = tail == size ? 0 : tail + 1;
    };
    if (seeds) {
        for (int v : *seeds) {
            if (v >= 0 && v < GetNbOfVariables()) {
                for (int c : _constraintsOf[v])
                    enqueue(c);
            }
        }
    } else {
        for (int c = 0; c < GetNbOfConstraints(); ++c)
            enqueue(c);
    }
    const int budget = 50 * GetNbOfConstraints() + 1000;
    Run run(*this, box, ResolveTolerance(settings));
    while (head != tail && report.nbOfRevisions < budget) {
        const int c = _queue[head];
        head = head == size ? 0 : head + 1;
        _queued[c] = 0;
        const Constraint& constraint = _constraints[c];
        _before.clear();
        for (int v : constraint.variables)
            _before.push_back(run.Slot(v));
        ++report.nbOfRevisions;
        bool consistent = run.Revise(constraint);
        for (std::size_t i = 0; consistent && i < constraint.variables.size(); ++i) {
            const int v = constraint.variables[i];
            const ZorWBRoundedInterval revised = run.Slot(v);
            consistent = run.Normalize(v);
            if (!consistent || !Shrank(_before[i], run.Slot(v), settings.ratio)) continue;
            // The revision is not revised again for what it narrowed itself,
            // but it is for what the domain's kind removed after it.
            const bool normalized = !revised.IsSameAs(run.Slot(v));
            for (int other : _constraintsOf[v]) {
                if (other != c || normalized) enqueue(other);
            }
        }
        if (!consistent) {
            report.consistent = false;
            report.emptyingEquationId = constraint.equationId;
            return false;
        }
    }
    return true;
}

ZorWBRoundedInterval ZorWBConstraintSystem::EvaluateRoot(int constraint,
                                                         const ZorWBDomainBox& box) {
    const Constraint& c = _constraints[constraint];
    if (!c.IsOnTape())
        return ZorWBDomainHull(
            c.values->Evaluate(_environment, ValueDomains(c, box.intervals.data(), box)));
    for (int v : c.variables)
        _slots[v] = box.intervals[v];
    if (!_tape.Evaluate(c.program, _slots.data())) return ZorWBEmptyInterval();
    return _slots[c.root];
}
