// VELL: data-driven hierarchical state machines.
// tests/parameters/ParameterSlotTest.cpp: parameters that keep the value which the tree shows,
// beside others that write it by key.
#include <vell/Factories.h>
#include <vell/Parameters.h>

#include "parameters/ParameterTable.h"
#include "tests/model/Random.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LoadedParameters.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/SmallDocument.h"
#include "tests/support/TestMachine.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

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
        std::size_t deed; ///< what it does when it hears of a write, in `kReactions`
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

    void Listen(unsigned int index, int number, bool toTable)
    {
        const std::size_t deed = static_cast<std::size_t>(number) % kReactionCount;
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
            if (seen.insert(Bits(Table(i))).second)
            {
                tables.emplace_back(Table(i), Table(i)->FindValue("value"));
            }
        }
        for (const auto& table : tables)
        {
            ShowTable(table.first, table.second);
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

    void ShowThrown()
    {
        lines << "thrown\n";
    }

    bool byKey;
    LoadedParameters loaded;
    std::list<Listener> listeners;

private:
    using Reaction = void (*)(Side& side, const Listener& listener, Tessel::KVTable table);
    static constexpr std::size_t kReactionCount = 14;
    static const Reaction kReactions[kReactionCount];

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
        kReactions[listener.deed](side, listener, table);
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

    /// Shows a table that a parameter has or had, by the value that a tool kept.
    void ShowTable(Tessel::KVTable table, const Tessel::KVValue* value)
    {
        if (value == nullptr || Tessel::GetTableName(table) == nullptr)
        {
            return;
        }
        EXPECT_EQ(table->FindValue("value"), value);
        const char* text = value->GetStringValue();
        Tessel::Float2 two{};
        const int isTwo = value->GetFloat2Value(&two);
        lines << "kept " << value->GetValueType() << " " << value->GetIntValue() << " "
              << value->GetUIntValue() << " " << value->GetFloatValue() << " "
              << (text == nullptr ? "-" : text) << " " << isTwo << " " << two.x << "\n";
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
    std::set<std::uintptr_t> seen;
    std::vector<std::pair<Tessel::KVTable, const Tessel::KVValue*>> tables; ///< all of `seen`
};

const Side::Reaction Side::kReactions[] = {
    [](Side&, const Listener&, Tessel::KVTable) {},
    [](Side& side, const Listener& listener, Tessel::KVTable)
    {
        side.SetValue(listener.parameter, listener.number);
    },
    [](Side&, const Listener& listener, Tessel::KVTable table)
    {
        const Tessel::KVListener own{const_cast<Listener*>(&listener), Hear};
        table->RemoveValueListener("value", &own);
    },
    [](Side&, const Listener& listener, Tessel::KVTable table)
    {
        table->SetInt("value", listener.number, 1);
    },
    [](Side& side, const Listener& listener, Tessel::KVTable)
    {
        side.SetValue((listener.parameter + 1) % 5, listener.number);
    },
    [](Side&, const Listener&, Tessel::KVTable table)
    {
        table->SetString("value", "a text that is longer than an entry", 1);
    },
    [](Side&, const Listener&, Tessel::KVTable)
    {
        throw 1;
    },
    [](Side& side, const Listener& listener, Tessel::KVTable)
    {
        side.Unlisten(listener.parameter);
        side.SetValue(listener.parameter, listener.number);
    },
    [](Side& side, const Listener& listener, Tessel::KVTable)
    {
        side.Listen(listener.parameter, 0, false);
    },
    [](Side& side, const Listener& listener, Tessel::KVTable)
    {
        side.Listen(listener.parameter, 0, true);
    },
    [](Side& side, const Listener& listener, Tessel::KVTable)
    {
        side.Parameter(listener.parameter).UnInitKVTableListener();
        side.SetValue(listener.parameter, listener.number);
    },
    [](Side& side, const Listener& listener, Tessel::KVTable)
    {
        side.Parameter(listener.parameter).SetSyncState(0);
        side.SetValue(listener.parameter, listener.number);
    },
    [](Side& side, const Listener& listener, Tessel::KVTable)
    {
        static_cast<BaseDef&>(side.Parameter(listener.parameter)) =
            side.Parameter((listener.parameter + 1) % 5);
    },
    [](Side&, const Listener&, Tessel::KVTable table)
    {
        Tessel::CloseTable(table);
    },
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
         side.Listen(index, number, false);
     }},
    {"a tool listens to the table",
     [](Side& side, unsigned int index, int number)
     {
         side.Listen(index, number, true);
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
    {"a parameter takes over what every node has, from one of any type",
     [](Side& side, unsigned int index, int number)
     {
         static_cast<BaseDef&>(side.Parameter(index)) =
             side.Parameter(static_cast<unsigned int>(number) % 5);
     }},
    {"the keys of the table are written again",
     [](Side& side, unsigned int index, int)
     {
         side.Parameter(index).InitKVTable();
     }},
    {"the table is uninitialised",
     [](Side& side, unsigned int index, int)
     {
         side.Parameter(index).UninitKVTable();
     }},
    {"the host says that a write is under way, or is not",
     [](Side& side, unsigned int index, int number)
     {
         side.Parameter(index).SetSyncState(number % 3 == 0 ? 2 : 0);
     }},
};

/// These end what can happen, so they happen seldom.
constexpr Deed kEnds[] = {
    {"a copy listens for a while, and closes the table",
     [](Side& side, unsigned int index, int number)
     {
         ParameterFloatDef copy(dynamic_cast<ParameterFloatDef&>(side.Parameter(index % 2)));
         copy.InitKVTableListener();
         copy.SetValue(static_cast<float>(number));
         side.SetValue(index % 2, number + 1);
         copy.UnInitKVTableListener();
         side.SetValue(index % 2, number + 2);
     }},
    {"a copy is set, and closes the table",
     [](Side& side, unsigned int index, int number)
     {
         ParameterFloatDef copy(dynamic_cast<ParameterFloatDef&>(side.Parameter(index % 2)));
         copy.SetValue(static_cast<float>(number));
     }},
    {"a parameter is uninitialised",
     [](Side& side, unsigned int index, int)
     {
         side.Parameter(index).Uninit();
     }},
    {"a parameter is taken in again, by another name and id",
     [](Side& side, unsigned int index, int number)
     {
         static const char* const names[] = {"a", "b", "c", "d"};
         side.Parameter(index).SetID(static_cast<unsigned int>(100 + number));
         side.Parameter(index).SetName(names[number % 4]);
         side.loaded.table.AddParameter(&side.Parameter(index));
     }},
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

void Act(const Deed& deed, Side& side, unsigned int index, int number)
{
    try
    {
        deed.act(side, index, number);
    }
    catch (int)
    {
        side.ShowThrown();
    }
}

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
            const Deed deed = random.Chance(4) ? random.PickFrom(kEnds) : random.PickFrom(kDeeds);
            const auto index = static_cast<unsigned int>(random.Below(std::size(kNames)));
            const int number = random.Between(0, 27);
            Act(deed, side, index, number);
            Act(deed, byKey, index, number);
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

namespace
{

constexpr const char* kSpeed = "speed";

DocumentBuilder SpeedDocument()
{
    DocumentBuilder document = SmallDocument();
    document.Parameter(FloatParameter(kSpeed, 0.5))
        .Parameter(VectorParameter(6, "turn", "1,2,3,4"));
    return document;
}

} // namespace

TEST(ParameterSlot, LeavesTheLastValueInTheTablesOfAMachineThatIsCreatedAgain)
{
    LogRecorder log;
    TestMachine machine(SpeedDocument());
    ASSERT_EQ(machine.Init(), 1);
    IParameterTable& parameters = *machine.GetParameterTable();
    auto* speed = dynamic_cast<ParameterFloatDef*>(parameters.FindParameter(kSpeed));
    auto* turn = dynamic_cast<ParameterFloat4Def*>(parameters.FindParameter("turn"));
    IParameterFloatDef* late = nullptr;
    ASSERT_EQ(parameters.CreateFloatParameter("late", 1.0f, &late), 1);
    for (const float value : {3.0f, 4.0f})
    {
        speed->SetValue(value);
        turn->SetValue({value, value, value, value});
        late->SetValue(value);
    }
    const Tessel::KVTable table = speed->GetKVTable();
    const Tessel::KVTable ofTurn = turn->GetKVTable();
    const Tessel::KVValue* kept = table->FindValue("value");

    machine.Create();

    EXPECT_EQ(table->GetFloat("value"), 4.0f);
    EXPECT_EQ(kept->GetFloatValue(), 4.0f);
    Tessel::Float4 four{};
    EXPECT_EQ(ofTurn->GetFloat4("value", &four), 1);
    EXPECT_EQ(four.w, 4.0f);
    table->SetFloat("value", 8.0f, 1);
    table->GetTableListener();
    table->GetValueListener("value");
    EXPECT_EQ(kept->GetFloatValue(), 8.0f);
    late->SetValue(9.0f);
    EXPECT_EQ(late->GetValue(), 9.0f);
    machine.Init();
    EXPECT_EQ(table->GetFloat("value"), 8.0f);
}

TEST(ParameterSlot, OfAMachineThatIsDeletedWithoutUninitIsReleased)
{
    LogRecorder log;
    const std::string text = SpeedDocument().Text();
    const Tessel::KVTable tool = Tessel::CreateTable("tool");
    Tessel::KVTable table;
    {
        const std::unique_ptr<IHSM> machine(CreateHSMJson(text.c_str()));
        ASSERT_EQ(machine->Init(), 1);
        auto* speed =
            dynamic_cast<ParameterFloatDef*>(machine->GetParameterTable()->FindParameter(kSpeed));
        speed->SetValue(3.0f);
        speed->SetValue(4.0f);
        table = speed->GetKVTable();
        tool->AttachTable("speed", table, 1);
        EXPECT_EQ(tool->GetTable("speed")->GetFloat("value"), 4.0f);
    }

    EXPECT_FALSE(tool->GetTable("speed"));
    EXPECT_EQ(table->GetFloat("value"), 0.0f);
    Tessel::CloseTable(tool);
}

} // namespace vell::test
