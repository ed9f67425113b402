# What `cmake --install` puts where. The programs look for their files relative to themselves
# (app/program/ProgramPaths.h, platform/ChildProcess.h), so an installed tree can be moved as a whole.
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

# nv_packed(FILE FOLDER): FILE is installed into FOLDER packed, as Debian wants pages and changelogs.
set(packed_files)
function(nv_packed FILE FOLDER)
  get_filename_component(name "${FILE}" NAME)
  set(packed "${CMAKE_BINARY_DIR}/${name}.gz")
  add_custom_command(OUTPUT "${packed}" COMMAND gzip -9nc "${FILE}" > "${packed}" DEPENDS "${FILE}" VERBATIM)
  install(FILES "${packed}" DESTINATION "${FOLDER}")
  set(packed_files ${packed_files} "${packed}" PARENT_SCOPE)
endfunction()

install(TARGETS norvelane-cli RUNTIME DESTINATION bin)
install(TARGETS norvelane-jet RUNTIME DESTINATION libexec/norvelane)
install(FILES "${CMAKE_BINARY_DIR}/nvTZ.dat" DESTINATION share/norvelane)
install(DIRECTORY "${CMAKE_SOURCE_DIR}/data/keywords" DESTINATION share/norvelane)
install(DIRECTORY "${CMAKE_BINARY_DIR}/images" DESTINATION share/norvelane)
nv_packed("${cli_page}" share/man/man1)
string(TIMESTAMP NV_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file("${CMAKE_SOURCE_DIR}/data/changelog.in" "${CMAKE_BINARY_DIR}/changelog" @ONLY)
nv_packed("${CMAKE_BINARY_DIR}/changelog" share/doc/norvelane)

# The licence of the zones' names is quoted as the field of a Debian copyright file.
file(READ "${CMAKE_SOURCE_DIR}/data/time_zones_LICENSE.txt" UNICODE_LICENSE)
string(STRIP "${UNICODE_LICENSE}" UNICODE_LICENSE)
string(REPLACE "\n\n" "\n.\n" UNICODE_LICENSE "${UNICODE_LICENSE}")
string(REPLACE "\n" "\n " UNICODE_LICENSE " ${UNICODE_LICENSE}")
configure_file("${CMAKE_SOURCE_DIR}/data/copyright.in" "${CMAKE_BINARY_DIR}/copyright" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/copyright" DESTINATION share/doc/norvelane)

if(NV_GUI)
  set(desktop "${CMAKE_SOURCE_DIR}/data/desktop")
  set(icons share/icons/hicolor/scalable)
  configure_file("${desktop}/${NV_ID}.metainfo.xml.in" "${CMAKE_BINARY_DIR}/${NV_ID}.metainfo.xml" @ONLY)
  install(TARGETS norvelane RUNTIME DESTINATION bin)
  install(TARGETS norvelane-draw RUNTIME DESTINATION libexec/norvelane)
  install(FILES "${CMAKE_SOURCE_DIR}/data/dailytips.txt" DESTINATION share/norvelane)
  install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs" DESTINATION share/norvelane
          FILES_MATCHING PATTERN "*.md" PATTERN "*-light.png" PATTERN "docs/man" EXCLUDE)
  install(FILES "${desktop}/${NV_ID}.desktop" DESTINATION share/applications)
  install(FILES "${desktop}/${NV_ID}.xml" DESTINATION share/mime/packages)
  install(FILES "${CMAKE_BINARY_DIR}/${NV_ID}.metainfo.xml" DESTINATION share/metainfo)
  install(FILES "${CMAKE_SOURCE_DIR}/data/images/norvelane-logo.svg" DESTINATION ${icons}/apps RENAME ${NV_ID}.svg)
  install(FILES "${desktop}/application-x-norvelane-project.svg" DESTINATION ${icons}/mimetypes)
  nv_packed("${CMAKE_SOURCE_DIR}/docs/man/norvelane.1" share/man/man1)
endif()
add_custom_target(nv_manual ALL DEPENDS ${packed_files})

include(NvPackage)
