// VELL: data-driven hierarchical state machines.
// include/vell/BaseDef.h: the base of every node definition.
#pragma once

#include <tessel/Tessel.h>
#include <vell/ArenaLink.h>
#include <vell/IBaseDef.h>
#include <vell/Json.h>
#include <vell/NotCopied.h>

#include <map>

namespace vell
{

class HSMAlloc;
struct Revision;

/// The base of every definition class. A host that adds a kind of node derives from it, writes a
/// factory that places the object with HSMAlloc::New and registers it (IHSM::RegisterNodeDef). Its
/// `Init` calls BaseDef::Init first, and on failure calls the virtual `Uninit` and returns 0.
class VELL_API BaseDef : public IBaseDef
{
public:
    struct VELL_LOCAL Internals; ///< the library's own

    BaseDef();
    explicit BaseDef(const char* name);
    BaseDef(const char* name, unsigned int id, unsigned int parentId);
    /// A copy shares name, table, child ids and action lists with the source. It has its own map of
    /// the same attributes.
    BaseDef(const BaseDef& other);
    BaseDef& operator=(const BaseDef& other);

    /// The factory of a plain node. Places the definition in the arena. Null with a log line when
    /// the arena is full.
    static BaseDef* Create(const GenericValue& node, HSMAlloc* alloc);

    // The order of these is part of the interface.

    /// Calls `Uninit` of this class. Never called for a definition in the arena.
    ~BaseDef() override;
    AttribBase* GetAttrib(const char* attribName) override;
    const char* GetName() override;
    unsigned int GetID() override;
    unsigned int GetParentID() override;
    eHSMDefTypes GetType() override;
    const char* GetScriptName() override;
    int RegisterEnter(Action* action) override;
    int RegisterExit(Action* action) override;
    int RegisterExecute(Action* action) override;
    Action* GetActions() override;
    Action* GetEnterActions() override;
    Action* GetExitActions() override;
    int RemoveAction(Action* action) override;
    void SetFlags(unsigned int newFlags) override;
    unsigned int GetFlags() const override;
    /// Reads the common members of `node` and creates the node's table. Returns 1, or 0 with log
    /// lines; the members read before the failure are kept.
    virtual int Init(const GenericValue& node, HSMAlloc* alloc);
    /// Deletes the actions, stops listening and closes the table. Call it once.
    virtual void Uninit();
    /// Writes the id to the node's table, which is created if there is none. Returns 1.
    virtual int InitKVTable();
    /// Does nothing here. Returns 1.
    virtual int UninitKVTable();

    /// Stores the pointer; the text is not copied.
    void SetName(const char* newName);
    void SetID(unsigned int newId);
    void SetParent(unsigned int newParentId);
    void SetType(eHSMDefTypes newType);
    void SetIndex(int newIndex);
    /// Gives the position in the order of insertion, -1 until the node is in a table.
    int GetIndex() const;
    /// Gives the builder number, 0 when the document names none.
    __DURM_BUILDERS__ GetBuilderType() const;
    /// Gives the id of the exit connector, or 0.
    unsigned int GetExitConnector() const;
    unsigned int GetNumChildren() const;
    /// Gives the id of child `i`, which must be below `GetNumChildren()`; 0 when the arena had no
    /// space for the children.
    unsigned int GetChildID(unsigned int i) const;
    /// Gives the node's table, or null. The table of a condition of the library is created by this
    /// call.
    Tessel::KVTable GetKVTable() const;
    /// Writes the key "dynamic", and for a non-zero `dynamic` the key "name". Returns 1.
    int TabSetDynamic(int dynamic);

    friend Tessel::KVTable ReleaseStorage(BaseDef& def, ArenaLink::AtEnd)
    {
        AttribMap().swap(def.attribs);
        return def.tableState == TableState::Closed ? Tessel::KVTable() : def.kvTable;
    }
    friend ArenaLink& GetArenaLink(BaseDef& object)
    {
        return object.arenaLink;
    }

protected:
    int CreateKVTable() const;
    int DestroyKVTable();
    int TabSetName();

    int AddTail(Action** head, Action* action);
    int AddHead(Action** head, Action* action);
    int DestroyActions(Action** head);

    int Init_Attribs(const GenericValue& node, HSMAlloc* alloc);
    int Init_Attrib(const GenericValue& element, HSMAlloc* alloc);
    int Uninit_Attribs();
    int Uninit_Attrib(AttribBase* attrib);
    int TabAddAttrib(AttribBase* attrib);

    using AttribMap = std::map<const char*, AttribBase*>;

    /// The state of `kvTable`.
    enum class TableState : unsigned char
    {
        Open,  ///< or null
        Due,   ///< created by GetKVTable
        Closed ///< it keeps its handle
    };

    mutable Tessel::KVTable kvTable;    ///< named "baseDef"; null until Init or InitKVTable
    const char* name = nullptr;         ///< belongs to the document
    eHSMDefTypes type = DefTypeBase;    ///< set by the factory
    __DURM_BUILDERS__ builderType = {}; ///< 0 when the document names none
    unsigned int id = 0;                ///< 0 means none
    unsigned int parentId = 0;          ///< id of the enclosing node
    int index = -1;                     ///< position in the order of insertion
    unsigned int exitConnector = 0;     ///< id of a connector, or 0
    unsigned int flags = 0;             ///< class mask
    unsigned int numChildren = 0;       ///< length of `childIds`
    unsigned int numAttribs = 0;        ///< length of the document's attribute array
    unsigned int numExecute = 0;        ///< length of the execute list
    unsigned int numEnter = 0;          ///< length of the enter list
    unsigned int numExit = 0;           ///< length of the exit list
    bool isTableLate = false;           ///< `Init` leaves creating `kvTable` to GetKVTable
    mutable TableState tableState = {}; ///< of `kvTable`
    char* scriptName = nullptr;         ///< in the arena; null when absent or empty
    unsigned int* childIds = nullptr;   ///< in the arena, possibly not aligned
    AttribMap attribs;                  ///< keys are compared as pointers; attributes in the arena
    Action* executeActions = nullptr;   ///< owned
    Action* enterActions = nullptr;     ///< owned
    Action* exitActions = nullptr;      ///< owned
    void* reserved = nullptr;           ///< never read

private:
    VELL_LOCAL void Append(Action** head, unsigned int* count, Action* action);

    ArenaLink arenaLink;          ///< the library's
    NotCopied<Revision> revision; ///< the library's; null until something follows the changes
};

} // namespace vell
