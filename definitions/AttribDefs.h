// VELL: data-driven hierarchical state machines.
// definitions/AttribDefs.h: the seven classes of attributes.
#pragma once

#include <vell/AttribBase.h>

#include <cstddef>

namespace vell
{

// Every setter stores the value and writes it to the key "value", unless the write comes back from
// the attribute's own.

/// A bool. It has no getter of its own: SMState::GetAttrib reads `value`.
class AttribDefBool : public AttribBase
{
public:
    AttribDefBool();
    using AttribBase::GetValue;
    using AttribBase::SetValue;
    // Required: there is no GetValue(bool*) here, so the attribute itself gives 0 and no value.
    void SetValue(bool newValue) override;

    bool value = false;
};

/// A signed 32-bit integer.
class AttribDefInteger : public AttribBase
{
public:
    AttribDefInteger();
    using AttribBase::GetValue;
    using AttribBase::SetValue;
    void SetValue(int newValue) override;
    int GetValue(int* out) override;

    int value = 0;
};

/// A float.
class AttribDefFloat : public AttribBase
{
public:
    AttribDefFloat();
    using AttribBase::GetValue;
    using AttribBase::SetValue;
    void SetValue(float newValue) override;
    int GetValue(float* out) override;

    float value = 0.0f;
};

/// Two floats.
class AttribDefFloat2 : public AttribBase
{
public:
    AttribDefFloat2();
    using AttribBase::GetValue;
    using AttribBase::SetValue;
    void SetValue(const Tessel::Float2& newValue) override;
    int GetValue(Tessel::Float2* out) override;

    Tessel::Float2 value{};
};

/// Three floats.
class AttribDefFloat3 : public AttribBase
{
public:
    AttribDefFloat3();
    using AttribBase::GetValue;
    using AttribBase::SetValue;
    void SetValue(const Tessel::Float3& newValue) override;
    int GetValue(Tessel::Float3* out) override;

    Tessel::Float3 value{};
};

/// Four floats.
class AttribDefFloat4 : public AttribBase
{
public:
    AttribDefFloat4();
    using AttribBase::GetValue;
    using AttribBase::SetValue;
    void SetValue(const Tessel::Float4& newValue) override;
    int GetValue(Tessel::Float4* out) override;

    Tessel::Float4 value{};
};

/// A text of at most 1023 characters. It has no getter: SMState::GetAttrib hands out `buffer`.
class AttribDefString : public AttribBase
{
public:
    AttribDefString();
    using AttribBase::SetValue;
    /// Ignores null and a text of 1024 characters or more.
    void SetValue(const char* newValue) override;

    static constexpr std::size_t kCapacity = 0x400;

    void* unused = nullptr; ///< nobody reads it
    char buffer[kCapacity] = {};
    std::size_t capacity = kCapacity; ///< characters in `buffer`, the terminator included
};

} // namespace vell
