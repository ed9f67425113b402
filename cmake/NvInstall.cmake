# What `cmake --install` puts where. The programs look for their files relative to themselves
# (app/ProgramPaths.h, platform/ChildProcess.h), so an installed tree can be moved as a whole.
include(GNUInstallDirs)

set(NV_ID org.norvelane.Norvelane)

# SOURCE_DATE_EPOCH in the environment fixes it: two builds of one commit are the same.
string(TIMESTAMP NV_BUILD_DATE "%Y-%m-%d" UTC)

# The manual page of the command line is written from its grammar.
set(cli_page "${CMAKE_BINARY_DIR}/norvelane-cli.1")
add_custom_command(
  OUTPUT "${cli_page}"
  COMMAND norvelane-man ${NV_BUILD_DATE} > "${cli_page}"
  DEPENDS norvelane-man
  COMMENT "Writing the manual page of norvelane-cli"
  VERBATIM)
add_custom_target(nv_manual ALL DEPENDS "${cli_page}")

install(TARGETS norvelane-cli RUNTIME DESTINATION bin)
install(TARGETS norvelane-jet RUNTIME DESTINATION libexec/norvelane)
install(FILES "${CMAKE_BINARY_DIR}/nvTZ.dat" DESTINATION share/norvelane)
install(DIRECTORY "${CMAKE_SOURCE_DIR}/data/keywords" DESTINATION share/norvelane)
install(DIRECTORY "${CMAKE_BINARY_DIR}/images" DESTINATION share/norvelane)
install(FILES "${cli_page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
install(FILES "${CMAKE_SOURCE_DIR}/README.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

# The licence of the zones' names is quoted as the field of a Debian copyright file.
file(READ "${CMAKE_SOURCE_DIR}/data/time_zones_LICENSE.txt" UNICODE_LICENSE)
string(STRIP "${UNICODE_LICENSE}" UNICODE_LICENSE)
string(REPLACE "\n\n" "\n.\n" UNICODE_LICENSE "${UNICODE_LICENSE}")
string(REPLACE "\n" "\n " UNICODE_LICENSE " ${UNICODE_LICENSE}")
configure_file("${CMAKE_SOURCE_DIR}/data/copyright.in" "${CMAKE_BINARY_DIR}/copyright" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/copyright" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

if(NV_GUI)
  set(desktop "${CMAKE_SOURCE_DIR}/data/desktop")
  set(icons share/icons/hicolor/scalable)
  configure_file("${desktop}/${NV_ID}.metainfo.xml.in" "${CMAKE_BINARY_DIR}/${NV_ID}.metainfo.xml" @ONLY)
  install(TARGETS norvelane RUNTIME DESTINATION bin)
  install(TARGETS norvelane-draw RUNTIME DESTINATION libexec/norvelane)
  install(FILES "${CMAKE_SOURCE_DIR}/data/dailytips.txt" DESTINATION share/norvelane)
  install(FILES "${desktop}/${NV_ID}.desktop" DESTINATION share/applications)
  install(FILES "${desktop}/${NV_ID}.xml" DESTINATION share/mime/packages)
  install(FILES "${CMAKE_BINARY_DIR}/${NV_ID}.metainfo.xml" DESTINATION share/metainfo)
  install(FILES "${CMAKE_SOURCE_DIR}/data/images/norvelane-logo.svg" DESTINATION ${icons}/apps RENAME ${NV_ID}.svg)
  install(FILES "${desktop}/application-x-norvelane-project.svg" DESTINATION ${icons}/mimetypes)
  install(FILES "${CMAKE_SOURCE_DIR}/docs/man/norvelane.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
endif()

include(NvPackage)
