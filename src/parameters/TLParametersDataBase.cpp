#include "parameters/TLParametersDataBase.h"

#include <chrono>
#include <cstdlib>
#include <thread>

#include "parameters/TLNamedParameters.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"

namespace {

constexpr std::string_view kStart = "START_READING_OPERATION";
constexpr char kComment = '*';
constexpr std::string_view kTables = "THEFIL,L,1,1,0";
constexpr std::chrono::seconds kLookAgain{1};

// A name in the solver's directory.
RWCString solverPath(std::string_view name) {
  const char* directory = std::getenv("VELSTRA_DIR");
  return RWCString(directory == nullptr ? "" : directory) + hostForm().separator() +
         RWCString(name);
}

bool skipToStart(TLTextSource& stream) {
  for (auto word = stream.readWord(); !word.empty(); word = stream.readWord()) {
    if (word == kStart) return true;
  }
  return false;
}

}  // namespace

TLParametersDataBase& TLParametersDataBase::instance() {
  static Handle<TLParametersDataBase> base = [] {
    auto made = makeHandle<TLParametersDataBase>();
    made->init();
    return made;
  }();
  return *base;
}

RWCString TLParametersDataBase::definitionPath() {
  return solverPath("velstra.def");
}

bool TLParametersDataBase::mayDoWithout_ = false;

void TLParametersDataBase::doWithout() {
  mayDoWithout_ = true;
}

RWCString TLParametersDataBase::problem() {
  const RWCString path = definitionPath();
  auto text = hostForm().readFile(path);
  if (!text) return path + ": can't be read; set VELSTRA_DIR to the flow solver's directory";
  TLTextSource source(std::move(*text));
  if (skipToStart(source)) return {};
  return path + ": holds no line " + RWCString(kStart) +
         "; put the solver's definition file in its place";
}

void TLParametersDataBase::init() {
  const RWCString path = definitionPath();
  bool missingTold = false;
  bool waitTold = false;
  if (mayDoWithout_ && !problem().empty()) return;
  while (true) {
    auto text = hostForm().readFile(path);
    if (text) {
      TLTextSource source(std::move(*text));
      if (readDefinition(source)) return;
    } else if (!missingTold) {
      console() << "ERROR! ... " << path << '\n'
                << " The file velstra.def can not be found\n"
                << "      Check the _velstra directory \n"
                << std::flush;
      missingTold = true;
    }
    if (!waitTold) {
      console() << "Waiting for " << path << " with the line " << kStart << '\n' << std::flush;
      waitTold = true;
    }
    std::this_thread::sleep_for(kLookAgain);
  }
}

bool TLParametersDataBase::readDefinition(TLTextSource& stream) {
  if (!skipToStart(stream)) return false;
  stream.skipLine();
  auto info = makeHandle<TLParametersDataBaseInfo>();
  while (true) {
    stream.skipWhitespace();
    if (stream.atEnd()) break;
    if (stream.peek() == kComment) {
      std::string_view comment;
      stream.readRawLine(comment);
      comment.remove_prefix(1);
      if (!comment.empty()) info->comments.emplace_back(comment);
      continue;
    }
    const std::string_view descriptor = stream.readWord();
    switch (classify(descriptor)) {
      case Kind::skipped:
        stream.skipLine();
        break;
      case Kind::named:
        setByDescriptor(descriptor, stream.readWord(), stream);
        break;
      case Kind::generic:
        if (!addGeneric(TLDescriptor::parse(descriptor), descriptor, info, stream) &&
            stream.observer() != nullptr) {
          stream.observer()->passedOver(stream, descriptor, "velstra.def", {});
        }
    }
    stream.skipLine();
    info = makeHandle<TLParametersDataBaseInfo>();
  }
  setText(kTables, solverPath("THERMO_VARSK"));
  sortByName();
  applyFixedSettings();
  return true;
}

TLParametersDataBase::Kind TLParametersDataBase::classify(std::string_view descriptor) const {
  if (findNamedParameter(descriptor) != nullptr && descriptor != kTables) return Kind::named;
  if (isPassedOverParameter(descriptor)) return Kind::named;
  const RWCString name = TLDescriptor::parse(descriptor).name;
  if (isUnwantedParameter(name)) return Kind::skipped;
  if (findIndexList(name) >= 0) return Kind::named;
  return hasGeneric(name) ? Kind::skipped : Kind::generic;
}
