# Debian packages of the installation: the tree of TLInstall.cmake in /usr/lib/tltaskmgr, and beside
# it what Debian has its own places for. scripts/package builds them.
#
# What stands here is left out of a plain "cmake --install", which makes the tree alone.
set(TL_PACKAGE_ROOT /usr/lib/tltaskmgr)
set(TL_PACKAGING ${PROJECT_SOURCE_DIR}/packaging)

# tl_package_link(COMPONENT LINK TARGET): a symbolic link in a package.
function(tl_package_link component link target)
  get_filename_component(directory ${link} DIRECTORY)
  install(CODE "file(MAKE_DIRECTORY \"\$ENV{DESTDIR}${directory}\")
    file(CREATE_LINK \"${target}\" \"\$ENV{DESTDIR}${link}\" SYMBOLIC)"
    COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

# tl_package_compressed(COMPONENT SOURCE TARGET): SOURCE as TARGET.gz in a package, the same bytes at
# each build.
function(tl_package_compressed component source target)
  get_filename_component(directory ${target} DIRECTORY)
  install(CODE "file(MAKE_DIRECTORY \"\$ENV{DESTDIR}${directory}\")
    execute_process(COMMAND gzip -9nc \"${source}\" OUTPUT_FILE \"\$ENV{DESTDIR}${target}.gz\"
      COMMAND_ERROR_IS_FATAL ANY)"
    COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

# The machine's settings. The tree looks for them beside itself and finds this link.
set(TL_SUITE_PLACE ${TL_PACKAGE_ROOT})
set(TL_PVM_ROOT /usr/lib/pvm3)
set(TL_REMOTE_SHELL /usr/bin/ssh)
configure_file(share/suite/settings.ini.in package/settings.ini @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/settings.ini DESTINATION /etc/tltaskmgr
  COMPONENT daemon EXCLUDE_FROM_ALL)
tl_package_link(daemon ${TL_PACKAGE_ROOT}/settings.ini /etc/tltaskmgr/settings.ini)
file(WRITE ${PROJECT_BINARY_DIR}/package/conffiles "/etc/tltaskmgr/settings.ini\n")

# The programs on everybody's path.
file(GLOB TL_SHARED_PROGRAMS CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/share/bin
  ${PROJECT_SOURCE_DIR}/share/bin/*)
foreach(program tltaskmgr killsem ${TL_SHARED_PROGRAMS})
  tl_package_link(daemon /usr/bin/${program} ../lib/tltaskmgr/${TL_BIN_DIR}/${program})
endforeach()
tl_package_link(tools /usr/bin/tlctl ../lib/tltaskmgr/${TL_BIN_DIR}/tlctl)
tl_package_link(examples /usr/bin/tltaskmgr-demo
  ../lib/tltaskmgr/${TL_EXAMPLES_DIR}/heat/run-demo)

# Manual pages: those of tlctl and of the demo go with their programs.
file(GLOB TL_MANUAL CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/share/man/man?/*.?)
foreach(page ${TL_MADE_MANUAL})
  string(REGEX REPLACE "^.*\\." "" section ${page})
  list(APPEND TL_MANUAL ${PROJECT_BINARY_DIR}/man/man${section}/${page})
endforeach()
foreach(page ${TL_MANUAL})
  get_filename_component(name ${page} NAME)
  string(REGEX REPLACE "^.*\\." "" section ${name})
  set(component daemon)
  if(name MATCHES "^tlctl")
    set(component tools)
  elseif(name MATCHES "-demo")
    set(component examples)
  endif()
  tl_package_compressed(${component} ${page} /usr/share/man/man${section}/${name})
endforeach()

install(FILES share/completion/tlctl.bash DESTINATION /usr/share/bash-completion/completions
  RENAME tlctl COMPONENT tools EXCLUDE_FROM_ALL)
install(FILES share/completion/tlctl.zsh DESTINATION /usr/share/zsh/vendor-completions
  RENAME _tlctl COMPONENT tools EXCLUDE_FROM_ALL)
install(FILES share/completion/tlctl.fish DESTINATION /usr/share/fish/vendor_completions.d
  COMPONENT tools EXCLUDE_FROM_ALL)

# Documents, and the sources of the examples to read and to begin with.
install(FILES README.md CONTRIBUTING.md DESTINATION /usr/share/doc/tltaskmgr
  COMPONENT daemon EXCLUDE_FROM_ALL)
install(DIRECTORY docs DESTINATION /usr/share/doc/tltaskmgr COMPONENT daemon EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.svg")
install(DIRECTORY examples/heat DESTINATION /usr/share/doc/tltaskmgr-examples/examples
  COMPONENT examples EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN "*.cpp" PATTERN "*.h" PATTERN "*.txt")
foreach(package daemon:tltaskmgr tools:tltaskmgr-tools examples:tltaskmgr-examples)
  string(REGEX REPLACE ":.*" "" component ${package})
  string(REGEX REPLACE ".*:" "" name ${package})
  install(FILES ${TL_PACKAGING}/copyright DESTINATION /usr/share/doc/${name}
    COMPONENT ${component} EXCLUDE_FROM_ALL)
  file(WRITE ${PROJECT_BINARY_DIR}/package/${name}
    "# These packages are not for Debian's own archive.\n${name}: initial-upload-closes-no-bugs\n")
  install(FILES ${PROJECT_BINARY_DIR}/package/${name} DESTINATION /usr/share/lintian/overrides
    COMPONENT ${component} EXCLUDE_FROM_ALL)
  tl_package_compressed(${component} ${TL_PACKAGING}/changelog
    /usr/share/doc/${name}/changelog.Debian)
  tl_package_compressed(${component} ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    /usr/share/doc/${name}/changelog)
endforeach()

# What CPack is to know.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX ${TL_PACKAGE_ROOT})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL daemon tools examples)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "tltaskmgr maintainers <maintainers@tltaskmgr.example.org>")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(TL_PACKAGE_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

set(CPACK_DEBIAN_DAEMON_PACKAGE_NAME tltaskmgr)
set(CPACK_DEBIAN_DAEMON_PACKAGE_DEPENDS "pvm, openssh-client, fonts-dejavu-core")
set(CPACK_DEBIAN_DAEMON_PACKAGE_RECOMMENDS "tltaskmgr-tools")
set(CPACK_DEBIAN_DAEMON_PACKAGE_SUGGESTS
  "tltaskmgr-examples, gridengine-client, openmpi-bin, openssh-server")
set(CPACK_DEBIAN_DAEMON_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/package/conffiles)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME tltaskmgr-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "tltaskmgr (= ${TL_PACKAGE_VERSION}), xvfb")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "tltaskmgr-examples")
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_NAME tltaskmgr-examples)
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_DEPENDS "tltaskmgr-tools (= ${TL_PACKAGE_VERSION})")
set(CPACK_DEBIAN_EXAMPLES_PACKAGE_SUGGESTS "openmpi-bin")
foreach(component DAEMON TOOLS EXAMPLES)
  file(READ ${TL_PACKAGING}/${CPACK_DEBIAN_${component}_PACKAGE_NAME}.description
    CPACK_DEBIAN_${component}_DESCRIPTION)
endforeach()
include(CPack)
