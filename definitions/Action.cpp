// VELL: data-driven hierarchical state machines.
// definitions/Action.cpp: what an action does when the host overrides nothing.
#include <vell/Action.h>

namespace vell
{

Action::~Action() = default;

int Action::Init()
{
    return 1;
}

int Action::Perform(__ActType__, float)
{
    return 1;
}

void Action::SetOwner(BaseDef*)
{
}

} // namespace vell
