// VELL: data-driven hierarchical state machines.
// tests/robustness/RefusedMemory.cpp: machines whose arena or heap runs out.
#include "tests/robustness/RefusedMemory.h"

#include <vell/IParameterTable.h>
#include <vell/Parameters.h>

#include "document/DocumentParser.h"
#include "tests/support/HeapWatch.h"

#include <memory>
#include <new>

namespace vell::test
{
namespace
{

template <class Interface, class Value>
void Set(IHSM& machine, const char* name, const Value& value)
{
    IParameterTable* table = machine.GetParameterTable();
    ParameterDef* parameter = table == nullptr ? nullptr : table->FindParameter(name);
    if (auto* typed = dynamic_cast<Interface*>(parameter))
    {
        typed->SetValue(value);
    }
}

} // namespace

void RunThrough(IHSM& machine)
{
    machine.Start();
    machine.Update(0.1f);
    Set<IParameterIntDef>(machine, "count", 3);
    machine.Update(0.1f);
    machine.Update(0.1f);
    Set<IParameterMessageDef>(machine, "shout", std::string(100, 's'));
    Set<IParameterBoolDef>(machine, "hit", true);
    machine.Update(0.1f);
    Set<IParameterFloatDef>(machine, "speed", 2.0f);
    machine.Update(0.1f);
    machine.Update(0.1f);
    Set<IParameterBoolDef>(machine, "go", true);
    machine.Update(0.1f);
    machine.Update(0.1f);
}

Fate LiveWithout(const std::string& text, HeapWatch& heap, std::size_t count)
{
    Fate fate;
    std::unique_ptr<CrampedMachine> machine;
    heap.RefuseAfter(count);
    try
    {
        machine = std::make_unique<CrampedMachine>(text, kRoomyArena);
        fate.created = machine->Create();
        fate.initialised = machine->Init();
        if (fate.initialised != 0)
        {
            RunThrough(*machine);
        }
    }
    catch (const std::bad_alloc&)
    {
        fate.threw = true;
    }
    fate.refused = heap.Refused() != 0;
    heap.RefuseNothing();
    if (machine != nullptr)
    {
        if (fate.initialised != 0)
        {
            machine->Update(0.1f);
            machine->Update(0.1f);
        }
        machine->Uninit();
        machine->Destroy();
    }
    return fate;
}

ParserBlocks CountParserBlocks(const std::string& text)
{
    const HeapWatch heap;
    const auto machine = std::make_unique<CrampedMachine>(text, kRoomyArena);
    const std::size_t before = heap.Asked();
    GenericDocument document;
    const std::size_t made = heap.Asked();
    ParseText(text.c_str(), document);
    return {before, heap.Asked() - made};
}

} // namespace vell::test
