# Cases that need one system's facilities (child processes with resource limits,
# system-call filters, permission bits, /proc) live in files/<system>/.
file(GLOB files_system_sources CONFIGURE_DEPENDS
     ${CMAKE_CURRENT_SOURCE_DIR}/files/${TESSEL_PLATFORM_OS}/*.cc)
target_sources(test_files PRIVATE ${files_system_sources})
