// VELL: data-driven hierarchical state machines.
// include/vell/ParameterValues.h: the seven interfaces through which a host holds a parameter.
#pragma once

#include <tessel/Tessel.h>
#include <vell/Export.h>

#include <string>

namespace vell
{

// The order of the functions is part of each interface. None has a virtual destructor: a
// parameter belongs to its machine and stays valid until IHSM::Uninit; one created at run time
// lives as long as the process.

/// The functions that all seven interfaces share. `SetDefaultValue` only stores the default.
/// `SetValue` stores the current value and writes it to the parameter's table. `GetValuePtr` gives
/// the address of the current value, which never changes. `ResetValue` sets the current value to
/// the default.
class VELL_API IParameterBoolDef
{
public:
    virtual bool GetDefaultValue() = 0;
    virtual void SetDefaultValue(bool newDefault) = 0;
    virtual bool GetValue() = 0;
    /// Writes nothing when the value is already `newValue`.
    virtual void SetValue(bool newValue) = 0;
    virtual void* GetValuePtr() = 0;
    virtual void ResetValue() = 0;

protected:
    ~IParameterBoolDef() = default;
};

class VELL_API IParameterIntDef
{
public:
    virtual int GetDefaultValue() = 0;
    virtual void SetDefaultValue(int newDefault) = 0;
    virtual int GetValue() = 0;
    virtual void SetValue(int newValue) = 0;
    virtual void* GetValuePtr() = 0;
    virtual void ResetValue() = 0;

protected:
    ~IParameterIntDef() = default;
};

class VELL_API IParameterFloatDef
{
public:
    virtual float GetDefaultValue() = 0;
    virtual void SetDefaultValue(float newDefault) = 0;
    virtual float GetValue() = 0;
    virtual void SetValue(float newValue) = 0;
    virtual void* GetValuePtr() = 0;
    virtual void ResetValue() = 0;

protected:
    ~IParameterFloatDef() = default;
};

/// Two floats, such as a stick, with their length.
class VELL_API IParameterAnalogDef
{
public:
    virtual Tessel::Float2 GetDefaultValue() = 0;
    virtual void SetDefaultValue(const Tessel::Float2& newDefault) = 0;
    virtual Tessel::Float2 GetValue() = 0;
    virtual void SetValue(const Tessel::Float2& newValue) = 0;
    virtual void* GetValuePtr() = 0;
    virtual void ResetValue() = 0;
    /// Gives the length of the current value, as of the last `SetValue`.
    virtual float GetMagnitude() = 0;
    virtual Tessel::Float2 GetVector() = 0;
    virtual void SetVector(const Tessel::Float2& newValue) = 0;

protected:
    ~IParameterAnalogDef() = default;
};

/// Three floats with their length.
class VELL_API IParameterFloat3Def
{
public:
    virtual Tessel::Float3 GetDefaultValue() = 0;
    virtual void SetDefaultValue(const Tessel::Float3& newDefault) = 0;
    virtual Tessel::Float3 GetValue() = 0;
    virtual void SetValue(const Tessel::Float3& newValue) = 0;
    virtual void* GetValuePtr() = 0;
    virtual void ResetValue() = 0;
    /// Gives the length of the current value, as of the last `SetValue`.
    virtual float GetMagnitude() = 0;
    virtual Tessel::Float3 GetVector() = 0;
    virtual void SetVector(const Tessel::Float3& newValue) = 0;

protected:
    ~IParameterFloat3Def() = default;
};

/// Four floats.
class VELL_API IParameterFloat4Def
{
public:
    virtual Tessel::Float4 GetDefaultValue() = 0;
    virtual void SetDefaultValue(const Tessel::Float4& newDefault) = 0;
    virtual Tessel::Float4 GetValue() = 0;
    virtual void SetValue(const Tessel::Float4& newValue) = 0;
    virtual void* GetValuePtr() = 0;
    virtual void ResetValue() = 0;

protected:
    ~IParameterFloat4Def() = default;
};

/// A text. A message from a document starts empty and takes its default when it is fired
/// (HSM::BroadcastMessage).
class VELL_API IParameterMessageDef
{
public:
    virtual std::string GetDefaultValue() = 0;
    virtual void SetDefaultValue(std::string newDefault) = 0;
    virtual std::string GetValue() = 0;
    virtual void SetValue(const std::string& newValue) = 0;
    virtual void* GetValuePtr() = 0;
    virtual void ResetValue() = 0;

protected:
    ~IParameterMessageDef() = default;
};

} // namespace vell
