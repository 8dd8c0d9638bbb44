// VELL: data-driven hierarchical state machines.
// tests/definitions/BaseDefTest.cpp: making, copying and initialising a plain definition.
#include <durm/DURMBaseLib.h>
#include <vell/AttribBase.h>

#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestAction.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>

namespace vell::test
{
namespace
{

JsonObject PlainNode(const std::string& name, unsigned int id, unsigned int parent = 0)
{
    JsonObject node;
    return node.Set(JSON_Name, name).Set(JSON_ID, id).Set(JSON_ParentID, parent);
}

unsigned int ReadTable(Tessel::KVTable table, const char* key)
{
    return table->GetUInt(key);
}

} // namespace

TEST(BaseDef, IsBlankWhenConstructedWithoutArguments)
{
    OpenDef def;

    EXPECT_EQ(def.GetIndex(), -1);
    EXPECT_EQ(def.GetName(), nullptr);
    EXPECT_EQ(def.GetID(), 0u);
    EXPECT_EQ(def.GetParentID(), 0u);
    EXPECT_EQ(def.GetType(), DefTypeBase);
    EXPECT_EQ(def.GetFlags(), 0u);
    EXPECT_EQ(static_cast<int>(def.GetBuilderType()), 0);
    EXPECT_EQ(def.GetExitConnector(), 0u);
    EXPECT_EQ(def.GetNumChildren(), 0u);
    EXPECT_EQ(def.childIds, nullptr);
    EXPECT_EQ(def.GetActions(), nullptr);
    EXPECT_EQ(def.GetEnterActions(), nullptr);
    EXPECT_EQ(def.GetExitActions(), nullptr);
    EXPECT_EQ(def.numExecute + def.numEnter + def.numExit + def.numAttribs, 0u);
    EXPECT_TRUE(def.attribs.empty());
    EXPECT_FALSE(def.GetKVTable());
    EXPECT_EQ(def.reserved, nullptr);
}

TEST(BaseDef, KeepsTheNameItIsConstructedWith)
{
    const char* const name = "Walk";

    BaseDef def(name);

    EXPECT_EQ(def.GetName(), name);
    EXPECT_EQ(def.GetIndex(), -1);
    EXPECT_EQ(def.GetID(), 0u);
}

TEST(BaseDef, KeepsNameIdAndParentItIsConstructedWith)
{
    const char* const name = "Walk";

    BaseDef def(name, 7, 3);

    EXPECT_EQ(def.GetName(), name);
    EXPECT_EQ(def.GetID(), 7u);
    EXPECT_EQ(def.GetParentID(), 3u);
    EXPECT_EQ(def.GetScriptName(), nullptr);
    EXPECT_EQ(def.GetIndex(), -1);
}

TEST(BaseDef, HandsOutWhatItsSettersStored)
{
    BaseDef def;
    const char* const name = "Other";

    def.SetName(name);
    def.SetID(5);
    def.SetParent(6);
    def.SetType(DefTypeGeneric);
    def.SetIndex(9);
    def.SetFlags(0x80000001u);

    EXPECT_EQ(def.GetName(), name);
    EXPECT_EQ(def.GetID(), 5u);
    EXPECT_EQ(def.GetParentID(), 6u);
    EXPECT_EQ(def.GetType(), DefTypeGeneric);
    EXPECT_EQ(def.GetIndex(), 9);
    EXPECT_EQ(def.GetFlags(), 0x80000001u);
}

TEST(BaseDef, IsPlacedInTheArenaByItsFactory)
{
    LogRecorder log;
    Arena alloc(sizeof(BaseDef));
    const ParsedJson node(Json::Null());

    BaseDef* def = BaseDef::Create(*node, &alloc);

    ASSERT_NE(def, nullptr);
    EXPECT_EQ(static_cast<void*>(def), static_cast<void*>(alloc.block));
    EXPECT_EQ(alloc.used, sizeof(BaseDef));
    EXPECT_EQ(alloc.tracked, (HSMAlloc::SizeMap{{def, sizeof(BaseDef)}}));
    EXPECT_EQ(def->GetType(), DefTypeBase);
    EXPECT_EQ(def->GetFlags(), 0u);
    EXPECT_EQ(log.Take(), Lines{});
}

TEST(BaseDef, IsNotMadeInAnArenaAByteTooSmall)
{
    LogRecorder log;
    Arena alloc(sizeof(BaseDef) - 1);
    const ParsedJson node(JsonObject{});

    EXPECT_EQ(BaseDef::Create(*node, &alloc), nullptr);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::BaseDef::Create")}));
    EXPECT_EQ(alloc.used, 0u);
    EXPECT_TRUE(alloc.tracked.empty());
}

TEST(BaseDef, IsNotMadeWithoutABlockOrWithoutAnArena)
{
    LogRecorder log;
    HSMAlloc alloc;
    const ParsedJson node(JsonObject{});

    EXPECT_EQ(BaseDef::Create(*node, &alloc), nullptr);
    EXPECT_EQ(BaseDef::Create(*node, nullptr), nullptr);

    EXPECT_EQ(log.Take(),
              (Lines{ErrorBreak("vell::BaseDef::Create"), ErrorBreak("vell::BaseDef::Create")}));
}

TEST(BaseDef, ReadsItsCommonMembers)
{
    LogRecorder log;
    const JsonObject node = PlainNode("Walk", 12, 4)
                                .Set(JSON_ExitConnector, 8)
                                .Set(JSON_BuilderType, BuilderName(10))
                                .Set(JSON_ScriptName, "walk.lua")
                                .Set(JSON_Children, Json::Array({3, 1, 2}));

    Built<BaseDef> def(node);

    EXPECT_EQ(def.result, 1);
    EXPECT_STREQ(def->GetName(), "Walk");
    EXPECT_EQ(def->GetID(), 12u);
    EXPECT_EQ(def->GetParentID(), 4u);
    EXPECT_EQ(def->GetExitConnector(), 8u);
    EXPECT_EQ(static_cast<int>(def->GetBuilderType()), 10);
    EXPECT_STREQ(def->GetScriptName(), "walk.lua");
    EXPECT_EQ(ChildIds(*def), (Ids{3, 1, 2}));
    EXPECT_EQ(def->GetIndex(), -1);
    EXPECT_EQ(log.Take(), (Lines{CreatedDef("Walk")}));
}

TEST(BaseDef, NeedsNoneOfItsOptionalMembers)
{
    LogRecorder log;
    Arena alloc;
    OpenDef def;
    const ParsedJson node(PlainNode("Walk", 12));

    EXPECT_EQ(def.Init(*node, &alloc), 1);

    EXPECT_EQ(static_cast<int>(def.GetBuilderType()), 0);
    EXPECT_EQ(def.GetScriptName(), nullptr);
    EXPECT_EQ(def.GetNumChildren(), 0u);
    EXPECT_EQ(def.childIds, nullptr);
    EXPECT_EQ(def.GetExitConnector(), 0u);
    EXPECT_EQ(def.numAttribs, 0u);
    EXPECT_EQ(alloc.used, 0u);
    EXPECT_EQ(log.Take(), (Lines{CreatedDef("Walk")}));
}

TEST(BaseDef, ReadsANameAndIdsThatAreMissingOrOfAnotherTypeAsNullAndZero)
{
    for (const JsonObject& node :
         {JsonObject(),
          JsonObject().Set(JSON_Name, 5).Set(JSON_ID, "7").Set(JSON_ParentID, Json::Null())})
    {
        LogRecorder log;
        Built<BaseDef> def(node);

        EXPECT_EQ(def.result, 1) << node.Text();
        EXPECT_EQ(def->GetName(), nullptr) << node.Text();
        EXPECT_EQ(def->GetID(), 0u) << node.Text();
        EXPECT_EQ(def->GetParentID(), 0u) << node.Text();
        EXPECT_EQ(log.Take(), (Lines{CreatedDef("")})) << node.Text();
    }
}

TEST(BaseDef, TakesTheLowBitsOfANumberAsItsId)
{
    LogRecorder log;
    const double real = 12.25;
    unsigned long long bits = 0;
    std::memcpy(&bits, &real, sizeof(bits));

    Built<BaseDef> large(JsonObject{}.Set(JSON_ID, Json::Raw("4294967303")));
    Built<BaseDef> negative(JsonObject{}.Set(JSON_ID, -2));
    Built<BaseDef> fraction(JsonObject{}.Set(JSON_ID, real));

    EXPECT_EQ(large->GetID(), 7u);
    EXPECT_EQ(negative->GetID(), 0xfffffffeu);
    EXPECT_EQ(fraction->GetID(), static_cast<unsigned int>(bits & 0xffffffffu));
}

TEST(BaseDef, PointsIntoTheDocumentForItsName)
{
    LogRecorder log;

    Built<BaseDef> def(PlainNode("Walk", 1));

    EXPECT_EQ(def->GetName(), (*def.node)[DURMBaseLib::GetJsonName(JSON_Name)].GetString());
}

TEST(BaseDef, GivesNoBuilderNumberForAnUnknownBuilder)
{
    LogRecorder log;

    Built<BaseDef> def(PlainNode("Walk", 1).Set(JSON_BuilderType, "no such builder"));

    EXPECT_EQ(def.result, 1);
    EXPECT_EQ(static_cast<int>(def->GetBuilderType()), 0);
}

TEST(BaseDef, HasNoScriptNameWhenThatIsEmpty)
{
    LogRecorder log;

    Built<BaseDef> def(PlainNode("Walk", 1).Set(JSON_ScriptName, ""));

    EXPECT_EQ(def.result, 1);
    EXPECT_EQ(def->GetScriptName(), nullptr);
    EXPECT_EQ(def.alloc.used, sizeof(BaseDef));
}

TEST(BaseDef, CopiesItsScriptNameIntoTheArenaWithTwoZeroBytes)
{
    LogRecorder log;
    constexpr unsigned int need = sizeof(BaseDef) + 3 + 2;

    Built<BaseDef> def(PlainNode("Walk", 1).Set(JSON_ScriptName, "run"), need);

    ASSERT_EQ(def.result, 1);
    EXPECT_EQ(static_cast<const void*>(def->GetScriptName()),
              static_cast<const void*>(def.alloc.block + sizeof(BaseDef)));
    EXPECT_EQ(std::memcmp(def->GetScriptName(), "run\0\0", 5), 0);
    EXPECT_EQ(def.alloc.used, need);
    EXPECT_EQ(def.alloc.tracked.size(), 1u);
}

TEST(BaseDef, SucceedsWithAnEmptyArrayOfChildren)
{
    LogRecorder log;
    Arena alloc;
    OpenDef def;
    const ParsedJson node(PlainNode("Walk", 1).Set(JSON_Children, Json::Raw("[]")));

    EXPECT_EQ(def.Init(*node, &alloc), 1);

    EXPECT_EQ(def.GetNumChildren(), 0u);
    EXPECT_EQ(def.childIds, nullptr);
    EXPECT_EQ(alloc.used, 0u);
}

TEST(BaseDef, HasNoScriptNameAfterASecondInitWithoutOne)
{
    for (const char* second : {static_cast<const char*>(nullptr), ""})
    {
        LogRecorder log;
        Arena alloc;
        OpenDef def;
        const ParsedJson first(PlainNode("Walk", 1).Set(JSON_ScriptName, "walk.lua"));
        JsonObject without = PlainNode("Run", 2);
        if (second != nullptr)
        {
            without.Set(JSON_ScriptName, second);
        }
        const ParsedJson other(without);
        ASSERT_EQ(def.Init(*first, &alloc), 1);

        EXPECT_EQ(def.Init(*other, &alloc), 1);

        EXPECT_STREQ(def.GetName(), "Run");
        EXPECT_EQ(def.GetScriptName(), nullptr);
    }
}

TEST(BaseDef, HasNoNameNorIdsAfterASecondInitWithoutThem)
{
    LogRecorder log;
    Arena alloc;
    OpenDef def;
    const ParsedJson first(PlainNode("Walk", 1, 4));
    const ParsedJson second(JsonObject{});
    ASSERT_EQ(def.Init(*first, &alloc), 1);

    EXPECT_EQ(def.Init(*second, &alloc), 1);

    EXPECT_EQ(def.GetName(), nullptr);
    EXPECT_EQ(def.GetID(), 0u);
    EXPECT_EQ(def.GetParentID(), 0u);
}

TEST(BaseDef, KeepsOptionalMembersThatASecondInitDoesNotHave)
{
    LogRecorder log;
    Arena alloc;
    auto* def = alloc.New<OpenDef>();
    const ParsedJson first(PlainNode("Walk", 1)
                               .Set(JSON_ExitConnector, 8)
                               .Set(JSON_BuilderType, BuilderName(10))
                               .Set(JSON_Attributes, Json::Array({Attribute("a", "int", 5)}))
                               .Set(JSON_Children, Json::Array({3, 1})));
    const ParsedJson second(PlainNode("Run", 2));
    ASSERT_EQ(def->Init(*first, &alloc), 1);

    EXPECT_EQ(def->Init(*second, &alloc), 1);

    EXPECT_EQ(def->GetExitConnector(), 8u);
    EXPECT_EQ(static_cast<int>(def->GetBuilderType()), 10);
    EXPECT_NE(def->GetAttrib("a"), nullptr);
    EXPECT_EQ(def->numAttribs, 1u);
    EXPECT_EQ(ChildIds(*def), (Ids{3, 1}));
}

TEST(BaseDef, KeepsItsChildIdsInTheArenaAlsoBehindAnOddScriptName)
{
    LogRecorder log;
    const JsonObject node =
        PlainNode("Walk", 1).Set(JSON_ScriptName, "abc").Set(JSON_Children, Json::Array({9, 8, 7}));

    Built<BaseDef> def(node);

    EXPECT_EQ(def.result, 1);
    EXPECT_STREQ(def->GetScriptName(), "abc");
    EXPECT_EQ(ChildIds(*def), (Ids{9, 8, 7}));
}

TEST(BaseDef, HasNoAttributesWhenTheirArrayIsNoArray)
{
    LogRecorder log;
    Arena alloc;
    OpenDef def;
    const ParsedJson node(PlainNode("Walk", 1).Set(JSON_Attributes, 5));

    EXPECT_EQ(def.Init(*node, &alloc), 1);

    EXPECT_TRUE(def.attribs.empty());
    EXPECT_EQ(def.numAttribs, 0u);
    EXPECT_EQ(log.Take(), (Lines{ErrorBreak("vell::BaseDef::Init_Attribs"), CreatedDef("Walk")}));
}

TEST(BaseDef, SharesEverythingButTheAttributeMapWithACopy)
{
    LogRecorder log;
    Lines events;
    Arena alloc;
    const ParsedJson node(PlainNode("Walk", 12, 4)
                              .Set(JSON_ExitConnector, 8)
                              .Set(JSON_ScriptName, "s")
                              .Set(JSON_Children, Json::Array({3, 1}))
                              .Set(JSON_Attributes, Json::Array({Attribute("a", "int", 5)})));
    auto* source = alloc.New<OpenDef>();
    ASSERT_EQ(source->Init(*node, &alloc), 1);
    source->SetIndex(3);
    source->SetType(DefTypeGeneric);
    source->SetFlags(1);
    source->RegisterExecute(new TestAction("run", events));

    OpenDef copy(*source); // releases what both hold at its end

    EXPECT_EQ(copy.GetName(), source->GetName());
    EXPECT_EQ(copy.GetID(), 12u);
    EXPECT_EQ(copy.GetParentID(), 4u);
    EXPECT_EQ(copy.GetExitConnector(), 8u);
    EXPECT_EQ(copy.GetIndex(), 3);
    EXPECT_EQ(copy.GetType(), DefTypeGeneric);
    EXPECT_EQ(copy.GetFlags(), 1u);
    EXPECT_EQ(copy.GetScriptName(), source->GetScriptName());
    EXPECT_EQ(copy.childIds, source->childIds);
    EXPECT_EQ(copy.GetNumChildren(), 2u);
    EXPECT_EQ(copy.GetActions(), source->GetActions());
    EXPECT_EQ(copy.numExecute, 1u);
    EXPECT_EQ(copy.GetKVTable(), source->GetKVTable());
    EXPECT_EQ(copy.attribs, source->attribs);
    copy.attribs.clear();
    EXPECT_EQ(source->attribs.size(), 1u);
}

TEST(BaseDef, TakesOverAnAttributeMapByAssignment)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson one(PlainNode("One", 1).Set(
        JSON_Attributes, Json::Array({Attribute("a", "int", 1), Attribute("b", "int", 2)})));
    const ParsedJson two(
        PlainNode("Two", 2).Set(JSON_Attributes, Json::Array({Attribute("c", "int", 3)})));
    auto* source = alloc.New<OpenDef>();
    auto* target = alloc.New<OpenDef>();
    ASSERT_EQ(source->Init(*one, &alloc), 1);
    ASSERT_EQ(target->Init(*two, &alloc), 1);

    *target = *source;

    EXPECT_STREQ(target->GetName(), "One");
    EXPECT_EQ(target->attribs, source->attribs);
    EXPECT_EQ(target->GetAttrib("c"), nullptr);
    EXPECT_EQ(target->GetKVTable(), source->GetKVTable());
}

TEST(BaseDef, KeepsItsAttributesWhenAssignedToItself)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson node(
        PlainNode("One", 1).Set(JSON_Attributes, Json::Array({Attribute("a", "int", 1)})));
    auto* def = alloc.New<OpenDef>();
    ASSERT_EQ(def->Init(*node, &alloc), 1);
    BaseDef& same = *def;

    *def = static_cast<OpenDef&>(same);

    EXPECT_NE(def->GetAttrib("a"), nullptr);
}

TEST(BaseDef, ReleasesActionsChildrenAndTableInUninit)
{
    LogRecorder log;
    Lines events;
    Arena alloc;
    const ParsedJson node(PlainNode("Walk", 12).Set(JSON_Children, Json::Array({3, 1})));
    auto* def = alloc.New<OpenDef>();
    ASSERT_EQ(def->Init(*node, &alloc), 1);
    const Tessel::KVTable table = def->GetKVTable();
    def->RegisterEnter(new TestAction("enter", events));
    def->RegisterExit(new TestAction("exit", events));
    def->RegisterExecute(new TestAction("run 1", events));
    def->RegisterExecute(new TestAction("run 2", events));
    events.clear();

    def->Uninit();

    EXPECT_EQ(events, (Lines{"delete run 1", "delete run 2", "delete exit", "delete enter"}));
    EXPECT_EQ(def->GetActions(), nullptr);
    EXPECT_EQ(def->GetEnterActions(), nullptr);
    EXPECT_EQ(def->GetExitActions(), nullptr);
    EXPECT_EQ(def->numExecute + def->numEnter + def->numExit, 0u);
    EXPECT_EQ(def->GetNumChildren(), 0u);
    EXPECT_NE(def->childIds, nullptr);
    EXPECT_EQ(Tessel::GetTableName(table), nullptr);
    EXPECT_EQ(def->GetKVTable(), table);
}

TEST(BaseDef, MayBeUninitialisedTwice)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson node(
        PlainNode("Walk", 12).Set(JSON_Attributes, Json::Array({Attribute("a", "int", 1)})));
    auto* def = alloc.New<OpenDef>();
    ASSERT_EQ(def->Init(*node, &alloc), 1);
    log.Clear();

    def->Uninit();
    def->Uninit();

    EXPECT_EQ(log.Take(), Lines{});
}

TEST(BaseDef, ClosesItsTableWhenDestroyed)
{
    auto def = std::make_unique<BaseDef>("Walk", 1, 0);
    def->InitKVTable();
    const Tessel::KVTable table = def->GetKVTable();
    ASSERT_STREQ(Tessel::GetTableName(table), "baseDef");

    def.reset();

    EXPECT_EQ(Tessel::GetTableName(table), nullptr);
}

TEST(BaseDefTable, IsMadeByInitWithAnEmptyTableOfAttributes)
{
    LogRecorder log;

    Built<BaseDef> def(PlainNode("Walk", 12));

    const Tessel::KVTable table = def->GetKVTable();
    EXPECT_STREQ(Tessel::GetTableName(table), "baseDef");
    EXPECT_EQ(table->GetKeyCount(), 1u);
    ASSERT_TRUE(table->GetTable("attribs"));
    EXPECT_EQ(table->GetTable("attribs")->GetKeyCount(), 0u);
}

TEST(BaseDefTable, IsMadeByInitForAHostsClassThatCallsItselfACondition)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson node(PlainNode("Own", 12));
    auto* def = alloc.New<OpenDef>();
    def->SetType(DefTypeCondition);

    EXPECT_EQ(def->Init(*node, nullptr), 0);
    EXPECT_STREQ(Tessel::GetTableName(def->kvTable), "baseDef");
    EXPECT_EQ(def->Init(*node, &alloc), 1);

    EXPECT_STREQ(Tessel::GetTableName(def->kvTable), "baseDef");
    EXPECT_TRUE(static_cast<bool>(def->kvTable->GetTable("attribs")));
}

TEST(BaseDefTable, IsReplacedByInitAndTheOldOneStaysOpen)
{
    LogRecorder log;
    Arena alloc;
    const ParsedJson node(PlainNode("Walk", 12));
    auto* def = alloc.New<OpenDef>();
    def->CreateKVTable();
    const Tessel::KVTable old = def->GetKVTable();

    def->Init(*node, &alloc);

    EXPECT_NE(def->GetKVTable(), old);
    EXPECT_STREQ(Tessel::GetTableName(old), "baseDef");
}

TEST(BaseDefTable, TakesTheIdTwice)
{
    OpenDef def("Walk", 12, 0);

    EXPECT_EQ(def.InitKVTable(), 1);

    const Tessel::KVTable table = def.GetKVTable();
    EXPECT_EQ(ReadTable(table, "id"), 12u);
    EXPECT_EQ(ReadTable(table->GetTable("attribs"), "id"), 12u);
    EXPECT_EQ(table->FindValue("id")->GetValueType(), Tessel::ValueType_UInt);
    EXPECT_EQ(table->FindValue("name"), nullptr);
}

TEST(BaseDefTable, IsKeptByInitKVTable)
{
    OpenDef def("Walk", 12, 0);
    EXPECT_EQ(def.CreateKVTable(), 1);
    const Tessel::KVTable table = def.GetKVTable();

    def.InitKVTable();

    EXPECT_EQ(def.GetKVTable(), table);
}

TEST(BaseDefTable, GetsItsIdAlsoWhereTheAttributesAreGone)
{
    OpenDef def("Walk", 12, 0);
    def.CreateKVTable();
    Tessel::CloseTable(def.GetKVTable()->GetTable("attribs"));

    EXPECT_EQ(def.InitKVTable(), 1);

    EXPECT_EQ(ReadTable(def.GetKVTable(), "id"), 12u);
}

TEST(BaseDefTable, ShowsTheNameOfADynamicNodeOnly)
{
    OpenDef plain("Walk", 1, 0);
    OpenDef asked("Run", 2, 0);
    plain.InitKVTable();
    asked.InitKVTable();

    EXPECT_EQ(plain.TabSetDynamic(0), 1);
    EXPECT_EQ(asked.TabSetDynamic(3), 1);

    EXPECT_EQ(plain.GetKVTable()->FindValue("dynamic")->GetValueType(), Tessel::ValueType_Int);
    EXPECT_EQ(plain.GetKVTable()->GetInt("dynamic"), 0);
    EXPECT_EQ(plain.GetKVTable()->FindValue("name"), nullptr);
    EXPECT_EQ(asked.GetKVTable()->GetInt("dynamic"), 3);
    EXPECT_STREQ(asked.GetKVTable()->GetString("name"), "Run");
}

TEST(BaseDefTable, IsNotNeededForItsOperations)
{
    OpenDef def("Walk", 1, 0);

    EXPECT_EQ(def.TabSetDynamic(1), 1);
    EXPECT_EQ(def.TabSetName(), 0);
    EXPECT_EQ(def.DestroyKVTable(), 1);
    EXPECT_EQ(def.UninitKVTable(), 1);
    EXPECT_FALSE(def.GetKVTable());
}

TEST(BaseDefTable, TakesTheNameWithTheResultOfTheWrite)
{
    OpenDef named("Walk", 1, 0);
    OpenDef nameless(nullptr, 1, 0);
    named.CreateKVTable();
    nameless.CreateKVTable();

    EXPECT_NE(named.TabSetName(), 0);
    EXPECT_EQ(nameless.TabSetName(), 0);

    EXPECT_STREQ(named.GetKVTable()->GetString("name"), "Walk");
}

TEST(BaseDefTable, KeepsItsHandleWhenDestroyed)
{
    OpenDef def("Walk", 1, 0);
    def.CreateKVTable();
    const Tessel::KVTable table = def.GetKVTable();

    EXPECT_EQ(def.DestroyKVTable(), 1);

    EXPECT_EQ(def.GetKVTable(), table);
    EXPECT_EQ(Tessel::GetTableName(table), nullptr);
    EXPECT_EQ(def.DestroyKVTable(), 1);
}

} // namespace vell::test
