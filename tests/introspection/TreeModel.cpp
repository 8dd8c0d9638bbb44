// VELL: data-driven hierarchical state machines.
// tests/introspection/TreeModel.cpp: the tree of a document, built without the library's own code.
#include "tests/introspection/TreeModel.h"

#include <durm/DURMBaseLib.h>
#include <vell/Types.h>

#include "tests/support/TreeLines.h"

#include <rapidjson/document.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>

namespace vell::test
{
namespace
{

using rapidjson::Value;

/// A key: what its line shows, and, for a table, the keys below.
struct Branch
{
    std::string shown;
    std::map<std::string, Branch> keys;

    Branch& Table(const std::string& key, const std::string& tableName)
    {
        keys[key].shown = "table " + tableName;
        return keys[key];
    }
    void Text(const std::string& key, const std::string& text)
    {
        keys[key].shown = "text \"" + text + "\"";
    }
    void UInt(const std::string& key, unsigned int value)
    {
        keys[key].shown = "uint " + std::to_string(value);
    }
    void Int(const std::string& key, int value)
    {
        keys[key].shown = "int " + std::to_string(value);
    }
    void Floats(const std::string& key, const std::vector<float>& values)
    {
        const std::string kind =
            values.size() == 1 ? "float " : "float" + std::to_string(values.size()) + " ";
        keys[key].shown = kind + FloatText(values.data(), static_cast<int>(values.size()));
    }
};

bool Has(const Value& object, __JSONTYPES__ member)
{
    return object.HasMember(DURMBaseLib::GetJsonName(member));
}

const Value& Get(const Value& object, __JSONTYPES__ member)
{
    return object[DURMBaseLib::GetJsonName(member)];
}

std::vector<float> Split(const char* text)
{
    std::vector<float> values;
    std::istringstream pieces(text);
    for (std::string piece; std::getline(pieces, piece, ',');)
    {
        values.push_back(static_cast<float>(std::atof(piece.c_str())));
    }
    return values;
}

const char* TypeText(int type)
{
    return DURMBaseLib::GetParameterName(static_cast<DURMBaseLib::__ePARAMTYPE__>(type));
}

/// The value of a bool, an integer or a float; others are left to the caller.
void AddScalar(Branch& table, int type, const Value& value)
{
    switch (type)
    {
    case DURMBaseLib::PARAM_Bool:
        return table.Int("value", value.IsTrue() ? 1 : 0);
    case DURMBaseLib::PARAM_Integer:
        return table.Int("value", value.GetInt());
    case DURMBaseLib::PARAM_Float:
        return table.Floats("value", {value.GetFloat()});
    default:
        break;
    }
}

void AddAttribute(Branch& attribs, const Value& attribute, unsigned int nodeId)
{
    const std::map<std::string, int> types{
        {"QString", 8},   {"int", 2},       {"double", 3}, {"QVector2D", 4},
        {"QVector3D", 5}, {"QVector4D", 6}, {"bool", 1},
    };
    const Value& data = attribute["ATTRIB_Data"][0];
    const int type = types.at(Get(data, JSON_AttributeType).GetString());
    const Value& value = Get(data, JSON_Value);
    const std::string name = Get(attribute, JSON_Name).GetString();
    Branch& table = attribs.Table(name, "attribBase");
    table.Text("name", name);
    table.Text("type", TypeText(type));
    table.UInt("nodeID", nodeId);
    AddScalar(table, type, value);
    if (type == DURMBaseLib::PARAM_Message)
    {
        table.Text("value", value.GetString());
    }
    else if (type >= DURMBaseLib::PARAM_Float2 && type <= DURMBaseLib::PARAM_Float4)
    {
        table.Floats("value", Split(value.GetString()));
    }
}

Branch& AddDefinition(Branch& parent, const Value& definition)
{
    const unsigned int id = Get(definition, JSON_ID).GetUint();
    Branch& table = parent.Table(std::to_string(id), "baseDef");
    table.UInt("id", id);
    Branch& attribs = table.Table("attribs", "attribs");
    attribs.UInt("id", id);
    if (Has(definition, JSON_Attributes))
    {
        for (const Value& attribute : Get(definition, JSON_Attributes).GetArray())
        {
            AddAttribute(attribs, attribute, id);
        }
    }
    return table;
}

void AddParameter(Branch& parameters, const Value& parameter)
{
    Branch& table = AddDefinition(parameters, parameter);
    const char* typeName = Get(parameter, JSON_ParameterType).GetString();
    const int type = DURMBaseLib::GetParameterName(typeName);
    const Value& value = Get(parameter, JSON_ParameterDefault);
    table.Text("type", typeName);
    AddScalar(table, type, value);
    if (type == DURMBaseLib::PARAM_Message || type == DURMBaseLib::PARAM_Text)
    {
        table.Text("value", "");
    }
    else if (type >= DURMBaseLib::PARAM_Float2 && type <= DURMBaseLib::PARAM_Float4)
    {
        table.Floats("value", Split(value[0]["VARIANT_Data"].GetString()));
    }
}

void AddNodes(Branch& nodes, const Value& array)
{
    for (const Value& node : array.GetArray())
    {
        AddDefinition(nodes, node);
    }
}

void AddTextOf(Branch& table, const char* key, const Value& object, __JSONTYPES__ member)
{
    if (Has(object, member))
    {
        table.Text(key, Get(object, member).GetString());
    }
}

void AddNodeTable(Branch& root, const Value& document)
{
    Branch& nodes = root.Table("nodeDefTable", "nodeDefTable");
    const Value& head = Get(document, JSON_Head);
    AddTextOf(nodes, "hsmID", head, JSON_GUID);
    AddTextOf(nodes, "buildID", head, JSON_HeadBuildID);
    if (Has(document, JSON_Skeleton))
    {
        AddTextOf(nodes, "modelfilename", Get(document, JSON_Skeleton), JSON_ModelFileName);
        AddTextOf(nodes, "skelfilename", Get(document, JSON_Skeleton), JSON_SkeletonFileName);
    }
    for (const Value& layer : Get(document, JSON_Layers).GetArray())
    {
        AddNodes(nodes, Get(layer, JSON_Nodes));
    }
    if (Has(document, JSON_Global))
    {
        AddNodes(nodes, Get(document, JSON_Global));
    }
}

void Show(const Branch& branch, const std::string& path, Lines& lines)
{
    for (const auto& entry : branch.keys)
    {
        const std::string below = path + entry.first;
        lines.push_back(below + " " + entry.second.shown);
        Show(entry.second, below + "/", lines);
    }
}

} // namespace

Lines ModelTree(const std::string& documentText, const std::string& fileName)
{
    rapidjson::Document document;
    document.Parse(documentText.c_str());
    Branch root;
    if (!fileName.empty())
    {
        root.Text("filename", fileName);
    }
    Branch& context = root.Table("contextInfo", "contextInfo");
    context.Table("stackStates", "stackStates");
    context.Table("stackBlip", "stackBlip");
    for (const char* key : {"nextState", "previousState", "transitionTriggered"})
    {
        context.UInt(key, 0);
    }
    Branch& parameters = root.Table("parameterTable", "parameterTable");
    for (const Value& parameter : Get(document, JSON_Parameters).GetArray())
    {
        AddParameter(parameters, parameter);
    }
    AddNodeTable(root, document);

    Lines lines{"(root) table HSM"};
    Show(root, "", lines);
    return lines;
}

} // namespace vell::test
