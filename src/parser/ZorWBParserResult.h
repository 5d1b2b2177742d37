#ifndef ZORWB_PARSERRESULT_H
#define ZORWB_PARSERRESULT_H

// Result codes of the parser and model operations.
namespace ZorWBParserResult {
constexpr int Success = 0;
constexpr int NotApplicable = 1;  // also "not homogeneous"
constexpr int Failure = static_cast<int>(0x80004005u);
}  // namespace ZorWBParserResult

#endif
