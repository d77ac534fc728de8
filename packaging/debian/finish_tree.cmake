# Gives the tree of the package what only a package has: Debian's changelog, and the manual page compressed. CPack runs
# it on the tree that it has installed, before it packs that.
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)

# compress(FILE): as FILE.gz, without name and time, so that equal texts make equal packages.
function(compress file)
  execute_process(COMMAND gzip -9 -n -f ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

compress(${share}/man/man1/parvex.1)
configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${share}/doc/parvex/changelog.Debian @ONLY)
compress(${share}/doc/parvex/changelog.Debian)
