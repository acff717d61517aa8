# krs_install(): what `cmake --install` puts into a prefix: libraries, headers, programs, samples, and what other builds find
# the library by. Everything finds its neighbours by relative paths, so a prefix may be moved.
include(CMakePackageConfigHelpers)

function(krs_install)
  krs_install_libraries()
  krs_install_headers()
  krs_install_cmake_package()
  krs_install_pkg_config()
  foreach(program krsview krshost krsprocessor)
    if(TARGET ${program})
      install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    endif()
  endforeach()
  # Beside bin/, as krsview looks for them.
  install(DIRECTORY assets/samples DESTINATION share/krsdisp)
  # The font is built into the library, so its licence goes wherever the library goes.
  install(FILES assets/fonts/LICENSE DESTINATION share/krsdisp/fonts)
  install(FILES LICENSE DESTINATION share/krsdisp)
endfunction()

function(krs_install_libraries)
  get_property(libraries GLOBAL PROPERTY KRS_LIBRARIES)
  install(TARGETS ${libraries} EXPORT krsdispStatic ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  if(KRS_SHARED)
    list(TRANSFORM libraries APPEND _shared)
    install(TARGETS ${libraries} EXPORT krsdispShared
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endif()
endfunction()

# Headers name each other by path from the root, so they keep their folders below one of their own.
function(krs_install_headers)
  set(to ${CMAKE_INSTALL_INCLUDEDIR}/krsdisp)
  install(FILES krsdisp.h DESTINATION ${to})
  # A folder's own headers; what lies deeper realises it and stays inside.
  foreach(folder ${KRS_FOLDERS})
    file(GLOB headers CONFIGURE_DEPENDS ${folder}/*.h)
    install(FILES ${headers} DESTINATION ${to}/${folder})
  endforeach()
endfunction()

function(krs_install_cmake_package)
  set(to ${CMAKE_INSTALL_LIBDIR}/cmake/krsdisp)
  # What a static library leaves to its user's link.
  set(KRS_DEPENDENCIES "find_dependency(Threads)\n")
  if("Freetype::Freetype" IN_LIST KRS_PLATFORM_LIBS)
    string(APPEND KRS_DEPENDENCIES "find_dependency(Freetype)\n")
  endif()
  if("SDL2::SDL2" IN_LIST KRS_PLATFORM_LIBS)
    string(APPEND KRS_DEPENDENCIES "find_dependency(SDL2)\n")
  endif()
  if("X11::X11" IN_LIST KRS_PLATFORM_LIBS)
    string(APPEND KRS_DEPENDENCIES "find_dependency(X11)\n")
  endif()
  if("PkgConfig::AGG" IN_LIST KRS_PLATFORM_LIBS)
    string(APPEND KRS_DEPENDENCIES "krsdisp_find_by_pkg_config(AGG libagg)\n")
  endif()
  if("PkgConfig::SDL2" IN_LIST KRS_PLATFORM_LIBS)
    string(APPEND KRS_DEPENDENCIES "krsdisp_find_by_pkg_config(SDL2 sdl2)\n")
  endif()
  configure_package_config_file(cmake/krsdispConfig.cmake.in ${CMAKE_BINARY_DIR}/krsdispConfig.cmake
                                INSTALL_DESTINATION ${to})
  write_basic_package_version_file(${CMAKE_BINARY_DIR}/krsdispConfigVersion.cmake COMPATIBILITY SameMinorVersion)
  install(FILES ${CMAKE_BINARY_DIR}/krsdispConfig.cmake ${CMAKE_BINARY_DIR}/krsdispConfigVersion.cmake DESTINATION ${to})
  install(EXPORT krsdispStatic NAMESPACE krsdisp:: DESTINATION ${to})
  if(KRS_SHARED)
    install(EXPORT krsdispShared NAMESPACE krsdisp:: DESTINATION ${to})
  endif()
endfunction()

# krsdisp.pc links the shared libraries where they are installed; krsdisp-static.pc names the archives.
function(krs_install_pkg_config)
  set(to ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  file(RELATIVE_PATH up ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
  string(REGEX REPLACE "/$" "" KRS_PC_PREFIX "\${pcfiledir}/${up}")
  if(NOT KRS_PLATFORM_PACKAGES)
    return()  # systems without pkg-config
  endif()
  get_property(libraries GLOBAL PROPERTY KRS_LIBRARIES)
  list(REVERSE libraries)  # a static link asks for the users before the used
  list(TRANSFORM libraries PREPEND "-l:lib" OUTPUT_VARIABLE archives)
  list(TRANSFORM archives APPEND ".a")
  list(TRANSFORM libraries PREPEND "-l")
  list(JOIN libraries " " libraries)
  list(JOIN archives " " archives)
  list(JOIN KRS_PLATFORM_PACKAGES " " packages)

  # Not as Requires.private: that would ask users of the shared libraries for the development packages, too.
  execute_process(COMMAND ${PKG_CONFIG_EXECUTABLE} --libs ${KRS_PLATFORM_PACKAGES} OUTPUT_VARIABLE below
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(KRS_PC_TITLE "krsdisp")
  set(KRS_PC_LINK "Libs: -L\${libdir} ${libraries}\nLibs.private: ${below} -pthread")
  configure_file(cmake/krsdisp.pc.in ${CMAKE_BINARY_DIR}/krsdisp.pc @ONLY)
  set(KRS_PC_TITLE "krsdisp, static")
  set(KRS_PC_LINK "Requires: ${packages}\nLibs: -L\${libdir} ${archives} -pthread")
  configure_file(cmake/krsdisp.pc.in ${CMAKE_BINARY_DIR}/krsdisp-static.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/krsdisp.pc ${CMAKE_BINARY_DIR}/krsdisp-static.pc DESTINATION ${to})
endfunction()
