#ifndef ZORWBX_H
#define ZORWBX_H

// Umbrella header of the ZorWBx library and its utility library.

#include "ZorWBxExport.h"

#include "qel/ZorQelArray.h"
#include "qel/ZorQelExpressionTerm.h"
#include "qel/ZorQelGetEnv.h"
#include "qel/ZorQelGlobalParameters.h"
#include "qel/ZorQelOperator.h"
#include "qel/ZorQelStorage.h"
#include "qel/ZorQelStream.h"
#include "qel/ZorQelString.h"

#include "values/ZorWBEnum.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBFraction.h"
#include "values/ZorWBInterval.h"
#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBLevel.h"
#include "values/ZorWBValue.h"
#include "values/ZorWBValueFunctions.h"

#include "polynomial/ZorWBMultiPolynomial.h"
#include "polynomial/ZorWBPolynomial.h"
#include "polynomial/ZorWBPolynomialFactors.h"
#include "polynomial/ZorWBPolynomialGcd.h"
#include "polynomial/ZorWBRational.h"
#include "polynomial/ZorWBRationalIntegration.h"
#include "polynomial/ZorWBRealRoots.h"

#include "expressions/ZorWBBlackBox.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBConstant.h"
#include "expressions/ZorWBDerivBlackBox.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBExpressionType.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBLanguageText.h"
#include "expressions/ZorWBOperator.h"
#include "expressions/ZorWBSegmentFunction.h"
#include "expressions/ZorWBVariable.h"

#include "parser/ZorWBBenchmarkReader.h"
#include "parser/ZorWBLocation.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBModelCheck.h"
#include "parser/ZorWBModelHomogeneity.h"
#include "parser/ZorWBModelPrinter.h"
#include "parser/ZorWBNode.h"
#include "parser/ZorWBNumberText.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"
#include "parser/ZorWBParserResult.h"
#include "parser/ZorWBUnit.h"
#include "parser/ZorWBVisitor.h"

#include "output/WBx2JSON.h"
#include "output/ZorWBEquationMLPrinter.h"
#include "output/ZorWBEquationPrinter.h"
#include "output/ZorWBEquations.h"
#include "output/ZorWBFactoryGraph.h"
#include "output/ZorWBHtmlReport.h"
#include "output/ZorWBJsonTree.h"
#include "output/ZorWBModelGraph.h"
#include "output/ZorWBPlotSampler.h"
#include "output/ZorWBSvgPlot.h"
#include "output/ZorWBValueText.h"

#include "editor/ZorWBEditor.h"

#include "symbolic/ZorWBLinearForm.h"
#include "symbolic/ZorWBSimplifier.h"
#include "symbolic/ZorWBSymbolicReplay.h"
#include "symbolic/ZorWBSymbolicTransformations.h"
#include "symbolic/ZorWBSymbolicTransformationsNew.h"
#include "symbolic/ZorWBSymbolicTransformationsOld.h"

#include "solver/ZorWBPropagator.h"
#include "solver/ZorWBSolver.h"

#include "debug/ZorWBDebug.h"

#endif
