# The test programs that call the library, for the build machine and for Windows.
include(GoogleTest)

set(tests "${CMAKE_CURRENT_LIST_DIR}")

# Makes a test program of sources and of the libraries that follow LIBRARIES.
function(add_test_program name)
    cmake_parse_arguments(PARSE_ARGV 1 program "" "" LIBRARIES)
    add_executable(${name} ${program_UNPARSED_ARGUMENTS})
    target_compile_definitions(${name} PRIVATE
        BRINDLE_DOCUMENTATION="${PROJECT_SOURCE_DIR}/docs"
        BRINDLE_SAMPLE_IMAGES="${tests}/samples/images")
    target_include_directories(${name} PRIVATE "${tests}")
    target_link_libraries(${name} PRIVATE ${program_LIBRARIES} brindle_build_settings
        GTest::gmock GTest::gtest_main)
    if(CMAKE_CROSSCOMPILING)
        # One run for all its tests, since an emulator starts slowly.
        add_test(NAME ${name} COMMAND ${name})
    else()
        gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60)
    endif()
endfunction()

file(GLOB support_sources CONFIGURE_DEPENDS "${tests}/support/*.cpp")
add_library(brindle_test_support STATIC ${support_sources})
target_include_directories(brindle_test_support PUBLIC "${tests}" "${PROJECT_SOURCE_DIR}/capi")
target_link_libraries(brindle_test_support
    PUBLIC brindle::static brindle_build_settings GTest::gmock)

file(GLOB library_tests CONFIGURE_DEPENDS "${tests}/*.cpp")
add_test_program(brindle_tests ${library_tests} LIBRARIES brindle_test_support)

# A program of its own, since it replaces the global operator new.
file(GLOB allocation_tests CONFIGURE_DEPENDS "${tests}/allocations/*.cpp")
add_test_program(brindle_allocation_tests ${allocation_tests} LIBRARIES brindle_test_support)

# Faults of system and host. Their program replaces the allocator too.
file(GLOB fault_tests CONFIGURE_DEPENDS "${tests}/faults/*.cpp")
if(WIN32)
    # Pipes and devices as files, and permissions of a file's owner: Windows has none of them.
    list(FILTER fault_tests EXCLUDE REGEX "/PosixFaultsTest\\.cpp$")
endif()
add_test_program(brindle_fault_tests "${tests}/allocations/CountedAllocation.cpp" ${fault_tests}
    LIBRARIES brindle_test_support)

# The C interface as its hosts see it. The headers of the library serve only the builders of inputs; no class
# of it can be used here.
file(GLOB interface_tests CONFIGURE_DEPENDS "${tests}/capi/*.cpp")
add_test_program(brindle_interface_tests ${interface_tests}
    "${tests}/support/DwarfSections.cpp" "${tests}/support/ElfImage.cpp"
    "${tests}/support/TemporaryFolder.cpp"
    LIBRARIES brindle::shared)
target_include_directories(brindle_interface_tests PRIVATE "${PROJECT_SOURCE_DIR}/src")

# The program's parts, called by name; what its user meets is in program/program_test.py.
if(BRINDLE_BUILD_APP)
    file(GLOB program_tests CONFIGURE_DEPENDS "${tests}/program/*.cpp")
    list(FILTER program_tests EXCLUDE REGEX "/UpdateFaultTest\\.cpp$")
    add_test_program(brindle_program_tests ${program_tests} LIBRARIES brindle_program_parts)
    # A program of its own, since it replaces the allocator.
    add_test_program(brindle_program_fault_tests "${tests}/program/UpdateFaultTest.cpp"
        "${tests}/allocations/CountedAllocation.cpp" "${tests}/support/DwarfSections.cpp"
        "${tests}/support/ElfImage.cpp" "${tests}/support/TemporaryFolder.cpp"
        LIBRARIES brindle_program_parts)
endif()
