// VELL: data-driven hierarchical state machines.
// tests/definitions/AttributesTest.cpp: attributes as a node of the document makes them.
#include <durm/DURMBaseLib.h>

#include "definitions/AttribDefs.h"
#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Recorders.h"

#include <gtest/gtest.h>

#include <map>

namespace vell::test
{
namespace
{

const char* const kAttrib = "vell::BaseDef::Init_Attrib";
const char* const kAttribs = "vell::BaseDef::Init_Attribs";

/// A node with attributes, in an arena of `room` bytes, and what its initialisation says.
class NodeWith
{
public:
    explicit NodeWith(const Json& attributes, unsigned int room = 65536)
        : alloc(room),
          node(JsonObject{}
                   .Set(JSON_Name, "Node")
                   .Set(JSON_ID, 12)
                   .Set(JSON_Attributes, attributes)),
          result(def.Init(*node, &alloc)),
          lines(log.Take())
    {
    }
    explicit NodeWith(std::initializer_list<Json> attributes, unsigned int room = 65536)
        : NodeWith(Json::Array(attributes), room)
    {
    }

    template <class T>
    T* Get(const char* name)
    {
        return dynamic_cast<T*>(def.GetAttrib(name));
    }

    LogRecorder log;
    Arena alloc;
    ParsedJson node;
    OpenDef def;
    int result;
    Lines lines;
};

/// An attribute whose data is `data`.
JsonObject WithData(const std::string& name, const Json& data)
{
    JsonObject attribute;
    return attribute.Set(JSON_Name, name).Set("ATTRIB_Data", data);
}

/// An attribute of a type without a value.
JsonObject Valueless(const std::string& name, const std::string& type)
{
    return WithData(name, Json::Array({Json(JsonObject{}.Set(JSON_AttributeType, type))}));
}

/// The lines of a node whose first bad attribute says `refusal` and is tried twice.
Lines RefusedTwice(const Lines& refusal)
{
    return refusal + refusal + Lines{ErrorBreak(kAttribs), CreatedDef("Node")};
}

std::string NotImplemented(const std::string& type)
{
    return "3 " + type + " isn't implemented for this sprint (yet)";
}

void ExpectVector(const Tessel::Float3& value, float x, float y, float z)
{
    EXPECT_EQ(value.x, x);
    EXPECT_EQ(value.y, y);
    EXPECT_EQ(value.z, z);
}

} // namespace

TEST(Attributes, AreMadeOfAllSevenTypes)
{
    NodeWith node({Attribute("s", "QString", "text"), Attribute("i", "int", -5),
                   Attribute("f", "double", 1.5), Attribute("v2", "QVector2D", "1,2"),
                   Attribute("v3", "QVector3D", "1,2,3"), Attribute("v4", "QVector4D", "1,2,3,4"),
                   Attribute("b", "bool", true)});

    EXPECT_EQ(node.result, 1);
    EXPECT_EQ(node.lines, (Lines{CreatedDef("Node")}));
    EXPECT_EQ(node.def.numAttribs, 7u);
    EXPECT_EQ(node.def.attribs.size(), 7u);
    ASSERT_NE(node.Get<AttribDefString>("s"), nullptr);
    EXPECT_STREQ(node.Get<AttribDefString>("s")->buffer, "text");
    ASSERT_NE(node.Get<AttribDefInteger>("i"), nullptr);
    EXPECT_EQ(node.Get<AttribDefInteger>("i")->value, -5);
    ASSERT_NE(node.Get<AttribDefFloat>("f"), nullptr);
    EXPECT_EQ(node.Get<AttribDefFloat>("f")->value, 1.5f);
    ASSERT_NE(node.Get<AttribDefFloat2>("v2"), nullptr);
    EXPECT_EQ(node.Get<AttribDefFloat2>("v2")->value.y, 2.0f);
    ASSERT_NE(node.Get<AttribDefFloat3>("v3"), nullptr);
    ExpectVector(node.Get<AttribDefFloat3>("v3")->value, 1, 2, 3);
    ASSERT_NE(node.Get<AttribDefFloat4>("v4"), nullptr);
    EXPECT_EQ(node.Get<AttribDefFloat4>("v4")->value.w, 4.0f);
    ASSERT_NE(node.Get<AttribDefBool>("b"), nullptr);
    EXPECT_TRUE(node.Get<AttribDefBool>("b")->value);
}

TEST(Attributes, KnowTheirTypeNumbers)
{
    NodeWith node({Attribute("s", "QString", ""), Attribute("i", "int", 0),
                   Attribute("f", "double", 0.0), Attribute("v2", "QVector2D", "0,0"),
                   Attribute("v3", "QVector3D", "0,0,0"), Attribute("v4", "QVector4D", "0,0,0,0"),
                   Attribute("b", "bool", false)});

    const std::map<std::string, int> types{{"s", 8},  {"i", 2},  {"f", 3}, {"v2", 4},
                                           {"v3", 5}, {"v4", 6}, {"b", 1}};
    for (const auto& [name, type] : types)
    {
        AttribBase* attrib = node.def.GetAttrib(name.c_str());
        ASSERT_NE(attrib, nullptr) << name;
        EXPECT_EQ(attrib->GetDefaultType(), type) << name;
        EXPECT_STREQ(attrib->GetKVTable()->GetString("type"),
                     DURMBaseLib::GetParameterName(static_cast<__ePARAMTYPE__>(type)));
    }
}

TEST(Attributes, MatchTheirTypeNamesInAnyCase)
{
    NodeWith node({Attribute("s", "qstring", "text"), Attribute("i", "INT", 5),
                   Attribute("v", "qvector2d", "1,2"), Attribute("b", "Bool", true)});

    EXPECT_EQ(node.lines, (Lines{CreatedDef("Node")}));
    EXPECT_NE(node.Get<AttribDefString>("s"), nullptr);
    EXPECT_NE(node.Get<AttribDefInteger>("i"), nullptr);
    EXPECT_NE(node.Get<AttribDefFloat2>("v"), nullptr);
    EXPECT_NE(node.Get<AttribDefBool>("b"), nullptr);
}

TEST(Attributes, LieInTheArenaBehindOneAnother)
{
    NodeWith node({Attribute("i", "int", 5), Attribute("f", "double", 5.0)});

    EXPECT_EQ(node.alloc.used, sizeof(AttribDefInteger) + sizeof(AttribDefFloat));
    EXPECT_EQ(node.alloc.tracked,
              (HSMAlloc::SizeMap{{node.def.GetAttrib("i"), sizeof(AttribDefInteger)},
                                 {node.def.GetAttrib("f"), sizeof(AttribDefFloat)}}));
}

TEST(Attributes, MirrorThemselvesInTheTableOfTheirNode)
{
    NodeWith node({Attribute("speed", "int", -5)});

    const Tessel::KVTable table = node.def.GetKVTable()->GetTable("attribs")->GetTable("speed");
    ASSERT_TRUE(table);
    EXPECT_EQ(table, node.def.GetAttrib("speed")->GetKVTable());
    EXPECT_STREQ(Tessel::GetTableName(table), "attribBase");
    EXPECT_STREQ(table->GetString("name"), "speed");
    EXPECT_EQ(table->GetInt("value"), -5);
    EXPECT_EQ(table->FindValue("value")->GetValueType(), Tessel::ValueType_Int);
    EXPECT_EQ(table->GetUInt("nodeID"), 12u);
    EXPECT_EQ(table->GetKeyCount(), 4u);
}

TEST(Attributes, TakeTheirNameFromTheAttributeAndNotFromItsData)
{
    const JsonObject data =
        JsonObject{}.Set(JSON_AttributeType, "int").Set(JSON_Value, 1).Set(JSON_Name, "inner");

    NodeWith node({WithData("outer", Json::Array({Json(data)}))});

    EXPECT_NE(node.def.GetAttrib("outer"), nullptr);
    EXPECT_EQ(node.def.GetAttrib("inner"), nullptr);
}

TEST(Attributes, ReadTheFirstElementOfTheirDataOnly)
{
    const Json first = JsonObject{}.Set(JSON_AttributeType, "int").Set(JSON_Value, 1);

    NodeWith node({WithData("a", Json::Array({first, Json(5)}))});

    EXPECT_EQ(node.lines, (Lines{CreatedDef("Node")}));
    EXPECT_EQ(node.Get<AttribDefInteger>("a")->value, 1);
}

TEST(Attributes, AreNotMadeWithoutTheirDataOrTheirType)
{
    NodeWith node({JsonObject{}.Set(JSON_Name, "bare"),
                   WithData("untyped", Json::Array({Json(JsonObject{}.Set(JSON_Value, 5))})),
                   Attribute("good", "int", 5)});

    EXPECT_EQ(node.lines, (Lines{CreatedDef("Node")}));
    EXPECT_EQ(node.def.numAttribs, 3u);
    EXPECT_EQ(node.def.attribs.size(), 1u);
    EXPECT_NE(node.def.GetAttrib("good"), nullptr);
}

TEST(Attributes, ReadNumbersOfAnyFormAsADouble)
{
    NodeWith node({Attribute("i", "double", -3), Attribute("f", "double", 0.25),
                   Attribute("big", "double", Json::Raw("4294967296")),
                   Attribute("text", "double", "7"), Valueless("none", "double")});

    EXPECT_EQ(node.Get<AttribDefFloat>("i")->value, -3.0f);
    EXPECT_EQ(node.Get<AttribDefFloat>("f")->value, 0.25f);
    EXPECT_EQ(node.Get<AttribDefFloat>("big")->value, 4294967296.0f);
    EXPECT_EQ(node.Get<AttribDefFloat>("text")->value, 0.0f);
    EXPECT_EQ(node.Get<AttribDefFloat>("none")->value, 0.0f);
}

TEST(Attributes, ReadAnIntWithoutATest)
{
    NodeWith node({Attribute("text", "int", "7"), Valueless("none", "int"),
                   Attribute("big", "int", Json::Raw("4294967297"))});

    EXPECT_EQ(node.Get<AttribDefInteger>("text")->value, 0);
    EXPECT_EQ(node.Get<AttribDefInteger>("none")->value, 0);
    EXPECT_EQ(node.Get<AttribDefInteger>("big")->value, 1);
    EXPECT_EQ(node.def.GetAttrib("none")->GetKVTable()->GetInt("value"), 0);
    EXPECT_NE(node.def.GetAttrib("none")->GetKVTable()->FindValue("value"), nullptr);
}

TEST(Attributes, TakeTheLiteralTrueAloneAsTrue)
{
    NodeWith node({Attribute("one", "bool", 1), Attribute("text", "bool", "true"),
                   Valueless("none", "bool")});

    EXPECT_FALSE(node.Get<AttribDefBool>("one")->value);
    EXPECT_FALSE(node.Get<AttribDefBool>("text")->value);
    EXPECT_FALSE(node.Get<AttribDefBool>("none")->value);
    EXPECT_NE(node.def.GetAttrib("none")->GetKVTable()->FindValue("value"), nullptr);
}

TEST(Attributes, IgnoreFurtherNumbersOfAVector)
{
    NodeWith node(
        {Attribute("v", "QVector3D", "1.5,-2,3e1,4"), Attribute("w", "QVector2D", ",1,,2,")});

    EXPECT_EQ(node.lines, (Lines{CreatedDef("Node")}));
    ExpectVector(node.Get<AttribDefFloat3>("v")->value, 1.5f, -2.0f, 30.0f);
    EXPECT_EQ(node.Get<AttribDefFloat2>("w")->value.y, 2.0f);
}

TEST(Attributes, ReadWordsInAVectorAsZero)
{
    NodeWith node({Attribute("v", "QVector3D", " 1,two,3x")});

    ExpectVector(node.Get<AttribDefFloat3>("v")->value, 1.0f, 0.0f, 3.0f);
}

TEST(Attributes, ReadVectorsOfUpTo127CharactersAndRefuseLongerOnes)
{
    const std::string text = "1," + std::string(125, '0');
    ASSERT_EQ(text.size(), 127u);

    const Lines longest = NodeWith({Attribute("v", "QVector2D", text)}).lines;
    const Lines tooLong = NodeWith({Attribute("v", "QVector2D", text + "0")}).lines;

    EXPECT_EQ(longest, (Lines{CreatedDef("Node")}));
    EXPECT_EQ(tooLong, RefusedTwice({ErrorBreak(kAttrib)}));
}

TEST(Attributes, AreNoneWhenTheirArrayIsNone)
{
    NodeWith number(Json(5));

    EXPECT_EQ(number.result, 1);
    EXPECT_EQ(number.lines, (Lines{ErrorBreak(kAttribs), CreatedDef("Node")}));
    EXPECT_EQ(number.def.numAttribs, 0u);
}

TEST(Attributes, EndAtAnElementThatIsNoObject)
{
    NodeWith node({Attribute("a", "int", 1), Json(5), Attribute("b", "int", 2)});

    EXPECT_EQ(node.result, 1);
    EXPECT_EQ(node.lines, RefusedTwice({ErrorBreak(kAttrib)}));
    EXPECT_EQ(node.def.numAttribs, 3u);
    EXPECT_NE(node.def.GetAttrib("a"), nullptr);
    EXPECT_EQ(node.def.GetAttrib("b"), nullptr);
}

TEST(Attributes, EndAtDataThatAreNoArrayOfObjects)
{
    for (const Json& data : {Json(5), Json::Raw("[]"), Json::Array({5}), Json(JsonObject{})})
    {
        NodeWith node({WithData("a", data), Attribute("b", "int", 2)});

        EXPECT_EQ(node.result, 1) << data.Text();
        EXPECT_EQ(node.lines, RefusedTwice({ErrorBreak(kAttrib)})) << data.Text();
        EXPECT_TRUE(node.def.attribs.empty()) << data.Text();
    }
}

TEST(Attributes, EndAtATypeThatIsUnknownOrNoText)
{
    const Json number = JsonObject{}.Set(JSON_AttributeType, 5);
    const std::pair<Json, const char*> attributes[] = {{Attribute("a", "QColor", "red"), "QColor"},
                                                       {WithData("a", Json::Array({number})), ""}};
    for (const auto& [attribute, type] : attributes)
    {
        SCOPED_TRACE(attribute.Text());
        NodeWith node({attribute, Attribute("b", "int", 2)});

        EXPECT_EQ(node.result, 1);
        EXPECT_EQ(node.lines, RefusedTwice({NotImplemented(type)}));
        EXPECT_TRUE(node.def.attribs.empty());
        EXPECT_EQ(node.alloc.used, 0u);
    }
}

TEST(Attributes, EndAtAVectorWithoutEnoughNumbersAndTakeItsRoomTwice)
{
    for (const Json& vector :
         {Json(Valueless("v", "QVector3D")), Json(Attribute("v", "QVector3D", "1,2")),
          Json(Attribute("v", "QVector3D", 5))})
    {
        SCOPED_TRACE(vector.Text());
        NodeWith node({vector, Attribute("b", "int", 2)});

        EXPECT_EQ(node.result, 1);
        EXPECT_EQ(node.lines, RefusedTwice({ErrorBreak(kAttrib)}));
        EXPECT_EQ(node.alloc.used, 2 * sizeof(AttribDefFloat3));
        EXPECT_TRUE(node.def.attribs.empty());
    }
}

TEST(Attributes, OfEveryClassNeedTheirRoomInTheArena)
{
    const std::pair<Json, std::size_t> attributes[] = {
        {Attribute("a", "QString", ""), sizeof(AttribDefString)},
        {Attribute("a", "int", 1), sizeof(AttribDefInteger)},
        {Attribute("a", "double", 1), sizeof(AttribDefFloat)},
        {Attribute("a", "QVector2D", "1,2"), sizeof(AttribDefFloat2)},
        {Attribute("a", "QVector3D", "1,2,3"), sizeof(AttribDefFloat3)},
        {Attribute("a", "QVector4D", "1,2,3,4"), sizeof(AttribDefFloat4)},
        {Attribute("a", "bool", true), sizeof(AttribDefBool)}};
    for (const auto& [attribute, size] : attributes)
    {
        const auto room = static_cast<unsigned int>(size);
        const Lines withRoom = NodeWith({attribute}, room).lines;
        NodeWith tooSmall({attribute}, room - 1);

        EXPECT_EQ(withRoom, (Lines{CreatedDef("Node")})) << attribute.Text();
        EXPECT_EQ(tooSmall.result, 1) << attribute.Text();
        EXPECT_EQ(tooSmall.lines, RefusedTwice({ErrorBreak(kAttrib)})) << attribute.Text();
        EXPECT_EQ(tooSmall.alloc.used, 0u) << attribute.Text();
        EXPECT_TRUE(tooSmall.alloc.tracked.empty()) << attribute.Text();
    }
}

TEST(Attributes, StoreATextOf1023CharactersButNoLongerOne)
{
    const std::string longest(1023, 'x');
    NodeWith node({Attribute("fits", "QString", longest),
                   Attribute("long", "QString", std::string(1024, 'x')),
                   Valueless("none", "QString")});

    EXPECT_EQ(node.lines, (Lines{CreatedDef("Node")}));
    EXPECT_EQ(node.Get<AttribDefString>("fits")->buffer, longest);
    EXPECT_STREQ(node.Get<AttribDefString>("long")->buffer, "");
    EXPECT_STREQ(node.Get<AttribDefString>("none")->buffer, "");
}

TEST(Attributes, ListenToAToolAlsoWhereTheirTextLeftNoValue)
{
    NodeWith node(
        {Attribute("long", "QString", std::string(1024, 'x')), Valueless("none", "QString")});
    for (const char* name : {"long", "none"})
    {
        const Tessel::KVTable table = node.def.GetAttrib(name)->GetKVTable();
        ASSERT_EQ(table->FindValue("value"), nullptr) << name;

        table->SetString("value", "from the tool", 1);

        EXPECT_STREQ(node.Get<AttribDefString>(name)->buffer, "from the tool");
    }
}

TEST(Attributes, OfOneNameAreAllKeptAndTheLastInTheOrderOfAddressesIsFound)
{
    NodeWith node(
        {Attribute("same", "int", 1), Attribute("other", "int", 2), Attribute("same", "int", 3)});
    AttribBase* last = nullptr;
    const char* firstKey = nullptr;
    for (const auto& [key, attrib] : node.def.attribs)
    {
        if (std::string(key) == "same")
        {
            firstKey = firstKey == nullptr ? key : firstKey;
            last = attrib;
        }
    }

    EXPECT_EQ(node.def.attribs.size(), 3u);
    EXPECT_EQ(node.def.GetAttrib("same"), last);
    EXPECT_EQ(node.def.GetAttrib(firstKey), last);
    EXPECT_NE(node.def.attribs.at(firstKey), last);
}

TEST(Attributes, OfOneNameShareAKeyThatTheLaterOneTakes)
{
    NodeWith node({Attribute("same", "int", 1), Attribute("same", "int", 3)});

    const Tessel::KVTable tables = node.def.GetKVTable()->GetTable("attribs");
    EXPECT_EQ(tables->GetKeyCount(), 1u);
    EXPECT_EQ(tables->GetTable("same")->GetInt("value"), 3);
}

TEST(Attributes, AreFoundByTheirWholeNameInItsCase)
{
    NodeWith node({Attribute("speed", "int", 1)});

    EXPECT_NE(node.def.GetAttrib(std::string("speed").c_str()), nullptr);
    EXPECT_EQ(node.def.GetAttrib("Speed"), nullptr);
    EXPECT_EQ(node.def.GetAttrib("spee"), nullptr);
    EXPECT_EQ(node.def.GetAttrib(""), nullptr);
    EXPECT_EQ(node.def.GetAttrib(nullptr), nullptr);
}

TEST(Attributes, AreFoundByTheNameTheyWereFiledUnder)
{
    NodeWith node({Attribute("speed", "int", 1)});
    AttribBase* attrib = node.def.GetAttrib("speed");

    attrib->SetName("renamed");

    EXPECT_EQ(node.def.GetAttrib("speed"), attrib);
    EXPECT_EQ(node.def.GetAttrib("renamed"), nullptr);
    EXPECT_STREQ(attrib->GetKVTable()->GetString("name"), "renamed");
}

TEST(Attributes, WithoutANameAreKeptOnce)
{
    const Json nameless = Attribute("", "int", 5).Remove(JSON_Name);

    NodeWith node({nameless, nameless, Attribute("b", "int", 2)});

    EXPECT_EQ(node.lines, RefusedTwice({ErrorBreak(kAttrib)}));
    ASSERT_EQ(node.def.attribs.size(), 1u);
    EXPECT_EQ(node.def.attribs.count(nullptr), 1u);
    EXPECT_EQ(node.def.GetAttrib("b"), nullptr);
    EXPECT_EQ(node.alloc.used, 3 * sizeof(AttribDefInteger));
}

TEST(Attributes, ThatAreRefusedGoOnListening)
{
    const Json nameless = Attribute("", "int", 5).Remove(JSON_Name);
    NodeWith node({nameless, nameless});
    auto* refused =
        reinterpret_cast<AttribDefInteger*>(node.alloc.block + sizeof(AttribDefInteger));
    ASSERT_EQ(node.alloc.tracked.count(refused), 1u);

    refused->GetKVTable()->SetInt("value", 9, 1);

    EXPECT_EQ(refused->value, 9);
    EXPECT_EQ(refused->GetKVTable()->FindValue("nodeID"), nullptr);
}

TEST(Attributes, StopListeningWhenTheirNodeIsUninitialised)
{
    NodeWith node({Attribute("a", "int", 1)});
    AttribBase* attrib = node.def.GetAttrib("a");
    const Tessel::KVTable table = attrib->GetKVTable();

    EXPECT_EQ(node.def.Uninit_Attribs(), 1);
    table->SetInt("value", 9, 1);

    EXPECT_EQ(static_cast<AttribDefInteger*>(attrib)->value, 1);
    EXPECT_EQ(table->GetInt("value"), 9);
    EXPECT_EQ(node.def.attribs.size(), 1u);
}

TEST(Attributes, KeepTheirTableOpenBeyondTheirNode)
{
    NodeWith node({Attribute("a", "int", 1)});
    const Tessel::KVTable table = node.def.GetAttrib("a")->GetKVTable();

    node.def.Uninit();

    EXPECT_STREQ(Tessel::GetTableName(table), "attribBase");
}

TEST(Attributes, MayBeNullWhenOneStopsListening)
{
    OpenDef def;

    EXPECT_EQ(def.Uninit_Attrib(nullptr), 1);
    EXPECT_EQ(def.Uninit_Attribs(), 1);
}

TEST(Attributes, AreAddedToANodeWithoutATable)
{
    OpenDef def("Node", 12, 0);
    AttribDefInteger attrib;
    attrib.SetName("a");

    EXPECT_EQ(def.TabAddAttrib(nullptr), 1);
    EXPECT_EQ(def.TabAddAttrib(&attrib), 1);

    EXPECT_EQ(attrib.GetKVTable()->GetUInt("nodeID"), 12u);
    EXPECT_EQ(attrib.GetKVTable()->FindValue("nodeID")->GetValueType(), Tessel::ValueType_UInt);
}

} // namespace vell::test
