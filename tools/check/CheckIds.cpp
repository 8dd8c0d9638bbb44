// VELL: data-driven hierarchical state machines.
// tools/check/CheckIds.cpp: ids that are missing, taken or not what they should be.
#include "tools/check/Rules.h"

#include <string>
#include <unordered_map>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;
using source::Value;

unsigned int CrcOf(std::string_view name)
{
    std::string text(name);
    return ConvertStringToCRC(text);
}

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
        if (node.id == 0 && HasNumber(*node.value, JSON_ID))
        {
            findings.Add(Code::NodeIdZero, PlaceOf(*node.value, JSON_ID),
                         "the id of " + (node.name.empty() ? "a node" : Quoted(node.name)) +
                             " is 0, which means none: nothing can refer to it");
        }
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

void CheckParameterId(const DocumentModel& model, const ParameterModel& parameter,
                      Findings& findings)
{
    const Value& value = *parameter.value;
    if (parameter.name.empty() || !HasNumber(value, JSON_ID))
    {
        return;
    }
    const unsigned int crc = CrcOf(parameter.name);
    const std::string advice = "it should be " + std::to_string(crc) + ", the CRC of its name";
    if (parameter.id == 0)
    {
        findings.Add(Code::ParameterIdZero, PlaceOf(value, JSON_ID),
                     "the id of parameter " + Quoted(parameter.name) + " is 0, so it is left out",
                     advice);
        return;
    }
    const ParameterModel* first = model.FindParameter(parameter.id);
    const ParameterModel* namesake = model.FindParameterByName(parameter.name);
    if (first != &parameter && namesake == &parameter)
    {
        findings.Add(Code::DuplicateParameterId, PlaceOf(value, JSON_ID),
                     "parameter " + Quoted(parameter.name) + " has the id of " +
                         Quoted(first->name) + " and is left out",
                     crc == parameter.id ? "" : advice, PlaceOf(*first->value, JSON_ID),
                     "the first parameter with this id");
    }
    else if (crc != parameter.id)
    {
        findings.Add(Code::ParameterIdNotCrc, PlaceOf(value, JSON_ID),
                     "the id of parameter " + Quoted(parameter.name) + " is " +
                         std::to_string(parameter.id),
                     advice);
    }
}

void CheckParameterIds(const DocumentModel& model, Findings& findings)
{
    for (const ParameterModel& parameter : model.parameters)
    {
        const ParameterModel* namesake = model.FindParameterByName(parameter.name);
        if (namesake != &parameter && Find(*parameter.value, JSON_Name) != nullptr)
        {
            findings.Add(
                Code::DuplicateParameterName, PlaceOf(*parameter.value, JSON_Name),
                "there is a parameter " + Quoted(parameter.name) + " already: this one is left out",
                "", PlaceOf(*namesake->value, JSON_Name), "the first parameter of this name");
        }
        CheckParameterId(model, parameter, findings);
    }
}

} // namespace

void CheckIds(const DocumentModel& model, Findings& findings)
{
    CheckNodeIds(model, findings);
    CheckParameterIds(model, findings);
}

} // namespace vell::check
