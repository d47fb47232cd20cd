#include "taskengine/TLStatusFile.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLNumbers.h"
#include "textio/TLTextSink.h"
#include "textio/TLTokenReader.h"

namespace {

constexpr std::string_view kFile = "status.dat";
constexpr std::string_view kLock = "lockStatus";
constexpr std::int64_t kNoDate = 1;
constexpr auto kPause = std::chrono::milliseconds(1);

/// Blocks of a new file, in order, with the lines that they hold beside status and date.
struct NewBlock {
  std::string_view name;
  std::string_view more;
};
constexpr NewBlock kNewBlocks[] = {
    {"postmetis", ""},
    {"bramosh2quorel", ""},
    {"3dto2d", ""},
    {"premetis", "           NPART = 1\n"},
    {"quorelcfd",
     "           NPART = 1\n           SAVE_COUNTER = 0\n           REFINEMENT = NO\n"},
    {"quorel2bramosh", ""},
    {"quorel2sorvit", ""},
    {"probes2sorvit", ""},
};

RWCString directoryByEitherSeparator(const RWCString& path) {
  const char separators[] = {'/', hostForm().separator(), '\0'};
  const auto last = path.find_last_of(separators);
  return last == RWCString::npos ? RWCString() : path.substr(0, last + 1);
}

RWCString fileBeside(const RWCString& path) {
  return hostForm().directoryOf(path).append(kFile);
}

/// Waits for the lock as long as a process holds it. Null only when it can't be made at all.
std::unique_ptr<TLLockFile> waitForLock(const RWCString& path) {
  auto lock = acquireStatusLock(path);
  while (!lock && hostForm().canMakeFilesIn(hostForm().directoryOf(path))) {
    std::this_thread::sleep_for(kPause);
    lock = acquireStatusLock(path);
  }
  return lock;
}

std::string_view withoutTrailing(std::string_view text, char c) {
  while (text.ends_with(c)) text.remove_suffix(1);
  return text;
}

std::string_view withoutBlanks(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  return withoutTrailing(text, ' ');
}

bool opensBlock(std::string_view line, std::string_view block) {
  return TLTokenReader::lineHasToken(line, "TL_BEGIN") && TLTokenReader::lineHasToken(line, block);
}

/// Walks the lines of a text; `line` is cut of its carriage returns.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {}

  bool next(std::string_view& line) {
    if (position_ >= text_.size()) return false;
    begin_ = position_;
    const auto end = std::min(text_.find('\n', position_), text_.size());
    line = withoutTrailing(text_.substr(position_, end - position_), '\r');
    position_ = end + 1;
    return true;
  }
  std::size_t begin() const { return begin_; }

 private:
  std::string_view text_;
  std::size_t begin_ = 0;
  std::size_t position_ = 0;
};

struct Entry {
  std::size_t lineBegin = 0;
  std::string_view line;
};

std::optional<Entry> findEntry(std::string_view text, const RWCString& block,
                               const RWCString& key) {
  Lines lines(text);
  std::string_view line;
  if (!lines.next(line) || !opensBlock(withoutTrailing(line, ' '), "status")) return std::nullopt;
  do {
    if (!lines.next(line)) return std::nullopt;
  } while (!opensBlock(line, block));
  do {
    if (!lines.next(line)) return std::nullopt;
  } while (!TLTokenReader::lineHasToken(line, key));
  return Entry{lines.begin(), line};
}

void tellNotFound(const RWCString& block, const RWCString& key) {
  console() << block << ' ' << key << " NOT FOUND in status.dat\n" << std::flush;
}

bool ensureFile(const RWCString& path) {
  return !statusFileInvalid(path) || createStatusFile(path) != 0;
}

/// Changes bytes of an existing file and leaves all others alone.
bool overwrite(const RWCString& file, std::size_t position, std::string_view text) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(
      std::fopen(hostForm().realPath(file).c_str(), "r+b"), &std::fclose);
  return stream && std::fseek(stream.get(), static_cast<long>(position), SEEK_SET) == 0 &&
         std::fwrite(text.data(), 1, text.size(), stream.get()) == text.size() &&
         std::fflush(stream.get()) == 0;
}

/// The numbers of `text`, split at `separator` and blanks; a missing one is 0.
struct Numbers {
  int a = 0;
  int b = 0;
  int c = 0;
};
Numbers numbersOf(std::string_view text, char separator) {
  int values[3] = {};
  std::size_t from = 0;
  for (int& value : values) {
    const char separators[] = {separator, ' ', '\0'};
    from = text.find_first_not_of(separators, from);
    if (from == std::string_view::npos) break;
    const auto end = std::min(text.find_first_of(separators, from), text.size());
    value = integerFrom(text.substr(from, end - from));
    from = end;
  }
  return {values[0], values[1], values[2]};
}

/// `value` - `offset` within the range of an int.
int reducedBy(int value, int offset) {
  return value < std::numeric_limits<int>::min() + offset ? value : value - offset;
}

std::int64_t now() {
  return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
}

}  // namespace

std::unique_ptr<TLLockFile> acquireStatusLock(const RWCString& path) {
  return hostForm().acquireLock(hostForm().directoryOf(path).append(kLock));
}

RWCString readStatusEntry(const RWCString& block, const RWCString& key, const RWCString& path,
                          bool lock) {
  std::unique_ptr<TLLockFile> held;
  if (lock) {
    held = waitForLock(path);
    if (!held) return kStatusFileAbsent;
  }
  if (!ensureFile(path)) return kStatusFileAbsent;
  const auto text = hostForm().readFile(directoryByEitherSeparator(path).append(kFile));
  const auto entry = text ? findEntry(*text, block, key) : std::nullopt;
  if (!entry) {
    tellNotFound(block, key);
    return kStatusEntryNotFound;
  }
  const auto equals = entry->line.find('=');
  if (equals == std::string_view::npos) return {};
  return RWCString(withoutBlanks(entry->line.substr(equals + 1)));
}

int writeStatusEntry(const RWCString& value, const RWCString& block, const RWCString& key,
                     const RWCString& path) {
  const auto held = waitForLock(path);
  if (!held || !ensureFile(path)) return 0;
  const auto text = hostForm().readFile(fileBeside(path));
  const auto entry = text ? findEntry(*text, block, key) : std::nullopt;
  const auto equals = entry ? entry->line.find('=') : std::string_view::npos;
  if (equals == std::string_view::npos) {
    tellNotFound(block, key);
    return 0;
  }
  const std::size_t width = entry->line.size() - equals;
  RWCString field = value;
  if (field.size() < width - 1) field.resize(width - 1, ' ');
  return overwrite(fileBeside(path), entry->lineBegin + equals + 1, field + '\n') ? 1 : 0;
}

bool statusFileInvalid(const RWCString& path) {
  const auto text = hostForm().readFile(fileBeside(path));
  if (!text) return true;
  const std::string_view first = std::string_view(*text).substr(0, text->find('\n'));
  return first.find("TL_BEGIN") == std::string_view::npos ||
         first.find("status") == std::string_view::npos;
}

int createStatusFile(const RWCString& path) {
  const RWCString date = formatStatusDate(now());
  TLTextSink sink;
  sink << "TL_BEGIN status\n";
  for (const auto& block : kNewBlocks) {
    sink << "        TL_BEGIN " << block.name << "\n           STATUS =pending\n"
         << "           DATE = " << date << '\n'
         << block.more << "        TL_END " << block.name << '\n';
  }
  sink << "TL_END status\n";
  return hostForm().replaceFile(fileBeside(path), sink.text()) == 0 ? 1 : 0;
}

std::int64_t parseStatusDate(const RWCString& text) {
  const auto blank = text.find(' ');
  if (text == kStatusEntryNotFound || blank == RWCString::npos) return kNoDate;
  const Numbers day = numbersOf(std::string_view(text).substr(0, blank), '/');
  const Numbers time = numbersOf(std::string_view(text).substr(blank), ':');
  std::tm local{};
  local.tm_mday = day.a;
  local.tm_mon = reducedBy(day.b, 1);
  local.tm_year = reducedBy(day.c, 1900);
  local.tm_hour = time.a;
  local.tm_min = time.b;
  local.tm_sec = time.c;
  local.tm_isdst = -1;
  return std::mktime(&local);
}

RWCString formatStatusDate(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  localtime_r(&time, &local);
  TLTextSink sink;
  sink << local.tm_mday << '/' << local.tm_mon + 1 << '/' << local.tm_year + 1900 << ' '
       << local.tm_hour << ':' << local.tm_min << ':' << local.tm_sec;
  return sink.take();
}
