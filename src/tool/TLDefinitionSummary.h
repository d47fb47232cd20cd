#pragma once

#include <string>

#include "tool/TLFileKind.h"
#include "tool/TLFileReport.h"
#include "tool/TLSummary.h"

/// Reads a definition file or a steering file of this kind from its text, for what it holds. False
/// when it can't be read; `report` has the reason then, and lines that were passed over.
bool summarizeDefinition(TLFileKind kind, const std::string& text, TLFileReport& report,
                         TLSummary& summary);
