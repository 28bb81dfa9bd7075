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

# What most sources include is parsed once: for the libraries, for the tests, and for both where there are widgets. A
# source includes what it uses all the same; the presets without precompiled headers tell.
set(bv_headers <QByteArray> <QFile> <QHash> <QList> <QMap> <QObject> <QRegularExpression> <QString> <QStringList>
    <QVariant> <algorithm> <array> <cmath> <functional> <memory> <optional> <utility> <vector>)
set(bv_widget_headers ${bv_headers} <QAbstractItemModel> <QApplication> <QBoxLayout> <QLabel> <QPainter> <QPushButton>
    <QWidget>)

# bv_precompile(target shared [headers...]): headers of its own, or those of the target `shared`, whose flags are the same.
function(bv_precompile target shared)
    if(ARGN)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    else()
        target_precompile_headers(${target} REUSE_FROM ${shared})
    endif()
endfunction()

# bv_library(name SOURCES files... LINKS libraries... [PRECOMPILES headers...]): the static library of the current
# folder. A header stands in the list only when it has Q_OBJECT and no .cpp of its name. tools/check_floors tells of a
# .cpp that no list names.
function(bv_library name)
    cmake_parse_arguments(PARSE_ARGV 1 its "" "" "SOURCES;LINKS;PRECOMPILES")
    add_library(${name} STATIC ${its_SOURCES})
    target_link_libraries(${name} PUBLIC bv_flags ${its_LINKS})
    bv_precompile(${name} base ${its_PRECOMPILES})
endfunction()

# bv_test(folder SOURCES files... LINKS libraries... [PRECOMPILES headers...]): the test program of tests/<folder>, which
# links only that folder's floor.
function(bv_test folder)
    cmake_parse_arguments(PARSE_ARGV 1 its "" "" "SOURCES;LINKS;PRECOMPILES")
    string(REPLACE "/" "_" name ${folder})
    list(TRANSFORM its_SOURCES PREPEND ${CMAKE_SOURCE_DIR}/tests/${folder}/)
    add_executable(${name}_tests ${its_SOURCES})
    target_link_libraries(${name}_tests PRIVATE ${its_LINKS} bv_flags GTest::gtest_main)
    target_compile_definitions(${name}_tests PRIVATE BV_TESTS="${CMAKE_SOURCE_DIR}/tests")
    bv_precompile(${name}_tests test_main ${its_PRECOMPILES})
    bv_cases(${name} ${name}. *)
endfunction()

# bv_cases(name prefix filter properties...): each case of a test program that the filter lets through is a test of its
# own, with the prefix before its name.
function(bv_cases name prefix filter)
    gtest_discover_tests(${name}_tests TEST_PREFIX ${prefix} TEST_FILTER ${filter} DISCOVERY_TIMEOUT 120
                         PROPERTIES TIMEOUT 300 ${ARGN})
endfunction()
