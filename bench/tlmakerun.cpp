#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>

#include "support/RunFileGenerator.h"

// Writes a run file of any size, for benchmarks and for trying things out.
int main(int argc, char** argv) {
  RunFileOptions options;
  std::string output;
  CLI::App app(
      "Writes a run file of any size.\n\n"
      "  tlmakerun --blocks 25 20 20 --patches 5 big.run\n"
      "  tlmakerun --unstructured --processors 16 hexa.run");
  app.add_option("output", output, "the file to write")->required();
  app.add_option("--blocks", options.blocks, "blocks of the lattice in I, J, K");
  app.add_option("--nodes", options.nodes, "nodes of a block in I, J, K");
  app.add_option("--spread", options.sizeSpread, "by how many nodes the blocks may differ");
  app.add_option("--patches", options.patchesPerFace, "patches of each face");
  app.add_option("--fnmb", options.fullNonMatching, "full non-matching connections");
  app.add_option("--conditions", options.conditionRecords, "condition records");
  app.add_flag("--unstructured", options.unstructured, "a HEXA project");
  app.add_option("--processors", options.processors, "unstructured: processors of the run");
  app.add_option("--parameters", options.furtherParameters, "unstructured: further parameters");
  app.add_option("--grid-file", options.gridFile, "path of the mesh file");
  app.add_option("--seed", options.seed, "seed of the blocks' sizes");
  CLI11_PARSE(app, argc, argv);
  std::ofstream file(output, std::ios::binary);
  file << RunFileGenerator(options).runFile();
  file.close();
  if (file.good()) return 0;
  std::cerr << "tlmakerun: cannot write " << output << '\n';
  return 1;
}
