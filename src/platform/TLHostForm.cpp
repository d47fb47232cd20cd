#include "platform/TLHostForm.h"

#include <cstdlib>
#include <utility>

namespace {

std::unique_ptr<TLHostForm>& current() {
  static std::unique_ptr<TLHostForm> form = makePosixForm();
  return form;
}

}  // namespace

TLHostForm& hostForm() {
  return *current();
}

void setHostForm(TLHostKind kind) {
  current() = kind == TLHostKind::win32 ? makeWin32Form() : makePosixForm();
}

std::unique_ptr<TLHostForm> exchangeHostForm(std::unique_ptr<TLHostForm> form) {
  return std::exchange(current(), std::move(form));
}

std::string TLHostForm::join(std::string_view directory, std::string_view name) const {
  std::string path(directory);
  if (!path.ends_with(separator())) path += separator();
  return path.append(name);
}

std::string TLHostForm::directoryOf(std::string_view path) const {
  const auto last = path.rfind(separator());
  return last == std::string_view::npos ? std::string{} : std::string(path.substr(0, last + 1));
}

std::string TLHostForm::nameOf(std::string_view path) const {
  return std::string(path.substr(path.rfind(separator()) + 1));
}

std::optional<std::string> TLHostForm::variable(const std::string& name) const {
  const char* value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return value;
}

std::string TLHostForm::variableOrEmpty(const std::string& name) const {
  return variable(name).value_or("");
}

void TLHostForm::setVariable(const std::string& name, const std::string& value) {
  setenv(name.c_str(), value.c_str(), 1);
}
