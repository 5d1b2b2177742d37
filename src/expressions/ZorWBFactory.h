#ifndef ZORWB_FACTORY_H
#define ZORWB_FACTORY_H

#include <functional>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ZorWBxExport.h"
#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBExpressionType.h"
#include "expressions/ZorWBVariable.h"
#include "qel/ZorQelArray.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBValue.h"

class ZorWBBlackBoxOperator;
class ZorWBCalculusSession;
class ZorWBCompiledFunction;
class ZorWBDerivBlackBox;
class ZorWBEquation;
class ZorWBOperator;
class ZorWBRealProgram;
class ZorWBValueProgram;
template <class Program>
class ZorWBProgramCache;
class ZorWBSegmentFunction;
class ZorWBSegmentFunctionDataPt;
class ZorWBSegmentFunctionInterval;

using ZorQelListPZorWBExpression = ZorQelArray<ZorWBExpression*>;
using ZorQelListPZorWBEquation = ZorQelArray<ZorWBEquation*>;

// Makes, owns and destroys every node, variable, equation and black box of one
// problem, and holds the numeric environment in which its nodes evaluate.
//
// Creators return null, and allocate nothing, when an operand is null,
// belongs to another factory, or the number of operands does not fit the
// type. Creation never merges equal nodes: only the eleven predefined
// constants are shared (the integer constants 0, 1, 2, 3 and -1 map onto
// them). Each public creator has a protected twin taking a leading tag
// pointer: a non-null tag is given to the node instead of a fresh one
// (cloning and replay; the caller then calls UpdateGlobalTag).
class ZORWBX_API ZorWBFactory {
  public:
    explicit ZorWBFactory(unsigned int level);
    // Takes the level from the utility library's global parameters.
    ZorWBFactory();
    virtual ~ZorWBFactory();
    ZorWBFactory(const ZorWBFactory&) = delete;
    ZorWBFactory& operator=(const ZorWBFactory&) = delete;

    // ------------------------------------------------------------ environment
    unsigned int GetWBLevel() const { return _environment.GetWBLevel(); }
    const ZorWBEnvironment& GetEnvironment() const { return _environment; }
    ZorWBEnvironment& GetEnvironment() { return _environment; }
    void SetTolerance(double tolerance) { _environment.SetTolerance(tolerance); }
    void InitEnvForEval() const { _environment.InitForEval(); }

    // ------------------------------------------------------------ variables
    ZorWBVariable* CreateVariable() { return CreateVariable(nullptr); }
    ZorWBVariable* GetVariable(int i) const { return _variables.Get(i); }
    // The first variable whose GetName is name.
    ZorWBVariable* GetVariable(const ZorQelString& name) const;
    int GetNbOfVariables() const { return _variables.GetSize(); }
    // Null gives the first variable; otherwise the one after it, or null.
    ZorWBVariable* GetNextVariable(const ZorWBVariable* variable) const;
    void UpdateIsVariablesSorted(bool sorted) { _variablesSorted = sorted; }
    bool IsVariablesSorted() const { return _variablesSorted; }

    // ------------------------------------------------------------ constants
    // An integer-kind value goes through CreateIntegerConstant.
    ZorWBConstant* CreateConstant(const ZorWBValue& value) {
        return CreateConstant(nullptr, value);
    }
    // 0, 1, 2, 3 and -1 give the shared predefined constants.
    ZorWBConstant* CreateIntegerConstant(int value) {
        return CreateIntegerConstant(nullptr, value);
    }
    // Always a new node, even for 0.0.
    ZorWBConstant* CreateRealConstant(double value) { return CreateRealConstant(nullptr, value); }
    ZorWBConstant* CreateConstantPi() { return CreateConstantPi(nullptr); }
    ZorWBConstant* CreateConstantDTOR() { return CreateConstantDTOR(nullptr); }
    ZorWBConstant* CreateConstantRTOD() { return CreateConstantRTOD(nullptr); }
    // The shared predefined constant, made on first use; null outside 0..10.
    ZorWBConstant* GetConstant(ZorWBPredefinedConst index) { return GetConstant(index, true); }
    ZorWBConstant* GetPi() { return GetConstant(ZorWBConstPi); }
    ZorWBConstant* GetPiByTwo() { return GetConstant(ZorWBConstPiByTwo); }
    ZorWBConstant* GetDToR() { return GetConstant(ZorWBConstDToR); }
    ZorWBConstant* GetRToD() { return GetConstant(ZorWBConstRToD); }
    ZorWBConstant* GetIndefinite() { return GetConstant(ZorWBConstIndefinite); }
    ZorWBConstant* GetInvalid() { return GetConstant(ZorWBConstInvalid); }
    ZorWBConstant* GetMinusOne() { return GetConstant(ZorWBConstMinusOne); }
    ZorWBConstant* GetZero() { return GetConstant(ZorWBConstZero); }
    ZorWBConstant* GetOne() { return GetConstant(ZorWBConstOne); }
    ZorWBConstant* GetTwo() { return GetConstant(ZorWBConstTwo); }
    ZorWBConstant* GetThree() { return GetConstant(ZorWBConstThree); }
    // Whether constant is one of the predefined ones, and which (-1 if not).
    bool IsPredefinedConstant(const ZorWBConstant* constant, ZorWBPredefinedConst& index) const;
    // The value a predefined constant holds (undefined outside 0..10).
    static ZorWBValue GetPredefinedValue(ZorWBPredefinedConst index);

    // ------------------------------------------------------------ operators
    ZorWBExpression* CreateSum(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateSum(nullptr, a, b);
    }
    ZorWBExpression* CreateSum(int n, ZorWBExpression* const* operands) {
        return CreateSum(nullptr, n, operands);
    }
    ZorWBExpression* CreateProduct(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateProduct(nullptr, a, b);
    }
    ZorWBExpression* CreateProduct(int n, ZorWBExpression* const* operands) {
        return CreateProduct(nullptr, n, operands);
    }
    ZorWBExpression* CreateMin(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateMin(nullptr, a, b);
    }
    ZorWBExpression* CreateMin(int n, ZorWBExpression* const* operands) {
        return CreateMin(nullptr, n, operands);
    }
    ZorWBExpression* CreateMax(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateMax(nullptr, a, b);
    }
    ZorWBExpression* CreateMax(int n, ZorWBExpression* const* operands) {
        return CreateMax(nullptr, n, operands);
    }
    // Sum(a, Product(b, MinusOne)), never folded.
    ZorWBExpression* CreateDifference(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateDifference(nullptr, a, b);
    }
    // a - b with the sign folded into a leading constant of b where there is
    // one; a alone when b is null.
    ZorWBExpression* CreateSub(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateSub(nullptr, a, b);
    }
    ZorWBExpression* CreateQuotient(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateQuotient(nullptr, a, b);
    }
    ZorWBExpression* CreatePower(ZorWBExpression* a, ZorWBExpression* b) {
        return CreatePower(nullptr, a, b);
    }
    ZorWBExpression* CreatePower(ZorWBExpression* x, int n) { return CreatePower(nullptr, x, n); }
    ZorWBExpression* CreateRoot(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateRoot(nullptr, a, b);
    }
    ZorWBExpression* CreateRoot(ZorWBExpression* x, int n) { return CreateRoot(nullptr, x, n); }
    ZorWBExpression* CreateMod(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateMod(nullptr, a, b);
    }
    ZorWBExpression* CreateDim(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateDim(nullptr, a, b);
    }
    ZorWBExpression* CreateSign(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateSign(nullptr, a, b);
    }
    ZorWBExpression* CreateAtan2(ZorWBExpression* y, ZorWBExpression* x) {
        return CreateAtan2(nullptr, y, x);
    }

    ZorWBExpression* CreateAnd(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateAnd(nullptr, a, b);
    }
    ZorWBExpression* CreateOr(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateOr(nullptr, a, b);
    }
    ZorWBExpression* CreateEqual(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateEqual(nullptr, a, b);
    }
    ZorWBExpression* CreateNotEqual(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateNotEqual(nullptr, a, b);
    }
    ZorWBExpression* CreateLessEqual(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateLessEqual(nullptr, a, b);
    }
    ZorWBExpression* CreateImplication(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateImplication(nullptr, a, b);
    }
    // LessEqual(b, a).
    ZorWBExpression* CreateGreaterEqual(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateGreaterEqual(nullptr, a, b);
    }
    // Not(LessEqual(b, a)).
    ZorWBExpression* CreateLess(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateLess(nullptr, a, b);
    }
    // Not(LessEqual(a, b)).
    ZorWBExpression* CreateGreater(ZorWBExpression* a, ZorWBExpression* b) {
        return CreateGreater(nullptr, a, b);
    }
    ZorWBExpression* CreateNot(ZorWBExpression* x) { return CreateNot(nullptr, x); }

    ZorWBExpression* CreateSqrt(ZorWBExpression* x) { return CreateSqrt(nullptr, x); }
    ZorWBExpression* CreateLog(ZorWBExpression* x) { return CreateLog(nullptr, x); }
    ZorWBExpression* CreateLn(ZorWBExpression* x) { return CreateLn(nullptr, x); }
    ZorWBExpression* CreateExp(ZorWBExpression* x) { return CreateExp(nullptr, x); }
    ZorWBExpression* CreateAbs(ZorWBExpression* x) { return CreateAbs(nullptr, x); }
    ZorWBExpression* CreateCeil(ZorWBExpression* x) { return CreateCeil(nullptr, x); }
    ZorWBExpression* CreateFloor(ZorWBExpression* x) { return CreateFloor(nullptr, x); }
    ZorWBExpression* CreateRound(ZorWBExpression* x) { return CreateRound(nullptr, x); }
    ZorWBExpression* CreateTrunc(ZorWBExpression* x) { return CreateTrunc(nullptr, x); }
    ZorWBExpression* CreateUnaryMinus(ZorWBExpression* x) { return CreateUnaryMinus(nullptr, x); }
    ZorWBExpression* CreateSin(ZorWBExpression* x) { return CreateSin(nullptr, x); }
    ZorWBExpression* CreateCos(ZorWBExpression* x) { return CreateCos(nullptr, x); }
    ZorWBExpression* CreateTan(ZorWBExpression* x) { return CreateTan(nullptr, x); }
    ZorWBExpression* CreateAsin(ZorWBExpression* x) { return CreateAsin(nullptr, x); }
    ZorWBExpression* CreateAcos(ZorWBExpression* x) { return CreateAcos(nullptr, x); }
    ZorWBExpression* CreateAtan(ZorWBExpression* x) { return CreateAtan(nullptr, x); }
    ZorWBExpression* CreateSinh(ZorWBExpression* x) { return CreateSinh(nullptr, x); }
    ZorWBExpression* CreateCosh(ZorWBExpression* x) { return CreateCosh(nullptr, x); }
    ZorWBExpression* CreateTanh(ZorWBExpression* x) { return CreateTanh(nullptr, x); }
    ZorWBExpression* CreateASinh(ZorWBExpression* x) { return CreateASinh(nullptr, x); }
    ZorWBExpression* CreateACosh(ZorWBExpression* x) { return CreateACosh(nullptr, x); }
    ZorWBExpression* CreateATanh(ZorWBExpression* x) { return CreateATanh(nullptr, x); }
    ZorWBExpression* CreateStep(ZorWBExpression* x, double p1, double p2, double p3, double p4) {
        return CreateStep(nullptr, x, p1, p2, p3, p4);
    }
    ZorWBExpression* CreateIfThenElse(ZorWBExpression* condition, ZorWBExpression* thenPart,
                                      ZorWBExpression* elsePart) {
        return CreateIfThenElse(nullptr, condition, thenPart, elsePart);
    }
    ZorWBExpression* CreateIntegrateOperator(ZorWBExpression* integrand,
                                             ZorWBExpression* variable) {
        return CreateIntegrateOperator(nullptr, integrand, variable);
    }

    // Family creators: the type must belong to the family. A Step made by
    // CreateUnaryOperator starts with four zero parameters.
    ZorWBExpression* CreateUnaryOperator(ZorWBExpressionType type, ZorWBExpression* x) {
        return CreateUnaryOperator(nullptr, type, x);
    }
    ZorWBExpression* CreateTrigonometricOperator(ZorWBExpressionType type, ZorWBExpression* x) {
        return CreateTrigonometricOperator(nullptr, type, x);
    }
    // Not with one operand, the two-operand Boolean types with two.
    ZorWBExpression* CreateBooleanOperator(ZorWBExpressionType type, ZorWBExpression* x) {
        return CreateBooleanOperator(nullptr, type, x);
    }
    ZorWBExpression* CreateBooleanOperator(ZorWBExpressionType type, ZorWBExpression* a,
                                           ZorWBExpression* b) {
        return CreateBooleanOperator(nullptr, type, a, b);
    }
    ZorWBExpression* CreateBinaryOperator(ZorWBExpressionType type, ZorWBExpression* a,
                                          ZorWBExpression* b) {
        return CreateBinaryOperator(nullptr, type, a, b);
    }
    ZorWBExpression* CreateAlgebraicOperator(ZorWBExpressionType type, int n,
                                             ZorWBExpression* const* operands) {
        return CreateAlgebraicOperator(nullptr, type, n, operands);
    }

    // General dispatch by type and number of operands: n-ary types take two
    // or more, IfThenElse three, Step five (the operand and four constants
    // holding its parameters), Round one, or three from the level
    // ZorWBLevel::RoundWithThreeChildren on; every other type the number of
    // children of its table row. BlackBox nodes come from DeclareBlackBox.
    ZorWBExpression* CreateOperator(ZorWBExpressionType type, ZorWBExpression* a) {
        return CreateOperator(nullptr, type, a);
    }
    ZorWBExpression* CreateOperator(ZorWBExpressionType type, ZorWBExpression* a,
                                    ZorWBExpression* b) {
        return CreateOperator(nullptr, type, a, b);
    }
    ZorWBExpression* CreateOperator(ZorWBExpressionType type, ZorWBExpression* a,
                                    ZorWBExpression* b, ZorWBExpression* c) {
        return CreateOperator(nullptr, type, a, b, c);
    }
    ZorWBExpression* CreateOperator(ZorWBExpressionType type, int n,
                                    ZorWBExpression* const* operands) {
        return CreateOperator(nullptr, type, n, operands);
    }
    ZorWBExpression* CreateOperator(ZorWBExpressionType type,
                                    const ZorQelListPZorWBExpression& operands) {
        return CreateOperator(nullptr, type, operands);
    }
    // A copy of node with the same children: a constant by value, a Step
    // with its parameters, a black-box call on the same black box; a variable
    // or a predefined constant gives itself.
    ZorWBExpression* CreateOperator(const ZorWBExpression* node) {
        return CreateOperator(nullptr, node);
    }

    // Polynomial terms with real coefficients (new real constants), highest
    // power first:
    //   CreateLinearTerm(a, b, x)        Sum(Product(a, x), b)
    //   CreateQuadraticTerm(a, b, c, x)  Sum(Product(a, Power(x, 2)), Product(b, x), c)
    //   CreatePolynomialTerm(d, c, x)    the d + 1 coefficients c[0] .. c[d] of
    //     x^d .. x^0: degree 0 gives the constant c[0] alone, degree 1 and 2
    //     the shapes above, higher degrees Sum(Product(c[0], Power(x, d)), ...,
    //     Product(c[d-1], x), c[d]).
    // Zero coefficients are kept, so the shape depends only on the degree.
    ZorWBExpression* CreateLinearTerm(double a, double b, ZorWBVariable* x);
    ZorWBExpression* CreateQuadraticTerm(double a, double b, double c, ZorWBVariable* x);
    ZorWBExpression* CreatePolynomialTerm(int degree, const double* coefficients, ZorWBVariable* x);

    // ------------------------------------------------------------ calculus
    // The derivative of e by x: null when e or x is null, the shared Zero
    // when e is constant, else e->Differentiate(x). Each node of e is
    // differentiated once per call and the terms reuse e's own nodes, so the
    // result grows with the size of e's graph, however much it is shared.
    ZorWBExpression* CreateDerivative(ZorWBExpression* e, ZorWBVariable* x);
    // The derivative by xs[0], then xs[1], ... (each step as above): null
    // when e or xs is null or a step gives null; e itself when n < 1.
    ZorWBExpression* CreateDerivative(ZorWBExpression* e, int n, ZorWBVariable** xs);
    // An antiderivative of e by x from the integration table; done tells
    // whether one was found (else the result is the node Integrate(e, x)).
    ZorWBExpression* CreateAntiDerivative(ZorWBExpression* e, ZorWBVariable* x, bool& done);
    // Integrates by xs[0], then xs[1], ...; stops at the first step that
    // finds no antiderivative (done false) and gives that step's result.
    ZorWBExpression* CreateAntiDerivative(ZorWBExpression* e, int n, ZorWBVariable** xs,
                                          bool& done);
    // The definite integral of e by x from low to high (see
    // ZorWBExpression::Integrate with bounds).
    ZorWBExpression* CreateAntiDerivative(ZorWBExpression* e, ZorWBVariable* x, ZorWBValue& low,
                                          ZorWBValue& high, bool& done);

    // ------------------------------------------------------------ segment functions
    // The segment function sf applied to x, as nested IfThenElse nodes: the
    // piece of the interval that holds x, and Indefinite left of the first
    // point, right of the last one and in gaps between intervals. A point on
    // an inner boundary belongs to the earlier interval. Null when x is null
    // or an interval has an unknown interpolation type; the Indefinite
    // constant for an empty sf (which, from the level
    // ZorWBLevel::EmptySegmentNoBuffer on, also makes x unbuffered). Its
    // derivative is that of the piece inside an interval, and 0 where the
    // value is indefinite (the Indefinite constant is a constant).
    ZorWBExpression* CreateSegmentFunction(ZorWBExpression* x, const ZorWBSegmentFunction& sf);

    // Interpolating polynomials; every argument is an expression, and a null
    // one gives null. t runs over [0, 1]; x between the given abscissas.
    //   LinearInterpolation01(t, y0, y1)     y0 + (y1 - y0) t
    //   LinearInterpolation2P(x, x0, y0, x1, y1)
    //                                        the line through (x0, y0) and
    //                                        (x1, y1): LinearInterpolation01
    //                                        at t = (x - x0) / (x1 - x0)
    //   QuadraticInterpolation3P(x, x0, y0, x1, y1, x2, y2)
    //                                        the parabola through the three
    //                                        points, in Lagrange form
    //   CubicInterpolation01(t, y0, y1, d0, d1)
    //                                        the cubic Hermite polynomial with
    //                                        values y0, y1 and slopes d0, d1
    //                                        at t = 0 and 1, in Horner form
    //                                        y0 + t (d0 + t (c2 + t c3)) with
    //                                        c2 = 3 (y1 - y0) - 2 d0 - d1 and
    //                                        c3 = 2 (y0 - y1) + d0 + d1
    //   CubicInterpolation4P(x, x0, y0, x1, y1, x2, y2, x3, y3)
    //                                        the cubic through the four
    //                                        points, in Lagrange form
    //   CubicInterpolation2P2D(x, x0, y0, x1, y1, d0, d1)
    //                                        the cubic Hermite polynomial with
    //                                        values y0, y1 and slopes d0, d1 at
    //                                        x0, x1: CubicInterpolation01 at
    //                                        t = (x - x0) / (x1 - x0), with the
    //                                        slopes scaled by x1 - x0
    // Equal abscissas make the quotients divide by zero (evaluation then
    // reports a domain error).
    ZorWBExpression* CreateLinearInterpolation01(ZorWBExpression* t, ZorWBExpression* y0,
                                                 ZorWBExpression* y1);
    ZorWBExpression* CreateLinearInterpolation2P(ZorWBExpression* x, ZorWBExpression* x0,
                                                 ZorWBExpression* y0, ZorWBExpression* x1,
                                                 ZorWBExpression* y1);
    ZorWBExpression* CreateQuadraticInterpolation3P(ZorWBExpression* x, ZorWBExpression* x0,
                                                    ZorWBExpression* y0, ZorWBExpression* x1,
                                                    ZorWBExpression* y1, ZorWBExpression* x2,
                                                    ZorWBExpression* y2);
    ZorWBExpression* CreateCubicInterpolation01(ZorWBExpression* t, ZorWBExpression* y0,
                                                ZorWBExpression* y1, ZorWBExpression* d0,
                                                ZorWBExpression* d1);
    ZorWBExpression* CreateCubicInterpolation4P(ZorWBExpression* x, ZorWBExpression* x0,
                                                ZorWBExpression* y0, ZorWBExpression* x1,
                                                ZorWBExpression* y1, ZorWBExpression* x2,
                                                ZorWBExpression* y2, ZorWBExpression* x3,
                                                ZorWBExpression* y3);
    ZorWBExpression* CreateCubicInterpolation2P2D(ZorWBExpression* x, ZorWBExpression* x0,
                                                  ZorWBExpression* y0, ZorWBExpression* x1,
                                                  ZorWBExpression* y1, ZorWBExpression* d0,
                                                  ZorWBExpression* d1);

    // ------------------------------------------------------------ black boxes
    // A node calling bb with the n arguments (null when bb is null, or args
    // is null while n > 0). Its serial number is the count of black-box
    // nodes declared before it; a black box whose name the host did not set
    // is named after its first node ("BBx" and the serial number). From the
    // level ZorWBLevel::ResetBufferUpward on the node is not buffered. An
    // internal black box is destroyed with the factory.
    ZorWBExpression* DeclareBlackBox(ZorWBBlackBox* bb, int n, ZorWBExpression* const* args,
                                     bool internal) {
        return DeclareBlackBox(nullptr, bb, n, args, internal);
    }
    // The first registered black box called name.
    ZorWBBlackBox* GetBlackBoxByName(const ZorQelString& name) const;
    int GetNbOfBlackBoxes() const { return _blackBoxes.GetSize(); }
    ZorWBBlackBox* GetBlackBox(int i) const { return _blackBoxes.Get(i); }
    int GetBlackBoxCount() const { return _blackBoxCount; }
    // The first derivative black box registered (declared here, by the
    // library or the host) for primitive and the variable x; null if none.
    ZorWBDerivBlackBox* GetDerivBlackBox(const ZorWBBlackBox* primitive,
                                         const ZorWBVariable* x) const;
    // The derivative black boxes registered so far, in declaration order.
    int GetNbOfDerivBlackBoxes() const { return _derivBlackBoxes.GetSize(); }
    ZorWBDerivBlackBox* GetDerivBlackBox(int i) const { return _derivBlackBoxes.Get(i); }

    // ------------------------------------------------------------ tags
    int GetAndIncrementGlobalTag() { return _globalTag < MaxTag ? _globalTag++ : _globalTag; }
    // Raises the counter to tag + 1 when tag is not below it.
    void UpdateGlobalTag(int tag);
    int GetGlobalTag() const { return _globalTag; }
    // The first permanent node with this tag (temporary nodes are not searched).
    ZorWBExpression* GetExpressionFromTag(int tag) const;

    // ------------------------------------------------------------ node access
    int GetNbOfExpressions() const { return _expressions.GetSize(); }
    // Permanent nodes in creation order, variables and predefined constants included.
    ZorWBExpression* GetExpression(int i) const { return _expressions.Get(i); }
    const ZorQelListPZorWBExpression& GetExpressions() const { return _expressions; }
    int GetNbOfTemporaryExpressions() const { return _temporaryExpressions.GetSize(); }
    ZorWBExpression* GetTemporaryExpression(int i) const { return _temporaryExpressions.Get(i); }

    // ------------------------------------------------------------ properties
    // The index of the property called name, registered with defaultValue
    // when it is new (an existing entry keeps its default).
    int RegisterProperty(const ZorQelString& name, int defaultValue);
    // -1 for an index outside the registry.
    int GetDefaultPropertyValue(int i) const;
    int GetNbOfProperties() const { return static_cast<int>(_properties.size()); }
    // The name of property i (empty outside the registry).
    ZorQelString GetPropertyName(int i) const;
    // Index of the property "temporary".
    int GetTemporaryProperty() const { return _temporaryProperty; }

    // ------------------------------------------------------------ temporary storage
    // On: new nodes (but variables and predefined constants) are temporary.
    // Off: equation roots that reach temporary nodes get permanent copies of
    // them, then every temporary node is destroyed, the last made first.
    void UseTemporaryStorage(bool use);
    bool IsUsingTemporaryStorage() const { return _temporaryMode; }
    // Replaces the temporary nodes of the subgraph by permanent copies
    // (shared nodes are copied once) and returns the resulting root.
    ZorWBExpression* ReplaceTemporaryExpressions(ZorWBExpression* e);

    // ------------------------------------------------------------ removal
    // Destroys e (and the nodes only it uses, see RemoveUniqueChildren) when
    // it is a permanent node that nothing but exceptParent uses, then sets
    // e to null; exceptParent loses it as a child. The predefined constants
    // are shared and never removed, nor is the root of an equation. The
    // variables after a removed variable move down one index, so that an
    // index stays the variable's position (see ZorWBVariable::GetIdx).
    bool RemoveExpression(ZorWBExpression*& e, const ZorWBExpression* exceptParent = nullptr);

    // ------------------------------------------------------------ cloning
    // Copies source, a node of this or of another factory, into this factory;
    // shared nodes are copied once, so the copy has the shape of the source.
    // Constants are copied by value (predefined ones and the integers 0, 1,
    // 2, 3, -1 map onto this factory's shared constants). A source variable
    // of index i becomes variableMap[i] when that entry exists and is not
    // null; otherwise itself within one factory, or this factory's variable
    // of the same name, made (with the source's name, value, preferred value
    // and fixed state) when there is none. A black-box node stays shared
    // within one factory and is declared again on the same black box in
    // another one (which fails, giving null, for the library's internal
    // black boxes, since both factories would own them).
    ZorWBExpression* CloneExpression(const ZorWBExpression* source,
                                     ZorWBVariable* const* variableMap = nullptr, int mapSize = 0);
    // Copies the equations of source (all of them, or those whose ids are
    // listed) into this factory: the variables of source are matched by name
    // in index order first (made when missing, so a new factory gets the
    // same variables with the same indices), then each root is copied as by
    // CloneExpression and added with the same type, theoretical variables
    // (by the matched indices) and state, and the same name when it was not
    // the default "eq" + id. Returns the number of equations added, or -1
    // when one could not be copied (the ones added before stay).
    int CloneEquations(const ZorWBFactory& source, const ZorQelIntArray* equationIds = nullptr);

    // ------------------------------------------------------------ evaluation
    // With e: invalidates e and its ancestors. With null: invalidates every
    // permanent node and clears the buffer-used flag. Nothing happens while
    // no evaluation has run since the last factory-wide reset.
    void ResetBuffer(ZorWBExpression* e);
    void SetBufferUsed() { _bufferUsed = true; }
    bool IsBufferUsed() const { return _bufferUsed; }
    // How many times GetValue has computed a node (an unbuffered node at
    // each request) since the factory was made or the counter reset.
    long long GetNbOfEvaluations() const { return _nbOfEvaluations; }
    void ResetNbOfEvaluations() { _nbOfEvaluations = 0; }
    // Eval() of a root of some size compiles the root's subgraph at its
    // second call and then runs the compiled program (same results to the
    // bit); the programs are dropped whenever the structure of the graph
    // changes. Turning them off makes every Eval() walk the nodes.
    void EnableRealPrograms(bool enable);
    bool IsRealProgramsEnabled() const;
    // How many Eval() calls a compiled program answered.
    long long GetNbOfRealProgramRuns() const;
    // GetValue computes the most frequent kinds (real intervals combined
    // with integers, reals and intervals) without the general dispatch of
    // the value functions, and a root that keeps being evaluated in full
    // runs a compiled program of its node walk (ZorWBValueProgram): same
    // values, errors, recorded environments, buffers and counts. Off, every
    // node goes through its DoEval in the node walk.
    void EnableFastValues(bool enable);
    bool IsFastValuesEnabled() const { return _fastValues; }
    // How many GetValue calls a compiled program answered.
    long long GetNbOfValueProgramRuns() const;
    // A change below a node invalidates the buffered nodes above it; the walk
    // up stops where it meets a node whose ancestors are all invalid already
    // (see ZorWBInvalidation.cpp). Off, it always walks to the top: the same
    // buffers end invalid.
    void EnableResetShortcut(bool enable);
    bool IsResetShortcutEnabled() const { return _resetShortcut; }
    // How many times an upward reset has invalidated a node (the node it
    // starts from included) since the factory was made or the counter reset.
    long long GetNbOfBufferResets() const { return _nbOfBufferResets; }
    void ResetNbOfBufferResets() { _nbOfBufferResets = 0; }
    // A number that changes whenever a node loses, gains or swaps a child, a
    // Step parameter or a black box, is made buffered or unbuffered, or is
    // destroyed.
    unsigned long long GetStructureVersion() const { return _structureVersion; }

    // ------------------------------------------------------------ equations
    ZorWBEquation* AddEquation(ZorWBExpression* root, ZorWBEquationType type);
    // The root is CreateSub(left, right), or left when right is null.
    ZorWBEquation* AddEquation(ZorWBExpression* left, ZorWBEquationType type,
                               ZorWBExpression* right);
    // Destroys the equation (not its root) and sets the pointer to null.
    bool RemoveEquation(ZorWBEquation*& equation);
    ZorWBEquation* GetEquationById(int id) const;
    ZorWBEquation* GetEquationByName(const ZorQelString& name) const;
    int GetNbOfEquations() const { return _equations.GetSize(); }
    ZorWBEquation* GetEquation(int i) const { return _equations.Get(i); }
    ZorWBEquation* GetFirstEquation() { return _equations.Get(0); }
    const ZorWBEquation* GetFirstEquation() const { return _equations.Get(0); }
    ZorWBEquation* GetLastEquation() { return _equations.GetLast(); }
    const ZorWBEquation* GetLastEquation() const { return _equations.GetLast(); }
    ZorWBEquation* GetNextEquation(const ZorWBEquation* equation);
    const ZorWBEquation* GetNextEquation(const ZorWBEquation* equation) const;
    ZorWBEquation* GetPrevEquation(const ZorWBEquation* equation);
    const ZorWBEquation* GetPrevEquation(const ZorWBEquation* equation) const;

  protected:
    static constexpr int MaxTag = 0x7FFFFFFF;

    ZorWBVariable* CreateVariable(const int* tag);
    ZorWBConstant* CreateConstant(const int* tag, const ZorWBValue& value);
    ZorWBConstant* CreateIntegerConstant(const int* tag, int value);
    ZorWBConstant* CreateRealConstant(const int* tag, double value);
    ZorWBConstant* CreateConstantPi(const int* tag);
    ZorWBConstant* CreateConstantDTOR(const int* tag);
    ZorWBConstant* CreateConstantRTOD(const int* tag);
    ZorWBConstant* GetConstant(ZorWBPredefinedConst index, bool create);

    ZorWBExpression* CreateSum(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateSum(const int* tag, int n, ZorWBExpression* const* operands);
    ZorWBExpression* CreateProduct(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateProduct(const int* tag, int n, ZorWBExpression* const* operands);
    ZorWBExpression* CreateMin(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateMin(const int* tag, int n, ZorWBExpression* const* operands);
    ZorWBExpression* CreateMax(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateMax(const int* tag, int n, ZorWBExpression* const* operands);
    ZorWBExpression* CreateDifference(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateSub(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateQuotient(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreatePower(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreatePower(const int* tag, ZorWBExpression* x, int n);
    ZorWBExpression* CreateRoot(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateRoot(const int* tag, ZorWBExpression* x, int n);
    ZorWBExpression* CreateMod(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateDim(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateSign(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateAtan2(const int* tag, ZorWBExpression* y, ZorWBExpression* x);
    ZorWBExpression* CreateAnd(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateOr(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateEqual(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateNotEqual(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateLessEqual(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateImplication(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateGreaterEqual(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateLess(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateGreater(const int* tag, ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateNot(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateSqrt(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateLog(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateLn(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateExp(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateAbs(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateCeil(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateFloor(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateRound(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateTrunc(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateUnaryMinus(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateSin(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateCos(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateTan(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateAsin(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateAcos(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateAtan(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateSinh(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateCosh(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateTanh(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateASinh(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateACosh(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateATanh(const int* tag, ZorWBExpression* x);
    ZorWBExpression* CreateStep(const int* tag, ZorWBExpression* x, double p1, double p2, double p3,
                                double p4);
    ZorWBExpression* CreateIfThenElse(const int* tag, ZorWBExpression* condition,
                                      ZorWBExpression* thenPart, ZorWBExpression* elsePart);
    ZorWBExpression* CreateIntegrateOperator(const int* tag, ZorWBExpression* integrand,
                                             ZorWBExpression* variable);
    ZorWBExpression* CreateUnaryOperator(const int* tag, ZorWBExpressionType type,
                                         ZorWBExpression* x);
    ZorWBExpression* CreateTrigonometricOperator(const int* tag, ZorWBExpressionType type,
                                                 ZorWBExpression* x);
    ZorWBExpression* CreateBooleanOperator(const int* tag, ZorWBExpressionType type,
                                           ZorWBExpression* x);
    ZorWBExpression* CreateBooleanOperator(const int* tag, ZorWBExpressionType type,
                                           ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateBinaryOperator(const int* tag, ZorWBExpressionType type,
                                          ZorWBExpression* a, ZorWBExpression* b);
    ZorWBExpression* CreateAlgebraicOperator(const int* tag, ZorWBExpressionType type, int n,
                                             ZorWBExpression* const* operands);
    ZorWBExpression* CreateOperator(const int* tag, ZorWBExpressionType type, ZorWBExpression* a);
    ZorWBExpression* CreateOperator(const int* tag, ZorWBExpressionType type, ZorWBExpression* a,
                                    ZorWBExpression* b);
    ZorWBExpression* CreateOperator(const int* tag, ZorWBExpressionType type, ZorWBExpression* a,
                                    ZorWBExpression* b, ZorWBExpression* c);
    ZorWBExpression* CreateOperator(const int* tag, ZorWBExpressionType type, int n,
                                    ZorWBExpression* const* operands);
    ZorWBExpression* CreateOperator(const int* tag, ZorWBExpressionType type,
                                    const ZorQelListPZorWBExpression& operands);
    ZorWBExpression* CreateOperator(const int* tag, const ZorWBExpression* node);
    ZorWBExpression* DeclareBlackBox(const int* tag, ZorWBBlackBox* bb, int n,
                                     ZorWBExpression* const* args, bool internal);

    // The shapes of one interval of a segment function from start to end
    // (constants made from the points' values; a - b written
    // Sum(a, Product(b, MinusOne))):
    //   _X          t = (x - xa) / (xb - xa)
    //   _Y(u)       ya + (yb - ya) u (the first argument is u)
    //   _Linear     Y(t)
    //   _Quadratic  Y(t^2)
    //   _Cubic      Y(3 t^2 - 2 t^3)
    //   _QuarterSin Y(sin(t Pi/2))
    //   _QuarterCos Y(1 - cos(t Pi/2))
    ZorWBExpression* CreateSegmentFunction_X(ZorWBExpression* x,
                                             const ZorWBSegmentFunctionDataPt& start,
                                             const ZorWBSegmentFunctionDataPt& end);
    ZorWBExpression* CreateSegmentFunction_Y(ZorWBExpression* u,
                                             const ZorWBSegmentFunctionDataPt& start,
                                             const ZorWBSegmentFunctionDataPt& end);
    ZorWBExpression* CreateSegmentFunction_Linear(ZorWBExpression* x,
                                                  const ZorWBSegmentFunctionDataPt& start,
                                                  const ZorWBSegmentFunctionDataPt& end);
    ZorWBExpression* CreateSegmentFunction_Quadratic(ZorWBExpression* x,
                                                     const ZorWBSegmentFunctionDataPt& start,
                                                     const ZorWBSegmentFunctionDataPt& end);
    ZorWBExpression* CreateSegmentFunction_Cubic(ZorWBExpression* x,
                                                 const ZorWBSegmentFunctionDataPt& start,
                                                 const ZorWBSegmentFunctionDataPt& end);
    ZorWBExpression* CreateSegmentFunction_QuarterSin(ZorWBExpression* x,
                                                      const ZorWBSegmentFunctionDataPt& start,
                                                      const ZorWBSegmentFunctionDataPt& end);
    ZorWBExpression* CreateSegmentFunction_QuarterCos(ZorWBExpression* x,
                                                      const ZorWBSegmentFunctionDataPt& start,
                                                      const ZorWBSegmentFunctionDataPt& end);

  private:
    friend class ZorWBExpression;
    friend class ZorWBOperator;
    friend class ZorWBEquation;
    friend class ZorWBGraphWalk;
    friend class ZorWBCalculusScope;
    friend class ZorWBBlackBoxOperator;
    friend class ZorWBRealProgram;
    friend class ZorWBValueProgram;
    friend class ZorWBCalculusSession;
    friend class ZorWBIntegrateOperator;
    friend class ZorWBCompiledFunction;

    // One step of the explicit stack of an evaluation.
    struct EvalFrame {
        const ZorWBExpression* node;
        int position;  // how many children positions are handled
    };
    // The result of a node in a running real-number evaluation.
    struct RealSlot {
        const ZorWBExpression* node;
        double real;
    };
    // A running real-number evaluation (see ZorWBEvaluation.cpp): nodes
    // computed in it are marked with the index of the slot that holds
    // their result, with RealSlotMark set. While it runs inside a value
    // evaluation it saves the marks it overwrites, and gives them back at
    // its end, as a value evaluation running inside it does.
    class RealWalk;
    static constexpr unsigned int RealSlotMark = 0x80000000u;
    static constexpr std::size_t NoRealWalk = ~std::size_t(0);

    void Initialize();
    // Makes the node of type with n children, the class chosen by the
    // type's family; null when the operands do not fit.
    ZorWBExpression* MakeOperator(const int* tag, ZorWBExpressionType type, int n,
                                  ZorWBExpression* const* operands);
    // A node like model (type, parameters, black box) over new children.
    ZorWBExpression* MakeLike(const int* tag, const ZorWBExpression* model, int n,
                              ZorWBExpression* const* children);
    ZorWBExpression* MakeFamilyOperator(const int* tag, ZorWBNodeFamily family,
                                        ZorWBExpressionType type, int n,
                                        ZorWBExpression* const* operands);
    ZorWBExpression* MakeNegated(const int* tag, ZorWBExpression* constant);
    // The node family creators: type must belong to family.
    ZorWBExpression* MakeInFamily(const int* tag, ZorWBNodeFamily family, ZorWBExpressionType type,
                                  int n, ZorWBExpression* const* operands);
    bool OperandsBelongHere(int n, ZorWBExpression* const* operands) const;
    int TakeTag(const int* tag) { return tag ? *tag : GetAndIncrementGlobalTag(); }
    // Adds a new node to the expressions, or to the temporary ones in
    // temporary mode; destroys it and gives null when memory is short.
    ZorWBExpression* Register(ZorWBExpression* node, bool alwaysPermanent = false);
    // Marks the roots of the equations, which no removal takes, with a new
    // walk number, and returns it.
    unsigned int MarkEquationRoots();
    // Whether a descendant goes with its last parent: not variables,
    // predefined constants, temporary nodes or equation roots (marked
    // with the walk number roots).
    bool IsRemovableDescendant(const ZorWBExpression* node, unsigned int roots) const;
    // The removable descendants of node that only node's subgraph uses, each
    // once (roots as above; nothing else may walk in between).
    std::vector<ZorWBExpression*> UniqueDescendants(const ZorWBExpression* node,
                                                    unsigned int roots) const;
    // Destroys the nodes (each listed once, in the order given): they leave
    // the factory's lists, and the nodes that survive them lose them as
    // children (buffers above invalidated) and as parents. False, changing
    // nothing, when memory is short.
    bool DestroyNodes(const std::vector<ZorWBExpression*>& nodes);
    // Takes the variable at index out of the variable list and renumbers
    // those after it, in the variables and in the equations' theoretical
    // lists.
    void ForgetVariable(int index);
    // The piece of one interval of a segment function; null for an unknown
    // interpolation type.
    ZorWBExpression* CreateSegmentPiece(ZorWBExpression* x,
                                        const ZorWBSegmentFunctionInterval& interval);
    // Destroys the internal black boxes (the library's derivative black
    // boxes among them) and forgets every registered one.
    void BlackBoxDeletion();
    // Adds a new black box to the registered ones (and a derivative black
    // box to those too); false when memory is short.
    bool RegisterBlackBox(ZorWBBlackBox* bb);
    // A call, with the arguments of call, of the derivative of call's black
    // box by x: the first one registered for them, else a new internal one.
    ZorWBExpression* DeclareDerivativeCall(ZorWBBlackBoxOperator* call, ZorWBVariable* x);
    // A call, with the arguments of call, of the partial derivative of
    // call's black box by its argument i (made once per black box and
    // argument, internal).
    ZorWBExpression* DeclarePartialDerivativeCall(ZorWBBlackBoxOperator* call, int i);
    // Declares an internal derivative black box made for call; destroys it
    // when that fails and it was not registered.
    ZorWBExpression* DeclareOwnDerivative(ZorWBDerivBlackBox* derivative,
                                          ZorWBBlackBoxOperator* call);
    // The variable of this factory that stands for a variable of another
    // factory: the one with its name, made (with its name, value, preferred
    // value, fixed state and divided flag) when there is none.
    ZorWBVariable* MatchVariable(ZorWBVariable* source);
    // CloneExpression with the variable mapping given as a function.
    ZorWBExpression* CloneWith(const ZorWBExpression* source,
                               const std::function<ZorWBVariable*(ZorWBVariable*)>& mapVariable);
    // ReplaceTemporaryExpressions with the copies made so far.
    ZorWBExpression* ReplaceTemporaryExpressions(
        ZorWBExpression* e, std::unordered_map<const ZorWBExpression*, ZorWBExpression*>& copies);

    // Whether upward resets stop at marked nodes: enabled, and no walk ran
    // short of memory.
    bool UsesResetShortcut() const;
    // Walk numbers (see ZorWBGraphWalk): a fresh one per walk, below
    // RealSlotMark.
    unsigned int NewWalk();
    // The slot of node's result in the innermost running real-number
    // evaluation; null when it has not computed node.
    RealSlot* RunningRealSlot(const ZorWBExpression* node);
    // Marks node as computed in the innermost running real evaluation, with
    // real as its result until changed; false, leaving it unmarked, when
    // memory is short.
    bool StartRealSlot(const ZorWBExpression* node, double real);
    // Sets a node's walk mark, saving the one it had when a walk of the
    // other kind (value or real) is running beneath, for RestoreMarks.
    void Mark(const ZorWBExpression* node, unsigned int mark, bool save);
    // Gives back the marks saved since the count was saved.
    void RestoreMarks(std::size_t saved);
    void NoteStructureChange() { ++_structureVersion; }
    // The compiled programs of Eval() and GetValue(), made at first use
    // (null when memory is short or they are turned off).
    ZorWBProgramCache<ZorWBRealProgram>* RealPrograms();
    ZorWBProgramCache<ZorWBValueProgram>* ValuePrograms();

    ZorQelListPZorWBExpression _expressions;
    ZorQelArray<ZorWBVariable*> _variables;
    ZorQelListPZorWBEquation _equations;
    int _nextEquationId = 0;
    ZorQelListPZorWBBlackBox _blackBoxes;
    int _blackBoxCount = 0;
    ZorQelArray<ZorWBDerivBlackBox*> _derivBlackBoxes;
    // The differentiation or integration running, if any.
    ZorWBCalculusSession* _calculusSession = nullptr;
    ZorQelListPZorWBExpression _temporaryExpressions;
    bool _temporaryMode = false;
    int _temporaryProperty = 0;
    ZorWBConstant* _predefined[ZorWBNbOfPredefinedConstants] = {};
    bool _variablesSorted = false;
    bool _bufferUsed = false;
    bool _destroying = false;
    ZorWBEnvironment _environment;
    struct PropertyEntry {
        ZorQelString name;
        int defaultValue;
    };
    std::vector<PropertyEntry> _properties;
    int _globalTag = 0;

    // Evaluation state.
    std::vector<EvalFrame> _evalStack;
    std::vector<ZorWBExpression*> _walkStack;
    unsigned int _walkCounter = 0;
    unsigned int _valueWalk = 0;  // walk number of the running value evaluation
    // The slots of the running real evaluations, the first of the innermost.
    std::vector<RealSlot> _realSlots;
    std::size_t _realBase = NoRealWalk;
    bool _realCrossing = false;  // the innermost one runs beneath a value evaluation
    // Marks that walks running inside walks of the other kind overwrote.
    std::vector<std::pair<const ZorWBExpression*, unsigned int>> _savedMarks;
    int _evaluationDepth = 0;
    long long _nbOfEvaluations = 0;
    long long _nbOfBufferResets = 0;
    bool _resetShortcut = true;
    bool _resetShortcutBroken = false;
    unsigned long long _structureVersion = 0;
    // Integrate nodes alive (permanent and temporary).
    int _nbOfIntegrateNodes = 0;
    std::unique_ptr<ZorWBProgramCache<ZorWBRealProgram>> _realPrograms;
    std::unique_ptr<ZorWBProgramCache<ZorWBValueProgram>> _valuePrograms;
    bool _realProgramsEnabled = true;
    bool _fastValues = true;
    // The compiled functions alive, told when the factory goes.
    std::vector<ZorWBCompiledFunction*> _compiledFunctions;
};

#endif
