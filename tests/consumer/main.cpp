// VELL: data-driven hierarchical state machines.
// tests/consumer/main.cpp: a host of an installed VELL that uses all three libraries.
#include <durm/DURMBaseLib.h>
#include <vell/vell.h>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <cstring>

namespace
{
using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void Key(Writer& writer, vell::__JSONTYPES__ member)
{
    writer.Key(DURMBaseLib::GetJsonName(member));
}

/// A machine with one state, Idle, whose id is 7.
void WriteDocument(Writer& writer)
{
    writer.StartObject();
    Key(writer, vell::JSON_Head);
    writer.StartObject();
    Key(writer, vell::JSON_HeadMemory);
    writer.Uint(1000);
    Key(writer, vell::JSON_HeadMachineType);
    writer.String("character");
    Key(writer, vell::JSON_HeadVersion);
    writer.Uint(3);
    Key(writer, vell::JSON_HeadEnterNode);
    writer.Uint(7);
    Key(writer, vell::JSON_HeadSubstateRoot);
    writer.Uint(7);
    writer.EndObject();
    Key(writer, vell::JSON_Parameters);
    writer.StartArray();
    writer.EndArray();
    Key(writer, vell::JSON_Layers);
    writer.StartArray();
    writer.StartObject();
    Key(writer, vell::JSON_Name);
    writer.String("Base");
    Key(writer, vell::JSON_Nodes);
    writer.StartArray();
    writer.StartObject();
    Key(writer, vell::JSON_Name);
    writer.String("Idle");
    Key(writer, vell::JSON_ID);
    writer.Uint(7);
    Key(writer, vell::JSON_BuilderType);
    writer.String("generic");
    writer.EndObject();
    writer.EndArray();
    writer.EndObject();
    writer.EndArray();
    writer.EndObject();
}

int performed = 0;
int deleted = 0;

/// Counts; the definition that it is put on deletes it.
class CountingAction : public vell::Action
{
public:
    ~CountingAction() override
    {
        ++deleted;
    }

    int Perform(vell::__ActType__, float) override
    {
        ++performed;
        return 1;
    }
};

int failures = 0;

void Expect(bool holds, const char* what)
{
    if (!holds)
    {
        std::fprintf(stderr, "does not hold: %s\n", what);
        ++failures;
    }
}

void RunMachine(const char* document)
{
    vell::IHSM* machine = CreateHSMJson(document);
    Expect(machine->Init() == 1, "the document loads");
    vell::IBaseDef* idle = machine->FindDef("Idle");
    Expect(idle != nullptr && idle->GetID() == 7, "the state is found by its name");
    if (idle != nullptr)
    {
        idle->RegisterEnter(new CountingAction);
        idle->RegisterExecute(new CountingAction);
    }

    machine->Start();
    machine->Update(0.016f);
    machine->Update(0.016f);

    const vell::SMState* current = machine->GetCurrentState();
    Expect(current != nullptr && current->GetID() == 7, "the start state is the current one");
    Expect(performed == 3, "the actions perform once on entry and once a tick");
    Expect(static_cast<bool>(machine->GetKVTable()), "the machine has its tree");
    machine->Uninit();
    machine->Destroy();
    delete machine;
    Expect(deleted == 2, "the definition deletes its actions");
}
} // namespace

int main()
{
    rapidjson::StringBuffer text;
    Writer writer(text);
    WriteDocument(writer);

    RunMachine(text.GetString());

    Tessel::KVTable table = Tessel::CreateTable("consumer");
    Expect(static_cast<bool>(table), "the table library makes a table");
    Tessel::CloseTable(table);
    if (failures == 0)
    {
        std::puts("consumer: all well");
    }
    return failures == 0 ? 0 : 1;
}
