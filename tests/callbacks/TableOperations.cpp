// VELL: data-driven hierarchical state machines.
// tests/callbacks/TableOperations.cpp: a tool's operations on the tree.
#include "tests/callbacks/Operations.h"

namespace vell::callbacks
{
namespace
{

const char* const kLongText = "a text of more than twenty letters";

const Tessel::Float2 kTwoFloats = {1, 2};

int HearNothing(void*, Tessel::opResult, Tessel::KVTable, const char*)
{
    return 1;
}

const char* Key(const Hand& hand)
{
    return hand.key == nullptr ? "value" : hand.key;
}

/// So many that the lists are moved.
void AddListeners(Tessel::KVTable table, const char* key)
{
    for (int i = 0; i < 100; ++i)
    {
        if (Tessel::KVListener* record = table->GetValueListener(key))
        {
            *record = Tessel::KVListener{nullptr, &HearNothing};
        }
    }
}

void WriteKeys(Tessel::KVTable table)
{
    static const char* const keys[] = {"ka", "kb", "kc", "kd", "ke", "kf", "kg", "kh", "ki", "kj"};
    for (const char* key : keys)
    {
        table->SetString(key, kLongText, 1);
    }
}

void CloseUnder(Tessel::KVTable parent, const char* key)
{
    Tessel::CloseTable(parent->GetTable(key));
}

void ClearTableListener(Tessel::KVTable table)
{
    if (Tessel::KVListener* record = table->GetTableListener())
    {
        *record = Tessel::KVListener{nullptr, nullptr};
    }
}

} // namespace

std::vector<Operation> TableOperations()
{
    // clang-format off: one entry a line
    return {
        {"table: SetInt(own key)", VELL_ON_TABLE(table->SetInt(Key(hand), 5, 1))},
        {"table: SetString(own key)", VELL_ON_TABLE(table->SetString(Key(hand), kLongText, 1))},
        {"table: SetFloat2(own key)", VELL_ON_TABLE(table->SetFloat2(Key(hand), &kTwoFloats, 1))},
        {"table: AddTable(own key)", VELL_ON_TABLE(table->AddTable(Key(hand), 1))},
        {"table: AttachTable(own key)",
         VELL_ON_TABLE(table->AttachTable(Key(hand), ContextTable(hand), 1))},
        {"table: ten further keys", VELL_ON_TABLE(WriteKeys(table))},
        {"table: 100 further listeners", VELL_ON_TABLE(AddListeners(table, Key(hand)))},
        {"table: GetTableListener cleared", VELL_ON_TABLE(ClearTableListener(table))},
        {"table: PushUInt, RemoveAt", VELL_ON_TABLE(table->PushUInt(1, 1); table->RemoveAt(0, 1))},
        {"table: CloseTable(own)", VELL_ON_TABLE(Tessel::CloseTable(table))},
        {"context: SetUInt(nextState)", VELL_ON_CONTEXT(table->SetUInt("nextState", 9, 1))},
        {"context: SetString(previousState)",
         VELL_ON_CONTEXT(table->SetString("previousState", "x", 1))},
        {"context: AddTable(stackStates)", VELL_ON_CONTEXT(table->AddTable("stackStates", 1))},
        {"context: stackStates.PushUInt",
         VELL_ON_CONTEXT(table->GetTable("stackStates")->PushUInt(4, 1))},
        {"context: CloseTable(stackStates)", VELL_ON_CONTEXT(CloseUnder(table, "stackStates"))},
        {"context: CloseTable", VELL_ON_CONTEXT(Tessel::CloseTable(table))},
        {"root: CloseTable", VELL_ON_ROOT(Tessel::CloseTable(table))},
        {"root: CloseTable(parameterTable)", VELL_ON_ROOT(CloseUnder(table, "parameterTable"))},
        {"root: CloseTable(nodeDefTable)", VELL_ON_ROOT(CloseUnder(table, "nodeDefTable"))},
        {"root: AttachTable(root under context)",
         VELL_ON_CONTEXT(table->AttachTable("own", hand.machine->GetKVTable(), 1))},
    };
    // clang-format on
}

} // namespace vell::callbacks
