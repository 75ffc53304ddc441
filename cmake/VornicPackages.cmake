# The Debian packages, one an install component:
#
#   libvornicl3shared1     runtime      the libraries of the three floors
#   libvornicl3shared-dev  development  headers, CMake package, pkg-config file, links for linkers
#   vpagent                agent        the program, its manual pages, completion and examples
#
# They hold what the build installs below its own CMAKE_INSTALL_PREFIX: configure with /usr. There
# GNUInstallDirs puts libraries into Debian's folder for the architecture. packaging/README.md tells
# how they are made. Include this file after all install rules.

set(library_package libvornicl3shared${PROJECT_VERSION_MAJOR})
set(packages ${library_package} libvornicl3shared-dev)
set(CPACK_COMPONENTS_ALL runtime development)
if(VORNIC_BUILD_AGENT)
    list(APPEND packages vpagent)
    list(APPEND CPACK_COMPONENTS_ALL agent)
endif()

# What Debian wants in each package's folder below share/doc. An installation as a whole is no
# package and goes without.
set(debian ${PROJECT_SOURCE_DIR}/packaging/debian)
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
add_custom_command(OUTPUT ${changelog}
    COMMAND gzip -9nc ${debian}/changelog > ${changelog}
    DEPENDS ${debian}/changelog
    VERBATIM)
add_custom_target(debian_changelog ALL DEPENDS ${changelog})
foreach(package component IN ZIP_LISTS packages CPACK_COMPONENTS_ALL)
    set(copyright ${debian}/copyright)
    if(EXISTS ${debian}/${package}.copyright)
        set(copyright ${debian}/${package}.copyright)
    endif()
    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${package})
    install(FILES ${copyright} DESTINATION ${folder} RENAME copyright
        COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES ${changelog} DESTINATION ${folder}
        COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_PACKAGE_CONTACT "VornicL3Shared developers <vornicl3shared@example.invalid>")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE vornicl3shared)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What the libraries and the program link to, from dpkg-shlibdeps. That the program needs the
# libraries of this build stands below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS)
foreach(library IN ITEMS vornic_runtime vornic_vpstate VornicL3Shared)
    get_target_property(folder ${library} BINARY_DIR)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${folder})
endforeach()
# Programs that others package get their dependency on the library from this.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# Descriptions: the summary, then paragraphs in lines of less than 80 characters. The summary of the
# project would stand above each.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(what_it_does "A switch forwards VXLAN with a chip whose virtual-port table has one entry per
virtual port. VornicL3Shared decides which index each virtual port gets: for
remote VTEPs, MLAG remote VTEPs, edge ports with a VLAN, VLANs, and interfaces
with egress filtering disabled.
")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "virtual port indices of a leaf switch, libraries
${what_it_does}
This package holds the shared libraries.
")
# dpkg refreshes the linker's cache by the trigger. The names of two files that are not there keep CPack
# from writing scripts that do the same.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${debian}/triggers ${debian}/none/postinst ${debian}/none/postrm)

set(library_of_this_version "${library_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvornicl3shared-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ${library_of_this_version})
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "virtual port indices of a leaf switch, development files
${what_it_does}
This package holds what building against the libraries needs.
")

set(CPACK_DEBIAN_AGENT_PACKAGE_NAME vpagent)
set(CPACK_DEBIAN_AGENT_PACKAGE_SECTION net)
set(CPACK_DEBIAN_AGENT_PACKAGE_DEPENDS ${library_of_this_version})
set(CPACK_DEBIAN_AGENT_PACKAGE_SUGGESTS babeltrace2)
set(CPACK_DEBIAN_AGENT_DESCRIPTION "virtual port indices of a leaf switch, host program
${what_it_does}
This package holds vpagent, a program that hosts the libraries, so that they
can be run, tried and tested without a switch.
")

include(CPack)
