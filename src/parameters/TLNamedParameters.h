#pragma once

#include <span>
#include <string_view>

#include "parameters/TLDescriptor.h"

/// One parameter that the program knows by name: a row of the table in TLNamedParameters.cpp.
struct TLNamedParameter {
  std::string_view name;  ///< In capitals, without type and counts.
  TLParameterType type;   ///< Never unknown.
  std::int32_t count;     ///< Values of the parameter, at least 1.

  /// Its descriptor as it stands in files.
  RWCString descriptor() const;
};

/// A list of places in the quantity table.
struct TLIndexList {
  std::string_view name;       ///< A named list; its descriptor is formed with its count.
  std::string_view countedBy;  ///< the named parameter that says how many there are
};

/// The row whose descriptor is `descriptor`, exactly; null for none.
const TLNamedParameter* findNamedParameter(std::string_view descriptor);

/// Named parameters have members; several rows (sizes) of one name share one. Members count from 0
/// in the order of writing.
std::size_t namedMemberCount();
/// The member of a name, or -1.
int namedMember(std::string_view name);
/// The first row of a member.
const TLNamedParameter& namedMemberRow(std::size_t member);

/// All lists, in the order of writing.
std::span<const TLIndexList> indexLists();
/// Place of a list in indexLists, or -1.
int findIndexList(std::string_view name);

/// True for names that a definition file may still have but nobody wants.
bool isUnwantedParameter(std::string_view name);
/// True for descriptors whose one value is read and dropped.
bool isPassedOverParameter(std::string_view descriptor);
