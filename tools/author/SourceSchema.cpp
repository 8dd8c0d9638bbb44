// VELL: data-driven hierarchical state machines.
// tools/author/SourceSchema.cpp: the table of members as a JSON Schema.
#include "tools/author/SourceSchema.h"

#include "tools/author/Made.h"
#include "tools/author/SourceTable.h"

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <limits>
#include <utility>
#include <vector>

namespace vell::author
{
namespace
{

constexpr std::int64_t kMostId = std::numeric_limits<std::uint32_t>::max();

Made Texts(const std::vector<std::string>& texts)
{
    Made array = Made::Array();
    for (const std::string& text : texts)
    {
        array.Add(Made::Text(text));
    }
    return array;
}

Made Type(const char* type)
{
    Made schema = Made::Object();
    schema.Set("type", Made::Text(type));
    return schema;
}

Made Reference(const std::string& definition)
{
    Made schema = Made::Object();
    schema.Set("$ref", Made::Text("#/$defs/" + definition));
    return schema;
}

Made AnyOf(std::vector<Made> schemas)
{
    Made list = Made::Array();
    for (Made& schema : schemas)
    {
        list.Add(std::move(schema));
    }
    Made schema = Made::Object();
    schema.Set("anyOf", std::move(list));
    return schema;
}

Made ListOf(Made items)
{
    Made schema = Type("array");
    schema.Set("items", std::move(items));
    return schema;
}

Made MapOf(Made values)
{
    Made schema = Type("object");
    schema.Set("additionalProperties", std::move(values));
    return schema;
}

Made WholeNumber(std::int64_t low, std::int64_t high)
{
    Made schema = Type("integer");
    schema.Set("minimum", Made::Raw(std::to_string(low)));
    schema.Set("maximum", Made::Raw(std::to_string(high)));
    return schema;
}

Made Numbers(int least, int most)
{
    Made schema = ListOf(Type("number"));
    schema.Set("minItems", Made::Id(static_cast<std::uint64_t>(least)));
    schema.Set("maxItems", Made::Id(static_cast<std::uint64_t>(most)));
    return schema;
}

/// An editor proposes the words; a builder may also be the number of a host's.
Made Words(check::Words words)
{
    std::vector<std::string> list;
    for (const std::string_view word : check::WordsOf(words))
    {
        list.emplace_back(word);
    }
    Made schema = Made::Object();
    schema.Set("enum", Texts(list));
    return schema;
}

Made Builders()
{
    Made digits = Type("string");
    digits.Set("pattern", Made::Text("^[0-9]+$"));
    return AnyOf({Words(check::Words::Builders), std::move(digits), WholeNumber(0, kMostId)});
}

/// What the default of a parameter of a type is written as.
Made Value(std::string_view type)
{
    if (type.substr(0, 5) == "float" && type.size() == 6)
    {
        return Numbers(type[5] - '0', type[5] - '0');
    }
    return Type(type == "bool"      ? "boolean"
                : type == "integer" ? "integer"
                : type == "message" ? "string"
                                    : "number");
}

Made ShapeOf(const SourceRule& rule)
{
    switch (rule.shape)
    {
    case SourceShape::Text:
        return Type("string");
    case SourceShape::TextOrNull:
        return AnyOf({Type("string"), Type("null")});
    case SourceShape::Name:
        return AnyOf({Type("string"), WholeNumber(0, kMostId)});
    case SourceShape::Builder:
        return Builders();
    case SourceShape::Words:
        return Words(rule.words);
    case SourceShape::Integer:
        return Type("integer");
    case SourceShape::Id:
        return WholeNumber(0, kMostId);
    case SourceShape::Number:
        return Type("number");
    case SourceShape::Flag:
        return Type("boolean");
    case SourceShape::Texts:
        return ListOf(Type("string"));
    case SourceShape::Members:
        return Type("object");
    case SourceShape::Nodes:
        return ListOf(Type("object"));
    case SourceShape::States:
        return MapOf(Reference("state"));
    case SourceShape::Transitions:
        return ListOf(Reference("transition"));
    case SourceShape::Conditions:
        return AnyOf({Reference("condition"), ListOf(Reference("condition"))});
    case SourceShape::Parameters:
        return MapOf(Reference("parameter"));
    case SourceShape::Attributes:
        return MapOf(AnyOf({Type("string"), Type("number"), Type("boolean"), Numbers(2, 4)}));
    case SourceShape::Value:
        return Value(rule.name);
    case SourceShape::EndNode:
        return Reference("end");
    case SourceShape::ExitNode:
        return AnyOf({Type("string"), Reference("end")});
    case SourceShape::GlobalNode:
        return AnyOf({Reference("global"), Type("null")});
    case SourceShape::Any:
        break;
    }
    return Made::Object();
}

/// An object that has the members of a kind, and no others.
Made ObjectOf(const std::vector<SourceKind>& kinds)
{
    Made properties = Made::Object();
    for (const SourceKind kind : kinds)
    {
        for (const SourceRule& rule : RulesOf(kind))
        {
            Made property = Made::Object();
            property.Set("description", Made::Text(rule.description));
            Made shape = ShapeOf(rule);
            for (MadeMember& member : shape.members)
            {
                property.members.push_back(std::move(member));
            }
            properties.Set(rule.name, std::move(property));
        }
    }
    Made schema = Type("object");
    schema.Set("properties", std::move(properties));
    schema.Set("additionalProperties", Made::Flag(false));
    return schema;
}

/// A condition is a text, or an object that has one of two members.
Made Condition()
{
    Made object = ObjectOf({SourceKind::Condition});
    Made withIf = Made::Object();
    withIf.Set("required", Texts({"if"}));
    Made withMembers = Made::Object();
    withMembers.Set("required", Texts({"members"}));
    object.Set("anyOf", Made::Array()).elements = {withIf, withMembers};
    Made text = Type("string");
    text.Set(
        "description",
        Made::Text("NAME, not NAME, NAME == VALUE (or !=, <, <=, >, >=), NAME in 5..10 or NAME "
                   "not in 5..10. A text is in single quotes."));
    return AnyOf({std::move(text), std::move(object)});
}

/// What a transition has to say, unless it is copied.
Made Transition()
{
    Made object = ObjectOf({SourceKind::Transition});
    Made plain = Made::Object();
    plain.Set("required", Texts({"to", "when"}));
    Made copied = Made::Object();
    copied.Set("required", Texts({"members"}));
    object.Set("anyOf", Made::Array()).elements = {plain, copied};
    return object;
}

/// A parameter is a value, or an object that has one of the types.
Made Parameter()
{
    Made object = ObjectOf({SourceKind::Parameter});
    Made types = Made::Array();
    for (const SourceRule& rule : RulesOf(SourceKind::Parameter))
    {
        if (rule.shape == SourceShape::Value)
        {
            Made type = Made::Object();
            type.Set("required", Texts({std::string(rule.name)}));
            types.Add(std::move(type));
        }
    }
    object.Set("oneOf", std::move(types));
    return AnyOf({Type("boolean"), Type("number"), std::move(object)});
}

std::string Pretty(const std::string& json)
{
    rapidjson::Document document;
    document.Parse(json.c_str(), json.size());
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

} // namespace

std::string MakeSourceSchema()
{
    Made root = Made::Object();
    root.Set("$schema", Made::Text("https://json-schema.org/draft/2020-12/schema"));
    root.Set("title", Made::Text("VELL machine source"));
    root.Set("type", Made::Text("object"));
    Made isMachine = Made::Object();
    isMachine.Set("required", Texts({"machine"}));
    root.Set("if", std::move(isMachine));
    root.Set("then", Reference("machine"));
    root.Set("else", Reference("part"));
    Made& definitions = root.Set("$defs", Made::Object());
    definitions.Set("machine", ObjectOf({SourceKind::Machine}));
    definitions.Set("part", ObjectOf({SourceKind::Part, SourceKind::Level}));
    definitions.Set("state", ObjectOf({SourceKind::State}));
    definitions.Set("transition", Transition());
    definitions.Set("condition", Condition());
    definitions.Set("parameter", Parameter());
    definitions.Set("end", ObjectOf({SourceKind::End}));
    definitions.Set("global", ObjectOf({SourceKind::Global}));
    return Pretty(ToJson(root));
}

} // namespace vell::author
