# A Debian package with everything for a watch on the desk. The host platform is private to the programs, which find it relative
# to themselves.

install(TARGETS tesk-agent deskwatch RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT desk)
install(TARGETS tesk-platform LIBRARY DESTINATION ${tesk_library_folder} COMPONENT desk)

set(document_folder ${CMAKE_INSTALL_DATADIR}/doc/tesk-agent-desk)

find_program(GZIP gzip REQUIRED)
configure_file(desk/tesk-agent.1.in ${CMAKE_CURRENT_BINARY_DIR}/tesk-agent.1 @ONLY)
configure_file(desk/changelog.in ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian @ONLY)

# The build has deskwatch write its own manual page and completion.
set(deskwatch_documents ${PROJECT_BINARY_DIR}/deskwatch)

foreach(text IN ITEMS
        ${deskwatch_documents}/deskwatch.1
        ${CMAKE_CURRENT_BINARY_DIR}/tesk-agent.1
        ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian)
    get_filename_component(name ${text} NAME)
    add_custom_command(
        OUTPUT ${name}.gz
        COMMAND ${GZIP} --best --no-name --stdout ${text} > ${name}.gz
        DEPENDS ${text} deskwatch
        VERBATIM)
endforeach()
add_custom_target(desk-documents ALL DEPENDS deskwatch.1.gz tesk-agent.1.gz changelog.Debian.gz)

install(FILES ${CMAKE_CURRENT_BINARY_DIR}/deskwatch.1.gz ${CMAKE_CURRENT_BINARY_DIR}/tesk-agent.1.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT desk)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz DESTINATION ${document_folder} COMPONENT desk)
install(FILES desk/copyright DESTINATION ${document_folder} COMPONENT desk)
install(FILES ${deskwatch_documents}/deskwatch.bash RENAME deskwatch
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT desk)
# As in the sources, so that the pages' links lead somewhere.
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md
    DESTINATION ${document_folder} COMPONENT desk)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/README.md DESTINATION ${document_folder}/packaging COMPONENT desk)
install(FILES ${PROJECT_SOURCE_DIR}/bench/ledger.md DESTINATION ${document_folder}/bench COMPONENT desk)
# The sample of a mail application is a program that boot --mail runs.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/samples DESTINATION ${document_folder} COMPONENT desk
    PATTERN "*.py" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# For those who write applications of a watch: the platform's C API, and what its processes say to each other on a desk.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tesk-agent-desk COMPONENT desk)
install(FILES ${PROJECT_SOURCE_DIR}/platform/bus/tesk-host.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces
    COMPONENT desk RENAME tesk.host.xml)
install(FILES ${PROJECT_SOURCE_DIR}/deskwatch/bus/companion.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces
    COMPONENT desk RENAME tesk.desk.Companion.xml)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL desk)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_DESK_PACKAGE_NAME tesk-agent-desk)
set(CPACK_DEBIAN_DESK_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "tesk-agent developers <tesk-agent@invalid.example>")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
# a watch runs these programs
set(CPACK_DEBIAN_PACKAGE_DEPENDS "dbus-daemon, dconf-service, libnss-wrapper")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Enforce Exchange policies on a watch on the desk")
set(CPACK_COMPONENT_DESK_DESCRIPTION
"The service that enforces Exchange ActiveSync policies on a watch, a host
platform for it on Linux, and deskwatch, which boots a watch in a folder, sends
it the policies of mail accounts and shows what the service does with them.")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)
