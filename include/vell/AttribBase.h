// VELL: data-driven hierarchical state machines.
// include/vell/AttribBase.h: the common part of all attributes.
#pragma once

#include <tessel/Tessel.h>
#include <vell/ArenaLink.h>
#include <vell/IAttribDef.h>
#include <vell/ValueRecord.h>

namespace vell
{

/// An attribute with its key/value table, named "attribBase". Setting the value writes the table's
/// key "value". When a tool writes that key, `SetValue` is called, except for four floats, which
/// change only in the table.
class VELL_API AttribBase : public IAttribDef
{
public:
    AttribBase();
    /// Copies share the table. The table that an assigned attribute had closes with the arena.
    AttribBase(const AttribBase& other) = default;
    AttribBase& operator=(const AttribBase& other);

    // The order of these is part of the interface.

    /// Closes the table.
    ~AttribBase() override;
    const char* GetName() const override;
    int GetDefaultType() const override;
    void SetValue(const char* value) override;
    void SetValue(int value) override;
    void SetValue(float value) override;
    void SetValue(bool value) override;
    int GetValue(const char* value) override;
    int GetValue(int* value) override;
    int GetValue(float* value) override;
    int GetValue(bool* value) override;
    virtual void SetValue(const Tessel::Float4& value);
    virtual void SetValue(const Tessel::Float3& value);
    virtual void SetValue(const Tessel::Float2& value);
    virtual int GetValue(Tessel::Float4* value);
    virtual int GetValue(Tessel::Float3* value);
    virtual int GetValue(Tessel::Float2* value);

    /// Stores the pointer `newName` and writes the key "name". The text is not copied.
    void SetName(const char* newName);
    /// Gives the attribute's table, or null.
    Tessel::KVTable GetKVTable() const;
    /// Creates a new table. Returns 1.
    int CreateKVTable();
    /// Closes the table and keeps its handle. Returns 1.
    int DestroyKVTable();
    /// Starts listening to the key "value". Returns 1, or 0 with log lines when there is no table.
    int InitKVTableListener();
    /// Stops listening. Returns 1, or 0 with log lines when there is no table.
    int UnInitKVTableListener();
    /// Sets the value to that of `key` in `table`, unless the attribute itself is writing or `op`
    /// is not opResult_ValueChanged.
    void OnAttribValueModified(Tessel::opResult op, Tessel::KVTable table, const char* key);

    friend Tessel::KVTable ReleaseStorage(AttribBase& attrib, ArenaLink::AtEnd)
    {
        attrib.listening.Stop();
        return attrib.kvTable;
    }
    friend ArenaLink& GetArenaLink(AttribBase& object)
    {
        return object.arenaLink;
    }

protected:
    /// The constructor of a concrete attribute: `type` is its parameter type number, whose name is
    /// written to the key "type".
    explicit AttribBase(int type);

    Tessel::KVTable kvTable;    ///< null only if there was no memory for it
    int syncState = 0;          ///< 0 idle, 2 while the attribute writes its own table
    const char* name = nullptr; ///< belongs to the document
    int defaultType = 0;        ///< parameter type number of the value

private:
    int ListenToValue();
    int StopListeningToValue();

    ValueRecord listening;
    ArenaLink arenaLink; ///< the library's
};

} // namespace vell
