// VELL: data-driven hierarchical state machines.
// definitions/GenericDef.cpp: a plain state.
#include "definitions/GenericDef.h"

#include "definitions/DefPlacement.h"
#include "foundation/Checks.h"

#include <rapidjson/document.h>

namespace vell
{

BaseDef* GenericDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), nullptr);
    GenericDef* def = PlaceDef<GenericDef>(alloc, DefTypeGeneric, DefTypesState);
    ERROR_RETURN(def, nullptr);
    return def;
}

int GenericDef::Init(const GenericValue& node, HSMAlloc* alloc)
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
