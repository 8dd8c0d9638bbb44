// VELL: data-driven hierarchical state machines.
// definitions/ExitDef.cpp: the exit node of a substate.
#include "definitions/ExitDef.h"

#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"

namespace vell
{

BaseDef* ExitDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), nullptr);
    ExitDef* def = PlaceDef<ExitDef>(alloc, DefTypeExit, DefTypesState);
    ERROR_RETURN(def, nullptr);
    return def;
}

int ExitDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ERROR_BREAK(node.IsObject());
        ERROR_BREAK(alloc);
        // Required: a failed base runs twice.
        ERROR_BREAK(BaseDef::Init(node, alloc));
        if (const GenericValue* target = FindMember(node, JSON_EntryTarget))
        {
            targetId = ReadUInt(*target);
            ERROR_BREAK(targetId);
        }
        return 1;
    } while (false);
    Uninit();
    return 0;
}

} // namespace vell
