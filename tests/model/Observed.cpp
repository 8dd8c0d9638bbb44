// VELL: data-driven hierarchical state machines.
// tests/model/Observed.cpp: the lines and pictures of a run.

#include "tests/model/Observed.h"

#include <cstdio>
#include <tuple>

namespace model
{

namespace
{

std::string FloatText(float value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof(buffer), "%a", static_cast<double>(value));
    return buffer;
}

std::string IdLine(const char* what, const Ids& ids)
{
    std::string text = what;
    for (const unsigned int id : ids)
    {
        text += " " + std::to_string(id);
    }
    return text;
}

std::string NumberLine(const char* what, long number)
{
    return std::string(what) + " " + std::to_string(number);
}

} // namespace

std::string CallbackLine(unsigned int previous, unsigned int next, float argument)
{
    return "callback " + std::to_string(previous) + " -> " + std::to_string(next) + " " +
           FloatText(argument);
}

std::string ChangeLine(int listener, unsigned int transition, unsigned int previous,
                       unsigned int next)
{
    return "listener " + std::to_string(listener) + " change by " + std::to_string(transition) +
           ": " + std::to_string(previous) + " -> " + std::to_string(next);
}

std::string ClipLine(int listener, int event, const char* clipName, bool flag, float scalar)
{
    return "listener " + std::to_string(listener) + " event " + std::to_string(event) + " clip " +
           (clipName != nullptr ? clipName : "(none)") + (flag ? " true " : " false ") +
           FloatText(scalar);
}

std::string ActionLine(const ActionPlan& plan, std::size_t index, int type, float time)
{
    return "action " + std::to_string(index) + " of node " + std::to_string(plan.nodeId) +
           " type " + std::to_string(type) + " time " + FloatText(time);
}

std::string TriggerLine(int trigger)
{
    return "trigger " + std::to_string(trigger);
}

std::string ResultLine(const char* what, long result)
{
    return std::string(what) + " gives " + std::to_string(result);
}

bool ParameterPicture::operator==(const ParameterPicture& other) const
{
    return std::tie(id, words, text, treeWord, treeText) ==
           std::tie(other.id, other.words, other.text, other.treeWord, other.treeText);
}

bool Picture::operator==(const Picture& other) const
{
    const auto fields = [](const Picture& picture)
    {
        return std::tie(picture.stack, picture.blip, picture.blipActive, picture.blipPriority,
                        picture.blipLevel, picture.onBlipStack, picture.isStarted, picture.current,
                        picture.previous, picture.global, picture.treeStack, picture.treeBlip,
                        picture.treeNext, picture.treePrevious, picture.treeTransition,
                        picture.parameters);
    };
    return fields(*this) == fields(other);
}

Lines Describe(const Picture& picture)
{
    Lines lines = {IdLine("stack", picture.stack),
                   IdLine("blip stack", picture.blip),
                   NumberLine("blip active", picture.blipActive ? 1 : 0),
                   NumberLine("blip priority", picture.blipPriority),
                   NumberLine("blip level", picture.blipLevel),
                   NumberLine("works on the blip stack", picture.onBlipStack ? 1 : 0),
                   NumberLine("started", picture.isStarted ? 1 : 0),
                   NumberLine("current state", picture.current),
                   NumberLine("previous state", picture.previous),
                   NumberLine("global state", picture.global),
                   IdLine("tree stackStates", picture.treeStack),
                   IdLine("tree stackBlip", picture.treeBlip),
                   NumberLine("tree nextState", picture.treeNext),
                   NumberLine("tree previousState", picture.treePrevious),
                   NumberLine("tree transitionTriggered", picture.treeTransition)};
    for (const ParameterPicture& parameter : picture.parameters)
    {
        std::string line = "parameter " + std::to_string(parameter.id);
        for (const unsigned int word : parameter.words)
        {
            char buffer[16];
            std::snprintf(buffer, sizeof(buffer), " %08x", word);
            line += buffer;
        }
        line += " \"" + parameter.text + "\" tree " + std::to_string(parameter.treeWord) + " \"" +
                parameter.treeText + "\"";
        lines.push_back(line);
    }
    return lines;
}

bool Step::operator==(const Step& other) const
{
    return std::tie(lines, threw, picture) == std::tie(other.lines, other.threw, other.picture);
}

} // namespace model
