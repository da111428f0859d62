# What is installed, by component: Runtime, the shared library; Development, what programs are built
# with; Programs, zarn-ingest and zarn-moon with what belongs to them; Documentation. The module in
# python/ is Python.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

target_include_directories(ZarnSysUtil PUBLIC $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS ZarnSysUtil EXPORT ZarnSysUtilTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                COMPONENT Runtime NAMELINK_COMPONENT Development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development)
install(FILES ${PUBLIC_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zarnsys/util
        COMPONENT Development)

set(PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZarnSysUtil)
configure_package_config_file(cmake/ZarnSysUtilConfig.cmake.in ZarnSysUtilConfig.cmake
                              INSTALL_DESTINATION ${PACKAGE_DIR})
configure_file(cmake/ZarnSysUtilConfigVersion.cmake.in ZarnSysUtilConfigVersion.cmake @ONLY)
write_basic_package_version_file(ZarnSysUtilVersionAlone.cmake COMPATIBILITY SameMinorVersion)
write_basic_package_version_file(ZarnSysUtilVersionOfRange.cmake COMPATIBILITY AnyNewerVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZarnSysUtilConfig.cmake
              ${PROJECT_BINARY_DIR}/ZarnSysUtilConfigVersion.cmake
              ${PROJECT_BINARY_DIR}/ZarnSysUtilVersionAlone.cmake
              ${PROJECT_BINARY_DIR}/ZarnSysUtilVersionOfRange.cmake
        DESTINATION ${PACKAGE_DIR} COMPONENT Development)
install(EXPORT ZarnSysUtilTargets NAMESPACE ZarnSysUtil:: DESTINATION ${PACKAGE_DIR}
        COMPONENT Development)
# The package in the build tree.
export(EXPORT ZarnSysUtilTargets NAMESPACE ZarnSysUtil::
       FILE ${PROJECT_BINARY_DIR}/ZarnSysUtilTargets.cmake)

file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG_DIR /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/zarnsysutil.pc.in zarnsysutil.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zarnsysutil.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)

install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT Documentation)
# The pages link to these as in the project.
foreach(program zarn-ingest zarn-moon)
    install(DIRECTORY programs/${program}/deploy DESTINATION ${CMAKE_INSTALL_DOCDIR}/programs/${program}
            COMPONENT Documentation)
endforeach()
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Documentation
        PATTERN man EXCLUDE PATTERN Doxyfile EXCLUDE PATTERN include.sed EXCLUDE
        # Works within the project only.
        PATTERN CMakeLists.txt EXCLUDE)

# Where installed programs look for the library; empty for a directory that the loader knows.
if(NOT DEFINED CMAKE_INSTALL_RPATH)
    set(CMAKE_INSTALL_RPATH $ORIGIN/../${CMAKE_INSTALL_LIBDIR})
endif()

# Where zsh looks: this directory, or in Debian's packages another one.
set(ZARNSYS_ZSH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING
    "Directory of completions for zsh")

# zarnsys_install_completion(PROGRAM SCRIPT DIRECTORY NAME): what a shell completes a program's options
# by. The program writes it; it need not run here, where it may be one for another machine.
function(zarnsys_install_completion program script directory name)
    set(file ${CMAKE_CURRENT_BINARY_DIR}/completion/${name})
    file(WRITE ${file} "${script}\n")
    install(FILES ${file} DESTINATION ${directory} COMPONENT Programs)
endfunction()

# zarnsys_install_program(PROGRAM): with its manual page and its completions.
function(zarnsys_install_program program)
    install(TARGETS ${program} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Programs)
    install(FILES ${PROJECT_SOURCE_DIR}/docs/man/${program}.1
            DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT Programs)
    set(share ${CMAKE_INSTALL_DATADIR})
    zarnsys_install_completion(${program} "eval \"$(${program} --bash-completion)\""
                               ${share}/bash-completion/completions ${program})
    zarnsys_install_completion(${program} "#compdef ${program}\nsource <(${program} --zsh-completion)"
                               ${ZARNSYS_ZSH_COMPLETIONS} _${program})
    zarnsys_install_completion(${program} "${program} --fish-completion | source"
                               ${share}/fish/vendor_completions.d ${program}.fish)
endfunction()

# zarnsys_install_with_prefix(FILE DIRECTORY) installs a file in which ZARNSYS_BINDIR is where the
# programs are, which is known no sooner than the prefix of the installation.
function(zarnsys_install_with_prefix file directory)
    get_filename_component(name ${file} NAME)
    set(source ${CMAKE_CURRENT_SOURCE_DIR}/${file})
    set(result ${CMAKE_CURRENT_BINARY_DIR}/${name})
    install(CODE "
        get_filename_component(ZARNSYS_BINDIR \"${CMAKE_INSTALL_BINDIR}\" ABSOLUTE
                               BASE_DIR \"\${CMAKE_INSTALL_PREFIX}\")
        configure_file(\"${source}\" \"${result}\" @ONLY)" COMPONENT Programs)
    install(FILES ${result} DESTINATION ${directory} COMPONENT Programs)
endfunction()
