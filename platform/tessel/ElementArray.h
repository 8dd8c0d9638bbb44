// VELL: data-driven hierarchical state machines.
// platform/tessel/ElementArray.h: the array part of a table.
#pragma once

#include <tessel/Tessel.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace Tessel
{

/// One element of an array: an unsigned.
class Element final : public KVValue
{
public:
    int GetValueType() const override;
    int GetIntValue() const override;
    float GetFloatValue() const override;
    const char* GetStringValue() const override;
    int GetFloat2Value(Float2* out) const override;
    int GetFloat3Value(Float3* out) const override;
    unsigned GetUIntValue() const override;

    unsigned value = 0;
};

/// The array part of a table. Elements stay where they are until removed; a removed element is used
/// again, so an array that goes up and down allocates nothing.
class ElementArray
{
public:
    /// Appends `value`. May throw `std::bad_alloc`; the array then is as it was.
    void Push(unsigned value)
    {
        if (count == order.size())
        {
            AddSpares();
        }
        order[count]->value = value;
        ++count;
    }

    /// Removes the element `index`; those behind it move up. False past the end.
    bool RemoveAt(unsigned index);

    /// Removes the last element. False when there is none.
    bool RemoveLast()
    {
        if (count == 0)
        {
            return false;
        }
        --count;
        return true;
    }

    /// Gives the element `index`, or null past the end.
    Element* GetAt(unsigned index) const;

    unsigned GetCount() const
    {
        return count;
    }

private:
    void AddSpares();

    std::vector<Element*> order; ///< the elements in use, then the spare ones
    std::vector<std::unique_ptr<Element[]>> blocks;
    unsigned count = 0; ///< elements in use
};

} // namespace Tessel
