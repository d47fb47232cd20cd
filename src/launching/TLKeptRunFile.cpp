#include "launching/TLKeptRunFile.h"

#include "launching/TLCommands.h"
#include "platform/TLHostForm.h"

TLKeptRunFile::TLKeptRunFile(const RWCString& path)
    : path_(path), copy_(path + "tmp"), bytes_(hostForm().readFile(path)) {
  if (!bytes_) return;
  TLHostForm& form = hostForm();
  // A copy goes neither through a link nor into a directory.
  safe_ = !form.isLink(copy_) && !form.isDirectory(copy_);
  if (!safe_) return;
  copyLocal(path_, copy_);
  safe_ = stands(copy_);
  if (!safe_ && form.canRead(copy_)) removeLocal(copy_);
}

bool TLKeptRunFile::stands(const RWCString& path) const {
  return hostForm().readFile(path) == bytes_;
}

RWCString TLKeptRunFile::restore() {
  if (!bytes_ || !safe_) return {};
  if (hostForm().canRead(path_)) removeLocal(path_);
  copyLocal(copy_, path_);
  if (!stands(path_)) hostForm().replaceFile(path_, *bytes_);
  if (!stands(path_)) {
    return "The run file " + path_ + " could not be put back: it is kept as " + copy_;
  }
  removeLocal(copy_);
  return {};
}
