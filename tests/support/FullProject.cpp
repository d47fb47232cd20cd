#include "support/FullProject.h"

#include "support/RunFileGenerator.h"

std::string fullProject(const TTempDir& dir) {
  for (const char* name : {"w/m.zyv",
                           "w/m.bcs",
                           "w/m.cgns",
                           "w/m.adf",
                           "w/g.trb",
                           "w/g.dat",
                           "w/tables",
                           "old/old.run",
                           "old/old.cgns",
                           "old/old.res",
                           "w/in.prf",
                           "ref/ref.cgns",
                           "ref/rm.zyv",
                           "ref/rm.cgns",
                           "ref/rm.adf",
                           "w/duct.cgns",
                           "w/duct.cooling-holes",
                           "w/duct.mf",
                           "w/duct.me.qvk",
                           "w/duct.me.bc",
                           "w/duct.me.uni",
                           "w/duct.wall"}) {
    dir.write(name, name);
  }
  RunFileOptions reference;
  reference.gridFile = dir.file("ref/rm.zyv");
  dir.write("ref/ref.run", RunFileGenerator(reference).runFile());
  RunFileOptions options;
  options.gridFile = dir.file("w/m.zyv");
  options.computationLines = "    REFERENCE_RUN_FILE               " + dir.file("ref/ref.run") +
                             "\n    TL_BEGIN initial_solution\n      KIND file\n      FILE " +
                             dir.file("old/old.run") + "\n    TL_END initial_solution\n";
  options.solverParameters =
      "VELSTRA,L,1,0, 2\nTHEFIL,L,1,1,0\n" + dir.file("w/tables") + "\nIMUWAL,I,1,1,0\n 1\n";
  std::string text = RunFileGenerator(options).runFile();
  text.insert(text.find('\n') + 1,
              "TRB_FILE " + dir.file("w/g.trb") + "\nGEOMETRY_FILE " + dir.file("w/g.dat") + "\n");
  const std::string entry =
      "TL_BEGIN physical_entry\nNAME Static Temperature\nTYPE variable\n"
      "VARIABLETYPE fct(space)\nEXTERNAL_PROFILE " +
      dir.file("w/in.prf") + "\nTL_END physical_entry\n";
  const auto inlet = text.find("TYPE_ID                 11");
  text.replace(inlet, 26, "TYPE_ID                 28");
  text.insert(text.find('\n', text.find('\n', inlet) + 1) + 1, entry);
  return text;
}

std::string unstructuredProject(const TTempDir& dir, const std::string& mesh,
                                const std::string& solution) {
  RunFileOptions options;
  options.unstructured = true;
  options.gridFile = mesh;
  options.computationLines =
      "    TL_BEGIN initial_solution\n      KIND const\n    TL_END initial_solution\n"
      "    TL_BEGIN initial_solution\n      KIND file\n      FILE " +
      solution + "\n    TL_END initial_solution\n";
  dir.write("p/_mesh/m.zyv", "mesh");
  dir.write("p/c/c.p4pg", "hosts");
  return dir.write("p/c/c.run", RunFileGenerator(options).runFile());
}
