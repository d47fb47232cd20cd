#include "launching/TLCarryList.h"

#include <utility>

#include "launching/TLLaunchLines.h"
#include "launching/TLPathText.h"
#include "platform/TLHostForm.h"

namespace {

constexpr int kDeepest = 32;  // of a directory whose bytes are counted

std::int64_t bytesBelow(const RWCString& path, int depth) {
  TLHostForm& form = hostForm();
  if (!form.isDirectory(path)) return static_cast<std::int64_t>(form.fileSize(path));
  std::vector<std::string> names;
  if (depth < kDeepest) form.listDirectory(path, names);
  std::int64_t bytes = 0;
  for (const auto& name : names) {
    if (name != "." && name != "..") bytes += bytesBelow(form.join(path, name), depth + 1);
  }
  return bytes;
}

}  // namespace

std::int64_t bytesOf(const RWCString& source) {
  if (!source.ends_with('*')) return bytesBelow(source, 0);
  TLHostForm& form = hostForm();
  const RWCString directory = form.directoryOf(source);
  const RWCString start = form.nameOf(source.substr(0, source.size() - 1));
  std::vector<std::string> names;
  form.listDirectory(directory.empty() ? RWCString(".") : directory, names);
  std::int64_t bytes = 0;
  for (const auto& name : names) {
    const bool meant = name.starts_with(start) && (!start.empty() || !name.starts_with('.'));
    if (meant) bytes += static_cast<std::int64_t>(form.fileSize(directory + name));
  }
  return bytes;
}

TLCarryAction& TLCarryList::add(TLCarryAction::Kind kind) {
  actions_.emplace_back().kind = kind;
  return actions_.back();
}

void TLCarryList::message(const RWCString& phrase, bool update) {
  TLCarryAction& action = add(TLCarryAction::Kind::message);
  action.text = messageLine('"' + scriptQuoted(doubleBackslashes(phrase)) + '"');
  action.update = update;
}

void TLCarryList::word(const RWCString& text) {
  TLCarryAction& action = add(TLCarryAction::Kind::message);
  action.text = messageLine(text);
  action.update = true;
}

void TLCarryList::print(const RWCString& text) {
  add(TLCarryAction::Kind::print).text = text + "\n";
}

void TLCarryList::makeRunDirectory() {
  TLCarryAction& action = add(TLCarryAction::Kind::directory);
  action.text = far_.makeDirectory(far_.directory());
  action.needed = true;
}

void TLCarryList::makeDirectory(const RWCString& path) {
  add(TLCarryAction::Kind::command).text = far_.makeDirectory(path);
}

std::int64_t TLCarryList::bytesToGo(const RWCString& source) const {
  for (const auto& action : actions_) {
    const bool made = action.kind == TLCarryAction::Kind::write && action.target == source;
    if (made) return static_cast<std::int64_t>(action.text.size());
  }
  return bytesOf(source);
}

void TLCarryList::copy(const RWCString& source, const RWCString& target, bool needed) {
  const std::int64_t bytes = bytesToGo(source);
  TLCarryAction& action = add(TLCarryAction::Kind::copy);
  action.source = source;
  action.target = target;
  action.bytes = bytes;
  action.needed = needed;
}

void TLCarryList::tree(const RWCString& source, const RWCString& target, bool needed) {
  copy(source, target, needed);
  actions_.back().kind = TLCarryAction::Kind::tree;
}

void TLCarryList::write(const RWCString& path, RWCString text, bool needed) {
  TLCarryAction& action = add(TLCarryAction::Kind::write);
  action.target = path;
  action.text = std::move(text);
  action.needed = needed;
}

void TLCarryList::remove(const RWCString& path) {
  add(TLCarryAction::Kind::remove).target = path;
}

void TLCarryList::setValue(std::int32_t entry, const RWCString& value) {
  TLCarryAction& action = add(TLCarryAction::Kind::value);
  action.entry = entry;
  action.text = value;
}
