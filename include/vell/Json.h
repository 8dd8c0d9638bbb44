// VELL: data-driven hierarchical state machines.
// include/vell/Json.h: the JSON value types that definition builders receive, declared only.
// Include <rapidjson/document.h> to read a value.
#pragma once

#include <rapidjson/fwd.h>

namespace vell
{

/// One value of a machine document: UTF-8, strings in place in the document's memory pool.
using GenericValue =
    rapidjson::GenericValue<rapidjson::UTF8<char>,
                            rapidjson::MemoryPoolAllocator<rapidjson::CrtAllocator>>;

/// A whole parsed machine document. Values and their strings live as long as it does.
using GenericDocument =
    rapidjson::GenericDocument<rapidjson::UTF8<char>,
                               rapidjson::MemoryPoolAllocator<rapidjson::CrtAllocator>,
                               rapidjson::CrtAllocator>;

} // namespace vell
