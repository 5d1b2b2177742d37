# The scanner and the grammar of the equation language, generated at build
# time into the build tree. Included by src/CMakeLists.txt before the library
# target is made: it fills ZORWBX_GENERATED_SOURCES and
# ZORWBX_GENERATED_INCLUDE_DIRS.
find_package(BISON 3.2 REQUIRED)
find_package(FLEX 2.6 REQUIRED)

set(ZORWB_GRAMMAR_DIR ${CMAKE_CURRENT_BINARY_DIR}/parser)
file(MAKE_DIRECTORY ${ZORWB_GRAMMAR_DIR})

BISON_TARGET(ZorWBGrammar ${CMAKE_CURRENT_SOURCE_DIR}/parser/ZorWBGrammar.y
             ${ZORWB_GRAMMAR_DIR}/ZorWBGrammar.cpp
             DEFINES_FILE ${ZORWB_GRAMMAR_DIR}/ZorWBGrammar.h
             COMPILE_FLAGS "-Wall -Werror")
FLEX_TARGET(ZorWBScanner ${CMAKE_CURRENT_SOURCE_DIR}/parser/ZorWBScanner.l
            ${ZORWB_GRAMMAR_DIR}/ZorWBScanner.cpp
            DEFINES_FILE ${ZORWB_GRAMMAR_DIR}/ZorWBScanner.h)
ADD_FLEX_BISON_DEPENDENCY(ZorWBScanner ZorWBGrammar)

list(APPEND ZORWBX_GENERATED_SOURCES ${BISON_ZorWBGrammar_OUTPUTS} ${FLEX_ZorWBScanner_OUTPUTS})
list(APPEND ZORWBX_GENERATED_INCLUDE_DIRS ${ZORWB_GRAMMAR_DIR})

# ZorWBParser.cpp includes the generated headers.
set_source_files_properties(${CMAKE_CURRENT_SOURCE_DIR}/parser/ZorWBParser.cpp PROPERTIES
  OBJECT_DEPENDS "${ZORWB_GRAMMAR_DIR}/ZorWBGrammar.h;${ZORWB_GRAMMAR_DIR}/ZorWBScanner.h")
