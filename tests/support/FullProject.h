#pragma once

#include <string>

#include "platform/TTempDir.h"

/// Writes everything that can belong to a structured project, one line each with the file's name in
/// `dir`, into its directories "w", "ref" and "old"; the text of the run file that goes with it.
std::string fullProject(const TTempDir& dir);

/// Writes an unstructured one with the run file "p/c/c.run", whose path it answers, the mesh
/// "p/_mesh/m.zyv" and "p/c/c.p4pg". The run file names `mesh`, and `solution` as the second of two
/// initial solutions.
std::string unstructuredProject(const TTempDir& dir, const std::string& mesh,
                                const std::string& solution);
