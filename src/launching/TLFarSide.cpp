#include "launching/TLFarSide.h"

#include <utility>

#include "launching/TLPathText.h"
#include "taskengine/TLSubTask.h"

TLFarSide::TLFarSide(const TLSubTask& step)
    : TLFarSide(step.hostName, step.remoteLogin, step.isWin32Host != 0, step.remoteRunDir) {}

TLFarSide::TLFarSide(RWCString host, RWCString login, bool win32, RWCString directory)
    : host_(std::move(host)),
      login_(std::move(login)),
      directory_(std::move(directory)),
      win32_(win32) {}

RWCString TLFarSide::spec() const {
  return login_.empty() ? host_ : host_ + "." + login_;
}

RWCString TLFarSide::word(const RWCString& path, const char* pattern) const {
  return wordForHost(path, win32_, pattern);
}

RWCString TLFarSide::makeDirectory(const RWCString& path) const {
  return (win32_ ? "md " : "mkdir -p ") + word(path);
}

RWCString TLFarSide::removeFile(const RWCString& path) const {
  return (win32_ ? "del /q " : "/bin/rm -f ") + word(path);
}

std::vector<RWCString> TLFarSide::removal() const {
  if (win32_) return {"del /q " + word(directory_, "\\*.*"), "rd " + word(directory_)};
  return {"/bin/rm -f " + word(directory_, "/*.*"), "/bin/rm -rf " + word(directory_)};
}

std::vector<RWCString> TLFarSide::discard() const {
  if (win32_) return {"del /q " + word(directory_, "\\*.*"), "rmdir " + word(directory_)};
  return {"/bin/rm -rf " + word(directory_)};
}

RWCString TLFarSide::directoryName(const RWCString& root, bool win32, const RWCString& number) {
  if (win32) return root + "\\tm_" + number;
  // The root of a step that was made before its host was known.
  return (root == "C:\\tmp" ? "/tmp" : root) + "/.tm_" + number + "/";
}
