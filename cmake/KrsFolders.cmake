# Reads folders.txt: KRS_FOLDERS in its order, and of each of them KRS_LIBRARY_OF_<folder> and KRS_MAY_INCLUDE_<folder>.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/folders.txt)
set(KRS_FOLDERS)
set(rooms)  # inside folders, and no targets of their own
file(STRINGS ${CMAKE_SOURCE_DIR}/cmake/folders.txt lines REGEX "^[a-z]")
foreach(line ${lines})
  string(REGEX MATCHALL "[^ ]+" words "${line}")
  list(POP_FRONT words folder library)
  foreach(included ${words})
    if(NOT included IN_LIST KRS_FOLDERS AND NOT included IN_LIST rooms)
      message(FATAL_ERROR "folders.txt: ${folder} may include ${included}, which does not stand above it")
    endif()
  endforeach()
  if(library STREQUAL "-")
    list(APPEND rooms ${folder})
    continue()
  endif()
  list(APPEND KRS_FOLDERS ${folder})
  set(KRS_LIBRARY_OF_${folder} ${library})
  set(KRS_MAY_INCLUDE_${folder} ${words})
endforeach()

# The target that holds the objects of a folder: ui_core for ui/core.
function(krs_folder_target folder result)
  string(REPLACE "/" "_" name ${folder})
  set(${result} ${name} PARENT_SCOPE)
endfunction()

# A macro, as platform/ sets variables for its caller.
macro(krs_add_folders)
  foreach(folder ${KRS_FOLDERS})
    add_subdirectory(${folder})
  endforeach()
endmacro()
