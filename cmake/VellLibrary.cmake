# The state machine library itself: one set of objects, which the unit tests and the command link
# directly, and the shared library that hosts load.
find_path(VELL_RAPIDJSON_INCLUDE rapidjson/document.h REQUIRED)

set(vell_folders machine document idle states transitions definitions parameters introspection foundation)
set(vell_sources)
foreach(folder IN LISTS vell_folders)
    file(GLOB folder_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    list(APPEND vell_sources ${folder_sources})
endforeach()

add_library(vell_objects OBJECT ${vell_sources})
target_include_directories(
    vell_objects
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    PRIVATE ${PROJECT_SOURCE_DIR})
target_include_directories(vell_objects SYSTEM PUBLIC ${VELL_RAPIDJSON_INCLUDE})
target_compile_definitions(vell_objects PRIVATE VELL_BUILDING)
if(VELL_ARENA_ROUNDING)
    target_compile_definitions(vell_objects PUBLIC VELL_ARENA_ROUNDING)
endif()

vell_shared_library(VELLLibX64 vell_objects)
target_link_libraries(VELLLibX64 PUBLIC VELL::DURMBaseX64 VELL::TesselX64)
target_include_directories(VELLLibX64 SYSTEM INTERFACE $<BUILD_INTERFACE:${VELL_RAPIDJSON_INCLUDE}>)
if(VELL_ARENA_ROUNDING)
    target_compile_definitions(VELLLibX64 PUBLIC VELL_ARENA_ROUNDING)
endif()
