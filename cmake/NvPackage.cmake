# The Debian package, made by `cpack -G DEB` in the build folder (scripts/package does all of it).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME norvelane)
set(CPACK_PACKAGE_VENDOR "The Norvelane authors")
# Who passes the package on puts an address in: cpack -D CPACK_PACKAGE_CONTACT="NAME <ADDRESS>".
set(CPACK_PACKAGE_CONTACT "The Norvelane authors <norvelane@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "examine the caches and histories of web browsers")
set(CPACK_PACKAGE_DESCRIPTION
    "Norvelane finds browser histories, caches and cookies in a seized folder,
stores every event that it can read as one row of a project file, and lets
an examiner filter, query, view and report them.

Evidence is only ever read, and never leads to a network connection. The
window and the headless program norvelane-cli do the same work.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
# A strict umask must not leave folders that only root can enter.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The exact time zones: read at run time, so that no linker sees it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS tzdata)
if(NV_GUI)
  # What is loaded at run time, so that no linker sees it: decoders of pictures, the icons' and the
  # screen's plugins, and a font (the web engine draws no letter without one).
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS
         ", libqt6svg6, qt6-image-formats-plugins, qt6-qpa-plugins, fonts-dejavu-core | fonts-liberation | fonts-noto-core")
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, xdg-utils")
endif()
include(CPack)
