// VELL: data-driven hierarchical state machines.
// include/vell/Parameters.h: the seven parameter classes.
#pragma once

#include <vell/ParameterDef.h>
#include <vell/ParameterValues.h>

#include <new>
#include <string>

namespace vell
{

/// A value of a scalar parameter that a tick reads. It is in the parameter, or in the array where a
/// machine keeps the values of its parameters. A copy has the same value in itself.
template <class T>
class ParameterValue
{
public:
    // In the body: `own` comes after `place` and would be cleared after its initialiser.
    ParameterValue()
    {
        place = new (own) T();
    }
    ParameterValue(const ParameterValue& other)
    {
        place = new (own) T(*other.place);
    }
    ParameterValue& operator=(const ParameterValue& other)
    {
        *place = *other.place;
        return *this;
    }

    T& operator*() const
    {
        return *place;
    }
    T* Place() const
    {
        return place;
    }

private:
    friend class ValueBlock;

    T* place;                             ///< the library's; in `own`, or in a block of the machine
    alignas(4) unsigned char own[4] = {}; ///< for a bool too: a four-byte read stays inside
};

/// A bool parameter.
class VELL_API ParameterBoolDef : public ParameterDef, public IParameterBoolDef
{
public:
    ParameterBoolDef();
    ~ParameterBoolDef() override;

    int InitKVTable() override;
    bool GetDefaultValue() override;
    void SetDefaultValue(bool newDefault) override;
    bool GetValue() override;
    void SetValue(bool newValue) override;
    void* GetValuePtr() override;
    void ResetValue() override;
    void PullValue() override;
    int OnBroadcastEvent(int event, const void* record) override;

private:
    friend class ParameterTable;

    void WriteValue();

    ParameterValue<bool> value;
    ParameterValue<bool> defaultValue; ///< a tick compares the two
};

/// A signed 32-bit parameter.
class VELL_API ParameterIntegerDef : public ParameterDef, public IParameterIntDef
{
public:
    ParameterIntegerDef();
    ~ParameterIntegerDef() override;

    int InitKVTable() override;
    int GetDefaultValue() override;
    void SetDefaultValue(int newDefault) override;
    int GetValue() override;
    void SetValue(int newValue) override;
    void* GetValuePtr() override;
    void ResetValue() override;
    void PullValue() override;
    int OnBroadcastEvent(int event, const void* record) override;

private:
    friend class ParameterTable;

    void WriteValue();

    ParameterValue<int> value;
    int defaultValue = 0;
};

/// A float parameter.
class VELL_API ParameterFloatDef : public ParameterDef, public IParameterFloatDef
{
public:
    ParameterFloatDef();
    ~ParameterFloatDef() override;

    int InitKVTable() override;
    float GetDefaultValue() override;
    void SetDefaultValue(float newDefault) override;
    float GetValue() override;
    void SetValue(float newValue) override;
    void* GetValuePtr() override;
    void ResetValue() override;
    void PullValue() override;
    int OnBroadcastEvent(int event, const void* record) override;

private:
    friend class ParameterTable;

    void WriteValue();

    ParameterValue<float> value;
    float defaultValue = 0.0f;
};

/// A two-float parameter with its length.
class VELL_API ParameterAnalogDef : public ParameterDef, public IParameterAnalogDef
{
public:
    ParameterAnalogDef();
    ~ParameterAnalogDef() override;

    int InitKVTable() override;
    Tessel::Float2 GetDefaultValue() override;
    void SetDefaultValue(const Tessel::Float2& newDefault) override;
    Tessel::Float2 GetValue() override;
    void SetValue(const Tessel::Float2& newValue) override;
    void* GetValuePtr() override;
    void ResetValue() override;
    float GetMagnitude() override;
    Tessel::Float2 GetVector() override;
    void SetVector(const Tessel::Float2& newValue) override;
    void PullValue() override;
    int OnBroadcastEvent(int event, const void* record) override;

private:
    void WriteValue();

    Tessel::Float2 value{};
    float magnitude = 0.0f; ///< length of `value`, as of the last SetValue
    Tessel::Float2 defaultValue{};
};

/// A three-float parameter with its length.
class VELL_API ParameterFloat3Def : public ParameterDef, public IParameterFloat3Def
{
public:
    ParameterFloat3Def();
    ~ParameterFloat3Def() override;

    int InitKVTable() override;
    Tessel::Float3 GetDefaultValue() override;
    void SetDefaultValue(const Tessel::Float3& newDefault) override;
    Tessel::Float3 GetValue() override;
    void SetValue(const Tessel::Float3& newValue) override;
    void* GetValuePtr() override;
    void ResetValue() override;
    float GetMagnitude() override;
    Tessel::Float3 GetVector() override;
    void SetVector(const Tessel::Float3& newValue) override;
    void PullValue() override;
    int OnBroadcastEvent(int event, const void* record) override;

private:
    void WriteValue();

    Tessel::Float3 value{};
    float magnitude = 0.0f; ///< length of `value`, as of the last SetValue
    Tessel::Float3 defaultValue{};
};

/// A four-float parameter.
class VELL_API ParameterFloat4Def : public ParameterDef, public IParameterFloat4Def
{
public:
    ParameterFloat4Def();
    ~ParameterFloat4Def() override;

    int InitKVTable() override;
    Tessel::Float4 GetDefaultValue() override;
    void SetDefaultValue(const Tessel::Float4& newDefault) override;
    Tessel::Float4 GetValue() override;
    void SetValue(const Tessel::Float4& newValue) override;
    void* GetValuePtr() override;
    void ResetValue() override;
    void PullValue() override;
    int OnBroadcastEvent(int event, const void* record) override;

private:
    void WriteValue();

    Tessel::Float4 value{};
    Tessel::Float4 defaultValue{};
};

/// A text parameter: a message.
class VELL_API ParameterMessageDef : public ParameterDef, public IParameterMessageDef
{
public:
    ParameterMessageDef();
    ~ParameterMessageDef() override;

    int InitKVTable() override;
    std::string GetDefaultValue() override;
    void SetDefaultValue(std::string newDefault) override;
    std::string GetValue() override;
    void SetValue(const std::string& newValue) override;
    void* GetValuePtr() override;
    void ResetValue() override;
    void PullValue() override;
    int OnBroadcastEvent(int event, const void* record) override;

    friend Tessel::KVTable ReleaseStorage(ParameterMessageDef& def, ArenaLink::AtEnd atEnd)
    {
        std::string().swap(def.defaultValue);
        std::string().swap(def.value);
        return ReleaseStorage(static_cast<ParameterDef&>(def), atEnd);
    }

private:
    void WriteValue();

    std::string defaultValue;
    std::string value;
};

} // namespace vell
