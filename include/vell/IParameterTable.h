// VELL: data-driven hierarchical state machines.
// include/vell/IParameterTable.h: finding and making parameters.
#pragma once

#include <vell/Export.h>

namespace vell
{

class IBroadcastListener;
class IParameterBoolDef;
class IParameterFloatDef;
class IParameterIntDef;
class IParameterMessageDef;
class ParameterDef;

/// All parameters of a machine. A parameter's id is the CRC of its name; 0 means none.
class VELL_API IParameterTable
{
public:
    // The order of these is part of the interface. There is no virtual destructor: the table
    // belongs to its machine.

    virtual int GetParameterCount() = 0;
    /// Gives the name, or null for an unknown id.
    virtual const char* GetParameterName(unsigned int id) = 0;
    /// Gives the id, or 0 for an unknown name, without a log line.
    virtual unsigned int GetParameterID(const char* name) = 0;
    /// Gives the id of parameter `index` in ascending id order, or 0 past the end.
    virtual unsigned int GetParameterIDByIndex(unsigned int index) = 0;
    /// Gives the parameter, or null with a log line for an unknown name.
    virtual ParameterDef* FindParameter(const char* name) = 0;
    /// Gives the parameter, or null without a log line.
    virtual ParameterDef* FindParameter(unsigned int id) = 0;
    /// Gives the binding number, or 0 for an unknown id.
    virtual int GetParameterAssign(unsigned int id) = 0;
    /// Gives the class of the binding number, or 0 for an unknown id.
    virtual int GetParameterAssignClass(unsigned int id) = 0;
    /// Gives the parameter as a listener that the host can subscribe to its input events, or null.
    virtual IBroadcastListener* GetBroadcastListener(unsigned int id) = 0;
    /// Creates a parameter while the machine runs, with `value` as default and current value.
    /// Returns 1 and the parameter; 0 and null when the name is null or already used. Conditions
    /// that are already bound do not see it until HSM::BindParamCond is called.
    ///
    /// The parameter is never deleted, so the pointer stays valid after the machine is deleted. Its
    /// table is closed with the machine; setting the value then only stores it. Each one takes some
    /// hundred bytes of the process that are never freed: a host that keeps creating machines
    /// should declare such parameters in the document. `name` is not copied: it must outlive the
    /// machine, and the last call of the parameter's `GetName`.
    virtual int CreateFloatParameter(const char* name, float value, IParameterFloatDef** out) = 0;
    virtual int CreateBoolParameter(const char* name, bool value, IParameterBoolDef** out) = 0;
    virtual int CreateIntParameter(const char* name, int value, IParameterIntDef** out) = 0;
    /// As above. `text` is copied; null is an empty text.
    virtual int CreateMessageParameter(const char* name, const char* text,
                                       IParameterMessageDef** out) = 0;

protected:
    ~IParameterTable() = default;
};

} // namespace vell
