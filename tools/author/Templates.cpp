// VELL: data-driven hierarchical state machines.
// tools/author/Templates.cpp: the texts of the templates.
#include "tools/author/Templates.h"

namespace vell::author
{
namespace
{

constexpr const char* kMinimalSource =
    R"(// Two states that take turns. docs/source-form.md explains all of this.
{
    "machine": "NAME",

    // What the host sets, and the conditions below test.
    "parameters": {
        "on": false
    },

    "start": "Off",
    "states": {
        "Off": {"go": [{"to": "On", "when": "on"}]},
        "On": {"go": [{"to": "Off", "when": "not on"}]}
    }
}
)";

constexpr const char* kMinimalScript = R"(# Drives NAME.
tick
expect stack Off
set on true
tick
expect stack On
)";

constexpr const char* kCharacterSource =
    R"(// A character that stands, walks and runs, and a hit that interrupts.
{
    "machine": "NAME",
    "parameters": {
        "speed": {"float": 0.0, "input": "leftStick"},
        "hit": {"bool": false, "reset": true}, // false again after every tick
        "settled": false // the host sets it when the animation of the hit is over
    },
    "start": "Locomotion",
    "states": {
        // A level: it is entered at its start, and comes back to the state that it was left at.
        "Locomotion": {
            "start": "Stand",
            "states": {
                "Stand": {"clip": "stand", "go": [{"to": "Walk", "when": "speed > 0.1", "blend": 0.2}]},
                "Walk": {
                    "clip": "walk",
                    "go": [
                        // The first that holds fires, in the order of priority, then of the list.
                        {"to": "Run", "when": "speed > 3", "blend": 0.15},
                        {"to": "Stand", "when": "speed <= 0.1", "blend": 0.2}
                    ]
                },
                "Run": {"clip": "run", "go": [{"to": "Walk", "when": "speed <= 3", "blend": 0.15}]}
            }
        },
        "Hurt": {"clip": "hurt", "go": [{"to": "Recovered", "when": "settled"}]},
        "Recovered": {"ends": true} // what was interrupted goes on
    },

    // Tested before all else, whatever runs.
    "interrupts": [{"to": "Hurt", "when": "hit", "priority": 20}]
}
)";

constexpr const char* kCharacterScript = R"(# Drives NAME.
tick
expect stack Locomotion/Stand
set speed 4
tick
expect stack Locomotion/Walk
tick
expect stack Locomotion/Run
set hit true
tick
expect blip yes
expect stack Hurt
set settled true
tick 2
expect blip no
expect stack Locomotion/Run
)";

constexpr const char* kAiSource = R"(// A guard: it patrols, becomes alert, and fights.
{
    "machine": "NAME",
    "parameters": {
        "sees": false,
        "noise": {"bool": false, "reset": true},
        "distance": 100.0,
        "health": 1.0,
        "arrived": {"bool": false, "reset": true}
    },
    "start": "Patrol",
    "states": {
        "Patrol": {
            "start": "WalkRoute",
            "states": {
                "WalkRoute": {"clip": "walk", "go": [{"to": "LookAround", "when": "arrived"}]},
                "LookAround": {"clip": "look", "go": [{"to": "WalkRoute", "when": "arrived"}]}
            },
            // The transitions of a level are tested whatever runs in it. Any one condition of a
            // list is enough.
            "go": [
                {"to": "Fight", "when": "sees", "priority": 1},
                {"to": "Alert", "when": ["noise", "distance < 30"]}
            ]
        },
        "Alert": {
            "clip": "alert",
            "go": [
                {"to": "Fight", "when": "sees", "priority": 1},
                {"to": "Patrol", "when": "distance > 50"}
            ]
        },
        "Fight": {
            "start": "Approach",
            "states": {
                "Approach": {"clip": "run", "go": [{"to": "Strike", "when": "distance < 2"}]},
                "Strike": {"clip": "strike", "go": [{"to": "Approach", "when": "distance > 3"}]}
            },
            "go": [
                {"to": "Flee", "when": "health < 0.25", "priority": 1},
                {"to": "Alert", "when": "not sees"}
            ]
        },
        "Flee": {"clip": "run", "go": [{"to": "Patrol", "when": "health > 0.5"}]}
    }
}
)";

constexpr const char* kAiScript = R"(# Drives NAME.
tick
expect stack Patrol/WalkRoute
set arrived true
tick
expect stack Patrol/LookAround
set sees true
tick
expect stack Fight
tick
expect stack Fight/Approach
set distance 1.5
tick
expect stack Fight/Strike
set health 0.2
tick
expect stack Flee
)";

constexpr const char* kDoorSource = R"(// A door that a message opens, and that can be locked.
{
    "machine": "NAME",
    "type": "prop",
    "parameters": {
        // Fired by the host, the message has this text until the host sets another.
        "use": {"message": "open"},
        "locked": false,
        "arrived": {"bool": false, "reset": true} // the animation has come to its end
    },
    "start": "Closed",
    "states": {
        "Closed": {
            "go": [
                {"to": "Locked", "when": "locked", "priority": 1},
                {"to": "Opening", "when": "use == 'open'"}
            ]
        },
        "Locked": {"go": [{"to": "Closed", "when": "not locked"}]},
        "Opening": {"clip": "door_open", "go": [{"to": "Open", "when": "arrived"}]},
        "Open": {"go": [{"to": "Closing", "when": "use == 'close'"}]},
        "Closing": {"clip": "door_close", "go": [{"to": "Closed", "when": "arrived"}]}
    }
}
)";

constexpr const char* kDoorScript = R"(# Drives NAME.
set locked true
tick
expect stack Locked
message use
tick
expect stack Locked
set locked false
tick
expect stack Closed
tick
expect stack Opening
set arrived true
tick
expect stack Open
set use close
tick
set arrived true
tick
expect stack Closed
)";

} // namespace

const std::vector<Template>& Templates()
{
    static const std::vector<Template> templates = {
        {"minimal", "two states and a parameter", kMinimalSource, kMinimalScript},
        {"character", "a level of clips, and a hit that interrupts", kCharacterSource,
         kCharacterScript},
        {"ai", "a guard that patrols, becomes alert and fights", kAiSource, kAiScript},
        {"door", "a prop that a message opens", kDoorSource, kDoorScript},
    };
    return templates;
}

} // namespace vell::author
