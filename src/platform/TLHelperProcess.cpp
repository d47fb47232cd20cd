#include "platform/TLHelperProcess.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

// True when `channel` has something, an end included, before `deadline`.
bool waitReadable(int channel, Clock::time_point deadline) {
  pollfd entry = {channel, POLLIN, 0};
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    const int answer = poll(&entry, 1, static_cast<int>(std::max<long long>(left.count(), 0)));
    if (answer >= 0) return answer > 0;
    if (errno != EINTR) return false;
  }
}

}  // namespace

std::optional<TLHelperProcess> TLHelperProcess::start(const std::vector<std::string>& words,
                                                      std::string& error) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    error = std::strerror(errno);
    return std::nullopt;
  }
  TLFileDescriptor own(ends[0]);
  const TLFileDescriptor its(ends[1]);
  TLProcessOptions options;
  options.channel = its.get();
  auto process = TLProcess::start(words, options, error);
  if (!process) return std::nullopt;
  return TLHelperProcess(std::move(*process), std::move(own));
}

bool TLHelperProcess::send(const std::string& line) {
  const std::string text = line + '\n';
  const auto sent = ::send(channel_.get(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  if (sent != static_cast<ssize_t>(text.size())) gone_ = true;
  return !gone_;
}

std::optional<std::string> TLHelperProcess::takeLine() {
  const auto end = read_.find('\n');
  if (end == std::string::npos) return std::nullopt;
  std::string line = read_.substr(0, end);
  read_.erase(0, end + 1);
  return line;
}

void TLHelperProcess::readMore() {
  std::array<char, 512> part;
  const auto count = recv(channel_.get(), part.data(), part.size(), MSG_DONTWAIT);
  if (count > 0) {
    read_.append(part.data(), static_cast<std::size_t>(count));
  } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    gone_ = true;
  }
}

std::optional<std::string> TLHelperProcess::receive(double seconds) {
  const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                           std::chrono::duration<double>(seconds));
  for (;;) {
    if (auto line = takeLine()) return line;
    if (gone_ || !waitReadable(channel_.get(), deadline)) return std::nullopt;
    readMore();
  }
}

bool endWithParent() {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  return getppid() != 1;
}
