// VELL: data-driven hierarchical state machines.
// definitions/AnimClipDef.cpp: a clip that the animation system is to play while its state is
// active.
#include "definitions/AnimClipDef.h"

#include "definitions/DefPlacement.h"
#include "document/JsonReader.h"
#include "foundation/Checks.h"

namespace vell
{

BaseDef* AnimClipDef::Create(const GenericValue& node, HSMAlloc* alloc)
{
    ERROR_RETURN(node.IsObject(), nullptr);
    AnimClipDef* def = PlaceDef<AnimClipDef>(alloc, DefTypeAnimClip, DefTypesState);
    ERROR_RETURN(def, nullptr);
    return def;
}

int AnimClipDef::Init(const GenericValue& node, HSMAlloc* alloc)
{
    do
    {
        ERROR_BREAK(node.IsObject());
        ERROR_ASSERT(alloc);
        // Required: a failed base runs twice.
        ERROR_BREAK(BaseDef::Init(node, alloc));
        clipName = ReadText(node, JSON_ClipName);
        clipFlag = ReadBool(GetMember(node, JSON_ClipFlag));
        // Required: without the first of these members the second is not read.
        if (const GenericValue* secondary = FindMember(node, JSON_ClipSecondaryA))
        {
            secondaryA = ReadText(*secondary);
            secondaryB = ReadText(node, JSON_ClipSecondaryB);
        }
        return 1;
    } while (false);
    Uninit();
    return 0;
}

} // namespace vell
