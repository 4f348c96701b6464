# zortex_add_textures: textures as products of a build.
#
#   zortex_add_textures(<target> SOURCES <picture>...
#                       [FORMAT <format>] [QUALITY <quality>] [MIPS <levels>|all]
#                       [EXTENSION <extension>] [OUTPUT_DIRECTORY <folder>]
#                       [OPTIONS <option>...] [DEPENDS <file>...])
#
# Adds a custom target, a part of the default build, that turns each picture into a texture by one command of its own: the
# engine that runs the build decides how many run at once and where. A texture is made again when its picture, the
# program, a file of DEPENDS, or the command itself has changed.
#
# SOURCES           pictures or textures, relative to the current source folder or absolute
# FORMAT, QUALITY   as for `zortex convert`
# MIPS              a number of MIP levels, or all
# EXTENSION         the container: zor (default), ktx, dds, astc
# OUTPUT_DIRECTORY  where the textures go (default: a folder of the target's name in the current binary folder); below it they
#                   keep the folders that their pictures have in the current source folder
# OPTIONS           further options of `zortex convert`, in their order
# DEPENDS           further files that the textures are made of, such as the mask of a --copy-channel
#
# The target's property ZORTEX_TEXTURES lists the files that it makes.
function(zortex_add_textures target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "FORMAT;QUALITY;MIPS;EXTENSION;OUTPUT_DIRECTORY" "SOURCES;OPTIONS;DEPENDS")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "zortex_add_textures(${target}): unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT arg_SOURCES)
    message(FATAL_ERROR "zortex_add_textures(${target}): no SOURCES")
  endif()
  if(NOT TARGET ZORTexLib::zortex)
    message(FATAL_ERROR "zortex_add_textures(${target}): the program zortex is not installed beside the library")
  endif()
  if(NOT arg_EXTENSION)
    set(arg_EXTENSION zor)
  endif()
  if(NOT arg_OUTPUT_DIRECTORY)
    set(arg_OUTPUT_DIRECTORY ${target})
  endif()
  get_filename_component(folder "${arg_OUTPUT_DIRECTORY}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_BINARY_DIR}")

  set(options ${arg_OPTIONS})
  if(arg_MIPS)
    list(APPEND options "--mips=${arg_MIPS}")
  endif()
  if(arg_FORMAT)
    list(APPEND options --format ${arg_FORMAT})
  endif()
  if(arg_QUALITY)
    list(APPEND options --quality ${arg_QUALITY})
  endif()

  set(further_files "")
  foreach(file IN LISTS arg_DEPENDS)
    get_filename_component(file "${file}" ABSOLUTE)
    list(APPEND further_files "${file}")
  endforeach()

  set(textures "")
  foreach(source IN LISTS arg_SOURCES)
    get_filename_component(picture "${source}" ABSOLUTE)
    file(RELATIVE_PATH place "${CMAKE_CURRENT_SOURCE_DIR}" "${picture}")
    if(place MATCHES "^\\.\\./")
      get_filename_component(place "${picture}" NAME)
    endif()
    string(REGEX REPLACE "\\.[^./]*$" "" place "${place}")
    set(texture "${folder}/${place}.${arg_EXTENSION}")
    if(texture IN_LIST textures)
      message(FATAL_ERROR "zortex_add_textures(${target}): two SOURCES become ${texture}")
    endif()
    list(APPEND textures "${texture}")

    get_filename_component(texture_folder "${texture}" DIRECTORY)
    file(MAKE_DIRECTORY "${texture_folder}")
    add_custom_command(
      OUTPUT "${texture}"
      COMMAND ZORTexLib::zortex convert --quiet "${picture}" "${texture}" ${options}
      DEPENDS "${picture}" "$<TARGET_FILE:ZORTexLib::zortex>" ${further_files}
      COMMENT "Texture ${place}.${arg_EXTENSION}"
      VERBATIM)
  endforeach()

  add_custom_target(${target} ALL DEPENDS ${textures})
  set_property(TARGET ${target} PROPERTY ZORTEX_TEXTURES "${textures}")
endfunction()
