// VELL: data-driven hierarchical state machines.
// include/vell/ParameterDef.h: the base of the seven parameter classes.
#pragma once

#include <vell/BaseDef.h>
#include <vell/IBroadcastListener.h>
#include <vell/ValueRecord.h>

namespace vell
{

class ParameterTable;

/// A named, typed, live value of a machine: the input that conditions test. It keeps a default and
/// a current value, mirrors the current one in its table under "value", and takes a tool's write of
/// that key back as its value.
class VELL_API ParameterDef : public BaseDef, public IBroadcastListener
{
public:
    // The order of these is part of the interface; they follow those of BaseDef.

    void Uninit() override;
    int UninitKVTable() override;
    /// Gives the parameter type number.
    virtual int GetParamType();
    virtual void SetParamType(int newType);
    /// Gives the binding number that input records are matched with; 0 for a run-time parameter.
    virtual int GetAssign();
    virtual void SetAssign(int newAssign);
    /// Gives the class of the binding number: 4, 1 or 0.
    virtual int GetAssignClass();
    virtual void SetAssignClass(int newClass);
    /// Gives the address of the current value: bool, int, one to four floats, or a std::string.
    /// It is the parameter's, and stays the same from the end of the load to IHSM::Uninit.
    virtual void* GetValuePtr() = 0;
    /// Sets the current value to the default.
    virtual void ResetValue() = 0;
    /// Gives 2 while the parameter writes its own table, else 0.
    virtual int GetSyncState();
    virtual void SetSyncState(int newState);
    /// Starts listening to the key "value". Returns 1, or 0 when there is no such key.
    virtual int InitKVTableListener();
    virtual int UnInitKVTableListener();
    /// Takes the table's "value" over as the current value.
    virtual void PullValue() = 0;
    /// Pulls the value, unless the parameter itself is writing or `result` is not
    /// opResult_ValueChanged. Returns 1.
    virtual int OnParamValueModified(Tessel::opResult result, Tessel::KVTable table,
                                     const char* key);

    friend Tessel::KVTable ReleaseStorage(ParameterDef& parameter, ArenaLink::AtEnd atEnd)
    {
        const Tessel::KVTable table = ReleaseStorage(static_cast<BaseDef&>(parameter), atEnd);
        if (table)
        {
            parameter.listening.Stop();
        }
        return table;
    }

    /// Tells whether the machine resets the parameter at the end of every tick.
    bool IsResetEachFrame() const;

    /// Copies the value with all else. What `other` says of `IsResetEachFrame` counts from now on.
    ParameterDef& operator=(const ParameterDef& other);
    ParameterDef(const ParameterDef& other) = default;

protected:
    explicit ParameterDef(int type);

    /// Writes the identity and the type name into the table, for `InitKVTable` of the classes.
    void InitTypeKey();

    int syncState = 0;           ///< 0 idle, 2 while the parameter writes its own table
    int paramType = 0;           ///< parameter type number
    int assign = 0;              ///< binding number
    int assignClass = 0;         ///< class of the binding number
    bool resetEachFrame = false; ///< written while loading and by assignment, by nobody else

private:
    friend class ParameterTable;

    NotCopied<ParameterTable> resetBy; ///< the library's; the table that resets it, or null
    ValueRecord listening;             ///< the library's; by which the value is heard of
};

} // namespace vell
