# Installs the libraries, the program and the public headers; `find_package(quvex)` then gives `quvex::quvex`.
include(CMakePackageConfigHelpers)

set(header_dir "${CMAKE_INSTALL_INCLUDEDIR}/quvex")
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/quvex")

# What include/quvex.h reaches; the consumer test fails when one is missing.
set(public_headers qvexception qvexpression qvmodel qvoperator qvparam qvphase qvsolution qvstate qvstatistics qvversion
                   quvex)
list(TRANSFORM public_headers REPLACE "(.+)" "include/api/\\1.h")
install(FILES include/quvex.h DESTINATION "${header_dir}")
install(FILES ${public_headers} DESTINATION "${header_dir}/api")
install(FILES include/solver/kernel/types.h DESTINATION "${header_dir}/solver/kernel")
# The flat functions, for clients in C and in languages that read C headers.
install(FILES wrappers/csharp/quvexnativenet.h wrappers/csharp/exports.def DESTINATION "${header_dir}")

install(TARGETS quvex EXPORT quvexTargets)
install(TARGETS quvexnativenet)
install(EXPORT quvexTargets NAMESPACE quvex:: DESTINATION "${package_dir}")
if(TARGET quvex_cli)
  install(TARGETS quvex_cli)
endif()

configure_package_config_file(cmake/quvexConfig.cmake.in quvexConfig.cmake INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file(quvexConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/quvexConfig.cmake" "${PROJECT_BINARY_DIR}/quvexConfigVersion.cmake"
        DESTINATION "${package_dir}")
