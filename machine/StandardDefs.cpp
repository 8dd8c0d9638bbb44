// VELL: data-driven hierarchical state machines.
// machine/StandardDefs.cpp: which class a node of a document becomes.
#include "definitions/StandardDefs.h"

#include <vell/ConditionDef.h>
#include <vell/TransitionDef.h>

#include "definitions/AnimClipDef.h"
#include "definitions/ConnectorDef.h"
#include "definitions/EnterDef.h"
#include "definitions/ExitDef.h"
#include "definitions/GenericDef.h"
#include "definitions/GlobalDef.h"
#include "definitions/SubstateDef.h"

#include <iterator>

namespace vell
{
namespace
{

BaseDef* CreateTransition(const GenericValue& node, HSMAlloc* alloc)
{
    return TransitionDef::Create(node, alloc);
}

constexpr StandardDef kStandardDefs[] = {
    {DURMBaseLib::BUILDER_Base, BaseDef::Create},
    {DURMBaseLib::BUILDER_AnimClip, AnimClipDef::Create},
    {DURMBaseLib::BUILDER_Generic, GenericDef::Create},
    {DURMBaseLib::BUILDER_Connector, ConnectorDef::Create},
    {DURMBaseLib::BUILDER_Transition, CreateTransition},
    {DURMBaseLib::BUILDER_Enter, EnterDef::Create},
    {DURMBaseLib::BUILDER_Exit, ExitDef::Create},
    {DURMBaseLib::BUILDER_Condition, ConditionDef::Create},
    {DURMBaseLib::BUILDER_Global, GlobalDef::Create},
    {DURMBaseLib::BUILDER_Substate, SubstateDef::Create},
};

} // namespace

StandardDefs GetStandardDefs()
{
    return {std::begin(kStandardDefs), std::end(kStandardDefs)};
}

} // namespace vell
