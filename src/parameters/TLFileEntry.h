#pragma once

#include "parameters/TLEntry.h"
#include "parameters/TLFile.h"

/// The name of a file. Its own name is one word, and so is the path in the value form.
class TLFileEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  void write(TLTextSink& sink) const override;

  TLFile file;  ///< "/usr/unknown" while untold.
};
