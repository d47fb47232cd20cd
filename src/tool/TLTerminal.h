#pragma once

#include <string>
#include <string_view>

/// What tlctl may do on an output: colours and rewritten lines only on a terminal.
class TLTerminal {
 public:
  /// Looks at standard output (descriptor 1), NO_COLOR and TERM.
  TLTerminal();

  /// False when the output goes to a file or a pipe.
  bool isTerminal() const { return isTerminal_; }
  /// False without a terminal, too.
  bool hasColour() const { return hasColour_; }
  /// Columns as they are now; 80 when unknown.
  int width() const;
  /// Lines as they are now; 24 when unknown.
  int height() const;

  /// `text` in the colour of a status word; unchanged without colours.
  std::string statusColoured(std::string_view statusWord, std::string_view text) const;
  /// `text` in bold; unchanged without colours.
  std::string bold(std::string_view text) const;
  /// `text` in faint; unchanged without colours.
  std::string faint(std::string_view text) const;

 private:
  std::string wrapped(std::string_view code, std::string_view text) const;

  bool isTerminal_;
  bool hasColour_;
};

/// "1 h 02 min", "3 min 05 s", "4.2 s".
std::string durationText(double seconds);
/// Seconds since the epoch.
double secondsNow();
/// Local time of day, "14:03:27".
std::string clockText();
