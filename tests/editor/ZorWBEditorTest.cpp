#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "editor/ZorWBEditor.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "output/ZorWBEquationPrinter.h"
#include "parser/RandomModelText.h"
#include "parser/ZorWBParserResult.h"

namespace {

const int Failure = ZorWBParserResult::Failure;

// A factory filled from a text, as a host or wbx reads a file.
struct System {
    ZorWBFactory factory;
    explicit System(const char* text) {
        ZorWBEditor editor(factory);
        std::istringstream lines(text);
        std::string line;
        while (std::getline(lines, line))
            EXPECT_EQ(editor.Add(line.c_str()), 0) << line;
    }
};

std::string Text(const ZorWBEditor& editor) {
    return editor.GetText().GetStdString();
}

// Every message of the last failed edit as "code (l,c,l,c) text".
std::vector<std::string> Diagnostics(const ZorWBEditor& editor) {
    const ZorWBParserMessenger& messenger = editor.GetDiagnostics();
    std::vector<std::string> list;
    for (int i = 0; i < messenger.GetErrorNumber(); ++i) {
        int code = 0;
        ZorWBLocation location;
        bool placed = messenger.GetError(i, code, location) == 0;
        list.push_back(std::to_string(code) +
                       (placed ? " " + location.Write().GetStdString() : "") + " " +
                       messenger.GetMessage(i).GetStdString());
    }
    return list;
}

using Strings = std::vector<std::string>;

}  // namespace

TEST(ZorWBEditor, EditsChangeTheSystemAndUndoAndRedoRestoreEachStep) {
    System system("x + y = 3;\nx - y <= 1;");
    ZorWBEditor editor(system.factory);
    std::vector<std::string> texts{Text(editor)};
    EXPECT_EQ(texts[0], "x + y = 3;\nx - y <= 1;\n");
    ASSERT_EQ(editor.Add("z = 2 * x + 1 mm;"), 0);
    texts.push_back(Text(editor));
    EXPECT_EQ(texts.back(), "x + y = 3;\nx - y <= 1;\nz = 2 * x + 1;\n");
    ASSERT_EQ(editor.Replace(0, "x + y = 4 cm;"), 0);
    texts.push_back(Text(editor));
    EXPECT_EQ(texts.back(), "x + y = 40;\nx - y <= 1;\nz = 2 * x + 1;\n");
    ASSERT_EQ(editor.Delete(1), 0);
    texts.push_back(Text(editor));
    EXPECT_EQ(texts.back(), "x + y = 40;\nz = 2 * x + 1;\n");
    ASSERT_EQ(editor.Rename("x", "u"), 0);
    texts.push_back(Text(editor));
    EXPECT_EQ(texts.back(), "u + y = 40;\nz = 2 * u + 1;\n");
    const char* names[] = {"add 3", "replace 1", "delete 2", "rename x to u"};
    for (int step = 4; step > 0; --step) {
        EXPECT_EQ(editor.GetUndoName().GetStdString(), names[step - 1]);
        ASSERT_EQ(editor.Undo(), 0);
        EXPECT_EQ(Text(editor), texts[static_cast<std::size_t>(step - 1)]);
    }
    EXPECT_EQ(editor.Undo(), Failure);
    EXPECT_EQ(Diagnostics(editor), Strings{"-1 nothing to undo"});
    for (int step = 1; step <= 4; ++step) {
        EXPECT_EQ(editor.GetRedoName().GetStdString(), names[step - 1]);
        ASSERT_EQ(editor.Redo(), 0);
        EXPECT_EQ(Text(editor), texts[static_cast<std::size_t>(step)]);
    }
    EXPECT_EQ(editor.Redo(), Failure);
    ASSERT_EQ(editor.Undo(), 0);
    ASSERT_EQ(editor.Add("w = 1;"), 0);  // a new edit drops the steps undone
    EXPECT_FALSE(editor.CanRedo());
    EXPECT_EQ(editor.GetUndoName().GetStdString(), "add 3");
}

TEST(ZorWBEditor, ABadStatementChangesNothingAndSaysWhy) {
    System system("x + y = 3;");
    ZorWBEditor editor(system.factory);
    const int variables = system.factory.GetNbOfVariables();
    const std::pair<const char*, Strings> cases[] = {
        {"x = = 3;", {"-1 (1,4,1,5) syntax error, unexpected ="}},
        {"x = 3", {"1 (1,5,1,5) syntax error, unexpected end of input"}},
        {"x = 3 furlong;", {"22 (1,6,1,13) semantic error, unknown unit"}},
        {"a = 1; b = 2;", {"-1 expected one statement, the text holds 2"}},
        {"", {"-1 expected one statement, the text holds 0"}},
        {"sin(fresh, y) = 1;", {"-1 conversion error, the factory cannot build this"}},
        {"if (x > 0) then (y = 1) else (z = 2);", {"-1 expected one statement, the text holds 0"}},
    };
    for (const auto& [statement, diagnostics] : cases) {
        EXPECT_EQ(editor.Add(statement), Failure) << statement;
        EXPECT_EQ(Diagnostics(editor), diagnostics) << statement;
        EXPECT_EQ(editor.Replace(0, statement), Failure) << statement;
        EXPECT_EQ(Text(editor), "x + y = 3;\n");
        EXPECT_EQ(system.factory.GetNbOfVariables(), variables) << statement;
        EXPECT_FALSE(editor.CanUndo());
    }
    EXPECT_EQ(editor.Replace(1, "x = 1;"), Failure);
    EXPECT_EQ(Diagnostics(editor), Strings{"-1 no equation of index 1"});
    EXPECT_EQ(editor.Delete(-1), Failure);
    EXPECT_EQ(editor.Add(nullptr), Failure);
    EXPECT_EQ(Text(editor), "x + y = 3;\n");
}

TEST(ZorWBEditor, RenameTakesOnlyFreeVariableNames) {
    System system("x + y = 3;");
    ZorWBEditor editor(system.factory);
    const std::pair<std::pair<const char*, const char*>, const char*> cases[] = {
        {{"x", "y"}, "-1 'y' names a variable already"},
        {{"x", "x"}, "-1 'x' names a variable already"},
        {{"x", "2x"}, "-1 '2x' is not a variable name"},
        {{"x", "sin"}, "-1 'sin' is not a variable name"},
        {{"x", "Pi"}, "-1 'Pi' is not a variable name"},
        {{"x", "a b"}, "-1 'a b' is not a variable name"},
        {{"x", ""}, "-1 '' is not a variable name"},
        {{"x", "a;b"}, "-1 'a;b' is not a variable name"},
        {{"q", "r"}, "-1 unknown variable 'q'"},
    };
    for (const auto& [names, diagnostic] : cases) {
        EXPECT_EQ(editor.Rename(names.first, names.second), Failure);
        EXPECT_EQ(Diagnostics(editor), Strings{diagnostic});
    }
    EXPECT_EQ(editor.Rename(nullptr, "a"), Failure);
    EXPECT_EQ(editor.Rename("x", nullptr), Failure);
    EXPECT_EQ(editor.Rename("x", "x_2"), 0);
    EXPECT_EQ(Text(editor), "x_2 + y = 3;\n");
}

// Edits never recompute what they do not touch: the roots of the other
// equations keep their nodes and cached values, and undo brings back the
// very roots an edit took away, still evaluated.
TEST(ZorWBEditor, UntouchedEquationsKeepTheirNodesAndCachedValues) {
    System system("x + y = 3;\nsin(x) * y <= 1;\nexp(y) - x > 0;");
    ZorWBFactory& factory = system.factory;
    ZorWBEditor editor(factory);
    factory.GetVariable(ZorQelString("x"))->SetExprValue(ZorWBValue(0.5));
    factory.GetVariable(ZorQelString("y"))->SetExprValue(ZorWBValue(2));
    std::vector<const ZorWBExpression*> roots;
    for (int i = 0; i < editor.GetNbOfEquations(); ++i) {
        roots.push_back(editor.GetEquation(i)->GetRoot());
        roots.back()->GetValue();
    }
    // After each edit, the roots still in the system are evaluated again:
    // none of them costs an evaluation.
    auto untouched = [&](const char* what) {
        factory.ResetNbOfEvaluations();
        for (const ZorWBExpression* root : roots) {
            bool present = false;
            for (int i = 0; i < editor.GetNbOfEquations(); ++i)
                present = present || editor.GetEquation(i)->GetRoot() == root;
            if (present) root->GetValue();
        }
        EXPECT_EQ(factory.GetNbOfEvaluations(), 0) << what;
    };
    ASSERT_EQ(editor.Add("z = x * y;"), 0);
    untouched("add");
    ASSERT_EQ(editor.Replace(1, "x = 7;"), 0);
    EXPECT_EQ(editor.GetEquation(0)->GetRoot(), roots[0]);
    EXPECT_EQ(editor.GetEquation(2)->GetRoot(), roots[2]);
    untouched("replace");
    ASSERT_EQ(editor.Delete(0), 0);
    untouched("delete");
    ASSERT_EQ(editor.Rename("y", "w"), 0);
    untouched("rename");
    for (int step = 0; step < 4; ++step)
        ASSERT_EQ(editor.Undo(), 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(editor.GetEquation(i)->GetRoot(), roots[static_cast<std::size_t>(i)]);
    untouched("undo");
    for (int step = 0; step < 4; ++step)
        ASSERT_EQ(editor.Redo(), 0);
    untouched("redo");
    EXPECT_EQ(Text(editor), "x = 7;\nexp(w) - x > 0;\nz = x * w;\n");
}

// Random sessions against a list of statements kept by the test: after any
// sequence of adds, replaces, deletes, undos and redos the editor holds the
// system the list says, and its text reads back as that same system.
TEST(ZorWBEditor, RandomSessionsHoldTheSystemTheirStepsSay) {
    std::mt19937 random(5);
    RandomModelText statements(8);
    ZorWBFactory factory;
    ZorWBEditor editor(factory);
    std::vector<std::vector<std::string>> done{{}};  // the system after each step
    std::size_t current = 0;
    for (int round = 0; round < 400; ++round) {
        std::vector<std::string> system = done[current];
        int kind = std::uniform_int_distribution<int>(0, 5)(random);
        int size = static_cast<int>(system.size());
        int index = size ? std::uniform_int_distribution<int>(0, size - 1)(random) : 0;
        std::string statement = statements.Statement(2);
        int status = Failure;
        if (kind == 0 || (kind <= 2 && size == 0)) {
            status = editor.Add(statement.c_str());
            if (status == 0) system.push_back(editor.GetStatement(size).GetStdString());
        } else if (kind == 1) {
            status = editor.Replace(index, statement.c_str());
            if (status == 0)
                system[static_cast<std::size_t>(index)] = editor.GetStatement(index).GetStdString();
        } else if (kind == 2) {
            status = editor.Delete(index);
            if (status == 0) system.erase(system.begin() + index);
        } else if (kind == 3) {
            ASSERT_EQ(editor.Undo() == 0, current > 0);
            if (current > 0) --current;
        } else {
            ASSERT_EQ(editor.Redo() == 0, current + 1 < done.size());
            if (current + 1 < done.size()) ++current;
        }
        if (kind <= 2 && status == 0) {
            done.resize(++current);
            done.push_back(system);
        }
        std::string expected;
        for (const std::string& line : done[current])
            expected += line + "\n";
        ASSERT_EQ(Text(editor), expected) << "round " << round;
    }
    // The text reads back as the same system.
    System reread(Text(editor).c_str());
    EXPECT_EQ(ZorWBEquationPrinter::Print(reread.factory).GetStdString(), Text(editor));
}

TEST(ZorWBEditor, WritesTheSystemIntoAFile) {
    System system("x + y = 3;\nf(x) >= 2;");
    ZorWBEditor editor(system.factory);
    std::string path = testing::TempDir() + "editor_system.wbx";
    ASSERT_EQ(editor.Write(path.c_str()), 0);
    std::ifstream file(path);
    std::stringstream content;
    content << file.rdbuf();
    EXPECT_EQ(content.str(), "x + y = 3;\nf(x) >= 2;\n");
    EXPECT_EQ(editor.Write(testing::TempDir().c_str()), Failure);
    EXPECT_EQ(Diagnostics(editor), Strings{"-1 cannot write '" + testing::TempDir() + "'"});
    EXPECT_EQ(editor.Write(nullptr), Failure);
}
