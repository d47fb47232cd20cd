#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "textio/RWCString.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// Line and token reading of every text file of the suite. A reader is a local object of one
/// record's read: it skips white space and comment lines on the stream, and takes one line apart
/// into its key and typed values.
///
/// A token is a run of characters other than blank, tab and new line. A comment line begins with
/// "#", "!" or "*". Integers and reals convert as `atoi` and `atof` do, so that a word that is no
/// number gives 0; only a missing token is a fault.
///
/// The typed operations take the whole line, whose first token is the key (never looked at), and
/// answer 1 or 0. On 0 they have printed their complaint on the console, filled the error strings
/// and cleared `good`. Results are stored only on success, except by the array forms, which store
/// each value as it is read.
class TLTokenReader {
 public:
  /// A reader of lines only.
  TLTokenReader() = default;
  /// A reader on `stream`, which it doesn't own.
  explicit TLTokenReader(TLTextSource& stream) : stream_(&stream) {}

  /// @name Error state, kept for whoever wants to look after a failure.
  /// @{

  /// "line0: wrong format".
  const RWCString& errorLine() const { return errorLine_; }
  /// "read: " and the line.
  const RWCString& errorRead() const { return errorRead_; }
  /// "expected: ", the key, and what should follow it.
  const RWCString& errorExpected() const { return errorExpected_; }
  std::int32_t lineNumber() const { return lineNumber_; }  ///< Always 0: lines aren't counted.
  /// 1 until an operation has failed.
  std::int32_t good() const { return good_; }
  /// @}

  /// @name Stream operations. Without a stream they do nothing.
  /// @{

  /// As TLTextSource::skipWhitespace.
  void skipWhitespace();
  /// True when the next character is "#", "!" or "*".
  int isCommentStart() const;
  /// Drops one comment line, if one starts here.
  void skipCommentLine();
  /// Moves to the first character of the next line that is neither blank nor comment.
  void skipComments();
  /// As skipCommentLine, keeping what follows the comment character, its new line included.
  void readComment(RWCString& text);
  /// As skipComments, appending each comment to `list`.
  void readComments(std::vector<RWCString>& list);
  /// Skips the block that `line` ("TL_BEGIN name") opens: up to and with the first line whose
  /// second token is that name, whatever its first. 0 when `line` lacks a token or the text ends
  /// in the search, else 1.
  int skipToBlockEnd(std::string_view line);
  /// @}

  /// @name Key tests.
  /// @{

  /// Takes the tokens of `line` for all isFastToken() that follow.
  void initFastToken(std::string_view line);
  /// True when one of them is `word`, case ignored. Before any line: false, with a complaint.
  bool isFastToken(std::string_view word) const;
  /// True when a token of `line` is `word`, case ignored.
  static bool lineHasToken(std::string_view line, std::string_view word);
  /// Tokens of a line, its key included.
  static int countTokens(std::string_view line);
  /// Same number of tokens, and each exactly equal.
  static bool sameTokens(std::string_view lineA, std::string_view lineB);
  /// @}

  /// @name Typed line operations.
  /// @{
  int readToggle(std::string_view line, std::int32_t& value);   ///< 1 for "yes" and "YES" only.
  int readInteger(std::string_view line, std::int32_t& value);  ///< The word behind the key.
  int readFlag(std::string_view line, bool& value);             ///< An integer; any but 0 is true.
  int readIntegers2(std::string_view line, std::int32_t& a, std::int32_t& b);  ///< Two words.
  /// Three words.
  int readIntegers3(std::string_view line, std::int32_t& a, std::int32_t& b, std::int32_t& c);
  /// As readIntegers2, with another complaint.
  int readIntegerPair(std::string_view line, std::int32_t& a, std::int32_t& b);
  int readIntegerReal(std::string_view line, std::int32_t& a, double& b);  ///< Two words.
  /// Appends as many reals as the first value says. A missing one empties the list and answers 0
  /// without a word.
  int readCountedReals(std::string_view line, std::vector<double>& list);
  /// Four words, in single precision.
  int readFloats4(std::string_view line, float& a, float& b, float& c, float& d);
  /// Three words.
  int readIntegers2Real(std::string_view line, std::int32_t& a, std::int32_t& b, double& c);
  /// All behind the key, outer blanks and tabs cut; may be empty.
  int readStrings(std::string_view line, RWCString& text);
  int readString(std::string_view line, RWCString& text);  ///< The one word behind the key.
  /// `count` values between single quotes into `results` (resized to it as they come).
  int readQuotedStrings(std::vector<RWCString>& results, int count, std::string_view line);
  /// Two words.
  int readStringInteger(std::string_view line, RWCString& text, std::int32_t& value);
  /// The last token is the value; all between make up the name, one blank apart.
  int readNameInteger(std::string_view line, RWCString& name, std::int32_t& value);
  /// As readNameInteger, with a real.
  int readNameReal(std::string_view line, RWCString& name, double& value);
  /// The value, then all further tokens as the name, one blank apart.
  int readIntegerName(std::string_view line, std::int32_t& value, RWCString& name);
  /// One word, then all further tokens, one blank apart.
  int readStringName(std::string_view line, RWCString& text, RWCString& name);
  /// Two words.
  int readStringPair(std::string_view line, RWCString& a, RWCString& b);
  /// The last three tokens are the values, all between make up the name.
  int readNameVector(std::string_view line, RWCString& name, double& x, double& y, double& z);
  /// As readNameVector, with integers.
  int readNameIndices(std::string_view line, RWCString& name, std::int32_t& i, std::int32_t& j,
                      std::int32_t& k);
  int readReal(std::string_view line, double& value);  ///< The word behind the key.
  /// As readReal, rounded to single precision.
  int readFloat(std::string_view line, float& value);
  /// `count` words into `values`, which must have room for them.
  int readIntegerArray(std::string_view line, int count, std::int32_t* values);
  /// As readIntegerArray, with reals.
  int readRealArray(std::string_view line, int count, double* values);
  /// As readIntegerArray, in single precision.
  int readFloatArray(std::string_view line, int count, float* values);
  int readVector3(std::string_view line, double& x, double& y, double& z);  ///< Three words.
  /// Six words: three of `a`, then three of `b`.
  int readVector3Pair(std::string_view line, double (&a)[3], double (&b)[3]);
  /// @}

  /// `key`, then "yes" when `value` is exactly 1 and "no" otherwise, and a new line.
  static void writeToggle(TLTextSink& stream, std::int32_t value, std::string_view key);

 private:
  struct Form;  // console label and expected text of an operation
  template <std::size_t N>
  bool take(std::string_view line, const Form& form, std::string_view (&values)[N]);
  template <class T, class Convert>
  int readArray(std::string_view line, int count, T* values, const Form& form, Convert convert);
  int fail(const Form& form, std::string_view line);
  int failQuoted(std::string_view line, const char* what, int number, RWCString expected);
  void recordError(std::string_view line, RWCString expected);

  RWCString errorLine_;
  RWCString errorRead_;
  RWCString errorExpected_;
  std::int32_t lineNumber_ = 0;
  std::int32_t good_ = 1;
  TLTextSource* stream_ = nullptr;
  std::vector<RWCString> fastTokens_;
  bool fastTokensReady_ = false;
};
