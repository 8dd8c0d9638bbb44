// VELL: data-driven hierarchical state machines.
// bench/Character.h: the sample character, as a game drives it.
#pragma once

#include "bench/Frame.h"
#include "bench/Machines.h"

namespace vell::bench
{

/// Gives the text of a document in samples/.
std::string ReadSample(const char* name);

/// A machine of samples/character.json that walks: three states are on the stack, counting the
/// global one, with two transitions each. Three of its bool parameters reset each frame.
class Character : public CrowdMember
{
public:
    explicit Character(Extra extra = Extra::Nothing);

    /// Sets five parameters by kept pointers, two of which change from frame to frame.
    void SetInputs(int frame)
    {
        SetSpeed(InTurn(frame, 1.5f, 1.75f));
        stick->SetValue(Tessel::Float2{InTurn(frame, 1.5f, 1.75f), 0.5f});
        armed->SetValue(false);
        combo->SetValue(0);
        settled->SetValue(false);
    }

    /// Sets one of the parameters that reset each frame.
    void SetResetting()
    {
        attack->SetValue(true);
    }

    /// Above 3 it runs, below 0.1 it stands.
    void SetSpeed(float value)
    {
        speed->SetValue(value);
    }

    /// Lets it run and walk in turn: the next tick changes its innermost state.
    void SetSwitching(int frame)
    {
        SetSpeed(InTurn(frame, 5.0f, 1.5f));
    }

private:
    void Add(Extra extra);

    IParameterFloatDef* speed;
    IParameterAnalogDef* stick;
    IParameterBoolDef* armed;
    IParameterIntDef* combo;
    IParameterBoolDef* settled;
    IParameterBoolDef* attack;
};

} // namespace vell::bench
