// VELL: data-driven hierarchical state machines.
// tests/states/SMStateAttribTest.cpp: attributes as a state gives and takes them.
#include "definitions/AttribDefs.h"
#include "tests/support/Scene.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vell::test
{
namespace
{

/// An activated state whose definition has an attribute of each type.
class SMStateAttrib : public testing::Test
{
protected:
    SMStateAttrib() : scene(Document()), state(*scene.machine.ActivateState(10, 0.0f))
    {
        scene.log.Clear();
    }

    static DocumentBuilder Document()
    {
        return DocumentBuilder().Start(10).Node(
            Generic("Stand", 10)
                .Set(JSON_Attributes,
                     Json::Array({Attribute("on", "bool", true), Attribute("count", "int", -7),
                                  Attribute("rate", "double", 1.5),
                                  Attribute("two", "QVector2D", "1,2"),
                                  Attribute("three", "QVector3D", "1,2,3"),
                                  Attribute("four", "QVector4D", "1,2,3,4"),
                                  Attribute("text", "QString", "hello")})));
    }

    template <class T>
    const T& Attrib(const char* name)
    {
        return *dynamic_cast<T*>(state.GetAttribBase(name));
    }

    Scene scene;
    SMState& state;
};

/// An attribute of a host's class, which says that it is a bool.
class HostAttrib : public AttribBase
{
public:
    HostAttrib() : AttribBase(DURMBaseLib::PARAM_Bool)
    {
    }
};

/// A definition that takes an attribute of any class.
class AttributedDef : public BaseDef
{
public:
    void Add(const char* attribName, AttribBase& attrib)
    {
        attribs.emplace(attribName, &attrib);
    }
};

} // namespace

TEST_F(SMStateAttrib, IsFoundByItsNameWithoutALine)
{
    SMState bare;

    ASSERT_NE(state.GetAttribBase("count"), nullptr);
    EXPECT_STREQ(state.GetAttribBase("count")->GetName(), "count");
    EXPECT_EQ(state.GetAttribBase("none"), nullptr);
    EXPECT_EQ(bare.GetAttribBase("count"), nullptr);
    EXPECT_EQ(scene.log.Take(), Lines{});
}

TEST_F(SMStateAttrib, TakesAValueOfItsType)
{
    EXPECT_EQ(state.SetAttrib("text", "bye"), 1);
    EXPECT_EQ(state.SetAttrib("count", 12), 1);
    EXPECT_EQ(state.SetAttrib("rate", 0.25f), 1);
    EXPECT_EQ(state.SetAttrib("on", false), 1);
    EXPECT_EQ(state.SetAttrib("four", Tessel::Float4{5, 6, 7, 8}), 1);
    EXPECT_EQ(state.SetAttrib("three", Tessel::Float3{5, 6, 7}), 1);
    EXPECT_EQ(state.SetAttrib("two", Tessel::Float2{5, 6}), 1);

    EXPECT_STREQ(Attrib<AttribDefString>("text").buffer, "bye");
    EXPECT_EQ(Attrib<AttribDefInteger>("count").value, 12);
    EXPECT_EQ(Attrib<AttribDefFloat>("rate").value, 0.25f);
    EXPECT_FALSE(Attrib<AttribDefBool>("on").value);
    EXPECT_EQ(Attrib<AttribDefFloat4>("four").value.w, 8.0f);
    EXPECT_EQ(Attrib<AttribDefFloat3>("three").value.z, 7.0f);
    EXPECT_EQ(Attrib<AttribDefFloat2>("two").value.y, 6.0f);
}

TEST_F(SMStateAttrib, IgnoresAValueOfAnotherTypeAndSaysOne)
{
    EXPECT_EQ(state.SetAttrib("count", 3.5f), 1);

    EXPECT_EQ(Attrib<AttribDefInteger>("count").value, -7);
    EXPECT_EQ(scene.log.Take(), Lines{});
}

TEST_F(SMStateAttrib, ThatIsMissingTakesNothingInSilence)
{
    SMState bare;

    for (SMState* other : {&state, &bare})
    {
        EXPECT_EQ(other->SetAttrib("none", "text"), 0);
        EXPECT_EQ(other->SetAttrib("none", 1), 0);
        EXPECT_EQ(other->SetAttrib("none", 1.0f), 0);
        EXPECT_EQ(other->SetAttrib("none", true), 0);
        EXPECT_EQ(other->SetAttrib("none", Tessel::Float4{}), 0);
        EXPECT_EQ(other->SetAttrib("none", Tessel::Float3{}), 0);
        EXPECT_EQ(other->SetAttrib("none", Tessel::Float2{}), 0);
        EXPECT_EQ(other->SetAttrib("none", static_cast<void*>(nullptr)), 0);
    }
    EXPECT_EQ(scene.log.Take(), Lines{});
}

TEST_F(SMStateAttrib, GenericSetterReportsTheTypeAndKeepsTheValue)
{
    int value = 99;

    EXPECT_EQ(state.SetAttrib("count", static_cast<void*>(&value)), 0);
    EXPECT_EQ(state.SetAttrib("text", static_cast<void*>(nullptr)), 0);

    EXPECT_EQ(scene.log.Take(), (Lines{"3 Attribute name: count of type 2 not defined",
                                       "3 Attribute name: text of type 8 not defined"}));
    EXPECT_EQ(Attrib<AttribDefInteger>("count").value, -7);
}

TEST_F(SMStateAttrib, GivesTheAddressOfATextOnly)
{
    const char* before = "before";
    const char* out = before;
    SMState bare;

    EXPECT_EQ(state.GetAttrib("count", &out), 0);
    EXPECT_EQ(state.GetAttrib("none", &out), 0);
    EXPECT_EQ(bare.GetAttrib("text", &out), 0);
    EXPECT_EQ(out, before);
    EXPECT_EQ(state.GetAttrib("text", &out), 1);
    EXPECT_EQ(out, Attrib<AttribDefString>("text").buffer);
    EXPECT_STREQ(out, "hello");
}

TEST_F(SMStateAttrib, GenericGetterWritesOneByteOfABoolAndFourOfANumber)
{
    unsigned char bytes[8];

    std::memset(bytes, 0x5a, sizeof(bytes));
    EXPECT_EQ(state.GetAttrib("on", static_cast<void*>(bytes)), 1);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[1], 0x5a);

    int count = 0;
    EXPECT_EQ(state.GetAttrib("count", static_cast<void*>(bytes)), 1);
    std::memcpy(&count, bytes, sizeof(count));
    EXPECT_EQ(count, -7);
    EXPECT_EQ(bytes[4], 0x5a);

    float rate = 0.0f;
    EXPECT_EQ(state.GetAttrib("rate", static_cast<void*>(bytes)), 1);
    std::memcpy(&rate, bytes, sizeof(rate));
    EXPECT_EQ(rate, 1.5f);
    EXPECT_EQ(bytes[4], 0x5a);
}

TEST_F(SMStateAttrib, GenericGetterSaysOneAndWritesNothingForATextAndWhatIsMissing)
{
    int out = 123;
    SMState bare;

    EXPECT_EQ(state.GetAttrib("text", static_cast<void*>(&out)), 1);
    EXPECT_EQ(state.GetAttrib("none", static_cast<void*>(&out)), 1);
    EXPECT_EQ(bare.GetAttrib("count", static_cast<void*>(&out)), 1);

    EXPECT_EQ(out, 123);
    EXPECT_EQ(scene.log.Take(), Lines{});
}

TEST_F(SMStateAttrib, GenericGetterSaysOneAndWritesNothingForABoolOfAHostsClass)
{
    HostAttrib attrib;
    AttributedDef def;
    def.Add("on", attrib);
    SMState owner;
    owner.SetDef(&def);
    unsigned char byte = 0x5a;

    EXPECT_EQ(owner.GetAttrib("on", static_cast<void*>(&byte)), 1);

    EXPECT_EQ(byte, 0x5a);
    owner.SetDef(nullptr);
}

TEST_F(SMStateAttrib, GenericGetterSaysZeroAndWritesNothingForVectors)
{
    float out[4] = {9, 9, 9, 9};

    for (const char* name : {"two", "three", "four"})
    {
        EXPECT_EQ(state.GetAttrib(name, static_cast<void*>(out)), 0);
    }

    EXPECT_EQ(out[0], 9.0f);
}

TEST_F(SMStateAttrib, IsAskedForItsTypeTwiceByTheSetterThatSetsNothing)
{
    struct CountingAttrib : AttribBase
    {
        int GetDefaultType() const override
        {
            ++asked;
            return 99;
        }
        mutable int asked = 0;
    } attrib;
    struct OneAttribDef : BaseDef
    {
        AttribBase* GetAttrib(const char*) override
        {
            return attrib;
        }
        AttribBase* attrib = nullptr;
    } def;
    def.attrib = &attrib;
    SMState other;
    other.Init(&def);

    EXPECT_EQ(other.SetAttrib("any", static_cast<void*>(&def)), 0);

    EXPECT_EQ(attrib.asked, 2);
    EXPECT_EQ(scene.log.Take(), (Lines{"3 Attribute name: any of type 99 not defined"}));
}

TEST_F(SMStateAttrib, IsNotWrittenToANullAddress)
{
    EXPECT_EQ(state.GetAttrib("text", static_cast<void*>(nullptr)), 1);
    EXPECT_EQ(state.GetAttrib("count", static_cast<void*>(nullptr)), 0);
    EXPECT_EQ(state.GetAttrib("none", static_cast<void*>(nullptr)), 1);
    EXPECT_EQ(scene.log.Take(), Lines{});
}

} // namespace vell::test
