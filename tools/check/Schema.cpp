// VELL: data-driven hierarchical state machines.
// tools/check/Schema.cpp: the table of members as a JSON Schema.
#include "tools/check/Schema.h"

#include <durm/DURMBaseLib.h>
#include <vell/ConditionDef.h>

#include "definitions/NodeDefTable.h"
#include "document/VectorWidth.h"
#include "tools/check/Check.h"
#include "tools/check/MemberTable.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cctype>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace vell::check
{
namespace
{

using namespace DURMBaseLib;
using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

constexpr const char* kNumberPattern =
    "\\s*[-+]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][-+]?[0-9]+)?\\s*";

/// Writes one object; what is written until its end belongs to it.
class Object
{
public:
    Object(Writer& newWriter, const char* name) : writer(newWriter)
    {
        writer.Key(name);
        writer.StartObject();
    }
    explicit Object(Writer& newWriter) : writer(newWriter)
    {
        writer.StartObject();
    }
    ~Object()
    {
        writer.EndObject();
    }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

private:
    Writer& writer;
};

class SchemaWriter
{
public:
    SchemaWriter() : writer(buffer)
    {
        writer.SetIndent(' ', 2);
    }

    std::string Write()
    {
        {
            const Object root(writer);
            Put("$schema", "https://json-schema.org/draft/2020-12/schema");
            Put("title", "VELL machine document");
            PutMembers({&RulesOf(ObjectKind::Root)}, true);
            const Object definitions(writer, "$defs");
            PutDefinitions();
        }
        return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
    }

private:
    void Put(const char* name, const std::string& text)
    {
        writer.Key(name);
        writer.String(text.c_str(), static_cast<rapidjson::SizeType>(text.size()));
    }

    void Put(const char* name, std::int64_t number)
    {
        writer.Key(name);
        writer.Int64(number);
    }

    void PutType(const char* type)
    {
        Put("type", std::string(type));
    }

    void PutTexts(const char* name, const std::vector<std::string>& texts)
    {
        writer.Key(name);
        writer.StartArray();
        for (const std::string& text : texts)
        {
            writer.String(text.c_str());
        }
        writer.EndArray();
    }

    void PutReference(const std::string& definition)
    {
        Put("$ref", "#/$defs/" + definition);
    }

    static std::string DefinitionOf(ObjectKind kind)
    {
        switch (kind)
        {
        case ObjectKind::Head:
            return "head";
        case ObjectKind::Parameter:
            return "parameter";
        case ObjectKind::VectorDefault:
            return "vectorDefault";
        case ObjectKind::Layer:
            return "layer";
        case ObjectKind::Condition:
            return "condition";
        case ObjectKind::Operand:
            return "operand";
        case ObjectKind::Attribute:
            return "attribute";
        case ObjectKind::AttributeData:
            return "attributeData";
        case ObjectKind::Skeleton:
            return "skeleton";
        default:
            break;
        }
        return "node";
    }

    void PutDefinitions()
    {
        for (const ObjectKind kind :
             {ObjectKind::Head, ObjectKind::Layer, ObjectKind::VectorDefault, ObjectKind::Operand,
              ObjectKind::Attribute, ObjectKind::Skeleton})
        {
            const Object definition(writer, DefinitionOf(kind).c_str());
            PutMembers({&RulesOf(kind)}, false);
        }
        PutParameter();
        PutCondition();
        PutAttributeData();
        PutNode();
        for (const std::string_view word : WordsOf(Words::Builders))
        {
            const std::string builder(word);
            const int number = NumberOf(Words::Builders, builder);
            const Object definition(writer, (builder + "Node").c_str());
            if (number == BUILDER_Condition)
            {
                PutReference(DefinitionOf(ObjectKind::Condition));
                continue;
            }
            PutMembers({&RulesOf(ObjectKind::Node), &RulesOfBuilder(number)}, false);
        }
    }

    /// The members of an object, which has no others.
    void PutMembers(const std::vector<const MemberRules*>& tables, bool isRoot)
    {
        PutType("object");
        std::vector<std::string> required;
        {
            const Object properties(writer, "properties");
            for (const MemberRules* rules : tables)
            {
                for (const MemberRule& rule : *rules)
                {
                    PutMember(rule);
                    if (rule.isRequired)
                    {
                        required.emplace_back(rule.name);
                    }
                }
            }
            PutRemarks(isRoot);
        }
        PutTexts("required", required);
        writer.Key("additionalProperties");
        writer.Bool(false);
    }

    void PutRemarks(bool isRoot)
    {
        {
            const Object comment(writer, kCommentMember);
            Put("description", "A remark. The library does not read it.");
        }
        if (isRoot)
        {
            const Object schema(writer, kSchemaMember);
            PutType("string");
            Put("description", "Where an editor finds this schema. The library does not read it.");
        }
        const Object allow(writer, kAllowMember);
        PutType("array");
        Put("description", "Codes that `vell check` leaves out here and within.");
        const Object items(writer, "items");
        PutType("string");
        Put("pattern", "^VELL[0-9]+$");
    }

    void PutMember(const MemberRule& rule)
    {
        const Object property(writer, rule.name.data());
        Put("description", rule.description);
        if (rule.words == Words::None)
        {
            PutShape(rule);
        }
        else
        {
            PutWords(rule.words);
        }
        if (rule.defaultValue != nullptr)
        {
            writer.Key("default");
            const std::string_view value = rule.defaultValue;
            writer.RawValue(value.data(), value.size(), rapidjson::kStringType);
        }
    }

    void PutShape(const MemberRule& rule)
    {
        switch (rule.shape)
        {
        case Shape::Text:
            return PutType("string");
        case Shape::FilledText:
            PutType("string");
            return Put("minLength", 1);
        case Shape::Identity:
            PutType("string");
            return Put("maxLength", std::int64_t{NodeDefTable::kIdentitySize} - 1);
        case Shape::Id:
            // Where there is a default, it may be 0, which means none.
            return PutId(rule.defaultValue == nullptr ? 1 : 0);
        case Shape::Integer:
            return rule.name == GetJsonName(JSON_HeadMemory) ? PutMemory() : PutInteger();
        case Shape::Flag:
            return PutType("boolean");
        case Shape::Number:
            return PutType("number");
        case Shape::Object:
            return PutReference(DefinitionOf(rule.contents));
        case Shape::Array:
            PutArray(DefinitionOf(rule.contents));
            return rule.contents == ObjectKind::Layer ? Put("minItems", 1) : void();
        case Shape::First:
            PutArray(DefinitionOf(rule.contents));
            Put("minItems", 1);
            return Put("maxItems", 1);
        case Shape::Ids:
            return PutIds();
        case Shape::ByType:
            break;
        }
    }

    void PutId(int least)
    {
        PutType("integer");
        Put("minimum", least);
        Put("maximum", std::int64_t{std::numeric_limits<std::uint32_t>::max()});
    }

    void PutMemory()
    {
        PutType("integer");
        Put("minimum", 1);
        Put("maximum", 42949672); // a hundred times that fits 32 bits
    }

    void PutInteger()
    {
        PutType("integer");
        Put("minimum", std::int64_t{std::numeric_limits<std::int32_t>::min()});
        Put("maximum", std::int64_t{std::numeric_limits<std::int32_t>::max()});
    }

    void PutArray(const std::string& definition)
    {
        PutType("array");
        const Object items(writer, "items");
        PutReference(definition);
    }

    void PutIds()
    {
        PutType("array");
        const Object items(writer, "items");
        PutType("integer");
        Put("minimum", 1);
        Put("maximum", std::int64_t{std::numeric_limits<std::uint32_t>::max()});
    }

    void PutWords(Words words)
    {
        std::vector<std::string> list;
        std::string pattern;
        for (const std::string_view word : WordsOf(words))
        {
            list.emplace_back(word);
            pattern += (pattern.empty() ? "" : "|") + AnyCase(word);
        }
        pattern = words == Words::Builders ? "[0-9]+" : pattern;
        if (words != Words::Builders && !IgnoresCase(words))
        {
            PutTexts("enum", list);
            return;
        }
        // An editor proposes the words of the first; the second is for the others.
        writer.Key("anyOf");
        writer.StartArray();
        {
            const Object plain(writer);
            PutTexts("enum", list);
        }
        {
            const Object other(writer);
            PutType("string");
            Put("pattern", "^(" + pattern + ")$");
        }
        writer.EndArray();
    }

    static std::string AnyCase(std::string_view word)
    {
        std::string pattern;
        for (const char c : word)
        {
            const auto byte = static_cast<unsigned char>(c);
            const char lower = static_cast<char>(std::tolower(byte));
            const char upper = static_cast<char>(std::toupper(byte));
            pattern += lower == upper ? std::string(1, c) : std::string{'[', upper, lower, ']'};
        }
        return pattern;
    }

    /// What a value of a parameter type is written as in a document.
    void PutValue(int type)
    {
        switch (type)
        {
        case PARAM_Bool:
            return PutType("boolean");
        case PARAM_Integer:
            return PutInteger();
        case PARAM_Float:
            return PutType("number");
        case PARAM_Text:
        case PARAM_Message:
            return PutType("string");
        default:
            return PutNumbers(VectorWidth(type));
        }
    }

    /// The text of so many numbers.
    void PutNumbers(int count)
    {
        PutType("string");
        Put("maxLength", 127);
        std::string pattern = std::string("^") + kNumberPattern;
        for (int i = 1; i < count; ++i)
        {
            pattern += std::string(",") + kNumberPattern;
        }
        Put("pattern", pattern + "$");
    }

    /// "if" the member is one of the words.
    void PutIf(__JSONTYPES__ member, const std::vector<std::string>& words,
               const char* pattern = nullptr)
    {
        const Object condition(writer, "if");
        {
            const Object properties(writer, "properties");
            const Object property(writer, GetJsonName(member));
            if (pattern != nullptr)
            {
                Put("pattern", pattern);
            }
            else
            {
                PutTexts("enum", words);
            }
        }
        PutTexts("required", {GetJsonName(member)});
    }

    void PutParameter()
    {
        const Object definition(writer, "parameter");
        PutMembers({&RulesOf(ObjectKind::Parameter)}, false);
        writer.Key("allOf");
        writer.StartArray();
        for (const std::string_view word : WordsOf(Words::ParameterTypes))
        {
            const int type = NumberOf(Words::ParameterTypes, std::string(word));
            const Object entry(writer);
            PutIf(JSON_ParameterType, {std::string(word)});
            const Object then(writer, "then");
            {
                const Object properties(writer, "properties");
                const Object property(writer, GetJsonName(JSON_ParameterDefault));
                PutDefault(type);
            }
            if (VectorWidth(type) != 0)
            {
                PutTexts("required", {GetJsonName(JSON_ParameterDefault)});
            }
        }
        writer.EndArray();
    }

    void PutDefault(int type)
    {
        if (VectorWidth(type) == 0)
        {
            PutValue(type);
            return;
        }
        PutArray(DefinitionOf(ObjectKind::VectorDefault));
        Put("minItems", 1);
        Put("maxItems", 1);
        writer.Key("prefixItems");
        writer.StartArray();
        {
            const Object element(writer);
            const Object properties(writer, "properties");
            const Object property(writer, RulesOf(ObjectKind::VectorDefault)[0].name.data());
            PutValue(type);
        }
        writer.EndArray();
    }

    void PutCondition()
    {
        const Object definition(writer, "condition");
        PutMembers({&RulesOf(ObjectKind::Condition)}, false);
        writer.Key("allOf");
        writer.StartArray();
        for (const std::string_view word : WordsOf(Words::ConditionTypes))
        {
            const int type = NumberOf(Words::ConditionTypes, std::string(word));
            const Object entry(writer);
            PutIf(JSON_ConditionType, {std::string(word)});
            const Object then(writer, "then");
            if (type != PARAM_Integer && type != PARAM_Float)
            {
                PutOperand(type, false);
                continue;
            }
            PutIf(JSON_ConditionEvaluation, RangeWords());
            {
                const Object range(writer, "then");
                PutOperand(type, true);
            }
            const Object plain(writer, "else");
            PutOperand(type, false);
        }
        writer.EndArray();
    }

    static std::vector<std::string> RangeWords()
    {
        std::vector<std::string> words;
        for (const std::string_view word : WordsOf(Words::Operators))
        {
            if (NumberOf(Words::Operators, std::string(word)) == EvaluateInRange)
            {
                words.emplace_back(word);
            }
        }
        return words;
    }

    void PutOperand(int type, bool isRange)
    {
        const Object properties(writer, "properties");
        const Object operand(writer, GetJsonName(JSON_ConditionValue));
        const Object items(writer, "items");
        const Object inner(writer, "properties");
        const Object value(writer, GetJsonName(JSON_Value));
        if (isRange)
        {
            PutNumbers(2);
        }
        else
        {
            PutValue(type);
        }
        if (type == PARAM_Message)
        {
            Put("minLength", 1);
        }
    }

    void PutAttributeData()
    {
        const Object definition(writer, "attributeData");
        PutMembers({&RulesOf(ObjectKind::AttributeData)}, false);
        writer.Key("allOf");
        writer.StartArray();
        for (const std::string_view word : WordsOf(Words::AttributeTypes))
        {
            const Object entry(writer);
            PutIf(JSON_AttributeType, {}, ("^" + AnyCase(word) + "$").c_str());
            const Object then(writer, "then");
            const Object properties(writer, "properties");
            const Object value(writer, GetJsonName(JSON_Value));
            PutValue(NumberOf(Words::AttributeTypes, std::string(word)));
        }
        writer.EndArray();
    }

    /// A node is what its builder says; the members of a host's own are not known.
    void PutNode()
    {
        const Object definition(writer, "node");
        PutType("object");
        {
            const Object properties(writer, "properties");
            PutMember(*FindRule(RulesOf(ObjectKind::Node), GetJsonName(JSON_BuilderType)));
        }
        PutTexts("required", {GetJsonName(JSON_ID), GetJsonName(JSON_BuilderType)});
        writer.Key("allOf");
        writer.StartArray();
        for (const std::string_view word : WordsOf(Words::Builders))
        {
            const std::string builder(word);
            const Object entry(writer);
            PutIf(JSON_BuilderType, {builder, std::to_string(NumberOf(Words::Builders, builder))});
            const Object then(writer, "then");
            PutReference(builder + "Node");
        }
        writer.EndArray();
    }

    rapidjson::StringBuffer buffer;
    Writer writer;
};

} // namespace

std::string MakeSchema()
{
    return SchemaWriter().Write();
}

} // namespace vell::check
