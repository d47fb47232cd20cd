#pragma once

#include <sstream>
#include <string>

#include "platform/TLConsole.h"
#include "project/TLProject.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// A project that was read from a text, and what reading it did.
struct ReadProject {
  Handle<TLProject> project = makeHandle<TLProject>();
  int result = 0;
  std::string console;

  explicit ReadProject(const std::string& text,
                       const std::string& file = "/p/study/comp/comp.run") {
    std::ostringstream heard;
    TLConsoleRedirect redirect(heard);
    project->projectFile = TLFile(file);
    TLTextSource source(text);
    result = project->read(source);
    console = heard.str();
  }

  TLProject* operator->() const { return project.get(); }
  TLSubProject& computation(std::size_t index = 0) const { return *project->computations[index]; }

  std::string written() const {
    std::ostringstream heard;
    TLConsoleRedirect redirect(heard);
    TLTextSink sink;
    project->write(sink);
    return sink.take();
  }
};

/// A project file of this type around these lines of one computation.
inline std::string projectText(const std::string& computationLines,
                               const std::string& type = "STRUCTURED") {
  return "TALVEN_PROJECT_FILE VERSION 1210\nPROJECT_TYPE " + type + "\nTL_BEGIN computation\n" +
         computationLines + "TL_END computation\n";
}
