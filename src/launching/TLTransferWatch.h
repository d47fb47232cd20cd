#pragma once

#include <cstdint>

#include "launching/TLFarSide.h"
#include "textio/RWCString.h"

class TLSubTask;

/// Makes the copies of one transfer, keeps the step's TLTransferProgress for those who look, and
/// tells the user of a copy that failed: from where, to where, and in the tool's own words.
class TLTransferWatch {
 public:
  /// Begins a transfer of `count` files, patterns and trees with `total` bytes, each 0 when it
  /// isn't known; `direction` is "to" or "from" the host.
  TLTransferWatch(TLSubTask& step, const TLFarSide& far, const char* direction, std::int32_t count,
                  std::int64_t total);
  /// Nothing is on its way any more.
  ~TLTransferWatch();
  TLTransferWatch(const TLTransferWatch&) = delete;
  TLTransferWatch& operator=(const TLTransferWatch&) = delete;

  /// @name Copies between a path here and one there. False when one failed.
  /// @{

  /// Carries the path `here` to `there`, with all in it for a `tree`; `bytes` are for the progress
  /// alone.
  bool send(const RWCString& here, const RWCString& there, bool tree, std::int64_t bytes);
  /// That nothing of the name is there is a failure only when it is `expected`: a run needn't have
  /// made every file.
  bool fetch(const RWCString& there, const RWCString& here, bool tree, bool expected = false);
  /// @}

  /// Notes and shows something else that went wrong.
  void complain(const RWCString& text);
  /// True once a copy failed or complain() was called.
  bool failed() const { return failed_; }

 private:
  void begin(const RWCString& file, std::int64_t bytes);
  RWCString place(const RWCString& there) const { return far_.spec() + ":" + there; }

  TLSubTask& step_;
  const TLFarSide& far_;
  bool failed_ = false;
};

/// True when a copy tool says of `path`, and of nothing else, that it isn't there.
bool saysNothingThere(const RWCString& words, const RWCString& path);
/// What a tool said as one line: its own lines with "; " between, of the first few.
RWCString asOneLine(const RWCString& words);
