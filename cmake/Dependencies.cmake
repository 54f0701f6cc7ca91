# Third-party packages, all from Debian (scripts/install-deps.sh installs them).
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Script LinguistTools)
set(CMAKE_AUTOMOC ON)

if(BXQ_BUILD_TESTS)
  find_package(GTest REQUIRED)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Test)
endif()
if(BXQ_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()
