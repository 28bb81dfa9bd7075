# One static library a folder, one test program a folder, the same flags everywhere.

add_library(bv_flags INTERFACE)
target_include_directories(bv_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(bv_flags INTERFACE
    QT_NO_CAST_FROM_BYTEARRAY QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060400
    BV_VERSION="${PROJECT_VERSION}")
target_compile_options(bv_flags INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(BV_STRICT)
    target_compile_options(bv_flags INTERFACE -Werror)
endif()
if(BV_SANITIZE)
    target_compile_options(bv_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
    target_link_options(bv_flags INTERFACE -fsanitize=address,undefined)
endif()
if(BV_FUZZ)
    target_compile_options(bv_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined
                           -fno-sanitize-recover=all)
    target_link_options(bv_flags INTERFACE -fsanitize=address,undefined)
endif()

# bv_library(name DEPS...): the static library of the current folder.
function(bv_library name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC bv_flags ${ARGN})
endfunction()

# bv_test(folder DEPS...): the test program of tests/<folder>, which links only that folder's floor.
function(bv_test folder)
    if(NOT TARGET GTest::gtest_main)
        find_package(GTest REQUIRED)
    endif()
    string(REPLACE "/" "_" name ${folder})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
    add_executable(${name}_tests ${sources})
    target_link_libraries(${name}_tests PRIVATE ${ARGN} bv_flags GTest::gtest_main)
    target_compile_definitions(${name}_tests PRIVATE BV_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/${folder}")
    add_test(NAME ${name} COMMAND ${name}_tests)
    set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
