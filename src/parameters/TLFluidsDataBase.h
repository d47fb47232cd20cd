#pragma once

#include <string_view>
#include <vector>

#include "parameters/TLFluid.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"

/// The fluids that are at hand, in their order, with a list of their names.
class TLFluidsDataBase : public RefCounted {
 public:
  /// Appends a fluid, which must not be null and is shared; equal names are kept.
  void add(Handle<TLFluid> fluid) {
    names.push_back(fluid->fluidName);
    fluids.push_back(std::move(fluid));
  }

  /// The first fluid of that name, or null.
  Handle<TLFluid> find(std::string_view name) const {
    for (const auto& fluid : fluids) {
      if (fluid->fluidName == name) return fluid;
    }
    return nullptr;
  }

  std::vector<Handle<TLFluid>> fluids;  ///< Parallel to `names`.
  std::vector<RWCString> names;         ///< Of each fluid when it was added.
};
