// VELL: data-driven hierarchical state machines.
// include/vell/ParameterDef.h: the base of the seven parameter classes.
#pragma once

#include <vell/BaseDef.h>
#include <vell/IBroadcastListener.h>
#include <vell/ValueRecord.h>

namespace vell
{

class ParameterTable;

/// A named, typed input of a machine, which conditions test. It has a default and a current value,
/// mirrors the current one in its table under "value", and takes its value from there when a tool
/// writes it.
class VELL_API ParameterDef : public BaseDef, public IBroadcastListener
{
public:
    struct VELL_LOCAL Slot; ///< the library's own

    // The order of these is part of the interface; they follow those of BaseDef.

    void Uninit() override;
    int UninitKVTable() override;
    /// Gives the parameter type number.
    virtual int GetParamType();
    virtual void SetParamType(int newType);
    /// Gives the binding number that is compared with that of input records; 0 for a run-time
    /// parameter.
    virtual int GetAssign();
    virtual void SetAssign(int newAssign);
    /// Gives the class of the binding number: 4, 1 or 0.
    virtual int GetAssignClass();
    virtual void SetAssignClass(int newClass);
    /// Gives the address of the current value: bool, int, one to four floats, or a std::string. The
    /// address belongs to the parameter and does not change from the end of the load to
    /// IHSM::Uninit.
    virtual void* GetValuePtr() = 0;
    /// Sets the current value to the default.
    virtual void ResetValue() = 0;
    /// Gives 2 while the parameter writes its own table, else 0.
    virtual int GetSyncState();
    virtual void SetSyncState(int newState);
    /// Starts listening to the key "value". Returns 1, or 0 when there is no such key.
    virtual int InitKVTableListener();
    virtual int UnInitKVTableListener();
    /// Sets the current value to the table's "value".
    virtual void PullValue() = 0;
    /// Takes the value from the table, unless the parameter itself is writing or `result` is not
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

    /// Copies the value and everything else, including `IsResetEachFrame`, which then has its
    /// effect here.
    ParameterDef& operator=(const ParameterDef& other);
    ParameterDef(const ParameterDef& other) = default;

protected:
    explicit ParameterDef(int type);

    /// Writes the id and the type name to the table, for `InitKVTable` of the classes.
    void InitTypeKey();

    int paramType = 0;           ///< parameter type number
    int assign = 0;              ///< binding number
    int assignClass = 0;         ///< class of the binding number
    bool resetEachFrame = false; ///< written only during the load and by assignment

private:
    friend class ParameterTable;

    ValueRecord listening; ///< the library's; the listener record for the value
    // What setting a value reads comes last, beside the value that the class adds.
    NotCopied<Slot> slot; ///< the library's; null while it is in no parameter table

protected:
    int syncState = 0; ///< 0 idle, 2 while the parameter writes its own table
};

} // namespace vell
