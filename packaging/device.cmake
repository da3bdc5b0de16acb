# The layout of a preloaded application. The diagnostic interface's bus policy goes into a package of its own.
set(app_id com.velmor.tesk-agent)
set(app_folder ${CMAKE_INSTALL_PREFIX}/apps/${app_id})
set(TESK_EXECUTABLE ${app_folder}/bin/tesk-agent)

configure_file(device/tizen-manifest.xml.in ${CMAKE_CURRENT_BINARY_DIR}/${app_id}.xml @ONLY)

install(TARGETS tesk-agent RUNTIME DESTINATION ${app_folder}/bin)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${app_id}.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/packages)
install(FILES device/tesk-agent-diagnostics.conf DESTINATION ${CMAKE_INSTALL_FULL_SYSCONFDIR}/dbus-1/system.d)

# The contract tests as an application of their own, since ports and preferences belong to applications.
if(TESK_CONTRACT)
    set(contract_id com.example.contract)
    set(contract_folder ${CMAKE_INSTALL_PREFIX}/apps/${contract_id})
    set(TESK_CONTRACT_EXECUTABLE ${contract_folder}/bin/tesk-agent-contract)
    configure_file(device/contract-manifest.xml.in ${CMAKE_CURRENT_BINARY_DIR}/${contract_id}.xml @ONLY)
    configure_file(device/contract.in ${CMAKE_CURRENT_BINARY_DIR}/tesk-agent-contract @ONLY)
    install(TARGETS tesk-agent-contract RUNTIME DESTINATION ${contract_folder}/bin)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${contract_id}.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/packages)
    install(PROGRAMS ${CMAKE_CURRENT_BINARY_DIR}/tesk-agent-contract DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# The scriptlet of the package that makes the service's keys.
set(TESK_KEYS_LABEL tizen::vconf::platform::rw CACHE STRING "Security label of the service's keys in the settings store")
file(STRINGS device/shared-keys rows REGEX "^[^#]")
list(TRANSFORM rows REPLACE "^([^ ]+) (.+)$" "vconftool set -t \\1 \\2 -i -f -s ${TESK_KEYS_LABEL}")
list(JOIN rows "\n" calls)
configure_file(device/make-keys.in ${CMAKE_CURRENT_BINARY_DIR}/make-keys @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS device/shared-keys)
