// VELL: data-driven hierarchical state machines.
// definitions/EnterDef.cpp: the enter node of a substate.
#include "definitions/EnterDef.h"

#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"

namespace vell
{

BaseDef* EnterDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), nullptr);
    EnterDef* def = PlaceDef<EnterDef>(alloc, DefTypeEnter, DefTypesState);
    ERROR_RETURN(def, nullptr);
    return def;
}

int EnterDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ERROR_BREAK(node.IsObject());
        ERROR_BREAK(alloc);
        // Required: a failed base runs twice.
        ERROR_BREAK(BaseDef::Init(node, alloc));
        targetId = ReadUInt(node, JSON_EntryTarget);
        ERROR_BREAK(targetId);
        return 1;
    } while (false);
    Uninit();
    return 0;
}

} // namespace vell
