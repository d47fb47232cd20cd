# All of these come as packages of the distribution; scripts/install-dependencies installs them.
find_package(fmt REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(Boost REQUIRED)
if(TL_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(TL_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()

# PVM 3: only the virtual machine layer and the example tools link it.
find_path(TL_PVM_INCLUDE pvm3.h REQUIRED)
find_library(TL_PVM_LIBRARY NAMES pvm3 REQUIRED)
add_library(PVM::pvm3 INTERFACE IMPORTED)
set_target_properties(PVM::pvm3 PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES ${TL_PVM_INCLUDE}
  INTERFACE_LINK_LIBRARIES ${TL_PVM_LIBRARY})

# Tcl/Tk with Tix and BLT: only the session links them.
find_path(TL_TCL_INCLUDE tcl.h PATH_SUFFIXES tcl8.6 REQUIRED)
find_library(TL_TCL_LIBRARY NAMES tcl8.6 REQUIRED)
find_library(TL_TK_LIBRARY NAMES tk8.6 REQUIRED)
find_library(TL_TIX_LIBRARY NAMES Tix8.4.3 REQUIRED)
find_library(TL_BLT_LIBRARY NAMES BLT.2.5 BLT REQUIRED)
add_library(TL::script INTERFACE IMPORTED)
set_target_properties(TL::script PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES ${TL_TCL_INCLUDE}
  INTERFACE_LINK_LIBRARIES "${TL_TIX_LIBRARY};${TL_BLT_LIBRARY};${TL_TK_LIBRARY};${TL_TCL_LIBRARY}")

# METIS: the alternative distribution of blocks.
find_path(TL_METIS_INCLUDE metis.h REQUIRED)
find_library(TL_METIS_LIBRARY NAMES metis REQUIRED)
add_library(METIS::metis INTERFACE IMPORTED)
set_target_properties(METIS::metis PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES ${TL_METIS_INCLUDE}
  INTERFACE_LINK_LIBRARIES ${TL_METIS_LIBRARY})
