// VELL: data-driven hierarchical state machines.
// introspection/ContextBranch.cpp: finding of "contextInfo" and its keys.
#include "introspection/ContextBranch.h"

#include "foundation/TreeKeys.h"

#include <algorithm>
#include <iterator>

namespace vell
{

void ContextBranch::Find(Tessel::KVTable root, Tessel::KVTable context)
{
    followed = context;
    if (slotOperations.findBranch(&branch, root, kContextKey) == 0)
    {
        return;
    }
    numbers[kPreviousState] = context->FindValue(kPreviousStateKey);
    numbers[kNextState] = context->FindValue(kNextStateKey);
    numbers[kTransition] = context->FindValue(kTransitionKey);
    stacks[MainStack] = context->FindValue(kMainStackKey);
    stacks[BlipStack] = context->FindValue(kBlipStackKey);
    const bool isWhole =
        std::find(std::begin(numbers), std::end(numbers), nullptr) == std::end(numbers) &&
        std::find(std::begin(stacks), std::end(stacks), nullptr) == std::end(stacks);
    if (!isWhole)
    {
        // A tool's own table without all keys is left to the rule.
        branch.table = Tessel::KVTable();
    }
}

} // namespace vell
