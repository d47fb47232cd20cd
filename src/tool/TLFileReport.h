#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "textio/TLReadObserver.h"

/// What a checker has to say of one place of a file.
struct TLFileRemark {
  bool isFault = false;    ///< the reading failed here; otherwise a warning
  std::size_t line = 0;    ///< from 1; 0 when it is about the whole file
  std::size_t column = 0;  ///< from 1, where the caret goes
  std::string text;        ///< the line as it stands
  std::string message;     ///< What is wrong, or probably meant.
};

/// Watches the reading of one file and collects faults and lines that were passed over in silence,
/// with the word that was probably meant.
class TLFileReport : public TLReadObserver {
 public:
  /// `fileName` stands in front of each remark.
  explicit TLFileReport(std::string fileName);

  void passedOver(const TLTextSource& source, std::string_view line, std::string_view record,
                  std::span<const std::string_view> words) override;
  void skippedBlock(const TLTextSource& source, std::string_view line,
                    std::string_view record) override;
  void badLine(const TLTextSource& source, std::string_view line,
               std::string_view expected) override;

  /// Some fields are written and never read: where a line begins as one of `written` does, which
  /// is what the record's own writer makes, it's no mistake that it is passed over.
  void allowWritten(std::string_view written);

  /// A fault at the last line that was taken: where a reading has stopped without a word to the
  /// observer. `console` is what it printed; its last line is the reason.
  void stoppedAt(const TLTextSource& source, std::string_view console);

  /// A remark on the file as a whole.
  void add(bool isFault, std::string message);

  /// True when one of the remarks is a fault.
  bool hasFault() const;
  /// In the order of the reading.
  const std::vector<TLFileRemark>& remarks() const { return remarks_; }
  /// As it was given.
  const std::string& fileName() const { return fileName_; }

  /// "file:line:column: fault: message", the line, a caret; one block a remark.
  std::string text() const;

 private:
  void addAt(const TLTextSource& source, std::string_view part, bool isFault, std::string message);

  std::string fileName_;
  std::vector<TLFileRemark> remarks_;
  std::set<std::string> allowed_;  ///< how their lines begin, in small letters
};

/// The word of `known` nearest to `word` (case ignored) when it is near enough to be meant by it;
/// empty otherwise.
std::string_view nearestWord(std::string_view word, std::span<const std::string_view> known);
