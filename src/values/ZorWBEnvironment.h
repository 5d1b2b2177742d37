#ifndef ZORWB_ENVIRONMENT_H
#define ZORWB_ENVIRONMENT_H

#include "ZorWBxExport.h"
#include "values/ZorWBEnum.h"
#include "values/ZorWBLevel.h"

// How black boxes are evaluated; only the default is defined so far.
enum ZorWBBlackBoxAlgorithm : int {
    ZorWBBlackBoxDefaultAlgorithm = 0,
};

// Error codes of the error word. Codes accumulate by bitwise OR.
namespace ZorWBError {
constexpr unsigned int None = 0;
constexpr unsigned int Domain = 1;             // domain error or overflow
constexpr unsigned int IncompatibleKinds = 2;  // the operands' kinds cannot be combined
constexpr unsigned int InverseModInterval = 11;
constexpr unsigned int InverseRound = 88;
constexpr unsigned int InverseModInterval1 = 300;
constexpr unsigned int InverseModInterval2 = 301;
constexpr unsigned int InverseModInterval3 = 302;
constexpr unsigned int InverseAbs = 860;
constexpr unsigned int InverseMod = 864;
constexpr unsigned int InverseOrPow = 865;
constexpr unsigned int InverseAnd = 866;
constexpr unsigned int InverseImplication1 = 867;
constexpr unsigned int InverseImplication2 = 868;
}  // namespace ZorWBError

// The settings and status that every numeric operation reads: tolerance,
// enumeration size limit, trigonometric limits, black-box settings, the
// behaviour level and a sticky error word. A plain copyable value. The error
// word is written through const references, so one environment must not be
// shared by threads that evaluate at the same time.
class ZORWBX_API ZorWBEnvironment {
  public:
    explicit ZorWBEnvironment(unsigned int level);
    // Takes the level from the global parameters of the utility library.
    ZorWBEnvironment();

    unsigned int GetError() const { return _error; }
    void SetError(unsigned int code) const { _error |= code; }
    void ClearError() const { _error = 0; }
    // Called at the start of every evaluation: the transient domain error
    // (exactly 1) is cleared, any other word persists until ClearError.
    void InitForEval() const {
        if (_error == ZorWBError::Domain) _error = 0;
    }

    double GetTolerance() const { return _tolerance; }
    void SetTolerance(double tolerance) { _tolerance = tolerance; }
    // A tolerance argument of -1.0 stands for the environment's tolerance.
    double ResolveTolerance(double tolerance) const {
        return tolerance == -1.0 ? _tolerance : tolerance;
    }

    double GetBBPrecision() const { return _bbPrecision; }
    void SetBBPrecision(double precision) { _bbPrecision = precision; }
    double GetBBWidth() const { return _bbWidth; }
    void SetBBWidth(double width) { _bbWidth = width; }

    void GetTrigonometricLimits(double& lower, double& upper) const {
        lower = _trigonometricLower;
        upper = _trigonometricUpper;
    }
    void SetTrigonometricLimits(double lower, double upper) {
        _trigonometricLower = lower;
        _trigonometricUpper = upper;
    }

    ZorWBBlackBoxAlgorithm GetBBAlgorithm() const { return _bbAlgorithm; }
    void SetBBAlgorithm(ZorWBBlackBoxAlgorithm algorithm) { _bbAlgorithm = algorithm; }
    int GetMaxNumberOfBBCalls() const { return _maxNumberOfBBCalls; }
    void SetMaxNumberOfBBCalls(int calls) { _maxNumberOfBBCalls = calls; }
    int GetNumberOfBBAttempts() const { return _numberOfBBAttempts; }
    void SetNumberOfBBAttempts(int attempts) { _numberOfBBAttempts = attempts; }
    int GetBBCacheSize() const { return _bbCacheSize; }
    void SetBBCacheSize(int size) { _bbCacheSize = size; }

    // The most elements a computed enumeration keeps as a list (beyond it,
    // its hull). A size outside 0..ZorWBMaxEnumSize is taken as the nearest
    // end of that range.
    int GetMaxEnumSize() const { return _maxEnumSize; }
    void SetMaxEnumSize(int size) {
        _maxEnumSize = size < 0 ? 0 : size > ZorWBMaxEnumSize ? ZorWBMaxEnumSize : size;
    }

    bool GetUseUnimodalInterval() const { return _useUnimodalInterval != 0; }
    void SetUseUnimodalInterval(bool use) { _useUnimodalInterval = use ? 1 : 0; }
    bool GetMinimizeNumberOfBBCalls() const { return _minimizeNumberOfBBCalls != 0; }
    void SetMinimizeNumberOfBBCalls(bool minimize) { _minimizeNumberOfBBCalls = minimize ? 1 : 0; }
    bool IsUseOldSymbolicTransformations() const { return _useOldSymbolicTransformations != 0; }
    void SetUseOldSymbolicTransformations(bool useOld) {
        _useOldSymbolicTransformations = useOld ? 1 : 0;
    }

    unsigned int GetWBLevel() const { return _level; }
    bool CheckLevel(unsigned int threshold) const { return ZorWBCheckLevel(_level, threshold); }

  private:
    mutable unsigned int _error = ZorWBError::None;
    double _tolerance = 1e-14;
    double _bbPrecision = 1e-05;
    double _bbWidth = 1.0;
    double _trigonometricLower = -6.283185307179586;
    double _trigonometricUpper = 6.283185307179586;
    ZorWBBlackBoxAlgorithm _bbAlgorithm = ZorWBBlackBoxDefaultAlgorithm;
    int _maxNumberOfBBCalls = 0;
    int _numberOfBBAttempts = 1;
    int _bbCacheSize = 10000;
    int _maxEnumSize = 50;
    unsigned char _useUnimodalInterval = 0;
    unsigned char _minimizeNumberOfBBCalls = 0;
    unsigned char _useOldSymbolicTransformations = 0;
    unsigned int _level;
};

#endif
