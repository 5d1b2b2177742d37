#include <gtest/gtest.h>

#include <string>

#include "WbxRunner.h"
#include "WbxTestFiles.h"

TEST(WbxIntegrate, AntiDerivativesAndDefiniteIntegrals) {
    std::string model = ScratchFile("integrands.wbx",
                                    "1 / (x^2 + 1);\n"
                                    "y * x^2;\n"
                                    "1 / (x^4 + 1);\n"
                                    "1 / (x - 0.5);\n");
    WbxRun run = RunWbxArguments({"integrate", model, "--wrt", "x"});
    EXPECT_EQ(run.status, 1);  // 1 / (x^4 + 1) has no closed form here
    EXPECT_EQ(run.out,
              "atan(x); /* int eq0 d x */\n"
              "y * (x ^ 3 / 3); /* int eq1 d x */\n"
              "/* int eq2 d x: none */\n"
              "ln(abs(x - 0.5)); /* int eq3 d x */\n");
    EXPECT_EQ(run.err, "");
    // The printed antiderivatives are a model again.
    std::string printed =
        ScratchFile("antiderivatives.wbx", run.out.substr(0, run.out.find("/* int eq2")));
    EXPECT_EQ(RunWbxArguments({"check", printed}).status, 0);

    WbxRun definite =
        RunWbxArguments({"integrate", model, "--wrt", "x", "--from", "0", "--to", "1"});
    EXPECT_EQ(definite.status, 1);
    EXPECT_EQ(definite.out,
              "0.7853981633974483; /* int eq0 d x from 0 to 1 */\n"
              "y * (1 ^ 3 / 3) - y * (0 ^ 3 / 3); /* int eq1 d x from 0 to 1 */\n"
              "/* int eq2 d x from 0 to 1: none */\n"
              "/* int eq3 d x from 0 to 1: none */\n");  // the pole at 0.5
}

TEST(WbxIntegrate, CommandLineErrors) {
    std::string model = ScratchFile("integrand.wbx", "1 / (x^2 + 1);\n");
    struct Case {
        std::vector<std::string> arguments;
        std::string err;
    } cases[] = {
        {{"integrate", model}, "wbx: integrate needs FILE --wrt NAME\n"},
        {{"integrate", model, "--wrt"}, "wbx: --wrt needs a NAME\n"},
        {{"integrate", model, "--wrt", "q"}, "wbx: unknown variable 'q'\n"},
        {{"integrate", model, "--wrt", "x", "--from", "0"}, "wbx: --from and --to go together\n"},
        {{"integrate", model, "--wrt", "x", "--to"}, "wbx: --to needs a VALUE\n"},
        {{"integrate", model, "--wrt", "x", "--from", "0", "--to", "[1, 2]"},
         "wbx: bad bound '[1, 2]'\n"},
        {{"integrate", model, "--wrt", "x", "--from", "nan", "--to", "1"},
         "wbx: bad bound 'nan'\n"},
        {{"integrate", model, "--wrt", "x", "--bogus"}, "wbx: unexpected argument '--bogus'\n"},
    };
    for (const Case& c : cases) {
        WbxRun run = RunWbxArguments(c.arguments);
        EXPECT_EQ(run.status, 2) << c.err;
        EXPECT_EQ(run.err, c.err);
    }
}

TEST(WbxRoots, IsolatingIntervalsAndValues) {
    std::string model = ScratchFile("polynomials.wbx",
                                    "x^3 - 2*x = 0;\n"
                                    "(x - 1)^3 * (x^2 + 1) = 0;\n"
                                    "x^2 + 1;\n"
                                    "sin(x);\n"
                                    "x - x;\n");
    WbxRun run = RunWbxArguments({"roots", model, "--wrt", "x"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out,
              "eq0: [-2, -1] -1.4142135623730951\n"
              "eq0: [0, 0] 0.0\n"
              "eq0: [1, 2] 1.4142135623730951\n"
              "eq1: [0, 4] 1.0 (multiplicity 3)\n"
              "eq2: no real root\n"
              "/* eq3: not a polynomial in x */\n"
              "/* eq4: zero polynomial */\n");
    EXPECT_EQ(run.err, "");
    std::string clean = ScratchFile("clean.wbx", "x^2 = 2;\n");
    EXPECT_EQ(RunWbxArguments({"roots", clean, "--wrt", "x"}).status, 0);
    WbxRun unknown = RunWbxArguments({"roots", clean, "--wrt", "y"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "wbx: unknown variable 'y'\n");
}

TEST(WbxRoots, TooLargeAPolynomialGivesItsMessage) {
    std::string model = ScratchFile("huge.wbx", "(x + 1)^5000;\n");
    WbxRun run = RunWbxArguments({"roots", model, "--wrt", "x"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "/* eq0: not a polynomial in x */\n");
}

TEST(Wbx, HelpListsThePolynomialCommands) {
    WbxRun help = RunWbx({"--help"});
    for (const char* usage :
         {"wbx integrate FILE --wrt NAME [--from A --to B]", "wbx roots FILE --wrt NAME"})
        EXPECT_NE(help.out.find(usage), std::string::npos) << usage;
}
