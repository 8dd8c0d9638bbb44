// VELL: data-driven hierarchical state machines.
// definitions/BaseDefInternals.cpp: whose revision a definition raises, and its lists.
#include "definitions/BaseDefInternals.h"

namespace vell
{
namespace
{

/// Stands for the revision of a definition that a host may write to. Nobody raises it.
Revision handedOut;

} // namespace

void BaseDef::Internals::Follow(BaseDef& def, Revision* revision)
{
    if (def.revision.pointer != &handedOut)
    {
        def.revision.pointer = revision;
    }
}

void BaseDef::Internals::HandOut(BaseDef& def)
{
    CountChange(def);
    def.revision.pointer = &handedOut;
}

void BaseDef::Internals::CountChange(BaseDef& def)
{
    Revision* revision = def.revision.pointer;
    if (revision != nullptr && revision != &handedOut)
    {
        revision->Raise();
    }
}

Action** BaseDef::Internals::FindList(BaseDef& def, const Action* first)
{
    for (Action** list : {&def.executeActions, &def.enterActions, &def.exitActions})
    {
        if (*list == first)
        {
            return list;
        }
    }
    return nullptr;
}

} // namespace vell
