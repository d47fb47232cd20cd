#include "parameters/TLFile.h"

#include "platform/TLHostForm.h"

TLFile::TLFile(std::string_view path) : path_(hostForm().toLocal(path)) {
  split();
}

TLFile TLFile::onOtherHost(std::string_view path) {
  TLFile file;
  file.path_ = path;
  file.split();
  return file;
}

void TLFile::split() {
  suffix_.clear();
  const auto separator = path_.find_last_of("/\\");
  directory_ = separator == RWCString::npos ? RWCString() : path_.substr(0, separator + 1);
  const auto point = name().rfind('.');
  if (point != std::string_view::npos) suffix_ = name().substr(point + 1);
}

RWCString TLFile::withoutSuffix() const {
  const auto point = name().rfind('.');
  return point == std::string_view::npos ? path_ : path_.substr(0, directory_.size() + point);
}

bool TLFile::isUnknown() const {
  return path_.find("unknown") != RWCString::npos || path_.find("undefined") != RWCString::npos;
}

bool TLFile::exists() const {
  return hostForm().canRead(path_);
}
