#pragma once

#include <sstream>
#include <string>
#include <utility>

#include "platform/TLConsole.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// What one read of a record did.
struct Reading {
  int result;
  std::string console;
};

/// Reads `record` from the lines that stand behind its opening line.
template <class Record>
Reading readText(Record& record, const std::string& text) {
  std::ostringstream console;
  TLConsoleRedirect redirect(console);
  TLTextSource source(text);
  const int result = record.read(source);
  return {result, console.str()};
}

template <class Record>
std::string written(const Record& record) {
  TLTextSink sink;
  record.write(sink);
  return sink.text();
}

/// Reads a new record of `arguments` from `text` and gives what it writes.
template <class Record, class... Args>
std::string rewritten(const std::string& text, Args&&... arguments) {
  Record record(std::forward<Args>(arguments)...);
  readText(record, text);
  return written(record);
}
