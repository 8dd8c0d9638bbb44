// VELL: data-driven hierarchical state machines.
// tests/introspection/ContextBranchTest.cpp: a machine that writes "contextInfo" without look-ups,
// beside one that never does.
#include <vell/IBroadcastListener.h>
#include <vell/SMState.h>

#include "foundation/SlotOperations.h"
#include "foundation/TreeKeys.h"
#include "tests/introspection/RichDocument.h"
#include "tests/model/Random.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestMachine.h"
#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

#include <array>
#include <list>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace vell::test
{
namespace
{

using Tessel::KVBranch;
using Tessel::KVTable;
using Tessel::KVValue;

constexpr const char* kNumberKeys[] = {kNextStateKey, kPreviousStateKey, kTransitionKey};
constexpr const char* kStackKeys[] = {kMainStackKey, kBlipStackKey};

/// Lets the operations on branches find and do nothing for as long as it lives, as where a site's
/// own table library has none.
class ByRule
{
public:
    explicit ByRule(bool isWanted) : saved(slotOperations)
    {
        if (isWanted)
        {
            slotOperations.findBranch = [](KVBranch* branch, KVTable parent, const char*)
            {
                branch->parent = parent;
                branch->table = KVTable();
                return 0;
            };
        }
    }
    ~ByRule()
    {
        slotOperations = saved;
    }
    ByRule(const ByRule&) = delete;
    ByRule& operator=(const ByRule&) = delete;

private:
    Tessel::SlotOperations saved;
};

/// A machine whose class may show another tree than its own.
class ShowingMachine : public StartedMachine
{
public:
    using StartedMachine::StartedMachine;

    KVTable GetKVTable() const override
    {
        return shown ? shown : StartedMachine::GetKVTable();
    }

    KVTable shown;
};

class Side;

/// What a tool or a host does when it is called; `where` and `number` say to what.
void Disturb(Side& side, int deed, std::size_t where, int number);

/// Hears of writes of a key or of a table, and does something about the first ones.
struct Ear
{
    Side* side;
    int number;
    int deed;
    std::string key; ///< empty for a table's own
    int heard = 0;
};

/// A machine with a tool at its tree and a host's listener and callback.
class Side : public IBroadcastListener
{
public:
    explicit Side(bool isByRule) : byRule(isByRule)
    {
        Act(
            [this]
            {
                machine = std::make_unique<ShowingMachine>(RichDocument());
                machine->SetStateSwitchCallback(Switch);
            });
        made.push_back(machine->kvTable);
        sides.emplace_back(machine.get(), this);
    }
    ~Side()
    {
        sides.clear();
        machine.reset();
        for (const KVTable table : made)
        {
            Tessel::CloseTable(table);
        }
    }
    Side(const Side&) = delete;
    Side& operator=(const Side&) = delete;

    /// Creates a table that lives as long as this.
    KVTable Create(const char* name)
    {
        made.push_back(Tessel::CreateTable(name));
        return made.back();
    }

    /// Creates a table with all that a machine has in "contextInfo".
    KVTable CreateContext(unsigned int number)
    {
        KVTable context = Create("another");
        for (const char* key : kStackKeys)
        {
            context->AddTable(key, 1)->PushUInt(number, 1);
        }
        for (const char* key : kNumberKeys)
        {
            context->SetUInt(key, number, 1);
        }
        return context;
    }

    /// Creates a root with a context.
    KVTable CreateRoot(unsigned int number)
    {
        const KVTable context = CreateContext(number);
        KVTable root = Create("HSM");
        root->AttachTable(kContextKey, context, 1);
        return root;
    }

    template <class Deed>
    void Act(const Deed& deed)
    {
        const ByRule rule(byRule);
        try
        {
            deed();
        }
        catch (const std::out_of_range&)
        {
            lines << "a tick ended early\n";
        }
    }

    KVTable Root() const
    {
        return machine->kvTable;
    }
    KVTable Context() const
    {
        return Root()->GetTable(kContextKey);
    }

    void Listen(KVTable table, const std::string& key, int number, int deed)
    {
        Tessel::KVListener* record =
            key.empty() ? table->GetTableListener() : table->GetValueListener(key.c_str());
        if (record != nullptr)
        {
            ears.push_back(Ear{this, number, deed, key});
            *record = Tessel::KVListener{&ears.back(), Hear};
        }
    }

    void Unlisten(KVTable table)
    {
        for (Ear& ear : ears)
        {
            const Tessel::KVListener record{&ear, Hear};
            table->RemoveValueListener(ear.key.c_str(), &record);
        }
        if (Tessel::KVListener* record = table->GetTableListener())
        {
            *record = Tessel::KVListener{};
        }
    }

    int OnBroadcastEvent(int event, const void* data) override
    {
        const auto& change = *static_cast<const StateChangeEvent*>(data);
        lines << "event " << event << ": " << change.transitionID << " " << change.previousID << " "
              << change.nextID << "\n";
        Disturb(*this, listenerDeed, 1, listenerDeed);
        return 1;
    }

    /// What there is to see of the machine and of the tables that a tool kept.
    std::string Show()
    {
        std::vector<KVTable> shown(made);
        shown.insert(shown.end(), kept.begin(), kept.end());
        for (const KVTable table : shown)
        {
            for (const std::string& line : TreeLines(table))
            {
                const bool isOfContext = line.find("nodeDefTable") == std::string::npos &&
                                         line.find("parameterTable") == std::string::npos;
                lines << (isOfContext ? line + "\n" : "");
            }
        }
        lines << machine->MainStack() << ", " << machine->BlipStack() << "\n";
        const std::string text = lines.str();
        lines.str("");
        return text;
    }

    bool byRule;
    std::unique_ptr<ShowingMachine> machine;
    std::list<Ear> ears;
    std::array<KVTable, 2> kept; ///< what was under "contextInfo" and the key of a stack once
    KVTable former;              ///< the root before
    int listenerDeed = 0;
    int callbackDeed = 0;

private:
    static int Hear(void* object, Tessel::opResult result, KVTable table, const char* key)
    {
        Ear& ear = *static_cast<Ear*>(object);
        Side& side = *ear.side;
        side.lines << ear.number << " hears " << result << " of " << key << ": "
                   << table->GetUInt(key) << (table == side.Context() ? "" : ", elsewhere") << "\n";
        if (++ear.heard <= 3)
        {
            Disturb(side, ear.deed, static_cast<std::size_t>(ear.number) % 3, ear.number);
        }
        return 0;
    }

    static void Switch(HSM* machine, SMState* previous, SMState* next, float)
    {
        for (const auto& entry : sides)
        {
            if (entry.first == machine)
            {
                Side& side = *entry.second;
                side.lines << "switch " << (previous == nullptr ? 0 : previous->GetID()) << " "
                           << next->GetID() << "\n";
                Disturb(side, side.callbackDeed, 0, side.callbackDeed);
            }
        }
    }

    static std::vector<std::pair<HSM*, Side*>> sides;

    std::vector<KVTable> made;
    std::ostringstream lines;
};

std::vector<std::pair<HSM*, Side*>> Side::sides;

/// What tools and hosts do, also from inside of a call.
struct Deed
{
    const char* name;
    void (*act)(Side& side, std::size_t where, int number);
};

constexpr Deed kDisturbances[] = {
    {"nothing", [](Side&, std::size_t, int) {}},
    {"a tool writes a number",
     [](Side& side, std::size_t where, int number)
     {
         side.Context()->SetUInt(kNumberKeys[where], static_cast<unsigned int>(number), 1);
     }},
    {"a tool writes a float",
     [](Side& side, std::size_t where, int number)
     {
         side.Context()->SetFloat(kNumberKeys[where], static_cast<float>(number), 1);
     }},
    {"a tool writes a text",
     [](Side& side, std::size_t where, int)
     {
         side.Context()->SetString(kNumberKeys[where], "a text that is longer than an entry", 1);
     }},
    {"a tool puts a table in place of a number",
     [](Side& side, std::size_t where, int)
     {
         side.Context()->AddTable(kNumberKeys[where], 1);
     }},
    {"a tool replaces the context",
     [](Side& side, std::size_t, int)
     {
         side.Root()->AddTable(kContextKey, 1);
     }},
    {"a tool replaces the context by a whole one",
     [](Side& side, std::size_t, int number)
     {
         const KVTable context = side.CreateContext(static_cast<unsigned int>(number));
         side.Root()->AttachTable(kContextKey, context, 1);
         side.kept[0] = context;
     }},
    {"a tool keeps the context and takes it away",
     [](Side& side, std::size_t, int)
     {
         if (side.Context())
         {
             side.kept[0] = side.Context();
             side.Root()->AttachTable("kept", side.Context(), 1);
         }
         side.Root()->SetUInt(kContextKey, 5, 1);
     }},
    {"a tool puts the context back",
     [](Side& side, std::size_t, int)
     {
         side.Root()->AttachTable(kContextKey, side.kept[0], 1);
     }},
    {"a tool closes the context",
     [](Side& side, std::size_t, int)
     {
         Tessel::CloseTable(side.Context());
     }},
    {"a tool replaces an array",
     [](Side& side, std::size_t where, int number)
     {
         side.kept[1] = side.Context()->GetTable(kStackKeys[where % 2]);
         side.Root()->AttachTable("array", side.kept[1], 1);
         side.Context()
             ->AddTable(kStackKeys[where % 2], 1)
             ->PushUInt(static_cast<unsigned int>(number), 1);
     }},
    {"a tool puts an array back",
     [](Side& side, std::size_t where, int)
     {
         side.Context()->AttachTable(kStackKeys[where % 2], side.kept[1], 1);
     }},
    {"a tool closes an array",
     [](Side& side, std::size_t where, int)
     {
         Tessel::CloseTable(side.Context()->GetTable(kStackKeys[where % 2]));
     }},
    {"a tool empties an array",
     [](Side& side, std::size_t where, int)
     {
         KVTable array = side.Context()->GetTable(kStackKeys[where % 2]);
         while (array->RemoveAt(0, 1) != 0)
         {
         }
     }},
    {"a tool listens to a number",
     [](Side& side, std::size_t where, int number)
     {
         side.Listen(side.Context(), kNumberKeys[where], number, 0);
     }},
    {"a tool listens to the context",
     [](Side& side, std::size_t, int number)
     {
         side.Listen(side.Context(), "", number, 0);
     }},
    {"the tools no longer listen",
     [](Side& side, std::size_t, int)
     {
         side.Unlisten(side.Context());
     }},
};

void Disturb(Side& side, int deed, std::size_t where, int number)
{
    const auto& chosen = kDisturbances[static_cast<std::size_t>(deed) % std::size(kDisturbances)];
    chosen.act(side, where, number);
}

/// What happens between two looks.
constexpr Deed kDeeds[] = {
    {"a transition fires",
     [](Side& side, std::size_t where, int)
     {
         side.machine->TickWith(std::array<const char*, 3>{"go", "fight", "hit"}[where]);
     }},
    {"the transitions no longer hold",
     [](Side& side, std::size_t, int)
     {
         for (const char* name : {"go", "fight", "hit"})
         {
             side.machine->SetBool(name, false);
         }
     }},
    {"a state is changed",
     [](Side& side, std::size_t where, int)
     {
         side.machine->ChangeState(std::array<unsigned int, 3>{10, 11, 20}[where]);
     }},
    {"a state is pushed",
     [](Side& side, std::size_t where, int)
     {
         side.machine->PushState(std::array<unsigned int, 3>{10, 11, 23}[where]);
     }},
    {"a state is popped",
     [](Side& side, std::size_t, int)
     {
         side.machine->PopState();
     }},
    {"a tick",
     [](Side& side, std::size_t, int)
     {
         side.machine->Tick();
     }},
    {"a blip ends",
     [](Side& side, std::size_t, int)
     {
         side.machine->RevertToPreviousState();
     }},
    {"a host listens to changes, or no longer does",
     [](Side& side, std::size_t where, int number)
     {
         side.listenerDeed = where == 0 ? number : 0;
         if (!side.machine->SubscribeStateChange(&side))
         {
             side.machine->UnsubscribeStateChange(&side);
         }
     }},
    {"a callback does something",
     [](Side& side, std::size_t, int number)
     {
         side.callbackDeed = number;
     }},
    {"a listener of a number does something",
     [](Side& side, std::size_t where, int number)
     {
         side.Listen(side.Context(), kNumberKeys[where], number, number);
     }},
    {"a listener of the context does something",
     [](Side& side, std::size_t, int number)
     {
         side.Listen(side.Context(), "", number, number);
     }},
    {"a tool does something",
     [](Side& side, std::size_t where, int number)
     {
         Disturb(side, number, where, number);
     }},
    {"the machine gets another root, or one that it had",
     [](Side& side, std::size_t where, int number)
     {
         const auto id = static_cast<unsigned int>(number);
         const KVTable before = side.machine->kvTable;
         side.machine->kvTable = where != 0 && side.former ? side.former : side.CreateRoot(id);
         side.former = before;
     }},
    {"the machine's class shows another tree, or its own",
     [](Side& side, std::size_t where, int number)
     {
         const auto id = static_cast<unsigned int>(number);
         side.machine->shown = where == 0 ? side.CreateRoot(id) : KVTable();
     }},
    {"the machine is put into its own context",
     [](Side& side, std::size_t, int)
     {
         side.machine->SetContextInfo(side.Context());
     }},
};

/// These end what can happen, so they happen seldom.
constexpr Deed kEnds[] = {
    {"a tool closes the root",
     [](Side& side, std::size_t, int)
     {
         Tessel::CloseTable(side.Root());
     }},
};

/// Counts what is done by branch.
struct Counted
{
    static Tessel::SlotOperations real;
    static int done;

    Counted()
    {
        real = slotOperations;
        done = 0;
        slotOperations.setUInts = [](const KVBranch* branch, KVValue* const* values,
                                     const unsigned* numbers, unsigned count)
        {
            return Count(real.setUInts(branch, values, numbers, count));
        };
        slotOperations.pushUInt = [](const KVBranch* branch, const KVValue* value, unsigned number)
        {
            return Count(real.pushUInt(branch, value, number));
        };
        slotOperations.removeLast = [](const KVBranch* branch, const KVValue* value)
        {
            return Count(real.removeLast(branch, value));
        };
    }
    ~Counted()
    {
        slotOperations = real;
    }

    static int Count(int result)
    {
        done += result;
        return result;
    }
};

Tessel::SlotOperations Counted::real;
int Counted::done;

/// Tells whether the program's table library has operations on branches.
bool HasBranches(const TestMachine& machine)
{
    KVBranch branch{};
    return slotOperations.findBranch(&branch, machine.kvTable, kContextKey) != 0;
}

} // namespace

TEST(ContextBranch, IsReadAndWrittenWithoutLookUpsAsItIsByKey)
{
    LogRecorder log;
    constexpr unsigned long long kSeeds = 100;
    for (unsigned long long seed = 1; seed <= kSeeds; ++seed)
    {
        SCOPED_TRACE(seed);
        model::Random random(seed);
        Side side(false);
        Side byRule(true);
        log.Clear();
        for (int step = 0; step < 60; ++step)
        {
            const Deed deed = random.Chance(1) ? random.PickFrom(kEnds) : random.PickFrom(kDeeds);
            const std::size_t where = random.Below(3);
            const int number = random.Between(0, 2 * static_cast<int>(std::size(kDisturbances)));
            side.Act(
                [&]
                {
                    deed.act(side, where, number);
                });
            const Lines lines = log.Take();
            byRule.Act(
                [&]
                {
                    deed.act(byRule, where, number);
                });
            ASSERT_EQ(lines, log.Take()) << "step " << step << ": " << deed.name;
            ASSERT_EQ(side.Show(), byRule.Show()) << "step " << step << ": " << deed.name;
        }
    }
}

TEST(ContextBranch, TakesEveryStepOfAChangeThatNobodyHears)
{
    LogRecorder log;
    StartedMachine machine{RichDocument()};
    machine.TickWith("go");
    const Counted counted;

    machine.ChangeState(10);

    // A state is popped, one is pushed, and the change is written.
    EXPECT_EQ(Counted::done, HasBranches(machine) ? 3 : 0);
}

} // namespace vell::test
