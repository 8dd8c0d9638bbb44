// VELL: data-driven hierarchical state machines.
// tests/support/TestListener.h: a listener that notes its calls and does what a test says.
#pragma once

#include <vell/Events.h>
#include <vell/IBroadcastListener.h>
#include <vell/Types.h>

#include "tests/support/LogRecorder.h"

#include <functional>
#include <sstream>
#include <string>
#include <utility>

namespace vell::test
{

/// Notes each call: "NAME: change TRANSITION: PREVIOUS -> NEXT" for a state change, "NAME: play
/// CLIP FLAG SCALAR" for an animation, "NAME: event NUMBER" for others and for null records. Then
/// runs `then`, if there is one.
class TestListener final : public IBroadcastListener
{
public:
    /// Notes between the lines of the LogRecorder that lives.
    explicit TestListener(std::string listenerName) : name(std::move(listenerName))
    {
    }
    /// Notes in `notes`.
    TestListener(Lines& notes, std::string listenerName)
        : lines(&notes), name(std::move(listenerName))
    {
    }

    int OnBroadcastEvent(int event, const void* received) override
    {
        const std::string line = name + ": " + Shown(event, received);
        lines == nullptr ? LogRecorder::Note(line) : lines->push_back(line);
        record = received;
        if (then)
        {
            then();
        }
        return 0;
    }

    std::function<void()> then;
    const void* record = nullptr; ///< of the last call, for `then`

private:
    static std::string Shown(int event, const void* record)
    {
        std::ostringstream text;
        if (event == HSMEventStateChange && record != nullptr)
        {
            const auto& change = *static_cast<const StateChangeEvent*>(record);
            text << "change " << change.transitionID << ": " << change.previousID << " -> "
                 << change.nextID;
        }
        else if (event == HSMEventPlayAnimation && record != nullptr)
        {
            const auto& play = *static_cast<const __PlayAnimEvent__*>(record);
            text << "play " << (play.clipName == nullptr ? "-" : play.clipName) << " " << play.flag
                 << " " << play.scalar;
        }
        else
        {
            text << "event " << event;
        }
        return text.str();
    }

    Lines* lines = nullptr; ///< null for the LogRecorder's
    std::string name;
};

} // namespace vell::test
