# How every library and every test program of the project is built.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_INCLUDE_CURRENT_DIR OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_AUTOGEN_PARALLEL 1)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR};$ORIGIN")

add_library(tarn_warnings INTERFACE)
target_compile_options(tarn_warnings INTERFACE -Wall -Wextra -Wpedantic -Werror)

add_library(tarn_qt INTERFACE)
target_compile_definitions(tarn_qt INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS QT_NO_FOREACH)

if(TARN_SANITIZE)
    string(REPLACE ";" "," tarn_sanitizers "${TARN_SANITIZE}")
    add_compile_options(-fsanitize=${tarn_sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${tarn_sanitizers})
    # Between the sanitizers' checks GCC easily loses sight of what a loop has set: worth a look, but no error.
    target_compile_options(tarn_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-error=maybe-uninitialized>)
endif()

# The vector targets are chosen here, once: the base of x86-64 is raised, so that the compiler makes AVX-512, AVX2 and
# SSE4 and nothing else. On arm64 it is NEON. Float code is never contracted:
# a fused multiply-add on one target only would give other pixels there.
add_library(tarn_simd INTERFACE)
target_compile_options(tarn_simd INTERFACE -ffp-contract=off)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options(tarn_simd INTERFACE -msse4.2 -mpclmul -maes)
    if(TARN_SANITIZE)
        # The sources are the same for all targets, and instrumented they take long to compile. Release tests put
        # fences around the memory of each target.
        target_compile_definitions(tarn_simd INTERFACE "HWY_DISABLED_TARGETS=(HWY_AVX2|HWY_AVX3)")
    endif()
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    # Vectors without a fixed size cannot be kept in arrays, as the constants of several channels are.
    target_compile_definitions(tarn_simd INTERFACE
        "HWY_DISABLED_TARGETS=(HWY_SVE|HWY_SVE2|HWY_SVE_256|HWY_SVE2_128)")
endif()

# tarn_library(<name> ALIAS <short name> HEADERS ... SOURCES ... [LINK_PUBLIC ...] [LINK_PRIVATE ...] [NO_QT])
#
# A shared library with hidden symbols whose public headers lie in include/<name>/. HEADERS are relative to that folder,
# SOURCES to the calling folder. Headers with Q_OBJECT or Q_GADGET are found by moc; the source ends with
# #include "moc_<name>.cpp".
function(tarn_library name)
    cmake_parse_arguments(ARG "NO_QT" "ALIAS" "HEADERS;SOURCES;LINK_PUBLIC;LINK_PRIVATE" ${ARGN})
    set(include_dir ${PROJECT_SOURCE_DIR}/include)
    list(TRANSFORM ARG_HEADERS PREPEND ${include_dir}/${name}/ OUTPUT_VARIABLE headers)
    add_library(${name} SHARED ${ARG_SOURCES} ${headers})
    add_library(tarn::${ARG_ALIAS} ALIAS ${name})
    set_target_properties(${name} PROPERTIES
        EXPORT_NAME ${ARG_ALIAS} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        TARN_HEADERS "${ARG_HEADERS}")
    target_compile_features(${name} PUBLIC cxx_std_20)
    target_include_directories(${name}
        PUBLIC $<BUILD_INTERFACE:${include_dir}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE ${PROJECT_SOURCE_DIR}/src/${name})
    target_link_libraries(${name} PUBLIC ${ARG_LINK_PUBLIC}
        PRIVATE ${ARG_LINK_PRIVATE} $<BUILD_INTERFACE:tarn_warnings>)
    if(NOT TARN_SANITIZE)
        target_link_options(${name} PRIVATE -Wl,-z,defs)
    endif()
    if(NOT ARG_NO_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        # moc finds the header of moc_<name>.cpp by its bare name in the include folders.
        set(header_dirs)
        foreach(header IN LISTS headers)
            get_filename_component(header_dir ${header} DIRECTORY)
            list(APPEND header_dirs ${header_dir})
        endforeach()
        list(REMOVE_DUPLICATES header_dirs)
        target_include_directories(${name} PRIVATE ${header_dirs})
        target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:tarn_qt>)
        if(TARN_PRECOMPILE)
            target_precompile_headers(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src/precompiled.h)
        endif()
    endif()
    set_property(GLOBAL APPEND PROPERTY TARN_LIBRARIES ${name})
endfunction()

# Under the thread sanitizer a program brings its own view of Qt's mutex, which otherwise looks like a race.
function(tarn_explain_qt_to_tsan program)
    if(TARN_SANITIZE MATCHES "thread")
        find_package(Qt5 5.15 REQUIRED COMPONENTS Core)
        target_sources(${program} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/tsanMutex.cpp)
        target_link_libraries(${program} PRIVATE Qt5::Core ${CMAKE_DL_LIBS})
    endif()
endfunction()

# tarn_test(<name> SOURCES ... LINK ...): a test program whose tests ctest finds one by one.
function(tarn_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    tarn_explain_qt_to_tsan(${name})
    target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest GTest::gmock GTest::gtest_main tarn_warnings)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    if(TARN_PRECOMPILE)
        target_precompile_headers(${name} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:<gtest/gtest.h$<ANGLE-R>>")
    endif()
    include(GoogleTest)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${name}." PROPERTIES
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 300)
endfunction()
