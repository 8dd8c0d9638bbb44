// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterSlotTest.cpp: parameters that keep the value which the tree shows,
// beside others that write it by key.
#include <vell/Parameters.h>

#include "parameters/ParameterTable.h"
#include "tests/model/Random.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LoadedParameters.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <set>
#include <sstream>

namespace vell::test
{
namespace
{

constexpr const char* kNames[] = {"speed", "other", "stick", "combo", "armed"};
constexpr unsigned int kFirstId = 11;

/// Five parameters with ascending ids that reset each frame.
std::vector<Json> Document()
{
    const JsonObject parameters[] = {FloatParameter(kNames[0], 0.5),
                                     FloatParameter(kNames[1], 0.25),
                                     VectorParameter(4, kNames[2], "3,4"),
                                     IntParameter(kNames[3], 1), BoolParameter(kNames[4], false)};
    std::vector<Json> array;
    for (JsonObject parameter : parameters)
    {
        parameter.Set(JSON_ID, static_cast<int>(kFirstId + array.size()));
        array.push_back(parameter.Set(JSON_ParameterResetEachFrame, true));
    }
    return array;
}

/// The parameters of a machine, with what a tool does to their tables. `isByKey` gives each key
/// "value" one more record, which stays empty: the library then writes by the setters.
class Side
{
public:
    explicit Side(bool isByKey) : byKey(isByKey), loaded(Document())
    {
        HoldUp();
    }

    struct Listener
    {
        Side* side;
        int number;
        int deed; ///< what it does when it hears of a write
        unsigned int parameter;
        int heard = 0;
    };

    ParameterDef& Parameter(unsigned int index)
    {
        return *loaded.table.FindParameter(kFirstId + index);
    }
    Tessel::KVTable Table(unsigned int index)
    {
        return Parameter(index).GetKVTable();
    }

    void SetValue(unsigned int index, int number)
    {
        const auto real = static_cast<float>(number);
        switch (index)
        {
        case 2:
            return dynamic_cast<IParameterAnalogDef&>(Parameter(2)).SetValue({real, 4.0f});
        case 3:
            return dynamic_cast<IParameterIntDef&>(Parameter(3)).SetValue(number);
        case 4:
            return dynamic_cast<IParameterBoolDef&>(Parameter(4)).SetValue(number % 2 != 0);
        default:
            return dynamic_cast<IParameterFloatDef&>(Parameter(index)).SetValue(real);
        }
    }

    void Listen(unsigned int index, int number, int deed, bool toTable)
    {
        Tessel::KVTable table = Table(index);
        Tessel::KVListener* record =
            toTable ? table->GetTableListener() : table->GetValueListener("value");
        if (record != nullptr)
        {
            listeners.push_back(Listener{this, number, deed, index});
            *record = Tessel::KVListener{&listeners.back(), Hear};
        }
    }

    void Unlisten(unsigned int index)
    {
        for (Listener& listener : listeners)
        {
            const Tessel::KVListener record{&listener, Hear};
            Table(index)->RemoveValueListener("value", &record);
        }
    }

    /// What there is to see, with the calls of listeners since the last time.
    std::string Show()
    {
        HoldUp();
        for (unsigned int i = 0; i < std::size(kNames); ++i)
        {
            ShowParameter(i);
        }
        const std::string text = lines.str();
        lines.str("");
        return text;
    }

    void HoldUp()
    {
        for (unsigned int i = 0; byKey && i < std::size(kNames); ++i)
        {
            if (Tessel::GetTableName(Table(i)) != nullptr && heldUp.insert(Bits(Table(i))).second)
            {
                Table(i)->GetValueListener("value");
            }
        }
    }

    bool byKey;
    LoadedParameters loaded;
    std::list<Listener> listeners;

private:
    static std::uintptr_t Bits(Tessel::KVTable table)
    {
        std::uintptr_t bits = 0;
        std::memcpy(&bits, &table, sizeof(bits));
        return bits;
    }

    static int Hear(void* object, Tessel::opResult result, Tessel::KVTable table, const char* key)
    {
        Listener& listener = *static_cast<Listener*>(object);
        Side& side = *listener.side;
        side.lines << listener.number << " hears " << result << " of " << key << ": "
                   << table->GetInt(key) << " state "
                   << side.Parameter(listener.parameter).GetSyncState() << "\n";
        if (++listener.heard > 3)
        {
            return 0;
        }
        const Tessel::KVListener own{object, Hear};
        switch (listener.deed)
        {
        case 1:
            side.SetValue(listener.parameter, listener.number);
            break;
        case 2:
            table->RemoveValueListener("value", &own);
            break;
        case 3:
            table->SetInt("value", listener.number, 1);
            break;
        case 4:
            side.SetValue((listener.parameter + 1) % 5, listener.number);
            break;
        default:
            break;
        }
        return 0;
    }

    void ShowParameter(unsigned int index)
    {
        ParameterDef& parameter = Parameter(index);
        const Tessel::KVTable table = Table(index);
        Tessel::KVValue* value = table->FindValue("value");
        const char* text = table->GetString("value");
        lines << kNames[index] << " " << ShowValue(index) << " state " << parameter.GetSyncState()
              << ", tree " << (value == nullptr ? -1 : value->GetValueType()) << " "
              << table->GetFloat("value") << " " << (text == nullptr ? "-" : text) << "\n";
        Tessel::Float2 two{};
        if (table->GetFloat2("value", &two) != 0)
        {
            lines << two.x << " " << two.y << "\n";
        }
    }

    std::string ShowValue(unsigned int index)
    {
        std::ostringstream text;
        void* value = Parameter(index).GetValuePtr();
        if (index == 3)
        {
            text << *static_cast<int*>(value);
        }
        else if (index == 4)
        {
            text << *static_cast<bool*>(value);
        }
        else
        {
            text << *static_cast<float*>(value);
        }
        return text.str();
    }

    std::ostringstream lines;
    std::set<std::uintptr_t> heldUp;
};

/// What hosts and tools do, each with two numbers that say where and with what.
struct Deed
{
    const char* name;
    void (*act)(Side& side, unsigned int index, int number);
};

template <class Class>
void Assign(Side& side, unsigned int to, unsigned int from)
{
    dynamic_cast<Class&>(side.Parameter(to)) = dynamic_cast<Class&>(side.Parameter(from));
}

constexpr Deed kDeeds[] = {
    {"the host sets a value",
     [](Side& side, unsigned int index, int number)
     {
         side.SetValue(index, number);
     }},
    {"the host sets a value again",
     [](Side& side, unsigned int index, int number)
     {
         side.SetValue(index, number);
         side.SetValue(index, number);
     }},
    {"the host stores a value at its address",
     [](Side& side, unsigned int, int number)
     {
         *static_cast<bool*>(side.Parameter(4).GetValuePtr()) = number % 2 != 0;
     }},
    {"the host sets other defaults",
     [](Side& side, unsigned int, int number)
     {
         dynamic_cast<IParameterBoolDef&>(side.Parameter(4)).SetDefaultValue(number % 2 != 0);
         dynamic_cast<IParameterIntDef&>(side.Parameter(3)).SetDefaultValue(number);
     }},
    {"the frame ends",
     [](Side& side, unsigned int, int)
     {
         side.loaded.table.ResetFrameParameters();
     }},
    {"a tool writes an int",
     [](Side& side, unsigned int index, int number)
     {
         side.Table(index)->SetInt("value", number, 1);
     }},
    {"a tool writes a float",
     [](Side& side, unsigned int index, int number)
     {
         side.Table(index)->SetFloat("value", static_cast<float>(number), 1);
     }},
    {"a tool writes two floats",
     [](Side& side, unsigned int index, int number)
     {
         const Tessel::Float2 two{static_cast<float>(number), 1.0f};
         side.Table(index)->SetFloat2("value", &two, 1);
     }},
    {"a tool writes a text",
     [](Side& side, unsigned int index, int number)
     {
         side.Table(index)->SetString(
             "value", number % 2 == 0 ? "short" : "a text that is longer than an entry", 1);
     }},
    {"a tool puts a table there",
     [](Side& side, unsigned int index, int)
     {
         side.Table(index)->AddTable("value", 1);
     }},
    {"a tool writes another key",
     [](Side& side, unsigned int index, int number)
     {
         side.Table(index)->SetInt("further", number, 1);
     }},
    {"a tool listens to the value",
     [](Side& side, unsigned int index, int number)
     {
         side.Listen(index, number, number % 5, false);
     }},
    {"a tool listens to the table",
     [](Side& side, unsigned int index, int number)
     {
         side.Listen(index, number, number % 2, true);
     }},
    {"a tool no longer listens to the table",
     [](Side& side, unsigned int index, int)
     {
         if (Tessel::KVListener* record = side.Table(index)->GetTableListener())
         {
             *record = Tessel::KVListener{};
         }
     }},
    {"the tools no longer listen to the value",
     [](Side& side, unsigned int index, int)
     {
         side.Unlisten(index);
     }},
    {"the parameter no longer listens",
     [](Side& side, unsigned int index, int)
     {
         side.Parameter(index).UnInitKVTableListener();
     }},
    {"the parameter listens again",
     [](Side& side, unsigned int index, int)
     {
         side.Parameter(index).InitKVTableListener();
     }},
    {"a tool attaches another table in its place",
     [](Side& side, unsigned int index, int)
     {
         const std::string key = std::to_string(kFirstId + index);
         side.loaded.table.GetKVTable()->AddTable(key.c_str(), 1);
     }},
    {"a tool attaches the table elsewhere",
     [](Side& side, unsigned int index, int)
     {
         side.loaded.table.GetKVTable()->AttachTable("elsewhere", side.Table(index), 1);
     }},
    {"a float is assigned",
     [](Side& side, unsigned int index, int)
     {
         Assign<ParameterFloatDef>(side, index % 2, (index + 1) % 2);
     }},
    {"a float takes over what every node has",
     [](Side& side, unsigned int index, int)
     {
         static_cast<BaseDef&>(side.Parameter(index % 2)) = side.Parameter((index + 1) % 2);
     }},
    {"a copy is set",
     [](Side& side, unsigned int index, int number)
     {
         ParameterFloatDef copy(dynamic_cast<ParameterFloatDef&>(side.Parameter(index % 2)));
         copy.SetValue(static_cast<float>(number));
     }},
    {"the host says that a write is under way, or is not",
     [](Side& side, unsigned int index, int number)
     {
         side.Parameter(index).SetSyncState(number % 3 == 0 ? 2 : 0);
     }},
};

/// These end what can happen, so they happen seldom.
constexpr Deed kEnds[] = {
    {"a tool closes the table",
     [](Side& side, unsigned int index, int)
     {
         Tessel::CloseTable(side.Table(index));
     }},
    {"a parameter gets another table, to which it does not listen",
     [](Side& side, unsigned int index, int)
     {
         GenericDocument node;
         node.Parse("{}");
         side.Parameter(index).Init(node, &side.loaded.alloc);
     }},
    {"a parameter gets another table",
     [](Side& side, unsigned int index, int)
     {
         GenericDocument node;
         node.Parse("{}");
         side.Parameter(index).Init(node, &side.loaded.alloc);
         side.Parameter(index).InitKVTable();
     }},
};

} // namespace

TEST(ParameterSlot, IsWrittenWithoutLookUpsAsItIsByKey)
{
    LogRecorder log;
    constexpr unsigned long long kSeeds = 400;
    for (unsigned long long seed = 1; seed <= kSeeds; ++seed)
    {
        SCOPED_TRACE(seed);
        model::Random random(seed);
        Side side(false);
        Side byKey(true);
        for (int step = 0; step < 60; ++step)
        {
            const Deed deed = random.Chance(2) ? random.PickFrom(kEnds) : random.PickFrom(kDeeds);
            const auto index = static_cast<unsigned int>(random.Below(std::size(kNames)));
            const int number = random.Between(0, 9);
            deed.act(side, index, number);
            deed.act(byKey, index, number);
            ASSERT_EQ(side.Show(), byKey.Show()) << "step " << step << ": " << deed.name;
        }
    }
}

TEST(ParameterSlot, IsHeardByAListenerThatATimeLaterTakesTheTablesRecord)
{
    LogRecorder log;
    LoadedParameters loaded(Document());
    auto& speed = dynamic_cast<ParameterFloatDef&>(*loaded.table.FindParameter(kFirstId));
    Tessel::KVListener* kept = speed.GetKVTable()->GetTableListener();
    speed.SetValue(1.0f);
    int heard = 0;

    *kept =
        Tessel::KVListener{&heard, [](void* count, Tessel::opResult, Tessel::KVTable, const char*)
                           {
                               return ++*static_cast<int*>(count);
                           }};
    speed.SetValue(1.0f);

    EXPECT_EQ(heard, 1);
}

TEST(ParameterSlot, LeavesTheLastValueInATableThatItsParameterNoLongerHas)
{
    LogRecorder log;
    LoadedParameters loaded(Document());
    auto& speed = dynamic_cast<ParameterFloatDef&>(*loaded.table.FindParameter(kFirstId));
    auto& other = dynamic_cast<ParameterFloatDef&>(*loaded.table.FindParameter(kFirstId + 1));
    const Tessel::KVTable before = speed.GetKVTable();
    speed.SetValue(4.0f);
    other.SetValue(5.0f);

    static_cast<BaseDef&>(speed) = other;
    speed.SetValue(6.0f);

    EXPECT_EQ(before->GetFloat("value"), 4.0f);
    EXPECT_EQ(other.GetKVTable()->GetFloat("value"), 6.0f);
    EXPECT_EQ(other.GetValue(), 6.0f);
}

TEST(ParameterSlot, OfAParameterThatOutlivesItsMachineIsOnlyAStore)
{
    LogRecorder log;
    ParameterFloatDef* late = nullptr;
    {
        LoadedParameters loaded(Document());
        IParameterFloatDef* created = nullptr;
        ASSERT_EQ(loaded.table.CreateFloatParameter("late", 1.0f, &created), 1);
        late = dynamic_cast<ParameterFloatDef*>(created);
        late->SetValue(2.0f);
        EXPECT_EQ(late->GetKVTable()->GetFloat("value"), 2.0f);
    }

    late->SetValue(3.0f);

    EXPECT_EQ(late->GetValue(), 3.0f);
}

} // namespace vell::test
