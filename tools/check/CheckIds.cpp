// VELL: data-driven hierarchical state machines.
// tools/check/CheckIds.cpp: ids that are missing, taken or not what they should be.
#include "tools/check/Nearest.h"
#include "tools/check/Rules.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

std::string Quoted(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

/// Tells whether the member is there and is a number.
bool HasNumber(const Value& object, __JSONTYPES__ member)
{
    const Value* value = Find(object, member);
    return value != nullptr && value->IsNumber();
}

std::string WhereRead(const NodeArray& array)
{
    if (array.isGlobal)
    {
        return "in 'global'";
    }
    return array.layer.empty() ? "in its layer" : "in layer " + Quoted(array.layer);
}

void CheckNodeId(const NodeModel& node, Findings& findings)
{
    const std::string name = node.name.empty() ? "a node" : Quoted(node.name);
    const std::string advice =
        node.isIdInferred ? "write " + std::to_string(node.id) + ", which is referred to" : "";
    const bool hasNone = node.id == 0 || node.isIdInferred;
    if (Find(*node.value, JSON_ID) == nullptr)
    {
        findings.Add(Code::NodeWithoutId, TitlePlace(*node.value),
                     name + " has no id: nothing can refer to it", advice);
    }
    else if (hasNone && HasNumber(*node.value, JSON_ID))
    {
        findings.Add(Code::NodeWithoutId, PlaceOf(*node.value, JSON_ID),
                     "the id of " + name + " is 0, which means none: nothing can refer to it",
                     advice);
    }
}

void CheckNodeIds(const DocumentModel& model, Findings& findings)
{
    // How many nodes of each array come behind the first with a duplicate id, which ends it.
    std::vector<std::size_t> left(model.arrays.size(), 0);
    for (const NodeModel& node : model.nodes)
    {
        ++left[static_cast<std::size_t>(node.array)];
    }
    std::vector<bool> isEnded(model.arrays.size(), false);
    for (const NodeModel& node : model.nodes)
    {
        const auto array = static_cast<std::size_t>(node.array);
        --left[array];
        CheckNodeId(node, findings);
        if (node.isFirst || node.id == 0)
        {
            isEnded[array] = isEnded[array] || !node.isFirst;
            continue;
        }
        const NodeModel& first = *model.FindNode(node.id);
        std::string lost = "it is not read";
        if (left[array] != 0 && !isEnded[array])
        {
            lost = "it and all nodes behind it " + WhereRead(model.arrays[array]) + " are not read";
        }
        isEnded[array] = true;
        findings.Add(Code::DuplicateNodeId, PlaceOf(*node.value, JSON_ID),
                     (node.name.empty() ? "a node" : Quoted(node.name)) + " has the id " +
                         std::to_string(node.id) + " of " +
                         (first.name.empty() ? "another node" : Quoted(first.name)) + ": " + lost,
                     "", PlaceOf(*first.value, JSON_ID), "the first node with this id");
    }
}

void AddFixIf(bool hasOneAnswer, const Fix& fix, Findings& findings)
{
    if (hasOneAnswer)
    {
        findings.AddFix(fix);
    }
}

/// How many conditions test the id that a parameter should have, by that id.
using VainTests = std::unordered_map<unsigned int, std::size_t>;

VainTests CountVainTests(const DocumentModel& model)
{
    VainTests tests;
    for (const NodeModel& node : model.nodes)
    {
        for (const ConditionModel& condition : node.conditions)
        {
            if (condition.parameter == nullptr &&
                model.FindMisnumbered(condition.parameterId) != nullptr)
            {
                ++tests[condition.parameterId];
            }
        }
    }
    return tests;
}

/// Gives `3 conditions test` or `a condition tests`.
std::string ConditionsTest(std::size_t count)
{
    return count == 1 ? "a condition tests" : std::to_string(count) + " conditions test";
}

void CheckParameterId(const DocumentModel& model, const ParameterModel& parameter,
                      const VainTests& tests, Findings& findings)
{
    const Value& value = *parameter.value;
    const bool isMissing = Find(value, JSON_ID) == nullptr;
    const std::string name = parameter.name.empty() ? "a parameter without a name"
                                                    : "parameter " + Quoted(parameter.name);
    if (!isMissing && !HasNumber(value, JSON_ID))
    {
        return;
    }
    const unsigned int crc = CrcOf(parameter.name);
    const std::string advice =
        parameter.name.empty() ? ""
                               : "it should be " + std::to_string(crc) + ", the CRC of its name";
    const ParameterModel* namesake = model.FindParameterByName(parameter.name);
    const bool hasOneAnswer =
        crc != parameter.id && !parameter.name.empty() && namesake == &parameter;
    const Fix fix{&value, GetJsonName(JSON_ID), crc};
    const auto found = tests.find(crc);
    const std::size_t count = found == tests.end() || namesake != &parameter ? 0 : found->second;
    const std::string vain = count == 0 ? "" : ", and " + ConditionsTest(count) + " it in vain";
    if (parameter.id == 0)
    {
        findings.Add(Code::ParameterWithoutId, PlaceOf(value, JSON_ID),
                     isMissing ? name + " has no id, so it is left out" + vain
                               : "the id of " + name + " is 0, so it is left out" + vain,
                     advice);
        AddFixIf(hasOneAnswer, fix, findings);
        return;
    }
    const ParameterModel* first = model.FindParameter(parameter.id);
    if (first != &parameter && namesake == &parameter)
    {
        findings.Add(Code::DuplicateParameterId, PlaceOf(value, JSON_ID),
                     name + " has the id of " + Quoted(first->name) + " and is left out" + vain,
                     crc == parameter.id ? "" : advice, PlaceOf(*first->value, JSON_ID),
                     "the first parameter with this id");
        AddFixIf(hasOneAnswer, fix, findings);
    }
    else if (crc != parameter.id && !parameter.name.empty())
    {
        const std::string tested =
            count == 0 ? "" : ", but " + ConditionsTest(count) + " " + std::to_string(crc);
        findings.Add(count == 0 ? Code::ParameterIdNotCrc : Code::ConditionParameter,
                     PlaceOf(value, JSON_ID),
                     "the id of " + name + " is " + std::to_string(parameter.id) + tested, advice);
        AddFixIf(hasOneAnswer, fix, findings);
    }
}

void CheckParameterIds(const DocumentModel& model, Findings& findings)
{
    const VainTests tests = CountVainTests(model);
    for (const ParameterModel& parameter : model.parameters)
    {
        const ParameterModel* namesake = model.FindParameterByName(parameter.name);
        if (namesake != &parameter && Find(*parameter.value, JSON_Name) != nullptr)
        {
            findings.Add(
                Code::DuplicateParameterName, PlaceOf(*parameter.value, JSON_Name),
                "there is a parameter " + Quoted(parameter.name) + " already: this one is left out",
                "", PlaceOf(*namesake->value, JSON_Name), "the first parameter of this name");
            continue;
        }
        CheckParameterId(model, parameter, tests, findings);
    }
}

/// Finds where a name is written in place of an id, and gives what to write, by place.
class NamesForIds
{
public:
    explicit NamesForIds(const DocumentModel& documentModel) : model(documentModel)
    {
        for (const NodeModel& node : model.nodes)
        {
            nodesByName.emplace(node.name, &node);
        }
        if (model.head != nullptr)
        {
            TakeNode(Find(*model.head, JSON_HeadEnterNode));
            TakeNode(Find(*model.head, JSON_HeadSubstateRoot));
        }
        for (const NodeModel& node : model.nodes)
        {
            Take(node);
        }
    }

    /// Gives the advice for the value that begins at `offset`, or null.
    const std::string* FindAdvice(std::uint32_t offset) const
    {
        const auto entry = advices.find(offset);
        return entry == advices.end() ? nullptr : &entry->second;
    }

    /// Gives what the value that begins at `offset` may mean, or null.
    const std::string* FindNear(std::uint32_t offset) const
    {
        const auto entry = nears.find(offset);
        return entry == nears.end() ? nullptr : &entry->second;
    }

private:
    void Take(const NodeModel& node)
    {
        for (const __JSONTYPES__ member :
             {JSON_ParentID, JSON_ExitConnector, JSON_TransitionSource, JSON_TransitionTarget,
              JSON_SubstateEnter, JSON_SubstateExit, JSON_EntryTarget})
        {
            TakeNode(Find(*node.value, member));
        }
        for (const ChildModel& child : node.children)
        {
            TakeNode(child.value);
        }
        for (const ConditionModel& condition : node.conditions)
        {
            const Value* value = Find(*condition.value, JSON_ConditionParameter);
            const bool isName = value != nullptr && value->IsString() && !value->text.empty();
            const auto* parameter = isName ? model.FindParameterByName(value->text) : nullptr;
            if (parameter != nullptr)
            {
                Add(*value, CrcOf(parameter->name));
            }
            else if (isName)
            {
                AddNear(*value, NamesOfParameters(),
                        [this](std::string_view name)
                        {
                            return Named(*model.FindParameterByName(name));
                        });
            }
        }
    }

    void TakeNode(const Value* value)
    {
        const bool isName = value != nullptr && value->IsString() && !value->text.empty();
        const auto entry = isName ? nodesByName.find(value->text) : nodesByName.end();
        if (entry != nodesByName.end())
        {
            Add(*value, entry->second->id);
        }
        else if (isName)
        {
            AddNear(*value, NamesOfNodes(),
                    [this](std::string_view name)
                    {
                        return Named(*nodesByName.at(name));
                    });
        }
    }

    std::vector<std::string_view> NamesOfNodes() const
    {
        std::vector<std::string_view> names;
        for (const NodeModel& node : model.nodes)
        {
            names.push_back(node.name);
        }
        return names;
    }

    std::vector<std::string_view> NamesOfParameters() const
    {
        std::vector<std::string_view> names;
        for (const ParameterModel& parameter : model.parameters)
        {
            names.push_back(parameter.name);
        }
        return names;
    }

    /// A name that is written in a slightly wrong way. `nameOf` gives the words for the right one.
    template <class NameOf>
    void AddNear(const Value& value, const std::vector<std::string_view>& names, NameOf nameOf)
    {
        if (nears.size() == kMostNear ||
            value.text.find_first_not_of("0123456789") == std::string::npos)
        {
            return;
        }
        const std::vector<std::string_view> nearest = FindNearest(value.text, names);
        if (nearest.size() == 1)
        {
            nears.emplace(value.span.begin.offset, "did you mean " + nameOf(nearest[0]) + "?");
        }
    }

    void Add(const Value& value, unsigned int id)
    {
        advices.emplace(value.span.begin.offset,
                        "the id of " + Quoted(value.text) + " is " + std::to_string(id));
    }

    /// So many wrong names are compared with all others.
    static constexpr std::size_t kMostNear = 50;

    const DocumentModel& model;
    std::unordered_map<std::string_view, const NodeModel*> nodesByName;
    std::unordered_map<std::uint32_t, std::string> advices;
    std::unordered_map<std::uint32_t, std::string> nears;
};

/// A name in place of an id is a value of the wrong type; here is what to write instead.
void ExplainNames(const DocumentModel& model, Findings& findings)
{
    const auto isWrongType = [](const Finding& finding)
    {
        return finding.code == Code::WrongType;
    };
    if (std::none_of(findings.list.begin(), findings.list.end(), isWrongType))
    {
        return;
    }
    const NamesForIds names(model);
    for (Finding& finding : findings.list)
    {
        if (!isWrongType(finding))
        {
            continue;
        }
        const std::uint32_t offset = finding.where.begin.offset;
        if (const std::string* advice = names.FindAdvice(offset))
        {
            finding.code = Code::NameForId;
            finding.hint = *advice;
        }
        else if (const std::string* near = names.FindNear(offset))
        {
            finding.hint = *near;
        }
    }
}

} // namespace

void CheckIds(const DocumentModel& model, Findings& findings)
{
    CheckNodeIds(model, findings);
    CheckParameterIds(model, findings);
    ExplainNames(model, findings);
}

} // namespace vell::check
