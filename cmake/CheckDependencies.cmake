# Fails the build when a source includes what its place in the architecture may not see:
#   app -> plugin and dialogs -> spec, data, geometry, splitting -> platform
# Each folder lists the folders its quoted includes may name; the scene (OpenSceneGraph) is seen
# only by the platform's scene layer, the solid splitting's display code and the host.
# Run as: cmake -DROOT=<source dir> -P CheckDependencies.cmake
cmake_minimum_required(VERSION 3.25)
set(platform_core ndp vmp)
set(export plugin/BXQExtendGlobal.h)
set(allowed_platform/ndp ${platform_core})
set(allowed_platform/vmp ${platform_core})
set(allowed_platform/ui ${platform_core} ui)
set(allowed_platform/scene ${platform_core} scene)
set(allowed_section_data ${platform_core} section_data ${export})
set(allowed_section_spec ${platform_core} section_spec section_data ${export})
set(allowed_section_geometry ${platform_core} section_geometry section_spec section_data ${export})
set(allowed_body_builder ${platform_core} body_builder section_geometry section_spec section_data ${export})
set(allowed_solid_split ${platform_core} scene solid_split ${export})
set(allowed_section_dialog ${platform_core} ui section_dialog section_geometry section_spec section_data plugin)
set(allowed_face_steel ${platform_core} ui face_steel plugin)
set(allowed_exchange ${platform_core} exchange section_spec section_data section_geometry body_builder solid_split
    ${export})
set(allowed_plugin ${platform_core} ui scene plugin section_data section_spec section_geometry body_builder
    solid_split section_dialog face_steel exchange)
set(scene_seers platform/scene solid_split app)

set(violations "")
foreach(folder platform/ndp platform/vmp platform/ui platform/scene section_data section_spec section_geometry
               body_builder solid_split section_dialog face_steel exchange plugin)
  file(GLOB sources "${ROOT}/${folder}/*.h" "${ROOT}/${folder}/*.cpp")
  list(FIND scene_seers ${folder} sees_scene)
  foreach(source ${sources})
    file(STRINGS "${source}" includes REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<]")
    foreach(line ${includes})
      if(line MATCHES "#[ \t]*include[ \t]*\"([^\"/]+)/([^\"]+)\"")
        set(top "${CMAKE_MATCH_1}")
        set(whole "${CMAKE_MATCH_1}/${CMAKE_MATCH_2}")
        set(allowed ${allowed_${folder}})
        if(NOT top IN_LIST allowed AND NOT whole IN_LIST allowed)
          file(RELATIVE_PATH where "${ROOT}" "${source}")
          string(APPEND violations "  ${where}: ${line}\n")
        endif()
      elseif(line MATCHES "#[ \t]*include[ \t]*<osg" AND sees_scene EQUAL -1)
        file(RELATIVE_PATH where "${ROOT}" "${source}")
        string(APPEND violations "  ${where}: ${line} (the scene belongs to the display code)\n")
      endif()
    endforeach()
  endforeach()
endforeach()
if(violations)
  message(FATAL_ERROR "Includes against the one-way dependencies (app -> plugin and dialogs -> spec, "
                      "data, geometry, splitting -> platform):\n${violations}")
endif()
