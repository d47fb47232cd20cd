#pragma once

#include <cstdint>
#include <vector>

#include "launching/TLFarSide.h"
#include "textio/RWCString.h"

/// One thing that a transfer to a host does.
struct TLCarryAction {
  /// What it does.
  enum class Kind {
    message,    ///< `text`, a line, is evaluated in the script
    print,      ///< `text`, with its line ends, goes to standard output
    directory,  ///< `text`, a command, makes the directory of the run on the host
    command,    ///< `text` is run on the host
    copy,       ///< the file or the pattern `source` of this host becomes or goes into `target`
    tree,       ///< the directory `source` with all in it goes into the directory `target`
    write,      ///< `text` becomes the file `target` of this host
    remove,     ///< the file `target` of this host goes
    value       ///< the value of the argument `entry` becomes `text`
  };

  Kind kind = Kind::message;  ///< Decides which of the others count.
  RWCString text;             ///< Line, command, content of a file or value.
  RWCString source;           ///< Path of this host; may end in a "*".
  RWCString target;           ///< Path of the far side for copies, of this host otherwise.
  std::int32_t entry = -1;    ///< Place in the step's `spawnArguments`, from 0; -1: none.
  std::int64_t bytes = 0;     ///< of a copy or a tree
  bool update = false;        ///< after a message the screen is redrawn
  bool needed = false;        ///< when it fails, the transfer has failed, and ends there
};

/// All that a transfer to a host does, in its order. Making the list reads the projects that go
/// along and looks for the files beside them; it changes nothing.
class TLCarryList {
 public:
  /// An empty list for this far side.
  explicit TLCarryList(TLFarSide far) : far_(std::move(far)) {}

  /// Where all goes.
  const TLFarSide& far() const { return far_; }
  /// In the order in which they are to be done.
  const std::vector<TLCarryAction>& actions() const { return actions_; }

  /// A phrase for the user; what stands in it arrives as it is.
  void message(const RWCString& phrase, bool update);
  /// A word of the script's vocabulary, after which the screen is redrawn.
  void word(const RWCString& text);
  /// A line for standard output, without its line end.
  void print(const RWCString& text);
  /// The directory of the run.
  void makeRunDirectory();
  /// `path` of the far side is made there.
  void makeDirectory(const RWCString& path);
  /// A failed one ends the transfer when it is `needed`.
  void copy(const RWCString& source, const RWCString& target, bool needed);
  /// As copy(), for a directory with all in it.
  void tree(const RWCString& source, const RWCString& target, bool needed);
  /// Puts `text` into the file `path` of this host; as copy() when that fails.
  void write(const RWCString& path, RWCString text, bool needed);
  /// Removes the file `path` of this host.
  void remove(const RWCString& path);
  /// The argument at place `entry` of `spawnArguments` becomes `value`.
  void setValue(std::int32_t entry, const RWCString& value);

 private:
  TLCarryAction& add(TLCarryAction::Kind kind);
  /// Of a file that is there, or that the list makes before.
  std::int64_t bytesToGo(const RWCString& source) const;

  TLFarSide far_;
  std::vector<TLCarryAction> actions_;
};

/// Bytes of a file, of the files that a last "*" stands for, or of a directory with all in it.
std::int64_t bytesOf(const RWCString& source);
