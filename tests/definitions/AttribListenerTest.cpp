// VELL: data-driven hierarchical state machines.
// tests/definitions/AttribListenerTest.cpp: values of attributes, and tools that write them.
#include <vell/SMState.h>

#include "definitions/AttribDefs.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeValues.h"
#include "tests/support/WriteCounter.h"

#include <gtest/gtest.h>

#include <string>

namespace vell::test
{
namespace
{

using Tessel::Float2;
using Tessel::Float3;
using Tessel::Float4;

/// An attribute that listens to its table.
template <class T>
class Listening : public T
{
public:
    Listening()
    {
        this->InitKVTableListener();
    }

    using T::syncState;

    Tessel::KVTable Table() const
    {
        return this->GetKVTable();
    }
    int ValueType() const
    {
        return Table()->FindValue("value")->GetValueType();
    }
};

/// An attribute base whose table a test may take away.
class OpenAttrib : public AttribBase
{
public:
    using AttribBase::AttribBase;
    using AttribBase::defaultType;
    using AttribBase::kvTable;
    using AttribBase::name;
    using AttribBase::syncState;
};

/// Expects that `value` is kept by its attribute and, in its type, by the tree.
template <class Class, class ValueType>
void ExpectWrittenAndRead(const ValueType& value, int treeType)
{
    Listening<Class> attrib;
    ValueType read{};

    attrib.SetValue(value);

    EXPECT_EQ(attrib.ValueType(), treeType);
    EXPECT_TRUE(AreEqual(InTree<ValueType>(attrib.Table()), value));
    EXPECT_EQ(attrib.GetValue(&read), 1);
    EXPECT_TRUE(AreEqual(read, value));
    EXPECT_EQ(attrib.GetValue(static_cast<ValueType*>(nullptr)), 0);
}

/// Expects that an attribute takes `value` when a tool writes it.
template <class Class, class ValueType>
void ExpectTaken(const ValueType& value)
{
    Listening<Class> attrib;

    WriteByTool(attrib.Table(), value);

    EXPECT_TRUE(AreEqual<ValueType>(attrib.value, value));
    EXPECT_EQ(attrib.syncState, 0);
}

} // namespace

TEST(AttribBase, IsBlankButForItsTable)
{
    OpenAttrib attrib;

    EXPECT_EQ(attrib.GetName(), nullptr);
    EXPECT_EQ(attrib.GetDefaultType(), 0);
    EXPECT_EQ(attrib.syncState, 0);
    EXPECT_STREQ(Tessel::GetTableName(attrib.GetKVTable()), "attribBase");
    EXPECT_EQ(attrib.GetKVTable()->GetKeyCount(), 0u);
}

TEST(AttribBase, IgnoresAllValues)
{
    OpenAttrib attrib;
    int number = 7;
    float real = 7;
    bool flag = true;
    Float2 two{7, 7};
    Float3 three{7, 7, 7};
    Float4 four{7, 7, 7, 7};

    attrib.SetValue("text");
    attrib.SetValue(1);
    attrib.SetValue(1.0f);
    attrib.SetValue(true);
    attrib.SetValue(two);
    attrib.SetValue(three);
    attrib.SetValue(four);

    EXPECT_EQ(attrib.GetValue("text"), 0);
    EXPECT_EQ(attrib.GetValue(&number), 0);
    EXPECT_EQ(attrib.GetValue(&real), 0);
    EXPECT_EQ(attrib.GetValue(&flag), 0);
    EXPECT_EQ(attrib.GetValue(&two), 0);
    EXPECT_EQ(attrib.GetValue(&three), 0);
    EXPECT_EQ(attrib.GetValue(&four), 0);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(real, 7);
    EXPECT_TRUE(flag);
    EXPECT_EQ(four.w, 7);
    EXPECT_EQ(attrib.GetKVTable()->GetKeyCount(), 0u);
}

TEST(AttribBase, KeepsThePointerOfItsNameAndWritesIt)
{
    OpenAttrib attrib;
    const char* const text = "speed";

    attrib.SetName(text);

    EXPECT_EQ(attrib.GetName(), text);
    EXPECT_STREQ(attrib.GetKVTable()->GetString("name"), "speed");
}

TEST(AttribBase, NeedsNoTableForItsName)
{
    OpenAttrib attrib;
    attrib.DestroyKVTable();
    attrib.kvTable = {};

    attrib.SetName("speed");

    EXPECT_STREQ(attrib.GetName(), "speed");
    EXPECT_EQ(attrib.DestroyKVTable(), 1);
}

TEST(AttribBase, KeepsItsHandleWhenItsTableIsClosed)
{
    OpenAttrib attrib;
    const Tessel::KVTable table = attrib.GetKVTable();

    EXPECT_EQ(attrib.DestroyKVTable(), 1);

    EXPECT_EQ(attrib.GetKVTable(), table);
    EXPECT_EQ(Tessel::GetTableName(table), nullptr);
}

TEST(AttribBase, MakesANewTableWhenAsked)
{
    OpenAttrib attrib;
    const Tessel::KVTable old = attrib.GetKVTable();

    EXPECT_EQ(attrib.CreateKVTable(), 1);

    EXPECT_NE(attrib.GetKVTable(), old);
    EXPECT_STREQ(Tessel::GetTableName(attrib.GetKVTable()), "attribBase");
    Tessel::CloseTable(old);
}

TEST(AttribBase, ClosesItsTableWhenDestroyed)
{
    Tessel::KVTable table;
    {
        const OpenAttrib attrib;
        table = attrib.GetKVTable();
    }

    EXPECT_EQ(Tessel::GetTableName(table), nullptr);
}

TEST(AttribBase, SharesItsTableWithACopy)
{
    AttribDefInteger attrib;
    attrib.SetName("speed");
    attrib.SetValue(5);

    const AttribDefInteger copy(attrib);
    AttribDefInteger assigned;
    Tessel::CloseTable(assigned.GetKVTable());
    assigned = attrib;

    EXPECT_EQ(copy.GetKVTable(), attrib.GetKVTable());
    EXPECT_EQ(copy.GetName(), attrib.GetName());
    EXPECT_EQ(copy.GetDefaultType(), 2);
    EXPECT_EQ(copy.value, 5);
    EXPECT_EQ(assigned.GetKVTable(), attrib.GetKVTable());
}

TEST(AttribBase, CannotListenWithoutATableOrToAClosedOne)
{
    LogRecorder log;
    OpenAttrib none;
    none.DestroyKVTable();
    none.kvTable = {};
    OpenAttrib closed;
    closed.DestroyKVTable();
    const std::string refused = ErrorBreak("vell::AttribBase::InitKVTableListener");

    EXPECT_EQ(none.InitKVTableListener(), 0);
    EXPECT_EQ(closed.InitKVTableListener(), 0);
    const std::vector<LogLine> lines = log.TakeRaw();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].text, lines[1].text) << "the statements are two";

    none.InitKVTableListener();
    closed.InitKVTableListener();
    EXPECT_EQ(none.UnInitKVTableListener(), 0);
    EXPECT_EQ(log.Take(),
              (Lines{refused, refused, ErrorBreak("vell::AttribBase::UnInitKVTableListener")}));
}

TEST(AttribBase, StopsListeningWheneverItHasAHandle)
{
    LogRecorder log;
    OpenAttrib never;
    OpenAttrib closed;
    closed.DestroyKVTable();

    EXPECT_EQ(never.UnInitKVTableListener(), 1);
    EXPECT_EQ(closed.UnInitKVTableListener(), 1);

    EXPECT_EQ(log.Take(), Lines{});
}

TEST(AttribValues, AreWrittenToTheTreeAndReadBackInTheirTypeButNotIntoNull)
{
    ExpectWrittenAndRead<AttribDefInteger>(-3, Tessel::ValueType_Int);
    ExpectWrittenAndRead<AttribDefFloat>(0.5f, Tessel::ValueType_Float);
    ExpectWrittenAndRead<AttribDefFloat2>(Float2{1, 2}, Tessel::ValueType_Float2);
    ExpectWrittenAndRead<AttribDefFloat3>(Float3{1, 2, 3}, Tessel::ValueType_Float3);
    ExpectWrittenAndRead<AttribDefFloat4>(Float4{1, 2, 3, 4}, Tessel::ValueType_Float4);
}

TEST(AttribValues, OfABoolAndATextAreWrittenToTheTreeAsAnIntAndAText)
{
    Listening<AttribDefBool> flag;
    Listening<AttribDefString> text;

    flag.SetValue(true);
    text.SetValue("words");

    EXPECT_EQ(flag.Table()->GetInt("value"), 1);
    EXPECT_EQ(flag.ValueType(), Tessel::ValueType_Int);
    EXPECT_STREQ(text.Table()->GetString("value"), "words");
    EXPECT_EQ(text.ValueType(), Tessel::ValueType_Text);
}

TEST(AttribValues, OfAnotherTypeAreNeitherReadNorWritten)
{
    AttribDefFloat real;
    real.SetValue(0.5f);
    int number = 7;
    bool flag = true;

    real.SetValue(3);
    real.SetValue(true);
    real.SetValue("4");
    real.SetValue(Float2{1, 2});

    EXPECT_EQ(real.GetValue(&number), 0);
    EXPECT_EQ(real.GetValue(&flag), 0);
    EXPECT_EQ(number, 7);
    EXPECT_TRUE(flag);
    EXPECT_EQ(real.value, 0.5f);
    EXPECT_EQ(real.GetKVTable()->GetFloat("value"), 0.5f);
}

TEST(AttribValues, OfABoolCannotBeReadThroughTheAttribute)
{
    AttribDefBool flag;
    flag.SetValue(true);
    bool out = false;

    EXPECT_EQ(flag.GetValue(&out), 0);

    EXPECT_FALSE(out);
    EXPECT_TRUE(flag.value);
}

TEST(AttribValues, OfATextCannotBeReadThroughTheAttribute)
{
    AttribDefString text;
    text.SetValue("words");
    const char target[] = "target";

    EXPECT_EQ(text.GetValue(target), 0);

    EXPECT_STREQ(target, "target");
}

TEST(AttribValues, OfATextStartEmptyWithTheirCapacity)
{
    const AttribDefString text;

    EXPECT_STREQ(text.buffer, "");
    EXPECT_EQ(sizeof(text.buffer), 1024u);
    EXPECT_EQ(text.capacity, 0x400u);
    EXPECT_EQ(text.unused, nullptr);
    EXPECT_EQ(text.GetKVTable()->FindValue("value"), nullptr);
}

TEST(AttribValues, OfATextOf1024CharactersLeaveTheOldOne)
{
    AttribDefString text;
    text.SetValue(std::string(1023, 'a').c_str());

    text.SetValue(std::string(1024, 'b').c_str());
    text.SetValue(static_cast<const char*>(nullptr));

    EXPECT_EQ(text.buffer, std::string(1023, 'a'));
    EXPECT_EQ(text.GetKVTable()->GetString("value"), std::string(1023, 'a'));
}

TEST(AttribValues, OfATextClearTheWholeBuffer)
{
    AttribDefString text;
    text.SetValue("a longer text");

    text.SetValue("short");

    EXPECT_EQ(std::string(text.buffer, sizeof(text.buffer)),
              "short" + std::string(sizeof(text.buffer) - 5, '\0'));
}

TEST(AttribValues, OfATextMayLieInItsOwnBuffer)
{
    AttribDefString text;
    text.SetValue("a longer text");

    text.SetValue(text.buffer + 2);

    EXPECT_STREQ(text.buffer, "longer text");
}

TEST(AttribValues, AreWrittenOnceAndDoNotComeBack)
{
    Listening<AttribDefInteger> number;
    WriteCounter writes(number.Table(), "value");

    number.SetValue(5);

    EXPECT_EQ(writes.Take(), 1);
    EXPECT_EQ(number.syncState, 0);
}

TEST(AttribValues, AreStoredButNotWrittenWhileTheAttributeWrites)
{
    Listening<AttribDefInteger> number;
    number.SetValue(5);

    number.syncState = 2;
    number.SetValue(6);

    EXPECT_EQ(number.value, 6);
    EXPECT_EQ(number.Table()->GetInt("value"), 5);
}

TEST(AttribListener, TakesANumberAndVectorsOfTwoAndThreeFloatsOfATool)
{
    ExpectTaken<AttribDefInteger>(-9);
    ExpectTaken<AttribDefFloat>(2.5f);
    ExpectTaken<AttribDefFloat2>(Float2{1, 2});
    ExpectTaken<AttribDefFloat3>(Float3{1, 2, 3});
}

TEST(AttribListener, TakesAnUnsignedOfAToolAndWritesItBackAsAnInt)
{
    Listening<AttribDefInteger> number;

    number.Table()->SetUInt("value", 0xffffffffu, 1);

    EXPECT_EQ(number.value, -1);
    EXPECT_EQ(number.ValueType(), Tessel::ValueType_Int);
}

TEST(AttribListener, ListensOnceHoweverOftenItIsAskedTo)
{
    Listening<AttribDefInteger> number;
    WriteCounter writes(number.Table(), "value");

    EXPECT_EQ(number.InitKVTableListener(), 1);
    number.Table()->SetInt("value", 4, 1);
    EXPECT_EQ(writes.Take(), 2) << "the tool's write, and its own";

    EXPECT_EQ(number.UnInitKVTableListener(), 1);
    number.Table()->SetInt("value", 5, 1);
    EXPECT_EQ(number.value, 4);
}

TEST(AttribListener, WritesAToolsValueBackOnce)
{
    Listening<AttribDefInteger> number;
    WriteCounter writes(number.Table(), "value");

    number.Table()->SetInt("value", 4, 1);

    EXPECT_EQ(writes.Take(), 2);
}

TEST(AttribListener, TakesAnIntOfAToolAsABool)
{
    Listening<AttribDefBool> flag;

    flag.Table()->SetInt("value", 5, 1);
    EXPECT_TRUE(flag.value);
    EXPECT_EQ(flag.Table()->GetInt("value"), 1);
    flag.Table()->SetInt("value", 0, 1);
    EXPECT_FALSE(flag.value);
}

TEST(AttribListener, TakesNoUnsignedOfAToolAsABool)
{
    Listening<AttribDefBool> flag;

    flag.Table()->SetUInt("value", 1, 1);

    EXPECT_FALSE(flag.value);
    EXPECT_EQ(flag.Table()->GetUInt("value"), 1u);
    EXPECT_EQ(flag.ValueType(), Tessel::ValueType_UInt);
}

TEST(AttribListener, LeavesFourFloatsOfAToolInTheTreeAlone)
{
    Listening<AttribDefFloat4> four;
    four.SetValue(Float4{1, 2, 3, 4});
    const Float4 fromTool{5, 6, 7, 8};

    four.Table()->SetFloat4("value", &fromTool, 1);

    Float4 inTree{};
    EXPECT_EQ(four.value.x, 1.0f);
    EXPECT_EQ(four.value.w, 4.0f);
    EXPECT_EQ(four.Table()->GetFloat4("value", &inTree), 1);
    EXPECT_EQ(inTree.w, 8.0f);
}

TEST(AttribListener, TakesATextOfAToolUpTo1023Characters)
{
    Listening<AttribDefString> text;

    text.Table()->SetString("value", std::string(1023, 'a').c_str(), 1);
    EXPECT_EQ(text.buffer, std::string(1023, 'a'));
    text.Table()->SetString("value", std::string(1024, 'b').c_str(), 1);

    EXPECT_EQ(text.buffer, std::string(1023, 'a'));
    EXPECT_EQ(text.Table()->GetString("value"), std::string(1024, 'b'));
}

TEST(AttribListener, LeavesValuesOfAnotherTypeInTheTreeAlone)
{
    Listening<AttribDefInteger> number;
    Listening<AttribDefFloat> real;
    number.SetValue(5);
    real.SetValue(5.0f);

    number.Table()->SetFloat("value", 7.5f, 1);
    real.Table()->SetInt("value", 7, 1);

    EXPECT_EQ(number.value, 5);
    EXPECT_EQ(number.Table()->GetFloat("value"), 7.5f);
    EXPECT_EQ(real.value, 5.0f);
    EXPECT_EQ(real.ValueType(), Tessel::ValueType_Int);
}

TEST(AttribListener, HearsOfNoOtherKeyAndNothingAfterItStoppedListening)
{
    Listening<AttribDefInteger> number;
    number.SetValue(5);

    number.Table()->SetInt("type", 7, 1);
    number.Table()->SetInt("Value", 7, 1);
    EXPECT_EQ(number.value, 5);
    EXPECT_EQ(number.UnInitKVTableListener(), 1);
    number.Table()->SetInt("value", 7, 1);

    EXPECT_EQ(number.value, 5);
}

TEST(AttribListener, LeavesTheListenersOfOthersWhenItStops)
{
    Listening<AttribDefInteger> number;
    WriteCounter writes(number.Table(), "value");

    number.UnInitKVTableListener();
    number.Table()->SetInt("value", 7, 1);

    EXPECT_EQ(writes.Take(), 1);
}

TEST(AttribListener, ActsOnAChangedValueOnlyAndNotWhileItWrites)
{
    Listening<AttribDefInteger> number;
    const Tessel::KVTable source = Tessel::CreateTable("source");
    source->SetInt("value", 7, 1);

    number.OnAttribValueModified(Tessel::opResult_None, source, "value");
    number.OnAttribValueModified(static_cast<Tessel::opResult>(2), source, "value");
    EXPECT_EQ(number.value, 0);
    number.syncState = 2;
    number.OnAttribValueModified(Tessel::opResult_ValueChanged, source, "value");
    EXPECT_EQ(number.value, 0);
    number.syncState = 0;
    number.OnAttribValueModified(Tessel::opResult_ValueChanged, source, "value");

    EXPECT_EQ(number.value, 7);
    EXPECT_EQ(number.Table()->GetInt("value"), 7);
    Tessel::CloseTable(source);
}

TEST(AttribListener, SurvivesATableThatIsNullAndAKeyThatIsNotThere)
{
    Listening<AttribDefInteger> number;

    number.OnAttribValueModified(Tessel::opResult_ValueChanged, {}, "value");
    number.OnAttribValueModified(Tessel::opResult_ValueChanged, number.Table(), "missing");
    number.OnAttribValueModified(Tessel::opResult_ValueChanged, number.Table(), nullptr);

    EXPECT_EQ(number.value, 0);
}

TEST(AttribListener, CarriesAWriteInTheTreeToTheCurrentState)
{
    LogRecorder log;
    StartedMachine machine(DocumentBuilder().Start(10).Node(
        Generic("Stand", 10)
            .Set(JSON_Attributes, Json::Array({Attribute("weight", "double", 1.0),
                                               Attribute("label", "QString", "old")}))));
    const Tessel::KVTable tables =
        machine.kvTable->GetTable("nodeDefTable")->GetTable("10")->GetTable("attribs");

    tables->GetTable("weight")->SetFloat("value", 3.5f, 1);
    tables->GetTable("label")->SetString("value", "new", 1);

    float weight = 0;
    const char* label = nullptr;
    EXPECT_EQ(machine.GetCurrentState()->GetAttrib("weight", &weight), 1);
    EXPECT_EQ(weight, 3.5f);
    EXPECT_EQ(machine.GetAttributeValue("label", &label), 1);
    EXPECT_STREQ(label, "new");
    EXPECT_EQ(machine.SetAttribValue("label", "host"), 1);
    EXPECT_STREQ(tables->GetTable("label")->GetString("value"), "host");
}

TEST(AttribListener, AsksNothingOfAnAttributeThatDoesNotExist)
{
    LogRecorder log;
    StartedMachine machine(DocumentBuilder().Start(10).Node(
        Generic("Stand", 10).Set(JSON_Attributes, Json::Array({Attribute("flag", "bool", true)}))));
    log.Clear();
    int value = 5;
    bool flag = false;

    EXPECT_EQ(machine.SetAttribValue("none", static_cast<void*>(&value)), 0);
    EXPECT_EQ(machine.GetCurrentState()->SetAttrib("none", static_cast<void*>(&value)), 0);
    EXPECT_EQ(machine.GetCurrentState()->GetAttrib("none", static_cast<void*>(&value)), 1);
    EXPECT_EQ(machine.GetCurrentState()->GetAttrib("flag", static_cast<void*>(&flag)), 1);

    EXPECT_EQ(value, 5);
    EXPECT_TRUE(flag);
    EXPECT_EQ(log.Take(), Lines{});
}

} // namespace vell::test
