#pragma once

#include "parameters/TLParameters.h"

/// The parameters of the structured flow solver with their default values, as "velstra.def" in
/// VELSTRA_DIR lists them. One object for the process, read at its first use.
class TLParametersDataBase : public TLParameters {
 public:
  /// The object. Its first use reads the definition file, and waits for it when there is no good
  /// one (see init).
  static TLParametersDataBase& instance();

  TLParametersDataBase() = default;

  /// Reads the definition file. Without the file, or without the line that starts the list in it,
  /// there is nothing to go on with: a run file read with an empty database would be written back
  /// without its parameters. So this says what is missing, looks again every second, and goes on
  /// when a good file is there.
  void init() override;

  /// Reads the text of a definition file. False when the word that starts the list is missing.
  bool readDefinition(TLTextSource& stream);

  /// Path of the definition file.
  static RWCString definitionPath();
  /// Lets this process, which only looks at files, do without a definition file: when there is no
  /// good one, the database is empty. To be called before the first use.
  static void doWithout();
  /// What keeps the definition file from being read: the file and what to do about it. Empty when
  /// it is good. For whoever must not wait.
  static RWCString problem();

 private:
  static bool mayDoWithout_;
  enum class Kind { generic, skipped, named };
  Kind classify(std::string_view descriptor) const;
};
