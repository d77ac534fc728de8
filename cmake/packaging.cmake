# What is installed beside the programs, and the Debian package that carries all of it.
#
#   cmake --install BUILD --prefix DIR
#   cpack --config BUILD/CPackConfig.cmake -G DEB
include(GNUInstallDirs)

# The program writes down its own command line.
set(references ${CMAKE_BINARY_DIR}/references)
file(MAKE_DIRECTORY ${references})
add_custom_command(
  OUTPUT ${references}/parvex.1 ${references}/completion
  COMMAND parvex manual > ${references}/parvex.1
  COMMAND parvex completion > ${references}/completion
  DEPENDS parvex
  COMMENT "Writing the manual page and the completion")
add_custom_target(references ALL DEPENDS ${references}/parvex.1 ${references}/completion)

install(FILES ${references}/parvex.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${references}/completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME parvex)
install(FILES README.md ARCHITECTURE.md CHANGELOG.md CONTRIBUTING.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The Parvex developers")
set(CPACK_PACKAGE_CONTACT "The Parvex developers <developers@parvex.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION "Carries out the commands of a newer catalogue and selection front end
against an installed legacy selection application, and turns its
selections into quote documents of the Hybris commerce platform and back.
A folder stands for the Windows machine; a sample machine with a
substitute application comes along.")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Folders and files as a package wants them, whatever the umask of who builds it.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/finish_tree.cmake)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_VERSION ${PROJECT_VERSION})
# A package of Debian 13 is later than one of Debian 12 with the same sources, so that an upgrade of the system takes it.
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
if(EXISTS /etc/os-release)
  file(STRINGS /etc/os-release release REGEX "^(ID|VERSION_ID)=")
  if(release MATCHES "ID=debian" AND release MATCHES "VERSION_ID=\"?([0-9]+)")
    string(APPEND CPACK_DEBIAN_PACKAGE_RELEASE "~deb${CMAKE_MATCH_1}")
  endif()
endif()
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
