#pragma once

#include <iosfwd>

/// The companion's side of TLHostQuestions: enrols this process in the virtual machine and answers
/// each question of `in` by a line with PVM's code, until there are no more or its parent has
/// ended.
///
///   task TID   is this task alive: pvm_pstat
///   host TID   does this host's daemon answer: 0, or the code of a question about its tasks
///
/// Answers the exit code of the process.
int answerQuestions(std::istream& in, std::ostream& out);
