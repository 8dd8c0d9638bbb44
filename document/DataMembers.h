// VELL: data-driven hierarchical state machines.
// document/DataMembers.h: the two members that have the same name in every vocabulary.
#pragma once

namespace vell
{

/// Of an attribute: its data.
constexpr const char* kAttribDataMember = "ATTRIB_Data";
/// Of the default of a vector parameter: its text.
constexpr const char* kVectorDataMember = "VARIANT_Data";

} // namespace vell
