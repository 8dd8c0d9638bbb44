// VELL: data-driven hierarchical state machines.
// tests/support/TestMachine.cpp: making and showing of test machines.
#include "tests/support/TestMachine.h"

#include <vell/BaseDef.h>
#include <vell/IParameterTable.h>
#include <vell/Parameters.h>
#include <vell/SMState.h>

#include "tests/support/TreeLines.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

std::string Path(const std::vector<SMState*>& stack)
{
    std::string path;
    for (SMState* state : stack)
    {
        const char* name =
            state == nullptr || state->GetDef() == nullptr ? "(null)" : state->GetDef()->GetName();
        path += (path.empty() ? "" : "/") + std::string(name == nullptr ? "(null)" : name);
    }
    return path.empty() ? "-" : path;
}

} // namespace

TestMachine::TestMachine(const std::string& documentText)
{
    Load(documentText);
}

TestMachine::TestMachine(const DocumentBuilder& builder)
{
    Load(builder.Text());
}

TestMachine::~TestMachine()
{
    if (!uninitialised)
    {
        HSM::Uninit();
    }
}

int TestMachine::Load(const std::string& documentText)
{
    text = documentText;
    jsonText = text.c_str();
    return Create();
}

int TestMachine::Uninit()
{
    uninitialised = true;
    return HSM::Uninit();
}

std::string TestMachine::MainStack() const
{
    return Path(stateStack);
}

std::string TestMachine::BlipStack() const
{
    return Path(blipStack);
}

std::vector<unsigned int> TestMachine::StackInTree(const char* key) const
{
    return IdsOf(TableAt(kvTable, std::string("contextInfo/") + key));
}

unsigned int TestMachine::ContextValue(const char* key) const
{
    Tessel::KVTable context = kvTable ? kvTable->GetTable("contextInfo") : Tessel::KVTable();
    return context ? context->GetUInt(key) : 0;
}

std::vector<unsigned int> TestMachine::LastSwitch() const
{
    return {ContextValue("transitionTriggered"), ContextValue("previousState"),
            ContextValue("nextState")};
}

void TestMachine::SetBool(const char* name, bool value)
{
    auto* parameter = dynamic_cast<ParameterBoolDef*>(GetParameterTable()->FindParameter(name));
    ASSERT_NE(parameter, nullptr) << name;
    parameter->SetValue(value);
}

void TestMachine::Tick(int times)
{
    for (int i = 0; i < times; ++i)
    {
        Update(0.1f);
    }
}

void TestMachine::TickWith(const char* name)
{
    SetBool(name, true);
    Tick();
}

} // namespace vell::test
