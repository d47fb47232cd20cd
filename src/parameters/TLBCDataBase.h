#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "parameters/TLBCBackwardRecord.h"
#include "parameters/TLBCParameters.h"

/// The kinds of boundary conditions that a solver knows, from its definition file: one object for
/// the process, empty until loaded.
class TLBCDataBase {
 public:
  /// The object of the process, made on first use.
  static TLBCDataBase& instance();

  /// Reads the file for a solver (the project type's code: 2 is the unstructured solver, all others
  /// the structured one) from VELSTRA_DIR; mode 1 is the automatic mode of the unstructured solver.
  /// Replaces what is held. Without VELSTRA_DIR, without the file or on a malformed one a message,
  /// and the process ends, status 0.
  void load(std::int32_t solverKind, std::int32_t mode);
  /// Reads the lines of a definition file. 1, 0 on a malformed line, or -1, with a message, when a
  /// backward record names a kind that the file lacks.
  int read(TLTextSource& source);

  /// The definition of a kind, or the target of the backward record that names it as its old kind.
  /// An unknown kind is told on the console, remembered, and answered with an empty record. Never
  /// null; the record belongs to the database: clone it before changing it.
  Handle<TLBCParameters> find(std::int32_t typeId, std::int32_t typeOpsel);

  /// `record`, read from a project, brought in line with the database: a new record from the
  /// definition of its kind with the values that `record` has under the same names, or for an old
  /// kind also at the places that its backward record pairs. For a kind that `find` doesn't know
  /// the answer is `record` itself, so that nothing is lost.
  Handle<TLBCParameters> inLine(const Handle<TLBCParameters>& record);

  /// The kinds in the order of the file; of two with one pair the first is found.
  const std::vector<Handle<TLBCParameters>>& definitions() const { return definitions_; }
  /// What the backward records lead to, one for each and parallel to them.
  const std::vector<Handle<TLBCParameters>>& backwardTargets() const { return backwardTargets_; }
  /// The backward records in the order of the file.
  const std::vector<Handle<TLBCBackwardRecord>>& backwardRecords() const {
    return backwardRecords_;
  }
  /// The kind last asked for in vain; both -1 when there was none.
  std::int32_t missingTypeId() const { return missingTypeId_; }
  /// The option of that kind.
  std::int32_t missingTypeOpsel() const { return missingTypeOpsel_; }

 private:
  friend struct TLBCDataBaseKeys;
  using Kind = std::uint64_t;
  static Kind kindOf(std::int32_t typeId, std::int32_t typeOpsel);
  Handle<TLBCParameters> known(std::int32_t typeId, std::int32_t typeOpsel) const;
  void addDefinition(const Handle<TLBCParameters>& definition);
  bool addBackward(const Handle<TLBCBackwardRecord>& record);

  std::vector<Handle<TLBCParameters>> definitions_;
  std::vector<Handle<TLBCParameters>> backwardTargets_;
  std::vector<Handle<TLBCBackwardRecord>> backwardRecords_;  ///< parallel to the targets
  std::unordered_map<Kind, std::size_t> definitionOf_;       ///< the first of each kind
  std::unordered_map<Kind, std::size_t> backwardOf_;
  Handle<TLBCParameters> empty_ = makeHandle<TLBCParameters>();
  bool wrongBackward_ = false;
  std::int32_t missingTypeId_ = -1;
  std::int32_t missingTypeOpsel_ = -1;
};
