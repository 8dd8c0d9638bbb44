# The state machine library itself: its objects, which the unit tests and the command link directly, and
# the library that hosts use.
find_path(VELL_RAPIDJSON_INCLUDE rapidjson/document.h REQUIRED)

set(vell_folders machine document idle states transitions definitions parameters introspection foundation)
set(vell_sources)
foreach(folder IN LISTS vell_folders)
    file(GLOB folder_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    list(APPEND vell_sources ${folder_sources})
endforeach()

vell_object_library(vell_objects VELL ${vell_sources})
target_include_directories(vell_objects SYSTEM PUBLIC ${VELL_RAPIDJSON_INCLUDE})
# Whether the platform libraries are shared is theirs to say: they may be the site's own.
foreach(platform durm_objects tessel_objects)
    target_compile_definitions(
        vell_objects PUBLIC $<TARGET_PROPERTY:${platform},INTERFACE_COMPILE_DEFINITIONS>)
endforeach()

vell_library(VELLLibX64 VELL vell_objects)
target_link_libraries(VELLLibX64 PUBLIC VELL::DURMBaseX64 VELL::TesselX64)
target_include_directories(VELLLibX64 SYSTEM PUBLIC $<BUILD_INTERFACE:${VELL_RAPIDJSON_INCLUDE}>)
if(VELL_ARENA_ROUNDING)
    target_compile_definitions(vell_objects PUBLIC VELL_ARENA_ROUNDING)
    target_compile_definitions(VELLLibX64 PUBLIC VELL_ARENA_ROUNDING)
endif()
