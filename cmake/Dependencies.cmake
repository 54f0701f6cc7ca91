# Third-party packages, all from Debian (scripts/install-deps.sh installs them).
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Script LinguistTools)
# The solid splitting trims a model's distinct solids on Qt's thread pool.
find_package(Qt5 5.15 REQUIRED COMPONENTS Concurrent)
set(CMAKE_AUTOMOC ON)

if(BXQ_BUILD_TESTS)
  find_package(GTest REQUIRED)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Test)
endif()
if(BXQ_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()

# Eigen: the sparse solver of the section warping figures (header-only).
find_package(Eigen3 3.3 REQUIRED NO_MODULE)

# OpenCASCADE: the geometry kernel of the platform's bodies and of the body builders. Its package
# configuration also adds OCCT's own build switches (HAVE_TBB, ...) to this directory's targets;
# they are put back as they were, and the toolkits are linked through bxq_occt only.
get_directory_property(BXQ_COMPILE_DEFINITIONS COMPILE_DEFINITIONS)
find_package(OpenCASCADE REQUIRED)
set_directory_properties(PROPERTIES COMPILE_DEFINITIONS "${BXQ_COMPILE_DEFINITIONS}")
add_library(bxq_occt INTERFACE)
target_include_directories(bxq_occt SYSTEM INTERFACE ${OpenCASCADE_INCLUDE_DIR})
target_link_libraries(bxq_occt INTERFACE
  TKernel TKMath TKG2d TKG3d TKGeomBase TKBRep TKGeomAlgo TKTopAlgo TKPrim TKBO TKBool TKFillet TKOffset
  TKShHealing TKMesh TKXSBase TKSTEPBase TKSTEPAttr TKSTEP209 TKSTEP TKSTL)

# dxflib: the DXF writer of bxq's outline drawings (GPL, so linked into bxq only).
find_package(PkgConfig REQUIRED)
pkg_check_modules(DXFLIB REQUIRED IMPORTED_TARGET dxflib)

# OpenSceneGraph: the scene graph of the host's 3D view and its offscreen pictures.
find_package(OpenSceneGraph 3.6 REQUIRED COMPONENTS osgDB osgUtil osgViewer osgGA)
add_library(bxq_osg INTERFACE)
target_include_directories(bxq_osg SYSTEM INTERFACE ${OPENSCENEGRAPH_INCLUDE_DIRS})
target_link_libraries(bxq_osg INTERFACE ${OPENSCENEGRAPH_LIBRARIES})
