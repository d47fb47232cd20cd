# The installation: a suite directory with the settings and one directory per version of the
# product. It finds everything by its own place, so that it can be moved as a whole.
#
# Its files are divided among the Debian packages by their component: "daemon" (what names none),
# "tools" and "examples". "staged" is only for the tree that stays as it is; what the packages have
# beside the tree is in TLPackages.cmake.
set(TL_PRODUCT "mire${PROJECT_VERSION_MAJOR}${PROJECT_VERSION_MINOR}")
set(TL_BIN_DIR "${TL_PRODUCT}/bin")
set(TL_TCL_DIR "${TL_PRODUCT}/_tcl")

find_path(TL_PVM_ROOT lib/pvmd PATHS $ENV{PVM_ROOT} /usr/lib/pvm3 NO_DEFAULT_PATH)
if(NOT TL_PVM_ROOT)
  set(TL_PVM_ROOT /usr/lib/pvm3)
endif()
find_program(TL_REMOTE_SHELL NAMES ssh rsh)
if(NOT TL_REMOTE_SHELL)
  set(TL_REMOTE_SHELL /usr/bin/ssh)
endif()
set(TL_SUITE_PLACE "\${SETTINGS_DIR}")
configure_file(share/suite/settings.ini.in settings.ini @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/settings.ini DESTINATION . COMPONENT staged)

# What an installation needs, without tests and benchmarks.
add_custom_target(suite DEPENDS tltaskmgr tlhostwatch tlctl killsem)
foreach(tool heatmesh velstraTurbo velstraTurbo_mpi heatpicture tlfaketool)
  if(TARGET ${tool})
    add_dependencies(suite ${tool})
  endif()
endforeach()

install(TARGETS tltaskmgr tlhostwatch killsem DESTINATION ${TL_BIN_DIR})
install(TARGETS tlctl DESTINATION ${TL_BIN_DIR} COMPONENT tools)
install(CODE "file(CREATE_LINK tltaskmgr
  \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${TL_BIN_DIR}/tltaskmgrx86_64\" SYMBOLIC)")
install(DIRECTORY share/_tcl/_taskManager DESTINATION ${TL_TCL_DIR}
  FILES_MATCHING PATTERN "*.tcl")
if(EXISTS ${PROJECT_SOURCE_DIR}/share/bin)
  install(DIRECTORY share/bin/ DESTINATION ${TL_BIN_DIR} USE_SOURCE_PERMISSIONS)
endif()

# Manual pages: those of share/man, and those made from the documents and from tlctl's own help.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(TL_MADE_MANUAL tlctl.1 tlctl-run.1 tlctl-control.1 tlctl-prepare.1 tlctl-results.1
  tltaskmgr-task.5 tltaskmgr-status.5 tltaskmgr-messages.7)
file(GLOB TL_DOCUMENTS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
add_custom_command(OUTPUT manual.stamp
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/manual-pages $<TARGET_FILE:tlctl> man
  COMMAND ${CMAKE_COMMAND} -E touch manual.stamp
  DEPENDS tlctl scripts/manual-pages ${TL_DOCUMENTS} VERBATIM)
add_custom_target(manual DEPENDS manual.stamp)
add_dependencies(suite manual)
install(DIRECTORY share/man share/completion DESTINATION ${TL_PRODUCT}/share COMPONENT staged)
install(DIRECTORY ${PROJECT_BINARY_DIR}/man DESTINATION ${TL_PRODUCT}/share COMPONENT staged OPTIONAL)

# The script libraries, under the names that the suite has always used and under their own.
find_path(TL_TCL_SCRIPTS init.tcl PATHS /usr/share/tcltk/tcl8.6 /usr/lib/tcl8.6 REQUIRED)
find_path(TL_TK_SCRIPTS tk.tcl PATHS /usr/share/tcltk/tk8.6 /usr/lib/tk8.6 REQUIRED)
find_path(TL_TIX_SCRIPTS Tix.tcl
  PATHS /usr/share/tcltk/tcl8.6/Tix8.4.3 /usr/lib/Tix8.4.3 REQUIRED)
find_path(TL_BLT_SCRIPTS bltGraph.pro PATHS /usr/lib/blt2.5 /usr/share/tcltk/blt2.5 REQUIRED)
# In the moveable tree the links are absolute, in a package relative, as Debian wants them.
function(tl_install_script_library directory)
  foreach(name ${ARGN})
    install(CODE "
      set(place \"\${CMAKE_INSTALL_PREFIX}/${TL_TCL_DIR}/_system\")
      set(target \"${directory}\")
      if(\"\${CMAKE_INSTALL_PREFIX}\" MATCHES \"^/usr/\")
        file(RELATIVE_PATH target \"\${place}\" \"${directory}\")
      endif()
      file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${place}\")
      file(CREATE_LINK \"\${target}\" \"\$ENV{DESTDIR}\${place}/${name}\" SYMBOLIC)")
  endforeach()
endfunction()
tl_install_script_library(${TL_TCL_SCRIPTS} tcl8.4 tcl8.6)
tl_install_script_library(${TL_TK_SCRIPTS} tk8.4 tk8.6)
tl_install_script_library(${TL_TIX_SCRIPTS} tix8.4)
tl_install_script_library(${TL_BLT_SCRIPTS} blt2.4 blt2.5)
