// VELL: data-driven hierarchical state machines.
// tests/support/ScriptedListener.h: a listener that does what a test says.
#pragma once

#include <vell/Events.h>
#include <vell/IBroadcastListener.h>
#include <vell/Types.h>

#include "tests/support/LogRecorder.h"

#include <functional>
#include <string>
#include <utility>

namespace vell::test
{

/// Notes each call: "NAME 3 TRANSITION PREVIOUS NEXT" for a state change, "NAME 5 CLIP FLAG RATE"
/// for an animation, "NAME EVENT" for others and for null records. Then runs `then`, if there is
/// one.
class ScriptedListener final : public IBroadcastListener
{
public:
    ScriptedListener(Lines& notes, std::string listenerName)
        : lines(notes), name(std::move(listenerName))
    {
    }

    int OnBroadcastEvent(int event, const void* record) override
    {
        lines.push_back(name + " " + std::to_string(event) + RecordText(event, record));
        if (then)
        {
            then();
        }
        return 0;
    }

    std::function<void()> then;

private:
    static std::string RecordText(int event, const void* record)
    {
        if (event == HSMEventStateChange && record != nullptr)
        {
            const auto& change = *static_cast<const StateChangeEvent*>(record);
            return " " + std::to_string(change.transitionID) + " " +
                   std::to_string(change.previousID) + " " + std::to_string(change.nextID);
        }
        if (event == HSMEventPlayAnimation && record != nullptr)
        {
            const auto& play = *static_cast<const __PlayAnimEvent__*>(record);
            return std::string(" ") + (play.clipName == nullptr ? "(null)" : play.clipName) +
                   (play.flag ? " true " : " false ") + std::to_string(play.scalar);
        }
        return "";
    }

    Lines& lines;
    std::string name;
};

} // namespace vell::test
