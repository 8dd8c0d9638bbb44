// VELL: data-driven hierarchical state machines.
// tools/check/NearId.cpp: ids that differ from another by one slip of the fingers.
#include "tools/check/NearId.h"

#include <cstdint>
#include <limits>

namespace vell::check
{
namespace
{

constexpr const char* kDigits = "0123456789";

/// Calls `use(id)` for every id that one digit more, less, other or exchanged with its neighbour
/// turns `id` into. There are at most some two hundred, and one may come twice.
template <class Use>
void ForEachNear(unsigned int id, Use use)
{
    const auto offer = [&use](const std::string& text)
    {
        const bool isNumber = !text.empty() && (text[0] != '0' || text.size() == 1);
        const std::uint64_t number = isNumber && text.size() <= 10 ? std::stoull(text) : 0;
        if (number != 0 && number <= std::numeric_limits<unsigned int>::max())
        {
            use(static_cast<unsigned int>(number));
        }
    };
    const std::string text = std::to_string(id);
    for (std::size_t i = 0; i <= text.size(); ++i)
    {
        for (const char* digit = kDigits; *digit != '\0'; ++digit)
        {
            std::string near = text;
            offer(near.insert(i, 1, *digit));
            if (i < text.size() && text[i] != *digit)
            {
                near = text;
                near[i] = *digit;
                offer(near);
            }
        }
        if (i < text.size())
        {
            offer(std::string(text).erase(i, 1));
        }
        if (i + 1 < text.size())
        {
            std::string near = text;
            std::swap(near[i], near[i + 1]);
            offer(near);
        }
    }
}

std::string Suggestion(unsigned int id, std::string_view name)
{
    return "did you mean " + std::to_string(id) +
           (name.empty() ? "?" : ", '" + std::string(name) + "'?");
}

/// Gives the one thing that `find` finds near `id`, or null when it finds none or several.
template <class Thing, class Find>
const Thing* FindOnly(unsigned int id, Find find)
{
    const Thing* only = nullptr;
    bool isAlone = true;
    ForEachNear(id,
                [&](unsigned int near)
                {
                    const Thing* thing = find(near);
                    isAlone = isAlone && (thing == nullptr || only == nullptr || thing == only);
                    only = thing == nullptr ? only : thing;
                });
    return isAlone ? only : nullptr;
}

} // namespace

std::string SuggestNode(const DocumentModel& model, unsigned int id,
                        bool (*isWanted)(const NodeModel& node))
{
    const auto find = [&model, isWanted](unsigned int near)
    {
        const NodeModel* node = model.FindNode(near);
        return node != nullptr && isWanted(*node) ? node : nullptr;
    };
    const auto* node = FindOnly<NodeModel>(id, find);
    return node == nullptr ? std::string() : Suggestion(node->id, node->name);
}

std::string SuggestParameter(const DocumentModel& model, unsigned int id)
{
    const auto find = [&model](unsigned int near)
    {
        return model.FindParameter(near);
    };
    const auto* parameter = FindOnly<ParameterModel>(id, find);
    return parameter == nullptr ? std::string() : Suggestion(parameter->id, parameter->name);
}

} // namespace vell::check
