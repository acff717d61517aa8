# The portable machine: memory, FreeType, AGG's geometry, and SDL where there is a screen. Sources sorted, from this folder.
find_package(Freetype REQUIRED)
set_target_properties(Freetype::Freetype PROPERTIES IMPORTED_GLOBAL TRUE)
find_package(PkgConfig REQUIRED)
pkg_check_modules(AGG REQUIRED IMPORTED_TARGET GLOBAL libagg)

# The bytes of a font as numbers for an array.
function(krs_embed_font source name)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  file(READ ${source} bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name} CONTENT "${bytes}\n" @ONLY)
endfunction()
krs_embed_font(${CMAKE_SOURCE_DIR}/assets/fonts/DejaVuSans-Latin1.ttf krs_font_regular.inc)
krs_embed_font(${CMAKE_SOURCE_DIR}/assets/fonts/DejaVuSans-Bold-Latin1.ttf krs_font_bold.inc)

# SDL brings windows on a real screen; without it everything runs headless. X11 lets windows of other toolkits be used.
option(KRS_SDL "Windows on the screen through SDL" ON)
if(KRS_SDL)
  find_package(SDL2 2.26 CONFIG QUIET)
endif()
if(TARGET SDL2::SDL2)
  set_target_properties(SDL2::SDL2 PROPERTIES IMPORTED_GLOBAL TRUE)
  set(window_libs SDL2::SDL2)
  set(window_packages sdl2)
elseif(KRS_SDL)
  pkg_check_modules(SDL2 QUIET IMPORTED_TARGET GLOBAL sdl2>=2.26)
  if(SDL2_FOUND)
    set(window_libs PkgConfig::SDL2)
    set(window_packages sdl2)
  endif()
endif()
set(window_sources windows/no_window_video.cpp)
if(window_libs)
  set(window_sources
    windows/sdl/key_codes.cpp
    windows/sdl/sdl_attach.cpp
    windows/sdl/sdl_events.cpp
    windows/sdl/sdl_video.cpp
    windows/sdl/sdl_window.cpp)
  find_package(X11 QUIET)
  if(X11_FOUND)
    set_target_properties(X11::X11 PROPERTIES IMPORTED_GLOBAL TRUE)
    list(APPEND window_libs X11::X11)
    list(APPEND window_packages x11)
    list(APPEND window_sources windows/sdl/x11_child.cpp windows/sdl/x11_pels.cpp)
  else()
    list(APPEND window_sources windows/sdl/no_x11_child.cpp)
  endif()
else()
  message(STATUS "Built without windows on a screen: SDL 2.26 is missing or not wanted")
endif()

set(variant_sources
  platform.cpp
  testing.cpp
  raster/blit.cpp
  raster/curves.cpp
  raster/font_data.cpp
  raster/glyphs.cpp
  raster/graphics_objects.cpp
  raster/line.cpp
  raster/painter.cpp
  raster/painter_figures.cpp
  raster/painter_flood.cpp
  raster/painter_text.cpp
  raster/pel_format.cpp
  raster/region.cpp
  raster/row_kernels.cpp
  raster/span_filler.cpp
  raster/stroke.cpp
  surfaces/device.cpp
  surfaces/device_state.cpp
  surfaces/mem_surface.cpp
  surfaces/primary_surface.cpp
  windows/backing.cpp
  windows/core.cpp
  windows/core_input.cpp
  windows/core_paint.cpp
  windows/core_scroll.cpp
  windows/core_windows.cpp
  windows/menus.cpp
  windows/message_box.cpp
  windows/null_video.cpp
  windows/popup.cpp
  windows/popup_menu.cpp
  windows/window_tree.cpp
  ${window_sources})
set(variant_libs Freetype::Freetype PkgConfig::AGG ${window_libs})
set(variant_packages freetype2 libagg ${window_packages})
