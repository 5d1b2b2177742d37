#ifndef TESTS_PARSER_RANDOM_MODEL_TEXT_H
#define TESTS_PARSER_RANDOM_MODEL_TEXT_H

#include <charconv>
#include <cmath>
#include <random>
#include <string>

// Writes random statements of the equation language that use every form of
// the grammar, with blanks between all tokens.
class RandomModelText {
  public:
    explicit RandomModelText(unsigned seed) : _random(seed) {}

    std::string Statement(int depth) {
        switch (Pick(6)) {
            case 0:
                return Expression(depth) + " ;";
            case 1: {
                std::string left = Expression(depth);
                // Equal left-hand sides in both branches make an equation.
                return "if ( " + Conditions(depth) + " ) then ( " + left + " " + Relation() + " " +
                       Expression(depth) + " ) else ( " + left + " " + Relation() + " " +
                       Expression(depth) + " ) ;";
            }
            default:
                return Expression(depth) + " " + Relation() + " " + Expression(depth) + " ;";
        }
    }

    std::string Expression(int depth) {
        if (depth <= 0) return Leaf();
        switch (Pick(14)) {
            case 0:
                return Expression(depth - 1) + " + " + Expression(depth - 1);
            case 1:
                return Expression(depth - 1) + " - " + Expression(depth - 1);
            case 2:
                return Expression(depth - 1) + " * " + Expression(depth - 1);
            case 3:
                return Expression(depth - 1) + " / " + Expression(depth - 1);
            case 4:
                return Expression(depth - 1) + " ^ " + Expression(depth - 1);
            case 5:
                return "- " + Expression(depth - 1);
            case 6:
                return "( " + Expression(depth - 1) + " )" + Suffix();
            case 7:
                return Function() + " ( " + Arguments(depth - 1, 1 + Pick(3)) + " )";
            case 8:
                return Pick(3) ? BlackBox() + " ( " + Arguments(depth - 1, 1 + Pick(3)) + " )"
                               : BlackBox() + " ()";
            case 9:
                return "if ( " + Conditions(depth - 1) + " ) then ( " + Expression(depth - 1) +
                       " ) else ( " + Expression(depth - 1) + " )";
            default:
                return Leaf();
        }
    }

  private:
    int Pick(int count) { return static_cast<int>(_random() % static_cast<unsigned>(count)); }

    template <std::size_t N>
    const char* OneOf(const char* const (&list)[N]) {
        return list[Pick(static_cast<int>(N))];
    }

    std::string Leaf() {
        static const char* const names[] = {"x", "y", "alpha", "b_2", "%p", "Z"};
        switch (Pick(9)) {
            case 0:
                return Integer();
            case 1:
                return Real();
            case 2:
                return "Pi";
            case 3:
                return Integer() + " " + Unit();
            case 4:
                return Real() + " " + Unit();
            case 5:  // 2147483648 would be a real, which cannot precede Pi
                return std::to_string(_random() % 1000) + " Pi" + (Pick(2) ? " " + Unit() : "");
            case 6:
                return "Pi " + Unit();
            default:
                return OneOf(names);
        }
    }

    std::string Unit() {
        static const char* const units[] = {"mm", "km",    "deg",     "rad", "'",
                                            "\"", "in_ft", "%_angle", "foo"};
        return OneOf(units);
    }

    // Nothing, a unit, Pi or Pi and a unit after a bracketed expression.
    std::string Suffix() {
        switch (Pick(5)) {
            case 0:
                return " " + Unit();
            case 1:
                return " Pi";
            case 2:
                return " Pi " + Unit();
            default:
                return "";
        }
    }

    std::string Integer() {
        static const char* const edges[] = {"0", "2147483647", "2147483648", "007"};
        return Pick(5) ? std::to_string(_random() % 1000) : OneOf(edges);
    }

    std::string Real() {
        double value = std::ldexp(static_cast<double>(_random() % 1000000 + 1), Pick(120) - 60);
        char buffer[64];
        auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
        std::string text(buffer, end);
        // A real written without point or exponent would read as an integer.
        if (text.find_first_of(".e") == std::string::npos) text += ".5";
        return text;
    }

    std::string Function() {
        static const char* const functions[] = {"sin", "atan2", "min", "max", "sqrt", "int", "Int"};
        return OneOf(functions);
    }

    std::string BlackBox() {
        static const char* const blackBoxes[] = {"f", "g", "h2"};
        return OneOf(blackBoxes);
    }

    std::string Arguments(int depth, int count) {
        std::string text = Expression(depth);
        for (int i = 1; i < count; ++i)
            text += " , " + Expression(depth);
        return text;
    }

    std::string Relation() {
        static const char* const relations[] = {"=", "!=", "<", "<=", ">", ">="};
        return OneOf(relations);
    }

    std::string Condition(int depth) {
        static const char* const comparisons[] = {"==", "!=", "<", "<=", ">", ">="};
        std::string comparison =
            Expression(depth) + " " + OneOf(comparisons) + " " + Expression(depth);
        switch (Pick(3)) {
            case 0:
                return "( " + comparison + " )";
            case 1:
                return "! ( " + comparison + " )";
            default:
                return comparison;
        }
    }

    std::string Conditions(int depth) {
        std::string text = Condition(depth);
        for (int i = Pick(3); i > 0; --i)
            text += (Pick(2) ? " and " : " or ") + Condition(depth);
        return text;
    }

    std::mt19937 _random;
};

#endif
