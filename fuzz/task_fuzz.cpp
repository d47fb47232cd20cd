// A task file of any contents is read, whole or up to a fault, and what was read can be written and
// read again. Every line of it also goes through every operation of the token reader.
#include <cstddef>
#include <cstdint>
#include <ostream>

#include "platform/TLConsole.h"
#include "taskengine/TLTaskChildren.h"
#include "textio/TLTokenReader.h"

namespace {

constexpr int kCount = 4;  // values that the array forms ask for

void readEveryWay(TLTextSource& source, std::string_view line) {
  TLTokenReader reader(source);
  std::int32_t i[kCount];
  double r[kCount];
  float f[kCount];
  double pair[2][3];
  RWCString s;
  RWCString t;
  bool flag = false;
  std::vector<RWCString> texts;
  std::vector<double> reals;
  reader.readToggle(line, i[0]);
  reader.readInteger(line, i[0]);
  reader.readFlag(line, flag);
  reader.readIntegers2(line, i[0], i[1]);
  reader.readIntegers3(line, i[0], i[1], i[2]);
  reader.readIntegerPair(line, i[0], i[1]);
  reader.readIntegerReal(line, i[0], r[0]);
  reader.readCountedReals(line, reals);
  reader.readFloats4(line, f[0], f[1], f[2], f[3]);
  reader.readIntegers2Real(line, i[0], i[1], r[0]);
  reader.readStrings(line, s);
  reader.readString(line, s);
  for (int count = 0; count < 3; ++count) reader.readQuotedStrings(texts, count, line);
  reader.readStringInteger(line, s, i[0]);
  reader.readNameInteger(line, s, i[0]);
  reader.readNameReal(line, s, r[0]);
  reader.readIntegerName(line, i[0], s);
  reader.readStringName(line, s, t);
  reader.readStringPair(line, s, t);
  reader.readNameVector(line, s, r[0], r[1], r[2]);
  reader.readNameIndices(line, s, i[0], i[1], i[2]);
  reader.readReal(line, r[0]);
  reader.readFloat(line, f[0]);
  reader.readIntegerArray(line, kCount, i);
  reader.readRealArray(line, kCount, r);
  reader.readFloatArray(line, kCount, f);
  reader.readVector3(line, r[0], r[1], r[2]);
  reader.readVector3Pair(line, pair[0], pair[1]);
  reader.initFastToken(line);
  reader.isFastToken("key");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static std::ostream silence(nullptr);
  const TLConsoleRedirect redirect(silence);
  const std::string text(reinterpret_cast<const char*>(data), size);

  TLTextSource lines(text);
  for (auto line = lines.readLine(); !line.empty(); line = lines.readLine()) {
    readEveryWay(lines, line);
  }
  TLTextSource blocks(text);
  TLTokenReader reader(blocks);
  while (!blocks.atEnd()) {
    reader.skipComments();
    reader.skipToBlockEnd(blocks.readLine());
  }

  const auto task = makeHandle<TLTaskChildren>();
  TLTextSource source(text);
  task->read(source);
  TLTextSink sink;
  task->write(sink);
  task->clearSubTasks();
  TLTextSource again(sink.take());
  task->read(again);
  task->clearSubTasks();
  return 0;
}
