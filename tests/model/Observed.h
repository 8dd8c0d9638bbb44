// VELL: data-driven hierarchical state machines.
// tests/model/Observed.h: what a host sees of a machine, in the form in which both runs give it.
#pragma once

#include "tests/model/ModelCase.h"

#include <string>
#include <vector>

namespace model
{

using Lines = std::vector<std::string>;

// What happens while a call runs, one line each.
std::string CallbackLine(unsigned int previous, unsigned int next, float argument);
std::string ChangeLine(int listener, unsigned int transition, unsigned int previous,
                       unsigned int next);
std::string ClipLine(int listener, int event, const char* clipName, bool flag, float scalar);
std::string ActionLine(const ActionPlan& plan, std::size_t index, int type, float time);
std::string TriggerLine(int trigger);
std::string ResultLine(const char* what, long result);

/// A parameter after a call. Floats are kept as their bits.
struct ParameterPicture
{
    unsigned int id = 0;
    std::array<unsigned int, 5> words = {}; ///< the value, and the length of a vector
    std::string text;
    unsigned int treeWord = 0; ///< the tree's value of a bool, integer or float
    std::string treeText;

    bool operator==(const ParameterPicture& other) const;
};

/// The whole machine after a call.
struct Picture
{
    Ids stack; ///< bottom first
    Ids blip;
    bool blipActive = false;
    int blipPriority = 0;
    int blipLevel = 0;
    bool onBlipStack = false;
    bool isStarted = false;
    unsigned int current = 0; ///< 0 for none, as all states here
    unsigned int previous = 0;
    unsigned int global = 0;
    Ids treeStack;
    Ids treeBlip;
    unsigned int treeNext = 0;
    unsigned int treePrevious = 0;
    unsigned int treeTransition = 0;
    std::vector<ParameterPicture> parameters; ///< in ascending id

    bool operator==(const Picture& other) const;
};

Lines Describe(const Picture& picture);

/// One call: what happened in it, and the machine after it.
struct Step
{
    Lines lines;
    Picture picture;
    bool threw = false; ///< the call threw std::out_of_range

    bool operator==(const Step& other) const;
};

} // namespace model
