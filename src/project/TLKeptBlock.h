#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// What a value line of a kept block must hold.
enum class TLKeptValue {
  integer,  ///< one word
  real,     ///< one word
  word,     ///< one word
  text      ///< the rest of the line, which may be empty
};

/// One value of a kept block that the system looks at: the keys under which it may stand (the
/// first is the one written for a new line), its kind, and the literal of a new line.
struct TLKeptField {
  std::span<const std::string_view> keys;  ///< Compared without regard to case.
  TLKeptValue kind;                        ///< What read() checks the value for.
  std::string_view literal;                ///< Written ahead of the value, blanks included.
};

/// The form of one kind of kept block. All views are literals.
struct TLKeptForm {
  /// Names whose "tl_end" line closes the block; the first is the usual one.
  std::span<const std::string_view> names;
  /// Printed when a version line holds no number.
  std::string_view failureText;
  /// What stands in the version line on writing; empty: what was read.
  std::string_view writtenVersion;
  /// Body of a record made here instead of read.
  std::string_view newBody;
  std::span<const TLKeptField> fields = {};  ///< Values that can be asked for and set; by index.
};

/// A block of a run file that this system carries without taking it apart: a model of the solvers
/// that has no effect on the running of a task. The body - all lines between the opening and the
/// closing one, comments and blank lines included - is kept as it stands and written back byte for
/// byte. Only two things are looked at: the version line, whose number becomes the current one on
/// writing, and the value lines that the form names, of which a setter replaces the value and
/// nothing else.
///
/// Only lines of the block itself count, not those of blocks within it, and only their first token
/// is taken for a key.
class TLKeptBlock : public RefCounted {
 public:
  /// Reads from the line behind the opening one up to and with the closing one; the end of the
  /// text closes as well. 1, or 0 with a line on the console: a version line without a number, a
  /// named value that is missing. On 0 the record is as it was.
  int read(TLTextSource& source);

  /// Writes the body. Opening and closing line are the holder's.
  void write(TLTextSink& sink) const { sink << body_; }

  /// The version that was read; for a new record the one that is written.
  double version() const { return version_; }
  /// All lines between the markers, each with its new line.
  const std::string& body() const { return body_; }
  /// The constant that the record was made with.
  const TLKeptForm& form() const { return *form_; }

 protected:
  /// `form` must outlive the record (a constant).
  explicit TLKeptBlock(const TLKeptForm& form);

  /// @name Values of the block's own lines. `field` counts in the form's table.
  /// @{

  /// True when a line of the block itself has one of the field's keys.
  bool hasField(std::size_t field) const;
  /// All behind the key, outer blanks cut; empty without such a line.
  RWCString text(std::size_t field) const;
  /// The number behind the key; `absent` without such a line.
  std::int32_t integer(std::size_t field, std::int32_t absent) const;
  /// Replaces the value in its line, or adds a line at the end.
  void setText(std::size_t field, std::string_view value);
  /// Removes the line of a field, if there is one.
  void dropField(std::size_t field);
  /// @}

  /// Puts `line`, which must end in a new line, at the end of the body.
  void appendLine(std::string_view line) { body_ += line; }

  /// Values behind `key` in the blocks named `block` within this one, in their order.
  std::vector<RWCString> innerValues(std::string_view block, std::string_view key) const;

 private:
  struct Place;
  Place find(std::size_t field) const;
  void putVersion();

  const TLKeptForm* form_;
  double version_ = 0.0;
  std::string body_;
};
