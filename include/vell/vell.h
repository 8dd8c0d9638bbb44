// VELL: data-driven hierarchical state machines.
// include/vell/vell.h: everything that a host may include, in one line.
#pragma once

#include <vell/Action.h>
#include <vell/ArenaLink.h>
#include <vell/AttribBase.h>
#include <vell/BaseDef.h>
#include <vell/Callbacks.h>
#include <vell/ConditionDef.h>
#include <vell/Events.h>
#include <vell/Export.h>
#include <vell/Factories.h>
#include <vell/HSM.h>
#include <vell/HSMAlloc.h>
#include <vell/IAttribDef.h>
#include <vell/IBaseDef.h>
#include <vell/IBroadcastListener.h>
#include <vell/IHSM.h>
#include <vell/IParameterTable.h>
#include <vell/Json.h>
#include <vell/LogLevel.h>
#include <vell/NotCopied.h>
#include <vell/ParamBroadcast.h>
#include <vell/ParameterDef.h>
#include <vell/ParameterValues.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>
#include <vell/SubstateState.h>
#include <vell/TransitionDef.h>
#include <vell/Types.h>
#include <vell/UpdateMachines.h>
#include <vell/UpdateResult.h>
#include <vell/ValueRecord.h>
