#pragma once

#include <string_view>

#include "textio/RWCString.h"

class TLProject;

/// @file
/// Reading projects the way a launch needs it: with the definitions of the solvers where they are
/// installed, since what is read without them can't be written back whole.

/// Reads the project of the file `path` into a fresh `project`, with the parameter tables of an
/// unstructured one if asked for. Waits, telling the user, for the definition file of the solver
/// when the file has a computation. Answers as TLProject::read.
int readProject(TLProject& project, const RWCString& path, bool unstructuredTables);

/// True when the head of a project's text says that its parameters are those of the unstructured
/// solvers.
bool wantsUnstructuredTables(std::string_view text);
