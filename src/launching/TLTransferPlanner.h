#pragma once

#include "launching/TLCarryList.h"

class TLProcessArgument;
class TLProcessArguments;

/// @file
/// The three ways in which the files of a step go to its host: each puts all that is to be done on
/// a list. They read the step's `spawnArguments`, and change nothing.

/// True when the argument names a local file that has to go along.
bool isMarked(const TLProcessArgument& argument);

/// Any step: argument by argument.
TLCarryList carriedArguments(const TLFarSide& far, const TLProcessArguments& spawnArguments);
/// An unstructured run: mesh, solutions to start from and the run file, each in a directory of its
/// own.
TLCarryList carriedUnstructured(const TLFarSide& far, const TLProcessArguments& spawnArguments);
/// The shape optimiser: the whole directory of its run.
TLCarryList carriedSculpt(const TLFarSide& far, const TLProcessArguments& spawnArguments);
