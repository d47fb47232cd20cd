#pragma once

#include <string_view>

#include "textio/TLTextSink.h"

/// Writes the five comment lines that name a section of a run file. `line` is the middle one as it
/// stands, 78 characters; readers pass all of them over.
void writeBanner(TLTextSink& sink, std::string_view line);
