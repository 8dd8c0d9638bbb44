// VELL: data-driven hierarchical state machines.
// definitions/SubstateDef.cpp: the definition of a substate.
#include "definitions/SubstateDef.h"

#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"

namespace vell
{

BaseDef* SubstateDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), nullptr);
    SubstateDef* def = PlaceDef<SubstateDef>(alloc, DefTypeSubstate, DefTypesSubstate);
    ERROR_RETURN(def, nullptr);
    return def;
}

int SubstateDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ERROR_BREAK(node.IsObject());
        ERROR_BREAK(alloc);
        // Required: a failed base runs twice.
        ERROR_BREAK(BaseDef::Init(node, alloc));
        enterId = ReadUInt(node, JSON_SubstateEnter);
        ERROR_BREAK(enterId);
        exitId = ReadUInt(node, JSON_SubstateExit);
        ERROR_BREAK(exitId);
        return 1;
    } while (false);
    Uninit();
    return 0;
}

} // namespace vell
