#pragma once

#include "parameters/TLEntry.h"

/// A patch of a mesh: the numbers of its block, face and patch. Its name may have several words.
class TLPatchEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  void write(TLTextSink& sink) const override;

  std::int32_t block = 0;  ///< Number as in the line, as is all three.
  std::int32_t face = 0;   ///< Of the block.
  std::int32_t patch = 0;  ///< Of the face.
};
