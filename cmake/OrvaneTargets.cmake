# Helpers shared by every Orvane target.
#
#   orvane_core_library(<name> SOURCES ... [LINKS ...])
#       A library of the computational core: standard C++ only. It may link
#       other core libraries and plain C/C++ libraries (ERFA), never Qt.
#   orvane_render_library(<name> SOURCES ... [LINKS ...])
#       A drawing or settings library: may use Qt Core and Qt Gui (QPainter),
#       never Qt Widgets, so charts can be drawn headless.
#   orvane_map_core_targets(<name> ...)
#       Marks the libraries of the map core (document, projection, drawing
#       pipeline, export). They may reach the utility library, the observer,
#       the string table and each other, never a catalogue or another
#       subsystem: those plug into the chart as layers and sky-object sources.
#   orvane_check_core_targets()
#       Walks the link graph of every library registered above and stops the
#       configuration when a forbidden Qt module is reachable from it, when
#       the map core reaches a subsystem, or when the core of a subsystem
#       reaches the map's drawing code.

if(ORVANE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

function(orvane_set_warnings target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow=local)
  endif()
  if(ORVANE_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

function(_orvane_library kind name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINKS})
  orvane_set_warnings(${name})
  set_property(GLOBAL APPEND PROPERTY ORVANE_${kind}_TARGETS ${name})
endfunction()

function(orvane_core_library name)
  _orvane_library(CORE ${name} ${ARGN})
endfunction()

function(orvane_render_library name)
  _orvane_library(RENDER ${name} ${ARGN})
endfunction()

# Collects into <out> every link item reachable from <target>.
function(_orvane_link_closure target out)
  set(seen "")
  set(queue ${target})
  while(queue)
    list(POP_FRONT queue item)
    if(item IN_LIST seen)
      continue()
    endif()
    list(APPEND seen ${item})
    if(TARGET ${item})
      get_target_property(libs ${item} LINK_LIBRARIES)
      get_target_property(ilibs ${item} INTERFACE_LINK_LIBRARIES)
      foreach(lib IN LISTS libs ilibs)
        if(lib AND NOT lib MATCHES "NOTFOUND$")
          string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" lib "${lib}")
          list(APPEND queue ${lib})
        endif()
      endforeach()
    endif()
  endwhile()
  set(${out} ${seen} PARENT_SCOPE)
endfunction()

function(orvane_map_core_targets)
  foreach(t IN LISTS ARGN)
    if(TARGET ${t})
      set_property(GLOBAL APPEND PROPERTY ORVANE_MAP_CORE_TARGETS ${t})
    endif()
  endforeach()
endfunction()

# Libraries every part of the program may use.
set(ORVANE_FOUNDATION_TARGETS orvane_util orvane_observer orvane_strings orvane_settings)

function(_orvane_check_layering)
  get_property(mapcore GLOBAL PROPERTY ORVANE_MAP_CORE_TARGETS)
  get_property(core GLOBAL PROPERTY ORVANE_CORE_TARGETS)
  get_property(render GLOBAL PROPERTY ORVANE_RENDER_TARGETS)
  set(ours ${core} ${render})
  foreach(t IN LISTS mapcore)
    _orvane_link_closure(${t} closure)
    foreach(item IN LISTS closure)
      if(item IN_LIST ours AND NOT item IN_LIST mapcore AND NOT item IN_LIST ORVANE_FOUNDATION_TARGETS)
        message(FATAL_ERROR "Map core library '${t}' reaches '${item}': the map knows no subsystem; "
                            "a catalogue or subsystem plugs in as a chart layer and a sky-object source.")
      endif()
    endforeach()
  endforeach()
  # The core (standard C++) of a subsystem never depends on the map's drawing.
  foreach(t IN LISTS core)
    if(t IN_LIST mapcore)
      continue()
    endif()
    _orvane_link_closure(${t} closure)
    foreach(item IN LISTS closure)
      if(item IN_LIST render AND item IN_LIST mapcore)
        message(FATAL_ERROR "Core library '${t}' reaches the map drawing library '${item}'.")
      endif()
    endforeach()
  endforeach()
endfunction()

function(orvane_check_core_targets)
  _orvane_check_layering()
  get_property(core GLOBAL PROPERTY ORVANE_CORE_TARGETS)
  get_property(render GLOBAL PROPERTY ORVANE_RENDER_TARGETS)
  foreach(t IN LISTS core)
    _orvane_link_closure(${t} closure)
    foreach(item IN LISTS closure)
      if(item MATCHES "^Qt[0-9]*::" OR item MATCHES "libQt")
        message(FATAL_ERROR "Core library '${t}' reaches '${item}': the computational core is standard C++ only.")
      endif()
    endforeach()
  endforeach()
  foreach(t IN LISTS render)
    _orvane_link_closure(${t} closure)
    foreach(item IN LISTS closure)
      if(item MATCHES "^Qt[0-9]*::(Widgets|PrintSupport)$")
        message(FATAL_ERROR "Library '${t}' reaches '${item}': drawing and settings code must not depend on Qt Widgets.")
      endif()
    endforeach()
  endforeach()
endfunction()

# Adds a GoogleTest executable registered with CTest.
# With OWN_MAIN the sources bring their own main() (GUI tests that need a
# QApplication for their whole run).
function(orvane_test name)
  cmake_parse_arguments(ARG "OWN_MAIN" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} orvane_testsupport GTest::gtest)
  if(NOT ARG_OWN_MAIN)
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  orvane_set_warnings(${name})
  include(GoogleTest)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "ORVANE_REFERENCE_DIR=${ORVANE_REFERENCE_DIR};ORVANE_TEST_DATA=${PROJECT_SOURCE_DIR}/tests/data")
endfunction()
