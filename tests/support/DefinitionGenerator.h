#pragma once

#include <string>

/// Definition files of the size of real ones, made without the records that read them.
///
/// A "velstra.def" with a parameter for each row of the table of named ones and `generics` generic
/// ones, half integer, half real, of one to four values; every tenth is obsolete. Names come in no
/// order.
std::string makeSolverDefinition(int generics);

/// A "velstra_bc.def" with `kinds` kinds (ids from 1, opsel 1) of a dozen entries each, and a
/// backward record for every tenth, whose old id is the new one plus 1000.
std::string makeConditionsDefinition(int kinds);

/// A "lumbrake.def" with `settings` settings of all types and shapes.
std::string makeHexaDefinition(int settings);
