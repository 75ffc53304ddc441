# How every target of the project is compiled, and the one way to declare a library.

include_guard(GLOBAL)
include(CheckCXXCompilerFlag)
include(CheckIPOSupported)
include(CMakePackageConfigHelpers)

check_cxx_compiler_flag(-fno-semantic-interposition VORNIC_HAS_NO_SEMANTIC_INTERPOSITION)
find_program(VORNIC_CCACHE ccache DOC "Compiler cache, used when it is there")
mark_as_advanced(VORNIC_CCACHE)
set(VORNIC_CMAKE_DIR ${CMAKE_CURRENT_LIST_DIR})

# Flags that only building this project needs. Neither target is exported.
add_library(vornic_warnings INTERFACE)
target_compile_options(vornic_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual
    # Where several sources are one unit, a name may be that of another file's constant.
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>>:-Wshadow>
    # C++20 lets a variadic macro be called without the variadic part; Clang 14 warns regardless.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>
    # GCC 12 takes the concatenation of strings for overlapping copies when it optimises (its bug
    # 105651), and loses track of values across inlined and instrumented code: of what is set, and of
    # which alternative of a std::any is there. Clang and the sanitizers look as well.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-array-bounds -Wno-maybe-uninitialized
        -Wno-stringop-overflow -Wno-stringop-overread>)

add_library(vornic_instruments INTERFACE)
if(VORNIC_SANITIZE)
    list(JOIN VORNIC_SANITIZE "," vornic_sanitize_names)
    target_compile_options(vornic_instruments INTERFACE
        -fsanitize=${vornic_sanitize_names} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(vornic_instruments INTERFACE -fsanitize=${vornic_sanitize_names})
endif()
if(VORNIC_HARDEN)
    target_compile_definitions(vornic_instruments INTERFACE _GLIBCXX_ASSERTIONS)
endif()
if(VORNIC_HARDEN AND NOT VORNIC_SANITIZE)
    # With the checks of the standard library's containers these cost 5 % of a request's instructions.
    target_compile_options(vornic_instruments INTERFACE
        -fstack-protector-strong -fstack-clash-protection
        $<$<NOT:$<CONFIG:Debug>>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
    target_link_options(vornic_instruments INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
if(VORNIC_COVERAGE)
    if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        # Counts what stands in the source. The counters can be moved into the file of the profile, so
        # that what ran before the process stopped is counted whatever stopped it: LLVM_PROFILE_FILE
        # has %c then. Names of files are kept as the compiler gets them, the same in every folder.
        target_compile_options(vornic_instruments INTERFACE
            -fprofile-instr-generate -fcoverage-mapping -fcoverage-compilation-dir=.
            "SHELL:-mllvm -runtime-counter-relocation")
        target_link_options(vornic_instruments INTERFACE -fprofile-instr-generate)
    else()
        target_compile_options(vornic_instruments INTERFACE --coverage)
        target_link_options(vornic_instruments INTERFACE --coverage)
    endif()
endif()

if(VORNIC_LTO)
    check_ipo_supported(LANGUAGES CXX)
endif()

# vornic_target_defaults(<target>)
#
# Compiles an existing target the way all code of the project is compiled: C++20 without extensions,
# warnings as errors unless another project builds this one (`cmake --compile-no-warning-as-error`
# lifts that too), with the chosen sanitizers, coverage and link-time optimisation, by ccache where it
# is installed. Assertions stay on in every build type: NDEBUG is never defined.
function(vornic_target_defaults target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_compile_options(${target} PRIVATE -UNDEBUG)
    target_link_libraries(${target} PRIVATE
        $<BUILD_INTERFACE:vornic_warnings> $<BUILD_INTERFACE:vornic_instruments>)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        COMPILE_WARNING_AS_ERROR ${PROJECT_IS_TOP_LEVEL}
        INTERPROCEDURAL_OPTIMIZATION ${VORNIC_LTO})
    if(VORNIC_CCACHE)
        # Precompiled headers, which some targets have, are compared by what they were made of.
        set_target_properties(${target} PROPERTIES CXX_COMPILER_LAUNCHER
            "${CMAKE_COMMAND};-E;env;CCACHE_SLOPPINESS=pch_defines,time_macros;${VORNIC_CCACHE}")
    endif()
endfunction()

# vornic_add_library(<target> [STATIC]
#                    INCLUDE <dir>       include root, the base of every public header
#                    HEADERS <file>...   public headers, below <dir>
#                    SOURCES <file>...
#                    [LINK <target>...]  floors below; users of the library get them too
#                    [PRIVATE_LINK <target>...])
#
# Declares the library of one floor, shared unless STATIC is given, and its alias, Vornic:: and the
# target's name without "vornic_". Sources of the library also find the headers of the calling folder.
# The target all_verify_interface_header_sets compiles every public header alone.
#
# A shared library hides all that its headers do not mark with the export macro, and whatever it
# instantiates of the standard library; it is installed and exported. A static one is of this build
# only.
function(vornic_add_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "STATIC" "INCLUDE" "HEADERS;SOURCES;LINK;PRIVATE_LINK")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "vornic_add_library(${target}): unexpected ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(arg_STATIC)
        set(type STATIC)
    else()
        set(type SHARED)
    endif()
    string(REGEX REPLACE "^vornic_" "" short ${target})

    add_library(${target} ${type} ${arg_SOURCES})
    add_library(Vornic::${short} ALIAS ${target})
    vornic_target_defaults(${target})
    target_sources(${target} PUBLIC
        FILE_SET HEADERS BASE_DIRS ${arg_INCLUDE} FILES ${arg_HEADERS})
    target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PUBLIC ${arg_LINK} PRIVATE ${arg_PRIVATE_LINK})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${short}
        POSITION_INDEPENDENT_CODE ON
        VERIFY_INTERFACE_HEADER_SETS ON)

    if(type STREQUAL SHARED)
        vornic_shared_library(${target})
        vornic_install_library(${target})
    endif()
endfunction()

# vornic_shared_library(<target>)
#
# What a shared library shows to the outside: its version, and no symbol but its own.
function(vornic_shared_library target)
    # A call within a library may be inlined and need not go through the symbol table.
    if(VORNIC_HAS_NO_SEMANTIC_INTERPOSITION)
        target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    endif()
    # The standard library's headers mark its templates for export, whatever the default is.
    set(map ${VORNIC_CMAKE_DIR}/own-symbols.map)
    target_link_options(${target} PRIVATE LINKER:--version-script=${map})
    # What a library has registered, and the code of objects that are alive, must not go: dlclose()
    # leaves it loaded, with every compiler.
    target_link_options(${target} PRIVATE LINKER:-z,nodelete)
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        LINK_DEPENDS ${map}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH "$ORIGIN")
endfunction()

# vornic_install_library(<target>)
#
# Installs a shared library, its public headers, and its part of the exported targets: the library
# itself as component "runtime", all that only building against it needs as "development".
function(vornic_install_library target)
    if(NOT VORNIC_INSTALL)
        return()
    endif()
    install(TARGETS ${target} EXPORT VornicL3SharedTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT runtime NAMELINK_COMPONENT development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vornic COMPONENT development)
endfunction()

# vornic_install_package()
#
# Installs what find_package(VornicL3Shared) and pkg-config read. Both find the libraries beside their
# own files, so that an installed tree can be moved.
function(vornic_install_package)
    set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VornicL3Shared)
    install(EXPORT VornicL3SharedTargets NAMESPACE Vornic::
        DESTINATION ${package_dir} COMPONENT development)
    configure_package_config_file(${VORNIC_CMAKE_DIR}/VornicL3SharedConfig.cmake.in
        VornicL3SharedConfig.cmake
        INSTALL_DESTINATION ${package_dir}
        NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file(VornicL3SharedConfigVersion.cmake
        COMPATIBILITY SameMajorVersion)
    install(FILES
            ${CMAKE_CURRENT_BINARY_DIR}/VornicL3SharedConfig.cmake
            ${CMAKE_CURRENT_BINARY_DIR}/VornicL3SharedConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

    set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
    file(RELATIVE_PATH prefix_from_pcfiledir /prefix/${pkgconfig_dir} /prefix)
    configure_file(${VORNIC_CMAKE_DIR}/VornicL3Shared.pc.in VornicL3Shared.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VornicL3Shared.pc
        DESTINATION ${pkgconfig_dir} COMPONENT development)
endfunction()
