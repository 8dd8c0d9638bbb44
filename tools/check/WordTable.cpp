// VELL: data-driven hierarchical state machines.
// tools/check/WordTable.cpp: the words of the vocabulary, by list.
#include <durm/DURMBaseLib.h>

#include "definitions/AttribTypes.h"
#include "foundation/TextCompare.h"
#include "platform/durm/Vocabulary.h"
#include "tools/check/MemberTable.h"

#include <map>

namespace vell::check
{
namespace
{

using List = std::vector<std::string_view>;

/// The connectors' words that no vocabulary names.
constexpr const char* kPlainConnectors[] = {"Enter", "Exit"};

/// The words that the library knows; a site's own vocabulary may have others.
template <std::size_t Count>
List KnownWords(const DURMBaseLib::Word (&all)[Count], Words words)
{
    List list;
    for (const DURMBaseLib::Word& word : all)
    {
        if (NumberOf(words, word.text) != 0)
        {
            list.emplace_back(word.text);
        }
    }
    return list;
}

bool HasCondition(int type)
{
    return type == DURMBaseLib::PARAM_Bool || type == DURMBaseLib::PARAM_Integer ||
           type == DURMBaseLib::PARAM_Float || type == DURMBaseLib::PARAM_Message;
}

int ConnectorNumber(const std::string& word)
{
    for (int number = 1; number <= DURMBaseLib::CONNECTOR_Out; ++number)
    {
        const auto type = static_cast<DURMBaseLib::__CONNECTOR_TYPES__>(number);
        if (EqualsIgnoringCase(DURMBaseLib::GetConnectorName(type), word.c_str()))
        {
            return number;
        }
    }
    return EqualsIgnoringCase(kPlainConnectors[0], word.c_str())   ? 1
           : EqualsIgnoringCase(kPlainConnectors[1], word.c_str()) ? 2
                                                                   : 0;
}

int AttributeNumber(const std::string& word)
{
    for (const AttribType& type : kAttribTypes)
    {
        if (EqualsIgnoringCase(type.name, word.c_str()))
        {
            return type.type;
        }
    }
    return 0;
}

List AttributeWords()
{
    List list;
    for (const AttribType& type : kAttribTypes)
    {
        list.emplace_back(type.name);
    }
    return list;
}

List ConnectorWords()
{
    List list = KnownWords(DURMBaseLib::kConnectors, Words::Connectors);
    list.insert(list.end(), {kPlainConnectors[0], kPlainConnectors[1]});
    return list;
}

} // namespace

const List& WordsOf(Words words)
{
    static const std::map<Words, List> lists = {
        {Words::None, {}},
        {Words::Builders, KnownWords(DURMBaseLib::kBuilders, Words::Builders)},
        {Words::Operators, KnownWords(DURMBaseLib::kOperators, Words::Operators)},
        {Words::ParameterTypes, KnownWords(DURMBaseLib::kParameterTypes, Words::ParameterTypes)},
        {Words::ConditionTypes, KnownWords(DURMBaseLib::kParameterTypes, Words::ConditionTypes)},
        {Words::Inputs, KnownWords(DURMBaseLib::kAssigns, Words::Inputs)},
        {Words::MachineTypes, KnownWords(DURMBaseLib::kMachineTypes, Words::MachineTypes)},
        {Words::Connectors, ConnectorWords()},
        {Words::AttributeTypes, AttributeWords()},
    };
    return lists.at(words);
}

int NumberOf(Words words, const std::string& word)
{
    switch (words)
    {
    case Words::Builders:
        return DURMBaseLib::GetBuilderIndex(word.c_str());
    case Words::Operators:
        return DURMBaseLib::GetEvaluationEnum(word.c_str());
    case Words::ParameterTypes:
        return DURMBaseLib::GetParameterName(word.c_str());
    case Words::ConditionTypes:
    {
        const int type = DURMBaseLib::GetParameterTypeByName(word.c_str());
        return HasCondition(type) ? type : 0;
    }
    case Words::Inputs:
        return DURMBaseLib::GetAssignName(word.c_str());
    case Words::MachineTypes:
        return DURMBaseLib::GetStateMachineTypeByName(word.c_str());
    case Words::Connectors:
        return ConnectorNumber(word);
    case Words::AttributeTypes:
        return AttributeNumber(word);
    case Words::None:
        break;
    }
    return 0;
}

const char* TitleOf(Words words)
{
    switch (words)
    {
    case Words::Builders:
        return "builder";
    case Words::Operators:
        return "operator";
    case Words::ParameterTypes:
        return "parameter type";
    case Words::ConditionTypes:
        return "condition type";
    case Words::Inputs:
        return "input";
    case Words::MachineTypes:
        return "machine type";
    case Words::Connectors:
        return "connector type";
    case Words::AttributeTypes:
        return "attribute type";
    case Words::None:
        break;
    }
    return "word";
}

bool IgnoresCase(Words words)
{
    return words == Words::Connectors || words == Words::AttributeTypes;
}

bool IsStandardBuilder(int builder)
{
    for (const DURMBaseLib::Word& word : DURMBaseLib::kBuilders)
    {
        if (word.number == builder)
        {
            return true;
        }
    }
    return false;
}

std::string TitleOfNode(int builder)
{
    for (const DURMBaseLib::Word& word : DURMBaseLib::kBuilders)
    {
        if (word.number == builder && NumberOf(Words::Builders, word.text) == builder)
        {
            const bool isPlain = builder == DURMBaseLib::BUILDER_Transition ||
                                 builder == DURMBaseLib::BUILDER_Connector ||
                                 builder == DURMBaseLib::BUILDER_Substate ||
                                 builder == DURMBaseLib::BUILDER_Condition;
            const bool isVowel =
                std::string_view("aeiou").find(word.text[0]) != std::string_view::npos;
            return std::string(isVowel ? "an " : "a ") + word.text + (isPlain ? "" : " node");
        }
    }
    return "a node";
}

} // namespace vell::check
