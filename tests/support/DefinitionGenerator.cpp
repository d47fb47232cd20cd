#include "support/DefinitionGenerator.h"

#include <fmt/format.h>

#include "parameters/TLNamedParameters.h"

namespace {

std::string values(int count, int seed, bool real) {
  std::string line;
  for (int i = 0; i < count; ++i) {
    if (i > 0) line += ' ';
    line += real ? fmt::format("{}.5", (seed + i) % 1000) : std::to_string((seed + i) % 1000);
  }
  return line;
}

}  // namespace

std::string makeSolverDefinition(int generics) {
  std::string text = "Parameters of the solver, made for a test.\n\nSTART_READING_OPERATION now\n";
  for (std::size_t member = 0; member < namedMemberCount(); ++member) {
    const TLNamedParameter& row = namedMemberRow(member);
    if (row.type == TLParameterType::text) continue;
    text +=
        fmt::format("* named parameter {}\n{}\n{}\n", member, row.descriptor(),
                    values(row.count, static_cast<int>(member), row.type == TLParameterType::real));
  }
  for (int i = 0; i < generics; ++i) {
    const bool real = i % 2 == 1;
    const int count = 1 + i / 2 % 4;
    text += fmt::format("{}* generic parameter {}\n{}{:04},{},1,{},0\n{}\n",
                        i % 10 == 9 ? "*OBSOLETE\n" : "", i, real ? "RG" : "IG", i * 7919 % 10000,
                        real ? 'R' : 'I', count, values(count, i, real));
  }
  return text;
}

std::string makeConditionsDefinition(int kinds) {
  constexpr const char* kTypes[] = {"INLET", "OUTLET", "SOLID", "CONNECTION"};
  std::string text = "VERSION 1.0\n";
  for (int kind = 1; kind <= kinds; ++kind) {
    text += fmt::format(
        "TL_BEGIN bc_parameters\n  VERSION 3.0\n  TYPE {}\n  TYPE_ID {}\n  TYPE_OPSEL 1\n"
        "  NAME Kind {}\n  CONDITION none\n",
        kTypes[kind % 4], kind, kind);
    for (int i = 0; i < 4; ++i) {
      text += fmt::format(
          "  TL_BEGIN physical_entry\n    BEGIN_GUI_CONSTRUCTION\n      EXPERT_MODE {}\n"
          "    END_GUI_CONSTRUCTION\n    NAME Quantity {}\n    TYPE variable\n    VALUE {}\n"
          "    VARIABLETYPE constant\n    VALUE_UNITS_NAME length\n  TL_END physical_entry\n"
          "  TL_BEGIN real_entry_full\n    NAME Real {}\n    VALUE {}.25\n  TL_END real_entry\n",
          i % 2, i, kind + i, i, kind);
    }
    text += fmt::format(
        "  VECTOR_ENTRY The axis 0 0 1\n  INTEGER_ENTRY Turns {}\n"
        "  TL_BEGIN single_choice\n    NAME Law\n    SUB_CHOICE the first law 0\n"
        "    SUB_CHOICE the second law 1\n    VALUE 1\n  TL_END choice_entry\n"
        "  STRING_ENTRY Label kind {}\nTL_END bc_parameters\n",
        kind, kind);
  }
  for (int kind = 10; kind <= kinds; kind += 10) {
    text += fmt::format(
        "BEGIN_BACKWARD_COMPATIBILITY\n  VERSION 3\n  VERSION_OLD 1\n  TYPE_NEW {}\n  OPSEL_NEW 1\n"
        "  TYPE_OLD {}\n  OPSEL_OLD 1\n  REAL_ENTRIES 1 0\n  NEW_VALUE Law 0\n"
        "END_BACKWARD_COMPATIBILITY\n",
        kind, kind + 1000);
  }
  return text;
}

std::string makeHexaDefinition(int settings) {
  std::string text = "VERSION 1.0\n";
  for (int i = 0; i < settings; ++i) {
    constexpr const char* kTypes[] = {"integer", "Real", "STRING", "float"};
    constexpr const char* kValues[] = {"1 2 3 4", "0.5 1.5 2.5 3.5", "'a b' c '' d", "1.25 2 3 4"};
    text += fmt::format(
        "TL_BEGIN tlparameter\n  VERSION 1.0\n  # about setting {}\n  NAME setting{}_\n"
        "  GLOBAL {}\n  TYPE {}\n  EXPERT no\n  NUMBER {}\n  VALUE {}\n  OLD_VALUE {}\n"
        "TL_END tlparameter\n",
        i, i, i % 3 == 0 ? "yes" : "no", kTypes[i % 4], i % 8 < 4 ? "4" : "2 2", kValues[i % 4],
        kValues[i % 4]);
  }
  return text;
}
