// VELL: data-driven hierarchical state machines.
// include/vell/IAttribDef.h: an attribute's value operations.
#pragma once

#include <vell/Export.h>

namespace vell
{

/// A named, typed value on a node definition. A setter of another type than the attribute's does
/// nothing, and a getter of another type writes nothing and returns 0.
class VELL_API IAttribDef
{
public:
    // The order of these is part of the interface.

    virtual ~IAttribDef() = default;
    /// Gives the name. The text belongs to the document.
    virtual const char* GetName() const = 0;
    /// Gives the parameter type number of the value.
    virtual int GetDefaultType() const = 0;
    virtual void SetValue(const char* value) = 0;
    virtual void SetValue(int value) = 0;
    virtual void SetValue(float value) = 0;
    virtual void SetValue(bool value) = 0;
    /// Returns 0: read a text through SMState::GetAttrib.
    virtual int GetValue(const char* value) = 0;
    /// Writes the value and returns 1, or returns 0 for another type.
    virtual int GetValue(int* value) = 0;
    virtual int GetValue(float* value) = 0;
    /// Writes nothing and returns 0, even for a bool: read a bool through SMState::GetAttrib.
    virtual int GetValue(bool* value) = 0;
};

} // namespace vell
