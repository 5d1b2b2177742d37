// The README's example, built against the installed tree.
#include <ZorWBx.h>

#include <cstdio>

int main() {
    ZorWBFactory factory;
    ZorWBVariable* x = factory.CreateVariable();
    x->SetName("x");
    ZorWBExpression* root = factory.CreateSum(factory.CreatePower(x, 2), factory.CreateIntegerConstant(-4));
    factory.AddEquation(root, ZorWBEqualZero);
    x->SetExprValue(ZorWBValue(ZorWBRealInterval{1.9, 2.1}));
    const ZorWBValue& value = root->GetValue();
    ZorWBExpression* slope = factory.CreateDerivative(root, x);
    x->SetExprValue(ZorWBValue(3));
    std::printf("root = %s, slope at 3 = %g, sum = %d\n", value.Str().GetString(), slope->Eval(),
                2 + 3);
    std::printf("slope: %s\n", ZorWBEquationPrinter::Print(slope).GetString());
    return 0;
}
