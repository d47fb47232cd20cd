#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "parameters/TLDescriptor.h"
#include "parameters/TLParametersDataBaseInfo.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

class TLParametersDataBase;

/// The settings of the structured flow solver. Some 240 parameters are known to the program by name
/// and have a member each; any number of further, generic ones is only carried, as the definition
/// file lists them. A named parameter whose descriptor is empty is not in use and not written.
///
/// Single values are reached by descriptor ("COOLFL,I,1,1,0"), of which only the name counts for
/// asking.
class TLParameters : public RefCounted {
 public:
  TLParameters();

  /// Takes everything over from the database (which reads its file on first use) and applies the
  /// fixed settings: the quantities that every computation puts out.
  virtual void init();
  /// Orders the generic parameters by name, values and comments with them.
  virtual void sortByName();
  /// Values of a generic parameter that no named member takes: goes to the entry that the reading
  /// has found for it, or is read and dropped.
  virtual void readValue(std::string_view descriptor, std::string_view firstValue,
                         TLTextSource& stream);

  /// Reads the body of a "solver_parameters" block: its header line and as many parameters as that
  /// says. Generic parameters start from the database; what it doesn't know is dropped. A record
  /// that was never initialised takes the named ones over, too. Always 1.
  int read(TLTextSource& stream);
  /// Writes the body of a "solver_parameters" block.
  void write(TLTextSink& sink) const;

  /// Gives a value (and, read from `stream`, any further ones) to the parameter of this descriptor.
  void setByDescriptor(std::string_view descriptor, std::string_view firstValue,
                       TLTextSource& stream);

  /// @name Single parameters.
  /// @{

  /// True when a parameter of this name is in use.
  bool has(std::string_view descriptor) const;
  /// The descriptor in use for this name, empty when it isn't.
  RWCString descriptorOf(std::string_view descriptor) const;
  /// All values; empty when it isn't in use or holds values of another type.
  std::vector<std::int32_t> integers(std::string_view descriptor) const;
  /// The same of a real parameter.
  std::vector<double> reals(std::string_view descriptor) const;
  /// Value of a text parameter, blanks within kept; empty when it isn't in use.
  RWCString text(std::string_view descriptor) const;
  /// Gives the parameter this descriptor and these values. A name that nobody knows becomes a new
  /// generic parameter. The values are cut or filled with 0 to the descriptor's number. Nothing for
  /// a descriptor of another type.
  void setIntegers(std::string_view descriptor, std::vector<std::int32_t> values);
  /// The same for a real parameter.
  void setReals(std::string_view descriptor, std::vector<double> values);
  /// The same for a text parameter, which has one value.
  void setText(std::string_view descriptor, std::string_view value);
  /// @}

  /// Whether the solver partitions the mesh itself. Carried for the solver's launch, no part of the
  /// block.
  std::int32_t virtualPartitionActivated = 0;

  /// One parameter as it is written: its descriptor, and its values one blank apart.
  struct Item {
    RWCString descriptor;  ///< All five fields.
    RWCString values;      ///< As they are written; a text as it stands.
  };
  /// All that `write` puts out behind its header, in that order.
  std::vector<Item> items() const;

 protected:
  /// A parameter that the definition file lists and no named member takes.
  template <class T>
  struct Generic {
    RWCString descriptor;                   ///< As in the file, all five fields.
    RWCString name;                         ///< Its first field.
    std::vector<T> values;                  ///< As many as the descriptor says.
    Handle<TLParametersDataBaseInfo> info;  ///< null for one that no definition has
  };
  /// A named parameter; which of the values it has is told by its type.
  struct Member {
    RWCString descriptor;                ///< empty: not in use
    std::vector<std::int32_t> integers;  ///< Empty unless it is an integer parameter.
    std::vector<double> reals;           ///< Empty unless it is a real one.
    RWCString text;                      ///< Empty unless it is a text.
  };

  /// True when the record has a generic parameter of this name.
  bool hasGeneric(std::string_view name) const;
  /// Adds a generic parameter with its values from the stream. False, and nothing is read, for one
  /// that is neither integer nor real.
  bool addGeneric(const TLDescriptor& parsed, std::string_view descriptor,
                  const Handle<TLParametersDataBaseInfo>& info, TLTextSource& stream);
  /// Puts the output quantities of every computation in.
  void applyFixedSettings();

 private:
  // Where a generic parameter stands.
  struct Place {
    TLParameterType type = TLParameterType::unknown;
    std::size_t index = 0;
    bool found() const { return type != TLParameterType::unknown; }
  };
  template <class T>
  std::vector<Generic<T>>& generics();
  template <class T>
  void fill(Generic<T>& entry, std::size_t count, std::string_view first, TLTextSource& stream);
  template <class T>
  void setValues(std::string_view descriptor, TLParameterType type, std::vector<T> values);
  void fillAt(Place place, std::size_t count, std::string_view first, TLTextSource& stream);
  Place find(std::string_view name) const;
  void index();
  void copyGenerics(const TLParameters& other);
  void readOne(TLTextSource& stream);
  bool readChanged(Place place, std::string_view descriptor, const TLDescriptor& parsed,
                   std::string_view first, TLTextSource& stream);
  void restoreUntoldLists(const std::vector<std::vector<std::int32_t>>& former);
  void addMemberItem(std::size_t member, std::vector<Item>& items) const;
  void addListItems(std::string_view countedBy, std::vector<Item>& items) const;
  template <class T>
  static void addGenericItems(const std::vector<Generic<T>>& generics, std::vector<Item>& items);

  std::vector<Member> members_;
  std::vector<std::vector<std::int32_t>> lists_;  ///< the index lists
  std::vector<bool> told_;                        ///< lists whose numbers the file tells
  std::vector<Generic<std::int32_t>> ints_;
  std::vector<Generic<double>> reals_;
  std::unordered_map<RWCString, Place> places_;
  Place remembered_;  ///< the entry that a reading has found for its parameter
  bool initialised_ = false;
};
