// The reader of the benchmark format: a scanner into tokens with their
// places, then a recursive descent over the three sections that builds the
// factory's nodes as it goes. An error ends the reading with one message at
// the token where it was found.

#include "parser/ZorWBBenchmarkReader.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <exception>
#include <string>
#include <unordered_map>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "parser/ZorWBLocation.h"
#include "parser/ZorWBNumberText.h"
#include "parser/ZorWBParserMessenger.h"
#include "parser/ZorWBParserResult.h"

namespace {

constexpr int MaxNesting = 1000;
constexpr int MaxVectorSize = 1 << 20;

struct Token {
    enum Kind { End, Name, Number, Symbol } kind = End;
    std::string text;
    int line = 1;
    int column = 0;
};

struct ReadError : std::exception {
    ReadError(const Token& token, std::string text) : at(token), message(std::move(text)) {}
    Token at;
    std::string message;
};

std::string Lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

bool IsNameStart(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}
bool IsNamePart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

class Scanner {
  public:
    explicit Scanner(const char* text) : _p(text ? text : "") {}

    std::vector<Token> Scan() {
        std::vector<Token> tokens;
        for (;;) {
            SkipBlanksAndComments();
            Token token;
            token.line = _line;
            token.column = _column;
            if (!*_p) {
                tokens.push_back(token);
                return tokens;
            }
            if (IsNameStart(*_p)) {
                token.kind = Token::Name;
                while (IsNamePart(*_p))
                    token.text += Take();
            } else if (IsDigit(*_p) || (*_p == '.' && IsDigit(_p[1]))) {
                token.kind = Token::Number;
                ScanNumber(token.text);
            } else {
                token.kind = Token::Symbol;
                token.text = Take();
                if ((token.text == "<" || token.text == ">" || token.text == "=") && *_p == '=')
                    token.text += Take();
                if (std::strchr("()[],;=<>+-*/^:", token.text[0]) == nullptr)
                    throw ReadError(token, "unexpected character '" + token.text + "'");
            }
            tokens.push_back(token);
        }
    }

    // The first word of a text, after blanks and comments.
    std::string FirstWord() {
        SkipBlanksAndComments();
        std::string word;
        while (IsNamePart(*_p))
            word += Take();
        return word;
    }

  private:
    char Take() {
        char c = *_p++;
        if (c == '\n') {
            ++_line;
            _column = 0;
        } else {
            ++_column;
        }
        return c;
    }

    void SkipBlanksAndComments() {
        for (;;) {
            if (*_p && std::isspace(static_cast<unsigned char>(*_p))) {
                Take();
            } else if (_p[0] == '/' && _p[1] == '/') {
                while (*_p && *_p != '\n')
                    Take();
            } else if (_p[0] == '/' && _p[1] == '*') {
                Take();
                Take();
                while (*_p && !(_p[0] == '*' && _p[1] == '/'))
                    Take();
                if (*_p) {
                    Take();
                    Take();
                }
            } else {
                return;
            }
        }
    }

    void ScanNumber(std::string& text) {
        while (IsDigit(*_p))
            text += Take();
        if (*_p == '.') {
            text += Take();
            while (IsDigit(*_p))
                text += Take();
        }
        // The characters after an exponent mark are read only when there is
        // one (the mark is not the end of the text).
        if (*_p != 'e' && *_p != 'E') return;
        const bool sign = _p[1] == '+' || _p[1] == '-';
        if (IsDigit(_p[1]) || (sign && IsDigit(_p[2]))) {
            text += Take();
            if (sign) text += Take();
            while (IsDigit(*_p))
                text += Take();
        }
    }

    const char* _p;
    int _line = 1;
    int _column = 0;
};

// A read expression: its node, and whether it is a number (no variable).
struct Term {
    ZorWBExpression* node = nullptr;
    bool constant = false;
    bool literal = false;  // written as a number
};

class Reader {
  public:
    Reader(const char* text, ZorWBFactory& factory) : _tokens(Scanner(text).Scan()), _f(factory) {}

    void Read() {
        if (IsKeyword("constants")) {
            Next();
            while (!IsKeyword("variables"))
                Constant();
        }
        ExpectKeyword("variables");
        while (!IsKeyword("constraints"))
            Declaration();
        Next();
        while (!IsKeyword("end"))
            Constraint();
        Next();
        if (Peek().text == ";") Next();
        if (Peek().kind != Token::End) throw ReadError(Peek(), "text after 'end'");
    }

  private:
    struct Vector {
        int first;  // index of the factory variable of element 1
        int size;
    };

    const Token& Peek() const { return _tokens[_position]; }
    const Token& Next() {
        const Token& token = _tokens[_position];
        if (token.kind != Token::End) ++_position;
        return token;
    }
    bool IsKeyword(const char* keyword) const {
        if (Peek().kind == Token::End)
            throw ReadError(Peek(), std::string("the text ends before '") + keyword + "'");
        return Peek().kind == Token::Name && Lower(Peek().text) == keyword;
    }
    void ExpectKeyword(const char* keyword) {
        if (!IsKeyword(keyword)) throw ReadError(Peek(), std::string("expected '") + keyword + "'");
        Next();
    }
    void Expect(const char* symbol) {
        if (Peek().text != symbol || Peek().kind != Token::Symbol)
            throw ReadError(Peek(), std::string("expected '") + symbol + "'");
        Next();
    }
    void RefuseUnsupported() {
        const std::string word = Lower(Peek().text);
        if (word == "for") throw ReadError(Peek(), "loops ('for') are not supported");
        if (word == "function") throw ReadError(Peek(), "function definitions are not supported");
    }
    const Token& ExpectName() {
        RefuseUnsupported();
        if (Peek().kind != Token::Name) throw ReadError(Peek(), "expected a name");
        return Next();
    }
    void CheckNew(const Token& name) {
        if (_constants.count(name.text) || _scalars.count(name.text) || _vectors.count(name.text))
            throw ReadError(name, "'" + name.text + "' is declared twice");
    }

    // name = expression;
    void Constant() {
        const Token& name = ExpectName();
        CheckNew(name);
        Expect("=");
        Term value = Expression();
        if (!value.constant)
            throw ReadError(name, "the constant '" + name.text + "' uses a variable");
        _constants[name.text] = value;
        Expect(";");
    }

    // The value of a constant expression that must be an integer.
    int IntegerOf(const Term& term, const Token& at, const char* what) {
        const double value = term.constant ? term.node->Eval() : NAN;
        if (!(std::fabs(value) <= 2147483646.0) || value != std::floor(value))
            throw ReadError(at, std::string(what) + " must be a constant integer");
        return static_cast<int>(value);
    }

    // A bound: a written number as it reads, a computed one two units outward.
    double BoundOf(const Term& term, const Token& at, bool low) {
        if (!term.constant) throw ReadError(at, "a bound must be constant");
        double value = term.node->Eval();
        if (std::isnan(value)) throw ReadError(at, "a bound is not a number");
        if (!term.literal) {
            for (int i = 0; i < 2; ++i)
                value = std::nextafter(value, low ? -INFINITY : INFINITY);
        }
        return value;
    }

    // name [ '[' size ']' ] [ in [low, high] ] followed by ',' or ';'.
    void Declaration() {
        const Token& name = ExpectName();
        CheckNew(name);
        int size = 0;
        if (Peek().text == "[") {
            const Token& open = Next();
            size = IntegerOf(Expression(), open, "a vector size");
            Expect("]");
            if (Peek().text == "[") throw ReadError(Peek(), "matrices are not supported");
            if (size < 1 || size > MaxVectorSize)
                throw ReadError(open,
                                "a vector size must lie in 1.." + std::to_string(MaxVectorSize));
        }
        ZorWBValue domain;
        if (Peek().kind == Token::Name && Lower(Peek().text) == "in") {
            Next();
            const Token& open = Peek();
            Expect("[");
            const double low = BoundOf(Expression(), open, true);
            Expect(",");
            const double high = BoundOf(Expression(), open, false);
            Expect("]");
            if (!(low <= high)) throw ReadError(open, "the domain of '" + name.text + "' is empty");
            domain = ZorWBValue(ZorWBRealInterval{low, high});
        }
        if (size == 0) {
            _scalars[name.text] = NewVariable(name.text, domain);
        } else {
            _vectors[name.text] = {_f.GetNbOfVariables(), size};
            for (int i = 1; i <= size; ++i)
                NewVariable(name.text + "(" + std::to_string(i) + ")", domain);
        }
        if (Peek().text != "," && Peek().text != ";")
            throw ReadError(Peek(), "expected ',' or ';'");
        Next();
    }

    ZorWBVariable* NewVariable(const std::string& name, const ZorWBValue& domain) {
        ZorWBVariable* variable = _f.CreateVariable();
        if (!variable) throw ReadError(Peek(), "memory exhausted");
        variable->SetName(name.c_str());
        if (domain.GetType() != ZorWBUndefinedType) variable->SetExprValue(domain);
        return variable;
    }

    // left REL right;
    void Constraint() {
        RefuseUnsupported();
        const Token& start = Peek();
        Term left = Expression();
        const Token& relation = Next();
        static const std::pair<const char*, ZorWBEquationType> relations[] = {
            {"=", ZorWBEqualZero},         {"==", ZorWBEqualZero}, {"<=", ZorWBLessEqualZero},
            {">=", ZorWBGreaterEqualZero}, {"<", ZorWBLessZero},   {">", ZorWBGreaterZero}};
        ZorWBEquationType type = ZorWBEquationUnset;
        for (const auto& [symbol, value] : relations) {
            if (relation.kind == Token::Symbol && relation.text == symbol) type = value;
        }
        if (type == ZorWBEquationUnset)
            throw ReadError(relation, "expected a relation (=, <=, >=, <, >)");
        Term right = Expression();
        const bool zero = right.literal && right.node->Eval() == 0.0;
        if (!_f.AddEquation(left.node, type, zero ? nullptr : right.node))
            throw ReadError(start, "memory exhausted");
        Expect(";");
    }

    Term Make(ZorWBExpression* node, bool constant, const Token& at) {
        if (!node) throw ReadError(at, "memory exhausted");
        return {node, constant, false};
    }

    Term Expression() {
        Term sum = Product();
        while (Peek().text == "+" || Peek().text == "-") {
            const Token& op = Next();
            Term term = Product();
            sum = Make(op.text == "+" ? _f.CreateSum(sum.node, term.node)
                                      : _f.CreateSub(sum.node, term.node),
                       sum.constant && term.constant, op);
        }
        return sum;
    }

    Term Product() {
        Term product = Unary();
        while (Peek().text == "*" || Peek().text == "/") {
            const Token& op = Next();
            Term factor = Unary();
            product = Make(op.text == "*" ? _f.CreateProduct(product.node, factor.node)
                                          : _f.CreateQuotient(product.node, factor.node),
                           product.constant && factor.constant, op);
        }
        return product;
    }

    // Signs bind less tightly than powers: -x^2 is -(x^2).
    Term Unary() {
        if (Peek().text != "-" && Peek().text != "+") return Power();
        const Token& sign = Next();
        Nest nest(*this, sign);
        Term operand = Unary();
        if (sign.text == "+") return operand;
        if (operand.literal) {
            Term negated = Make(_f.CreateRealConstant(-operand.node->Eval()), true, sign);
            if (operand.node->GetExprValue().GetType() == ZorWBIntegerType)
                negated.node =
                    _f.CreateIntegerConstant(-operand.node->GetExprValue().GetAsInteger());
            negated.literal = true;
            return negated;
        }
        return Make(_f.CreateUnaryMinus(operand.node), operand.constant, sign);
    }

    Term Power() {
        Term base = Primary();
        if (Peek().text != "^") return base;
        const Token& op = Next();
        Nest nest(*this, op);
        Term exponent = Unary();
        const double value = exponent.constant ? exponent.node->Eval() : NAN;
        if (value == std::floor(value) && std::fabs(value) <= 1e6)
            return Make(_f.CreatePower(base.node, static_cast<int>(value)), base.constant, op);
        return Make(_f.CreatePower(base.node, exponent.node), base.constant && exponent.constant,
                    op);
    }

    Term Primary() {
        const Token& token = Peek();
        if (token.kind == Token::Number) {
            Next();
            const double value = ZorWBReadDecimal(token.text.c_str(), token.text.size());
            const bool integer =
                token.text.find_first_of(".eE") == std::string::npos && value <= 2147483646.0;
            Term term = Make(integer ? _f.CreateIntegerConstant(static_cast<int>(value))
                                     : _f.CreateRealConstant(value),
                             true, token);
            term.literal = true;
            return term;
        }
        if (token.text == "(") {
            Next();
            Nest nest(*this, token);
            Term inner = Expression();
            Expect(")");
            inner.literal = false;
            return inner;
        }
        if (token.kind != Token::Name) throw ReadError(token, "expected an expression");
        Next();
        if (Peek().text == "(" || Peek().text == "[") return Indexed(token);
        return Named(token);
    }

    Term Named(const Token& name) {
        auto constant = _constants.find(name.text);
        if (constant != _constants.end()) {
            Term term = constant->second;
            term.literal = false;
            return term;
        }
        auto scalar = _scalars.find(name.text);
        if (scalar != _scalars.end()) return {scalar->second, false, false};
        if (Lower(name.text) == "pi") return Make(_f.GetPi(), true, name);
        if (_vectors.count(name.text))
            throw ReadError(name, "the vector '" + name.text + "' is used without an index");
        throw ReadError(name, "unknown name '" + name.text + "'");
    }

    // v(i), v[i], or a function call.
    Term Indexed(const Token& name) {
        auto vector = _vectors.find(name.text);
        const Token& open = Next();
        Nest nest(*this, open);
        if (vector == _vectors.end()) {
            if (open.text == "[") throw ReadError(name, "'" + name.text + "' is not a vector");
            return Call(name);
        }
        const bool fromOne = open.text == "(";
        const int index = IntegerOf(Expression(), open, "an index");
        Expect(fromOne ? ")" : "]");
        const int position = fromOne ? index - 1 : index;
        if (position < 0 || position >= vector->second.size)
            throw ReadError(
                open, "index " + std::to_string(index) + " out of the vector '" + name.text + "'");
        return {_f.GetVariable(vector->second.first + position), false, false};
    }

    Term Call(const Token& name) {
        std::vector<Term> arguments{Expression()};
        while (Peek().text == ",") {
            Next();
            arguments.push_back(Expression());
        }
        Expect(")");
        const std::string function = Lower(name.text);
        bool constant = true;
        for (const Term& argument : arguments)
            constant = constant && argument.constant;
        static const std::unordered_map<std::string, ZorWBExpressionType> unary = {
            {"sqrt", ZorWBExpressionType::Sqrt},   {"exp", ZorWBExpressionType::Exp},
            {"ln", ZorWBExpressionType::Ln},       {"log", ZorWBExpressionType::Ln},
            {"sin", ZorWBExpressionType::Sin},     {"cos", ZorWBExpressionType::Cos},
            {"tan", ZorWBExpressionType::Tan},     {"asin", ZorWBExpressionType::Asin},
            {"acos", ZorWBExpressionType::Acos},   {"atan", ZorWBExpressionType::Atan},
            {"sinh", ZorWBExpressionType::Sinh},   {"cosh", ZorWBExpressionType::Cosh},
            {"tanh", ZorWBExpressionType::Tanh},   {"asinh", ZorWBExpressionType::Asinh},
            {"acosh", ZorWBExpressionType::Acosh}, {"atanh", ZorWBExpressionType::Atanh},
            {"abs", ZorWBExpressionType::Abs}};
        static const std::unordered_map<std::string, ZorWBExpressionType> binary = {
            {"atan2", ZorWBExpressionType::Atan2},
            {"min", ZorWBExpressionType::Min},
            {"max", ZorWBExpressionType::Max}};
        ZorWBExpression* node = nullptr;
        if (function == "sqr" && arguments.size() == 1) {
            node = _f.CreatePower(arguments[0].node, 2);
        } else if (unary.count(function) && arguments.size() == 1) {
            node = _f.CreateOperator(unary.at(function), arguments[0].node);
        } else if (binary.count(function) && arguments.size() == 2) {
            node = _f.CreateOperator(binary.at(function), arguments[0].node, arguments[1].node);
        } else if (unary.count(function) || binary.count(function) || function == "sqr") {
            throw ReadError(name, "wrong number of arguments for '" + name.text + "'");
        } else {
            throw ReadError(name, "unknown function '" + name.text + "'");
        }
        return Make(node, constant, name);
    }

    // Counts the nesting of brackets, calls and signs while it lives.
    class Nest {
      public:
        Nest(Reader& reader, const Token& at) : _reader(reader) {
            if (++_reader._depth > MaxNesting)
                throw ReadError(at,
                                "nesting deeper than " + std::to_string(MaxNesting) + " levels");
        }
        ~Nest() { --_reader._depth; }
        Nest(const Nest&) = delete;
        Nest& operator=(const Nest&) = delete;

      private:
        Reader& _reader;
    };

    std::vector<Token> _tokens;
    std::size_t _position = 0;
    ZorWBFactory& _f;
    std::unordered_map<std::string, Term> _constants;
    std::unordered_map<std::string, ZorWBVariable*> _scalars;
    std::unordered_map<std::string, Vector> _vectors;
    int _depth = 0;
};

}  // namespace

bool ZorWBBenchmarkReader::IsBenchmarkText(const char* text) {
    const std::string word = Lower(Scanner(text).FirstWord());
    return word == "constants" || word == "variables";
}

int ZorWBBenchmarkReader::Read(const char* text, ZorWBFactory& factory,
                               ZorWBParserMessenger& messenger) {
    try {
        Reader(text, factory).Read();
        return ZorWBParserResult::Success;
    } catch (const ReadError& error) {
        ZorWBLocation location(error.at.line, error.at.column, error.at.line,
                               error.at.column + static_cast<int>(error.at.text.size()));
        messenger.ReportError(&location, error.message.c_str());
    } catch (const std::exception&) {
        messenger.ReportError(nullptr, "memory exhausted");
    }
    return ZorWBParserResult::Failure;
}
