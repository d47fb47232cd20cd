#pragma once

#include "launching/TLCarryList.h"

class TLProcessArgument;
class TLSubTask;

/// @file
/// The three ways in which the files of a step go to its host: each puts all that is to be done on
/// a list. They read the step's `spawnArguments`, its host, login and run directory, and change
/// nothing.

/// True when the argument names a local file that has to go along.
bool isMarked(const TLProcessArgument& argument);

/// Any step: argument by argument.
TLCarryList carriedArguments(const TLSubTask& step);
/// An unstructured run: mesh, solutions to start from and the run file, each in a directory of its
/// own.
TLCarryList carriedUnstructured(const TLSubTask& step);
/// The shape optimiser: the whole directory of its run.
TLCarryList carriedSculpt(const TLSubTask& step);
