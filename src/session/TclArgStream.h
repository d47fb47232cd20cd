#pragma once

#include <vector>

#include "session/ArgStream.h"

/// The words of a script command as an ArgStream: a stack of frames, the command's own at the
/// bottom, one more for each list entered.
class TclArgStream : public ArgStream {
 public:
  /// `words` must outlive the stream.
  TclArgStream(std::int32_t count, const char* const* words);
  ~TclArgStream() override;
  TclArgStream(const TclArgStream&) = delete;
  TclArgStream& operator=(const TclArgStream&) = delete;

  void enterList() override;
  void leaveList() override;
  std::int32_t count() const override { return top().count; }
  ArgStream* good() override { return top().state == 0 ? this : nullptr; }
  void readIntegers(std::vector<std::int32_t>& values) override;
  void readInteger64(std::int64_t& value) override;
  void readInteger(std::int32_t& value) override;
  void readLeadingInteger(std::int32_t& value) override;
  void readFloat(float& value) override;
  void readDouble(double& value) override;
  void readCharacter(char& value) override;
  void readText(char* buffer, std::size_t size) override;
  std::int32_t failed() const override { return top().state & kFailed; }
  std::int32_t atEnd() const override { return top().state & kAtEnd; }
  void rewind() override { top().next = 0; }

 private:
  struct Frame {
    std::int32_t count = 0;
    const char* const* words = nullptr;
    std::int32_t next = 0;
    std::int32_t state = 0;
    bool ownsWords = false;  ///< made by Tcl_SplitList, freed at the leaving of the list
  };

  static Frame makeFrame(std::int32_t count, const char* const* words, bool ownsWords);
  Frame& top() { return frames_.back(); }
  const Frame& top() const { return frames_.back(); }
  /// The next word, null at a state other than 0 or when none is left.
  const char* nextWord();
  void fail() { top().state |= kFailed; }

  std::vector<Frame> frames_;
};
