// VELL: data-driven hierarchical state machines.
// definitions/GlobalDef.cpp: the node whose transitions interrupt the machine.
#include "definitions/GlobalDef.h"

#include "definitions/DefPlacement.h"
#include "foundation/Checks.h"

#include <rapidjson/document.h>

namespace vell
{

BaseDef* GlobalDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), nullptr);
    GlobalDef* def = PlaceDef<GlobalDef>(alloc, DefTypeGlobal, DefTypesState);
    ERROR_RETURN(def, nullptr);
    return def;
}

int GlobalDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ERROR_BREAK(node.IsObject());
        ERROR_BREAK(alloc);
        // Required: a failed base runs twice.
        ERROR_BREAK(BaseDef::Init(node, alloc));
        return 1;
    } while (false);
    Uninit();
    return 0;
}

} // namespace vell
