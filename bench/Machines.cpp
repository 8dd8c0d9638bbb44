// VELL: data-driven hierarchical state machines.
// bench/Machines.cpp: machines that are ready to be ticked, and where their log goes.
#include "bench/Machines.h"

#include <durm/DURMBaseLib.h>

#include <unistd.h>

namespace vell::bench
{
namespace
{

std::vector<std::string> recorded;

void Record(int, const char* text)
{
    recorded.emplace_back(text);
}

} // namespace

void EndMachine::operator()(IHSM* machine) const
{
    machine->Uninit();
    machine->Destroy();
    delete machine;
}

Machine LoadMachine(const std::string& document)
{
    Machine machine(CreateHSMJson(document.c_str()));
    if (machine == nullptr || !machine->Init())
    {
        Fail("a generated document was refused");
    }
    return machine;
}

Machine SpawnMachine(const std::string& document)
{
    Machine machine = LoadMachine(document);
    machine->Start();
    return machine;
}

Machine StartMachine(const std::string& document)
{
    constexpr int kTicksUntilSettled = 32;
    Machine machine = SpawnMachine(document);
    for (int i = 0; i < kTicksUntilSettled; ++i)
    {
        machine->Update(0.0f);
    }
    return machine;
}

unsigned int CurrentId(IHSM& machine)
{
    const SMState* state = machine.GetCurrentState();
    return state == nullptr ? 0 : state->GetID();
}

void SetParameter(IHSM& machine, const char* name, float value)
{
    ParameterDef* parameter = machine.GetParameterTable()->FindParameter(name);
    dynamic_cast<IParameterFloatDef&>(*parameter).SetValue(value);
}

LogRecord::LogRecord()
{
    recorded.clear();
    SetLogCallBackBase(Record);
}

LogRecord::~LogRecord()
{
    SetLogCallBackBase(nullptr);
}

const std::vector<std::string>& LogRecord::Lines() const
{
    return recorded;
}

QuietLog::QuietLog()
{
    SetLogLevel(LogError);
}

QuietLog::~QuietLog()
{
    SetLogLevel(LogPlain);
}

std::size_t WriteBare(const std::vector<std::string>& lines)
{
    std::size_t bytes = 0;
    for (const std::string& line : lines)
    {
        const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
        bytes += written < 0 ? 0 : static_cast<std::size_t>(written);
    }
    return bytes;
}

void Observer::Watch(IHSM& machine)
{
    machine.SubscribeStateChange(this);
    machine.SetStateSwitchCallback(OnSwitch);
}

int Observer::OnBroadcastEvent(int, const void* record)
{
    heard += static_cast<const StateChangeEvent*>(record)->nextID;
    return 1;
}

void Observer::OnSwitch(HSM*, SMState*, SMState*, float)
{
}

} // namespace vell::bench
