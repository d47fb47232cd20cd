#pragma once

#include "project/TLProject.h"
#include "tool/TLSummary.h"

/// What a project or run file holds: its files and versions, and of each computation the mesh with
/// its blocks, connections, conditions by kind, initial solutions, fluids, and the solver settings
/// that differ from the definition.
TLSummary summaryOf(const TLProject& project);
